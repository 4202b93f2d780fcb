#pragma once
// `vantor call`: makes an object of the library by name, calls one member
// through the dispatcher, as a host that knows only the type library would,
// and prints what came back. The command line's form is in CallArguments.h.
//
// The result prints as the locale writes it (CStr): strings as their text,
// numbers and dates in the locale's form, Booleans as its words, byte arrays
// in hexadecimal, objects as their class name, Empty as nothing. Every
// argument is passed by reference, so what the member writes into a
// by-reference parameter is printed after the result as "Name = value".
#include <ostream>
#include <span>
#include <string>

#include "runtime/Variant.h"

namespace vantor::tools {

enum CallStatus : int { kCallDone = 0, kCallFailed = 1, kCallUsage = 2 };

// `args` are the words after "call". Errors go to `err` as one line.
int RunCall(std::span<const std::string> args, std::ostream& out, std::ostream& err);

// A value as `vantor call` prints it.
std::string DisplayText(const Variant& value);

}  // namespace vantor::tools
