#pragma once
// The property bag a control saves itself into and loads itself from. A bag
// holds only what differs from the defaults the control names, so that a
// saved form stays small and a later version's new defaults reach old forms.
//
// The text form, one key a line:
//   Caption = String "Confirmar"
//   Enabled = Boolean -1
//   Value = Double 0.1
//   DibPicture = Bytes 4 89504E47
//   Font = Font {Name "MS Sans Serif"; Size 8.25; Bold 0; Weight 400; ...}
//   Picture = Picture 16 16 <hex of the BGRA bytes>
// is 7-bit and exact: numbers in the shortest form that reads back to the same
// bits, text with every control and non-ASCII unit escaped as \uXXXX, and
// infinities and NaNs (which have no exact decimal) as their bits, #7FF8....
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/String.h"
#include "runtime/Variant.h"

namespace vantor::server {

class PropertyBag {
 public:
  // A missing key gives the default.
  Variant ReadProperty(StringView name, const Variant& defaultValue = {}) const;
  // A value equal to its default (same type and value) is not stored, and an
  // entry already there is removed. Values the text form cannot carry (objects
  // other than fonts and pictures, arrays of more than one dimension or of
  // objects) are refused with error 13 and leave the bag as it was.
  void WriteProperty(StringView name, const Variant& value, const Variant& defaultValue = {});

  bool Contains(StringView name) const;
  bool Remove(StringView name);
  size_t Count() const { return entries_.size(); }
  // In the order the keys were first written.
  std::vector<String> Names() const;
  void Clear();

  String ToText() const;
  // Nothing, and a message naming the line, for text that is not a bag.
  static std::optional<PropertyBag> FromText(StringView text, String* error = nullptr);

  // Same type and value, fonts and pictures compared by what they hold.
  static bool SameValue(const Variant& a, const Variant& b);
  // Whether the text form can carry the value.
  static bool CanStore(const Variant& value);

 private:
  // Names compare without regard to case; the key is the folded name.
  static String Fold(StringView name);
  void Reindex();

  std::vector<std::pair<String, Variant>> entries_;
  std::unordered_map<String, size_t> index_;
};

}  // namespace vantor::server
