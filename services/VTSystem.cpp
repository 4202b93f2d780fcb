#include "services/VT.h"

#include "runtime/Error.h"

namespace vantor::services {

// PLACEHOLDER: replaced by the real members; each throws until then.
String VT::VT_LerOCR(const String&, int32_t) const { throw Error(errNotImplemented, u"VT", u"VT_LerOCR"); }
bool VT::VT_ArquivoParaHTML(const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ArquivoParaHTML"); }
void VT::VT_TocarWAV(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_TocarWAV"); }
void VT::VT_FormularioSempreVisivel(int32_t, bool) const { throw Error(errNotImplemented, u"VT", u"VT_FormularioSempreVisivel"); }
void VT::VT_FinalizarProcesso(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_FinalizarProcesso"); }
String VT::VT_SelecionarPasta(const ObjectPtr&, const String&, const String&, bool) const { throw Error(errNotImplemented, u"VT", u"VT_SelecionarPasta"); }
bool VT::VT_AplicativoSendoExecutado(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_AplicativoSendoExecutado"); }
void VT::VT_ArquivoAtributo(const String&, bool, bool, bool, bool) const { throw Error(errNotImplemented, u"VT", u"VT_ArquivoAtributo"); }
String VT::VT_ArquivoExtensao(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ArquivoExtensao"); }
String VT::VT_ArquivoCaminho(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ArquivoCaminho"); }
bool VT::VT_Windos64Bits() const { throw Error(errNotImplemented, u"VT", u"VT_Windos64Bits"); }
void VT::VT_AbrirUrl(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_AbrirUrl"); }
void VT::VT_AbrirArquivo(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_AbrirArquivo"); }
void VT::VT_AbrirPasta(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_AbrirPasta"); }
void VT::VT_ApagarArquivo(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ApagarArquivo"); }
bool VT::VT_ArquivoOuDiretorioExiste(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ArquivoOuDiretorioExiste"); }
bool VT::VT_ArquivoExiste(const String&, bool) const { throw Error(errNotImplemented, u"VT", u"VT_ArquivoExiste"); }
bool VT::VT_DiretorioExiste(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_DiretorioExiste"); }
bool VT::VT_DriveExiste(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_DriveExiste"); }
void VT::VT_IniciarCommonControls() const { throw Error(errNotImplemented, u"VT", u"VT_IniciarCommonControls"); }
bool VT::VT_CriarDiretorio(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_CriarDiretorio"); }
double VT::VT_DiscoEspacoLivre(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_DiscoEspacoLivre"); }
String VT::VT_DiretorioWindows() const { throw Error(errNotImplemented, u"VT", u"VT_DiretorioWindows"); }
String VT::VT_DiretorioTemporario() const { throw Error(errNotImplemented, u"VT", u"VT_DiretorioTemporario"); }
String VT::VT_DiretorioUsuario() const { throw Error(errNotImplemented, u"VT", u"VT_DiretorioUsuario"); }
bool VT::VT_CompararArquivos(const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_CompararArquivos"); }
String VT::VT_INILer(const String&, const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_INILer"); }
void VT::VT_INIGravar(const String&, const String&, const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_INIGravar"); }
Variant VT::VT_SerialHD() const { throw Error(errNotImplemented, u"VT", u"VT_SerialHD"); }
bool VT::VT_InternetOnline() const { throw Error(errNotImplemented, u"VT", u"VT_InternetOnline"); }
bool VT::VT_WindowsAdministrador() const { throw Error(errNotImplemented, u"VT", u"VT_WindowsAdministrador"); }
String VT::VT_TraduzirDescricaoErro(int32_t) const { throw Error(errNotImplemented, u"VT", u"VT_TraduzirDescricaoErro"); }
void VT::VT_FormularioPiscar(int32_t, bool) const { throw Error(errNotImplemented, u"VT", u"VT_FormularioPiscar"); }
void VT::VT_FormularioNaBarraTarefas(int32_t) const { throw Error(errNotImplemented, u"VT", u"VT_FormularioNaBarraTarefas"); }

}  // namespace vantor::services
