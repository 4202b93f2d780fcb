#include "frame/USLabel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/Text.h"
#include "runtime/Strings.h"
#include "server/PropertyBag.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::frame {

namespace {

// The container's fixed factor between its twips and our pixels.
constexpr float kTwipsPerPixel = 15.0f;

// The show state OpenUrl asks for: 5, SW_SHOW.
constexpr int32_t kShowState = 5;

USLabel::UrlOpener& Opener() {
  static USLabel::UrlOpener opener;
  return opener;
}

// An OLE colour as GDI draws it: a system colour through GetSysColor of
// its low 24 bits, any other as its RGB.
COLORREF Translate(uint32_t colour) {
  if ((colour & 0x80000000u) != 0) return GetSysColor(static_cast<int>(colour & 0xFFFFFFu));
  return colour & 0xFFFFFFu;
}

// The label's font in each of its sixteen styles, made when first asked for
// and deleted with the routine that made them.
class Fonts {
 public:
  explicit Fonts(const server::StdFont& font) : base_(font.ToLogFont()) {}
  ~Fonts() {
    for (HFONT f : fonts_) {
      if (f) DeleteObject(f);
    }
  }
  Fonts(const Fonts&) = delete;
  Fonts& operator=(const Fonts&) = delete;

  HFONT Get(bool bold, bool italic, bool underline, bool strike) {
    const size_t key =
        (bold ? 1u : 0u) | (italic ? 2u : 0u) | (underline ? 4u : 0u) | (strike ? 8u : 0u);
    if (!fonts_[key]) {
      LOGFONTW lf = base_;
      // Bold is a weight, as the font object sees it: an unbolded face keeps
      // a light weight it was given.
      if (bold)
        lf.lfWeight = FW_BOLD;
      else if (lf.lfWeight > 550)
        lf.lfWeight = FW_NORMAL;
      lf.lfItalic = italic ? 1 : 0;
      lf.lfUnderline = underline ? 1 : 0;
      lf.lfStrikeOut = strike ? 1 : 0;
      fonts_[key] = CreateFontIndirectW(&lf);
    }
    return fonts_[key];
  }

 private:
  LOGFONTW base_;
  std::array<HFONT, 16> fonts_{};
};

// A device context of our own for measuring, so that measuring never
// depends on the control's surface, which AutoSize may rebuild.
class MeasureDC {
 public:
  MeasureDC() : dc_(CreateCompatibleDC(nullptr)) {}
  ~MeasureDC() {
    if (dc_) DeleteDC(dc_);
  }
  MeasureDC(const MeasureDC&) = delete;
  MeasureDC& operator=(const MeasureDC&) = delete;
  HDC get() const { return dc_; }

 private:
  HDC dc_;
};

// Splits at line ends (CR LF, or a lone CR or LF) as Print and the measures
// see them.
template <class F>
void ForEachLine(StringView text, F each) {
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'\r' && text[i] != u'\n') continue;
    each(text.substr(start, i - start), true);
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    start = i + 1;
  }
  each(text.substr(start), false);
}

int WidthIn(HDC dc, StringView line) {
  SIZE size{};
  GetTextExtentPoint32W(dc, line.data(), static_cast<int>(line.size()), &size);
  return static_cast<int>(size.cx);
}

int HeightIn(HDC dc) {
  TEXTMETRICW tm{};
  GetTextMetricsW(dc, &tm);
  return static_cast<int>(tm.tmHeight);
}

// Clears a flag when the routine that set it ends, however it ends.
class Busy {
 public:
  explicit Busy(bool& flag) : flag_(flag) { flag_ = true; }
  ~Busy() { flag_ = false; }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

 private:
  bool& flag_;
};

}  // namespace

// What one Refresh draws and measures with: made once, released with it.
struct USLabel::Drawing {
  Fonts fonts;
  MeasureDC measure;
  explicit Drawing(const server::StdFont& font) : fonts(font) {}
};

USLabel::USLabel()
    : UserControl(*server::TypeLibrary::Get().FindClass("USLabel")),
      font_(std::make_shared<server::StdFont>()) {}

USLabel::~USLabel() {
  if (mouseEx_) mouseEx_->Attach(0);
}

void USLabel::Register() {
  server::Registry::Instance().Register("USLabel", [] { return std::make_shared<USLabel>(); });
}

void USLabel::SetUrlOpener(UrlOpener opener) {
  Opener() = std::move(opener);
}

const server::Bindings* USLabel::Bound() const {
  // About waits for the themed message box; it answers "not implemented"
  // until then.
  static const server::Bindings bindings =
      server::Binder<USLabel>(Info())
          .Property("MouseIcon", &USLabel::get_MouseIcon, &USLabel::putref_MouseIcon)
          .Property("MousePointer", &USLabel::get_MousePointer, &USLabel::put_MousePointer)
          .Property("BackStyle", &USLabel::get_BackStyle, &USLabel::put_BackStyle)
          .Property("BackColor", &USLabel::get_BackColor, &USLabel::put_BackColor)
          .Property("ForeColor", &USLabel::get_ForeColor, &USLabel::put_ForeColor)
          .Property("Caption", &USLabel::get_Caption, &USLabel::put_Caption)
          .Get("NoHTMLCaption", &USLabel::get_NoHTMLCaption)
          .Get("CaptionWidth", &USLabel::get_CaptionWidth)
          .Property("AutoSize", &USLabel::get_AutoSize, &USLabel::put_AutoSize)
          .Property("WordWrap", &USLabel::get_WordWrap, &USLabel::put_WordWrap)
          .Property("Font", &USLabel::get_Font, &USLabel::putref_Font)
          .Property("FontBold", &USLabel::get_FontBold, &USLabel::put_FontBold)
          .Property("FontItalic", &USLabel::get_FontItalic, &USLabel::put_FontItalic)
          .Property("FontSize", &USLabel::get_FontSize, &USLabel::put_FontSize)
          .Property("FontStrikeThru", &USLabel::get_FontStrikeThru, &USLabel::put_FontStrikeThru)
          .Property("FontUnderline", &USLabel::get_FontUnderline, &USLabel::put_FontUnderline)
          .Method("Refresh", &USLabel::Refresh)
          .Method("OpenUrl", &USLabel::OpenUrl)
          .Done();
  return &bindings;
}

// ---- properties

void USLabel::Changed(const char16_t* name) {
  PropertyChanged(name);
  Refresh();
}

void USLabel::put_MousePointer(int16_t v) {
  if (v == MousePointer()) return;
  SetMousePointer(v);
  Changed(u"MousePointer");
}

void USLabel::putref_MouseIcon(std::shared_ptr<server::StdPicture> v) {
  if (v == MouseIcon()) return;
  SetMouseIcon(std::move(v));
  Changed(u"MouseIcon");
}

void USLabel::put_BackStyle(ENUM_BACK_STYLE v) {
  if (v == backStyle_) return;
  backStyle_ = v;
  Changed(u"BackStyle");
}

void USLabel::put_BackColor(uint32_t v) {
  if (v == backColor_) return;
  backColor_ = v;
  Changed(u"BackColor");
}

void USLabel::put_ForeColor(uint32_t v) {
  if (v == foreColor_) return;
  foreColor_ = v;
  Changed(u"ForeColor");
}

void USLabel::put_Caption(String v) {
  if (v == caption_) return;
  caption_ = std::move(v);
  Changed(u"Caption");
  ChangeEvent();
}

void USLabel::put_AutoSize(bool v) {
  if (v == autoSize_) return;
  autoSize_ = v;
  Changed(u"AutoSize");
}

void USLabel::put_WordWrap(bool v) {
  if (v == wordWrap_) return;
  wordWrap_ = v;
  Changed(u"WordWrap");
}

void USLabel::putref_Font(std::shared_ptr<server::StdFont> v) {
  // The label keeps a font of its own: the one handed in stays the caller's.
  if (!v || *v == *font_) return;
  font_ = v->Clone();
  Changed(u"Font");
}

void USLabel::put_FontBold(bool v) {
  if (v == font_->get_Bold()) return;
  font_->put_Bold(v);
  Changed(u"FontBold");
}

void USLabel::put_FontItalic(bool v) {
  if (v == font_->get_Italic()) return;
  font_->put_Italic(v);
  Changed(u"FontItalic");
}

void USLabel::put_FontSize(float v) {
  const std::optional<Currency> size = Currency::FromDouble(static_cast<double>(v));
  if (!size || *size == font_->get_Size()) return;
  font_->put_Size(*size);
  if (font_->get_Size() != *size) return;  // refused: not a size
  Changed(u"FontSize");
}

void USLabel::put_FontStrikeThru(bool v) {
  if (v == font_->get_Strikethrough()) return;
  font_->put_Strikethrough(v);
  Changed(u"FontStrikeThru");
}

void USLabel::put_FontUnderline(bool v) {
  if (v == font_->get_Underline()) return;
  font_->put_Underline(v);
  Changed(u"FontUnderline");
}

void USLabel::OpenUrl(int32_t lHwnd, String Url) {
  // The desktop's launcher lives above the controls; without one handed
  // down by the program there is nothing to open the address with.
  const UrlOpener& open = Opener();
  if (open) open(lHwnd, u"OPEN", Url, kShowState);
}

// ---- container events

void USLabel::Defaults() {
  autoSize_ = true;
  caption_.clear();
  plainText_.clear();
  wordWrap_ = true;
  backColor_ = 0x8000000F;
  backStyle_ = Transparent;
  foreColor_ = 0x80000008;
  SetMouseIcon(nullptr);
  SetMousePointer(server::vbDefault);
}

void USLabel::InitProperties() {
  const server::AmbientProperties a = Ambient();
  Defaults();
  font_ = a.Font ? a.Font->Clone() : std::make_shared<server::StdFont>();
  AttachMouse(a.UserMode);
}

void USLabel::ReadProperties(const server::PropertyBag& bag) {
  const server::AmbientProperties a = Ambient();
  userMode_ = a.UserMode;
  Defaults();
  const Variant font = bag.ReadProperty(u"Font", Variant(ObjectPtr(a.Font)));
  std::shared_ptr<server::StdFont> f =
      font.ObjectRef() ? std::dynamic_pointer_cast<server::StdFont>(*font.ObjectRef()) : nullptr;
  if (!f) f = a.Font;
  font_ = f ? f->Clone() : std::make_shared<server::StdFont>();
  const Variant icon = bag.ReadProperty(u"MouseIcon");
  if (icon.ObjectRef())
    SetMouseIcon(std::dynamic_pointer_cast<server::StdPicture>(*icon.ObjectRef()));
  SetMousePointer(bag.ReadProperty(u"MousePointer", Variant(int16_t{0})).ToInteger());
  autoSize_ = bag.ReadProperty(u"Autosize", Variant(true)).ToBoolean();
  backColor_ = static_cast<uint32_t>(
      bag.ReadProperty(u"BackColor", Variant(static_cast<int32_t>(0x8000000F))).ToLong());
  backStyle_ = static_cast<ENUM_BACK_STYLE>(
      bag.ReadProperty(u"BackStyle", Variant(int32_t{Transparent})).ToLong());
  caption_ = bag.ReadProperty(u"Caption", Variant(String())).ToString();
  foreColor_ = static_cast<uint32_t>(
      bag.ReadProperty(u"ForeColor", Variant(static_cast<int32_t>(0x80000008))).ToLong());
  plainText_ = bag.ReadProperty(u"NoHTMLCaption", Variant(String())).ToString();
  wordWrap_ = bag.ReadProperty(u"WordWrap", Variant(true)).ToBoolean();
  AttachMouse(userMode_);
}

void USLabel::WriteProperties(server::PropertyBag& bag) {
  const server::AmbientProperties a = Ambient();
  bag.WriteProperty(u"Font", Variant(ObjectPtr(font_)), Variant(ObjectPtr(a.Font)));
  if (MouseIcon()) {
    bag.WriteProperty(u"MouseIcon", Variant(ObjectPtr(MouseIcon())));
  } else {
    bag.Remove(u"MouseIcon");
  }
  bag.WriteProperty(u"MousePointer", Variant(MousePointer()), Variant(int16_t{0}));
  bag.WriteProperty(u"Autosize", Variant(autoSize_), Variant(true));
  bag.WriteProperty(u"BackColor", Variant(static_cast<int32_t>(backColor_)),
                    Variant(static_cast<int32_t>(0x8000000F)));
  bag.WriteProperty(u"BackStyle", Variant(static_cast<int32_t>(backStyle_)),
                    Variant(int32_t{Transparent}));
  bag.WriteProperty(u"Caption", Variant(caption_), Variant(String()));
  bag.WriteProperty(u"ForeColor", Variant(static_cast<int32_t>(foreColor_)),
                    Variant(static_cast<int32_t>(0x80000008)));
  bag.WriteProperty(u"NoHTMLCaption", Variant(plainText_), Variant(String()));
  bag.WriteProperty(u"WordWrap", Variant(wordWrap_), Variant(true));
}

void USLabel::Resize() {
  // The size AutoSize sets comes back here; the Refresh that set it prints.
  if (refreshing_) return;
  Refresh();
}

void USLabel::Show() {
  Refresh();
}

void USLabel::Terminate() {
  closing_ = true;
  // The tracker first, so that its subclass goes while the window exists.
  if (mouseEx_) mouseEx_->Attach(0);
  mouseEx_.reset();
  segments_.clear();
}

void USLabel::AmbientChanged(const String& propertyName) {
  if (LCase(propertyName) != u"usermode") return;
  userMode_ = Ambient().UserMode;
  AttachMouse(userMode_);
}

void USLabel::AttachMouse(bool userMode) {
  userMode_ = userMode;
  if (mouseEx_) mouseEx_->Attach(0);
  mouseEx_.reset();
  // A designer gets no hover: no MouseEnter, MouseExit or MouseMove there.
  if (!userMode || !hWnd()) return;
  mouseEx_ = std::make_shared<clsMouseEvents>();
  mouseEx_->MouseIn.Connect([this] { MouseEnterEvent(); });
  mouseEx_->MouseOut.Connect([this] { MouseExitEvent(); });
  mouseEx_->MouseMove.Connect([this](int32_t, int32_t, int32_t button, int32_t shift, int32_t x,
                                     int32_t y) { OnMouseMove(button, shift, x, y); });
  mouseEx_->Attach(static_cast<int32_t>(reinterpret_cast<uintptr_t>(hWnd())));
}

void USLabel::OnMouseMove(int32_t button, int32_t shift, int32_t x, int32_t y) {
  int16_t b = static_cast<int16_t>(button);
  int16_t s = static_cast<int16_t>(shift);
  float fx = static_cast<float>(x);
  float fy = static_cast<float>(y);
  MouseMoveEvent(b, s, fx, fy);
}

void USLabel::KeyDown(int16_t& keyCode, int16_t& shift) {
  KeyDownEvent(keyCode, shift);
}
void USLabel::KeyPress(int16_t& keyAscii) {
  KeyPressEvent(keyAscii);
}
void USLabel::KeyUp(int16_t& keyCode, int16_t& shift) {
  KeyUpEvent(keyCode, shift);
}

void USLabel::MouseDown(int16_t button, int16_t shift, float x, float y) {
  MouseDownEvent(button, shift, x, y);
}

void USLabel::MouseUp(int16_t button, int16_t shift, float x, float y) {
  MouseUpEvent(button, shift, x, y);
}

void USLabel::Click() {
  ClickEvent();
}
void USLabel::DblClick() {
  DblClickEvent();
}

// ---- painting

LabelStyle USLabel::StartStyle() const {
  LabelStyle s;
  s.Bold = font_->get_Bold();
  s.Italic = font_->get_Italic();
  s.Underline = font_->get_Underline();
  s.Strikethrough = font_->get_Strikethrough();
  s.ForeColor = foreColor_;
  s.Colour = Translate(foreColor_);
  return s;
}

double USLabel::TextWidth(Drawing& d, StringView text, bool bold, bool italic) const {
  HDC dc = d.measure.get();
  HGDIOBJ old = SelectObject(dc, d.fonts.Get(bold, italic, false, false));
  int widest = 0;
  ForEachLine(text, [&](StringView line, bool) { widest = std::max(widest, WidthIn(dc, line)); });
  SelectObject(dc, old);
  return widest;
}

double USLabel::TextHeight(Drawing& d, StringView text) const {
  HDC dc = d.measure.get();
  HGDIOBJ old = SelectObject(dc, d.fonts.Get(pen_.bold, pen_.italic, false, false));
  const int line = HeightIn(dc);
  SelectObject(dc, old);
  int lines = 0;
  ForEachLine(text, [&](StringView, bool) { ++lines; });
  return static_cast<double>(lines) * line;
}

void USLabel::Cls() {
  pen_ = Pen{};
  pen_.bold = font_->get_Bold();
  pen_.italic = font_->get_Italic();
  pen_.underline = font_->get_Underline();
  pen_.strike = font_->get_Strikethrough();
  pen_.foreColor = foreColor_;
  HDC dc = hDC();
  if (!dc) return;
  // Transparent shows the container's own background colour: a child window
  // cannot see through to its parent's pixels, and the container's colour is
  // what lies behind a label on a form.
  const uint32_t back = backStyle_ == Transparent ? Ambient().BackColor : backColor_;
  HBRUSH brush = CreateSolidBrush(Translate(back));
  const RECT all{0, 0, std::max(ScaleWidth(), 1), std::max(ScaleHeight(), 1)};
  FillRect(dc, &all, brush);
  DeleteObject(brush);
}

void USLabel::NewLine(Drawing& d) {
  int height = pen_.lineHeight;
  if (height == 0) {
    HDC dc = d.measure.get();
    HGDIOBJ old = SelectObject(dc, d.fonts.Get(pen_.bold, pen_.italic, false, false));
    height = HeightIn(dc);
    SelectObject(dc, old);
  }
  pen_.x = 0;
  pen_.y += height;
  pen_.lineHeight = 0;
}

void USLabel::Print(Drawing& d, StringView text, bool lineEnd) {
  HDC dc = hDC();
  if (!dc) return;
  HGDIOBJ old = SelectObject(dc, d.fonts.Get(pen_.bold, pen_.italic, pen_.underline, pen_.strike));
  const int oldMode = SetBkMode(dc, TRANSPARENT);
  const COLORREF oldColour = SetTextColor(dc, Translate(pen_.foreColor));
  const UINT oldAlign = SetTextAlign(dc, TA_LEFT | TA_TOP | TA_NOUPDATECP);
  const int height = HeightIn(dc);
  ForEachLine(text, [&](StringView line, bool more) {
    if (!line.empty()) TextOutW(dc, pen_.x, pen_.y, line.data(), static_cast<int>(line.size()));
    pen_.x += WidthIn(dc, line);
    pen_.lineHeight = std::max(pen_.lineHeight, height);
    if (more) NewLine(d);
  });
  SetTextAlign(dc, oldAlign);
  SetTextColor(dc, oldColour);
  SetBkMode(dc, oldMode);
  SelectObject(dc, old);
  if (lineEnd) NewLine(d);
}

void USLabel::ApplyAutoSize() {
  server::Extender* e = GetExtender();
  if (!e) return;
  const float width = static_cast<float>(std::ceil(textWidth_)) * kTwipsPerPixel;
  const float height = static_cast<float>(std::ceil(textHeight_)) * kTwipsPerPixel;
  if (width == e->Width() && height == e->Height()) return;
  e->Move(e->Left(), e->Top(), width, height);
}

void USLabel::Refresh() {
  if (closing_ || refreshing_) return;
  const Busy busy(refreshing_);
  Drawing d(*font_);
  pen_.bold = font_->get_Bold();
  pen_.italic = font_->get_Italic();
  const auto widthOf = [this, &d](StringView text, bool bold, bool italic) {
    return TextWidth(d, text, bold, italic);
  };
  const auto heightOf = [this, &d](StringView text) { return TextHeight(d, text); };

  segments_ = LabelSegments::Parse(caption_, StartStyle());
  // Without a window there is no width to wrap to.
  if (wordWrap_ && hWnd()) {
    LabelSegments::Wrap(segments_, static_cast<double>(ScaleWidth()), widthOf);
  }
  const LabelExtent extent = LabelSegments::Measure(segments_, caption_, font_->get_Bold(),
                                                    font_->get_Italic(), widthOf, heightOf);
  textWidth_ = extent.Width;
  textHeight_ = extent.Height;
  if (autoSize_) ApplyAutoSize();

  Cls();
  plainText_.clear();
  if (!Trim(caption_).empty()) {
    const Pen saved = pen_;
    for (size_t i = 0; i < segments_.size(); ++i) {
      const LabelSegment& s = segments_[i];
      const bool lineEnd = i + 1 < segments_.size() && segments_[i + 1].NewLine;
      pen_.foreColor = s.Colour;
      pen_.bold = s.Bold;
      pen_.italic = s.Italic;
      pen_.underline = s.Underline;
      pen_.strike = s.Strikethrough;
      Print(d, s.Text, lineEnd);
      plainText_ += s.Text;
      if (lineEnd) plainText_ += u"\r\n";
    }
    pen_.bold = saved.bold;
    pen_.italic = saved.italic;
    pen_.underline = saved.underline;
    pen_.strike = saved.strike;
    pen_.foreColor = saved.foreColor;
  }
  UserControl::Refresh();
}

}  // namespace vantor::frame
