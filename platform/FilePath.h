#pragma once
// File names as the host's code writes them, made into names the file system
// takes. Hosts were written for Windows: "\" separates folders there, and on
// other systems it stands for "/". A name that is empty or holds a NUL names
// no file: the narrow calls the host's code was written for would cut it at
// the NUL and reach another file.
#include <string>

#include "runtime/String.h"

namespace vantor::platform {

class FilePath {
 public:
  // The UTF-8 name for the file system; empty when the name names no file.
  static std::string Native(StringView hostPath);
};

}  // namespace vantor::platform
