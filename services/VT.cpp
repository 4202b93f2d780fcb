#include "services/VT.h"

#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::services {

VT::VT() : Dispatch(*server::TypeLibrary::Get().FindClass("VT")) {}

void VT::Register() {
  server::Registry::Instance().Register("VT", [] { return std::make_shared<VT>(); });
}

// The message boxes come with the themed dialog; until then the dispatcher
// answers "not implemented".
const server::Bindings* VT::Bound() const {
  static const server::Bindings bindings =
      server::Binder<VT>(Info())
          .Method("VT_ValorExtenso", &VT::VT_ValorExtenso)
          .Method("VT_ZeroEsquerda", &VT::VT_ZeroEsquerda)
          .Method("VT_ValidarURL", &VT::VT_ValidarURL)
          .Method("VT_RemoverAcentos", &VT::VT_RemoverAcentos)
          .Method("VT_ValidarCPFCNPJ", &VT::VT_ValidarCPFCNPJ)
          .Method("VT_RetornarNumeros", &VT::VT_RetornarNumeros)
          .Method("VT_ValidarNomeArquivo", &VT::VT_ValidarNomeArquivo)
          .Method("VT_PegaConteudoTexto", &VT::VT_PegaConteudoTexto)
          .Method("VT_NumeroAleatorio", &VT::VT_NumeroAleatorio)
          .Method("VT_GerarNumeroAleatorio", &VT::VT_GerarNumeroAleatorio)
          .Method("VT_LongToHex", &VT::VT_LongToHex)
          .Method("VT_FormatarBytes", &VT::VT_FormatarBytes)
          .Method("VT_CalcularIdade", &VT::VT_CalcularIdade)
          .Method("VT_ValidarData", &VT::VT_ValidarData)
          .Method("VT_ValidarHora", &VT::VT_ValidarHora)
          .Method("VT_FormatarData", &VT::VT_FormatarData)
          .Method("VT_FormatarDataEx", &VT::VT_FormatarDataEx)
          .Method("VT_HoraAtual", &VT::VT_HoraAtual)
          .Method("VT_DataAtual", &VT::VT_DataAtual)
          .Method("VT_DataHoraAtual", &VT::VT_DataHoraAtual)
          .Method("VT_NomeDia", &VT::VT_NomeDia)
          .Method("VT_AnoBissexto", &VT::VT_AnoBissexto)
          .Method("VT_QuantidadeDiasNoMes", &VT::VT_QuantidadeDiasNoMes)
          .Method("VT_LerOCR", &VT::VT_LerOCR)
          .Method("VT_ArquivoParaHTML", &VT::VT_ArquivoParaHTML)
          .Method("VT_TocarWAV", &VT::VT_TocarWAV)
          .Method("VT_FormularioSempreVisivel", &VT::VT_FormularioSempreVisivel)
          .Method("VT_FinalizarProcesso", &VT::VT_FinalizarProcesso)
          .Method("VT_SelecionarPasta", &VT::VT_SelecionarPasta)
          .Method("VT_AplicativoSendoExecutado", &VT::VT_AplicativoSendoExecutado)
          .Method("VT_ArquivoAtributo", &VT::VT_ArquivoAtributo)
          .Method("VT_ArquivoExtensao", &VT::VT_ArquivoExtensao)
          .Method("VT_ArquivoCaminho", &VT::VT_ArquivoCaminho)
          .Method("VT_Windos64Bits", &VT::VT_Windos64Bits)
          .Method("VT_AbrirUrl", &VT::VT_AbrirUrl)
          .Method("VT_AbrirArquivo", &VT::VT_AbrirArquivo)
          .Method("VT_AbrirPasta", &VT::VT_AbrirPasta)
          .Method("VT_ApagarArquivo", &VT::VT_ApagarArquivo)
          .Method("VT_ArquivoOuDiretorioExiste", &VT::VT_ArquivoOuDiretorioExiste)
          .Method("VT_ArquivoExiste", &VT::VT_ArquivoExiste)
          .Method("VT_DiretorioExiste", &VT::VT_DiretorioExiste)
          .Method("VT_DriveExiste", &VT::VT_DriveExiste)
          .Method("VT_IniciarCommonControls", &VT::VT_IniciarCommonControls)
          .Method("VT_CriarDiretorio", &VT::VT_CriarDiretorio)
          .Method("VT_DiscoEspacoLivre", &VT::VT_DiscoEspacoLivre)
          .Method("VT_DiretorioWindows", &VT::VT_DiretorioWindows)
          .Method("VT_DiretorioTemporario", &VT::VT_DiretorioTemporario)
          .Method("VT_DiretorioUsuario", &VT::VT_DiretorioUsuario)
          .Method("VT_CompararArquivos", &VT::VT_CompararArquivos)
          .Method("VT_INILer", &VT::VT_INILer)
          .Method("VT_INIGravar", &VT::VT_INIGravar)
          .Method("VT_SerialHD", &VT::VT_SerialHD)
          .Method("VT_InternetOnline", &VT::VT_InternetOnline)
          .Method("VT_WindowsAdministrador", &VT::VT_WindowsAdministrador)
          .Method("VT_TraduzirDescricaoErro", &VT::VT_TraduzirDescricaoErro)
          .Method("VT_FormularioPiscar", &VT::VT_FormularioPiscar)
          .Method("VT_FormularioNaBarraTarefas", &VT::VT_FormularioNaBarraTarefas)
          .Method("VT_Criptografar", &VT::VT_Criptografar)
          .Method("VT_Decriptografar", &VT::VT_Decriptografar)
          .Method("VT_CRC32", &VT::VT_CRC32)
          .Method("VT_MD5", &VT::VT_MD5)
          .Method("VT_ArquivoCRC32", &VT::VT_ArquivoCRC32)
          .Method("VT_CarregarImagem", &VT::VT_CarregarImagem)
          .Done();
  return &bindings;
}

}  // namespace vantor::services
