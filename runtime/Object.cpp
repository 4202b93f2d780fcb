#include "runtime/Object.h"

#include "runtime/Variant.h"

namespace vantor {

bool Object::DefaultValue(Variant&) const { return false; }

}  // namespace vantor
