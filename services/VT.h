#pragma once
// The suite's toolbox: one stateless class whose members are named in
// Portuguese, as the host's code calls them. Its members live in several
// files by theme (VTText.cpp, VTDates.cpp, VTSystem.cpp, VTDigests.cpp,
// VTPictures.cpp);
// VT.cpp ties them to the type library.
//
// Every member follows the service rule: it never raises; bad input gives
// the empty or false result.
#include <cstdint>

#include "runtime/Date.h"
#include "runtime/String.h"
#include "runtime/Variant.h"
#include "server/Dispatch.h"
#include "server/StdPicture.h"

namespace vantor::services {

class VT : public server::Dispatch {
 public:
  VT();
  static void Register();

  // ---- words, numbers and text (VTText.cpp)
  String VT_ValorExtenso(double Valor, const String& MoedaSingular, const String& MoedaPlural,
                         const String& DecimalSingular, const String& DecimalPlural) const;
  String VT_ZeroEsquerda(const String& Texto, int32_t QuantidadeZeros) const;
  bool VT_ValidarURL(const String& Url) const;
  String VT_RemoverAcentos(const String& Texto) const;
  bool VT_ValidarCPFCNPJ(const String& Texto) const;
  String VT_RetornarNumeros(const String& Texto) const;
  bool VT_ValidarNomeArquivo(const String& Texto) const;
  String VT_PegaConteudoTexto(const String& Texto, const String& TextoIN, const String& TextoOUT) const;
  int32_t VT_NumeroAleatorio() const;
  String VT_GerarNumeroAleatorio(const String& Delimitador, int32_t Casas, int32_t FormatoCasas) const;
  String VT_LongToHex(int32_t Valor) const;
  String VT_FormatarBytes(double Valor) const;

  // ---- dates and times (VTDates.cpp)
  int32_t VT_CalcularIdade(Date Nascimento) const;
  bool VT_ValidarData(const String& Texto, int32_t Formato) const;
  bool VT_ValidarHora(const String& Texto, const String& Delimitador) const;
  String VT_FormatarData(const String& Texto, const Variant& Formato) const;
  String VT_FormatarDataEx(const String& Texto, const String& Formato) const;
  String VT_HoraAtual() const;
  String VT_DataAtual() const;
  String VT_DataHoraAtual() const;
  String VT_NomeDia(Date DataInformada, bool Abreviado) const;
  bool VT_AnoBissexto(int32_t Ano) const;
  int32_t VT_QuantidadeDiasNoMes(int32_t Mes, const Variant& Ano) const;

  // ---- the operating system: files, folders, processes, shell (VTSystem.cpp)
  String VT_LerOCR(const String& Arquivo, int32_t Linguagem) const;
  bool VT_ArquivoParaHTML(const String& Arquivo, const String& ArquivoHTML) const;
  void VT_TocarWAV(const String& Arquivo) const;
  void VT_FormularioSempreVisivel(int32_t hwnd, bool SempreVisivel) const;
  void VT_FinalizarProcesso(const String& NomeProcesso) const;
  String VT_SelecionarPasta(const ObjectPtr& Formulario, const String& Titulo,
                            const String& DiretorioInicial, bool CriarPasta) const;
  bool VT_AplicativoSendoExecutado(const String& NomeProcesso) const;
  void VT_ArquivoAtributo(const String& Arquivo, bool TipoArquivo, bool TipoOculto,
                          bool TipoSomenteLeitura, bool TipoSistema) const;
  String VT_ArquivoExtensao(const String& Arquivo) const;
  String VT_ArquivoCaminho(const String& Arquivo) const;
  bool VT_Windos64Bits() const;
  void VT_AbrirUrl(const String& Url) const;
  void VT_AbrirArquivo(const String& Arquivo) const;
  void VT_AbrirPasta(const String& Caminho) const;
  void VT_ApagarArquivo(const String& Arquivo) const;
  bool VT_ArquivoOuDiretorioExiste(const String& Caminho) const;
  bool VT_ArquivoExiste(const String& Arquivo, bool SomenteDiretorio) const;
  bool VT_DiretorioExiste(const String& Caminho) const;
  bool VT_DriveExiste(const String& Drive) const;
  void VT_IniciarCommonControls() const;
  bool VT_CriarDiretorio(const String& Caminho) const;
  double VT_DiscoEspacoLivre(const String& strDrive) const;
  String VT_DiretorioWindows() const;
  String VT_DiretorioTemporario() const;
  String VT_DiretorioUsuario() const;
  bool VT_CompararArquivos(const String& Arquivo1, const String& Arquivo2) const;
  String VT_INILer(const String& Arquivo, const String& NomeAplicacao, const String& Chave) const;
  void VT_INIGravar(const String& Arquivo, const String& NomeAplicacao, const String& Chave,
                    const String& Valor) const;
  Variant VT_SerialHD() const;
  bool VT_InternetOnline() const;
  bool VT_WindowsAdministrador() const;
  String VT_TraduzirDescricaoErro(int32_t NumeroErro) const;
  void VT_FormularioPiscar(int32_t hwnd, bool Piscar) const;
  void VT_FormularioNaBarraTarefas(int32_t hwnd) const;

  // ---- pictures (VTPictures.cpp)
  // The file's picture over CorDeFundo, at Largura x Altura (non-positive:
  // the picture's own); ManterRelacao fits it inside, centred, and derives a
  // side left unsized. Nothing for a file that does not load.
  std::shared_ptr<server::StdPicture> VT_CarregarImagem(const String& Arquivo, int32_t Largura,
                                                        int32_t Altura, OLE_COLOR CorDeFundo,
                                                        bool ManterRelacao) const;

  // ---- cipher and digests (VTDigests.cpp)
  String VT_Criptografar(const String& Texto, const String& Chave) const;
  String VT_Decriptografar(const String& Texto, const String& Chave) const;
  String VT_CRC32(const String& Texto) const;
  String VT_MD5(const String& Texto) const;
  String VT_ArquivoCRC32(const String& Arquivo) const;

 protected:
  const server::Bindings* Bound() const override;
};

}  // namespace vantor::services
