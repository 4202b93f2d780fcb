#include <cstdio>

#include "runtime/Format.h"
#include "runtime/Locale.h"

int main() {
  vantor::Locale::Set(vantor::Locale::Id::ptBR);
  const auto text = vantor::Format(1234.5, u"#,##0.00");
  std::printf("consumer: %s\n", vantor::ToUtf8(text).c_str());
  return text == u"1.234,50" ? 0 : 1;
}
