#include "runtime/String.h"

#include <gtest/gtest.h>

#include <string>

namespace vantor {
namespace {

TEST(StringUtf8, RoundTrips) {
  const char16_t* texts[] = {
      u"",
      u"plain ASCII ~\x7F",
      u"ação, coração, pão, Èé ñ ß ÿ",
      u"€ \u2026 \u20BF \uFFFD \uFFFF \u0800 \u07FF \u0080",
      u"\U0001F600 \U00010000 \U0010FFFF",
      u"中文 \u0416 \u03A9",
  };
  for (const char16_t* t : texts) {
    EXPECT_EQ(FromUtf8(ToUtf8(t)), t);
  }
  EXPECT_EQ(ToUtf8(u"ção"), "\xC3\xA7\xC3\xA3o");
  EXPECT_EQ(ToUtf8(u"€"), "\xE2\x82\xAC");
  EXPECT_EQ(ToUtf8(u"\U0001F600"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(ToUtf8(u"\U0010FFFF"), "\xF4\x8F\xBF\xBF");
  EXPECT_EQ(FromUtf8("\xF0\x9F\x98\x80"), (String{0xD83D, 0xDE00}));
  EXPECT_EQ(FromUtf8(std::string("a\0b", 3)), String(u"a\0b", 3));
}

TEST(StringUtf8, IllFormedBecomesReplacement) {
  struct Case {
    std::string bytes;
    String want;
  };
  const Case cases[] = {
      {"\xC3", u"\uFFFD"},    // cut short at the end
      {"\xC3(", u"\uFFFD("},  // cut short by an ASCII byte
      {"\xE2\x82"
       "a",
       u"\uFFFDa"},         // three-byte form missing its last
      {"\x80", u"\uFFFD"},  // lone continuation
      {"\x80\xBF", u"\uFFFD\uFFFD"},
      {"\xFF", u"\uFFFD"},
      {"\xFE\xFF", u"\uFFFD\uFFFD"},
      {"a\xF8\x88\x80\x80\x80"
       "b",
       u"a\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDb"},
      {"\xC0\xAF", u"\uFFFD"},          // overlong "/"
      {"\xE0\x80\xAF", u"\uFFFD"},      // overlong "/"
      {"\xF4\x90\x80\x80", u"\uFFFD"},  // past U+10FFFF
      {"x\xC3\xA7\xC3", u"x\u00E7\uFFFD"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(FromUtf8(c.bytes), c.want) << testing::PrintToString(c.bytes);
  }
  // An encoded surrogate is refused and leaves no surrogate behind.
  const String s = FromUtf8("\xED\xA0\x80z");
  ASSERT_FALSE(s.empty());
  EXPECT_EQ(s.front(), u'\uFFFD');
  EXPECT_EQ(s.back(), u'z');
  for (char16_t c : s) EXPECT_FALSE(c >= 0xD800 && c <= 0xDFFF);
}

TEST(StringUtf8, LoneSurrogatesBecomeReplacement) {
  EXPECT_EQ(ToUtf8(String{0xD800}), "\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(String{0xDC00, u'a'}),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(ToUtf8(String{0xDC00, 0xD800}), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(String{u'a', 0xD83D}), "a\xEF\xBF\xBD");
}

TEST(StringUtf8, AnyBytesSettleAfterOneRoundTrip) {
  std::string bytes;
  for (int i = 0; i < 50000; ++i) bytes.push_back(static_cast<char>((i * 131 + i / 7) & 0xFF));
  const std::string once = ToUtf8(FromUtf8(bytes));
  EXPECT_EQ(ToUtf8(FromUtf8(once)), once);
}

TEST(StringAnsi, Windows1252Table) {
  struct Entry {
    uint8_t byte;
    char16_t ch;
  };
  const Entry high[] = {
      {0x80, u'€'}, {0x81, 0x0081}, {0x82, u'‚'},   {0x83, u'ƒ'},   {0x84, u'„'},   {0x85, u'…'},
      {0x86, u'†'}, {0x87, u'‡'},   {0x88, u'ˆ'},   {0x89, u'‰'},   {0x8A, u'Š'},   {0x8B, u'‹'},
      {0x8C, u'Œ'}, {0x8D, 0x008D}, {0x8E, u'Ž'},   {0x8F, 0x008F}, {0x90, 0x0090}, {0x91, u'‘'},
      {0x92, u'’'}, {0x93, u'“'},   {0x94, u'”'},   {0x95, u'•'},   {0x96, u'–'},   {0x97, u'—'},
      {0x98, u'˜'}, {0x99, u'™'},   {0x9A, u'š'},   {0x9B, u'›'},   {0x9C, u'œ'},   {0x9D, 0x009D},
      {0x9E, u'ž'}, {0x9F, u'Ÿ'},   {0x00, 0x0000}, {0x7F, 0x007F}, {0xA0, 0x00A0}, {0xE7, u'ç'},
      {0xFF, u'ÿ'},
  };
  for (const Entry& e : high) {
    EXPECT_EQ(AnsiToChar(e.byte), e.ch) << int(e.byte);
    EXPECT_EQ(CharToAnsi(e.ch), e.byte) << int(e.byte);
  }
  // Every byte has its own character and comes back.
  for (int b = 0; b < 256; ++b) {
    EXPECT_EQ(CharToAnsi(AnsiToChar(static_cast<uint8_t>(b))), b);
  }
  for (char16_t ch : {char16_t{0x0080}, char16_t{0x009F}, char16_t{0x0100}, char16_t{0x20AD},
                      char16_t{0xD800}, char16_t{0xFFFF}}) {
    EXPECT_EQ(CharToAnsi(ch), -1) << int(ch);
  }
}

TEST(StringAnsi, RoundTripsAndQuestionMarks) {
  EXPECT_EQ(ToAnsi(u"ção"), "\xE7\xE3o");
  EXPECT_EQ(FromAnsi("\xE7\xE3o"), u"ção");
  EXPECT_EQ(FromAnsi(ToAnsi(u"ação € Ÿ")), u"ação € Ÿ");
  EXPECT_EQ(ToAnsi(u"ā中"), "??");
  EXPECT_EQ(ToAnsi(u"a\U0001F600b"), "a?b");  // one character, one mark
  EXPECT_EQ(ToAnsi(String{0xD800, u'x'}), "?x");
  EXPECT_EQ(ToAnsi(String{0xDC00, 0xD800}), "??");
  EXPECT_EQ(ToAnsi(u""), "");
  EXPECT_EQ(FromAnsi(""), u"");
  std::string all;
  for (int b = 0; b < 256; ++b) all.push_back(static_cast<char>(b));
  EXPECT_EQ(ToAnsi(FromAnsi(all)), all);
  EXPECT_EQ(FromAnsi(all).size(), 256u);
}

}  // namespace
}  // namespace vantor
