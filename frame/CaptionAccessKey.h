#pragma once
// The access key a caption announces: the character after its last single
// "&", in lower case. "&&" stands for a literal ampersand and announces
// nothing, so the search walks back over doubled ones.
#include "runtime/String.h"

namespace vantor::frame {

class CaptionAccessKey {
 public:
  // Empty when the caption has no single ampersand with a character after it.
  static String Of(StringView caption);
};

}  // namespace vantor::frame
