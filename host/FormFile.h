#pragma once
// The form file: a form and its controls as readable UTF-8 text.
//
//   Vantor Form 1
//   Begin Form Form1
//     Caption = String "Cadastro"
//     ScaleMode = Integer 1
//     ClientWidth = Long 320
//     ClientHeight = Long 240
//     Begin USButton Button1
//       Left = Single 120
//       Top = Single 120
//       Width = Single 1200
//       Height = Single 375
//       TabIndex = Integer 0
//       TabStop = Boolean -1
//       Visible = Boolean -1
//       Enabled = Boolean -1
//       Begin Properties
//         Caption = String "Ok"
//       End
//     End
//   End
//
// Every key line is one line of the property bag's text form, so that a value
// reads the same wherever it stands. A control block holds the keys the form
// keeps for the control (its place in twips, relative to its container's
// client area, whatever the form's scale mode; tab order; visibility), one
// optional Properties block with what the control wrote into its bag, and
// the blocks of the controls it contains. Blank lines are ignored.
//
// Reading checks the whole text before anything is made of it: structure,
// names, keys and values. Whether a class exists is the host's business (the
// file does not know the registry), which is why each description keeps its
// line.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/String.h"
#include "server/ControlSite.h"
#include "server/PropertyBag.h"
#include "server/StdFont.h"

namespace vantor::host {

struct ControlDescription {
  String className;
  String name;
  size_t line = 0;  // of the control's Begin line
  // Twips; a negative size was not given and takes the host's default.
  float left = 0;
  float top = 0;
  float width = -1;
  float height = -1;
  int16_t tabIndex = -1;  // -1: not given
  bool tabStop = true;
  bool visible = true;
  bool enabled = true;
  server::PropertyBag properties;
  std::vector<ControlDescription> controls;  // the ones it contains
};

struct FormDescription {
  String name = u"Form1";
  std::optional<String> caption;  // the name when not given
  int16_t scaleMode = server::vbTwips;
  int32_t clientWidth = 320;  // pixels
  int32_t clientHeight = 240;
  uint32_t backColor = 0x8000000F;
  uint32_t foreColor = 0x80000012;
  std::shared_ptr<server::StdFont> font;  // null: a new form's font
  std::vector<ControlDescription> controls;
};

class FormFile {
 public:
  static constexpr std::string_view kMagic = "Vantor Form";
  static constexpr int kVersion = 1;
  // The longest name a form or a control may have.
  static constexpr size_t kMaxName = 40;

  static std::string Write(const FormDescription& form);
  // Nothing, and "line N: what was wrong" in `error`, for text that is not a
  // sound form file.
  static std::optional<FormDescription> Read(std::string_view utf8, String* error = nullptr);

  // A letter, then letters, digits and underscores, at most kMaxName long.
  static bool IsValidName(StringView name);
};

}  // namespace vantor::host
