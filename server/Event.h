#pragma once
// A typed event of a class: C++ hosts connect handlers with the event's own
// signature; hosts that know only the type library receive the same event
// through the object's late-bound sinks. Arguments the table marks by
// reference are passed as C++ references, and whatever a handler or a sink
// writes into them is what the class reads after raising:
//
//   Event<int16_t&> KeyPress{*this, "KeyPress"};
//   ...
//   KeyPress(keyAscii);   // keyAscii may come back changed
#include <array>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "server/Bindings.h"
#include "server/Dispatch.h"

namespace vantor::server {

template <class... A>
class Event {
 public:
  using Handler = std::function<void(A...)>;

  Event(Dispatch& owner, std::string_view name)
      : source_(owner.Events()), info_(owner.Info().events.Find(name)) {
    if (!info_ || info_->params.size() != sizeof...(A))
      throw std::logic_error(std::string(owner.Info().name) + " has no event " + std::string(name) +
                             " with " + std::to_string(sizeof...(A)) + " arguments");
  }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  // A cookie for Disconnect; never 0.
  uint32_t Connect(Handler handler) {
    handlers_.emplace_back(next_, std::move(handler));
    return next_++;
  }
  bool Disconnect(uint32_t cookie) {
    for (auto it = handlers_.begin(); it != handlers_.end(); ++it) {
      if (it->first == cookie) {
        handlers_.erase(it);
        return true;
      }
    }
    return false;
  }
  const MemberInfo& Info() const { return *info_; }

  void operator()(A... args) {
    const auto handlers = handlers_;
    for (const auto& h : handlers) h.second(args...);
    if (source_.HasSinks()) FireLateBound(std::forward_as_tuple(args...), std::index_sequence_for<A...>{});
  }

 private:
  template <class Tuple, size_t... I>
  void FireLateBound([[maybe_unused]] Tuple refs, std::index_sequence<I...>) {
    std::array<Variant, sizeof...(A)> store{binding::ToVariant(std::get<I>(refs))...};
    std::array<Variant, sizeof...(A)> list;
    for (size_t i = 0; i < list.size(); ++i)
      list[i] = info_->params[i].byRef ? Variant::ByRef(&store[i]) : store[i];
    source_.Fire(*info_, list);
    // A sink that stored something the argument's type cannot hold leaves it.
    (WriteBack<A>(std::get<I>(refs), store[I], info_->params[I].type.VarType()), ...);
  }

  template <class T, class Ref>
  static void WriteBack(Ref& target, const Variant& value, VbVarType type) {
    if constexpr (binding::kWritesBack<T>) {
      if (type == vbVariant || value.CanChangeType(type))
        target = binding::FromVariant<std::remove_cvref_t<T>>(value);
    }
  }

  EventSource& source_;
  const MemberInfo* info_;
  std::vector<std::pair<uint32_t, Handler>> handlers_;
  uint32_t next_ = 1;
};

}  // namespace vantor::server
