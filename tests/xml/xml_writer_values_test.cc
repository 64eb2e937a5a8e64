// Values that annotations and flags give another text: readable forms and CDATA.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/message/internal/message_access.h>

#include <cstdint>
#include <string>

#include "tests/support/log_capture.h"
#include "tests/support/time_zone.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using namespace std::string_literals;
using App::AnnotationSample;
using Demo::EveryMode;
using Demo::EveryType;
using Number = EveryType::FieldNumber;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kWalk = "XMLSerializer::serializeXMLRecur";
constexpr std::int32_t kNewYear2020 = 1577836800;  // 2020-01-01 00:00:00 UTC

// --- readable

TEST(ReadableForm, BoolIsTrueForEveryValueButZero) {
  EveryType msg;
  msg.setBoolField(false);
  EXPECT_EQ(readableXmlOf(msg), R"(<Demo_EveryType boolField="false"/>)");
  const FieldDef& field = MessageAccess::classDef(msg)->getFields()[Number::kBoolField];
  MessageAccess::setInteger(msg, field, -7);
  EXPECT_EQ(readableXmlOf(msg), R"(<Demo_EveryType boolField="true"/>)");
  EXPECT_EQ(xmlOf(msg), R"(<Demo_EveryType boolField="-7"/>)");
}

TEST(ReadableForm, EnumIsItsNameAndSoItIsUnderEnumAsText) {
  EveryType msg;
  msg.setEnumField(EveryMode::AUTO);
  msg.setBoolField(true);
  EncodingFlags flags;
  flags.enumAsText = true;
  EXPECT_EQ(readableXmlOf(msg), R"(<Demo_EveryType boolField="true" enumField="AUTO"/>)");
  EXPECT_EQ(xmlOf(msg, flags), R"(<Demo_EveryType boolField="1" enumField="AUTO"/>)");
}

TEST(ReadableForm, EnumValueWithoutANameIsLeftOutAndLogged) {
  EveryType msg;
  msg.setEnumField(static_cast<EveryMode>(9));
  LogCapture log;
  EXPECT_EQ(readableXmlOf(msg), "<Demo_EveryType/>");
  EXPECT_TRUE(log.has(kWalk, 0, "Field [enumField] does not accept value [9]"));
  EXPECT_EQ(xmlOf(msg), R"(<Demo_EveryType enumField="9"/>)");
}

TEST(ReadableForm, KeepsEnumAndBoolListsNumeric) {
  EveryType msg;
  msg.setListEnumField({2});
  msg.setListBoolField({1});
  EXPECT_EQ(readableXmlOf(msg),
            R"(<Demo_EveryType><listEnumField val="2"/><listBoolField val="1"/></Demo_EveryType>)");
}

TEST(ReadableForm, DatesAndTimesAreTextOnlyUnderReadable) {
  const ScopedTimeZone utc("UTC0");
  AnnotationSample msg;
  msg.setDateTime(kNewYear2020);
  msg.setDay(kNewYear2020);
  msg.setSecondsOfDay(3661);
  EXPECT_EQ(readableXmlOf(msg), R"(<App_AnnotationSample dateTime="2020-01-01 00:00:00" day="2020-01-01" )"
                                R"(secondsOfDay="01:01:01"/>)");
  EXPECT_EQ(xmlOf(msg),
            R"(<App_AnnotationSample dateTime="1577836800" day="1577836800" secondsOfDay="3661"/>)");
}

TEST(ReadableForm, DatesAreLocalTime) {
  const ScopedTimeZone west("XYZ8");
  AnnotationSample msg;
  msg.setDateTime(kNewYear2020);
  EXPECT_EQ(readableXmlOf(msg), R"(<App_AnnotationSample dateTime="2019-12-31 16:00:00"/>)");
}

TEST(ReadableForm, EightNumberTypesTakeDatesAndTimes) {
  const ScopedTimeZone utc("UTC0");
  const std::initializer_list<short> kNumbers = {
      Number::kIntField,      Number::kUintField,      Number::kLongField,   Number::kUlongField,
      Number::kLonglongField, Number::kUlonglongField, Number::kTime32Field, Number::kTime64Field};
  for (const short position : kNumbers) {
    EveryType msg;
    PatchedRecord record(msg);
    const FieldDef field = record.field(position);
    MessageAccess::setInteger(msg, field, kNewYear2020);
    record.annotate(position, "\x00\x03\x02");
    EXPECT_EQ(readableXmlOf(msg), "<Demo_EveryType " + std::string(field.getName()) + "=\"2020-01-01\"/>");

    MessageAccess::setInteger(msg, field, 60);
    record.annotate(position, "\x00\x03\x08");
    EXPECT_EQ(readableXmlOf(msg), "<Demo_EveryType " + std::string(field.getName()) + "=\"00:01:00\"/>");
  }
}

TEST(ReadableForm, OtherTypesDoNot) {
  Demo::Forced msg;
  msg.setDateText("text");
  msg.setDateBool(true);
  msg.setDateEnum(EveryMode::ON);
  msg.setDateDouble(1.5);
  msg.setDateList({1});
  EXPECT_EQ(readableXmlOf(msg),
            R"(<Demo_Forced dateBool="true" dateDouble="1.5" dateEnum="ON" dateText="text">)"
            R"(<dateList val="1"/></Demo_Forced>)");
}

TEST(ReadableForm, RecordBelowThreeBytesIsNone) {
  EveryType msg;
  msg.setIntField(60);
  PatchedRecord record(msg);
  record.annotate(Number::kIntField, "\x00\x02\x08");
  EXPECT_EQ(readableXmlOf(msg), R"(<Demo_EveryType intField="60"/>)");
}

TEST(ReadableForm, TimeRunsFromMidnightToMidnight) {
  AnnotationSample msg;
  msg.setSecondsOfDay(0);
  EXPECT_THAT(readableXmlOf(msg), HasSubstr(R"(secondsOfDay="00:00:00")"));
  msg.setSecondsOfDay(86399);
  EXPECT_THAT(readableXmlOf(msg), HasSubstr(R"(secondsOfDay="23:59:59")"));
  msg.setSecondsOfDay(86400);
  EXPECT_THAT(readableXmlOf(msg), HasSubstr(R"(secondsOfDay="24:00:00")"));
}

TEST(ReadableForm, TimeOutsideTheDayIsLeftOutAndLogged) {
  AnnotationSample msg;
  LogCapture log;
  msg.setSecondsOfDay(86401);
  EXPECT_EQ(readableXmlOf(msg), "<App_AnnotationSample/>");
  msg.setSecondsOfDay(-1);
  EXPECT_EQ(readableXmlOf(msg), "<App_AnnotationSample/>");
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kWalk, 0, "Invalid time in seconds [86401]"},
                                       CapturedLine{kWalk, 0, "Invalid time in seconds [-1]"}));
}

TEST(ReadableForm, KeepsTheLow32BitsOfADateOrTime) {
  AnnotationSample msg;
  msg.setSecondsOfDay64((std::int64_t{1} << 32) + 60);
  EXPECT_EQ(readableXmlOf(msg), R"(<App_AnnotationSample secondsOfDay64="00:01:00"/>)");
}

TEST(ReadableForm, KeepsADateOfZeroUnwrittenWithoutALine) {
  AnnotationSample msg;
  msg.setDateTime(0);
  LogCapture log;
  EXPECT_EQ(readableXmlOf(msg), "<App_AnnotationSample/>");
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(xmlOf(msg), R"(<App_AnnotationSample dateTime="0"/>)");
}

TEST(ReadableForm, KeepsTheDateWhereTimeAndDateAreMarked) {
  const ScopedTimeZone utc("UTC0");
  AnnotationSample msg;
  msg.setDateAndTime(86400);
  LogCapture log;
  EXPECT_EQ(readableXmlOf(msg), R"(<App_AnnotationSample dateAndTime="1 dd"/>)");
  EXPECT_TRUE(log.empty());

  // Both run: a time that is none ends the field before the date is looked at.
  msg.setDateAndTime(kNewYear2020);
  EXPECT_EQ(readableXmlOf(msg), "<App_AnnotationSample/>");
  EXPECT_TRUE(log.has(kWalk, 0, "Invalid time in seconds [1577836800]"));

  msg.setDateAndTime(0);
  EXPECT_EQ(readableXmlOf(msg), "<App_AnnotationSample/>");
}

TEST(ReadableForm, DateTypeThreeIsDateAndTime) {
  const ScopedTimeZone utc("UTC0");
  Demo::Forced msg;
  msg.setOddDate(kNewYear2020);
  EXPECT_EQ(readableXmlOf(msg), R"(<Demo_Forced oddDate="2020-01-01 00:00:00"/>)");
}

TEST(ReadableForm, IntervalsHaveTheirOwnForm) {
  const ScopedTimeZone utc("UTC0");
  AnnotationSample msg;
  msg.setDateTime(7200);
  EXPECT_EQ(readableXmlOf(msg), R"(<App_AnnotationSample dateTime="2 hh"/>)");
}

// --- CDATA

TEST(CdataForm, MarkedScalarsAreElementsWhateverTheFlags) {
  AnnotationSample msg;
  msg.setCdataText("a<b");
  msg.setCdataWide(u"ü");
  msg.setCdataNumber(-5);
  const char* const expected =
      "<App_AnnotationSample><cdataText><![CDATA[a<b]]></cdataText><cdataWide><![CDATA[ü]]></cdataWide>"
      "<cdataNumber><![CDATA[-5]]></cdataNumber></App_AnnotationSample>";
  EXPECT_EQ(xmlOf(msg), expected);
  EXPECT_EQ(xmlOf(msg, withElements()), expected);
}

TEST(CdataForm, MarkedListEntriesHoldTheSectionThemselves) {
  AnnotationSample msg;
  msg.setCdataTexts({"a&b", ""});
  msg.setCdataWides({u"ü"});
  msg.setCdataNumbers({1, 2});
  EXPECT_EQ(
      xmlOf(msg),
      "<App_AnnotationSample><cdataTexts><![CDATA[a&b]]></cdataTexts><cdataTexts><![CDATA[]]></cdataTexts>"
      "<cdataWides><![CDATA[ü]]></cdataWides><cdataNumbers><![CDATA[1]]></cdataNumbers>"
      "<cdataNumbers><![CDATA[2]]></cdataNumbers></App_AnnotationSample>");
}

TEST(CdataForm, MarkDoesNotCountOnSixTypesAndOnMapSides) {
  Demo::Forced msg;
  msg.setCdataBytes("a");
  msg.setCdataPassword("p");
  msg.setCdataByteList({bstring("a")});
  msg.mutableCdataObject().setNumber(1);
  msg.setCdataObjects({Demo::EveryChild()});
  msg.setCdataMap({{"k", "v]]>"}});
  EXPECT_EQ(xmlOf(msg), R"(<Demo_Forced cdataBytes="YQ==" cdataPassword="p"><cdataByteList val="YQ=="/>)"
                        R"(<cdataObject number="1"/><cdataObjects/><cdataMap><__mapKey__ val="k"/>)"
                        R"(<__mapValue__ val="v]]>"/></cdataMap></Demo_Forced>)");
}

TEST(CdataForm, RecordBelowFiveBytesHasNoMark) {
  EveryType msg;
  msg.setStringField("text");
  PatchedRecord record(msg);
  record.annotate(Number::kStringField, "\x00\x04\x00\x00\x80");
  EXPECT_EQ(xmlOf(msg), R"(<Demo_EveryType stringField="text"/>)");
  record.annotate(Number::kStringField, "\x00\x05\x00\x00\x80");
  EXPECT_EQ(xmlOf(msg), "<Demo_EveryType><stringField><![CDATA[text]]></stringField></Demo_EveryType>");
}

TEST(CdataForm, KeepsEscapingTheEndMark) {
  AnnotationSample msg;
  msg.setCdataText("a]]>b");
  msg.setCdataWides({u"a]]>b"});
  // The document's value is a]]]]>>b. Of the mark inside it the library's writer keeps the brackets and
  // writes the rest into a section of its own, so that a reader sees the value whole.
  EXPECT_EQ(xmlOf(msg),
            "<App_AnnotationSample><cdataText><![CDATA[a]]]]><![CDATA[>b]]></cdataText>"
            "<cdataWides><![CDATA[a]]]]><![CDATA[>b]]></cdataWides></App_AnnotationSample>");
}

TEST(CdataForm, TextWithTheEndMarkComesBackWhole) {
  for (const char* text : {"]]>", "a]]>b", "]]>]]>", "]]>>", "]]]>", "a]]>b]]>c"}) {
    AnnotationSample source;
    source.setCdataText(text);
    AnnotationSample target;
    ASSERT_EQ(target.unserialize(source.AsString()), XN_MSG_OK);
    EXPECT_EQ(target.getCdataText(), text);
  }
}

TEST(CdataForm, IllegalCharactersAreEncodedAndTextsEndAtNul) {
  AnnotationSample msg;
  msg.setCdataText("a\x01\0b"s);
  EXPECT_EQ(xmlOf(msg),
            "<App_AnnotationSample><cdataText><![CDATA[|a|#1!]]></cdataText></App_AnnotationSample>");
}

TEST(CdataForm, ReadableNumbersAndEnumsGoIntoTheSectionToo) {
  EveryType msg;
  msg.setEnumField(EveryMode::AUTO);
  msg.setDoubleField(0.5);
  PatchedRecord record(msg);
  record.annotate(Number::kEnumField, "\x00\x05\x00\x00\x80");
  record.annotate(Number::kDoubleField, "\x00\x05\x00\x00\x80");
  EncodingFlags flags;
  flags.enumAsText = true;
  EXPECT_EQ(
      xmlOf(msg, flags),
      "<Demo_EveryType><enumField><![CDATA[AUTO]]></enumField><doubleField><![CDATA[0.5]]></doubleField>"
      "</Demo_EveryType>");
}

}  // namespace
}  // namespace zqxml
