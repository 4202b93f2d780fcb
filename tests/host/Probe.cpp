#include "Probe.h"

#include "platform/Desktop.h"
#include "runtime/Error.h"
#include "server/PropertyBag.h"
#include "server/Registry.h"
#include "server/TableBuilder.h"

namespace vantor::host::test {

const server::TypeLibrary& ProbeLibrary() {
  static const server::TypeLibrary lib = [] {
    namespace td = server::td;
    server::TableBuilder b;
    b.Class("HostProbe", server::ClassKind::Control)
        .Property("Caption", td::Str)
        .Property("Value", td::Long)
        .Property("Ratio", td::Double)
        .Property("Checked", td::Bool)
        .Property("BackColor", td::Color)
        .Property("Font", td::Font)
        .Property("Data", td::Bytes)
        .Property("Amount", td::Cur)
        .Property("Stamp", td::Date)
        .Property("Style", td::Int)
        .ReadOnly("UserModeSeen", td::Bool)
        .Event("Click")
        .Event("KeyPress", {server::Ref("KeyAscii", td::Int)});
    b.Class("HostService", server::ClassKind::Service).Method("Ping");
    b.Class("HostImpostor", server::ClassKind::Control).Property("Caption", td::Str);
    return server::TypeLibrary(std::move(b.classes));
  }();
  return lib;
}

void RegisterProbes() {
  server::Registry& reg = server::Registry::Instance();
  const server::TypeLibrary& lib = ProbeLibrary();
  reg.Register(*lib.FindClass("HostProbe"), [] { return std::make_shared<Probe>(); });
  const server::ClassInfo& service = *lib.FindClass("HostService");
  reg.Register(service, [&service] { return std::make_shared<server::Dispatch>(service); });
  const server::ClassInfo& impostor = *lib.FindClass("HostImpostor");
  reg.Register(impostor, [&impostor] { return std::make_shared<server::Dispatch>(impostor); });
}

std::vector<std::string>& Journal() {
  static std::vector<std::string> journal;
  return journal;
}

std::vector<std::string> JournalOf(const std::string& name) {
  std::vector<std::string> out;
  const std::string prefix = name + ": ";
  for (const std::string& e : Journal()) {
    if (e.rfind(prefix, 0) == 0) out.push_back(e.substr(prefix.size()));
  }
  return out;
}

Probe::Probe() : server::UserControl(*ProbeLibrary().FindClass("HostProbe")) {}

const server::Bindings* Probe::Bound() const {
  static const server::Bindings bindings =
      server::Binder<Probe>(Info())
          .Property("Caption", &Probe::get_Caption, &Probe::put_Caption)
          .Property("Value", &Probe::get_Value, &Probe::put_Value)
          .Property("Ratio", &Probe::get_Ratio, &Probe::put_Ratio)
          .Property("Checked", &Probe::get_Checked, &Probe::put_Checked)
          .Property("BackColor", &Probe::get_BackColor, &Probe::put_BackColor)
          .Property("Font", &Probe::get_Font, &Probe::putref_Font)
          .Property("Data", &Probe::get_Data, &Probe::put_Data)
          .Property("Amount", &Probe::get_Amount, &Probe::put_Amount)
          .Property("Stamp", &Probe::get_Stamp, &Probe::put_Stamp)
          .Property("Style", &Probe::get_Style, &Probe::put_Style)
          .Get("UserModeSeen", &Probe::get_UserModeSeen)
          .Done();
  return &bindings;
}

void Probe::Log(const std::string& what) {
  const server::Extender* e = GetExtender();
  Journal().push_back((e ? ToUtf8(e->Name()) : std::string("?")) + ": " + what);
}

void Probe::Changed(const char16_t* name) {
  PropertyChanged(name);
  Refresh();
}

void Probe::ApplyAccessKeys() {
  // "&&" is a literal ampersand; the character after a single one is the key.
  String keys;
  for (size_t i = 0; i + 1 < caption_.size(); ++i) {
    if (caption_[i] != u'&') continue;
    if (caption_[i + 1] != u'&') {
      keys = caption_.substr(i + 1, 1);
      break;
    }
    ++i;
  }
  SetAccessKeys(keys);
}

void Probe::put_Caption(String v) {
  if (v == caption_) return;
  caption_ = std::move(v);
  ApplyAccessKeys();
  Changed(u"Caption");
}
void Probe::put_Value(int32_t v) {
  if (v == value_) return;
  value_ = v;
  Changed(u"Value");
}
void Probe::put_Ratio(double v) {
  if (v == ratio_) return;
  ratio_ = v;
  Changed(u"Ratio");
}
void Probe::put_Checked(bool v) {
  if (v == checked_) return;
  checked_ = v;
  Changed(u"Checked");
}
void Probe::put_BackColor(uint32_t v) {
  if (v == backColor_) return;
  backColor_ = v;
  Changed(u"BackColor");
}
void Probe::putref_Font(std::shared_ptr<server::StdFont> v) {
  font_ = std::move(v);
  Changed(u"Font");
}
void Probe::put_Data(std::vector<uint8_t> v) {
  if (v == data_) return;
  data_ = std::move(v);
  Changed(u"Data");
}
void Probe::put_Amount(Currency v) {
  if (v == amount_) return;
  amount_ = v;
  Changed(u"Amount");
}
void Probe::put_Stamp(Date v) {
  if (v == stamp_) return;
  stamp_ = v;
  Changed(u"Stamp");
}
void Probe::put_Style(int16_t v) {
  if (v == style_) return;
  style_ = v;
  Changed(u"Style");
}

void Probe::InitProperties() {
  Log("InitProperties");
  const server::AmbientProperties a = Ambient();
  font_ = a.Font;
  caption_ = a.DisplayName;
  ApplyAccessKeys();
}

void Probe::ReadProperties(const server::PropertyBag& bag) {
  Log("ReadProperties");
  const server::AmbientProperties a = Ambient();
  userModeSeen_ = a.UserMode;
  const Variant font = bag.ReadProperty(u"Font", Variant(ObjectPtr(a.Font)));
  font_ = font.ObjectRef() ? std::dynamic_pointer_cast<server::StdFont>(*font.ObjectRef()) : a.Font;
  caption_ = bag.ReadProperty(u"Caption", Variant(a.DisplayName)).ToString();
  value_ = bag.ReadProperty(u"Value", Variant(int32_t{0})).ToLong();
  ratio_ = bag.ReadProperty(u"Ratio", Variant(0.5)).ToDouble();
  checked_ = bag.ReadProperty(u"Checked", Variant(false)).ToBoolean();
  backColor_ =
      static_cast<uint32_t>(bag.ReadProperty(u"BackColor", Variant(int32_t(0x8000000F))).ToLong());
  const Variant data = bag.ReadProperty(u"Data", Variant(std::vector<uint8_t>{}));
  data_ = data.Array() ? data.Array()->Bytes() : std::vector<uint8_t>{};
  amount_ = bag.ReadProperty(u"Amount", Variant(Currency())).ToCurrency();
  stamp_ = bag.ReadProperty(u"Stamp", Variant(Date())).ToDate();
  style_ = bag.ReadProperty(u"Style", Variant(int16_t{1})).ToInteger();
  ApplyAccessKeys();
}

void Probe::WriteProperties(server::PropertyBag& bag) {
  Log("WriteProperties");
  const server::AmbientProperties a = Ambient();
  bag.WriteProperty(u"Font", Variant(ObjectPtr(font_)), Variant(ObjectPtr(a.Font)));
  bag.WriteProperty(u"Caption", Variant(caption_), Variant(a.DisplayName));
  bag.WriteProperty(u"Value", Variant(value_), Variant(int32_t{0}));
  bag.WriteProperty(u"Ratio", Variant(ratio_), Variant(0.5));
  bag.WriteProperty(u"Checked", Variant(checked_), Variant(false));
  bag.WriteProperty(u"BackColor", Variant(static_cast<int32_t>(backColor_)),
                    Variant(int32_t(0x8000000F)));
  bag.WriteProperty(u"Data", Variant(data_), Variant(std::vector<uint8_t>{}));
  bag.WriteProperty(u"Amount", Variant(amount_), Variant(Currency()));
  bag.WriteProperty(u"Stamp", Variant(stamp_), Variant(Date()));
  bag.WriteProperty(u"Style", Variant(style_), Variant(int16_t{1}));
}

void Probe::Resize() {
  Log("Resize " + std::to_string(ScaleWidth()) + "x" + std::to_string(ScaleHeight()));
}

void Probe::KeyPress(int16_t& keyAscii) {
  Log("KeyPress " + std::to_string(keyAscii));
  KeyPressEvent(keyAscii);
  lastKey_ = keyAscii;
}

void Probe::Click() {
  Log("Click");
  ClickEvent();
}

void Probe::AmbientChanged(const String& name) {
  Log("AmbientChanged " + ToUtf8(name));
}

void Probe::AccessKeyPress(int16_t keyAscii) {
  Log("AccessKeyPress " + std::to_string(keyAscii));
  ClickEvent();
}

int ExpectSameProperties(server::Dispatch& a, server::Dispatch& b) {
  int compared = 0;
  for (const server::MemberInfo& m : a.Info().dispatch.members) {
    if (m.kind != server::MemberKind::Property) continue;
    Variant va, vb;
    EXPECT_TRUE(a.Invoke(m.name, server::InvokeKind::PropertyGet, {}, &va)) << m.name;
    EXPECT_TRUE(b.Invoke(m.name, server::InvokeKind::PropertyGet, {}, &vb)) << m.name;
    EXPECT_TRUE(server::PropertyBag::SameValue(va, vb))
        << m.name << ": " << ToUtf8(va.TypeName()) << " " << ToUtf8(va.ToString()) << " / "
        << ToUtf8(vb.TypeName()) << " " << ToUtf8(vb.ToString());
    ++compared;
  }
  return compared;
}

void HostTest::SetUp() {
  platform::ResetDesktop();
  RegisterProbes();
  Journal().clear();
  Err().Clear();
}

void HostTest::TearDown() {
  platform::ResetDesktop();
  Journal().clear();
}

Probe& HostTest::ProbeOf(Form& form, const char16_t* name) {
  server::UserControl* c = form.Control(name);
  EXPECT_NE(c, nullptr) << ToUtf8(name);
  return dynamic_cast<Probe&>(*c);
}

}  // namespace vantor::host::test
