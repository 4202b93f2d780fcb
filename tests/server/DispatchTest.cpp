#include "server/Dispatch.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "server/Event.h"
#include "server/Registry.h"
#include "server/StdPicture.h"
#include "server/TableBuilder.h"
#include "server/TypeLibrary.h"

namespace vantor::server {
namespace {

// A class of its own, so that the dispatcher is tested on every shape of
// member without leaning on what the library's classes implement.
const TypeLibrary& SampleLibrary() {
  static const TypeLibrary lib = [] {
    TableBuilder b;
    b.Class("Sample", ClassKind::Control)
        .Method("About")
        .Property("Caption", td::Str)
        .ReadOnly("hwnd", td::Long)
        .WriteOnly("Secret", td::Str)
        .Property("Picture", td::Picture)
        .Property("Item", td::Str, {P("Index", td::Long)})
        .Property("Theme", td::Enum("ENUM_SAMPLE"))
        .Function("Sum", td::Long, {P("a", td::Long), Opt("b", td::Long, 10), Opt("c", td::Double, 0.5)})
        .Method("Swap", {Ref("Left", td::Str), Ref("Right", td::Str)})
        .Function("Describe", td::Str, {Opt("Key", td::Var)})
        .Function("Length", td::Long, {P("Bytes", td::Bytes)})
        .Method("Fail", {P("Number", td::Long)})
        .Method("NotYet")
        .Event("Click")
        .Event("KeyPress", {Ref("KeyAscii", td::Int)})
        .Event("MouseMove", {P("Button", td::Int), P("X", td::Single)});
    b.Enum("ENUM_SAMPLE", {{"First One", 0}, {"Second", 1}});
    return TypeLibrary(std::move(b.classes), std::move(b.enums));
  }();
  return lib;
}

class Sample : public Dispatch {
 public:
  Sample() : Dispatch(*SampleLibrary().FindClass("Sample")) {}

  String get_Caption() const { return caption_; }
  void put_Caption(String v) { caption_ = std::move(v); }
  int32_t get_hwnd() const { return 42; }
  void put_Secret(String v) { secret_ = std::move(v); }
  ObjectPtr get_Picture() const { return picture_; }
  void putref_Picture(ObjectPtr p) { picture_ = std::move(p); }
  String get_Item(int32_t i) const { return items_.at(static_cast<size_t>(i)); }
  void put_Item(int32_t i, String v) { items_.at(static_cast<size_t>(i)) = std::move(v); }
  int32_t get_Theme() const { return theme_; }
  void put_Theme(int32_t t) { theme_ = t; }
  int32_t Sum(int32_t a, int32_t b, double c) { return a + b + static_cast<int32_t>(c * 100); }
  void Swap(String& l, String& r) { std::swap(l, r); }
  String Describe(const Variant& key) const { return key.IsMissing() ? u"missing" : key.TypeName(); }
  int32_t Length(const std::vector<uint8_t>& bytes) const { return static_cast<int32_t>(bytes.size()); }
  void Fail(int32_t number) {
    if (number > 0) throw Error(number, u"Sample.Fail", u"asked to fail");
    throw std::runtime_error("plain failure");
  }

  Event<> Click{*this, "Click"};
  Event<int16_t&> KeyPress{*this, "KeyPress"};
  Event<int16_t, float> MouseMove{*this, "MouseMove"};

  String secret_;

 protected:
  const Bindings* Bound() const override {
    static const Bindings bindings = Binder<Sample>(Info())
                                         .Property("Caption", &Sample::get_Caption, &Sample::put_Caption)
                                         .Get("hwnd", &Sample::get_hwnd)
                                         .Put("Secret", &Sample::put_Secret)
                                         .Property("Picture", &Sample::get_Picture, &Sample::putref_Picture)
                                         .Property("Item", &Sample::get_Item, &Sample::put_Item)
                                         .Property("Theme", &Sample::get_Theme, &Sample::put_Theme)
                                         .Method("Sum", &Sample::Sum)
                                         .Method("Swap", &Sample::Swap)
                                         .Method("Describe", &Sample::Describe)
                                         .Method("Length", &Sample::Length)
                                         .Method("Fail", &Sample::Fail)
                                         .Done();
    return &bindings;
  }

 private:
  String caption_ = u"Sample1";
  ObjectPtr picture_;
  std::vector<String> items_ = {u"a", u"b", u"c"};
  int32_t theme_ = 0;
};

struct Outcome {
  bool ok;
  Variant result;
  int32_t error;
  std::string description;
};

Outcome Invoke(Dispatch& d, std::string_view member, InvokeKind kind, std::vector<Variant> args,
            std::vector<std::string_view> names = {}) {
  Err().Clear();
  Variant r;
  const bool ok = d.Invoke(member, kind, args, &r, names);
  return {ok, r, Err().Number(), ToUtf8(Err().Description())};
}

TEST(Dispatch, CallsWithPositionalNamedAndOptionalArguments) {
  Sample s;
  struct Case {
    std::vector<Variant> args;
    std::vector<std::string_view> names;
    int32_t expected;
  } cases[] = {
      {{Variant(1)}, {}, 1 + 10 + 50},                          // both optional defaults
      {{Variant(1), Variant(2)}, {}, 1 + 2 + 50},               // one default
      {{Variant(1), Variant(2), Variant(0.25)}, {}, 1 + 2 + 25},
      {{Variant(String(u"7"))}, {}, 7 + 10 + 50},               // text converted to Long
      {{Variant(1), Variant(0.01)}, {"c"}, 1 + 10 + 1},         // named skips b
      {{Variant(3), Variant(4)}, {"B", "a"}, 4 + 3 + 50},       // named only, any order and case
      {{Variant(1), Variant::Missing()}, {}, 1 + 10 + 50},      // explicit Missing takes the default
  };
  for (const auto& c : cases) {
    const Outcome o = Invoke(s, "Sum", InvokeKind::Method, c.args, c.names);
    ASSERT_TRUE(o.ok) << o.description;
    EXPECT_EQ(o.result.ToLong(), c.expected);
    EXPECT_EQ(o.error, 0);
  }
  EXPECT_EQ(Call(s, "describe").ToString(), u"missing");
  EXPECT_EQ(Call(s, "Describe", 3).ToString(), u"Long");
}

TEST(Dispatch, RefusesBadCallsWithTheirReason) {
  Sample s;
  struct Case {
    std::string_view member;
    InvokeKind kind;
    std::vector<Variant> args;
    std::vector<std::string_view> names;
    int32_t error;
    std::string mention;
  } cases[] = {
      {"Nope", InvokeKind::Method, {}, {}, errNotSupported, "Sample has no member 'Nope'"},
      {"Sum", InvokeKind::Method, {}, {}, errArgNotOptional, "'a' of Sample.Sum"},
      {"Sum", InvokeKind::Method, {Variant(1), Variant(2), Variant(3), Variant(4)}, {}, errWrongArguments,
       "takes at most 3, 4 given"},
      {"Sum", InvokeKind::Method, {Variant(String(u"x"))}, {}, errTypeMismatch,
       "argument 'a' of Sample.Sum is Long, not String"},
      {"Sum", InvokeKind::Method, {Variant(1), Variant(2)}, {"z"}, errNamedArgNotFound, "no argument 'z'"},
      {"Sum", InvokeKind::Method, {Variant(1), Variant(2)}, {"a"}, errWrongArguments, "'a' given twice"},
      {"Sum", InvokeKind::Method, {Variant::Missing()}, {}, errArgNotOptional, "'a'"},
      {"hwnd", InvokeKind::PropertyPut, {Variant(1)}, {}, errReadOnlyProperty, "Sample.hwnd is read-only"},
      {"Secret", InvokeKind::PropertyGet, {}, {}, errWriteOnlyProperty, "write-only"},
      {"Sum", InvokeKind::PropertyPut, {Variant(1)}, {}, errWrongArguments, "is a method"},
      {"Caption", InvokeKind::PropertyPut, {}, {}, errWrongArguments, "no value to assign"},
      {"Picture", InvokeKind::PropertyPutRef, {Variant(5)}, {}, errTypeMismatch, "is StdPicture, not Long"},
      {"Length", InvokeKind::Method, {Variant(String(u"abc"))}, {}, errTypeMismatch, "is Byte()"},
      {"NotYet", InvokeKind::Method, {}, {}, errNotImplemented, "Sample.NotYet is not implemented yet"},
      {"About", InvokeKind::Method, {}, {}, errNotImplemented, "not implemented"},
      {"Fail", InvokeKind::Method, {Variant(1977)}, {}, 1977, "asked to fail"},
      {"Fail", InvokeKind::Method, {Variant(0)}, {}, errInvalidProcedureCall, "plain failure"},
  };
  for (const auto& c : cases) {
    const Outcome o = Invoke(s, c.member, c.kind, c.args, c.names);
    EXPECT_FALSE(o.ok) << c.member;
    EXPECT_EQ(o.error, c.error) << c.member << ": " << o.description;
    EXPECT_NE(o.description.find(c.mention), std::string::npos) << o.description;
  }
}

TEST(Dispatch, PropertiesGetPutAndPutRef) {
  Sample s;
  EXPECT_EQ(Invoke(s, "Caption", InvokeKind::PropertyGet, {}).result.ToString(), u"Sample1");
  EXPECT_TRUE(Invoke(s, "caption", InvokeKind::PropertyPut, {Variant(String(u"Olá"))}).ok);
  EXPECT_EQ(s.get_Caption(), u"Olá");
  // A number assigned to a String property arrives as its text.
  EXPECT_TRUE(Invoke(s, "Caption", InvokeKind::PropertyPut, {Variant(12)}).ok);
  EXPECT_EQ(s.get_Caption(), u"12");
  // A method call on a property reads it.
  EXPECT_EQ(Invoke(s, "hwnd", InvokeKind::Method, {}).result.ToLong(), 42);
  EXPECT_TRUE(Invoke(s, "Secret", InvokeKind::PropertyPut, {Variant(String(u"x"))}).ok);
  EXPECT_EQ(s.secret_, u"x");

  auto pic = std::make_shared<StdPicture>();
  EXPECT_TRUE(Invoke(s, "Picture", InvokeKind::PropertyPutRef, {Variant(ObjectPtr(pic))}).ok);
  EXPECT_EQ(s.get_Picture(), pic);
  // Plain put on an object property stands for putref, and Empty is Nothing.
  EXPECT_TRUE(Invoke(s, "Picture", InvokeKind::PropertyPut, {Variant()}).ok);
  EXPECT_EQ(s.get_Picture(), nullptr);

  // Indexed: index first, value last.
  EXPECT_TRUE(Invoke(s, "Item", InvokeKind::PropertyPut, {Variant(1), Variant(String(u"B"))}).ok);
  EXPECT_EQ(Invoke(s, "Item", InvokeKind::PropertyGet, {Variant(1)}).result.ToString(), u"B");
  EXPECT_TRUE(Invoke(s, "Theme", InvokeKind::PropertyPut, {Variant(int16_t{1})}).ok);
  EXPECT_EQ(s.get_Theme(), 1);

  // By dispatch id: Caption is the value id, so the object's default value.
  Variant r;
  EXPECT_TRUE(s.InvokeId(kDispidValue, InvokeKind::PropertyGet, {}, &r));
  EXPECT_EQ(r.ToString(), u"12");
  EXPECT_FALSE(s.InvokeId(999, InvokeKind::Method, {}, &r));
  EXPECT_EQ(Err().Number(), errNotSupported);
  Variant v(ObjectPtr(std::make_shared<Sample>()));
  EXPECT_EQ(v.ToString(), u"Sample1");
}

TEST(Dispatch, ByReferenceArgumentsComeBackOnlyWhenChanged) {
  Sample s;
  Variant left(String(u"L")), right(String(u"R"));
  std::vector<Variant> args = {Variant::ByRef(&left), Variant::ByRef(&right)};
  Variant r;
  ASSERT_TRUE(s.Invoke("Swap", InvokeKind::Method, args, &r));
  EXPECT_EQ(left.ToString(), u"R");
  EXPECT_EQ(right.ToString(), u"L");

  // Same text: nothing changed, so the caller's Long stays a Long.
  Variant a(5), b(5);
  std::vector<Variant> same = {Variant::ByRef(&a), Variant::ByRef(&b)};
  ASSERT_TRUE(s.Invoke("Swap", InvokeKind::Method, same, &r));
  EXPECT_EQ(a.Type(), vbLong);
  // Passed by value, the caller's values stay.
  Variant c(String(u"c")), d(String(u"d"));
  std::vector<Variant> byValue = {c, d};
  ASSERT_TRUE(s.Invoke("Swap", InvokeKind::Method, byValue, &r));
  EXPECT_EQ(c.ToString(), u"c");
}

TEST(Dispatch, EventsReachTypedHandlersAndLateBoundSinks) {
  Sample s;
  std::vector<std::string> log;
  s.Click.Connect([&] { log.push_back("typed Click"); });
  s.KeyPress.Connect([&](int16_t& key) {
    log.push_back("typed KeyPress " + std::to_string(key));
    key = static_cast<int16_t>(key + 1);
  });
  const uint32_t cookie = s.Events().Advise([&](const MemberInfo& e, std::span<Variant> args) {
    std::string line = "sink " + std::string(e.name) + " #" + std::to_string(e.dispid);
    for (Variant& a : args) line += " " + ToUtf8(a.Deref().ToString());
    log.push_back(line);
    if (e.name == "KeyPress") args[0].Assign(Variant(int16_t{13}));
  });

  s.Click();
  int16_t key = 64;
  s.KeyPress(key);
  EXPECT_EQ(key, 13);  // the sink had the last word
  s.MouseMove(1, 2.5f);
  const std::vector<std::string> expected = {"typed Click",      "sink Click #1",
                                             "typed KeyPress 64", "sink KeyPress #2 65",
                                             "sink MouseMove #3 1 2,5"};
  EXPECT_EQ(log, expected);

  // A value the argument's type cannot hold is ignored; an unadvised sink is
  // not called again.
  log.clear();
  s.Events().Unadvise(cookie);
  s.Events().Advise([](const MemberInfo&, std::span<Variant> args) {
    if (!args.empty()) args[0].Assign(Variant(String(u"not a number")));
  });
  key = 7;
  s.KeyPress(key);
  EXPECT_EQ(key, 8);
  EXPECT_EQ(log.size(), 1u);
}

TEST(Dispatch, EventsAndBindingsMustMatchTheTables) {
  Sample s;
  EXPECT_THROW((Event<int16_t>(s, "Nope")), std::logic_error);
  EXPECT_THROW((Event<int16_t, int16_t>(s, "KeyPress")), std::logic_error);
  EXPECT_THROW(Binder<Sample>(s.Info()).Method("Missing", &Sample::Swap), std::logic_error);
  EXPECT_THROW(Binder<Sample>(s.Info()).Method("Sum", &Sample::Swap), std::logic_error);
  EXPECT_THROW(Binder<Sample>(s.Info()).Get("Secret", &Sample::get_Caption), std::logic_error);
  EXPECT_THROW(Binder<Sample>(s.Info()).Put("hwnd", &Sample::put_Caption), std::logic_error);
  EXPECT_TRUE(s.Implements("caption", InvokeKind::PropertyPut));
  EXPECT_FALSE(s.Implements("NotYet", InvokeKind::Method));
}

TEST(Registry, MakesObjectsByNameAndStandsInForUnbuiltClasses) {
  Registry& reg = Registry::Instance();
  reg.Register(*SampleLibrary().FindClass("Sample"), [] { return std::make_shared<Sample>(); });
  for (const char* name : {"Sample", "sample", "Vantor2014.Sample"}) {
    DispatchPtr d = reg.Create(name);
    ASSERT_NE(d, nullptr) << name;
    EXPECT_EQ(d->ClassName(), u"Sample");
    EXPECT_EQ(Call(*d, "Sum", 1).ToLong(), 61);
  }
  EXPECT_TRUE(reg.IsImplemented("Vantor2014.Sample"));
  reg.Unregister("Sample");
  EXPECT_FALSE(reg.IsImplemented("Sample"));

  Err().Clear();
  EXPECT_EQ(reg.Create("NoSuchClass"), nullptr);
  EXPECT_EQ(Err().Number(), errCannotCreate);
  EXPECT_NE(ToUtf8(Err().Description()).find("NoSuchClass"), std::string::npos);

  // A class of the library with no body yet: made, but every member says so.
  DispatchPtr page = reg.Create("Vantor2014.ppgTab");
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(page->Info().kind, ClassKind::PropertyPage);
  EXPECT_THROW(reg.Register("NoSuchClass", [] { return nullptr; }), std::logic_error);
}

}  // namespace
}  // namespace vantor::server
