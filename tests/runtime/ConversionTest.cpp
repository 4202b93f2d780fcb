#include "runtime/Conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "runtime/Error.h"
#include "tests/runtime/TestSupport.h"

namespace vantor {
namespace {

using namespace test;

class Mute : public Object {
 public:
  String ClassName() const override { return u"Mute"; }
};

TEST(ConversionCInt, TiesGoToEven) {
  struct Case {
    double value;
    int16_t expected;
  };
  const Case cases[] = {{2.5, 2},  {3.5, 4},         {-2.5, -2},         {-3.5, -4},
                        {0.5, 0},  {1.5, 2},         {2.4, 2},           {2.6, 3},
                        {-0.5, 0}, {32767.4, 32767}, {-32768.5, -32768}, {-32767.5, -32768}};
  for (const auto& c : cases) {
    int16_t result = 0;
    EXPECT_EQ(ErrorOf([&] { result = CInt(c.value); }), 0) << c.value;
    EXPECT_EQ(result, c.expected) << c.value;
  }
}

TEST(ConversionCInt, FailuresSetTheErrorAndGiveZero) {
  int16_t result = 1;
  // 32767.5 rounds to the even 32768, one past the Integer.
  EXPECT_EQ(ErrorOf([&] { result = CInt(32767.5); }), errOverflow);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(ErrorOf([&] { result = CInt(-32769.0); }), errOverflow);
  result = 1;
  EXPECT_EQ(ErrorOf([&] { result = CInt(u"abc"); }), errTypeMismatch);
  EXPECT_EQ(result, 0);
  result = 1;
  EXPECT_EQ(ErrorOf([&] { result = CInt(Null); }), errInvalidUseOfNull);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(ErrorOf([&] { result = CInt(u""); }), errTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { result = CInt(u"1,5"); }), 0);
  EXPECT_EQ(result, 2);
  EXPECT_EQ(ErrorOf([&] { result = CInt(Variant()); }), 0);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(ErrorOf([&] { result = CInt(true); }), 0);
  EXPECT_EQ(result, -1);
}

TEST(ConversionCLng, ReadsTextInTheLocale) {
  int32_t result = 0;
  EXPECT_EQ(ErrorOf([&] { result = CLng(u"2,5"); }), 0);
  EXPECT_EQ(result, 2);
  EXPECT_EQ(ErrorOf([&] { result = CLng(u"3,5"); }), 0);
  EXPECT_EQ(result, 4);
  EXPECT_EQ(ErrorOf([&] { result = CLng(u"1.234"); }), 0);
  EXPECT_EQ(result, 1234);
  EXPECT_EQ(ErrorOf([&] { result = CLng(u"&HFFFF"); }), 0);
  EXPECT_EQ(result, -1);
  EXPECT_EQ(ErrorOf([&] { result = CLng(2147483647.4); }), 0);
  EXPECT_EQ(result, 2147483647);
  EXPECT_EQ(ErrorOf([&] { result = CLng(2147483647.5); }), errOverflow);
  EXPECT_EQ(result, 0);
  {
    LocaleGuard en(Locale::Id::enUS);
    EXPECT_EQ(ErrorOf([&] { result = CLng(u"2.5"); }), 0);
    EXPECT_EQ(result, 2);
    EXPECT_EQ(ErrorOf([&] { result = CLng(u"1,234"); }), 0);
    EXPECT_EQ(result, 1234);
  }
}

TEST(ConversionCByte, RangeIsZeroTo255) {
  uint8_t result = 0;
  EXPECT_EQ(ErrorOf([&] { result = CByte(255.4); }), 0);
  EXPECT_EQ(result, 255);
  EXPECT_EQ(ErrorOf([&] { result = CByte(255.5); }), errOverflow);
  EXPECT_EQ(ErrorOf([&] { result = CByte(-1.0); }), errOverflow);
  EXPECT_EQ(ErrorOf([&] { result = CByte(-0.5); }), 0);
  EXPECT_EQ(result, 0);
}

TEST(ConversionCDbl, TextAndOtherTypes) {
  double result = 0;
  EXPECT_EQ(ErrorOf([&] { result = CDbl(u"1.234,5"); }), 0);
  EXPECT_EQ(result, 1234.5);
  EXPECT_EQ(ErrorOf([&] { result = CDbl(u" R$ 12,50 "); }), 0);
  EXPECT_EQ(result, 12.5);
  EXPECT_EQ(ErrorOf([&] { result = CDbl(u"1,5E3"); }), 0);
  EXPECT_EQ(result, 1500);
  EXPECT_EQ(ErrorOf([&] { result = CDbl(u"12abc"); }), errTypeMismatch);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(ErrorOf([&] { result = CDbl(Null); }), errInvalidUseOfNull);
  EXPECT_EQ(ErrorOf([&] { result = CDbl(Currency::FromRaw(12345)); }), 0);
  EXPECT_EQ(result, 1.2345);
  EXPECT_EQ(ErrorOf([&] { result = CDbl(static_cast<int16_t>(-7)); }), 0);
  EXPECT_EQ(result, -7);
}

TEST(ConversionCSng, RoundsToSingle) {
  float result = 0;
  EXPECT_EQ(ErrorOf([&] { result = CSng(u"0,1"); }), 0);
  EXPECT_EQ(result, 0.1f);
  EXPECT_EQ(ErrorOf([&] { result = CSng(1e300); }), errOverflow);
}

TEST(ConversionCCur, FourDecimalsTiesToEven) {
  Currency result;
  EXPECT_EQ(ErrorOf([&] { result = CCur(1.23456); }), 0);
  EXPECT_EQ(result.Raw(), 12346);
  EXPECT_EQ(ErrorOf([&] { result = CCur(0.03125); }), 0);
  EXPECT_EQ(result.Raw(), 312);
  EXPECT_EQ(ErrorOf([&] { result = CCur(u"R$ 1.234,56"); }), 0);
  EXPECT_EQ(result.Raw(), 12345600);
  EXPECT_EQ(ErrorOf([&] { result = CCur(1e16); }), errOverflow);
  EXPECT_EQ(ErrorOf([&] { result = CCur(u"x"); }), errTypeMismatch);
}

TEST(ConversionCBool, WordsNumbersAndText) {
  bool result = false;
  EXPECT_EQ(ErrorOf([&] { result = CBool(u"Verdadeiro"); }), 0);
  EXPECT_TRUE(result);
  EXPECT_EQ(ErrorOf([&] { result = CBool(u"Falso"); }), 0);
  EXPECT_FALSE(result);
  EXPECT_EQ(ErrorOf([&] { result = CBool(u"True"); }), 0);
  EXPECT_TRUE(result);
  EXPECT_EQ(ErrorOf([&] { result = CBool(u"false"); }), 0);
  EXPECT_FALSE(result);
  EXPECT_EQ(ErrorOf([&] { result = CBool(u"0"); }), 0);
  EXPECT_FALSE(result);
  EXPECT_EQ(ErrorOf([&] { result = CBool(u"0,5"); }), 0);
  EXPECT_TRUE(result);
  EXPECT_EQ(ErrorOf([&] { result = CBool(-2.0); }), 0);
  EXPECT_TRUE(result);
  EXPECT_EQ(ErrorOf([&] { result = CBool(0.0); }), 0);
  EXPECT_FALSE(result);
  result = true;
  EXPECT_EQ(ErrorOf([&] { result = CBool(u"abc"); }), errTypeMismatch);
  EXPECT_FALSE(result);
  EXPECT_EQ(ErrorOf([&] { result = CBool(Null); }), errInvalidUseOfNull);
  {
    LocaleGuard en(Locale::Id::enUS);
    EXPECT_EQ(ErrorOf([&] { result = CBool(u"True"); }), 0);
    EXPECT_TRUE(result);
  }
}

TEST(ConversionCStr, NumbersInTheLocale) {
  EXPECT_EQ(CStr(0.1 + 0.2), u"0,3");
  EXPECT_EQ(CStr(1e15), u"1E+15");
  EXPECT_EQ(CStr(123456789012345.0), u"123456789012345");
  EXPECT_EQ(CStr(1.0 / 3), u"0,333333333333333");
  EXPECT_EQ(CStr(-0.00001), u"-1E-05");
  EXPECT_EQ(CStr(0.000015), u"1,5E-05");
  EXPECT_EQ(CStr(true), u"Verdadeiro");
  EXPECT_EQ(CStr(false), u"Falso");
  EXPECT_EQ(CStr(static_cast<int16_t>(-5)), u"-5");
  EXPECT_EQ(CStr(1.1f), u"1,1");
  EXPECT_EQ(CStr(Currency::FromRaw(15000)), u"1,5");
  EXPECT_EQ(CStr(Variant()), u"");
  {
    LocaleGuard en(Locale::Id::enUS);
    EXPECT_EQ(CStr(1.5), u"1.5");
    EXPECT_EQ(CStr(true), u"True");
  }
  EXPECT_EQ(ErrorOf([] { (void)CStr(Null); }), errInvalidUseOfNull);
}

TEST(ConversionVal, ReadsTheHeadOfTheText) {
  struct Case {
    const char16_t* text;
    double expected;
  };
  const Case cases[] = {
      {u"  12abc", 12},    {u"1 2 3", 123},     {u"1615 198th Street", 1615198},
      {u"\t1\n2", 12},     {u"&HFF", 255},      {u"&hff", 255},
      {u"&HFFFF", -1},     {u"&H8000", -32768}, {u"&HFFFF&", 65535},
      {u"&H10000", 65536}, {u"&HFFFFFFFF", -1}, {u"&O17", 15},
      {u"&o17", 15},       {u"&O177777", -1},   {u"& H 1F", 31},
      {u"&H", 0},          {u"&", 0},           {u"&X1", 0},
      {u"1e3", 1000},      {u"1E3", 1000},      {u"1D2", 100},
      {u"1d-2", 0.01},     {u"1e", 1},          {u"1e+", 1},
      {u"2E+1x", 20},      {u"-.5", -0.5},      {u".5", 0.5},
      {u"5.", 5},          {u"-5", -5},         {u"+5", 5},
      {u"- 5", -5},        {u"--5", 0},         {u"1,5", 1},
      {u"1.2.3", 1.2},     {u"$5", 0},          {u"", 0},
      {u"   ", 0},         {u"-", 0},           {u".", 0},
      {u"-0", 0},          {u"abc", 0},         {u"1E-400", 0},
      {u"\r5", 0},
  };
  for (const auto& c : cases) {
    double result = -99;
    EXPECT_EQ(ErrorOf([&] { result = Val(c.text); }), 0) << ToUtf8(c.text);
    EXPECT_EQ(result, c.expected) << ToUtf8(c.text);
    EXPECT_FALSE(result == 0 && std::signbit(result)) << ToUtf8(c.text) << " gives -0";
  }
  double negative = Val(u"-1,5");
  EXPECT_EQ(negative, -1);
}

TEST(ConversionVal, LocaleDoesNotMatter) {
  LocaleGuard en(Locale::Id::enUS);
  EXPECT_EQ(Val(u"1,5"), 1);
  EXPECT_EQ(Val(u"1.5"), 1.5);
}

TEST(ConversionVal, OverflowAndHugeInput) {
  double result = 1;
  EXPECT_EQ(ErrorOf([&] { result = Val(u"1E400"); }), errOverflow);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(ErrorOf([&] { result = Val(u"&H100000000"); }), errOverflow);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(ErrorOf([&] { result = Val(String(400, u'9')); }), errOverflow);
  EXPECT_EQ(ErrorOf([&] { result = Val(String(300, u'9')); }), 0);
  EXPECT_EQ(result, 1e300);
  EXPECT_EQ(Val(u"0." + String(100000, u'0') + u"1"), 0);
  EXPECT_EQ(Val(u"1E" + String(1000, u'9')), 0);  // overflow: 0 with error 6
  Err().Clear();
}

TEST(ConversionIsNumeric, ValuesAndTexts) {
  EXPECT_TRUE(IsNumeric(u"12"));
  EXPECT_TRUE(IsNumeric(u" 12 "));
  EXPECT_TRUE(IsNumeric(u"1,5"));
  EXPECT_TRUE(IsNumeric(u"1.234,5"));
  EXPECT_TRUE(IsNumeric(u"R$ 12,50"));
  EXPECT_TRUE(IsNumeric(u"(12)"));
  EXPECT_TRUE(IsNumeric(u"12-"));
  EXPECT_TRUE(IsNumeric(u"&H1F"));
  EXPECT_TRUE(IsNumeric(u"1E5"));
  EXPECT_FALSE(IsNumeric(u""));
  EXPECT_FALSE(IsNumeric(u"abc"));
  EXPECT_FALSE(IsNumeric(u"12abc"));
  EXPECT_FALSE(IsNumeric(u"1,2,3"));
  EXPECT_FALSE(IsNumeric(u"$ 12"));
  EXPECT_TRUE(IsNumeric(Variant()));
  EXPECT_FALSE(IsNumeric(Null));
  EXPECT_FALSE(IsNumeric(Date(45000.0)));
  EXPECT_TRUE(IsNumeric(true));
  EXPECT_TRUE(IsNumeric(2.5));
  EXPECT_TRUE(IsNumeric(static_cast<int16_t>(1)));
  EXPECT_TRUE(IsNumeric(static_cast<uint8_t>(1)));
  EXPECT_TRUE(IsNumeric(Currency::FromRaw(1)));
  EXPECT_FALSE(IsNumeric(Variant::Missing()));
  EXPECT_FALSE(IsNumeric(Variant(std::vector<uint8_t>{1, 2})));
  EXPECT_TRUE(IsNumeric(Variant(ObjectPtr(std::make_shared<Answer>(Variant(u"7"))))));
  EXPECT_FALSE(IsNumeric(Variant(ObjectPtr(std::make_shared<Answer>(Variant(u"x"))))));
  EXPECT_FALSE(IsNumeric(Variant(ObjectPtr(std::make_shared<Mute>()))));
  Variant target(u"5");
  EXPECT_TRUE(IsNumeric(Variant::ByRef(&target)));
  {
    LocaleGuard en(Locale::Id::enUS);
    EXPECT_TRUE(IsNumeric(u"$1,234.50"));
    EXPECT_FALSE(IsNumeric(u"R$ 12,50"));
    EXPECT_TRUE(IsNumeric(u"1,5"));  // 15 there too
  }
}

TEST(ConversionHex, WidthFollowsTheType) {
  EXPECT_EQ(Hex(255), u"FF");
  EXPECT_EQ(Hex(-1), u"FFFFFFFF");
  EXPECT_EQ(Hex(static_cast<int16_t>(-1)), u"FFFF");
  EXPECT_EQ(Hex(static_cast<uint8_t>(255)), u"FF");
  EXPECT_EQ(Hex(true), u"FFFF");
  EXPECT_EQ(Hex(false), u"0");
  EXPECT_EQ(Hex(Variant()), u"0");
  EXPECT_EQ(Hex(2.5), u"2");
  EXPECT_EQ(Hex(3.5), u"4");
  EXPECT_EQ(Hex(-2.0), u"FFFFFFFE");
  EXPECT_EQ(Hex(u"255"), u"FF");
  EXPECT_EQ(Hex(Currency::FromRaw(25000)), u"2");
  EXPECT_EQ(Hex(2147483647.0), u"7FFFFFFF");
  EXPECT_EQ(Hex(Variant(ObjectPtr(std::make_shared<Answer>(Variant(16))))), u"10");
}

TEST(ConversionHex, NullAndFailures) {
  String result = u"x";
  EXPECT_EQ(ErrorOf([&] { result = Hex(Null); }), 0);
  EXPECT_EQ(result, u"");
  EXPECT_EQ(ErrorOf([&] { result = Hex(u"abc"); }), errTypeMismatch);
  EXPECT_EQ(result, u"");
  EXPECT_EQ(ErrorOf([&] { result = Hex(4294967296.0); }), errOverflow);
  EXPECT_EQ(result, u"");
  EXPECT_EQ(ErrorOf([&] { result = Oct(2147483648.0); }), errOverflow);
}

TEST(ConversionOct, WidthFollowsTheType) {
  EXPECT_EQ(Oct(8), u"10");
  EXPECT_EQ(Oct(-1), u"37777777777");
  EXPECT_EQ(Oct(static_cast<int16_t>(-1)), u"177777");
  EXPECT_EQ(Oct(static_cast<uint8_t>(255)), u"377");
  EXPECT_EQ(Oct(Null), u"");
}

TEST(ConversionIntFix, DownAndTowardZero) {
  EXPECT_EQ(Int(2.7), 2);
  EXPECT_EQ(Int(-2.3), -3);
  EXPECT_EQ(Fix(-2.7), -2);
  EXPECT_EQ(Fix(2.7), 2);
  EXPECT_EQ(Int(-0.5), -1);
  EXPECT_EQ(Int(1e300), 1e300);
}

TEST(ConversionRound, TiesToEvenOnTheStoredValue) {
  struct Case {
    double value;
    int decimals;
    double expected;
  };
  const Case cases[] = {
      {2.5, 0, 2},
      {3.5, 0, 4},
      {-2.5, 0, -2},
      {0.5, 0, 0},
      {1.5, 0, 2},
      {2.4, 0, 2},
      {0.125, 2, 0.12},
      {0.375, 2, 0.38},
      {2.675, 2, 2.67},
      {1.005, 2, 1},
      {1.235, 2, 1.24},
      {-0.125, 2, -0.12},
      {1234.5678, 2, 1234.57},
      {1234.5678, 0, 1235},
      {1e20, 2, 1e20},
      {123.456, 10, 123.456},
      {5e-324, 400, 5e-324},
      {0.1, 1, 0.1},
      {-0.4, 0, 0},
  };
  for (const auto& c : cases) {
    const double r = Round(c.value, c.decimals);
    EXPECT_EQ(r, c.expected) << c.value << " to " << c.decimals;
    EXPECT_FALSE(r == 0 && std::signbit(r)) << c.value << " gives -0";
  }
  EXPECT_TRUE(std::isnan(Round(std::nan(""), 2)));
  double result = 1;
  EXPECT_EQ(ErrorOf([&] { result = Round(1.5, -1); }), errInvalidProcedureCall);
  EXPECT_EQ(result, 0);
}

TEST(ConversionRoundToInt, NearestEvenAndSaturating) {
  EXPECT_EQ(RoundToInt(2.5), 2);
  EXPECT_EQ(RoundToInt(3.5), 4);
  EXPECT_EQ(RoundToInt(-2.5), -2);
  EXPECT_EQ(RoundToInt(-3.5), -4);
  EXPECT_EQ(RoundToInt(2.4999), 2);
  EXPECT_EQ(RoundToInt(-0.6), -1);
  EXPECT_EQ(RoundToInt(1e12), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(RoundToInt(-1e12), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(RoundToInt(2147483646.5), 2147483646);
  EXPECT_EQ(RoundToInt(-2147483648.4), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(RoundToInt(std::nan("")), 0);
  EXPECT_EQ(RoundToInt(std::numeric_limits<double>::infinity()),
            std::numeric_limits<int32_t>::max());
}

}  // namespace
}  // namespace vantor
