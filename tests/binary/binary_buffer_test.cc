// The byte area of the binary form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <zqxml/binary/binary_buffer.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

// A block that cannot be had is a null pointer under AddressSanitizer too.
extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1";
}

namespace zqxml {
namespace {

/// More than any heap has.
std::size_t impossibleSize() {
  volatile std::size_t size = std::numeric_limits<std::size_t>::max() / 2;
  return size;
}

TEST(BinaryBufferTest, SetWriteBufferFreesTheOwnedBlockAndForgetsItsContent) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("old", 3, false);
  auto* block = static_cast<char*>(std::malloc(8));
  buffer.SetWriteBuffer(block, 8, false);
  EXPECT_EQ(buffer.getBuffer(), block);
  EXPECT_EQ(buffer.getBufferSize(), 8u);
  EXPECT_EQ(buffer.getDataSize(), 0u);
  EXPECT_FALSE(buffer.HasExternalBuffer());
}

TEST(BinaryBufferTest, ResizeOfAnExternalBufferIsRefusedEvenWhenItFits) {
  std::array<char, 8> block{};
  BinaryBuffer buffer(block.data(), block.size());
  EXPECT_FALSE(buffer.resizeBuffer(4));
  EXPECT_EQ(buffer.getBuffer(), block.data());
  EXPECT_EQ(buffer.getBufferSize(), 8u);
  EXPECT_EQ(buffer.getDataSize(), 0u);
}

TEST(BinaryBufferTest, ResizeOfAnEmptyBufferToNothingSucceedsAndLeavesItNotSet) {
  BinaryBuffer buffer;
  EXPECT_TRUE(buffer.resizeBuffer(0));
  EXPECT_EQ(buffer.getBuffer(), nullptr);
  EXPECT_FALSE(buffer.isSet());
}

TEST(BinaryBufferTest, ResizeToLessKeepsTheCapacityAndLowersTheContent) {
  BinaryBuffer buffer;
  ASSERT_TRUE(buffer.resizeBuffer(10));
  const char* block = buffer.getBuffer();
  EXPECT_TRUE(buffer.resizeBuffer(4));
  EXPECT_EQ(buffer.getBuffer(), block);
  EXPECT_EQ(buffer.getBufferSize(), 10u);
  EXPECT_EQ(buffer.getDataSize(), 4u);
}

TEST(BinaryBufferTest, DataSizeAboveTheCapacityMakesTheStatusFalseAndNothingElse) {
  std::array<char, 4> block{};
  BinaryBuffer buffer(block.data(), block.size());
  buffer.setDataSize(5);
  EXPECT_FALSE(buffer.Status());
  EXPECT_EQ(buffer.getDataSize(), 5u);
  EXPECT_EQ(buffer.getBufferSize(), 4u);
  EXPECT_TRUE(buffer.isSet());
}

TEST(BinaryBufferTest, DeepCopyOfNothingHasABlockAndIsNotSet) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("", 0, false);
  EXPECT_NE(buffer.getBuffer(), nullptr);
  EXPECT_EQ(buffer.getBufferSize(), 0u);
  EXPECT_FALSE(buffer.isSet());
}

TEST(BinaryBufferTest, IsNotCopyableAndHasNoVirtualOperations) {
  EXPECT_FALSE(std::is_copy_constructible_v<BinaryBuffer>);
  EXPECT_FALSE(std::is_copy_assignable_v<BinaryBuffer>);
  EXPECT_FALSE(std::is_polymorphic_v<BinaryBuffer>);
}

TEST(BinaryBufferTest, StartsEmpty) {
  const BinaryBuffer buffer;
  EXPECT_EQ(buffer.getBuffer(), nullptr);
  EXPECT_EQ(buffer.getBufferSize(), 0u);
  EXPECT_EQ(buffer.getDataSize(), 0u);
  EXPECT_FALSE(buffer.HasExternalBuffer());
  EXPECT_FALSE(buffer.isSet());
  EXPECT_TRUE(buffer.Status());
}

TEST(BinaryBufferTest, BorrowsTheCallersMemoryToWriteInto) {
  std::array<char, 8> block{};
  const BinaryBuffer buffer(block.data(), block.size());
  EXPECT_EQ(buffer.getBuffer(), block.data());
  EXPECT_EQ(buffer.getBufferSize(), 8u);
  EXPECT_EQ(buffer.getDataSize(), 0u);
  EXPECT_TRUE(buffer.HasExternalBuffer());
  EXPECT_TRUE(buffer.isSet());
}

TEST(BinaryBufferTest, SetReadBufferCountsAllBytesAsContent) {
  const std::string text = "content";
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("old", 3, false);
  buffer.SetReadBuffer(text.data(), text.size(), true);
  EXPECT_EQ(contentOf(buffer), text);
  EXPECT_EQ(buffer.getBufferSize(), text.size());
  EXPECT_TRUE(buffer.HasExternalBuffer());
}

TEST(BinaryBufferTest, TakesOverABlockOfTheCHeap) {
  auto* block = static_cast<char*>(std::malloc(4));
  std::memcpy(block, "abcd", 4);
  BinaryBuffer buffer;
  buffer.SetReadBuffer(block, 4, false);  // the destructor frees it
  EXPECT_TRUE(buffer.resizeBuffer(6));
  EXPECT_EQ(contentOf(buffer).substr(0, 4), "abcd");
}

TEST(BinaryBufferTest, ExternalMemoryIsLeftAloneByTheNextSetter) {
  std::array<char, 4> block{'a', 'b', 'c', 'd'};
  BinaryBuffer buffer(block.data(), block.size());
  buffer.deepCopyBuffer("xy", 2, false);
  EXPECT_EQ(contentOf(buffer), "xy");
  EXPECT_EQ(std::string(block.data(), block.size()), "abcd");
}

TEST(BinaryBufferTest, DeepCopyIsIndependentOfItsSource) {
  std::string text("a\0b", 3);
  BinaryBuffer buffer;
  buffer.deepCopyBuffer(text.data(), text.size(), false);
  text[0] = 'x';
  EXPECT_EQ(contentOf(buffer), std::string_view("a\0b", 3));
  EXPECT_EQ(buffer.getBufferSize(), 3u);
  EXPECT_FALSE(buffer.HasExternalBuffer());
}

TEST(BinaryBufferTest, DeepCopyMarkedExternalIsFreedByNobody) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("abc", 3, true);
  char* block = buffer.getBuffer();
  EXPECT_TRUE(buffer.HasExternalBuffer());
  buffer.SetWriteBuffer(nullptr, 0, false);
  EXPECT_EQ(std::string_view(block, 3), "abc");
  std::free(block);
}

TEST(BinaryBufferTest, DeepCopyOfAPartOfItsOwnBlockIsSafe) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("abcdef", 6, false);
  buffer.deepCopyBuffer(buffer.getBuffer() + 2, 3, false);
  EXPECT_EQ(contentOf(buffer), "cde");
}

TEST(BinaryBufferTest, DeepCopyWithoutMemoryLeavesAnEmptyBuffer) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("abc", 3, false);
  buffer.deepCopyBuffer("abc", impossibleSize(), false);
  EXPECT_EQ(buffer.getBuffer(), nullptr);
  EXPECT_EQ(buffer.getDataSize(), 0u);
  EXPECT_FALSE(buffer.isSet());
  buffer.deepCopyBuffer("abc", std::numeric_limits<std::size_t>::max(), false);
  EXPECT_FALSE(buffer.isSet());
}

TEST(BinaryBufferTest, DeepCopyOfANullPointerIsOneOfNoBytes) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("abc", 3, false);
  buffer.deepCopyBuffer(nullptr, 5, false);
  EXPECT_NE(buffer.getBuffer(), nullptr);
  EXPECT_EQ(buffer.getBufferSize(), 0u);
  EXPECT_EQ(buffer.getDataSize(), 0u);
}

TEST(BinaryBufferTest, BlockThatIsGivenBackIsKept) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("abcdefghijklmnopqrstuvwxyz", 26, false);
  buffer.SetWriteBuffer(buffer.getBuffer(), 26, false);
  EXPECT_EQ(buffer.getDataSize(), 0u);
  EXPECT_EQ(std::string_view(buffer.getBuffer(), 26), "abcdefghijklmnopqrstuvwxyz");
  buffer.SetReadBuffer(buffer.getBuffer(), 3, false);
  EXPECT_EQ(contentOf(buffer), "abc");
  char* block = buffer.getBuffer();
  buffer.SetReadBuffer(block, 3, true);  // the caller's from here on
  buffer.SetWriteBuffer(nullptr, 0, false);
  EXPECT_EQ(std::string_view(block, 3), "abc");
  std::free(block);
}

TEST(BinaryBufferTest, ResizeGrowsToExactlyTheSizeAndKeepsTheBytes) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("abc", 3, false);
  EXPECT_TRUE(buffer.resizeBuffer(1000));
  EXPECT_EQ(buffer.getBufferSize(), 1000u);
  EXPECT_EQ(buffer.getDataSize(), 1000u);
  EXPECT_EQ(contentOf(buffer).substr(0, 3), "abc");
}

TEST(BinaryBufferTest, ResizeWithoutMemoryFreesTheBlockAndKeepsTheSizes) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("abc", 3, false);
  EXPECT_FALSE(buffer.resizeBuffer(impossibleSize()));
  EXPECT_EQ(buffer.getBuffer(), nullptr);
  EXPECT_EQ(buffer.getBufferSize(), 3u);
  EXPECT_EQ(buffer.getDataSize(), 3u);
  EXPECT_FALSE(buffer.isSet());
}

TEST(BinaryBufferTest, KeepsAResizeWithinTheOldCapacityTrueAfterTheBlockWasLost) {
  BinaryBuffer buffer;
  buffer.deepCopyBuffer("abc", 3, false);
  ASSERT_FALSE(buffer.resizeBuffer(impossibleSize()));
  EXPECT_TRUE(buffer.resizeBuffer(2));
  EXPECT_EQ(buffer.getDataSize(), 2u);
  EXPECT_FALSE(buffer.isSet());
}

}  // namespace
}  // namespace zqxml
