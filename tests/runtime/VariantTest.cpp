#include "runtime/Variant.h"

#include <gtest/gtest.h>

#include <cmath>

#include "runtime/Error.h"
#include "tests/runtime/TestSupport.h"

namespace vantor {
namespace {

using namespace test;

TEST(VariantType, ReportsThePlatformsCodesAndNames) {
  struct Case {
    Variant v;
    VbVarType type;
    const char16_t* name;
  };
  const Case cases[] = {
      {Variant(), vbEmpty, u"Empty"},
      {Variant(Null), vbNull, u"Null"},
      {Variant(int16_t{1}), vbInteger, u"Integer"},
      {Variant(1), vbLong, u"Long"},
      {Variant(1.5f), vbSingle, u"Single"},
      {Variant(1.5), vbDouble, u"Double"},
      {Variant(Currency::FromRaw(15000)), vbCurrency, u"Currency"},
      {Variant(Date(45000.0)), vbDate, u"Date"},
      {Variant(u"x"), vbString, u"String"},
      {Variant(true), vbBoolean, u"Boolean"},
      {Variant(uint8_t{7}), vbByte, u"Byte"},
      {Variant(std::vector<uint8_t>{1, 2}), static_cast<VbVarType>(vbArray | vbByte), u"Byte()"},
      {Variant(ObjectPtr(std::make_shared<Answer>(Variant()))), vbObject, u"Answer"},
      {Variant(ObjectPtr()), vbObject, u"Nothing"},
      {Variant::Missing(), vbError, u"Error"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.v.Type(), c.type) << ToUtf8(c.name);
    EXPECT_EQ(c.v.TypeName(), c.name);
  }
  EXPECT_TRUE(Variant::Missing().IsMissing());
  EXPECT_FALSE(Variant(ErrorValue{5}).IsMissing());
}

TEST(VariantCoercion, IntegersRoundTiesToEvenAndCheckTheirRange) {
  struct Case {
    double in;
    int32_t integer;  // ToInteger, or the error when err is set
    int32_t err;
  };
  const Case cases[] = {
      {2.5, 2, 0},        {3.5, 4, 0},        {-2.5, -2, 0},      {-3.5, -4, 0},
      {0.5, 0, 0},        {1.5, 2, 0},        {2.4999, 2, 0},     {2.5001, 3, 0},
      {32767.0, 32767, 0}, {32767.49, 32767, 0}, {32767.5, 0, errOverflow},
      {-32768.5, -32768, 0}, {-32768.51, 0, errOverflow}, {1e300, 0, errOverflow},
  };
  for (const auto& c : cases) {
    Err().Clear();
    const int16_t got = Variant(c.in).ToInteger();
    EXPECT_EQ(Err().Number(), c.err) << c.in;
    EXPECT_EQ(got, c.integer) << c.in;
  }
  Err().Clear();
  EXPECT_EQ(Variant(2147483647.4).ToLong(), 2147483647);
  EXPECT_EQ(Variant(2147483647.5).ToLong(), 0);
  EXPECT_EQ(Err().Number(), errOverflow);
  Err().Clear();
  EXPECT_EQ(Variant(255.5).ToByte(), 0);
  EXPECT_EQ(Err().Number(), errOverflow);
  Err().Clear();
  EXPECT_EQ(Variant(254.5).ToByte(), 254);
  EXPECT_EQ(Variant(-0.5).ToByte(), 0);  // rounds to zero first, so no overflow
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_EQ(Variant(std::nan("")).ToLong(), 0);
  EXPECT_EQ(Err().Number(), errOverflow);
}

TEST(VariantCoercion, CurrencyToIntegerIsExactWithTiesToEven) {
  Err().Clear();
  EXPECT_EQ(Variant(Currency::FromRaw(25000)).ToLong(), 2);
  EXPECT_EQ(Variant(Currency::FromRaw(35000)).ToLong(), 4);
  EXPECT_EQ(Variant(Currency::FromRaw(-25000)).ToLong(), -2);
  EXPECT_EQ(Variant(Currency::FromRaw(25001)).ToLong(), 3);
  EXPECT_EQ(Variant(Currency::FromRaw(-35001)).ToInteger(), -4);
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_EQ(Variant(Currency::FromRaw(327680000)).ToInteger(), 0);
  EXPECT_EQ(Err().Number(), errOverflow);
}

TEST(VariantCoercion, TextIsReadWithTheLocale) {
  Err().Clear();
  EXPECT_EQ(Variant(u"2,5").ToDouble(), 2.5);
  EXPECT_EQ(Variant(u"2,5").ToInteger(), 2);
  EXPECT_EQ(Variant(u"3,5").ToLong(), 4);
  EXPECT_EQ(Variant(u" 1.234,5 ").ToDouble(), 1234.5);
  EXPECT_EQ(Err().Number(), 0);
  {
    LocaleGuard en(Locale::Id::enUS);
    EXPECT_EQ(Variant(u"2.5").ToDouble(), 2.5);
    EXPECT_EQ(Variant(u"1,234.5").ToDouble(), 1234.5);
    EXPECT_EQ(Err().Number(), 0);
  }
  for (const char16_t* bad : {u"abc", u"", u"1,2,3x", u"--1"}) {
    Err().Clear();
    EXPECT_EQ(Variant(bad).ToDouble(), 0.0) << ToUtf8(bad);
    EXPECT_EQ(Err().Number(), errTypeMismatch) << ToUtf8(bad);
  }
}

TEST(VariantCoercion, EmptyNullBooleanAndObjects) {
  Err().Clear();
  EXPECT_EQ(Variant().ToLong(), 0);
  EXPECT_EQ(Variant().ToString(), u"");
  EXPECT_FALSE(Variant().ToBoolean());
  EXPECT_EQ(Err().Number(), 0);

  EXPECT_EQ(Variant(Null).ToLong(), 0);
  EXPECT_EQ(Err().Number(), errInvalidUseOfNull);
  Err().Clear();
  EXPECT_EQ(Variant(Null).ToString(), u"");
  EXPECT_EQ(Err().Number(), errInvalidUseOfNull);

  Err().Clear();
  EXPECT_EQ(Variant(true).ToInteger(), -1);
  EXPECT_EQ(Variant(false).ToDouble(), 0.0);
  EXPECT_EQ(Variant(true).ToString(), u"Verdadeiro");
  EXPECT_TRUE(Variant(u"Verdadeiro").ToBoolean());
  EXPECT_TRUE(Variant(u"true").ToBoolean());
  EXPECT_FALSE(Variant(u"FALSO").ToBoolean());
  EXPECT_TRUE(Variant(u"-1").ToBoolean());
  EXPECT_FALSE(Variant(u"0").ToBoolean());
  EXPECT_TRUE(Variant(0.1).ToBoolean());
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_FALSE(Variant(u"sim").ToBoolean());
  EXPECT_EQ(Err().Number(), errTypeMismatch);
  {
    LocaleGuard en(Locale::Id::enUS);
    EXPECT_EQ(Variant(false).ToString(), u"False");
  }

  Err().Clear();
  const Variant withDefault(ObjectPtr(std::make_shared<Answer>(Variant(u"42"))));
  EXPECT_EQ(withDefault.ToLong(), 42);
  EXPECT_EQ(withDefault.ToString(), u"42");
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_EQ(Variant(ObjectPtr(std::make_shared<Answer>(Variant()))).ToLong(), 0);
  EXPECT_EQ(Err().Number(), errNotSupported);
  Err().Clear();
  EXPECT_EQ(Variant(ObjectPtr()).ToString(), u"");
  EXPECT_EQ(Err().Number(), errObjectNotSet);
}

TEST(VariantCoercion, DatesAndTheirLimits) {
  Err().Clear();
  EXPECT_EQ(Variant(45000.25).ToDate().Serial(), 45000.25);
  EXPECT_EQ(Variant(Date(2.5)).ToDouble(), 2.5);
  EXPECT_EQ(Variant(Date(2.5)).ToInteger(), 2);
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_EQ(Variant(3e6).ToDate().Serial(), 0.0);
  EXPECT_EQ(Err().Number(), errOverflow);
  Err().Clear();
  EXPECT_EQ(Variant(u"not a date").ToDate().Serial(), 0.0);
  EXPECT_EQ(Err().Number(), errTypeMismatch);
}

TEST(VariantCoercion, ChangeTypeAndCanChangeTypeAgree) {
  const Variant values[] = {Variant(), Variant(Null), Variant(u"12"), Variant(u"x"),
                            Variant(70000), Variant(1.5), Variant(true), Variant(Date(1.0))};
  const VbVarType types[] = {vbInteger, vbLong, vbByte, vbSingle, vbDouble,
                             vbCurrency, vbDate, vbString, vbBoolean};
  for (const auto& v : values) {
    for (auto t : types) {
      Err().Clear();
      const bool can = v.CanChangeType(t);
      EXPECT_EQ(Err().Number(), 0) << "CanChangeType must leave no trace";
      const Variant out = v.ChangeType(t);
      EXPECT_EQ(can, Err().Number() == 0) << ToUtf8(v.TypeName()) << " -> " << t;
      if (can) {
        EXPECT_EQ(out.Type(), t);
      }
    }
  }
}

TEST(VariantCompare, FollowsTheRulesForTwoVariants) {
  struct Case {
    Variant a, b;
    Ordering want;
  };
  const Case cases[] = {
      {Variant(1), Variant(2.5), Ordering::Less},
      {Variant(int16_t{3}), Variant(3.0), Ordering::Equal},
      {Variant(true), Variant(0), Ordering::Less},  // True is -1
      {Variant(Currency::FromRaw(10000)), Variant(1), Ordering::Equal},
      {Variant(Date(2.0)), Variant(1.5), Ordering::Greater},
      {Variant(u"abc"), Variant(u"abd"), Ordering::Less},
      {Variant(u"B"), Variant(u"a"), Ordering::Less},  // binary: upper case first
      {Variant(99), Variant(u"1"), Ordering::Less},    // a number is below any text
      {Variant(u""), Variant(-5), Ordering::Greater},
      {Variant(), Variant(0), Ordering::Equal},
      {Variant(), Variant(-1), Ordering::Greater},
      {Variant(), Variant(u""), Ordering::Equal},
      {Variant(), Variant(u"a"), Ordering::Less},
      {Variant(), Variant(), Ordering::Equal},
      {Variant(Null), Variant(1), Ordering::Unknown},
      {Variant(u"x"), Variant(Null), Ordering::Unknown},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Variant::Compare(c.a, c.b), c.want) << ToUtf8(c.a.TypeName()) << " vs "
                                                  << ToUtf8(c.b.TypeName());
  }
  EXPECT_EQ(Variant::Compare(Variant(u"B"), Variant(u"a"), vbTextCompare), Ordering::Greater);
  EXPECT_EQ(Variant::Compare(Variant(u"ABC"), Variant(u"abc"), vbTextCompare), Ordering::Equal);
  Err().Clear();
  EXPECT_EQ(Variant::Compare(Variant(std::vector<uint8_t>{1}), Variant(1)), Ordering::Unknown);
  EXPECT_EQ(Err().Number(), errTypeMismatch);
}

TEST(VariantArithmetic, TypesWidenAsThePlatformsDo) {
  struct Case {
    Variant r;
    VbVarType type;
    double value;
  };
  Err().Clear();
  const Case cases[] = {
      {Variant::Add(Variant(int16_t{1}), Variant(int16_t{2})), vbInteger, 3},
      {Variant::Add(Variant(int16_t{32767}), Variant(int16_t{1})), vbLong, 32768},
      {Variant::Add(Variant(2147483647), Variant(1)), vbDouble, 2147483648.0},
      {Variant::Add(Variant(uint8_t{200}), Variant(uint8_t{100})), vbInteger, 300},
      {Variant::Add(Variant(1.5f), Variant(int16_t{1})), vbSingle, 2.5},
      {Variant::Add(Variant(1.5f), Variant(1)), vbDouble, 2.5},
      {Variant::Add(Variant(u"1,5"), Variant(1)), vbDouble, 2.5},
      {Variant::Add(Variant(Currency::FromRaw(15000)), Variant(1.25)), vbCurrency, 2.75},
      {Variant::Add(Variant(Date(10.0)), Variant(1)), vbDate, 11},
      {Variant::Subtract(Variant(Date(10.5)), Variant(Date(3.0))), vbDouble, 7.5},
      {Variant::Multiply(Variant(int16_t{300}), Variant(int16_t{300})), vbLong, 90000},
      {Variant::Divide(Variant(1), Variant(4)), vbDouble, 0.25},
      {Variant::Add(Variant(true), Variant(true)), vbInteger, -2},
      {Variant::Add(Variant(), Variant(int16_t{5})), vbInteger, 5},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.r.Type(), c.type) << c.value;
    EXPECT_DOUBLE_EQ(c.r.ToDouble(), c.value);
  }
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_EQ(Variant::Add(Variant(u"ab"), Variant(u"cd")).ToString(), u"abcd");
  EXPECT_EQ(Variant::Add(Variant(), Variant(u"x")).ToString(), u"x");
  EXPECT_TRUE(Variant::Add(Variant(Null), Variant(1)).IsNull());
  EXPECT_EQ(Variant::Concat(Variant(Null), Variant(12)).ToString(), u"12");
  EXPECT_TRUE(Variant::Concat(Variant(Null), Variant(Null)).IsNull());
  EXPECT_EQ(Variant::Concat(Variant(1.5), Variant(true)).ToString(), u"1,5Verdadeiro");
}

TEST(VariantArithmetic, FailuresSetTheErrorObjectAndGiveEmpty) {
  struct Case {
    Variant r;
    int32_t err;
  };
  const auto run = [](auto f) {
    Err().Clear();
    Variant r = f();
    return Case{r, Err().Number()};
  };
  const Case cases[] = {
      run([] { return Variant::Add(Variant(u"abc"), Variant(1)); }),
      run([] { return Variant::Divide(Variant(1), Variant(0)); }),
      run([] { return Variant::Divide(Variant(0), Variant(0)); }),
      run([] { return Variant::Multiply(Variant(1e300), Variant(1e300)); }),
      run([] {
        return Variant::Multiply(Variant(Currency::FromRaw(INT64_MAX / 2)), Variant(Currency::FromRaw(30000)));
      }),
      run([] { return Variant::Add(Variant(Date(2958465.0)), Variant(10)); }),
  };
  const int32_t want[] = {errTypeMismatch, errDivisionByZero, errOverflow,
                          errOverflow,     errOverflow,       errOverflow};
  for (size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_TRUE(cases[i].r.IsEmpty()) << i;
    EXPECT_EQ(cases[i].err, want[i]) << i;
  }
}

TEST(VariantByRef, ReadsAndWritesItsTarget) {
  Variant target(5);
  Variant ref = Variant::ByRef(&target);
  EXPECT_TRUE(ref.IsByRef());
  EXPECT_EQ(ref.Type(), vbLong);
  EXPECT_EQ(ref.ToLong(), 5);
  ref.Assign(Variant(u"changed"));
  EXPECT_EQ(target.ToString(), u"changed");
  Variant refToRef = Variant::ByRef(&ref);
  refToRef.Assign(Variant(7.5));
  EXPECT_EQ(target.Type(), vbDouble);
  ref.Assign(ref);  // assigning a value to itself keeps it
  EXPECT_EQ(target.ToDouble(), 7.5);
}

TEST(VariantArrays, CopyAsValuesAndCompareByContent) {
  Variant a(std::vector<uint8_t>{1, 2, 3});
  Variant b = a;
  b.Array()->Bytes()[0] = 9;
  EXPECT_EQ(a.Array()->Bytes()[0], 1);
  EXPECT_FALSE(a.SameAs(b));
  b.Array()->Bytes()[0] = 1;
  EXPECT_TRUE(a.SameAs(b));
  EXPECT_FALSE(Variant(1).SameAs(Variant(int16_t{1})));
  EXPECT_TRUE(Variant(u"x").SameAs(Variant(u"x")));
}

}  // namespace
}  // namespace vantor
