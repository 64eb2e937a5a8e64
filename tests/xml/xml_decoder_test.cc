// XMLDecoder beside parsing: enumerator names, objects by name, lists by name; and Base64 of wide text.
#include <gmock/gmock.h>
#include <tests/binary/hand_made_class.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/base64_decode.h>
#include <zqxml/xml/xml_decoder.h>

#include <memory>
#include <vector>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using XmlRead::Every;
using XmlRead::Level;
using XmlRead::Node;

// --- Enumerator names

constexpr char kEnumString[] = "XMLDecoder::GetEnumString";

const FieldDef& fieldOf(const XNMessageBase& message, short position) {
  return MessageAccess::classDef(message)->getFields()[position];
}

TEST(EnumNames, ByField) {
  const Every every;
  const FieldDef& field = fieldOf(every, Every::FieldNumber::kEnumField);
  EXPECT_STREQ(XMLDecoder::GetEnumString(field, 7), "HIGH");
  EXPECT_STREQ(XMLDecoder::GetEnumString(field, -1), "BELOW");
  EXPECT_STREQ(XMLDecoder::GetEnumString(fieldOf(every, Every::FieldNumber::kListEnum), 1), "Low");
}

TEST(EnumNames, FieldWithoutTheValueIsLogged) {
  LogCapture log;
  const Every every;
  const FieldDef& field = fieldOf(every, Every::FieldNumber::kEnumField);
  EXPECT_STREQ(XMLDecoder::GetEnumString(field, 99), "");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kEnumString, 0,
                                       "Given field with id : [" + std::to_string(field.getFieldHashId()) +
                                           "] does not contain enum with value : [99]"}));
}

TEST(EnumNames, FieldWithoutAnEnumerationIsLogged) {
  LogCapture log;
  const Every every;
  const FieldDef& field = fieldOf(every, Every::FieldNumber::kIntField);
  EXPECT_STREQ(XMLDecoder::GetEnumString(field, 0), "");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kEnumString, 0,
                                       "Error retrieving metadata for given Field with field id : [" +
                                           std::to_string(field.getFieldHashId()) + "]"}));
}

TEST(EnumNames, ByTagId) {
  LogCapture log;
  std::uint32_t tagId = 0;
  ASSERT_TRUE(catalogue::tagFromIndices(198, 0, tagId));
  EXPECT_STREQ(XMLDecoder::GetEnumString(tagId, 7), "HIGH");
  EXPECT_TRUE(log.empty());
  EXPECT_STREQ(XMLDecoder::GetEnumString(tagId, 99), "");
  EXPECT_STREQ(XMLDecoder::GetEnumString(5u, 7), "");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kEnumString, 0,
                                       "Enum with tag id : [" + std::to_string(tagId) +
                                           "] does not contain member with value : [99]"},
                          CapturedLine{kEnumString, 0, "Error retrieving metadata for given tag id : [5]"}));
}

TEST(EnumNames, ByNameOfTheEnumerationAmongAnObjectsFields) {
  LogCapture log;
  const Every every;
  EXPECT_STREQ(XMLDecoder::GetEnumString(&every, "Level", 7), "HIGH");
  EXPECT_STREQ(XMLDecoder::GetEnumString(&every, "Level", 99), "");
  EXPECT_STREQ(XMLDecoder::GetEnumString(&every, "level", 7), "");
  EXPECT_STREQ(XMLDecoder::GetEnumString(&every, nullptr, 7), "");
  const Node node;
  EXPECT_STREQ(XMLDecoder::GetEnumString(&node, "Level", 7), "");
  EXPECT_TRUE(log.empty());
}

TEST(EnumNames, ObjectWithoutAClassIsLogged) {
  LogCapture log;
  const XNMessageBase bare;
  EXPECT_STREQ(XMLDecoder::GetEnumString(nullptr, "Level", 7), "");
  EXPECT_STREQ(XMLDecoder::GetEnumString(&bare, "Level", 7), "");
  const CapturedLine line{kEnumString, 0, "Error retrieving metadata for given Message"};
  EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST(EnumNames, SearchGoesOnBehindABrokenReference) {
  HandMadeClass handMade;
  handMade.field(FDT_ENUM, "broken", std::string("\xff\0\0\1", 4))
      .field(FDT_ENUM, "level", refTo("XmlRead_Level"));
  const OpenMessage message = handMade.message();
  LogCapture log;
  EXPECT_STREQ(XMLDecoder::GetEnumString(&message, "Level", 7), "HIGH");
  EXPECT_TRUE(log.has(kEnumString, 0, "Error retrieving metadata for message"));
}

TEST(EnumNames, ByRecordWithoutALine) {
  LogCapture log;
  EXPECT_STREQ(XMLDecoder::getEnumString(*catalogue::classAt(198, 0), 1), "Low");
  EXPECT_STREQ(XMLDecoder::getEnumString(*catalogue::classAt(198, 0), 99), "");
  EXPECT_STREQ(XMLDecoder::getEnumString(_ClassDef(), 0), "");
  EXPECT_TRUE(log.empty());
}

TEST(EnumNames, OnlyTwoTypesAreEnumerations) {
  for (unsigned type = 0; type < 256; ++type)
    EXPECT_EQ(XMLDecoder::isEnum(type), type == FDT_ENUM || type == FDT_LIST_ENUM) << type;
}

// --- Objects by name

constexpr char kCreate[] = "XMLDecoder::CreateObjByName";

std::unique_ptr<XNMessageBase> create(const std::string& tag, const char* xml = nullptr, bool parse = false) {
  XNMessageBase* object = nullptr;
  XMLDecoder::CreateObjByName(tag, &object, xml, parse);
  return std::unique_ptr<XNMessageBase>(object);
}

TEST(ObjectByName, IsMade) {
  LogCapture log(25);
  const auto object = create("XmlRead_Node");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->getTagID(), Node::kTagId);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kCreate, 25, "Request to Create Object.Tag:[XmlRead_Node]"},
                          CapturedLine{kCreate, 0, "Request to Create Object.Class Name:[Node]"}));
}

TEST(ObjectByName, IsFilledFromATextOrKeepsIt) {
  LogCapture log;
  const auto parsed = create("XmlRead_Node", "<a id='3'/>", true);
  EXPECT_EQ(Node::from(parsed.get())->getId(), 3);
  EXPECT_STREQ(parsed->getSerializedXMLString(), "");
  const auto kept = create("XmlRead_Node", "<a id='3'/>", false);
  EXPECT_FALSE(Node::from(kept.get())->isIdSet());
  EXPECT_STREQ(kept->getSerializedXMLString(), "<a id='3'/>");
  EXPECT_FALSE(kept->isSerialized());
}

TEST(ObjectByName, BadTextLeavesTheObject) {
  LogCapture log;
  EXPECT_NE(create("XmlRead_Node", "<a", true), nullptr);
}

TEST(ObjectByName, EachFailureIsLogged) {
  LogCapture log;
  EXPECT_EQ(create(""), nullptr);
  EXPECT_EQ(create("Nothing_Node"), nullptr);
  EXPECT_EQ(create("XmlRead_Nothing"), nullptr);
  EXPECT_EQ(create("XmlRead"), nullptr);
  XMLDecoder::CreateObjByName("XmlRead_Node", nullptr, nullptr, false);
  EXPECT_THAT(
      log.lines(),
      ElementsAre(CapturedLine{kCreate, 0, "Failed to Create Object.XML Tag is empty"},
                  CapturedLine{kCreate, 0, "Request to Create Object.Class Name:[Node]"},
                  CapturedLine{kCreate, 0, "Subsystem : [Nothing] does not exist."},
                  CapturedLine{kCreate, 0, "Request to Create Object.Class Name:[Nothing]"},
                  CapturedLine{kCreate, 0, "Subsystem : [XmlRead] does not contain message : [Nothing]."},
                  CapturedLine{kCreate, 0, "Request to Create Object.Class Name:[]"},
                  CapturedLine{kCreate, 0, "Subsystem : [XmlRead] does not contain message : []."},
                  CapturedLine{kCreate, 0, "Request to Create Object.Class Name:[Node]"},
                  CapturedLine{kCreate, 0, "Received Null Message Pointer."}));
}

// --- Lists by name

constexpr char kInsert[] = "XMLDecoder::InsertIntoList";
constexpr char kRead[] = "XMLDecoder::ReadFromList";

template <class T>
void insert(XNMessageBase& message, const char* field, T value) {
  XMLDecoder::InsertIntoList(&message, field, &value);
}

/// The elements of a list as values of T, which is std::int64_t for all integers.
template <class T>
std::vector<T> elements(const XNMessageBase& message, const char* field) {
  std::vector<const void*> pointers{nullptr};
  XMLDecoder::ReadFromList(&message, field, pointers);
  std::vector<T> values;
  for (const void* pointer : pointers) values.push_back(*static_cast<const T*>(pointer));
  return values;
}

TEST(ListsByName, IntegersGoThroughCells) {
  Every every;
  for (const char* field : {"listInt", "listLong", "listLonglong"}) {
    insert(every, field, std::int64_t{-5});
    insert(every, field, std::int64_t{7});
    EXPECT_THAT(elements<std::int64_t>(every, field), ElementsAre(-5, 7)) << field;
  }
  for (const char* field : {"listUint", "listUlong", "listEnum", "listBool"}) {
    insert(every, field, std::int64_t{0xfffffffb});
    insert(every, field, std::int64_t{1});
    EXPECT_THAT(elements<std::int64_t>(every, field), ElementsAre(0xfffffffb, 1)) << field;
  }
  EXPECT_TRUE(every.isListIntSet());
  EXPECT_THAT(every.getListInt(), ElementsAre(-5, 7));
  EXPECT_THAT(every.getListEnum(), ElementsAre(0xfffffffbu, 1u));
}

TEST(ListsByName, IntegersAreCutToTheirWidth) {
  Every every;
  insert(every, "listInt", std::int64_t{0x1ffffffff});
  EXPECT_THAT(elements<std::int64_t>(every, "listInt"), ElementsAre(-1));
}

TEST(ListsByName, OtherElementsAreThemselves) {
  Every every;
  insert(every, "listString", std::string("s"));
  insert(every, "listWstring", std::u16string(u"w"));
  insert(every, "listFloat", 1.5f);
  insert(every, "listDouble", 2.5);
  Node node;
  node.setId(3);
  XMLDecoder::InsertIntoList(&every, "listObject", static_cast<const XNMessageBase*>(&node));
  EXPECT_THAT(elements<std::string>(every, "listString"), ElementsAre("s"));
  EXPECT_THAT(elements<std::u16string>(every, "listWstring"), ElementsAre(u"w"));
  EXPECT_THAT(elements<float>(every, "listFloat"), ElementsAre(1.5f));
  EXPECT_THAT(elements<double>(every, "listDouble"), ElementsAre(2.5));
  std::vector<const void*> objects;
  XMLDecoder::ReadFromList(&every, "listObject", objects);
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0], &every.getListObject()[0]);
  EXPECT_EQ(every.getListObject()[0].getId(), 3);
}

TEST(ListsByName, MissingListReadsAsNothing) {
  const Every every;
  EXPECT_THAT(elements<std::int64_t>(every, "listInt"), IsEmpty());
  EXPECT_THAT(elements<std::string>(every, "listString"), IsEmpty());
}

TEST(ListsByName, KeepsTakingUlonglongForAListThatHoldsNothing) {
  LogCapture log;
  Every every;
  insert(every, "ulonglongField", std::int64_t{5});
  EXPECT_THAT(elements<std::int64_t>(every, "ulonglongField"), IsEmpty());
  EXPECT_FALSE(every.isUlonglongFieldSet());
  EXPECT_TRUE(log.empty());
}

TEST(ListsByName, KeepsRefusingTheListsThatAreNoLists) {
  LogCapture log;
  Every every;
  insert(every, "listUlonglong", std::int64_t{5});
  insert(every, "listBstring", bstring());
  EXPECT_THAT(elements<std::int64_t>(every, "listUlonglong"), IsEmpty());
  EXPECT_FALSE(every.isListUlonglongSet());
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kInsert, 0, "Received field [listUlonglong] is not a list type"},
                          CapturedLine{kInsert, 0, "Received field [listBstring] is not a list type"},
                          CapturedLine{kRead, 0, "Received field [listUlonglong] is not a list type"}));
}

TEST(ListsByName, EachFailureIsLogged) {
  Every every;
  XNMessageBase bare;
  std::vector<const void*> pointers{nullptr};
  const std::int64_t value = 1;
  LogCapture log;
  XMLDecoder::InsertIntoList(nullptr, "listInt", &value);
  XMLDecoder::InsertIntoList(&every, "", &value);
  XMLDecoder::InsertIntoList(&every, "listInt", nullptr);
  XMLDecoder::InsertIntoList(&bare, "listInt", &value);
  XMLDecoder::InsertIntoList(&every, "nothing", &value);
  XMLDecoder::InsertIntoList(&every, "intField", &value);
  XMLDecoder::ReadFromList(nullptr, "listInt", pointers);
  XMLDecoder::ReadFromList(&every, "", pointers);
  XMLDecoder::ReadFromList(&bare, "listInt", pointers);
  XMLDecoder::ReadFromList(&every, "nothing", pointers);
  XMLDecoder::ReadFromList(&every, "objectField", pointers);
  EXPECT_THAT(pointers, IsEmpty());
  EXPECT_FALSE(every.isListIntSet());
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kInsert, 0, "Received NULL message object"},
                          CapturedLine{kInsert, 0, "Received NULL field"},
                          CapturedLine{kInsert, 0, "Received NULL field"},
                          CapturedLine{kInsert, 0, "Error retrieving metadata for given message"},
                          CapturedLine{kInsert, 0, "Message [XmlRead_Every] does not have field [nothing]"},
                          CapturedLine{kInsert, 0, "Received field [intField] is not a list type"},
                          CapturedLine{kRead, 0, "Received NULL message object"},
                          CapturedLine{kRead, 0, "Received NULL field"},
                          CapturedLine{kRead, 0, "Error retrieving metadata for given message"},
                          CapturedLine{kRead, 0, "Message [XmlRead_Every] does not have field [nothing]"},
                          CapturedLine{kRead, 0, "Received field [objectField] is not a list type"}));
}

// --- Base64

TEST(Base64DecodeXmlCh, AppendsTheBytes) {
  std::string out = "x";
  EXPECT_TRUE(base64DecodeXmlCh(u"YWIAY2Q=", out));
  EXPECT_EQ(out, std::string("xab\0cd", 6));
}

TEST(Base64DecodeXmlCh, NoTextEmptiesTheResult) {
  std::string out = "x";
  EXPECT_TRUE(base64DecodeXmlCh(u"", out));
  EXPECT_EQ(out, "");
  out = "x";
  EXPECT_TRUE(base64DecodeXmlCh(nullptr, out));
  EXPECT_EQ(out, "");
}

TEST(Base64DecodeXmlCh, WhatIsNoBase64IsLogged) {
  for (const char16_t* text : {u"*", u"YWI", u"YW=I", u"\u00e9\u00e9\u00e9\u00e9", u"===="}) {
    LogCapture log;
    std::string out = "x";
    EXPECT_FALSE(base64DecodeXmlCh(text, out));
    EXPECT_EQ(out, "x");
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"base64DecodeXmlCh", 0, "Base64::decode failed"}));
  }
}

TEST(Base64DecodeXmlCh, KeepsLookingAtTheLowByteOfEachUnitAlone) {
  std::string out;
  EXPECT_TRUE(base64DecodeXmlCh(u"\u0159WJj", out));  // U+0159 is read as 'Y'
  EXPECT_EQ(out, "abc");
}

TEST(Base64DecodeXmlCh, EveryByteComesBack) {
  std::string bytes;
  for (int i = 0; i < 1024; ++i) bytes += static_cast<char>(i);
  for (std::size_t length : {1u, 2u, 3u, 255u, 256u, 1024u}) {
    const std::string part = bytes.substr(0, length);
    std::string out;
    EXPECT_TRUE(base64DecodeXmlCh(toUtf16(UlBase64::Encode(part)).c_str(), out));
    EXPECT_EQ(out, part);
  }
}

}  // namespace
}  // namespace zqxml
