#pragma once
// An array as the platform's Variant carries it: typed elements, one or more
// dimensions, each with its own lower bound. Byte arrays, which carry images
// through property bags, keep their bytes in one contiguous block.
#include <cstdint>
#include <span>
#include <vector>

#include "runtime/VarType.h"

namespace vantor {

class Variant;

class SafeArray {
 public:
  struct Bound {
    int32_t lower = 0;
    int32_t count = 0;
  };

  SafeArray() = default;
  // element is a scalar type or vbVariant; an empty bounds list is an array
  // that has not been dimensioned.
  SafeArray(VbVarType element, std::vector<Bound> bounds);
  static SafeArray FromBytes(std::vector<uint8_t> bytes, int32_t lower = 0);
  static SafeArray FromVariants(std::vector<Variant> items, int32_t lower = 0);

  VbVarType ElementType() const { return element_; }
  int Dimensions() const { return static_cast<int>(bounds_.size()); }
  // dimension is 1-based. Out of range: error 9 and 0.
  int32_t LBound(int dimension = 1) const;
  // UBound of an empty dimension is LBound - 1. Out of range: error 9 and -1.
  int32_t UBound(int dimension = 1) const;
  size_t Size() const;

  // An index per dimension. Out of range: error 9, Empty on read, no write.
  Variant Get(std::span<const int32_t> index) const;
  bool Set(std::span<const int32_t> index, const Variant& value);
  // One-dimension shorthands.
  Variant Get(int32_t index) const;
  bool Set(int32_t index, const Variant& value);

  // Direct access to the storage, in row-major order of the first dimension
  // varying fastest (the platform's order).
  std::vector<uint8_t>& Bytes() { return bytes_; }
  const std::vector<uint8_t>& Bytes() const { return bytes_; }
  std::vector<Variant>& Items() { return items_; }
  const std::vector<Variant>& Items() const { return items_; }

  // ReDim Preserve: only the last dimension may change; false otherwise.
  bool Resize(int32_t newUpper, bool preserve);

  bool operator==(const SafeArray& other) const;

 private:
  bool Offset(std::span<const int32_t> index, size_t& offset) const;

  VbVarType element_ = vbVariant;
  std::vector<Bound> bounds_;
  std::vector<uint8_t> bytes_;    // when element_ is vbByte
  std::vector<Variant> items_;    // otherwise, each coerced to element_
};

}  // namespace vantor
