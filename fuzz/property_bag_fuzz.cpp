// Property bags are read back from form files that people edit by hand; any
// text must be refused or read without a crash, and a bag that was read must
// write a text that reads back to the same text and the same values.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "runtime/String.h"
#include "server/PropertyBag.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  vantor::String error;
  const auto bag = vantor::server::PropertyBag::FromText(vantor::FromUtf8(input), &error);
  if (!bag) {
    if (error.rfind(u"line ", 0) != 0) __builtin_trap();
    return 0;
  }
  const vantor::String once = bag->ToText();
  const auto again = vantor::server::PropertyBag::FromText(once, &error);
  if (!again || again->ToText() != once) __builtin_trap();
  const auto names = bag->Names();
  if (again->Names() != names) __builtin_trap();
  for (const auto& name : names) {
    if (!vantor::server::PropertyBag::SameValue(bag->ReadProperty(name), again->ReadProperty(name)))
      __builtin_trap();
  }
  return 0;
}
