#include "runtime/Variant.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "runtime/DateText.h"
#include "runtime/Error.h"
#include "runtime/Locale.h"
#include "runtime/NumberText.h"
#include "runtime/Strings.h"

namespace vantor {

namespace {

// The outcome of a coercion before it reaches the error object, so that
// CanChangeType can ask without leaving a trace.
template <class T>
struct Result {
  std::optional<T> value;
  int32_t error = 0;
  static Result Ok(T v) { return {std::move(v), 0}; }
  static Result Fail(int32_t e) { return {std::nullopt, e}; }
};

bool EqualsIgnoringAsciiCase(StringView a, StringView b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char16_t x = a[i], y = b[i];
    if (x >= u'a' && x <= u'z') x = static_cast<char16_t>(x - 32);
    if (y >= u'a' && y <= u'z') y = static_cast<char16_t>(y - 32);
    if (x != y) return false;
  }
  return true;
}

StringView TrimBlanks(StringView s) {
  while (!s.empty() && (s.front() == u' ' || s.front() == u'\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == u' ' || s.back() == u'\t')) s.remove_suffix(1);
  return s;
}

// A Boolean from text: the English words always, the locale's words too, and
// any number the locale reads.
std::optional<bool> BoolFromText(StringView text) {
  const StringView t = TrimBlanks(text);
  const Locale& loc = Locale::Current();
  if (EqualsIgnoringAsciiCase(t, u"True") || StrComp(t, loc.TrueName(), vbTextCompare) == 0)
    return true;
  if (EqualsIgnoringAsciiCase(t, u"False") || StrComp(t, loc.FalseName(), vbTextCompare) == 0)
    return false;
  if (auto d = NumberText::Parse(text, loc)) return *d != 0.0;
  return std::nullopt;
}

}  // namespace

// ---------------------------------------------------------------- identity

Variant Variant::ByRef(Variant* target) {
  Variant v;
  v.v_ = target;
  return v;
}

const Variant& Variant::Deref() const {
  const Variant* p = this;
  while (auto r = std::get_if<Variant*>(&p->v_)) p = *r;
  return *p;
}

Variant& Variant::Deref() {
  Variant* p = this;
  while (auto r = std::get_if<Variant*>(&p->v_)) p = *r;
  return *p;
}

void Variant::Assign(const Variant& value) {
  const Variant& src = value.Deref();
  Variant& dst = Deref();
  if (&src == &dst) return;
  dst.v_ = src.v_;
}

VbVarType Variant::Type() const {
  const Variant& d = Deref();
  switch (d.v_.index()) {
    case 0: return vbEmpty;
    case 1: return vbNull;
    case 2: return vbInteger;
    case 3: return vbLong;
    case 4: return vbSingle;
    case 5: return vbDouble;
    case 6: return vbCurrency;
    case 7: return vbDate;
    case 8: return vbString;
    case 9: return vbBoolean;
    case 10: return vbByte;
    case 11: return vbObject;
    case 12: return vbError;
    case 13:
      return static_cast<VbVarType>(vbArray | std::get<ArrayBox>(d.v_).p->ElementType());
    default: return vbEmpty;
  }
}

bool Variant::IsMissing() const {
  const auto* e = As<ErrorValue>();
  return e != nullptr && e->scode == kParamNotFound;
}

bool Variant::IsNumericType() const {
  switch (Type()) {
    case vbInteger: case vbLong: case vbSingle: case vbDouble: case vbCurrency:
    case vbDate: case vbBoolean: case vbByte: case vbDecimal:
      return true;
    default:
      return false;
  }
}

const SafeArray* Variant::Array() const {
  const auto* box = std::get_if<ArrayBox>(&Deref().v_);
  return box ? box->p.get() : nullptr;
}

SafeArray* Variant::Array() {
  auto* box = std::get_if<ArrayBox>(&Deref().v_);
  return box ? box->p.get() : nullptr;
}

static String ScalarTypeName(VbVarType t) {
  switch (t) {
    case vbEmpty: return u"Empty";
    case vbNull: return u"Null";
    case vbInteger: return u"Integer";
    case vbLong: return u"Long";
    case vbSingle: return u"Single";
    case vbDouble: return u"Double";
    case vbCurrency: return u"Currency";
    case vbDate: return u"Date";
    case vbString: return u"String";
    case vbObject: return u"Object";
    case vbError: return u"Error";
    case vbBoolean: return u"Boolean";
    case vbVariant: return u"Variant";
    case vbDecimal: return u"Decimal";
    case vbByte: return u"Byte";
    default: return u"Unknown";
  }
}

String Variant::TypeName() const {
  const VbVarType t = Type();
  if (t & vbArray) return ScalarTypeName(static_cast<VbVarType>(t & ~vbArray)) + u"()";
  if (t == vbObject) {
    const ObjectPtr& o = *ObjectRef();
    return o ? o->ClassName() : String(u"Nothing");
  }
  return ScalarTypeName(t);
}

// ---------------------------------------------------------------- coercions

namespace {

// What an object stands for when a value is wanted: its default member.
Result<Variant> ValueOfObject(const ObjectPtr& o) {
  if (!o) return Result<Variant>::Fail(errObjectNotSet);
  Variant out;
  if (!o->DefaultValue(out) || out.IsObject()) return Result<Variant>::Fail(errNotSupported);
  return Result<Variant>::Ok(std::move(out));
}

// Every scalar as a double, the common road of the numeric coercions. Currency
// takes its own road where exactness matters.
Result<double> DoubleOf(const Variant& v) {
  switch (v.Type()) {
    case vbEmpty: return Result<double>::Ok(0.0);
    case vbNull: return Result<double>::Fail(errInvalidUseOfNull);
    case vbInteger: return Result<double>::Ok(*v.As<int16_t>());
    case vbLong: return Result<double>::Ok(*v.As<int32_t>());
    case vbSingle: return Result<double>::Ok(*v.As<float>());
    case vbDouble: return Result<double>::Ok(*v.As<double>());
    case vbCurrency: return Result<double>::Ok(v.As<Currency>()->ToDouble());
    case vbDate: return Result<double>::Ok(v.As<Date>()->Serial());
    case vbBoolean: return Result<double>::Ok(*v.As<bool>() ? -1.0 : 0.0);
    case vbByte: return Result<double>::Ok(*v.As<uint8_t>());
    case vbString: {
      if (auto d = NumberText::Parse(*v.As<String>())) return Result<double>::Ok(*d);
      return Result<double>::Fail(errTypeMismatch);
    }
    case vbObject: {
      auto inner = ValueOfObject(*v.ObjectRef());
      if (!inner.value) return Result<double>::Fail(inner.error);
      return DoubleOf(*inner.value);
    }
    default: return Result<double>::Fail(errTypeMismatch);
  }
}

// Integer targets: round to nearest, ties to even, then check the range.
template <class T>
Result<T> IntegerOf(const Variant& v) {
  if (const auto* c = v.As<Currency>()) {
    // Exact: ten-thousandths to units, ties to even.
    const int64_t raw = c->Raw();
    int64_t q = raw / Currency::kScale, r = raw % Currency::kScale;
    if (r < 0) r = -r;
    if (r > Currency::kScale / 2 || (r == Currency::kScale / 2 && (q & 1) != 0))
      q += raw < 0 ? -1 : 1;
    if (q < std::numeric_limits<T>::min() || q > std::numeric_limits<T>::max())
      return Result<T>::Fail(errOverflow);
    return Result<T>::Ok(static_cast<T>(q));
  }
  auto d = DoubleOf(v);
  if (!d.value) return Result<T>::Fail(d.error);
  if (std::isnan(*d.value)) return Result<T>::Fail(errOverflow);
  const double r = std::nearbyint(*d.value);
  if (r < static_cast<double>(std::numeric_limits<T>::min()) ||
      r > static_cast<double>(std::numeric_limits<T>::max()))
    return Result<T>::Fail(errOverflow);
  return Result<T>::Ok(static_cast<T>(r));
}

Result<float> SingleOf(const Variant& v) {
  auto d = DoubleOf(v);
  if (!d.value) return Result<float>::Fail(d.error);
  if (std::isfinite(*d.value) && std::fabs(*d.value) > FLT_MAX)
    return Result<float>::Fail(errOverflow);
  return Result<float>::Ok(static_cast<float>(*d.value));
}

Result<Currency> CurrencyOf(const Variant& v) {
  if (const auto* c = v.As<Currency>()) return Result<Currency>::Ok(*c);
  auto d = DoubleOf(v);
  if (!d.value) return Result<Currency>::Fail(d.error);
  if (auto c = Currency::FromDouble(*d.value)) return Result<Currency>::Ok(*c);
  return Result<Currency>::Fail(errOverflow);
}

Result<Date> DateOf(const Variant& v) {
  switch (v.Type()) {
    case vbDate: return Result<Date>::Ok(*v.As<Date>());
    case vbString: {
      if (auto d = DateText::Parse(*v.As<String>())) return Result<Date>::Ok(*d);
      return Result<Date>::Fail(errTypeMismatch);
    }
    default: {
      auto d = DoubleOf(v);
      if (!d.value) return Result<Date>::Fail(d.error);
      if (!Date::InRange(*d.value)) return Result<Date>::Fail(errOverflow);
      return Result<Date>::Ok(Date(*d.value));
    }
  }
}

Result<bool> BooleanOf(const Variant& v) {
  if (const auto* s = v.As<String>()) {
    if (auto b = BoolFromText(*s)) return Result<bool>::Ok(*b);
    return Result<bool>::Fail(errTypeMismatch);
  }
  auto d = DoubleOf(v);
  if (!d.value) return Result<bool>::Fail(d.error);
  return Result<bool>::Ok(*d.value != 0.0);
}

String IntegerText(int64_t n) {
  std::string s = std::to_string(n);
  return String(s.begin(), s.end());
}

Result<String> StringOfValue(const Variant& v) {
  const Locale& loc = Locale::Current();
  switch (v.Type()) {
    case vbEmpty: return Result<String>::Ok({});
    case vbNull: return Result<String>::Fail(errInvalidUseOfNull);
    case vbInteger: return Result<String>::Ok(IntegerText(*v.As<int16_t>()));
    case vbLong: return Result<String>::Ok(IntegerText(*v.As<int32_t>()));
    case vbByte: return Result<String>::Ok(IntegerText(*v.As<uint8_t>()));
    case vbSingle: return Result<String>::Ok(NumberText::GeneralSingle(*v.As<float>(), loc));
    case vbDouble: return Result<String>::Ok(NumberText::General(*v.As<double>(), loc));
    case vbCurrency: return Result<String>::Ok(NumberText::FromCurrency(v.As<Currency>()->Raw(), loc));
    case vbDate: return Result<String>::Ok(DateText::General(*v.As<Date>(), loc));
    case vbBoolean:
      return Result<String>::Ok(String(*v.As<bool>() ? loc.TrueName() : loc.FalseName()));
    case vbString: return Result<String>::Ok(*v.As<String>());
    case vbObject: {
      auto inner = ValueOfObject(*v.ObjectRef());
      if (!inner.value) return Result<String>::Fail(inner.error);
      return StringOfValue(*inner.value);
    }
    default: return Result<String>::Fail(errTypeMismatch);
  }
}

template <class T>
T Report(Result<T> r) {
  if (r.value) return std::move(*r.value);
  Err().Set(r.error);
  return T{};
}

Result<Variant> Changed(const Variant& v, VbVarType type) {
  auto wrap = [](auto r) -> Result<Variant> {
    if (!r.value) return Result<Variant>::Fail(r.error);
    return Result<Variant>::Ok(Variant(*r.value));
  };
  switch (type) {
    case vbEmpty: return Result<Variant>::Ok(Variant());
    case vbNull: return Result<Variant>::Ok(Variant(Null));
    case vbInteger: return wrap(IntegerOf<int16_t>(v));
    case vbLong: return wrap(IntegerOf<int32_t>(v));
    case vbByte: return wrap(IntegerOf<uint8_t>(v));
    case vbSingle: return wrap(SingleOf(v));
    case vbDouble: return wrap(DoubleOf(v));
    case vbCurrency: return wrap(CurrencyOf(v));
    case vbDate: return wrap(DateOf(v));
    case vbString: return wrap(StringOfValue(v));
    case vbBoolean: return wrap(BooleanOf(v));
    case vbVariant: return Result<Variant>::Ok(v.Deref());
    case vbObject:
      if (v.IsObject()) return Result<Variant>::Ok(v.Deref());
      return Result<Variant>::Fail(errTypeMismatch);
    default:
      if (v.Type() == type) return Result<Variant>::Ok(v.Deref());
      return Result<Variant>::Fail(errTypeMismatch);
  }
}

}  // namespace

int16_t Variant::ToInteger() const { return Report(IntegerOf<int16_t>(*this)); }
int32_t Variant::ToLong() const { return Report(IntegerOf<int32_t>(*this)); }
uint8_t Variant::ToByte() const { return Report(IntegerOf<uint8_t>(*this)); }
float Variant::ToSingle() const { return Report(SingleOf(*this)); }
double Variant::ToDouble() const { return Report(DoubleOf(*this)); }
Currency Variant::ToCurrency() const { return Report(CurrencyOf(*this)); }
Date Variant::ToDate() const { return Report(DateOf(*this)); }
String Variant::ToString() const { return Report(StringOfValue(*this)); }
bool Variant::ToBoolean() const { return Report(BooleanOf(*this)); }

Variant Variant::ChangeType(VbVarType type) const { return Report(Changed(*this, type)); }

bool Variant::CanChangeType(VbVarType type) const { return Changed(*this, type).value.has_value(); }

// ---------------------------------------------------------------- comparison

namespace {

enum class Kind { Empty, Null, Number, Text, Other };

Kind KindOf(const Variant& v) {
  switch (v.Type()) {
    case vbEmpty: return Kind::Empty;
    case vbNull: return Kind::Null;
    case vbString: return Kind::Text;
    default: return v.IsNumericType() ? Kind::Number : Kind::Other;
  }
}

template <class T>
Ordering OrderOf(const T& a, const T& b) {
  return a < b ? Ordering::Less : (b < a ? Ordering::Greater : Ordering::Equal);
}

bool IsIntegral(VbVarType t) {
  return t == vbInteger || t == vbLong || t == vbByte || t == vbBoolean;
}

Ordering CompareNumbers(const Variant& a, const Variant& b) {
  const VbVarType ta = a.Type(), tb = b.Type();
  if (IsIntegral(ta) && IsIntegral(tb))
    return OrderOf(static_cast<int64_t>(*DoubleOf(a).value), static_cast<int64_t>(*DoubleOf(b).value));
  if (ta == vbCurrency && tb == vbCurrency) return OrderOf(*a.As<Currency>(), *b.As<Currency>());
  return OrderOf(*DoubleOf(a).value, *DoubleOf(b).value);
}

}  // namespace

Ordering Variant::Compare(const Variant& x, const Variant& y, VbCompareMethod method) {
  // Objects compare by their default values.
  Variant ax, ay;
  const Variant* a = &x.Deref();
  const Variant* b = &y.Deref();
  for (auto [side, holder] : {std::pair{&a, &ax}, std::pair{&b, &ay}}) {
    if ((*side)->IsObject()) {
      auto inner = ValueOfObject(*(*side)->ObjectRef());
      if (!inner.value) {
        Err().Set(inner.error);
        return Ordering::Unknown;
      }
      *holder = std::move(*inner.value);
      *side = holder;
    }
  }
  const Kind ka = KindOf(*a), kb = KindOf(*b);
  if (ka == Kind::Null || kb == Kind::Null) return Ordering::Unknown;
  if (ka == Kind::Other || kb == Kind::Other) {
    Err().Set(errTypeMismatch);
    return Ordering::Unknown;
  }
  if (ka == Kind::Empty && kb == Kind::Empty) return Ordering::Equal;
  if (ka == Kind::Text || kb == Kind::Text) {
    if (ka == Kind::Number) return Ordering::Less;
    if (kb == Kind::Number) return Ordering::Greater;
    const StringView sa = ka == Kind::Text ? StringView(*a->As<String>()) : StringView();
    const StringView sb = kb == Kind::Text ? StringView(*b->As<String>()) : StringView();
    return static_cast<Ordering>(StrComp(sa, sb, method));
  }
  return CompareNumbers(*a, *b);
}

// ---------------------------------------------------------------- arithmetic

namespace {

// The platform's order of precision for arithmetic results.
int Rank(VbVarType t) {
  switch (t) {
    case vbByte: return 1;
    case vbBoolean: case vbInteger: case vbEmpty: return 2;
    case vbLong: return 3;
    case vbSingle: return 4;
    case vbDouble: case vbString: return 5;
    case vbCurrency: return 6;
    default: return 0;
  }
}

// An integer result in the narrowest type of at least `rank` that holds it;
// Variants widen rather than overflow.
Variant FitInteger(double r, int rank) {
  if (rank <= 1 && r >= 0 && r <= 255) return Variant(static_cast<uint8_t>(r));
  if (rank <= 2 && r >= -32768 && r <= 32767) return Variant(static_cast<int16_t>(r));
  if (rank <= 3 && r >= -2147483648.0 && r <= 2147483647.0) return Variant(static_cast<int32_t>(r));
  return Variant(r);
}

enum class Op { Add, Subtract, Multiply };

Variant Arith(const Variant& x, const Variant& y, Op op) {
  const Variant& a = x.Deref();
  const Variant& b = y.Deref();
  if (a.IsNull() || b.IsNull()) return Variant(Null);
  const VbVarType ta = a.Type(), tb = b.Type();
  if (op == Op::Add && ta == vbString && tb == vbString)
    return Variant(*a.As<String>() + *b.As<String>());
  if (op == Op::Add && ta == vbEmpty && tb == vbString) return b;
  if (op == Op::Add && tb == vbEmpty && ta == vbString) return a;
  auto da = DoubleOf(a), db = DoubleOf(b);
  if (!da.value || !db.value) {
    Err().Set(da.value ? db.error : da.error);
    return {};
  }
  // Dates move by days; the difference of two dates is a number of days.
  const bool dateResult = (ta == vbDate) != (tb == vbDate) && op != Op::Multiply;
  const int rank = std::max(Rank(ta == vbDate ? vbDouble : ta), Rank(tb == vbDate ? vbDouble : tb));
  if (rank == 6) {
    auto ca = CurrencyOf(a), cb = CurrencyOf(b);
    if (!ca.value || !cb.value) {
      Err().Set(ca.value ? cb.error : ca.error);
      return {};
    }
    std::optional<Currency> r = op == Op::Add        ? Currency::Add(*ca.value, *cb.value)
                                : op == Op::Subtract ? Currency::Subtract(*ca.value, *cb.value)
                                                     : Currency::Multiply(*ca.value, *cb.value);
    if (!r) {
      Err().Set(errOverflow);
      return {};
    }
    return Variant(*r);
  }
  const double r = op == Op::Add        ? *da.value + *db.value
                   : op == Op::Subtract ? *da.value - *db.value
                                        : *da.value * *db.value;
  if (!std::isfinite(r)) {
    Err().Set(errOverflow);
    return {};
  }
  if (dateResult) {
    if (!Date::InRange(r)) {
      Err().Set(errOverflow);
      return {};
    }
    return Variant(Date(r));
  }
  if (rank <= 3) return FitInteger(r, rank);
  // Single keeps Single with the narrow integers; with Long it widens to Double.
  if (rank == 4 && ta != vbLong && tb != vbLong && std::fabs(r) <= FLT_MAX)
    return Variant(static_cast<float>(r));
  return Variant(r);
}

}  // namespace

Variant Variant::Add(const Variant& a, const Variant& b) { return Arith(a, b, Op::Add); }
Variant Variant::Subtract(const Variant& a, const Variant& b) { return Arith(a, b, Op::Subtract); }
Variant Variant::Multiply(const Variant& a, const Variant& b) { return Arith(a, b, Op::Multiply); }

Variant Variant::Divide(const Variant& x, const Variant& y) {
  const Variant& a = x.Deref();
  const Variant& b = y.Deref();
  if (a.IsNull() || b.IsNull()) return Variant(Null);
  auto da = DoubleOf(a), db = DoubleOf(b);
  if (!da.value || !db.value) {
    Err().Set(da.value ? db.error : da.error);
    return {};
  }
  if (*db.value == 0.0) {
    // 0 / 0 is an overflow on the platform, anything else over 0 a division by zero.
    Err().Set(*da.value == 0.0 ? errOverflow : errDivisionByZero);
    return {};
  }
  const double r = *da.value / *db.value;
  if (!std::isfinite(r)) {
    Err().Set(errOverflow);
    return {};
  }
  if (a.Type() == vbSingle && b.Type() == vbSingle) return Variant(static_cast<float>(r));
  return Variant(r);
}

Variant Variant::Concat(const Variant& x, const Variant& y) {
  const Variant& a = x.Deref();
  const Variant& b = y.Deref();
  if (a.IsNull() && b.IsNull()) return Variant(Null);
  auto sa = a.IsNull() ? Result<String>::Ok({}) : StringOfValue(a);
  auto sb = b.IsNull() ? Result<String>::Ok({}) : StringOfValue(b);
  if (!sa.value || !sb.value) {
    Err().Set(sa.value ? sb.error : sa.error);
    return {};
  }
  return Variant(*sa.value + *sb.value);
}

bool Variant::SameAs(const Variant& other) const {
  const Variant& a = Deref();
  const Variant& b = other.Deref();
  if (a.v_.index() != b.v_.index()) return false;
  if (const auto* arr = a.Array()) return *arr == *b.Array();
  if (const auto* f = a.As<float>()) return std::memcmp(f, b.As<float>(), sizeof(float)) == 0;
  if (const auto* d = a.As<double>()) return std::memcmp(d, b.As<double>(), sizeof(double)) == 0;
  if (const auto* dt = a.As<Date>()) {
    const double x = dt->Serial(), y = b.As<Date>()->Serial();
    return std::memcmp(&x, &y, sizeof x) == 0;
  }
  return a.v_ == b.v_;
}

}  // namespace vantor
