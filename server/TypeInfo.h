#pragma once
// The type library's records: what a class, an interface, a member, a
// parameter, an enumeration and a record look like. The tables that fill them
// (Tables*.cpp) are the library's one description of its public face; the
// dispatcher, the IDL writer and `vantor typelib` all read them.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/Variant.h"

namespace vantor::server {

// Names of the type library compare without regard to case, as the
// platform's dispatch does; ASCII is all they hold.
bool SameName(std::string_view a, std::string_view b);
std::string FoldName(std::string_view name);

enum class BaseType : uint8_t {
  Void,
  Boolean,
  Byte,
  Integer,   // 16-bit
  Long,      // 32-bit
  Single,
  Double,
  Currency,
  Date,
  String,
  Variant,
  Object,    // any automation object (IDispatch)
  Color,     // OLE_COLOR
  Font,      // the standard font object
  Picture,   // the standard picture object
  Enum,      // named by TypeRef::name
  Record,    // named by TypeRef::name
  Class,     // one of the library's classes, named by TypeRef::name
};

struct TypeRef {
  BaseType base = BaseType::Void;
  std::string_view name = {};  // for Enum, Record and Class
  bool array = false;          // a one-dimensional safe array of base

  bool IsObject() const {
    return !array && (base == BaseType::Object || base == BaseType::Font ||
                      base == BaseType::Picture || base == BaseType::Class);
  }
  // The Variant type a value of this type travels as.
  VbVarType VarType() const;
  // How the type reads in a listing: "Long", "ENUM_THEME", "Byte()".
  std::string Text() const;
  bool operator==(const TypeRef&) const = default;
};

struct ParamInfo {
  std::string_view name;
  TypeRef type;
  bool byRef = false;
  bool optional = false;
  // For an optional parameter: the value it takes when omitted. Empty for an
  // optional Variant without a default, which arrives as Missing.
  Variant defaultValue = {};
};

enum class MemberKind : uint8_t {
  Method,
  Property,  // get and put (putref for object types)
  ReadOnly,  // get only
  WriteOnly, // put only
  Event,
};

// The platform's reserved dispatch ids the tables use.
inline constexpr int32_t kDispidValue = 0;
inline constexpr int32_t kDispidAboutBox = -552;
inline constexpr int32_t kDispidNewEnum = -4;

struct MemberInfo {
  std::string_view name;
  MemberKind kind = MemberKind::Method;
  TypeRef type;  // the result of a method, the value of a property
  std::vector<ParamInfo> params;
  int32_t dispid = 0;  // assigned when the library is assembled

  bool CanGet() const { return kind == MemberKind::Property || kind == MemberKind::ReadOnly; }
  bool CanPut() const {
    return (kind == MemberKind::Property || kind == MemberKind::WriteOnly) && !type.IsObject();
  }
  bool CanPutRef() const {
    return (kind == MemberKind::Property || kind == MemberKind::WriteOnly) && type.IsObject();
  }
  size_t RequiredCount() const;
};

struct InterfaceInfo {
  std::string name;  // "_USButton", "__USButton"
  std::vector<MemberInfo> members;

  const MemberInfo* Find(std::string_view memberName) const;  // without regard to case
  const MemberInfo* FindId(int32_t dispid) const;
};

enum class ClassKind : uint8_t { Control, Service, ObjectModel, PropertyPage };

struct ClassInfo {
  std::string_view name;
  ClassKind kind = ClassKind::Service;
  InterfaceInfo dispatch;  // _X
  InterfaceInfo events;    // __X; no members when the class raises none

  bool HasEvents() const { return !events.members.empty(); }
  std::string ProgId() const;  // "Vantor2014.X"
};

struct EnumMember {
  std::string_view name;  // exactly as the library spells it, blanks included
  int32_t value = 0;
  // The C++ spelling: blanks and other non-identifier characters become "_".
  std::string Identifier() const;
};

struct EnumInfo {
  std::string_view name;
  std::vector<EnumMember> members;
};

struct FieldInfo {
  std::string_view name;
  TypeRef type;
};

struct RecordInfo {
  std::string_view name;
  std::vector<FieldInfo> fields;
};

}  // namespace vantor::server
