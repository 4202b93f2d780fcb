#pragma once
// GDI as the library uses it: device contexts, pens, brushes, bitmaps,
// regions, lines and shapes, blits with raster operations, stretching, alpha
// blending and gradients, under the platform's names and values. Also the
// RECT helpers and the few drawing calls that the platform keeps in USER
// (FillRect, FrameRect, DrawFocusRect, DrawFrameControl) and the theme calls,
// which report that no theme is active so that controls draw the classic look.
#include "platform/GdiObject.h"
#include "platform/WinTypes.h"

// Object types (GetObjectType).
using vantor::platform::OBJ_BITMAP;
using vantor::platform::OBJ_BRUSH;
using vantor::platform::OBJ_DC;
using vantor::platform::OBJ_FONT;
using vantor::platform::OBJ_MEMDC;
using vantor::platform::OBJ_METADC;
using vantor::platform::OBJ_PAL;
using vantor::platform::OBJ_PEN;
using vantor::platform::OBJ_REGION;

constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;
constexpr DWORD GDI_ERROR = 0xFFFFFFFF;
#define HGDI_ERROR (reinterpret_cast<HGDIOBJ>(static_cast<intptr_t>(-1)))

// Pen styles.
constexpr int PS_SOLID = 0;
constexpr int PS_DASH = 1;
constexpr int PS_DOT = 2;
constexpr int PS_DASHDOT = 3;
constexpr int PS_DASHDOTDOT = 4;
constexpr int PS_NULL = 5;
constexpr int PS_INSIDEFRAME = 6;
constexpr int PS_USERSTYLE = 7;
constexpr int PS_ALTERNATE = 8;
constexpr int PS_STYLE_MASK = 0x0000000F;
constexpr int PS_ENDCAP_ROUND = 0x00000000;
constexpr int PS_ENDCAP_SQUARE = 0x00000100;
constexpr int PS_ENDCAP_FLAT = 0x00000200;
constexpr int PS_ENDCAP_MASK = 0x00000F00;
constexpr int PS_JOIN_ROUND = 0x00000000;
constexpr int PS_JOIN_BEVEL = 0x00001000;
constexpr int PS_JOIN_MITER = 0x00002000;
constexpr int PS_JOIN_MASK = 0x0000F000;
constexpr int PS_COSMETIC = 0x00000000;
constexpr int PS_GEOMETRIC = 0x00010000;
constexpr int PS_TYPE_MASK = 0x000F0000;

// Brush styles and hatches.
constexpr UINT BS_SOLID = 0;
constexpr UINT BS_NULL = 1;
constexpr UINT BS_HOLLOW = BS_NULL;
constexpr UINT BS_HATCHED = 2;
constexpr UINT BS_PATTERN = 3;
constexpr UINT BS_INDEXED = 4;
constexpr UINT BS_DIBPATTERN = 5;
constexpr UINT BS_DIBPATTERNPT = 6;
constexpr UINT BS_PATTERN8X8 = 7;
constexpr int HS_HORIZONTAL = 0;
constexpr int HS_VERTICAL = 1;
constexpr int HS_FDIAGONAL = 2;
constexpr int HS_BDIAGONAL = 3;
constexpr int HS_CROSS = 4;
constexpr int HS_DIAGCROSS = 5;

// Binary raster operations (SetROP2).
constexpr int R2_BLACK = 1;
constexpr int R2_NOTMERGEPEN = 2;
constexpr int R2_MASKNOTPEN = 3;
constexpr int R2_NOTCOPYPEN = 4;
constexpr int R2_MASKPENNOT = 5;
constexpr int R2_NOT = 6;
constexpr int R2_XORPEN = 7;
constexpr int R2_NOTMASKPEN = 8;
constexpr int R2_MASKPEN = 9;
constexpr int R2_NOTXORPEN = 10;
constexpr int R2_NOP = 11;
constexpr int R2_MERGENOTPEN = 12;
constexpr int R2_COPYPEN = 13;
constexpr int R2_MERGEPENNOT = 14;
constexpr int R2_MERGEPEN = 15;
constexpr int R2_WHITE = 16;

// Ternary raster operations (BitBlt, StretchBlt, PatBlt).
constexpr DWORD SRCCOPY = 0x00CC0020;
constexpr DWORD SRCPAINT = 0x00EE0086;
constexpr DWORD SRCAND = 0x008800C6;
constexpr DWORD SRCINVERT = 0x00660046;
constexpr DWORD SRCERASE = 0x00440328;
constexpr DWORD NOTSRCCOPY = 0x00330008;
constexpr DWORD NOTSRCERASE = 0x001100A6;
constexpr DWORD MERGECOPY = 0x00C000CA;
constexpr DWORD MERGEPAINT = 0x00BB0226;
constexpr DWORD PATCOPY = 0x00F00021;
constexpr DWORD PATPAINT = 0x00FB0A09;
constexpr DWORD PATINVERT = 0x005A0049;
constexpr DWORD DSTINVERT = 0x00550009;
constexpr DWORD BLACKNESS = 0x00000042;
constexpr DWORD WHITENESS = 0x00FF0062;
constexpr DWORD NOMIRRORBITMAP = 0x80000000;
constexpr DWORD CAPTUREBLT = 0x40000000;

// Bitmaps.
constexpr UINT DIB_RGB_COLORS = 0;
constexpr UINT DIB_PAL_COLORS = 1;
constexpr DWORD BI_RGB = 0;
constexpr DWORD BI_RLE8 = 1;
constexpr DWORD BI_RLE4 = 2;
constexpr DWORD BI_BITFIELDS = 3;

// AlphaBlend and GradientFill.
constexpr BYTE AC_SRC_OVER = 0x00;
constexpr BYTE AC_SRC_ALPHA = 0x01;
constexpr ULONG GRADIENT_FILL_RECT_H = 0x00000000;
constexpr ULONG GRADIENT_FILL_RECT_V = 0x00000001;
constexpr ULONG GRADIENT_FILL_TRIANGLE = 0x00000002;

// Stretch modes.
constexpr int BLACKONWHITE = 1;
constexpr int WHITEONBLACK = 2;
constexpr int COLORONCOLOR = 3;
constexpr int HALFTONE = 4;
constexpr int STRETCH_ANDSCANS = BLACKONWHITE;
constexpr int STRETCH_ORSCANS = WHITEONBLACK;
constexpr int STRETCH_DELETESCANS = COLORONCOLOR;
constexpr int STRETCH_HALFTONE = HALFTONE;

// Background modes.
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

// Regions.
constexpr int RGN_AND = 1;
constexpr int RGN_OR = 2;
constexpr int RGN_XOR = 3;
constexpr int RGN_DIFF = 4;
constexpr int RGN_COPY = 5;
constexpr int ERROR = 0;
constexpr int NULLREGION = 1;
constexpr int SIMPLEREGION = 2;
constexpr int COMPLEXREGION = 3;
constexpr int RGN_ERROR = ERROR;
constexpr DWORD RDH_RECTANGLES = 1;
constexpr int ALTERNATE = 1;
constexpr int WINDING = 2;

// DrawFrameControl.
constexpr UINT DFC_CAPTION = 1;
constexpr UINT DFC_MENU = 2;
constexpr UINT DFC_SCROLL = 3;
constexpr UINT DFC_BUTTON = 4;
constexpr UINT DFC_POPUPMENU = 5;
constexpr UINT DFCS_BUTTONCHECK = 0x0000;
constexpr UINT DFCS_BUTTONRADIOIMAGE = 0x0001;
constexpr UINT DFCS_BUTTONRADIOMASK = 0x0002;
constexpr UINT DFCS_BUTTONRADIO = 0x0004;
constexpr UINT DFCS_BUTTON3STATE = 0x0008;
constexpr UINT DFCS_BUTTONPUSH = 0x0010;
constexpr UINT DFCS_SCROLLUP = 0x0000;
constexpr UINT DFCS_SCROLLDOWN = 0x0001;
constexpr UINT DFCS_SCROLLLEFT = 0x0002;
constexpr UINT DFCS_SCROLLRIGHT = 0x0003;
constexpr UINT DFCS_SCROLLCOMBOBOX = 0x0005;
constexpr UINT DFCS_SCROLLSIZEGRIP = 0x0008;
constexpr UINT DFCS_INACTIVE = 0x0100;
constexpr UINT DFCS_PUSHED = 0x0200;
constexpr UINT DFCS_CHECKED = 0x0400;
constexpr UINT DFCS_TRANSPARENT = 0x0800;
constexpr UINT DFCS_HOT = 0x1000;
constexpr UINT DFCS_ADJUSTRECT = 0x2000;
constexpr UINT DFCS_FLAT = 0x4000;
constexpr UINT DFCS_MONO = 0x8000;

// Stock objects.
constexpr int WHITE_BRUSH = 0;
constexpr int LTGRAY_BRUSH = 1;
constexpr int GRAY_BRUSH = 2;
constexpr int DKGRAY_BRUSH = 3;
constexpr int BLACK_BRUSH = 4;
constexpr int NULL_BRUSH = 5;
constexpr int HOLLOW_BRUSH = NULL_BRUSH;
constexpr int WHITE_PEN = 6;
constexpr int BLACK_PEN = 7;
constexpr int NULL_PEN = 8;
constexpr int OEM_FIXED_FONT = 10;
constexpr int ANSI_FIXED_FONT = 11;
constexpr int ANSI_VAR_FONT = 12;
constexpr int SYSTEM_FONT = 13;
constexpr int DEVICE_DEFAULT_FONT = 14;
constexpr int DEFAULT_PALETTE = 15;
constexpr int SYSTEM_FIXED_FONT = 16;
constexpr int DEFAULT_GUI_FONT = 17;
constexpr int DC_BRUSH = 18;
constexpr int DC_PEN = 19;

// GetDeviceCaps.
constexpr int HORZRES = 8;
constexpr int VERTRES = 10;
constexpr int BITSPIXEL = 12;
constexpr int PLANES = 14;
constexpr int NUMCOLORS = 24;
constexpr int LOGPIXELSX = 88;
constexpr int LOGPIXELSY = 90;

// Device contexts and objects.
HDC CreateCompatibleDC(HDC dc);
BOOL DeleteDC(HDC dc);
int SaveDC(HDC dc);
BOOL RestoreDC(HDC dc, int saved);
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
BOOL DeleteObject(HGDIOBJ object);
int GetObjectW(HANDLE object, int size, LPVOID out);
int GetObjectA(HANDLE object, int size, LPVOID out);
DWORD GetObjectType(HGDIOBJ object);
HGDIOBJ GetStockObject(int id);
HGDIOBJ GetCurrentObject(HDC dc, UINT type);
int GetDeviceCaps(HDC dc, int index);

HPEN CreatePen(int style, int width, COLORREF color);
HPEN CreatePenIndirect(const LOGPEN* pen);
HBRUSH CreateSolidBrush(COLORREF color);
HBRUSH CreateBrushIndirect(const LOGBRUSH* brush);
HBRUSH CreateHatchBrush(int hatch, COLORREF color);
HBRUSH CreatePatternBrush(HBITMAP bitmap);
// The window code owns the system colours; GetSysColorBrush hands out one
// stock brush per index.
DWORD GetSysColor(int index);
HBRUSH GetSysColorBrush(int index);

HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                         DWORD offset);
HBITMAP CreateCompatibleBitmap(HDC dc, int width, int height);
HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bits_per_pixel, const void* bits);
int GetDIBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, LPVOID bits, BITMAPINFO* info,
              UINT usage);
int SetDIBitsToDevice(HDC dc, int x_dest, int y_dest, DWORD width, DWORD height, int x_src,
                      int y_src, UINT start_scan, UINT lines, const void* bits,
                      const BITMAPINFO* info, UINT usage);

// Modes and colours.
COLORREF SetTextColor(HDC dc, COLORREF color);
COLORREF GetTextColor(HDC dc);
COLORREF SetBkColor(HDC dc, COLORREF color);
COLORREF GetBkColor(HDC dc);
int SetBkMode(HDC dc, int mode);
int GetBkMode(HDC dc);
int SetROP2(HDC dc, int rop2);
int GetROP2(HDC dc);
int SetStretchBltMode(HDC dc, int mode);
int GetStretchBltMode(HDC dc);
BOOL SetViewportOrgEx(HDC dc, int x, int y, LPPOINT previous);
BOOL GetViewportOrgEx(HDC dc, LPPOINT origin);
BOOL OffsetViewportOrgEx(HDC dc, int dx, int dy, LPPOINT previous);
BOOL SetBrushOrgEx(HDC dc, int x, int y, LPPOINT previous);

// Clipping.
int SelectClipRgn(HDC dc, HRGN region);
int ExtSelectClipRgn(HDC dc, HRGN region, int mode);
int GetClipBox(HDC dc, LPRECT rect);
int GetClipRgn(HDC dc, HRGN region);
int IntersectClipRect(HDC dc, int left, int top, int right, int bottom);
int ExcludeClipRect(HDC dc, int left, int top, int right, int bottom);

// Lines and shapes.
BOOL MoveToEx(HDC dc, int x, int y, LPPOINT previous);
BOOL GetCurrentPositionEx(HDC dc, LPPOINT position);
BOOL LineTo(HDC dc, int x, int y);
BOOL Polyline(HDC dc, const POINT* points, int count);
BOOL Polygon(HDC dc, const POINT* points, int count);
BOOL Rectangle(HDC dc, int left, int top, int right, int bottom);
BOOL RoundRect(HDC dc, int left, int top, int right, int bottom, int width, int height);
BOOL Ellipse(HDC dc, int left, int top, int right, int bottom);
int FillRect(HDC dc, const RECT* rect, HBRUSH brush);
int FrameRect(HDC dc, const RECT* rect, HBRUSH brush);
BOOL InvertRect(HDC dc, const RECT* rect);
BOOL FillRgn(HDC dc, HRGN region, HBRUSH brush);
BOOL FrameRgn(HDC dc, HRGN region, HBRUSH brush, int width, int height);
BOOL PaintRgn(HDC dc, HRGN region);
BOOL InvertRgn(HDC dc, HRGN region);
COLORREF SetPixel(HDC dc, int x, int y, COLORREF color);
BOOL SetPixelV(HDC dc, int x, int y, COLORREF color);
COLORREF GetPixel(HDC dc, int x, int y);
BOOL DrawFocusRect(HDC dc, const RECT* rect);
BOOL DrawFrameControl(HDC dc, LPRECT rect, UINT type, UINT state);

// Blits.
BOOL PatBlt(HDC dc, int x, int y, int width, int height, DWORD rop);
BOOL BitBlt(HDC dest, int x, int y, int width, int height, HDC src, int x_src, int y_src,
            DWORD rop);
BOOL StretchBlt(HDC dest, int x, int y, int width, int height, HDC src, int x_src, int y_src,
                int src_width, int src_height, DWORD rop);
int StretchDIBits(HDC dc, int x_dest, int y_dest, int dest_width, int dest_height, int x_src,
                  int y_src, int src_width, int src_height, const void* bits,
                  const BITMAPINFO* info, UINT usage, DWORD rop);
BOOL AlphaBlend(HDC dest, int x, int y, int width, int height, HDC src, int x_src, int y_src,
                int src_width, int src_height, BLENDFUNCTION blend);
BOOL GradientFill(HDC dc, TRIVERTEX* vertices, ULONG vertex_count, void* mesh, ULONG mesh_count,
                  ULONG mode);
BOOL TransparentBlt(HDC dest, int x, int y, int width, int height, HDC src, int x_src, int y_src,
                    int src_width, int src_height, UINT transparent);

// Regions.
HRGN CreateRectRgn(int left, int top, int right, int bottom);
HRGN CreateRectRgnIndirect(const RECT* rect);
HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int width, int height);
HRGN CreateEllipticRgn(int left, int top, int right, int bottom);
HRGN CreateEllipticRgnIndirect(const RECT* rect);
HRGN CreatePolygonRgn(const POINT* points, int count, int fill_mode);
HRGN ExtCreateRegion(const XFORM* transform, DWORD size, const RGNDATA* data);
DWORD GetRegionData(HRGN region, DWORD size, RGNDATA* data);
int CombineRgn(HRGN dest, HRGN src1, HRGN src2, int mode);
int OffsetRgn(HRGN region, int dx, int dy);
int GetRgnBox(HRGN region, LPRECT rect);
BOOL PtInRegion(HRGN region, int x, int y);
BOOL RectInRegion(HRGN region, const RECT* rect);
BOOL EqualRgn(HRGN a, HRGN b);
BOOL SetRectRgn(HRGN region, int left, int top, int right, int bottom);

// Rectangles.
BOOL SetRect(LPRECT rect, int left, int top, int right, int bottom);
BOOL SetRectEmpty(LPRECT rect);
BOOL CopyRect(LPRECT dest, const RECT* src);
BOOL OffsetRect(LPRECT rect, int dx, int dy);
BOOL InflateRect(LPRECT rect, int dx, int dy);
BOOL IntersectRect(LPRECT dest, const RECT* a, const RECT* b);
BOOL UnionRect(LPRECT dest, const RECT* a, const RECT* b);
BOOL SubtractRect(LPRECT dest, const RECT* a, const RECT* b);
BOOL PtInRect(const RECT* rect, POINT point);
BOOL IsRectEmpty(const RECT* rect);
BOOL EqualRect(const RECT* a, const RECT* b);

// Themes: none is active, so controls draw the classic look.
HTHEME OpenThemeData(HWND window, LPCWSTR class_list);
HRESULT CloseThemeData(HTHEME theme);
HRESULT DrawThemeBackground(HTHEME theme, HDC dc, int part, int state, const RECT* rect,
                            const RECT* clip);
BOOL IsThemeActive();
