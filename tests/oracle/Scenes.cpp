#include "tests/oracle/Scenes.h"

#include <cstdio>
#include <cstring>

namespace oracle {
namespace {

std::string* g_notes = nullptr;

void AddNote(const char* key, const char* text) {
  if (g_notes == nullptr) return;
  *g_notes += key;
  *g_notes += ' ';
  *g_notes += text;
  *g_notes += '\n';
}

// Every scene cleans up what it makes, as controls must; the test counts the
// live objects before and after.
struct Pen {
  HPEN handle;
  Pen(int style, int width, COLORREF color) : handle(CreatePen(style, width, color)) {}
  ~Pen() { DeleteObject(handle); }
};
struct Brush {
  HBRUSH handle;
  explicit Brush(COLORREF color) : handle(CreateSolidBrush(color)) {}
  ~Brush() { DeleteObject(handle); }
};
struct Rgn {
  HRGN handle;
  explicit Rgn(HRGN h) : handle(h) {}
  ~Rgn() { DeleteObject(handle); }
};
struct Font {
  HFONT handle;
  Font(const WCHAR* face, int height, int weight, bool italic, bool underline, bool strike) {
    LOGFONTW lf;
    std::memset(&lf, 0, sizeof lf);
    lf.lfHeight = height;
    lf.lfWeight = weight;
    lf.lfItalic = italic ? 1 : 0;
    lf.lfUnderline = underline ? 1 : 0;
    lf.lfStrikeOut = strike ? 1 : 0;
    for (int i = 0; i < LF_FACESIZE - 1 && face[i] != 0; ++i) lf.lfFaceName[i] = face[i];
    handle = CreateFontIndirectW(&lf);
  }
  ~Font() { DeleteObject(handle); }
};
// A memory DC holding a 32-bit top-down DIB section.
struct Dib {
  HDC dc = nullptr;
  HBITMAP bitmap = nullptr;
  HGDIOBJ old = nullptr;
  uint32_t* bits = nullptr;
  Dib(HDC compatible, int w, int h) {
    BITMAPINFO bmi;
    std::memset(&bmi, 0, sizeof bmi);
    bmi.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    bmi.bmiHeader.biWidth = w;
    bmi.bmiHeader.biHeight = -h;
    bmi.bmiHeader.biPlanes = 1;
    bmi.bmiHeader.biBitCount = 32;
    bmi.bmiHeader.biCompression = BI_RGB;
    void* p = nullptr;
    bitmap = CreateDIBSection(compatible, &bmi, DIB_RGB_COLORS, &p, nullptr, 0);
    bits = static_cast<uint32_t*>(p);
    dc = CreateCompatibleDC(compatible);
    if (dc != nullptr && bitmap != nullptr) old = SelectObject(dc, bitmap);
  }
  ~Dib() {
    if (old != nullptr) SelectObject(dc, old);
    if (dc != nullptr) DeleteDC(dc);
    if (bitmap != nullptr) DeleteObject(bitmap);
  }
};

HBRUSH NullBrush() {
  return static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
}

void Fill(HDC dc, int l, int t, int r, int b, COLORREF c) {
  Brush brush(c);
  RECT rc = {l, t, r, b};
  FillRect(dc, &rc, brush.handle);
}

// ---------------------------------------------------------------- lines

void LinesWithPen(HDC dc, int width) {
  Pen pen(PS_SOLID, width, RGB(0, 0, 160));
  HGDIOBJ old = SelectObject(dc, pen.handle);
  // One line into each octant from a common centre, then short and degenerate ones.
  static const POINT kEnds[] = {{60, 34}, {58, 46}, {44, 60}, {36, 58}, {20, 44}, {22, 36},
                                {36, 20}, {44, 22}, {58, 30}, {30, 58}, {20, 32}, {40, 8}};
  for (const POINT& e : kEnds) {
    MoveToEx(dc, 40, 32, nullptr);
    LineTo(dc, e.x, e.y);
  }
  MoveToEx(dc, 4, 4, nullptr);
  LineTo(dc, 5, 4);  // one pixel: the last point is left out, so only (4,4)
  MoveToEx(dc, 8, 4, nullptr);
  LineTo(dc, 8, 4);  // nothing
  MoveToEx(dc, 12, 4, nullptr);
  LineTo(dc, 17, 7);
  MoveToEx(dc, 70, 4, nullptr);
  LineTo(dc, 70, 60);
  MoveToEx(dc, 74, 60, nullptr);
  LineTo(dc, 74, 4);
  MoveToEx(dc, 78, 10, nullptr);
  LineTo(dc, 94, 10);
  static const POINT kZigzag[] = {{78, 20}, {86, 28}, {94, 20}, {94, 40}, {78, 56}};
  Polyline(dc, kZigzag, 5);
  POINT pos;
  MoveToEx(dc, 1, 1, &pos);
  Note("position", pos.y * 1000L + pos.x);
  SelectObject(dc, old);
}
void LinesWidth1(HDC dc) {
  LinesWithPen(dc, 1);
}
void LinesWidth2(HDC dc) {
  LinesWithPen(dc, 2);
}
void LinesWidth3(HDC dc) {
  LinesWithPen(dc, 3);
}

void LinesRop2(HDC dc) {
  Fill(dc, 0, 0, 48, 64, RGB(255, 128, 0));
  Pen pen(PS_SOLID, 1, RGB(0, 255, 0));
  HGDIOBJ old = SelectObject(dc, pen.handle);
  static const int kRops[] = {R2_COPYPEN, R2_XORPEN,   R2_NOT,   R2_NOTXORPEN,
                              R2_MASKPEN, R2_MERGEPEN, R2_BLACK, R2_WHITE};
  int y = 4;
  for (int rop : kRops) {
    Note("rop2", SetROP2(dc, rop));
    MoveToEx(dc, 2, y, nullptr);
    LineTo(dc, 94, y + 3);
    y += 7;
  }
  SetROP2(dc, R2_COPYPEN);
  SelectObject(dc, old);
}

// ----------------------------------------------------------- rectangles

void Rectangles(HDC dc) {
  HGDIOBJ oldBrush = SelectObject(dc, NullBrush());
  for (int w = 1; w <= 3; ++w) {
    Pen pen(PS_SOLID, w, RGB(200, 0, 0));
    HGDIOBJ old = SelectObject(dc, pen.handle);
    Rectangle(dc, 2 + (w - 1) * 16, 2, 14 + (w - 1) * 16, 14);
    Rectangle(dc, 2 + (w - 1) * 16, 18, 4 + (w - 1) * 16, 20);  // tiny
    SelectObject(dc, old);
  }
  Brush blue(RGB(0, 0, 255));
  SelectObject(dc, blue.handle);
  Rectangle(dc, 50, 2, 70, 14);  // black pen, blue inside
  Rectangle(dc, 80, 14, 74, 2);  // reversed corners
  SelectObject(dc, GetStockObject(NULL_PEN));
  Rectangle(dc, 50, 18, 60, 28);  // null pen: the fill is one smaller each way
  SelectObject(dc, oldBrush);

  Brush green(RGB(0, 160, 0));
  RECT r = {2, 30, 20, 40};
  FillRect(dc, &r, green.handle);
  r = {24, 30, 42, 40};
  FrameRect(dc, &r, green.handle);
  r = {46, 30, 64, 40};
  FillRect(dc, &r, green.handle);
  r = {50, 32, 70, 46};
  InvertRect(dc, &r);
  r = {20, 50, 10, 60};  // empty: draws nothing
  FillRect(dc, &r, green.handle);
  r = {74, 30, 94, 60};
  FillRect(dc, &r, static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH)));
  FillRect(dc, &r, reinterpret_cast<HBRUSH>(static_cast<uintptr_t>(COLOR_HIGHLIGHT + 1)));
}

void RoundRects(HDC dc) {
  Brush face(RGB(240, 200, 120));
  HGDIOBJ oldBrush = SelectObject(dc, face.handle);
  RoundRect(dc, 2, 2, 24, 16, 3, 3);
  RoundRect(dc, 28, 2, 50, 16, 6, 6);
  RoundRect(dc, 54, 2, 94, 30, 16, 10);
  RoundRect(dc, 2, 20, 24, 34, 40, 40);  // corners larger than the box
  RoundRect(dc, 28, 20, 50, 34, 0, 0);
  SelectObject(dc, NullBrush());
  Pen pen(PS_SOLID, 2, RGB(0, 0, 128));
  HGDIOBJ oldPen = SelectObject(dc, pen.handle);
  RoundRect(dc, 2, 38, 30, 60, 3, 3);
  RoundRect(dc, 34, 38, 62, 60, 9, 5);
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
}

void Ellipses(HDC dc) {
  Brush fill(RGB(120, 200, 240));
  HGDIOBJ oldBrush = SelectObject(dc, fill.handle);
  Ellipse(dc, 2, 2, 22, 22);
  Ellipse(dc, 26, 2, 47, 13);
  Ellipse(dc, 50, 2, 53, 5);
  Ellipse(dc, 56, 2, 60, 6);
  Ellipse(dc, 64, 2, 66, 4);
  Ellipse(dc, 70, 2, 94, 30);
  SelectObject(dc, NullBrush());
  Pen pen(PS_SOLID, 3, RGB(128, 0, 128));
  HGDIOBJ oldPen = SelectObject(dc, pen.handle);
  Ellipse(dc, 2, 30, 40, 60);
  SelectObject(dc, GetStockObject(BLACK_PEN));
  Ellipse(dc, 44, 34, 61, 59);
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
}

void Polygons(HDC dc) {
  Brush fill(RGB(250, 220, 0));
  HGDIOBJ oldBrush = SelectObject(dc, fill.handle);
  static const POINT kStar[] = {{24, 2}, {36, 44}, {2, 16}, {46, 16}, {12, 44}};
  Polygon(dc, kStar, 5);  // the default ALTERNATE leaves the centre empty
  static const POINT kTriangle[] = {{52, 4}, {92, 10}, {60, 40}};
  Polygon(dc, kTriangle, 3);
  SelectObject(dc, GetStockObject(NULL_PEN));
  static const POINT kDiamond[] = {{20, 48}, {30, 58}, {20, 63}, {10, 58}};
  Polygon(dc, kDiamond, 4);
  SelectObject(dc, GetStockObject(BLACK_PEN));
  static const POINT kLine[] = {{50, 50}, {90, 50}};
  Polygon(dc, kLine, 2);
  SelectObject(dc, oldBrush);
}

// -------------------------------------------------------------- regions

void RegionKinds(HDC dc) {
  Brush fill(RGB(0, 170, 90));
  Brush frame(RGB(90, 0, 0));
  Rgn rgns[] = {
      Rgn(CreateRectRgn(2, 2, 20, 16)),
      Rgn(CreateRoundRectRgn(24, 2, 24 + 23, 2 + 15, 3, 3)),  // as a 22x14 button
      Rgn(CreateRoundRectRgn(52, 2, 94, 28, 12, 8)),
      Rgn(CreateEllipticRgn(2, 20, 30, 44)),
      Rgn(CreateEllipticRgn(34, 20, 41, 27)),
  };
  static const POINT kStar[] = {{60, 32}, {70, 62}, {46, 42}, {76, 42}, {52, 62}};
  Rgn alternate(CreatePolygonRgn(kStar, 5, ALTERNATE));
  static const POINT kStar2[] = {{80, 32}, {90, 62}, {66, 42}, {96, 42}, {72, 62}};
  Rgn winding(CreatePolygonRgn(kStar2, 5, WINDING));
  for (Rgn& r : rgns) {
    FillRgn(dc, r.handle, fill.handle);
    FrameRgn(dc, r.handle, frame.handle, 1, 1);
  }
  FillRgn(dc, alternate.handle, fill.handle);
  FillRgn(dc, winding.handle, fill.handle);
  FrameRgn(dc, winding.handle, frame.handle, 1, 1);
  Rgn thick(CreateRectRgn(4, 48, 40, 62));
  FrameRgn(dc, thick.handle, frame.handle, 3, 2);
  RECT box;
  Note("roundbox", static_cast<long>(GetRgnBox(rgns[1].handle, &box)));
  Note("roundbox", box);
  Note("ellipsebox", static_cast<long>(GetRgnBox(rgns[3].handle, &box)));
  Note("ellipsebox", box);
  Note("starbox", static_cast<long>(GetRgnBox(alternate.handle, &box)));
  Note("starbox", box);
  Note("inside", PtInRegion(rgns[1].handle, 24, 2) * 10L + PtInRegion(rgns[1].handle, 25, 3));
}

void CombineModes(HDC dc) {
  static const int kModes[] = {RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF, RGN_COPY};
  Brush fill(RGB(60, 60, 200));
  for (int i = 0; i < 5; ++i) {
    const int x = 2 + (i % 3) * 32;
    const int y = 2 + (i / 3) * 32;
    Rgn a(CreateEllipticRgn(x, y, x + 20, y + 20));
    Rgn b(CreateRectRgn(x + 8, y + 8, x + 28, y + 28));
    Rgn dest(CreateRectRgn(0, 0, 0, 0));
    Note("combine", CombineRgn(dest.handle, a.handle, b.handle, kModes[i]));
    FillRgn(dc, dest.handle, fill.handle);
  }
  // The return codes of the edge cases.
  Rgn a(CreateRectRgn(0, 0, 10, 10));
  Rgn b(CreateRectRgn(20, 20, 30, 30));
  Rgn dest(CreateRectRgn(0, 0, 1, 1));
  Note("disjoint-and", CombineRgn(dest.handle, a.handle, b.handle, RGN_AND));
  Note("disjoint-or", CombineRgn(dest.handle, a.handle, b.handle, RGN_OR));
  Note("self-diff", CombineRgn(dest.handle, a.handle, a.handle, RGN_DIFF));
  Note("copy-rect", CombineRgn(dest.handle, a.handle, nullptr, RGN_COPY));
  Note("bad-mode", CombineRgn(dest.handle, a.handle, b.handle, 99));
  Note("offset", OffsetRgn(a.handle, 70, 40));
  FillRgn(dc, a.handle, fill.handle);
  Note("equal", EqualRgn(a.handle, b.handle));
}

void ClipByRegion(HDC dc) {
  // As a window region clips a window: a button-shaped clip, then drawing
  // straight across it.
  Rgn clip(CreateRoundRectRgn(4, 4, 61, 41, 12, 12));
  Note("select", SelectClipRgn(dc, clip.handle));
  Fill(dc, 0, 0, 96, 64, RGB(255, 200, 200));
  Pen pen(PS_SOLID, 1, RGB(0, 0, 0));
  HGDIOBJ old = SelectObject(dc, pen.handle);
  for (int x = 0; x < 96; x += 6) {
    MoveToEx(dc, x, 0, nullptr);
    LineTo(dc, x + 30, 64);
  }
  RECT box;
  Note("clipbox", GetClipBox(dc, &box));
  Note("clipbox", box);
  Note("intersect", IntersectClipRect(dc, 10, 10, 50, 30));
  Fill(dc, 0, 0, 96, 64, RGB(0, 120, 0));
  Note("exclude", ExcludeClipRect(dc, 20, 15, 30, 25));
  Fill(dc, 0, 0, 96, 64, RGB(200, 200, 0));
  Note("clipbox", GetClipBox(dc, &box));
  Note("clipbox", box);
  SelectClipRgn(dc, nullptr);
  Rgn second(CreateEllipticRgn(60, 20, 94, 62));
  Note("ext-or", ExtSelectClipRgn(dc, second.handle, RGN_COPY));
  Fill(dc, 0, 0, 96, 64, RGB(0, 0, 200));
  SelectClipRgn(dc, nullptr);
  SelectObject(dc, old);
}

void FocusRects(HDC dc) {
  Fill(dc, 0, 0, 96, 32, RGB(0, 100, 200));
  RECT r = {2, 2, 30, 20};
  DrawFocusRect(dc, &r);
  r = {34, 3, 63, 22};  // odd size: the dot pattern meets itself at a corner
  DrawFocusRect(dc, &r);
  r = {66, 4, 94, 28};
  DrawFocusRect(dc, &r);
  DrawFocusRect(dc, &r);  // a second call takes it away again
  r = {2, 36, 40, 60};
  DrawFocusRect(dc, &r);
  r = {44, 36, 46, 38};
  DrawFocusRect(dc, &r);
  r = {50, 36, 51, 60};
  DrawFocusRect(dc, &r);
}

// ----------------------------------------------------------- gradients

void Gradient(HDC dc, ULONG mode) {
  TRIVERTEX v[4];
  std::memset(v, 0, sizeof v);
  v[0] = {2, 2, 0xFF00, 0x0000, 0x0000, 0};
  v[1] = {94, 30, 0x0000, 0x8000, 0xFF00, 0};
  v[2] = {10, 34, 0xFFFF, 0xFFFF, 0xFFFF, 0};
  v[3] = {40, 62, 0x0000, 0x0000, 0x0000, 0};
  GRADIENT_RECT rects[2] = {{0, 1}, {2, 3}};
  Note("gradient", GradientFill(dc, v, 4, rects, 2, mode));
  // Reversed corners and a 1-pixel strip.
  TRIVERTEX w[2] = {{90, 62, 0x1200, 0x3400, 0x5600, 0}, {50, 34, 0xFE00, 0xDC00, 0xBA00, 0}};
  GRADIENT_RECT one = {0, 1};
  Note("reversed", GradientFill(dc, w, 2, &one, 1, mode));
}
void GradientH(HDC dc) {
  Gradient(dc, GRADIENT_FILL_RECT_H);
}
void GradientV(HDC dc) {
  Gradient(dc, GRADIENT_FILL_RECT_V);
}

// ------------------------------------------------------ stretching blits

// A 7x5 source with every pixel distinct, so a picked source pixel shows.
const uint32_t* StretchSource() {
  static uint32_t pixels[35];
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 7; ++x)
      pixels[y * 7 + x] =
          static_cast<uint32_t>((x * 36) << 16 | (y * 60) << 8 | ((x + y) % 2) * 255);
  return pixels;
}

void Stretch(HDC dc, int mode) {
  BITMAPINFO bmi;
  std::memset(&bmi, 0, sizeof bmi);
  bmi.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  bmi.bmiHeader.biWidth = 7;
  bmi.bmiHeader.biHeight = -5;
  bmi.bmiHeader.biPlanes = 1;
  bmi.bmiHeader.biBitCount = 32;
  bmi.bmiHeader.biCompression = BI_RGB;
  Note("oldmode", SetStretchBltMode(dc, mode));
  Note("mode", GetStretchBltMode(dc));
  const uint32_t* src = StretchSource();
  Note("up", StretchDIBits(dc, 2, 2, 30, 23, 0, 0, 7, 5, src, &bmi, DIB_RGB_COLORS, SRCCOPY));
  Note("down", StretchDIBits(dc, 36, 2, 4, 3, 0, 0, 7, 5, src, &bmi, DIB_RGB_COLORS, SRCCOPY));
  StretchDIBits(dc, 44, 2, 5, 4, 1, 1, 5, 3, src, &bmi, DIB_RGB_COLORS, SRCCOPY);
  StretchDIBits(dc, 52, 2, 11, 9, 0, 0, 7, 5, src, &bmi, DIB_RGB_COLORS, SRCCOPY);
  StretchDIBits(dc, 66, 2, -13, 9, 0, 0, 7, 5, src, &bmi, DIB_RGB_COLORS, SRCCOPY);  // mirrored

  // StretchBlt from a memory DC holding a larger picture, down by uneven steps.
  Dib big(dc, 40, 30);
  if (big.bits != nullptr) {
    for (int y = 0; y < 30; ++y)
      for (int x = 0; x < 40; ++x)
        big.bits[y * 40 + x] = static_cast<uint32_t>(
            ((x * 6) & 0xFF) << 16 | ((y * 8) & 0xFF) << 8 | ((x / 3 + y / 3) % 2 ? 0xFF : 0x00));
#ifdef _WIN32
    GdiFlush();
#endif
    StretchBlt(dc, 2, 30, 17, 13, big.dc, 0, 0, 40, 30, SRCCOPY);
    StretchBlt(dc, 22, 30, 60, 33, big.dc, 4, 4, 24, 14, SRCCOPY);
    StretchBlt(dc, 84, 30, 11, 29, big.dc, 0, 0, 40, 30, SRCCOPY);
  }
  SetStretchBltMode(dc, BLACKONWHITE);
}
void StretchColorOnColor(HDC dc) {
  Stretch(dc, COLORONCOLOR);
}
void StretchHalftone(HDC dc) {
  Stretch(dc, HALFTONE);
}

// ------------------------------------------------------------- blending

void AlphaConstant(HDC dc) {
  Fill(dc, 0, 0, 96, 64, RGB(0, 0, 255));
  Fill(dc, 0, 32, 96, 64, RGB(255, 255, 0));
  Dib src(dc, 20, 20);
  Fill(src.dc, 0, 0, 20, 20, RGB(255, 0, 0));
  Fill(src.dc, 5, 5, 15, 15, RGB(10, 200, 90));
  static const BYTE kAlpha[] = {0, 1, 64, 127, 128, 200, 254, 255};
  for (int i = 0; i < 8; ++i) {
    BLENDFUNCTION bf = {AC_SRC_OVER, 0, kAlpha[i], 0};
    const int x = (i % 4) * 24 + 2;
    const int y = (i / 4) * 32 + 6;
    Note("alpha", AlphaBlend(dc, x, y, 20, 20, src.dc, 0, 0, 20, 20, bf));
  }
}

void AlphaPerPixel(HDC dc) {
  Fill(dc, 0, 0, 96, 64, RGB(40, 160, 220));
  Fill(dc, 48, 0, 96, 64, RGB(250, 250, 250));
  Dib src(dc, 32, 32);
  if (src.bits == nullptr) return;
  // Pre-multiplied pixels: alpha grows to the right, colours vary downwards.
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 32; ++x) {
      const uint32_t a = static_cast<uint32_t>(x * 255 / 31);
      const uint32_t r = (static_cast<uint32_t>(y * 8) * a + 127) / 255;
      const uint32_t g = (static_cast<uint32_t>(255 - y * 8) * a + 127) / 255;
      const uint32_t b = a / 2;
      src.bits[y * 32 + x] = a << 24 | r << 16 | g << 8 | b;
    }
  }
#ifdef _WIN32
  GdiFlush();
#endif
  BLENDFUNCTION full = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
  Note("full", AlphaBlend(dc, 2, 2, 32, 32, src.dc, 0, 0, 32, 32, full));
  BLENDFUNCTION half = {AC_SRC_OVER, 0, 128, AC_SRC_ALPHA};
  Note("half", AlphaBlend(dc, 50, 2, 32, 32, src.dc, 0, 0, 32, 32, half));
  Note("stretched", AlphaBlend(dc, 2, 36, 44, 26, src.dc, 0, 0, 32, 32, full));
  Note("outside", AlphaBlend(dc, 50, 36, 10, 10, src.dc, 30, 30, 10, 10, full));
}

void TransparentBlits(HDC dc) {
  Fill(dc, 0, 0, 96, 64, RGB(200, 220, 240));
  Dib src(dc, 16, 16);
  Fill(src.dc, 0, 0, 16, 16, RGB(255, 0, 255));
  Fill(src.dc, 2, 2, 14, 8, RGB(200, 0, 0));
  Fill(src.dc, 5, 8, 11, 15, RGB(0, 0, 0));
  Fill(src.dc, 7, 0, 9, 16, RGB(254, 0, 255));  // near the key: stays
  Note("same", TransparentBlt(dc, 2, 2, 16, 16, src.dc, 0, 0, 16, 16, RGB(255, 0, 255)));
  Note("up", TransparentBlt(dc, 22, 2, 40, 30, src.dc, 0, 0, 16, 16, RGB(255, 0, 255)));
  Note("down", TransparentBlt(dc, 66, 2, 9, 11, src.dc, 0, 0, 16, 16, RGB(255, 0, 255)));
  Note("black", TransparentBlt(dc, 2, 40, 16, 16, src.dc, 0, 0, 16, 16, RGB(0, 0, 0)));
}

void BitBlts(HDC dc) {
  Fill(dc, 0, 0, 96, 32, RGB(0x33, 0x99, 0xCC));
  Fill(dc, 0, 32, 96, 64, RGB(0xF0, 0x0F, 0x55));
  Dib src(dc, 10, 10);
  Fill(src.dc, 0, 0, 10, 10, RGB(0xA5, 0x5A, 0xFF));
  Fill(src.dc, 3, 3, 7, 7, RGB(0, 0, 0));
  static const DWORD kRops[] = {SRCCOPY, SRCPAINT,  SRCAND,    SRCINVERT,
                                PATCOPY, BLACKNESS, WHITENESS, DSTINVERT};
  Brush pattern(RGB(0x10, 0x80, 0x20));
  HGDIOBJ old = SelectObject(dc, pattern.handle);
  for (int i = 0; i < 8; ++i) {
    const int x = 2 + (i % 4) * 24;
    Note("rop", BitBlt(dc, x, 4, 10, 10, src.dc, 0, 0, kRops[i]));
    Note("rop", BitBlt(dc, x + 8, 40, 10, 10, src.dc, 0, 0, kRops[i]));
    if (i == 3) Fill(dc, 0, 18, 96, 30, RGB(255, 255, 255));
  }
  Note("patblt", PatBlt(dc, 2, 20, 30, 6, PATCOPY));
  Note("offscreen", BitBlt(dc, 90, 58, 10, 10, src.dc, 0, 0, SRCCOPY));
  SelectObject(dc, old);
}

void Pixels(HDC dc) {
  for (int i = 0; i < 40; ++i)
    SetPixelV(dc, 2 + i * 2, 2 + i % 7,
              RGB(static_cast<BYTE>(i * 6), static_cast<BYTE>(255 - i * 6), 128));
  NoteColor("setpixel", SetPixel(dc, 10, 20, RGB(1, 2, 3)));
  NoteColor("getpixel", GetPixel(dc, 10, 20));
  NoteColor("getpixel-white", GetPixel(dc, 11, 20));
  NoteColor("getpixel-outside", GetPixel(dc, 500, 20));
  NoteColor("setpixel-outside", SetPixel(dc, -1, 20, RGB(1, 2, 3)));
}

void FrameControls(HDC dc) {
  static const UINT kStates[] = {0,
                                 DFCS_CHECKED,
                                 DFCS_PUSHED,
                                 DFCS_INACTIVE,
                                 DFCS_CHECKED | DFCS_INACTIVE,
                                 DFCS_FLAT,
                                 DFCS_CHECKED | DFCS_FLAT,
                                 DFCS_HOT};
  for (int i = 0; i < 8; ++i) {
    RECT r = {2 + i * 15, 2, 15 + i * 15, 15};
    Note("check", DrawFrameControl(dc, &r, DFC_BUTTON, DFCS_BUTTONCHECK | kStates[i]));
    RECT b = {2 + (i % 4) * 30, 20 + (i / 4) * 22, 28 + (i % 4) * 30, 40 + (i / 4) * 22};
    Note("push", DrawFrameControl(dc, &b, DFC_BUTTON, DFCS_BUTTONPUSH | kStates[i]));
  }
}

// The system colours the frame controls are drawn with, to tell a colour
// difference from a drawing difference.
void SystemColors(HDC dc) {
  for (int i = 0; i <= 30; ++i) {
    char key[16];
    std::snprintf(key, sizeof key, "color%d", i);
    const COLORREF c = GetSysColor(i);
    NoteColor(key, c);
    Fill(dc, (i % 8) * 12, (i / 8) * 12, (i % 8) * 12 + 12, (i / 8) * 12 + 12, c);
  }
}

// ----------------------------------------------------------------- text

const WCHAR kSample[] = ORACLE_TEXT("Ação Rápida: 0123 WMgjy &Arquivo");

void FontScene(HDC dc, const WCHAR* face, int height, int weight, bool italic, bool underline,
               bool strike) {
  Font font(face, height, weight, italic, underline, strike);
  HGDIOBJ old = SelectObject(dc, font.handle);
  SetBkMode(dc, TRANSPARENT);
  TEXTMETRICW tm;
  std::memset(&tm, 0, sizeof tm);
  GetTextMetricsW(dc, &tm);
  Note("height", tm.tmHeight);
  Note("ascent", tm.tmAscent);
  Note("descent", tm.tmDescent);
  Note("internal", tm.tmInternalLeading);
  Note("external", tm.tmExternalLeading);
  Note("avewidth", tm.tmAveCharWidth);
  Note("weight", tm.tmWeight);
  SIZE size;
  GetTextExtentPoint32W(dc, kSample, static_cast<int>(sizeof kSample / sizeof kSample[0]) - 1,
                        &size);
  Note("extent", size);
  GetTextExtentPoint32W(dc, ORACLE_TEXT("W"), 1, &size);
  Note("W", size);
  GetTextExtentPoint32W(dc, ORACLE_TEXT("i"), 1, &size);
  Note("i", size);
  TextOutW(dc, 2, 2, kSample, static_cast<int>(sizeof kSample / sizeof kSample[0]) - 1);
  SetTextColor(dc, RGB(0, 0, 200));
  SetBkMode(dc, OPAQUE);
  SetBkColor(dc, RGB(255, 255, 160));
  TextOutW(dc, 2, 22, ORACLE_TEXT("Opaco 1,50"), 10);
  SetTextColor(dc, RGB(0, 0, 0));
  SelectObject(dc, old);
}
void FontMsSansSerif(HDC dc) {
  FontScene(dc, ORACLE_TEXT("MS Sans Serif"), -11, 400, false, false, false);
}
void FontTahoma(HDC dc) {
  FontScene(dc, ORACLE_TEXT("Tahoma"), -11, 400, false, false, false);
}
void FontArialBold(HDC dc) {
  FontScene(dc, ORACLE_TEXT("Arial"), -13, 700, false, false, false);
}
void FontSegoeItalic(HDC dc) {
  FontScene(dc, ORACLE_TEXT("Segoe UI"), -12, 400, true, false, false);
}
void FontUnderline(HDC dc) {
  FontScene(dc, ORACLE_TEXT("Tahoma"), -11, 400, false, true, false);
}
void FontStrikeOut(HDC dc) {
  FontScene(dc, ORACLE_TEXT("Tahoma"), -11, 400, false, false, true);
}
void FontCourier(HDC dc) {
  FontScene(dc, ORACLE_TEXT("Courier New"), -13, 400, false, false, false);
}

// DrawTextW into a framed box, noting the return value (the height drawn) and
// what DT_CALCRECT reports for the same text and flags.
void DrawBox(HDC dc, const char* key, const WCHAR* text, RECT box, UINT flags) {
  Brush frame(RGB(220, 220, 220));
  RECT outline = {box.left - 1, box.top - 1, box.right + 1, box.bottom + 1};
  FrameRect(dc, &outline, frame.handle);
  RECT calc = box;
  Note(key, DrawTextW(dc, text, -1, &calc, flags | DT_CALCRECT));
  Note(key, calc);
  Note(key, DrawTextW(dc, text, -1, &box, flags));
}

struct TextSetup {
  HDC dc;
  Font font;
  HGDIOBJ old;
  explicit TextSetup(HDC d)
      : dc(d),
        font(ORACLE_TEXT("Tahoma"), -11, 400, false, false, false),
        old(SelectObject(d, font.handle)) {
    SetBkMode(d, TRANSPARENT);
  }
  ~TextSetup() { SelectObject(dc, old); }
};

void TextAlign(HDC dc) {
  TextSetup t(dc);
  DrawBox(dc, "left", ORACLE_TEXT("Esquerda"), {4, 4, 156, 18}, DT_LEFT | DT_SINGLELINE);
  DrawBox(dc, "center", ORACLE_TEXT("Centro"), {4, 22, 156, 36}, DT_CENTER | DT_SINGLELINE);
  DrawBox(dc, "right", ORACLE_TEXT("Direita"), {4, 40, 156, 54}, DT_RIGHT | DT_SINGLELINE);
  DrawBox(dc, "vcenter", ORACLE_TEXT("Meio"), {4, 58, 76, 90}, DT_VCENTER | DT_SINGLELINE);
  DrawBox(dc, "bottom", ORACLE_TEXT("Baixo"), {84, 58, 156, 90},
          DT_BOTTOM | DT_RIGHT | DT_SINGLELINE);
  DrawBox(dc, "vcenter-multi", ORACLE_TEXT("Sem efeito"), {4, 94, 156, 116}, DT_VCENTER);
}

void TextWordBreak(HDC dc) {
  TextSetup t(dc);
  DrawBox(dc, "wrap", ORACLE_TEXT("O valor informado não é uma data válida para o campo"),
          {4, 4, 76, 80}, DT_WORDBREAK);
  DrawBox(dc, "wrap-center", ORACLE_TEXT("Texto centrado em várias linhas"), {84, 4, 156, 60},
          DT_WORDBREAK | DT_CENTER);
  DrawBox(dc, "long-word", ORACLE_TEXT("Paralelepipedalmente grande"), {84, 64, 130, 100},
          DT_WORDBREAK);
  DrawBox(dc, "newlines", ORACLE_TEXT("Linha 1\r\nLinha 2\nLinha 3"), {4, 84, 76, 124}, 0);
  DrawBox(dc, "newline-single", ORACLE_TEXT("Um\r\nDois"), {84, 104, 156, 118}, DT_SINGLELINE);
}

void TextCalcRect(HDC dc) {
  TextSetup t(dc);
  RECT r = {4, 4, 4, 4};
  Note("empty-width", DrawTextW(dc, ORACLE_TEXT("Calcular"), -1, &r, DT_CALCRECT));
  Note("empty-width", r);
  r = {4, 4, 60, 4};
  Note("wrap", DrawTextW(dc, ORACLE_TEXT("Um texto que quebra em linhas"), -1, &r,
                         DT_CALCRECT | DT_WORDBREAK));
  Note("wrap", r);
  r = {4, 4, 200, 4};
  Note("multi", DrawTextW(dc, ORACLE_TEXT("A\nBB\nCCC"), -1, &r, DT_CALCRECT));
  Note("multi", r);
  r = {4, 4, 200, 4};
  Note("empty-text", DrawTextW(dc, ORACLE_TEXT(""), -1, &r, DT_CALCRECT));
  Note("empty-text", r);
  r = {4, 4, 200, 4};
  Note("prefix",
       DrawTextW(dc, ORACLE_TEXT("&Salvar && sair"), -1, &r, DT_CALCRECT | DT_SINGLELINE));
  Note("prefix", r);
  r = {4, 4, 200, 4};
  Note("tabs", DrawTextW(dc, ORACLE_TEXT("a\tb\tc"), -1, &r, DT_CALCRECT | DT_EXPANDTABS));
  Note("tabs", r);
  r = {4, 4, 200, 4};
  Note("external", DrawTextW(dc, ORACLE_TEXT("Ag"), -1, &r, DT_CALCRECT | DT_EXTERNALLEADING));
  Note("external", r);
  // The rectangles drawn, so a picture of the notes exists too.
  r = {4, 4, 60, 4};
  DrawTextW(dc, ORACLE_TEXT("Um texto que quebra em linhas"), -1, &r, DT_CALCRECT | DT_WORDBREAK);
  Brush frame(RGB(255, 0, 0));
  FrameRect(dc, &r, frame.handle);
  DrawTextW(dc, ORACLE_TEXT("Um texto que quebra em linhas"), -1, &r, DT_WORDBREAK);
}

void TextEllipsis(HDC dc) {
  TextSetup t(dc);
  DrawBox(dc, "end", ORACLE_TEXT("Descrição muito comprida do produto"), {4, 4, 90, 18},
          DT_END_ELLIPSIS | DT_SINGLELINE);
  DrawBox(dc, "end-fits", ORACLE_TEXT("Curto"), {94, 4, 156, 18}, DT_END_ELLIPSIS | DT_SINGLELINE);
  DrawBox(dc, "word", ORACLE_TEXT("Palavras demais para caber aqui"), {4, 22, 90, 36},
          DT_WORD_ELLIPSIS | DT_SINGLELINE);
  DrawBox(dc, "word-wrap", ORACLE_TEXT("Extraordinariamente longo"), {94, 22, 140, 60},
          DT_WORDBREAK | DT_WORD_ELLIPSIS);
  DrawBox(dc, "end-wrap", ORACLE_TEXT("Várias linhas de texto que não cabem na caixa"),
          {4, 40, 90, 66}, DT_WORDBREAK | DT_END_ELLIPSIS);
  DrawBox(dc, "path", ORACLE_TEXT("C:\\Arquivos\\Sistema\\Relatorios\\mensal.txt"),
          {4, 70, 120, 84}, DT_PATH_ELLIPSIS | DT_SINGLELINE);
  DrawBox(dc, "noclip", ORACLE_TEXT("Sem corte à direita"), {4, 90, 40, 104},
          DT_NOCLIP | DT_SINGLELINE);
  DrawBox(dc, "clip", ORACLE_TEXT("Com corte à direita"), {84, 90, 120, 104}, DT_SINGLELINE);
}

void TextPrefix(HDC dc) {
  TextSetup t(dc);
  DrawBox(dc, "prefix", ORACLE_TEXT("&Arquivo"), {4, 4, 76, 18}, DT_SINGLELINE);
  DrawBox(dc, "double", ORACLE_TEXT("Salvar && sair"), {84, 4, 156, 18}, DT_SINGLELINE);
  DrawBox(dc, "middle", ORACLE_TEXT("Edi&tar"), {4, 22, 76, 36}, DT_SINGLELINE);
  DrawBox(dc, "last", ORACLE_TEXT("Fim&"), {84, 22, 156, 36}, DT_SINGLELINE);
  DrawBox(dc, "noprefix", ORACLE_TEXT("&Arquivo && mais"), {4, 40, 156, 54},
          DT_NOPREFIX | DT_SINGLELINE);
  DrawBox(dc, "hide", ORACLE_TEXT("&Oculto"), {4, 58, 76, 72}, DT_HIDEPREFIX | DT_SINGLELINE);
  DrawBox(dc, "only", ORACLE_TEXT("&Somente"), {84, 58, 156, 72}, DT_PREFIXONLY | DT_SINGLELINE);
  DrawBox(dc, "tabs", ORACLE_TEXT("Nome:\tJoão\tFim"), {4, 76, 156, 90},
          DT_EXPANDTABS | DT_SINGLELINE);
  DrawBox(dc, "tabs-off", ORACLE_TEXT("Nome:\tJoão"), {4, 94, 156, 108}, DT_SINGLELINE);
}

void TextOpaque(HDC dc) {
  TextSetup t(dc);
  SetBkMode(dc, OPAQUE);
  SetBkColor(dc, RGB(255, 230, 150));
  SetTextColor(dc, RGB(128, 0, 0));
  DrawBox(dc, "opaque", ORACLE_TEXT("Fundo opaco"), {4, 4, 156, 18}, DT_SINGLELINE | DT_CENTER);
  SetTextColor(dc, RGB(0, 0, 0));
  SetBkMode(dc, TRANSPARENT);
  RECT r = {4, 24, 156, 40};
  SetBkColor(dc, RGB(180, 220, 255));
  ExtTextOutW(dc, 6, 26, ETO_OPAQUE, &r, ORACLE_TEXT("ExtTextOut opaco"), 16, nullptr);
  r = {4, 44, 50, 60};
  ExtTextOutW(dc, 6, 46, ETO_CLIPPED, &r, ORACLE_TEXT("Recortado no retângulo"), 22, nullptr);
  SetBkColor(dc, RGB(255, 255, 255));
}

}  // namespace

// CLR_INVALID is -1 whether long has 32 bits (Windows) or 64.
void NoteColor(const char* key, COLORREF color) {
  Note(key, static_cast<long>(static_cast<int32_t>(color)));
}

void Note(const char* key, long value) {
  char text[32];
  std::snprintf(text, sizeof text, "%ld", value);
  AddNote(key, text);
}

void Note(const char* key, const RECT& rect) {
  char text[64];
  std::snprintf(text, sizeof text, "%ld %ld %ld %ld", static_cast<long>(rect.left),
                static_cast<long>(rect.top), static_cast<long>(rect.right),
                static_cast<long>(rect.bottom));
  AddNote(key, text);
}

void Note(const char* key, const SIZE& size) {
  char text[32];
  std::snprintf(text, sizeof text, "%ld %ld", static_cast<long>(size.cx),
                static_cast<long>(size.cy));
  AddNote(key, text);
}

const std::vector<Scene>& Scenes() {
  static const std::vector<Scene> scenes = {
      {"lines_w1", 96, 64, LinesWidth1, false},
      {"lines_w2", 96, 64, LinesWidth2, false},
      {"lines_w3", 96, 64, LinesWidth3, false},
      {"lines_rop2", 96, 64, LinesRop2, false},
      {"rectangles", 96, 64, Rectangles, false},
      {"roundrects", 96, 64, RoundRects, false},
      {"ellipses", 96, 64, Ellipses, false},
      {"polygons", 96, 64, Polygons, false},
      {"region_kinds", 96, 64, RegionKinds, false},
      {"region_combine", 96, 64, CombineModes, false},
      {"clip_region", 96, 64, ClipByRegion, false},
      {"focus_rects", 96, 64, FocusRects, false},
      {"gradient_h", 96, 64, GradientH, false},
      {"gradient_v", 96, 64, GradientV, false},
      {"stretch_coloroncolor", 96, 64, StretchColorOnColor, false},
      {"stretch_halftone", 96, 64, StretchHalftone, false},
      {"alpha_constant", 96, 64, AlphaConstant, false},
      {"alpha_perpixel", 96, 64, AlphaPerPixel, false},
      {"transparent_blt", 96, 64, TransparentBlits, false},
      {"bitblt_rops", 96, 64, BitBlts, false},
      {"pixels", 96, 64, Pixels, false},
      {"frame_controls", 124, 64, FrameControls, false},
      {"system_colors", 96, 48, SystemColors, false},
      {"font_ms_sans_serif", 240, 40, FontMsSansSerif, true},
      {"font_tahoma", 240, 40, FontTahoma, true},
      {"font_arial_bold", 240, 40, FontArialBold, true},
      {"font_segoe_italic", 240, 40, FontSegoeItalic, true},
      {"font_underline", 240, 40, FontUnderline, true},
      {"font_strikeout", 240, 40, FontStrikeOut, true},
      {"font_courier", 240, 40, FontCourier, true},
      {"text_align", 160, 120, TextAlign, true},
      {"text_wordbreak", 160, 128, TextWordBreak, true},
      {"text_calcrect", 160, 64, TextCalcRect, true},
      {"text_ellipsis", 160, 110, TextEllipsis, true},
      {"text_prefix", 160, 112, TextPrefix, true},
      {"text_opaque", 160, 64, TextOpaque, true},
  };
  return scenes;
}

bool Render(const Scene& scene, std::vector<uint32_t>& pixels, std::string& notes) {
  notes.clear();
  Dib dib(nullptr, scene.width, scene.height);
  if (dib.bits == nullptr || dib.dc == nullptr) return false;
  Fill(dib.dc, 0, 0, scene.width, scene.height, RGB(255, 255, 255));
  g_notes = &notes;
  scene.draw(dib.dc);
  g_notes = nullptr;
#ifdef _WIN32
  GdiFlush();
#endif
  pixels.assign(dib.bits, dib.bits + static_cast<size_t>(scene.width) * scene.height);
  return true;
}

}  // namespace oracle
