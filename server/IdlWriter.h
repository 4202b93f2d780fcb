#pragma once
// The type library as IDL, written from the tables: the Windows build
// compiles it with widl or MIDL into the Vantor2014 type library that the
// server carries in its resources. The tables stay the one source; the IDL is
// never edited by hand.
#include <string>
#include <vector>

#include "server/TypeInfo.h"
#include "server/TypeLibrary.h"

namespace vantor::server {

// The whole library: enumerations, records, each class's default and event
// dispinterfaces and its coclass, every GUID a name-based one.
std::string WriteIdl(const TypeLibrary& lib);

// How a type reads as an IDL parameter or result, before any by-reference
// pointer: "BSTR", "VARIANT_BOOL", "_USButton*", "SAFEARRAY(unsigned char)".
std::string IdlType(const TypeRef& type);

// The IDL identifier of every member of every enumeration, in the library's
// order. IDL gives all enumeration constants one name space (and the type
// library compares names without regard to case), so an identifier that two
// enumerations would share, or that is a type or a keyword of IDL, takes its
// enumeration's name as a prefix; what is still shared (members of one
// enumeration that read alike) gets "_2", "_3"...
std::vector<std::vector<std::string>> EnumIdentifiers(const TypeLibrary& lib);

}  // namespace vantor::server
