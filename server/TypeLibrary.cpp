#include "server/TypeLibrary.h"

#include <algorithm>
#include <set>
#include <utility>

#include "server/TableBuilder.h"

namespace vantor::server {

namespace {

template <class T>
const T* FindNamed(const std::vector<T>& items, std::string_view name) {
  const std::string key = FoldName(name);
  for (const T& item : items) {
    if (FoldName(item.name) == key) return &item;
  }
  return nullptr;
}

}  // namespace

void AssignDispatchIds(ClassInfo& info) {
  // A collection without a caption has its Item as the value, so that
  // `list(1)` reads an element, and its enumerator where For Each looks.
  const bool captioned = info.dispatch.Find("Caption") != nullptr;
  int32_t next = 1;
  for (MemberInfo& m : info.dispatch.members) {
    if (m.name == "About") {
      m.dispid = kDispidAboutBox;
    } else if (m.name == "Caption" || (!captioned && m.name == "Item")) {
      m.dispid = kDispidValue;
    } else if (m.name == "xcom_IEnum" || m.name == "_NewEnum") {
      m.dispid = kDispidNewEnum;
    } else {
      m.dispid = next++;
    }
  }
  next = 1;
  for (MemberInfo& m : info.events.members) m.dispid = next++;
}

TypeLibrary::TypeLibrary(std::vector<ClassInfo> classes, std::vector<EnumInfo> enums,
                         std::vector<RecordInfo> records)
    : classes_(std::move(classes)), enums_(std::move(enums)), records_(std::move(records)) {
  for (ClassInfo& c : classes_) AssignDispatchIds(c);
  // Defaults travel as the parameter's own type, so that a table may write 0
  // for an Integer or a Boolean.
  for (ClassInfo& c : classes_) {
    for (MemberInfo& m : c.dispatch.members) {
      for (ParamInfo& p : m.params) {
        const VbVarType t = p.type.VarType();
        if (p.optional && !p.defaultValue.IsEmpty() && t != vbVariant && p.defaultValue.CanChangeType(t))
          p.defaultValue = p.defaultValue.ChangeType(t);
      }
    }
  }
}

const TypeLibrary& TypeLibrary::Get() {
  static const TypeLibrary library = [] {
    TableBuilder lib;
    AddFrameTables(lib);
    AddImagingTables(lib);
    AddEntryTables(lib);
    AddGridTables(lib);
    AddChromeTables(lib);
    AddServiceTables(lib);
    AddPageTables(lib);
    std::sort(lib.classes.begin(), lib.classes.end(),
              [](const ClassInfo& a, const ClassInfo& b) { return FoldName(a.name) < FoldName(b.name); });
    return TypeLibrary(std::move(lib.classes), std::move(lib.enums), std::move(lib.records));
  }();
  return library;
}

const ClassInfo* TypeLibrary::FindClass(std::string_view name) const {
  const std::string prefix = std::string(kName) + ".";
  if (name.size() > prefix.size() && FoldName(name.substr(0, prefix.size())) == FoldName(prefix))
    name.remove_prefix(prefix.size());
  return FindNamed(classes_, name);
}

const EnumInfo* TypeLibrary::FindEnum(std::string_view name) const { return FindNamed(enums_, name); }

const RecordInfo* TypeLibrary::FindRecord(std::string_view name) const {
  return FindNamed(records_, name);
}

size_t TypeLibrary::InterfaceCount() const {
  size_t n = 0;
  for (const ClassInfo& c : classes_) n += c.HasEvents() ? 2 : 1;
  return n;
}

std::vector<std::string> TypeLibrary::Problems() const {
  std::vector<std::string> out;
  auto checkType = [&](const TypeRef& t, const std::string& where) {
    if (t.base == BaseType::Enum && !FindEnum(t.name))
      out.push_back(where + ": unknown enumeration " + std::string(t.name));
    if (t.base == BaseType::Record && !FindRecord(t.name))
      out.push_back(where + ": unknown record " + std::string(t.name));
    if (t.base == BaseType::Class && !FindClass(t.name))
      out.push_back(where + ": unknown class " + std::string(t.name));
  };
  auto unique = [&](std::set<std::string>& seen, std::string_view name, const std::string& where) {
    if (!seen.insert(FoldName(name)).second) out.push_back(where + ": duplicate name " + std::string(name));
  };

  std::set<std::string> typeNames;
  for (const ClassInfo& c : classes_) {
    unique(typeNames, c.name, "library");
    for (const InterfaceInfo* itf : {&c.dispatch, &c.events}) {
      std::set<std::string> memberNames;
      std::set<int32_t> ids;
      for (const MemberInfo& m : itf->members) {
        const std::string where = itf->name + "." + std::string(m.name);
        unique(memberNames, m.name, itf->name);
        if (!ids.insert(m.dispid).second) out.push_back(where + ": duplicate dispatch id");
        checkType(m.type, where);
        std::set<std::string> paramNames;
        bool optionalSeen = false;
        for (const ParamInfo& p : m.params) {
          const std::string pw = where + "(" + std::string(p.name) + ")";
          unique(paramNames, p.name, where);
          checkType(p.type, pw);
          if (optionalSeen && !p.optional) out.push_back(pw + ": required after optional");
          optionalSeen = optionalSeen || p.optional;
          const VbVarType vt = p.type.VarType();
          if (p.optional && !p.defaultValue.IsEmpty() && vt != vbVariant && p.defaultValue.Type() != vt)
            out.push_back(pw + ": default does not fit the type");
        }
      }
    }
  }
  for (const EnumInfo& e : enums_) {
    unique(typeNames, e.name, "library");
    std::set<std::string> names;
    for (const EnumMember& m : e.members) unique(names, m.name, std::string(e.name));
  }
  for (const RecordInfo& r : records_) {
    unique(typeNames, r.name, "library");
    std::set<std::string> names;
    for (const FieldInfo& f : r.fields) {
      unique(names, f.name, std::string(r.name));
      checkType(f.type, std::string(r.name) + "." + std::string(f.name));
    }
  }
  return out;
}

}  // namespace vantor::server
