// The memory of a parse.
#include <gmock/gmock.h>
#include <zqxml/xml/internal/parse_arena.h>
#include <zqxml/xml/xml_start_up.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>
#include <xercesc/util/OutOfMemoryException.hpp>

namespace zqxml {
namespace {

/// The arena takes its memory from the platform's manager, which is there once the library runs.
class ParseArenaTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_TRUE(initialize()); }
};

bool isAligned(const void* block) {
  return reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t) == 0;
}

TEST_F(ParseArenaTest, BlocksOfEverySizeAreApartAndAligned) {
  ParseArena arena(0);
  std::vector<unsigned char*> blocks;
  for (std::size_t size = 0; size < 6000; size += size < 100 ? 1 : 97) {
    auto* block = static_cast<unsigned char*>(arena.allocate(size));
    ASSERT_NE(block, nullptr);
    ASSERT_TRUE(isAligned(block)) << size;
    std::memset(block, static_cast<int>(blocks.size() % 256), size);
    blocks.push_back(block);
  }
  std::size_t number = 0;
  for (std::size_t size = 0; size < 6000; size += size < 100 ? 1 : 97, ++number)
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(blocks[number][i], number % 256) << size;
  for (unsigned char* block : blocks) arena.deallocate(block);
}

TEST_F(ParseArenaTest, SmallBlockServesAgain) {
  ParseArena arena(0);
  void* first = arena.allocate(100);
  void* second = arena.allocate(100);
  arena.deallocate(first);
  EXPECT_NE(arena.allocate(200), first);
  EXPECT_EQ(arena.allocate(97), first);
  arena.deallocate(second);
  arena.deallocate(first);
  EXPECT_EQ(arena.allocate(100), first);
  EXPECT_EQ(arena.allocate(100), second);
}

TEST_F(ParseArenaTest, ManySmallBlocksTakeFewOfThePlatforms) {
  ParseArena arena(0);
  const std::size_t before = arena.inUse();
  EXPECT_EQ(before, 0u);
  for (int i = 0; i < 1000; ++i) arena.deallocate(arena.allocate(50));
  EXPECT_LT(arena.inUse(), std::size_t{64} << 10);
}

TEST_F(ParseArenaTest, LargeBlockGoesBackAtOnce) {
  ParseArena arena(0);
  void* first = arena.allocate(std::size_t{10} << 20);
  void* second = arena.allocate(std::size_t{20} << 20);
  EXPECT_GE(arena.inUse(), std::size_t{30} << 20);
  arena.deallocate(first);
  EXPECT_LT(arena.inUse(), std::size_t{21} << 20);
  arena.deallocate(second);
  EXPECT_EQ(arena.inUse(), 0u);
}

TEST_F(ParseArenaTest, WhatIsNotGivenBackGoesWithTheArena) {
  // Nothing to expect: a sanitizer tells of a leak.
  ParseArena arena(0);
  ASSERT_NE(arena.allocate(10), nullptr);
  ASSERT_NE(arena.allocate(100000), nullptr);
  ASSERT_NE(arena.allocate(1000000), nullptr);
}

TEST_F(ParseArenaTest, NothingIsGivenBackForNull) {
  ParseArena arena(0);
  arena.deallocate(nullptr);
  EXPECT_EQ(arena.inUse(), 0u);
}

TEST_F(ParseArenaTest, BeyondTheLimitThereIsNoMemory) {
  constexpr std::size_t kMebi = std::size_t{1} << 20;
  ParseArena arena(1000);
  EXPECT_THROW(arena.allocate(65 * kMebi), xercesc::OutOfMemoryException);
  EXPECT_THROW(arena.allocate(std::numeric_limits<std::size_t>::max()), xercesc::OutOfMemoryException);
  EXPECT_THROW(arena.allocate(std::numeric_limits<std::size_t>::max() - 20), xercesc::OutOfMemoryException);
  void* most = arena.allocate(63 * kMebi);
  EXPECT_THROW(for (int i = 0; i < 10000; ++i) arena.allocate(1000), xercesc::OutOfMemoryException);
  arena.deallocate(most);
  EXPECT_NE(arena.allocate(1000), nullptr);
}

TEST_F(ParseArenaTest, LimitGrowsWithTheInput) {
  ParseArena arena(std::size_t{1} << 20);
  EXPECT_NE(arena.allocate(std::size_t{120} << 20), nullptr);
  EXPECT_THROW(arena.allocate(std::size_t{10} << 20), xercesc::OutOfMemoryException);
}

TEST_F(ParseArenaTest, ExceptionsHaveMemoryOfTheirOwn) {
  ParseArena arena(0);
  EXPECT_NE(arena.getExceptionMemoryManager(), &arena);
}

TEST_F(ParseArenaTest, RandomUseKeepsEveryByte) {
  ParseArena arena(std::size_t{1} << 30);
  std::mt19937 random(7);
  struct Block {
    unsigned char* bytes;
    std::size_t size;
    unsigned char fill;
  };
  std::vector<Block> blocks;
  for (int step = 0; step < 20000; ++step) {
    if (blocks.size() < 200 || random() % 2 == 0) {
      const std::size_t size = random() % (random() % 10 == 0 ? 20000 : 300);
      const auto fill = static_cast<unsigned char>(random());
      auto* bytes = static_cast<unsigned char*>(arena.allocate(size));
      std::memset(bytes, fill, size);
      blocks.push_back({bytes, size, fill});
    } else {
      std::swap(blocks[random() % blocks.size()], blocks.back());
      const Block block = blocks.back();
      blocks.pop_back();
      for (std::size_t i = 0; i < block.size; ++i) ASSERT_EQ(block.bytes[i], block.fill);
      arena.deallocate(block.bytes);
    }
  }
}

}  // namespace
}  // namespace zqxml
