// The conversions at the edges of the library meet bytes from files and other
// programs; any bytes must convert without a crash, and a second round trip
// through UTF-16 must change nothing.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/String.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);

  const vantor::String wide = vantor::FromUtf8(input);
  const std::string once = vantor::ToUtf8(wide);
  const std::string twice = vantor::ToUtf8(vantor::FromUtf8(once));
  if (once != twice) __builtin_trap();

  // Any bytes are "ANSI" text, and code page text survives the round trip.
  const vantor::String ansi = vantor::FromAnsi(input);
  if (ansi.size() != input.size()) __builtin_trap();
  if (vantor::ToAnsi(ansi) != input) __builtin_trap();
  (void)vantor::ToAnsi(wide);

  // The input read as UTF-16 units, lone surrogates and all.
  vantor::String units(size / 2, u'\0');
  for (size_t i = 0; i < units.size(); ++i)
    units[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
  const std::string fromUnits = vantor::ToUtf8(units);
  if (vantor::ToUtf8(vantor::FromUtf8(fromUnits)) != fromUnits) __builtin_trap();
  (void)vantor::ToAnsi(units);
  return 0;
}
