#include <gtest/gtest.h>
#include <zqxml/platform/ev_message_container.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

using Kind = ArgumentInfo::Kind;

std::vector<Kind> kindsOf(const ArgumentInfo& list) {
  std::vector<Kind> kinds;
  for (auto* node = list.first(); node != nullptr; node = node->next.get()) kinds.push_back(node->kind);
  return kinds;
}

TEST(ArgumentInfo, KindsAreNumberedFromFive) {
  EXPECT_EQ(static_cast<int>(Kind::kInt), 5);
  EXPECT_EQ(static_cast<int>(Kind::kUnsignedInt), 6);
  EXPECT_EQ(static_cast<int>(Kind::kLong), 7);
  EXPECT_EQ(static_cast<int>(Kind::kUnsignedLong), 8);
  EXPECT_EQ(static_cast<int>(Kind::kInt64), 9);
  EXPECT_EQ(static_cast<int>(Kind::kUnsignedInt64), 10);
  EXPECT_EQ(static_cast<int>(Kind::kString), 11);
}

TEST(ArgumentInfo, EachTypeGetsItsKind) {
  ArgumentInfo list;
  list << 1 << 2u << 3L << 4UL << 5LL << 6ULL << "7" << std::string("8") << std::string_view("9");
  EXPECT_EQ(kindsOf(list),
            (std::vector<Kind>{Kind::kInt, Kind::kUnsignedInt, Kind::kLong, Kind::kUnsignedLong, Kind::kInt64,
                               Kind::kUnsignedInt64, Kind::kString, Kind::kString, Kind::kString}));
  EXPECT_EQ(list.NoOfArgs(), 9);
}

TEST(ArgumentInfo, ValuesAreKept) {
  ArgumentInfo list;
  list << std::numeric_limits<int>::min() << std::numeric_limits<unsigned long long>::max() << "text";
  const ArgumentInfo::Node* node = list.first();
  EXPECT_EQ(static_cast<std::int64_t>(node->number), std::numeric_limits<int>::min());
  node = node->next.get();
  EXPECT_EQ(node->number, std::numeric_limits<unsigned long long>::max());
  node = node->next.get();
  EXPECT_EQ(node->text, "text");
  EXPECT_EQ(node->next, nullptr);
}

TEST(ArgumentInfo, TextsAreStoredWithTheirLength) {
  ArgumentInfo list;
  list << std::string("a\0b", 3) << std::string("c\0d", 3).c_str() << static_cast<const char*>(nullptr);
  const ArgumentInfo::Node* node = list.first();
  EXPECT_EQ(node->text, std::string("a\0b", 3));
  EXPECT_EQ(node->next->text, "c");
  EXPECT_EQ(node->next->next->text, "");
}

TEST(ArgumentInfo, ClearLeavesAnEmptyListThatTakesArguments) {
  ArgumentInfo list;
  list << 1 << "two";
  list.Clear();
  EXPECT_EQ(list.NoOfArgs(), 0);
  EXPECT_EQ(list.first(), nullptr);
  list << 3;
  EXPECT_EQ(list.NoOfArgs(), 1);
  EXPECT_EQ(list.first()->number, 3u);
}

TEST(ArgumentInfo, LongListsEndWithoutADeepStack) {
  ArgumentInfo list;
  for (int i = 0; i < 1'000'000; ++i) list << i;
  EXPECT_EQ(list.NoOfArgs(), 1'000'000);
}

TEST(ArgumentInfo, MovesLeaveBothListsUsable) {
  ArgumentInfo list;
  list << 1 << 2;
  ArgumentInfo other(std::move(list));
  EXPECT_EQ(other.NoOfArgs(), 2);
  list = ArgumentInfo();
  list << 3;
  EXPECT_EQ(list.NoOfArgs(), 1);
  other << 4;
  EXPECT_EQ(other.NoOfArgs(), 3);
}

TEST(EvMessageContainer, HasAnIdAndArguments) {
  EvMessageContainer event(7);
  event << 1 << "two" << 3LL;
  EXPECT_EQ(event.getMessageId(), 7);
  event.setMessageId(8);
  EXPECT_EQ(event.getMessageId(), 8);
  EXPECT_EQ(kindsOf(event.getArguments()), (std::vector<Kind>{Kind::kInt, Kind::kString, Kind::kInt64}));
  EXPECT_EQ(EvMessageContainer().getMessageId(), 0);
}

}  // namespace
}  // namespace zqxml
