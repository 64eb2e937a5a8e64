// Both writers of XML beside each other: the text without a DOM has to be that of the DOM, to the byte, with
// the same result, the same lines, and the same traces in the message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <tests/support/every_type.h>
#include <tests/support/random_message.h>
#include <tests/support/time_zone.h>
#include <tests/support/xml_ways.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/xml_text.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zqxml {
namespace {

/// Whether the fast writer gives a text of its own.
bool writesFast(const OpenMessage& message, const WayOfWriting& way) {
  OpenMessage copy(message);
  const XmlWalkCall call{way.flags, nullptr, way.version};
  std::string text;
  std::u16string wide;
  return way.wide ? writeXmlText(copy, call, way.rootOnly, wide)
                  : writeXmlText(copy, call, way.rootOnly, text);
}

/// Expects the same of both roads, in some of the ways: all of them in the end, `number` after `number`.
void expectSameText(const OpenMessage& message, unsigned number, unsigned ways) {
  for (unsigned i = 0; i < ways; ++i) {
    const unsigned which = (number * ways + i) * 37 % WayOfWriting::kCount;
    const WayOfWriting way(which);
    ASSERT_EQ(written(message, way, true), written(message, way, false)) << "way " << which;
  }
}

OpenMessage everyType() {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  return message;
}

TEST(XmlWriters, BothGiveTheSameTextOfRandomMessagesInEveryWay) {
  const ScopedTimeZone zone("UTC0");
  const auto messages = randomMessages(0);
  const int count = comparisons(3000);
  int fast = 0;
  for (int number = 0; number < count && !::testing::Test::HasFatalFailure(); ++number) {
    const auto seed = static_cast<std::uint64_t>(number);
    const OpenMessage message = messages(rc::Random(seed), number % 100).value();
    SCOPED_TRACE(number);
    expectSameText(message, static_cast<unsigned>(number), 8);
    if (writesFast(message, WayOfWriting(static_cast<unsigned>(number)))) ++fast;
  }
  EXPECT_GT(fast, count / 3) << "the fast road is hardly taken, and nothing is compared";
}

TEST(XmlWriters, BothGiveTheSameTextOfEveryTypeInEveryWay) {
  const ScopedTimeZone zone("UTC0");
  expectSameText(everyType(), 0, WayOfWriting::kCount);
}

TEST(XmlWriters, EveryTypeIsWrittenWithoutADom) {
  OpenMessage message = everyType();
  for (unsigned number = 0; number < WayOfWriting::kCount; ++number)
    EXPECT_TRUE(writesFast(message, WayOfWriting(number))) << number;
}

TEST(XmlWriters, StoreNothingInAMessageThatHasItsLists) {
  const ClassIndices indices = classNamed("Demo_EveryType");
  constexpr std::size_t kRoom = 65536;
  void* const block = mmap(nullptr, kRoom, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(block, MAP_FAILED);
  {
    // Its slots and the marks of its fields are in the block.
    OpenMessage message(indices.subsystem, indices.index, static_cast<std::int64_t*>(block), kRoom);
    fillEveryType(message);
    ASSERT_TRUE(MessageAccess::buffer(message).usesCallerBlock());
    ASSERT_EQ(mprotect(block, kRoom, PROT_READ), 0);
    for (const bool fast : {true, false}) {
      const FastXmlRoads roads(fast);
      std::string text;
      EXPECT_EQ(message.serialize(text), XN_MSG_OK);
    }
    ASSERT_EQ(mprotect(block, kRoom, PROT_READ | PROT_WRITE), 0);
  }
  munmap(block, kRoom);
}

TEST(XmlWriters, BothEscapeEveryCharacterAlike) {
  OpenMessage message = newMessage("Demo_EveryType");
  OpenMessage marked = newMessage("App_AnnotationSample");
  for (unsigned first = 1; first < 0x10000; first += 64) {
    std::u16string wide;
    for (unsigned unit = first; unit < first + 64; ++unit) wide += static_cast<char16_t>(unit);
    const std::string text = toUtf8(wide);
    setText(message, "stringField", text);
    setText(marked, "cdataText", text);
    MessageAccess::inPlace<std::u16string>(message, fieldOf(message, "wstringField")) = wide;
    MessageAccess::mark(message, fieldOf(message, "wstringField").getMemNum());
    for (const unsigned number : {0u, 1u, 4u, 5u, 12u}) {
      ASSERT_EQ(written(message, WayOfWriting(number), true), written(message, WayOfWriting(number), false))
          << first;
      ASSERT_EQ(written(marked, WayOfWriting(number), true), written(marked, WayOfWriting(number), false))
          << first;
    }
  }
}

/// Texts of every length up to three blocks, with `piece` at every place in them.
template <class Expect>
void forTextsWith(const std::string& piece, Expect expect) {
  for (std::size_t length = 0; length < 49 && !::testing::Test::HasFatalFailure(); length += 1 + length / 20)
    for (std::size_t place = 0; place <= length; place += 1 + place / 9) {
      std::string text(length, 'x');
      text.insert(place, piece);
      expect(text);
    }
}

TEST(XmlWriters, BothGiveTheSameTextWhereverAnUnusualPieceStands) {
  OpenMessage message = newMessage("Demo_EveryType");
  for (const std::string& piece :
       {std::string("&"), std::string("<\"\n"), std::string("\u00e4"), std::string("\u20ac&\u00e4"),
        std::string("\U0001f600"), std::string("\x01"), std::string("\xc3"), std::string("&\xff"),
        std::string("\0", 1), std::string("&\0\x01", 3)})
    forTextsWith(piece, [&](const std::string& text) {
      setText(message, "stringField", text);
      MessageAccess::inPlace<std::u16string>(message, fieldOf(message, "wstringField")) = toUtf16(text);
      MessageAccess::mark(message, fieldOf(message, "wstringField").getMemNum());
      for (const unsigned number : {0u, 1u, 4u, 5u})
        ASSERT_EQ(written(message, WayOfWriting(number), true), written(message, WayOfWriting(number), false))
            << text;
    });
}

TEST(XmlWriters, BothGiveTheSameTextOfAttributesLongerThanTheirRoom) {
  OpenMessage message = newMessage("Demo_EveryType");
  auto& keys = collectionOf<std::map<std::string, std::string>>(message, "mapStringStringField");
  for (const std::size_t length : {100u, 1300u, 1400u, 5000u, 50'000u}) {
    // Six characters for each.
    setText(message, "stringField", std::string(length, '"'));
    keys = {{std::string(length, '"'), std::string(length, '\n')}, {std::string(length, 'k'), "&"}};
    for (const unsigned number : {0u, 1u, 4u, 5u})
      ASSERT_EQ(written(message, WayOfWriting(number), true), written(message, WayOfWriting(number), false))
          << length;
  }
}

TEST(XmlWriters, TheTextIsTheSameWhereverItsRoomEnds) {
  OpenMessage message = everyType();
  const auto textWith = [&](std::size_t count) {
    setText(message, "stringField", std::string(count, 'x'));
    std::string text;
    EXPECT_TRUE(writeXmlText(message, XmlWalkCall{}, false, text));
    return text;
  };
  const std::string start = " stringField=\"";
  const std::string expected = textWith(0);
  const std::size_t place = expected.find(start) + start.size();
  for (std::size_t count = 1; count < 8200; ++count)
    ASSERT_EQ(textWith(count), std::string(expected).insert(place, count, 'x'));
}

TEST(XmlWriters, BothGiveTheSameLongTextWhateverLengthTheLastOneHad) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "listStringField");
  auto& texts = MessageAccess::make<std::vector<std::string>>(message, field, true);
  for (const std::size_t count : {5u, 3000u, 3000u, 300u, 9000u, 2000u}) {
    texts.assign(count, "of the <usual> kind");
    for (const unsigned number : {0u, 1u, 4u})
      ASSERT_EQ(written(message, WayOfWriting(number), true), written(message, WayOfWriting(number), false))
          << count;
  }
}

}  // namespace
}  // namespace zqxml
