// Painting: invalidation, WM_PAINT and WM_ERASEBKGND, window DCs on the
// top-level surface with the window's visible part as clip, regions,
// layered attributes and the desktop's list of windows.
#include "UserTestSupport.h"
#include "platform/Gdi.h"

namespace vantor::platform::test {
namespace {

constexpr uint32_t kRgb = 0x00FFFFFF;

class UserPaintTest : public UserTest {
 protected:
  // The pixel of a top-level window at window coordinates, without alpha.
  static uint32_t Pixel(HWND top, int x, int y) {
    for (const auto& t : TopLevelWindows()) {
      if (t.hwnd == top) return t.surface->At(x, y) & kRgb;
    }
    ADD_FAILURE() << "window not on the desktop";
    return 0xDEADBEEF;
  }
  // Paints the whole client of `hwnd` with a colour when it gets WM_PAINT.
  static void PaintWith(HWND hwnd, COLORREF color) {
    Colors()[hwnd] = color;
    L().handlers[WM_PAINT] = [](HWND h, WPARAM, LPARAM, bool* handled) -> LRESULT {
      auto it = Colors().find(h);
      if (it == Colors().end()) {
        *handled = false;
        return 0;
      }
      PAINTSTRUCT ps;
      HDC dc = BeginPaint(h, &ps);
      RECT r;
      GetClientRect(h, &r);
      HBRUSH b = CreateSolidBrush(it->second);
      FillRect(dc, &r, b);
      DeleteObject(b);
      EndPaint(h, &ps);
      return 0;
    };
  }
  static std::map<HWND, COLORREF>& Colors() {
    static std::map<HWND, COLORREF> colors;
    return colors;
  }
  void TearDown() override {
    Colors().clear();
    UserTest::TearDown();
  }
};

TEST_F(UserPaintTest, InvalidationBecomesOnePaintWithTheUnionOfTheAreas) {
  HWND w = Top(0, 0, 100, 100);
  RunUntilIdle();
  Clear();
  RECT a{10, 10, 20, 20};
  RECT b{30, 5, 40, 15};
  InvalidateRect(w, &a, FALSE);
  InvalidateRect(w, &b, FALSE);
  RECT u{};
  EXPECT_TRUE(GetUpdateRect(w, &u, FALSE));
  EXPECT_EQ(u.left, 10);
  EXPECT_EQ(u.top, 5);
  EXPECT_EQ(u.right, 40);
  EXPECT_EQ(u.bottom, 20);
  RECT seen{};
  L().handlers[WM_PAINT] = [&](HWND h, WPARAM, LPARAM, bool*) -> LRESULT {
    PAINTSTRUCT ps;
    BeginPaint(h, &ps);
    seen = ps.rcPaint;
    EXPECT_FALSE(ps.fErase);
    EndPaint(h, &ps);
    return 0;
  };
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_PAINT).size(), 1u);
  EXPECT_TRUE(L().Of(WM_ERASEBKGND).empty());
  EXPECT_EQ(seen.left, 10);
  EXPECT_EQ(seen.bottom, 20);
  EXPECT_FALSE(GetUpdateRect(w, &u, FALSE));
  // Validated areas are not painted.
  InvalidateRect(w, &a, TRUE);
  ValidateRect(w, nullptr);
  Clear();
  RunUntilIdle();
  EXPECT_TRUE(L().Of(WM_PAINT).empty());
  // Outside the client: nothing to paint.
  RECT far{500, 500, 600, 600};
  InvalidateRect(w, &far, TRUE);
  EXPECT_FALSE(GetUpdateRect(w, nullptr, FALSE));
}

TEST_F(UserPaintTest, EraseUsesTheClassBrushBeforeThePaint) {
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof wc;
  wc.lpfnWndProc = LoggingProc;
  wc.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<intptr_t>(COLOR_BTNFACE + 1));
  wc.lpszClassName = u"Erased";
  RegisterClassExW(&wc);
  HWND w = CreateWindowExW(0, u"Erased", u"", WS_POPUP | WS_VISIBLE, 50, 50, 40, 30, nullptr,
                           nullptr, nullptr, nullptr);
  RunUntilIdle();
  EXPECT_EQ(L().Sequence({WM_ERASEBKGND, WM_PAINT}, w),
            (std::vector<UINT>{WM_PAINT, WM_ERASEBKGND}));
  EXPECT_EQ(Pixel(w, 0, 0), 0xF0F0F0u);
  EXPECT_EQ(Pixel(w, 39, 29), 0xF0F0F0u);
  // A procedure that erases nothing leaves fErase set for the painter.
  BOOL erase_flag = FALSE;
  L().handlers[WM_ERASEBKGND] = [](HWND, WPARAM, LPARAM, bool*) -> LRESULT { return 0; };
  L().handlers[WM_PAINT] = [&](HWND h, WPARAM, LPARAM, bool*) -> LRESULT {
    PAINTSTRUCT ps;
    BeginPaint(h, &ps);
    erase_flag = ps.fErase;
    EndPaint(h, &ps);
    return 0;
  };
  InvalidateRect(w, nullptr, TRUE);
  RunUntilIdle();
  EXPECT_TRUE(erase_flag);
}

TEST_F(UserPaintTest, ChildDCsDrawAtTheChildsPlaceOnTheTopLevelSurface) {
  HWND w = Top(0, 0, 100, 100, WS_POPUP | WS_BORDER | WS_VISIBLE);
  HWND c = Child(w, 10, 20, 30, 30);
  PaintWith(w, RGB(0, 0, 255));
  PaintWith(c, RGB(255, 0, 0));
  RunUntilIdle();
  // Border 1 pixel; the child's client starts at window (11, 21).
  EXPECT_EQ(Pixel(w, 1, 1), 0xFFu);        // blue as BGR: 0x0000FF
  EXPECT_EQ(Pixel(w, 11, 21), 0xFF0000u);  // red
  EXPECT_EQ(Pixel(w, 40, 50), 0xFF0000u);
  EXPECT_EQ(Pixel(w, 41, 51), 0xFFu);
  EXPECT_EQ(Pixel(w, 0, 0), 0x646464u);  // the border: COLOR_WINDOWFRAME
  // GetDC draws there too, clipped to the child.
  HDC dc = GetDC(c);
  ASSERT_NE(dc, nullptr);
  EXPECT_EQ(WindowFromDC(dc), c);
  RECT all{-50, -50, 500, 500};
  HBRUSH green = CreateSolidBrush(RGB(0, 255, 0));
  FillRect(dc, &all, green);
  EXPECT_EQ(Pixel(w, 11, 21), 0x00FF00u);
  EXPECT_EQ(Pixel(w, 10, 20), 0xFFu);
  EXPECT_EQ(Pixel(w, 41, 51), 0xFFu);
  EXPECT_EQ(ReleaseDC(c, dc), 1);
  EXPECT_EQ(ReleaseDC(c, dc), 0);
  // The window DC covers the whole window rectangle.
  HDC wdc = GetWindowDC(w);
  RECT one{0, 0, 1, 1};
  FillRect(wdc, &one, green);
  EXPECT_EQ(Pixel(w, 0, 0), 0x00FF00u);
  ReleaseDC(w, wdc);
  DeleteObject(green);
}

TEST_F(UserPaintTest, ClipChildrenAndClipSiblingsKeepPaintOffOtherWindows) {
  HWND w = Top(0, 0, 100, 100, WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN);
  HWND a = Child(w, 10, 10, 30, 30, 1, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS);
  HWND b = Child(w, 20, 20, 30, 30, 2, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS);
  PaintWith(w, RGB(0, 0, 255));
  PaintWith(a, RGB(255, 0, 0));
  PaintWith(b, RGB(0, 255, 0));
  RunUntilIdle();
  EXPECT_EQ(Pixel(w, 5, 5), 0xFFu);
  EXPECT_EQ(Pixel(w, 15, 15), 0xFF0000u);
  EXPECT_EQ(Pixel(w, 25, 25), 0xFF0000u);  // a is above b
  EXPECT_EQ(Pixel(w, 45, 45), 0x00FF00u);
  // The parent repaints itself alone; the children keep their pixels.
  InvalidateRect(w, nullptr, FALSE);
  Clear();
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_PAINT).size(), 1u);
  EXPECT_EQ(Pixel(w, 15, 15), 0xFF0000u);
  EXPECT_EQ(Pixel(w, 5, 5), 0xFFu);
  // b alone: its part under a stays a's.
  InvalidateRect(b, nullptr, FALSE);
  RunUntilIdle();
  EXPECT_EQ(Pixel(w, 25, 25), 0xFF0000u);
  EXPECT_EQ(Pixel(w, 45, 45), 0x00FF00u);
}

TEST_F(UserPaintTest, WithoutClipChildrenTheParentPaintsUnderAndTheChildrenAgain) {
  HWND w = Top(0, 0, 100, 100);
  HWND c = Child(w, 10, 10, 30, 30);
  PaintWith(w, RGB(0, 0, 255));
  PaintWith(c, RGB(255, 0, 0));
  RunUntilIdle();
  Clear();
  InvalidateRect(w, nullptr, FALSE);  // the children come along
  RunUntilIdle();
  EXPECT_EQ(L().Sequence({WM_PAINT}).size(), 2u);
  EXPECT_EQ(L().Of(WM_PAINT)[0].hwnd, w);  // parents first
  EXPECT_EQ(Pixel(w, 15, 15), 0xFF0000u);
  Clear();
  RedrawWindow(w, nullptr, nullptr, RDW_INVALIDATE | RDW_NOCHILDREN);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_PAINT).size(), 1u);
  EXPECT_EQ(Pixel(w, 15, 15), 0xFFu);  // painted over, and the child not asked
}

TEST_F(UserPaintTest, UpdateWindowPaintsAtOnce) {
  HWND w = Top(0, 0, 50, 50);
  HWND c = Child(w, 0, 0, 10, 10);
  RunUntilIdle();
  InvalidateRect(w, nullptr, TRUE);
  Clear();
  EXPECT_TRUE(UpdateWindow(w));
  EXPECT_EQ(L().Of(WM_PAINT, w).size(), 1u);
  EXPECT_EQ(L().Of(WM_PAINT, c).size(), 1u);
  Clear();
  EXPECT_EQ(RunUntilIdle(), 0);
  EXPECT_FALSE(UpdateWindow(nullptr));
  // A procedure that doesn't paint is not asked again and again.
  L().handlers[WM_PAINT] = [](HWND, WPARAM, LPARAM, bool*) -> LRESULT { return 0; };
  InvalidateRect(w, nullptr, FALSE);
  EXPECT_LT(RunUntilIdle(), 5);
}

TEST_F(UserPaintTest, FramesAndCaptionsArePaintedInTheClassicLook) {
  HWND w = Top(10, 10, 120, 80, WS_OVERLAPPED | WS_CAPTION | WS_THICKFRAME | WS_VISIBLE);
  RunUntilIdle();
  EXPECT_FALSE(L().Of(WM_NCPAINT, w).empty());
  // Sizing border: light and highlight lines, then the button face.
  EXPECT_EQ(Pixel(w, 0, 40), 0xE3E3E3u);    // COLOR_3DLIGHT
  EXPECT_EQ(Pixel(w, 1, 40), 0xFFFFFFu);    // COLOR_BTNHIGHLIGHT
  EXPECT_EQ(Pixel(w, 2, 40), 0xF0F0F0u);    // COLOR_BTNFACE
  EXPECT_EQ(Pixel(w, 119, 40), 0x696969u);  // COLOR_3DDKSHADOW
  EXPECT_EQ(Pixel(w, 118, 40), 0xA0A0A0u);  // COLOR_BTNSHADOW
  // The caption of the active window, 18 rows and a face-coloured line.
  EXPECT_EQ(Pixel(w, 100, 4), 0x99B4D1u);  // COLOR_ACTIVECAPTION
  EXPECT_EQ(Pixel(w, 100, 21), 0x99B4D1u);
  EXPECT_EQ(Pixel(w, 100, 22), 0xF0F0F0u);
  HWND other = Top(300, 300, 10, 10);
  RunUntilIdle();
  EXPECT_EQ(GetActiveWindow(), other);
  EXPECT_EQ(Pixel(w, 100, 4), 0xBFCDDBu);  // COLOR_INACTIVECAPTION
  // A client edge is sunken.
  HWND e = Top(0, 0, 30, 30, WS_POPUP | WS_VISIBLE, WS_EX_CLIENTEDGE);
  RunUntilIdle();
  EXPECT_EQ(Pixel(e, 0, 5), 0xA0A0A0u);
  EXPECT_EQ(Pixel(e, 1, 5), 0x696969u);
  EXPECT_EQ(Pixel(e, 29, 5), 0xFFFFFFu);
  EXPECT_EQ(Pixel(e, 28, 5), 0xE3E3E3u);
}

TEST_F(UserPaintTest, WindowRegionsClipPainting) {
  HWND w = Top(0, 0, 40, 40);
  PaintWith(w, RGB(255, 0, 0));
  SetWindowRgn(w, CreateRoundRectRgn(0, 0, 41, 41, 10, 10), TRUE);
  RunUntilIdle();
  EXPECT_EQ(Pixel(w, 20, 20), 0xFF0000u);
  EXPECT_EQ(Pixel(w, 0, 0), 0u);  // the corner is outside the region
  EXPECT_EQ(Pixel(w, 39, 0), 0u);
  // The window owns the region: the caller's handle is gone.
  HRGN r = CreateRectRgn(0, 0, 10, 10);
  SetWindowRgn(w, r, FALSE);
  EXPECT_FALSE(DeleteObject(r));
  EXPECT_EQ(SetWindowRgn(w, reinterpret_cast<HRGN>(intptr_t{12345}), TRUE), 0);
  EXPECT_EQ(SetWindowRgn(nullptr, nullptr, TRUE), 0);
  const auto tops = TopLevelWindows();
  ASSERT_EQ(tops.size(), 1u);
  ASSERT_NE(tops[0].region, nullptr);
  EXPECT_EQ(tops[0].region->Box().right, 10);
}

TEST_F(UserPaintTest, DCsFollowTheirWindowAndDieWithIt) {
  HWND w = Top(0, 0, 20, 20);
  RunUntilIdle();
  HDC dc = GetDC(w);
  MoveWindow(w, 0, 0, 60, 60, TRUE);  // a new, larger surface
  RECT r{50, 50, 55, 55};
  HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
  EXPECT_NE(FillRect(dc, &r, red), 0);
  EXPECT_EQ(Pixel(w, 52, 52), 0xFF0000u);
  DestroyWindow(w);
  EXPECT_EQ(FillRect(dc, &r, red), 0);  // the DC went with the window
  EXPECT_EQ(ReleaseDC(w, dc), 0);
  DeleteObject(red);
  // A hidden window's DC draws nothing and doesn't fail.
  HWND hidden = Top(0, 0, 20, 20, WS_POPUP);
  HDC h = GetDC(hidden);
  ASSERT_NE(h, nullptr);
  RECT all{0, 0, 20, 20};
  FillRect(h, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  ReleaseDC(hidden, h);
  // GetDC(NULL) measures but draws nowhere.
  HDC screen = GetDC(nullptr);
  ASSERT_NE(screen, nullptr);
  ReleaseDC(nullptr, screen);
}

TEST_F(UserPaintTest, TheDesktopListsTopLevelWindowsTopFirstWithLayeredAttributes) {
  HWND a = Top(0, 0, 10, 10);
  HWND b = Top(5, 5, 10, 10, WS_POPUP | WS_VISIBLE, WS_EX_LAYERED);
  Top(0, 0, 10, 10, WS_POPUP);                                     // hidden: not listed
  EXPECT_FALSE(SetLayeredWindowAttributes(a, 0, 128, LWA_ALPHA));  // not layered
  EXPECT_TRUE(SetLayeredWindowAttributes(b, RGB(255, 0, 255), 128, LWA_ALPHA | LWA_COLORKEY));
  EXPECT_FALSE(SetLayeredWindowAttributes(b, 0, 0, 0x10));
  COLORREF key = 0;
  BYTE alpha = 0;
  DWORD flags = 0;
  EXPECT_TRUE(GetLayeredWindowAttributes(b, &key, &alpha, &flags));
  EXPECT_EQ(key, RGB(255, 0, 255));
  EXPECT_EQ(alpha, 128);
  EXPECT_EQ(flags, LWA_ALPHA | LWA_COLORKEY);
  EXPECT_FALSE(GetLayeredWindowAttributes(a, &key, &alpha, &flags));
  const uint64_t before = DesktopGeneration();
  const auto tops = TopLevelWindows();
  ASSERT_EQ(tops.size(), 2u);
  EXPECT_EQ(tops[0].hwnd, b);
  EXPECT_TRUE(tops[0].layered);
  EXPECT_EQ(tops[0].alpha, 128);
  EXPECT_EQ(tops[0].rect.left, 5);
  EXPECT_EQ(tops[0].surface->width, 10);
  EXPECT_EQ(tops[1].hwnd, a);
  EXPECT_FALSE(tops[1].layered);
  MoveWindow(a, 1, 1, 10, 10, TRUE);
  EXPECT_GT(DesktopGeneration(), before);
  EXPECT_TRUE(FlashWindow(a, TRUE));
}

}  // namespace
}  // namespace vantor::platform::test
