// DrawTextW takes captions and cell texts from users and data, with flags
// computed by controls; no text, flag set or rectangle may crash it, write
// outside its surface or the caller's buffer, or disagree with its own
// measurement. Input: 4 bytes of flags, 16 of rectangle, 1 of font size,
// then UTF-16 text.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/Gdi.h"
#include "platform/Text.h"

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 32;

struct Canvas {
  HDC dc = nullptr;
  HBITMAP bitmap = nullptr;
  uint32_t* bits = nullptr;
  Canvas() {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = kWidth;
    info.bmiHeader.biHeight = -kHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    dc = CreateCompatibleDC(nullptr);
    void* pixels = nullptr;
    bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    bits = static_cast<uint32_t*>(pixels);
    SelectObject(dc, bitmap);
  }
};

int32_t Int(const uint8_t* p) {
  uint32_t v;
  std::memcpy(&v, p, 4);
  return static_cast<int32_t>(v);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Canvas canvas;
  if (size < 21) return 0;
  const auto format = static_cast<UINT>(Int(data));
  // Coordinates mostly near the surface, sometimes anywhere.
  RECT rect{Int(data + 4), Int(data + 8), Int(data + 12), Int(data + 16)};
  if ((data[20] & 0x80) == 0) {
    rect = {rect.left % 100, rect.top % 100, rect.right % 100, rect.bottom % 100};
  }
  const int height = (data[20] & 0x3F) - 20;
  const size_t count = (size - 21) / 2;
  // The text and the four spare characters DT_MODIFYSTRING may fill, then a
  // guard that must survive.
  std::vector<char16_t> text(count + 4 + 8, 0);
  std::memcpy(text.data(), data + 21, count * 2);
  for (size_t i = 0; i < 8; ++i) text[count + 4 + i] = u'\xFEFE';

  HFONT font = CreateFontW(height, 0, 0, 0, (data[20] & 0x40) ? FW_BOLD : FW_NORMAL, 0, 0, 0, 0, 0,
                           0, 0, 0, u"Tahoma");
  HGDIOBJ old = SelectObject(canvas.dc, font);
  SetBkMode(canvas.dc, (format & 1) ? OPAQUE : TRANSPARENT);

  RECT calc = rect;
  const int measured =
      DrawTextW(canvas.dc, text.data(), static_cast<int>(count), &calc, format | DT_CALCRECT);
  RECT drawn = rect;
  const int height_drawn =
      DrawTextW(canvas.dc, text.data(), static_cast<int>(count), &drawn, format & ~DT_CALCRECT);
  for (size_t i = 0; i < 8; ++i) {
    if (text[count + 4 + i] != u'\xFEFE') __builtin_trap();
  }
  // Unclipped, drawing lays out every line the measurement did.
  if ((format & DT_NOCLIP) != 0 && (format & (DT_MODIFYSTRING | DT_TABSTOP)) == 0 &&
      measured != height_drawn) {
    __builtin_trap();
  }
  const int narrow = DrawTextA(canvas.dc, reinterpret_cast<const char*>(data + 21),
                               static_cast<int>(size - 21), &drawn, format & ~DT_MODIFYSTRING);
  (void)narrow;
  SelectObject(canvas.dc, old);
  DeleteObject(font);
  return 0;
}
