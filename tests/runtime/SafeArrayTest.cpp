#include "runtime/SafeArray.h"

#include <gtest/gtest.h>

#include "runtime/Error.h"
#include "runtime/Variant.h"

namespace vantor {
namespace {

TEST(SafeArray, BoundsOfOneAndTwoDimensions) {
  SafeArray a(vbLong, {{1, 3}, {0, 2}});  // (1 To 3, 0 To 1)
  EXPECT_EQ(a.Dimensions(), 2);
  EXPECT_EQ(a.LBound(1), 1);
  EXPECT_EQ(a.UBound(1), 3);
  EXPECT_EQ(a.LBound(2), 0);
  EXPECT_EQ(a.UBound(2), 1);
  EXPECT_EQ(a.Size(), 6u);
  // Typed elements start as their zero and take values coerced.
  const int32_t at[] = {3, 1};
  EXPECT_EQ(a.Get(at).Type(), vbLong);
  EXPECT_TRUE(a.Set(at, Variant(u"2,5")));
  EXPECT_EQ(a.Get(at).ToLong(), 2);
  // The first dimension varies fastest.
  EXPECT_EQ(a.Items()[5].ToLong(), 2);

  Err().Clear();
  const int32_t outside[] = {4, 0};
  EXPECT_TRUE(a.Get(outside).IsEmpty());
  EXPECT_EQ(Err().Number(), errSubscriptOutOfRange);
  Err().Clear();
  EXPECT_EQ(a.UBound(3), -1);
  EXPECT_EQ(Err().Number(), errSubscriptOutOfRange);
  Err().Clear();
  EXPECT_FALSE(a.Set(at, Variant(u"x")));
  EXPECT_EQ(Err().Number(), errTypeMismatch);
}

TEST(SafeArray, BytesAndResize) {
  SafeArray b = SafeArray::FromBytes({10, 20, 30});
  EXPECT_EQ(b.UBound(), 2);
  EXPECT_EQ(b.Get(1).ToLong(), 20);
  Err().Clear();
  EXPECT_FALSE(b.Set(0, Variant(256)));
  EXPECT_EQ(Err().Number(), errOverflow);
  EXPECT_TRUE(b.Resize(4, true));
  EXPECT_EQ(b.Bytes(), (std::vector<uint8_t>{10, 20, 30, 0, 0}));
  EXPECT_TRUE(b.Resize(0, false));
  EXPECT_EQ(b.Bytes(), (std::vector<uint8_t>{0}));
  EXPECT_TRUE(b.Resize(-1, true));  // an empty array: UBound below LBound
  EXPECT_EQ(b.UBound(), -1);
  EXPECT_FALSE(b.Resize(-5, true));

  SafeArray v = SafeArray::FromVariants({Variant(1), Variant(u"a")}, 1);
  EXPECT_EQ(v.LBound(), 1);
  EXPECT_EQ(v.Get(2).ToString(), u"a");
  EXPECT_TRUE(v == SafeArray::FromVariants({Variant(1), Variant(u"a")}, 1));
  EXPECT_FALSE(v == SafeArray::FromVariants({Variant(1), Variant(u"a")}, 0));
}

}  // namespace
}  // namespace vantor
