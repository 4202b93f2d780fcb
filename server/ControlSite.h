#pragma once
// What a container gives each control it hosts: the ambient properties it
// reads at load, the extender (the properties the container adds around the
// control: its place in twips, visibility, name), the channel through which
// the control reports a changed property, and the keyboard routing that
// belongs to the container (tab order, access keys).
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/WinTypes.h"
#include "runtime/Object.h"
#include "runtime/String.h"
#include "server/StdFont.h"

namespace vantor::server {

class UserControl;

// The container's scale modes that the library meets.
enum ScaleModeConstants : int16_t { vbTwips = 1, vbPixels = 3 };

struct AmbientProperties {
  bool UserMode = true;               // False in the designer
  std::shared_ptr<StdFont> Font;      // the container's font; a copy is the control's default
  String DisplayName;                 // the name the container shows for the control
  bool DisplayAsDefault = false;      // the control is the container's default button
  uint32_t BackColor = 0x8000000F;    // OLE colour
  uint32_t ForeColor = 0x80000012;
  int16_t ScaleMode = vbTwips;
};

class Extender {
 public:
  virtual ~Extender() = default;
  // Twips, whatever the container's own scale mode.
  virtual float Left() const = 0;
  virtual float Top() const = 0;
  virtual float Width() const = 0;
  virtual float Height() const = 0;
  virtual void SetLeft(float twips) = 0;
  virtual void SetTop(float twips) = 0;
  virtual void SetWidth(float twips) = 0;
  virtual void SetHeight(float twips) = 0;
  virtual void Move(float left, float top, float width, float height) = 0;
  virtual bool Visible() const = 0;
  virtual void SetVisible(bool visible) = 0;
  virtual bool Enabled() const = 0;
  virtual void SetEnabled(bool enabled) = 0;
  virtual String Name() const = 0;
  virtual ObjectPtr Parent() const = 0;
};

class ControlSite {
 public:
  virtual ~ControlSite() = default;
  virtual AmbientProperties Ambient() const = 0;
  virtual Extender& GetExtender() = 0;
  // The control changed a persisted property: the container marks its form
  // as changed (and a designer refreshes its property list).
  virtual void PropertyChanged(StringView name) = 0;
  // The controls the container placed inside this one.
  virtual std::vector<ObjectPtr> ContainedControls() const = 0;

  // Keys the container owns. Each returns true when it took the key.
  virtual bool TabKey(bool backwards) = 0;
  virtual bool AccessKey(char16_t key) = 0;
  // The control's window took the focus.
  virtual void FocusChanged(UserControl& control, bool gotFocus) = 0;
};

}  // namespace vantor::server
