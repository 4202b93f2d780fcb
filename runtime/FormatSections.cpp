#include "runtime/FormatSections.h"

namespace vantor {

std::vector<StringView> FormatSections(StringView format) {
  std::vector<StringView> sections;
  size_t start = 0;
  const size_t n = format.size();
  for (size_t i = 0; i < n; ++i) {
    if (format[i] == u'"') {
      const size_t end = format.find(u'"', i + 1);
      i = end == StringView::npos ? n : end;
    } else if (format[i] == u'\\') {
      ++i;
    } else if (format[i] == u';') {
      sections.push_back(format.substr(start, i - start));
      start = i + 1;
    }
  }
  sections.push_back(format.substr(start));
  return sections;
}

}  // namespace vantor
