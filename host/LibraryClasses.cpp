#include "host/LibraryClasses.h"

#include "services/VT.h"
#include "services/VT_COMMONDIALOGS.h"
#include "services/VT_ZLIB.h"

namespace vantor::host {

void RegisterLibraryClasses() {
  static const bool done = [] {
    services::VT::Register();
    services::VT_ZLIB::Register();
    services::VT_COMMONDIALOGS::Register();
    return true;
  }();
  (void)done;
}

}  // namespace vantor::host
