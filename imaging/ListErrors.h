#pragma once
// The errors the image-list classes raise to their host, the only messages
// of the imaging layer. Each goes out as vantor::Error (and into the error
// object), which the object model hands to the caller.
#include <cstdint>

#include "runtime/String.h"

namespace vantor::imaging {

class ListErrors {
 public:
  static constexpr int32_t kInvalidKeyOrIndex = 1962;
  static constexpr int32_t kDuplicatedKey = 1963;
  static constexpr int32_t kTooManyImages = 1973;
  static constexpr int32_t kBadVersion = 1974;
  static constexpr int32_t kImportFailed = 1975;
  static constexpr int32_t kExportFailed = 1976;
  static constexpr int32_t kLowResources = 1977;

  // The number's own text: "Invalid Key or Index" for 1962.
  static String Text(int32_t number);
  // Raises `number` from `source`, with `description` or else the number's
  // own text.
  [[noreturn]] static void Raise(int32_t number, StringView source, StringView description = {});
};

}  // namespace vantor::imaging
