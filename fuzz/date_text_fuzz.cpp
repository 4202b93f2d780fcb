// Feeds arbitrary text to the date reader, IsDate and the date formatter. The
// input, cut at its first NUL, is a date source (a date text, else eight raw
// bytes taken as a serial) and a format pattern.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "runtime/DateFormat.h"
#include "runtime/DateText.h"
#include "runtime/DateTime.h"
#include "runtime/Error.h"
#include "runtime/Locale.h"
#include "runtime/String.h"
#include "runtime/Variant.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantor;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const Locale* locales[] = {&Locale::Get(Locale::Id::ptBR), &Locale::Get(Locale::Id::enUS)};

  const String text = FromUtf8(bytes);
  for (const Locale* locale : locales) {
    if (auto date = DateText::Parse(text, *locale)) {
      // Whatever is read must be a date the run time can hold and show.
      if (!Date::InRange(date->Serial())) __builtin_trap();
      (void)DateText::General(*date, *locale);
    }
  }
  (void)IsDate(Variant(text));

  const size_t nul = bytes.find('\0');
  if (nul != std::string_view::npos) {
    const std::string_view source = bytes.substr(0, nul);
    const String pattern = FromUtf8(bytes.substr(nul + 1));
    Date date;
    if (auto parsed = DateText::Parse(FromUtf8(source))) {
      date = *parsed;
    } else if (source.size() >= sizeof(double)) {
      double serial = 0;
      std::memcpy(&serial, source.data(), sizeof serial);
      date = Date(serial);
    }
    const auto first = static_cast<VbDayOfWeek>(source.size() % 8);
    const auto rule = static_cast<VbFirstWeekOfYear>(source.size() % 4);
    for (const Locale* locale : locales) {
      (void)DateFormat::Apply(date, pattern, first, rule, *locale);
    }
  }
  Err().Clear();
  return 0;
}
