#include "server/TableBuilder.h"

#include <utility>

namespace vantor::server {

ParamInfo P(std::string_view name, TypeRef type) { return {name, type, false, false, {}}; }
ParamInfo Ref(std::string_view name, TypeRef type) { return {name, type, true, false, {}}; }
ParamInfo Opt(std::string_view name, TypeRef type, Variant defaultValue) {
  return {name, type, false, true, std::move(defaultValue)};
}
ParamInfo OptRef(std::string_view name, TypeRef type, Variant defaultValue) {
  return {name, type, true, true, std::move(defaultValue)};
}

std::vector<ParamInfo> KeyArgs() { return {Ref("KeyCode", td::Int), Ref("Shift", td::Int)}; }

std::vector<ParamInfo> MouseArgs() {
  return {Ref("Button", td::Int), Ref("Shift", td::Int), Ref("X", td::Single), Ref("Y", td::Single)};
}

using ClassBuilder = TableBuilder::ClassBuilder;

ClassBuilder& ClassBuilder::Add(bool event, MemberInfo member) {
  ClassInfo& c = classes_[index_];
  (event ? c.events : c.dispatch).members.push_back(std::move(member));
  return *this;
}

ClassBuilder& ClassBuilder::Method(std::string_view name, std::vector<ParamInfo> params) {
  return Add(false, {name, MemberKind::Method, td::Void, std::move(params)});
}

ClassBuilder& ClassBuilder::Function(std::string_view name, TypeRef result,
                                     std::vector<ParamInfo> params) {
  return Add(false, {name, MemberKind::Method, result, std::move(params)});
}

ClassBuilder& ClassBuilder::Property(std::string_view name, TypeRef type,
                                     std::vector<ParamInfo> index) {
  return Add(false, {name, MemberKind::Property, type, std::move(index)});
}

ClassBuilder& ClassBuilder::ReadOnly(std::string_view name, TypeRef type,
                                     std::vector<ParamInfo> index) {
  return Add(false, {name, MemberKind::ReadOnly, type, std::move(index)});
}

ClassBuilder& ClassBuilder::WriteOnly(std::string_view name, TypeRef type,
                                      std::vector<ParamInfo> index) {
  return Add(false, {name, MemberKind::WriteOnly, type, std::move(index)});
}

ClassBuilder& ClassBuilder::Event(std::string_view name, std::vector<ParamInfo> params) {
  return Add(true, {name, MemberKind::Event, td::Void, std::move(params)});
}

ClassBuilder TableBuilder::Class(std::string_view name, ClassKind kind) {
  ClassInfo c;
  c.name = name;
  c.kind = kind;
  c.dispatch.name = "_" + std::string(name);
  c.events.name = "__" + std::string(name);
  classes.push_back(std::move(c));
  return ClassBuilder(classes, classes.size() - 1);
}

void TableBuilder::Enum(std::string_view name, std::vector<EnumMember> members) {
  enums.push_back({name, std::move(members)});
}

void TableBuilder::Record(std::string_view name, std::vector<FieldInfo> fields) {
  records.push_back({name, std::move(fields)});
}

}  // namespace vantor::server
