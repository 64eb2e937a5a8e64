// The XML form as the writer gives it: names, elements and attributes of every field type.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/DistributedIDA.h>
#include <zqxml/catalogue/generated/ZqDFMImport.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/internal/root_element_name.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tests/support/log_capture.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using namespace std::string_view_literals;
using Demo::EveryChild;
using Demo::EveryMode;
using Demo::EveryType;
using Demo::Sample;
using Demo::SampleMode;
using testing::HasSubstr;

/// The text of a document with this root element.
std::string document(std::string_view root) {
  std::string text = R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)";
  text += root;
  return text;
}

TEST(XmlWriter, ObjectWithNothingSetIsAnEmptyRootElement) {
  Sample nothingSet;
  std::string text;
  ASSERT_EQ(nothingSet.serialize(text), XN_MSG_OK);
  EXPECT_EQ(text, document("<Demo_Sample/>"));

  Demo::Empty noFields;
  ASSERT_EQ(noFields.serialize(text), XN_MSG_OK);
  EXPECT_EQ(text, document("<Demo_Empty/>"));
}

TEST(XmlWriter, EmptyListWritesNoElement) {
  Sample msg;
  msg.mutableTags();
  ASSERT_TRUE(msg.isTagsSet());
  EXPECT_EQ(xmlOf(msg), "<Demo_Sample/>");
}

TEST(XmlWriter, EmptyMapKeyIsAnEmptyValue) {
  Sample msg;
  msg.setSizes({{"", 3}});
  EXPECT_EQ(xmlOf(msg),
            R"(<Demo_Sample><sizes><__mapKey__ val=""/><__mapValue__ val="3"/></sizes></Demo_Sample>)");
}

TEST(XmlWriter, EmptyStringIsAnEmptyAttributeOrAnElementWithAnEmptyTextNode) {
  Sample msg;
  msg.setTitle("");
  EXPECT_EQ(xmlOf(msg), R"(<Demo_Sample title=""/>)");
  EXPECT_EQ(xmlOf(msg, withElements()), "<Demo_Sample><title></title></Demo_Sample>");
}

TEST(XmlWriter, ReadableBoolComesBackAndADateOfZeroDoesNot) {
  EveryType source;
  source.setBoolField(true);
  source.setTime32Field(0);
  PatchedRecord record(source);
  record.annotate(EveryType::FieldNumber::kTime32Field, "\x00\x03\x01");
  const std::string text = readableXmlOf(source);
  EXPECT_EQ(text, R"(<Demo_EveryType boolField="true"/>)");

  EveryType target;
  ASSERT_EQ(target.unserialize(text), XN_MSG_OK);
  EXPECT_TRUE(target.getBoolField());
  EXPECT_FALSE(target.isTime32FieldSet());
}

TEST(XmlWriter, ElementsHoldListEntriesAndMapSidesAsText) {
  EveryChild list;
  list.setNumbers({1, 2});
  EXPECT_EQ(xmlOf(list, withElements()),
            "<Demo_EveryChild><numbers>1</numbers><numbers>2</numbers></Demo_EveryChild>");

  Sample map;
  map.setSizes({{"k", 3}});
  EXPECT_EQ(
      xmlOf(map, withElements()),
      "<Demo_Sample><sizes><__mapKey__>k</__mapKey__><__mapValue__>3</__mapValue__></sizes></Demo_Sample>");
}

TEST(XmlWriter, FieldNameThatIsNoXmlNameIsLeftOutAndLogged) {
  for (const EncodingFlags& flags : {EncodingFlags(), withElements()}) {
    Sample msg;
    msg.setId(7);
    msg.setTitle("kept");
    PatchedRecord record(msg);
    record.rename(Sample::FieldNumber::kId, "not a name");
    LogCapture log;
    EXPECT_THAT(xmlOf(msg, flags), HasSubstr("kept"));
    EXPECT_THAT(xmlOf(msg, flags), testing::Not(HasSubstr("7")));
    EXPECT_EQ(log.count("XMLSerializer::writeNodeToXML", 0,
                        "Exception occurred while constructing tag : [not a name]"),
              2u);
  }
}

TEST(XmlWriter, BstringKeepsZeroBytesAndAnOldPasswordIsCutAtItsFirst) {
  EveryType msg;
  msg.setBstringField("ab\0cd"sv);
  EXPECT_EQ(xmlOf(msg), R"(<Demo_EveryType bstringField="YWIAY2Q="/>)");

  EveryType password;
  password.setPstringField("ab\0cd"sv);
  EXPECT_EQ(xmlOfVersion(password, 1), R"(<Demo_EveryType pstringField="YWI="/>)");
}

TEST(XmlWriter, KeepsSensitiveListsAndObjectsInClear) {
  Demo::Guarded msg;
  msg.setSecretText("secret");
  msg.setSecretNumber(12);
  msg.setSecretList({"clear"});
  msg.mutableSecretChild().setOpen("clear too");
  msg.mutableSecretMap()["k"] = "clear as well";
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_SENSITIVE)),
            R"(<Demo_Guarded secretNumber="########" secretText="########"><secretList val="clear"/>)"
            R"(<secretMap><__mapKey__ val="k"/><__mapValue__ val="clear as well"/></secretMap>)"
            R"(<secretChild open="clear too"/></Demo_Guarded>)");
}

// --- The form.

Sample oneLineExample() {
  Sample msg;
  msg.setId(7);
  msg.setTitle("a&b");
  msg.setMode(SampleMode::SAFE);
  msg.setTags({"x", "y"});
  msg.setSizes({{"k", 3}});
  msg.mutableChild().setN(5);
  return msg;
}

TEST(XmlForm, OneLineExampleToTheByte) {
  Sample msg = oneLineExample();
  std::string text;
  ASSERT_EQ(msg.serialize(text), XN_MSG_OK);
  EXPECT_EQ(text,
            document(R"(<Demo_Sample id="7" mode="2" title="a&amp;b"><tags val="x"/><tags val="y"/><sizes>)"
                     R"(<__mapKey__ val="k"/><__mapValue__ val="3"/></sizes><child n="5"/></Demo_Sample>)"));
}

TEST(XmlForm, OneLineExampleWithElements) {
  Sample msg = oneLineExample();
  EXPECT_EQ(xmlOf(msg, withElements()),
            "<Demo_Sample><id>7</id><title>a&amp;b</title><mode>2</mode><tags>x</tags><tags>y</tags><sizes>"
            "<__mapKey__>k</__mapKey__><__mapValue__>3</__mapValue__></sizes><child><n>5</n></child></"
            "Demo_Sample>");
}

TEST(XmlForm, OnlyReadableBreaksLines) {
  Sample msg = oneLineExample();
  EncodingFlags flags;
  EXPECT_THAT(xmlOf(msg), testing::Not(HasSubstr("\n")));
  flags.readable = true;
  EXPECT_THAT(xmlOf(msg, flags), HasSubstr("\n"));
  EXPECT_THAT(xmlOf(msg, flags), testing::Not(HasSubstr("\r")));
}

TEST(XmlForm, MarkupInValuesIsEscaped) {
  Sample msg;
  msg.setTitle("<a href=\"x\">&'");
  EXPECT_EQ(xmlOf(msg), R"(<Demo_Sample title="&lt;a href=&quot;x&quot;>&amp;'"/>)");
}

TEST(XmlForm, TextsAreUtf8AndIllegalCharactersAreEncoded) {
  EveryType msg;
  msg.setStringField("Zürich \x01");
  msg.setWstringField(u"Zürich \u0001");
  EXPECT_EQ(xmlOf(msg), R"(<Demo_EveryType stringField="|Zürich |#1!" wstringField="|Zürich |#1!"/>)");
}

TEST(XmlForm, TextsEndAtTheirFirstNul) {
  EveryType msg;
  msg.setStringField(std::string("ab\0cd"sv));
  msg.setWstringField(std::u16string(u"ab\0cd"sv));
  msg.setListStringField({std::string("ab\0cd"sv)});
  EXPECT_EQ(xmlOf(msg), R"(<Demo_EveryType stringField="ab" wstringField="ab"><listStringField val="ab"/>)"
                        "</Demo_EveryType>");
}

TEST(XmlForm, SubObjectIsNamedAfterItsField) {
  EveryType msg;
  msg.mutableObjectField().setNumber(1);
  msg.mutableObjectField().setNumbers({2});
  EXPECT_EQ(xmlOf(msg),
            R"(<Demo_EveryType><objectField number="1"><numbers val="2"/></objectField></Demo_EveryType>)");
}

TEST(XmlForm, FieldsWithoutNameHashAndSelfRecordsAreNotWritten) {
  Demo::Hashless hashless;
  for (short i = 0; i < 4; ++i) MessageAccess::mark(hashless, i);
  hashless.setFirst(1);
  hashless.setLast(2);
  EXPECT_EQ(xmlOf(hashless), R"(<Demo_Hashless first="1" last="2"/>)");

  Demo::SelfPair self;
  MessageAccess::mark(self, 0);
  EXPECT_THAT(xmlOf(self), testing::Not(HasSubstr("SelfPair=")));
}

TEST(XmlForm, KeepsWritingEveryFieldOfAnOldWayObject) {
  ZqDFMImport::OldLeaf msg;
  msg.unsetNumber();
  ASSERT_FALSE(msg.isNumberSet());
  LogCapture log;
  EXPECT_THAT(xmlOf(msg), HasSubstr(R"(number="0")"));

  Demo::EveryChild newWay;
  EXPECT_EQ(xmlOf(newWay), "<Demo_EveryChild/>");
}

TEST(XmlForm, WritingMakesAndMarksTheMissingListsOfAnOldWayObject) {
  ZqDFMImport::OldLists msg;
  msg.unsetNumbers();
  ASSERT_FALSE(msg.isNumbersSet());
  EXPECT_EQ(xmlOf(msg), "<ZqDFMImport_OldLists/>");
  EXPECT_TRUE(msg.isNumbersSet());
}

TEST(XmlForm, MapsWithoutContentAreNotMade) {
  EveryType msg;
  MessageAccess::mark(msg, EveryType::FieldNumber::kMapStringInt64Field);
  EXPECT_EQ(xmlOf(msg), "<Demo_EveryType/>");
  EXPECT_EQ(MessageAccess::slot(
                msg, MessageAccess::classDef(msg)->getFields()[EveryType::FieldNumber::kMapStringInt64Field]),
            0);
}

// --- Root element name.

TEST(RootElementName, IsSubsystemAndClass) {
  EXPECT_EQ(rootElementName(Sample()), "Demo_Sample");
  EXPECT_EQ(rootElementName(DistributedIDA::ScanProgress()), "DistributedIDA_ScanProgress");
}

TEST(RootElementName, KeepsTheOtherSubsystemForTwelveClasses) {
  struct Row {
    std::uint32_t classId;
    const char* name;
  };
  constexpr std::array<Row, 12> kRows{{{537016, "SysMonNASContent"},
                                       {2005286, "GenericSysMonPlainEvent"},
                                       {2983808, "SysMonPolicyAndTemplate"},
                                       {4009446, "FetchResMonPoliciesResp"},
                                       {5000136, "FetchResMonPoliciesReq"},
                                       {8796514, "GenericSysMonEventList"},
                                       {10565217, "GenericEventList"},
                                       {11355575, "FetchAllNASAuditContent"},
                                       {11716675, "RemoveItemsToMonitor"},
                                       {11885347, "GenericEvent"},
                                       {13502116, "GenericSysMonEvent"},
                                       {14900576, "AddItemsToMonitor"}}};
  for (const Row& row : kRows) {
    const std::unique_ptr<XNMessageBase> msg(XNMessageBase::createObject(makeTagId(119, row.classId)));
    ASSERT_NE(msg, nullptr) << row.name;
    EXPECT_EQ(xmlOf(*msg), std::string("<SystemMonitoring_") + row.name + "/>");
  }
}

TEST(RootElementName, ClassIdsOfOtherSubsystemsDoNotCount) {
  Sample msg;
  const _ClassDef& own = *MessageAccess::classDef(msg);
  const _ClassDef sameId("Sample", own.getFields(), 537016, -1, own.getNumberOfFields(),
                         own.getNumberOfElements());
  MessageAccess::setClassDef(msg, &sameId);
  EXPECT_EQ(rootElementName(msg), "Demo_Sample");
  MessageAccess::setClassDef(msg, &own);
}

}  // namespace
}  // namespace zqxml
