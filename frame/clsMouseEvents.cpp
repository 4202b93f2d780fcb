#include "frame/clsMouseEvents.h"

#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::frame {

namespace {

// The host keeps handles and message parameters in Longs: the low 32 bits.
int32_t LongOf(uintptr_t value) {
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

HWND WindowOf(int32_t hwnd) {
  return reinterpret_cast<HWND>(static_cast<uintptr_t>(static_cast<uint32_t>(hwnd)));
}

// What the tracker listens to, all before the window's own procedure.
constexpr int32_t kMessages[] = {WM_HSCROLL,    WM_VSCROLL,   WM_MOUSEWHEEL,  WM_MOUSEHWHEEL,
                                 WM_MOUSELEAVE, WM_MOUSEMOVE, WM_XBUTTONDOWN, WM_SETCURSOR};

}  // namespace

clsMouseEvents::clsMouseEvents()
    : Dispatch(*server::TypeLibrary::Get().FindClass("clsMouseEvents")) {}

clsMouseEvents::~clsMouseEvents() {
  Detach();
}

void clsMouseEvents::Register() {
  server::Registry::Instance().Register("clsMouseEvents",
                                        [] { return std::make_shared<clsMouseEvents>(); });
}

const server::Bindings* clsMouseEvents::Bound() const {
  static const server::Bindings bindings =
      server::Binder<clsMouseEvents>(Info()).Method("Attach", &clsMouseEvents::Attach).Done();
  return &bindings;
}

void clsMouseEvents::Attach(int32_t Target_hWnd) {
  Detach();
  const HWND target = WindowOf(Target_hWnd);
  if (target == nullptr) return;
  // The platform's own record size: 16 bytes where a handle is 32 bits.
  track_ = TRACKMOUSEEVENT{sizeof(TRACKMOUSEEVENT), TME_HOVER | TME_LEAVE, target, HOVER_DEFAULT};
  if (TrackMouseEvent(&track_) != 1) return;
  hWnd_ = target;
  trackingRequested_ = true;
  // Not outside: a mouse already over the window raises no MouseIn. If it is
  // elsewhere, the leave notice the platform posts at once says so.
  outside_ = false;
  magic_ = std::make_unique<plumbing::cSubClassEx>(
      [this](bool, bool& bHandled, LRESULT& lReturn, HWND, UINT uMsg, WPARAM wParam,
             LPARAM lParam) { WndProc(bHandled, lReturn, uMsg, wParam, lParam); });
  magic_->Subclass(target);
  for (const int32_t message : kMessages) magic_->AddMsg(target, message, plumbing::MSG_BEFORE);
}

void clsMouseEvents::Detach() {
  magic_.reset();
  // The leave notice we asked for would otherwise still come to a window
  // that no longer expects it.
  if (trackingRequested_ && IsWindow(hWnd_)) {
    TRACKMOUSEEVENT cancel{sizeof(TRACKMOUSEEVENT), TME_CANCEL | TME_HOVER | TME_LEAVE, hWnd_,
                           HOVER_DEFAULT};
    TrackMouseEvent(&cancel);
  }
  hWnd_ = nullptr;
  trackingRequested_ = false;
  outside_ = false;
}

clsMouseEvents::Mouse clsMouseEvents::Decode(WPARAM wParam, LPARAM lParam) {
  const int32_t keys = LongOf(wParam);
  const int32_t position = LongOf(static_cast<uintptr_t>(lParam));
  Mouse m{};
  if ((keys & 1) != 0) m.button |= 1;
  if ((keys & 16) != 0) m.button |= 4;
  if ((keys & 2) != 0) m.button |= 2;
  if ((keys & 8) != 0) m.shift |= 2;
  if ((keys & 4) != 0) m.shift |= 1;
  // X unsigned, Y signed and truncated toward zero: a mouse captured left of
  // the window reports an X near 65535, and the controls rely on exactly
  // these numbers.
  m.x = position & 0xFFFF;
  m.y = position / 65536;
  return m;
}

void clsMouseEvents::WndProc(bool& bHandled, LRESULT& lReturn, UINT uMsg, WPARAM wParam,
                             LPARAM lParam) {
  // A host's handler may let go of the last reference while an event runs.
  const auto keep = weak_from_this().lock();
  const int32_t w = LongOf(wParam);
  const int32_t l = LongOf(static_cast<uintptr_t>(lParam));
  switch (uMsg) {
    case WM_MOUSEMOVE: {
      if (!trackingRequested_) {
        trackingRequested_ = true;
        TrackMouseEvent(&track_);
      }
      if (outside_) {
        outside_ = false;
        MouseIn();
      }
      const Mouse m = Decode(wParam, lParam);
      MouseMove(w, l, m.button, m.shift, m.x, m.y);
      break;
    }
    case WM_MOUSELEAVE:
      MouseOut();
      trackingRequested_ = false;
      outside_ = true;
      lReturn = 0;
      bHandled = true;
      break;
    // The scroll and wheel messages still go on to the window.
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
      MouseWheel(w, l);
      lReturn = 0;
      break;
    case WM_VSCROLL:
      MouseVScrollEx(w, l);
      lReturn = 0;
      break;
    case WM_HSCROLL:
      MouseHScrollEx(w, l);
      lReturn = 0;
      break;
    case WM_XBUTTONDOWN: {
      const Mouse m = Decode(wParam, lParam);
      if ((w & MK_XBUTTON1) != 0) {
        MouseBackButtonClick(m.shift, m.x, m.y);
      } else if ((w & MK_XBUTTON2) != 0) {
        MouseForwardButtonClick(m.shift, m.x, m.y);
      }
      break;
    }
    case WM_SETCURSOR:
      if (!outside_ && cursorId_ >= 1) {
        SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(static_cast<WORD>(cursorId_))));
        lReturn = 1;
        bHandled = true;
      }
      break;
    default:
      break;
  }
}

}  // namespace vantor::frame
