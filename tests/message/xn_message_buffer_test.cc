#include <gtest/gtest.h>
#include <tests/support/open_message.h>
#include <zqxml/message/xn_message_buffer.h>

#include <array>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace zqxml {
namespace {

static_assert(!std::is_copy_constructible_v<XNMessageBuffer> && !std::is_copy_assignable_v<XNMessageBuffer>);
static_assert(std::is_nothrow_move_constructible_v<XNMessageBuffer>);

/// Opens the private assignment: an explicit instantiation may name it.
template <auto kAssign>
struct Opened {
  friend void assign(XNMessageBuffer& to, const XNMessageBuffer& from) { (to.*kAssign)(from); }
};
void assign(XNMessageBuffer& to, const XNMessageBuffer& from);
template struct Opened<static_cast<XNMessageBuffer& (XNMessageBuffer::*)(const XNMessageBuffer&)>(
    &XNMessageBuffer::operator=)>;

bool isInside(const XNMessageBuffer& buffer, const void* place) {
  const auto* at = static_cast<const char*>(place);
  const auto* begin = reinterpret_cast<const char*>(&buffer);
  return at >= begin && at < begin + sizeof buffer;
}

TEST(MessageBuffer, StartsWithNothing) {
  const XNMessageBuffer buffer;
  EXPECT_TRUE(buffer.usesCallerBlock());
  EXPECT_EQ(buffer.getIsSet(), nullptr);
  EXPECT_EQ(buffer.slotCount(), 0);
}

TEST(MessageBuffer, BitsFollowTheLastInlineSlot) {
  XNMessageBuffer buffer;
  buffer.init(3, 3, 9);
  EXPECT_FALSE(buffer.usesCallerBlock());
  EXPECT_FALSE(buffer.hasExternalBlock());
  EXPECT_EQ(buffer.getIsSet(), reinterpret_cast<unsigned char*>(&buffer[0] + 3));
}

TEST(MessageBuffer, SlotsBeyondTheInlineOnesAndTheBitsLieOutside) {
  XNMessageBuffer buffer;
  buffer.init(2, 5, 9);
  EXPECT_TRUE(buffer.hasExternalBlock());
  for (short index = 0; index < 5; ++index) {
    EXPECT_EQ(buffer[index], 0);
    EXPECT_EQ(isInside(buffer, &buffer[index]), index < 2) << index;
  }
  EXPECT_EQ(&buffer[3], &buffer[2] + 1);
  EXPECT_EQ(buffer.getIsSet(), reinterpret_cast<unsigned char*>(&buffer[2] + 3));
}

TEST(MessageBuffer, SlotsThatAllLieInsideAreZeroedWithTheirBits) {
  for (short slots = 0; slots <= XNMessageBuffer::kMaxInlineSlots; ++slots) {
    for (const short fields : {short{0}, slots, short{95}, short{96}}) {
      alignas(XNMessageBuffer) std::array<unsigned char, sizeof(XNMessageBuffer)> memory;
      memory.fill(0xff);
      auto* const buffer = ::new (memory.data()) XNMessageBuffer();
      buffer->init(slots, fields);
      EXPECT_EQ(buffer->slotCount(), slots);
      EXPECT_EQ(buffer->inlineCount(), slots);
      EXPECT_EQ(buffer->fieldCount(), fields);
      EXPECT_EQ(buffer->hasExternalBlock(), slots == 24 && fields == 96)
          << "12 bytes of bits fit behind 24 slots";
      for (short index = 0; index < slots; ++index) EXPECT_EQ((*buffer)[index], 0) << slots;
      for (std::size_t at = 0; at < XNMessageBuffer::bitBytes(fields); ++at)
        EXPECT_EQ(buffer->getIsSet()[at], 0) << slots << ", " << fields;
      std::destroy_at(buffer);
    }
  }
}

TEST(MessageBuffer, BitsThatDoNotFitInsideLieOutside) {
  XNMessageBuffer buffer;
  buffer.init(24, 24, 95);  // 12 bytes: the inline area is full to the last one
  EXPECT_TRUE(isInside(buffer, buffer.getIsSet()));
  EXPECT_FALSE(buffer.hasExternalBlock());
  XNMessageBuffer larger;
  larger.init(24, 24, 96);
  EXPECT_FALSE(isInside(larger, larger.getIsSet()));
  EXPECT_TRUE(larger.hasExternalBlock());
  larger.getIsSet()[12] = 0xff;
  EXPECT_EQ(larger[23], 0);
}

TEST(MessageBuffer, SlotIsReachedByReferenceAndByValue) {
  XNMessageBuffer buffer;
  buffer.init(1, 2, 2);
  const XNMessageBuffer& constant = buffer;
  buffer[0] = 5;
  buffer[1] = -6;
  EXPECT_EQ(constant[0], 5);
  EXPECT_EQ(constant[1], -6);
  EXPECT_EQ(&constant.at_ref_const(1), &buffer[1]);
}

TEST(MessageBuffer, CallersBlockIsZeroedAndHoldsSlotsAndBits) {
  std::array<std::int64_t, 6> block;
  block.fill(-1);
  XNMessageBuffer buffer;
  buffer.init(block.data(), 4 * 8, 3, 7);
  EXPECT_TRUE(buffer.usesCallerBlock());
  EXPECT_FALSE(buffer.hasExternalBlock());
  EXPECT_EQ(buffer.inlineCount(), 0);
  EXPECT_EQ(&buffer[2], &block[2]);
  EXPECT_EQ(buffer.getIsSet(), reinterpret_cast<unsigned char*>(&block[3]));
  EXPECT_EQ(block[3], 0);
  EXPECT_EQ(block[4], -1);
}

TEST(MessageBuffer, ResetZeroesSlotsAndBits) {
  XNMessageBuffer buffer;
  buffer.init(1, 3, 12);
  for (short index = 0; index < 3; ++index) buffer[index] = -1;
  buffer.getIsSet()[0] = buffer.getIsSet()[1] = 0xff;
  buffer.reset(12);
  for (short index = 0; index < 3; ++index) EXPECT_EQ(buffer[index], 0);
  EXPECT_EQ(buffer.getIsSet()[0], 0);
  EXPECT_EQ(buffer.getIsSet()[1], 0);
}

TEST(MessageBuffer, MoveTakesTheExternalBlock) {
  XNMessageBuffer from;
  from.init(1, 3, 3);
  from[0] = 1;
  from[2] = 3;
  from.getIsSet()[0] = 5;
  const std::int64_t* outside = &from[1];
  XNMessageBuffer to(std::move(from));
  EXPECT_EQ(to[0], 1);
  EXPECT_EQ(to[2], 3);
  EXPECT_EQ(&to[1], outside);
  EXPECT_EQ(to.getIsSet()[0], 5);
  EXPECT_EQ(from.getIsSet(), nullptr);
  EXPECT_EQ(from.slotCount(), 0);
}

TEST(MessageBuffer, MoveTakesTheBitsThatLieInside) {
  XNMessageBuffer from;
  from.init(2, 2, 2);
  from[1] = 7;
  from.getIsSet()[0] = 3;
  XNMessageBuffer to(std::move(from));
  EXPECT_TRUE(isInside(to, to.getIsSet()));
  EXPECT_EQ(to.getIsSet()[0], 3);
  EXPECT_EQ(to[1], 7);
}

TEST(MessageBuffer, MoveSharesTheCallersBlock) {
  std::array<std::int64_t, 4> block{};
  XNMessageBuffer from;
  from.init(block.data(), static_cast<int>(sizeof block), 3, 3);
  XNMessageBuffer to(std::move(from));
  EXPECT_TRUE(to.usesCallerBlock());
  EXPECT_EQ(&to[0], block.data());
}

TEST(MessageBuffer, AssignmentGivesZeroedStorageOfTheSameShape) {
  XNMessageBuffer source, target;
  source.init(2, 5, 9);
  source[0] = source[4] = 7;
  target.init(1, 3, 1);
  assign(target, source);
  EXPECT_EQ(target.inlineCount(), 2);
  EXPECT_EQ(target.slotCount(), 5);
  EXPECT_EQ(target.fieldCount(), 9);
  EXPECT_FALSE(target.usesCallerBlock());
  EXPECT_NE(&target[4], &source[4]);
  for (short index = 0; index < 5; ++index) EXPECT_EQ(target[index], 0) << index;
  EXPECT_EQ(source[4], 7);
}

TEST(MessageBuffer, AssignmentSharesTheCallersBlock) {
  std::array<std::int64_t, 4> block;
  XNMessageBuffer source, target;
  source.init(block.data(), sizeof block, 3, 5);
  source[1] = 7;
  target.init(2, 5, 9);
  assign(target, source);
  EXPECT_TRUE(target.usesCallerBlock());
  EXPECT_EQ(&target[1], &block[1]);
  EXPECT_EQ(target[1], 7);
  EXPECT_EQ(target.getIsSet(), source.getIsSet());
  EXPECT_EQ(target.inlineCount(), 0);
  EXPECT_EQ(target.slotCount(), 3);
}

TEST(MessageBuffer, AssignmentToItselfChangesNothing) {
  XNMessageBuffer buffer;
  buffer.init(2, 5, 9);
  buffer[4] = 7;
  const XNMessageBuffer& same = buffer;
  assign(buffer, same);
  EXPECT_EQ(buffer[4], 7);
}

}  // namespace
}  // namespace zqxml
