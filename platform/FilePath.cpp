#include "platform/FilePath.h"

#include <algorithm>

namespace vantor::platform {

std::string FilePath::Native(StringView hostPath) {
  if (hostPath.empty() || hostPath.find(u'\0') != StringView::npos) return {};
  std::string path = ToUtf8(hostPath);
#ifndef _WIN32
  std::replace(path.begin(), path.end(), '\\', '/');
#endif
  return path;
}

}  // namespace vantor::platform
