#include "server/Dispatch.h"

#include <string>
#include <vector>

namespace vantor::server {

namespace {

bool Fail(int32_t number, const std::string& source, const std::string& description) {
  Err().Set(number, FromUtf8(source), FromUtf8(description));
  return false;
}

std::string TypeNameOf(const Variant& v) { return ToUtf8(v.Deref().TypeName()); }

// Converts an argument to the type the table declares, as the platform's
// dispatch does before a typed member sees it.
bool Coerce(const Variant& value, const TypeRef& type, Variant& out) {
  const Variant& v = value.Deref();
  if (type.base == BaseType::Variant && !type.array) {
    out = v;
    return true;
  }
  if (type.IsObject()) {
    if (v.IsEmpty() || (v.IsObject() && !*v.ObjectRef())) {
      out = Variant(ObjectPtr());
      return true;
    }
    if (!v.IsObject()) return false;
    if (type.base == BaseType::Class) {
      const auto* d = dynamic_cast<const Dispatch*>(v.ObjectRef()->get());
      if (!d || !SameName(d->Info().name, type.name)) return false;
    }
    out = v;
    return true;
  }
  if (type.array) {
    const SafeArray* a = v.Array();
    if (!a) return false;
    const VbVarType element = static_cast<VbVarType>(type.VarType() & ~vbArray);
    if (element != vbVariant && a->ElementType() != element) return false;
    out = v;
    return true;
  }
  const VbVarType vt = type.VarType();
  if (vt == vbVariant) {
    out = v;
    return true;
  }
  if (!v.CanChangeType(vt)) return false;
  out = v.ChangeType(vt);
  return true;
}

// The value an omitted optional argument takes.
Variant Omitted(const ParamInfo& p) {
  if (!p.defaultValue.IsEmpty()) return p.defaultValue;
  if (p.type.base == BaseType::Variant && !p.type.array) return Variant::Missing();
  if (p.type.IsObject()) return Variant(ObjectPtr());
  if (p.type.array) return Variant(SafeArray(static_cast<VbVarType>(p.type.VarType() & ~vbArray), {}));
  return Variant().ChangeType(p.type.VarType());
}

}  // namespace

Dispatch::Dispatch(const ClassInfo& info) : info_(info) {}

Dispatch::~Dispatch() = default;

String Dispatch::ClassName() const { return FromUtf8(info_.name); }

bool Dispatch::DefaultValue(Variant& out) const {
  const MemberInfo* m = info_.dispatch.FindId(kDispidValue);
  const Bindings* b = Bound();
  if (!m || !m->params.empty() || !b || !b->For(*m) || !b->For(*m)->get) return false;
  out = b->For(*m)->get(const_cast<Dispatch&>(*this), {});
  return true;
}

bool Dispatch::Implements(std::string_view member, InvokeKind kind) const {
  const MemberInfo* m = info_.dispatch.Find(member);
  const Bindings* b = Bound();
  const MemberBinding* mb = (m && b) ? b->For(*m) : nullptr;
  if (!mb) return false;
  switch (kind) {
    case InvokeKind::Method: return static_cast<bool>(mb->call ? mb->call : mb->get);
    case InvokeKind::PropertyGet: return static_cast<bool>(mb->get);
    case InvokeKind::PropertyPut: return static_cast<bool>(mb->put);
    case InvokeKind::PropertyPutRef: return static_cast<bool>(mb->putRef);
  }
  return false;
}

bool Dispatch::Invoke(std::string_view member, InvokeKind kind, std::span<Variant> args,
                      Variant* result, std::span<const std::string_view> names) {
  const MemberInfo* m = info_.dispatch.Find(member);
  if (!m)
    return Fail(errNotSupported, std::string(info_.name),
                std::string(info_.name) + " has no member '" + std::string(member) + "'");
  return InvokeMember(*m, kind, args, result, names);
}

bool Dispatch::InvokeId(int32_t dispid, InvokeKind kind, std::span<Variant> args, Variant* result,
                        std::span<const std::string_view> names) {
  const MemberInfo* m = info_.dispatch.FindId(dispid);
  if (!m)
    return Fail(errNotSupported, std::string(info_.name),
                std::string(info_.name) + " has no member with dispatch id " + std::to_string(dispid));
  return InvokeMember(*m, kind, args, result, names);
}

bool Dispatch::InvokeMember(const MemberInfo& m, InvokeKind kind, std::span<Variant> args,
                            Variant* result, std::span<const std::string_view> names) {
  const std::string where = std::string(info_.name) + "." + std::string(m.name);
  const bool isPut = kind == InvokeKind::PropertyPut || kind == InvokeKind::PropertyPutRef;

  // The kind of call against the kind of member. A method call on a property
  // reads it, as `x = obj.Caption` arrives; put and putref stand for each
  // other where the member has only one of them.
  if (isPut) {
    if (m.kind == MemberKind::ReadOnly)
      return Fail(errReadOnlyProperty, where, where + " is read-only");
    if (m.kind == MemberKind::Method || m.kind == MemberKind::Event)
      return Fail(errWrongArguments, where, where + " is a method and cannot be assigned");
  } else if (m.kind == MemberKind::WriteOnly) {
    return Fail(errWriteOnlyProperty, where, where + " is write-only");
  }

  if (names.size() > args.size())
    return Fail(errWrongArguments, where, where + ": more argument names than arguments");
  const size_t named = names.size();
  size_t positional = args.size() - named;
  Variant* value = nullptr;
  if (isPut) {
    if (positional == 0) return Fail(errWrongArguments, where, where + ": no value to assign");
    value = &args[--positional];
  }

  const auto& params = m.params;
  if (positional > params.size())
    return Fail(errWrongArguments, where,
                "Wrong number of arguments: " + where + " takes " +
                    (params.size() == m.RequiredCount() ? "" : "at most ") + std::to_string(params.size()) +
                    ", " + std::to_string(positional) + " given");
  std::vector<Variant*> given(params.size(), nullptr);
  for (size_t i = 0; i < positional; ++i) given[i] = &args[i];
  for (size_t n = 0; n < named; ++n) {
    size_t i = 0;
    while (i < params.size() && !SameName(params[i].name, names[n])) ++i;
    if (i == params.size())
      return Fail(errNamedArgNotFound, where,
                  "Named argument not found: " + where + " has no argument '" + std::string(names[n]) + "'");
    if (given[i])
      return Fail(errWrongArguments, where,
                  where + ": argument '" + std::string(params[i].name) + "' given twice");
    given[i] = &args[positional + (isPut ? 1 : 0) + n];
  }

  std::vector<Variant> call(params.size() + (isPut ? 1 : 0));
  for (size_t i = 0; i < params.size(); ++i) {
    const ParamInfo& p = params[i];
    if (!given[i] || given[i]->Deref().IsMissing()) {
      if (!p.optional)
        return Fail(errArgNotOptional, where,
                    "Argument not optional: '" + std::string(p.name) + "' of " + where);
      call[i] = Omitted(p);
      continue;
    }
    if (!Coerce(*given[i], p.type, call[i]))
      return Fail(errTypeMismatch, where,
                  "Type mismatch: argument '" + std::string(p.name) + "' of " + where + " is " +
                      p.type.Text() + ", not " + TypeNameOf(*given[i]));
  }
  if (value && !Coerce(*value, m.type, call.back()))
    return Fail(errTypeMismatch, where,
                "Type mismatch: " + where + " is " + m.type.Text() + ", not " + TypeNameOf(*value));

  const Bindings* bound = Bound();
  const MemberBinding* mb = bound ? bound->For(m) : nullptr;
  const Handler* h = nullptr;
  if (mb) {
    switch (kind) {
      case InvokeKind::Method: h = mb->call ? &mb->call : &mb->get; break;
      case InvokeKind::PropertyGet: h = mb->get ? &mb->get : &mb->call; break;
      case InvokeKind::PropertyPut: h = mb->put ? &mb->put : &mb->putRef; break;
      case InvokeKind::PropertyPutRef: h = mb->putRef ? &mb->putRef : &mb->put; break;
    }
  }
  if (!h || !*h) return Fail(errNotImplemented, where, where + " is not implemented yet");

  // By-reference arguments go back to the caller only when the member
  // changed them, so that passing a variable does not retype it.
  const std::vector<Variant> before = call;
  Variant r;
  try {
    r = (*h)(*this, call);
  } catch (const Error& e) {
    Err().Set(e);
    return false;
  } catch (const std::exception& e) {
    return Fail(errInvalidProcedureCall, where, where + ": " + e.what());
  }
  for (size_t i = 0; i < params.size(); ++i) {
    if (params[i].byRef && given[i] && given[i]->IsByRef() && !call[i].SameAs(before[i]))
      given[i]->Assign(call[i]);
  }
  if (result) *result = std::move(r);
  // Members run in skip-and-continue mode: whatever they left in the error
  // object was theirs to clear.
  Err().Clear();
  return true;
}

}  // namespace vantor::server
