#include "platform/WindowClass.h"

#include <algorithm>

#include "platform/ToolTipWindow.h"

namespace vantor::platform {

namespace {

// The platform hands out class atoms from 0xC000 up.
constexpr ATOM kFirstAtom = 0xC000;

struct Registry {
  std::vector<std::shared_ptr<WindowClass>> classes;
  // The platform's system classes need no registration: each is made the
  // first time its name is asked for. An application's class of the same name
  // comes first, and none of them can be unregistered.
  std::vector<std::shared_ptr<WindowClass>> system;
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

std::shared_ptr<WindowClass> MakeSystemClass(LPCWSTR name) {
  if (SameName(TOOLTIPS_CLASSW, name)) return MakeToolTipClass();
  return nullptr;
}

std::shared_ptr<WindowClass> FindIn(const std::vector<std::shared_ptr<WindowClass>>& v,
                                    LPCWSTR name) {
  if (IS_INTRESOURCE(name)) {
    const auto atom = static_cast<ATOM>(reinterpret_cast<uintptr_t>(name));
    for (auto& c : v) {
      if (c->atom == atom) return c;
    }
    return nullptr;
  }
  for (auto& c : v) {
    if (SameName(c->name, name)) return c;
  }
  return nullptr;
}

}  // namespace

ATOM WindowClass::Register(std::shared_ptr<WindowClass> cls) {
  if (!cls || cls->name.empty() || cls->name.size() > 255 || cls->class_extra < 0 ||
      cls->window_extra < 0 || cls->class_extra > 40 * 1024 || cls->window_extra > 40 * 1024) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  if (FindIn(TheRegistry().classes, cls->name.c_str())) {
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
  if (auto cls = FindIn(r.classes, name)) return cls;
  if (auto cls = FindIn(r.system, name)) return cls;
  if (IS_INTRESOURCE(name) || r.next_atom == 0xFFFF) return nullptr;
  auto cls = MakeSystemClass(name);
  if (cls) {
    cls->atom = r.next_atom++;
    r.system.push_back(cls);
  }
  return cls;
}

bool WindowClass::Unregister(LPCWSTR name) {
  auto cls = name == nullptr ? nullptr : FindIn(TheRegistry().classes, name);
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
  TheRegistry().system.clear();
  TheRegistry().next_atom = kFirstAtom;
}

}  // namespace vantor::platform
