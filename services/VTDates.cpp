// VT's dates and times. The rules themselves live in DateRules, which the
// date controls call directly; here they meet the host's argument types.
#include "runtime/Conversion.h"
#include "runtime/DateTime.h"
#include "runtime/Format.h"
#include "services/DateRules.h"
#include "services/VT.h"

namespace vantor::services {

int32_t VT::VT_CalcularIdade(Date Nascimento) const {
  return DateRules::AgeOn(Nascimento, Today());
}

bool VT::VT_ValidarData(const String& Texto, int32_t Formato) const {
  return DateRules::IsValidDate(Texto, Formato);
}

bool VT::VT_ValidarHora(const String& Texto, const String& Delimitador) const {
  return DateRules::IsValidTime(Texto, Delimitador);
}

// A number names one of the date formats, so a host may pass either the
// enumeration's value or its text.
String VT::VT_FormatarData(const String& Texto, const Variant& Formato) const {
  if (Texto.empty()) return {};
  if (Formato.IsMissing() || Formato.IsNull()) return {};
  if (IsNumeric(Formato)) {
    return DateRules::FormatDate(Texto, DateRules::FormatName(RoundToInt(CDbl(Formato))));
  }
  return DateRules::FormatDate(Texto, Formato.ToString());
}

String VT::VT_FormatarDataEx(const String& Texto, const String& Formato) const {
  return DateRules::FormatDate(Texto, Formato);
}

String VT::VT_HoraAtual() const {
  return Format(Variant(Now()), u"hh:nn:ss");
}

String VT::VT_DataAtual() const {
  return Format(Variant(Now()), u"dd/mm/yyyy");
}

String VT::VT_DataHoraAtual() const {
  return Format(Variant(Now()), u"dd/mm/yyyy hh:nn:ss");
}

String VT::VT_NomeDia(Date DataInformada, bool Abreviado) const {
  return DateRules::DayName(DataInformada, Abreviado);
}

bool VT::VT_AnoBissexto(int32_t Ano) const {
  return DateRules::IsLeapYear(Ano);
}

int32_t VT::VT_QuantidadeDiasNoMes(int32_t Mes, const Variant& Ano) const {
  if (Ano.IsMissing() || Ano.IsEmpty()) return DateRules::DaysInMonth(Mes, Year(Today()));
  if (!Ano.CanChangeType(vbLong)) return 0;
  return DateRules::DaysInMonth(Mes, Ano.ToLong());
}

}  // namespace vantor::services
