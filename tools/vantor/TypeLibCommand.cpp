#include "tools/vantor/TypeLibCommand.h"

#include <cctype>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <string_view>

#include "server/IdlWriter.h"

namespace vantor::tools {

using namespace server;

namespace {

std::string Pad(std::string s, size_t width, bool right = false) {
  if (s.size() < width) s.insert(right ? 0 : s.size(), width - s.size(), ' ');
  return s;
}

bool IsIdentifier(std::string_view s) {
  if (s.empty() || std::isdigit(static_cast<unsigned char>(s[0]))) return false;
  for (char c : s) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
  }
  return true;
}

const char* KindWord(MemberKind k) {
  switch (k) {
    case MemberKind::Method:
      return "method";
    case MemberKind::Property:
      return "property";
    case MemberKind::ReadOnly:
      return "read-only";
    case MemberKind::WriteOnly:
      return "write-only";
    case MemberKind::Event:
      return "event";
  }
  return "";
}

const char* KindWord(ClassKind k) {
  switch (k) {
    case ClassKind::Control:
      return "control";
    case ClassKind::Service:
      return "service";
    case ClassKind::ObjectModel:
      return "object";
    case ClassKind::PropertyPage:
      return "property page";
  }
  return "";
}

// Numbers as code writes them, with "." whatever the locale.
std::string Number(double v) {
  char buf[64];
  const auto r = std::to_chars(buf, buf + sizeof buf, v);
  return std::string(buf, r.ptr);
}

// A text as the platform's language writes it: quotes doubled, control
// characters as Chr(n): "a" & Chr(0).
std::string QuotedText(const Variant& v) {
  std::string s, open;
  for (char c : ToUtf8(v.ToString())) {
    if (static_cast<unsigned char>(c) < 0x20) {
      if (!open.empty()) s += (s.empty() ? "" : " & ") + open + "\"";
      open.clear();
      s += (s.empty() ? "Chr(" : " & Chr(") + std::to_string(static_cast<int>(c)) + ")";
      continue;
    }
    if (open.empty()) open = "\"";
    open += c == '"' ? std::string("\"\"") : std::string(1, c);
  }
  if (!open.empty() || s.empty())
    s += (s.empty() ? "" : " & ") + (open.empty() ? "\"" : open) + "\"";
  return s;
}

// The value an omitted argument takes, in the platform language's literals;
// nothing when the parameter has no default of its own.
std::string DefaultText(const ParamInfo& p, const TypeLibrary& lib) {
  const Variant& v = p.defaultValue;
  if (v.IsEmpty() || v.IsMissing()) return {};
  if (p.type.base == BaseType::Enum) {
    if (const EnumInfo* e = lib.FindEnum(p.type.name)) {
      for (const EnumMember& m : e->members) {
        if (m.value == v.ToLong())
          return IsIdentifier(m.name) ? std::string(m.name) : "[" + std::string(m.name) + "]";
      }
    }
  }
  if (p.type.base == BaseType::Color) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "&H%08X&", static_cast<uint32_t>(v.ToLong()));
    return buf;
  }
  switch (v.Type()) {
    case vbString:
      return QuotedText(v);
    case vbBoolean:
      return v.ToBoolean() ? "True" : "False";
    case vbObject:
      return "Nothing";
    default:
      return v.IsNumericType() || v.Type() == vbDate ? Number(v.ToDouble()) : std::string();
  }
}

std::string ParamText(const ParamInfo& p, const TypeLibrary& lib) {
  std::string s;
  if (p.optional) s += "Optional ";
  if (p.byRef) s += "ByRef ";
  s += std::string(p.name) + " As " + p.type.Text();
  if (p.optional) {
    const std::string d = DefaultText(p, lib);
    if (!d.empty()) s += " = " + d;
  }
  return s;
}

void ListInterface(const InterfaceInfo& itf, const TypeLibrary& lib, std::ostream& out) {
  out << "  " << itf.name << "\n";
  for (const MemberInfo& m : itf.members) {
    out << "    " << Pad(std::to_string(m.dispid), 6, true) << "  " << Pad(KindWord(m.kind), 10)
        << "  " << MemberSignature(m, lib) << "\n";
  }
}

void ListClass(const ClassInfo& c, const TypeLibrary& lib, std::ostream& out) {
  out << c.name << "  (" << KindWord(c.kind) << "; " << c.dispatch.name;
  if (c.HasEvents()) out << ", " << c.events.name;
  out << ")\n";
  ListInterface(c.dispatch, lib, out);
  if (c.HasEvents()) ListInterface(c.events, lib, out);
}

void ListEnum(const EnumInfo& e, std::ostream& out) {
  size_t width = 1;
  for (const EnumMember& m : e.members) width = std::max(width, std::to_string(m.value).size());
  out << e.name << "\n";
  for (const EnumMember& m : e.members)
    out << "    " << Pad(std::to_string(m.value), width, true) << "  " << m.name << "\n";
}

void ListRecord(const RecordInfo& r, std::ostream& out) {
  out << r.name << "\n";
  for (const FieldInfo& f : r.fields) out << "    " << f.name << " As " << f.type.Text() << "\n";
}

std::string Summary(const TypeLibrary& lib) {
  return std::string(TypeLibrary::kName) + ": " + std::to_string(lib.Classes().size()) +
         " classes, " + std::to_string(lib.InterfaceCount()) + " interfaces, " +
         std::to_string(lib.Enums().size()) + " enumerations, " +
         std::to_string(lib.Records().size()) + " records";
}

}  // namespace

std::string MemberSignature(const MemberInfo& m, const TypeLibrary& lib) {
  std::string s(m.name);
  // A property without an index reads best without parentheses.
  const bool property = m.kind != MemberKind::Method && m.kind != MemberKind::Event;
  if (!property || !m.params.empty()) {
    s += "(";
    for (size_t i = 0; i < m.params.size(); ++i) s += (i ? ", " : "") + ParamText(m.params[i], lib);
    s += ")";
  }
  if (m.type.base != BaseType::Void) s += " As " + m.type.Text();
  return s;
}

int RunTypeLib(std::span<const std::string> args, std::ostream& out, std::ostream& err,
               const TypeLibrary& lib) {
  if (!args.empty() && args[0] == "--idl") {
    if (args.size() > 2) {
      err << "vantor typelib: --idl takes at most one file name\n";
      return 2;
    }
    const std::string idl = WriteIdl(lib);
    if (args.size() == 1 || args[1] == "-") {
      out << idl;
      return 0;
    }
    std::ofstream file(args[1], std::ios::binary);
    if (!(file << idl) || !file.flush()) {
      err << "vantor typelib: cannot write '" << args[1] << "'\n";
      return 1;
    }
    return 0;
  }
  if (args.size() > 1 || (!args.empty() && args[0].starts_with("-"))) {
    err << "vantor typelib: expected [CLASS] or --idl [FILE], got '" << args.back() << "'\n";
    return 2;
  }
  if (args.size() == 1) {
    const ClassInfo* c = lib.FindClass(args[0]);
    if (!c) {
      err << "vantor typelib: the type library has no class named '" << args[0] << "'\n";
      return 1;
    }
    ListClass(*c, lib, out);
    return 0;
  }

  out << Summary(lib) << "\n\nClasses\n\n";
  for (const ClassInfo& c : lib.Classes()) {
    ListClass(c, lib, out);
    out << "\n";
  }
  out << "Enumerations\n\n";
  for (const EnumInfo& e : lib.Enums()) {
    ListEnum(e, out);
    out << "\n";
  }
  out << "Records\n";
  for (const RecordInfo& r : lib.Records()) {
    out << "\n";
    ListRecord(r, out);
  }
  return 0;
}

}  // namespace vantor::tools
