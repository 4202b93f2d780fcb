#pragma once
// What the run time needs to know of an object held in a Variant. The object
// model derives its dispatch objects from this.
#include <memory>

#include "runtime/String.h"

namespace vantor {

class Variant;

class Object : public std::enable_shared_from_this<Object> {
 public:
  virtual ~Object() = default;
  // The class name, as TypeName reports it.
  virtual String ClassName() const = 0;
  // The default member's value, used when an object stands where a value is
  // wanted; false when the class has no default member.
  virtual bool DefaultValue(Variant& out) const;
};

using ObjectPtr = std::shared_ptr<Object>;

}  // namespace vantor
