#include "runtime/cStringBuilder.h"

#include <gtest/gtest.h>

#include <climits>

#include "runtime/Error.h"

namespace vantor {
namespace {

TEST(cStringBuilder, AppendsAndLines) {
  cStringBuilder sb;
  EXPECT_EQ(sb.Length(), 0);
  EXPECT_EQ(sb.ToString(), u"");
  sb.Append(u"ação");
  sb.Append(u"");
  sb.AppendLine(u" ok");
  sb.AppendLine();
  EXPECT_EQ(sb.ToString(), u"ação ok\r\n\r\n");
  EXPECT_EQ(sb.Length(), 11);
  sb.Clear();
  EXPECT_EQ(sb.Length(), 0);
  sb.Append(u"x");
  EXPECT_EQ(sb.ToString(), u"x");
}

TEST(cStringBuilder, InsertAndRemoveIgnoreBadPositions) {
  cStringBuilder sb;
  sb.Append(u"abef");
  sb.Insert(2, u"cd");
  EXPECT_EQ(sb.ToString(), u"abcdef");
  sb.Insert(0, u">");
  sb.Insert(sb.Length(), u"<");
  EXPECT_EQ(sb.ToString(), u">abcdef<");
  sb.Insert(-1, u"?");
  sb.Insert(sb.Length() + 1, u"?");
  sb.Insert(INT32_MAX, u"?");
  EXPECT_EQ(sb.ToString(), u">abcdef<");

  sb.Remove(0, 1);
  EXPECT_EQ(sb.ToString(), u"abcdef<");
  sb.Remove(2, 2);
  EXPECT_EQ(sb.ToString(), u"abef<");
  sb.Remove(3, 100);  // clipped at the end
  EXPECT_EQ(sb.ToString(), u"abe");
  sb.Remove(3, 1);
  sb.Remove(-1, 1);
  sb.Remove(0, 0);
  sb.Remove(0, -5);
  sb.Remove(INT32_MAX, INT32_MAX);
  EXPECT_EQ(sb.ToString(), u"abe");
  sb.Remove(0, INT32_MAX);
  EXPECT_EQ(sb.ToString(), u"");
}

TEST(cStringBuilder, Find) {
  cStringBuilder sb;
  sb.Append(u"abcabc");
  EXPECT_EQ(sb.Find(u"abc"), 0);
  EXPECT_EQ(sb.Find(u"abc", 1), 3);
  EXPECT_EQ(sb.Find(u"abc", 4), -1);
  EXPECT_EQ(sb.Find(u"c", 5), 5);
  EXPECT_EQ(sb.Find(u"x"), -1);
  EXPECT_EQ(sb.Find(u"ABC"), -1);
  EXPECT_EQ(sb.Find(u""), 0);
  EXPECT_EQ(sb.Find(u"", 6), 6);
  EXPECT_EQ(sb.Find(u"", 7), -1);
  EXPECT_EQ(sb.Find(u"a", -1), -1);
  EXPECT_EQ(sb.Find(u"a", INT32_MAX), -1);
}

TEST(cStringBuilder, ManyPagesAndReserve) {
  Err().Clear();
  cStringBuilder sb;
  sb.Reserve(-1);
  sb.Reserve(0);
  sb.Reserve(INT32_MAX);  // a hint only; must not take gigabytes
  sb.Reserve(1 << 16);
  for (int i = 0; i < 20000; ++i) sb.AppendLine(u"linha de exportação");
  EXPECT_EQ(sb.Length(), 20000 * 21);
  EXPECT_EQ(sb.Find(u"\r\nlinha", 0), 19);
  EXPECT_EQ(sb.ToString().substr(sb.ToString().size() - 6), u"ação\r\n");
  EXPECT_EQ(Err().Number(), 0);
}

}  // namespace
}  // namespace vantor
