#include "platform/FilePath.h"

#include <gtest/gtest.h>

namespace vantor::platform {
namespace {

TEST(FilePath, HostNamesBecomeFileSystemNames) {
  struct Case {
    String host;
    std::string native;
  };
  const Case cases[] = {
      {u"/tmp/a.png", "/tmp/a.png"},
      {u"C:\\Dados\\Fotos\\a.png", "C:/Dados/Fotos/a.png"},  // "\" is the separator it stood for
      {u"relatório\\março.txt", "relatório/março.txt"},      // UTF-8 on the way out
      {u"", ""},                                              // no name, no file
      {String(u"a.png\0.exe", 9), ""},                        // a NUL would reach another file
  };
  for (const Case& c : cases) EXPECT_EQ(FilePath::Native(c.host), c.native) << ToUtf8(c.host);
}

}  // namespace
}  // namespace vantor::platform
