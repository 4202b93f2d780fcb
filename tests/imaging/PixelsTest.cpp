#include "imaging/Pixels.h"

#include <gtest/gtest.h>

namespace vantor::imaging {
namespace {

TEST(Pixels, RowsAreStoredBottomUp) {
  Pixels p;
  ASSERT_TRUE(p.Allocate(3, 2));
  EXPECT_EQ(p.bytes.size(), 24u);
  EXPECT_EQ(p.Row(0), p.bytes.data() + 12);  // the top row is stored last
  EXPECT_EQ(p.Row(1), p.bytes.data());
  EXPECT_EQ(p.ScanAlpha(), Alpha_Simple);   // all transparent
}

TEST(Pixels, AlphaKinds) {
  struct Case {
    uint8_t a0, a1;
    ENUM_ALPHA_TYPE kind;
  } cases[] = {{255, 255, Alpha_None}, {0, 255, Alpha_Simple}, {255, 128, Alpha_Complex}, {0, 1, Alpha_Complex}};
  for (const auto& c : cases) {
    Pixels p;
    ASSERT_TRUE(p.Allocate(2, 1));
    p.bytes[3] = c.a0;
    p.bytes[7] = c.a1;
    EXPECT_EQ(p.ScanAlpha(), c.kind) << int(c.a0) << " " << int(c.a1);
  }
}

TEST(Pixels, RefusesImpossibleSizes) {
  Pixels p;
  for (auto [w, h] : {std::pair{0, 5}, {5, 0}, {-1, 5}, {65536, 65536}, {2147483647, 2}}) {
    EXPECT_FALSE(p.Allocate(w, h)) << w << "x" << h;
    EXPECT_TRUE(p.Empty());
  }
}

}  // namespace
}  // namespace vantor::imaging
