// Regions arrive from outside as RGNDATA (ExtCreateRegion) and as point
// lists (CreatePolygonRgn); no input may crash them, and every combination
// must keep the set laws: A AND B inside A, A OR B holding both, A XOR B as
// (A OR B) minus (A AND B), A DIFF B disjoint from B.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/Gdi.h"

namespace {

struct Reader {
  const uint8_t* data;
  size_t size;
  template <class T>
  T Take() {
    T v{};
    const size_t n = size < sizeof(T) ? size : sizeof(T);
    std::memcpy(&v, data, n);
    data += n;
    size -= n;
    return v;
  }
};

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Reader in{data, size};
  const uint8_t flags = in.Take<uint8_t>();
  // RGNDATA: a header with a rectangle count the input chooses, then as many
  // rectangles as the input holds, with coordinates wide or narrow.
  const uint8_t count = in.Take<uint8_t>();
  std::vector<char> buffer(sizeof(RGNDATAHEADER) + count * sizeof(RECT));
  RGNDATAHEADER header{sizeof(RGNDATAHEADER), RDH_RECTANGLES, count, 0, {0, 0, 0, 0}};
  if (flags & 1) header.nCount = in.Take<uint32_t>();  // a lying count
  std::memcpy(buffer.data(), &header, sizeof(header));
  for (size_t i = 0; i < count; ++i) {
    RECT r;
    if (flags & 2) {
      r = RECT{in.Take<int32_t>(), in.Take<int32_t>(), in.Take<int32_t>(), in.Take<int32_t>()};
    } else {
      r = RECT{in.Take<int8_t>(), in.Take<int8_t>(), in.Take<int8_t>(), in.Take<int8_t>()};
    }
    std::memcpy(buffer.data() + sizeof(header) + i * sizeof(RECT), &r, sizeof(r));
  }
  HRGN a = ExtCreateRegion(nullptr, static_cast<DWORD>(buffer.size()),
                           reinterpret_cast<const RGNDATA*>(buffer.data()));
  if (a == nullptr) a = CreateRectRgn(0, 0, 0, 0);

  // The rest: a polygon.
  std::vector<POINT> points;
  while (in.size >= 2 && points.size() < 64) {
    if (flags & 4) {
      points.push_back(POINT{in.Take<int16_t>(), in.Take<int16_t>()});
    } else {
      points.push_back(POINT{in.Take<int8_t>(), in.Take<int8_t>()});
    }
  }
  HRGN b = CreatePolygonRgn(points.data(), static_cast<int>(points.size()),
                            (flags & 8) ? WINDING : ALTERNATE);
  if (b == nullptr) b = CreateRoundRectRgn(-3, -3, 20, 12, flags & 0x1F, flags >> 3);

  HRGN result[6] = {};
  for (int mode = RGN_AND; mode <= RGN_COPY; ++mode) {
    result[mode] = CreateRectRgn(0, 0, 0, 0);
    Check(CombineRgn(result[mode], a, b, mode) != ERROR);
  }
  HRGN scratch = CreateRectRgn(0, 0, 0, 0);
  // A AND B inside A.
  CombineRgn(scratch, result[RGN_AND], a, RGN_DIFF);
  Check(CombineRgn(scratch, scratch, nullptr, RGN_COPY) == NULLREGION);
  // A OR B holds B.
  CombineRgn(scratch, b, result[RGN_OR], RGN_DIFF);
  Check(CombineRgn(scratch, scratch, nullptr, RGN_COPY) == NULLREGION);
  // XOR is OR minus AND.
  CombineRgn(scratch, result[RGN_OR], result[RGN_AND], RGN_DIFF);
  Check(EqualRgn(scratch, result[RGN_XOR]));
  // DIFF misses B.
  CombineRgn(scratch, result[RGN_DIFF], b, RGN_AND);
  Check(CombineRgn(scratch, scratch, nullptr, RGN_COPY) == NULLREGION);
  Check(EqualRgn(result[RGN_COPY], a));

  // Data written out reads back as the same region.
  const DWORD needed = GetRegionData(result[RGN_OR], 0, nullptr);
  std::vector<char> out(needed);
  Check(GetRegionData(result[RGN_OR], needed, reinterpret_cast<RGNDATA*>(out.data())) == needed);
  HRGN back = ExtCreateRegion(nullptr, needed, reinterpret_cast<const RGNDATA*>(out.data()));
  Check(back != nullptr && EqualRgn(back, result[RGN_OR]));
  OffsetRgn(back, in.Take<int32_t>(), in.Take<int32_t>());
  RECT box;
  GetRgnBox(back, &box);
  Check(box.left <= box.right && box.top <= box.bottom);

  for (HRGN r : {a, b, scratch, back}) DeleteObject(r);
  for (int mode = RGN_AND; mode <= RGN_COPY; ++mode) DeleteObject(result[mode]);
  return 0;
}
