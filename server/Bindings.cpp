#include "server/Bindings.h"

#include <stdexcept>
#include <string>

namespace vantor::server {

Bindings::Bindings(const ClassInfo& info) : info_(info), members_(info.dispatch.members.size()) {}

const MemberBinding* Bindings::For(const MemberInfo& member) const {
  const auto& all = info_.dispatch.members;
  if (all.empty() || &member < all.data() || &member >= all.data() + all.size()) return nullptr;
  return &members_[static_cast<size_t>(&member - all.data())];
}

MemberBinding& Bindings::Slot(std::string_view name, const MemberInfo** member) {
  *member = info_.dispatch.Find(name);
  if (!*member)
    throw std::logic_error(std::string(info_.name) + " has no member " + std::string(name));
  return members_[static_cast<size_t>(*member - info_.dispatch.members.data())];
}

namespace {

void Check(bool ok, const ClassInfo& info, const MemberInfo& m, const char* what, size_t arity) {
  if (!ok)
    throw std::logic_error(std::string(info.name) + "." + std::string(m.name) + " cannot be bound as " +
                           what + " with " + std::to_string(arity) + " arguments");
}

}  // namespace

void Bindings::SetGet(std::string_view name, size_t arity, Handler h) {
  const MemberInfo* m = nullptr;
  MemberBinding& slot = Slot(name, &m);
  Check(m->CanGet() && arity == m->params.size(), info_, *m, "a get", arity);
  slot.get = std::move(h);
}

void Bindings::SetPut(std::string_view name, size_t arity, Handler h) {
  const MemberInfo* m = nullptr;
  MemberBinding& slot = Slot(name, &m);
  Check((m->CanPut() || m->CanPutRef()) && arity == m->params.size() + 1, info_, *m, "a put", arity);
  (m->CanPutRef() ? slot.putRef : slot.put) = std::move(h);
}

void Bindings::SetCall(std::string_view name, size_t arity, Handler h) {
  const MemberInfo* m = nullptr;
  MemberBinding& slot = Slot(name, &m);
  Check(m->kind == MemberKind::Method && arity == m->params.size(), info_, *m, "a method", arity);
  slot.call = std::move(h);
}

}  // namespace vantor::server
