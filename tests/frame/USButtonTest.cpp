// USButton in the reference form, under a user's mouse and keyboard on the
// headless screen: its events, its repaint gate (paints are counted), its
// persistence and themes, and its pictures against goldens.
#include "frame/USButton.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/ThemePalette.h"
#include "host/Form.h"
#include "host/LibraryClasses.h"
#include "imaging/c32bppDIB.h"
#include "platform/Desktop.h"
#include "platform/HeadlessPresenter.h"
#include "platform/User.h"
#include "runtime/Error.h"
#include "server/PropertyBag.h"
#include "tests/frame/ControlGolden.h"

namespace vantor::frame {
namespace {

// A 16 x 16 picture: a blue disc with a transparent outside, as PNG bytes.
std::vector<uint8_t> DiscPng() {
  std::vector<uint8_t> px(16 * 16 * 4, 0);
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x) {
      const double dx = x - 7.5, dy = y - 7.5;
      if (dx * dx + dy * dy > 56) continue;
      uint8_t* p = &px[(static_cast<size_t>(y) * 16 + x) * 4];
      p[0] = 0xC0, p[1] = 0x60, p[2] = 0x20, p[3] = 0xFF;  // blue, green, red, alpha
    }
  imaging::c32bppDIB dib;
  EXPECT_TRUE(dib.SetDIBbits(px, 16, 16, true, false, true));
  std::vector<uint8_t> png;
  EXPECT_TRUE(dib.SaveToStream_PNG(png));
  return png;
}

class USButtonTest : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::ResetDesktop();
    host::RegisterLibraryClasses();
    Err().Clear();
  }
  void TearDown() override { platform::ResetDesktop(); }

  // A button of 120 x 32 pixels at (10, 10) on a shown form in run mode.
  USButton& Make(host::Form& form, const char16_t* name = u"Ok", bool userMode = true) {
    form.SetUserMode(userMode);
    auto* c = form.Add("USButton", name, 150, 150, 1800, 480);
    EXPECT_NE(c, nullptr);
    form.Show();
    screen_.Pump();
    return dynamic_cast<USButton&>(*c);
  }
  POINT Centre(const USButton& b) {
    RECT r;
    GetWindowRect(b.hWnd(), &r);
    return {(r.left + r.right) / 2, (r.top + r.bottom) / 2};
  }
  // Every event of the button, as "Name" or "Name arg arg".
  void Listen(USButton& b) {
    b.ClickEvent.Connect([this] { heard_.push_back("Click"); });
    b.DblClickEvent.Connect([this] { heard_.push_back("DblClick"); });
    b.MouseEnterEvent.Connect([this] { heard_.push_back("MouseEnter"); });
    b.MouseExitEvent.Connect([this] { heard_.push_back("MouseExit"); });
    b.MouseDownEvent.Connect([this](int16_t& button, int16_t&, float&, float&) {
      heard_.push_back("MouseDown " + std::to_string(button));
    });
    b.MouseUpEvent.Connect([this](int16_t& button, int16_t&, float&, float&) {
      heard_.push_back("MouseUp " + std::to_string(button));
    });
    b.KeyDownEvent.Connect([this](int16_t& key, int16_t& shift) {
      heard_.push_back("KeyDown " + std::to_string(key) + " " + std::to_string(shift));
    });
    b.KeyUpEvent.Connect([this](int16_t& key, int16_t&) {
      heard_.push_back("KeyUp " + std::to_string(key));
    });
  }
  std::vector<std::string> Heard(const std::string& prefix = "") {
    std::vector<std::string> out;
    for (const auto& h : heard_)
      if (h.rfind(prefix, 0) == 0) out.push_back(h);
    return out;
  }

  platform::HeadlessPresenter screen_{640, 480};
  std::vector<std::string> heard_;
};

using Lines = std::vector<std::string>;

TEST_F(USButtonTest, HoverPressAndReleaseWithTheMouse) {
  host::Form form;
  USButton& b = Make(form);
  Listen(b);
  const POINT c = Centre(b);
  screen_.MoveTo(400, 400);
  screen_.MoveTo(c.x, c.y);
  EXPECT_EQ(b.PaintState(), State_Hot);
  screen_.Press();
  EXPECT_EQ(b.PaintState(), State_Down);
  // Dragged off, the button shows its rest state (hot: it has the focus);
  // dragged back on, the press keeps it as it is painted until the release.
  screen_.MoveTo(400, 400);
  EXPECT_EQ(b.PaintState(), State_Hot);
  const int offAndOn = b.Paints();
  screen_.MoveTo(c.x, c.y);
  EXPECT_EQ(b.Paints(), offAndOn);
  screen_.Release();
  screen_.MoveTo(400, 400);
  const Lines mouse = Heard("Mouse");
  ASSERT_GE(mouse.size(), 5u);
  EXPECT_EQ(Lines(mouse.begin(), mouse.begin() + 3), (Lines{"MouseEnter", "MouseDown 1", "MouseExit"}));
  EXPECT_EQ(Lines(mouse.end() - 2, mouse.end()), (Lines{"MouseUp 1", "MouseExit"}));
  EXPECT_EQ(Heard("Click"), Lines{"Click"});
  EXPECT_FALSE(b.get_Value());
}

TEST_F(USButtonTest, ReleasedOutsideThereIsNoClick) {
  host::Form form;
  USButton& b = Make(form);
  Listen(b);
  const POINT c = Centre(b);
  screen_.Drag(c.x, c.y, 400, 400);
  EXPECT_TRUE(Heard("Click").empty());
  EXPECT_EQ(b.PaintState(), State_Hot);  // focused, at rest
}

TEST_F(USButtonTest, TheRightButtonRaisesMouseDownOnlyAndPaintsNothing) {
  host::Form form;
  USButton& b = Make(form);
  Listen(b);
  const POINT c = Centre(b);
  screen_.MoveTo(c.x, c.y);
  const int before = b.Paints();
  screen_.Click(c.x, c.y, platform::MouseButton::Right);
  EXPECT_EQ(Heard("Mouse"), (Lines{"MouseEnter", "MouseDown 2"}));
  EXPECT_TRUE(Heard("Click").empty());
  EXPECT_EQ(b.Paints(), before);
}

TEST_F(USButtonTest, DoubleClickCountsOnce) {
  host::Form form;
  USButton& b = Make(form);
  Listen(b);
  const POINT c = Centre(b);
  screen_.DoubleClick(c.x, c.y);
  EXPECT_EQ(Heard("Click"), Lines{"Click"});
  EXPECT_EQ(Heard("DblClick"), Lines{"DblClick"});
}

TEST_F(USButtonTest, SpaceClicksAltSpaceDoesNot) {
  host::Form form;
  USButton& b = Make(form);
  Listen(b);
  ASSERT_TRUE(form.SetFocusTo(u"Ok"));
  screen_.KeyDown(VK_SPACE);
  EXPECT_EQ(b.PaintState(), State_Down);
  // The mouse wanders meanwhile: still one click at the release.
  screen_.MoveTo(400, 400);
  screen_.KeyUp(VK_SPACE);
  EXPECT_EQ(Heard("Click"), Lines{"Click"});
  heard_.clear();
  screen_.KeyChord({VK_MENU, VK_SPACE});
  EXPECT_TRUE(Heard("Click").empty());
  EXPECT_NE(b.PaintState(), State_Down);
  // The key events reach the program after the button's own handling.
  EXPECT_FALSE(Heard("KeyDown 32").empty());
}

TEST_F(USButtonTest, AccessKeyClicks) {
  host::Form form;
  USButton& b = Make(form);
  b.put_Caption(u"&Salvar");
  Listen(b);
  screen_.KeyChord({VK_MENU, 'S'});
  EXPECT_EQ(Heard("Click"), Lines{"Click"});
}

TEST_F(USButtonTest, LockedShowsThePressButRaisesNoClick) {
  host::Form form;
  USButton& b = Make(form);
  b.put_Locked(true);
  Listen(b);
  const POINT c = Centre(b);
  screen_.MoveTo(c.x, c.y);
  screen_.Press();
  EXPECT_EQ(b.PaintState(), State_Down);
  screen_.Release();
  EXPECT_TRUE(Heard("Click").empty());
}

TEST_F(USButtonTest, ValueFromCode) {
  host::Form form;
  USButton& b = Make(form);
  Listen(b);
  // A plain button: Value True is a click, and reads False afterwards.
  b.put_Value(true);
  EXPECT_EQ(Heard("Click"), Lines{"Click"});
  EXPECT_FALSE(b.get_Value());
  // A toggle keeps it, and a click turns it back.
  heard_.clear();
  b.put_CheckBoxMode(true);
  b.put_Value(true);
  EXPECT_TRUE(b.get_Value());
  EXPECT_TRUE(Heard("Click").empty());
  const POINT c = Centre(b);
  screen_.Click(c.x, c.y);
  EXPECT_FALSE(b.get_Value());
  screen_.Click(c.x, c.y);
  EXPECT_TRUE(b.get_Value());
  EXPECT_EQ(Heard("Click"), (Lines{"Click", "Click"}));
  // In toggle mode Enter and Escape as access keys do nothing.
  const bool before = b.get_Value();
  b.put_Caption(u"&Ok");
  screen_.KeyChord({VK_MENU, 'O'});
  EXPECT_NE(b.get_Value(), before);
}

TEST_F(USButtonTest, AtDesignTimeNoHoverAndValueGoesBack) {
  host::Form form;
  USButton& b = Make(form, u"Ok", false);
  Listen(b);
  const POINT c = Centre(b);
  screen_.MoveTo(400, 400);
  screen_.MoveTo(c.x, c.y);
  EXPECT_TRUE(Heard("MouseEnter").empty());
  b.put_Value(true);
  EXPECT_FALSE(b.get_Value());
  EXPECT_TRUE(Heard("Click").empty());
}

// The gate is measured: paints are counted, not assumed.
TEST_F(USButtonTest, RepaintGate) {
  host::Form form;
  USButton& b = Make(form);
  ASSERT_NE(form.Add("USButton", u"Outro", 150, 1500, 1800, 480), nullptr);
  ASSERT_TRUE(form.SetFocusTo(u"Outro"));
  const POINT c = Centre(b);
  screen_.MoveTo(400, 400);
  screen_.MoveTo(c.x, c.y);
  EXPECT_EQ(b.PaintState(), State_Hot);
  const int settled = b.Paints();
  for (int i = 0; i < 10000; ++i) screen_.MoveTo(c.x - 20 + i % 40, c.y - 5 + i % 10);
  EXPECT_EQ(b.Paints(), settled) << "mouse moves inside the button painted";
  // Equal requests paint nothing...
  b.put_GradientColors(Two_Colors);  // already so
  b.put_Caption(b.get_Caption());
  EXPECT_EQ(b.Paints(), settled);
  // ...and the focus alone, arriving in the same hot state, paints once.
  ASSERT_TRUE(form.SetFocusTo(u"Ok"));
  EXPECT_EQ(b.PaintState(), State_Hot);
  EXPECT_EQ(b.Paints(), settled + 1);
}

TEST_F(USButtonTest, SettersReportOnlyChanges) {
  host::Form form;
  USButton& b = Make(form);
  const int paints = b.Paints();
  b.put_Caption(b.get_Caption());
  b.put_Theme(b.get_Theme());
  b.SetColor(Role_BorderColor, b.Color(Role_BorderColor));
  EXPECT_EQ(b.Paints(), paints);
  // PictureOpacity never moves from what was read.
  b.put_PictureOpacity(40);
  EXPECT_EQ(b.get_PictureOpacity(), 100);
  // PictureSize derives the two sides; a side set by hand makes it custom.
  b.put_PictureSize(Picture_32x32);
  EXPECT_EQ(b.get_PictureSizeX(), 32);
  EXPECT_EQ(b.get_PictureSizeY(), 32);
  b.put_PictureSizeX(20);
  EXPECT_EQ(b.get_PictureSize(), Picture_Custom);
}

TEST_F(USButtonTest, FontPartsAndStatePictures) {
  host::Form form;
  USButton& b = Make(form);
  const int paints = b.Paints();
  b.put_FontBold(true);
  EXPECT_TRUE(b.get_Font()->get_Bold());
  EXPECT_EQ(b.Paints(), paints + 1);
  b.put_FontBold(true);  // no change, no paint
  b.put_FontSize(b.get_FontSize());
  EXPECT_EQ(b.Paints(), paints + 1);
  b.put_FontSize(12);
  EXPECT_FLOAT_EQ(b.get_FontSize(), 12.0f);
  // A state picture given before any picture becomes the picture; one of
  // another size makes the size custom.
  std::vector<uint32_t> px16(16 * 16, 0xFF2060C0u), px24(24 * 24, 0xFF20C060u);
  auto small = server::StdPicture::FromPixels(16, 16, px16);
  auto large = server::StdPicture::FromPixels(24, 24, px24);
  b.putref_PictureOn(small);
  EXPECT_EQ(b.get_Picture(), small);
  EXPECT_EQ(b.get_PictureOn(), nullptr);
  b.putref_PictureOver(large);
  EXPECT_EQ(b.get_PictureOver(), large);
  EXPECT_EQ(b.get_PictureSize(), Picture_Custom);
  b.putref_PictureOver(nullptr);
  EXPECT_EQ(b.get_PictureOver(), nullptr);
}

TEST_F(USButtonTest, ThemesWriteColoursOnce) {
  host::Form form;
  USButton& b = Make(form);
  b.put_Theme(Office_Blue);
  EXPECT_EQ(b.get_ButtonShape(), Cut_None);
  EXPECT_EQ(b.get_GradientColors(), Four_Colors);
  for (int32_t role = 0; role < 24; ++role)
    EXPECT_EQ(b.Color(role), ThemePalette::Color(Office_Blue, role)) << role;
  // A colour set by hand survives setting the same theme again.
  b.SetColor(Role_BorderColor, 0x123456);
  b.put_Theme(Office_Blue);
  EXPECT_EQ(b.Color(Role_BorderColor), 0x123456u);
  b.put_Theme(Windows_8_Black);
  EXPECT_EQ(b.get_ButtonShape(), Cut_Sides);
  EXPECT_EQ(b.Color(Role_GradientColor1), 0u);
  EXPECT_EQ(b.Color(Role_ForeColor), 0xFFFFFFu);
  EXPECT_EQ(b.Color(Role_ForeColorDisabled), 0x80000011u);
  b.put_Theme(7);
  for (int32_t role = 0; role < 24; ++role) EXPECT_EQ(b.Color(role), 0u) << role;
}

TEST_F(USButtonTest, MinimumSizeIsFifteenPixels) {
  host::Form form;
  USButton& b = Make(form);
  form.Move(u"Ok", 150, 150, 60, 60);  // 4 x 4 pixels asked for
  RECT r;
  GetClientRect(b.hWnd(), &r);
  EXPECT_EQ(r.right, 15);
  EXPECT_EQ(r.bottom, 15);
}

// A button saved and loaded again, and one read from a bag without keys,
// paint exactly as the ones they stand for.
TEST_F(USButtonTest, PersistedButtonsPaintTheSame) {
  host::Form form;
  USButton& fresh = Make(form, u"A");
  fresh.put_Caption(u"Salvar");
  USButton& saved = dynamic_cast<USButton&>(*form.Add("USButton", u"B", 150, 900, 1800, 480));
  saved.put_Caption(u"Salvar");
  saved.put_Theme(Office_Silver);
  saved.SetColor(Role_ForeColor, 0x0000C0);
  saved.put_PictureAlignment(Picture_TopOfCaption);
  ASSERT_TRUE(saved.LoadImage_FromArray(DiscPng(), 0, 0, 0));
  screen_.Pump();

  server::PropertyBag bag;
  fresh.Save(bag);
  server::PropertyBag savedBag;
  saved.Save(savedBag);

  host::Form other;
  other.SetUserMode(true);
  auto* loaded = dynamic_cast<USButton*>(other.Add("USButton", u"A", 150, 150, 1800, 480));
  ASSERT_NE(loaded, nullptr);
  loaded->Load(bag);
  auto* loaded2 = dynamic_cast<USButton*>(other.Add("USButton", u"B", 150, 900, 1800, 480));
  loaded2->Load(savedBag);
  other.Show();
  screen_.Pump();
  fresh.ShowState(State_Normal, false);
  loaded->ShowState(State_Normal, false);
  saved.ShowState(State_Normal, false);
  loaded2->ShowState(State_Normal, false);
  screen_.Pump();

  auto same = [&](HWND a, HWND b) {
    const platform::Surface pa = screen_.WindowPixels(a), pb = screen_.WindowPixels(b);
    if (pa.width != pb.width || pa.height != pb.height || pa.Empty()) return false;
    for (int y = 0; y < pa.height; ++y)
      for (int x = 0; x < pa.width; ++x)
        if ((pa.At(x, y) & 0xFFFFFF) != (pb.At(x, y) & 0xFFFFFF)) return false;
    return true;
  };
  EXPECT_TRUE(same(fresh.hWnd(), loaded->hWnd()));
  EXPECT_TRUE(same(saved.hWnd(), loaded2->hWnd()));
  EXPECT_EQ(loaded2->get_Picture32Dib(), saved.get_Picture32Dib());
  EXPECT_EQ(loaded2->Color(Role_ForeColor), 0x0000C0u);
  // Both differ from a plain button: the comparison can fail.
  EXPECT_FALSE(same(fresh.hWnd(), saved.hWnd()));

  // A bag without a single key gives a new button's looks.
  server::PropertyBag empty;
  auto* blank = dynamic_cast<USButton*>(other.Add("USButton", u"C", 150, 1800, 1800, 480));
  blank->Load(empty);
  auto* placed = dynamic_cast<USButton*>(other.Add("USButton", u"D", 2400, 1800, 1800, 480));
  blank->put_Caption(u"X");
  placed->put_Caption(u"X");
  blank->ShowState(State_Normal, false);
  placed->ShowState(State_Normal, false);
  screen_.Pump();
  EXPECT_TRUE(same(blank->hWnd(), placed->hWnd()));
}

TEST_F(USButtonTest, PicturesLoadOrLeaveTheBytesAlone) {
  host::Form form;
  USButton& b = Make(form);
  EXPECT_TRUE(b.LoadImage_FromArray(DiscPng(), 0, 0, 0));
  const auto bytes = b.get_Picture32Dib();
  EXPECT_FALSE(bytes.empty());
  EXPECT_FALSE(b.LoadImage_FromArray({1, 2, 3}, 0, 0, 0));
  EXPECT_FALSE(b.LoadImage_FromFile(u"/nao/existe.png", 0, 0, 0));
  EXPECT_EQ(b.get_Picture32Dib(), bytes);
  b.ClearPicture32Dib();
  EXPECT_TRUE(b.get_Picture32Dib().empty());
}

// Every theme in every state, one strip per theme: normal, hot, down,
// disabled, focused, and a toggle that is on.
TEST_F(USButtonTest, GoldenStatesOfEveryTheme) {
  for (int32_t theme = 0; theme < ThemePalette::kThemeCount; ++theme) {
    host::Form form;
    USButton& b = Make(form);
    b.put_Theme(theme);
    b.put_Caption(u"Confirmar");
    ASSERT_TRUE(b.LoadImage_FromArray(DiscPng(), 0, 0, 0));
    const int w = 120, h = 32, states = 6;
    std::vector<uint32_t> strip(static_cast<size_t>(w) * states * h, 0);
    for (int s = 0; s < states; ++s) {
      switch (s) {
        case 3:
          b.put_Enabled(false);
          break;
        case 4:
          b.put_Enabled(true);
          b.ShowState(State_Normal, true);
          break;
        case 5:
          b.put_CheckBoxMode(true);
          b.put_Value(true);
          b.ShowState(State_Normal, false);
          break;
        default:
          b.ShowState(s, false);
      }
      screen_.Pump();
      const platform::Surface px = screen_.WindowPixels(b.hWnd());
      ASSERT_EQ(px.width, w);
      ASSERT_EQ(px.height, h);
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
          strip[static_cast<size_t>(y) * w * states + s * w + x] = px.At(x, y);
    }
    platform::Surface all{strip.data(), w * states, h, w * states};
    EXPECT_TRUE(test::MatchesGolden(all, "button_theme" + std::to_string(theme)));
  }
}

TEST_F(USButtonTest, GoldenPictureAlignmentsAndWrapping) {
  host::Form form;
  form.SetUserMode(true);
  form.SetClientSize(620, 200);
  std::vector<USButton*> buttons;
  for (int32_t a = 0; a <= 8; ++a) {
    auto* b = dynamic_cast<USButton*>(form.Add("USButton", {}, 150.0f + 1500.0f * static_cast<float>(a % 4),
                                               150.0f + 900.0f * static_cast<float>(a / 4),
                                               1350, 750));
    ASSERT_NE(b, nullptr);
    b->put_Caption(u"Imprimir");
    b->put_PictureAlignment(a);
    ASSERT_TRUE(b->LoadImage_FromArray(DiscPng(), 0, 0, 0));
    buttons.push_back(b);
  }
  auto* wrap = dynamic_cast<USButton*>(form.Add("USButton", {}, 1650, 1950, 1350, 750));
  wrap->put_Caption(u"Uma legenda longa demais para uma linha");
  form.Show();
  screen_.Pump();
  for (USButton* b : buttons) b->ShowState(State_Normal, false);
  wrap->ShowState(State_Normal, false);
  screen_.Pump();
  EXPECT_TRUE(test::MatchesGolden(screen_.WindowPixels(form.hWnd()), "button_alignments"));
}

}  // namespace
}  // namespace vantor::frame
