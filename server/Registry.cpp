#include "server/Registry.h"

#include <stdexcept>

namespace vantor::server {

Registry& Registry::Instance() {
  static Registry registry;
  return registry;
}

std::string Registry::Key(std::string_view name) {
  const std::string prefix = std::string(TypeLibrary::kName) + ".";
  std::string key = FoldName(name);
  const std::string lowerPrefix = FoldName(prefix);
  if (key.size() > prefix.size() && key.compare(0, prefix.size(), lowerPrefix) == 0)
    key.erase(0, prefix.size());
  return key;
}

void Registry::Register(std::string_view className, Factory factory) {
  const ClassInfo* info = TypeLibrary::Get().FindClass(className);
  if (!info) throw std::logic_error("the type library has no class " + std::string(className));
  Register(*info, std::move(factory));
}

void Registry::Register(const ClassInfo& info, Factory factory) {
  entries_[Key(info.name)] = Entry{&info, std::move(factory)};
}

void Registry::Unregister(std::string_view className) { entries_.erase(Key(className)); }

const ClassInfo* Registry::Find(std::string_view nameOrProgId) const {
  auto it = entries_.find(Key(nameOrProgId));
  if (it != entries_.end()) return it->second.info;
  return TypeLibrary::Get().FindClass(nameOrProgId);
}

bool Registry::IsImplemented(std::string_view nameOrProgId) const {
  return entries_.count(Key(nameOrProgId)) != 0;
}

DispatchPtr Registry::Create(std::string_view nameOrProgId) const {
  auto it = entries_.find(Key(nameOrProgId));
  if (it != entries_.end()) {
    try {
      if (DispatchPtr object = it->second.factory()) return object;
      Err().Set(errCannotCreate, FromUtf8(nameOrProgId),
                FromUtf8("Cannot create " + std::string(nameOrProgId)));
      return nullptr;
    } catch (const std::exception& e) {
      Err().Set(errCannotCreate, FromUtf8(nameOrProgId),
                FromUtf8("Cannot create " + std::string(nameOrProgId) + ": " + e.what()));
      return nullptr;
    }
  } else if (const ClassInfo* info = TypeLibrary::Get().FindClass(nameOrProgId)) {
    return std::make_shared<Dispatch>(*info);
  }
  Err().Set(errCannotCreate, FromUtf8(nameOrProgId),
            FromUtf8("Cannot create object: no class named '" + std::string(nameOrProgId) + "'"));
  return nullptr;
}

}  // namespace vantor::server
