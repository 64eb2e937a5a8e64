// Moving messages, and what a list of them does with that.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/message/collection_families.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/platform/exception.h>

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

using ::testing::ElementsAre;

static_assert(std::is_nothrow_move_constructible_v<XNMessageBase>);

constexpr const char* kLong = "a text longer than a string holds inside";

OpenMessage everyType() {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  return message;
}

TEST(MessageMove, TakesEverythingAndLeavesAMessageWithoutAClass) {
  OpenMessage source = everyType();
  source.setCDATABuffer("body");
  source.setSerialized(true);
  source.SetCachedSize(17);
  const std::int64_t list = slotOf(source, "listIntField");
  const OpenMessage target(std::move(source));
  checkEveryType(target);
  EXPECT_EQ(slotOf(target, "listIntField"), list);
  EXPECT_EQ(target.getCDATABuffer(), "body");
  EXPECT_TRUE(target.isSerialized());
  EXPECT_EQ(target.GetCachedSize(), 17u);
  EXPECT_EQ(XNMessageBase::GetClassDef(&source), nullptr);
  EXPECT_EQ(source.getTagID(), 0u);
  EXPECT_FALSE(source.isSerialized());
}

TEST(MessageMove, TakesStringsInsideAndOutsideTheObject) {
  for (const char* name : {"Demo_StringAt22", "Demo_Boundary24", "Demo_StringAt22Last", "Demo_EveryType"}) {
    for (const std::string& value : {std::string("short"), std::string(kLong)}) {
      OpenMessage source = newMessage(name);
      std::vector<const char*> strings;
      for (const FieldDef& field : *XNMessageBase::GetClassDef(&source))
        if (field.getType() == FDT_STRING) strings.push_back(field.getName());
      ASSERT_FALSE(strings.empty());
      for (const char* field : strings) setText(source, field, value);
      OpenMessage target(std::move(source));
      for (const char* field : strings) EXPECT_EQ(textOf(target, field), value) << name << ' ' << field;
      for (const char* field : strings) setText(target, field, kLong);
      for (const char* field : strings) EXPECT_EQ(textOf(target, field), kLong) << name << ' ' << field;
    }
  }
}

TEST(MessageMove, OfABlockMessageGoesOnInTheBlock) {
  const ClassIndices indices = classNamed("Demo_EveryChild");
  std::array<std::int64_t, 32> block{};
  OpenMessage source(indices.subsystem, indices.index, block.data(), static_cast<int>(sizeof block));
  setText(source, "text", "short");
  OpenMessage target(std::move(source));
  EXPECT_TRUE(MessageAccess::buffer(target).usesCallerBlock());
  EXPECT_EQ(textOf(target, "text"), "short");
}

TEST(MessageMove, LetsVectorsGrowWithoutACopy) {
  std::vector<XNMessageBase> messages;
  messages.push_back(leaf(0, kLong));
  const char* text = MessageAccess::inPlace<std::string>(messages[0], fieldOf(messages[0], "text")).data();
  for (int i = 1; i < 100; ++i) messages.push_back(leaf(i, "short"));
  EXPECT_EQ(MessageAccess::inPlace<std::string>(messages[0], fieldOf(messages[0], "text")).data(), text);
  for (int i = 1; i < 100; ++i) {
    EXPECT_EQ(slotOf(messages[static_cast<std::size_t>(i)], "number"), i);
    EXPECT_EQ(textOf(messages[static_cast<std::size_t>(i)], "text"), "short");
  }
}

TEST(MessageMove, AssignmentTakesTheFieldsAndKeepsTheRules) {
  OpenMessage target = everyType();
  OpenMessage source = newMessage("Demo_EveryType");
  setInteger(source, "intField", 3);
  target = std::move(source);
  EXPECT_EQ(slotOf(target, "intField"), 3);
  EXPECT_EQ(slotOf(target, "listIntField"), 0);
  LogCapture capture;
  EXPECT_THROW(static_cast<XNMessageBase&>(target) = newMessage("Demo_Nest"), ZqException);
  target = everyType();
  checkEveryType(target);
}

TEST(MessageMove, AssignmentKeepsTheTextsThatTheSourceHasNot) {
  OpenMessage target = newMessage("Demo_EveryChild");
  target.setSerializedXMLString("<stale/>", true);
  target.setLastErrorEnglishA("stale");
  target.setCDATABuffer("body");
  target = newMessage("Demo_EveryChild");
  EXPECT_STREQ(target.getSerializedXMLString(), "<stale/>");
  EXPECT_TRUE(target.isSerialized());
  EXPECT_EQ(target.getLastErrorEnglishStrW(), u"stale");
  EXPECT_FALSE(target.isCDATABufferSet());
}

TEST(MessageMove, AssignmentTakesNoFieldWithoutAHash) {
  OpenMessage source = newMessage("Demo_Hashless");
  setInteger(source, "first", 1);
  setInteger(source, "hiddenNumber", 2);
  OpenMessage target = newMessage("Demo_Hashless");
  target = std::move(source);
  EXPECT_EQ(slotOf(target, "first"), 1);
  EXPECT_EQ(slotOf(target, "hiddenNumber"), 0);
  EXPECT_FALSE(hasBit(target, "hiddenNumber"));
}

TEST(MessageMove, LeavesAMessageThatAnyOtherCanBeAssignedTo) {
  OpenMessage source = everyType();
  const OpenMessage taken(std::move(source));
  source = newMessage("Demo_Nest");
  EXPECT_EQ(source.getTagName(), "Demo_Nest");
  const OpenMessage again(std::move(source));
  source = taken;
  checkEveryType(source);
  LogCapture capture;
  EXPECT_THROW(source = again, ZqException);
  OpenMessage a = newMessage("Demo_Nest");
  OpenMessage b(std::move(a));
  std::swap(a, b);
  EXPECT_EQ(a.getTagName(), "Demo_Nest");
  b = newMessage("Demo_Empty");
  EXPECT_EQ(b.getTagName(), "Demo_Empty");
}

TEST(MessageMove, LetsVectorsEraseInsertSwapAndSort) {
  std::vector<XNMessageBase> messages;
  for (int i = 0; i < 5; ++i) messages.push_back(leaf(i, kLong));
  const auto numbers = [&messages] {
    std::vector<std::int64_t> all;
    for (const XNMessageBase& message : messages) all.push_back(slotOf(message, "number"));
    return all;
  };
  messages.erase(messages.begin());
  EXPECT_THAT(numbers(), ElementsAre(1, 2, 3, 4));
  messages.insert(messages.begin() + 1, leaf(7, "short"));
  messages.insert(messages.begin() + 1, leaf(8, "short"));  // with room left
  EXPECT_THAT(numbers(), ElementsAre(1, 8, 7, 2, 3, 4));
  std::swap(messages[0], messages[2]);
  EXPECT_THAT(numbers(), ElementsAre(7, 8, 1, 2, 3, 4));
  std::sort(messages.begin(), messages.end(), [](const XNMessageBase& a, const XNMessageBase& b) {
    return slotOf(a, "number") < slotOf(b, "number");
  });
  EXPECT_THAT(numbers(), ElementsAre(1, 2, 3, 4, 7, 8));
  EXPECT_EQ(textOf(messages[0], "text"), kLong);
  EXPECT_EQ(textOf(messages[5], "text"), "short");
}

TEST(MessageMove, AssignmentOfABlockMessageCopiesItsFields) {
  const ClassIndices indices = classNamed("Demo_EveryChild");
  std::array<std::int64_t, 32> block{};
  OpenMessage target = newMessage("Demo_EveryChild");
  {
    OpenMessage source(indices.subsystem, indices.index, block.data(), static_cast<int>(sizeof block));
    setText(source, "text", kLong);
    target = std::move(source);
  }
  block.fill(-1);
  EXPECT_EQ(textOf(target, "text"), kLong);
}

TEST(MessageMove, AssignmentOfABlockMessageToOneThatWasMovedFromCopiesItsFieldsToo) {
  const ClassIndices indices = classNamed("Demo_EveryChild");
  std::array<std::int64_t, 32> block{};
  OpenMessage target = newMessage("Demo_Nest");
  const OpenMessage taken(std::move(target));
  {
    OpenMessage source(indices.subsystem, indices.index, block.data(), static_cast<int>(sizeof block));
    setText(source, "text", kLong);
    target = std::move(source);
  }
  block.fill(-1);
  EXPECT_EQ(textOf(target, "text"), kLong);
}

}  // namespace
}  // namespace zqxml
