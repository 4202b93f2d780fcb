// Numbers typed by users reach the number reader, Val and the number formats
// of Format; none of them may crash or hang on any text, and what the general
// conversion writes must read back.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "runtime/Conversion.h"
#include "runtime/Error.h"
#include "runtime/Format.h"
#include "runtime/Locale.h"
#include "runtime/NumberFormat.h"
#include "runtime/NumberText.h"
#include "runtime/String.h"
#include "runtime/Variant.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const size_t nul = input.find('\0');
  const std::string_view value = input.substr(0, nul);
  const std::string_view pattern =
      nul == std::string_view::npos ? std::string_view() : input.substr(nul + 1);
  const vantor::String v = vantor::FromUtf8(value);
  const vantor::String p = vantor::FromUtf8(pattern);

  for (auto id : {vantor::Locale::Id::ptBR, vantor::Locale::Id::enUS}) {
    const vantor::Locale& locale = vantor::Locale::Get(id);
    const auto parsed = vantor::NumberText::Parse(v, locale);
    if (parsed) {
      if (!std::isfinite(*parsed)) __builtin_trap();
      // The general text of any number reads back as a number.
      if (!vantor::NumberText::Parse(vantor::NumberText::General(*parsed, locale), locale)) {
        __builtin_trap();
      }
      (void)vantor::NumberFormat::Apply(*parsed, p, locale);
    }
    (void)vantor::NumberFormat::Apply(1234.5, p, locale);
    (void)vantor::NumberFormat::Apply(-0.001, p, locale);
    (void)vantor::NumberFormat::ApplyNull(p, locale);
  }

  const double val = vantor::Val(v);
  if (std::isnan(val) || std::isinf(val)) __builtin_trap();
  if (vantor::IsNumeric(vantor::Variant(v)) != vantor::NumberText::Parse(v).has_value()) {
    __builtin_trap();
  }
  (void)vantor::Format(vantor::Variant(v), p);
  (void)vantor::Format(vantor::Variant(val), p);
  (void)vantor::Format(vantor::Variant(vantor::Null), p);
  vantor::Err().Clear();
  return 0;
}
