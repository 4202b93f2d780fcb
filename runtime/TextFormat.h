#pragma once
// The text placeholders of Format: "@" takes a character or shows a blank,
// "&" takes a character or shows nothing. Placeholders fill from the right
// unless the pattern holds "!"; characters beyond the placeholders stand in
// front (or behind, with "!"). "<" lowers and ">" raises the whole text.
// Other characters of the pattern are copied; "\" and quotes escape them.
// Thus "1234" in "@@@.@@@.@@@" gives "   .  1.234".
#include "runtime/String.h"

namespace vantor {

class TextFormat {
 public:
  static String Apply(StringView text, StringView format);
};

}  // namespace vantor
