#pragma once
// The colours a theme stands for. A theme is applied once: the control copies
// these into its own colour properties and draws from those ever after, so
// this table is read at assignment time only and never while painting.
#include <cstdint>

#include "frame/ThemeEnums.h"
#include "platform/WinTypes.h"

namespace vantor::frame {

class ThemePalette {
 public:
  static constexpr int32_t kThemeCount = 7;
  static constexpr int32_t kRoleCount = 24;

  // The stored OLE colour of a role in a theme; a theme or role out of range
  // gives 0, so a form saved by a newer version with a theme we do not know
  // turns black rather than failing to load.
  static OLE_COLOR Color(int32_t theme, int32_t role);

  // What a theme does to a button besides its colours: the Office themes are
  // rounded with four-colour fills, every other value (unknown ones too) is
  // square-ended and two-colour.
  static ENUM_BUTTON_SHAPES ButtonShapeOf(int32_t theme);
  static ENUM_GRADIENT_COLORS GradientColorsOf(int32_t theme);
};

}  // namespace vantor::frame
