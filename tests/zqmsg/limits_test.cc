// What a message loses on its way through a form, and what it keeps: the tables of docs/limits.md.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/ZQGui.h>

#include <functional>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/time_zone.h"
#include "tools/zqmsg/codec.h"
#include "tools/zqmsg/console.h"
#include "tools/zqmsg/library_log.h"
#include "tools/zqmsg/message_diff.h"

namespace zqxml::tool {
namespace {

using namespace std::string_literals;
using Lines = std::vector<std::string>;

enum Way { kXmlWay, kElementsWay, kReadableWay, kBinaryWay, kBinary1Way, kJsonWay };

WriteOptions optionsOf(Way way) {
  WriteOptions options;
  options.form = way == kBinaryWay || way == kBinary1Way ? Form::kBinary : Form::kXml;
  options.elements = way == kElementsWay;
  options.readable = way == kReadableWay;
  if (way == kJsonWay) options.form = Form::kJson;
  if (way == kBinary1Way) options.version = 1;
  return options;
}

/// What is different after the message was written in the way's form and read back.
Lines lost(XNMessageBase& message, Way way) {
  Console console;
  LibraryLog log(console);
  const WriteOptions options = optionsOf(way);
  const MessagePtr back = decode(options.form, encode(message, options, "test", log), "test", log);
  Lines lines;
  MessageDiff([&lines](const std::string& path, const std::string& a, const std::string& b) {
    lines.push_back(path + ": " + a + " != " + b);
  }).compare("", message, *back);
  return lines;
}

using Every = Demo::EveryType;
using Fill = std::function<void(Every&)>;
const Lines kNothing;

struct LossCase {
  const char* name;
  Fill fill;
  Lines xml, elements, readable, binary;

  friend std::ostream& operator<<(std::ostream& out, const LossCase& loss) { return out << loss.name; }
};

class Loss : public testing::TestWithParam<LossCase> {};

TEST_P(Loss, IsAsDocumented) {
  Every message;
  GetParam().fill(message);
  EXPECT_EQ(lost(message, kXmlWay), GetParam().xml) << "xml";
  EXPECT_EQ(lost(message, kElementsWay), GetParam().elements) << "elements";
  EXPECT_EQ(lost(message, kReadableWay), GetParam().readable) << "readable";
  EXPECT_EQ(lost(message, kBinaryWay), GetParam().binary) << "binary";
}

LossCase same(const char* name, Fill fill, const Lines& xml, const Lines& binary) {
  return {name, std::move(fill), xml, xml, xml, binary};
}

INSTANTIATE_TEST_SUITE_P(
    Limits, Loss,
    testing::Values(
        same("DoubleBeyondSixDigits", [](Every& m) { m.setDoubleField(0.1234567); },
             {"doubleField: 0.1234567 != 0.123457"}, {}),
        same("FloatBeyondSixDigits", [](Every& m) { m.setFloatField(16777216.0f); },
             {"floatField: 16777216 != 16777200"}, {}),
        same("EmptyListOfNumbers", [](Every& m) { m.mutableListIntField(); },
             {"listIntField: 0 elements != (not set)"}, {}),
        same("EmptyListOfTexts", [](Every& m) { m.mutableListStringField(); },
             {"listStringField: 0 elements != (not set)"}, {"listStringField: 0 elements != (not set)"}),
        same("EmptyListOfWideTexts", [](Every& m) { m.mutableListWstringField(); },
             {"listWstringField: 0 elements != (not set)"}, {"listWstringField: 0 elements != (not set)"}),
        same("EmptyListOfObjects", [](Every& m) { m.mutableListObjectField(); },
             {"listObjectField: 0 elements != (not set)"}, {"listObjectField: 0 elements != (not set)"}),
        same("EmptyListOfBinaryTexts", [](Every& m) { m.mutableListBstringField(); },
             {"listBstringField: 0 elements != (not set)"}, {"listBstringField: 0 elements != (not set)"}),
        same("EmptyMap", [](Every& m) { m.mutableMapInt64Int64Field(); },
             {"mapInt64Int64Field: 0 entries != (not set)"}, {}),
        LossCase{"EmptyText",
                 [](Every& m) { m.setStringField(""); },
                 {},
                 {"stringField: \"\" != (not set)"},
                 {},
                 {}},
        LossCase{"EmptyBinaryText",
                 [](Every& m) { m.setBstringField(""); },
                 {},
                 {"bstringField: \"\" != (not set)"},
                 {},
                 {}},
        LossCase{"EmptyTextInAList",
                 [](Every& m) {
                   m.mutableListStringField() = {"a", "", "b"};
                 },
                 {},
                 {"listStringField[1]: \"\" != \"b\"", "listStringField[2]: \"b\" != (none)"},
                 {},
                 {}},
        same("TextWithANul", [](Every& m) { m.setStringField("ab\0cd"s); },
             {"stringField: \"ab\\x00cd\" != \"ab\""}, {"stringField: \"ab\\x00cd\" != \"ab\""}),
        same("WideTextWithANul", [](Every& m) { m.setWstringField(u"ab\0cd"s); },
             {"wstringField: \"ab\\x00cd\" != \"ab\""}, {}),
        same("BinaryTextWithANul", [](Every& m) { m.setBstringField("ab\0cd"s); }, {}, {}),
        same("PasswordWithANul", [](Every& m) { m.setPstringField("ab\0cd"s); },
             {"pstringField: a password of type 1 != another one"},
             {"pstringField: a password of type 1 != another one"}),
        same("LoneSurrogate", [](Every& m) { m.setWstringField(u"a\xd800"); }, {},
             {"wstringField: \"a\ufffd\" != another one"}),
        same("TextThatIsNoUtf8", [](Every& m) { m.setStringField("a\xff"); },
             {"stringField: \"a\\xff\" != \"a\ufffd\""}, {}),
        same("IllegalCharacters", [](Every& m) { m.setStringField("a\x01|\x1f\ufffe"); }, {}, {}),
        same("IllegalCharacterBesideItsOwnEncoding", [](Every& m) { m.setStringField("|#\x1f"); },
             {"stringField: \"|#\\x1f\" != \"||#|#1F!\""}, {}),
        same("WhiteSpaceInText", [](Every& m) { m.setStringField(" a\tb\nc\rd  "); }, {}, {}),
        same("NegativeEnumerator", [](Every& m) { m.setEnumField(static_cast<Demo::EveryMode>(-1)); },
             {"enumField: -1 != (not set)"}, {}),
        same("UnsignedLongLong", [](Every& m) { m.setUlonglongField(7); }, {},
             {"ulonglongField: 7 != (not set)"}),
        same("ListOfUnsignedLongLong",
             [](Every& m) {
               m.mutableListUlonglongField() = {1, 2};
             },
             {}, {"listUlonglongField[0]: 1 != (none)", "listUlonglongField[1]: 2 != (none)"}),
        same("LargestAndSmallestNumbers",
             [](Every& m) {
               m.setLonglongField(std::numeric_limits<std::int64_t>::min());
               m.setIntField(std::numeric_limits<std::int32_t>::min());
               m.setUintField(std::numeric_limits<std::uint32_t>::max());
             },
             {}, {})),
    [](const auto& loss) { return std::string(loss.param.name); });

TEST(Limits, MapsInSubObjectsAreLostInAttributeForm) {
  Demo::MapOuter message;
  message.mutableByName() = {{"top", 1}};
  message.mutableInner().mutableByName() = {{"k", 7}};
  message.mutableInner().setAfter(3);
  message.setAfter(4);
  EXPECT_EQ(lost(message, kXmlWay), Lines{"inner.byName: 1 entry != (not set)"});
  EXPECT_EQ(lost(message, kReadableWay), Lines{"inner.byName: 1 entry != (not set)"});
  EXPECT_EQ(lost(message, kElementsWay), kNothing);
  EXPECT_EQ(lost(message, kBinaryWay), kNothing);
}

TEST(Limits, XmlOfOldWayMessagesSetsEveryField) {
  ZQGui::AlertCriteria message;
  message.unsetCriteriaId();
  EXPECT_EQ(lost(message, kXmlWay), Lines{"criteriaId: (not set) != 0"});
  EXPECT_EQ(lost(message, kBinaryWay), kNothing);
}

TEST(Limits, ReadableDatesAndTimesAreTextsOfTheirKind) {
  const ScopedTimeZone zone("UTC0");
  App::AnnotationSample message;
  message.setDateTime(0);
  message.setDay(1577836800 + 3600);
  message.setLongDate(86400);
  message.setTime64Date(std::int64_t{1} << 33);
  message.setSecondsOfDay(86401);
  EXPECT_EQ(lost(message, kReadableWay),
            (Lines{"dateTime: 0 != (not set)", "day: 1577840400 != 1577836800", "longDate: 86400 != 1",
                   "time64Date: 8589934592 != (not set)", "secondsOfDay: 86401 != (not set)"}));
  EXPECT_EQ(lost(message, kXmlWay), kNothing);
  EXPECT_EQ(lost(message, kBinaryWay), kNothing);
}

TEST(Limits, JsonKeepsWhatOtherFormsLose) {
  Every message;
  message.setDoubleField(0.1234567);
  message.setFloatField(16777216.0f);
  message.mutableListIntField();
  message.mutableListStringField() = {"a", "", "b"};
  message.mutableListObjectField();
  message.mutableMapInt64Int64Field();
  message.setStringField("|#\0\x1f"s);
  message.setBstringField("ab\0cd"s);
  message.setEnumField(static_cast<Demo::EveryMode>(-1));
  message.setUlonglongField(7);
  message.mutableListUlonglongField() = {1, 2};
  EXPECT_EQ(lost(message, kJsonWay), kNothing);
  ZQGui::AlertCriteria oldWay;
  oldWay.unsetCriteriaId();
  EXPECT_EQ(lost(oldWay, kJsonWay), kNothing);
}

TEST(Limits, JsonReplacesWhatIsNoUnicodeAndCutsPasswords) {
  Every message;
  message.setStringField("a\xff");
  message.setWstringField(u"a\xd800");
  message.setPstringField("ab\0cd"s);
  EXPECT_EQ(lost(message, kJsonWay),
            (Lines{"stringField: \"a\\xff\" != \"a\ufffd\"", "wstringField: \"a\ufffd\" != another one",
                   "pstringField: a password of type 1 != another one"}));
}

TEST(Limits, JsonRefusesAnIntegerBeyondItsType) {
  Console console;
  LibraryLog log(console);
  const MessagePtr message = decode(Form::kXml, "<Demo_EveryType intField=\"5000000000\"/>", "test", log);
  WriteOptions options;
  options.form = Form::kJson;
  const std::string text = encode(*message, options, "test", log);
  EXPECT_EQ(text, "{\"Demo_EveryType\":{\"intField\":\"5000000000\"}}\n");
  EXPECT_THROW(decode(Form::kJson, text, "test", log), Failure);
}

TEST(Limits, VersionOneCutsBinaryTextsAtANul) {
  Every message;
  message.setBstringField("ab\0cd"s);
  EXPECT_EQ(lost(message, kBinary1Way), Lines{"bstringField: \"ab\\x00cd\" != \"ab\""});
}

}  // namespace
}  // namespace zqxml::tool
