#pragma once
// The late-bound face of every class of the library. A host that knows only a
// name ("Caption", "VT_ValorExtenso") or a dispatch id reaches a member here:
// the arguments are checked against the type tables (count, optional ones and
// their defaults, named ones, types), converted to the declared types, passed
// to the class's own C++ member, and by-reference arguments are written back.
//
// Failures come back as the platform's dispatch errors, with a description
// naming the member and the argument; nothing a class throws leaves Invoke.
#include <memory>
#include <span>
#include <string_view>

#include "runtime/Error.h"
#include "runtime/Object.h"
#include "runtime/Variant.h"
#include "server/Bindings.h"
#include "server/EventSource.h"
#include "server/TypeInfo.h"

namespace vantor::server {

enum class InvokeKind : uint8_t { Method, PropertyGet, PropertyPut, PropertyPutRef };

// The errors of dispatch, under the platform's numbers.
enum DispatchError : int32_t {
  errCannotCreate = 429,        // no such class
  errReadOnlyProperty = 383,    // put on a read-only property
  errWriteOnlyProperty = 394,   // get on a write-only property
  errNamedArgNotFound = 448,
  errArgNotOptional = 449,
};

class Dispatch : public Object {
 public:
  // A class of the library passes its own entry of the type library; an
  // object with no bindings stands for a class not built yet.
  explicit Dispatch(const ClassInfo& info);
  ~Dispatch() override;

  const ClassInfo& Info() const { return info_; }
  String ClassName() const override;
  bool DefaultValue(Variant& out) const override;

  // `args` holds the positional arguments first and then the named ones,
  // whose names `names` gives in the same order. For a property put the new
  // value is the last positional argument. An argument the caller wants
  // written back is passed as Variant::ByRef. On failure the error object
  // holds the reason and false is returned.
  bool Invoke(std::string_view member, InvokeKind kind, std::span<Variant> args,
              Variant* result = nullptr, std::span<const std::string_view> names = {});
  bool InvokeId(int32_t dispid, InvokeKind kind, std::span<Variant> args, Variant* result = nullptr,
                std::span<const std::string_view> names = {});

  // Whether a member has a C++ body for the given kind of call.
  bool Implements(std::string_view member, InvokeKind kind) const;

  // Late-bound event sinks.
  EventSource& Events() { return events_; }

 protected:
  // The class's bindings; the base has none, so every member of a class not
  // yet built answers "not implemented".
  virtual const Bindings* Bound() const { return nullptr; }

 private:
  bool InvokeMember(const MemberInfo& m, InvokeKind kind, std::span<Variant> args, Variant* result,
                    std::span<const std::string_view> names);

  const ClassInfo& info_;
  EventSource events_;
};

using DispatchPtr = std::shared_ptr<Dispatch>;

// Convenience for C++ callers and tests: a call with positional arguments,
// the result or Empty (with the error object set) on failure.
template <class... A>
Variant Call(Dispatch& object, std::string_view member, A&&... args) {
  Variant list[] = {Variant(std::forward<A>(args))..., Variant()};
  Variant result;
  object.Invoke(member, InvokeKind::Method, std::span<Variant>(list, sizeof...(A)), &result);
  return result;
}

}  // namespace vantor::server
