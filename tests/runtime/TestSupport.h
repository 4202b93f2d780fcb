#pragma once
// Puts a locale in force for one test and restores pt-BR after it, so a failing
// assertion cannot leave the next test in the wrong locale.
#include "runtime/Locale.h"

namespace vantor::test {

class LocaleGuard {
 public:
  explicit LocaleGuard(Locale::Id id) { Locale::Set(id); }
  ~LocaleGuard() { Locale::Set(Locale::Id::ptBR); }
  LocaleGuard(const LocaleGuard&) = delete;
  LocaleGuard& operator=(const LocaleGuard&) = delete;
};

}  // namespace vantor::test
