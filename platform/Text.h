#pragma once
// Text of the platform: fonts, measuring and drawing, under the platform's own
// names and values. Fonts resolve to the Liberation families (metric
// compatible with the faces Windows forms name) through fontconfig and are
// rendered by FreeType at 96 DPI with fixed hinting, so a run is repeatable.
#include "platform/WinTypes.h"

// DrawText formats.
constexpr UINT DT_TOP = 0x00000000;
constexpr UINT DT_LEFT = 0x00000000;
constexpr UINT DT_CENTER = 0x00000001;
constexpr UINT DT_RIGHT = 0x00000002;
constexpr UINT DT_VCENTER = 0x00000004;
constexpr UINT DT_BOTTOM = 0x00000008;
constexpr UINT DT_WORDBREAK = 0x00000010;
constexpr UINT DT_SINGLELINE = 0x00000020;
constexpr UINT DT_EXPANDTABS = 0x00000040;
constexpr UINT DT_TABSTOP = 0x00000080;
constexpr UINT DT_NOCLIP = 0x00000100;
constexpr UINT DT_EXTERNALLEADING = 0x00000200;
constexpr UINT DT_CALCRECT = 0x00000400;
constexpr UINT DT_NOPREFIX = 0x00000800;
constexpr UINT DT_INTERNAL = 0x00001000;
constexpr UINT DT_EDITCONTROL = 0x00002000;
constexpr UINT DT_PATH_ELLIPSIS = 0x00004000;
constexpr UINT DT_END_ELLIPSIS = 0x00008000;
constexpr UINT DT_MODIFYSTRING = 0x00010000;
constexpr UINT DT_RTLREADING = 0x00020000;
constexpr UINT DT_WORD_ELLIPSIS = 0x00040000;
constexpr UINT DT_NOFULLWIDTHCHARBREAK = 0x00080000;
constexpr UINT DT_HIDEPREFIX = 0x00100000;
constexpr UINT DT_PREFIXONLY = 0x00200000;

// Font weights.
constexpr LONG FW_DONTCARE = 0;
constexpr LONG FW_THIN = 100;
constexpr LONG FW_EXTRALIGHT = 200;
constexpr LONG FW_ULTRALIGHT = 200;
constexpr LONG FW_LIGHT = 300;
constexpr LONG FW_NORMAL = 400;
constexpr LONG FW_REGULAR = 400;
constexpr LONG FW_MEDIUM = 500;
constexpr LONG FW_SEMIBOLD = 600;
constexpr LONG FW_DEMIBOLD = 600;
constexpr LONG FW_BOLD = 700;
constexpr LONG FW_EXTRABOLD = 800;
constexpr LONG FW_ULTRABOLD = 800;
constexpr LONG FW_HEAVY = 900;
constexpr LONG FW_BLACK = 900;

// Character sets.
constexpr BYTE ANSI_CHARSET = 0;
constexpr BYTE DEFAULT_CHARSET = 1;
constexpr BYTE SYMBOL_CHARSET = 2;
constexpr BYTE MAC_CHARSET = 77;
constexpr BYTE SHIFTJIS_CHARSET = 128;
constexpr BYTE HANGUL_CHARSET = 129;
constexpr BYTE JOHAB_CHARSET = 130;
constexpr BYTE GB2312_CHARSET = 134;
constexpr BYTE CHINESEBIG5_CHARSET = 136;
constexpr BYTE GREEK_CHARSET = 161;
constexpr BYTE TURKISH_CHARSET = 162;
constexpr BYTE VIETNAMESE_CHARSET = 163;
constexpr BYTE HEBREW_CHARSET = 177;
constexpr BYTE ARABIC_CHARSET = 178;
constexpr BYTE BALTIC_CHARSET = 186;
constexpr BYTE RUSSIAN_CHARSET = 204;
constexpr BYTE THAI_CHARSET = 222;
constexpr BYTE EASTEUROPE_CHARSET = 238;
constexpr BYTE OEM_CHARSET = 255;

// Precision, quality, pitch and family of a LOGFONT.
constexpr BYTE OUT_DEFAULT_PRECIS = 0;
constexpr BYTE OUT_STRING_PRECIS = 1;
constexpr BYTE OUT_CHARACTER_PRECIS = 2;
constexpr BYTE OUT_STROKE_PRECIS = 3;
constexpr BYTE OUT_TT_PRECIS = 4;
constexpr BYTE OUT_DEVICE_PRECIS = 5;
constexpr BYTE OUT_RASTER_PRECIS = 6;
constexpr BYTE OUT_TT_ONLY_PRECIS = 7;
constexpr BYTE OUT_OUTLINE_PRECIS = 8;
constexpr BYTE CLIP_DEFAULT_PRECIS = 0;
constexpr BYTE CLIP_CHARACTER_PRECIS = 1;
constexpr BYTE CLIP_STROKE_PRECIS = 2;
constexpr BYTE DEFAULT_QUALITY = 0;
constexpr BYTE DRAFT_QUALITY = 1;
constexpr BYTE PROOF_QUALITY = 2;
constexpr BYTE NONANTIALIASED_QUALITY = 3;
constexpr BYTE ANTIALIASED_QUALITY = 4;
constexpr BYTE CLEARTYPE_QUALITY = 5;
constexpr BYTE DEFAULT_PITCH = 0;
constexpr BYTE FIXED_PITCH = 1;
constexpr BYTE VARIABLE_PITCH = 2;
constexpr BYTE FF_DONTCARE = 0x00;
constexpr BYTE FF_ROMAN = 0x10;
constexpr BYTE FF_SWISS = 0x20;
constexpr BYTE FF_MODERN = 0x30;
constexpr BYTE FF_SCRIPT = 0x40;
constexpr BYTE FF_DECORATIVE = 0x50;

// tmPitchAndFamily bits of a TEXTMETRIC (the pitch bit is set for VARIABLE
// pitch, the platform's historic inversion).
constexpr BYTE TMPF_FIXED_PITCH = 0x01;
constexpr BYTE TMPF_VECTOR = 0x02;
constexpr BYTE TMPF_TRUETYPE = 0x04;
constexpr BYTE TMPF_DEVICE = 0x08;

// Text alignment of TextOut and ExtTextOut.
constexpr UINT TA_NOUPDATECP = 0;
constexpr UINT TA_UPDATECP = 1;
constexpr UINT TA_LEFT = 0;
constexpr UINT TA_RIGHT = 2;
constexpr UINT TA_CENTER = 6;
constexpr UINT TA_TOP = 0;
constexpr UINT TA_BOTTOM = 8;
constexpr UINT TA_BASELINE = 24;
constexpr UINT TA_RTLREADING = 256;
constexpr UINT TA_MASK = TA_BASELINE + TA_CENTER + TA_UPDATECP + TA_RTLREADING;

// ExtTextOut options.
constexpr UINT ETO_OPAQUE = 0x0002;
constexpr UINT ETO_CLIPPED = 0x0004;

// Fonts. Creation never fails for a readable LOGFONT: an unknown face falls
// back to Liberation Sans, as the platform substitutes a default face.
HFONT CreateFontIndirectW(const LOGFONTW* logfont);
HFONT CreateFontIndirectA(const LOGFONTA* logfont);
HFONT CreateFontW(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                  DWORD underline, DWORD strike_out, DWORD charset, DWORD out_precision,
                  DWORD clip_precision, DWORD quality, DWORD pitch_and_family, LPCWSTR face_name);
HFONT CreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                  DWORD underline, DWORD strike_out, DWORD charset, DWORD out_precision,
                  DWORD clip_precision, DWORD quality, DWORD pitch_and_family, LPCSTR face_name);

// Measuring with the DC's selected font (the stock DEFAULT_GUI_FONT when none).
BOOL GetTextExtentPoint32W(HDC dc, LPCWSTR text, int count, LPSIZE size);
BOOL GetTextExtentPoint32A(HDC dc, LPCSTR text, int count, LPSIZE size);
// How many characters fit in max_extent (when fit is not null) and the
// cumulative widths of each character (when dx is not null).
BOOL GetTextExtentExPointW(HDC dc, LPCWSTR text, int count, int max_extent, INT* fit, INT* dx,
                           LPSIZE size);
BOOL GetTextMetricsW(HDC dc, TEXTMETRICW* metrics);
// Copies the face name with its terminator; returns the characters copied,
// or the length needed (terminator included) when name is null; 0 on failure.
int GetTextFaceW(HDC dc, int count, LPWSTR name);
BOOL GetCharWidth32W(HDC dc, UINT first, UINT last, INT* widths);

// Formatted text. Returns the height of the text (the offset from the top of
// the rectangle to the bottom of the text with DT_VCENTER or DT_BOTTOM), 0 on
// failure. DT_MODIFYSTRING writes into the caller's buffer, which must hold
// count + 4 characters, as the platform requires.
int DrawTextW(HDC dc, LPCWSTR text, int count, LPRECT rect, UINT format);
int DrawTextA(HDC dc, LPCSTR text, int count, LPRECT rect, UINT format);
int DrawTextExW(HDC dc, LPWSTR text, int count, LPRECT rect, UINT format, DRAWTEXTPARAMS* params);

// Unformatted text at a point, placed by the DC's text alignment.
BOOL TextOutW(HDC dc, int x, int y, LPCWSTR text, int count);
BOOL TextOutA(HDC dc, int x, int y, LPCSTR text, int count);
BOOL ExtTextOutW(HDC dc, int x, int y, UINT options, const RECT* rect, LPCWSTR text, UINT count,
                 const INT* dx);

// Returns the previous alignment, or GDI_ERROR (0xFFFFFFFF) for a bad DC.
UINT SetTextAlign(HDC dc, UINT align);
UINT GetTextAlign(HDC dc);
