#include "server/PropertyBag.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "runtime/Error.h"
#include "server/StdFont.h"
#include "server/StdPicture.h"

namespace vantor::server {
namespace {

double DoubleFromBits(uint64_t bits) {
  double d;
  std::memcpy(&d, &bits, sizeof d);
  return d;
}

float SingleFromBits(uint32_t bits) {
  float f;
  std::memcpy(&f, &bits, sizeof f);
  return f;
}

String AllCodeUnits() {
  String s;
  for (uint32_t c = 0; c <= 0xFFFF; ++c) s += static_cast<char16_t>(c);
  return s;
}

Variant MakeFont() {
  auto f = std::make_shared<StdFont>();
  f->put_Name(u"Tahoma \"Bold\"; {x}");
  f->put_Size(Currency::FromRaw(97500));
  f->put_Weight(600);
  f->put_Italic(true);
  f->put_Strikethrough(true);
  f->put_Charset(-3);
  return Variant(ObjectPtr(f));
}

Variant MakePicture(PictureType type) {
  std::vector<uint32_t> px(5 * 3);
  for (size_t i = 0; i < px.size(); ++i)
    px[i] = 0x01020304u * static_cast<uint32_t>(i + 1) ^ 0x80FF00FFu;
  return Variant(ObjectPtr(StdPicture::FromPixels(5, 3, px, type)));
}

struct RoundTripCase {
  const char16_t* name;
  Variant value;
};

std::vector<RoundTripCase> RoundTripCases() {
  SafeArray longs(vbLong, {SafeArray::Bound{-2, 3}});
  longs.Set(-2, Variant(int32_t{7}));
  longs.Set(0, Variant(int32_t{-9}));
  SafeArray strings(vbString, {SafeArray::Bound{1, 2}});
  strings.Set(1, Variant(u"a;b}"));
  SafeArray inner = SafeArray::FromVariants({Variant(1.5), Variant(Null)});
  SafeArray mixed = SafeArray::FromVariants({Variant(), Variant(int16_t{3}), Variant(u"x"),
                                             Variant(inner), Variant(std::vector<uint8_t>{1, 2})},
                                            5);
  return {
      {u"Null", Variant(Null)},
      {u"IntMin", Variant(int16_t{-32768})},
      {u"IntMax", Variant(int16_t{32767})},
      {u"LongMin", Variant(std::numeric_limits<int32_t>::min())},
      {u"BackColor", Variant(int32_t{16777215})},
      {u"Byte0", Variant(uint8_t{0})},
      {u"Byte255", Variant(uint8_t{255})},
      {u"True", Variant(true)},
      {u"False", Variant(false)},
      {u"SingleTenth", Variant(0.1f)},
      {u"SingleDenormal", Variant(SingleFromBits(1))},
      {u"SingleNegZero", Variant(-0.0f)},
      {u"SingleMax", Variant(std::numeric_limits<float>::max())},
      {u"DoubleTenth", Variant(0.1)},
      {u"DoubleNegZero", Variant(-0.0)},
      {u"DoubleDenormal", Variant(1e-310)},
      {u"DoubleTiniest", Variant(DoubleFromBits(1))},
      {u"DoubleMax", Variant(std::numeric_limits<double>::max())},
      {u"DoubleThird", Variant(1.0 / 3.0)},
      {u"DoubleInf", Variant(-std::numeric_limits<double>::infinity())},
      {u"DoubleNaN", Variant(std::numeric_limits<double>::quiet_NaN())},
      {u"DoubleNaNPayload", Variant(DoubleFromBits(0xFFF0000000000123ull))},
      {u"SingleNaN", Variant(SingleFromBits(0x7FC00001u))},
      {u"CurMin", Variant(Currency::FromRaw(std::numeric_limits<int64_t>::min()))},
      {u"CurMax", Variant(Currency::FromRaw(std::numeric_limits<int64_t>::max()))},
      {u"Amount", Variant(Currency::FromRaw(123456))},
      {u"CurSmallNeg", Variant(Currency::FromRaw(-1))},
      {u"When", Variant(Date(45000.25))},
      {u"WhenNeg", Variant(Date(-1.25))},
      {u"WhenOdd", Variant(Date(45000.123456789012))},
      {u"Empty String", Variant(u"")},
      {u"Caption", Variant(u"Confirmar")},
      {u"Escapes", Variant(u"a\"b\\c\r\n\t\u00e9\U0001F600\x01\x7f")},
      {u"AllUnits", Variant(AllCodeUnits())},
      {u"Long", Variant(String(100000, u'x') + char16_t{0xD800})},
      {u"NoBytes", Variant(std::vector<uint8_t>{})},
      {u"DibPicture", Variant(std::vector<uint8_t>{0x89, 0x50, 0x4E, 0x47})},
      {u"BytesFrom1", Variant(SafeArray::FromBytes({0, 255}, 1))},
      {u"Missing", Variant::Missing()},
      {u"Nothing", Variant(ObjectPtr())},
      {u"Longs", Variant(longs)},
      {u"Strings", Variant(strings)},
      {u"Mixed", Variant(mixed)},
      {u"NoItems", Variant(SafeArray::FromVariants({}))},
      {u"Font", MakeFont()},
      {u"DefaultFont", Variant(ObjectPtr(std::make_shared<StdFont>()))},
      {u"Picture", MakePicture(PictureType::Bitmap)},
      {u"Icon", MakePicture(PictureType::Icon)},
      {u"NoPicture", Variant(ObjectPtr(std::make_shared<StdPicture>()))},
      {u"\"Odd = name\"", Variant(int32_t{1})},
      {u"Ação", Variant(int32_t{2})},
      {u"", Variant(int32_t{3})},
  };
}

TEST(PropertyBag, EveryValueTypeRoundTripsExactly) {
  const auto cases = RoundTripCases();
  PropertyBag bag;
  for (const auto& c : cases) bag.WriteProperty(c.name, c.value, Variant(u"unused default"));
  ASSERT_EQ(bag.Count(), cases.size());
  const String text = bag.ToText();
  for (char16_t ch : text) ASSERT_LT(ch, 0x80) << "text form is 7-bit";
  String error;
  const auto loaded = PropertyBag::FromText(text, &error);
  ASSERT_TRUE(loaded) << ToUtf8(error);
  EXPECT_EQ(loaded->ToText(), text);
  EXPECT_EQ(loaded->Names(), bag.Names());
  for (const auto& c : cases) {
    const Variant back = loaded->ReadProperty(c.name);
    EXPECT_TRUE(PropertyBag::SameValue(back, c.value)) << ToUtf8(c.name);
    EXPECT_EQ(back.Type(), c.value.Type()) << ToUtf8(c.name);
  }
}

TEST(PropertyBag, TextFormOfEachType) {
  struct Case {
    Variant value;
    const char* text;
  };
  const Case cases[] = {
      {Variant(u"Confirmar"), "K = String \"Confirmar\"\n"},
      {Variant(int32_t{16777215}), "K = Long 16777215\n"},
      {Variant(int16_t{-5}), "K = Integer -5\n"},
      {Variant(true), "K = Boolean -1\n"},
      {Variant(false), "K = Boolean 0\n"},
      {Variant(uint8_t{200}), "K = Byte 200\n"},
      {Variant(0.1), "K = Double 0.1\n"},
      {Variant(-0.0), "K = Double -0\n"},
      {Variant(1e-310), "K = Double 1e-310\n"},
      {Variant(0.1f), "K = Single 0.1\n"},
      {Variant(std::numeric_limits<double>::quiet_NaN()), "K = Double #7FF8000000000000\n"},
      {Variant(Currency::FromRaw(123456)), "K = Currency 12.3456\n"},
      {Variant(Currency::FromRaw(-5000)), "K = Currency -0.5\n"},
      {Variant(Currency::FromRaw(1000000)), "K = Currency 100\n"},
      {Variant(Currency::FromRaw(std::numeric_limits<int64_t>::min())),
       "K = Currency -922337203685477.5808\n"},
      {Variant(Date(45000.25)), "K = Date 45000.25\n"},
      {Variant(Null), "K = Null\n"},
      {Variant(std::vector<uint8_t>{0x89, 0x50, 0x4E, 0x47}), "K = Bytes 4 89504E47\n"},
      {Variant(std::vector<uint8_t>{}), "K = Bytes 0\n"},
      {Variant(u"q\"\\\r\n\t\u00e9\U0001F600"),
       "K = String \"q\\\"\\\\\\r\\n\\t\\u00E9\\uD83D\\uDE00\"\n"},
      {Variant(ObjectPtr(std::make_shared<StdFont>())),
       "K = Font {Name \"MS Sans Serif\"; Size 8.25; Bold 0; Weight 400; Italic 0; Underline 0; "
       "Strikethrough 0; Charset 0}\n"},
      {Variant(ObjectPtr(
           StdPicture::FromPixels(2, 1, std::vector<uint32_t>{0xFF112233u, 0x00445566u}))),
       "K = Picture 2 1 332211FF66554400\n"},
      {Variant(SafeArray::FromVariants({Variant(int32_t{1}), Variant(u"a")})),
       "K = Array Variant 0 2 {Long 1; String \"a\"}\n"},
  };
  for (const auto& c : cases) {
    PropertyBag bag;
    bag.WriteProperty(u"K", c.value);
    EXPECT_EQ(ToUtf8(bag.ToText()), c.text);
    const auto back = PropertyBag::FromText(FromUtf8(c.text));
    ASSERT_TRUE(back) << c.text;
    EXPECT_TRUE(PropertyBag::SameValue(back->ReadProperty(u"K"), c.value)) << c.text;
  }
}

TEST(PropertyBag, DefaultsAreNotStored) {
  PropertyBag bag;
  bag.WriteProperty(u"Enabled", Variant(true), Variant(true));
  bag.WriteProperty(u"Caption", Variant(u""), Variant(u""));
  bag.WriteProperty(u"Empty", Variant());
  bag.WriteProperty(u"Font", Variant(ObjectPtr(std::make_shared<StdFont>())),
                    Variant(ObjectPtr(std::make_shared<StdFont>())));
  EXPECT_EQ(bag.Count(), 0u);
  // Same value, other type: stored, since it reads back as another type.
  bag.WriteProperty(u"Value", Variant(int16_t{0}), Variant(int32_t{0}));
  bag.WriteProperty(u"Zero", Variant(-0.0), Variant(0.0));
  EXPECT_EQ(bag.Count(), 2u);
  // Writing the default over a stored value removes it.
  bag.WriteProperty(u"VALUE", Variant(int32_t{0}), Variant(int32_t{0}));
  EXPECT_FALSE(bag.Contains(u"Value"));
  EXPECT_EQ(bag.Count(), 1u);
}

TEST(PropertyBag, MissingKeysCaseAndOrder) {
  PropertyBag bag;
  EXPECT_TRUE(bag.ReadProperty(u"Nope", Variant(int32_t{42})).SameAs(Variant(int32_t{42})));
  EXPECT_TRUE(bag.ReadProperty(u"Nope").IsEmpty());
  bag.WriteProperty(u"BackColor", Variant(int32_t{1}));
  bag.WriteProperty(u"Caption", Variant(u"x"));
  bag.WriteProperty(u"Ação", Variant(int32_t{3}));
  bag.WriteProperty(u"backcolor", Variant(int32_t{2}));
  EXPECT_EQ(bag.Count(), 3u);
  EXPECT_TRUE(bag.ReadProperty(u"BACKCOLOR").SameAs(Variant(int32_t{2})));
  EXPECT_TRUE(bag.Contains(u"AÇÃO"));
  EXPECT_EQ(bag.Names(), (std::vector<String>{u"BackColor", u"Caption", u"Ação"}));
  EXPECT_TRUE(bag.Remove(u"caption"));
  EXPECT_FALSE(bag.Remove(u"caption"));
  EXPECT_EQ(bag.Names(), (std::vector<String>{u"BackColor", u"Ação"}));
  EXPECT_TRUE(bag.ReadProperty(u"ação").SameAs(Variant(int32_t{3})));
  bag.Clear();
  EXPECT_EQ(bag.Count(), 0u);
  EXPECT_FALSE(bag.Contains(u"BackColor"));
}

TEST(PropertyBag, ObjectsAreCopiedInAndOut) {
  auto font = std::make_shared<StdFont>();
  PropertyBag bag;
  bag.WriteProperty(u"Font", Variant(ObjectPtr(font)), Variant());
  font->put_Bold(true);
  const Variant read = bag.ReadProperty(u"Font");
  auto* stored = dynamic_cast<StdFont*>(read.ObjectRef()->get());
  ASSERT_NE(stored, nullptr);
  EXPECT_FALSE(stored->get_Bold());
  stored->put_Size(Currency::FromRaw(200000));
  const Variant readAgain = bag.ReadProperty(u"Font");
  auto* again = dynamic_cast<StdFont*>(readAgain.ObjectRef()->get());
  EXPECT_EQ(again->get_Size().Raw(), 82500);
}

class Plain : public Object {
 public:
  String ClassName() const override { return u"Plain"; }
};

TEST(PropertyBag, RefusesWhatTheTextCannotCarry) {
  PropertyBag bag;
  Err().Clear();
  bag.WriteProperty(u"Obj", Variant(ObjectPtr(std::make_shared<Plain>())));
  EXPECT_EQ(Err().Number(), errTypeMismatch);
  Err().Clear();
  bag.WriteProperty(u"Grid", Variant(SafeArray(vbLong, {{0, 2}, {0, 2}})));
  EXPECT_EQ(Err().Number(), errTypeMismatch);
  Err().Clear();
  bag.WriteProperty(u"Fonts", Variant(SafeArray::FromVariants({MakeFont()})));
  EXPECT_EQ(Err().Number(), errTypeMismatch);
  Err().Clear();
  EXPECT_EQ(bag.Count(), 0u);
}

TEST(PropertyBag, MalformedTextIsRefusedNamingTheLine) {
  struct Case {
    const char* text;
    int line;
    const char* what;
  };
  const Case cases[] = {
      {"A = Long 1\nB = Wibble 3", 2, "unknown type"},
      {"A = Long 12x", 1, "bad number"},
      {"A = Long 1.5", 1, "bad number"},
      {"A = String \"abc", 1, "unterminated string"},
      {"A = String \"a\\qb\"", 1, "bad escape"},
      {"A = String \"\\u12G4\"", 1, "bad \\u escape"},
      {"A = Bytes 2 ABC", 1, "odd number"},
      {"A = Bytes 3 ABCD", 1, "does not match"},
      {"A = Bytes 2 ABCDZ", 1, "bad hex"},
      {"A = Long 1\r\n\r\na = Long 2", 3, "twice"},
      {"A Long 1", 1, "missing '='"},
      {"@@@", 1, "missing name"},
      {"A =", 1, "missing type"},
      {"A = Integer 40000", 1, "out of range"},
      {"A = Byte -1", 1, "out of range"},
      {"A = Boolean 1", 1, "out of range"},
      {"A = Double nan", 1, "bad number"},
      {"A = Double inf", 1, "bad number"},
      {"A = Double 1e999", 1, "bad number"},
      {"A = Double #7FF", 1, "bad number"},
      {"A = Currency 1.23456", 1, "bad number"},
      {"A = Currency 922337203685478", 1, "out of range"},
      {"A = Long 1 2", 1, "unexpected text"},
      {"A = Font {Name \"x\"; Colour 3}", 1, "unknown font field"},
      {"A = Font {Size 8; Size 9}", 1, "twice"},
      {"A = Font {Size 0}", 1, "above zero"},
      {"A = Font {Name \"x\"", 1, "expected '}'"},
      {"A = Picture 2 2 00", 1, "does not match"},
      {"A = Picture 0 2", 1, "out of range"},
      {"A = Array Long 0 2 {Long 1}", 1, "count"},
      {"A = Array Long 0 1 {String \"x\"}", 1, "wrong type"},
      {"A = Array Object 0 0 {}", 1, "element type"},
      {"A = Array Variant 0 1 {Font {}}", 1, "objects"},
      {"\n\nA = Long 1\n\x01", 4, "missing name"},
  };
  for (const auto& c : cases) {
    String error = u"stale";
    const auto bag = PropertyBag::FromText(FromUtf8(c.text), &error);
    EXPECT_FALSE(bag) << c.text;
    const std::string message = ToUtf8(error);
    EXPECT_EQ(message.rfind("line " + std::to_string(c.line) + ": ", 0), 0u)
        << c.text << " -> " << message;
    EXPECT_NE(message.find(c.what), std::string::npos) << c.text << " -> " << message;
  }
}

TEST(PropertyBag, ReaderIsLenientAboutLayoutOnly) {
  String error = u"stale";
  const auto bag = PropertyBag::FromText(
      u"\r\n  A=Long   1\r\n\t\"B c\" = String \"\u00e9\"  \nC = Font {}\nD = Font {Bold -1}\n"
      u"E = Font {Weight 400; Bold -1}\nF = Currency 0.5\nG = Double 1E+2",
      &error);
  ASSERT_TRUE(bag) << ToUtf8(error);
  EXPECT_TRUE(error.empty());
  EXPECT_TRUE(bag->ReadProperty(u"b C").SameAs(Variant(u"\u00e9")));
  std::vector<Variant> keep;
  auto font = [&](const char16_t* key) {
    keep.push_back(bag->ReadProperty(key));
    return dynamic_cast<StdFont*>(keep.back().ObjectRef()->get());
  };
  EXPECT_EQ(*font(u"C"), StdFont());
  EXPECT_EQ(font(u"D")->get_Weight(), 700);
  EXPECT_EQ(font(u"E")->get_Weight(), 400);
  EXPECT_TRUE(bag->ReadProperty(u"F").SameAs(Variant(Currency::FromRaw(5000))));
  EXPECT_TRUE(bag->ReadProperty(u"G").SameAs(Variant(100.0)));
  EXPECT_EQ(
      ToUtf8(bag->ToText()),
      "A = Long 1\n\"B c\" = String \"\\u00E9\"\nC = Font {Name \"MS Sans Serif\"; Size 8.25; "
      "Bold 0; Weight 400; Italic 0; Underline 0; Strikethrough 0; Charset 0}\n"
      "D = Font {Name \"MS Sans Serif\"; Size 8.25; Bold -1; Weight 700; Italic 0; "
      "Underline 0; Strikethrough 0; Charset 0}\n"
      "E = Font {Name \"MS Sans Serif\"; Size 8.25; Bold 0; Weight 400; Italic 0; "
      "Underline 0; Strikethrough 0; Charset 0}\nF = Currency 0.5\nG = Double 100\n");
  const auto empty = PropertyBag::FromText(u"");
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->Count(), 0u);
}

TEST(PropertyBag, GarbageNeverCrashesAndAcceptedTextIsStable) {
  uint32_t seed = 12345;
  const char16_t alphabet[] =
      u"A= LongStringBytesFont{};\"\\u0123456789.-#@\n\r\tPictureArrayVariant";
  for (int round = 0; round < 3000; ++round) {
    String text;
    const int len = static_cast<int>(seed % 60);
    for (int i = 0; i < len; ++i) {
      seed = seed * 1103515245u + 12345u;
      text += alphabet[(seed >> 16) % (sizeof(alphabet) / sizeof(char16_t) - 1)];
    }
    seed = seed * 1103515245u + 12345u;
    const auto bag = PropertyBag::FromText(text);
    if (bag) {
      const String once = bag->ToText();
      const auto again = PropertyBag::FromText(once);
      ASSERT_TRUE(again);
      EXPECT_EQ(again->ToText(), once);
    }
  }
}

}  // namespace
}  // namespace vantor::server
