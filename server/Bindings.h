#pragma once
// How a class ties the members of its type-table entry to its C++ members.
// A class builds its bindings once:
//
//   static const Bindings bindings = Binder<USButton>(info)
//       .Property("Caption", &USButton::get_Caption, &USButton::put_Caption)
//       .Get("hwnd", &USButton::get_hwnd)
//       .Method("Refresh", &USButton::Refresh)
//       .Done();
//
// A name that the table lacks, or a C++ signature whose argument count does
// not match the table, is a programming error and throws std::logic_error
// when the bindings are built, so the first test that makes the object finds
// it. Arguments arrive already converted to the table's types; a C++
// parameter taken by non-const reference is written back to the caller.
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "runtime/Currency.h"
#include "runtime/Date.h"
#include "runtime/SafeArray.h"
#include "runtime/Variant.h"
#include "server/TypeInfo.h"

namespace vantor::server {

class Dispatch;

using Handler = std::function<Variant(Dispatch& self, std::span<Variant> args)>;

struct MemberBinding {
  Handler get, put, putRef, call;
};

class Bindings {
 public:
  explicit Bindings(const ClassInfo& info);
  // nullptr when the member is not one of this class's table.
  const MemberBinding* For(const MemberInfo& member) const;

  // `arity` is the C++ argument count, checked against the table.
  void SetGet(std::string_view name, size_t arity, Handler h);
  void SetPut(std::string_view name, size_t arity, Handler h);  // put, or putref for objects
  void SetCall(std::string_view name, size_t arity, Handler h);

 private:
  MemberBinding& Slot(std::string_view name, const MemberInfo** member);
  const ClassInfo& info_;
  std::vector<MemberBinding> members_;
};

namespace binding {

template <class T>
struct IsSharedPtr : std::false_type {};
template <class T>
struct IsSharedPtr<std::shared_ptr<T>> : std::true_type {};

template <class T>
T FromVariant(const Variant& value) {
  const Variant& v = value.Deref();
  if constexpr (std::is_same_v<T, Variant>) {
    return v;
  } else if constexpr (std::is_same_v<T, bool>) {
    return v.ToBoolean();
  } else if constexpr (std::is_same_v<T, int16_t>) {
    return v.ToInteger();
  } else if constexpr (std::is_same_v<T, int32_t>) {
    return v.ToLong();
  } else if constexpr (std::is_same_v<T, uint32_t>) {
    return static_cast<uint32_t>(v.ToLong());
  } else if constexpr (std::is_same_v<T, uint8_t>) {
    return v.ToByte();
  } else if constexpr (std::is_same_v<T, float>) {
    return v.ToSingle();
  } else if constexpr (std::is_same_v<T, double>) {
    return v.ToDouble();
  } else if constexpr (std::is_same_v<T, Currency>) {
    return v.ToCurrency();
  } else if constexpr (std::is_same_v<T, Date>) {
    return v.ToDate();
  } else if constexpr (std::is_same_v<T, String>) {
    return v.ToString();
  } else if constexpr (std::is_same_v<T, std::vector<uint8_t>>) {
    const SafeArray* a = v.Array();
    return a && a->ElementType() == vbByte ? a->Bytes() : std::vector<uint8_t>{};
  } else if constexpr (std::is_same_v<T, ObjectPtr>) {
    const ObjectPtr* p = v.ObjectRef();
    return p ? *p : nullptr;
  } else if constexpr (IsSharedPtr<T>::value) {
    const ObjectPtr* p = v.ObjectRef();
    return p ? std::dynamic_pointer_cast<typename T::element_type>(*p) : nullptr;
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<T>(v.ToLong());
  } else {
    static_assert(sizeof(T) == 0, "no conversion from Variant for this type");
  }
}

template <class T>
Variant ToVariant(T&& value) {
  using U = std::remove_cvref_t<T>;
  if constexpr (std::is_same_v<U, uint32_t>) {
    return Variant(static_cast<int32_t>(value));
  } else if constexpr (std::is_enum_v<U>) {
    return Variant(static_cast<int32_t>(value));
  } else if constexpr (IsSharedPtr<U>::value) {
    return Variant(ObjectPtr(std::forward<T>(value)));
  } else {
    return Variant(std::forward<T>(value));
  }
}

template <class A>
inline constexpr bool kWritesBack =
    std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>;

template <class C, class F, class R, class... A, size_t... I>
Variant Call(C& self, F fn, std::span<Variant> args, std::index_sequence<I...>) {
  std::tuple<std::remove_cvref_t<A>...> values{FromVariant<std::remove_cvref_t<A>>(args[I])...};
  auto writeBack = [&] {
    ((kWritesBack<A> ? args[I].Assign(ToVariant(std::get<I>(values))) : void()), ...);
  };
  if constexpr (std::is_void_v<R>) {
    (self.*fn)(std::get<I>(values)...);
    writeBack();
    return Variant();
  } else {
    Variant result = ToVariant((self.*fn)(std::get<I>(values)...));
    writeBack();
    return result;
  }
}

template <class C, class R, class... A, class F>
Handler Make(F fn) {
  return [fn](Dispatch& self, std::span<Variant> args) -> Variant {
    return Call<C, F, R, A...>(static_cast<C&>(self), fn, args, std::index_sequence_for<A...>{});
  };
}

}  // namespace binding

template <class C>
class Binder {
 public:
  explicit Binder(const ClassInfo& info) : bindings_(info) {}

  template <class R, class... A>
  Binder& Method(std::string_view name, R (C::*fn)(A...)) {
    bindings_.SetCall(name, sizeof...(A), binding::Make<C, R, A...>(fn));
    return *this;
  }
  template <class R, class... A>
  Binder& Method(std::string_view name, R (C::*fn)(A...) const) {
    bindings_.SetCall(name, sizeof...(A), binding::Make<C, R, A...>(fn));
    return *this;
  }
  template <class R, class... I>
  Binder& Get(std::string_view name, R (C::*fn)(I...) const) {
    bindings_.SetGet(name, sizeof...(I), binding::Make<C, R, I...>(fn));
    return *this;
  }
  template <class R, class... I>
  Binder& Get(std::string_view name, R (C::*fn)(I...)) {
    bindings_.SetGet(name, sizeof...(I), binding::Make<C, R, I...>(fn));
    return *this;
  }
  // The index arguments, then the new value.
  template <class R, class... A>
  Binder& Put(std::string_view name, R (C::*fn)(A...)) {
    bindings_.SetPut(name, sizeof...(A), binding::Make<C, R, A...>(fn));
    return *this;
  }
  template <class G, class S>
  Binder& Property(std::string_view name, G getter, S setter) {
    Get(name, getter);
    return Put(name, setter);
  }

  Bindings Done() { return std::move(bindings_); }

 private:
  Bindings bindings_;
};

}  // namespace vantor::server
