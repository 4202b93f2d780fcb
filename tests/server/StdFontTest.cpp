#include "server/StdFont.h"

#include <gtest/gtest.h>

#include "platform/Gdi.h"
#include "runtime/Error.h"

namespace vantor::server {
namespace {

TEST(StdFont, HeightFromPointsAndDpi) {
  struct Case {
    int64_t raw;  // ten-thousandths of a point
    int dpi;
    int32_t height;
  };
  const Case cases[] = {
      {82500, 96, -11},  {90000, 96, -12},  {100000, 96, -13}, {80000, 96, -11},
      {120000, 96, -16}, {82500, 120, -14}, {100000, 72, -10}, {82500, 144, -17},
      {3750, 96, -1},    {3749, 96, 0},     {720000, 96, -96}, {97500, 96, -13},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(StdFont::HeightForSize(Currency::FromRaw(c.raw), c.dpi), c.height)
        << c.raw << " @ " << c.dpi;
  }
}

TEST(StdFont, DefaultsAndDefaultValue) {
  StdFont f;
  EXPECT_EQ(f.ClassName(), u"StdFont");
  EXPECT_EQ(f.get_Name(), u"MS Sans Serif");
  EXPECT_EQ(f.get_Size().Raw(), 82500);
  EXPECT_FALSE(f.get_Bold());
  EXPECT_EQ(f.get_Weight(), 400);
  EXPECT_EQ(f.get_Charset(), 0);
  Variant v;
  EXPECT_TRUE(f.DefaultValue(v));
  EXPECT_TRUE(v.SameAs(Variant(u"MS Sans Serif")));
}

TEST(StdFont, BoldAndWeightStayConsistent) {
  struct Case {
    int16_t weight;
    bool bold;
  };
  const Case cases[] = {{0, false},  {400, false}, {550, false}, {551, true},
                        {600, true}, {700, true},  {1000, true}};
  StdFont f;
  for (const auto& c : cases) {
    f.put_Weight(c.weight);
    EXPECT_EQ(f.get_Bold(), c.bold) << c.weight;
  }
  f.put_Bold(true);
  EXPECT_EQ(f.get_Weight(), 700);
  f.put_Bold(false);
  EXPECT_EQ(f.get_Weight(), 400);
}

TEST(StdFont, RefusesBadSizeAndWeight) {
  StdFont f;
  Err().Clear();
  f.put_Size(Currency::FromRaw(0));
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  EXPECT_EQ(f.get_Size().Raw(), 82500);
  Err().Clear();
  f.put_Weight(1001);
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  EXPECT_EQ(f.get_Weight(), 400);
  Err().Clear();
}

TEST(StdFont, CloneAndEquality) {
  StdFont a;
  a.put_Name(u"Tahoma");
  a.put_Underline(true);
  auto b = a.Clone();
  EXPECT_EQ(*b, a);
  b->put_Italic(true);
  EXPECT_FALSE(*b == a);
  EXPECT_FALSE(a.get_Italic());
  auto c = a.Clone();
  c->put_Charset(2);
  EXPECT_FALSE(*c == a);
}

TEST(StdFont, CreatesTheGdiFont) {
  StdFont f;
  f.put_Name(u"Arial");
  f.put_Size(Currency::FromRaw(100000));
  f.put_Bold(true);
  f.put_Italic(true);
  f.put_Charset(1);
  HFONT font = f.CreateHFont(96);
  ASSERT_NE(font, nullptr);
  LOGFONTW lf{};
  ASSERT_EQ(GetObjectW(font, sizeof lf, &lf), static_cast<int>(sizeof lf));
  EXPECT_EQ(lf.lfHeight, -13);
  EXPECT_EQ(lf.lfWeight, 700);
  EXPECT_EQ(lf.lfItalic, 1);
  EXPECT_EQ(lf.lfUnderline, 0);
  EXPECT_EQ(lf.lfCharSet, 1);
  EXPECT_EQ(String(lf.lfFaceName), u"Arial");
  DeleteObject(font);
  // Face names longer than LOGFONT holds are cut, never overrun.
  f.put_Name(String(40, u'N'));
  EXPECT_EQ(String(f.ToLogFont(120).lfFaceName), String(31, u'N'));
  EXPECT_EQ(f.ToLogFont(120).lfHeight, -17);
}

}  // namespace
}  // namespace vantor::server
