#pragma once
// The platform's basic types, handles, records and macros, under their own
// names and with their own layouts, so that code written against the platform
// reads the same here. On Windows the real headers take this file's place.
#include <cstddef>
#include <cstdint>

#include "runtime/String.h"

// Handles are opaque pointers, distinct per kind as with STRICT; their values
// are table entries of the implementation, never addresses.
#define VANTOR_DECLARE_HANDLE(name) \
  struct name##__;                  \
  typedef struct name##__* name

VANTOR_DECLARE_HANDLE(HWND);
VANTOR_DECLARE_HANDLE(HDC);
VANTOR_DECLARE_HANDLE(HRGN);
VANTOR_DECLARE_HANDLE(HPEN);
VANTOR_DECLARE_HANDLE(HBRUSH);
VANTOR_DECLARE_HANDLE(HFONT);
VANTOR_DECLARE_HANDLE(HBITMAP);
VANTOR_DECLARE_HANDLE(HICON);
VANTOR_DECLARE_HANDLE(HINSTANCE);
VANTOR_DECLARE_HANDLE(HMENU);
typedef HICON HCURSOR;
typedef HINSTANCE HMODULE;
typedef void* HGDIOBJ;
typedef void* HANDLE;
typedef HANDLE HTHEME;

typedef int BOOL;
typedef unsigned char BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef int INT;
typedef unsigned int UINT;
typedef int16_t SHORT;
typedef uint16_t USHORT;
typedef WORD ATOM;
typedef DWORD COLORREF;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t UINT_PTR;
typedef char16_t WCHAR;
typedef const WCHAR* LPCWSTR;
typedef WCHAR* LPWSTR;
typedef const char* LPCSTR;
typedef char* LPSTR;
typedef void* LPVOID;
typedef uint32_t OLE_COLOR;
typedef LONG HRESULT;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#define CALLBACK
#define WINAPI

typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);
typedef void(CALLBACK* TIMERPROC)(HWND, UINT, UINT_PTR, DWORD);

struct RECT {
  LONG left, top, right, bottom;
};
typedef RECT* LPRECT;
typedef const RECT* LPCRECT;

struct POINT {
  LONG x, y;
};
typedef POINT* LPPOINT;

struct SIZE {
  LONG cx, cy;
};
typedef SIZE* LPSIZE;

struct POINTS {
  SHORT x, y;
};

struct RGBQUAD {
  BYTE rgbBlue, rgbGreen, rgbRed, rgbReserved;
};

struct BITMAPINFOHEADER {
  DWORD biSize;
  LONG biWidth;
  LONG biHeight;  // positive: bottom-up rows; negative: top-down
  WORD biPlanes;
  WORD biBitCount;
  DWORD biCompression;
  DWORD biSizeImage;
  LONG biXPelsPerMeter;
  LONG biYPelsPerMeter;
  DWORD biClrUsed;
  DWORD biClrImportant;
};

struct BITMAPINFO {
  BITMAPINFOHEADER bmiHeader;
  RGBQUAD bmiColors[1];
};

struct BITMAP {
  LONG bmType;
  LONG bmWidth;
  LONG bmHeight;
  LONG bmWidthBytes;
  WORD bmPlanes;
  WORD bmBitsPixel;
  LPVOID bmBits;
};

struct DIBSECTION {
  BITMAP dsBm;
  BITMAPINFOHEADER dsBmih;
  DWORD dsBitfields[3];
  HANDLE dshSection;
  DWORD dsOffset;
};

struct LOGPEN {
  UINT lopnStyle;
  POINT lopnWidth;
  COLORREF lopnColor;
};

struct LOGBRUSH {
  UINT lbStyle;
  COLORREF lbColor;
  ULONG_PTR lbHatch;
};

constexpr int LF_FACESIZE = 32;

struct LOGFONTW {
  LONG lfHeight;
  LONG lfWidth;
  LONG lfEscapement;
  LONG lfOrientation;
  LONG lfWeight;
  BYTE lfItalic;
  BYTE lfUnderline;
  BYTE lfStrikeOut;
  BYTE lfCharSet;
  BYTE lfOutPrecision;
  BYTE lfClipPrecision;
  BYTE lfQuality;
  BYTE lfPitchAndFamily;
  WCHAR lfFaceName[LF_FACESIZE];
};

struct LOGFONTA {
  LONG lfHeight;
  LONG lfWidth;
  LONG lfEscapement;
  LONG lfOrientation;
  LONG lfWeight;
  BYTE lfItalic;
  BYTE lfUnderline;
  BYTE lfStrikeOut;
  BYTE lfCharSet;
  BYTE lfOutPrecision;
  BYTE lfClipPrecision;
  BYTE lfQuality;
  BYTE lfPitchAndFamily;
  char lfFaceName[LF_FACESIZE];
};

struct TEXTMETRICW {
  LONG tmHeight;
  LONG tmAscent;
  LONG tmDescent;
  LONG tmInternalLeading;
  LONG tmExternalLeading;
  LONG tmAveCharWidth;
  LONG tmMaxCharWidth;
  LONG tmWeight;
  LONG tmOverhang;
  LONG tmDigitizedAspectX;
  LONG tmDigitizedAspectY;
  WCHAR tmFirstChar;
  WCHAR tmLastChar;
  WCHAR tmDefaultChar;
  WCHAR tmBreakChar;
  BYTE tmItalic;
  BYTE tmUnderlined;
  BYTE tmStruckOut;
  BYTE tmPitchAndFamily;
  BYTE tmCharSet;
};

struct BLENDFUNCTION {
  BYTE BlendOp;
  BYTE BlendFlags;
  BYTE SourceConstantAlpha;
  BYTE AlphaFormat;
};

typedef USHORT COLOR16;
struct TRIVERTEX {
  LONG x;
  LONG y;
  COLOR16 Red;
  COLOR16 Green;
  COLOR16 Blue;
  COLOR16 Alpha;
};

struct GRADIENT_RECT {
  ULONG UpperLeft;
  ULONG LowerRight;
};

struct RGNDATAHEADER {
  DWORD dwSize;
  DWORD iType;
  DWORD nCount;
  DWORD nRgnSize;
  RECT rcBound;
};

struct RGNDATA {
  RGNDATAHEADER rdh;
  char Buffer[1];
};

struct XFORM {
  float eM11, eM12, eM21, eM22, eDx, eDy;
};

struct DRAWTEXTPARAMS {
  UINT cbSize;
  int iTabLength;
  int iLeftMargin;
  int iRightMargin;
  UINT uiLengthDrawn;
};

// Macros of the platform, as inline functions where a macro is not needed.
constexpr COLORREF RGB(BYTE r, BYTE g, BYTE b) {
  return static_cast<COLORREF>(r) | (static_cast<COLORREF>(g) << 8) |
         (static_cast<COLORREF>(b) << 16);
}
constexpr BYTE GetRValue(COLORREF c) { return static_cast<BYTE>(c & 0xFF); }
constexpr BYTE GetGValue(COLORREF c) { return static_cast<BYTE>((c >> 8) & 0xFF); }
constexpr BYTE GetBValue(COLORREF c) { return static_cast<BYTE>((c >> 16) & 0xFF); }
constexpr WORD LOWORD(uintptr_t v) { return static_cast<WORD>(v & 0xFFFF); }
constexpr WORD HIWORD(uintptr_t v) { return static_cast<WORD>((v >> 16) & 0xFFFF); }
constexpr LONG MAKELONG(WORD lo, WORD hi) {
  return static_cast<LONG>(static_cast<DWORD>(lo) | (static_cast<DWORD>(hi) << 16));
}
constexpr LPARAM MAKELPARAM(WORD lo, WORD hi) { return static_cast<LPARAM>(MAKELONG(lo, hi)); }
constexpr WPARAM MAKEWPARAM(WORD lo, WORD hi) {
  return static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(lo, hi)));
}
constexpr int GET_X_LPARAM(LPARAM lp) { return static_cast<SHORT>(LOWORD(static_cast<uintptr_t>(lp))); }
constexpr int GET_Y_LPARAM(LPARAM lp) { return static_cast<SHORT>(HIWORD(static_cast<uintptr_t>(lp))); }
