#pragma once
// A picture out as PNG, with the text, time, background and filter settings a
// caller gave. The surface keeps one of these for its PNG properties: its
// PngPropertySet and PngPropertyGet call the members of the same names here,
// and its PNG saving calls Save.
//
// The picture goes out as a palette image (with tRNS) when its colours fit in
// 256, else as true colour, with alpha when the surface has any. Pixels are
// un-premultiplied on the way out: each colour x 255 / alpha.
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "imaging/Pixels.h"
#include "runtime/Date.h"
#include "runtime/String.h"
#include "runtime/Variant.h"

namespace vantor::imaging {

enum ENUM_PNG_PROPERTIES : int32_t {
  Png_Title = 1,
  Png_Author = 2,
  Png_Description = 4,
  Png_Copyright = 8,
  Png_CreationTime = 16,
  Png_Software = 32,
  Png_Disclaimer = 64,
  Png_Warning = 128,
  Png_Source = 256,
  Png_Comment = 512,
  Png_Miscellaneous = 1024,
  Png_DateTimeModified = 2048,
  Png_DefaultBkgColor = 4096,
  Png_FilterMethod = 8192,
};

enum ENUM_FILTER_METHODS : int32_t {
  Filter_Default = 0,
  Filter_None = 1,
  Filter_AdjLeft = 2,
  Filter_AdjTop = 3,
  Filter_AdjAvg = 4,
  Filter_Paeth = 5,
  Filter_Adaptive = 6,
};

class cPNGwriter {
 public:
  // zlib's level when the caller names none.
  static constexpr int kDefaultLevel = 6;

  // --- What the surface's PngPropertySet / PngPropertyGet forward ---------
  // `property` -1 clears every property; a missing or empty value clears the
  // one named (with `keyword` for a miscellaneous text); anything else sets
  // it, as Set does. False for an unknown property or a value refused.
  bool PngPropertySet(int32_t property, const Variant& value = Variant::Missing(),
                      StringView keyword = {});
  Variant PngPropertyGet(int32_t property, StringView keyword = {}) const {
    return Get(property, keyword);
  }

  // --- The operations beneath ---------------------------------------------
  // Texts (Png_Title ... Png_Comment, and Png_Miscellaneous under `keyword`)
  // take a value convertible to text; Png_DateTimeModified a date;
  // Png_DefaultBkgColor an OLE colour; Png_FilterMethod an ENUM_FILTER_METHODS
  // (stored as given; out of range it writes as Filter_Default). A
  // miscellaneous keyword that names one of the ten standard texts sets that
  // text. False for an invalid property, a keyword or text emptied by its
  // clean-up, or a value of the wrong kind.
  bool Set(int32_t property, const Variant& value, StringView keyword = {});
  // -1 clears all. A miscellaneous text is found by its keyword (an empty
  // keyword clears every one).
  bool Clear(int32_t property, StringView keyword = {});
  // Text as String, the date as Date, the colour and filter as Long. Unset:
  // an empty text, date zero, colour -1; the filter method in any case.
  Variant Get(int32_t property, StringView keyword = {}) const;
  // Any property held: the surface then saves PNG through this writer first.
  bool HasProperties() const { return flags_ != 0; }

  // The picture as a PNG file in `out`, or written to `fileName`. False when
  // zlib is absent, the picture is empty, or compression or writing fails.
  bool Save(const Pixels& picture, std::vector<uint8_t>& out, int level = kDefaultLevel) const;
  bool Save(const Pixels& picture, const String& fileName, int level = kDefaultLevel) const;

  // The keyword rules: cut to 79 characters, trimmed, double spaces made
  // single, no-break space made a space; any character outside 32-126 and
  // 161-255 makes it empty (invalid); a standard name in any case becomes
  // that name.
  static String CleanKeyword(StringView keyword);
  // The text rules: cut to 32700 characters, CR LF and CR made LF; any
  // control character but tab and LF makes it empty.
  static String CleanText(StringView text);

  // As the parser's: a test can make the writer behave as where zlib cannot
  // be loaded, which makes it refuse to save.
  static bool ZlibPresent();
  static void SimulateZlibAbsent(bool absent);

 private:
  static bool ValidProperty(int32_t property);

  int32_t filterMethod_ = Filter_Default;
  int32_t backgroundColor_ = -1;
  int32_t flags_ = 0;
  // One text for each standard keyword, by bit number (0 to 9).
  std::array<String, 10> texts_;
  Date modified_;
  // Miscellaneous texts as keyword and text.
  std::vector<std::pair<String, String>> misc_;
};

}  // namespace vantor::imaging
