// The image-list control: its lists saved to a property bag as "Count" and
// "Img1", "Img2"..., read back equal (through the bag's text form too), with
// a bad entry costing only itself; its members late bound and its class made
// by name.
#include <gtest/gtest.h>

#include "imaging/USImageList.h"
#include "server/Registry.h"
#include "tests/imaging/ImageListTestSupport.h"

namespace vantor::imaging::test {
namespace {

// A control holding three lists of different sizes, keys and contents.
std::shared_ptr<USImageList> Stocked() {
  auto control = std::make_shared<USImageList>();
  control->InitNew();
  auto lists = control->get_ImageLists();
  auto small = lists->Add(8, 8, u"Pequenos", 4)->get_Images();
  for (int i = 1; i <= 6; ++i) {
    AddPainted(*small, Marked(static_cast<uint32_t>(i)), u"p" + FromUtf8(std::to_string(i)),
               i == 3 ? u"três" : u"");
  }
  auto big = lists->Add(20, 12, u"Grandes")->get_Images();
  AddPainted(
      *big, [](int x, int y) { return Pre(0x10C0A0, static_cast<uint32_t>(x * 12 + y)); }, u"g");
  big->put_DelayLoaded(true);
  lists->Add(5, 5, u"Vazia");
  return control;
}

// Through PNG a colour of partial alpha may come back one lower (the writer
// divides by alpha and the reader multiplies, both truncating).
void ExpectSameControls(USImageList& a, USImageList& b, bool throughPng = false) {
  auto la = a.get_ImageLists();
  auto lb = b.get_ImageLists();
  ASSERT_EQ(la->get_Count(), lb->get_Count());
  for (int n = 1; n <= la->get_Count(); ++n) {
    EXPECT_EQ(la->get_Item(Variant(n))->get_Key(), lb->get_Item(Variant(n))->get_Key());
    auto ia = la->ImagesAt(n);
    auto ib = lb->ImagesAt(n);
    ASSERT_EQ(ia->get_Count(), ib->get_Count());
    EXPECT_EQ(ia->ImageWidth(), ib->ImageWidth());
    EXPECT_EQ(ia->ImageHeight(), ib->ImageHeight());
    EXPECT_EQ(ia->get_DelayLoaded(), ib->get_DelayLoaded());
    for (int i = 1; i <= ia->get_Count(); ++i) {
      EXPECT_EQ(ia->get_Item(Variant(i))->get_Key(), ib->get_Item(Variant(i))->get_Key());
      EXPECT_EQ(ia->get_Item(Variant(i))->get_Tag(), ib->get_Item(Variant(i))->get_Tag());
      for (int y = 0; y < ia->ImageHeight(); ++y) {
        for (int x = 0; x < ia->ImageWidth(); ++x) {
          const uint32_t pa = SlotPixel(*ia, i, x, y), pb = SlotPixel(*ib, i, x, y);
          const uint32_t alpha = pa >> 24;
          if (!throughPng || alpha == 0 || alpha == 255) {
            ASSERT_EQ(pa, pb);
          } else {
            ASSERT_EQ(pa >> 24, pb >> 24);
            ASSERT_LE((pa & 0xFF) - (pb & 0xFF), 1u);
            ASSERT_LE(((pa >> 8) & 0xFF) - ((pb >> 8) & 0xFF), 1u);
            ASSERT_LE(((pa >> 16) & 0xFF) - ((pb >> 16) & 0xFF), 1u);
          }
        }
      }
    }
  }
}

TEST(ImageListControl, SavesAndLoadsItsLists) {
  for (const bool compression : {true, false}) {
    auto control = Stocked();
    control->get_ImageLists()->put_Compression(compression);
    server::PropertyBag bag;
    control->Save(bag);
    EXPECT_EQ(bag.ReadProperty(u"Count").ToLong(), 3);
    EXPECT_EQ(bag.Names(), (std::vector<String>{u"Count", u"Img1", u"Img2", u"Img3"}));
    // Each entry is the list's exported stream.
    for (int n = 1; n <= 3; ++n) {
      std::vector<uint8_t> stream;
      control->get_ImageLists()->ExportImageList(Variant(n), stream);
      const Variant entry = bag.ReadProperty(u"Img" + FromUtf8(std::to_string(n)));
      const SafeArray* saved = entry.Array();
      ASSERT_NE(saved, nullptr);
      EXPECT_EQ(saved->Bytes(), stream);
    }

    auto loaded = std::make_shared<USImageList>();
    loaded->Load(bag);
    ExpectSameControls(*control, *loaded, compression);
    // Saved again with the same choice of compression (which is the host's,
    // not persisted), the bag is the same, through its text form too.
    loaded->get_ImageLists()->put_Compression(compression);
    server::PropertyBag again;
    loaded->Save(again);
    EXPECT_EQ(again.ToText(), bag.ToText());
    const auto fromText = server::PropertyBag::FromText(bag.ToText());
    ASSERT_TRUE(fromText);
    auto third = std::make_shared<USImageList>();
    third->Load(*fromText);
    ExpectSameControls(*loaded, *third);
  }
}

TEST(ImageListControl, AnEmptyControlSavesOnlyWhatDiffers) {
  auto control = std::make_shared<USImageList>();
  control->InitNew();
  server::PropertyBag bag;
  control->Save(bag);
  EXPECT_EQ(bag.Count(), 0u);  // Count 0 is the default
  auto loaded = std::make_shared<USImageList>();
  loaded->Load(bag);
  EXPECT_EQ(loaded->get_ImageLists()->get_Count(), 0);
}

TEST(ImageListControl, ABadEntryCostsOnlyItself) {
  auto control = Stocked();
  server::PropertyBag bag;
  control->Save(bag);
  bag.WriteProperty(u"Img2", Variant(std::vector<uint8_t>{1, 2, 3}));
  bag.WriteProperty(u"Count", Variant(int32_t{4}));  // one more than there is
  auto loaded = std::make_shared<USImageList>();
  loaded->Load(bag);
  auto lists = loaded->get_ImageLists();
  ASSERT_EQ(lists->get_Count(), 2);
  EXPECT_EQ(lists->get_Item(Variant(1))->get_Key(), u"Pequenos");
  EXPECT_EQ(lists->get_Item(Variant(2))->get_Key(), u"Vazia");
  EXPECT_EQ(Err().Number(), 0);
}

TEST(ImageListControl, LoadingReplacesWhatWasThere) {
  auto control = Stocked();
  server::PropertyBag bag;
  control->Save(bag);
  auto loaded = Stocked();
  loaded->get_ImageLists()->Add(3, 3, u"extra");
  loaded->Load(bag);
  ExpectSameControls(*control, *loaded, true);
}

TEST(ImageListControl, LateBoundAndMadeByName) {
  USImageList::Register();
  auto made = server::Registry::Instance().Create("USImageList");
  ASSERT_TRUE(made);
  Variant lists = server::Call(*made, "ImageLists");
  ASSERT_TRUE(lists.IsObject());
  auto* object = dynamic_cast<cImageLists*>(lists.ObjectRef()->get());
  ASSERT_NE(object, nullptr);
  EXPECT_TRUE(server::Call(*object, "Add", 4, 4, String(u"x")).IsObject());
  EXPECT_EQ(std::dynamic_pointer_cast<USImageList>(made)->get_ImageLists()->get_Count(), 1);
  Err().Clear();
}

}  // namespace
}  // namespace vantor::imaging::test
