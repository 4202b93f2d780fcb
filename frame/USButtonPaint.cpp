// USButton's painting: the repaint gate, the paint in its fixed order
// (region and layout, fill, frame colour and focus, picture, caption, border,
// corners), the layout and the picture's choice by state.
#include "frame/ButtonLayout.h"
#include "frame/GradientPainter.h"
#include "frame/GradientSplit.h"
#include "frame/USButton.h"
#include "frame/WindowShape.h"
#include "platform/Gdi.h"
#include "platform/Text.h"

namespace vantor::frame {

namespace {

constexpr UINT kMeasureFlags = DT_CENTER | DT_WORDBREAK | DT_NOCLIP | DT_CALCRECT;  // 0x511
constexpr UINT kDrawFlags = DT_CENTER | DT_WORDBREAK | DT_NOCLIP;                   // 0x111

}  // namespace

void USButton::Redraw(int32_t state, bool force) {
  if (state == -1) state = paintState_;
  if (!force && state == paintState_ && hasFocus_ == paintedFocus_) return;
  HDC dc = hDC();
  if (dc == nullptr || width_ <= 0 || height_ <= 0) {
    // Nothing to paint on yet; the state is still the one asked for.
    paintState_ = state;
    return;
  }
  // Cls: the surface goes back to the control's background first.
  const RECT all{0, 0, width_, height_};
  FillRect(dc, &all, GetSysColorBrush(COLOR_BTNFACE));
  paintedFocus_ = hasFocus_;
  paintState_ = state;
  ++paints_;
  PaintButton(state);
  server::UserControl::Refresh();
}

void USButton::SelectFont() {
  if (!font_) return;
  if (hFont_ == nullptr || !fontMade_ || !(*fontMade_ == *font_)) {
    HFONT made = font_->CreateHFont();
    if (made == nullptr) return;
    SelectObject(hDC(), made);
    if (hFont_ != nullptr) DeleteObject(hFont_);
    hFont_ = made;
    fontMade_ = font_->Clone();
    return;
  }
  SelectObject(hDC(), hFont_);
}

void USButton::Layout() {
  needsLayout_ = false;
  SelectFont();
  RECT measured{0, 0, width_, height_};
  const bool hasCaption = !caption_.empty();
  if (hasCaption) {
    DrawTextW(hDC(), caption_.c_str(), static_cast<int>(caption_.size()), &measured,
              kMeasureFlags);
  }
  const bool hasPicture = picture_ != nullptr || !dibBytes_.empty();
  // The layout takes PictureSizeY as the picture's width and PictureSizeX
  // as its height, as PictureSize does when it derives them.
  const ButtonLayout::Result r =
      ButtonLayout::Compute(width_, height_, hasCaption ? &measured : nullptr, hasPicture,
                            pictureSizeY_, pictureSizeX_, pictureAlignment_);
  captionRect_ = r.caption;
  pictureRect_ = r.picture;
}

void USButton::FocusRect() {
  RECT r{2, 2, width_ - 2, height_ - 2};
  SetTextColor(hDC(), 0);
  DrawFocusRect(hDC(), &r);
}

void USButton::PaintButton(int32_t state) {
  HDC dc = hDC();
  if (needsLayout_) {
    WindowShape::Apply(hWnd(), width_, height_, buttonShape_);
    Layout();
  }
  const int32_t argument = state;
  OLE_COLOR text = 0;
  auto fill = [&](int32_t first) {
    GradientSplit::Paint(dc, width_, height_, gradientColors_, colors_[first],
                         colors_[first + 1], colors_[first + 2], colors_[first + 3]);
  };
  if (!SurfaceEnabled()) {
    paintState_ = State_Disabled;
    text = colors_[Role_ForeColorDisabled];
    fill(Role_GradientColorDisabled1);
  } else {
    // A pressed toggle that is on looks on.
    if (checkBoxMode_ && value_ && state == State_Down) state = State_Normal;
    if ((state == State_Normal || state == State_Hot) && value_) {
      GradientPainter::Paint(dc, 0, 0, width_, height_, colors_[Role_GradientColorDown1],
                             colors_[Role_GradientColorDown2], Gradient_Vertical);
      text = 0;
    } else if (state == State_Normal) {
      text = colors_[Role_ForeColor];
      fill(Role_GradientColor1);
    } else if (state == State_Hot) {
      text = colors_[Role_ForeColorOver];
      fill(Role_GradientColorOver1);
    } else if (state == State_Down) {
      text = colors_[Role_ForeColorDown];
      fill(Role_GradientColorDown1);
      if (showFocusRectDown_) FocusRect();
    }
  }

  OLE_COLOR border;
  if (paintState_ == State_Disabled) {
    border = colors_[Role_BorderColorDisabled];
  } else if (paintState_ == State_Hot || (pressed_ && !mouseOver_ && argument != State_Down)) {
    border = colors_[Role_BorderColorOver];
    if (showFocusRect_ && (hasFocus_ || displayAsDefault_)) FocusRect();
  } else if (paintState_ != State_Down && (hasFocus_ || displayAsDefault_)) {
    border = colors_[Role_BorderColorOver];
    if (showFocusRect_) FocusRect();
  } else if (paintState_ == State_Down) {
    border = colors_[Role_BorderColorDown];
  } else {
    border = colors_[Role_BorderColor];
  }
  PaintPicture();
  PaintCaption(text);

  HPEN pen = CreatePen(PS_SOLID, 1, border);
  HGDIOBJ oldPen = SelectObject(dc, pen);
  HGDIOBJ oldBrush = SelectObject(dc, GetStockObject(NULL_BRUSH));
  Rectangle(dc, 0, 0, width_, height_);
  SelectObject(dc, oldBrush);
  SelectObject(dc, oldPen);
  DeleteObject(pen);
  WindowShape::DrawCorners(dc, width_, height_, buttonShape_, border);
}

void USButton::PaintCaption(OLE_COLOR color) {
  if (caption_.empty()) return;
  SelectFont();
  RECT r = captionRect_;
  const int32_t captionWidth = captionRect_.right - captionRect_.left;
  if (alignment_ == To_Left_Justify) {
    r.left = captionDistance_;
    r.right = captionDistance_ + captionWidth;
  } else if (alignment_ == To_Right_Justify) {
    r.left = width_ - captionDistance_ - captionWidth;
    r.right = width_ - captionDistance_;
  }
  SetBkMode(hDC(), TRANSPARENT);
  SetTextColor(hDC(), color);
  DrawTextW(hDC(), caption_.c_str(), static_cast<int>(caption_.size()), &r, kDrawFlags);
}

void USButton::PaintPicture() {
  const int32_t x = pictureRect_.left, y = pictureRect_.top;
  if (dib_ || !dibBytes_.empty()) {
    // Every paint loads the surface again from the stored bytes: the bytes
    // are the picture, the surface only a way to draw them.
    if (!dib_) dib_ = std::make_unique<imaging::c32bppDIB>();
    if (dib_->LoadPicture_Stream(dibBytes_, 32, 32, 32))
      dib_->Render(hDC(), x, y, pictureSizeX_, pictureSizeY_, 0, 0, 0, 0, pictureOpacity_);
    return;
  }
  PicturePtr picked;
  if (pictureOn_ && paintState_ == State_Hot)
    picked = pictureOn_;
  else if (paintState_ == State_Down || value_)
    picked = pictureOver_ ? pictureOver_ : pictureOn_;
  else
    picked = picture_;
  if (!picked) return;
  // Stretched into the box; on a non-square custom size the drawing swaps
  // what the layout measured, as the button always has.
  picked->Render(hDC(), x, y, pictureSizeX_, pictureSizeY_, 0, picked->get_Height(),
                 picked->get_Width(), -picked->get_Height());
}

}  // namespace vantor::frame
