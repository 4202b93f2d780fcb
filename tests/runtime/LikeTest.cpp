#include "runtime/Like.h"

#include <gtest/gtest.h>

#include <chrono>

#include "runtime/Error.h"

namespace vantor {
namespace {

struct Case {
  const char16_t* text;
  const char16_t* pattern;
  bool binary;
  bool textual;
};

const Case kCases[] = {
    {u"abc", u"a?c", true, true},
    {u"ac", u"a?c", false, false},
    {u"a1", u"a#", true, true},
    {u"ab", u"a#", false, false},
    {u"a\u0663", u"a#", false, false},  // only ASCII digits
    {u"aXc", u"a[!a-z]c", true, false},
    {u"abc", u"a[!a-z]c", false, false},
    {u"F", u"[A-Z]", true, true},
    {u"f", u"[A-Z]", false, true},
    {u"Y", u"[A-CX-Z]", true, true},
    {u"M", u"[A-CX-Z]", false, false},
    {u"M", u"[!A-CX-Z]", true, true},
    {u"", u"*", true, true},
    {u"", u"?", false, false},
    {u"", u"", true, true},
    {u"a", u"", false, false},
    {u"", u"**", true, true},
    // "[]" is no character at all; "[!]" any one.
    {u"", u"[]", true, true},
    {u"a", u"[]", false, false},
    {u"a", u"a[]", true, true},
    {u"a", u"[!]", true, true},
    {u"", u"[!]", false, false},
    // Special characters stand for themselves inside brackets.
    {u"*", u"[*]", true, true},
    {u"a", u"[*]", false, false},
    {u"?", u"[?]", true, true},
    {u"#", u"[#]", true, true},
    {u"[", u"[[]", true, true},
    {u"]", u"]", true, true},
    {u"a]", u"a]", true, true},
    {u"!", u"!", true, true},
    {u"!", u"[!!]", false, false},
    {u"a", u"[!!]", true, true},
    {u"!", u"[a!]", true, true},
    // A hyphen first or last is itself.
    {u"-", u"[-a]", true, true},
    {u"-", u"[a-]", true, true},
    {u"b", u"[a-]", false, false},
    {u"-", u"[!-]", false, false},
    {u"-", u"[a-c-]", true, true},
    {u"b", u"[a-c-]", true, true},
    // Stars.
    {u"abc", u"*c", true, true},
    {u"abc", u"a*", true, true},
    {u"abc", u"*b*", true, true},
    {u"abc", u"*d*", false, false},
    {u"aaa", u"a*a", true, true},
    {u"a", u"a*a", false, false},
    {u"ab", u"a*b*", true, true},
    {u"abcbc", u"a*bc", true, true},
    {u"abcbd", u"a*bc", false, false},
    {u"mississippi", u"m*iss*ppi", true, true},
    {u"mississippi", u"m*iss*pi*i", false, false},
    {u"x.y.txt", u"*.txt", true, true},
    {u"X.TXT", u"*.txt", false, true},
    {u"1234", u"####", true, true},
    {u"123a", u"####", false, false},
    {u"12", u"####", false, false},
    // Case folds in text comparison; accents never do.
    {u"ÇÃO", u"ção", false, true},
    {u"ção", u"cao", false, false},
    {u"ÉDSON", u"[é]dson", false, true},
    {u"é", u"[a-z]", false, false},
    {u"ı", u"I", false, true},
    {u"Ω", u"[α-ω]", false, true},
    // Units, as the platform's strings: a surrogate pair is two characters.
    {u"\U0001F600", u"?", false, false},
    {u"\U0001F600", u"??", true, true},
    {u"a\U0001F600b", u"a*b", true, true},
};

TEST(Like, Table) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << "case " << (&c - kCases));
    Err().Clear();
    EXPECT_EQ(Like(c.text, c.pattern, vbBinaryCompare), c.binary);
    EXPECT_EQ(Like(c.text, c.pattern, vbTextCompare), c.textual);
    EXPECT_EQ(Err().Number(), 0);
    EXPECT_EQ(Like(c.text, c.pattern), c.binary);
  }
}

TEST(Like, InvalidPatterns) {
  const char16_t* bad[] = {u"[a", u"[", u"a[b-", u"[!", u"[]]]["};
  for (const char16_t* pattern : bad) {
    for (auto compare : {vbBinaryCompare, vbTextCompare}) {
      Err().Clear();
      EXPECT_FALSE(Like(u"a", pattern, compare)) << ToUtf8(pattern);
      EXPECT_EQ(Err().Number(), 93);
    }
  }
  // The whole pattern is read before matching, so a text that fails early
  // still reports the broken pattern.
  Err().Clear();
  EXPECT_FALSE(Like(u"xyz", u"a["));
  EXPECT_EQ(Err().Number(), 93);
  // A range must run low to high.
  Err().Clear();
  EXPECT_FALSE(Like(u"b", u"[z-a]"));
  EXPECT_EQ(Err().Number(), 93);
  // After a range a hyphen cannot open another: "[a-a-c]" is a, "-" and c.
  Err().Clear();
  EXPECT_TRUE(Like(u"-", u"[a-a-c]"));
  EXPECT_TRUE(Like(u"c", u"[a-a-c]"));
  EXPECT_FALSE(Like(u"b", u"[a-a-c]"));
  EXPECT_EQ(Err().Number(), 0);
  // Text comparison orders ranges without case: "[Z-a]" is fine in binary
  // (0x5A..0x61) and backwards once folded.
  EXPECT_TRUE(Like(u"_", u"[Z-a]", vbBinaryCompare));
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_FALSE(Like(u"_", u"[Z-a]", vbTextCompare));
  EXPECT_EQ(Err().Number(), 93);
  Err().Clear();
}

TEST(Like, ManyStarsStayLinearInSpaceAndQuick) {
  const String text(20000, u'a');
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_FALSE(Like(text, u"*a*a*a*a*a*b"));
  EXPECT_FALSE(Like(text, u"*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b", vbTextCompare));
  EXPECT_TRUE(Like(text, u"*a*a*a*a*a*a"));
  EXPECT_TRUE(Like(text + u"b", u"*a*a*a*a*a*b"));
  EXPECT_FALSE(Like(text, String(5000, u'*') + u"b"));
  EXPECT_TRUE(Like(text, String(10000, u'?') + u"*" + String(10000, u'?')));
  EXPECT_FALSE(Like(text, String(10000, u'?') + u"*" + String(10001, u'?')));
  const auto elapsed = std::chrono::steady_clock::now() - begin;
  // Backtracking into every star would take longer than the universe's age;
  // the last-star method takes well under a second even unoptimised.
  EXPECT_LT(std::chrono::duration_cast<std::chrono::seconds>(elapsed).count(), 10);
}

TEST(Like, GarbageNeverCrashes) {
  String garbage;
  for (int i = 0; i < 5000; ++i) garbage.push_back(static_cast<char16_t>((i * 40503) & 0xFFFF));
  for (auto compare : {vbBinaryCompare, vbTextCompare}) {
    Err().Clear();
    (void)Like(garbage, garbage, compare);
    (void)Like(u"", garbage, compare);
    (void)Like(garbage, u"", compare);
    EXPECT_TRUE(Like(garbage, u"*", compare));
    EXPECT_TRUE(Like(garbage, String(garbage.size(), u'?'), compare));
  }
  Err().Clear();
}

}  // namespace
}  // namespace vantor
