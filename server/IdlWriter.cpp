#include "server/IdlWriter.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <sstream>
#include <string_view>

#include "runtime/String.h"
#include "server/NameUuid.h"

namespace vantor::server {

namespace {

std::string Folded(std::string_view s) {
  std::string f(s);
  for (char& c : f) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return f;
}

// Names an enumeration constant may not take: the keywords of IDL and of the
// C headers compiled from it, and the types the imports declare that members
// could meet. Compared without regard to case.
const std::set<std::string>& ReservedNames() {
  static const std::set<std::string> names = [] {
    std::set<std::string> s;
    for (const char* n :
         {"boolean",   "byte",      "case",          "char",      "coclass",      "const",
          "cpp_quote", "default",   "dispinterface", "double",    "enum",         "extern",
          "false",     "float",     "handle_t",      "hyper",     "import",       "importlib",
          "in",        "inline",    "int",           "interface", "library",      "long",
          "methods",   "module",    "namespace",     "null",      "out",          "properties",
          "register",  "short",     "signed",        "sizeof",    "small",        "static",
          "struct",    "switch",    "true",          "typedef",   "union",        "unsigned",
          "void",      "wchar_t",   "bstr",          "variant",   "variant_bool", "currency",
          "cy",        "date",      "decimal",       "hresult",   "scode",        "iunknown",
          "idispatch", "ifontdisp", "ipicturedisp",  "ole_color", "safearray",    "guid",
          "iid",       "clsid",     "lcid",          "dword",     "word",         "bool",
          "uint",      "ulong",     "ushort",        "lpstr",     "lpwstr",       "stdole"})
      s.insert(n);
    return s;
  }();
  return names;
}

std::string Hex32(uint32_t v) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08x", v);
  return buf;
}

std::string DispId(int32_t id) {
  return "id(" + Hex32(static_cast<uint32_t>(id)) + ")";
}

// Text in quotes, or nothing for a text that compilers would not all read
// alike: widl keeps escape sequences as they stand, MIDL reads them.
std::string Quoted(std::string_view text) {
  for (char c : text) {
    if (static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\') return {};
  }
  return "\"" + std::string(text) + "\"";
}

// A number as IDL reads it, or nothing for one with a fraction: widl's
// expressions know only integers.
std::string NumberLiteral(double v) {
  if (!std::isfinite(v) || v != std::floor(v) || std::fabs(v) >= 9.0e15) return {};
  return std::to_string(static_cast<int64_t>(v));
}

class Writer {
 public:
  explicit Writer(const TypeLibrary& lib) : lib_(lib), enumIds_(EnumIdentifiers(lib)) {}

  std::string Run() {
    Header();
    out_ << "{\n";
    out_ << "  importlib(\"stdole2.tlb\");\n\n";
    Forwards();
    Enums();
    Records();
    for (const ClassInfo& c : lib_.Classes()) Class(c);
    out_ << "};\n";
    // Compilers read IDL in the ANSI code page and the type library keeps
    // its strings in it; the library's is Windows-1252.
    return ToAnsi(FromUtf8(out_.str()));
  }

 private:
  void Header() {
    out_ << "// The " << TypeLibrary::kName
         << " type library, written from the library's type tables.\n"
            "// Do not edit: change the tables and write it again (vantor typelib --idl).\n"
            "// GUIDs are name-based (version 5) UUIDs of names such as \"class:USButton\",\n"
            "// so they stay the same from one build to the next. The text is in\n"
            "// Windows-1252. The server fills in omitted arguments from its own tables;\n"
            "// a default that IDL cannot state alike for every compiler (one of a\n"
            "// by-reference parameter, a number with a fraction, a text holding a control\n"
            "// character, a quote or a backslash) is left out here and the parameter\n"
            "// stays optional.\n\n"
            "import \"oaidl.idl\";\n"
            "import \"ocidl.idl\";\n\n";
    out_ << "[\n"
         << "  uuid(" << TypeLibGuid("library", TypeLibrary::kName).Text() << "),\n"
         << "  version(1.0),\n"
         << "  helpstring(\"Vantor 2014: themed controls and business services\")\n"
         << "]\n"
         << "library " << TypeLibrary::kName << "\n";
  }

  void Forwards() {
    out_ << "  // Declared ahead, so that any member may name any class.\n";
    for (const ClassInfo& c : lib_.Classes()) {
      out_ << "  dispinterface " << c.dispatch.name << ";\n";
      if (c.HasEvents()) out_ << "  dispinterface " << c.events.name << ";\n";
    }
    out_ << "\n";
  }

  void Enums() {
    if (lib_.Enums().empty()) return;
    out_ << "  // Enumerations. IDL gives all enumeration constants one name space, and the\n"
            "  // type library compares names without regard to case: a constant whose\n"
            "  // identifier another enumeration would also use (or that is a keyword or a\n"
            "  // type of IDL) takes its enumeration's name as a prefix, and members of one\n"
            "  // enumeration that would still read alike take \"_2\", \"_3\"... A member\n"
            "  // whose exact name is not its identifier has that name beside it.\n";
    for (size_t e = 0; e < lib_.Enums().size(); ++e) {
      const EnumInfo& info = lib_.Enums()[e];
      out_ << "  typedef [uuid(" << TypeLibGuid("enum", info.name).Text() << ")]\n"
           << "  enum " << info.name << " {\n";
      for (size_t i = 0; i < info.members.size(); ++i) {
        const EnumMember& m = info.members[i];
        out_ << "    " << enumIds_[e][i] << " = " << m.value
             << (i + 1 < info.members.size() ? "," : "");
        if (enumIds_[e][i] != m.name) out_ << "  // \"" << m.name << "\"";
        out_ << "\n";
      }
      out_ << "  } " << info.name << ";\n\n";
    }
  }

  void Records() {
    for (const RecordInfo& r : lib_.Records()) {
      out_ << "  typedef [uuid(" << TypeLibGuid("record", r.name).Text() << ")]\n"
           << "  struct " << r.name << " {\n";
      for (const FieldInfo& f : r.fields)
        out_ << "    " << IdlType(f.type) << " " << f.name << ";\n";
      out_ << "  } " << r.name << ";\n\n";
    }
  }

  void Class(const ClassInfo& c) {
    out_ << "  [\n"
         << "    uuid(" << TypeLibGuid("interface", c.dispatch.name).Text() << "),\n"
         << "    helpstring(\"The default interface of " << c.name << "\"),\n"
         << "    hidden\n"
         << "  ]\n"
         << "  dispinterface " << c.dispatch.name << " {\n"
         << "    properties:\n"
         << "    methods:\n";
    for (const MemberInfo& m : c.dispatch.members) Member(m);
    out_ << "  };\n\n";

    if (c.HasEvents()) {
      out_ << "  [\n"
           << "    uuid(" << TypeLibGuid("interface", c.events.name).Text() << "),\n"
           << "    helpstring(\"The events of " << c.name << "\")\n"
           << "  ]\n"
           << "  dispinterface " << c.events.name << " {\n"
           << "    properties:\n"
           << "    methods:\n";
      for (const MemberInfo& m : c.events.members) Member(m);
      out_ << "  };\n\n";
    }

    out_ << "  [\n"
         << "    uuid(" << TypeLibGuid("class", c.name).Text() << ")"
         << (c.kind == ClassKind::Control ? ",\n    control\n" : "\n") << "  ]\n"
         << "  coclass " << c.name << " {\n"
         << "    [default] dispinterface " << c.dispatch.name << ";\n";
    if (c.HasEvents()) out_ << "    [default, source] dispinterface " << c.events.name << ";\n";
    out_ << "  };\n\n";
  }

  void Member(const MemberInfo& m) {
    const std::string id = DispId(m.dispid);
    switch (m.kind) {
      case MemberKind::Method:
      case MemberKind::Event:
        Line(id, IdlType(m.type), m, Params(m.params));
        break;
      case MemberKind::Property:
      case MemberKind::ReadOnly:
      case MemberKind::WriteOnly:
        if (m.CanGet()) Line(id + ", propget", IdlType(m.type), m, Params(m.params));
        if (m.CanPut() || m.CanPutRef()) {
          std::vector<std::string> params = Params(m.params);
          params.push_back("[in] " + IdlType(m.type) + " " + ValueName(m));
          Line(id + (m.CanPut() ? ", propput" : ", propputref"), "void", m, params);
        }
        break;
    }
  }

  void Line(const std::string& attributes, const std::string& result, const MemberInfo& m,
            const std::vector<std::string>& params) {
    out_ << "      [" << attributes << "] " << result << " " << m.name << "(";
    for (size_t i = 0; i < params.size(); ++i) {
      out_ << (i ? ",\n          " : "") << params[i];
    }
    out_ << ");\n";
  }

  // The name of a property put's value, one the index parameters do not use.
  static std::string ValueName(const MemberInfo& m) {
    std::string name = "rhs";
    for (bool clash = true; clash;) {
      clash = false;
      for (const ParamInfo& p : m.params) clash = clash || Folded(p.name) == Folded(name);
      if (clash) name = "_" + name;
    }
    return name;
  }

  std::vector<std::string> Params(const std::vector<ParamInfo>& params) const {
    std::vector<std::string> out;
    for (const ParamInfo& p : params) {
      std::string attributes = p.byRef ? "in, out" : "in";
      if (p.optional) {
        attributes += ", optional";
        const std::string d = p.byRef ? std::string() : DefaultValue(p);
        if (!d.empty()) attributes += ", defaultvalue(" + d + ")";
      }
      out.push_back("[" + attributes + "] " + IdlType(p.type) + (p.byRef ? "* " : " ") +
                    std::string(p.name));
    }
    return out;
  }

  // The literal an omitted argument takes. An optional Variant without a
  // default, or an array, has none: it arrives missing or empty.
  std::string DefaultValue(const ParamInfo& p) const {
    const TypeRef& t = p.type;
    const Variant& v = p.defaultValue;
    if (t.array || t.base == BaseType::Record) return {};
    if (t.IsObject()) return "0";
    if (t.base == BaseType::Variant) {
      if (v.IsEmpty() || v.IsMissing()) return {};
      switch (v.Type()) {
        case vbString:
          return Quoted(ToUtf8(v.ToString()));
        case vbBoolean:
          return v.ToBoolean() ? "-1" : "0";
        default:
          return v.IsNumericType() ? NumberLiteral(v.ToDouble()) : std::string();
      }
    }
    switch (t.base) {
      case BaseType::String:
        return Quoted(ToUtf8(v.ToString()));
      case BaseType::Boolean:
        return v.ToBoolean() ? "-1" : "0";
      case BaseType::Color:
        return Hex32(static_cast<uint32_t>(v.ToLong()));
      case BaseType::Enum:
        return EnumLiteral(t.name, v.ToLong());
      case BaseType::Single:
      case BaseType::Double:
      case BaseType::Currency:
      case BaseType::Date:
        return NumberLiteral(v.ToDouble());
      default:
        return std::to_string(v.ToLong());
    }
  }

  std::string EnumLiteral(std::string_view enumName, int32_t value) const {
    for (size_t e = 0; e < lib_.Enums().size(); ++e) {
      const EnumInfo& info = lib_.Enums()[e];
      if (info.name != enumName) continue;
      for (size_t i = 0; i < info.members.size(); ++i) {
        if (info.members[i].value == value) return enumIds_[e][i];
      }
    }
    return std::to_string(value);
  }

  const TypeLibrary& lib_;
  const std::vector<std::vector<std::string>> enumIds_;
  std::ostringstream out_;
};

}  // namespace

std::string WriteIdl(const TypeLibrary& lib) {
  return Writer(lib).Run();
}

std::string IdlType(const TypeRef& type) {
  std::string t;
  switch (type.base) {
    case BaseType::Void:
      t = "void";
      break;
    case BaseType::Boolean:
      t = "VARIANT_BOOL";
      break;
    case BaseType::Byte:
      t = "unsigned char";
      break;
    case BaseType::Integer:
      t = "short";
      break;
    case BaseType::Long:
      t = "long";
      break;
    case BaseType::Single:
      t = "float";
      break;
    case BaseType::Double:
      t = "double";
      break;
    case BaseType::Currency:
      t = "CURRENCY";
      break;
    case BaseType::Date:
      t = "DATE";
      break;
    case BaseType::String:
      t = "BSTR";
      break;
    case BaseType::Variant:
      t = "VARIANT";
      break;
    case BaseType::Object:
      t = "IDispatch*";
      break;
    case BaseType::Color:
      t = "OLE_COLOR";
      break;
    case BaseType::Font:
      t = "IFontDisp*";
      break;
    case BaseType::Picture:
      t = "IPictureDisp*";
      break;
    case BaseType::Enum:
    case BaseType::Record:
      t = std::string(type.name);
      break;
    case BaseType::Class:
      t = "_" + std::string(type.name) + "*";
      break;
  }
  if (!type.array) return t;
  // An array of interfaces names the interface alone, the form both widl and
  // MIDL read.
  if (t.ends_with('*')) t.pop_back();
  return "SAFEARRAY(" + t + ")";
}

std::vector<std::vector<std::string>> EnumIdentifiers(const TypeLibrary& lib) {
  // What an identifier must not be: a keyword, or the name of one of the
  // library's own types and interfaces.
  std::set<std::string> taken = ReservedNames();
  for (const ClassInfo& c : lib.Classes()) {
    taken.insert(Folded(c.name));
    taken.insert(Folded(c.dispatch.name));
    taken.insert(Folded(c.events.name));
  }
  for (const EnumInfo& e : lib.Enums()) taken.insert(Folded(e.name));
  for (const RecordInfo& r : lib.Records()) taken.insert(Folded(r.name));

  // How many enumerations would use each identifier; members of one
  // enumeration that read alike ("dd/mm/yy", "dd-mm-yy") only need the suffix.
  std::map<std::string, int> uses;
  for (const EnumInfo& e : lib.Enums()) {
    std::set<std::string> own;
    for (const EnumMember& m : e.members) own.insert(Folded(m.Identifier()));
    for (const std::string& id : own) ++uses[id];
  }

  std::vector<std::vector<std::string>> ids;
  std::set<std::string> given;
  for (const EnumInfo& e : lib.Enums()) {
    std::vector<std::string>& list = ids.emplace_back();
    for (const EnumMember& m : e.members) {
      std::string id = m.Identifier();
      const std::string folded = Folded(id);
      if (uses[folded] > 1 || taken.count(folded)) id = std::string(e.name) + "_" + id;
      std::string unique = id;
      for (int n = 2; given.count(Folded(unique)) || taken.count(Folded(unique)); ++n)
        unique = id + "_" + std::to_string(n);
      given.insert(Folded(unique));
      list.push_back(unique);
    }
  }
  return ids;
}

}  // namespace vantor::server
