#include "server/EventSource.h"

#include <algorithm>

namespace vantor::server {

uint32_t EventSource::Advise(EventSink sink) {
  const uint32_t cookie = next_++;
  sinks_.emplace_back(cookie, std::move(sink));
  return cookie;
}

bool EventSource::Unadvise(uint32_t cookie) {
  auto it = std::find_if(sinks_.begin(), sinks_.end(),
                         [cookie](const auto& s) { return s.first == cookie; });
  if (it == sinks_.end()) return false;
  sinks_.erase(it);
  return true;
}

void EventSource::Fire(const MemberInfo& event, std::span<Variant> args) const {
  // A copy, so that a sink may unadvise itself or others from inside.
  const auto sinks = sinks_;
  for (const auto& s : sinks) s.second(event, args);
}

}  // namespace vantor::server
