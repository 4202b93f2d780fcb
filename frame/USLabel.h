#pragma once
// The label: a caption with a few tags of its own ("<b>", "<i>", "<u>",
// "<s>", "<c=r,g,b>", "<br>") printed run by run on the control's surface,
// wrapped to its width and, with AutoSize, sizing the control to the text.
// The themed message box prints its prompts with it.
//
// It paints when something changes (Refresh), never in answer to the
// window's paint message, and it has no Theme, hwnd or hDC of its own.
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "frame/LabelSegments.h"
#include "frame/clsMouseEvents.h"
#include "platform/Gdi.h"
#include "runtime/String.h"
#include "server/Event.h"
#include "server/StdFont.h"
#include "server/StdPicture.h"
#include "server/UserControl.h"

namespace vantor::frame {

// The type library lists Transparent only; 1 is the platform's opaque
// style, which fills the control with BackColor.
enum ENUM_BACK_STYLE : int32_t { Transparent = 0 };
inline constexpr int32_t kBackStyleOpaque = 1;

class USLabel : public server::UserControl {
 public:
  // What OpenUrl asks of the desktop: ShellExecuteA's owner window, verb,
  // file and show state. The control layer cannot start programs itself.
  using UrlOpener =
      std::function<void(int32_t hwnd, const String& verb, const String& url, int32_t show)>;

  USLabel();
  ~USLabel() override;
  static void Register();
  // The program that hosts the library says how an address is opened;
  // without one OpenUrl does nothing.
  static void SetUrlOpener(UrlOpener opener);

  // ---- _USLabel
  int16_t get_MousePointer() const { return MousePointer(); }
  void put_MousePointer(int16_t v);
  std::shared_ptr<server::StdPicture> get_MouseIcon() const { return MouseIcon(); }
  void putref_MouseIcon(std::shared_ptr<server::StdPicture> v);
  ENUM_BACK_STYLE get_BackStyle() const { return backStyle_; }
  void put_BackStyle(ENUM_BACK_STYLE v);
  uint32_t get_BackColor() const { return backColor_; }
  void put_BackColor(uint32_t v);
  uint32_t get_ForeColor() const { return foreColor_; }
  void put_ForeColor(uint32_t v);
  String get_Caption() const { return caption_; }
  void put_Caption(String v);
  String get_NoHTMLCaption() const { return plainText_; }
  float get_CaptionWidth() const { return static_cast<float>(textWidth_); }
  bool get_AutoSize() const { return autoSize_; }
  void put_AutoSize(bool v);
  bool get_WordWrap() const { return wordWrap_; }
  void put_WordWrap(bool v);
  std::shared_ptr<server::StdFont> get_Font() const { return font_; }
  void putref_Font(std::shared_ptr<server::StdFont> v);
  bool get_FontBold() const { return font_->get_Bold(); }
  void put_FontBold(bool v);
  bool get_FontItalic() const { return font_->get_Italic(); }
  void put_FontItalic(bool v);
  float get_FontSize() const { return static_cast<float>(font_->get_Size().ToDouble()); }
  void put_FontSize(float v);
  bool get_FontStrikeThru() const { return font_->get_Strikethrough(); }
  void put_FontStrikeThru(bool v);
  bool get_FontUnderline() const { return font_->get_Underline(); }
  void put_FontUnderline(bool v);
  // Parses, measures, sizes (AutoSize) and prints the caption again.
  void Refresh();
  void OpenUrl(int32_t lHwnd, String Url);

  // The segments of the last Refresh and the measured text, for tests.
  const std::vector<LabelSegment>& Segments() const { return segments_; }
  double TextHeightMeasured() const { return textHeight_; }

  // ---- __USLabel
  server::Event<> ClickEvent{*this, "Click"};
  server::Event<> DblClickEvent{*this, "DblClick"};
  server::Event<> ChangeEvent{*this, "Change"};
  server::Event<int16_t&, int16_t&> KeyDownEvent{*this, "KeyDown"};
  server::Event<int16_t&> KeyPressEvent{*this, "KeyPress"};
  server::Event<int16_t&, int16_t&> KeyUpEvent{*this, "KeyUp"};
  server::Event<int16_t&, int16_t&, float&, float&> MouseDownEvent{*this, "MouseDown"};
  server::Event<int16_t&, int16_t&, float&, float&> MouseMoveEvent{*this, "MouseMove"};
  server::Event<int16_t&, int16_t&, float&, float&> MouseUpEvent{*this, "MouseUp"};
  server::Event<> MouseEnterEvent{*this, "MouseEnter"};
  server::Event<> MouseExitEvent{*this, "MouseExit"};

 protected:
  const server::Bindings* Bound() const override;

  void InitProperties() override;
  void ReadProperties(const server::PropertyBag& bag) override;
  void WriteProperties(server::PropertyBag& bag) override;
  void Resize() override;
  void Show() override;
  void Terminate() override;
  void AmbientChanged(const String& propertyName) override;
  void KeyDown(int16_t& keyCode, int16_t& shift) override;
  void KeyPress(int16_t& keyAscii) override;
  void KeyUp(int16_t& keyCode, int16_t& shift) override;
  void MouseDown(int16_t button, int16_t shift, float x, float y) override;
  void MouseUp(int16_t button, int16_t shift, float x, float y) override;
  void Click() override;
  void DblClick() override;

 private:
  // The drawing state of the control's surface: the font flags and colour
  // the next Print uses, and the pen that Print moves.
  struct Pen {
    bool bold = false, italic = false, underline = false, strike = false;
    uint32_t foreColor = 0;
    int x = 0, y = 0;
    int lineHeight = 0;  // tallest text printed on the current line
  };

  void Changed(const char16_t* name);
  void Defaults();
  void AttachMouse(bool userMode);
  void OnMouseMove(int32_t button, int32_t shift, int32_t x, int32_t y);
  LabelStyle StartStyle() const;

  // The surface: Cls, Print and the measures, with a pen position of our own.
  // A Refresh makes the fonts and the measuring context once, in Drawing.
  struct Drawing;
  void Cls();
  void Print(Drawing& d, StringView text, bool lineEnd);
  void NewLine(Drawing& d);
  double TextWidth(Drawing& d, StringView text, bool bold, bool italic) const;
  double TextHeight(Drawing& d, StringView text) const;
  void ApplyAutoSize();

  std::shared_ptr<server::StdFont> font_;
  bool autoSize_ = true;
  String caption_;
  String plainText_;
  bool wordWrap_ = true;
  uint32_t backColor_ = 0x8000000F;
  ENUM_BACK_STYLE backStyle_ = Transparent;
  uint32_t foreColor_ = 0x80000008;

  bool userMode_ = false;
  bool closing_ = false;
  bool refreshing_ = false;
  double textWidth_ = 0;
  double textHeight_ = 0;
  std::vector<LabelSegment> segments_;
  Pen pen_;
  std::shared_ptr<clsMouseEvents> mouseEx_;
};

}  // namespace vantor::frame
