#include "runtime/Collection.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "runtime/Error.h"
#include "tests/runtime/TestSupport.h"

namespace vantor {
namespace {

using namespace test;

String TextOf(const Variant& v) {
  const String* s = v.As<String>();
  return s ? *s : u"<not text>";
}

// The items in order, joined, to check positions at a glance.
String Order(const Collection& c) {
  String out;
  for (int32_t i = 1; i <= c.Count(); ++i) out += TextOf(c.Item(Variant(i)));
  return out;
}

class Named : public Object {
 public:
  String ClassName() const override { return u"Named"; }
};

TEST(Collection, AddAndReachByPositionAndKey) {
  Err().Clear();
  Collection c;
  EXPECT_EQ(c.Count(), 0);
  EXPECT_TRUE(c.Add(Variant(u"a"), Variant(u"Ação")));
  EXPECT_TRUE(c.Add(Variant(u"b")));
  EXPECT_TRUE(c.Add(Variant(u"c"), Variant(u"Key")));
  EXPECT_EQ(c.Count(), 3);
  EXPECT_EQ(Order(c), u"abc");
  EXPECT_EQ(TextOf(c.Item(Variant(u"AÇÃO"))), u"a");
  EXPECT_EQ(TextOf(c.Item(Variant(u"ação"))), u"a");
  EXPECT_EQ(TextOf(c.Item(Variant(u"KEY"))), u"c");
  EXPECT_TRUE(c.Exists(u"key"));
  EXPECT_TRUE(c.Exists(u"AÇÃO"));
  EXPECT_FALSE(c.Exists(u"acao"));
  EXPECT_FALSE(c.Exists(u""));
  EXPECT_EQ(ErrAfter(), 0);
}

TEST(Collection, IndexTypes) {
  Err().Clear();
  Collection c;
  for (const char16_t* s : {u"a", u"b", u"c", u"d"}) c.Add(Variant(s));
  EXPECT_EQ(TextOf(c.Item(Variant(int16_t{2}))), u"b");
  EXPECT_EQ(TextOf(c.Item(Variant(uint8_t{3}))), u"c");
  EXPECT_EQ(TextOf(c.Item(Variant(4.0))), u"d");
  EXPECT_EQ(TextOf(c.Item(Variant(1.4f))), u"a");
  // Fractions round to even, as CLng.
  EXPECT_EQ(TextOf(c.Item(Variant(2.5))), u"b");
  EXPECT_EQ(TextOf(c.Item(Variant(1.5))), u"b");
  EXPECT_EQ(TextOf(c.Item(Variant(3.5))), u"d");
  EXPECT_EQ(TextOf(c.Item(Variant(Currency::FromRaw(30000)))), u"c");
  EXPECT_EQ(ErrAfter(), 0);

  struct Bad {
    Variant index;
    int32_t err;
  };
  const Bad bad[] = {
      {Variant(0), 9},   {Variant(5), 9},     {Variant(-1), 9},   {Variant(0.4), 9},
      {Variant(4.6), 9}, {Variant(true), 9},  {Variant(), 9},     {Variant(u"1"), 5},
      {Variant(u""), 5}, {Variant(Null), 94}, {Variant(1e20), 6},
  };
  for (const Bad& b : bad) {
    const Variant got = c.Item(b.index);
    EXPECT_TRUE(got.IsEmpty());
    EXPECT_EQ(ErrAfter(), b.err) << ToUtf8(b.index.TypeName());
  }
  EXPECT_EQ(c.Count(), 4);
}

TEST(Collection, KeyErrors) {
  Err().Clear();
  Collection c;
  EXPECT_TRUE(c.Add(Variant(1), Variant(u"k")));
  EXPECT_FALSE(c.Add(Variant(2), Variant(u"K")));
  EXPECT_EQ(ErrAfter(), 457);
  EXPECT_FALSE(c.Add(Variant(2), Variant(5)));
  EXPECT_EQ(ErrAfter(), 13);
  EXPECT_FALSE(c.Add(Variant(2), Variant(2.0)));
  EXPECT_EQ(ErrAfter(), 13);
  EXPECT_FALSE(c.Add(Variant(2), Variant(Null)));
  EXPECT_EQ(ErrAfter(), 13);
  EXPECT_FALSE(c.Add(Variant(2), Variant(u"")));
  EXPECT_EQ(ErrAfter(), 5);
  EXPECT_EQ(c.Count(), 1);
  // Left out, either way.
  EXPECT_TRUE(c.Add(Variant(2), Variant::Missing(), Variant::Missing(), Variant::Missing()));
  EXPECT_TRUE(c.Add(Variant(3), Variant()));
  EXPECT_EQ(c.Count(), 3);
  EXPECT_EQ(ErrAfter(), 0);
}

TEST(Collection, BeforeAndAfter) {
  Err().Clear();
  Collection c;
  c.Add(Variant(u"b"), Variant(u"kb"));
  c.Add(Variant(u"d"), Variant(u"kd"));
  EXPECT_TRUE(c.Add(Variant(u"a"), Variant(u"ka"), Variant(1)));
  EXPECT_EQ(Order(c), u"abd");
  EXPECT_TRUE(c.Add(Variant(u"c"), Variant(u"kc"), {}, Variant(u"KB")));
  EXPECT_EQ(Order(c), u"abcd");
  EXPECT_TRUE(c.Add(Variant(u"e"), Variant(u"ke"), {}, Variant(4)));
  EXPECT_EQ(Order(c), u"abcde");
  EXPECT_TRUE(c.Add(Variant(u"x"), {}, Variant(u"kd")));
  EXPECT_EQ(Order(c), u"abcxde");
  EXPECT_EQ(ErrAfter(), 0);
  // Keys follow their items to the new positions.
  for (const char16_t* k : {u"a", u"b", u"c", u"d", u"e"}) {
    EXPECT_EQ(TextOf(c.Item(Variant(String(u"k") + k))), k);
  }

  EXPECT_FALSE(c.Add(Variant(u"y"), {}, Variant(1), Variant(1)));
  EXPECT_EQ(ErrAfter(), 5);
  EXPECT_FALSE(c.Add(Variant(u"y"), {}, Variant(0)));
  EXPECT_EQ(ErrAfter(), 9);
  EXPECT_FALSE(c.Add(Variant(u"y"), {}, {}, Variant(7)));
  EXPECT_EQ(ErrAfter(), 9);
  EXPECT_FALSE(c.Add(Variant(u"y"), {}, Variant(u"nope")));
  EXPECT_EQ(ErrAfter(), 5);
  EXPECT_FALSE(c.Add(Variant(u"y"), Variant(u"kA"), Variant(1)));
  EXPECT_EQ(ErrAfter(), 457);
  EXPECT_EQ(Order(c), u"abcxde");

  Collection empty;
  EXPECT_FALSE(empty.Add(Variant(u"y"), {}, Variant(1)));
  EXPECT_EQ(ErrAfter(), 9);
  EXPECT_EQ(empty.Count(), 0);
}

TEST(Collection, RemoveShiftsPositions) {
  Err().Clear();
  Collection c;
  for (const char16_t* s : {u"a", u"b", u"c", u"d"}) c.Add(Variant(s), Variant(String(u"k") + s));
  EXPECT_TRUE(c.Remove(Variant(2)));
  EXPECT_EQ(Order(c), u"acd");
  EXPECT_FALSE(c.Exists(u"kb"));
  EXPECT_EQ(TextOf(c.Item(Variant(u"kd"))), u"d");
  EXPECT_TRUE(c.Remove(Variant(u"KA")));
  EXPECT_EQ(Order(c), u"cd");
  EXPECT_EQ(TextOf(c.Item(Variant(u"kc"))), u"c");
  EXPECT_EQ(ErrAfter(), 0);
  EXPECT_FALSE(c.Remove(Variant(3)));
  EXPECT_EQ(ErrAfter(), 9);
  EXPECT_FALSE(c.Remove(Variant(u"ka")));
  EXPECT_EQ(ErrAfter(), 5);
  // A removed key may be used again.
  EXPECT_TRUE(c.Add(Variant(u"b"), Variant(u"kb")));
  EXPECT_EQ(Order(c), u"cdb");
  c.Clear();
  EXPECT_EQ(c.Count(), 0);
  EXPECT_FALSE(c.Exists(u"kb"));
  EXPECT_TRUE(c.Add(Variant(u"b"), Variant(u"kb")));
  EXPECT_EQ(ErrAfter(), 0);
}

TEST(Collection, HoldsValuesAndObjects) {
  Err().Clear();
  Collection c;
  Variant target(u"before");
  c.Add(Variant::ByRef(&target));
  target = Variant(u"after");
  EXPECT_EQ(TextOf(c.Item(Variant(1))), u"before");
  EXPECT_FALSE(c.Item(Variant(1)).IsByRef());

  auto object = std::make_shared<Named>();
  c.Add(Variant(ObjectPtr(object)), Variant(u"obj"));
  const Variant got = c.Item(Variant(u"OBJ"));
  ASSERT_NE(got.ObjectRef(), nullptr);
  EXPECT_EQ(got.ObjectRef()->get(), object.get());
  // A key passed by reference is still a text key.
  Variant key(u"ref");
  EXPECT_TRUE(c.Add(Variant(3), Variant::ByRef(&key)));
  EXPECT_TRUE(c.Exists(u"REF"));
  EXPECT_EQ(ErrAfter(), 0);
}

TEST(Collection, ThousandsOfItems) {
  Err().Clear();
  Collection c;
  constexpr int32_t kCount = 5000;
  for (int32_t i = 1; i <= kCount; ++i) {
    ASSERT_TRUE(c.Add(Variant(i), Variant(u"ChaveÇ" + FromUtf8(std::to_string(i)))));
  }
  // Remove every other one by key, from the front, as a typical loop would.
  for (int32_t i = 1; i <= kCount; i += 2) {
    ASSERT_TRUE(c.Remove(Variant(u"chaveç" + FromUtf8(std::to_string(i)))));
  }
  ASSERT_EQ(c.Count(), kCount / 2);
  for (int32_t i = 2; i <= kCount; i += 2) {
    const Variant byKey = c.Item(Variant(u"CHAVEÇ" + FromUtf8(std::to_string(i))));
    ASSERT_EQ(byKey.ToLong(), i);
    ASSERT_EQ(c.Item(Variant(i / 2)).ToLong(), i);
  }
  // Then from the back, checking that the front keys never moved.
  while (c.Count() > 1) {
    ASSERT_TRUE(c.Remove(Variant(c.Count())));
    ASSERT_EQ(c.Item(Variant(u"chaveç2")).ToLong(), 2);
  }
  EXPECT_FALSE(c.Exists(u"chaveç4"));
  EXPECT_EQ(ErrAfter(), 0);
}

}  // namespace
}  // namespace vantor
