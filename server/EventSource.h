#pragma once
// Late-bound event delivery: a host that knows the class only through the type
// library advises a sink and receives every event by its table entry, with
// the arguments as Variants; a by-reference argument arrives as a reference
// the sink may assign through, and the control sees the new value.
#include <cstdint>
#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "runtime/Variant.h"
#include "server/TypeInfo.h"

namespace vantor::server {

using EventSink = std::function<void(const MemberInfo& event, std::span<Variant> args)>;

class EventSource {
 public:
  // A cookie for Unadvise; never 0.
  uint32_t Advise(EventSink sink);
  bool Unadvise(uint32_t cookie);
  bool HasSinks() const { return !sinks_.empty(); }

  // Every sink in the order advised. A sink advised or removed while an event
  // is delivered takes effect from the next event.
  void Fire(const MemberInfo& event, std::span<Variant> args) const;

 private:
  std::vector<std::pair<uint32_t, EventSink>> sinks_;
  uint32_t next_ = 1;
};

}  // namespace vantor::server
