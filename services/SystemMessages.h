#pragma once
// Texts for the platform's error codes, as a host shows them to its user:
// the codes its own calls leave (GetLastError, the language's LastDllError)
// and the COM results that carry one of them. Our platform layer reports the
// same codes, so a number means the same on every system. The texts are in
// the language of the locale in force; an unknown code has none.
#include <cstdint>

#include "runtime/String.h"

namespace vantor::services {

class SystemMessages {
 public:
  // The text for a code, or empty when the code is unknown. A result of the
  // Win32 facility (0x8007xxxx) is read as its code.
  static String Describe(int32_t code);
};

}  // namespace vantor::services
