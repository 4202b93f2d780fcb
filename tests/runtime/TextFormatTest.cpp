#include "runtime/TextFormat.h"

#include <gtest/gtest.h>

#include "runtime/Strings.h"

namespace vantor {
namespace {

struct Case {
  const char16_t* text;
  const char16_t* format;
  const char16_t* want;
};

const Case kCases[] = {
    {u"1234", u"@@@.@@@.@@@", u"   .  1.234"},
    {u"123456789", u"@@@.@@@.@@@", u"123.456.789"},
    {u"abc", u"!@@@@@", u"abc  "},
    {u"abc", u"@@@@@", u"  abc"},
    {u"ab", u"&&&&", u"ab"},
    {u"ab", u"!&&&&", u"ab"},
    {u"ab", u"@@@@", u"  ab"},
    {u"ab", u"&@&@", u" ab"},
    {u"ab", u"!&@&@", u"ab "},
    // More characters than placeholders: the rest stand in front, or behind
    // when filling from the left.
    {u"123456", u"@@@", u"123456"},
    {u"123456", u"!@@@", u"123456"},
    {u"12345", u"(@@@)", u"(12345)"},
    {u"12345", u"!(@@@)", u"(12345)"},
    {u"12345", u"R$ @@", u"R$ 12345"},
    {u"12345", u"@-@", u"1234-5"},
    {u"12345", u"!@-@", u"1-2345"},
    // Case.
    {u"Hello", u">", u"HELLO"},
    {u"Hello", u"<", u"hello"},
    {u"AÇÃO", u"<@@@@", u"ação"},
    {u"ação", u">@@@@@", u" AÇÃO"},
    {u"ab", u"<>@@", u"AB"},
    {u"ab", u"><@@", u"ab"},
    {u"ab", u"<\"XY\"@@", u"XYab"},
    // Literals, escapes and quotes.
    {u"12", u"\\@@@", u"@12"},
    {u"12", u"\"@\"@@", u"@12"},
    {u"12", u"@\"x\"@", u"1x2"},
    {u"12", u"@\\\\@", u"1\\2"},
    {u"a", u"@\\", u"a"},
    {u"a", u"@\"xy", u"axy"},
    {u"ab", u"@!@", u"ab"},
    {u"abc", u"", u"abc"},
    {u"", u"", u""},
    {u"", u"@@@", u"   "},
    {u"", u"&&&", u""},
    {u"", u"!@@", u"  "},
    // A second section is for the empty text.
    {u"", u"@;\\E\\m\\p\\t\\y", u"Empty"},
    {u"x", u"@;\\E\\m\\p\\t\\y", u"x"},
    {u"abc", u"@;-", u"abc"},
    {u"", u"@@;-", u"-"},
    {u"", u"@@;", u""},
    {u"a", u"\";\"@", u";a"},
    // A surrogate pair is one character.
    {u"a\U0001F600", u"@@@", u" a\U0001F600"},
    {u"a\U0001F600", u"@-@", u"a-\U0001F600"},
};

TEST(TextFormat, Table) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << "case " << (&c - kCases));
    EXPECT_EQ(TextFormat::Apply(c.text, c.format), c.want);
  }
}

TEST(TextFormat, GroupsOfThreeForDocumentNumbers) {
  const String pattern = u"@@@.@@@.@@@.@@@.@@@.@@@.@@@.@@@.@@@";
  auto compact = [](const String& s) {
    String out = Replace(s, u" ", u"");
    while (!out.empty() && out[0] == u'.') out.erase(0, 1);
    return out;
  };
  EXPECT_EQ(compact(TextFormat::Apply(u"1234", pattern)), u"1.234");
  const String nine = TextFormat::Apply(u"123456789", pattern);
  EXPECT_EQ(nine.size(), pattern.size());
  EXPECT_EQ(Replace(nine, u" ", u""), u"......123.456.789");
  EXPECT_EQ(nine.substr(nine.size() - 11), u"123.456.789");
}

TEST(TextFormat, GarbageNeverCrashes) {
  String garbage;
  for (int i = 0; i < 20000; ++i) garbage.push_back(static_cast<char16_t>((i * 2654435761u) >> 16));
  EXPECT_EQ(TextFormat::Apply(garbage, u""), garbage);
  (void)TextFormat::Apply(garbage, garbage);
  (void)TextFormat::Apply(u"", garbage);
  const String many(30000, u'@');
  EXPECT_GE(TextFormat::Apply(garbage, many).size(), 30000u);
}

}  // namespace
}  // namespace vantor
