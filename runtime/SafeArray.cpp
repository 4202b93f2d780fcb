#include "runtime/SafeArray.h"

#include "runtime/Error.h"
#include "runtime/Variant.h"

namespace vantor {

namespace {
size_t Product(const std::vector<SafeArray::Bound>& bounds) {
  if (bounds.empty()) return 0;
  size_t n = 1;
  for (const auto& b : bounds) n *= static_cast<size_t>(b.count < 0 ? 0 : b.count);
  return n;
}
}  // namespace

SafeArray::SafeArray(VbVarType element, std::vector<Bound> bounds)
    : element_(element), bounds_(std::move(bounds)) {
  const size_t n = Product(bounds_);
  if (element_ == vbByte) {
    bytes_.assign(n, 0);
  } else {
    // Elements of a typed array start as that type's zero, not as Empty.
    Variant zero = element_ == vbVariant ? Variant() : Variant().ChangeType(element_);
    items_.assign(n, zero);
  }
}

SafeArray SafeArray::FromBytes(std::vector<uint8_t> bytes, int32_t lower) {
  SafeArray a;
  a.element_ = vbByte;
  a.bounds_ = {Bound{lower, static_cast<int32_t>(bytes.size())}};
  a.bytes_ = std::move(bytes);
  return a;
}

SafeArray SafeArray::FromVariants(std::vector<Variant> items, int32_t lower) {
  SafeArray a;
  a.element_ = vbVariant;
  a.bounds_ = {Bound{lower, static_cast<int32_t>(items.size())}};
  a.items_ = std::move(items);
  return a;
}

int32_t SafeArray::LBound(int dimension) const {
  if (dimension < 1 || dimension > Dimensions()) {
    Err().Set(errSubscriptOutOfRange);
    return 0;
  }
  return bounds_[dimension - 1].lower;
}

int32_t SafeArray::UBound(int dimension) const {
  if (dimension < 1 || dimension > Dimensions()) {
    Err().Set(errSubscriptOutOfRange);
    return -1;
  }
  const auto& b = bounds_[dimension - 1];
  return b.lower + b.count - 1;
}

size_t SafeArray::Size() const { return element_ == vbByte ? bytes_.size() : items_.size(); }

bool SafeArray::Offset(std::span<const int32_t> index, size_t& offset) const {
  if (index.size() != bounds_.size()) return false;
  size_t stride = 1;
  offset = 0;
  for (size_t d = 0; d < bounds_.size(); ++d) {
    const int64_t i = static_cast<int64_t>(index[d]) - bounds_[d].lower;
    if (i < 0 || i >= bounds_[d].count) return false;
    offset += static_cast<size_t>(i) * stride;
    stride *= static_cast<size_t>(bounds_[d].count);
  }
  return true;
}

Variant SafeArray::Get(std::span<const int32_t> index) const {
  size_t at = 0;
  if (!Offset(index, at)) {
    Err().Set(errSubscriptOutOfRange);
    return {};
  }
  if (element_ == vbByte) return Variant(bytes_[at]);
  return items_[at];
}

bool SafeArray::Set(std::span<const int32_t> index, const Variant& value) {
  size_t at = 0;
  if (!Offset(index, at)) {
    Err().Set(errSubscriptOutOfRange);
    return false;
  }
  if (element_ == vbByte) {
    const int32_t before = Err().Number();
    const uint8_t b = value.ToByte();
    if (Err().Number() != before) return false;
    bytes_[at] = b;
    return true;
  }
  if (element_ == vbVariant) {
    items_[at] = value.Deref();
    return true;
  }
  Variant converted = value.ChangeType(element_);
  if (converted.Type() != element_) return false;
  items_[at] = std::move(converted);
  return true;
}

Variant SafeArray::Get(int32_t index) const { return Get(std::span<const int32_t>(&index, 1)); }

bool SafeArray::Set(int32_t index, const Variant& value) {
  return Set(std::span<const int32_t>(&index, 1), value);
}

bool SafeArray::Resize(int32_t newUpper, bool preserve) {
  if (bounds_.empty()) return false;
  auto& last = bounds_.back();
  const int64_t count = static_cast<int64_t>(newUpper) - last.lower + 1;
  if (count < 0 || count > INT32_MAX) {
    Err().Set(errSubscriptOutOfRange);
    return false;
  }
  last.count = static_cast<int32_t>(count);
  // The last dimension varies slowest, so keeping a prefix keeps every element
  // whose last index survives.
  const size_t n = Product(bounds_);
  if (element_ == vbByte) {
    if (!preserve) bytes_.clear();
    bytes_.resize(n, 0);
  } else {
    Variant zero = element_ == vbVariant ? Variant() : Variant().ChangeType(element_);
    if (!preserve) items_.clear();
    items_.resize(n, zero);
  }
  return true;
}

bool SafeArray::operator==(const SafeArray& other) const {
  if (element_ != other.element_ || bounds_.size() != other.bounds_.size()) return false;
  for (size_t i = 0; i < bounds_.size(); ++i) {
    if (bounds_[i].lower != other.bounds_[i].lower || bounds_[i].count != other.bounds_[i].count)
      return false;
  }
  if (element_ == vbByte) return bytes_ == other.bytes_;
  for (size_t i = 0; i < items_.size(); ++i) {
    if (!items_[i].SameAs(other.items_[i])) return false;
  }
  return true;
}

}  // namespace vantor
