#include "runtime/Strings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "runtime/Error.h"
#include "tests/runtime/TestSupport.h"

namespace vantor {
namespace {

using namespace test;

constexpr auto T = vbTextCompare;
constexpr auto B = vbBinaryCompare;

TEST(StringsInStr, Table) {
  struct Case {
    int32_t start;
    const char16_t* s;
    const char16_t* find;
    VbCompareMethod compare;
    int32_t want;
    int32_t err;
  };
  const Case cases[] = {
      {1, u"abc", u"b", B, 2, 0},
      {1, u"abc", u"", B, 1, 0},
      {3, u"abc", u"", B, 3, 0},
      {4, u"abc", u"", B, 4, 0},
      {5, u"abc", u"", B, 0, 0},
      {1, u"", u"", B, 0, 0},
      {1, u"", u"a", B, 0, 0},
      {0, u"abc", u"a", B, 0, 5},
      {-7, u"abc", u"", B, 0, 5},
      {4, u"abc", u"c", B, 0, 0},
      {3, u"abc", u"c", B, 3, 0},
      {3, u"abcabc", u"abc", B, 4, 0},
      {2, u"abcabc", u"abc", B, 4, 0},
      {1, u"aaa", u"aa", B, 1, 0},
      {2, u"aaa", u"aa", B, 2, 0},
      {1, u"abc", u"abcd", B, 0, 0},
      {1, u"AÇÃO", u"ção", B, 0, 0},
      {1, u"AÇÃO", u"ção", T, 2, 0},
      {1, u"ação", u"cao", T, 0, 0},
      {1, u"xyzB", u"b", T, 4, 0},
      {INT32_MAX, u"abc", u"a", B, 0, 0},
      {INT32_MAX, u"abc", u"", B, 0, 0},
  };
  Err().Clear();
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "start " << c.start << " find " << ToUtf8(c.find));
    EXPECT_EQ(InStr(c.start, c.s, c.find, c.compare), c.want);
    EXPECT_EQ(ErrAfter(), c.err);
  }
  EXPECT_EQ(InStr(u"bcd", u"d"), 3);
  EXPECT_EQ(InStr(u"BCD", u"d", T), 3);
}

TEST(StringsInStrRev, Table) {
  struct Case {
    const char16_t* s;
    const char16_t* find;
    int32_t start;
    VbCompareMethod compare;
    int32_t want;
    int32_t err;
  };
  const Case cases[] = {
      {u"abcabc", u"abc", -1, B, 4, 0}, {u"abcabc", u"abc", 6, B, 4, 0},
      {u"abcabc", u"abc", 5, B, 1, 0},  {u"abcabc", u"abc", 3, B, 1, 0},
      {u"abcabc", u"abc", 2, B, 0, 0},  {u"abcabc", u"c", 7, B, 0, 0},
      {u"abc", u"", -1, B, 3, 0},       {u"abc", u"", 2, B, 2, 0},
      {u"abc", u"", 4, B, 0, 0},        {u"", u"", -1, B, 0, 0},
      {u"", u"a", -1, B, 0, 0},         {u"abc", u"a", 0, B, 0, 5},
      {u"abc", u"a", -2, B, 0, 5},      {u"XaXA", u"a", -1, B, 2, 0},
      {u"XaXA", u"a", -1, T, 4, 0},     {u"aaa", u"aa", -1, B, 2, 0},
      {u"ab", u"abc", -1, B, 0, 0},
  };
  Err().Clear();
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "start " << c.start);
    EXPECT_EQ(InStrRev(c.s, c.find, c.start, c.compare), c.want);
    EXPECT_EQ(ErrAfter(), c.err);
  }
}

TEST(StringsMidLeftRight, Table) {
  Err().Clear();
  EXPECT_EQ(Mid(u"abcdef", 2, 3), u"bcd");
  EXPECT_EQ(Mid(u"abcdef", 2), u"bcdef");
  EXPECT_EQ(Mid(u"abc", 3), u"c");
  EXPECT_EQ(Mid(u"abc", 4), u"");
  EXPECT_EQ(Mid(u"abc", 2, 100), u"bc");
  EXPECT_EQ(Mid(u"abc", 1, 0), u"");
  EXPECT_EQ(Mid(u"abc", INT32_MAX, INT32_MAX), u"");
  EXPECT_EQ(ErrAfter(), 0);
  EXPECT_EQ(Mid(u"abc", 0), u"");
  EXPECT_EQ(ErrAfter(), 5);
  EXPECT_EQ(Mid(u"abc", 1, -2), u"");
  EXPECT_EQ(ErrAfter(), 5);

  EXPECT_EQ(Left(u"abc", 2), u"ab");
  EXPECT_EQ(Left(u"abc", 0), u"");
  EXPECT_EQ(Left(u"abc", 5), u"abc");
  EXPECT_EQ(Right(u"abc", 2), u"bc");
  EXPECT_EQ(Right(u"abc", 3), u"abc");
  EXPECT_EQ(Right(u"abc", INT32_MAX), u"abc");
  EXPECT_EQ(Right(u"", 1), u"");
  EXPECT_EQ(ErrAfter(), 0);
  EXPECT_EQ(Left(u"abc", -1), u"");
  EXPECT_EQ(ErrAfter(), 5);
  EXPECT_EQ(Right(u"abc", -1), u"");
  EXPECT_EQ(ErrAfter(), 5);
}

TEST(StringsTrim, OnlyBlanks) {
  EXPECT_EQ(Trim(u"  a b  "), u"a b");
  EXPECT_EQ(LTrim(u"  a b  "), u"a b  ");
  EXPECT_EQ(RTrim(u"  a b  "), u"  a b");
  EXPECT_EQ(Trim(u"\ta\t"), u"\ta\t");
  EXPECT_EQ(Trim(u"\u00A0a\u00A0"), u"\u00A0a\u00A0");
  EXPECT_EQ(Trim(u"    "), u"");
  EXPECT_EQ(LTrim(u"    "), u"");
  EXPECT_EQ(RTrim(u"    "), u"");
  EXPECT_EQ(Trim(u""), u"");
  EXPECT_EQ(Trim(u"x"), u"x");
}

TEST(StringsCase, LettersOfTheLibrarysTexts) {
  struct Pair {
    const char16_t* upper;
    const char16_t* lower;
  };
  // Both directions hold for these.
  const Pair pairs[] = {
      {u"AÇÃO ÉÍ", u"ação éí"},
      {u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞ", u"àáâãäåæçèéêëìíîïðñòóôõöøùúûüýþ"},
      {u"ŸŠŒŽ", u"ÿšœž"},
      {u"ĀĂĄĆČĎĐĘĚĞĦĲĹĽŁŃŇŊŐŔŘŚŞŢŤŦŮŰŲŴŶŹŻŽ", u"āăąćčďđęěğħĳĺľłńňŋőŕřśşţťŧůűųŵŷźżž"},
      {u"ΑΒΓΔΩ ΆΈΉΊΌΎΏΪΫ", u"αβγδω άέήίόύώϊϋ"},
      {u"ПРИВЕТ ЁЖ ЂЏ", u"привет ёж ђџ"},
      {u"ӀӁӐ", u"ӏӂӑ"},
      {u"ABC XYZ 019 @[`{", u"abc xyz 019 @[`{"},
  };
  for (const Pair& p : pairs) {
    EXPECT_EQ(LCase(p.upper), p.lower);
    EXPECT_EQ(UCase(p.lower), p.upper);
  }
  // Letters whose partner the code page lacks, and the signs among letters.
  EXPECT_EQ(UCase(u"ß"), u"ß");
  EXPECT_EQ(UCase(u"µ"), u"µ");
  EXPECT_EQ(UCase(u"×÷"), u"×÷");
  EXPECT_EQ(LCase(u"×÷"), u"×÷");
  EXPECT_EQ(UCase(u"ĸŉſ"), u"ĸŉſ");
  // Final sigma has one capital; dotless and dotted i map to the ASCII i.
  EXPECT_EQ(UCase(u"ς"), u"Σ");
  EXPECT_EQ(LCase(u"Σ"), u"σ");
  EXPECT_EQ(UCase(u"ı"), u"I");
  EXPECT_EQ(LCase(u"İ"), u"i");
  EXPECT_EQ(LCase(u"I"), u"i");
  // Everything else passes through, surrogates included.
  const String other = u"\u4E2D\U0001F600\xD800\u2160\u0130\u0131";
  EXPECT_EQ(UCase(other.substr(0, 4)), other.substr(0, 4));
  EXPECT_EQ(LCase(other.substr(0, 4)), other.substr(0, 4));
  EXPECT_EQ(UCase(u""), u"");
}

TEST(StringsReplace, Table) {
  struct Case {
    const char16_t* expression;
    const char16_t* find;
    const char16_t* with;
    int32_t start;
    int32_t count;
    VbCompareMethod compare;
    const char16_t* want;
    int32_t err;
  };
  const Case cases[] = {
      {u"abcabc", u"a", u"x", 1, -1, B, u"xbcxbc", 0},
      {u"abcabc", u"a", u"x", 3, -1, B, u"cxbc", 0},
      {u"abcabc", u"a", u"x", 1, 1, B, u"xbcabc", 0},
      {u"abcabc", u"a", u"x", 1, 0, B, u"abcabc", 0},
      {u"abcabc", u"a", u"x", 2, 0, B, u"bcabc", 0},
      {u"abcabc", u"b", u"", 1, -1, B, u"acac", 0},
      {u"abcabc", u"", u"x", 2, -1, B, u"bcabc", 0},
      {u"", u"a", u"b", 1, -1, B, u"", 0},
      {u"abc", u"a", u"b", 4, -1, B, u"", 0},
      {u"abc", u"a", u"b", 3, -1, B, u"c", 0},
      {u"aaaa", u"aa", u"b", 1, -1, B, u"bb", 0},
      {u"aaa", u"aa", u"b", 1, -1, B, u"ba", 0},
      {u"a", u"a", u"aa", 1, -1, B, u"aa", 0},
      {u"ABCabc", u"b", u"_", 1, -1, B, u"ABCa_c", 0},
      {u"ABCabc", u"b", u"_", 1, -1, T, u"A_Ca_c", 0},
      {u"AÇÃOção", u"ção", u"-", 1, -1, T, u"A--", 0},
      {u"abc", u"a", u"x", 0, -1, B, u"", 5},
      {u"abc", u"a", u"x", 1, -2, B, u"", 5},
  };
  Err().Clear();
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "start " << c.start << " count " << c.count);
    EXPECT_EQ(Replace(c.expression, c.find, c.with, c.start, c.count, c.compare), c.want);
    EXPECT_EQ(ErrAfter(), c.err);
  }
}

TEST(StringsSplitJoin, Table) {
  using V = std::vector<String>;
  Err().Clear();
  EXPECT_EQ(Split(u"a b c"), (V{u"a", u"b", u"c"}));
  EXPECT_EQ(Split(u"a,,b", u","), (V{u"a", u"", u"b"}));
  EXPECT_EQ(Split(u"a,", u","), (V{u"a", u""}));
  EXPECT_EQ(Split(u",", u","), (V{u"", u""}));
  EXPECT_EQ(Split(u"abc", u""), (V{u"abc"}));
  EXPECT_EQ(Split(u"abc", u"abcd"), (V{u"abc"}));
  EXPECT_EQ(Split(u"a<>b<>c", u"<>"), (V{u"a", u"b", u"c"}));
  EXPECT_EQ(Split(u""), V{});
  EXPECT_EQ(Split(u"", u""), V{});
  EXPECT_EQ(Split(u"a b c", u" ", 2), (V{u"a", u"b c"}));
  EXPECT_EQ(Split(u"a b c", u" ", 3), (V{u"a", u"b", u"c"}));
  EXPECT_EQ(Split(u"a b c", u" ", 9), (V{u"a", u"b", u"c"}));
  EXPECT_EQ(Split(u"a b", u" ", 1), (V{u"a b"}));
  EXPECT_EQ(Split(u"a b", u" ", 0), V{});
  EXPECT_EQ(Split(u"aXbxc", u"x"), (V{u"aXb", u"c"}));
  EXPECT_EQ(Split(u"aXbxc", u"x", -1, T), (V{u"a", u"b", u"c"}));
  EXPECT_EQ(ErrAfter(), 0);
  EXPECT_EQ(Split(u"a b", u" ", -2), V{});
  EXPECT_EQ(ErrAfter(), 5);

  EXPECT_EQ(Join({}), u"");
  EXPECT_EQ(Join({u"a"}), u"a");
  EXPECT_EQ(Join({u"a", u"b"}), u"a b");
  EXPECT_EQ(Join({u"a", u"", u"b"}, u"-"), u"a--b");
  EXPECT_EQ(Join({u"a", u"b"}, u""), u"ab");
  EXPECT_EQ(Join(Split(u"x;y;;z", u";"), u";"), u"x;y;;z");
}

TEST(StringsStrComp, BinaryComparesCodeUnits) {
  EXPECT_EQ(StrComp(u"a", u"B"), 1);
  EXPECT_EQ(StrComp(u"B", u"a"), -1);
  EXPECT_EQ(StrComp(u"abc", u"abc"), 0);
  EXPECT_EQ(StrComp(u"abc", u"abd"), -1);
  EXPECT_EQ(StrComp(u"ab", u"abc"), -1);
  EXPECT_EQ(StrComp(u"", u""), 0);
  EXPECT_EQ(StrComp(u"", u"a"), -1);
  EXPECT_EQ(StrComp(u"á", u"b"), 1);
  // Units, not code points: a surrogate sorts below U+FFFF.
  EXPECT_EQ(StrComp(u"\U0001F600", u"\uFFFF"), -1);
}

TEST(StringsStrComp, TextSortsAsTheLocale) {
  EXPECT_EQ(StrComp(u"a", u"B", T), -1);
  EXPECT_EQ(StrComp(u"a", u"A", T), 0);
  EXPECT_EQ(StrComp(u"AÇÃO", u"ação", T), 0);
  EXPECT_EQ(StrComp(u"ação", u"acao", T), 1);
  EXPECT_EQ(StrComp(u"a", u"á", T), -1);
  EXPECT_EQ(StrComp(u"á", u"b", T), -1);
  EXPECT_EQ(StrComp(u"ab", u"áa", T), 1);
  EXPECT_EQ(StrComp(u"1", u"a", T), -1);
  EXPECT_EQ(StrComp(u"9", u"a", T), -1);
  EXPECT_EQ(StrComp(u"-", u"0", T), -1);
  EXPECT_EQ(StrComp(u" ", u"!", T), -1);
  EXPECT_EQ(StrComp(u"z", u"þ", T), -1);
  EXPECT_EQ(StrComp(u"z", u"α", T), -1);
  EXPECT_EQ(StrComp(u"Ω", u"ж", T), -1);
  EXPECT_EQ(StrComp(u"ς", u"Σ", T), 0);
  EXPECT_EQ(StrComp(u"ı", u"I", T), 0);
  EXPECT_EQ(StrComp(u"", u"", T), 0);
  EXPECT_EQ(StrComp(u"", u"a", T), -1);

  // A shuffled list sorts to the locale's order, and the order is a proper
  // one: antisymmetric, equal only when folded texts are equal.
  std::vector<String> words = {u"b", u"á", u"ç", u"Ab", u"1", u"-", u"c",  u"ab",   u"é",
                               u"E", u"e", u"d", u"10", u"2", u"ã", u"aa", u"ação", u"acao"};
  std::stable_sort(words.begin(), words.end(),
                   [](const String& x, const String& y) { return StrComp(x, y, T) < 0; });
  const std::vector<String> want = {u"-",    u"1",    u"10", u"2", u"á", u"ã", u"aa", u"Ab", u"ab",
                                    u"acao", u"ação", u"b",  u"c", u"ç", u"d", u"E",  u"e",  u"é"};
  EXPECT_EQ(words, want);
  for (const String& x : words) {
    for (const String& y : words) {
      EXPECT_EQ(StrComp(x, y, T), -StrComp(y, x, T));
      EXPECT_EQ(StrComp(x, y, T) == 0, LCase(UCase(x)) == LCase(UCase(y)));
    }
  }
}

TEST(StringsRepeat, SpaceAndStringOf) {
  Err().Clear();
  EXPECT_EQ(Space(3), u"   ");
  EXPECT_EQ(Space(0), u"");
  EXPECT_EQ(StringOf(3, u'x'), u"xxx");
  EXPECT_EQ(StringOf(0, u'x'), u"");
  EXPECT_EQ(ErrAfter(), 0);
  EXPECT_EQ(Space(-1), u"");
  EXPECT_EQ(ErrAfter(), 5);
  EXPECT_EQ(StringOf(-1, u'x'), u"");
  EXPECT_EQ(ErrAfter(), 5);
  // Past the string space: error 7 instead of a giant allocation.
  EXPECT_EQ(Space(INT32_MAX), u"");
  EXPECT_EQ(ErrAfter(), 7);
  EXPECT_EQ(StringOf(INT32_MAX, u'x'), u"");
  EXPECT_EQ(ErrAfter(), 7);
}

TEST(StringsStrReverse, KeepsSurrogatePairs) {
  EXPECT_EQ(StrReverse(u"abc"), u"cba");
  EXPECT_EQ(StrReverse(u""), u"");
  EXPECT_EQ(StrReverse(u"a\U0001F600b"), u"b\U0001F600a");
  EXPECT_EQ(StrReverse(u"\U0001F600\U0001F601"), u"\U0001F601\U0001F600");
  // Lone halves are single units and are reversed as such.
  const String lone = {0xDC00, 0xD800, u'x'};
  EXPECT_EQ(StrReverse(lone), (String{u'x', 0xD800, 0xDC00}));
  const String mixed = {0xD800, 0xD800, 0xDC00};  // lone high, then a pair
  EXPECT_EQ(StrReverse(mixed), (String{0xD800, 0xDC00, 0xD800}));
}

TEST(StringsCodes, ChrAndAsc) {
  Err().Clear();
  EXPECT_EQ(Chr(65), u"A");
  EXPECT_EQ(Chr(0), String(1, u'\0'));
  EXPECT_EQ(Chr(0x80), u"€");
  EXPECT_EQ(Chr(0x81), u"\u0081");
  EXPECT_EQ(Chr(0x9F), u"Ÿ");
  EXPECT_EQ(Chr(0xE7), u"ç");
  EXPECT_EQ(Chr(255), u"ÿ");
  EXPECT_EQ(ChrW(0x20AC), u"€");
  EXPECT_EQ(ChrW(65535), u"\uFFFF");
  EXPECT_EQ(ChrW(-1), u"\uFFFF");
  EXPECT_EQ(ChrW(-32768), u"\u8000");
  EXPECT_EQ(ChrW(0), String(1, u'\0'));
  EXPECT_EQ(ErrAfter(), 0);
  for (int32_t bad : {256, -1, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(Chr(bad), u"");
    EXPECT_EQ(ErrAfter(), 5);
  }
  for (int32_t bad : {65536, -32769, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(ChrW(bad), u"");
    EXPECT_EQ(ErrAfter(), 5);
  }

  EXPECT_EQ(Asc(u"A"), 65);
  EXPECT_EQ(Asc(u"Abc"), 65);
  EXPECT_EQ(Asc(u"€"), 128);
  EXPECT_EQ(Asc(u"ç"), 231);
  EXPECT_EQ(Asc(u"ā"), 63);
  EXPECT_EQ(Asc(u"\U0001F600"), 63);
  EXPECT_EQ(AscW(u"A"), 65);
  EXPECT_EQ(AscW(u"€"), 0x20AC);
  EXPECT_EQ(AscW(u"\uFFFF"), -1);
  EXPECT_EQ(AscW(u"\u8000"), -32768);
  EXPECT_EQ(AscW(u"\u7FFF"), 32767);
  EXPECT_EQ(ErrAfter(), 0);
  EXPECT_EQ(Asc(u""), 0);
  EXPECT_EQ(ErrAfter(), 5);
  EXPECT_EQ(AscW(u""), 0);
  EXPECT_EQ(ErrAfter(), 5);
  // Chr and Asc are inverse over the whole code page.
  for (int32_t code = 0; code < 256; ++code) EXPECT_EQ(Asc(Chr(code)), code);
  for (int32_t code = -32768; code < 32768; code += 97) EXPECT_EQ(AscW(ChrW(code)), code);
}

TEST(StringsLen, CountsUnits) {
  EXPECT_EQ(Len(u""), 0);
  EXPECT_EQ(Len(u"abc"), 3);
  EXPECT_EQ(Len(u"ção"), 3);
  EXPECT_EQ(Len(u"\U0001F600"), 2);
}

TEST(StringsBadInput, LongAndGarbageTextNeverCrash) {
  String garbage;
  for (int i = 0; i < 100000; ++i) garbage.push_back(static_cast<char16_t>((i * 7919) & 0xFFFF));
  const String big(200000, u'a');
  Err().Clear();
  EXPECT_EQ(InStr(big, u"b"), 0);
  EXPECT_EQ(InStr(big, String(100, u'a') + u"b"), 0);
  EXPECT_EQ(InStrRev(big, u"a"), 200000);
  EXPECT_EQ(Len(Replace(big, u"a", u"bb")), 400000);
  EXPECT_EQ(Split(big, u"a").size(), 200001u);
  const String nul(1, u'\0');
  EXPECT_EQ(Join(Split(garbage, nul), nul), garbage);
  EXPECT_EQ(StrReverse(StrReverse(garbage)), garbage);
  const String folded = LCase(UCase(garbage));
  EXPECT_EQ(LCase(UCase(folded)), folded);
  EXPECT_EQ(StrComp(garbage, garbage, T), 0);
  EXPECT_EQ(StrComp(garbage, big, T), -StrComp(big, garbage, T));
  EXPECT_EQ(Len(Mid(garbage, 50000)), 50001);
  EXPECT_EQ(Trim(Space(100000)), u"");
  EXPECT_EQ(ErrAfter(), 0);
  // A replacement that would pass the string space is refused whole.
  EXPECT_EQ(Replace(String(100000, u'a'), u"a", String(4000, u'b')), u"");
  EXPECT_EQ(ErrAfter(), 7);
}

}  // namespace
}  // namespace vantor
