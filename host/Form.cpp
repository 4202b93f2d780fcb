#include "host/Form.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/Gdi.h"
#include "platform/User.h"
#include "runtime/Error.h"
#include "runtime/Strings.h"
#include "host/LibraryClasses.h"
#include "server/Registry.h"

namespace vantor::host {

namespace {

constexpr char16_t kWindowClass[] = u"VantorForm";
constexpr int kMaxClient = 16384;

void RegisterFormClass(WNDPROC proc) {
  // Asked of USER each time: a desktop that was reset has forgotten its classes.
  WNDCLASSEXW known{};
  known.cbSize = sizeof known;
  if (GetClassInfoExW(nullptr, kWindowClass, &known)) return;
  WNDCLASSW wc{};
  wc.style = CS_DBLCLKS;
  wc.lpfnWndProc = proc;
  wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  wc.lpszClassName = kWindowClass;
  RegisterClassW(&wc);
}

bool SameName(StringView a, StringView b) {
  return a.size() == b.size() && LCase(a) == LCase(b);
}

std::string Quoted(StringView s) {
  return "'" + ToUtf8(s) + "'";
}

// Whether a class can be placed on a form, without making one: it must be a
// control the library (or the program) has built.
bool Placeable(std::string_view className, std::string* why) {
  const server::Registry& reg = server::Registry::Instance();
  const server::ClassInfo* info = reg.Find(className);
  if (!info) {
    *why = "unknown class '" + std::string(className) + "'";
    return false;
  }
  if (info->kind != server::ClassKind::Control) {
    *why = "'" + std::string(info->name) + "' is not a control and cannot be placed on a form";
    return false;
  }
  if (!reg.IsImplemented(className)) {
    *why = "the control '" + std::string(info->name) + "' is not built into this library yet";
    return false;
  }
  return true;
}

}  // namespace

Form::Form(int clientWidth, int clientHeight, StringView name) : name_(name) {
  RegisterLibraryClasses();
  if (!FormFile::IsValidName(name_)) name_ = u"Form1";
  ambience_.font = std::make_shared<server::StdFont>();
  RegisterFormClass(&Form::WindowProc);
  hwnd_ = CreateWindowExW(0, kWindowClass, name_.c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0,
                          0, clientWidth, clientHeight, nullptr, nullptr, nullptr, this);
  SetClientSize(clientWidth, clientHeight);
  changed_ = false;
}

Form::~Form() {
  Clear();
  subscribers_.clear();
  if (hwnd_) {
    HWND hwnd = hwnd_;
    hwnd_ = nullptr;
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
    DestroyWindow(hwnd);
  }
}

bool Form::Fail(int32_t number, const std::string& description) const {
  Err().Set(number, u"Form", FromUtf8(description));
  return false;
}

// ---- the window

LRESULT CALLBACK Form::WindowProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  if (msg == WM_NCCREATE) {
    const auto* cs = reinterpret_cast<const CREATESTRUCTW*>(lparam);
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(cs->lpCreateParams));
    if (auto* self = static_cast<Form*>(cs->lpCreateParams)) self->hwnd_ = hwnd;
  }
  auto* self = reinterpret_cast<Form*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  if (!self || self->hwnd_ != hwnd) return DefWindowProcW(hwnd, msg, wparam, lparam);
  return self->Handle(msg, wparam, lparam);
}

LRESULT Form::Handle(UINT msg, WPARAM wparam, LPARAM lparam) {
  switch (msg) {
    case WM_SIZE:
      clientWidth_ = LOWORD(lparam);
      clientHeight_ = HIWORD(lparam);
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      Paint();
      return 0;
    case WM_SETFOCUS:
      // The form itself takes no keys: its focus goes on to a control.
      FocusFirst();
      return 0;
    case WM_KEYDOWN:
      if (wparam == VK_TAB && GetKeyState(VK_CONTROL) >= 0 && GetKeyState(VK_MENU) >= 0) {
        TabKey(GetKeyState(VK_SHIFT) < 0);
        return 0;
      }
      break;
    case WM_SYSCHAR:
      if (AccessKey(static_cast<char16_t>(wparam))) return 0;
      break;
    case WM_CLOSE:
      // The program decides when a form goes; closing it only hides it.
      Hide();
      return 0;
    case WM_NCDESTROY:
      SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
      hwnd_ = nullptr;
      shown_ = false;
      return 0;
    default:
      break;
  }
  return DefWindowProcW(hwnd_, msg, wparam, lparam);
}

void Form::Paint() {
  PAINTSTRUCT ps;
  HDC dc = BeginPaint(hwnd_, &ps);
  COLORREF colour = 0;
  if (OleTranslateColor(ambience_.backColor, nullptr, &colour) != S_OK)
    colour = GetSysColor(COLOR_BTNFACE);
  HBRUSH brush = CreateSolidBrush(colour);
  RECT all;
  GetClientRect(hwnd_, &all);
  FillRect(dc, &all, brush);
  DeleteObject(brush);
  EndPaint(hwnd_, &ps);
}

String Form::Caption() const {
  if (!hwnd_) return {};
  const int length = GetWindowTextLengthW(hwnd_);
  std::vector<char16_t> buffer(static_cast<size_t>(length) + 1);
  const int got = GetWindowTextW(hwnd_, buffer.data(), length + 1);
  return String(buffer.data(), static_cast<size_t>(std::max(got, 0)));
}

void Form::SetCaption(StringView caption) {
  if (!hwnd_) return;
  const String text(caption);
  SetWindowTextW(hwnd_, text.c_str());
  MarkChanged();
}

void Form::Show() {
  if (!hwnd_) return;
  shown_ = true;
  ShowWindow(hwnd_, SW_SHOWNOACTIVATE);
  // Show reaches the controls before any of them can take the focus.
  std::vector<std::shared_ptr<server::UserControl>> visible;
  for (const auto& s : sites_) {
    if (s->VisibleAll()) visible.push_back(s->ControlPtr());
  }
  for (const auto& c : visible) c->NotifyShow();
  if (hwnd_) SetActiveWindow(hwnd_);
}

void Form::Hide() {
  shown_ = false;
  if (hwnd_) ShowWindow(hwnd_, SW_HIDE);
}

void Form::SetClientSize(int width, int height) {
  if (!hwnd_) return;
  width = std::clamp(width, 1, kMaxClient);
  height = std::clamp(height, 1, kMaxClient);
  RECT outer, inner;
  GetWindowRect(hwnd_, &outer);
  GetClientRect(hwnd_, &inner);
  const int dx = (outer.right - outer.left) - (inner.right - inner.left);
  const int dy = (outer.bottom - outer.top) - (inner.bottom - inner.top);
  SetWindowPos(hwnd_, nullptr, 0, 0, width + dx, height + dy,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  GetClientRect(hwnd_, &inner);
  clientWidth_ = inner.right - inner.left;
  clientHeight_ = inner.bottom - inner.top;
  MarkChanged();
}

// ---- scale and ambient properties

bool Form::SetScaleMode(int16_t mode) {
  if (mode != server::vbTwips && mode != server::vbPixels)
    return Fail(errInvalidPropertyValue,
                "ScaleMode " + std::to_string(mode) + " is not 1 (twips) or 3 (pixels)");
  if (mode == ambience_.scaleMode) return true;
  ambience_.scaleMode = mode;
  MarkChanged();
  NotifyAmbient(u"ScaleMode");
  return true;
}

float Form::ToTwips(float units) const {
  return ambience_.scaleMode == server::vbPixels ? units * kTwipsPerPixel : units;
}

float Form::FromTwips(float twips) const {
  return ambience_.scaleMode == server::vbPixels ? twips / kTwipsPerPixel : twips;
}

int Form::TwipsToPixels(float twips) {
  return static_cast<int>(std::nearbyint(twips / kTwipsPerPixel));
}

void Form::SetUserMode(bool userMode) {
  if (userMode == ambience_.userMode) return;
  ambience_.userMode = userMode;
  NotifyAmbient(u"UserMode");
}

void Form::SetFont(const server::StdFont& font) {
  ambience_.font = font.Clone();
  MarkChanged();
  NotifyAmbient(u"Font");
}

void Form::SetBackColor(uint32_t color) {
  if (color == ambience_.backColor) return;
  ambience_.backColor = color;
  MarkChanged();
  if (hwnd_) InvalidateRect(hwnd_, nullptr, TRUE);
  NotifyAmbient(u"BackColor");
}

void Form::SetForeColor(uint32_t color) {
  if (color == ambience_.foreColor) return;
  ambience_.foreColor = color;
  MarkChanged();
  NotifyAmbient(u"ForeColor");
}

void Form::NotifyAmbient(StringView name) {
  std::vector<std::shared_ptr<server::UserControl>> all;
  for (const auto& s : sites_) all.push_back(s->ControlPtr());
  for (const auto& c : all) c->NotifyAmbientChanged(name);
}

// ---- controls

FormSite* Form::Find(StringView name) const {
  for (const auto& s : sites_) {
    if (SameName(s->Name(), name)) return s.get();
  }
  return nullptr;
}

String Form::FreeName(std::string_view className) const {
  const String base = FromUtf8(className);
  for (int n = 1;; ++n) {
    String candidate = base + FromUtf8(std::to_string(n));
    if (!Find(candidate)) return candidate;
  }
}

std::shared_ptr<server::UserControl> Form::Make(std::string_view className,
                                                std::string* why) const {
  if (!Placeable(className, why)) return nullptr;
  server::DispatchPtr object = server::Registry::Instance().Create(className);
  if (!object) {
    *why = ToUtf8(Err().Description());
    return nullptr;
  }
  auto control = std::dynamic_pointer_cast<server::UserControl>(object);
  if (!control)
    *why = "'" + std::string(object->Info().name) +
           "' is not a control: only classes derived from UserControl can be placed on a form";
  return control;
}

void Form::Attach(FormSite& site) {
  site.Advise();
  site.Reveal();
  if (shown_ && site.VisibleAll()) site.Control().NotifyShow();
}

server::UserControl* Form::Add(std::string_view className, StringView name, float left, float top,
                               float width, float height, StringView container) {
  if (!hwnd_) {
    Fail(errFormCannotCreate, "the form has no window");
    return nullptr;
  }
  FormSite* parent = nullptr;
  if (!container.empty() && !(parent = Find(container))) {
    Fail(errControlNotFound, "there is no control named " + Quoted(container) + " to hold the " +
                                 std::string(className));
    return nullptr;
  }
  std::string why;
  if (!Placeable(className, &why)) {
    Fail(errFormCannotCreate, why);
    return nullptr;
  }
  const String chosen =
      name.empty() ? FreeName(server::Registry::Instance().Find(className)->name) : String(name);
  if (!FormFile::IsValidName(chosen)) {
    Fail(errInvalidPropertyValue,
         Quoted(chosen) + " is not a valid control name (a letter, then letters, digits or '_')");
    return nullptr;
  }
  if (Find(chosen)) {
    Fail(errNameInUse,
         "there is already a control named " + Quoted(chosen) + " on " + ToUtf8(name_));
    return nullptr;
  }
  std::shared_ptr<server::UserControl> control = Make(className, &why);
  if (!control) {
    Fail(errFormCannotCreate, why);
    return nullptr;
  }
  auto owned = std::make_unique<FormSite>(*this, control, chosen, parent, &ambience_);
  FormSite& site = *owned;
  site.Preset(ToTwips(left), ToTwips(top), width < 0 ? kDefaultWidth : ToTwips(width),
              height < 0 ? kDefaultHeight : ToTwips(height), true, true, true,
              static_cast<int16_t>(sites_.size()));
  sites_.push_back(std::move(owned));
  if (!site.Realize(parent ? parent->hWnd() : hwnd_)) {
    control->Close();
    sites_.pop_back();
    Fail(errFormCannotCreate, "the window of " + Quoted(chosen) + " could not be made");
    return nullptr;
  }
  control->InitNew();
  Attach(site);
  MarkChanged();
  return control.get();
}

void Form::CloseSite(FormSite& site) {
  site.Unadvise();
  if (active_ == &site) active_ = nullptr;
  // The control may run code of the program's as it goes; it stays alive for it.
  const std::shared_ptr<server::UserControl> keep = site.ControlPtr();
  keep->Close();
}

bool Form::Remove(StringView name) {
  FormSite* target = Find(name);
  if (!target) return Fail(errControlNotFound, "there is no control named " + Quoted(name));
  // What it holds goes first, the most recently made first.
  std::vector<FormSite*> doomed;
  for (auto it = sites_.rbegin(); it != sites_.rend(); ++it) {
    if (it->get() == target || (*it)->IsInside(*target)) doomed.push_back(it->get());
  }
  for (FormSite* s : doomed) CloseSite(*s);
  std::erase_if(sites_, [&](const std::unique_ptr<FormSite>& s) {
    return std::find(doomed.begin(), doomed.end(), s.get()) != doomed.end();
  });
  Renumber(InTabOrder());
  MarkChanged();
  return true;
}

void Form::Clear() {
  for (auto it = sites_.rbegin(); it != sites_.rend(); ++it) CloseSite(**it);
  sites_.clear();
  active_ = nullptr;
}

server::UserControl* Form::Control(StringView name) const {
  FormSite* s = Find(name);
  return s ? &s->Control() : nullptr;
}

FormSite* Form::Site(StringView name) const {
  return Find(name);
}

std::vector<server::UserControl*> Form::Controls() const {
  std::vector<server::UserControl*> all;
  for (const auto& s : sites_) all.push_back(&s->Control());
  return all;
}

bool Form::Rename(StringView name, StringView newName) {
  FormSite* s = Find(name);
  if (!s) return Fail(errControlNotFound, "there is no control named " + Quoted(name));
  if (!FormFile::IsValidName(newName))
    return Fail(errInvalidPropertyValue, Quoted(newName) + " is not a valid control name");
  FormSite* other = Find(newName);
  if (other && other != s)
    return Fail(errNameInUse, "there is already a control named " + Quoted(newName));
  s->SetName(String(newName));
  MarkChanged();
  s->Control().NotifyAmbientChanged(u"DisplayName");
  return true;
}

bool Form::Move(StringView name, float left, float top, float width, float height) {
  FormSite* s = Find(name);
  if (!s) return Fail(errControlNotFound, "there is no control named " + Quoted(name));
  s->Move(ToTwips(left), ToTwips(top), ToTwips(width), ToTwips(height));
  return true;
}

// ---- focus and keys

server::UserControl* Form::ActiveControl() const {
  return active_ ? &active_->Control() : nullptr;
}

std::vector<FormSite*> Form::InTabOrder() const {
  std::vector<FormSite*> order;
  for (const auto& s : sites_) order.push_back(s.get());
  std::stable_sort(order.begin(), order.end(), [](const FormSite* a, const FormSite* b) {
    return a->TabIndex() < b->TabIndex();
  });
  return order;
}

void Form::Renumber(std::vector<FormSite*> order) {
  int16_t next = 0;
  for (FormSite* s : order) s->SetTabIndex(next++);
}

std::vector<String> Form::TabOrder() const {
  std::vector<String> names;
  for (const FormSite* s : InTabOrder()) names.push_back(s->Name());
  return names;
}

int16_t Form::TabIndex(StringView name) const {
  const FormSite* s = Find(name);
  return s ? s->TabIndex() : int16_t{-1};
}

bool Form::SetTabIndex(StringView name, int16_t index) {
  FormSite* s = Find(name);
  if (!s) return Fail(errControlNotFound, "there is no control named " + Quoted(name));
  if (index < 0) return Fail(errInvalidPropertyValue, "a tab index cannot be negative");
  std::vector<FormSite*> order = InTabOrder();
  order.erase(std::find(order.begin(), order.end(), s));
  const size_t at = std::min(static_cast<size_t>(index), order.size());
  order.insert(order.begin() + static_cast<std::ptrdiff_t>(at), s);
  Renumber(std::move(order));
  MarkChanged();
  return true;
}

FormSite* Form::FocusedSite() const {
  // The focus may sit in a window a control made inside its own.
  for (HWND h = GetFocus(); h && h != hwnd_; h = GetParent(h)) {
    for (const auto& s : sites_) {
      if (s->hWnd() == h) return s.get();
    }
  }
  return nullptr;
}

bool Form::CanFocus(const FormSite& site) const {
  if (!site.hWnd() || !IsWindowVisible(site.hWnd())) return false;
  for (const FormSite* s = &site; s; s = s->Container()) {
    if (!IsWindowEnabled(s->hWnd())) return false;
  }
  return true;
}

bool Form::SetFocusTo(StringView name) {
  FormSite* s = Find(name);
  if (!s) return Fail(errControlNotFound, "there is no control named " + Quoted(name));
  if (!CanFocus(*s))
    return Fail(errInvalidProcedureCall,
                Quoted(name) + " is hidden or disabled and cannot take the focus");
  SetFocus(s->hWnd());
  return GetFocus() == s->hWnd();
}

bool Form::FocusFirst() {
  FormSite* target = active_ && CanFocus(*active_) ? active_ : nullptr;
  if (!target) {
    for (FormSite* s : InTabOrder()) {
      if (s->TabStop() && CanFocus(*s)) {
        target = s;
        break;
      }
    }
  }
  if (!target) return false;
  SetFocus(target->hWnd());
  return true;
}

bool Form::TabKey(bool backwards) {
  return TabFrom(FocusedSite(), backwards);
}

bool Form::HoldsFocus(const FormSite& site) const {
  const FormSite* focused = FocusedSite();
  return focused && (focused == &site || focused->IsInside(site));
}

void Form::FocusAway(FormSite& site) {
  // The focus may not stay in a control that can no longer have it.
  if (!TabFrom(&site, false) && hwnd_ && IsWindowVisible(hwnd_)) SetFocus(hwnd_);
}

bool Form::TabFrom(FormSite* current, bool backwards) {
  const std::vector<FormSite*> order = InTabOrder();
  const int n = static_cast<int>(order.size());
  const auto found = std::find(order.begin(), order.end(), current);
  const int at = found == order.end() ? -1 : static_cast<int>(found - order.begin());
  for (int step = 1; step <= n; ++step) {
    const int i = at < 0 ? (backwards ? n - step : step - 1)
                         : (((at + (backwards ? -step : step)) % n) + n) % n;
    FormSite* s = order[static_cast<size_t>(i)];
    if (s == current) break;  // round once: nothing else can take it
    if (s->TabStop() && CanFocus(*s)) {
      SetFocus(s->hWnd());
      return true;
    }
  }
  return current && CanFocus(*current);
}

bool Form::AccessKey(char16_t key) {
  const String wanted = LCase(String(1, key));
  const std::vector<FormSite*> order = InTabOrder();
  const int n = static_cast<int>(order.size());
  const auto found = std::find(order.begin(), order.end(), FocusedSite());
  const int at = found == order.end() ? -1 : static_cast<int>(found - order.begin());
  // From the focused control on, so that a key two controls share moves
  // between them.
  for (int step = 1; step <= n; ++step) {
    FormSite* s = order[static_cast<size_t>(at < 0 ? step - 1 : (at + step) % n)];
    if (!CanFocus(*s) || LCase(s->Control().AccessKeys()).find(wanted) == String::npos) continue;
    const std::shared_ptr<server::UserControl> keep = s->ControlPtr();
    if (GetFocus() != keep->hWnd()) SetFocus(keep->hWnd());
    keep->NotifyAccessKey(static_cast<int16_t>(key));
    return true;
  }
  return false;
}

// ---- what the sites report

void Form::OnPropertyChanged(FormSite& site, StringView name) {
  (void)site;
  (void)name;
  MarkChanged();
}

std::vector<ObjectPtr> Form::ContainedIn(const FormSite& site) const {
  std::vector<ObjectPtr> inside;
  for (const auto& s : sites_) {
    if (s->Container() == &site) inside.push_back(s->ControlPtr());
  }
  return inside;
}

void Form::OnFocusChanged(FormSite& site, bool gotFocus) {
  if (gotFocus) active_ = &site;
}

void Form::OnVisibleChanged(FormSite& site, bool hadFocus) {
  if (hadFocus && !site.Visible()) FocusAway(site);
  if (!shown_ || !site.VisibleAll()) return;
  std::vector<std::shared_ptr<server::UserControl>> due;
  for (const auto& s : sites_) {
    if ((s.get() == &site || s->IsInside(site)) && s->VisibleAll()) due.push_back(s->ControlPtr());
  }
  for (const auto& c : due) c->NotifyShow();
}

void Form::OnEvent(FormSite& site, const server::MemberInfo& event, std::span<Variant> args) {
  if (!ambience_.userMode || subscribers_.empty()) return;
  // The site may go while the program handles the event; its name is copied.
  const String name = site.Name();
  const auto subscribers = subscribers_;
  for (const auto& s : subscribers) s.second(name, event, args);
}

uint32_t Form::Subscribe(EventCallback callback) {
  subscribers_.emplace_back(nextCookie_, std::move(callback));
  return nextCookie_++;
}

bool Form::Unsubscribe(uint32_t cookie) {
  return std::erase_if(subscribers_, [cookie](const auto& s) { return s.first == cookie; }) > 0;
}

// ---- the form file

void Form::Describe(const FormSite& site, ControlDescription& out) {
  out.className = FromUtf8(site.Control().Info().name);
  out.name = site.Name();
  out.left = site.Left();
  out.top = site.Top();
  out.width = site.Width();
  out.height = site.Height();
  out.tabIndex = site.TabIndex();
  out.tabStop = site.TabStop();
  out.visible = site.Visible();
  out.enabled = site.Enabled();
  site.Control().Save(out.properties);
  for (const auto& s : sites_) {
    if (s->Container() == &site) Describe(*s, out.controls.emplace_back());
  }
}

std::string Form::Save() {
  FormDescription d;
  d.name = name_;
  d.caption = Caption();
  d.scaleMode = ambience_.scaleMode;
  d.clientWidth = clientWidth_;
  d.clientHeight = clientHeight_;
  d.backColor = ambience_.backColor;
  d.foreColor = ambience_.foreColor;
  d.font = ambience_.font->Clone();
  for (const auto& s : sites_) {
    if (!s->Container()) Describe(*s, d.controls.emplace_back());
  }
  changed_ = false;
  return FormFile::Write(d);
}

bool Form::CheckClasses(const std::vector<ControlDescription>& controls, std::string* why) const {
  for (const ControlDescription& c : controls) {
    std::string reason;
    if (!Placeable(ToUtf8(c.className), &reason)) {
      *why = "line " + std::to_string(c.line) + ": " + reason;
      return false;
    }
    if (!CheckClasses(c.controls, why)) return false;
  }
  return true;
}

bool Form::Build(const std::vector<ControlDescription>& controls, FormSite* container,
                 const FormAmbience* ambience, Sites& built, std::string* why) {
  for (const ControlDescription& c : controls) {
    const std::string line = "line " + std::to_string(c.line) + ": ";
    std::string reason;
    std::shared_ptr<server::UserControl> control = Make(ToUtf8(c.className), &reason);
    if (!control) {
      *why = line + reason;
      return false;
    }
    auto owned = std::make_unique<FormSite>(*this, control, c.name, container, ambience);
    FormSite& site = *owned;
    // Tab indexes the file leaves out come after the ones it gives.
    site.Preset(c.left, c.top, c.width < 0 ? kDefaultWidth : c.width,
                c.height < 0 ? kDefaultHeight : c.height, c.visible, c.enabled, c.tabStop,
                c.tabIndex < 0 ? INT16_MAX : c.tabIndex);
    built.push_back(std::move(owned));
    if (!site.Realize(container ? container->hWnd() : hwnd_)) {
      *why = line + "the window of " + Quoted(c.name) + " could not be made";
      return false;
    }
    control->Load(c.properties);
    if (!Build(c.controls, &site, ambience, built, why)) return false;
  }
  return true;
}

bool Form::Load(std::string_view utf8, bool userMode) {
  if (!hwnd_) return Fail(errBadFileFormat, "the form has no window");
  String error;
  std::optional<FormDescription> d = FormFile::Read(utf8, &error);
  if (!d) return Fail(errBadFileFormat, ToUtf8(error));
  std::string why;
  if (!CheckClasses(d->controls, &why)) return Fail(errBadFileFormat, why);

  // The new controls are made hidden beside the old ones and read the new
  // form's ambient properties; only when every one of them stands does the
  // form let the old ones go.
  FormAmbience staged;
  staged.userMode = userMode;
  staged.font = d->font ? d->font->Clone() : std::make_shared<server::StdFont>();
  staged.backColor = d->backColor;
  staged.foreColor = d->foreColor;
  staged.scaleMode = d->scaleMode;
  Sites built;
  if (!Build(d->controls, nullptr, &staged, built, &why)) {
    for (auto it = built.rbegin(); it != built.rend(); ++it) (*it)->Control().Close();
    return Fail(errBadFileFormat, why);
  }

  Clear();
  ambience_ = staged;
  sites_ = std::move(built);
  for (const auto& s : sites_) s->SetAmbience(&ambience_);
  name_ = d->name;
  SetCaption(d->caption.value_or(d->name));
  SetClientSize(d->clientWidth, d->clientHeight);
  Renumber(InTabOrder());
  for (const auto& s : sites_) Attach(*s);
  if (hwnd_) InvalidateRect(hwnd_, nullptr, TRUE);
  // The focus went with the old controls; an active form gives it to the new.
  if (shown_ && hwnd_ && GetActiveWindow() == hwnd_ && !FocusedSite()) FocusFirst();
  changed_ = false;
  return true;
}

bool Form::SaveFile(const std::string& path) {
  const std::string text = Save();
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (out) out.write(text.data(), static_cast<std::streamsize>(text.size()));
  if (!out) {
    changed_ = true;
    return Fail(errFileAccess, "cannot write the form file '" + path + "'");
  }
  return true;
}

bool Form::LoadFile(const std::string& path, bool userMode) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return Fail(errFileNotFound, "cannot open the form file '" + path + "'");
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (Load(text, userMode)) return true;
  Err().Set(Err().Number(), u"Form", FromUtf8(path + ": ") + Err().Description());
  return false;
}

}  // namespace vantor::host
