#pragma once
// The library's command button: four painted states (normal, hot, down,
// disabled) filled from sixteen gradient colours, a caption that wraps, a
// picture placed in nine ways that may change with the state, and a toggle
// mode. Its colours are plain properties; a theme only writes them once.
//
// Everything that repaints goes through Redraw(state, force): a request for
// the state already painted, with the focus as it was, paints nothing, so a
// mouse moving inside the button costs nothing.
#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "frame/ButtonLayout.h"
#include "frame/ThemeEnums.h"
#include "frame/clsMouseEvents.h"
#include "imaging/c32bppDIB.h"
#include "plumbing/CTooltip.h"
#include "server/Bindings.h"
#include "server/Event.h"
#include "server/StdFont.h"
#include "server/StdPicture.h"
#include "server/UserControl.h"

namespace vantor::frame {

enum ENUM_ALIGNMENTS : int32_t { To_Left_Justify = 0, On_Center = 1, To_Right_Justify = 2 };

enum ENUM_PICTURE_SIZES : int32_t {
  Picture_Normal = 0,
  Picture_16x16 = 1,
  Picture_24x24 = 2,
  Picture_32x32 = 3,
  Picture_48x48 = 4,
  Picture_Custom = 5,
};

// The paint states.
enum ButtonState : int32_t {
  State_Normal = 0,
  State_Hot = 1,
  State_Down = 2,
  State_Disabled = 3,
};

class USButton : public server::UserControl {
 public:
  using PicturePtr = std::shared_ptr<server::StdPicture>;
  using FontPtr = std::shared_ptr<server::StdFont>;

  USButton();
  ~USButton() override;
  static void Register();

  void About();
  void Refresh();

  // ---- look
  int16_t get_CaptionDistance() const { return captionDistance_; }
  void put_CaptionDistance(int16_t v);
  int32_t get_Alignment() const { return alignment_; }
  void put_Alignment(int32_t v);
  int32_t get_Theme() const { return theme_; }
  void put_Theme(int32_t v);
  int32_t get_GradientColors() const { return gradientColors_; }
  void put_GradientColors(int32_t v);
  int32_t get_ButtonShape() const { return buttonShape_; }
  void put_ButtonShape(int32_t v);
  // The 24 colours by theme role (ThemeRole): ForeColor ... GradientColorOver4.
  OLE_COLOR Color(int32_t role) const;
  void SetColor(int32_t role, OLE_COLOR v);
  // The property each role fills, as the type library names it.
  static const char* ColorName(int32_t role);
  template <int32_t R>
  OLE_COLOR GetColor() const {
    return colors_[R];
  }
  template <int32_t R>
  void PutColor(OLE_COLOR v) {
    SetColor(R, v);
  }

  // ---- tool tip
  OLE_COLOR get_ToolTipBackColor() const { return tipBackColor_; }
  void put_ToolTipBackColor(OLE_COLOR v);
  OLE_COLOR get_ToolTipForeColor() const { return tipForeColor_; }
  void put_ToolTipForeColor(OLE_COLOR v);
  int32_t get_ToolTipIcon() const { return tipIcon_; }
  void put_ToolTipIcon(int32_t v);
  bool get_ToolTipCentered() const { return tipCentered_; }
  void put_ToolTipCentered(bool v);
  int32_t get_ToolTipVisibleTime() const { return tipVisibleTime_; }
  void put_ToolTipVisibleTime(int32_t v);
  int32_t get_ToolDelayTime() const { return tipDelayTime_; }
  void put_ToolDelayTime(int32_t v);
  int32_t get_ToolTipStyle() const { return tipStyle_; }
  void put_ToolTipStyle(int32_t v);
  String get_ToolTipTitle() const { return tipTitle_; }
  void put_ToolTipTitle(const String& v);
  String get_ToolTipDescription() const { return tipDescription_; }
  void put_ToolTipDescription(const String& v);
  void CreateToolTip();
  void DestroyToolTip();
  // The tip window, 0 when there is none (no icon, design mode, not shown).
  HWND ToolTipWindow() const;

  // ---- behaviour
  bool get_Locked() const { return locked_; }
  void put_Locked(bool v);
  String get_Caption() const { return caption_; }
  void put_Caption(const String& v);
  bool get_CheckBoxMode() const { return checkBoxMode_; }
  void put_CheckBoxMode(bool v);
  bool get_Enabled() const;
  void put_Enabled(bool v);
  bool get_HandPointer() const { return handPointer_; }
  void put_HandPointer(bool v);
  bool get_Value() const { return value_; }
  void put_Value(bool v);
  bool get_ShowFocusRect() const { return showFocusRect_; }
  void put_ShowFocusRect(bool v);
  bool get_ShowFocusRectDown() const { return showFocusRectDown_; }
  void put_ShowFocusRectDown(bool v);

  // ---- font
  FontPtr get_Font() const { return font_; }
  void putref_Font(FontPtr v);
  bool get_FontBold() const;
  void put_FontBold(bool v);
  bool get_FontItalic() const;
  void put_FontItalic(bool v);
  float get_FontSize() const;
  void put_FontSize(float v);
  bool get_FontStrikeThru() const;
  void put_FontStrikeThru(bool v);
  bool get_FontUnderline() const;
  void put_FontUnderline(bool v);

  // ---- handles
  int32_t get_hDC() const;
  int32_t get_hwnd() const;

  // ---- pointer
  PicturePtr get_MouseIcon() const { return MouseIcon(); }
  void putref_MouseIcon(PicturePtr v);
  int16_t get_MousePointer() const { return MousePointer(); }
  void put_MousePointer(int16_t v);

  // ---- pictures
  PicturePtr get_Picture() const { return picture_; }
  void putref_Picture(PicturePtr v);
  PicturePtr get_PictureOn() const { return pictureOn_; }
  void putref_PictureOn(PicturePtr v);
  PicturePtr get_PictureOver() const { return pictureOver_; }
  void putref_PictureOver(PicturePtr v);
  PicturePtr get_PictureToChange() const { return pictureToChange_; }
  void putref_PictureToChange(PicturePtr v);
  int32_t get_PictureAlignment() const { return pictureAlignment_; }
  void put_PictureAlignment(int32_t v);
  int16_t get_PictureOpacity() const { return pictureOpacity_; }
  void put_PictureOpacity(int16_t v);
  int32_t get_PictureSize() const { return pictureSize_; }
  void put_PictureSize(int32_t v);
  int16_t get_PictureSizeX() const { return pictureSizeX_; }
  void put_PictureSizeX(int16_t v);
  int16_t get_PictureSizeY() const { return pictureSizeY_; }
  void put_PictureSizeY(int16_t v);
  OLE_COLOR get_MaskColor() const { return maskColor_; }
  void put_MaskColor(OLE_COLOR v);
  bool get_UseMaskColor() const { return useMaskColor_; }
  void put_UseMaskColor(bool v);
  std::vector<uint8_t> get_Picture32Dib() const { return dibBytes_; }
  void put_Picture32Dib(const std::vector<uint8_t>& v);
  void ClearPicture32Dib();

  bool LoadImage_FromUSImageList(const ObjectPtr& objUSImageList, const Variant& Index,
                                 const Variant& Key);
  bool LoadImage_FromStdPicture(const PicturePtr& stdPic);
  bool LoadImage_FromHandle(int32_t Handle);
  bool LoadImage_FromArray(const std::vector<uint8_t>& Bytes, int32_t desiredIconWidth,
                           int32_t desiredIconHeight, int32_t desiredIconBitDepth);
  bool LoadImage_FromFile(const String& FileName, int32_t desiredIconWidth,
                          int32_t desiredIconHeight, int32_t desiredIconBitDepth);
  bool LoadImage_FromResource(const ObjectPtr& VBglobal, const Variant& ResSection,
                              const Variant& ResID, int32_t desiredIconWidth,
                              int32_t desiredIconHeight, int32_t desiredIconBitDepth);

  // ---- what tests and the gallery look at
  int32_t PaintState() const { return paintState_; }
  // Paints actually made (requests the gate let through).
  int32_t Paints() const { return paints_; }
  const RECT& CaptionRect() const { return captionRect_; }
  const RECT& PictureRect() const { return pictureRect_; }
  // Puts the button in a state as the user would (hover, press, focus), for
  // pictures of each state without driving the mouse.
  void ShowState(int32_t state, bool focused);

  // ---- events
  server::Event<> ClickEvent{*this, "Click"};
  server::Event<> DblClickEvent{*this, "DblClick"};
  server::Event<int16_t&, int16_t&> KeyDownEvent{*this, "KeyDown"};
  server::Event<int16_t&> KeyPressEvent{*this, "KeyPress"};
  server::Event<int16_t&, int16_t&> KeyUpEvent{*this, "KeyUp"};
  server::Event<int16_t&, int16_t&, float&, float&> MouseDownEvent{*this, "MouseDown"};
  server::Event<> MouseEnterEvent{*this, "MouseEnter"};
  server::Event<> MouseExitEvent{*this, "MouseExit"};
  server::Event<int16_t&, int16_t&, float&, float&> MouseMoveEvent{*this, "MouseMove"};
  server::Event<int16_t&, int16_t&, float&, float&> MouseUpEvent{*this, "MouseUp"};

 protected:
  const server::Bindings* Bound() const override;

  void Initialize() override;
  void InitProperties() override;
  void ReadProperties(const server::PropertyBag& bag) override;
  void WriteProperties(server::PropertyBag& bag) override;
  void Resize() override;
  void Show() override;
  void Terminate() override;
  void GotFocus() override;
  void LostFocus() override;
  void KeyDown(int16_t& keyCode, int16_t& shift) override;
  void KeyPress(int16_t& keyAscii) override;
  void KeyUp(int16_t& keyCode, int16_t& shift) override;
  void MouseDown(int16_t button, int16_t shift, float x, float y) override;
  void MouseUp(int16_t button, int16_t shift, float x, float y) override;
  void Click() override;
  void DblClick() override;
  void AmbientChanged(const String& propertyName) override;
  void AccessKeyPress(int16_t keyAscii) override;

 private:
  int32_t RestState() const { return hasFocus_ ? State_Hot : State_Normal; }
  void Redraw(int32_t state, bool force = false);
  void PaintButton(int32_t state);
  void Layout();
  void PaintPicture();
  void PaintCaption(OLE_COLOR color);
  void FocusRect();
  void ClickAction();
  void Capture();
  void Release();
  void Changed(const char16_t* name);
  void ApplyHandPointer();
  void AttachMouse();
  bool StoreImage(imaging::c32bppDIB& dib, bool loaded);
  void SelectFont();
  template <class T>
  bool Assign(T& field, const T& value, const char16_t* name);
  void PutStatePicture(PicturePtr& field, PicturePtr v, const char16_t* name, bool showing);
  template <class T, class Get, class Put>
  void PutFontPart(Get get, Put put, T v);
  template <int32_t... R>
  static void BindColors(server::Binder<USButton>& b, std::integer_sequence<int32_t, R...>);

  // Persisted properties.
  int16_t captionDistance_ = 0;
  int32_t alignment_ = On_Center;
  int32_t theme_ = Windows_8;
  int32_t gradientColors_ = Two_Colors;
  int32_t buttonShape_ = Cut_Sides;
  std::array<OLE_COLOR, 24> colors_{};
  OLE_COLOR tipBackColor_ = 0xD7FCFE;
  OLE_COLOR tipForeColor_ = 0;
  int32_t tipIcon_ = 0;
  bool tipCentered_ = false;
  int32_t tipVisibleTime_ = 5000;
  int32_t tipDelayTime_ = 500;
  int32_t tipStyle_ = 1;
  String tipTitle_;
  String tipDescription_;
  bool locked_ = false;
  String caption_;
  bool checkBoxMode_ = false;
  bool handPointer_ = true;
  bool value_ = false;
  bool showFocusRect_ = true;
  bool showFocusRectDown_ = true;
  FontPtr font_;
  PicturePtr picture_, pictureOn_, pictureOver_, pictureToChange_;
  int32_t pictureAlignment_ = Picture_LeftOfCaption;
  int16_t pictureOpacity_ = 100;
  int32_t pictureSize_ = Picture_Normal;
  int16_t pictureSizeX_ = 16;
  int16_t pictureSizeY_ = 16;
  OLE_COLOR maskColor_ = 0xC0C0C0;
  bool useMaskColor_ = true;
  std::vector<uint8_t> dibBytes_;

  // Interaction and paint state.
  bool userMode_ = true;
  bool reading_ = false;
  bool needsLayout_ = true;
  int32_t paintState_ = State_Normal;
  bool paintedFocus_ = false;
  bool hasFocus_ = false;
  bool mouseOver_ = false;
  bool pressed_ = false;
  bool spaceDown_ = false;
  int16_t lastButton_ = 0;
  bool displayAsDefault_ = false;
  int32_t width_ = 0, height_ = 0;
  int32_t paints_ = 0;
  RECT captionRect_{};
  RECT pictureRect_{};

  std::shared_ptr<clsMouseEvents> mouseEx_;
  std::unique_ptr<plumbing::CTooltip> tooltip_;
  std::unique_ptr<imaging::c32bppDIB> dib_;
  // The GDI font made from font_, remade when the description changes.
  HFONT hFont_ = nullptr;
  FontPtr fontMade_;
};

}  // namespace vantor::frame
