#include "services/VT_COMMONDIALOGS.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/User.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::services {

namespace {

VT_COMMONDIALOGS::FileDialogService& Service() {
  static VT_COMMONDIALOGS::FileDialogService service;
  return service;
}

bool IsSeparator(char16_t c) {
  return c == u'\\' || c == u'/';
}

String CutAtNul(const String& s) {
  const size_t nul = s.find(u'\0');
  return nul == String::npos ? s : s.substr(0, nul);
}

// Splits on NUL and drops the empty tail the double NUL leaves.
std::vector<String> SplitOnNul(const String& s) {
  std::vector<String> parts;
  size_t start = 0;
  for (;;) {
    const size_t nul = s.find(u'\0', start);
    const String part = s.substr(start, nul == String::npos ? String::npos : nul - start);
    if (part.empty()) break;
    parts.push_back(part);
    if (nul == String::npos) break;
    start = nul + 1;
  }
  return parts;
}

// The folder keeps its separator only where dropping it would change the
// place meant: the root, or a drive's root.
String FolderOf(const String& fullPath, size_t separator) {
  String folder = fullPath.substr(0, separator);
  if (folder.empty() || folder.back() == u':') folder = fullPath.substr(0, separator + 1);
  return folder;
}

String Join(const String& folder, const String& name) {
  if (folder.empty() || IsSeparator(folder.back())) return folder + name;
  // A folder written with "/" is joined with "/"; the platform's answers use "\".
  const bool slash = folder.find(u'/') != String::npos && folder.find(u'\\') == String::npos;
  return folder + (slash ? u"/" : u"\\") + name;
}

// The lpoptions file of CUPS names the default destination on a line
// "Default name[/instance] options...".
String DefaultFromLpoptions(const std::string& path) {
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind("Default ", 0) != 0) continue;
    const size_t start = line.find_first_not_of(' ', 8);
    if (start == std::string::npos) continue;
    const size_t end = line.find_first_of(" \t/\r", start);
    return FromUtf8(line.substr(start, end == std::string::npos ? std::string::npos : end - start));
  }
  return {};
}

}  // namespace

VT_COMMONDIALOGS::VT_COMMONDIALOGS()
    : Dispatch(*server::TypeLibrary::Get().FindClass("VT_COMMONDIALOGS")) {
  // The colour dialog's sixteen custom colours start as the system's first
  // sixteen colours.
  for (size_t i = 0; i < customColors_.size(); ++i) {
    customColors_[i] = GetSysColor(static_cast<int>(i));
  }
}

void VT_COMMONDIALOGS::Register() {
  server::Registry::Instance().Register("VT_COMMONDIALOGS",
                                        [] { return std::make_shared<VT_COMMONDIALOGS>(); });
}

void VT_COMMONDIALOGS::SetFileDialogService(FileDialogService service) {
  Service() = std::move(service);
}

String VT_COMMONDIALOGS::FilterForDialog(const String& filter) {
  String out = filter;
  for (char16_t& c : out) {
    if (c == u'|') c = u'\0';
  }
  // The platform reads pairs until an empty string: the list ends in two NULs.
  out.push_back(u'\0');
  out.push_back(u'\0');
  return out;
}

String VT_COMMONDIALOGS::TitleForDialog(wModeType mode, const String& title) {
  if (!title.empty()) return title;
  return mode == SaveFile ? u"Salvar Arquivo" : u"Abrir Arquivo";
}

int32_t VT_COMMONDIALOGS::FlagsForDialog(wModeType mode, int32_t fileFlags, bool multipleFiles) {
  int32_t flags =
      fileFlags != 0 ? fileFlags : (mode == SaveFile ? kDefaultSaveFlags : kDefaultOpenFlags);
  if (multipleFiles) flags |= kMultipleSelectionFlags;
  return flags;
}

String VT_COMMONDIALOGS::PrinterFromDeviceEntry(const String& entry) {
  const String device = CutAtNul(entry);
  const size_t comma = device.find(u',');
  return comma == String::npos ? device : device.substr(0, comma);
}

OLE_COLOR VT_COMMONDIALOGS::get_CustomColor(int32_t Ind) const {
  if (Ind < 0 || Ind >= static_cast<int32_t>(customColors_.size())) return 0;
  return customColors_[static_cast<size_t>(Ind)];
}

void VT_COMMONDIALOGS::put_CustomColor(int32_t Ind, OLE_COLOR v) {
  if (Ind < 0 || Ind >= static_cast<int32_t>(customColors_.size())) return;
  customColors_[static_cast<size_t>(Ind)] = v;
}

void VT_COMMONDIALOGS::TakeAnswer(const String& answer, bool multiple) {
  const std::vector<String> parts =
      multiple ? SplitOnNul(answer) : std::vector<String>{CutAtNul(answer)};
  if (parts.size() >= 2) {
    // Several names: the folder first, then each name in it. FileName and
    // FullPath list them joined by "|", a character no Windows file name has.
    path_ = parts[0];
    fileName_.clear();
    fullPath_.clear();
    for (size_t i = 1; i < parts.size(); ++i) {
      if (i > 1) {
        fileName_ += u'|';
        fullPath_ += u'|';
      }
      fileName_ += parts[i];
      fullPath_ += Join(path_, parts[i]);
    }
    return;
  }
  fullPath_ = parts.empty() ? String() : parts[0];
  size_t separator = String::npos;
  for (size_t i = fullPath_.size(); i-- > 0;) {
    if (IsSeparator(fullPath_[i])) {
      separator = i;
      break;
    }
  }
  if (separator == String::npos) {
    path_.clear();
    fileName_ = fullPath_;
  } else {
    path_ = FolderOf(fullPath_, separator);
    fileName_ = fullPath_.substr(separator + 1);
  }
}

void VT_COMMONDIALOGS::DialogFile(wModeType Modo, const String& TituloDialogo) {
  cancel_ = true;
  path_.clear();
  fullPath_.clear();
  if (Modo != OpenFile && Modo != SaveFile) return;
  if (!Service()) return;
  try {
    FileDialogRequest request;
    request.mode = Modo;
    request.owner = hwnd_;
    request.title = TitleForDialog(Modo, TituloDialogo);
    request.filter = FilterForDialog(filter_);
    request.filterIndex = filterIndex_;
    request.initialName = CutAtNul(fileName_).substr(0, kNameBufferSize - 1);
    request.nameCapacity = kNameBufferSize;
    request.titleCapacity = kTitleBufferSize;
    request.defaultExt = defaultExt_;
    request.flags = FlagsForDialog(Modo, fileFlags_, multipleFiles_);
    String answer;
    if (!Service()(request, answer)) return;
    // The name buffer holds no more than its size, its last place the NUL.
    if (answer.size() > kNameBufferSize - 1) answer.resize(kNameBufferSize - 1);
    if (CutAtNul(answer).empty()) return;
    cancel_ = false;
    filterIndex_ = request.filterIndex;
    TakeAnswer(answer, (request.flags & kMultipleSelectionFlags) != 0);
  } catch (...) {
    // A dialog that failed chose nothing.
    cancel_ = true;
    path_.clear();
    fullPath_.clear();
  }
}

String VT_COMMONDIALOGS::GetDefaultPrinter() const {
  // The system's default printer: the lp tools' PRINTER variable first, then
  // the CUPS defaults of the user and of the machine.
  if (const char* env = std::getenv("PRINTER"); env && *env) {
    return PrinterFromDeviceEntry(FromUtf8(env));
  }
  if (const char* home = std::getenv("HOME"); home && *home) {
    String user = DefaultFromLpoptions(std::string(home) + "/.cups/lpoptions");
    if (!user.empty()) return user;
  }
  return DefaultFromLpoptions("/etc/cups/lpoptions");
}

const server::Bindings* VT_COMMONDIALOGS::Bound() const {
  using C = VT_COMMONDIALOGS;
  static const server::Bindings bindings =
      server::Binder<C>(Info())
          .Get("Cancel", &C::get_Cancel)
          .Property("Color", &C::get_Color, &C::put_Color)
          .Property("CustomColor", &C::get_CustomColor, &C::put_CustomColor)
          .Property("DefaultEXT", &C::get_DefaultEXT, &C::put_DefaultEXT)
          .Method("DialogFile", &C::DialogFile)
          .Property("FileFlags", &C::get_FileFlags, &C::put_FileFlags)
          .Property("FileName", &C::get_FileName, &C::put_FileName)
          .Property("Filter", &C::get_Filter, &C::put_Filter)
          .Property("FilterIndex", &C::get_FilterIndex, &C::put_FilterIndex)
          .Property("Font", &C::get_Font, &C::put_Font)
          .Property("FontBold", &C::get_FontBold, &C::put_FontBold)
          .Property("FontFlags", &C::get_FontFlags, &C::put_FontFlags)
          .Property("FontItalic", &C::get_FontItalic, &C::put_FontItalic)
          .Property("FontSize", &C::get_FontSize, &C::put_FontSize)
          .Property("FontStrikeThru", &C::get_FontStrikeThru, &C::put_FontStrikeThru)
          .Property("FontUnderline", &C::get_FontUnderline, &C::put_FontUnderline)
          .Get("FullPath", &C::get_FullPath)
          .Method("GetDefaultPrinter", &C::GetDefaultPrinter)
          .Property("hwnd", &C::get_hwnd, &C::put_hwnd)
          .Property("Max", &C::get_Max, &C::put_Max)
          .Property("MultipleFiles", &C::get_MultipleFiles, &C::put_MultipleFiles)
          .Get("Path", &C::get_Path)
          .Property("PrinterFlags", &C::get_PrinterFlags, &C::put_PrinterFlags)
          .Done();
  return &bindings;
}

}  // namespace vantor::services
