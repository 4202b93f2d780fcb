// The ".lIL" stream: its header and body byte by byte, round trips in both
// directions (list to stream to list, stream to list to stream) with and
// without compression, with zlib forced absent, with keys and tags small and
// large, delay-loaded lists, the import's key rule, every refusal of bad
// data, and the picture sizes a stream offers.
#include <gtest/gtest.h>

#include <random>

#include "imaging/cHuffman.h"
#include "tests/imaging/ImageListTestSupport.h"

namespace vantor::imaging::test {
namespace {

constexpr const char* kImportFailed = "Failed to Import external image list";
constexpr const char* kBadVersion =
    "Invalid ImageList Version. Update your ImageList classes/control";
constexpr const char* kImportSource = "ImageLists.ImportImageList";

uint32_t Le32(const std::vector<uint8_t>& d, size_t at) {
  return static_cast<uint32_t>(d[at]) | static_cast<uint32_t>(d[at + 1]) << 8 |
         static_cast<uint32_t>(d[at + 2]) << 16 | static_cast<uint32_t>(d[at + 3]) << 24;
}

void Set32(std::vector<uint8_t>& d, size_t at, uint32_t v) {
  for (int i = 0; i < 4; ++i) d[at + static_cast<size_t>(i)] = static_cast<uint8_t>(v >> (8 * i));
}

// Makes zlib look absent for the life of the object.
class WithoutZlib {
 public:
  WithoutZlib() { c32bppDIB::SetZlibAbsentForTesting(true); }
  ~WithoutZlib() { c32bppDIB::SetZlibAbsentForTesting(false); }
};

// A picture with every kind of alpha: transparent, opaque, and in between.
PixelRule Mixed(unsigned seed) {
  return [seed](int x, int y) {
    std::mt19937 rng(seed * 7919u + static_cast<unsigned>(x * 131 + y));
    const auto next = [&rng] { return static_cast<uint32_t>(rng()); };
    const uint32_t kind = next() % 3;
    const uint32_t a = kind == 0 ? 0 : kind == 1 ? 255 : next() % 256;
    return Pre(next() & 0xFFFFFF, a);
  };
}

// A list "Ícones" of 7 x 5 images: some marked and opaque, some of mixed
// alpha, with keys and tags on some.
std::shared_ptr<cImageLists> Sample(int images = 5, bool texts = true) {
  auto lists = std::make_shared<cImageLists>();
  auto store = lists->Add(7, 5, u"Ícones", 2)->get_Images();
  for (int i = 1; i <= images; ++i) {
    const String n = FromUtf8(std::to_string(i));
    const PixelRule rule =
        i % 2 ? Marked(static_cast<uint32_t>(i)) : Mixed(static_cast<unsigned>(i));
    AddPainted(*store, rule, texts && i != 2 ? u"chave" + n : u"",
               texts && i > 3 ? u"etiqueta " + n : u"");
  }
  return lists;
}

std::vector<uint8_t> Export(cImageLists& lists, int index = 1) {
  std::vector<uint8_t> out;
  lists.ExportImageList(Variant(index), out);
  return out;
}

// Whether two lists hold the same images, keys, tags and sizes. Through
// PNG, which keeps colours straight, a colour whose alpha is neither 0 nor
// 255 may come back one lower: the writer divides by alpha and the reader
// multiplies, both truncating.
void ExpectSameLists(cListImages& a, cListImages& b, bool throughPng = false) {
  ASSERT_EQ(a.get_Count(), b.get_Count());
  ASSERT_EQ(a.ImageWidth(), b.ImageWidth());
  ASSERT_EQ(a.ImageHeight(), b.ImageHeight());
  EXPECT_EQ(a.Capacity(), b.Capacity());
  for (int n = 1; n <= a.get_Count(); ++n) {
    auto ia = a.get_Item(Variant(n));
    auto ib = b.get_Item(Variant(n));
    EXPECT_EQ(ia->get_Key(), ib->get_Key());
    EXPECT_EQ(ia->get_Tag(), ib->get_Tag());
    for (int y = 0; y < a.ImageHeight(); ++y) {
      for (int x = 0; x < a.ImageWidth(); ++x) {
        const uint32_t pa = SlotPixel(a, n, x, y), pb = SlotPixel(b, n, x, y);
        const uint32_t alpha = pa >> 24;
        if (!throughPng || alpha == 0 || alpha == 255) {
          ASSERT_EQ(pa, pb) << n << " at " << x << "," << y;
          continue;
        }
        ASSERT_EQ(alpha, pb >> 24);
        for (int k = 0; k < 3; ++k) {
          const int ca = static_cast<int>((pa >> (8 * k)) & 0xFF);
          const int cb = static_cast<int>((pb >> (8 * k)) & 0xFF);
          ASSERT_TRUE(cb == ca || cb == ca - 1) << n << " at " << x << "," << y;
        }
      }
    }
  }
}

TEST(ImageListStream, HeaderAndBodyByteByByte) {
  for (const bool compression : {false, true}) {
    auto lists = Sample(3);
    lists->put_Compression(compression);
    auto images = lists->ImagesAt(1);
    images->put_DelayLoaded(true);
    const auto s = Export(*lists);
    ASSERT_GT(s.size(), 20u);
    EXPECT_EQ(Le32(s, 0), 0x4C56494Cu);
    EXPECT_EQ(std::string(s.begin(), s.begin() + 4), "LIVL");
    EXPECT_EQ(Le32(s, 4), 2u);
    EXPECT_EQ(Le32(s, 8), 7u);
    EXPECT_EQ(Le32(s, 12), 5u);
    const String key = u"Ícones";
    ASSERT_EQ(Le32(s, 16), key.size() * 2);
    for (size_t i = 0; i < key.size(); ++i) {
      EXPECT_EQ(s[20 + 2 * i] | s[21 + 2 * i] << 8, key[i]);
    }
    const size_t p = 20 + key.size() * 2;
    const uint8_t flags = s[p];
    EXPECT_EQ(flags & 4, 4) << "keys and tags follow";
    EXPECT_EQ(flags & 1, compression ? 1 : 0) << "PNG data";
    EXPECT_EQ(Le32(s, p + 1), 3u);  // Count
    EXPECT_EQ(Le32(s, p + 5), static_cast<uint32_t>(images->Capacity()));
    EXPECT_EQ(Le32(s, p + 9), 7u);
    EXPECT_EQ(Le32(s, p + 13), 5u);
    EXPECT_EQ(Le32(s, p + 17), 3u);                 // body version
    EXPECT_EQ(s[p + 21] | s[p + 22] << 8, 0xFFFF);  // DelayLoaded, a Boolean
    EXPECT_EQ(s[p + 23], 0);                        // a small table is not compressed
    // The table: per image the two lengths, then the key and the tag.
    size_t t = p + 24;
    const char16_t* keys[] = {u"chave1", u"", u"chave3"};
    for (const char16_t* k : keys) {
      const size_t keyBytes = Le32(s, t), tagBytes = Le32(s, t + 4);
      EXPECT_EQ(keyBytes, String(k).size() * 2);
      EXPECT_EQ(tagBytes, 0u);
      t += 8 + keyBytes + tagBytes;
    }
    const size_t data = s.size() - t;
    if (compression) {
      // PNG, as the surface writes it.
      ASSERT_GE(data, 8u);
      EXPECT_EQ(s[t + 1], 'P');
      EXPECT_EQ(s[t + 2], 'N');
      EXPECT_EQ(s[t + 3], 'G');
    } else {
      // The raw surface, width x 4 x height.
      EXPECT_EQ(data, static_cast<size_t>(images->Capacity() * 7 * 4 * 5));
      EXPECT_EQ(0, std::memcmp(s.data() + t, images->Surface()->get_BitsPointer(), data));
    }
  }
}

TEST(ImageListStream, RoundTripsBothWays) {
  struct Case {
    const char* name;
    bool compression;
    bool zlib;
    bool delay;
    int images;
    bool texts;
  } cases[] = {
      {"png", true, true, false, 5, true},
      {"raw", false, true, false, 5, true},
      {"huffman", true, false, false, 5, true},
      {"raw without zlib", false, false, false, 5, true},
      {"png delayed", true, true, true, 5, true},
      {"huffman delayed", true, false, true, 5, true},
      {"no texts", true, true, false, 4, false},
      {"empty list", true, true, false, 0, true},
      {"empty raw list", false, false, false, 0, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::unique_ptr<WithoutZlib> noZlib;
    if (!c.zlib) noZlib = std::make_unique<WithoutZlib>();
    auto lists = Sample(c.images, c.texts);
    lists->put_Compression(c.compression);
    lists->ImagesAt(1)->put_DelayLoaded(c.delay);
    const auto first = Export(*lists);
    if (c.compression && c.images > 0) {
      const size_t p = 20 + 12;
      EXPECT_EQ(first[p] & 3, c.zlib ? 1 : 2) << "PNG with zlib, cHuffman without";
    }

    // Stream to list: the same images, keys and tags.
    auto other = std::make_shared<cImageLists>();
    other->put_Compression(c.compression);
    auto imported = other->ImportImageList(first, u"");
    ASSERT_TRUE(imported);
    EXPECT_EQ(imported->get_Key(), u"Ícones");
    auto images = imported->get_Images();
    EXPECT_EQ(images->get_DelayLoaded(), c.delay);
    EXPECT_EQ(images->get_Count(), c.images);
    // A delay-loaded list waits with only its count and size known.
    EXPECT_EQ(images->IsWaiting(), c.delay && c.compression && c.images > 0);
    // List to stream again, before and after the pixels are unpacked: the
    // very same bytes.
    EXPECT_EQ(Export(*other), first);
    const bool png = c.compression && c.zlib;
    ExpectSameLists(*lists->ImagesAt(1), *images, png);
    EXPECT_FALSE(images->IsWaiting());
    EXPECT_EQ(Export(*other), first);

    // And once more from the copy, to a third list.
    auto third = std::make_shared<cImageLists>();
    third->put_Compression(c.compression);
    third->ImportImageList(Export(*other), u"");
    ExpectSameLists(*images, *third->ImagesAt(1));
    EXPECT_EQ(Export(*third), first);
  }
}

TEST(ImageListStream, AChangedListWritesItsNewPixels) {
  auto lists = Sample(3);
  const auto before = Export(*lists);
  auto other = std::make_shared<cImageLists>();
  auto images = other->ImportImageList(before, u"")->get_Images();
  AddPainted(*images, Marked(40), u"nova");
  const auto after = Export(*other);
  EXPECT_NE(after, before);
  auto third = std::make_shared<cImageLists>();
  ExpectSameLists(*images, *third->ImportImageList(after, u"")->get_Images());
  // Removing it again gives the first list's pixels, as PNG kept them.
  images->Remove(Variant(u"nova"));
  ExpectSameLists(*lists->ImagesAt(1), *images, true);
}

TEST(ImageListStream, PartialAlphaSurvivesRepeatedSaves) {
  // One image for each alpha, each colour from 0 to the alpha across it, in
  // every channel alike.
  auto lists = std::make_shared<cImageLists>();
  auto images = lists->Add(256, 1, u"alfas", 255)->get_Images();
  for (uint32_t a = 1; a <= 255; ++a) {
    AddPainted(*images, [a](int x, int) {
      const uint32_t c = std::min(static_cast<uint32_t>(x), a);
      return a << 24 | c << 16 | c << 8 | c;
    });
  }
  // What the PNG reader gives back for the colour the writer was handed.
  auto back = [](uint32_t k, uint32_t a) { return (k * 255 / a) * a / 255; };
  auto once = std::make_shared<cImageLists>();
  auto first = once->ImportImageList(Export(*lists), u"")->get_Images();
  int exact = 0, lower = 0;
  for (uint32_t a = 1; a <= 255; ++a) {
    for (uint32_t c = 0; c <= a; ++c) {
      const uint32_t got = SlotPixel(*first, static_cast<int>(a), static_cast<int>(c), 0) & 0xFF;
      // The colour itself where the reader can give it, else one below.
      bool reachable = false;
      for (uint32_t k = 0; k <= a; ++k) reachable = reachable || back(k, a) == c;
      if (reachable) {
        EXPECT_EQ(got, c) << "alpha " << a;
        ++exact;
      } else {
        EXPECT_EQ(got, c - 1) << "alpha " << a;
        ++lower;
      }
    }
  }
  EXPECT_GT(exact, 30000);
  EXPECT_GT(lower, 0);
  // Changed and saved again and again, nothing moves any more.
  auto current = first;
  for (int round = 0; round < 3; ++round) {
    AddPainted(*current, Marked(1));
    current->Remove(Variant(current->get_Count()));
    auto next = std::make_shared<cImageLists>();
    std::vector<uint8_t> stream;
    once->ExportImageList(Variant(1), stream);
    auto copy = next->ImportImageList(stream, u"")->get_Images();
    ExpectSameLists(*first, *copy);
    once = next;
    current = copy;
  }
}

TEST(ImageListStream, ALargeTableGoesThroughHuffman) {
  auto lists = std::make_shared<cImageLists>();
  auto images = lists->Add(3, 3, u"L")->get_Images();
  for (int i = 1; i <= 60; ++i) {
    const String n = FromUtf8(std::to_string(i));
    AddPainted(*images, Marked(static_cast<uint32_t>(i)), u"uma chave bastante longa " + n,
               u"e uma etiqueta também longa, para passar de 1024 bytes " + n);
  }
  for (const bool zlib : {true, false}) {
    std::unique_ptr<WithoutZlib> noZlib;
    if (!zlib) noZlib = std::make_unique<WithoutZlib>();
    const auto s = Export(*lists);
    const size_t p = 20 + 2;
    EXPECT_EQ(s[p] & 4, 4);
    EXPECT_EQ(s[p + 23] & 1, 1) << "the flag byte records the compressed table";
    // The stored table is a cHuffman stream that unpacks to the whole table.
    const size_t stored = Le32(s, p + 24);
    std::vector<uint8_t> table;
    ASSERT_TRUE(
        cHuffman::DecodeByteArray(std::span<const uint8_t>(s).subspan(p + 28, stored), table));
    EXPECT_GT(table.size(), 1024u);
    EXPECT_LT(stored, table.size());
    auto other = std::make_shared<cImageLists>();
    auto copy = other->ImportImageList(s, u"");
    ExpectSameLists(*images, *copy->get_Images());
    EXPECT_EQ(Export(*other), s);
  }
}

TEST(ImageListStream, APngStreamReadsWithZlibAbsent) {
  auto lists = Sample(4);
  const auto png = Export(*lists);
  WithoutZlib noZlib;
  auto other = std::make_shared<cImageLists>();
  auto images = other->ImportImageList(png, u"")->get_Images();
  ExpectSameLists(*lists->ImagesAt(1), *images, true);
  // Its source bytes go out again unchanged, though no PNG could be made now.
  EXPECT_EQ(Export(*other), png);
  EXPECT_FALSE(other->get_CompressionNeeded());
}

TEST(ImageListStream, CompressionNeeded) {
  auto lists = std::make_shared<cImageLists>();
  EXPECT_TRUE(lists->get_Compression());
  EXPECT_FALSE(lists->get_CompressionNeeded());
  lists->Add(4, 4, u"a");
  EXPECT_TRUE(lists->get_CompressionNeeded());
  lists->put_Compression(false);
  EXPECT_FALSE(lists->get_CompressionNeeded());
  // A delay-loaded list that still waits has its compressed bytes already.
  lists->put_Compression(true);
  auto other = std::make_shared<cImageLists>();
  lists->ImagesAt(1)->put_DelayLoaded(true);
  other->ImportImageList(Export(*lists), u"");
  EXPECT_FALSE(other->get_CompressionNeeded());
}

TEST(ImageListStream, TheImportsKeyRule) {
  auto lists = Sample(1);
  const auto s = Export(*lists);
  auto target = std::make_shared<cImageLists>();
  EXPECT_EQ(target->ImportImageList(s, u"")->get_Key(), u"Ícones");
  EXPECT_EQ(target->ImportImageList(s, u"")->get_Key(), u"Ícones(1)");
  EXPECT_EQ(target->ImportImageList(s, u"")->get_Key(), u"Ícones(2)");
  EXPECT_EQ(target->ImportImageList(s, u"Outra")->get_Key(), u"Outra");
  EXPECT_EQ(target->ImportImageList(s, u"Outra")->get_Key(), u"Outra(1)");
  // The first free number, counting from 1.
  target->Remove(Variant(u"Ícones(1)"));
  EXPECT_EQ(target->ImportImageList(s, u"")->get_Key(), u"Ícones(1)");
  EXPECT_EQ(target->get_Count(), 5);
  EXPECT_EQ(target->IsKeyAssigned(u"Ícones(1)"), 5);
  EXPECT_EQ(target->ImportImageList(s, u"")->get_Key(), u"Ícones(3)");
}

TEST(ImageListStream, BadStreamsRaiseAndLeaveNoList) {
  auto lists = Sample(3);
  lists->put_Compression(false);
  const auto good = Export(*lists);
  auto target = std::make_shared<cImageLists>();
  target->Add(4, 4, u"já");

  auto expect = [&](const std::vector<uint8_t>& bytes, int32_t number, const char* text) {
    EXPECT_RAISES(target->ImportImageList(bytes, u""), number, text, kImportSource);
    EXPECT_EQ(target->get_Count(), 1);
  };
  expect({}, 1975, kImportFailed);
  expect(std::vector<uint8_t>(good.begin(), good.begin() + 19), 1975, kImportFailed);
  auto bad = good;
  bad[0] ^= 1;
  expect(bad, 1975, kImportFailed);
  // A version above 2, and a body version above 3.
  for (const uint32_t v : {3u, 4u, 0xFFFFFFFFu}) {
    bad = good;
    Set32(bad, 4, v);
    expect(bad, 1974, kBadVersion);
  }
  const size_t p = 20 + 12;
  bad = good;
  Set32(bad, p + 17, 4);
  expect(bad, 1974, kBadVersion);
  // Older versions read.
  for (const uint32_t v : {0u, 1u}) {
    bad = good;
    Set32(bad, 4, v);
    auto older = std::make_shared<cImageLists>();
    EXPECT_TRUE(older->ImportImageList(bad, u""));
  }
  // Header and body disagree on the size; a size below 1.
  bad = good;
  Set32(bad, 8, 8);
  expect(bad, 1975, kImportFailed);
  bad = good;
  Set32(bad, 12, 4);
  Set32(bad, p + 13, 4);
  expect(bad, 1975, kImportFailed);
  bad = good;
  Set32(bad, 8, 0);
  Set32(bad, p + 9, 0);
  expect(bad, 1975, kImportFailed);
  // An odd or overlong key.
  bad = good;
  Set32(bad, 16, 11);
  expect(bad, 1975, kImportFailed);
  bad = good;
  Set32(bad, 16, 0x7FFFFFFF);
  expect(bad, 1975, kImportFailed);
  // More images than slots, more slots than the size allows, a negative count.
  bad = good;
  Set32(bad, p + 1, 99);
  expect(bad, 1975, kImportFailed);
  bad = good;
  Set32(bad, p + 5, 1024000);
  expect(bad, 1975, kImportFailed);
  bad = good;
  Set32(bad, p + 1, 0xFFFFFFFF);
  expect(bad, 1975, kImportFailed);
  // Both kinds of compressed data at once.
  bad = good;
  bad[p] |= 3;
  expect(bad, 1975, kImportFailed);
  // The same key twice: "chave3" made "chave1".
  bad = good;
  const size_t third = p + 24 + (8 + 12) + 8 + 8;
  ASSERT_EQ(bad[third + 10], '3');
  bad[third + 10] = '1';
  expect(bad, 1975, kImportFailed);
  // A table whose lengths run past its end.
  bad = good;
  Set32(bad, p + 24, 0x10000);
  expect(bad, 1975, kImportFailed);
  // Every shorter stream, and every longer one, fails whole.
  for (size_t n = 0; n < good.size(); ++n) {
    expect(std::vector<uint8_t>(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(n)), 1975,
           kImportFailed);
  }
  bad = good;
  bad.push_back(0);
  expect(bad, 1975, kImportFailed);
  // Compressed data that does not unpack to the surface.
  lists->put_Compression(true);
  for (const bool zlib : {true, false}) {
    std::unique_ptr<WithoutZlib> noZlib;
    if (!zlib) noZlib = std::make_unique<WithoutZlib>();
    const auto packed = Export(*lists);
    // A PNG may lose its closing chunk (12 bytes) and still hold the whole
    // picture; cut deeper, it does not.
    for (size_t cut = zlib ? 13 : 1; cut < 60; cut += 3) {
      expect(std::vector<uint8_t>(packed.begin(), packed.end() - static_cast<std::ptrdiff_t>(cut)),
             1975, kImportFailed);
    }
    bad = packed;
    bad[bad.size() - 30] ^= 0x5A;
    auto fresh = std::make_shared<cImageLists>();
    const Raised r = RaisedBy([&] { fresh->ImportImageList(bad, u""); });
    // A flipped byte either still reads (a PNG without zlib has no CRC test)
    // or fails whole.
    EXPECT_TRUE(r.number == 0 || r.number == 1975) << r.number;
    EXPECT_EQ(fresh->get_Count(), r.number == 0 ? 1 : 0);
  }
}

TEST(ImageListStream, ExportNamesTheListByKeyOrIndex) {
  auto lists = Sample(2);
  lists->Add(3, 3, u"segunda");
  std::vector<uint8_t> byKey, byIndex;
  lists->ExportImageList(Variant(u"segunda"), byKey);
  lists->ExportImageList(Variant(2), byIndex);
  EXPECT_EQ(byKey, byIndex);
  std::vector<uint8_t> untouched = {1, 2, 3};
  EXPECT_RAISES(lists->ExportImageList(Variant(0), untouched), 1962, "Invalid Key or Index",
                "ImageLists.ExportImageList");
  EXPECT_RAISES(lists->ExportImageList(Variant(u"SEGUNDA"), untouched), 1962,
                "Invalid Key or Index", "ImageLists.ExportImageList");
  EXPECT_EQ(untouched, (std::vector<uint8_t>{1, 2, 3}));
}

TEST(ImageListStream, AClearedListTravelsEmpty) {
  auto lists = Sample(2);
  lists->ImagesAt(1)->Clear();
  const auto s = Export(*lists);
  auto other = std::make_shared<cImageLists>();
  auto images = other->ImportImageList(s, u"")->get_Images();
  EXPECT_EQ(images->get_Count(), 0);
  EXPECT_EQ(images->Capacity(), 0);
  EXPECT_EQ(images->ImageWidth(), 7);
  EXPECT_EQ(Export(*other), s);
  ASSERT_TRUE(AddPainted(*images, Marked(1)));
  EXPECT_TRUE(SlotIs(*images, 1, Marked(1)));
}

// An icon file of PNG pictures of the given sizes.
std::vector<uint8_t> IconFile(const std::vector<std::pair<int, int>>& sizes) {
  std::vector<std::vector<uint8_t>> pictures;
  for (const auto& [w, h] : sizes) pictures.push_back(PngOf(w, h, Marked(1)));
  std::vector<uint8_t> out = {0, 0, 1, 0, static_cast<uint8_t>(sizes.size()), 0};
  uint32_t offset = static_cast<uint32_t>(6 + 16 * sizes.size());
  for (size_t i = 0; i < sizes.size(); ++i) {
    const auto [w, h] = sizes[i];
    const uint8_t entry[16] = {
        static_cast<uint8_t>(w & 0xFF), static_cast<uint8_t>(h & 0xFF), 0, 0, 1, 0, 32, 0};
    out.insert(out.end(), entry, entry + 8);
    const auto size = static_cast<uint32_t>(pictures[i].size());
    for (int k = 0; k < 4; ++k) out.push_back(static_cast<uint8_t>(size >> (8 * k)));
    for (int k = 0; k < 4; ++k) out.push_back(static_cast<uint8_t>(offset >> (8 * k)));
    offset += size;
  }
  for (const auto& p : pictures) out.insert(out.end(), p.begin(), p.end());
  return out;
}

TEST(ImageListStream, ImageSizesFromStream) {
  auto lists = std::make_shared<cImageLists>();
  Variant sizes;
  EXPECT_EQ(lists->ImageSizesFromStream(IconFile({{16, 16}, {32, 32}, {48, 24}}), sizes), 3);
  ASSERT_NE(sizes.Array(), nullptr);
  std::vector<int32_t> got;
  for (const Variant& v : sizes.Array()->Items()) got.push_back(v.ToLong());
  EXPECT_EQ(got, (std::vector<int32_t>{16, 16, 32, 32, 48, 24}));
  EXPECT_EQ(sizes.Array()->LBound(), 0);

  EXPECT_EQ(lists->ImageSizesFromStream(PngOf(13, 9, Marked(1)), sizes), 1);
  got.clear();
  for (const Variant& v : sizes.Array()->Items()) got.push_back(v.ToLong());
  EXPECT_EQ(got, (std::vector<int32_t>{13, 9}));

  EXPECT_EQ(lists->ImageSizesFromStream(std::vector<uint8_t>(64, 7), sizes), 0);
  ASSERT_NE(sizes.Array(), nullptr);
  EXPECT_EQ(sizes.Array()->Size(), 0u);

  // Late bound, the array comes back through the reference: a Long array
  // variable, as the host declares one.
  Variant out(SafeArray(vbLong, {}));
  std::vector<Variant> args = {Variant(IconFile({{24, 24}})), Variant::ByRef(&out)};
  Variant count;
  ASSERT_TRUE(lists->Invoke("ImageSizesFromStream", server::InvokeKind::Method, args, &count));
  EXPECT_EQ(count.ToLong(), 1);
  ASSERT_NE(out.Array(), nullptr);
  EXPECT_EQ(out.Array()->Items().size(), 2u);
}

}  // namespace
}  // namespace vantor::imaging::test
