#include "imaging/ItemKeys.h"

#include <algorithm>

namespace vantor::imaging {

std::vector<ItemKeys::Record>::iterator ItemKeys::LowerBound(StringView key) {
  return std::lower_bound(records_.begin(), records_.end(), key,
                          [](const Record& r, StringView k) { return StringView(r.key) < k; });
}

std::vector<ItemKeys::Record>::const_iterator ItemKeys::LowerBound(StringView key) const {
  return std::lower_bound(records_.begin(), records_.end(), key,
                          [](const Record& r, StringView k) { return StringView(r.key) < k; });
}

int32_t ItemKeys::Find(StringView key) const {
  if (key.empty()) return 0;
  const auto it = LowerBound(key);
  return it != records_.end() && it->key == key ? it->index : 0;
}

int32_t ItemKeys::Resolve(const Variant& index, int32_t count) const {
  const Variant& v = index.Deref();
  if (v.Type() == vbString) return Find(v.ToString());
  if (!v.IsNumericType()) return 0;
  // Range first, so that a huge number is simply no position.
  const double d = v.ToDouble();
  if (!(d >= 0.5 && d < static_cast<double>(count) + 0.5)) return 0;
  const int32_t n = v.ToLong();
  return n >= 1 && n <= count ? n : 0;
}

void ItemKeys::InsertAt(int32_t index, StringView key) {
  for (Record& r : records_) {
    if (r.index >= index) ++r.index;
  }
  if (!key.empty()) records_.insert(LowerBound(key), Record{String(key), index});
}

bool ItemKeys::Assign(const std::vector<String>& keysInOrder) {
  records_.clear();
  for (size_t i = 0; i < keysInOrder.size(); ++i) {
    if (!keysInOrder[i].empty()) {
      records_.push_back(Record{keysInOrder[i], static_cast<int32_t>(i + 1)});
    }
  }
  std::sort(records_.begin(), records_.end(),
            [](const Record& a, const Record& b) { return a.key < b.key; });
  const auto twice =
      std::adjacent_find(records_.begin(), records_.end(),
                         [](const Record& a, const Record& b) { return a.key == b.key; });
  if (twice == records_.end()) return true;
  records_.clear();
  return false;
}

void ItemKeys::Erase(int32_t index) {
  const auto it = std::find_if(records_.begin(), records_.end(),
                               [index](const Record& r) { return r.index == index; });
  if (it != records_.end()) records_.erase(it);
}

void ItemKeys::RemoveAt(int32_t index) {
  Erase(index);
  for (Record& r : records_) {
    if (r.index > index) --r.index;
  }
}

void ItemKeys::Rename(int32_t index, StringView newKey) {
  Erase(index);
  if (!newKey.empty()) records_.insert(LowerBound(newKey), Record{String(newKey), index});
}

}  // namespace vantor::imaging
