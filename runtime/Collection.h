#pragma once
// The platform's keyed Collection: 1-based, items reached by position or by a
// text key compared without regard to case. Errors as the platform's: a key
// used twice is 457, a position out of range 9, an unknown key 5; the
// operation then does nothing and returns Empty or false.
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "runtime/Variant.h"

namespace vantor {

class Collection {
 public:
  // key, before and after may be left out (Empty or Missing). before and
  // after are a position or a key; at most one of them may be given.
  bool Add(const Variant& item, const Variant& key = {}, const Variant& before = {},
           const Variant& after = {});
  // A number is a position, a text a key.
  Variant Item(const Variant& index) const;
  bool Remove(const Variant& index);
  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  void Clear();
  // Not in the platform's Collection; the library asks it often enough.
  bool Exists(StringView key) const;

 private:
  struct Entry {
    Variant item;
    String key;  // as given; empty when none
  };
  // The position (0-based) an index names, or -1 with the error object set.
  int32_t Resolve(const Variant& index) const;
  void Reindex();
  static String Fold(StringView key);

  std::vector<Entry> items_;
  std::unordered_map<String, size_t> keys_;  // folded key -> position
};

}  // namespace vantor
