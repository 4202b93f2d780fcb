// USButton's properties, persistence, container events and state changes.
// Its painting is in USButtonPaint.cpp.
#include "frame/USButton.h"

#include <algorithm>
#include <cmath>

#include "frame/CaptionAccessKey.h"
#include "frame/ThemePalette.h"
#include "platform/User.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::frame {

namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int32_t kMinimumSize = 15;

constexpr const char* kColorNames[24] = {
    "ForeColor",          "ForeColorDisabled",      "ForeColorDown",
    "ForeColorOver",      "BorderColor",            "BorderColorDisabled",
    "BorderColorDown",    "BorderColorOver",        "GradientColor1",
    "GradientColor2",     "GradientColor3",         "GradientColor4",
    "GradientColorDisabled1", "GradientColorDisabled2", "GradientColorDisabled3",
    "GradientColorDisabled4", "GradientColorDown1",  "GradientColorDown2",
    "GradientColorDown3", "GradientColorDown4",     "GradientColorOver1",
    "GradientColorOver2", "GradientColorOver3",     "GradientColorOver4",
};

// The pointer a hand stands for. The surface shows the platform's hand for a
// custom pointer, so this picture only has to be an icon; it is drawn as a
// small hand all the same, for hosts that show the icon itself.
std::shared_ptr<server::StdPicture> HandIcon() {
  static const std::shared_ptr<server::StdPicture> icon = [] {
    static const char* const kRows[16] = {
        "     ##         ", "    #..#        ", "    #..#        ", "    #..#        ",
        "    #..###      ", "    #..#..###   ", "    #..#..#..## ", " ## #..#..#..#.#",
        "#..##........#.#", "#...#..........#", " #.............#", "  #............#",
        "  #...........# ", "   #..........# ", "    #........#  ", "    ##########  ",
    };
    std::vector<uint32_t> px(16 * 16, 0);
    for (int y = 0; y < 16; ++y)
      for (int x = 0; x < 16; ++x)
        px[static_cast<size_t>(y) * 16 + x] =
            kRows[y][x] == '#' ? 0xFF000000u : kRows[y][x] == '.' ? 0xFFFFFFFFu : 0u;
    return server::StdPicture::FromPixels(16, 16, px, server::PictureType::Icon);
  }();
  return icon;
}

std::vector<uint8_t> BytesOf(const Variant& v) {
  return v.Array() ? v.Array()->Bytes() : std::vector<uint8_t>{};
}

USButton::PicturePtr PictureOf(const Variant& v) {
  const ObjectPtr* o = v.ObjectRef();
  return o ? std::dynamic_pointer_cast<server::StdPicture>(*o) : nullptr;
}

}  // namespace

USButton::USButton() : UserControl(*server::TypeLibrary::Get().FindClass("USButton")) {
  for (int32_t role = 0; role < 24; ++role) colors_[role] = ThemePalette::Color(Windows_8, role);
}

USButton::~USButton() {
  if (hFont_ != nullptr) DeleteObject(hFont_);
}

void USButton::Register() {
  server::Registry::Instance().Register("USButton", [] { return std::make_shared<USButton>(); });
}

const char* USButton::ColorName(int32_t role) {
  return role >= 0 && role < 24 ? kColorNames[role] : "";
}

// ---------------------------------------------------------------- setters

template <class T>
bool USButton::Assign(T& field, const T& value, const char16_t* name) {
  if (field == value) return false;
  field = value;
  PropertyChanged(name);
  return true;
}

void USButton::Changed(const char16_t* name) { PropertyChanged(name); }

void USButton::Refresh() {
  needsLayout_ = true;
  Redraw(-1, true);
}

void USButton::About() {
  // The library's about box is the message box's business; a control
  // without a form has nothing to show it on.
}

void USButton::put_CaptionDistance(int16_t v) {
  if (Assign(captionDistance_, v, u"CaptionDistance")) Refresh();
}
void USButton::put_Alignment(int32_t v) {
  if (Assign(alignment_, v, u"Alignment")) Refresh();
}
void USButton::put_Theme(int32_t v) {
  if (!Assign(theme_, v, u"Theme")) return;
  buttonShape_ = ThemePalette::ButtonShapeOf(v);
  gradientColors_ = ThemePalette::GradientColorsOf(v);
  for (int32_t role = 0; role < 24; ++role) colors_[role] = ThemePalette::Color(v, role);
  Refresh();
}
void USButton::put_GradientColors(int32_t v) {
  if (Assign(gradientColors_, v, u"GradientColors")) Redraw(-1, true);
}
void USButton::put_ButtonShape(int32_t v) {
  if (Assign(buttonShape_, v, u"ButtonShape")) Refresh();
}

OLE_COLOR USButton::Color(int32_t role) const {
  return role >= 0 && role < 24 ? colors_[role] : 0;
}
void USButton::SetColor(int32_t role, OLE_COLOR v) {
  if (role < 0 || role >= 24 || colors_[role] == v) return;
  colors_[role] = v;
  const std::string name = kColorNames[role];
  PropertyChanged(String(name.begin(), name.end()));
  Redraw(-1, true);
}

void USButton::put_ToolTipBackColor(OLE_COLOR v) {
  if (Assign(tipBackColor_, v, u"ToolTipBackColor")) CreateToolTip();
}
void USButton::put_ToolTipForeColor(OLE_COLOR v) {
  if (Assign(tipForeColor_, v, u"ToolTipForeColor")) CreateToolTip();
}
void USButton::put_ToolTipIcon(int32_t v) {
  if (Assign(tipIcon_, v, u"ToolTipIcon")) CreateToolTip();
}
void USButton::put_ToolTipCentered(bool v) {
  if (Assign(tipCentered_, v, u"ToolTipCentered")) CreateToolTip();
}
void USButton::put_ToolTipVisibleTime(int32_t v) {
  if (Assign(tipVisibleTime_, v, u"ToolTipVisibleTime")) CreateToolTip();
}
void USButton::put_ToolDelayTime(int32_t v) {
  if (Assign(tipDelayTime_, v, u"ToolDelayTime")) CreateToolTip();
}
void USButton::put_ToolTipStyle(int32_t v) {
  if (Assign(tipStyle_, v, u"ToolTipStyle")) CreateToolTip();
}
void USButton::put_ToolTipTitle(const String& v) {
  if (Assign(tipTitle_, v, u"ToolTipTitle")) CreateToolTip();
}
void USButton::put_ToolTipDescription(const String& v) {
  if (Assign(tipDescription_, v, u"ToolTipDescription")) CreateToolTip();
}

void USButton::CreateToolTip() {
  // The tip needs the window at its final size, which it has from Show on;
  // the designer shows no tips.
  if (!tooltip_ || !userMode_ || hWnd() == nullptr || reading_) return;
  tooltip_->put_BackColor(tipBackColor_);
  tooltip_->put_ForeColor(tipForeColor_);
  tooltip_->put_Icon(static_cast<plumbing::iIconType>(tipIcon_));
  tooltip_->put_Centered(tipCentered_);
  tooltip_->put_VisibleTime(tipVisibleTime_);
  tooltip_->put_DelayTime(tipDelayTime_);
  tooltip_->put_Style(static_cast<plumbing::ENUM_TOOLTIP_STYLE>(tipStyle_));
  tooltip_->put_Title(tipTitle_);
  tooltip_->put_TipText(tipDescription_);
  tooltip_->Create(hWnd());
}

void USButton::DestroyToolTip() {
  if (tooltip_) tooltip_->Destroy();
}

HWND USButton::ToolTipWindow() const { return tooltip_ ? tooltip_->hWnd() : nullptr; }

void USButton::put_Locked(bool v) { Assign(locked_, v, u"Locked"); }

void USButton::put_Caption(const String& v) {
  if (!Assign(caption_, v, u"Caption")) return;
  SetAccessKeys(CaptionAccessKey::Of(caption_));
  Refresh();
}

void USButton::put_CheckBoxMode(bool v) {
  if (Assign(checkBoxMode_, v, u"CheckBox")) Redraw(-1, true);
}

bool USButton::get_Enabled() const { return SurfaceEnabled(); }

void USButton::put_Enabled(bool v) {
  if (SurfaceEnabled() == v) return;
  SetSurfaceEnabled(v);
  PropertyChanged(u"Enabled");
  if (v)
    Redraw(RestState());
  else
    Redraw(State_Disabled);
}

void USButton::put_HandPointer(bool v) {
  if (!Assign(handPointer_, v, u"HandPointer")) return;
  ApplyHandPointer();
}

void USButton::ApplyHandPointer() {
  if (handPointer_) {
    SetMousePointer(server::vbCustom);
    SetMouseIcon(HandIcon());
  } else {
    SetMousePointer(server::vbDefault);
    SetMouseIcon(nullptr);
  }
}

void USButton::put_Value(bool v) {
  if (!Assign(value_, v, u"Value")) return;
  if (v && !checkBoxMode_) {
    if (userMode_) {
      // Setting Value presses the button from code: a click, after which
      // Value reads False again.
      lastButton_ = 1;
      ClickAction();
    } else {
      value_ = false;
    }
    return;
  }
  Redraw(-1, true);
}

void USButton::put_ShowFocusRect(bool v) {
  if (Assign(showFocusRect_, v, u"ShowFocusRect")) Redraw(-1, true);
}
void USButton::put_ShowFocusRectDown(bool v) {
  if (Assign(showFocusRectDown_, v, u"ShowFocusRectDown")) Redraw(-1, true);
}

void USButton::putref_Font(FontPtr v) {
  if (!v) return;
  font_ = std::move(v);
  PropertyChanged(u"Font");
  Refresh();
}

template <class T, class Get, class Put>
void USButton::PutFontPart(Get get, Put put, T v) {
  if (!font_ || ((*font_).*get)() == v) return;
  ((*font_).*put)(v);
  PropertyChanged(u"Font");
  Refresh();
}

bool USButton::get_FontBold() const { return font_ && font_->get_Bold(); }
void USButton::put_FontBold(bool v) {
  PutFontPart(&server::StdFont::get_Bold, &server::StdFont::put_Bold, v);
}
bool USButton::get_FontItalic() const { return font_ && font_->get_Italic(); }
void USButton::put_FontItalic(bool v) {
  PutFontPart(&server::StdFont::get_Italic, &server::StdFont::put_Italic, v);
}
float USButton::get_FontSize() const {
  return font_ ? static_cast<float>(font_->get_Size().ToDouble()) : 0.0f;
}
void USButton::put_FontSize(float v) {
  if (const std::optional<Currency> size = Currency::FromDouble(v))
    PutFontPart(&server::StdFont::get_Size, &server::StdFont::put_Size, *size);
}
bool USButton::get_FontStrikeThru() const { return font_ && font_->get_Strikethrough(); }
void USButton::put_FontStrikeThru(bool v) {
  PutFontPart(&server::StdFont::get_Strikethrough, &server::StdFont::put_Strikethrough, v);
}
bool USButton::get_FontUnderline() const { return font_ && font_->get_Underline(); }
void USButton::put_FontUnderline(bool v) {
  PutFontPart(&server::StdFont::get_Underline, &server::StdFont::put_Underline, v);
}

int32_t USButton::get_hDC() const {
  return static_cast<int32_t>(reinterpret_cast<intptr_t>(hDC()));
}
int32_t USButton::get_hwnd() const {
  return static_cast<int32_t>(reinterpret_cast<intptr_t>(hWnd()));
}

void USButton::putref_MouseIcon(PicturePtr v) {
  SetMouseIcon(std::move(v));
  PropertyChanged(u"MouseIcon");
}
void USButton::put_MousePointer(int16_t v) {
  if (MousePointer() == v) return;
  SetMousePointer(v);
  PropertyChanged(u"MousePointer");
}

void USButton::putref_Picture(PicturePtr v) {
  picture_ = std::move(v);
  PropertyChanged(u"Picture");
  Refresh();
}

void USButton::PutStatePicture(PicturePtr& field, PicturePtr v, const char16_t* name,
                               bool showing) {
  if (v && v->get_Type() == server::PictureType::None) v = nullptr;
  if (!v) {
    field = nullptr;
    PropertyChanged(name);
    return;
  }
  // Without a picture the state picture becomes the picture itself.
  if (!picture_) {
    putref_Picture(std::move(v));
    return;
  }
  if (pictureSize_ == Picture_Normal &&
      (v->PixelWidth() != picture_->PixelWidth() || v->PixelHeight() != picture_->PixelHeight()))
    pictureSize_ = Picture_Custom;
  field = std::move(v);
  PropertyChanged(name);
  if (showing) Redraw(-1, true);
}

void USButton::putref_PictureOn(PicturePtr v) {
  PutStatePicture(pictureOn_, std::move(v), u"PictureOn", mouseOver_);
}

void USButton::putref_PictureOver(PicturePtr v) {
  PutStatePicture(pictureOver_, std::move(v), u"PictureOver", pressed_);
}

void USButton::putref_PictureToChange(PicturePtr v) {
  pictureToChange_ = std::move(v);
  PropertyChanged(u"PictureToChange");
}

void USButton::put_PictureAlignment(int32_t v) {
  if (Assign(pictureAlignment_, v, u"PictureAlignment")) Refresh();
}

void USButton::put_PictureOpacity(int16_t v) {
  // The guard compares the stored value with itself, so an assignment never
  // gets past it: the opacity stays as it was read from the form.
  (void)v;
  const int16_t current = pictureOpacity_;
  if (current == pictureOpacity_) return;
}

void USButton::put_PictureSize(int32_t v) {
  if (!Assign(pictureSize_, v, u"PictureSize")) return;
  static constexpr int16_t kSides[5] = {0, 16, 24, 32, 48};
  if (v >= Picture_16x16 && v <= Picture_48x48) {
    pictureSizeX_ = pictureSizeY_ = kSides[v];
  } else if (v == Picture_Normal && picture_) {
    // X from the picture's height and Y from its width, by the surface's
    // HiMetric conversion.
    pictureSizeX_ =
        static_cast<int16_t>(server::StdPicture::HiMetricToPixels(picture_->get_Height()));
    pictureSizeY_ =
        static_cast<int16_t>(server::StdPicture::HiMetricToPixels(picture_->get_Width()));
  }
  Refresh();
}

void USButton::put_PictureSizeX(int16_t v) {
  if (pictureSizeX_ == v) return;
  pictureSizeX_ = v;
  pictureSize_ = Picture_Custom;
  PropertyChanged(u"PictureSizeX");
  PropertyChanged(u"PictureSize");
  Refresh();
}

void USButton::put_PictureSizeY(int16_t v) {
  if (pictureSizeY_ == v) return;
  pictureSizeY_ = v;
  pictureSize_ = Picture_Custom;
  PropertyChanged(u"PictureSizeY");
  PropertyChanged(u"PictureSize");
  Refresh();
}

void USButton::put_MaskColor(OLE_COLOR v) {
  if (Assign(maskColor_, v, u"MaskColor")) Redraw(-1, true);
}
void USButton::put_UseMaskColor(bool v) {
  if (Assign(useMaskColor_, v, u"UseMaskColor")) Redraw(-1, true);
}

void USButton::put_Picture32Dib(const std::vector<uint8_t>& v) {
  if (!Assign(dibBytes_, v, u"Picture32Dib")) return;
  Refresh();
}

void USButton::ClearPicture32Dib() {
  dibBytes_.clear();
  dib_.reset();
  PropertyChanged(u"Picture32Dib");
  Refresh();
}

// ---------------------------------------------------------------- images

bool USButton::StoreImage(imaging::c32bppDIB& dib, bool loaded) {
  if (!loaded) return false;
  std::vector<uint8_t> png;
  if (!dib.SaveToStream_PNG(png) || png.empty()) return false;
  dibBytes_ = std::move(png);
  dib_.reset();
  picture_ = nullptr;
  PropertyChanged(u"Picture32Dib");
  Refresh();
  return true;
}

bool USButton::LoadImage_FromUSImageList(const ObjectPtr& objUSImageList, const Variant& Index,
                                         const Variant& Key) {
  // Reached by name, as any image list object would be: its lists, the
  // images of the one asked for, and the icon of the key.
  auto* list = dynamic_cast<server::Dispatch*>(objUSImageList.get());
  if (list == nullptr) return false;
  const Variant lists = server::Call(*list, "ImageLists", Index);
  const ObjectPtr* listObj = lists.ObjectRef();
  auto* one = listObj ? dynamic_cast<server::Dispatch*>(listObj->get()) : nullptr;
  if (one == nullptr) return false;
  const Variant images = server::Call(*one, "Images");
  const ObjectPtr* imagesObj = images.ObjectRef();
  auto* imgs = imagesObj ? dynamic_cast<server::Dispatch*>(imagesObj->get()) : nullptr;
  if (imgs == nullptr) return false;
  const Variant handle = server::Call(*imgs, "ExtractIcon", Key);
  if (handle.IsEmpty() || handle.ToLong() == 0) return false;
  return LoadImage_FromHandle(handle.ToLong());
}

bool USButton::LoadImage_FromStdPicture(const PicturePtr& stdPic) {
  imaging::c32bppDIB dib;
  return StoreImage(dib, stdPic && dib.LoadPicture_StdPicture(stdPic));
}

bool USButton::LoadImage_FromHandle(int32_t Handle) {
  imaging::c32bppDIB dib;
  const auto handle = reinterpret_cast<HGDIOBJ>(static_cast<intptr_t>(Handle));
  return StoreImage(dib, Handle != 0 && dib.LoadPicture_ByHandle(handle));
}

bool USButton::LoadImage_FromArray(const std::vector<uint8_t>& Bytes, int32_t desiredIconWidth,
                                   int32_t desiredIconHeight, int32_t desiredIconBitDepth) {
  if (desiredIconWidth <= 0) desiredIconWidth = pictureSizeY_;
  if (desiredIconHeight <= 0) desiredIconHeight = pictureSizeX_;
  imaging::c32bppDIB dib;
  return StoreImage(dib, dib.LoadPicture_Stream(Bytes, desiredIconWidth, desiredIconHeight,
                                                desiredIconBitDepth));
}

bool USButton::LoadImage_FromFile(const String& FileName, int32_t desiredIconWidth,
                                  int32_t desiredIconHeight, int32_t desiredIconBitDepth) {
  if (desiredIconWidth <= 0) desiredIconWidth = pictureSizeY_;
  if (desiredIconHeight <= 0) desiredIconHeight = pictureSizeX_;
  imaging::c32bppDIB dib;
  return StoreImage(dib, dib.LoadPicture_File(FileName, desiredIconWidth, desiredIconHeight,
                                              desiredIconBitDepth));
}

bool USButton::LoadImage_FromResource(const ObjectPtr& VBglobal, const Variant& ResSection,
                                      const Variant& ResID, int32_t desiredIconWidth,
                                      int32_t desiredIconHeight, int32_t desiredIconBitDepth) {
  (void)VBglobal;  // the host's resources are the platform's, not reached through it
  if (desiredIconWidth <= 0) desiredIconWidth = pictureSizeY_;
  if (desiredIconHeight <= 0) desiredIconHeight = pictureSizeX_;
  imaging::c32bppDIB dib;
  return StoreImage(dib, dib.LoadPicture_Resource(ResID, ResSection, nullptr, desiredIconWidth,
                                                  desiredIconHeight, desiredIconBitDepth));
}

// ---------------------------------------------------------------- lifecycle

void USButton::Initialize() { tooltip_ = std::make_unique<plumbing::CTooltip>(); }

void USButton::InitProperties() {
  const server::AmbientProperties a = Ambient();
  userMode_ = a.UserMode;
  displayAsDefault_ = a.DisplayAsDefault;
  font_ = a.Font ? a.Font->Clone() : std::make_shared<server::StdFont>();
  caption_ = a.DisplayName;
  SetAccessKeys(CaptionAccessKey::Of(caption_));
  if (userMode_) {
    if (handPointer_) ApplyHandPointer();
    AttachMouse();
  }
  needsLayout_ = true;
}

void USButton::ReadProperties(const server::PropertyBag& bag) {
  reading_ = true;
  const server::AmbientProperties a = Ambient();
  userMode_ = a.UserMode;
  displayAsDefault_ = a.DisplayAsDefault;
  pictureToChange_ = PictureOf(bag.ReadProperty(u"PicToChange", Variant()));
  pictureOver_ = PictureOf(bag.ReadProperty(u"PicDown", Variant()));
  pictureOn_ = PictureOf(bag.ReadProperty(u"PicHot", Variant()));
  picture_ = PictureOf(bag.ReadProperty(u"PicNormal", Variant()));
  const FontPtr ambientFont = a.Font ? a.Font : std::make_shared<server::StdFont>();
  const Variant font = bag.ReadProperty(u"Font", Variant(ObjectPtr(ambientFont)));
  font_ = font.ObjectRef() ? std::dynamic_pointer_cast<server::StdFont>(*font.ObjectRef()) : nullptr;
  font_ = font_ ? font_->Clone() : ambientFont->Clone();
  SetMouseIcon(PictureOf(bag.ReadProperty(u"MouseIcon", Variant())));
  SetMousePointer(bag.ReadProperty(u"MousePointer", Variant(int16_t{0})).ToInteger());
  paintState_ = bag.ReadProperty(u"State", Variant(int16_t{0})).ToInteger();
  dibBytes_ = BytesOf(bag.ReadProperty(u"DibPicture", Variant(std::vector<uint8_t>{})));
  dib_.reset();

  auto readLong = [&](const char16_t* key, int32_t def) {
    return bag.ReadProperty(key, Variant(def)).ToLong();
  };
  auto readInt = [&](const char16_t* key, int16_t def) {
    return bag.ReadProperty(key, Variant(def)).ToInteger();
  };
  auto readBool = [&](const char16_t* key, bool def) {
    return bag.ReadProperty(key, Variant(def)).ToBoolean();
  };
  auto readColor = [&](StringView key, OLE_COLOR def) {
    return static_cast<OLE_COLOR>(bag.ReadProperty(key, Variant(static_cast<int32_t>(def))).ToLong());
  };
  // The plain keys, in the alphabetical order the control has always read them.
  alignment_ = readLong(u"Alignment", On_Center);
  for (int32_t role = 0; role < 24; ++role) {
    const std::string name = kColorNames[role];
    colors_[role] = readColor(String(name.begin(), name.end()), ThemePalette::Color(Windows_8, role));
  }
  buttonShape_ = readLong(u"ButtonShape", Cut_Sides);
  caption_ = bag.ReadProperty(u"Caption", Variant(a.DisplayName)).ToString();
  captionDistance_ = readInt(u"CaptionDistance", 0);
  checkBoxMode_ = readBool(u"CheckBox", false);
  const bool enabled = readBool(u"Enabled", true);
  gradientColors_ = readLong(u"GradientColors", Two_Colors);
  handPointer_ = readBool(u"HandPointer", true);
  locked_ = readBool(u"Locked", false);
  maskColor_ = readColor(u"MaskColor", 0xC0C0C0);
  pictureAlignment_ = readLong(u"PicAlign", Picture_LeftOfCaption);
  pictureOpacity_ = readInt(u"PicOpacity", 100);
  pictureSize_ = readInt(u"PicSize", 0);
  pictureSizeX_ = readInt(u"PicSizeH", 16);
  pictureSizeY_ = readInt(u"PicSizeW", 16);
  showFocusRect_ = readBool(u"ShowFocusRect", true);
  showFocusRectDown_ = readBool(u"ShowFocusRectDown", true);
  theme_ = readInt(u"Theme", Windows_8);
  tipDelayTime_ = readLong(u"ToolDelayTime", 500);
  tipBackColor_ = readColor(u"ToolTipBackColor", 0xD7FCFE);
  tipCentered_ = readBool(u"ToolTipCentered", false);
  tipDescription_ = bag.ReadProperty(u"ToolTipDescription", Variant(String())).ToString();
  tipForeColor_ = readColor(u"ToolTipForeColor", 0);
  tipIcon_ = readLong(u"ToolTipIcon", 0);
  tipStyle_ = readLong(u"ToolTipStyle", 1);
  tipTitle_ = bag.ReadProperty(u"ToolTipTitle", Variant(String())).ToString();
  tipVisibleTime_ = readLong(u"ToolTipVisibleTime", 5000);
  useMaskColor_ = readBool(u"UseMask", true);
  value_ = readBool(u"Value", false);

  SetAccessKeys(CaptionAccessKey::Of(caption_));
  SetSurfaceEnabled(enabled);
  if (userMode_ && handPointer_) ApplyHandPointer();
  needsLayout_ = true;
  if (userMode_) AttachMouse();
  reading_ = false;
}

void USButton::WriteProperties(server::PropertyBag& bag) {
  const server::AmbientProperties a = Ambient();
  auto pic = [](const PicturePtr& p) { return p ? Variant(ObjectPtr(p)) : Variant(); };
  bag.WriteProperty(u"PicToChange", pic(pictureToChange_), Variant());
  bag.WriteProperty(u"PicDown", pic(pictureOver_), Variant());
  bag.WriteProperty(u"PicHot", pic(pictureOn_), Variant());
  bag.WriteProperty(u"PicNormal", pic(picture_), Variant());
  bag.WriteProperty(u"Font", Variant(ObjectPtr(font_)),
                    a.Font ? Variant(ObjectPtr(a.Font)) : Variant());
  bag.WriteProperty(u"MouseIcon", pic(MouseIcon()), Variant());
  bag.WriteProperty(u"MousePointer", Variant(MousePointer()), Variant(int16_t{0}));
  bag.WriteProperty(u"State", Variant(static_cast<int16_t>(paintState_)), Variant(int16_t{0}));
  bag.WriteProperty(u"DibPicture", Variant(dibBytes_), Variant(std::vector<uint8_t>{}));

  auto writeColor = [&](StringView key, OLE_COLOR v, OLE_COLOR def) {
    bag.WriteProperty(key, Variant(static_cast<int32_t>(v)), Variant(static_cast<int32_t>(def)));
  };
  bag.WriteProperty(u"Alignment", Variant(alignment_), Variant(int32_t{On_Center}));
  for (int32_t role = 0; role < 24; ++role) {
    const std::string name = kColorNames[role];
    writeColor(String(name.begin(), name.end()), colors_[role],
               ThemePalette::Color(Windows_8, role));
  }
  bag.WriteProperty(u"ButtonShape", Variant(buttonShape_), Variant(int32_t{Cut_Sides}));
  bag.WriteProperty(u"Caption", Variant(caption_), Variant(a.DisplayName));
  bag.WriteProperty(u"CaptionDistance", Variant(captionDistance_), Variant(int16_t{0}));
  bag.WriteProperty(u"CheckBox", Variant(checkBoxMode_), Variant(false));
  bag.WriteProperty(u"Enabled", Variant(SurfaceEnabled()), Variant(true));
  bag.WriteProperty(u"GradientColors", Variant(gradientColors_), Variant(int32_t{Two_Colors}));
  bag.WriteProperty(u"HandPointer", Variant(handPointer_), Variant(true));
  bag.WriteProperty(u"Locked", Variant(locked_), Variant(false));
  writeColor(u"MaskColor", maskColor_, 0xC0C0C0);
  bag.WriteProperty(u"PicAlign", Variant(pictureAlignment_), Variant(int32_t{Picture_LeftOfCaption}));
  bag.WriteProperty(u"PicOpacity", Variant(pictureOpacity_), Variant(int16_t{100}));
  bag.WriteProperty(u"PicSize", Variant(static_cast<int16_t>(pictureSize_)), Variant(int16_t{0}));
  bag.WriteProperty(u"PicSizeH", Variant(pictureSizeX_), Variant(int16_t{16}));
  bag.WriteProperty(u"PicSizeW", Variant(pictureSizeY_), Variant(int16_t{16}));
  bag.WriteProperty(u"ShowFocusRect", Variant(showFocusRect_), Variant(true));
  bag.WriteProperty(u"ShowFocusRectDown", Variant(showFocusRectDown_), Variant(true));
  bag.WriteProperty(u"Theme", Variant(static_cast<int16_t>(theme_)), Variant(int16_t{Windows_8}));
  bag.WriteProperty(u"ToolDelayTime", Variant(tipDelayTime_), Variant(int32_t{500}));
  writeColor(u"ToolTipBackColor", tipBackColor_, 0xD7FCFE);
  bag.WriteProperty(u"ToolTipCentered", Variant(tipCentered_), Variant(false));
  bag.WriteProperty(u"ToolTipDescription", Variant(tipDescription_), Variant(String()));
  writeColor(u"ToolTipForeColor", tipForeColor_, 0);
  bag.WriteProperty(u"ToolTipIcon", Variant(tipIcon_), Variant(int32_t{0}));
  bag.WriteProperty(u"ToolTipStyle", Variant(tipStyle_), Variant(int32_t{1}));
  bag.WriteProperty(u"ToolTipTitle", Variant(tipTitle_), Variant(String()));
  bag.WriteProperty(u"ToolTipVisibleTime", Variant(tipVisibleTime_), Variant(int32_t{5000}));
  bag.WriteProperty(u"UseMask", Variant(useMaskColor_), Variant(true));
  bag.WriteProperty(u"Value", Variant(value_), Variant(false));
}

void USButton::AttachMouse() {
  if (hWnd() == nullptr || mouseEx_) return;
  mouseEx_ = std::make_shared<clsMouseEvents>();
  mouseEx_->MouseIn.Connect([this] {
    mouseOver_ = true;
    if (!pressed_) Redraw(State_Hot);
    MouseEnterEvent();
  });
  mouseEx_->MouseOut.Connect([this] {
    mouseOver_ = false;
    if (SurfaceEnabled()) Redraw(RestState(), lastButton_ == 1);
    MouseExitEvent();
  });
  mouseEx_->MouseMove.Connect(
      [this](int32_t, int32_t, int32_t button, int32_t shift, int32_t x, int32_t y) {
        int16_t b = static_cast<int16_t>(button), s = static_cast<int16_t>(shift);
        float fx = static_cast<float>(x), fy = static_cast<float>(y);
        MouseMoveEvent(b, s, fx, fy);
      });
  mouseEx_->Attach(static_cast<int32_t>(reinterpret_cast<intptr_t>(hWnd())));
}

void USButton::Resize() {
  RECT client{};
  GetClientRect(hWnd(), &client);
  width_ = client.right - client.left;
  height_ = client.bottom - client.top;
  if (server::Extender* e = GetExtender()) {
    // The size is put right through the container; the resize that follows
    // does the painting.
    if (width_ < kMinimumSize) {
      e->SetWidth(static_cast<float>(kMinimumSize * kTwipsPerPixel));
      return;
    }
    if (height_ < kMinimumSize) {
      e->SetHeight(static_cast<float>(kMinimumSize * kTwipsPerPixel));
      return;
    }
  }
  needsLayout_ = true;
  Redraw(-1, true);
}

void USButton::Show() { CreateToolTip(); }

void USButton::Terminate() {
  // The tracker goes first, so that its subclassing ends while the window
  // still exists.
  if (mouseEx_) mouseEx_->Attach(0);
  mouseEx_.reset();
  dibBytes_.clear();
  dib_.reset();
  tooltip_.reset();
}

// ---------------------------------------------------------------- events

void USButton::GotFocus() {
  hasFocus_ = true;
  if (!pressed_) Redraw(State_Hot);
}

void USButton::LostFocus() {
  hasFocus_ = pressed_ = spaceDown_ = false;
  if (SurfaceEnabled()) Redraw(State_Normal, true);
}

void USButton::Capture() {
  if (GetCapture() != hWnd()) SetCapture(hWnd());
}

void USButton::Release() {
  if (GetCapture() == hWnd()) ReleaseCapture();
}

void USButton::KeyDown(int16_t& keyCode, int16_t& shift) {
  if (keyCode == VK_SPACE && shift != 4) {
    pressed_ = spaceDown_ = true;
    Capture();
    Redraw(State_Down);
  } else if ((keyCode == VK_LEFT || keyCode == VK_UP) && shift == 0) {
    // Arrows move the focus as Tab and Shift+Tab do; the key-up of the Tab
    // is never sent, as the control has always done.
    keybd_event(VK_SHIFT, 0, 0, 0);
    keybd_event(VK_TAB, 0, 0, 0);
    keybd_event(VK_SHIFT, 45, KEYEVENTF_KEYUP, 0);
  } else if ((keyCode == VK_RIGHT || keyCode == VK_DOWN) && shift == 0) {
    keybd_event(VK_TAB, 0, 0, 0);
  }
  KeyDownEvent(keyCode, shift);
}

void USButton::KeyPress(int16_t& keyAscii) { KeyPressEvent(keyAscii); }

void USButton::KeyUp(int16_t& keyCode, int16_t& shift) {
  if (keyCode == VK_SPACE) {
    pressed_ = false;
    if (spaceDown_) {
      spaceDown_ = false;
      lastButton_ = 1;
      ClickAction();
    }
    if (pressed_)
      Capture();
    else
      Release();
  }
  KeyUpEvent(keyCode, shift);
}

void USButton::MouseDown(int16_t button, int16_t shift, float x, float y) {
  lastButton_ = button;
  if (button == 1) {
    pressed_ = true;
    Redraw(State_Down);
  }
  MouseDownEvent(button, shift, x, y);
}

void USButton::MouseUp(int16_t button, int16_t shift, float x, float y) {
  // Only the left button: the others raise no MouseUp at all.
  if (button != 1) return;
  pressed_ = spaceDown_;
  if (!mouseOver_) Redraw(RestState());
  Release();
  MouseUpEvent(button, shift, x, y);
}

void USButton::DblClick() {
  if (lastButton_ != 1) return;
  pressed_ = true;
  Redraw(State_Down);
  // 8 keeps the Click that ends this gesture from counting.
  lastButton_ = 8;
  Capture();
  DblClickEvent();
}

void USButton::Click() {
  if (!pressed_ && lastButton_ == 1) ClickAction();
}

void USButton::ClickAction() {
  spaceDown_ = false;
  if (checkBoxMode_) {
    value_ = !value_;
    PropertyChanged(u"Value");
  }
  Redraw(State_Hot, checkBoxMode_);
  if (!checkBoxMode_) value_ = false;
  if (!locked_ && SurfaceEnabled()) ClickEvent();
}

void USButton::AmbientChanged(const String& propertyName) {
  if (propertyName == u"DisplayAsDefault") displayAsDefault_ = Ambient().DisplayAsDefault;
}

void USButton::AccessKeyPress(int16_t keyAscii) {
  if (!SurfaceEnabled()) return;
  if (spaceDown_) Release();
  if (checkBoxMode_ && (keyAscii == 13 || keyAscii == 27)) return;
  pressed_ = false;
  lastButton_ = 1;
  ClickAction();
}

void USButton::ShowState(int32_t state, bool focused) {
  hasFocus_ = focused;
  mouseOver_ = state == State_Hot;
  pressed_ = state == State_Down;
  Redraw(state, true);
}

// ---------------------------------------------------------------- bindings

template <int32_t... R>
void USButton::BindColors(server::Binder<USButton>& b, std::integer_sequence<int32_t, R...>) {
  (b.Property(kColorNames[R], &USButton::GetColor<R>, &USButton::PutColor<R>), ...);
}

const server::Bindings* USButton::Bound() const {
  static const server::Bindings bindings = [] {
    server::Binder<USButton> b(*server::TypeLibrary::Get().FindClass("USButton"));
    b.Method("About", &USButton::About)
        .Property("CaptionDistance", &USButton::get_CaptionDistance, &USButton::put_CaptionDistance)
        .Property("Alignment", &USButton::get_Alignment, &USButton::put_Alignment)
        .Property("Theme", &USButton::get_Theme, &USButton::put_Theme)
        .Property("GradientColors", &USButton::get_GradientColors, &USButton::put_GradientColors)
        .Property("ToolTipBackColor", &USButton::get_ToolTipBackColor,
                  &USButton::put_ToolTipBackColor)
        .Property("ToolTipForeColor", &USButton::get_ToolTipForeColor,
                  &USButton::put_ToolTipForeColor)
        .Property("ToolTipIcon", &USButton::get_ToolTipIcon, &USButton::put_ToolTipIcon)
        .Property("ToolTipCentered", &USButton::get_ToolTipCentered, &USButton::put_ToolTipCentered)
        .Property("ToolTipVisibleTime", &USButton::get_ToolTipVisibleTime,
                  &USButton::put_ToolTipVisibleTime)
        .Property("ToolDelayTime", &USButton::get_ToolDelayTime, &USButton::put_ToolDelayTime)
        .Property("ToolTipStyle", &USButton::get_ToolTipStyle, &USButton::put_ToolTipStyle)
        .Property("ToolTipTitle", &USButton::get_ToolTipTitle, &USButton::put_ToolTipTitle)
        .Property("ToolTipDescription", &USButton::get_ToolTipDescription,
                  &USButton::put_ToolTipDescription)
        .Property("Picture32Dib", &USButton::get_Picture32Dib, &USButton::put_Picture32Dib)
        .Method("ClearPicture32Dib", &USButton::ClearPicture32Dib)
        .Property("Locked", &USButton::get_Locked, &USButton::put_Locked)
        .Property("ButtonShape", &USButton::get_ButtonShape, &USButton::put_ButtonShape)
        .Property("Caption", &USButton::get_Caption, &USButton::put_Caption)
        .Property("CheckBoxMode", &USButton::get_CheckBoxMode, &USButton::put_CheckBoxMode)
        .Property("Enabled", &USButton::get_Enabled, &USButton::put_Enabled)
        .Property("Font", &USButton::get_Font, &USButton::putref_Font)
        .Property("FontBold", &USButton::get_FontBold, &USButton::put_FontBold)
        .Property("FontItalic", &USButton::get_FontItalic, &USButton::put_FontItalic)
        .Property("FontSize", &USButton::get_FontSize, &USButton::put_FontSize)
        .Property("FontStrikeThru", &USButton::get_FontStrikeThru, &USButton::put_FontStrikeThru)
        .Property("FontUnderline", &USButton::get_FontUnderline, &USButton::put_FontUnderline)
        .Property("HandPointer", &USButton::get_HandPointer, &USButton::put_HandPointer)
        .Get("hDC", &USButton::get_hDC)
        .Get("hwnd", &USButton::get_hwnd)
        .Property("MaskColor", &USButton::get_MaskColor, &USButton::put_MaskColor)
        .Property("MouseIcon", &USButton::get_MouseIcon, &USButton::putref_MouseIcon)
        .Property("MousePointer", &USButton::get_MousePointer, &USButton::put_MousePointer)
        .Property("Picture", &USButton::get_Picture, &USButton::putref_Picture)
        .Property("PictureAlignment", &USButton::get_PictureAlignment,
                  &USButton::put_PictureAlignment)
        .Property("PictureOn", &USButton::get_PictureOn, &USButton::putref_PictureOn)
        .Property("PictureOpacity", &USButton::get_PictureOpacity, &USButton::put_PictureOpacity)
        .Property("PictureOver", &USButton::get_PictureOver, &USButton::putref_PictureOver)
        .Property("PictureSize", &USButton::get_PictureSize, &USButton::put_PictureSize)
        .Property("PictureSizeX", &USButton::get_PictureSizeX, &USButton::put_PictureSizeX)
        .Property("PictureSizeY", &USButton::get_PictureSizeY, &USButton::put_PictureSizeY)
        .Property("PictureToChange", &USButton::get_PictureToChange,
                  &USButton::putref_PictureToChange)
        .Property("ShowFocusRect", &USButton::get_ShowFocusRect, &USButton::put_ShowFocusRect)
        .Property("ShowFocusRectDown", &USButton::get_ShowFocusRectDown,
                  &USButton::put_ShowFocusRectDown)
        .Property("UseMaskColor", &USButton::get_UseMaskColor, &USButton::put_UseMaskColor)
        .Property("Value", &USButton::get_Value, &USButton::put_Value)
        .Method("LoadImage_FromUSImageList", &USButton::LoadImage_FromUSImageList)
        .Method("LoadImage_FromStdPicture", &USButton::LoadImage_FromStdPicture)
        .Method("LoadImage_FromHandle", &USButton::LoadImage_FromHandle)
        .Method("LoadImage_FromArray", &USButton::LoadImage_FromArray)
        .Method("LoadImage_FromFile", &USButton::LoadImage_FromFile)
        .Method("LoadImage_FromResource", &USButton::LoadImage_FromResource)
        .Method("DestroyToolTip", &USButton::DestroyToolTip)
        .Method("CreateToolTip", &USButton::CreateToolTip)
        .Method("Refresh", &USButton::Refresh);
    BindColors(b, std::make_integer_sequence<int32_t, 24>{});
    return b.Done();
  }();
  return &bindings;
}

}  // namespace vantor::frame
