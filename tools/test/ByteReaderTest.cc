#include "ByteReader.h"

#include <gtest/gtest.h>

namespace {

using StnTools::ByteReader;

const char kBytes[] = {'\x01', '\x02', '\xff', '\xfe', '\x03', 'a', 'b', 'c', '\xff', 0, 0, 0, '\x02', 'd', 'e'};

ByteReader Read() { return {kBytes, sizeof kBytes}; }

TEST(ByteReader, ReadsNumbersHighByteFirst) {
  ByteReader bytes = Read();
  EXPECT_EQ(bytes.Number(2), 0x0102u);
  EXPECT_EQ(bytes.Number(1), 0xffu);
  EXPECT_EQ(bytes.GetPosition(), 3u);
}

TEST(ByteReader, ReadsNumbersWithASign) {
  ByteReader bytes = Read();
  bytes.Skip(2);
  EXPECT_EQ(bytes.Signed(2), -2);
  EXPECT_EQ(bytes.Signed(1), 3);
}

TEST(ByteReader, ReadsTextsWithShortAndLongLengths) {
  ByteReader bytes = Read();
  bytes.Skip(4);
  EXPECT_EQ(bytes.Text(), "abc");
  EXPECT_EQ(bytes.Text(), "de");
  EXPECT_TRUE(bytes.IsGood());
}

TEST(ByteReader, IsNotGoodOnceANumberGoesBeyondTheEnd) {
  ByteReader bytes = Read();
  bytes.Skip(12);
  EXPECT_EQ(bytes.Number(4), 0u);
  EXPECT_FALSE(bytes.IsGood());
  EXPECT_EQ(bytes.Number(1), 0u);
}

TEST(ByteReader, IsNotGoodOnceATextGoesBeyondTheEnd) {
  const char bytes[] = {'\x7f', 'a'};
  ByteReader reader(bytes, sizeof bytes);
  EXPECT_EQ(reader.Text(), "");
  EXPECT_FALSE(reader.IsGood());
}

}  // namespace
