#include "host/LibraryClasses.h"

#include "frame/USButton.h"
#include "frame/USLabel.h"
#include "frame/clsMouseEvents.h"
#include "imaging/IItemData.h"
#include "imaging/USImageList.h"
#include "imaging/cImageList.h"
#include "imaging/cImageLists.h"
#include "imaging/cListImage.h"
#include "imaging/cListImages.h"
#include "plumbing/VT_TOOLTIP.h"
#include "services/VT.h"
#include "services/VT_COMMONDIALOGS.h"
#include "services/VT_ZLIB.h"

namespace vantor::host {

void RegisterLibraryClasses() {
  static const bool done = [] {
    frame::clsMouseEvents::Register();
    frame::USButton::Register();
    frame::USLabel::Register();
    plumbing::VT_TOOLTIP::Register();
    services::VT::Register();
    services::VT_ZLIB::Register();
    services::VT_COMMONDIALOGS::Register();
    imaging::USImageList::Register();
    imaging::cImageLists::Register();
    imaging::cImageList::Register();
    imaging::cListImages::Register();
    imaging::cListImage::Register();
    imaging::IItemData::Register();
    return true;
  }();
  (void)done;
}

}  // namespace vantor::host
