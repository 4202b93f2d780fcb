// Form files are edited by hand and passed around with projects; any text
// must be refused with the line named, or read, and a form that was read
// must write a file that reads back to the same file.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/FormFile.h"
#include "runtime/String.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using vantor::host::FormFile;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  vantor::String error;
  const auto form = FormFile::Read(input, &error);
  if (!form) {
    if (error.rfind(u"line ", 0) != 0) __builtin_trap();
    return 0;
  }
  const std::string once = FormFile::Write(*form);
  const auto again = FormFile::Read(once, &error);
  if (!again || FormFile::Write(*again) != once) __builtin_trap();
  return 0;
}
