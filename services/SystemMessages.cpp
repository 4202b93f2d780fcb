#include "services/SystemMessages.h"

#include <algorithm>
#include <array>

#include "runtime/Locale.h"

namespace vantor::services {
namespace {

struct Message {
  uint32_t code;
  const char16_t* portuguese;
  const char16_t* english;
};

// Sorted by code. The codes a business application meets: files, folders,
// disks, sharing, parameters, windows and the service manager, and the
// general COM results.
constexpr std::array kMessages = {
    Message{0, u"A operação foi concluída com sucesso.", u"The operation completed successfully."},
    Message{1, u"Função incorreta.", u"Incorrect function."},
    Message{2, u"O arquivo não foi encontrado.", u"The file was not found."},
    Message{3, u"O caminho não foi encontrado.", u"The path was not found."},
    Message{4, u"Há arquivos abertos demais.", u"Too many files are open."},
    Message{5, u"Acesso negado.", u"Access is denied."},
    Message{6, u"O identificador não é válido.", u"The handle is not valid."},
    Message{8, u"Não há memória suficiente para esta operação.",
            u"There is not enough memory for this operation."},
    Message{13, u"Os dados não são válidos.", u"The data is not valid."},
    Message{14, u"Não há memória suficiente para concluir a operação.",
            u"There is not enough memory to complete the operation."},
    Message{15, u"A unidade indicada não existe.", u"The drive given does not exist."},
    Message{16, u"A pasta não pode ser removida.", u"The folder cannot be removed."},
    Message{17, u"O arquivo não pode ser movido para outra unidade.",
            u"The file cannot be moved to another drive."},
    Message{18, u"Não há mais arquivos.", u"There are no more files."},
    Message{19, u"A mídia está protegida contra gravação.", u"The medium is write-protected."},
    Message{21, u"O dispositivo não está pronto.", u"The device is not ready."},
    Message{32, u"O arquivo está sendo usado por outro processo.",
            u"The file is in use by another process."},
    Message{33, u"Uma parte do arquivo está bloqueada por outro processo.",
            u"Part of the file is locked by another process."},
    Message{39, u"O disco está cheio.", u"The disk is full."},
    Message{50, u"Esta operação não é suportada.", u"This operation is not supported."},
    Message{53, u"O caminho de rede não foi encontrado.", u"The network path was not found."},
    Message{80, u"O arquivo já existe.", u"The file already exists."},
    Message{82, u"A pasta ou o arquivo não pôde ser criado.",
            u"The folder or file could not be made."},
    Message{87, u"Um parâmetro não é válido.", u"A parameter is not valid."},
    Message{109, u"O canal de comunicação foi fechado.", u"The pipe has been closed."},
    Message{112, u"Não há espaço suficiente no disco.", u"There is not enough space on the disk."},
    Message{122, u"A área de dados é pequena demais.", u"The data area is too small."},
    Message{123, u"O nome do arquivo, da pasta ou do volume não é válido.",
            u"The file, folder or volume name is not valid."},
    Message{145, u"A pasta não está vazia.", u"The folder is not empty."},
    Message{183, u"O arquivo já existe e não pode ser criado de novo.",
            u"The file already exists and cannot be made again."},
    Message{206, u"O nome ou a extensão do arquivo é longo demais.",
            u"The file name or extension is too long."},
    Message{267, u"O nome da pasta não é válido.", u"The folder name is not valid."},
    Message{1060, u"O serviço indicado não está instalado.",
            u"The service given is not installed."},
    Message{1062, u"O serviço não foi iniciado.", u"The service has not been started."},
    Message{1223, u"A operação foi cancelada pelo usuário.", u"The user cancelled the operation."},
    Message{1400, u"O identificador de janela não é válido.", u"The window handle is not valid."},
    Message{1407, u"A classe de janela não foi encontrada.", u"The window class was not found."},
    Message{1410, u"A classe já existe.", u"The class already exists."},
    Message{1411, u"A classe não existe.", u"The class does not exist."},
    Message{1412, u"A classe ainda tem janelas abertas.", u"The class still has open windows."},
    Message{1413, u"O índice não é válido.", u"The index is not valid."},
    Message{1418, u"A área de transferência não está aberta.", u"The clipboard is not open."},
    Message{0x80004001, u"Não implementado.", u"Not implemented."},
    Message{0x80004002, u"A interface não é suportada.", u"The interface is not supported."},
    Message{0x80004003, u"O ponteiro não é válido.", u"The pointer is not valid."},
    Message{0x80004004, u"A operação foi interrompida.", u"The operation was aborted."},
    Message{0x80004005, u"Erro não especificado.", u"Unspecified error."},
};

static_assert(std::is_sorted(kMessages.begin(), kMessages.end(),
                             [](const Message& a, const Message& b) { return a.code < b.code; }));

}  // namespace

String SystemMessages::Describe(int32_t code) {
  auto key = static_cast<uint32_t>(code);
  // The platform's results wrap its error codes under facility 7.
  if ((key & 0xFFFF0000u) == 0x80070000u) key &= 0xFFFFu;
  const auto it = std::lower_bound(kMessages.begin(), kMessages.end(), key,
                                   [](const Message& m, uint32_t k) { return m.code < k; });
  if (it == kMessages.end() || it->code != key) return {};
  return Locale::Current().id() == Locale::Id::enUS ? it->english : it->portuguese;
}

}  // namespace vantor::services
