#include "host/FormSite.h"

#include <algorithm>

#include "host/Form.h"
#include "platform/User.h"

namespace vantor::host {

FormSite::FormSite(Form& form, std::shared_ptr<server::UserControl> control, String name,
                   FormSite* container, const FormAmbience* ambience)
    : form_(form),
      control_(std::move(control)),
      name_(std::move(name)),
      container_(container),
      ambience_(ambience) {}

FormSite::~FormSite() {
  Unadvise();
}

server::AmbientProperties FormSite::Ambient() const {
  server::AmbientProperties a;
  a.UserMode = ambience_->userMode;
  // A copy each time: a control that changes its font must not change the form's.
  a.Font = ambience_->font ? ambience_->font->Clone() : std::make_shared<server::StdFont>();
  a.DisplayName = name_;
  a.DisplayAsDefault = false;
  a.BackColor = ambience_->backColor;
  a.ForeColor = ambience_->foreColor;
  a.ScaleMode = ambience_->scaleMode;
  return a;
}

void FormSite::PropertyChanged(StringView name) {
  form_.OnPropertyChanged(*this, name);
}

std::vector<ObjectPtr> FormSite::ContainedControls() const {
  return form_.ContainedIn(*this);
}

bool FormSite::TabKey(bool backwards) {
  return form_.TabKey(backwards);
}

bool FormSite::AccessKey(char16_t key) {
  return form_.AccessKey(key);
}

void FormSite::FocusChanged(server::UserControl& control, bool gotFocus) {
  (void)control;
  form_.OnFocusChanged(*this, gotFocus);
}

RECT FormSite::PixelRect() const {
  // The size is converted on its own, so that a control keeps its pixel size
  // wherever it stands.
  const int x = Form::TwipsToPixels(left_);
  const int y = Form::TwipsToPixels(top_);
  return RECT{x, y, x + Form::TwipsToPixels(width_), y + Form::TwipsToPixels(height_)};
}

void FormSite::Move(float left, float top, float width, float height) {
  left_ = left;
  top_ = top;
  width_ = std::max(0.0f, width);
  height_ = std::max(0.0f, height);
  if (hWnd()) {
    const RECT r = PixelRect();
    MoveWindow(hWnd(), r.left, r.top, r.right - r.left, r.bottom - r.top, TRUE);
  }
  form_.MarkChanged();
}

void FormSite::SetVisible(bool visible) {
  if (visible_ == visible) return;
  const bool hadFocus = form_.HoldsFocus(*this);
  visible_ = visible;
  Reveal();
  form_.OnVisibleChanged(*this, hadFocus);
  form_.MarkChanged();
}

bool FormSite::Enabled() const {
  return hWnd() ? IsWindowEnabled(hWnd()) != FALSE : enabled_;
}

void FormSite::SetEnabled(bool enabled) {
  const bool hadFocus = !enabled && form_.HoldsFocus(*this);
  enabled_ = enabled;
  if (hWnd()) EnableWindow(hWnd(), enabled ? TRUE : FALSE);
  if (hadFocus) form_.FocusAway(*this);
  form_.MarkChanged();
}

ObjectPtr FormSite::Parent() const {
  return form_.weak_from_this().lock();
}

bool FormSite::IsInside(const FormSite& other) const {
  for (const FormSite* c = container_; c; c = c->container_) {
    if (c == &other) return true;
  }
  return false;
}

bool FormSite::VisibleAll() const {
  for (const FormSite* s = this; s; s = s->container_) {
    if (!s->visible_) return false;
  }
  return true;
}

void FormSite::Preset(float left, float top, float width, float height, bool visible, bool enabled,
                      bool tabStop, int16_t tabIndex) {
  left_ = left;
  top_ = top;
  width_ = std::max(0.0f, width);
  height_ = std::max(0.0f, height);
  visible_ = visible;
  enabled_ = enabled;
  tabStop_ = tabStop;
  tabIndex_ = tabIndex;
}

bool FormSite::Realize(HWND parent) {
  if (!control_->Create(this, parent, PixelRect())) return false;
  if (!enabled_) EnableWindow(hWnd(), FALSE);
  return true;
}

void FormSite::Reveal() {
  if (hWnd()) ShowWindow(hWnd(), visible_ ? SW_SHOWNA : SW_HIDE);
}

void FormSite::Advise() {
  if (sink_) return;
  sink_ =
      control_->Events().Advise([this](const server::MemberInfo& event, std::span<Variant> args) {
        form_.OnEvent(*this, event, args);
      });
}

void FormSite::Unadvise() {
  if (!sink_) return;
  control_->Events().Unadvise(sink_);
  sink_ = 0;
}

}  // namespace vantor::host
