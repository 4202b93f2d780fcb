#pragma once
// Format patterns hold up to four sections separated by ";"; a ";" inside
// quotes or behind "\" belongs to the section's text.
#include <vector>

#include "runtime/String.h"

namespace vantor {

std::vector<StringView> FormatSections(StringView format);

}  // namespace vantor
