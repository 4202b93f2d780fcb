// VT's picture loading: any format the picture surface reads, sized for the
// host, flattened over a background colour into a plain bitmap picture, since
// the picture objects a form shows have no alpha of their own.
#include <cmath>
#include <vector>

#include "imaging/c32bppDIB.h"
#include "platform/Gdi.h"
#include "platform/User.h"
#include "services/VT.h"

namespace vantor::services {

namespace {

// The other side of a size asked for on one side only, in proportion.
int32_t Proportional(int32_t given, int32_t ofGiven, int32_t ofOther) {
  return std::max<int32_t>(
      1, static_cast<int32_t>(std::lround(static_cast<double>(given) * ofOther / ofGiven)));
}

}  // namespace

std::shared_ptr<server::StdPicture> VT::VT_CarregarImagem(const String& Arquivo, int32_t Largura,
                                                          int32_t Altura, OLE_COLOR CorDeFundo,
                                                          bool ManterRelacao) const {
  imaging::c32bppDIB source;
  if (!source.LoadPicture_File(Arquivo)) return nullptr;
  const int32_t w = source.get_Width(), h = source.get_Height();
  if (w < 1 || h < 1) return nullptr;

  // Non-positive sizes mean "as the picture is"; with the ratio kept, a size
  // given on one side only decides the other.
  int32_t width = Largura > 0 ? Largura : w;
  int32_t height = Altura > 0 ? Altura : h;
  if (ManterRelacao && Largura > 0 && Altura <= 0) height = Proportional(Largura, w, h);
  if (ManterRelacao && Altura > 0 && Largura <= 0) width = Proportional(Altura, h, w);
  if (static_cast<int64_t>(width) * height > 0x4000000) return nullptr;  // 256 MB of pixels

  int32_t drawnW = width, drawnH = height;
  if (ManterRelacao) source.ScaleImage(width, height, drawnW, drawnH, imaging::Scale_To_Size);
  drawnW = std::max(drawnW, 1);
  drawnH = std::max(drawnH, 1);

  COLORREF background = 0xFFFFFF;
  if (OleTranslateColor(CorDeFundo, nullptr, &background) != S_OK) background = 0xFFFFFF;

  HDC screen = GetDC(nullptr);
  HDC dc = CreateCompatibleDC(screen);
  ReleaseDC(nullptr, screen);
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top-down, as the picture wants its rows
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  HBITMAP canvas = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  std::shared_ptr<server::StdPicture> picture;
  if (canvas != nullptr && bits != nullptr) {
    HGDIOBJ old = SelectObject(dc, canvas);
    const RECT all{0, 0, width, height};
    HBRUSH brush = CreateSolidBrush(background);
    FillRect(dc, &all, brush);
    DeleteObject(brush);
    source.Render(dc, (width - drawnW) / 2, (height - drawnH) / 2, drawnW, drawnH);
    const auto* px = static_cast<const uint32_t*>(bits);
    std::vector<uint32_t> pixels(px, px + static_cast<size_t>(width) * height);
    for (uint32_t& p : pixels) p |= 0xFF000000u;
    SelectObject(dc, old);
    picture = server::StdPicture::FromPixels(width, height, pixels);
  }
  if (canvas != nullptr) DeleteObject(canvas);
  DeleteDC(dc);
  return picture;
}

}  // namespace vantor::services
