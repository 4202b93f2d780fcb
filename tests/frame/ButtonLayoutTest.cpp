// The button's placement of caption and picture, and the access key its
// caption announces: pure functions, so tables of cases.
#include "frame/ButtonLayout.h"

#include <gtest/gtest.h>

#include <string>

#include "frame/CaptionAccessKey.h"

namespace vantor::frame {
namespace {

std::string S(const RECT& r) {
  return "(" + std::to_string(r.left) + ", " + std::to_string(r.top) + ", " +
         std::to_string(r.right) + ", " + std::to_string(r.bottom) + ")";
}

// A 100 x 60 button, a caption measured at 30 x 13 and a 16 x 16 picture.
// Worked by hand from the rules: sides leave 2 pixels between picture and
// caption, stacked placements none, and every half truncates.
TEST(ButtonLayout, PlacesPictureAndCaptionForEveryAlignment) {
  struct Case {
    int32_t alignment;
    RECT caption, picture;
  };
  const Case cases[] = {
      {Picture_BehindText, {35, 23, 65, 36}, {42, 22, 58, 38}},
      {Picture_LeftEdge, {44, 23, 74, 36}, {4, 22, 20, 38}},
      {Picture_LeftOfCaption, {44, 23, 74, 36}, {26, 22, 42, 38}},
      {Picture_RightEdge, {26, 23, 56, 36}, {80, 22, 96, 38}},
      {Picture_RightOfCaption, {26, 23, 56, 36}, {58, 22, 74, 38}},
      {Picture_TopEdge, {35, 31, 65, 44}, {42, 4, 58, 20}},
      {Picture_TopOfCaption, {35, 31, 65, 44}, {42, 15, 58, 31}},
      {Picture_BottomEdge, {35, 16, 65, 29}, {42, 40, 58, 56}},
      {Picture_BottomOfCaption, {35, 15, 65, 28}, {42, 28, 58, 44}},
  };
  const RECT measured{0, 0, 30, 13};
  for (const Case& c : cases) {
    const auto r = ButtonLayout::Compute(100, 60, &measured, true, 16, 16, c.alignment);
    EXPECT_EQ(S(r.caption), S(c.caption)) << "alignment " << c.alignment;
    EXPECT_EQ(S(r.picture), S(c.picture)) << "alignment " << c.alignment;
  }
}

TEST(ButtonLayout, WithoutCaptionOrPicture) {
  const RECT measured{0, 0, 31, 13};
  // No picture: the caption alone, centred, odd halves to the left and top.
  auto r = ButtonLayout::Compute(100, 40, &measured, false, 16, 16, Picture_LeftOfCaption);
  EXPECT_EQ(S(r.caption), S(RECT{34, 13, 65, 26}));
  EXPECT_EQ(S(r.picture), S(RECT{}));
  // No caption: the "of caption" placements centre the picture both ways,
  // the edge placements keep their margin.
  for (int32_t a : {Picture_LeftOfCaption, Picture_RightOfCaption, Picture_TopOfCaption,
                    Picture_BottomOfCaption, Picture_BehindText}) {
    r = ButtonLayout::Compute(100, 40, nullptr, true, 16, 16, a);
    EXPECT_EQ(S(r.picture), S(RECT{42, 12, 58, 28})) << a;
  }
  EXPECT_EQ(S(ButtonLayout::Compute(100, 40, nullptr, true, 16, 16, Picture_LeftEdge).picture),
            S(RECT{4, 12, 20, 28}));
  EXPECT_EQ(S(ButtonLayout::Compute(100, 40, nullptr, true, 16, 16, Picture_BottomEdge).picture),
            S(RECT{42, 20, 58, 36}));
  // A non-square box keeps its width and height as given.
  EXPECT_EQ(S(ButtonLayout::Compute(100, 40, nullptr, true, 24, 8, Picture_BehindText).picture),
            S(RECT{38, 16, 62, 24}));
}

TEST(CaptionAccessKey, TheLetterAfterTheLastSingleAmpersand) {
  const struct {
    const char16_t* caption;
    const char16_t* key;
  } cases[] = {
      {u"&Salvar", u"s"},
      {u"Sa&lvar", u"l"},
      {u"&&Dados e &Relatórios", u"r"},  // the doubled one is passed over
      {u"Tom && Jerry", u""},
      {u"a&&b", u""},
      {u"&", u""},  // one ampersand alone announces nothing
      {u"", u""},
      {u"A", u""},
      {u"&&", u"&"},   // found at the first position: the next character counts
      {u"&A&B", u"b"},  // the last single one wins
      {u"Fim&", u""},  // nothing after it: the search starts one before the end
      {u"&Ção", u"ç"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(CaptionAccessKey::Of(c.caption), String(c.key)) << ToUtf8(c.caption);
}

}  // namespace
}  // namespace vantor::frame
