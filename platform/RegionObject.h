#pragma once
// The object behind an HRGN.
#include "platform/GdiObject.h"
#include "platform/Region.h"

namespace vantor::platform {

class RegionObject : public GdiObject {
 public:
  RegionObject() : GdiObject(OBJ_REGION) {}
  explicit RegionObject(Region r) : GdiObject(OBJ_REGION), region(std::move(r)) {}
  Region region;
};

}  // namespace vantor::platform
