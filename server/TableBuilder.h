#pragma once
// The vocabulary the type tables are written in. A table file reads like the
// class's interface listing:
//
//   lib.Class("USButton", ClassKind::Control)
//       .Method("About")
//       .Property("Caption", td::Str)
//       .ReadOnly("hwnd", td::Long)
//       .Function("LoadImage_FromFile", td::Bool,
//                 {P("FileName", td::Str), Opt("desiredIconWidth", td::Long, 0)})
//       .Event("KeyPress", {Ref("KeyAscii", td::Int)});
//
// Members are listed in the order of the interface; dispatch ids are given
// when the library is assembled (TypeLibrary), not by hand.
#include <string_view>
#include <vector>

#include "server/TypeInfo.h"

namespace vantor::server {

namespace td {
inline constexpr TypeRef Void{BaseType::Void};
inline constexpr TypeRef Bool{BaseType::Boolean};
inline constexpr TypeRef Byte{BaseType::Byte};
inline constexpr TypeRef Int{BaseType::Integer};
inline constexpr TypeRef Long{BaseType::Long};
inline constexpr TypeRef Single{BaseType::Single};
inline constexpr TypeRef Double{BaseType::Double};
inline constexpr TypeRef Cur{BaseType::Currency};
inline constexpr TypeRef Date{BaseType::Date};
inline constexpr TypeRef Str{BaseType::String};
inline constexpr TypeRef Var{BaseType::Variant};
inline constexpr TypeRef Obj{BaseType::Object};
inline constexpr TypeRef Color{BaseType::Color};
inline constexpr TypeRef Font{BaseType::Font};
inline constexpr TypeRef Picture{BaseType::Picture};
inline constexpr TypeRef Bytes{BaseType::Byte, {}, true};
constexpr TypeRef Enum(std::string_view name) { return {BaseType::Enum, name}; }
constexpr TypeRef Record(std::string_view name) { return {BaseType::Record, name}; }
constexpr TypeRef Class(std::string_view name) { return {BaseType::Class, name}; }
constexpr TypeRef ArrayOf(TypeRef t) {
  t.array = true;
  return t;
}
}  // namespace td

// Parameters: by value, by reference, optional (with the value an omitted
// argument takes), optional by reference.
ParamInfo P(std::string_view name, TypeRef type);
ParamInfo Ref(std::string_view name, TypeRef type);
ParamInfo Opt(std::string_view name, TypeRef type, Variant defaultValue = {});
ParamInfo OptRef(std::string_view name, TypeRef type, Variant defaultValue = {});

// The container's key and mouse events reach the host with the container's
// own argument types (16-bit codes and buttons, single-precision points), all
// by reference so that a handler may change what the control sees next.
std::vector<ParamInfo> KeyArgs();    // KeyCode, Shift
std::vector<ParamInfo> MouseArgs();  // Button, Shift, X, Y

class TableBuilder {
 public:
  class ClassBuilder {
   public:
    ClassBuilder(std::vector<ClassInfo>& classes, size_t index) : classes_(classes), index_(index) {}
    // A method without a result.
    ClassBuilder& Method(std::string_view name, std::vector<ParamInfo> params = {});
    // A method with a result.
    ClassBuilder& Function(std::string_view name, TypeRef result, std::vector<ParamInfo> params = {});
    // Read and write; an object type is set by reference. Parameters index it.
    ClassBuilder& Property(std::string_view name, TypeRef type, std::vector<ParamInfo> index = {});
    ClassBuilder& ReadOnly(std::string_view name, TypeRef type, std::vector<ParamInfo> index = {});
    ClassBuilder& WriteOnly(std::string_view name, TypeRef type, std::vector<ParamInfo> index = {});
    ClassBuilder& Event(std::string_view name, std::vector<ParamInfo> params = {});

   private:
    ClassBuilder& Add(bool event, MemberInfo member);
    std::vector<ClassInfo>& classes_;
    size_t index_;
  };

  ClassBuilder Class(std::string_view name, ClassKind kind);
  void Enum(std::string_view name, std::vector<EnumMember> members);
  void Record(std::string_view name, std::vector<FieldInfo> fields);

  std::vector<ClassInfo> classes;
  std::vector<EnumInfo> enums;
  std::vector<RecordInfo> records;
};

// One function for each group of classes; TypeLibrary calls them all.
void AddFrameTables(TableBuilder& lib);     // shared controls, label, tool tips, hover tracker
void AddImagingTables(TableBuilder& lib);   // picture controls and image lists
void AddEntryTables(TableBuilder& lib);     // text boxes, calendar, date picker, lists
void AddGridTables(TableBuilder& lib);      // the grid
void AddChromeTables(TableBuilder& lib);    // ribbon, tool bar, menu, tab, tree, form
void AddServiceTables(TableBuilder& lib);   // VT and the VT_* classes
void AddPageTables(TableBuilder& lib);      // design-time property pages

}  // namespace vantor::server
