#include "platform/GdiObject.h"

#include <vector>

namespace vantor::platform {

namespace {

// Slot 0 is never used, so no live handle is null. The low 16 bits of a value
// are the slot's generation, the rest its index.
constexpr uintptr_t kGenerationBits = 16;
constexpr uintptr_t kGenerationMask = (uintptr_t{1} << kGenerationBits) - 1;

struct Slot {
  std::shared_ptr<GdiObject> object;
  uintptr_t generation = 1;
};

struct Table {
  std::vector<Slot> slots = std::vector<Slot>(1);
  std::vector<size_t> free;
  size_t live = 0;
};

Table& TheTable() {
  static Table table;
  return table;
}

Slot* Find(HGDIOBJ handle) {
  const auto value = reinterpret_cast<uintptr_t>(handle);
  const size_t index = value >> kGenerationBits;
  Table& t = TheTable();
  if (index == 0 || index >= t.slots.size()) return nullptr;
  Slot& slot = t.slots[index];
  if (!slot.object || slot.generation != (value & kGenerationMask)) return nullptr;
  return &slot;
}

}  // namespace

HGDIOBJ GdiTable::Add(std::shared_ptr<GdiObject> object) {
  if (!object) return nullptr;
  Table& t = TheTable();
  size_t index;
  if (!t.free.empty()) {
    index = t.free.back();
    t.free.pop_back();
  } else {
    index = t.slots.size();
    t.slots.emplace_back();
  }
  Slot& slot = t.slots[index];
  slot.object = std::move(object);
  ++t.live;
  return reinterpret_cast<HGDIOBJ>((index << kGenerationBits) | slot.generation);
}

GdiObject* GdiTable::Get(HGDIOBJ handle) {
  Slot* slot = Find(handle);
  return slot ? slot->object.get() : nullptr;
}

std::shared_ptr<GdiObject> GdiTable::Share(HGDIOBJ handle) {
  Slot* slot = Find(handle);
  return slot ? slot->object : nullptr;
}

bool GdiTable::Remove(HGDIOBJ handle) {
  Slot* slot = Find(handle);
  if (slot == nullptr) return false;
  slot->object.reset();
  // Generation 0 is skipped so that a value never has all-zero low bits twice.
  slot->generation = (slot->generation + 1) & kGenerationMask;
  if (slot->generation == 0) slot->generation = 1;
  Table& t = TheTable();
  t.free.push_back(static_cast<size_t>(slot - t.slots.data()));
  --t.live;
  return true;
}

size_t GdiTable::Count() { return TheTable().live; }

}  // namespace vantor::platform
