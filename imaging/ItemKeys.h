#pragma once
// The keys of a keyed list of the image-list family: one record (key text
// and 1-based index) for each item that has a key, kept sorted by key so that
// a look-up is a binary search. Keys match exactly, case included. Items
// without a key have no record. An insert or a removal in the list shifts the
// indexes behind it.
#include <cstdint>
#include <vector>

#include "runtime/String.h"
#include "runtime/Variant.h"

namespace vantor::imaging {

class ItemKeys {
 public:
  // The item's 1-based index, 0 when no item has the key (or it is empty).
  int32_t Find(StringView key) const;
  // What an Index argument names among `count` items: a number is a
  // position from 1, a text a key. 0 when it names none (0, out of range, an
  // unknown key, or neither number nor text).
  int32_t Resolve(const Variant& index, int32_t count) const;
  // An item comes in at `index`: those at or after it move one on, and the
  // new one's key (when not empty) is recorded. The caller has checked that
  // the key is free.
  void InsertAt(int32_t index, StringView key);
  // The item at `index` goes, with its key: those after it move one back.
  void RemoveAt(int32_t index);
  // A new key (or none) for the item at `index`.
  void Rename(int32_t index, StringView newKey);
  // The keys of a whole list at once, in item order (empty for none); false,
  // and no keys, when one is used twice.
  bool Assign(const std::vector<String>& keysInOrder);
  void Clear() { records_.clear(); }
  size_t size() const { return records_.size(); }

 private:
  struct Record {
    String key;
    int32_t index;
  };
  // Where `key` is or would go.
  std::vector<Record>::iterator LowerBound(StringView key);
  std::vector<Record>::const_iterator LowerBound(StringView key) const;
  void Erase(int32_t index);

  std::vector<Record> records_;
};

}  // namespace vantor::imaging
