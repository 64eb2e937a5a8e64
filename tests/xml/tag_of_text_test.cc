// What XMLSerializer::GetTagAndTagIDFromXML finds at the start of a text.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/xml/xml_serializer.h>

#include <string>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using XmlRead::Node;

constexpr char kTag[] = "XMLSerializer::GetTagAndTagIDFromXML";
constexpr char kTagStart[] = "XMLSerializer::_GetTagAndTagIDFromXML";

TEST(TagOfText, TagComesFromTheRootAndItsIdFromTheCatalogue) {
  std::string tag;
  unsigned tagId = 0;
  for (std::string xml :
       {"<XmlRead_Node/>", "<?xml version='1.0'?><!-- c --><?pi?><!DOCTYPE x><XmlRead_Node id='1'><cut",
        "\n\t<XmlRead_Node id='1'>"}) {
    ASSERT_TRUE(XMLSerializer::GetTagAndTagIDFromXML(xml, tag, tagId)) << xml;
    EXPECT_EQ(tag, "XmlRead_Node");
    EXPECT_EQ(tagId, Node::kTagId);
  }
}

TEST(TagOfText, TagOfARenamedRootIsThatOfItsClass) {
  std::string xml = "<SystemMonitoring_GenericEvent/>";
  std::string tag;
  unsigned tagId = 0;
  ASSERT_TRUE(XMLSerializer::GetTagAndTagIDFromXML(xml, tag, tagId));
  EXPECT_EQ(tag, "DistributedIDA_GenericEvent");
  EXPECT_EQ(tagId >> 24, 119u);
}

TEST(TagOfText, TagOfAWideTextNeedsADeclaration) {
  LogCapture log;
  std::string tag;
  unsigned tagId = 0;
  std::u16string declared = u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><XmlRead_Node/>";
  EXPECT_TRUE(XMLSerializer::GetTagAndTagIDFromXML(declared, tag, tagId));
  EXPECT_EQ(tag, "XmlRead_Node");
  std::u16string bare = u"<XmlRead_Node/>";
  EXPECT_FALSE(XMLSerializer::GetTagAndTagIDFromXML(bare, tag, tagId));
  EXPECT_EQ(tag, "");
}

TEST(TagOfText, TagOfAnEmptyTextIsNotLookedFor) {
  LogCapture log(10);
  std::string tag = "before";
  unsigned tagId = 5;
  std::string narrow;
  std::u16string wide;
  EXPECT_FALSE(XMLSerializer::GetTagAndTagIDFromXML(narrow, tag, tagId));
  EXPECT_FALSE(XMLSerializer::GetTagAndTagIDFromXML(wide, tag, tagId));
  EXPECT_EQ(tag, "before");
  const CapturedLine line{kTag, 10, "Received empty xml"};
  EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST(TagOfText, TagOfATextThatIsNoXmlIsLogged) {
  for (std::string xml : {"text", "<?xml version='1.0'?>", "<", "<!--"}) {
    LogCapture log;
    std::string tag = "before";
    unsigned tagId = 5;
    EXPECT_FALSE(XMLSerializer::GetTagAndTagIDFromXML(xml, tag, tagId)) << xml;
    EXPECT_EQ(tag, "");
    EXPECT_EQ(tagId, 0u);
    EXPECT_TRUE(log.has(kTag, 0, "Error retrieving tag for given xml."));
    EXPECT_TRUE(log.hasPart(kTagStart, 0, "SAXParseException: ") ||
                log.hasPart(kTagStart, 0, "Unable to retrieve t"))
        << testing::PrintToString(log.lines());
  }
}

}  // namespace
}  // namespace zqxml
