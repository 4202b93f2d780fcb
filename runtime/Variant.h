#pragma once
// The platform's dynamically typed value. Coercions follow the platform's rules
// (numbers from text read with the locale, ties to even when a fraction meets
// an integer type, Boolean as 0 and -1, Null refused where a value is needed)
// and report failure through the error object, returning the type's zero.
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

#include "runtime/Currency.h"
#include "runtime/Date.h"
#include "runtime/Object.h"
#include "runtime/SafeArray.h"
#include "runtime/String.h"
#include "runtime/VarType.h"

namespace vantor {

struct NullValue {
  bool operator==(const NullValue&) const = default;
};
inline constexpr NullValue Null{};

// A value of vbError: the platform passes DISP_E_PARAMNOTFOUND this way for an
// optional argument that was left out.
struct ErrorValue {
  int32_t scode = 0;
  bool operator==(const ErrorValue&) const = default;
};
inline constexpr int32_t kParamNotFound = static_cast<int32_t>(0x80020004u);

// The outcome of a comparison: Unknown (the platform's Null) when either side
// is Null or the values cannot be compared.
enum class Ordering { Less = -1, Equal = 0, Greater = 1, Unknown = 2 };

class Variant {
 public:
  Variant() = default;
  Variant(NullValue) : v_(NullValue{}) {}
  Variant(int16_t i) : v_(i) {}
  Variant(int32_t l) : v_(l) {}
  Variant(float f) : v_(f) {}
  Variant(double d) : v_(d) {}
  Variant(Currency c) : v_(c) {}
  Variant(Date d) : v_(d) {}
  Variant(String s) : v_(std::move(s)) {}
  Variant(StringView s) : v_(String(s)) {}
  Variant(const char16_t* s) : v_(String(s)) {}
  Variant(bool b) : v_(b) {}
  Variant(uint8_t b) : v_(b) {}
  Variant(ObjectPtr o) : v_(std::move(o)) {}
  Variant(ErrorValue e) : v_(e) {}
  Variant(SafeArray a) : v_(ArrayBox(std::move(a))) {}
  Variant(std::vector<uint8_t> bytes) : Variant(SafeArray::FromBytes(std::move(bytes))) {}
  // Other integers and plain text are easy to pass by mistake; say which type.
  Variant(int64_t) = delete;
  Variant(const char*) = delete;

  // A by-reference value reads and writes the variant it points to; the
  // pointee must outlive it.
  static Variant ByRef(Variant* target);
  // An optional argument that was not given.
  static Variant Missing() { return Variant(ErrorValue{kParamNotFound}); }

  // The type as VarType reports it; by-reference values report their target's.
  VbVarType Type() const;
  bool IsByRef() const { return std::holds_alternative<Variant*>(v_); }
  bool IsEmpty() const { return Type() == vbEmpty; }
  bool IsNull() const { return Type() == vbNull; }
  bool IsArray() const { return (Type() & vbArray) != 0; }
  bool IsObject() const { return Type() == vbObject; }
  bool IsMissing() const;
  // Numeric in the platform's sense of a Variant's type: the integer and float
  // types, Currency, Decimal, Byte; Boolean and Date count as numbers in
  // arithmetic and comparisons.
  bool IsNumericType() const;
  // The TypeName text: "Integer", "String", "Byte()", the object's class...
  String TypeName() const;

  // The variant behind a by-reference value, or this one.
  const Variant& Deref() const;
  Variant& Deref();
  // Writes through a reference, or replaces the value.
  void Assign(const Variant& value);

  // Typed access without coercion; nullptr when the type differs.
  template <class T>
  const T* As() const {
    return std::get_if<T>(&Deref().v_);
  }
  const SafeArray* Array() const;
  SafeArray* Array();
  const ObjectPtr* ObjectRef() const { return As<ObjectPtr>(); }

  // Coercions, each as the platform's CInt, CLng... On failure the error object
  // holds 13 (type mismatch), 6 (overflow) or 94 (Null), and the zero of the
  // type is returned.
  int16_t ToInteger() const;
  int32_t ToLong() const;
  float ToSingle() const;
  double ToDouble() const;
  Currency ToCurrency() const;
  Date ToDate() const;
  String ToString() const;
  bool ToBoolean() const;
  uint8_t ToByte() const;
  // VarChangeType: a new Variant of the given scalar type, or Empty with the
  // error object set.
  Variant ChangeType(VbVarType type) const;
  // Whether a coercion to the type would succeed, without touching the error
  // object.
  bool CanChangeType(VbVarType type) const;

  // Comparison with the rules of the platform's comparison operators on two
  // Variants: numbers numerically, strings as strings (binary or text), a
  // number below any string, Empty as 0 or "" as the other side needs.
  static Ordering Compare(const Variant& a, const Variant& b,
                          VbCompareMethod method = vbBinaryCompare);

  // Operators of the platform's language on Variants. + adds numbers and joins
  // two strings; & joins texts with Null read as "". Null propagates; a
  // mismatch or overflow sets the error object and gives Empty. Integer results
  // widen to Long and then Double rather than overflow, as Variants do.
  static Variant Add(const Variant& a, const Variant& b);
  static Variant Subtract(const Variant& a, const Variant& b);
  static Variant Multiply(const Variant& a, const Variant& b);
  static Variant Divide(const Variant& a, const Variant& b);
  static Variant Concat(const Variant& a, const Variant& b);

  // Same type and value, the identity the property bag's round trip needs.
  bool SameAs(const Variant& other) const;

 private:
  // Arrays are values: copying a Variant copies its array, as the platform does.
  struct ArrayBox {
    std::unique_ptr<SafeArray> p;
    explicit ArrayBox(SafeArray a) : p(std::make_unique<SafeArray>(std::move(a))) {}
    ArrayBox(const ArrayBox& o) : p(std::make_unique<SafeArray>(*o.p)) {}
    ArrayBox(ArrayBox&&) noexcept = default;
    ArrayBox& operator=(const ArrayBox& o) {
      if (this != &o) p = std::make_unique<SafeArray>(*o.p);
      return *this;
    }
    ArrayBox& operator=(ArrayBox&&) noexcept = default;
    bool operator==(const ArrayBox& o) const { return *p == *o.p; }
  };

  using Storage = std::variant<std::monostate, NullValue, int16_t, int32_t, float, double,
                               Currency, Date, String, bool, uint8_t, ObjectPtr, ErrorValue,
                               ArrayBox, Variant*>;
  Storage v_;
};

}  // namespace vantor
