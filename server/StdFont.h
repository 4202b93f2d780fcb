#pragma once
// The font object a host hands to its controls. Size is kept as a Currency
// (ten-thousandths of a point) because that is what the platform's font object
// stores, so 8.25 stays 8.25 after any number of saves and loads.
#include <cstdint>
#include <memory>

#include "platform/Text.h"
#include "runtime/Currency.h"
#include "runtime/Object.h"
#include "runtime/String.h"
#include "runtime/Variant.h"

namespace vantor::server {

class StdFont : public Object {
 public:
  // A new font is the one forms have always started with: MS Sans Serif 8.25.
  StdFont();

  String ClassName() const override { return u"StdFont"; }
  // The name stands for the font where a value is wanted.
  bool DefaultValue(Variant& out) const override;

  const String& get_Name() const { return name_; }
  void put_Name(StringView name);
  Currency get_Size() const { return size_; }
  // A size of zero or below is refused with error 5 and ignored.
  void put_Size(Currency size);
  // Bold is a view of Weight, as on the platform: anything heavier than
  // semi-bold's midpoint reads as bold, and setting it picks 700 or 400.
  bool get_Bold() const { return weight_ > 550; }
  void put_Bold(bool bold) { weight_ = bold ? 700 : 400; }
  bool get_Italic() const { return italic_; }
  void put_Italic(bool v) { italic_ = v; }
  bool get_Underline() const { return underline_; }
  void put_Underline(bool v) { underline_ = v; }
  bool get_Strikethrough() const { return strikethrough_; }
  void put_Strikethrough(bool v) { strikethrough_ = v; }
  int16_t get_Weight() const { return weight_; }
  // Weights run from 0 to 1000; others are refused with error 5.
  void put_Weight(int16_t weight);
  int16_t get_Charset() const { return charset_; }
  void put_Charset(int16_t charset) { charset_ = charset; }

  std::shared_ptr<StdFont> Clone() const;
  bool operator==(const StdFont& other) const;

  // The GDI font for this description at a given resolution; the caller
  // deletes it.
  HFONT CreateHFont(int dpi = 96) const;
  // The LOGFONT height (negative: character height) for a size at a dpi.
  static int32_t HeightForSize(Currency size, int dpi);
  LOGFONTW ToLogFont(int dpi = 96) const;

 private:
  String name_;
  Currency size_;
  int16_t weight_ = 400;
  int16_t charset_ = 0;
  bool italic_ = false;
  bool underline_ = false;
  bool strikethrough_ = false;
};

}  // namespace vantor::server
