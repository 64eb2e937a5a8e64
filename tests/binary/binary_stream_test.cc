// The cursor of the binary form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <tests/binary/binary_forms.h>
#include <zqxml/binary/binary_stream.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

/// What an operation on a stream over `limit` bytes leaves in a range of 16.
template <class Write>
std::string written(std::uint64_t limit, Write&& write) {
  std::string range(16, '\xee');
  BinaryStream stream(range.data(), limit);
  write(stream);
  return range.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(stream.position(), 16)));
}

TEST(BinaryStreamTest, WriteThatDoesNotFitStoresNothingAndMovesOn) {
  std::string range(4, '\xee');
  BinaryStream stream(range.data(), 3);
  EXPECT_EQ(stream.writeFixed32(0x01020304), 4u);
  EXPECT_EQ(stream.position(), 4u);
  EXPECT_EQ(toHex(range), "ee ee ee ee");
}

TEST(BinaryStreamTest, VarintHasSevenBitsInEachByteLowestFirst) {
  const auto varint = [](std::uint32_t value) {
    return toHex(written(16, [=](BinaryStream& stream) { stream.writeVarint32(value); }));
  };
  EXPECT_EQ(varint(0), "00");
  EXPECT_EQ(varint(127), "7f");
  EXPECT_EQ(varint(128), "80 01");
  EXPECT_EQ(varint(0xffffffff), "ff ff ff ff 0f");
}

TEST(BinaryStreamTest, SignedVarintIsZigzag) {
  const auto varint = [](std::int32_t value) {
    return toHex(written(16, [=](BinaryStream& stream) { stream.writeSignedVarint32(value); }));
  };
  EXPECT_EQ(varint(-1), "01");
  EXPECT_EQ(varint(1), "02");
  EXPECT_EQ(varint(std::numeric_limits<std::int32_t>::min()), "ff ff ff ff 0f");
}

TEST(BinaryStreamTest, SkipTakesWhatIsLeftAndNotAByteMore) {
  std::array<char, 8> range{};
  BinaryStream stream(range.data(), range.size(), 3);
  EXPECT_FALSE(stream.skip(6));
  EXPECT_EQ(stream.position(), 3u);
  EXPECT_EQ(stream.remaining(), 5u);
  EXPECT_TRUE(stream.skip(5));
  EXPECT_EQ(stream.position(), 8u);
}

TEST(BinaryStreamTest, FixedWidthsAreLittleEndian) {
  EXPECT_EQ(toHex(written(16, [](BinaryStream& s) { EXPECT_EQ(s.writeFixed32(0x01020304), 4u); })),
            "04 03 02 01");
  EXPECT_EQ(toHex(written(16, [](BinaryStream& s) { EXPECT_EQ(s.writeFixed64(0x0102030405060708), 8u); })),
            "08 07 06 05 04 03 02 01");
}

TEST(BinaryStreamTest, FloatAndDoubleAreTheirBitPatterns) {
  EXPECT_EQ(toHex(written(16, [](BinaryStream& s) { EXPECT_EQ(s.writeFloat(-2.5f), 4u); })), "00 00 20 c0");
  EXPECT_EQ(toHex(written(16, [](BinaryStream& s) { EXPECT_EQ(s.writeDouble(1.0), 8u); })),
            "00 00 00 00 00 00 f0 3f");
}

TEST(BinaryStreamTest, ByteRunIsWrittenAsItIs) {
  EXPECT_EQ(written(16, [](BinaryStream& s) { EXPECT_EQ(s.writeBytes("a\0b", 3), 3u); }),
            std::string("a\0b", 3));
}

TEST(BinaryStreamTest, VarintSizesHaveTheirThresholds) {
  for (const auto& [value, size] : std::vector<std::pair<std::uint32_t, unsigned>>{{0, 1},
                                                                                   {127, 1},
                                                                                   {128, 2},
                                                                                   {16383, 2},
                                                                                   {16384, 3},
                                                                                   {2097151, 3},
                                                                                   {2097152, 4},
                                                                                   {0xfffffff, 4},
                                                                                   {0x10000000, 5},
                                                                                   {0xffffffff, 5}}) {
    EXPECT_EQ(BinaryStream::varint32Size(value), size) << value;
  }
  EXPECT_EQ(BinaryStream::signedVarint32Size(63), 1u);
  EXPECT_EQ(BinaryStream::signedVarint32Size(-64), 1u);
  EXPECT_EQ(BinaryStream::signedVarint32Size(64), 2u);
  EXPECT_EQ(BinaryStream::signedVarint32Size(std::numeric_limits<std::int32_t>::min()), 5u);
}

TEST(BinaryStreamTest, NoValueIsWrittenInPart) {
  EXPECT_EQ(toHex(written(1, [](BinaryStream& s) { EXPECT_EQ(s.writeVarint32(128), 2u); })), "ee ee");
  EXPECT_EQ(toHex(written(7, [](BinaryStream& s) { s.writeFixed64(1); })), "ee ee ee ee ee ee ee ee");
  EXPECT_EQ(toHex(written(2, [](BinaryStream& s) { EXPECT_EQ(s.writeBytes("abc", 3), 3u); })), "ee ee ee");
}

TEST(BinaryStreamTest, WritesGoOnCountingBehindTheLimit) {
  std::string range(8, '\xee');
  BinaryStream stream(range.data(), 5);
  stream.writeFixed32(0);
  stream.writeFixed32(0);
  stream.writeVarint32(1);  // would fit the range, but stands behind a value that did not
  EXPECT_EQ(stream.position(), 9u);
  EXPECT_EQ(toHex(range), "00 00 00 00 ee ee ee ee");
  EXPECT_EQ(stream.remaining(), 0u);
  EXPECT_FALSE(stream.skip(0));
}

TEST(BinaryStreamTest, WriteOfAHugeNumberDoesNotComeRoundToTheRange) {
  const std::size_t huge = std::numeric_limits<std::size_t>::max();
  for (const std::size_t size : {huge, huge / 2, huge / 4}) {
    std::string range(8, '\xee');
    BinaryStream stream(range.data(), range.size(), 4);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(stream.writeBytes(range.data(), size), size);
    EXPECT_EQ(stream.writeFixed32(0), 4u);
    EXPECT_EQ(stream.writeBytes("abc", 3), 3u);
    EXPECT_GT(stream.position(), stream.limit());
    EXPECT_EQ(toHex(range), "ee ee ee ee ee ee ee ee");
  }
}

TEST(BinaryStreamTest, SkipOfAHugeNumberDoesNotWrapAround) {
  std::array<char, 8> range{};
  BinaryStream stream(range.data(), range.size(), 4);
  EXPECT_FALSE(stream.skip(std::numeric_limits<std::size_t>::max()));
  EXPECT_FALSE(stream.skip(std::numeric_limits<std::size_t>::max() - 3));
  EXPECT_EQ(stream.position(), 4u);
}

/// Reads a varint from a longer or equal range; expects its value and that `size` bytes are taken.
void expectVarint(std::string_view hex, unsigned size, std::uint32_t expected) {
  std::string bytes = fromHex(hex);
  BinaryStream stream(bytes.data(), bytes.size());
  std::uint32_t value = ~expected;
  EXPECT_EQ(stream.readVarint32(value), size);
  EXPECT_EQ(value, expected);
  EXPECT_EQ(stream.position(), size);
}

TEST(BinaryStreamTest, OverlongVarintEndsAtItsFifthByte) {
  expectVarint("80 80 80 80 ff 01", 5, 0xf0000000u);
}

TEST(BinaryStreamTest, ZeroMayBeOverlong) {
  expectVarint("80 00", 2, 0);
}

RC_GTEST_PROP(BinaryStreamTest, VarintsAreReadAsWritten, (std::uint32_t value)) {
  const auto shift = *rc::gen::inRange(0, 32);
  value >>= shift;
  char range[8];
  BinaryStream out(range, sizeof range);
  const unsigned size = out.writeVarint32(value);
  RC_ASSERT(size == BinaryStream::varint32Size(value));
  BinaryStream in(range, size);
  std::uint32_t read = 0;
  RC_ASSERT(in.readVarint32(read) == size);
  RC_ASSERT(read == value);
}

RC_GTEST_PROP(BinaryStreamTest, SignedVarintsAreReadAsWritten, (std::int32_t value)) {
  value >>= *rc::gen::inRange(0, 32);
  char range[8];
  BinaryStream out(range, sizeof range);
  const unsigned size = out.writeSignedVarint32(value);
  RC_ASSERT(size == BinaryStream::signedVarint32Size(value));
  BinaryStream in(range, size);
  std::int32_t read = 0;
  RC_ASSERT(in.readSignedVarint32(read) == size);
  RC_ASSERT(read == value);
}

RC_GTEST_PROP(BinaryStreamTest, FixedWidthsAreReadAsWritten,
              (std::uint32_t a, std::uint64_t b, float c, double d)) {
  char range[24];
  BinaryStream out(range, sizeof range);
  out.writeFixed32(a);
  out.writeFixed64(b);
  out.writeFloat(c);
  out.writeDouble(d);
  BinaryStream in(range, sizeof range);
  std::uint32_t readA = 0;
  std::uint64_t readB = 0;
  float readC = 0;
  double readD = 0;
  RC_ASSERT(in.readFixed32(readA) == 4u);
  RC_ASSERT(in.readFixed64(readB) == 8u);
  RC_ASSERT(in.readFloat(readC) == 4u);
  RC_ASSERT(in.readDouble(readD) == 8u);
  RC_ASSERT(in.position() == 24u);
  RC_ASSERT(readA == a && readB == b);
  RC_ASSERT(std::memcmp(&readC, &c, sizeof c) == 0 && std::memcmp(&readD, &d, sizeof d) == 0);
}

}  // namespace
}  // namespace zqxml
