#pragma once
// What the run time's tests share: a locale held for one test, the error a
// call leaves behind, dates by their parts, and an object with a default value.
#include <utility>

#include "runtime/DateTime.h"
#include "runtime/Error.h"
#include "runtime/Locale.h"
#include "runtime/Object.h"
#include "runtime/Variant.h"

namespace vantor::test {

// Puts a locale in force for one test and restores pt-BR after it, so a failing
// assertion cannot leave the next test in the wrong locale.
class LocaleGuard {
 public:
  explicit LocaleGuard(Locale::Id id) { Locale::Set(id); }
  ~LocaleGuard() { Locale::Set(Locale::Id::ptBR); }
  LocaleGuard(const LocaleGuard&) = delete;
  LocaleGuard& operator=(const LocaleGuard&) = delete;
};

class EnglishLocale : public LocaleGuard {
 public:
  EnglishLocale() : LocaleGuard(Locale::Id::enUS) {}
};

// The error number the last call left, clearing it for the next.
inline int32_t ErrAfter() {
  const int32_t n = Err().Number();
  Err().Clear();
  return n;
}

// Runs a call with a clean error object and reports the error it left.
template <class F>
int32_t ErrorOf(F&& f) {
  Err().Clear();
  std::forward<F>(f)();
  return ErrAfter();
}

inline Date At(int y, int m, int d, int h = 0, int n = 0, int s = 0) {
  return Date(DateSerial(y, m, d).Serial() + TimeSerial(h, n, s).Serial());
}

// An object whose default member gives a fixed value; with Empty it has none.
class Answer : public Object {
 public:
  explicit Answer(Variant value) : value_(std::move(value)) {}
  String ClassName() const override { return u"Answer"; }
  bool DefaultValue(Variant& out) const override {
    if (value_.IsEmpty()) return false;
    out = value_;
    return true;
  }

 private:
  Variant value_;
};

}  // namespace vantor::test
