#pragma once
// The class factory: objects are made by class name or program identifier
// ("VT", "Vantor2014.VT"). A class of the type library whose body is not
// built yet is still made, as an object whose every member answers "not
// implemented", so that a host's code that names it runs up to the call.
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "server/Dispatch.h"
#include "server/TypeLibrary.h"

namespace vantor::server {

class Registry {
 public:
  using Factory = std::function<DispatchPtr()>;

  static Registry& Instance();

  // A class of the library's type library. Throws std::logic_error for a
  // name the library lacks: the tables are the one list of classes.
  void Register(std::string_view className, Factory factory);
  // A class described elsewhere (a test's, a host's own); its info must
  // outlive the registry entry.
  void Register(const ClassInfo& info, Factory factory);
  void Unregister(std::string_view className);

  // Nothing, with error 429 and the name in the error object, for a name no
  // table knows.
  DispatchPtr Create(std::string_view nameOrProgId) const;
  bool IsImplemented(std::string_view nameOrProgId) const;
  const ClassInfo* Find(std::string_view nameOrProgId) const;

 private:
  struct Entry {
    const ClassInfo* info;
    Factory factory;
  };
  static std::string Key(std::string_view nameOrProgId);
  std::map<std::string, Entry> entries_;
};

}  // namespace vantor::server
