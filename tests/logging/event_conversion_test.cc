#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/catalogue/generated/Common.h>
#include <zqxml/logging/event_conversion.h>
#include <zqxml/platform/ev_message_container.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

using Common::EventArgument;
using Common::EventArgumentType;
using Common::EventMessage;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = ArgumentInfo::Kind;

constexpr char kPush[] = "pushEventArgumentXML";
constexpr char kFrom[] = "getEvMessageContainerArgumentsFromXML";

/// Arguments as "position type data", and of a container as "kind value".
template <class Arguments>
std::vector<std::string> shown(const Arguments& arguments) {
  std::vector<std::string> texts;
  for (const EventArgument& argument : arguments)
    texts.push_back(std::to_string(argument.getPosition()) + ' ' +
                    std::to_string(static_cast<int>(argument.getType())) + ' ' + argument.getData());
  return texts;
}
std::vector<std::string> shown(const EvMessageContainer& container) {
  std::vector<std::string> texts;
  for (auto* node = container.getArguments().first(); node != nullptr; node = node->next.get()) {
    const bool isSigned = node->kind == Kind::kInt || node->kind == Kind::kLong || node->kind == Kind::kInt64;
    texts.push_back(std::to_string(static_cast<int>(node->kind)) + ' ' +
                    (node->kind == Kind::kString ? node->text
                     : isSigned                  ? std::to_string(static_cast<std::int64_t>(node->number))
                                                 : std::to_string(node->number)));
  }
  return texts;
}

std::vector<std::string> readBack(std::initializer_list<std::pair<int, std::string>> arguments) {
  std::vector<EventArgument> list;
  for (const auto& [type, data] : arguments) {
    EventArgument& argument = list.emplace_back();
    argument.setType(static_cast<EventArgumentType>(type));
    argument.setData(data);
  }
  EvMessageContainer container;
  EXPECT_TRUE(getEvMessageContainerArgumentsFromXML(list, container));
  return shown(container);
}

// --- Container to message

TEST(EventToMessage, WithoutArgumentsOnlyTheIdIsSet) {
  EventMessage message;
  setEvMessageContainerToXML(EvMessageContainer(7), message);
  EXPECT_TRUE(message.isMessageIdSet());
  EXPECT_EQ(message.getMessageId(), 7);
  EXPECT_FALSE(message.isArgumentsSet());
  EXPECT_EQ(ownedBy<std::vector<XNMessageBase>>(message, "arguments"), nullptr) << "no list is made";
}

TEST(EventToMessage, EachKindHasItsTypeAndData) {
  EvMessageContainer event(-1);
  event << -1 << 2u << -3L << 4UL << -5LL << 6ULL << "seven";
  EventMessage message;
  setEvMessageContainerToXML(event, message);
  EXPECT_EQ(message.getMessageId(), -1);
  EXPECT_THAT(shown(std::as_const(message).getArguments()),
              ElementsAre("1 0 -1", "2 4 2", "3 1 -3", "4 5 4", "5 2 -5", "6 2 6", "7 3 seven"));
}

TEST(EventToMessage, NumbersAtTheirLimits) {
  EvMessageContainer event;
  event << std::numeric_limits<int>::min() << std::numeric_limits<unsigned>::max()
        << std::numeric_limits<long>::min() << std::numeric_limits<unsigned long>::max()
        << std::numeric_limits<long long>::min();
  EventMessage message;
  setEvMessageContainerToXML(event, message);
  EXPECT_THAT(shown(std::as_const(message).getArguments()),
              ElementsAre("1 0 -2147483648", "2 4 4294967295", "3 1 -9223372036854775808",
                          "4 5 18446744073709551615", "5 2 -9223372036854775808"));
}

TEST(EventToMessage, KeepsWritingUnsigned64BitNumbersWithTheSignedType) {
  EvMessageContainer event;
  event << std::numeric_limits<unsigned long long>::max();
  EventMessage message;
  setEvMessageContainerToXML(event, message);
  EXPECT_THAT(shown(std::as_const(message).getArguments()), ElementsAre("1 2 18446744073709551615"));
  EvMessageContainer back;
  EXPECT_TRUE(getEvMessageContainerFromXML(message, back));
  EXPECT_THAT(shown(back), ElementsAre("9 9223372036854775807")) << "clipped";
}

TEST(EventToMessage, ZeroBytesOfATextAreKept) {
  EvMessageContainer event;
  event << std::string("a\0b\0", 4);
  EventMessage message;
  setEvMessageContainerToXML(event, message);
  EXPECT_EQ(std::as_const(message).getArguments()[0].getData(), std::string("a\0b\0", 4));
}

TEST(EventToMessage, ArgumentsGoBehindThoseThatAreThere) {
  EvMessageContainer event(1);
  event << 1 << 2;
  EventMessage message;
  setEvMessageContainerToXML(event, message);
  setEvMessageContainerToXML(event, message);
  EXPECT_THAT(shown(std::as_const(message).getArguments()), ElementsAre("1 0 1", "2 0 2", "3 0 1", "4 0 2"));
}

TEST(EventToMessage, ArgumentsGoIntoAListOfTheCallersToo) {
  EvMessageContainer event;
  event << 1 << "two";
  std::vector<EventArgument> list;
  setEvMessageArgumentsToXML(&event.getArguments(), list);
  EXPECT_THAT(shown(list), ElementsAre("1 0 1", "2 3 two"));
  setEvMessageArgumentsToXML(nullptr, list);
  EXPECT_EQ(list.size(), 2u);
}

TEST(EventToMessage, EmptyListOfTheCallersTakesItsRoomAtOnce) {
  EvMessageContainer event;
  event << 1 << 2 << 3 << 4 << 5;
  std::vector<EventArgument> list;
  setEvMessageArgumentsToXML(&event.getArguments(), list);
  EXPECT_EQ(list.capacity(), 5u);
}

TEST(EventToMessage, ListOfTheCallersGrowsInStepsHoweverManyEventsItTakes) {
  EvMessageContainer event;
  event << 1;
  std::vector<EventArgument> list;
  int growths = 0;
  for (int i = 0; i < 1000; ++i) {
    const std::size_t before = list.capacity();
    setEvMessageArgumentsToXML(&event.getArguments(), list);
    growths += list.capacity() != before ? 1 : 0;
  }
  EXPECT_EQ(list.size(), 1000u);
  EXPECT_LT(growths, 20);
}

// --- Message to container

TEST(MessageToEvent, ContainerIsEmptiedFirst) {
  EvMessageContainer event(9);
  event << 1 << 2 << 3;
  EventMessage message;
  message.setMessageId(4);
  EXPECT_TRUE(getEvMessageContainerFromXML(message, event));
  EXPECT_EQ(event.getMessageId(), 4);
  EXPECT_EQ(event.getArguments().NoOfArgs(), 0);
  EXPECT_EQ(ownedBy<std::vector<XNMessageBase>>(message, "arguments"), nullptr) << "reading makes no list";
}

TEST(MessageToEvent, EachTypeIsInsertedAsItsKind) {
  EXPECT_THAT(readBack({{0, "-1"}, {1, "-2"}, {2, "-3"}, {3, "four"}, {4, "5"}, {5, "6"}, {6, "7"}}),
              ElementsAre("5 -1", "7 -2", "9 -3", "11 four", "6 5", "8 6", "10 7"));
}

TEST(MessageToEvent, NumbersAreReadAsTheirFunctionsDo) {
  EXPECT_THAT(readBack({{0, " \t+12abc"}, {1, ""}, {2, "abc"}, {4, "-1"}, {5, "0x10"}, {6, "-1"}}),
              ElementsAre("5 12", "7 0", "9 0", "6 4294967295", "8 0", "10 18446744073709551615"));
}

TEST(MessageToEvent, NumbersThatDoNotFitAreClamped) {
  const std::string large = "99999999999999999999";
  EXPECT_THAT(readBack({{0, large}, {1, large}, {2, large}, {4, large}, {5, large}, {6, large}}),
              ElementsAre("5 2147483647", "7 2147483647", "9 9223372036854775807", "6 4294967295",
                          "8 4294967295", "10 18446744073709551615"));
  EXPECT_THAT(readBack({{0, "-" + large}, {1, "-" + large}, {2, "-" + large}}),
              ElementsAre("5 -2147483648", "7 -2147483648", "9 -9223372036854775808"));
  EXPECT_THAT(readBack({{0, "2147483648"}, {1, "-2147483649"}, {5, "4294967296"}}),
              ElementsAre("5 2147483647", "7 -2147483648", "8 4294967295"));
}

TEST(MessageToEvent, KeepsCuttingTextsAtTheirFirstNul) {
  EXPECT_THAT(readBack({{3, std::string("a\0b", 3)}}), ElementsAre("11 a"));
}

TEST(MessageToEvent, PositionsAreNotLookedAt) {
  std::vector<EventArgument> list(2);
  list[0].setPosition(2);
  list[0].setData("5");
  list[1].setPosition(1);
  list[1].setData("6");
  EvMessageContainer event;
  event << 4;
  EXPECT_TRUE(getEvMessageContainerArgumentsFromXML(list, event));
  EXPECT_THAT(shown(event), ElementsAre("5 4", "5 5", "5 6"));
}

TEST(MessageToEvent, UnknownTypeIsLoggedAndEndsTheConversion) {
  for (const int type : {7, -1}) {
    EventMessage message;
    message.setMessageId(3);
    pushEventArgumentXML(message, 1);
    message.addToArguments().setType(static_cast<EventArgumentType>(type));
    pushEventArgumentXML(message, 2);
    LogCapture capture;
    EvMessageContainer event;
    EXPECT_FALSE(getEvMessageContainerFromXML(message, event));
    EXPECT_EQ(event.getMessageId(), 3);
    EXPECT_THAT(shown(event), ElementsAre("5 1")) << "the earlier ones stay";
    EXPECT_THAT(capture.lines(),
                ElementsAre(CapturedLine{
                    kFrom, 0, "Unknown argument type not supported [" + std::to_string(type) + "]."}));
  }
}

TEST(MessageToEvent, AnEventComesThroughTheBinaryForm) {
  EvMessageContainer event(42);
  event << -1 << 2u << "three \xC3\xBC" << 4LL;
  EventMessage message;
  setEvMessageContainerToXML(event, message);
  BinaryBuffer buffer;
  ASSERT_NE(message.SerializeBinary(buffer), 0u);
  EventMessage received;
  ASSERT_EQ(received.UnserializeBinary(buffer), 0);
  EvMessageContainer back;
  EXPECT_TRUE(getEvMessageContainerFromXML(received, back));
  EXPECT_EQ(back.getMessageId(), 42);
  EXPECT_EQ(shown(back), shown(event));
}

// --- Pushing

TEST(PushEventArgument, PositionsCountFromOne) {
  EventMessage message;
  EXPECT_TRUE(pushEventArgumentXML(message, 5));
  EXPECT_TRUE(pushEventArgumentXML(message, std::string("six")));
  EXPECT_TRUE(pushEventArgumentXML(message, 7LL));
  EXPECT_THAT(shown(std::as_const(message).getArguments()), ElementsAre("1 0 5", "2 3 six", "3 2 7"));
}

TEST(PushEventArgument, EachTypeHasItsNameAndIsLogged) {
  LogCapture capture(10);
  EventMessage message;
  EXPECT_TRUE(pushEventArgumentXML(message, -1));
  EXPECT_TRUE(pushEventArgumentXML(message, std::numeric_limits<long>::min()));
  EXPECT_TRUE(pushEventArgumentXML(message, std::numeric_limits<long long>::max()));
  EXPECT_THAT(shown(std::as_const(message).getArguments()),
              ElementsAre("1 0 -1", "2 1 -9223372036854775808", "3 2 9223372036854775807"));
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{kPush, 10, "Pushing argument of type [int]."},
                                           CapturedLine{kPush, 10, "Pushing argument of type [long]."},
                                           CapturedLine{kPush, 10, "Pushing argument of type [__int64]."}));
}

TEST(PushEventArgument, TextsAreNotLogged) {
  LogCapture capture(25);
  EventMessage message;
  EXPECT_TRUE(pushEventArgumentXML(message, std::string("a\0b", 3)));
  EXPECT_TRUE(pushEventArgumentXML(message, "literal"));
  EXPECT_TRUE(pushEventArgumentXML(message, static_cast<const char*>(nullptr)));
  EXPECT_THAT(shown(std::as_const(message).getArguments()),
              ElementsAre(std::string("1 3 a\0b", 7), "2 3 literal", "3 3 "));
  EXPECT_TRUE(capture.empty());
}

TEST(PushEventArgument, TextMayBeThatOfAnArgumentOfTheEvent) {
  EventMessage message;
  pushEventArgumentXML(message, "again");
  for (std::size_t i = 0; i < 4; ++i)
    pushEventArgumentXML(message, std::as_const(message).getArguments()[i].getData());
  EXPECT_THAT(shown(std::as_const(message).getArguments()),
              ElementsAre("1 3 again", "2 3 again", "3 3 again", "4 3 again", "5 3 again"));
}

TEST(PushEventArgument, OtherTypesAreRefused) {
  LogCapture capture(10);
  EventMessage message;
  EXPECT_FALSE(pushEventArgumentXML(message, 5u));
  EXPECT_FALSE(pushEventArgumentXML(message, 1.5));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kPush, 10, "Pushing argument of type [unsigned int]."},
                          CapturedLine{kPush, 0, "Unknown argument type not supported [unsigned int]."},
                          CapturedLine{kPush, 10, "Pushing argument of type [double]."},
                          CapturedLine{kPush, 0, "Unknown argument type not supported [double]."}));
  EXPECT_TRUE(message.isArgumentsSet()) << "the list is made before the type is looked at";
  EXPECT_TRUE(std::as_const(message).getArguments().empty());
}

TEST(PushEventArgument, EventThatWasMovedAwayTakesNothing) {
  EventMessage message;
  const EventMessage taken(std::move(message));
  LogCapture capture;
  EXPECT_TRUE(pushEventArgumentXML(message, 5));
  EXPECT_FALSE(capture.empty());
  EXPECT_TRUE(std::as_const(message).getArguments().empty());
}

}  // namespace
}  // namespace zqxml
