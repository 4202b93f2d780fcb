#include "runtime/Locale.h"

#include <cstdlib>
#include <optional>

namespace vantor {

namespace {

std::optional<Locale::Id>& Chosen() {
  static std::optional<Locale::Id> chosen;
  return chosen;
}

Locale::Id FromEnvironmentValue() {
  const char* value = std::getenv("VANTOR_LOCALE");
  if (value == nullptr) return Locale::Id::ptBR;
  std::string v(value);
  for (auto& c : v) {
    if (c == '_') c = '-';
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  if (v == "en-us" || v == "en") return Locale::Id::enUS;
  return Locale::Id::ptBR;
}

}  // namespace

Locale Locale::Make(Id id) {
  Locale l;
  l.id_ = id;
  if (id == Id::ptBR) {
    l.name_ = u"pt-BR";
    l.decimal_ = u',';
    l.thousands_ = u'.';
    l.order_ = DateOrder::DMY;
    l.shortDate_ = u"dd/mm/yyyy";
    l.longDate_ = u"dddd, d \"de\" mmmm \"de\" yyyy";
    l.mediumDate_ = u"dd-mmm-yy";
    l.longTime_ = u"hh:mm:ss";
    l.currency_ = u"R$";
    l.am_ = u"AM";
    l.pm_ = u"PM";
    l.true_ = u"Verdadeiro";
    l.false_ = u"Falso";
    l.months_ = {u"janeiro", u"fevereiro", u"março",    u"abril",   u"maio",     u"junho",
                 u"julho",   u"agosto",    u"setembro", u"outubro", u"novembro", u"dezembro"};
    l.monthsShort_ = {u"jan", u"fev", u"mar", u"abr", u"mai", u"jun",
                      u"jul", u"ago", u"set", u"out", u"nov", u"dez"};
    l.days_ = {u"domingo",      u"segunda-feira", u"terça-feira", u"quarta-feira",
               u"quinta-feira", u"sexta-feira",   u"sábado"};
    l.daysShort_ = {u"dom", u"seg", u"ter", u"qua", u"qui", u"sex", u"sáb"};
  } else {
    l.name_ = u"en-US";
    l.decimal_ = u'.';
    l.thousands_ = u',';
    l.order_ = DateOrder::MDY;
    l.shortDate_ = u"m/d/yyyy";
    l.longDate_ = u"dddd, mmmm d, yyyy";
    l.mediumDate_ = u"dd-mmm-yy";
    l.longTime_ = u"h:mm:ss AMPM";
    l.currency_ = u"$";
    l.am_ = u"AM";
    l.pm_ = u"PM";
    l.true_ = u"True";
    l.false_ = u"False";
    l.months_ = {u"January", u"February", u"March",     u"April",   u"May",      u"June",
                 u"July",    u"August",   u"September", u"October", u"November", u"December"};
    l.monthsShort_ = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                      u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
    l.days_ = {u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
               u"Thursday", u"Friday", u"Saturday"};
    l.daysShort_ = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};
  }
  return l;
}

const Locale& Locale::Get(Id id) {
  static const Locale ptBR = Make(Id::ptBR);
  static const Locale enUS = Make(Id::enUS);
  return id == Id::enUS ? enUS : ptBR;
}

const Locale& Locale::Current() {
  auto& chosen = Chosen();
  if (!chosen) chosen = FromEnvironmentValue();
  return Get(*chosen);
}

void Locale::Set(Id id) { Chosen() = id; }

void Locale::FromEnvironment() { Chosen() = FromEnvironmentValue(); }

StringView Locale::MonthName(int month, bool abbreviated) const {
  if (month < 1 || month > 12) return {};
  return abbreviated ? monthsShort_[month - 1] : months_[month - 1];
}

StringView Locale::DayName(int weekday, bool abbreviated) const {
  if (weekday < 1 || weekday > 7) return {};
  return abbreviated ? daysShort_[weekday - 1] : days_[weekday - 1];
}

}  // namespace vantor
