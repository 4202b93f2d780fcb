#pragma once
// What the image-list tests share: pictures made by a rule, their PNG bytes,
// the pixels of one slot, and a check that a call raises one of the lists'
// errors with its number, text and source.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "imaging/c32bppDIB.h"
#include "imaging/cImageList.h"
#include "imaging/cImageLists.h"
#include "imaging/cListImage.h"
#include "imaging/cListImages.h"
#include "runtime/Error.h"

namespace vantor::imaging::test {

using PixelRule = std::function<uint32_t(int x, int y)>;

// A pre-multiplied pixel from a straight colour (0xRRGGBB) and an alpha.
inline uint32_t Pre(uint32_t rgb, uint32_t a) {
  uint32_t out = a << 24;
  for (int k = 0; k < 3; ++k) out |= (((rgb >> (8 * k)) & 0xFF) * a / 255) << (8 * k);
  return out;
}

// An opaque picture whose every pixel tells where it is and which picture
// it belongs to.
inline PixelRule Marked(uint32_t mark) {
  return [mark](int x, int y) {
    return 0xFF000000u | (mark & 0xFF) << 16 | static_cast<uint32_t>(x & 0xFF) << 8 |
           static_cast<uint32_t>(y & 0xFF);
  };
}

inline void Paint(c32bppDIB& s, int w, int h, const PixelRule& rule,
                  ENUM_ALPHA_TYPE kind = Alpha_Complex) {
  ASSERT_TRUE(s.InitializeDIB(w, h));
  for (int y = 0; y < h; ++y) {
    auto* row = const_cast<uint8_t*>(s.View().Row(y));
    for (int x = 0; x < w; ++x) {
      const uint32_t v = rule(x, y);
      std::memcpy(row + x * 4, &v, 4);
    }
  }
  s.put_Alpha(kind);
}

inline std::vector<uint8_t> PngOf(int w, int h, const PixelRule& rule) {
  c32bppDIB s;
  Paint(s, w, h, rule);
  std::vector<uint8_t> out;
  EXPECT_TRUE(s.SaveToStream_PNG(out));
  return out;
}

inline uint32_t PixelAt(const c32bppDIB& s, int x, int y) {
  uint32_t p;
  std::memcpy(&p, s.View().Row(y) + x * 4, 4);
  return p;
}

// Pixel (x, y) of image n (from 1) of a list.
inline uint32_t SlotPixel(cListImages& images, int n, int x, int y) {
  c32bppDIB* surface = images.Surface();
  if (surface == nullptr) return 0xDEADBEEF;
  return PixelAt(*surface, (n - 1) * images.ImageWidth() + x, y);
}

// Whether image n of a list holds exactly what the rule gives.
inline bool SlotIs(cListImages& images, int n, const PixelRule& rule) {
  for (int y = 0; y < images.ImageHeight(); ++y) {
    for (int x = 0; x < images.ImageWidth(); ++x) {
      if (SlotPixel(images, n, x, y) != rule(x, y)) return false;
    }
  }
  return true;
}

// Adds an image drawn by a rule at its own size, exactly as painted.
inline std::shared_ptr<cListImage> AddPainted(cListImages& images, const PixelRule& rule,
                                              const String& key = u"", const String& tag = u"",
                                              const Variant& index = Variant::Missing()) {
  c32bppDIB picture;
  Paint(picture, images.ImageWidth(), images.ImageHeight(), rule);
  return images.AddImage(picture, index, key, tag, false);
}

inline int32_t LongOf(HDC dc) {
  return static_cast<int32_t>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(dc)));
}

struct Raised {
  int32_t number = 0;
  std::string description;
  std::string source;
};

// What a call raised; number 0 when it raised nothing.
inline Raised RaisedBy(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& e) {
    return {e.Number(), ToUtf8(e.Description()), ToUtf8(e.Source())};
  }
  return {};
}

#define EXPECT_RAISES(call, num, text, src)        \
  do {                                             \
    const auto raised_ = RaisedBy([&] { call; });  \
    EXPECT_EQ(raised_.number, num) << #call;       \
    EXPECT_EQ(raised_.description, text) << #call; \
    EXPECT_EQ(raised_.source, src) << #call;       \
  } while (false)

}  // namespace vantor::imaging::test
