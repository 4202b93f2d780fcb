#include "platform/WindowClass.h"

#include <algorithm>

namespace vantor::platform {

namespace {

// The platform hands out class atoms from 0xC000 up.
constexpr ATOM kFirstAtom = 0xC000;

struct Registry {
  std::vector<std::shared_ptr<WindowClass>> classes;
  ATOM next_atom = kFirstAtom;
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

char16_t Fold(char16_t c) {
  return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
}

bool SameName(const String& a, LPCWSTR b) {
  size_t i = 0;
  for (; i < a.size(); ++i) {
    if (b[i] == 0 || Fold(a[i]) != Fold(b[i])) return false;
  }
  return b[i] == 0;
}

}  // namespace

ATOM WindowClass::Register(std::shared_ptr<WindowClass> cls) {
  if (!cls || cls->name.empty() || cls->name.size() > 255 || cls->class_extra < 0 ||
      cls->window_extra < 0 || cls->class_extra > 40 * 1024 || cls->window_extra > 40 * 1024) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  if (Find(cls->name.c_str())) {
    SetLastError(ERROR_CLASS_ALREADY_EXISTS);
    return 0;
  }
  Registry& r = TheRegistry();
  if (r.next_atom == 0xFFFF) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  cls->atom = r.next_atom++;
  cls->extra_bytes.assign(static_cast<size_t>(cls->class_extra), 0);
  r.classes.push_back(cls);
  return cls->atom;
}

std::shared_ptr<WindowClass> WindowClass::Find(LPCWSTR name) {
  if (name == nullptr) return nullptr;
  Registry& r = TheRegistry();
  if (IS_INTRESOURCE(name)) {
    const auto atom = static_cast<ATOM>(reinterpret_cast<uintptr_t>(name));
    for (auto& c : r.classes) {
      if (c->atom == atom) return c;
    }
    return nullptr;
  }
  for (auto& c : r.classes) {
    if (SameName(c->name, name)) return c;
  }
  return nullptr;
}

bool WindowClass::Unregister(LPCWSTR name) {
  auto cls = Find(name);
  if (!cls) {
    SetLastError(ERROR_CLASS_DOES_NOT_EXIST);
    return false;
  }
  if (cls->windows > 0) {
    SetLastError(ERROR_CLASS_HAS_WINDOWS);
    return false;
  }
  auto& v = TheRegistry().classes;
  v.erase(std::remove(v.begin(), v.end(), cls), v.end());
  return true;
}

void WindowClass::UnregisterAll() {
  TheRegistry().classes.clear();
  TheRegistry().next_atom = kFirstAtom;
}

}  // namespace vantor::platform
