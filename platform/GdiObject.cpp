#include "platform/GdiObject.h"

#include "platform/HandleTable.h"

namespace vantor::platform {

namespace {

HandleTable<GdiObject>& TheTable() {
  static HandleTable<GdiObject> table;
  return table;
}

uintptr_t ValueOf(HGDIOBJ handle) { return reinterpret_cast<uintptr_t>(handle); }

}  // namespace

HGDIOBJ GdiTable::Add(std::shared_ptr<GdiObject> object) {
  return reinterpret_cast<HGDIOBJ>(TheTable().Add(std::move(object)));
}

GdiObject* GdiTable::Get(HGDIOBJ handle) { return TheTable().Get(ValueOf(handle)); }

std::shared_ptr<GdiObject> GdiTable::Share(HGDIOBJ handle) {
  return TheTable().Share(ValueOf(handle));
}

bool GdiTable::Remove(HGDIOBJ handle) { return TheTable().Remove(ValueOf(handle)); }

size_t GdiTable::Count() { return TheTable().Count(); }

}  // namespace vantor::platform
