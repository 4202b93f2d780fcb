// The image-list import on any bytes. The first byte chooses whether zlib
// counts as absent; the rest is the ".lIL" stream. An import either raises
// one of its two errors and leaves the collection as it was, or gives a list
// that holds together: it exports, the export imports again and exports to
// the very same bytes, and its first image draws and gives an icon.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/c32bppDIB.h"
#include "imaging/cImageList.h"
#include "imaging/cImageLists.h"
#include "imaging/cListImages.h"
#include "platform/Gdi.h"
#include "runtime/Error.h"

namespace {

using namespace vantor;
using namespace vantor::imaging;

// A small 32-bit canvas in a memory DC, for the first image to be drawn on.
class Canvas {
 public:
  Canvas() {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = 16;
    info.bmiHeader.biHeight = 16;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    dc_ = CreateCompatibleDC(nullptr);
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    old_ = SelectObject(dc_, bitmap_);
  }
  ~Canvas() {
    SelectObject(dc_, old_);
    DeleteDC(dc_);
    DeleteObject(bitmap_);
  }
  int32_t Long() const {
    return static_cast<int32_t>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(dc_)));
  }

 private:
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ old_;
};

void Check(const std::vector<uint8_t>& stream) {
  auto lists = std::make_shared<cImageLists>();
  lists->Add(2, 2, u"");
  std::shared_ptr<cImageList> list;
  try {
    list = lists->ImportImageList(stream, u"");
  } catch (const Error& e) {
    if (e.Number() != 1974 && e.Number() != 1975) __builtin_trap();
    if (lists->get_Count() != 1) __builtin_trap();  // no half list
    return;
  }
  if (!list || lists->get_Count() != 2) __builtin_trap();
  std::vector<uint8_t> once, twice;
  lists->ExportImageList(Variant(2), once);
  auto again = std::make_shared<cImageLists>();
  again->ImportImageList(once, u"");
  again->ExportImageList(Variant(1), twice);
  if (once != twice) __builtin_trap();

  auto images = list->get_Images();
  if (images->get_Count() > 0) {
    Canvas canvas;
    images->Render(Variant(1), canvas.Long(), 0, 0);
    int32_t depth = 0;
    const int32_t icon = images->ExtractIcon(Variant(1), depth);
    if (icon == 0) __builtin_trap();
    DeleteObject(reinterpret_cast<HGDIOBJ>(static_cast<uintptr_t>(static_cast<uint32_t>(icon))));
    images->Remove(Variant(1));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const bool withoutZlib = (data[0] & 1) != 0;
  c32bppDIB::SetZlibAbsentForTesting(withoutZlib);
  Check(std::vector<uint8_t>(data + 1, data + size));
  c32bppDIB::SetZlibAbsentForTesting(false);
  Err().Clear();
  return 0;
}
