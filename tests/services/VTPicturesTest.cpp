#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "imaging/c32bppDIB.h"
#include "server/Registry.h"
#include "services/VT.h"
#include "tests/services/SystemTestSupport.h"

namespace vantor::services {
namespace {

constexpr uint32_t kRed = 0xFFFF0000u;     // 0xAARRGGBB
constexpr uint32_t kBlue = 0xFF0000FFu;

// A 40 x 20 picture: red on the left half, blue on the right, and a fully
// transparent column band in the middle (x 18..21) that must show the
// background once the picture is flattened.
std::string WritePicture(const test::TempFolder& dir) {
  std::vector<uint8_t> bytes(40 * 20 * 4);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 40; ++x) {
      uint8_t* p = &bytes[(static_cast<size_t>(y) * 40 + x) * 4];
      const bool hole = x >= 18 && x < 22;
      const bool left = x < 20;
      p[0] = hole || left ? 0 : 255;  // blue
      p[1] = 0;
      p[2] = hole || !left ? 0 : 255;  // red
      p[3] = hole ? 0 : 255;
    }
  }
  imaging::c32bppDIB dib;
  EXPECT_TRUE(dib.SetDIBbits(bytes, 40, 20, true, false, true));
  const std::string path = dir.Join("duas-cores.png");
  EXPECT_TRUE(dib.SaveToFile_PNG(FromUtf8(path)));
  return path;
}

uint32_t At(const std::vector<uint32_t>& px, int width, int x, int y) {
  return px[static_cast<size_t>(y) * width + x] | 0xFF000000u;
}

struct SizeCase {
  int32_t largura, altura;
  bool manter;
  int32_t width, height;  // of the picture made
  int drawnLeft, drawnTop, drawnRight, drawnBottom;  // where the picture lies
};

TEST(VTPictures, SizesFitsAndFlattensOverTheBackground) {
  test::TempFolder dir;
  const String file = FromUtf8(WritePicture(dir));
  const SizeCase cases[] = {
      {-1, -1, false, 40, 20, 0, 0, 40, 20},    // as it is
      {80, 80, false, 80, 80, 0, 0, 80, 80},    // stretched
      {80, 80, true, 80, 80, 0, 20, 80, 60},    // fitted, centred, bands above and below
      {20, 40, true, 20, 40, 0, 15, 20, 25},    // narrower: bands again
      {80, -1, true, 80, 40, 0, 0, 80, 40},     // height follows the width
      {-1, 10, true, 20, 10, 0, 0, 20, 10},     // width follows the height
      {80, -1, false, 80, 20, 0, 0, 80, 20},    // without the ratio the other side stays
  };
  const OLE_COLOR green = 0x00FF00;  // 0xBBGGRR
  for (const SizeCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.largura << "x" << c.altura << " manter " << c.manter);
    auto pic = VT().VT_CarregarImagem(file, c.largura, c.altura, green, c.manter);
    ASSERT_NE(pic, nullptr);
    ASSERT_EQ(pic->PixelWidth(), c.width);
    ASSERT_EQ(pic->PixelHeight(), c.height);
    const auto px = pic->Pixels();
    const int midY = (c.drawnTop + c.drawnBottom) / 2;
    const int quarter = (c.drawnRight - c.drawnLeft) / 4;
    EXPECT_EQ(At(px, c.width, c.drawnLeft + quarter / 2, midY), kRed);
    EXPECT_EQ(At(px, c.width, c.drawnRight - 1 - quarter / 2, midY), kBlue);
    // The transparent band lets the background through.
    EXPECT_EQ(At(px, c.width, (c.drawnLeft + c.drawnRight) / 2, midY), 0xFF00FF00u);
    if (c.drawnTop > 0) {
      EXPECT_EQ(At(px, c.width, 1, 0), 0xFF00FF00u);
      EXPECT_EQ(At(px, c.width, 1, c.height - 1), 0xFF00FF00u);
    }
  }
}

TEST(VTPictures, WhatDoesNotLoadGivesNothing) {
  test::TempFolder dir;
  {
    std::ofstream(dir.Join("texto.png")) << "isto nao e uma imagem";
  }
  VT vt;
  EXPECT_EQ(vt.VT_CarregarImagem(dir.U("nao-existe.png"), -1, -1, 0xFFFFFF, false), nullptr);
  EXPECT_EQ(vt.VT_CarregarImagem(dir.U("texto.png"), -1, -1, 0xFFFFFF, false), nullptr);
  EXPECT_EQ(vt.VT_CarregarImagem(u"", -1, -1, 0xFFFFFF, false), nullptr);
}

// The host's call: optional arguments take their defaults (white, sizes of
// the picture) and a Windows path reaches the file.
TEST(VTPictures, ThroughTheDispatcherWithDefaults) {
  test::TempFolder dir;
  WritePicture(dir);
  VT::Register();
  server::DispatchPtr vt = server::Registry::Instance().Create("VT");
  ASSERT_NE(vt, nullptr);
  const Variant r = server::Call(*vt, "VT_CarregarImagem", dir.Win("duas-cores.png"));
  ASSERT_TRUE(r.IsObject());
  auto pic = std::dynamic_pointer_cast<server::StdPicture>(*r.ObjectRef());
  ASSERT_NE(pic, nullptr);
  EXPECT_EQ(pic->PixelWidth(), 40);
  EXPECT_EQ(At(pic->Pixels(), 40, 20, 10), 0xFFFFFFFFu);
}

}  // namespace
}  // namespace vantor::services
