#pragma once
// The reference form: the container the library's controls expect. It is a
// top-level window with a caption that places controls made by class name,
// tells them its ambient properties (user mode, font, colours, scale mode and
// each control's name), routes Tab and access keys among them, hands their
// events to the program, and saves and loads itself with every control's
// property bag as a form file (see FormFile.h).
//
// The form speaks its scale mode (twips, 15 to the pixel, or pixels); the
// extender a control sees, and the form file, always speak twips.
//
// Nothing a control does and no bad request reaches the program as an
// exception: a refused call returns false or nothing, with the reason in the
// error object.
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/FormFile.h"
#include "host/FormSite.h"
#include "platform/WinTypes.h"
#include "runtime/Object.h"
#include "runtime/String.h"
#include "runtime/Variant.h"
#include "server/StdFont.h"
#include "server/TypeInfo.h"
#include "server/UserControl.h"

namespace vantor::host {

// The platform's numbers for what the form refuses.
enum FormError : int32_t {
  errFormCannotCreate = 429,      // no such class, or one that is not a control
  errBadFileFormat = 321,         // a form file that cannot be read
  errInvalidPropertyValue = 380,  // a bad name, scale mode or size
  errNameInUse = 727,             // another control has the name
  errControlNotFound = 730,
  errFileAccess = 75,
};

class Form : public Object {
 public:
  // What the program hears of every control's events: the control's name,
  // the event's entry in the control's type library, and its arguments,
  // by-reference ones as references the program may assign through.
  using EventCallback = std::function<void(const String& control, const server::MemberInfo& event,
                                           std::span<Variant> args)>;

  static constexpr float kTwipsPerPixel = 15.0f;
  // A control placed without a size: 1200 x 375 twips (80 x 25 pixels).
  static constexpr float kDefaultWidth = 1200.0f;
  static constexpr float kDefaultHeight = 375.0f;

  // A hidden form of the given client size in pixels, in design mode, in
  // twips, with a new form's font and colours.
  explicit Form(int clientWidth = 320, int clientHeight = 240, StringView name = u"Form1");
  ~Form() override;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  String ClassName() const override { return u"Form"; }

  HWND hWnd() const { return hwnd_; }
  const String& Name() const { return name_; }
  String Caption() const;
  void SetCaption(StringView caption);

  // Shows the form and the controls that are visible (Show reaches each once),
  // then activates it, which gives the focus to the first control in tab order.
  void Show();
  void Hide();
  bool IsShown() const { return shown_; }

  // Pixels.
  int ClientWidth() const { return clientWidth_; }
  int ClientHeight() const { return clientHeight_; }
  void SetClientSize(int width, int height);

  int16_t ScaleMode() const { return ambience_.scaleMode; }
  // vbTwips or vbPixels; anything else is refused with error 380.
  bool SetScaleMode(int16_t mode);
  float ScaleWidth() const { return FromTwips(static_cast<float>(clientWidth_) * kTwipsPerPixel); }
  float ScaleHeight() const {
    return FromTwips(static_cast<float>(clientHeight_) * kTwipsPerPixel);
  }
  // Between the form's scale units and twips.
  float ToTwips(float units) const;
  float FromTwips(float twips) const;
  // Whole pixels, a half rounded to even.
  static int TwipsToPixels(float twips);

  // Design mode is False, run mode True. A change tells every control
  // (AmbientChanged "UserMode").
  bool UserMode() const { return ambience_.userMode; }
  void SetUserMode(bool userMode);
  // The form's own font; each control is given a copy of it.
  std::shared_ptr<server::StdFont> Font() const { return ambience_.font; }
  void SetFont(const server::StdFont& font);
  uint32_t BackColor() const { return ambience_.backColor; }
  void SetBackColor(uint32_t color);
  uint32_t ForeColor() const { return ambience_.foreColor; }
  void SetForeColor(uint32_t color);

  // ---- controls
  // Makes a control of a class derived from UserControl, named `name` (or the
  // class's name and the first free number, "USButton1"), at a place and size
  // in the form's scale units (a negative size takes the default), inside the
  // control named `container` or on the form itself. The new control is
  // created, initialised as new (its DisplayName is its name) and shown if
  // the form is.
  server::UserControl* Add(std::string_view className, StringView name = {}, float left = 0,
                           float top = 0, float width = -1, float height = -1,
                           StringView container = {});
  // Removes a control and the controls inside it; each is closed (Terminate).
  bool Remove(StringView name);
  void Clear();
  size_t Count() const { return sites_.size(); }
  // Without regard to case; nullptr when there is none.
  server::UserControl* Control(StringView name) const;
  FormSite* Site(StringView name) const;
  // In the order they were made.
  std::vector<server::UserControl*> Controls() const;
  bool Rename(StringView name, StringView newName);
  // In the form's scale units.
  bool Move(StringView name, float left, float top, float width, float height);

  // ---- focus
  // The control that had the focus last; nullptr when none has had it.
  server::UserControl* ActiveControl() const;
  bool SetFocusTo(StringView name);
  // Tab order: every control has its place, 0 to Count() - 1; moving one
  // shifts the others, as a designer does.
  int16_t TabIndex(StringView name) const;  // -1 for no such control
  bool SetTabIndex(StringView name, int16_t index);
  std::vector<String> TabOrder() const;
  // Moves the focus to the next (previous) control in tab order that is
  // visible, enabled and a tab stop, wrapping around. False when there is none.
  bool TabKey(bool backwards);
  // Gives the focus to the next control, in tab order from the focused one,
  // that is visible, enabled and has the key among its access keys (without
  // regard to case), and tells it (AccessKeyPress). False when none has it.
  bool AccessKey(char16_t key);

  // ---- events to the program (run mode only: a designer runs no program code)
  uint32_t Subscribe(EventCallback callback);
  bool Unsubscribe(uint32_t cookie);

  // ---- the form file
  // Every control saves itself (WriteProperties) into a fresh bag.
  std::string Save();
  // Reads the whole text first; only a sound file replaces the form's
  // controls and settings, so a refused file leaves the form as it was. The
  // error names the line and what was wrong.
  bool Load(std::string_view utf8, bool userMode);
  bool SaveFile(const std::string& path);
  bool LoadFile(const std::string& path, bool userMode);

  // Whether anything changed since the form was made, saved or loaded.
  bool Changed() const { return changed_; }

 private:
  friend class FormSite;
  using Sites = std::vector<std::unique_ptr<FormSite>>;

  static LRESULT CALLBACK WindowProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
  LRESULT Handle(UINT msg, WPARAM wparam, LPARAM lparam);
  void Paint();

  bool Fail(int32_t number, const std::string& description) const;
  FormSite* Find(StringView name) const;
  String FreeName(std::string_view className) const;
  std::shared_ptr<server::UserControl> Make(std::string_view className, std::string* why) const;
  void Attach(FormSite& site);
  void CloseSite(FormSite& site);
  void Renumber(std::vector<FormSite*> order);
  std::vector<FormSite*> InTabOrder() const;
  FormSite* FocusedSite() const;
  bool HoldsFocus(const FormSite& site) const;
  void FocusAway(FormSite& site);
  bool TabFrom(FormSite* current, bool backwards);
  bool CanFocus(const FormSite& site) const;
  bool FocusFirst();
  void NotifyAmbient(StringView name);
  void Describe(const FormSite& site, ControlDescription& out);
  bool CheckClasses(const std::vector<ControlDescription>& controls, std::string* why) const;
  bool Build(const std::vector<ControlDescription>& controls, FormSite* container,
             const FormAmbience* ambience, Sites& built, std::string* why);

  // What the sites report.
  void OnPropertyChanged(FormSite& site, StringView name);
  std::vector<ObjectPtr> ContainedIn(const FormSite& site) const;
  void OnFocusChanged(FormSite& site, bool gotFocus);
  void OnVisibleChanged(FormSite& site, bool hadFocus);
  void OnEvent(FormSite& site, const server::MemberInfo& event, std::span<Variant> args);
  void MarkChanged() { changed_ = true; }

  HWND hwnd_ = nullptr;
  String name_;
  int clientWidth_ = 0;
  int clientHeight_ = 0;
  FormAmbience ambience_;
  bool shown_ = false;
  bool changed_ = false;
  Sites sites_;  // in the order made; a container before what it contains
  FormSite* active_ = nullptr;
  std::vector<std::pair<uint32_t, EventCallback>> subscribers_;
  uint32_t nextCookie_ = 1;
};

}  // namespace vantor::host
