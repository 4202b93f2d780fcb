#include "server/TypeInfo.h"

#include <cctype>

namespace vantor::server {

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) !=
        std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  }
  return true;
}

std::string FoldName(std::string_view name) {
  std::string f(name);
  for (char& c : f) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return f;
}

VbVarType TypeRef::VarType() const {
  VbVarType v = vbVariant;
  switch (base) {
    case BaseType::Void: v = vbEmpty; break;
    case BaseType::Boolean: v = vbBoolean; break;
    case BaseType::Byte: v = vbByte; break;
    case BaseType::Integer: v = vbInteger; break;
    case BaseType::Long:
    case BaseType::Color:
    case BaseType::Enum: v = vbLong; break;
    case BaseType::Single: v = vbSingle; break;
    case BaseType::Double: v = vbDouble; break;
    case BaseType::Currency: v = vbCurrency; break;
    case BaseType::Date: v = vbDate; break;
    case BaseType::String: v = vbString; break;
    case BaseType::Variant:
    case BaseType::Record: v = vbVariant; break;
    case BaseType::Object:
    case BaseType::Font:
    case BaseType::Picture:
    case BaseType::Class: v = vbObject; break;
  }
  return array ? static_cast<VbVarType>(v | vbArray) : v;
}

std::string TypeRef::Text() const {
  std::string t;
  switch (base) {
    case BaseType::Void: t = "void"; break;
    case BaseType::Boolean: t = "Boolean"; break;
    case BaseType::Byte: t = "Byte"; break;
    case BaseType::Integer: t = "Integer"; break;
    case BaseType::Long: t = "Long"; break;
    case BaseType::Single: t = "Single"; break;
    case BaseType::Double: t = "Double"; break;
    case BaseType::Currency: t = "Currency"; break;
    case BaseType::Date: t = "Date"; break;
    case BaseType::String: t = "String"; break;
    case BaseType::Variant: t = "Variant"; break;
    case BaseType::Object: t = "Object"; break;
    case BaseType::Color: t = "OLE_COLOR"; break;
    case BaseType::Font: t = "StdFont"; break;
    case BaseType::Picture: t = "StdPicture"; break;
    case BaseType::Enum:
    case BaseType::Record:
    case BaseType::Class: t = std::string(name); break;
  }
  return array ? t + "()" : t;
}

size_t MemberInfo::RequiredCount() const {
  size_t n = 0;
  for (const ParamInfo& p : params) n += p.optional ? 0 : 1;
  return n;
}

const MemberInfo* InterfaceInfo::Find(std::string_view memberName) const {
  for (const MemberInfo& m : members) {
    if (SameName(m.name, memberName)) return &m;
  }
  return nullptr;
}

const MemberInfo* InterfaceInfo::FindId(int32_t dispid) const {
  for (const MemberInfo& m : members) {
    if (m.dispid == dispid) return &m;
  }
  return nullptr;
}

std::string ClassInfo::ProgId() const { return "Vantor2014." + std::string(name); }

std::string EnumMember::Identifier() const {
  std::string id;
  for (char c : name) {
    const auto u = static_cast<unsigned char>(c);
    id += (std::isalnum(u) || c == '_') ? c : '_';
  }
  if (id.empty() || std::isdigit(static_cast<unsigned char>(id[0]))) id.insert(0, "_");
  return id;
}

}  // namespace vantor::server
