#pragma once
// The command line of `vantor call`, read into what the dispatcher takes:
//
//   vantor call [--out FILE] Class.Member [ARG...]
//   vantor call Class.Property= [INDEX...] VALUE      (also Class.Property=VALUE)
//
// Each ARG is typed by its text: an integer is a Long (a Double when it does
// not fit one), a number with "." a Double ("." whatever the locale, so that
// a script means the same everywhere), true or false a Boolean, @PATH the
// bytes of that file as a Byte array, anything else a String. "--str" before
// an ARG takes its value (of NAME:=ARG, the part after ":=") as a String as
// written. NAME:=ARG is a named argument, as the platform's own call syntax
// writes it; named arguments follow the positional ones.
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/Variant.h"

namespace vantor::tools {

struct CallRequest {
  std::string className;  // as given: "VT" or "Vantor2014.VT"
  std::string member;
  bool assign = false;  // a property put; the value is the last positional argument
  // The positional arguments, then the named ones in the order given.
  std::vector<Variant> args;
  std::vector<std::string> names;  // of the trailing named arguments
  std::string outFile;             // --out: the result goes to this file
};

enum class ParseStatus {
  Ok,
  Usage,    // the command line is malformed
  Failure,  // well formed, but an argument cannot be had (an unreadable file)
};

struct CallParse {
  ParseStatus status = ParseStatus::Ok;
  std::string error;  // one line naming what was wrong
  CallRequest request;
};

// `args` are the words after "call".
CallParse ParseCallArguments(std::span<const std::string> args);

// One argument's value by the rules above; false with `error` set (and
// `status` Usage or Failure) when it has none.
bool ArgumentValue(std::string_view text, bool forceString, Variant& value, std::string& error,
                   ParseStatus& status);

}  // namespace vantor::tools
