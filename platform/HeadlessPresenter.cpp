#include "platform/HeadlessPresenter.h"

#include <algorithm>

#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/PngFile.h"
#include "platform/Region.h"
#include "platform/User.h"

namespace vantor::platform {
namespace {

constexpr int kDefaultWidth = 1280;
constexpr int kDefaultHeight = 800;
constexpr int kMaxSide = 16384;
// How long a person takes between the two clicks of a double click.
constexpr DWORD kDoubleClickGap = 50;

// COLORREF is 0x00BBGGRR; surface pixels are 0xAARRGGBB.
uint32_t PixelOf(COLORREF c) {
  return 0xFF000000u | static_cast<uint32_t>(GetRValue(c)) << 16 |
         static_cast<uint32_t>(GetGValue(c)) << 8 | GetBValue(c);
}

// The constant-alpha blend of a layered window, rounded to nearest.
uint32_t Blend(uint32_t src, uint32_t dst, uint32_t alpha) {
  uint32_t out = 0xFF000000u;
  for (int shift = 0; shift < 24; shift += 8) {
    const uint32_t s = (src >> shift) & 0xFF;
    const uint32_t d = (dst >> shift) & 0xFF;
    out |= ((s * alpha + d * (255 - alpha) + 127) / 255) << shift;
  }
  return out;
}

}  // namespace

HeadlessPresenter::HeadlessPresenter(int width, int height) : width_(width), height_(height) {
  if (width_ < 1 || height_ < 1 || width_ > kMaxSide || height_ > kMaxSide) {
    width_ = kDefaultWidth;
    height_ = kDefaultHeight;
  }
  SetScreenSize(width_, height_);
  Clock::SetManual(true);
  pixels_.assign(static_cast<size_t>(width_) * height_, 0);
  screen_ = Surface{pixels_.data(), width_, height_, width_};
}

COLORREF HeadlessPresenter::DesktopColor() const {
  return GetSysColor(COLOR_DESKTOP);
}

const Surface& HeadlessPresenter::Screen() {
  const uint64_t generation = DesktopGeneration();
  if (!composed_ || generation != composed_generation_) {
    Compose();
    composed_generation_ = generation;
    composed_ = true;
  }
  return screen_;
}

void HeadlessPresenter::Compose() {
  std::fill(pixels_.begin(), pixels_.end(), PixelOf(DesktopColor()));
  std::vector<TopLevelWindow> windows = TopLevelWindows();
  // Bottom first, so that each window covers the ones below it.
  for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
    const TopLevelWindow& w = *it;
    if (w.surface == nullptr || w.surface->Empty()) continue;
    // Where the window's pixels land on the screen, in window coordinates.
    Region visible(0, 0, std::min<LONG>(w.surface->width, w.rect.right - w.rect.left),
                   std::min<LONG>(w.surface->height, w.rect.bottom - w.rect.top));
    if (w.region != nullptr) visible.Intersect(*w.region);
    visible.Intersect(RECT{-w.rect.left, -w.rect.top, width_ - w.rect.left, height_ - w.rect.top});
    const bool keyed = w.layered && (w.layered_flags & LWA_COLORKEY) != 0;
    const bool faded = w.layered && (w.layered_flags & LWA_ALPHA) != 0 && w.alpha < 255;
    const uint32_t key = PixelOf(w.color_key) & 0x00FFFFFF;
    if (w.layered && (w.layered_flags & LWA_ALPHA) != 0 && w.alpha == 0) continue;
    for (const RECT& r : visible.Rects()) {
      for (LONG y = r.top; y < r.bottom; ++y) {
        const uint32_t* src = w.surface->Row(y);
        uint32_t* dst = screen_.Row(y + w.rect.top) + w.rect.left;
        for (LONG x = r.left; x < r.right; ++x) {
          const uint32_t s = src[x] | 0xFF000000u;
          if (keyed && (s & 0x00FFFFFF) == key) continue;
          dst[x] = faded ? Blend(s, dst[x], w.alpha) : s;
        }
      }
    }
  }
}

void HeadlessPresenter::MoveTo(int x, int y) {
  InjectMouseMove(x, y);
  Pump();
}

void HeadlessPresenter::Press(MouseButton button) {
  InjectMouseButton(button, true);
  Pump();
}

void HeadlessPresenter::Release(MouseButton button) {
  InjectMouseButton(button, false);
  Pump();
}

void HeadlessPresenter::Click(int x, int y, MouseButton button) {
  // USER decides what is a double click by the times of the presses; a
  // script of single clicks must not turn into one by running fast.
  const DWORD limit = GetDoubleClickTime();
  if (click_seen_) {
    const DWORD since = Clock::Now() - last_click_;
    if (since <= limit) Clock::Advance(limit - since + 1);
  }
  MoveTo(x, y);
  Press(button);
  Release(button);
  click_seen_ = true;
  last_click_ = Clock::Now();
}

void HeadlessPresenter::DoubleClick(int x, int y, MouseButton button) {
  Click(x, y, button);
  Clock::Advance(kDoubleClickGap);
  Press(button);
  Release(button);
  // The next Click must not make a triple.
  last_click_ = Clock::Now();
}

void HeadlessPresenter::Drag(int fromX, int fromY, int toX, int toY, MouseButton button) {
  MoveTo(fromX, fromY);
  Press(button);
  constexpr int kSteps = 8;
  for (int i = 1; i <= kSteps; ++i) {
    Clock::Advance(10);
    MoveTo(fromX + (toX - fromX) * i / kSteps, fromY + (toY - fromY) * i / kSteps);
  }
  Release(button);
}

void HeadlessPresenter::Wheel(int notches, bool horizontal) {
  InjectMouseWheel(notches * WHEEL_DELTA, horizontal);
  Pump();
}

void HeadlessPresenter::KeyDown(int vkey) {
  InjectKey(vkey, true);
  Pump();
}

void HeadlessPresenter::KeyUp(int vkey) {
  InjectKey(vkey, false);
  Pump();
}

void HeadlessPresenter::Key(int vkey) {
  KeyDown(vkey);
  KeyUp(vkey);
}

void HeadlessPresenter::KeyChord(std::initializer_list<int> vkeys) {
  for (int k : vkeys) KeyDown(k);
  for (auto it = std::rbegin(vkeys); it != std::rend(vkeys); ++it) KeyUp(*it);
}

void HeadlessPresenter::Type(const String& text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c >= u'a' && c <= u'z') {
      Key(c - u'a' + 'A');
    } else if (c >= u'A' && c <= u'Z') {
      KeyChord({VK_SHIFT, c});
    } else if (c >= u'0' && c <= u'9') {
      Key(c);
    } else if (c == u' ') {
      Key(VK_SPACE);
    } else if (c == u'\t') {
      Key(VK_TAB);
    } else if (c == u'\b') {
      Key(VK_BACK);
    } else if (c == u'\r' || c == u'\n') {
      // CR LF is one press of Enter.
      if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
      Key(VK_RETURN);
    } else {
      InjectChar(c);
      Pump();
    }
  }
}

void HeadlessPresenter::Wait(DWORD milliseconds) {
  // In steps, so that timers due at different times fire in their order and
  // each one's painting happens before the next is due.
  constexpr DWORD kStep = 10;
  while (milliseconds > 0) {
    const DWORD step = std::min(milliseconds, kStep);
    Clock::Advance(step);
    Pump();
    milliseconds -= step;
  }
}

int HeadlessPresenter::Pump() {
  return RunUntilIdle();
}

bool HeadlessPresenter::SaveScreen(const std::string& path) {
  return PngFile::Save(Screen(), path);
}

Surface HeadlessPresenter::WindowPixels(HWND hwnd) const {
  const HWND root = IsWindow(hwnd) ? GetAncestor(hwnd, GA_ROOT) : nullptr;
  if (root == nullptr) return Surface{};
  for (const TopLevelWindow& w : TopLevelWindows()) {
    if (w.hwnd != root || w.surface == nullptr || w.surface->Empty()) continue;
    RECT r{};
    if (!GetWindowRect(hwnd, &r)) return Surface{};
    // The window's part of its top-level's pixels, cut to what exists.
    const LONG left = std::max<LONG>(0, r.left - w.rect.left);
    const LONG top = std::max<LONG>(0, r.top - w.rect.top);
    const LONG right = std::min<LONG>(w.surface->width, r.right - w.rect.left);
    const LONG bottom = std::min<LONG>(w.surface->height, r.bottom - w.rect.top);
    if (right <= left || bottom <= top) return Surface{};
    Surface part = *w.surface;
    part.pixels = w.surface->Row(top) + left;
    part.width = right - left;
    part.height = bottom - top;
    return part;
  }
  return Surface{};
}

bool HeadlessPresenter::SaveWindow(HWND hwnd, const std::string& path) {
  const Surface pixels = WindowPixels(hwnd);
  return !pixels.Empty() && PngFile::Save(pixels, path);
}

}  // namespace vantor::platform
