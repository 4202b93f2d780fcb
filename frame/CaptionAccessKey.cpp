#include "frame/CaptionAccessKey.h"

#include "runtime/Strings.h"

namespace vantor::frame {

String CaptionAccessKey::Of(StringView caption) {
  const size_t length = caption.size();
  if (length < 2) return {};
  // 1-based positions, searching from the one before the last character: an
  // ampersand at the very end has nothing after it to announce.
  size_t from = length - 1;
  while (from >= 1) {
    size_t at = 0;
    for (size_t i = from; i >= 1; --i) {
      if (caption[i - 1] == u'&') {
        at = i;
        break;
      }
    }
    if (at == 0) return {};
    if (at == 1 || caption[at - 2] != u'&') return LCase(String(caption.substr(at, 1)));
    // A doubled ampersand: look before the pair.
    if (at < 3) return {};
    from = at - 2;
  }
  return {};
}

}  // namespace vantor::frame
