#pragma once
// Drawing scenes written against the platform's API alone, so that the same
// source builds with mingw-w64 against <windows.h> (run under Wine, it makes
// the goldens) and in our build against our own GDI (the test compares). Each
// scene draws on a 32-bit top-down DIB section that starts white.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#define ORACLE_TEXT(s) L##s
#else
#include "platform/Gdi.h"
#include "platform/Text.h"
#include "platform/User.h"
#define ORACLE_TEXT(s) u##s
#endif

namespace oracle {

struct Scene {
  const char* name;
  int width;
  int height;
  void (*draw)(HDC dc);
  // Text scenes are compared by their measurements exactly and by their
  // pixels within a tolerance: Wine's and our rasteriser differ in detail.
  bool text;
};

const std::vector<Scene>& Scenes();

// What a scene measured (extents, DT_CALCRECT rectangles, return values), as
// "key value..." lines; written beside each golden and compared exactly.
void Note(const char* key, long value);
void Note(const char* key, const RECT& rect);
void Note(const char* key, const SIZE& size);
void NoteColor(const char* key, COLORREF color);

// Draws one scene and returns its pixels (0x00RRGGBB as the DIB holds them,
// row 0 on top) and its notes; false when the DIB section cannot be made.
bool Render(const Scene& scene, std::vector<uint32_t>& pixels, std::string& notes);

}  // namespace oracle
