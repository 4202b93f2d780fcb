#include "services/VT.h"

#include "runtime/Error.h"

namespace vantor::services {

// PLACEHOLDER: replaced by the real members; each throws until then.
int32_t VT::VT_CalcularIdade(Date) const { throw Error(errNotImplemented, u"VT", u"VT_CalcularIdade"); }
bool VT::VT_ValidarData(const String&, int32_t) const { throw Error(errNotImplemented, u"VT", u"VT_ValidarData"); }
bool VT::VT_ValidarHora(const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ValidarHora"); }
String VT::VT_FormatarData(const String&, const Variant&) const { throw Error(errNotImplemented, u"VT", u"VT_FormatarData"); }
String VT::VT_FormatarDataEx(const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_FormatarDataEx"); }
String VT::VT_HoraAtual() const { throw Error(errNotImplemented, u"VT", u"VT_HoraAtual"); }
String VT::VT_DataAtual() const { throw Error(errNotImplemented, u"VT", u"VT_DataAtual"); }
String VT::VT_DataHoraAtual() const { throw Error(errNotImplemented, u"VT", u"VT_DataHoraAtual"); }
String VT::VT_NomeDia(Date, bool) const { throw Error(errNotImplemented, u"VT", u"VT_NomeDia"); }
bool VT::VT_AnoBissexto(int32_t) const { throw Error(errNotImplemented, u"VT", u"VT_AnoBissexto"); }
int32_t VT::VT_QuantidadeDiasNoMes(int32_t, const Variant&) const { throw Error(errNotImplemented, u"VT", u"VT_QuantidadeDiasNoMes"); }

}  // namespace vantor::services
