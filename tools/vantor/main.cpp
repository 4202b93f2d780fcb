// The vantor command line: its version, the run time exercised (a smoke run
// and a few of the run time's functions on the arguments, so that a person can
// see the locale-dependent behaviour at once), the type library listed, and
// any member of the library called by name.
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "host/LibraryClasses.h"
#include "runtime/Conversion.h"
#include "runtime/DateTime.h"
#include "runtime/Error.h"
#include "runtime/Format.h"
#include "runtime/Like.h"
#include "runtime/Locale.h"
#include "runtime/Strings.h"
#include "tools/vantor/CallCommand.h"
#include "tools/vantor/DemoWindow.h"
#include "tools/vantor/GalleryCommand.h"
#include "tools/vantor/ImageCommand.h"
#include "tools/vantor/TypeLibCommand.h"

using namespace vantor;

namespace {

void Print(StringView s) {
  std::printf("%s\n", ToUtf8(s).c_str());
}

// A value from the command line: a number if the locale reads it as one, a
// date if it reads as a date, text otherwise.
Variant ValueOf(const char* arg) {
  const String text = FromUtf8(arg);
  if (IsNumeric(Variant(text))) return Variant(CDbl(Variant(text)));
  if (IsDate(Variant(text))) return Variant(CDate(Variant(text)));
  return Variant(text);
}

int Usage() {
  std::printf(
      "usage: vantor [--locale pt-BR|en-US] COMMAND\n"
      "  --version               print the version\n"
      "  smoke                   run a short check of the run time and print what it does\n"
      "  format VALUE PATTERN    Format(VALUE, PATTERN)\n"
      "  like TEXT PATTERN       TEXT Like PATTERN\n"
      "  cstr VALUE              CStr of the value as read\n"
      "  screenshot FILE.png     draw a small window, click its button, save the picture\n"
      "  typelib [CLASS]         list the type library's classes with their members and events,\n"
      "                          then its enumerations and records; or only CLASS\n"
      "  typelib --idl [FILE]    write the type library as IDL, to FILE or the standard output\n"
      "  call [--out FILE] CLASS.MEMBER [ARG...]\n"
      "                          create CLASS, call MEMBER (a method, or a property read)\n"
      "                          and print the result; --out writes it to FILE instead\n"
      "  call CLASS.PROPERTY= [INDEX...] VALUE\n"
      "                          assign a property (also CLASS.PROPERTY=VALUE), then print it\n"
      "                          as read back\n"
      "    ARG: 12 is a Long, 1.5 a Double (\".\" in every locale), true or false a Boolean,\n"
      "    @PATH the file's bytes, anything else a String; --str ARG takes ARG as a String;\n"
      "    NAME:=ARG is a named argument, after the positional ones. Results print as the\n"
      "    locale writes them, byte arrays in hexadecimal; then each by-reference parameter\n"
      "    as NAME = VALUE. Exit status: 0 done, 1 the call failed, 2 a malformed command.\n"
      "  gallery OUTDIR          every control in every theme and state as PNG pictures,\n"
      "                          with an index.html that shows them side by side\n"
      "  image info FILE         a picture's Width, Height, ImageType and Alpha\n"
      "  image convert [--quality N] [--filter N] IN OUT\n"
      "                          read IN as the surface reads pictures, write OUT by its\n"
      "                          extension: .png (--filter 0-6), .bmp, .gif, .jpg (--quality 1-100)\n");
  return 2;
}

struct Check {
  const char* what;
  String got;
  String want;
};

int Smoke() {
  const Locale& loc = Locale::Current();
  std::printf("Vantor run time, locale %s\n", ToUtf8(loc.Name()).c_str());
  Err().Clear();
  const Date jan31 = DateSerial(2024, 1, 31);
  const bool br = loc.id() == Locale::Id::ptBR;
  const std::vector<Check> checks = {
      {"CInt(2.5)", CStr(CInt(2.5)), u"2"},
      {"CInt(3.5)", CStr(CInt(3.5)), u"4"},
      {"Format(1234.5, \"#,##0.00\")", Format(1234.5, u"#,##0.00"), br ? u"1.234,50" : u"1,234.50"},
      {"\"abc\" Like \"a?c\"", CStr(Like(u"abc", u"a?c")), CStr(true)},
      {"DateAdd(\"m\", 1, 31/01/2024)", Format(Variant(DateAdd(u"m", 1, jan31)), u"dd/mm/yyyy"),
       u"29/02/2024"},
      {"Format(31/12/2024, \"ww\")", Format(Variant(DateSerial(2024, 12, 31)), u"ww"), u"53"},
      {"CStr(1/3)", CStr(1.0 / 3.0), br ? u"0,333333333333333" : u"0.333333333333333"},
      {"UCase(\"ação\")", UCase(u"ação"), u"AÇÃO"},
      {"Format(1234, \"@@@.@@@\")", Format(Variant(String(u"1234")), u"@@@.@@@"), u"  1.234"},
  };
  int failed = 0;
  for (const auto& c : checks) {
    const bool ok = c.got == c.want;
    failed += ok ? 0 : 1;
    // Pad by characters, not bytes, so accented results keep the columns.
    String what = FromUtf8(c.what), got = c.got;
    if (what.size() < 36) what.append(36 - what.size(), u' ');
    if (got.size() < 20) got.append(20 - got.size(), u' ');
    std::printf("  %s %s %s\n", ToUtf8(what).c_str(), ToUtf8(got).c_str(),
                ok ? "ok" : "UNEXPECTED");
  }
  std::printf("Today is %s.\n", ToUtf8(Format(Variant(Today()), u"dddddd")).c_str());
  std::printf("%zu passed, %d failed\n", checks.size() - failed, failed);
  return failed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<const char*> args(argv + 1, argv + argc);
  if (args.size() >= 2 && std::strcmp(args[0], "--locale") == 0) {
    const std::string name = args[1];
    Locale::Set(name == "en-US" || name == "en_US" ? Locale::Id::enUS : Locale::Id::ptBR);
    args.erase(args.begin(), args.begin() + 2);
  }
  if (args.empty()) return Usage();
  const std::string cmd = args[0];
  if (cmd == "--version" || cmd == "version") {
    std::printf("vantor %s\n", VANTOR_VERSION);
    return 0;
  }
  if (cmd == "smoke") return Smoke();
  if (cmd == "typelib" || cmd == "call") {
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    vantor::host::RegisterLibraryClasses();
    const int status = cmd == "typelib" ? vantor::tools::RunTypeLib(rest, std::cout, std::cerr)
                                        : vantor::tools::RunCall(rest, std::cout, std::cerr);
    std::cout.flush();
    return status;
  }
  if (cmd == "gallery") {
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    const int status = vantor::tools::RunGallery(rest, std::cout, std::cerr);
    std::cout.flush();
    return status;
  }
  if (cmd == "image") {
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    const int status = vantor::tools::RunImage(rest, std::cout, std::cerr);
    std::cout.flush();
    return status;
  }
  if (cmd == "format" && args.size() == 3) {
    Print(Format(ValueOf(args[1]), FromUtf8(args[2])));
    return 0;
  }
  if (cmd == "like" && args.size() == 3) {
    const bool r = Like(FromUtf8(args[1]), FromUtf8(args[2]));
    Print(CStr(r));
    return Err() ? 1 : 0;
  }
  if (cmd == "screenshot" && args.size() == 2) {
    if (!vantor::tools::SaveDemoScreenshot(args[1])) {
      std::fprintf(stderr, "vantor: cannot write %s\n", args[1]);
      return 1;
    }
    std::printf("saved %s\n", args[1]);
    return 0;
  }
  if (cmd == "cstr" && args.size() == 2) {
    Print(CStr(ValueOf(args[1])));
    return 0;
  }
  return Usage();
}
