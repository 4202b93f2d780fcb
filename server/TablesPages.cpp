#include "server/TableBuilder.h"

namespace vantor::server {

// The design-time pages edit their control's own properties through the
// designer; they publish nothing of their own.
void AddPageTables(TableBuilder& lib) {
  for (const char* page : {"ppgAlphaImage", "ppgButton", "ppgForm", "ppgGroupBox", "ppgImageList",
                           "ppgLabel", "ppgPictureLCD1", "ppgPictureLCD2", "ppgTab", "ppgToolbar",
                           "ppgUSFlexGrid"})
    lib.Class(page, ClassKind::PropertyPage);
}

}  // namespace vantor::server
