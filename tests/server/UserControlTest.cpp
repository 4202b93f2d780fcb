#include "server/UserControl.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Gdi.h"
#include "platform/HeadlessPresenter.h"
#include "server/TableBuilder.h"
#include "server/TypeLibrary.h"

namespace vantor::server {
namespace {

using platform::HeadlessPresenter;
using platform::MouseButton;

const ClassInfo& ProbeInfo() {
  static const TypeLibrary lib = [] {
    TableBuilder b;
    b.Class("Probe", ClassKind::Control).Method("About");
    return TypeLibrary(std::move(b.classes));
  }();
  return *lib.FindClass("Probe");
}

// Writes down every container event it receives.
class Probe : public UserControl {
 public:
  Probe() : UserControl(ProbeInfo()) {}
  std::vector<std::string> log;
  bool throwInResize = false;

 protected:
  void Initialize() override { log.push_back("Initialize"); }
  void InitProperties() override { log.push_back("InitProperties"); }
  void ReadProperties(const PropertyBag& bag) override {
    log.push_back("ReadProperties " + ToUtf8(bag.ReadProperty(u"Caption", String(u"-")).ToString()));
  }
  void WriteProperties(PropertyBag& bag) override {
    log.push_back("WriteProperties");
    bag.WriteProperty(u"Caption", String(u"saved"), String(u"-"));
  }
  void Resize() override {
    log.push_back("Resize " + std::to_string(ScaleWidth()) + "x" + std::to_string(ScaleHeight()));
    if (throwInResize) {
      Err().Set(errOverflow);
      throw std::runtime_error("layout overflow");
    }
  }
  void Show() override { log.push_back("Show"); }
  void Paint() override { log.push_back("Paint"); }
  void Terminate() override { log.push_back("Terminate"); }
  void GotFocus() override { log.push_back("GotFocus"); }
  void LostFocus() override { log.push_back("LostFocus"); }
  void KeyDown(int16_t& k, int16_t& s) override { log.push_back(Key("KeyDown", k, s)); }
  void KeyUp(int16_t& k, int16_t& s) override { log.push_back(Key("KeyUp", k, s)); }
  void KeyPress(int16_t& a) override { log.push_back("KeyPress " + std::to_string(a)); }
  void MouseDown(int16_t b, int16_t s, float x, float y) override { log.push_back(Pt("MouseDown", b, s, x, y)); }
  void MouseUp(int16_t b, int16_t s, float x, float y) override { log.push_back(Pt("MouseUp", b, s, x, y)); }
  void Click() override { log.push_back("Click"); }
  void DblClick() override { log.push_back("DblClick"); }
  void AmbientChanged(const String& name) override { log.push_back("AmbientChanged " + ToUtf8(name)); }
  void AccessKeyPress(int16_t k) override { log.push_back("AccessKeyPress " + std::to_string(k)); }

 private:
  static std::string Key(const char* what, int16_t k, int16_t s) {
    return std::string(what) + " " + std::to_string(k) + " " + std::to_string(s);
  }
  static std::string Pt(const char* what, int16_t b, int16_t s, float x, float y) {
    return std::string(what) + " " + std::to_string(b) + " " + std::to_string(s) + " " +
           std::to_string(static_cast<int>(x)) + "," + std::to_string(static_cast<int>(y));
  }
};

// The least a container does: it takes Tab and Alt+O, and keeps the rest.
class StubSite : public ControlSite {
 public:
  class StubExtender : public Extender {
   public:
    float Left() const override { return 0; }
    float Top() const override { return 0; }
    float Width() const override { return 0; }
    float Height() const override { return 0; }
    void SetLeft(float) override {}
    void SetTop(float) override {}
    void SetWidth(float) override {}
    void SetHeight(float) override {}
    void Move(float, float, float, float) override {}
    bool Visible() const override { return true; }
    void SetVisible(bool) override {}
    bool Enabled() const override { return true; }
    void SetEnabled(bool) override {}
    String Name() const override { return u"Probe1"; }
    ObjectPtr Parent() const override { return nullptr; }
  } extender;
  std::vector<std::string> log;

  AmbientProperties Ambient() const override {
    AmbientProperties a;
    a.UserMode = false;
    a.DisplayName = u"Probe1";
    return a;
  }
  Extender& GetExtender() override { return extender; }
  void PropertyChanged(StringView name) override { log.push_back("PropertyChanged " + ToUtf8(name)); }
  std::vector<ObjectPtr> ContainedControls() const override { return {}; }
  bool TabKey(bool backwards) override {
    log.push_back(backwards ? "Tab back" : "Tab");
    return true;
  }
  bool AccessKey(char16_t key) override {
    log.push_back("AccessKey " + std::to_string(static_cast<int>(key)));
    return key == u'o';
  }
  void FocusChanged(UserControl&, bool got) override { log.push_back(got ? "focus" : "blur"); }
};

class UserControlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    WNDCLASSW wc{};
    wc.lpfnWndProc = DefWindowProcW;
    wc.lpszClassName = u"ProbeHost";
    RegisterClassW(&wc);
    host_ = CreateWindowExW(0, u"ProbeHost", u"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 300,
                            200, nullptr, nullptr, nullptr, nullptr);
    probe_ = std::make_shared<Probe>();
    RECT r{10, 10, 110, 40};
    ASSERT_TRUE(probe_->Create(&site_, host_, r));
    probe_->InitNew();
    ShowWindow(probe_->hWnd(), SW_SHOW);
    screen_.Pump();
  }
  void TearDown() override {
    probe_->Close();
    DestroyWindow(host_);
  }
  // Screen coordinates of a point of the control.
  POINT At(int x, int y) {
    POINT p{x, y};
    ClientToScreen(probe_->hWnd(), &p);
    return p;
  }
  std::vector<std::string> Since(size_t mark) {
    return {probe_->log.begin() + static_cast<long>(mark), probe_->log.end()};
  }

  HeadlessPresenter screen_;
  StubSite site_;
  HWND host_ = nullptr;
  std::shared_ptr<Probe> probe_;
};

TEST_F(UserControlTest, LifecycleEventsInOrder) {
  // The first Resize follows the properties, so that layout sees them.
  ASSERT_GE(probe_->log.size(), 3u);
  EXPECT_EQ(probe_->log[0], "Initialize");
  EXPECT_EQ(probe_->log[1], "InitProperties");
  EXPECT_EQ(probe_->log[2], "Resize 100x30");
  probe_->InitNew();
  PropertyBag bag;
  probe_->Save(bag);
  probe_->Load(bag);
  probe_->NotifyShow();
  probe_->NotifyShow();  // once only
  probe_->NotifyAmbientChanged(u"UserMode");
  MoveWindow(probe_->hWnd(), 10, 10, 60, 20, TRUE);
  const size_t mark = probe_->log.size() - 6;
  const std::vector<std::string> expected = {"InitProperties", "WriteProperties", "ReadProperties saved",
                                             "Show", "AmbientChanged UserMode", "Resize 60x20"};
  EXPECT_EQ(Since(mark), expected);
  EXPECT_EQ(probe_->ScaleWidth(), 60);
  EXPECT_FALSE(probe_->Ambient().UserMode);
  probe_->PropertyChanged(u"Caption");
  EXPECT_EQ(site_.log.back(), "PropertyChanged Caption");
  probe_->Close();
  EXPECT_EQ(probe_->log.back(), "Terminate");
  EXPECT_FALSE(probe_->IsCreated());
}

TEST_F(UserControlTest, MouseGesturesBecomeContainerEvents) {
  POINT p = At(20, 5);
  size_t mark = probe_->log.size();
  screen_.Click(p.x, p.y);
  std::vector<std::string> expected = {"focus", "GotFocus", "MouseDown 1 0 20,5", "MouseUp 1 0 20,5",
                                       "Click"};
  auto got = Since(mark);
  got.erase(std::remove(got.begin(), got.end(), "Paint"), got.end());
  // Focus arrives through the site first; the probe logs GotFocus itself.
  EXPECT_EQ(got, std::vector<std::string>(expected.begin() + 1, expected.end()));

  // Right button: a Click too, which is how controls learn of it.
  mark = probe_->log.size();
  screen_.Click(p.x, p.y, MouseButton::Right);
  expected = {"MouseDown 2 0 20,5", "MouseUp 2 0 20,5", "Click"};
  EXPECT_EQ(Since(mark), expected);

  // Pressed inside, released outside: captured, so MouseUp comes with the
  // outside point and no Click.
  mark = probe_->log.size();
  POINT q = At(150, 5);
  screen_.Drag(p.x, p.y, q.x, q.y);
  got = Since(mark);
  ASSERT_GE(got.size(), 2u);
  EXPECT_EQ(got.front(), "MouseDown 1 0 20,5");
  EXPECT_EQ(got.back(), "MouseUp 1 0 150,5");

  // Double click: down, up, Click, DblClick, up.
  mark = probe_->log.size();
  screen_.DoubleClick(p.x, p.y);
  expected = {"MouseDown 1 0 20,5", "MouseUp 1 0 20,5", "Click", "DblClick", "MouseUp 1 0 20,5"};
  EXPECT_EQ(Since(mark), expected);
}

TEST_F(UserControlTest, KeysGoToTheControlButTabAndAccessKeysToTheContainer) {
  SetFocus(probe_->hWnd());
  screen_.Pump();
  size_t mark = probe_->log.size();
  screen_.Key('A');
  std::vector<std::string> expected = {"KeyDown 65 0", "KeyPress 97", "KeyUp 65 0"};
  EXPECT_EQ(Since(mark), expected);

  mark = probe_->log.size();
  screen_.KeyChord({VK_SHIFT, 'B'});
  expected = {"KeyDown 16 1", "KeyDown 66 1", "KeyPress 66", "KeyUp 66 1", "KeyUp 16 0"};
  EXPECT_EQ(Since(mark), expected);

  // Tab: the container's, and its character never reaches KeyPress.
  mark = probe_->log.size();
  screen_.Key(VK_TAB);
  EXPECT_EQ(Since(mark), std::vector<std::string>{"KeyUp 9 0"});
  EXPECT_EQ(site_.log.back(), "Tab");
  screen_.KeyChord({VK_SHIFT, VK_TAB});
  EXPECT_EQ(site_.log.back(), "Tab back");

  // Alt+O is taken by the container; Alt+Space is not, and the control sees
  // it with Shift 4.
  screen_.KeyChord({VK_MENU, 'O'});
  EXPECT_EQ(site_.log.back(), "AccessKey 111");
  mark = probe_->log.size();
  screen_.KeyChord({VK_MENU, VK_SPACE});
  const auto got = Since(mark);
  EXPECT_NE(std::find(got.begin(), got.end(), "KeyDown 32 4"), got.end());
  probe_->NotifyAccessKey(111);
  EXPECT_EQ(probe_->log.back(), "AccessKeyPress 111");
}

TEST_F(UserControlTest, TheWindowShowsTheRetainedPicture) {
  RECT r{0, 0, 100, 30};
  HBRUSH red = CreateSolidBrush(RGB(200, 0, 0));
  FillRect(probe_->hDC(), &r, red);
  DeleteObject(red);
  const int before = probe_->PaintCount();
  probe_->Refresh();
  screen_.Pump();
  EXPECT_GT(probe_->PaintCount(), before);
  const platform::Surface pixels = screen_.WindowPixels(probe_->hWnd());
  ASSERT_EQ(pixels.width, 100);
  const uint32_t px = pixels.At(50, 15);
  EXPECT_EQ((px >> 16) & 0xFF, 200u);
  EXPECT_EQ((px >> 8) & 0xFF, 0u);

  // Growing keeps what was drawn; the new part is the button face.
  MoveWindow(probe_->hWnd(), 10, 10, 120, 30, TRUE);
  EXPECT_EQ(GetPixel(probe_->hDC(), 50, 15), RGB(200, 0, 0));
  EXPECT_EQ(GetPixel(probe_->hDC(), 110, 15), GetSysColor(COLOR_BTNFACE));
}

TEST_F(UserControlTest, AFailingHandlerEndsAloneAndLeavesNoError) {
  probe_->throwInResize = true;
  MoveWindow(probe_->hWnd(), 10, 10, 80, 30, TRUE);
  EXPECT_EQ(probe_->log.back(), "Resize 80x30");
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_EQ(probe_->ScaleWidth(), 80);
}

TEST_F(UserControlTest, SurfacePropertiesReachTheWindow) {
  probe_->SetSurfaceEnabled(false);
  EXPECT_FALSE(probe_->SurfaceEnabled());
  EXPECT_FALSE(IsWindowEnabled(probe_->hWnd()));
  probe_->SetSurfaceEnabled(true);
  EXPECT_TRUE(probe_->SurfaceEnabled());

  probe_->SetAccessKeys(u"o");
  EXPECT_EQ(probe_->AccessKeys(), u"o");

  POINT p = At(20, 5);
  probe_->SetMousePointer(vbSizeWE);
  screen_.MoveTo(p.x, p.y);
  EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_SIZEWE));
  probe_->SetMousePointer(vbDefault);
  screen_.MoveTo(p.x + 1, p.y);
  EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
}

}  // namespace
}  // namespace vantor::server
