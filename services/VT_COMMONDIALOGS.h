#pragma once
// A property-driven front of the system's file dialogs. The host sets the
// properties, calls DialogFile, and reads the answer back from Cancel,
// FileName, Path, FullPath and FilterIndex. The colour, font and printer
// properties are kept for hosts that read and write them; the one dialog the
// class opens is the file dialog.
//
// Where the dialog comes from is a service the platform layer or a host
// installs; with none installed, DialogFile answers as if the user cancelled.
#include <array>
#include <cstdint>
#include <functional>

#include "platform/WinTypes.h"
#include "runtime/String.h"
#include "server/Dispatch.h"

namespace vantor::services {

enum wModeType : int32_t { OpenFile = 1, SaveFile = 2 };

class VT_COMMONDIALOGS : public server::Dispatch {
 public:
  // What the class hands the dialog, in the form of the platform's
  // OPENFILENAME: the filter with NUL between its parts and two at the end,
  // the name buffer's starting text and capacity, the flags.
  struct FileDialogRequest {
    wModeType mode = OpenFile;
    int32_t owner = 0;
    String title;
    String filter;
    int32_t filterIndex = 0;
    String initialName;
    size_t nameCapacity = 0;
    size_t titleCapacity = 0;
    String defaultExt;
    int32_t flags = 0;
  };
  // The dialog fills `answer` as the platform fills the name buffer: one full
  // path, or with multiple selection the folder and then each name, NUL
  // between them. It may change filterIndex. False means cancelled.
  using FileDialogService = std::function<bool(FileDialogRequest& request, String& answer)>;
  static void SetFileDialogService(FileDialogService service);

  static constexpr size_t kNameBufferSize = 204800;
  static constexpr size_t kTitleBufferSize = 255;
  // OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY
  static constexpr int32_t kDefaultOpenFlags = 6148;
  // OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST
  static constexpr int32_t kDefaultSaveFlags = 2054;
  // OFN_ALLOWMULTISELECT | OFN_EXPLORER: names answered NUL-separated.
  static constexpr int32_t kMultipleSelectionFlags = 0x200 | 0x80000;

  VT_COMMONDIALOGS();
  static void Register();

  void DialogFile(wModeType Modo, const String& TituloDialogo = {});
  String GetDefaultPrinter() const;

  // The pieces of DialogFile, public so that each rule can be checked alone.
  static String FilterForDialog(const String& filter);
  static String TitleForDialog(wModeType mode, const String& title);
  static int32_t FlagsForDialog(wModeType mode, int32_t fileFlags, bool multipleFiles);
  // The printer's name from a profile "device" entry ("name,driver,port").
  static String PrinterFromDeviceEntry(const String& entry);

  bool get_Cancel() const { return cancel_; }
  OLE_COLOR get_Color() const { return color_; }
  void put_Color(OLE_COLOR v) { color_ = v; }
  OLE_COLOR get_CustomColor(int32_t Ind) const;
  void put_CustomColor(int32_t Ind, OLE_COLOR v);
  String get_DefaultEXT() const { return defaultExt_; }
  void put_DefaultEXT(String v) { defaultExt_ = std::move(v); }
  int32_t get_FileFlags() const { return fileFlags_; }
  void put_FileFlags(int32_t v) { fileFlags_ = v; }
  String get_FileName() const { return fileName_; }
  void put_FileName(String v) { fileName_ = std::move(v); }
  String get_Filter() const { return filter_; }
  void put_Filter(String v) { filter_ = std::move(v); }
  int32_t get_FilterIndex() const { return filterIndex_; }
  void put_FilterIndex(int32_t v) { filterIndex_ = v; }
  String get_Font() const { return font_; }
  void put_Font(String v) { font_ = std::move(v); }
  bool get_FontBold() const { return fontBold_; }
  void put_FontBold(bool v) { fontBold_ = v; }
  int32_t get_FontFlags() const { return fontFlags_; }
  void put_FontFlags(int32_t v) { fontFlags_ = v; }
  bool get_FontItalic() const { return fontItalic_; }
  void put_FontItalic(bool v) { fontItalic_ = v; }
  float get_FontSize() const { return fontSize_; }
  void put_FontSize(float v) { fontSize_ = v; }
  bool get_FontStrikeThru() const { return fontStrikeThru_; }
  void put_FontStrikeThru(bool v) { fontStrikeThru_ = v; }
  bool get_FontUnderline() const { return fontUnderline_; }
  void put_FontUnderline(bool v) { fontUnderline_ = v; }
  String get_FullPath() const { return fullPath_; }
  int32_t get_hwnd() const { return hwnd_; }
  void put_hwnd(int32_t v) { hwnd_ = v; }
  int32_t get_Max() const { return max_; }
  void put_Max(int32_t v) { max_ = v; }
  bool get_MultipleFiles() const { return multipleFiles_; }
  void put_MultipleFiles(bool v) { multipleFiles_ = v; }
  String get_Path() const { return path_; }
  int32_t get_PrinterFlags() const { return printerFlags_; }
  void put_PrinterFlags(int32_t v) { printerFlags_ = v; }

 protected:
  const server::Bindings* Bound() const override;

 private:
  void TakeAnswer(const String& answer, bool multiple);

  bool cancel_ = true;
  OLE_COLOR color_ = 0;
  std::array<OLE_COLOR, 16> customColors_{};
  String defaultExt_;
  int32_t fileFlags_ = 0;
  String fileName_;
  String filter_;
  int32_t filterIndex_ = 0;
  String font_ = u"Arial";
  bool fontBold_ = false;
  int32_t fontFlags_ = 0;
  bool fontItalic_ = false;
  float fontSize_ = 10.0f;
  bool fontStrikeThru_ = false;
  bool fontUnderline_ = false;
  String fullPath_;
  int32_t hwnd_ = 0;
  int32_t max_ = 0;
  bool multipleFiles_ = false;
  String path_;
  int32_t printerFlags_ = 0;
};

}  // namespace vantor::services
