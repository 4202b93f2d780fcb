#pragma once
// The three enumerations a theme is made of, with the values the type library
// publishes, and the roles of the palette named after the USButton colour
// property each one fills.
#include <cstdint>

namespace vantor::frame {

enum ENUM_THEME : int32_t {
  Office_Blue = 0,
  Office_Silver = 1,
  Windows_8 = 2,
  Windows_8_Green = 3,
  Windows_8_Red = 4,
  Windows_8_Orange = 5,
  Windows_8_Black = 6,
};

enum ENUM_GRADIENT_COLORS : int32_t { Two_Colors = 0, Four_Colors = 1 };

enum ENUM_BUTTON_SHAPES : int32_t { Cut_None = 0, Cut_Left = 1, Cut_Right = 2, Cut_Sides = 3 };

// Other controls read the palette by these same numbers (a calendar's border
// is role 4 too), so the numbering is part of the contract, not an accident.
enum ThemeRole : int32_t {
  Role_ForeColor = 0,
  Role_ForeColorDisabled = 1,
  Role_ForeColorDown = 2,
  Role_ForeColorOver = 3,
  Role_BorderColor = 4,
  Role_BorderColorDisabled = 5,
  Role_BorderColorDown = 6,
  Role_BorderColorOver = 7,
  Role_GradientColor1 = 8,
  Role_GradientColor2 = 9,
  Role_GradientColor3 = 10,
  Role_GradientColor4 = 11,
  Role_GradientColorDisabled1 = 12,
  Role_GradientColorDisabled2 = 13,
  Role_GradientColorDisabled3 = 14,
  Role_GradientColorDisabled4 = 15,
  Role_GradientColorDown1 = 16,
  Role_GradientColorDown2 = 17,
  Role_GradientColorDown3 = 18,
  Role_GradientColorDown4 = 19,
  Role_GradientColorOver1 = 20,
  Role_GradientColorOver2 = 21,
  Role_GradientColorOver3 = 22,
  Role_GradientColorOver4 = 23,
};

}  // namespace vantor::frame
