// The image-list family as a collection: keys and positions, the limit on
// images, inserting, moving and removing images with their pixels, the light
// handles and their staleness, every error with its text and source, and the
// same through the dispatcher and the class factory.
#include <gtest/gtest.h>

#include "imaging/IItemData.h"
#include "imaging/ListErrors.h"
#include "server/Dispatch.h"
#include "server/Registry.h"
#include "server/StdPicture.h"
#include "tests/imaging/ImageListTestSupport.h"

namespace vantor::imaging::test {
namespace {

constexpr const char* kBadKeyOrIndex = "Invalid Key or Index";
constexpr const char* kDuplicated = "Duplicated Key. Key already exists in this collection";
constexpr const char* kTooMany =
    "Maximum number of images have been exceeded. Create new image list";

std::shared_ptr<cImageLists> NewLists() {
  return std::make_shared<cImageLists>();
}

// A list of 4 x 3 images holding the given number of marked images, keyed
// "k1", "k2"... and tagged "t1", "t2"...
std::shared_ptr<cListImages> Filled(cImageLists& lists, const String& key, int images) {
  auto list = lists.Add(4, 3, key);
  auto store = list->get_Images();
  for (int i = 1; i <= images; ++i) {
    const String n = FromUtf8(std::to_string(i));
    AddPainted(*store, Marked(static_cast<uint32_t>(i)), u"k" + n, u"t" + n);
  }
  return store;
}

TEST(ImageList, MaxImagesByTheSizeOfOneImage) {
  struct Case {
    int32_t w, h, expected;
  } cases[] = {
      {100, 100, 102}, {1025, 1000, 0}, {1000, 1024, 1},   {32, 32, 1000},
      {16, 16, 4000},  {1, 1, 1024000}, {0, 10, 0},        {10, 0, 0},
      {-5, 10, 0},     {1024000, 1, 1}, {65536, 65536, 0},
  };
  auto lists = NewLists();
  for (const Case& c : cases) {
    EXPECT_EQ(lists->MaxImages(c.w, c.h), c.expected) << c.w << "x" << c.h;
    EXPECT_EQ(cListImages::MaxImagesFor(c.w, c.h), c.expected);
  }
  auto list = lists->Add(100, 100, u"big");
  EXPECT_EQ(list->get_MaxImages(), 102);
  EXPECT_EQ(list->get_Images()->get_MaxImages(), 102);
}

TEST(ImageList, AddAList) {
  auto lists = NewLists();
  auto list = lists->Add(16, 24, u"Icons", 5);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->get_Key(), u"Icons");
  EXPECT_EQ(list->get_Index(), 1);
  EXPECT_EQ(list->get_Width(), 16);
  EXPECT_EQ(list->get_Height(), 24);
  auto images = list->get_Images();
  EXPECT_EQ(images->get_Count(), 0);
  EXPECT_EQ(images->Capacity(), 5);
  // The surface is the slots side by side.
  EXPECT_EQ(images->Surface()->get_Width(), 5 * 16);
  EXPECT_EQ(images->Surface()->get_Height(), 24);
  // A count below 1 counts as 1.
  EXPECT_EQ(lists->Add(8, 8, u"a", 0)->get_Images()->Capacity(), 1);
  EXPECT_EQ(lists->Add(8, 8, u"b", -7)->get_Images()->Capacity(), 1);
  EXPECT_EQ(lists->get_Count(), 3);
}

TEST(ImageList, AddRaisesForTheLimitAndForAKeyInUse) {
  auto lists = NewLists();
  EXPECT_RAISES(lists->Add(1025, 1000, u"x", 1), 1973, kTooMany, "ImageLists.Add");
  EXPECT_RAISES(lists->Add(0, 16, u"x"), 1973, kTooMany, "ImageLists.Add");
  // At or above the limit.
  EXPECT_RAISES(lists->Add(100, 100, u"x", 102), 1973, kTooMany, "ImageLists.Add");
  EXPECT_EQ(lists->get_Count(), 0);
  EXPECT_TRUE(lists->Add(100, 100, u"x", 101));
  EXPECT_RAISES(lists->Add(16, 16, u"x"), 1963, kDuplicated, "ImageLists.Add");
  EXPECT_EQ(lists->get_Count(), 1);
}

TEST(ImageList, KeysMatchExactly) {
  auto lists = NewLists();
  lists->Add(8, 8, u"Icons");
  lists->Add(8, 8, u"icons");  // another key: case counts
  lists->Add(8, 8, u"Ícones");
  lists->Add(8, 8, u"");  // no key at all
  lists->Add(8, 8, u"");
  EXPECT_EQ(lists->get_Count(), 5);
  EXPECT_EQ(lists->IsKeyAssigned(u"Icons"), 1);
  EXPECT_EQ(lists->IsKeyAssigned(u"icons"), 2);
  EXPECT_EQ(lists->IsKeyAssigned(u"Ícones"), 3);
  EXPECT_EQ(lists->IsKeyAssigned(u"ICONS"), 0);
  EXPECT_EQ(lists->IsKeyAssigned(u"Icons "), 0);
  EXPECT_EQ(lists->IsKeyAssigned(u""), 0);
  EXPECT_EQ(lists->get_Item(Variant(u"icons"))->get_Index(), 2);
  EXPECT_EQ(lists->get_Item(Variant(u"ICONS")), nullptr);
  // A number is a position, a text is a key even when it reads as a number.
  EXPECT_EQ(lists->get_Item(Variant(3))->get_Key(), u"Ícones");
  EXPECT_EQ(lists->get_Item(Variant(2.0))->get_Key(), u"icons");
  EXPECT_EQ(lists->get_Item(Variant(u"3")), nullptr);
  EXPECT_EQ(lists->get_Item(Variant(0)), nullptr);
  EXPECT_EQ(lists->get_Item(Variant(6)), nullptr);
  EXPECT_EQ(lists->get_Item(Variant()), nullptr);
  EXPECT_EQ(lists->get_Item(Variant(1e300)), nullptr);
}

TEST(ImageList, RemoveAListShiftsTheOthersAndStalesItsHandles) {
  auto lists = NewLists();
  auto a = lists->Add(8, 8, u"a");
  auto b = lists->Add(8, 8, u"b");
  auto c = lists->Add(8, 8, u"c");
  auto bImages = b->get_Images();
  AddPainted(*bImages, Marked(1));
  lists->Remove(Variant(u"b"));
  EXPECT_EQ(lists->get_Count(), 2);
  EXPECT_EQ(c->get_Index(), 2);
  EXPECT_EQ(lists->IsKeyAssigned(u"c"), 2);
  EXPECT_EQ(lists->IsKeyAssigned(u"b"), 0);
  // The removed list's images are released.
  EXPECT_EQ(bImages->get_Count(), 0);
  EXPECT_EQ(bImages->Surface(), nullptr);
  EXPECT_RAISES(b->get_Key(), 1962, "Invalid Key", "ImageLists.Key");
  EXPECT_RAISES(b->put_Key(u"z"), 1962, "Invalid Key", "ImageLists.Key");
  EXPECT_RAISES(b->get_Index(), 1962, "Invalid Index", "ImageLists.Index");
  EXPECT_RAISES(b->get_Images(), 1962, "Invalid Index", "ImageLists.Index");
  EXPECT_RAISES(b->get_Width(), 1962, "Invalid Index", "ImageLists.Index");
  lists->Remove(Variant(1));
  EXPECT_EQ(c->get_Index(), 1);
  EXPECT_RAISES(a->get_Index(), 1962, "Invalid Index", "ImageLists.Index");
  // Index 0 and a key that is not there.
  EXPECT_RAISES(lists->Remove(Variant(0)), 1962, kBadKeyOrIndex, "ImageLists.Remove");
  EXPECT_RAISES(lists->Remove(Variant(u"b")), 1962, kBadKeyOrIndex, "ImageLists.Remove");
  EXPECT_RAISES(lists->Remove(Variant(2)), 1962, kBadKeyOrIndex, "ImageLists.Remove");
  EXPECT_EQ(lists->get_Count(), 1);
}

TEST(ImageList, AListsKeyAndIndexChange) {
  auto lists = NewLists();
  auto a = lists->Add(8, 8, u"a");
  auto b = lists->Add(8, 8, u"b");
  auto c = lists->Add(8, 8, u"c");
  a->put_Key(u"A");
  EXPECT_EQ(lists->IsKeyAssigned(u"A"), 1);
  EXPECT_EQ(lists->IsKeyAssigned(u"a"), 0);
  a->put_Key(u"A");  // its own key again changes nothing
  EXPECT_RAISES(a->put_Key(u"b"), 1963, kDuplicated, "ImageLists.Key");
  EXPECT_EQ(a->get_Key(), u"A");
  // Moving a list moves its key with it.
  a->put_Index(3);
  EXPECT_EQ(b->get_Index(), 1);
  EXPECT_EQ(c->get_Index(), 2);
  EXPECT_EQ(a->get_Index(), 3);
  EXPECT_EQ(lists->IsKeyAssigned(u"A"), 3);
  EXPECT_EQ(lists->IsKeyAssigned(u"b"), 1);
  c->put_Index(1);
  EXPECT_EQ(lists->get_Item(Variant(1))->get_Key(), u"c");
  EXPECT_EQ(lists->IsKeyAssigned(u"c"), 1);
  EXPECT_EQ(lists->IsKeyAssigned(u"b"), 2);
  EXPECT_RAISES(a->put_Index(0), 1962, "Invalid Index", "ImageLists.Index");
  EXPECT_RAISES(a->put_Index(4), 1962, "Invalid Index", "ImageLists.Index");
  // An empty key takes the list out of the keys.
  b->put_Key(u"");
  EXPECT_EQ(lists->IsKeyAssigned(u"b"), 0);
  EXPECT_EQ(lists->get_Item(Variant(2))->get_Key(), u"");
}

TEST(ImageList, ClearStalesEveryHandle) {
  auto lists = NewLists();
  auto images = Filled(*lists, u"a", 2);
  auto image = images->get_Item(Variant(1));
  auto list = lists->get_Item(Variant(1));
  lists->Clear();
  EXPECT_EQ(lists->get_Count(), 0);
  EXPECT_EQ(images->get_Count(), 0);
  EXPECT_RAISES(list->get_Key(), 1962, "Invalid Key", "ImageLists.Key");
  EXPECT_RAISES(image->get_Key(), 1962, kBadKeyOrIndex, "Images.Index");
  // The collection is as new.
  EXPECT_TRUE(lists->Add(8, 8, u"a"));
}

TEST(ImageList, ImagesTakeKeysTagsAndPositions) {
  auto lists = NewLists();
  auto images = Filled(*lists, u"L", 3);
  ASSERT_EQ(images->get_Count(), 3);
  for (int i = 1; i <= 3; ++i) {
    const String n = FromUtf8(std::to_string(i));
    EXPECT_EQ(images->IsKeyAssigned(u"k" + n), i);
    auto image = images->get_Item(Variant(u"k" + n));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->get_Index(), i);
    EXPECT_EQ(image->get_Key(), u"k" + n);
    EXPECT_EQ(image->get_Tag(), u"t" + n);
    EXPECT_EQ(image->get_Width(), 4);
    EXPECT_EQ(image->get_Height(), 3);
    EXPECT_TRUE(SlotIs(*images, i, Marked(static_cast<uint32_t>(i))));
  }
  EXPECT_EQ(images->IsKeyAssigned(u"K1"), 0);
  EXPECT_EQ(images->get_Item(Variant(u"K1")), nullptr);
  EXPECT_EQ(images->get_Item(Variant(0)), nullptr);
  EXPECT_EQ(images->get_Item(Variant(4)), nullptr);

  // A key in use, and the limit, raise before anything changes.
  EXPECT_RAISES(AddPainted(*images, Marked(9), u"k2"), 1963, kDuplicated, "Images.Add");
  EXPECT_EQ(images->get_Count(), 3);

  // Tags and keys change through the handle.
  auto second = images->get_Item(Variant(2));
  second->put_Tag(u"novo");
  EXPECT_EQ(images->get_Item(Variant(u"k2"))->get_Tag(), u"novo");
  second->put_Key(u"dois");
  EXPECT_EQ(images->IsKeyAssigned(u"dois"), 2);
  EXPECT_EQ(images->IsKeyAssigned(u"k2"), 0);
  EXPECT_RAISES(second->put_Key(u"k3"), 1963, kDuplicated, "Images.Key");
  EXPECT_EQ(second->get_Key(), u"dois");
}

TEST(ImageList, InsertingMovesLaterImagesOn) {
  auto lists = NewLists();
  auto images = Filled(*lists, u"L", 3);
  auto third = images->get_Item(Variant(3));
  // Before position 2, then before the image keyed "k1", then one past the end.
  auto x = AddPainted(*images, Marked(20), u"x", u"", Variant(2));
  ASSERT_TRUE(x);
  EXPECT_EQ(x->get_Index(), 2);
  auto y = AddPainted(*images, Marked(21), u"y", u"", Variant(u"k1"));
  ASSERT_TRUE(y);
  EXPECT_EQ(y->get_Index(), 1);
  auto z = AddPainted(*images, Marked(22), u"z", u"", Variant(6));
  ASSERT_TRUE(z);
  EXPECT_EQ(z->get_Index(), 6);
  // Order now: y k1 x k2 k3 z, pixels and keys alike; handles follow.
  const uint32_t marks[] = {21, 1, 20, 2, 3, 22};
  const char16_t* keys[] = {u"y", u"k1", u"x", u"k2", u"k3", u"z"};
  ASSERT_EQ(images->get_Count(), 6);
  for (int i = 1; i <= 6; ++i) {
    EXPECT_TRUE(SlotIs(*images, i, Marked(marks[i - 1]))) << i;
    EXPECT_EQ(images->IsKeyAssigned(keys[i - 1]), i);
  }
  EXPECT_EQ(third->get_Index(), 5);
  // A place that does not exist gives no image and no error.
  EXPECT_EQ(AddPainted(*images, Marked(30), u"", u"", Variant(0)), nullptr);
  EXPECT_EQ(AddPainted(*images, Marked(30), u"", u"", Variant(8)), nullptr);
  EXPECT_EQ(AddPainted(*images, Marked(30), u"", u"", Variant(u"nada")), nullptr);
  EXPECT_EQ(images->get_Count(), 6);
}

TEST(ImageList, TheSurfaceGrowsAndKeepsItsImages) {
  auto lists = NewLists();
  auto images = lists->Add(5, 4, u"L", 1)->get_Images();
  for (int i = 1; i <= 40; ++i) AddPainted(*images, Marked(static_cast<uint32_t>(i)));
  EXPECT_EQ(images->get_Count(), 40);
  EXPECT_GE(images->Capacity(), 40);
  EXPECT_EQ(images->Surface()->get_Width(), images->Capacity() * 5);
  for (int i = 1; i <= 40; ++i) EXPECT_TRUE(SlotIs(*images, i, Marked(static_cast<uint32_t>(i))));
}

TEST(ImageList, ImagesStopAtTheLimit) {
  auto lists = NewLists();
  auto images = lists->Add(100, 100, u"L", 1)->get_Images();
  for (int i = 1; i <= 102; ++i) {
    ASSERT_TRUE(AddPainted(*images, Marked(static_cast<uint32_t>(i)))) << i;
  }
  EXPECT_EQ(images->Capacity(), 102);
  EXPECT_RAISES(AddPainted(*images, Marked(0)), 1973, kTooMany, "Images.Add");
  EXPECT_EQ(images->get_Count(), 102);
  EXPECT_TRUE(SlotIs(*images, 102, Marked(102)));
}

TEST(ImageList, RemovingMovesLaterImagesBack) {
  auto lists = NewLists();
  auto images = Filled(*lists, u"L", 4);
  auto fourth = images->get_Item(Variant(4));
  auto second = images->get_Item(Variant(2));
  images->Remove(Variant(u"k2"));
  EXPECT_EQ(images->get_Count(), 3);
  EXPECT_TRUE(SlotIs(*images, 1, Marked(1)));
  EXPECT_TRUE(SlotIs(*images, 2, Marked(3)));
  EXPECT_TRUE(SlotIs(*images, 3, Marked(4)));
  // The freed slot at the end is empty again.
  EXPECT_TRUE(SlotIs(*images, 4, [](int, int) { return 0u; }));
  EXPECT_EQ(fourth->get_Index(), 3);
  EXPECT_EQ(images->IsKeyAssigned(u"k4"), 3);
  EXPECT_RAISES(second->get_Index(), 1962, kBadKeyOrIndex, "Images.Index");
  EXPECT_RAISES(second->get_Tag(), 1962, kBadKeyOrIndex, "Images.Index");
  EXPECT_RAISES(second->put_Key(u"q"), 1962, kBadKeyOrIndex, "Images.Index");
  EXPECT_RAISES(second->get_Width(), 1962, kBadKeyOrIndex, "Images.Index");
  // An index that names nothing does nothing.
  images->Remove(Variant(0));
  images->Remove(Variant(u"k2"));
  EXPECT_EQ(images->get_Count(), 3);
}

TEST(ImageList, RemovingTheLastImageLeavesAUsableList) {
  auto lists = NewLists();
  auto images = Filled(*lists, u"L", 1);
  images->Remove(Variant(1));
  EXPECT_EQ(images->get_Count(), 0);
  EXPECT_EQ(images->IsKeyAssigned(u"k1"), 0);
  auto again = AddPainted(*images, Marked(7), u"k1");
  ASSERT_TRUE(again);
  EXPECT_EQ(again->get_Index(), 1);
  EXPECT_TRUE(SlotIs(*images, 1, Marked(7)));
  // Cleared, the list keeps its size and takes images again.
  images->Clear();
  EXPECT_EQ(images->get_Count(), 0);
  EXPECT_EQ(images->Capacity(), 0);
  ASSERT_TRUE(AddPainted(*images, Marked(8)));
  EXPECT_TRUE(SlotIs(*images, 1, Marked(8)));
}

TEST(ImageList, AnImageMovesWithItsIndex) {
  auto lists = NewLists();
  auto images = Filled(*lists, u"L", 4);
  auto first = images->get_Item(Variant(1));
  first->put_Index(3);
  const uint32_t order1[] = {2, 3, 1, 4};
  for (int i = 1; i <= 4; ++i) EXPECT_TRUE(SlotIs(*images, i, Marked(order1[i - 1]))) << i;
  EXPECT_EQ(first->get_Index(), 3);
  EXPECT_EQ(images->IsKeyAssigned(u"k1"), 3);
  EXPECT_EQ(images->IsKeyAssigned(u"k2"), 1);
  images->get_Item(Variant(u"k4"))->put_Index(1);
  const uint32_t order2[] = {4, 2, 3, 1};
  for (int i = 1; i <= 4; ++i) EXPECT_TRUE(SlotIs(*images, i, Marked(order2[i - 1]))) << i;
  EXPECT_EQ(images->IsKeyAssigned(u"k4"), 1);
  EXPECT_EQ(images->IsKeyAssigned(u"k1"), 4);
  EXPECT_RAISES(first->put_Index(0), 1962, kBadKeyOrIndex, "Images.Index");
  EXPECT_RAISES(first->put_Index(5), 1962, kBadKeyOrIndex, "Images.Index");
}

TEST(ImageList, PicturesAreFittedToTheirSlots) {
  auto lists = NewLists();
  auto images = lists->Add(10, 10, u"L")->get_Images();
  // Twice the slot's width: halved, keeping its shape, and centred.
  const auto wide = PngOf(20, 10, [](int, int) { return 0xFF0000FFu; });
  ASSERT_TRUE(images->AddImage_fromStream(wide, Variant::Missing(), u"", u"", 0, 0, 32, true));
  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < 10; ++x) {
      const bool inside = y >= 2 && y < 7;
      EXPECT_EQ(SlotPixel(*images, 1, x, y), inside ? 0xFF0000FFu : 0u) << x << "," << y;
    }
  }
  // Smaller than the slot: not enlarged, centred.
  const auto small = PngOf(4, 2, [](int, int) { return 0xFF00FF00u; });
  ASSERT_TRUE(images->AddImage_fromStream(small, Variant::Missing(), u"", u"", 0, 0, 32, true));
  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < 10; ++x) {
      const bool inside = x >= 3 && x < 7 && y >= 4 && y < 6;
      EXPECT_EQ(SlotPixel(*images, 2, x, y), inside ? 0xFF00FF00u : 0u) << x << "," << y;
    }
  }
  // Not scaled: at its own size from the top left, cut at the slot's edge.
  const auto big = PngOf(14, 12, Marked(5));
  ASSERT_TRUE(images->AddImage_fromStream(big, Variant::Missing(), u"", u"", 0, 0, 32, false));
  EXPECT_TRUE(SlotIs(*images, 3, Marked(5)));
  // What does not load gives no image, and no error.
  const std::vector<uint8_t> junk(100, 0x42);
  EXPECT_EQ(images->AddImage_fromStream(junk, Variant::Missing(), u"", u"", 0, 0, 32, true),
            nullptr);
  EXPECT_EQ(
      images->AddImage_fromFile(u"/nonexistent/x.png", Variant::Missing(), u"", u"", 32, true),
      nullptr);
  EXPECT_EQ(images->AddImage_fromHandle(0, Variant::Missing(), u"", u"", true), nullptr);
  EXPECT_EQ(images->AddImage_fromStdPicture(nullptr, Variant::Missing(), u"", u"", true), nullptr);
  EXPECT_EQ(images->AddImage_fromResource(Variant(101), Variant(u"PNG"), nullptr,
                                          Variant::Missing(), u"", u"", 0, 0, 32, true),
            nullptr);
  EXPECT_EQ(images->get_Count(), 3);
}

TEST(ImageList, AStreamPartAndAFileLoad) {
  auto lists = NewLists();
  auto images = lists->Add(6, 5, u"L")->get_Images();
  const auto png = PngOf(6, 5, Marked(3));
  std::vector<uint8_t> padded(7, 0xAA);
  padded.insert(padded.end(), png.begin(), png.end());
  padded.insert(padded.end(), 9, 0xBB);
  ASSERT_TRUE(images->AddImage_fromStream(padded, Variant::Missing(), u"s", u"", 7,
                                          static_cast<int32_t>(png.size()), 32, true));
  EXPECT_TRUE(SlotIs(*images, 1, Marked(3)));

  const std::string file = ::testing::TempDir() + "image_list_file.png";
  {
    c32bppDIB s;
    Paint(s, 6, 5, Marked(4));
    ASSERT_TRUE(s.SaveToFile_PNG(FromUtf8(file)));
  }
  ASSERT_TRUE(images->AddImage_fromFile(FromUtf8(file), Variant::Missing(), u"f", u"", 32, true));
  EXPECT_TRUE(SlotIs(*images, 2, Marked(4)));
  std::remove(file.c_str());
}

TEST(ImageList, APictureObjectAndAHandleLoad) {
  auto lists = NewLists();
  auto images = lists->Add(5, 3, u"L")->get_Images();
  std::vector<uint32_t> pixels(15);
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 5; ++x) pixels[static_cast<size_t>(y * 5 + x)] = Marked(6)(x, y);
  }
  auto picture = server::StdPicture::FromPixels(5, 3, pixels);
  ASSERT_TRUE(picture);
  ASSERT_TRUE(images->AddImage_fromStdPicture(picture, Variant::Missing(), u"pic", u"", true));
  EXPECT_TRUE(SlotIs(*images, 1, Marked(6)));
  // An icon taken out of the list comes back in by its handle.
  int32_t depth = 0;
  const int32_t icon = images->ExtractIcon(Variant(1), depth);
  ASSERT_NE(icon, 0);
  ASSERT_TRUE(images->AddImage_fromHandle(icon, Variant::Missing(), u"icon", u"", true));
  EXPECT_TRUE(SlotIs(*images, 2, Marked(6)));
  DeleteObject(reinterpret_cast<HGDIOBJ>(static_cast<uintptr_t>(static_cast<uint32_t>(icon))));
}

TEST(ImageList, EveryErrorHasItsText) {
  struct Case {
    int32_t number;
    const char* text;
  } cases[] = {
      {1962, kBadKeyOrIndex},
      {1963, kDuplicated},
      {1973, kTooMany},
      {1974, "Invalid ImageList Version. Update your ImageList classes/control"},
      {1975, "Failed to Import external image list"},
      {1976, "Error exporting image list. Ensure enough disk space and valid write-permissions"},
      {1977, "Low system resource preventing appending additional images"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ToUtf8(ListErrors::Text(c.number)), c.text);
    const Raised r = RaisedBy([&] { ListErrors::Raise(c.number, u"Somewhere"); });
    EXPECT_EQ(r.number, c.number);
    EXPECT_EQ(r.description, c.text);
    EXPECT_EQ(r.source, "Somewhere");
    // The error object holds it too, for callers in skip-and-continue mode.
    EXPECT_EQ(Err().Number(), c.number);
    Err().Clear();
  }
}

TEST(ImageList, LowResourcesRaise1977And1976) {
  auto lists = NewLists();
  auto images = lists->Add(4, 3, u"L", 1)->get_Images();
  AddPainted(*images, Marked(1));
  cListImages::SimulateLowResourcesForTesting(true);
  const char* low = "Low system resource preventing appending additional images";
  // The surface must grow for a second image.
  EXPECT_RAISES(AddPainted(*images, Marked(2)), 1977, low, "Images");
  EXPECT_RAISES(lists->Add(4, 3, u"M"), 1977, low, "Images");
  std::vector<uint8_t> stream;
  EXPECT_RAISES(lists->ExportImageList(Variant(1), stream), 1976,
                "Error exporting image list. Ensure enough disk space and valid write-permissions",
                "ImageLists.ExportImageList");
  cListImages::SimulateLowResourcesForTesting(false);
  EXPECT_TRUE(stream.empty());
  EXPECT_EQ(images->get_Count(), 1);
  EXPECT_EQ(lists->get_Count(), 1);
  EXPECT_TRUE(SlotIs(*images, 1, Marked(1)));
}

// ---------------------------------------------------------------- late bound

TEST(ImageList, ThroughTheDispatcher) {
  auto lists = NewLists();
  Err().Clear();
  Variant made = server::Call(*lists, "Add", 8, 8, String(u"Icons"));
  ASSERT_TRUE(made.IsObject()) << ToUtf8(Err().Description());
  EXPECT_EQ(server::Call(*lists, "Count").ToLong(), 1);
  EXPECT_EQ(server::Call(*lists, "IsKeyAssigned", String(u"Icons")).ToLong(), 1);
  EXPECT_EQ(server::Call(*lists, "MaxImages", 100, 100).ToLong(), 102);

  // The errors reach the error object with their number, text and source.
  struct Case {
    const char* member;
    std::vector<Variant> args;
    int32_t number;
    const char* text;
    const char* source;
  } cases[] = {
      {"Remove", {Variant(0)}, 1962, kBadKeyOrIndex, "ImageLists.Remove"},
      {"Remove", {Variant(u"nada")}, 1962, kBadKeyOrIndex, "ImageLists.Remove"},
      {"Add", {Variant(8), Variant(8), Variant(u"Icons")}, 1963, kDuplicated, "ImageLists.Add"},
      {"Add", {Variant(1025), Variant(1000), Variant(u"x")}, 1973, kTooMany, "ImageLists.Add"},
      {"ImportImageList",
       {Variant(std::vector<uint8_t>(10, 0)), Variant(u"")},
       1975,
       "Failed to Import external image list",
       "ImageLists.ImportImageList"},
  };
  for (auto& c : cases) {
    Err().Clear();
    Variant result;
    EXPECT_FALSE(lists->Invoke(c.member, server::InvokeKind::Method, c.args, &result));
    EXPECT_EQ(Err().Number(), c.number) << c.member;
    EXPECT_EQ(ToUtf8(Err().Description()), c.text) << c.member;
    EXPECT_EQ(ToUtf8(Err().Source()), c.source) << c.member;
  }
  Err().Clear();

  // Items are objects of their own classes, reached by Item.
  Variant list = server::Call(*lists, "Item", String(u"Icons"));
  auto* listObject = dynamic_cast<cImageList*>(list.ObjectRef()->get());
  ASSERT_NE(listObject, nullptr);
  EXPECT_EQ(server::Call(*listObject, "Width").ToLong(), 8);
  Variant images = server::Call(*listObject, "Images");
  auto* imagesObject = dynamic_cast<cListImages*>(images.ObjectRef()->get());
  ASSERT_NE(imagesObject, nullptr);
  // An image from a stream with the optional arguments left out.
  Variant added = server::Call(*imagesObject, "AddImage_fromStream", PngOf(8, 8, Marked(1)));
  ASSERT_TRUE(added.IsObject()) << ToUtf8(Err().Description());
  auto* image = dynamic_cast<cListImage*>(added.ObjectRef()->get());
  ASSERT_NE(image, nullptr);
  std::vector<Variant> newKey = {Variant(u"um")};
  EXPECT_TRUE(image->Invoke("Key", server::InvokeKind::PropertyPut, newKey, nullptr));
  EXPECT_EQ(imagesObject->IsKeyAssigned(u"um"), 1);
  EXPECT_EQ(server::Call(*imagesObject, "Count").ToLong(), 1);

  // By-reference results come back: the stream, and an icon's depth.
  Variant stream(std::vector<uint8_t>{});
  std::vector<Variant> exportArgs = {Variant(1), Variant::ByRef(&stream)};
  ASSERT_TRUE(lists->Invoke("ExportImageList", server::InvokeKind::Method, exportArgs, nullptr));
  ASSERT_NE(stream.Array(), nullptr);
  EXPECT_GT(stream.Array()->Bytes().size(), 20u);
  Variant depth(0);
  std::vector<Variant> iconArgs = {Variant(1), Variant::ByRef(&depth)};
  Variant icon;
  ASSERT_TRUE(imagesObject->Invoke("ExtractIcon", server::InvokeKind::Method, iconArgs, &icon));
  EXPECT_EQ(depth.ToLong(), 32);
  EXPECT_NE(icon.ToLong(), 0);
  DeleteObject(
      reinterpret_cast<HGDIOBJ>(static_cast<uintptr_t>(static_cast<uint32_t>(icon.ToLong()))));

  // Render's index error through the dispatcher.
  Err().Clear();
  std::vector<Variant> renderArgs = {Variant(5), Variant(0), Variant(0), Variant(0)};
  EXPECT_FALSE(imagesObject->Invoke("Render", server::InvokeKind::Method, renderArgs, nullptr));
  EXPECT_EQ(Err().Number(), 1962);
  EXPECT_EQ(ToUtf8(Err().Source()), "Images.Render");

  // A stale image handle, late bound.
  imagesObject->Clear();
  Err().Clear();
  Variant key;
  EXPECT_FALSE(image->Invoke("Key", server::InvokeKind::PropertyGet, {}, &key));
  EXPECT_EQ(Err().Number(), 1962);
  EXPECT_EQ(ToUtf8(Err().Source()), "Images.Index");
  Err().Clear();
}

TEST(ImageList, TheDoorServesOnlyLiveItems) {
  auto lists = NewLists();
  auto images = Filled(*lists, u"L", 2);
  IItemData door(images);
  auto second = images->get_Item(Variant(2));
  EXPECT_EQ(door.get_ClassDataLong(dnImageIndex, second->ID()), 2);
  EXPECT_EQ(door.get_ClassDataString(dnImageKey, second->ID()), u"k2");
  door.put_ClassDataString(dnImageTag, second->ID(), u"via door");
  EXPECT_EQ(second->get_Tag(), u"via door");
  EXPECT_RAISES(door.get_ClassDataLong(dnImageIndex, 999), 1962, kBadKeyOrIndex, "Images.Index");
  // A door to nothing, as the factory makes one, serves nothing.
  IItemData nowhere;
  EXPECT_RAISES(nowhere.get_ClassDataString(dnListKey, 1), 1962, "Invalid Key", "ImageLists.Key");
  EXPECT_RAISES(nowhere.get_ClassDataObject(dnListImages, 1), 1962, "Invalid Index",
                "ImageLists.Index");
  // The list door serves the list's images object.
  IItemData listDoor(lists);
  auto list = lists->get_Item(Variant(1));
  EXPECT_EQ(listDoor.get_ClassDataObject(dnListImages, list->ID()), images);
  // Late bound too.
  Variant v = server::Call(door, "ClassDataLong", static_cast<int32_t>(dnImageIndex), second->ID());
  EXPECT_EQ(v.ToLong(), 2);
}

TEST(ImageList, TheClassFactoryMakesEveryClass) {
  cImageLists::Register();
  cImageList::Register();
  cListImages::Register();
  cListImage::Register();
  IItemData::Register();
  for (const char* name : {"cImageLists", "cImageList", "cListImages", "cListImage", "IItemData"}) {
    auto made = server::Registry::Instance().Create(name);
    ASSERT_TRUE(made) << name;
    EXPECT_EQ(ToUtf8(made->ClassName()), name);
    EXPECT_TRUE(server::Registry::Instance().IsImplemented(name)) << name;
  }
  auto lists = std::dynamic_pointer_cast<cImageLists>(
      server::Registry::Instance().Create("Vantor2014.cImageLists"));
  ASSERT_TRUE(lists);
  EXPECT_TRUE(lists->Add(8, 8, u"a"));
  // A handle made on its own leads nowhere.
  auto orphan =
      std::dynamic_pointer_cast<cListImage>(server::Registry::Instance().Create("cListImage"));
  EXPECT_RAISES(orphan->get_Index(), 1962, kBadKeyOrIndex, "Images.Index");
  // A list made on its own has no size and takes no image.
  auto loose =
      std::dynamic_pointer_cast<cListImages>(server::Registry::Instance().Create("cListImages"));
  EXPECT_EQ(loose->get_MaxImages(), 0);
  c32bppDIB picture;
  Paint(picture, 4, 4, Marked(1));
  EXPECT_RAISES(loose->AddImage(picture, Variant::Missing(), u"", u"", true), 1973, kTooMany,
                "Images.Add");
}

}  // namespace
}  // namespace vantor::imaging::test
