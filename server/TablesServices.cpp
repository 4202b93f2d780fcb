#include <vector>

#include "server/TableBuilder.h"

namespace vantor::server {

namespace {

// The themed message box takes the same long argument list through both of
// its entry points; only the form behind them differs.
std::vector<ParamInfo> MessageBoxParams() {
  return {P("Prompt", td::Str),
          Opt("Buttons", td::Long, 0),
          Opt("Title", td::Var),
          Opt("Theme", td::Enum("ENUM_THEME"), 2),
          Opt("BtnForeColor", td::Color, 0),
          Opt("BtnBorderColor", td::Color, 11316396),
          Opt("BtnBorderColorDown", td::Color, 15048022),
          Opt("BtnBorderColorOver", td::Color, 15381630),
          Opt("BtnGradientColors", td::Enum("ENUM_GRADIENT_COLORS"), 0),
          Opt("BtnGradientColor1", td::Color, 16514043),
          Opt("BtnGradientColor2", td::Color, 15527148),
          Opt("BtnGradientColor3", td::Color, 15527148),
          Opt("BtnGradientColor4", td::Color, 15527148),
          Opt("MsgGradientColor1", td::Color, 16382457),
          Opt("MsgGradientColor2", td::Color, 16382457),
          Opt("FontStyle", td::Font),
          Opt("Icon", td::Picture),
          Opt("BackColor", td::Color, 16382457),
          Opt("TranslucentLevel", td::Byte, 0),
          Opt("FadeIn", td::Bool, false),
          Opt("FadeOut", td::Bool, false),
          Opt("UseGradient", td::Bool, false),
          Opt("EscToClose", td::Bool, true),
          Opt("WaitTimes", td::Long, 0),
          Opt("PlaySound", td::Bool, true)};
}

void AddUtilities(TableBuilder& lib) {
  lib.Class("VT", ClassKind::Service)
      // Message box: the number of the button pressed, 0 when the box timed out.
      .Function("USMsgBox", td::Long, MessageBoxParams())
      .Function("USMsgBoxEx", td::Long, MessageBoxParams())
      // Pictures, documents, dates and words.
      .Function("VT_CarregarImagem", td::Picture,
                {P("Arquivo", td::Str), Opt("Largura", td::Long, -1), Opt("Altura", td::Long, -1),
                 Opt("CorDeFundo", td::Color, 16777215), Opt("ManterRelacao", td::Bool, false)})
      // The language list belongs to the OCR server; the library publishes no
      // members of its own for it, so the code travels as a plain Long.
      .Function("VT_LerOCR", td::Str, {P("Arquivo", td::Str), Opt("Linguagem", td::Long, 2048)})
      .Function("VT_ArquivoParaHTML", td::Bool, {P("Arquivo", td::Str), P("ArquivoHTML", td::Str)})
      .Function("VT_CalcularIdade", td::Long, {P("Nascimento", td::Date)})
      // The amount is split into whole and fraction in double precision.
      .Function("VT_ValorExtenso", td::Str,
                {P("Valor", td::Double), P("MoedaSingular", td::Str), P("MoedaPlural", td::Str),
                 P("DecimalSingular", td::Str), P("DecimalPlural", td::Str)})
      .Function("VT_ZeroEsquerda", td::Str, {P("Texto", td::Str), P("QuantidadeZeros", td::Long)})
      .Method("VT_TocarWAV", {P("Arquivo", td::Str)})
      .Function("VT_ValidarURL", td::Bool, {P("Url", td::Str)})
      // An omitted key is the empty key.
      .Function("VT_Criptografar", td::Str, {P("Texto", td::Str), Opt("Chave", td::Str, u"")})
      .Function("VT_Decriptografar", td::Str, {P("Texto", td::Str), Opt("Chave", td::Str, u"")})
      .Function("VT_ValidarData", td::Bool,
                {P("Texto", td::Str), P("Formato", td::Enum("ENUM_DATE_FORMAT"))})
      .Function("VT_ValidarHora", td::Bool,
                {P("Texto", td::Str), Opt("Delimitador", td::Str, u":")})
      // Takes a format text or a date-format number alike.
      .Function("VT_FormatarData", td::Str, {P("Texto", td::Str), P("Formato", td::Var)})
      .Function("VT_FormatarDataEx", td::Str,
                {P("Texto", td::Str), Opt("Formato", td::Str, u"DD/MM/YYYY")})
      .Function("VT_HoraAtual", td::Str)
      .Function("VT_DataAtual", td::Str)
      .Function("VT_DataHoraAtual", td::Str)
      // Windows, processes, files and the shell.
      .Method("VT_FormularioSempreVisivel", {P("hwnd", td::Long), P("SempreVisivel", td::Bool)})
      .Method("VT_FinalizarProcesso", {P("NomeProcesso", td::Str)})
      .Function("VT_SelecionarPasta", td::Str,
                {P("Formulario", td::Obj), P("Titulo", td::Str), P("DiretorioInicial", td::Str),
                 Opt("CriarPasta", td::Bool, true)})
      .Function("VT_AplicativoSendoExecutado", td::Bool, {P("NomeProcesso", td::Str)})
      .Method("VT_ArquivoAtributo",
              {P("Arquivo", td::Str), P("TipoArquivo", td::Bool), P("TipoOculto", td::Bool),
               P("TipoSomenteLeitura", td::Bool), P("TipoSistema", td::Bool)})
      .Function("VT_ArquivoExtensao", td::Str, {P("Arquivo", td::Str)})
      .Function("VT_ArquivoCaminho", td::Str, {P("Arquivo", td::Str)})
      .Function("VT_Windos64Bits", td::Bool)
      .Method("VT_AbrirUrl", {P("Url", td::Str)})
      .Method("VT_AbrirArquivo", {P("Arquivo", td::Str)})
      .Method("VT_AbrirPasta", {P("Caminho", td::Str)})
      .Method("VT_ApagarArquivo", {P("Arquivo", td::Str)})
      .Function("VT_ArquivoOuDiretorioExiste", td::Bool, {P("Caminho", td::Str)})
      .Function("VT_ArquivoExiste", td::Bool,
                {P("Arquivo", td::Str), Opt("SomenteDiretorio", td::Bool, false)})
      .Function("VT_DiretorioExiste", td::Bool, {P("Caminho", td::Str)})
      .Function("VT_DriveExiste", td::Bool, {P("Drive", td::Str)})
      .Function("VT_RemoverAcentos", td::Str, {P("Texto", td::Str)})
      .Method("VT_IniciarCommonControls")
      .Function("VT_CriarDiretorio", td::Bool, {P("Caminho", td::Str)})
      // Brazilian documents and text helpers.
      .Function("VT_ValidarCPFCNPJ", td::Bool, {P("Texto", td::Str)})
      .Function("VT_RetornarNumeros", td::Str, {P("Texto", td::Str)})
      .Function("VT_ValidarNomeArquivo", td::Bool, {P("Texto", td::Str)})
      .Function("VT_PegaConteudoTexto", td::Str,
                {P("Texto", td::Str), P("TextoIN", td::Str), P("TextoOUT", td::Str)})
      // Free space passes what a Long can hold.
      .Function("VT_DiscoEspacoLivre", td::Double, {P("strDrive", td::Str)})
      .Function("VT_NumeroAleatorio", td::Long)
      .Function("VT_DiretorioWindows", td::Str)
      .Function("VT_DiretorioTemporario", td::Str)
      .Function("VT_DiretorioUsuario", td::Str)
      // Digests, as hexadecimal text.
      .Function("VT_CRC32", td::Str, {P("Texto", td::Str)})
      .Function("VT_MD5", td::Str, {P("Texto", td::Str)})
      .Function("VT_ArquivoCRC32", td::Str, {P("Arquivo", td::Str)})
      .Function("VT_NomeDia", td::Str, {P("DataInformada", td::Date), P("Abreviado", td::Bool)})
      .Function("VT_CompararArquivos", td::Bool, {P("Arquivo1", td::Str), P("Arquivo2", td::Str)})
      .Function("VT_INILer", td::Str,
                {P("Arquivo", td::Str), P("NomeAplicacao", td::Str), P("Chave", td::Str)})
      .Method("VT_INIGravar", {P("Arquivo", td::Str), P("NomeAplicacao", td::Str),
                               P("Chave", td::Str), P("Valor", td::Str)})
      // Whether the serial is a number or a text depends on the disk asked.
      .Function("VT_SerialHD", td::Var)
      .Function("VT_AnoBissexto", td::Bool, {P("Ano", td::Long)})
      .Function("VT_InternetOnline", td::Bool)
      .Function("VT_WindowsAdministrador", td::Bool)
      // Without a year the present one counts, so the year must be able to be missing.
      .Function("VT_QuantidadeDiasNoMes", td::Long, {P("Mes", td::Long), Opt("Ano", td::Var)})
      .Function("VT_GerarNumeroAleatorio", td::Str,
                {Opt("Delimitador", td::Str, u"."), Opt("Casas", td::Long, 4),
                 Opt("FormatoCasas", td::Long, 99)})
      .Function("VT_TraduzirDescricaoErro", td::Str, {P("NumeroErro", td::Long)})
      .Method("VT_FormularioPiscar", {P("hwnd", td::Long), P("Piscar", td::Bool)})
      .Method("VT_FormularioNaBarraTarefas", {P("hwnd", td::Long)})
      .Function("VT_LongToHex", td::Str, {P("Valor", td::Long)})
      // Sizes run up to yottabytes.
      .Function("VT_FormatarBytes", td::Str, {P("Valor", td::Double)});
}

void AddMySql(TableBuilder& lib) {
  lib.Enum("MYSQL_TABLE_ENGINE",
           {{"INNODB", 0}, {"MYISAM", 1}, {"HEAP", 2}, {"BDB", 3}, {"ISAM", 4}});
  lib.Enum("MYSQL_FLUSH", {{"FLUSH_ALL", 0},
                           {"FLUSH_HOSTS", 1},
                           {"FLUSH_LOGS", 2},
                           {"FLUSH_PRIVILEGES", 3},
                           {"FLUSH_STATUS", 4},
                           {"FLUSH_TABLES", 5},
                           {"FLUSH_TABLES_WITH_READ_LOCK", 6},
                           {"FLUSH_QUERY_CACHE", 7}});
  lib.Enum("MYSQL_TYPE_REPAIR", {{"QUICK", 0}, {"EXTENDED", 1}, {"USE_FRM", 2}});

  // CurrentDb is the host's open ADO connection; Progress is the host's
  // progress bar, of which only Max and Value are touched.
  lib.Class("VT_MYSQL", ClassKind::Service)
      .Function("Backup", td::Bool,
                {P("LocalDestino", td::Str), P("CurrentDb", td::Obj), Opt("Progress", td::Obj),
                 Opt("DropDatabase", td::Bool, false), Opt("DropTableIfExists", td::Bool, true),
                 Opt("OnlyTableStructure", td::Bool, false), Opt("RecordsInBlock", td::Long, 250),
                 Opt("ApplicationTitle", td::Str, u"Vantor"),
                 Opt("AdditionalInformation", td::Str, u"Vantor - Interface gráfica de objetos")})
      .Function("Restore", td::Bool,
                {P("LocalFile", td::Str), P("CurrentDb", td::Obj), P("Progress", td::Obj),
                 Opt("IgnoreError", td::Bool, false)})
      // The number of lines that failed.
      .Function("ExecuteSqlByLine", td::Long,
                {P("LocalFile", td::Str), P("CurrentDb", td::Obj), Opt("Progress", td::Obj)})
      .Function("AlterTablesEngine", td::Bool,
                {P("CurrentDb", td::Obj), P("TableEngine", td::Enum("MYSQL_TABLE_ENGINE")),
                 Opt("Progress", td::Obj)})
      .Function("OptimizeTables", td::Bool, {P("CurrentDb", td::Obj), Opt("Progress", td::Obj)})
      .Function("RepairTables", td::Bool,
                {P("CurrentDb", td::Obj), Opt("Progress", td::Obj),
                 Opt("CurrentType", td::Enum("MYSQL_TYPE_REPAIR"), 0)})
      .Method("Flush", {P("CurrentDb", td::Obj), P("FlushType", td::Enum("MYSQL_FLUSH"))})
      .ReadOnly("ErrDescription", td::Str)
      .Event("Status", {P("Mensagem", td::Str)})
      .Event("ComandoSqlOnRestore", {P("ComandoSql", td::Str)})
      .Event("ErrorsOnExecuteSqlByLines", {P("Total", td::Long), P("Erros", td::Long)});
}

void AddRegistry(TableBuilder& lib) {
  lib.Enum("RegistryType", {{"REG_NONE", 0},
                            {"REG_SZ", 1},
                            {"REG_EXPAND_SZ", 2},
                            {"REG_BINARY", 3},
                            {"REG_DWORD", 4},
                            {"REG_DWORD_LITTLE_ENDIAN", 4},
                            {"REG_DWORD_BIG_ENDIAN", 5},
                            {"REG_LINK", 6},
                            {"REG_MULTI_SZ", 7},
                            {"REG_RESOURCE_LIST", 8},
                            {"REG_FULL_RESOURCE_DESCRIPTOR", 9},
                            {"REG_RESOURCE_REQUIREMENTS_LIST", 10}});

  // A string value that is absent reads as this one NUL unless the caller
  // names another fallback.
  static const String kNul(1, u'\0');

  // Status codes are the registry functions' own, hence Long. The lists that
  // the enumerators hand back are of the caller's choosing, hence Variant.
  lib.Class("VT_REGISTRY", ClassKind::Service)
      .Property("CreateKeyIfDoesntExists", td::Bool)
      .Function("CreateKey", td::Long, {P("Caminho", td::Str)})
      .Function("KillKey", td::Long, {P("Caminho", td::Str)})
      .Function("KeyExists", td::Bool, {P("Caminho", td::Str)})
      .Function("HaveSubkey", td::Bool, {P("Caminho", td::Str)})
      .Function("EnumKeys", td::Long, {P("Caminho", td::Str), Ref("Chaves", td::Var)})
      .Function("WriteString", td::Long,
                {P("Caminho", td::Str), P("Nome", td::Str), P("Valor", td::Str)})
      .Function("WriteDWORD", td::Long,
                {P("Caminho", td::Str), P("Nome", td::Str), P("Valor", td::Long)})
      // Binary values travel as text of hexadecimal pairs, as ReadBinary gives them.
      .Function("WriteBinary", td::Long,
                {P("Caminho", td::Str), P("Nome", td::Str), P("Valor", td::Str)})
      .Function("ReadString", td::Str,
                {P("Caminho", td::Str), P("Nome", td::Str), Opt("Padrao", td::Str, kNul)})
      .Function("ReadDWORD", td::Long,
                {P("Caminho", td::Str), P("Nome", td::Str), Opt("Padrao", td::Long, -1)})
      .Function("ReadBinary", td::Str,
                {P("Caminho", td::Str), P("Nome", td::Str), Opt("Padrao", td::Str, u"")})
      .Function("KillValue", td::Long, {P("Caminho", td::Str), P("Nome", td::Str)})
      .Function("ValueExists", td::Bool, {P("Caminho", td::Str), P("Nome", td::Str)})
      // -1 asks for values of every type, which no RegistryType member stands for.
      .Function("EnumValues", td::Long,
                {P("Caminho", td::Str), Ref("Nome", td::Var), Ref("Valor", td::Var),
                 Opt("Tipo", td::Long, -1)})
      // Output is any control with a default text property.
      .Function("ExportToReg", td::Bool,
                {P("Caminho", td::Str), P("Arquivo", td::Str), Opt("SubChaves", td::Bool, true),
                 Opt("Output", td::Obj)})
      .Function("ImportFromReg", td::Bool, {P("Arquivo", td::Str)})
      .Function("StrToBin", td::Str, {P("Valor", td::Str)})
      .Function("BinToStr", td::Str, {P("Valor", td::Str)})
      .Function("isBinValid", td::Bool, {P("Valor", td::Str)})
      .Function("addShell", td::Bool,
                {P("Extensao", td::Str), P("Descricao", td::Str), P("Menu", td::Str),
                 P("Texto", td::Str), P("Comando", td::Str), Opt("Icone", td::Str, u"")});
}

void AddHttp(TableBuilder& lib) {
  lib.Class("VT_AJAX", ClassKind::Service)
      .Function("AjaxInternetOnLine", td::Bool)
      .Function("AjaxGET", td::Bool, {P("Url", td::Str), Opt("Charset", td::Str, u"")})
      .Function(
          "AjaxPOST", td::Bool,
          {P("Url", td::Str), Opt("Charset", td::Str, u""), Opt("EncodeValue", td::Bool, false)})
      .ReadOnly("AjaxResponseText", td::Str)
      .ReadOnly("AjaxResponseURLDecoded", td::Str)
      .Function("URLEncode", td::Str, {P("Texto", td::Str)})
      .ReadOnly("IsAjaxInitialized", td::Bool)
      .Method("AddAjaxField", {P("Field", td::Str), P("Value", td::Str)})
      .Method("ClearAjax");
}

void AddNtServices(TableBuilder& lib) {
  lib.Enum("ENUM_SERVICE_STATUS_CONTROLS", {{"StatusControl_Start", 0},
                                            {"StatusControl_Stop", 1},
                                            {"StatusControl_Pause", 2},
                                            {"StatusControl_Continue", 3}});
  lib.Enum("ENUM_SERVICE_STATUS", {{"Status_Stopped", 1},
                                   {"Status_StartPending", 2},
                                   {"Status_StopPending", 3},
                                   {"Status_Running", 4},
                                   {"Status_ContinuePending", 5},
                                   {"Status_PausePending", 6},
                                   {"Status_Paused", 7}});
  lib.Enum(
      "ENUM_SERVICE_START_TYPE",
      {{"BootStart", 0}, {"SystemStart", 1}, {"AutoStart", 2}, {"DemandStart", 3}, {"Disable", 4}});

  // Exists and Status are asked of the service manager afresh on every read.
  lib.Class("VT_NTSERVICES", ClassKind::Service)
      .Method("Init", {P("ServiceName", td::Str)})
      .ReadOnly("ServiceName", td::Str)
      .ReadOnly("DisplayName", td::Str)
      .ReadOnly("Exists", td::Bool)
      .Function("Control", td::Bool, {P("StatusCommand", td::Enum("ENUM_SERVICE_STATUS_CONTROLS"))})
      .ReadOnly("Status", td::Enum("ENUM_SERVICE_STATUS"))
      .Property("StartType", td::Enum("ENUM_SERVICE_START_TYPE"));
}

void AddCompression(TableBuilder& lib) {
  lib.Enum("COMPRESSION_LEVEL", {{"NO_COMPRESSION", 0},
                                 {"BEST_SPEED", 1},
                                 {"BEST_COMPRESSION", 9},
                                 {"DEFAULT_COMPRESSION", -1}});
  lib.Enum("ZLIB_ERROR", {{"ZLIB_OK", 0},
                          {"ZLIB_STREAM_END", 1},
                          {"ZLIB_NEED_DICT", 2},
                          {"ZLIB_ERRNO", -1},
                          {"ZLIB_STREAM_ERROR", -2},
                          {"ZLIB_DATA_ERROR", -3},
                          {"ZLIB_MEM_ERROR", -4},
                          {"ZLIB_BUF_ERROR", -5},
                          {"ZLIB_VERSION_ERROR", -6}});

  // The data is replaced in place by its compressed or restored form, hence
  // by reference.
  const TypeRef level = td::Enum("COMPRESSION_LEVEL");
  const TypeRef result = td::Enum("ZLIB_ERROR");
  lib.Class("VT_ZLIB", ClassKind::Service)
      .Function("CompressByteArray", result,
                {Ref("TheData", td::Bytes), Opt("CompressionLevel", level, -1)})
      .Function("CompressString", result,
                {Ref("TheString", td::Str), Opt("CompressionLevel", level, -1)})
      .Function(
          "CompressFile", result,
          {P("FilePathIN", td::Str), P("FilePathOUT", td::Str), Opt("CompressionLevel", level, -1)})
      .Function("DecompressByteArray", result,
                {Ref("TheData", td::Bytes), P("TheOriginalSize", td::Long)})
      .Function("DecompressString", result,
                {Ref("TheString", td::Str), P("TheOriginalSize", td::Long)})
      .Function("DecompressFile", result, {P("FilePathIN", td::Str), P("FilePathOUT", td::Str)})
      .ReadOnly("CompressedSize", td::Long)
      .ReadOnly("OriginalSize", td::Long);
}

void AddCommonDialogs(TableBuilder& lib) {
  lib.Enum("wModeType", {{"OpenFile", 1}, {"SaveFile", 2}});

  // The dialog is driven by properties: the caller sets them, DialogFile runs,
  // and the answer is read back from them. Cancel, Path and FullPath only ever
  // come from the answer; FileName stays writable, as a file dialog's name
  // field is both what it starts with and what it answers.
  lib.Class("VT_COMMONDIALOGS", ClassKind::Service)
      .ReadOnly("Cancel", td::Bool)
      .Property("Color", td::Color)
      .Property("CustomColor", td::Color, {P("Ind", td::Long)})
      .Property("DefaultEXT", td::Str)
      .Method("DialogFile", {P("Modo", td::Enum("wModeType")), Opt("TituloDialogo", td::Str, u"")})
      .Property("FileFlags", td::Long)
      .Property("FileName", td::Str)
      .Property("Filter", td::Str)
      .Property("FilterIndex", td::Long)
      // The face name; its style lives in the Font* properties beside it.
      .Property("Font", td::Str)
      .Property("FontBold", td::Bool)
      .Property("FontFlags", td::Long)
      .Property("FontItalic", td::Bool)
      .Property("FontSize", td::Single)
      .Property("FontStrikeThru", td::Bool)
      .Property("FontUnderline", td::Bool)
      .ReadOnly("FullPath", td::Str)
      .Function("GetDefaultPrinter", td::Str)
      .Property("hwnd", td::Long)
      .Property("Max", td::Long)
      .Property("MultipleFiles", td::Bool)
      .ReadOnly("Path", td::Str)
      .Property("PrinterFlags", td::Long);
}

}  // namespace

void AddServiceTables(TableBuilder& lib) {
  AddUtilities(lib);
  AddMySql(lib);
  AddRegistry(lib);
  AddHttp(lib);
  AddNtServices(lib);
  AddCompression(lib);
  AddCommonDialogs(lib);
}

}  // namespace vantor::server
