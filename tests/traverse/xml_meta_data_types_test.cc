// XMLMetaData: what each field type is told as, and read from.
#include <map>

#include "tests/support/every_type.h"
#include "tests/traverse/path_messages.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Access = XMLMetaDataTestAccess;

TEST(XMLMetaDataTypesTest, EveryTypeHasItsAppType) {
  const std::map<int, std::vector<int>> rows{{7, {1, 10, 13, 19, 41}},
                                             {8, {2, 14}},
                                             {9, {3, 5, 15, 17, 42}},
                                             {10, {4, 16}},
                                             {16, {6, 18}},
                                             {2, {7, 26}},
                                             {1, {8, 9, 20, 21, 25, 29, 30, 31}},
                                             {12, {11, 28}},
                                             {11, {12, 27}}};
  std::map<int, int> expected;
  for (const auto& [appType, types] : rows)
    for (const int type : types) expected[type] = appType;
  for (int type = -128; type <= 127; ++type)
    EXPECT_EQ(Access::appType(static_cast<char>(type)), expected[type]) << type;
}

/// A leaf of Demo.EveryType: a text that is set, what is told of it, and its type in the list.
struct LeafRow {
  const char* leaf;
  const char* text;
  const char* told;
  int type;
};

class LeafTest : public testing::TestWithParam<LeafRow> {};

TEST_P(LeafTest, IsSetFromTextAndTold) {
  const LogCapture log(15);
  const LeafRow& row = GetParam();
  OpenMessage root = newMessage("Ida_PathRoot");
  const std::string path = std::string("every[1]/") + row.leaf;
  ASSERT_EQ(setPaths(root, {{path, row.text}}), XML_SUBSYSTEM_OK);
  const std::vector<XPathMetaData> items = itemsOf(root);
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].id, xpathId(path));
  EXPECT_EQ(items[0].xpath, path);
  EXPECT_EQ(items[0].value, row.told);
  EXPECT_EQ(items[0].type, row.type);
  EXPECT_TRUE(log.empty());
}

constexpr LeafRow kLeaves[] = {
    {"@intField", "-2147483648", "-2147483648", 10007},
    {"@uintField", "4294967295", "4294967295", 10008},
    {"@longField", " -7 and more", "-7", 10009},
    {"@ulongField", "4294967295", "4294967295", 10010},
    {"@longlongField", "-9223372036854775808", "-9223372036854775808", 10009},
    {"@boolField", "TrUe", "1", 10002},
    {"@boolField", "1", "1", 10002},
    {"@boolField", "0", "0", 10002},
    {"@boolField", "yes", "0", 10002},
    {"@boolField", "", "0", 10002},
    {"@stringField", " a\tb\n😀 ", " a\tb\n😀 ", 10001},
    {"@stringField", "", "", 10001},
    {"@wstringField", " a\tb\n😀 ", " a\tb\n😀 ", 10001},
    {"@enumField", "2", "2", 10007},
    {"@doubleField", "-2.5e10", "-2.5e+10", 10012},
    {"@doubleField", "inf", "inf", 10012},
    {"@floatField", "0.25", "0.25", 10011},
    {"@time32Field", "1700000000", "1700000000", 10007},
    {"@time64Field", "17000000000", "17000000000", 10009},
    {"listIntField", "-1", "-1", 10007},
    {"listUintField", "4294967295", "4294967295", 10008},
    {"listLongField", "-1", "-1", 10009},
    {"listUlongField", "4294967295", "4294967295", 10010},
    {"listLonglongField", "9223372036854775807", "9223372036854775807", 10009},
    {"listEnumField", "1", "1", 10007},
    {"listStringField", "a b", "a b", 10001},
    {"listWstringField", "ä €", "ä €", 10001},
    {"listFloatField", "1.5", "1.5", 10011},
    {"listDoubleField", "1e300", "1e+300", 10012},
};
INSTANTIATE_TEST_SUITE_P(EveryType, LeafTest, testing::ValuesIn(kLeaves));

TEST(XMLMetaDataTypesTest, ListsGrowByEveryItem) {
  OpenMessage root = newMessage("Ida_PathRoot");
  ASSERT_EQ(setPaths(root, {{"every[1]/listIntField", "1"}, {"every[1]/listIntField", "2"}}),
            XML_SUBSYSTEM_OK);
  EXPECT_THAT(*ownedBy<std::vector<std::int32_t>>(objectOf(root, "every"), "listIntField"),
              ElementsAre(1, 2));
}

TEST(XMLMetaDataTypesTest, KeepsBytesAsTheTextThatIsGivenAndTellsThemInBase64) {
  OpenMessage root = newMessage("Ida_PathRoot");
  ASSERT_EQ(setPaths(root, {{"every[1]/@bstringField", "hi"}, {"every[1]/@pstringField", "hush"}}),
            XML_SUBSYSTEM_OK);
  const XNMessageBase& every = objectOf(root, "every");
  EXPECT_EQ(ownedBy<bstring>(every, "bstringField")->str(), "hi");
  EXPECT_EQ(ownedBy<pstring>(every, "pstringField")->str(), "hush");
  EXPECT_EQ(ownedBy<pstring>(every, "pstringField")->getEncryptionType(), 1);
  EXPECT_THAT(pathsOf(root), ElementsAre(PathValue("every[1]/@bstringField", "aGk="),
                                         PathValue("every[1]/@pstringField", "aHVzaA==")));
  EXPECT_EQ(itemsOf(root)[0].type, 10001);
}

TEST(XMLMetaDataTypesTest, KeepsUlonglongAndListOfBoolUnset) {
  const LogCapture log(15);
  OpenMessage root = newMessage("Ida_PathRoot");
  EXPECT_EQ(setPaths(root, {{"every[1]/@ulonglongField", "5"}, {"every[1]/listBoolField", "1"}}),
            XML_SUBSYSTEM_OK);
  EXPECT_THAT(pathsOf(root), IsEmpty());
  EXPECT_TRUE(log.empty());
  // They are told all the same.
  XNMessageBase& every = objectOf(root, "every");
  setInteger(every, "ulonglongField", -1);
  collectionOf<std::vector<std::uint32_t>>(every, "listBoolField") = {1, 0};
  EXPECT_THAT(pathsOf(root), ElementsAre(PathValue("every[1]/@ulonglongField", "18446744073709551615"),
                                         PathValue("every[1]/listBoolField", "1"),
                                         PathValue("every[1]/listBoolField", "0")));
  EXPECT_EQ(itemsOf(root)[0].type, 10016);
  EXPECT_EQ(itemsOf(root)[1].type, 10002);
}

TEST(XMLMetaDataTypesTest, KeepsListsOfByteStringsSettableWithoutAPath) {
  OpenMessage every = newMessage("Demo_EveryType");
  EXPECT_EQ(catalogue::xpathIndexOfPath(*XNMessageBase::getXPathData(kIda), "every[1]/listBstringField"), -1);
  EXPECT_TRUE(Access::set(&every, {fieldOf(every, "listBstringField").getMemNum()}, "hi"));
  EXPECT_EQ(ownedBy<std::vector<bstring>>(every, "listBstringField")->at(0).str(), "hi");
}

TEST(XMLMetaDataTypesTest, OtherTypesAreLeftAloneWithoutAFailure) {
  const LogCapture log(15);
  OpenMessage every = newMessage("Demo_EveryType");
  for (const char* name : {"ulonglongField", "listUlonglongField", "mapInt64Int64Field",
                           "mapInt64StringField", "mapInt64ObjectField", "mapStringInt64Field",
                           "mapStringStringField", "mapStringObjectField", "mapObjectObjectField"}) {
    EXPECT_TRUE(Access::set(&every, {fieldOf(every, name).getMemNum()}, "1")) << name;
    EXPECT_FALSE(hasBit(every, name)) << name;
  }
  OpenMessage reserved = newMessage("Demo_Reserved29");
  for (const FieldDef& field : *MessageAccess::classDef(reserved)) {
    if (field.getType() != FDT_RESERVED_29) continue;
    EXPECT_TRUE(Access::set(&reserved, {field.getMemNum()}, "1"));
    EXPECT_FALSE(MessageAccess::isSet(reserved, field.getMemNum()));
  }
  EXPECT_TRUE(log.empty());
}

TEST(XMLMetaDataTypesTest, NumbersThatDoNotFitFail) {
  const std::map<std::string, std::vector<const char*>> bad{
      {"@intField", {"", "x", "-", "2147483648", "-2147483649", " "}},
      {"@uintField", {"", "x", "4294967296"}},
      {"@longField", {"", "2147483648"}},
      {"@ulongField", {"", "4294967296"}},
      {"@longlongField", {"", "9223372036854775808"}},
      {"@enumField", {"", "ON"}},
      {"@doubleField", {"", "x", "1e309"}},
      {"@floatField", {"", "x", "1e39"}},
      {"@time32Field", {"", "4294967296"}},
      {"@time64Field", {"", "soon"}},
      {"listIntField", {"", "2147483648"}},
      {"listUintField", {""}},
      {"listLongField", {""}},
      {"listUlongField", {""}},
      {"listLonglongField", {""}},
      {"listEnumField", {""}},
      {"listFloatField", {""}},
      {"listDoubleField", {""}},
  };
  for (const auto& [leaf, texts] : bad) {
    for (const std::string text : texts) {
      const LogCapture log(15);
      OpenMessage root = newMessage("Ida_PathRoot");
      EXPECT_EQ(setPaths(root, {{"every[1]/" + leaf, text}}), XML_SUBSYSTEM_FAILED) << leaf << ' ' << text;
      const std::string name = leaf.substr(leaf[0] == '@' ? 1 : 0);
      EXPECT_TRUE(log.has(
          kSetHelper, 15,
          "Unable to set value for Message [Demo_EveryType] : Field [" + name + "] value :[" + text + "]"))
          << leaf;
      EXPECT_FALSE(hasBit(root, "every"));
    }
  }
}

TEST(XMLMetaDataTypesTest, KeepsWhatFollowsANumberOutOfIt) {
  OpenMessage root = newMessage("Ida_PathRoot");
  ASSERT_EQ(setPaths(root, {{"every[1]/@intField", "12abc"}, {"every[1]/@doubleField", "1.5.5"}}),
            XML_SUBSYSTEM_OK);
  EXPECT_THAT(pathsOf(root),
              ElementsAre(PathValue("every[1]/@intField", "12"), PathValue("every[1]/@doubleField", "1.5")));
}

TEST(XMLMetaDataTypesTest, NegativeEnumeratorIsStoredAsItsLowBits) {
  OpenMessage root = newMessage("Ida_PathRoot");
  ASSERT_EQ(setPaths(root, {{"every[1]/@enumField", "-1"}}), XML_SUBSYSTEM_OK);
  const XNMessageBase& every = objectOf(root, "every");
  EXPECT_EQ(MessageAccess::scalar<std::int32_t>(every, fieldOf(every, "enumField")), -1);
}

TEST(XMLMetaDataTypesTest, MessageOfEveryTypeIsToldInTheOrderOfItsFields) {
  OpenMessage root = newMessage("Ida_PathRoot");
  fillEveryType(objectOf(root, "every"));
  std::vector<std::string> names;
  for (const XPathMetaData& made : itemsOf(root))
    if (names.empty() || names.back() != made.xpath) names.push_back(made.xpath);
  std::vector<std::string> expected;
  for (const FieldDef& field : *MessageAccess::classDef(objectOf(root, "every"))) {
    if (kXPathScalarTypes.contains(field.getType()))
      expected.push_back(std::string("every[1]/@") + field.getName());
    if (kXPathListTypes.contains(field.getType()))
      expected.push_back(std::string("every[1]/") + field.getName());
  }
  std::vector<std::string> flat;
  for (const std::string& name : names)
    if (std::count(name.begin(), name.end(), '/') == 1) flat.push_back(name);
  EXPECT_EQ(flat, expected);
}

}  // namespace
}  // namespace zqxml
