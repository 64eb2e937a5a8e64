// Reading with the setting nDisableXMLValidation, which also switches namespaces off. It is read once in a
// process, so this program sets it before anything else.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/xml/xml_serializer.h>

#include "tests/support/log_capture.h"
#include "tests/support/reading.h"
#include "tests/support/settings.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::Pair;
using XmlRead::Node;

const TestSettings settings{{"EventManager/nDisableXMLValidation", "1"}};

TEST(XmlValidationOff, IsLoggedOnceWhenTheLibraryStarts) {
  if (!XMLSerializer::isXercesInitialized) {
    LogCapture log;
    EXPECT_TRUE(ReadAs<Node>("").ok());
    EXPECT_THAT(log.lines(),
                ElementsAre(CapturedLine{
                    "XMLSerializer::initialize", 0,
                    "Disabling XML Validation as [EventManager]/[nDisableXMLValidation] is set to [1]"}));
  }
  LogCapture log;
  EXPECT_TRUE(ReadAs<Node>("").ok());
  EXPECT_TRUE(log.empty());
}

TEST(XmlValidationOff, MessagesAreRead) {
  const ReadAs<Node> node(
      "<tags val='t'/><counts>4</counts><child id='2'/><items name='i'/>"
      "<words><__mapKey__ val='k'/><__mapValue__>v</__mapValue__></words>",
      "id='1' name='n'");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getId(), 1);
  EXPECT_EQ(node.getName(), "n");
  EXPECT_THAT(node.getTags(), ElementsAre("t"));
  EXPECT_THAT(node.getCounts(), ElementsAre(4));
  EXPECT_EQ(node.getChild()->getId(), 2);
  EXPECT_EQ(node.getItems()[0].getName(), "i");
  EXPECT_THAT(node.getWords(), ElementsAre(Pair("k", "v")));
}

TEST(XmlValidationOff, ObjectsAreMadeAndTagsFound) {
  EXPECT_NE(readNew("<XmlRead_Node id='1'/>"), nullptr);
  std::string text = "<XmlRead_Node id='1'/>";
  std::string tag;
  unsigned tagId = 0;
  EXPECT_TRUE(XMLSerializer::GetTagAndTagIDFromXML(text, tag, tagId));
  EXPECT_EQ(tagId, Node::kTagId);
  Node node;
  EXPECT_EQ(XMLSerializer().unserialize(node, u"<a id='3'/>", false, false), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 3);
}

TEST(XmlValidationOff, QualifiedNamesCountAsTheyStand) {
  LogCapture log(15);
  const ReadAs<Node> node("<p:name xmlns:p='u'>x</p:name><child q:id='3'/>", "r:id='9'");
  ASSERT_TRUE(node.ok());
  EXPECT_FALSE(node.isNameSet());
  EXPECT_FALSE(node.isIdSet());
  EXPECT_FALSE(node.getChild()->isIdSet());
  EXPECT_TRUE(log.has("MySAX2Handler::startElement", 10, "Skipping member : [p:name]"));
  EXPECT_TRUE(log.has("MySAX2Handler::processAttributes", 15, "No such field : [q:id] in message : [Node] "));
}

TEST(XmlValidationOff, DeclarationBesideValIsASecondAttribute) {
  const ReadAs<Node> node("<counts xmlns:p='u' val='4'/><counts val='5'/>");
  EXPECT_THAT(node.getCounts(), ElementsAre(5));
}

TEST(XmlValidationOff, EntitiesFailAllTheSame) {
  LogCapture log;
  Node node;
  EXPECT_EQ(XMLSerializer().unserialize(
                node, std::string("<!DOCTYPE a [<!ENTITY e 'x'>]><a><name>&e;</name></a>"), false),
            XN_MSG_PARSE_ERROR);
}

}  // namespace
}  // namespace zqxml
