#pragma once
// `vantor typelib`: the type library for a person to read, or as IDL.
//
//   vantor typelib              every class, then the enumerations and records
//   vantor typelib CLASS        one class
//   vantor typelib --idl [FILE] the IDL, to FILE or to the standard output
#include <ostream>
#include <span>
#include <string>

#include "server/TypeInfo.h"
#include "server/TypeLibrary.h"

namespace vantor::tools {

// `args` are the words after "typelib". 0 done, 1 no such class or the file
// cannot be written, 2 a malformed command line.
int RunTypeLib(std::span<const std::string> args, std::ostream& out, std::ostream& err,
               const server::TypeLibrary& lib = server::TypeLibrary::Get());

// A member as the listing shows it, in the platform language's own terms:
// "Sum(a As Long, Optional b As Long = 10) As Long".
std::string MemberSignature(const server::MemberInfo& m, const server::TypeLibrary& lib);

}  // namespace vantor::tools
