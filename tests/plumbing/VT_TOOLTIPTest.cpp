// The host's tool tip, called late bound as a host calls it, over a control
// that it too reaches only late bound.
#include "plumbing/VT_TOOLTIP.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "platform/Desktop.h"
#include "platform/HeadlessPresenter.h"
#include "runtime/Error.h"
#include "server/Registry.h"
#include "server/TableBuilder.h"
#include "server/TypeLibrary.h"

namespace vantor::plumbing {
namespace {

// Controls as a host's extender shows them: Enabled, SetFocus and hwnd; and an
// object with none of them.
const server::TypeLibrary& HostLibrary() {
  static const server::TypeLibrary lib = [] {
    server::TableBuilder b;
    b.Class("HostControl", server::ClassKind::Control)
        .Property("Enabled", server::td::Bool)
        .Method("SetFocus")
        .ReadOnly("hwnd", server::td::Long);
    b.Class("Plain", server::ClassKind::Service).Method("Nothing");
    return server::TypeLibrary(std::move(b.classes));
  }();
  return lib;
}

class HostControl : public server::Dispatch {
 public:
  HostControl(HWND hwnd, bool enabled)
      : Dispatch(*HostLibrary().FindClass("HostControl")), hwnd_(hwnd), enabled_(enabled) {}

  bool get_Enabled() const { return enabled_; }
  void put_Enabled(bool v) { enabled_ = v; }
  void SetFocus() {
    ++focusCalls;
    ::SetFocus(hwnd_);
  }
  int32_t get_hwnd() const { return static_cast<int32_t>(reinterpret_cast<uintptr_t>(hwnd_)); }

  int focusCalls = 0;

 protected:
  const server::Bindings* Bound() const override {
    static const server::Bindings bindings =
        server::Binder<HostControl>(Info())
            .Property("Enabled", &HostControl::get_Enabled, &HostControl::put_Enabled)
            .Method("SetFocus", &HostControl::SetFocus)
            .Get("hwnd", &HostControl::get_hwnd)
            .Done();
    return &bindings;
  }

 private:
  HWND hwnd_;
  bool enabled_;
};

class Plain : public server::Dispatch {
 public:
  Plain() : Dispatch(*HostLibrary().FindClass("Plain")) {}
};

HWND Handle(int32_t value) {
  return reinterpret_cast<HWND>(static_cast<uintptr_t>(static_cast<uint32_t>(value)));
}

class VtTooltip : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::ResetDesktop();
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = DefWindowProcW;
    wc.lpszClassName = u"HostField";
    ASSERT_NE(RegisterClassExW(&wc), 0);
    form = CreateWindowExW(0, u"HostField", u"", WS_POPUP | WS_VISIBLE, 50, 50, 300, 200, nullptr,
                           nullptr, nullptr, nullptr);
    field = CreateWindowExW(0, u"HostField", u"", WS_CHILD | WS_VISIBLE, 50, 50, 120, 24, form,
                            nullptr, nullptr, nullptr);
    VT_TOOLTIP::Register();
    tip = server::Registry::Instance().Create("Vantor2014.VT_TOOLTIP");
    ASSERT_NE(tip, nullptr);
    Err().Clear();
  }
  void TearDown() override {
    tip.reset();
    platform::ResetDesktop();
  }

  // ShowToolTip with the optional arguments left out when not given.
  bool Show(const ObjectPtr& control, int32_t tipo, std::vector<Variant> optional = {}) {
    std::vector<Variant> args{Variant(String(u"Cadastro")), Variant(String(u"Grave antes de sair")),
                              Variant(control), Variant(tipo)};
    args.insert(args.end(), optional.begin(), optional.end());
    return tip->Invoke("ShowToolTip", server::InvokeKind::Method, args);
  }
  HWND TipWindow() {
    Variant v;
    EXPECT_TRUE(tip->Invoke("ToolhWnd", server::InvokeKind::PropertyGet, {}, &v));
    return Handle(v.ToLong());
  }
  TOOLINFOA ToolOf(HWND owner) {
    TOOLINFOA ti{};
    ti.cbSize = sizeof ti;
    ti.hwnd = owner;
    ti.uId = reinterpret_cast<UINT_PTR>(owner);
    last = SendMessageA(TipWindow(), TTM_GETTOOLINFOA, 0, reinterpret_cast<LPARAM>(&ti));
    return ti;
  }

  platform::HeadlessPresenter screen{640, 480};
  HWND form = nullptr;
  HWND field = nullptr;
  server::DispatchPtr tip;
  LRESULT last = 0;
};

TEST_F(VtTooltip, AnEnabledControlGetsTheFocusAndTheTipWithTheDefaults) {
  auto control = std::make_shared<HostControl>(field, true);
  ASSERT_TRUE(Show(control, TTIconInfo));
  EXPECT_EQ(control->focusCalls, 1);
  EXPECT_EQ(GetFocus(), field);
  const HWND t = TipWindow();
  ASSERT_TRUE(IsWindow(t));
  const TOOLINFOA ti = ToolOf(field);
  EXPECT_TRUE(last);
  EXPECT_EQ(ti.uFlags, 17u);
  EXPECT_EQ(SendMessageW(t, TTM_GETTIPBKCOLOR, 0, 0), 14811135);
  EXPECT_EQ(SendMessageW(t, TTM_GETTIPTEXTCOLOR, 0, 0), 0);
  EXPECT_EQ(SendMessageW(t, TTM_GETDELAYTIME, TTDT_AUTOPOP, 0), 5000);
  EXPECT_EQ(SendMessageW(t, TTM_GETDELAYTIME, TTDT_INITIAL, 0), 100);
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(t, GWL_STYLE)) & TTS_BALLOON, 0u);
  EXPECT_EQ(Err().Number(), 0);
}

struct ShowCase {
  bool enabled;
  std::vector<Variant> optional;
  int focusCalls;
  UINT flags;
  COLORREF back, fore;
};

TEST_F(VtTooltip, ArgumentsGoToTheTipAndADisabledControlKeepsItsFocus) {
  const ShowCase cases[] = {
      {false, {}, 0, 17, 14811135, 0},
      {true, {Variant(true)}, 1, 19, 14811135, 0},
      {false,
       {Variant(false), Variant(int32_t{0xFFFF00}), Variant(int32_t{0x0000FF})},
       0,
       17,
       0xFFFF00,
       0x0000FF},
  };
  for (const auto& c : cases) {
    auto control = std::make_shared<HostControl>(field, c.enabled);
    ASSERT_TRUE(Show(control, TTIconWarning, c.optional));
    EXPECT_EQ(control->focusCalls, c.focusCalls);
    const TOOLINFOA ti = ToolOf(field);
    EXPECT_EQ(ti.uFlags, c.flags);
    EXPECT_EQ(static_cast<COLORREF>(SendMessageW(TipWindow(), TTM_GETTIPBKCOLOR, 0, 0)), c.back);
    EXPECT_EQ(static_cast<COLORREF>(SendMessageW(TipWindow(), TTM_GETTIPTEXTCOLOR, 0, 0)), c.fore);
    WCHAR title[32] = {};
    TTGETTITLE get{sizeof get, 0, 32, title};
    SendMessageW(TipWindow(), TTM_GETTITLE, 0, reinterpret_cast<LPARAM>(&get));
    EXPECT_EQ(get.uTitleBitmap, 2u);
    EXPECT_EQ(String(title), u"Cadastro");
  }
}

TEST_F(VtTooltip, ShowingAgainReplacesTheTipAndTipoNoneTakesItAway) {
  auto control = std::make_shared<HostControl>(field, true);
  ASSERT_TRUE(Show(control, TTIconError));
  const HWND first = TipWindow();
  ASSERT_TRUE(Show(control, TTIconInfo));
  EXPECT_FALSE(IsWindow(first));
  EXPECT_TRUE(IsWindow(TipWindow()));
  ASSERT_TRUE(Show(control, TTNoIcon));
  EXPECT_EQ(TipWindow(), nullptr);
}

TEST_F(VtTooltip, AnObjectThatIsNoControlStillGetsItsCallAnswered) {
  ASSERT_TRUE(Show(std::make_shared<Plain>(), TTIconInfo));
  EXPECT_EQ(Err().Number(), 0);  // the failed reads were passed over
  const TOOLINFOA ti = ToolOf(nullptr);
  EXPECT_TRUE(last);
  EXPECT_EQ(ti.uFlags, 17u);
  ASSERT_TRUE(Show(nullptr, TTIconInfo));
  EXPECT_TRUE(IsWindow(TipWindow()));
}

TEST_F(VtTooltip, DestroyToolTipAndTheObjectTakeTheWindowAway) {
  auto control = std::make_shared<HostControl>(field, true);
  ASSERT_TRUE(Show(control, TTIconInfo));
  const HWND t = TipWindow();
  ASSERT_TRUE(tip->Invoke("DestroyToolTip", server::InvokeKind::Method, {}));
  EXPECT_FALSE(IsWindow(t));
  EXPECT_EQ(TipWindow(), nullptr);
  ASSERT_TRUE(Show(control, TTIconInfo));
  const HWND again = TipWindow();
  tip.reset();
  EXPECT_FALSE(IsWindow(again));
}

TEST_F(VtTooltip, TheTipComesOverTheControl) {
  auto control = std::make_shared<HostControl>(field, true);
  ASSERT_TRUE(Show(control, TTIconInfo, {Variant(true)}));
  screen.MoveTo(150, 110);  // the field spans (100, 100) to (220, 124) on the screen
  screen.Wait(100);
  const HWND t = TipWindow();
  ASSERT_TRUE(IsWindowVisible(t));
  RECT r{};
  GetWindowRect(t, &r);
  EXPECT_NEAR((r.left + r.right) / 2, 160, 1);
  EXPECT_EQ(r.top, 126);
  screen.Wait(5000);
  EXPECT_FALSE(IsWindowVisible(t));
}

}  // namespace
}  // namespace vantor::plumbing
