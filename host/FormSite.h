#pragma once
// One control's place on a form: the site through which the control asks its
// container for ambient properties and reports changes, and the extender the
// form wraps around it (its place in twips, visibility, name, tab order).
// The form owns its sites; a site owns its control.
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/WinTypes.h"
#include "runtime/String.h"
#include "server/ControlSite.h"
#include "server/StdFont.h"
#include "server/UserControl.h"

namespace vantor::host {

class Form;

// What the form tells its controls about itself. A form being loaded keeps
// a second one for the controls it is building, so that they read the new
// form's values while the old form still stands.
struct FormAmbience {
  bool userMode = false;
  std::shared_ptr<server::StdFont> font;
  uint32_t backColor = 0x8000000F;
  uint32_t foreColor = 0x80000012;
  int16_t scaleMode = server::vbTwips;
};

class FormSite final : public server::ControlSite, public server::Extender {
 public:
  FormSite(Form& form, std::shared_ptr<server::UserControl> control, String name,
           FormSite* container, const FormAmbience* ambience);
  ~FormSite() override;
  FormSite(const FormSite&) = delete;
  FormSite& operator=(const FormSite&) = delete;

  // ---- ControlSite
  server::AmbientProperties Ambient() const override;
  server::Extender& GetExtender() override { return *this; }
  void PropertyChanged(StringView name) override;
  std::vector<ObjectPtr> ContainedControls() const override;
  bool TabKey(bool backwards) override;
  bool AccessKey(char16_t key) override;
  void FocusChanged(server::UserControl& control, bool gotFocus) override;

  // ---- Extender, in twips relative to the container's client area
  float Left() const override { return left_; }
  float Top() const override { return top_; }
  float Width() const override { return width_; }
  float Height() const override { return height_; }
  void SetLeft(float twips) override { Move(twips, top_, width_, height_); }
  void SetTop(float twips) override { Move(left_, twips, width_, height_); }
  void SetWidth(float twips) override { Move(left_, top_, twips, height_); }
  void SetHeight(float twips) override { Move(left_, top_, width_, twips); }
  void Move(float left, float top, float width, float height) override;
  bool Visible() const override { return visible_; }
  void SetVisible(bool visible) override;
  // The control's window state: the control itself may disable its surface.
  bool Enabled() const override;
  void SetEnabled(bool enabled) override;
  String Name() const override { return name_; }
  ObjectPtr Parent() const override;

  // ---- the form's side
  server::UserControl& Control() const { return *control_; }
  const std::shared_ptr<server::UserControl>& ControlPtr() const { return control_; }
  HWND hWnd() const { return control_->hWnd(); }
  FormSite* Container() const { return container_; }
  // Whether `other` is this site's container, or its container's, and so on.
  bool IsInside(const FormSite& other) const;
  void SetName(String name) { name_ = std::move(name); }
  int16_t TabIndex() const { return tabIndex_; }
  void SetTabIndex(int16_t index) { tabIndex_ = index; }
  bool TabStop() const { return tabStop_; }
  void SetTabStop(bool tabStop) { tabStop_ = tabStop; }
  // Visible here and in every container.
  bool VisibleAll() const;
  void SetAmbience(const FormAmbience* ambience) { ambience_ = ambience; }

  // The extender's values before the window exists; nothing is told.
  void Preset(float left, float top, float width, float height, bool visible, bool enabled,
              bool tabStop, int16_t tabIndex);
  // Makes the control's window, hidden, at the extender's place; then the
  // form reads or initialises the control's properties and reveals it.
  bool Realize(HWND parent);
  // Shows or hides the window as the extender says.
  void Reveal();
  // Lets the program hear the control's events through the form.
  void Advise();
  void Unadvise();

 private:
  RECT PixelRect() const;

  Form& form_;
  std::shared_ptr<server::UserControl> control_;
  String name_;
  FormSite* container_;
  const FormAmbience* ambience_;
  float left_ = 0;
  float top_ = 0;
  float width_ = 0;
  float height_ = 0;
  bool visible_ = true;
  bool enabled_ = true;
  bool tabStop_ = true;
  int16_t tabIndex_ = 0;
  uint32_t sink_ = 0;
};

}  // namespace vantor::host
