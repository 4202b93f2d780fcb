// The label as a host meets it: its persisted keys, its setters, AutoSize
// against the platform's own text measures, the plain caption, its events
// under a user's mouse and keyboard in the reference form, and pictures of
// a few captions compared with their goldens.
#include "frame/USLabel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/Form.h"
#include "platform/Desktop.h"
#include "platform/Gdi.h"
#include "platform/HeadlessPresenter.h"
#include "platform/Text.h"
#include "runtime/Error.h"
#include "server/PropertyBag.h"
#include "server/StdPicture.h"
#include "tests/frame/ControlGolden.h"

namespace vantor::frame {
namespace {

// A container of the test's own: it records what the label reports and
// moves the label's window when the label sizes itself.
class RecordingSite : public server::ControlSite, public server::Extender {
 public:
  server::AmbientProperties ambient;
  std::vector<std::string> changes;
  server::UserControl* control = nullptr;
  float left = 0, top = 0, width = 1200, height = 375;

  server::AmbientProperties Ambient() const override { return ambient; }
  server::Extender& GetExtender() override { return *this; }
  void PropertyChanged(StringView name) override { changes.push_back(ToUtf8(name)); }
  std::vector<ObjectPtr> ContainedControls() const override { return {}; }
  bool TabKey(bool) override { return false; }
  bool AccessKey(char16_t) override { return false; }
  void FocusChanged(server::UserControl&, bool) override {}

  float Left() const override { return left; }
  float Top() const override { return top; }
  float Width() const override { return width; }
  float Height() const override { return height; }
  void SetLeft(float v) override { Move(v, top, width, height); }
  void SetTop(float v) override { Move(left, v, width, height); }
  void SetWidth(float v) override { Move(left, top, v, height); }
  void SetHeight(float v) override { Move(left, top, width, v); }
  void Move(float l, float t, float w, float h) override {
    left = l, top = t, width = w, height = h;
    if (control && control->hWnd()) {
      MoveWindow(control->hWnd(), Px(l), Px(t), Px(w), Px(h), TRUE);
    }
  }
  bool Visible() const override { return true; }
  void SetVisible(bool) override {}
  bool Enabled() const override { return true; }
  void SetEnabled(bool) override {}
  String Name() const override { return u"Rotulo"; }
  ObjectPtr Parent() const override { return nullptr; }

  static int Px(float twips) { return static_cast<int>(std::lround(twips / 15.0f)); }
};

LRESULT CALLBACK ParentProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  return DefWindowProcW(hwnd, msg, wparam, lparam);
}

Variant Get(server::Dispatch& object, std::string_view name) {
  Variant v;
  EXPECT_TRUE(object.Invoke(name, server::InvokeKind::PropertyGet, {}, &v)) << name;
  return v;
}

bool Put(server::Dispatch& object, std::string_view name, Variant value) {
  const server::MemberInfo* m = object.Info().dispatch.Find(name);
  const server::InvokeKind kind =
      m && m->CanPutRef() ? server::InvokeKind::PropertyPutRef : server::InvokeKind::PropertyPut;
  Variant args[] = {std::move(value)};
  return object.Invoke(name, kind, std::span<Variant>(args, 1));
}

// Every read-write property of two labels, compared as the bag compares.
int ExpectSameProperties(server::Dispatch& a, server::Dispatch& b) {
  int compared = 0;
  for (const server::MemberInfo& m : a.Info().dispatch.members) {
    if (m.kind != server::MemberKind::Property) continue;
    const Variant va = Get(a, m.name), vb = Get(b, m.name);
    EXPECT_TRUE(server::PropertyBag::SameValue(va, vb))
        << m.name << ": " << ToUtf8(va.ToString()) << " / " << ToUtf8(vb.ToString());
    ++compared;
  }
  return compared;
}

// The platform's own measures of a text in a font, for comparison.
struct Extent {
  int width = 0;
  int lineHeight = 0;
};

Extent Measured(const server::StdFont& font, StringView text) {
  HDC dc = CreateCompatibleDC(nullptr);
  HFONT f = font.CreateHFont();
  HGDIOBJ old = SelectObject(dc, f);
  SIZE size{};
  GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
  TEXTMETRICW tm{};
  GetTextMetricsW(dc, &tm);
  SelectObject(dc, old);
  DeleteObject(f);
  DeleteDC(dc);
  return {static_cast<int>(size.cx), static_cast<int>(tm.tmHeight)};
}

class LabelTest : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::ResetDesktop();
    Err().Clear();
    USLabel::Register();
    USLabel::SetUrlOpener(nullptr);
  }
  void TearDown() override {
    USLabel::SetUrlOpener(nullptr);
    if (label_) label_->Close();
    label_.reset();
    if (parent_) DestroyWindow(parent_);
    platform::ResetDesktop();
  }

  // A new label in the recording site, 80 x 25 pixels, its window shown.
  USLabel& Sited() {
    WNDCLASSW wc{};
    wc.lpfnWndProc = ParentProc;
    wc.lpszClassName = u"LabelTestParent";
    RegisterClassW(&wc);
    parent_ = CreateWindowExW(0, u"LabelTestParent", u"", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300,
                              nullptr, nullptr, nullptr, nullptr);
    site_.ambient.Font = std::make_shared<server::StdFont>();
    site_.ambient.UserMode = true;
    label_ = std::make_shared<USLabel>();
    site_.control = label_.get();
    EXPECT_TRUE(label_->Create(&site_, parent_, RECT{0, 0, 80, 25}));
    label_->InitNew();
    ShowWindow(label_->hWnd(), SW_SHOW);
    label_->NotifyShow();
    site_.changes.clear();
    return *label_;
  }

  // A label placed on the form in pixels, keeping that size: a new label
  // sizes itself to its empty caption, so AutoSize goes first.
  USLabel& InForm(host::Form& form, bool userMode, int x, int y, int w, int h) {
    form.SetUserMode(userMode);
    auto* label = dynamic_cast<USLabel*>(form.Add("USLabel", u"Rotulo"));
    EXPECT_NE(label, nullptr);
    label->put_AutoSize(false);
    form.Move(u"Rotulo", static_cast<float>(x) * 15, static_cast<float>(y) * 15,
              static_cast<float>(w) * 15, static_cast<float>(h) * 15);
    return *label;
  }

  platform::HeadlessPresenter screen_{640, 480};
  RecordingSite site_;
  std::shared_ptr<USLabel> label_;
  HWND parent_ = nullptr;
};

// ---- persistence

TEST_F(LabelTest, ANewLabelHasTheDefaults) {
  USLabel label;
  label.InitNew();
  EXPECT_TRUE(label.get_AutoSize());
  EXPECT_TRUE(label.get_WordWrap());
  EXPECT_EQ(label.get_BackColor(), 0x8000000Fu);
  EXPECT_EQ(label.get_BackStyle(), Transparent);
  EXPECT_EQ(label.get_ForeColor(), 0x80000008u);
  EXPECT_EQ(label.get_Caption(), u"");
  EXPECT_EQ(label.get_NoHTMLCaption(), u"");
  EXPECT_EQ(label.get_MousePointer(), 0);
  EXPECT_EQ(label.get_MouseIcon(), nullptr);
  EXPECT_EQ(*label.get_Font(), server::StdFont());
  // A new label saves nothing: every value is its key's default.
  server::PropertyBag bag;
  label.Save(bag);
  EXPECT_EQ(bag.Count(), 0u) << ToUtf8(bag.ToText());
}

TEST_F(LabelTest, ABagWithoutKeysGivesANewLabel) {
  USLabel made, loaded;
  made.InitNew();
  loaded.Load(server::PropertyBag());
  EXPECT_EQ(ExpectSameProperties(made, loaded), 14);
  EXPECT_EQ(made.get_NoHTMLCaption(), loaded.get_NoHTMLCaption());
}

TEST_F(LabelTest, EveryKeyGoesAndComesBackThroughTheFormText) {
  USLabel label;
  label.InitNew();
  label.put_Caption(u"<b>Total:</b> R$ 10,00");
  label.put_AutoSize(false);
  label.put_WordWrap(false);
  label.put_BackColor(0x00FFEEDD);
  label.put_BackStyle(static_cast<ENUM_BACK_STYLE>(kBackStyleOpaque));
  label.put_ForeColor(0x00800000);
  label.put_MousePointer(server::vbIbeam);
  const uint32_t pixel = 0xFF102030;
  label.putref_MouseIcon(
      server::StdPicture::FromPixels(1, 1, std::span<const uint32_t>(&pixel, 1)));
  label.put_FontBold(true);
  label.put_FontSize(12);

  server::PropertyBag bag;
  label.Save(bag);
  std::vector<std::string> keys;
  for (const String& k : bag.Names()) keys.push_back(ToUtf8(k));
  std::sort(keys.begin(), keys.end());
  EXPECT_EQ(keys, (std::vector<std::string>{"Autosize", "BackColor", "BackStyle", "Caption", "Font",
                                            "ForeColor", "MouseIcon", "MousePointer",
                                            "NoHTMLCaption", "WordWrap"}));
  EXPECT_EQ(bag.ReadProperty(u"NoHTMLCaption").ToString(), u"Total: R$ 10,00");

  const auto text = server::PropertyBag::FromText(bag.ToText());
  ASSERT_TRUE(text.has_value());
  USLabel loaded;
  loaded.Load(*text);
  EXPECT_EQ(ExpectSameProperties(label, loaded), 14);
  EXPECT_EQ(loaded.get_NoHTMLCaption(), u"Total: R$ 10,00");
  EXPECT_EQ(loaded.get_FontSize(), 12.0f);
  ASSERT_NE(loaded.get_MouseIcon(), nullptr);
}

// ---- setters

TEST_F(LabelTest, SettersReportAChangeOnlyWhenThereIsOne) {
  USLabel& label = Sited();
  auto otherFont = std::make_shared<server::StdFont>();
  otherFont->put_Name(u"Arial");
  const uint32_t pixel = 0xFF000000;
  const struct {
    const char* name;
    Variant same, changed;
  } cases[] = {
      {"Caption", Variant(u""), Variant(u"Olá")},
      {"AutoSize", Variant(true), Variant(false)},
      {"WordWrap", Variant(true), Variant(false)},
      {"BackColor", Variant(int32_t(0x8000000F)), Variant(int32_t{0xFFFFFF})},
      {"BackStyle", Variant(int32_t{0}), Variant(int32_t{1})},
      {"ForeColor", Variant(int32_t(0x80000008)), Variant(int32_t{0xFF})},
      {"MousePointer", Variant(int16_t{0}), Variant(int16_t{3})},
      {"FontBold", Variant(false), Variant(true)},
      {"FontItalic", Variant(false), Variant(true)},
      {"FontUnderline", Variant(false), Variant(true)},
      {"FontStrikeThru", Variant(false), Variant(true)},
      {"FontSize", Variant(8.25f), Variant(10.0f)},
      {"MouseIcon", Variant(ObjectPtr(nullptr)),
       Variant(
           ObjectPtr(server::StdPicture::FromPixels(1, 1, std::span<const uint32_t>(&pixel, 1))))},
  };
  const auto expectOneChange = [&](const char* name, Variant same, Variant changed) {
    SCOPED_TRACE(name);
    site_.changes.clear();
    EXPECT_TRUE(Put(label, name, same));
    EXPECT_TRUE(site_.changes.empty());
    EXPECT_TRUE(Put(label, name, changed));
    EXPECT_TRUE(Put(label, name, changed));
    EXPECT_EQ(site_.changes, std::vector<std::string>{name});
  };
  for (const auto& c : cases) expectOneChange(c.name, c.same, c.changed);
  // A font equal to the label's own is no change; another one is.
  expectOneChange("Font", Variant(ObjectPtr(label.get_Font()->Clone())),
                  Variant(ObjectPtr(otherFont)));
  // The font handed in stays the caller's.
  EXPECT_NE(label.get_Font(), otherFont);
  EXPECT_EQ(label.get_Font()->get_Name(), u"Arial");
}

TEST_F(LabelTest, ACaptionChangeRaisesChange) {
  USLabel& label = Sited();
  int changes = 0;
  label.ChangeEvent.Connect([&] { ++changes; });
  label.put_Caption(u"a");
  label.put_Caption(u"a");
  label.put_Caption(u"b");
  EXPECT_EQ(changes, 2);
}

TEST_F(LabelTest, NoHTMLCaptionIsTheTextAsPrinted) {
  USLabel& label = Sited();
  label.put_AutoSize(false);
  label.put_WordWrap(false);
  const struct {
    const char16_t* caption;
    const char16_t* plain;
  } cases[] = {
      {u"<b>Olá</b>, <i>mundo</i><br>fim", u"Olá, mundo\r\nfim"},
      {u"a<x>b <c=255,0,0>c</c>", u"a<x>b c"},
      {u"<br>depois", u"\r\ndepois"},
      {u"   ", u""},
      {u"", u""},
  };
  for (const auto& c : cases) {
    label.put_Caption(c.caption);
    EXPECT_EQ(ToUtf8(label.get_NoHTMLCaption()), ToUtf8(c.plain)) << ToUtf8(c.caption);
  }
}

// ---- AutoSize

TEST_F(LabelTest, AutoSizeTakesTheSizeOfTheText) {
  USLabel& label = Sited();
  const server::StdFont font = *label.get_Font();
  const Extent q = Measured(font, u"Q");
  // An empty caption measures as "Q".
  label.Refresh();
  EXPECT_EQ(label.get_CaptionWidth(), static_cast<float>(q.width));
  EXPECT_EQ(site_.width, static_cast<float>(q.width * 15));
  EXPECT_EQ(site_.height, static_cast<float>(q.lineHeight * 15));

  label.put_WordWrap(false);
  label.put_Caption(u"Um texto sem quebra nenhuma");
  const Extent one = Measured(font, u"Um texto sem quebra nenhuma");
  EXPECT_EQ(label.get_CaptionWidth(), static_cast<float>(one.width));
  EXPECT_EQ(site_.width, static_cast<float>(one.width * 15));
  EXPECT_EQ(site_.height, static_cast<float>(one.lineHeight * 15));
  RECT r;
  GetClientRect(label.hWnd(), &r);
  EXPECT_EQ(r.right, one.width);
  EXPECT_EQ(r.bottom, one.lineHeight);

  // Lines: the widest one, and one line height each.
  label.put_Caption(u"curta<br>uma linha mais longa<br>fim");
  EXPECT_EQ(label.get_CaptionWidth(),
            static_cast<float>(Measured(font, u"uma linha mais longa").width));
  EXPECT_EQ(site_.height, static_cast<float>(3 * one.lineHeight * 15));

  // Bold runs are measured bold.
  server::StdFont bold = font;
  bold.put_Bold(true);
  label.put_Caption(u"a <b>negrito</b>");
  EXPECT_EQ(label.get_CaptionWidth(),
            static_cast<float>(Measured(font, u"a ").width + Measured(bold, u"negrito").width));
}

TEST_F(LabelTest, WrappedTextGrowsDownAndWithoutAutoSizeTheSizeStays) {
  USLabel& label = Sited();
  site_.Move(0, 0, 60 * 15, 375);
  label.put_Caption(u"palavra palavra palavra");
  // Each word on its own line, within the width it had.
  EXPECT_EQ(label.Segments().size(), 3u);
  const Extent word = Measured(*label.get_Font(), u"palavra");
  EXPECT_EQ(site_.height, static_cast<float>(3 * word.lineHeight * 15));
  EXPECT_EQ(site_.width, static_cast<float>(word.width * 15));

  label.put_AutoSize(false);
  site_.Move(0, 0, 1200, 375);
  label.put_Caption(u"outro texto qualquer, maior que o rótulo de oitenta pixels");
  EXPECT_EQ(site_.width, 1200.0f);
  EXPECT_EQ(site_.height, 375.0f);
  EXPECT_GT(label.Segments().size(), 1u);
}

// ---- OpenUrl

TEST_F(LabelTest, OpenUrlHandsTheAddressToTheProgramsOpener) {
  USLabel& label = Sited();
  // Without an opener there is nothing to open with, and no error.
  Variant args[] = {Variant(int32_t{0}), Variant(u"https://exemplo.com.br")};
  EXPECT_TRUE(label.Invoke("OpenUrl", server::InvokeKind::Method, std::span<Variant>(args, 2)));
  EXPECT_EQ(Err().Number(), 0);

  std::vector<std::string> calls;
  USLabel::SetUrlOpener([&](int32_t hwnd, const String& verb, const String& url, int32_t show) {
    calls.push_back(std::to_string(hwnd) + " " + ToUtf8(verb) + " " + ToUtf8(url) + " " +
                    std::to_string(show));
  });
  EXPECT_TRUE(label.Invoke("OpenUrl", server::InvokeKind::Method, std::span<Variant>(args, 2)));
  EXPECT_EQ(calls, std::vector<std::string>{"0 OPEN https://exemplo.com.br 5"});
}

// ---- events through real input

class LabelEvents : public LabelTest {
 protected:
  uint32_t Listen(host::Form& form) {
    return form.Subscribe(
        [this](const String&, const server::MemberInfo& event, std::span<Variant> args) {
          std::string line(event.name);
          for (const Variant& a : args) line += " " + ToUtf8(a.Deref().ToString());
          heard_.push_back(line);
        });
  }
  std::vector<std::string> Heard(const std::vector<std::string>& names) const {
    std::vector<std::string> out;
    for (const std::string& h : heard_) {
      const std::string name = h.substr(0, h.find(' '));
      if (std::find(names.begin(), names.end(), name) != names.end()) out.push_back(h);
    }
    return out;
  }
  static POINT Inside(const USLabel& label, int dx, int dy) {
    RECT r;
    GetWindowRect(label.hWnd(), &r);
    return {r.left + dx, r.top + dy};
  }
  std::vector<std::string> heard_;
};

TEST_F(LabelEvents, HoverClicksAndKeysReachTheProgram) {
  host::Form form(320, 240);
  USLabel& label = InForm(form, true, 40, 40, 120, 30);
  label.put_Caption(u"Clique aqui");
  form.Show();
  screen_.MoveTo(300, 230);
  screen_.Pump();
  Listen(form);

  const POINT p = Inside(label, 10, 5);
  screen_.MoveTo(p.x, p.y);
  screen_.MoveTo(p.x + 1, p.y);
  screen_.MoveTo(300, 230);
  EXPECT_EQ(Heard({"MouseEnter", "MouseExit", "MouseMove"}),
            (std::vector<std::string>{"MouseEnter", "MouseMove 0 0 10 5", "MouseMove 0 0 11 5",
                                      "MouseExit"}));

  heard_.clear();
  screen_.Click(p.x, p.y);
  EXPECT_EQ(Heard({"MouseDown", "MouseUp", "Click", "DblClick"}),
            (std::vector<std::string>{"MouseDown 1 0 10 5", "MouseUp 1 0 10 5", "Click"}));
  heard_.clear();
  screen_.DoubleClick(p.x, p.y);
  EXPECT_EQ(Heard({"MouseDown", "MouseUp", "Click", "DblClick"}),
            (std::vector<std::string>{"MouseDown 1 0 10 5", "MouseUp 1 0 10 5", "Click", "DblClick",
                                      "MouseUp 1 0 10 5"}));
  heard_.clear();
  screen_.Type(u"a");
  EXPECT_EQ(Heard({"KeyDown", "KeyPress", "KeyUp"}),
            (std::vector<std::string>{"KeyDown 65 0", "KeyPress 97", "KeyUp 65 0"}));
}

TEST_F(LabelEvents, ADesignerGetsNoHover) {
  host::Form form(320, 240);
  USLabel& label = InForm(form, false, 40, 40, 120, 30);
  int enter = 0, moves = 0;
  label.MouseEnterEvent.Connect([&] { ++enter; });
  label.MouseMoveEvent.Connect([&](int16_t&, int16_t&, float&, float&) { ++moves; });
  form.Show();
  screen_.MoveTo(300, 230);
  const POINT p = Inside(label, 10, 5);
  screen_.MoveTo(p.x, p.y);
  screen_.MoveTo(p.x + 2, p.y + 2);
  screen_.MoveTo(300, 230);
  EXPECT_EQ(enter, 0);
  EXPECT_EQ(moves, 0);
  // The same label at run time hovers.
  form.SetUserMode(true);
  screen_.Pump();
  screen_.MoveTo(p.x, p.y);
  EXPECT_EQ(enter, 1);
  EXPECT_GE(moves, 1);
}

// ---- pictures

struct GoldenCase {
  const char* name;
  const char16_t* caption;
  int width, height;
  bool wordWrap;
  int32_t backStyle;
};

TEST_F(LabelTest, CaptionsAsDrawn) {
  const GoldenCase cases[] = {
      {"label_styles", u"Normal <b>negrito</b>, <i>itálico</i>, <u>sublinhado</u>, <s>riscado</s>",
       300, 20, false, 0},
      {"label_colours",
       u"<c=255,0,0>vermelho</c> <c=0,128,0>verde</c> <c=0,0,255>azul</c> <c=&&H80>escuro</c> "
       u"padrão",
       300, 20, false, 0},
      {"label_breaks", u"Primeira linha<br>Segunda <b>linha</b><br><br>Quarta, depois de uma vazia",
       220, 64, false, 0},
      {"label_wrap", u"Um texto longo que <b>quebra</b> em várias linhas dentro do rótulo", 110, 80,
       true, 0},
      {"label_opaque", u"Fundo <b>opaco</b><br>em BackColor", 120, 36, false, kBackStyleOpaque},
      {"label_transparent", u"Fundo <b>transparente</b><br>mostra o formulário", 120, 36, false, 0},
  };
  for (const GoldenCase& c : cases) {
    SCOPED_TRACE(c.name);
    platform::ResetDesktop();
    host::Form form(c.width + 20, c.height + 20);
    form.SetBackColor(0x00E8D8C8);  // a form colour a transparent label must show
    USLabel& label = InForm(form, true, 10, 10, c.width, c.height);
    label.put_WordWrap(c.wordWrap);
    label.put_BackStyle(static_cast<ENUM_BACK_STYLE>(c.backStyle));
    label.put_BackColor(0x00FFFFFF);
    label.put_ForeColor(c.backStyle == kBackStyleOpaque ? 0x00800000 : 0x80000008);
    label.put_Caption(c.caption);
    form.Show();
    screen_.Pump();
    EXPECT_TRUE(test::MatchesGolden(screen_.WindowPixels(label.hWnd()), c.name));
  }
}

}  // namespace
}  // namespace vantor::frame
