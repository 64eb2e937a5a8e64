// Messages to XML and back: nothing is lost but what the form cannot hold.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/xml/xml_encoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <ostream>

#include "tests/support/every_type.h"
#include "tests/support/message_dump.h"
#include "tests/support/time_zone.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using XmlRead::Every;
using XmlRead::Level;
using XmlRead::Node;

/// A way to write a message; every text is read the same way.
struct Writing {
  const char* name;
  EncodingFlags flags;
  bool wide = false;
  bool rootOnly = false;

  /// `out`, of the same class, gets what was read.
  void roundTrip(XNMessageBase& message, XNMessageBase& out) const {
    XMLEncoder encoder(flags, nullptr);
    if (wide) {
      std::u16string text;
      ASSERT_EQ(encoder.serializeUTF16(message, text, rootOnly), XN_MSG_OK);
      ASSERT_EQ(XMLSerializer().unserialize(out, text.c_str(), false, false), XN_MSG_OK);
    } else {
      std::string text;
      ASSERT_EQ(encoder.serialize(message, text, rootOnly), XN_MSG_OK);
      ASSERT_EQ(XMLSerializer().unserialize(out, text, false), XN_MSG_OK);
    }
  }
  friend std::ostream& operator<<(std::ostream& out, const Writing& writing) { return out << writing.name; }
};

Writing writing(const char* name, bool useElements, bool readable, bool wide, bool rootOnly) {
  Writing result{name, {}, wide, rootOnly};
  result.flags.useElements = useElements;
  result.flags.readable = readable;
  return result;
}

class XmlRoundTrip : public testing::TestWithParam<Writing> {
 protected:
  template <class Message>
  void expectSame(Message& message) const {
    Message read;
    GetParam().roundTrip(message, read);
    EXPECT_EQ(dump(read), dump(message));
  }

 private:
  ScopedTimeZone zone_{"UTC0"};
};
INSTANTIATE_TEST_SUITE_P(Ways, XmlRoundTrip,
                         testing::Values(writing("Attributes", false, false, false, false),
                                         writing("Root", false, false, false, true),
                                         writing("Elements", true, false, false, false),
                                         writing("Readable", false, true, false, false),
                                         writing("ReadableElements", true, true, false, true),
                                         writing("Wide", false, false, true, false),
                                         writing("WideRoot", false, false, true, true),
                                         writing("WideReadableElements", true, true, true, false)),
                         [](const auto& way) { return way.param.name; });

TEST_P(XmlRoundTrip, KeepsAFieldOfEveryType) {
  Demo::EveryType message;
  fillEveryType(message);
  Demo::EveryType read;
  GetParam().roundTrip(message, read);
  checkEveryType(read);
  EXPECT_EQ(dump(read), dump(message));
}

TEST_P(XmlRoundTrip, KeepsObjectsInObjectsInListsInMaps) {
  Node node;
  node.setId(1);
  node.mutableChild().setName("child");
  node.mutableChild().mutableChild().mutableTags() = {"a", "b"};
  for (int i = 0; i < 5; ++i) {
    Node& item = node.addToItems();
    item.setId(i);
    item.addToItems().mutablePlace().setX(i);
    item.mutableCounts() = {i, i + 1};
  }
  Node& value = node.addToByName("key");
  value.setName("value");
  // Not keyed by a scalar: that is lost inside an object, in attribute form (below).
  Node innerKey;
  innerKey.setId(7);
  Node innerValue;
  innerValue.addToItems().setName("inner");
  value.mutablePairs().emplace(innerKey, innerValue);
  value.addToItems().setId(8);
  expectSame(node);
}

TEST_P(XmlRoundTrip, KeepsMapsOfScalarsAtTheTop) {
  Node node;
  node.mutableSizes() = {{"", 0}, {"a", -1}, {"b<&>", 9}};
  node.mutableWords() = {{"", "x"}, {"k", "\xe6\x97\xa5"}, {"l", "a\1b"}};
  expectSame(node);
}

TEST_P(XmlRoundTrip, KeepsTextsOfEveryCharacter) {
  Every every;
  std::u16string all;
  for (char32_t unit = 1; unit < 0xffff; unit += unit < 0x300 ? 1 : 97) all += static_cast<char16_t>(unit);
  every.setWstringField(all + u"\U0001F600");
  every.setStringField("a\tb\nc\rd\x01\x1f\x7f \"'<>& \xf0\x9f\x98\x80 |#");
  every.mutableListString() = {" x ", "|", "|a", "||", "\x02"};
  every.mutableListWstring() = {u"\ufffe", u"x\n"};
  Every read;
  GetParam().roundTrip(every, read);
  EXPECT_EQ(read.getWstringField(), every.getWstringField());
  EXPECT_EQ(read.getStringField(), every.getStringField());
  EXPECT_EQ(read.getListString(), every.getListString());
  EXPECT_EQ(read.getListWstring(), every.getListWstring());
}

TEST_P(XmlRoundTrip, KeepsTheEndsOfNumbers) {
  Every every;
  every.setIntField(std::numeric_limits<std::int32_t>::min());
  every.setUintField(std::numeric_limits<std::uint32_t>::max());
  every.setLonglongField(std::numeric_limits<std::int64_t>::min());
  every.setUlonglongField(std::numeric_limits<std::uint64_t>::max());
  every.setTime64Field(std::numeric_limits<std::int64_t>::max());
  every.mutableListInt() = {std::numeric_limits<std::int32_t>::min(),
                            std::numeric_limits<std::int32_t>::max()};
  every.mutableListLong() = every.getListInt();
  every.mutableListUint() = {0, std::numeric_limits<std::uint32_t>::max()};
  every.mutableListLonglong() = {std::numeric_limits<std::int64_t>::min(),
                                 std::numeric_limits<std::int64_t>::max()};
  every.mutableListUlonglong() = {0, std::numeric_limits<std::uint64_t>::max()};
  every.mutableMapIntInt() = {
      {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}};
  expectSame(every);
}

TEST_P(XmlRoundTrip, KeepsBytes) {
  Every every;
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  every.setBstringField(bytes);
  every.mutableListBstring() = {bstring(bytes), bstring("x")};
  every.setPstringField("p\xc3\xa4ssword");
  expectSame(every);
}

TEST_P(XmlRoundTrip, KeepsDatesAndTimes) {
  Every every;
  every.setDateTime(1577934245);
  every.setDay(1577923200);
  every.setTimeOfDay(86400);
  every.setTimeAndDate(0);
  every.unsetTimeAndDate();
  expectSame(every);
}

TEST_P(XmlRoundTrip, KeepsMarkedTextsInCdataSections) {
  Every every;
  every.setCdataText("a<b & c \n]] >");
  expectSame(every);
}

TEST_P(XmlRoundTrip, KeepsAnEmptyObject) {
  XmlRead::Empty empty;
  expectSame(empty);
  Every every;
  expectSame(every);
}

TEST_P(XmlRoundTrip, ReadsAgainWhatItHasRead) {
  Demo::EveryType message;
  fillEveryType(message);
  Demo::EveryType once;
  GetParam().roundTrip(message, once);
  Demo::EveryType twice;
  GetParam().roundTrip(once, twice);
  EXPECT_EQ(dump(twice), dump(message));
}

// --- What does not come back

TEST(XmlRoundTripLosses, KeepsTurningAnIntervalOfADayIntoOneUnderReadable) {
  const ScopedTimeZone zone("UTC0");
  Every every;
  every.setDateTime(86400);
  Every read;
  writing("", false, true, false, false).roundTrip(every, read);
  EXPECT_EQ(read.getDateTime(), 1);  // "1 dd", read as a number
}

TEST(XmlRoundTripLosses, KeepsLosingADateOfZeroUnderReadable) {
  Every every;
  every.setDateTime(0);
  Every read;
  writing("", false, true, false, false).roundTrip(every, read);
  EXPECT_FALSE(read.isDateTimeSet());
}

TEST(XmlRoundTripLosses, KeepsLosingEmptyTextsInElementForm) {
  Every every;
  every.setStringField("");
  every.mutableListString() = {"", "x"};
  Every read;
  writing("", true, false, false, false).roundTrip(every, read);
  EXPECT_FALSE(read.isStringFieldSet());
  EXPECT_THAT(read.getListString(), ElementsAre("x"));
  writing("", false, false, false, false).roundTrip(every, read);
  EXPECT_TRUE(read.isStringFieldSet());
  EXPECT_THAT(read.getListString(), ElementsAre("", "x"));
}

TEST(XmlRoundTripLosses, KeepsLosingEmptyListsAndMaps) {
  Every every;
  every.mutableListInt();
  every.mutableMapIntInt();
  Every read;
  writing("", false, false, false, false).roundTrip(every, read);
  EXPECT_FALSE(read.isListIntSet());
  EXPECT_FALSE(read.isMapIntIntSet());
}

TEST(XmlRoundTripLosses, KeepsLosingScalarMapsOfSubObjectsInAttributeForm) {
  Node node;
  node.mutableChild().mutableWords() = {{"k", "v"}};
  Node read;
  writing("", false, false, false, false).roundTrip(node, read);
  EXPECT_FALSE(read.getChild()->isWordsSet());
  writing("", true, false, false, false).roundTrip(node, read);
  EXPECT_THAT(read.getChild()->getWords(), ElementsAre(testing::Pair("k", "v")));
}

TEST(XmlRoundTripLosses, KeepsTheDoubledEndOfACdataSection) {
  Every every;
  every.setCdataText("a]]>b");
  std::string text;
  ASSERT_EQ(XMLEncoder().serialize(every, text, true), XN_MSG_OK);
  EXPECT_THAT(text, testing::HasSubstr("]]]]"));
}

TEST(XmlRoundTripLosses, KeepsSixDigitsOfFloatingPoint) {
  Every every;
  every.setDoubleField(0.123456789);
  every.mutableListFloat() = {1234567.0f};
  Every read;
  writing("", false, false, false, false).roundTrip(every, read);
  EXPECT_EQ(read.getDoubleField(), 0.123457);
  EXPECT_THAT(read.getListFloat(), ElementsAre(1.23457e+06f));
}

TEST(XmlRoundTripLosses, KeepsLosingANegativeEnumerationNumberButNotItsName) {
  Every every;
  every.setEnumField(Level::BELOW);
  Every read;
  writing("", false, false, false, false).roundTrip(every, read);
  EXPECT_FALSE(read.isEnumFieldSet());
  writing("", false, true, false, false).roundTrip(every, read);
  EXPECT_EQ(read.getEnumField(), Level::BELOW);
}

}  // namespace
}  // namespace zqxml
