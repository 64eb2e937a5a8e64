#include <gtest/gtest.h>
#include <zqxml/platform/crc64.h>

#include <string_view>

namespace zqxml {
namespace {

void update(CUlCRC64& crc, std::string_view bytes) {
  crc.UpdateCRC64(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned>(bytes.size()));
}

TEST(CUlCRC64, GivesTheCheckValue) {
  CUlCRC64 crc;
  update(crc, "123456789");
  EXPECT_EQ(crc.GetCRC64(), 0x995DC9BBDF1939FAU);
}

TEST(CUlCRC64, PiecesGiveTheSumOfTheWhole) {
  CUlCRC64 crc;
  update(crc, "1234");
  update(crc, "");
  update(crc, "56789");
  EXPECT_EQ(crc.GetCRC64(), 0x995DC9BBDF1939FAU);
}

TEST(CUlCRC64, NothingSumsToZero) {
  CUlCRC64 crc;
  EXPECT_EQ(crc.GetCRC64(), 0U);
  crc.UpdateCRC64(nullptr, 5);
  EXPECT_EQ(crc.GetCRC64(), 0U);
}

TEST(CUlCRC64, ResetStartsAnew) {
  CUlCRC64 crc;
  update(crc, "something");
  crc.Reset();
  update(crc, "123456789");
  EXPECT_EQ(crc.GetCRC64(), 0x995DC9BBDF1939FAU);
}

}  // namespace
}  // namespace zqxml
