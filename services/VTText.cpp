#include "services/VT.h"

#include "runtime/Error.h"

namespace vantor::services {

// PLACEHOLDER: replaced by the real members; each throws until then.
String VT::VT_ValorExtenso(double, const String&, const String&, const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ValorExtenso"); }
String VT::VT_ZeroEsquerda(const String&, int32_t) const { throw Error(errNotImplemented, u"VT", u"VT_ZeroEsquerda"); }
bool VT::VT_ValidarURL(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ValidarURL"); }
String VT::VT_RemoverAcentos(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_RemoverAcentos"); }
bool VT::VT_ValidarCPFCNPJ(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ValidarCPFCNPJ"); }
String VT::VT_RetornarNumeros(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_RetornarNumeros"); }
bool VT::VT_ValidarNomeArquivo(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ValidarNomeArquivo"); }
String VT::VT_PegaConteudoTexto(const String&, const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_PegaConteudoTexto"); }
int32_t VT::VT_NumeroAleatorio() const { throw Error(errNotImplemented, u"VT", u"VT_NumeroAleatorio"); }
String VT::VT_GerarNumeroAleatorio(const String&, int32_t, int32_t) const { throw Error(errNotImplemented, u"VT", u"VT_GerarNumeroAleatorio"); }
String VT::VT_LongToHex(int32_t) const { throw Error(errNotImplemented, u"VT", u"VT_LongToHex"); }
String VT::VT_FormatarBytes(double) const { throw Error(errNotImplemented, u"VT", u"VT_FormatarBytes"); }

}  // namespace vantor::services
