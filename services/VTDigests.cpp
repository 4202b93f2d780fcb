#include "services/VT.h"

#include "runtime/Error.h"

namespace vantor::services {

// PLACEHOLDER: replaced by the real members; each throws until then.
String VT::VT_Criptografar(const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_Criptografar"); }
String VT::VT_Decriptografar(const String&, const String&) const { throw Error(errNotImplemented, u"VT", u"VT_Decriptografar"); }
String VT::VT_CRC32(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_CRC32"); }
String VT::VT_MD5(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_MD5"); }
String VT::VT_ArquivoCRC32(const String&) const { throw Error(errNotImplemented, u"VT", u"VT_ArquivoCRC32"); }

}  // namespace vantor::services
