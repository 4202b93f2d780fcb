#include "tools/vantor/CallCommand.h"

#include <cctype>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

#include "runtime/Conversion.h"
#include "runtime/Error.h"
#include "server/Dispatch.h"
#include "server/Registry.h"
#include "tools/vantor/CallArguments.h"

namespace vantor::tools {

using namespace server;

namespace {

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) !=
        std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  }
  return true;
}

int Failed(std::ostream& err, int status, const std::string& what) {
  err << "vantor call: " << what << "\n";
  return status;
}

// What the dispatcher or the factory left in the error object.
std::string ErrorText() {
  return ToUtf8(Err().Description()) + " (error " + std::to_string(Err().Number()) + ")";
}

// The parameter each argument went to: positional ones by place, named ones
// by name; nothing for the value of a property put or a name the member lacks.
std::vector<std::optional<size_t>> ParameterOf(const CallRequest& req, const MemberInfo& m) {
  const size_t named = req.names.size();
  const size_t positional = req.args.size() - named;
  std::vector<std::optional<size_t>> to(req.args.size());
  for (size_t i = 0; i < positional; ++i) {
    const bool isValue = req.assign && i + 1 == positional;
    if (!isValue && i < m.params.size()) to[i] = i;
  }
  for (size_t n = 0; n < named; ++n) {
    for (size_t p = 0; p < m.params.size(); ++p) {
      if (SameName(m.params[p].name, req.names[n])) to[positional + n] = p;
    }
  }
  return to;
}

bool WriteResult(const std::string& path, const Variant& result) {
  std::ofstream file(path, std::ios::binary);
  if (!file) return false;
  const SafeArray* a = result.Array();
  if (a && a->ElementType() == vbByte) {
    const auto& bytes = a->Bytes();
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  } else {
    file << DisplayText(result) << "\n";
  }
  return static_cast<bool>(file.flush());
}

}  // namespace

std::string DisplayText(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.IsEmpty()) return {};
  if (v.IsNull()) return "Null";
  if (v.IsObject()) {
    const ObjectPtr* p = v.ObjectRef();
    return p && *p ? ToUtf8((*p)->ClassName()) : "Nothing";
  }
  if (const SafeArray* a = v.Array()) {
    if (a->ElementType() == vbByte) {
      static const char digits[] = "0123456789ABCDEF";
      std::string hex;
      for (uint8_t b : a->Bytes()) {
        hex += digits[b >> 4];
        hex += digits[b & 0xF];
      }
      return hex;
    }
    // "; " between items, since the locale's numbers may hold commas.
    std::string list = "{";
    for (size_t i = 0; i < a->Items().size(); ++i)
      list += (i ? "; " : "") + DisplayText(a->Items()[i]);
    return list + "}";
  }
  if (const ErrorValue* e = v.As<ErrorValue>())
    return e->scode == kParamNotFound ? "Missing" : "Error " + std::to_string(e->scode);
  return ToUtf8(CStr(v));
}

int RunCall(std::span<const std::string> args, std::ostream& out, std::ostream& err) {
  const CallParse parse = ParseCallArguments(args);
  if (parse.status != ParseStatus::Ok)
    return Failed(err, parse.status == ParseStatus::Usage ? kCallUsage : kCallFailed, parse.error);
  const CallRequest& req = parse.request;

  Err().Clear();
  DispatchPtr object = Registry::Instance().Create(req.className);
  if (!object) return Failed(err, kCallFailed, ErrorText());

  // Each argument is a variable of its own, passed by reference, so that the
  // member's by-reference parameters come back.
  std::vector<Variant> values = req.args;
  std::vector<Variant> refs;
  for (Variant& v : values) refs.push_back(Variant::ByRef(&v));
  const std::vector<std::string_view> names(req.names.begin(), req.names.end());

  Err().Clear();
  Variant result;
  const InvokeKind kind = req.assign ? InvokeKind::PropertyPut : InvokeKind::Method;
  if (!object->Invoke(req.member, kind, refs, &result, names))
    return Failed(err, kCallFailed, ErrorText());

  const MemberInfo* member = object->Info().dispatch.Find(req.member);
  if (req.assign) {
    // What the property reads now, with the same index; a property that
    // cannot be read back shows nothing.
    result = Variant();
    if (member && member->CanGet()) {
      std::vector<Variant> index;
      for (size_t i = 0; i < refs.size(); ++i) {
        if (i + 1 != refs.size() - names.size()) index.push_back(refs[i]);
      }
      if (!object->Invoke(req.member, InvokeKind::PropertyGet, index, &result, names))
        result = Variant();
      Err().Clear();
    }
  }

  if (!req.outFile.empty()) {
    if (!WriteResult(req.outFile, result))
      return Failed(err, kCallFailed, "cannot write the file '" + req.outFile + "'");
  } else if (!result.IsEmpty()) {
    out << DisplayText(result) << "\n";
  }

  if (member) {
    const auto to = ParameterOf(req, *member);
    for (size_t p = 0; p < member->params.size(); ++p) {
      if (!member->params[p].byRef) continue;
      for (size_t i = 0; i < to.size(); ++i) {
        if (to[i] == p) out << member->params[p].name << " = " << DisplayText(values[i]) << "\n";
      }
    }
  }
  return kCallDone;
}

}  // namespace vantor::tools
