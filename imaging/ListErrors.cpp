#include "imaging/ListErrors.h"

#include "runtime/Error.h"

namespace vantor::imaging {

String ListErrors::Text(int32_t number) {
  switch (number) {
    case kInvalidKeyOrIndex:
      return u"Invalid Key or Index";
    case kDuplicatedKey:
      return u"Duplicated Key. Key already exists in this collection";
    case kTooManyImages:
      return u"Maximum number of images have been exceeded. Create new image list";
    case kBadVersion:
      return u"Invalid ImageList Version. Update your ImageList classes/control";
    case kImportFailed:
      return u"Failed to Import external image list";
    case kExportFailed:
      return u"Error exporting image list. Ensure enough disk space and valid write-permissions";
    case kLowResources:
      return u"Low system resource preventing appending additional images";
    default:
      return {};
  }
}

void ListErrors::Raise(int32_t number, StringView source, StringView description) {
  const String text = description.empty() ? Text(number) : String(description);
  Err().Raise(number, source, text);
}

}  // namespace vantor::imaging
