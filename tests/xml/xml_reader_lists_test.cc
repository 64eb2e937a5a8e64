// What the reader makes of the elements of lists: each list type, as the attribute `val` and as the text of
// an element.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>

#include <initializer_list>
#include <limits>
#include <string>

#include "tests/support/log_capture.h"
#include "tests/support/reading.h"
#include "tests/xml/value_forms.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using XmlRead::Every;

/// The two forms of a list element.
class ListElements : public testing::TestWithParam<ValueForm> {
 protected:
  ReadAs<Every> read(const std::string& field, std::initializer_list<const char*> texts) const {
    std::string content;
    for (const std::string text : texts)
      content += GetParam().isElement ? "<" + field + ">" + text + "</" + field + ">"
                                      : "<" + field + " val=\"" + text + "\"/>";
    return ReadAs<Every>(content);
  }
};
INSTANTIATE_TEST_SUITE_P(XmlReaderLists, ListElements, testing::Values(kAttributeForm, kElementForm),
                         [](const auto& form) { return form.param.name; });

TEST_P(ListElements, ListOfIntKeepsTheLowBitsOfItsNumbers) {
  EXPECT_THAT(read("listInt", {"1", "-2", "4294967297", "x"}).getListInt(), ElementsAre(1, -2, 1, 0));
}
TEST_P(ListElements, ListOfLongSaturates) {
  EXPECT_THAT(read("listLong", {"1", "-2", "4294967297", "-4294967297"}).getListLong(),
              ElementsAre(1, -2, 0x7fffffff, -0x7fffffff - 1));
}
TEST_P(ListElements, UnsignedListsWrapASignAndSaturate) {
  EXPECT_THAT(read("listUint", {"1", "-1", "4294967296"}).getListUint(),
              ElementsAre(1u, 0xffffffffu, 0xffffffffu));
  EXPECT_THAT(read("listUlong", {"1", "-1", "4294967296"}).getListUlong(),
              ElementsAre(1u, 0xffffffffu, 0xffffffffu));
  EXPECT_THAT(read("listUlonglong", {"1", "-1", "18446744073709551616"}).getListUlonglong(),
              ElementsAre(1u, ~std::uint64_t{0}, ~std::uint64_t{0}));
}
TEST_P(ListElements, ListOfBoolIsNumbersAlone) {
  EXPECT_THAT(read("listBool", {"1", "0", "true"}).getListBool(), ElementsAre(1u, 0u, 0u));
}
TEST_P(ListElements, ListOfLonglongSaturates) {
  EXPECT_THAT(read("listLonglong", {"-5", "9223372036854775808"}).getListLonglong(),
              ElementsAre(-5, std::numeric_limits<std::int64_t>::max()));
}
TEST_P(ListElements, ListsOfFloatingPoint) {
  EXPECT_THAT(read("listFloat", {"0.5", "1e300", "x"}).getListFloat(),
              ElementsAre(0.5f, std::numeric_limits<float>::infinity(), 0.0f));
  EXPECT_THAT(read("listDouble", {"0.1", "-2e-3"}).getListDouble(), ElementsAre(0.1, -0.002));
}
TEST_P(ListElements, ListsOfStrings) {
  EXPECT_THAT(read("listString", {"a", "|b|#1!", "\xc3\xa9"}).getListString(),
              ElementsAre("a", "b\1", "\xc3\xa9"));
  EXPECT_THAT(read("listWstring", {"a", "|b|#1!", "\xc3\xa9"}).getListWstring(),
              ElementsAre(u"a", u"b\1", u"\u00e9"));
}
TEST_P(ListElements, ListOfBinaryStrings) {
  const auto every = read("listBstring", {"YWIAY2Q=", "YQ=="});
  ASSERT_EQ(every.getListBstring().size(), 2u);
  EXPECT_EQ(every.getListBstring()[0].str(), std::string("ab\0cd", 5));
  EXPECT_EQ(every.getListBstring()[1].str(), "a");
}
TEST_P(ListElements, ListElementMarksTheField) {
  EXPECT_TRUE(read("listInt", {"0"}).isListIntSet());
  EXPECT_TRUE(read("listString", {"x"}).isListStringSet());
}

TEST(XmlReaderLists, EmptyValSetsAnEmptyElement) {
  const ReadAs<Every> every(
      "<listString val=''/><listWstring val=''/><listBstring val=''/><listInt val=''/><listEnum val=''/>");
  EXPECT_THAT(every.getListString(), ElementsAre(""));
  EXPECT_THAT(every.getListWstring(), ElementsAre(u""));
  ASSERT_EQ(every.getListBstring().size(), 1u);
  EXPECT_EQ(every.getListBstring()[0].size(), 0u);
  EXPECT_THAT(every.getListInt(), ElementsAre(0));
  EXPECT_EQ(every.getListEnum().size(), 1u);
}

TEST(XmlReaderLists, ValuesOfListsAreReadWithoutALineUnlessASettingSaysSo) {
  LogCapture log;
  EXPECT_THAT(ReadAs<Every>("<listString val='\xe6\x97\xa5'/>").getListString(), ElementsAre("\xe6\x97\xa5"));
  EXPECT_TRUE(log.empty());
}

TEST(XmlReaderLists, EmptyTextSetsNoElement) {
  const ReadAs<Every> every("<listString></listString><listInt/>");
  EXPECT_FALSE(every.isListStringSet());
  EXPECT_FALSE(every.isListIntSet());
}

TEST(XmlReaderLists, ListOfEnumTakesNamesInTextAlone) {
  LogCapture log;
  const ReadAs<Every> text("<listEnum>7</listEnum><listEnum> high</listEnum><listEnum>what</listEnum>");
  EXPECT_THAT(text.getListEnum(), ElementsAre(7u, 7u));
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kEnd, 0, "Enum [Level] does not have enum value [what]"}));
  const ReadAs<Every> val("<listEnum val='7'/><listEnum val='HIGH'/>");
  EXPECT_THAT(val.getListEnum(), ElementsAre(7u, 0u));
}

TEST(XmlReaderLists, ValOfOtherTypesIsIgnored) {
  const ReadAs<Every> every(
      "<intField val='1'/><stringField val='x'/><boolField val='1'/><doubleField val='1'/><bstringField "
      "val='YQ=='/>"
      "<enumField val='1'/><reservedField val='1'/><pstringField val='x'/>");
  ASSERT_TRUE(every.ok());
  EXPECT_FALSE(every.isIntFieldSet());
  EXPECT_FALSE(every.isStringFieldSet());
  EXPECT_FALSE(every.isBoolFieldSet());
  EXPECT_FALSE(every.isDoubleFieldSet());
  EXPECT_FALSE(every.isBstringFieldSet());
  EXPECT_FALSE(every.isEnumFieldSet());
  EXPECT_FALSE(every.isPstringFieldSet());
}

TEST(XmlReaderLists, ElementOfAnotherAttributeIsAField) {
  // The attributes of a list element are looked up as fields of the object, "val" like any other.
  const ReadAs<Every> every("<listInt intField='3'/><listInt val='1' stringField='s'/>");
  EXPECT_EQ(every.getIntField(), 3);
  EXPECT_EQ(every.getStringField(), "s");
  EXPECT_FALSE(every.isListIntSet());
}

}  // namespace
}  // namespace zqxml
