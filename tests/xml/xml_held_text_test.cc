// Texts that are part of the message which they are read into, on both roads.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/held_text.h>
#include <zqxml/xml/xml_serializer.h>

#include <string>
#include <tuple>

#include "tests/support/xml_roads.h"

namespace zqxml {
namespace {

using testing::Contains;
using testing::ElementsAre;
using XmlRead::Every;
using XmlRead::Node;

/// Puts something else wherever a text can hang in a Node, and then has values that show whether it was still
/// there.
const std::string kText =
    "<a name='something else than the text'><child name='something else'/><items name='something else'/>"
    "<tags val='one more'/><tags val='and another one'/><words><__mapKey__>k</__mapKey__>"
    "<__mapValue__>something else</__mapValue__></words><id>7</id><counts>1</counts><counts>2</counts></a>";

/// Each road, with the message's values kept or not.
class HeldText : public testing::TestWithParam<std::tuple<bool, bool>> {
 protected:
  bool keeps() const { return std::get<1>(GetParam()); }

  void read(Node& node, const std::string& text) {
    ASSERT_EQ(text, kText);
    ASSERT_EQ(XMLSerializer().unserialize(node, text, keeps()), XN_MSG_OK);
    EXPECT_EQ(node.getId(), 7);
    EXPECT_EQ(node.getName(), "something else than the text");
    EXPECT_THAT(node.getCounts(), ElementsAre(1, 2));
    EXPECT_THAT(node.getTags(), Contains("and another one"));
  }

 private:
  const FastXmlRoads road_{std::get<0>(GetParam())};
};
INSTANTIATE_TEST_SUITE_P(Roads, HeldText, testing::Combine(testing::Bool(), testing::Bool()));

TEST_P(HeldText, IsReadFromAString) {
  Node node;
  node.setName(kText);
  read(node, node.getName());
}

TEST_P(HeldText, IsReadFromASubObject) {
  Node node;
  node.mutableChild().setName(kText);
  read(node, node.getChild()->getName());
}

TEST_P(HeldText, IsReadFromAnObjectInAList) {
  Node node;
  node.addToItems().setName(kText);
  read(node, node.getItems()[0].getName());
}

TEST_P(HeldText, IsReadFromAListOfStrings) {
  Node node;
  node.mutableTags().push_back(kText);
  read(node, node.getTags()[0]);
}

TEST_P(HeldText, IsReadFromAMap) {
  Node node;
  node.mutableWords()["k"] = kText;
  read(node, node.getWords().at("k"));
}

TEST_P(HeldText, IsReadFromAWideString) {
  const std::string text =
      "<a wstringField='something else than the text'><stringField>"
      "read behind it</stringField><intField>7</intField></a>";
  Every every;
  every.setWstringField(toUtf16(text));
  ASSERT_EQ(XMLSerializer().unserialize(every, every.getWstringField().c_str(), false, keeps()), XN_MSG_OK);
  EXPECT_EQ(every.getWstringField(), u"something else than the text");
  EXPECT_EQ(every.getStringField(), "read behind it");
  EXPECT_EQ(every.getIntField(), 7);
}

TEST(MayHoldText, NewMessageHoldsNone) {
  EXPECT_FALSE(mayHoldText(Node(), 1));
  EXPECT_FALSE(mayHoldText(Every(), 1));
  EXPECT_FALSE(mayHoldText(XNMessageBase(), 1));
}

TEST(MayHoldText, StringsHoldTextsOfTheirLength) {
  Every every;
  every.setStringField("12345678");
  EXPECT_TRUE(mayHoldText(every, 8));
  EXPECT_FALSE(mayHoldText(every, 9));
  every.setWstringField(u"123456");
  EXPECT_TRUE(mayHoldText(every, 12));
  EXPECT_FALSE(mayHoldText(every, 13));
}

TEST(MayHoldText, ListsMayHoldAny) {
  Node node;
  node.mutableCounts();
  EXPECT_TRUE(mayHoldText(node, 1000));
}

}  // namespace
}  // namespace zqxml
