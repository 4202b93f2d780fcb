// Every colour of the palette, written here a theme at a time (the library
// keeps it a role at a time), so that a swapped row or column shows.
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <sstream>
#include <vector>

#include "frame/ThemePalette.h"

namespace vantor::frame {
namespace {

struct ThemeRow {
  int32_t theme;
  const char* colors;  // roles 0 to 23, hexadecimal as stored
};

const ThemeRow kRows[] = {
    {0,  // Office Blue
     "000000 80000011 000000 000000 E2A981 C8D0D4 78A8C1 78A8C1 "
     "FFEFE3 FFE3CE FFD1AE FFDABE D8E9EC D8E9EC D8E9EC D8E9EC "
     "A4D6FF 79C0FF 42AEFE 70D8FE DBFDFF BBF2FF 49D3FF 92E6FF"},
    {1,  // Office Silver
     "000000 80000011 000000 000000 808080 C8D0D4 78A8C1 78A8C1 "
     "FFFFFF E0E0E0 C0C0C0 C0C0C0 D8E9EC D8E9EC D8E9EC D8E9EC "
     "A4D6FF 79C0FF 42AEFE 70D8FE DBFDFF BBF2FF 49D3FF 92E6FF"},
    {2,  // Windows 8
     "000000 80000011 000000 000000 B5ACA5 D9D9D9 E59D56 EAB47E "
     "FFFFFF E5E5E5 E5E5E5 E5E5E5 EFEFEF EFEFEF EFEFEF EFEFEF "
     "FBF0DD FCE0C4 FCE0C4 FCE0C4 FFFFFF FCEDDD FCEDDD FCEDDD"},
    {3,  // Windows 8 Green
     "FFFFFF 80000011 FFFFFF FFFFFF 4BB062 C8D0D4 404040 00C000 "
     "4BB062 4BB062 4BB062 4BB062 D8E9EC D8E9EC D8E9EC D8E9EC "
     "008000 008000 008000 008000 00C000 00C000 00C000 00C000"},
    {4,  // Windows 8 Red
     "FFFFFF 80000011 FFFFFF FFFFFF 5050C7 C8D0D4 3D3D99 4343E0 "
     "5050C7 5050C7 5050C7 5050C7 C8D0D4 C8D0D4 C8D0D4 C8D0D4 "
     "3D3D99 3D3D99 3D3D99 3D3D99 4343E0 4343E0 4343E0 4343E0"},
    {5,  // Windows 8 Orange
     "FFFFFF 80000011 FFFFFF FFFFFF 119CF3 C8D0D4 0040C0 80C0FF "
     "119CF3 119CF3 119CF3 119CF3 D8E9EC D8E9EC D8E9EC D8E9EC "
     "0040C0 0040C0 0040C0 0040C0 80C0FF 80C0FF 80C0FF 80C0FF"},
    {6,  // Windows 8 Black
     "FFFFFF 80000011 FFFFFF FFFFFF 000000 C8D0D4 404040 808080 "
     "000000 000000 000000 000000 C8D0D4 C8D0D4 C8D0D4 C8D0D4 "
     "404040 404040 404040 404040 808080 808080 808080 808080"},
};

std::vector<OLE_COLOR> Parse(const char* text) {
  std::istringstream in(text);
  std::vector<OLE_COLOR> out;
  uint32_t value = 0;
  while (in >> std::hex >> value) out.push_back(value);
  return out;
}

void PrintTo(const ThemeRow& row, std::ostream* out) {
  *out << "theme " << row.theme;
}

class ThemePaletteRow : public ::testing::TestWithParam<ThemeRow> {};

TEST_P(ThemePaletteRow, EveryRoleHasItsColour) {
  const ThemeRow& row = GetParam();
  const std::vector<OLE_COLOR> expected = Parse(row.colors);
  ASSERT_EQ(expected.size(), 24u);
  for (int32_t role = 0; role < 24; ++role) {
    EXPECT_EQ(ThemePalette::Color(row.theme, role), expected[static_cast<size_t>(role)])
        << "theme " << row.theme << " role " << role;
  }
}

INSTANTIATE_TEST_SUITE_P(AllThemes, ThemePaletteRow, ::testing::ValuesIn(kRows));

TEST(ThemePalette, Windows8IsTheButtonsDefaultColours) {
  // The defaults a new button reads from an empty bag, in role order.
  const OLE_COLOR defaults[24] = {0,        0x80000011, 0,        0,        0xB5ACA5, 0xD9D9D9,
                                  0xE59D56, 0xEAB47E,   0xFFFFFF, 0xE5E5E5, 0xE5E5E5, 0xE5E5E5,
                                  0xEFEFEF, 0xEFEFEF,   0xEFEFEF, 0xEFEFEF, 0xFBF0DD, 0xFCE0C4,
                                  0xFCE0C4, 0xFCE0C4,   0xFFFFFF, 0xFCEDDD, 0xFCEDDD, 0xFCEDDD};
  for (int32_t role = 0; role < 24; ++role) {
    EXPECT_EQ(ThemePalette::Color(Windows_8, role), defaults[role]) << role;
  }
}

TEST(ThemePalette, ThemesOrRolesOutOfRangeAreBlack) {
  for (int32_t theme : {7, 8, 100, -1, INT32_MIN, INT32_MAX}) {
    for (int32_t role = 0; role < 24; ++role) EXPECT_EQ(ThemePalette::Color(theme, role), 0u);
  }
  for (int32_t role : {24, 25, -1, INT32_MIN, INT32_MAX}) {
    for (int32_t theme = 0; theme < 7; ++theme) EXPECT_EQ(ThemePalette::Color(theme, role), 0u);
  }
}

TEST(ThemePalette, BlackThemeFillsBlackWritesWhiteAndKeepsTheSystemGreyText) {
  for (int32_t role = Role_GradientColor1; role <= Role_GradientColor4; ++role) {
    EXPECT_EQ(ThemePalette::Color(Windows_8_Black, role), 0u);
  }
  for (auto role : {Role_ForeColor, Role_ForeColorDown, Role_ForeColorOver}) {
    EXPECT_EQ(ThemePalette::Color(Windows_8_Black, role), 0xFFFFFFu);
  }
  EXPECT_EQ(ThemePalette::Color(Windows_8_Black, Role_ForeColorDisabled), 0x80000011u);
}

TEST(ThemePalette, OfficeThemesAreRoundAndFourColouredTheOthersSquareAndTwo) {
  const struct {
    int32_t theme;
    ENUM_BUTTON_SHAPES shape;
    ENUM_GRADIENT_COLORS colors;
  } cases[] = {
      {Office_Blue, Cut_None, Four_Colors},
      {Office_Silver, Cut_None, Four_Colors},
      {Windows_8, Cut_Sides, Two_Colors},
      {Windows_8_Green, Cut_Sides, Two_Colors},
      {Windows_8_Red, Cut_Sides, Two_Colors},
      {Windows_8_Orange, Cut_Sides, Two_Colors},
      {Windows_8_Black, Cut_Sides, Two_Colors},
      {7, Cut_Sides, Two_Colors},
      {-1, Cut_Sides, Two_Colors},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ThemePalette::ButtonShapeOf(c.theme), c.shape) << c.theme;
    EXPECT_EQ(ThemePalette::GradientColorsOf(c.theme), c.colors) << c.theme;
  }
}

}  // namespace
}  // namespace vantor::frame
