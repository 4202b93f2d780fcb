// Like and the text placeholders of Format read patterns typed by users; no
// pattern may crash them or make them take more than text times pattern steps.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "runtime/Error.h"
#include "runtime/Like.h"
#include "runtime/String.h"
#include "runtime/TextFormat.h"
#include "runtime/VarType.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const size_t nul = input.find('\0');
  const std::string_view text = input.substr(0, nul);
  const std::string_view pattern =
      nul == std::string_view::npos ? std::string_view() : input.substr(nul + 1);

  const vantor::String t = vantor::FromUtf8(text);
  const vantor::String p = vantor::FromUtf8(pattern);
  (void)vantor::Like(t, p, vantor::vbBinaryCompare);
  (void)vantor::Like(t, p, vantor::vbTextCompare);
  // Every text matches itself once the pattern's special characters are
  // bracketed.
  vantor::String quoted;
  for (char16_t c : t) {
    if (c == u'*' || c == u'?' || c == u'#' || c == u'[') {
      quoted += u'[';
      quoted += c;
      quoted += u']';
    } else {
      quoted += c;
    }
  }
  if (!vantor::Like(t, quoted, vantor::vbBinaryCompare)) __builtin_trap();
  if (!vantor::Like(t, quoted, vantor::vbTextCompare)) __builtin_trap();
  (void)vantor::TextFormat::Apply(t, p);
  vantor::Err().Clear();
  return 0;
}
