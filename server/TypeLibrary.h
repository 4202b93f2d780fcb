#pragma once
// The library's type library, "Vantor2014": every creatable class with its
// default and event interfaces, the enumerations and the records. Assembled
// once from the tables, with dispatch ids given by one rule:
//   - default interface: `About` takes the platform's about-box id (-552),
//     `Caption` the value id (0) (a collection without one: `Item`), the
//     enumerator `xcom_IEnum` the platform's new-enum id (-4), the other
//     members 1, 2, 3... in order;
//   - event interface: 1, 2, 3... in the order the events are listed.
#include <string>
#include <string_view>
#include <vector>

#include "server/TypeInfo.h"

namespace vantor::server {

class TypeLibrary {
 public:
  static constexpr std::string_view kName = "Vantor2014";

  static const TypeLibrary& Get();

  const std::vector<ClassInfo>& Classes() const { return classes_; }
  const std::vector<EnumInfo>& Enums() const { return enums_; }
  const std::vector<RecordInfo>& Records() const { return records_; }

  // By name or program identifier ("VT", "Vantor2014.VT"), without regard to case.
  const ClassInfo* FindClass(std::string_view name) const;
  const EnumInfo* FindEnum(std::string_view name) const;
  const RecordInfo* FindRecord(std::string_view name) const;
  size_t InterfaceCount() const;

  // What is wrong with the tables: duplicate names, references to unknown
  // types, defaults that do not fit their parameter. Empty when sound.
  std::vector<std::string> Problems() const;

  // Assembles a library from tables; tests build small ones with it.
  explicit TypeLibrary(std::vector<ClassInfo> classes, std::vector<EnumInfo> enums = {},
                       std::vector<RecordInfo> records = {});

 private:
  std::vector<ClassInfo> classes_;
  std::vector<EnumInfo> enums_;
  std::vector<RecordInfo> records_;
};

// Gives a class's members their dispatch ids by the rule above.
void AssignDispatchIds(ClassInfo& info);

}  // namespace vantor::server
