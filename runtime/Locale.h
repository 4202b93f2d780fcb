#pragma once
// The regional settings the run time formats and reads with. Brazilian
// Portuguese is the default because the library's users are Brazilian; en-US
// is there for hosts that need it and for tests of the locale-dependent paths.
#include <array>

#include "runtime/String.h"

namespace vantor {

enum class DateOrder { DMY, MDY, YMD };

class Locale {
 public:
  enum class Id { ptBR, enUS };

  // The locale in force: chosen by Set, else by VANTOR_LOCALE ("pt-BR",
  // "en-US", also with "_"), else pt-BR.
  static const Locale& Current();
  static void Set(Id id);
  // Forgets a choice made by Set and reads VANTOR_LOCALE again.
  static void FromEnvironment();
  static const Locale& Get(Id id);

  Id id() const { return id_; }
  StringView Name() const { return name_; }
  char16_t DecimalSeparator() const { return decimal_; }
  char16_t ThousandsSeparator() const { return thousands_; }
  char16_t DateSeparator() const { return u'/'; }
  char16_t TimeSeparator() const { return u':'; }
  DateOrder ShortDateOrder() const { return order_; }
  // As format patterns of the run time's Format.
  StringView ShortDateFormat() const { return shortDate_; }
  StringView LongDateFormat() const { return longDate_; }
  StringView MediumDateFormat() const { return mediumDate_; }
  StringView LongTimeFormat() const { return longTime_; }
  StringView CurrencySymbol() const { return currency_; }
  // Where the currency symbol stands: true before the amount.
  bool CurrencyBefore() const { return true; }
  StringView AmDesignator() const { return am_; }
  StringView PmDesignator() const { return pm_; }
  StringView TrueName() const { return true_; }
  StringView FalseName() const { return false_; }
  // month 1..12, lower case as the system writes them.
  StringView MonthName(int month, bool abbreviated = false) const;
  // weekday 1..7, Sunday being 1.
  StringView DayName(int weekday, bool abbreviated = false) const;

 private:
  Locale() = default;
  static Locale Make(Id id);

  Id id_ = Id::ptBR;
  String name_;
  char16_t decimal_ = u',';
  char16_t thousands_ = u'.';
  DateOrder order_ = DateOrder::DMY;
  String shortDate_, longDate_, mediumDate_, longTime_, currency_, am_, pm_, true_, false_;
  std::array<String, 12> months_, monthsShort_;
  std::array<String, 7> days_, daysShort_;
};

}  // namespace vantor
