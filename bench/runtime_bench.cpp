// Speed of the run time beside the C library doing the nearest job in the same
// process: Format against snprintf and strftime, Like against fnmatch, the
// conversions against strtod and snprintf. The ratio is ours over the peer's
// time per call; the peers do less (no locale rules, no sections, no Variant),
// so a ratio near 1 is good and the figures are for watching trends.
#include <fnmatch.h>
#include <time.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>

#include <benchmark/benchmark.h>

#include "runtime/Conversion.h"
#include "runtime/DateTime.h"
#include "runtime/Format.h"
#include "runtime/Like.h"
#include "runtime/Locale.h"

using namespace vantor;

namespace {

long g_iterations = 200000;

double NanosPerCall(const std::function<void()>& f) {
  for (int i = 0; i < 1000; ++i) f();  // warm caches and the allocator
  const auto start = std::chrono::steady_clock::now();
  for (long i = 0; i < g_iterations; ++i) f();
  const auto end = std::chrono::steady_clock::now();
  return std::chrono::duration<double, std::nano>(end - start).count() / static_cast<double>(g_iterations);
}

void Row(const char* what, const std::function<void()>& ours, const char* peerName,
         const std::function<void()>& peer) {
  const double a = NanosPerCall(ours);
  const double b = NanosPerCall(peer);
  std::printf("%-34s %9.1f ns  %-18s %9.1f ns  ratio %5.2f  (%.2f M calls/s)\n", what, a, peerName,
              b, a / b, 1000.0 / a);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--quick") == 0) g_iterations = 20000;
  Locale::Set(Locale::Id::ptBR);
  char buf[128];
  const Variant amount(1234567.891);
  const Variant date(DateSerial(2024, 12, 31) .Serial() + 0.5);
  const Date when = DateSerial(2024, 12, 31);
  std::tm tm{};
  tm.tm_year = 124, tm.tm_mon = 11, tm.tm_mday = 31, tm.tm_hour = 12;
  const Variant numericText(String(u"1234,5"));
  const String text = u"Relatório de vendas 2024-12 (filial 07).txt";
  const std::string textUtf8 = ToUtf8(text);

  std::printf("%-34s %12s  %-18s %12s\n", "operation", "ours", "peer", "peer time");
  Row("Format(x, \"#,##0.00\")", [&] { benchmark::DoNotOptimize(Format(amount, u"#,##0.00")); },
      "snprintf %.2f", [&] { benchmark::DoNotOptimize(std::snprintf(buf, sizeof buf, "%.2f", 1234567.891)); });
  Row("Format(x, \"0.00\")", [&] { benchmark::DoNotOptimize(Format(amount, u"0.00")); },
      "snprintf %.2f", [&] { benchmark::DoNotOptimize(std::snprintf(buf, sizeof buf, "%.2f", 1234567.891)); });
  Row("Format(d, \"dd/mm/yyyy hh:nn:ss\")",
      [&] { benchmark::DoNotOptimize(Format(date, u"dd/mm/yyyy hh:nn:ss")); }, "strftime",
      [&] { benchmark::DoNotOptimize(std::strftime(buf, sizeof buf, "%d/%m/%Y %H:%M:%S", &tm)); });
  Row("Format(d, \"ww\")", [&] { benchmark::DoNotOptimize(Format(Variant(when), u"ww")); },
      "strftime %U", [&] { benchmark::DoNotOptimize(std::strftime(buf, sizeof buf, "%U", &tm)); });
  Row("Format(s, \"@@@.@@@.@@@\")",
      [&] { benchmark::DoNotOptimize(Format(Variant(String(u"1234567")), u"@@@.@@@.@@@")); },
      "snprintf %d", [&] { benchmark::DoNotOptimize(std::snprintf(buf, sizeof buf, "%d", 1234567)); });
  Row("Like(s, \"*vendas*[0-9]#*.txt\")",
      [&] { benchmark::DoNotOptimize(Like(text, u"*vendas*[0-9]#*.txt")); }, "fnmatch",
      [&] { benchmark::DoNotOptimize(fnmatch("*vendas*[0-9][0-9]*.txt", textUtf8.c_str(), 0)); });
  Row("Like(s, \"R?lat*\") miss", [&] { benchmark::DoNotOptimize(Like(text, u"R?lat*")); },
      "fnmatch", [&] { benchmark::DoNotOptimize(fnmatch("R?lat*", textUtf8.c_str(), 0)); });
  Row("CDbl(\"1234,5\")", [&] { benchmark::DoNotOptimize(CDbl(numericText)); }, "strtod",
      [&] { benchmark::DoNotOptimize(std::strtod("1234.5", nullptr)); });
  Row("Val(\"1234.5\")", [&] { benchmark::DoNotOptimize(Val(u"1234.5")); }, "strtod",
      [&] { benchmark::DoNotOptimize(std::strtod("1234.5", nullptr)); });
  Row("IsNumeric(\"1234,5\")", [&] { benchmark::DoNotOptimize(IsNumeric(numericText)); }, "strtod",
      [&] { benchmark::DoNotOptimize(std::strtod("1234.5", nullptr)); });
  Row("CStr(1/3)", [&] { benchmark::DoNotOptimize(CStr(1.0 / 3.0)); }, "snprintf %.15G",
      [&] { benchmark::DoNotOptimize(std::snprintf(buf, sizeof buf, "%.15G", 1.0 / 3.0)); });
  Row("CInt(2.5)", [&] { benchmark::DoNotOptimize(CInt(2.5)); }, "lrint",
      [&] { benchmark::DoNotOptimize(std::lrint(2.5)); });
  Row("CDate(\"31/12/2024 12:00:00\")",
      [&] { benchmark::DoNotOptimize(CDate(Variant(String(u"31/12/2024 12:00:00")))); }, "strptime",
      [&] { benchmark::DoNotOptimize(strptime("31/12/2024 12:00:00", "%d/%m/%Y %H:%M:%S", &tm)); });
  return 0;
}
