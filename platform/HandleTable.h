#pragma once
// The table behind a kind of handle. A handle's value packs a slot index and
// the slot's generation (low 16 bits); freeing a slot moves its generation on,
// so a stale handle is refused even after the slot is reused, and a value
// that was never handed out finds nothing instead of being followed.
#include <cstdint>
#include <memory>
#include <vector>

namespace vantor::platform {

template <class T>
class HandleTable {
 public:
  HandleTable() = default;
  HandleTable(const HandleTable&) = delete;
  HandleTable& operator=(const HandleTable&) = delete;
  // At exit the objects still alive go while the table is whole and already
  // empty, so one that looks up another as it dies (a DC releasing its pen)
  // finds nothing instead of a half-destroyed neighbour.
  ~HandleTable() {
    std::vector<std::shared_ptr<T>> doomed;
    for (Slot& slot : slots_) {
      if (slot.object) doomed.push_back(std::move(slot.object));
    }
    doomed.clear();
  }

  uintptr_t Add(std::shared_ptr<T> object) {
    if (!object) return 0;
    size_t index;
    if (!free_.empty()) {
      index = free_.back();
      free_.pop_back();
    } else {
      index = slots_.size();
      slots_.emplace_back();
    }
    Slot& slot = slots_[index];
    slot.object = std::move(object);
    ++live_;
    return (index << kGenerationBits) | slot.generation;
  }

  T* Get(uintptr_t value) const {
    const Slot* slot = Find(value);
    return slot ? slot->object.get() : nullptr;
  }

  std::shared_ptr<T> Share(uintptr_t value) const {
    const Slot* slot = Find(value);
    return slot ? slot->object : nullptr;
  }

  bool Remove(uintptr_t value) {
    Slot* slot = const_cast<Slot*>(Find(value));
    if (slot == nullptr) return false;
    slot->object.reset();
    // Generation 0 is skipped so that no live value is ever 0.
    slot->generation = (slot->generation + 1) & kGenerationMask;
    if (slot->generation == 0) slot->generation = 1;
    free_.push_back(static_cast<size_t>(slot - slots_.data()));
    --live_;
    return true;
  }

  size_t Count() const { return live_; }

 private:
  static constexpr uintptr_t kGenerationBits = 16;
  static constexpr uintptr_t kGenerationMask = (uintptr_t{1} << kGenerationBits) - 1;

  struct Slot {
    std::shared_ptr<T> object;
    uintptr_t generation = 1;
  };

  const Slot* Find(uintptr_t value) const {
    const size_t index = value >> kGenerationBits;
    if (index == 0 || index >= slots_.size()) return nullptr;  // slot 0 is never used
    const Slot& slot = slots_[index];
    if (!slot.object || slot.generation != (value & kGenerationMask)) return nullptr;
    return &slot;
  }

  std::vector<Slot> slots_ = std::vector<Slot>(1);
  std::vector<size_t> free_;
  size_t live_ = 0;
};

}  // namespace vantor::platform
