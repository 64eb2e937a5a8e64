// The reader over a catalogue that the compiler would refuse: names that hash like the sides of a map, one
// hash twice, references to nothing, unknown types. The table below takes the place of the generated one.
#include <gmock/gmock.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/catalogue/xpath_data.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <array>
#include <memory>
#include <string>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using testing::ElementsAre;

constexpr std::uint32_t hashOf(std::string_view name) {
  return nameHash(name);
}

// A class with a field for each name of a map's sides, and a map.
constexpr FieldDef kSideNames[] = {
    {"anyKey", nullptr, 0x321e63, 0, 0, 0, FDT_INT},
    {"anyValue", nullptr, 0x882bf5, 0, 1, 1, FDT_INT},
    {"words", nullptr, hashOf("words"), 0, 2, 2, FDT_MAP_STRING_STRING},
};

// Ten fields, so that the class is wide, of which two have one hash; the self record has that of a field.
constexpr FieldDef kTwice[] = {
    {"a", nullptr, hashOf("a"), 0, 0, 0, FDT_INT},
    {"same", nullptr, hashOf("same"), 0, 1, 1, FDT_INT},
    {"c", nullptr, hashOf("c"), 0, 2, 2, FDT_INT},
    {"d", nullptr, hashOf("d"), 0, 3, 3, FDT_INT},
    {"e", nullptr, hashOf("e"), 0, 4, 4, FDT_INT},
    {"f", nullptr, hashOf("f"), 0, 5, 5, FDT_INT},
    {"Twice", nullptr, hashOf("Twice"), 0, 6, 6, FDT_INT},
    {"h", nullptr, hashOf("h"), 0, 7, 7, FDT_INT},
    {"other", nullptr, hashOf("same"), 0, 8, 8, FDT_INT},
    {"Twice", "", hashOf("Twice"), 0, 0, 0, FDT_NONE},
};

// References: slot 250 does not exist, slot 1 has no class 99, slot 2 is empty.
constexpr FieldDef kReferences[] = {
    {"\xfa\x00\x00\x01slot", nullptr, hashOf("slot"), 0, 0, 0, FDT_OBJECT},
    {"\xfa\x00\x00\x01slots", nullptr, hashOf("slots"), 0, 1, 1, FDT_LIST_OBJECT},
    {"\x01\x00\x00\x63index", nullptr, hashOf("index"), 0, 2, 2, FDT_OBJECT},
    {"\x01\x00\x00\x63list", nullptr, hashOf("list"), 0, 3, 3, FDT_LIST_OBJECT},
    {"\xfa\x00\x00\x01\xfa\x00\x00\x01map", nullptr, hashOf("map"), 0, 4, 4, FDT_MAP_OBJECT_OBJECT},
    {"\xfa\x00\x00\x01level", nullptr, hashOf("level"), 0, 5, 5, FDT_ENUM},
    {"\x02\x00\x00\x01levels", nullptr, hashOf("levels"), 0, 6, 6, FDT_LIST_ENUM},
    {"n", nullptr, hashOf("n"), 0, 7, 7, FDT_INT},
    {"\x01\x00\x00\x04grade", nullptr, hashOf("grade"), 0, 8, 8, FDT_ENUM},
};

// An enumeration with a value that has no name.
constexpr FieldDef kGrades[] = {
    {nullptr, nullptr, 1, 0, 0, 0, FDT_ENUM_VALUE},
    {"GOOD", nullptr, 2, 0, 0, 0, FDT_ENUM_VALUE},
};

// Types that are none, and one that stores nothing.
constexpr FieldDef kTypes[] = {
    {"unknown", nullptr, hashOf("unknown"), 0, 0, 0, static_cast<FieldDataType>(43)},
    {"reserved", nullptr, hashOf("reserved"), 0, 1, 1, FDT_RESERVED_24},
    {"highest", nullptr, hashOf("highest"), 0, 2, 2, static_cast<FieldDataType>(255)},
    {"cell", nullptr, hashOf("cell"), 0, 3, 3, FDT_INT64},
    {"n", nullptr, hashOf("n"), 0, 4, 4, FDT_INT},
};

constexpr _ClassDef kClasses[] = {
    {"SideNames", kSideNames, 1, -1, 3, 3},   {"Twice", kTwice, 2, -1, 10, 9},
    {"References", kReferences, 3, -1, 9, 9}, {"Types", kTypes, 4, -1, 5, 5},
    {"Grades", kGrades, 5, -1, 2, 0},
};
constexpr ClassIdIndexEntry kIds[] = {{1, 0}, {2, 1}, {3, 2}, {4, 3}, {5, 4}};

}  // namespace

const SubsystemDef gSubsystemTable[kSubsystemCount + 1] = {
    {}, {"Own", kClasses, kIds, nullptr, static_cast<std::int16_t>(std::size(kClasses)), false}};
const XPathData gXPathTable[1] = {};

namespace {

std::unique_ptr<XNMessageBase> read(const std::string& text) {
  return std::unique_ptr<XNMessageBase>(XMLSerializer().unserialize(text, false));
}

std::int64_t number(const XNMessageBase& message, int position) {
  return MessageAccess::slot(message, MessageAccess::classDef(message)->getFields()[position]);
}

TEST(XmlReaderOwnTable, FieldWhoseNameHashesLikeASideOfAMapIsThatField) {
  const auto object =
      read("<Own_SideNames><__mapKey__>5</__mapKey__><__mapValue__>6</__mapValue__></Own_SideNames>");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(number(*object, 0), 5);
  EXPECT_EQ(number(*object, 1), 6);
  // Inside an entry too: so there is no pair.
  const auto map = read(
      "<Own_SideNames><words><__mapKey__>7</__mapKey__><__mapValue__>8</__mapValue__></words></"
      "Own_SideNames>");
  ASSERT_NE(map, nullptr);
  EXPECT_EQ(number(*map, 0), 7);
  EXPECT_EQ(number(*map, 1), 8);
  EXPECT_FALSE(MessageAccess::isSet(*map, 2));
}

TEST(XmlReaderOwnTable, FirstFieldOfAHashWins) {
  for (int round = 0; round < 2; ++round) {
    const auto object = read("<Own_Twice same='5' h='1'><same>6</same></Own_Twice>");
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(number(*object, 1), 6);
    EXPECT_FALSE(MessageAccess::isSet(*object, 8));
  }
}

TEST(XmlReaderOwnTable, FieldWinsOverASelfRecordOfItsName) {
  for (int round = 0; round < 2; ++round) {
    const auto object = read("<Own_Twice h='1' Twice='5'/>");
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(number(*object, 6), 5);
  }
}

TEST(XmlReaderOwnTable, ReferencesToNothingGiveNoObjects) {
  LogCapture log;
  const auto object = read(
      "<Own_References><slot n='1'/><slots n='2'/><index n='3'><n>9</n></index><list n='4'/>"
      "<map><__mapKey__ n='5'/><__mapValue__ n='6'/></map></Own_References>");
  ASSERT_NE(object, nullptr);
  EXPECT_TRUE(log.has("XNMessageBase::createObjectFromClassID", 0,
                      "Error instantiating XNMessageBase with msgSysIndex : [250], msgIndex : [1]"));
  // Without an object of its own the attributes of an element go to the one around.
  EXPECT_EQ(number(*object, 7), 6);
  EXPECT_FALSE(MessageAccess::isSet(*object, 0));
  EXPECT_FALSE(MessageAccess::isSet(*object, 1));
}

TEST(XmlReaderOwnTable, EnumerationThatIsNotThereIsLogged) {
  LogCapture log;
  const auto object =
      read("<Own_References level='HIGH'><level>LOW</level><levels>MID</levels><n>5</n></Own_References>");
  ASSERT_NE(object, nullptr);
  EXPECT_FALSE(MessageAccess::isSet(*object, 5));
  EXPECT_TRUE(log.has("MySAX2Handler::processAttributes", 0, "Error identifying HIGH as an enum value"));
  EXPECT_TRUE(log.has("MySAX2Handler::endElement", 0, "Error identifying LOW as an enum value"));
  EXPECT_TRUE(log.has("MySAX2Handler::endElement", 0, "Error identifying MID as an enum value"));
  EXPECT_EQ(number(*object, 7), 5);
}

TEST(XmlReaderOwnTable, EnumerationNumbersNeedNoEnumeration) {
  const auto object = read("<Own_References level='3'><levels>4</levels></Own_References>");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(number(*object, 5), 3);
  EXPECT_TRUE(MessageAccess::isSet(*object, 6));
}

TEST(XmlReaderOwnTable, EnumeratorWithoutANameIsFoundByNone) {
  LogCapture log;
  const auto object = read("<Own_References grade=''><grade>good</grade></Own_References>");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(number(*object, 8), 2);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"MySAX2Handler::processAttributes", 0,
                                                    "Enum [Grades] does not have enum value []"}));
}

TEST(XmlReaderOwnTable, UnknownTypesStoreNothing) {
  const auto object = read(
      "<Own_Types unknown='1' reserved='2' highest='3' cell='4' n='5'><unknown>1</unknown><highest val='2'/>"
      "<reserved>3</reserved><cell>4</cell></Own_Types>");
  ASSERT_NE(object, nullptr);
  for (int position = 0; position < 4; ++position) {
    EXPECT_EQ(number(*object, position), 0);
    EXPECT_FALSE(MessageAccess::isSet(*object, position));
  }
  EXPECT_EQ(number(*object, 4), 5);
}

TEST(EnumNames, BrokenReferencesAreLogged) {
  LogCapture log;
  EXPECT_STREQ(XMLDecoder::GetEnumString(kReferences[5], 1), "");
  EXPECT_TRUE(log.hasPart("XMLDecoder::GetEnumString", 0,
                          "Error retrieving metadata for given Field with field id : ["));
  const auto object = read("<Own_References/>");
  EXPECT_STREQ(XMLDecoder::GetEnumString(object.get(), "Level", 1), "");
  EXPECT_TRUE(log.has("XMLDecoder::GetEnumString", 0, "Error retrieving metadata for message"));
}

}  // namespace
}  // namespace zqxml
