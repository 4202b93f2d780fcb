#pragma once
// Every GDI object behind a handle: pens, brushes, fonts, bitmaps, regions and
// device contexts live in one table, so that a stale or foreign handle is
// recognised and refused (the platform's failure value) instead of being
// followed. A handle's value packs the slot and a generation count; a slot
// reused after DeleteObject gets a new generation, so the old handle stays dead.
#include <cstdint>
#include <memory>

#include "platform/WinTypes.h"

namespace vantor::platform {

// The platform's object types, as GetObjectType reports them.
enum : DWORD {
  OBJ_PEN = 1,
  OBJ_BRUSH = 2,
  OBJ_DC = 3,
  OBJ_METADC = 4,
  OBJ_PAL = 5,
  OBJ_FONT = 6,
  OBJ_BITMAP = 7,
  OBJ_REGION = 8,
  OBJ_MEMDC = 10,
};

class GdiObject {
 public:
  explicit GdiObject(DWORD type) : type_(type) {}
  virtual ~GdiObject() = default;
  DWORD Type() const { return type_; }
  // Stock objects survive DeleteObject, as on the platform.
  bool stock = false;
  // How many device contexts have it selected; DeleteObject of a selected
  // object fails, as on the platform.
  int selections = 0;

 private:
  DWORD type_;
};

class GdiTable {
 public:
  static HGDIOBJ Add(std::shared_ptr<GdiObject> object);
  // The object, or nullptr for a null, stale or unknown handle.
  static GdiObject* Get(HGDIOBJ handle);
  static std::shared_ptr<GdiObject> Share(HGDIOBJ handle);
  template <class T>
  static T* Get(HGDIOBJ handle, DWORD type) {
    GdiObject* o = Get(handle);
    return o != nullptr && o->Type() == type ? static_cast<T*>(o) : nullptr;
  }
  // Frees the slot; false for a dead handle.
  static bool Remove(HGDIOBJ handle);
  // Live objects, for leak checks in tests.
  static size_t Count();
};

}  // namespace vantor::platform
