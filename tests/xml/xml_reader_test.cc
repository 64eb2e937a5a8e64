// What the reader makes of elements: the shape of a text, names that are not there, and closing by name.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/DistributedIDA.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/catalogue/generated/ZQGui.h>
#include <zqxml/catalogue/name_hash.h>

#include "tests/support/log_capture.h"
#include "tests/support/reading.h"
#include "tests/xml/map_side_lines.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using XmlRead::Empty;
using XmlRead::Inner;
using XmlRead::Node;
using XmlRead::Outer;

constexpr char kStart[] = "MySAX2Handler::startElement";
constexpr char kEnd[] = "MySAX2Handler::endElement";
constexpr char kAttributes[] = "MySAX2Handler::processAttributes";

constexpr char kAttributeForm[] = "<counts val='1'/><counts val='2'/>";
constexpr char kElementForm[] = "<counts>1</counts><counts>2</counts>";

// --- The shape of a text

TEST(XmlReader, ElementFormAndAttributeFormGiveTheSameListAtEveryLevel) {
  for (const std::string list : {kAttributeForm, kElementForm}) {
    SCOPED_TRACE(list);
    const ReadAs<Node> node(list + "<child>" + list + "<child>" + list + "</child></child>" + "<items>" +
                            list + "</items>" + "<byName><__mapKey__>k</__mapKey__><__mapValue__>" + list +
                            "</__mapValue__></byName>");
    ASSERT_TRUE(node.ok());
    EXPECT_THAT(node.getCounts(), ElementsAre(1, 2));
    EXPECT_THAT(node.getChild()->getCounts(), ElementsAre(1, 2));
    EXPECT_THAT(node.getChild()->getChild()->getCounts(), ElementsAre(1, 2));
    EXPECT_THAT(node.getItems()[0].getCounts(), ElementsAre(1, 2));
    EXPECT_THAT(node.findInByName("k")->getCounts(), ElementsAre(1, 2));
  }
}

TEST(XmlReader, ObjectThatOccursTwiceIsFilledTwiceAndOnlyItsSecondFieldsAreSet) {
  const ReadAs<Node> node("<child id='1' name='first'/><child name='second'/>");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getChild()->getName(), "second");
  EXPECT_EQ(node.getChild()->getId(), 1);
  EXPECT_TRUE(node.getChild()->isNameSet());
  EXPECT_FALSE(node.getChild()->isIdSet());
}

TEST(XmlReader, RootOfAnotherClassFillsTheFieldsWhoseNamesMatch) {
  Node node;
  const std::string text = "<XmlRead_Outer id='5' other='6'><rows n='1'/><tags val='t'/></XmlRead_Outer>";
  ASSERT_EQ(XMLSerializer().unserialize(node, text, false), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 5);
  EXPECT_THAT(node.getTags(), ElementsAre("t"));
}

TEST(XmlReader, KeepsEndingASkipAtAnInnerElementOfTheSameName) {
  LogCapture log(25);
  const ReadAs<Node> node(
      "<unknown><id>1</id><unknown><id>2</id></unknown><counts val='3'/></unknown><name>kept</name>");
  ASSERT_TRUE(node.ok());
  EXPECT_FALSE(node.isIdSet());
  EXPECT_THAT(node.getCounts(), ElementsAre(3));
  EXPECT_EQ(node.getName(), "kept");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kStart, 10, "Skipping member : [unknown]"},
                          CapturedLine{kStart, 10, "Skipping element [id]"},
                          CapturedLine{kStart, 10, "Skipping element [unknown]"},
                          CapturedLine{kStart, 10, "Skipping element [id]"},
                          CapturedLine{kAttributes, 15, "No such field : [val] in message : [Node] "},
                          CapturedLine{kEnd, 15, "Skipping member [counts] as it has empty value"},
                          CapturedLine{kEnd, 15, "Unidentified message : [unknown]"}));
}

// The name that hashes like __mapKey__ needs a catalogue of its own: own_table_test.cc.

TEST(XmlReader, MapAtTheTopLevelReadsInBothForms) {
  const std::map<std::string, std::int64_t> expected{{"k", 3}, {"l", 4}};
  const ReadAs<Node> attributes(
      "<sizes><__mapKey__ val='k'/><__mapValue__ val='3'/></sizes>"
      "<sizes><__mapKey__ val='l'/><__mapValue__ val='4'/></sizes>");
  EXPECT_EQ(attributes.getSizes(), expected);
  const ReadAs<Node> elements(
      "<sizes><__mapKey__>k</__mapKey__><__mapValue__>3</__mapValue__></sizes>"
      "<sizes><__mapKey__>l</__mapKey__><__mapValue__>4</__mapValue__></sizes>");
  EXPECT_EQ(elements.getSizes(), expected);
}

TEST(XmlReader, KeepsLosingAPairWithSidesInAttributeFormInsideASubObject) {
  LogCapture log;
  const ReadAs<Node> node(
      "<child><sizes><__mapKey__ val='k'/><__mapValue__ val='3'/></sizes><name>after</name></child>"
      "<name>later</name>");
  ASSERT_TRUE(node.ok());
  EXPECT_THAT(node.getChild()->getSizes(), IsEmpty());
  EXPECT_FALSE(node.getChild()->isSizesSet());
  EXPECT_EQ(node.getChild()->getName(), "after");
  EXPECT_EQ(node.getName(), "later");
  EXPECT_THAT(log.lines(), ElementsAre(wrongSideTag("key", "sizes"), wrongSideTag("value", "sizes")));
}

TEST(XmlReader, SidesInElementFormInsideASubObjectAreRead) {
  LogCapture log;
  const ReadAs<Node> node(
      "<child><sizes><__mapKey__>k</__mapKey__><__mapValue__>3</__mapValue__></sizes></child>");
  EXPECT_THAT(node.getChild()->getSizes(), ElementsAre(testing::Pair("k", 3)));
  EXPECT_TRUE(log.empty());
}

TEST(XmlReader, KeepsClosingASubObjectByAListElementWithTheNameOfAnObjectFieldAround) {
  // `one` is a list of numbers of Inner and an object of Outer: its first element closes the row.
  const ReadAs<Outer> outer("<rows n='1'><one val='7'/><two val='8'/></rows><rows n='2'/>");
  ASSERT_TRUE(outer.ok());
  // The row hangs where the name says, and its second list element went to the object around, which has none.
  ASSERT_NE(outer.getOne(), nullptr);
  EXPECT_EQ(outer.getOne()->getN(), 1);
  EXPECT_THAT(outer.getOne()->getOne(), ElementsAre(7));
  EXPECT_THAT(outer.getOne()->getTwo(), IsEmpty());
  ASSERT_EQ(outer.getRows().size(), 1u);
  EXPECT_EQ(outer.getRows()[0].getN(), 2);
}

TEST(XmlReader, ValBesideASecondAttributeIsNoValue) {
  const ReadAs<Node> node("<counts val='1' more='2'/><counts val='3'/>");
  ASSERT_TRUE(node.ok());
  EXPECT_THAT(node.getCounts(), ElementsAre(3));
}

// --- The root

TEST(XmlReader, MakesTheObjectThatTheRootNames) {
  const auto object = readNew("<XmlRead_Node id='4'><name>n</name></XmlRead_Node>");
  const Node* node = Node::from(object.get());
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->getId(), 4);
  EXPECT_EQ(node->getName(), "n");
}

TEST(XmlReader, MadeObjectHasItsDefaultsUnset) {
  const auto object = readNew("<XmlRead_Defaults text='new'/>");
  const auto* defaults = XmlRead::Defaults::from(object.get());
  ASSERT_NE(defaults, nullptr);
  EXPECT_EQ(defaults->getNumber(), 5);
  EXPECT_FALSE(defaults->isNumberSet());
  EXPECT_EQ(defaults->getText(), "new");
  EXPECT_TRUE(defaults->isTextSet());
}

TEST(XmlReader, RootNameIsSplitAtItsFirstUnderscore) {
  LogCapture log;
  EXPECT_EQ(readNew("<XmlRead_No_de/>"), nullptr);
  EXPECT_TRUE(log.has(kStart, 0, "Unable to construct object out of tag : [XmlRead_No_de]"));
}

TEST(XmlReader, KeepsReadingEveryClassOfDistributedIDAUnderSystemMonitoring) {
  for (const std::string name : {"SystemMonitoring_GenericEvent", "DistributedIDA_GenericEvent"}) {
    const auto object = readNew("<" + name + "/>");
    ASSERT_NE(object, nullptr) << name;
    EXPECT_EQ(object->getTagName(), "DistributedIDA_GenericEvent");
  }
}

TEST(XmlReader, RootIsNeverTakenForAnotherOneThatWasReadBefore) {
  // Answers are remembered by hash: of so many names some fall on the place of the first.
  LogCapture log;
  const std::string known = "DistributedIDA_GenericEvent";
  for (int i = 0; i < 200; ++i) {
    ASSERT_NE(readNew("<" + known + "/>"), nullptr);
    for (const std::string start :
         {"D", "DistributedIDA", "DistributedIDA_GenericEvent", "DistributedXYZ_GenericEvent"})
      ASSERT_EQ(readNew("<" + start + std::to_string(i) + "/>"), nullptr) << start << i;
  }
}

TEST(XmlReader, RootWithoutAClassIsALibraryError) {
  for (const std::string name : {"Node", "XmlRead_Unknown", "Unknown_Node", "_Node", "XmlRead_", "_"}) {
    LogCapture log;
    EXPECT_EQ(readNew("<" + name + " id='1'/>"), nullptr);
    const std::string text = "Unable to construct object out of tag : [" + name + "]";
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kStart, 0, text},
                                         CapturedLine{"XMLSerializer::parserHelper", 0,
                                                      "Encountered error : [" + text + "]"}));
  }
}

TEST(XmlReader, RootOfAnEnumerationMakesAnObjectWithoutFields) {
  const auto object = readNew("<XmlRead_Level HIGH='1'><HIGH>2</HIGH></XmlRead_Level>");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->getTagName(), "XmlRead_Level");
}

TEST(XmlReader, RootThatIsNamedLikeAnObjectFieldIsThatObject) {
  Node node;
  ASSERT_EQ(XMLSerializer().unserialize(node, std::string("<child id='3'><name>in</name></child>"), false),
            XN_MSG_OK);
  EXPECT_FALSE(node.isIdSet());
  ASSERT_NE(node.getChild(), nullptr);
  EXPECT_EQ(node.getChild()->getId(), 3);
  EXPECT_EQ(node.getChild()->getName(), "in");
}

TEST(XmlReader, RootThatIsNamedLikeAScalarFieldIsItsText) {
  Node node;
  ASSERT_EQ(XMLSerializer().unserialize(node, std::string("<name>whole</name>"), false), XN_MSG_OK);
  EXPECT_EQ(node.getName(), "whole");
}

TEST(XmlReader, RootThatIsNamedLikeAMapIsAnEntry) {
  Node node;
  const std::string text = "<words><__mapKey__ val='a'/><__mapValue__ val='b'/></words>";
  ASSERT_EQ(XMLSerializer().unserialize(node, text, false), XN_MSG_OK);
  EXPECT_THAT(node.getWords(), ElementsAre(testing::Pair("a", "b")));
}

TEST(XmlReader, ObjectWithoutAClassTakesNothing) {
  LogCapture log(15);
  XNMessageBase object;
  EXPECT_EQ(XMLSerializer().unserialize(object, std::string("<a b='1'><c d='2'/><e>3</e></a>"), false),
            XN_MSG_OK);
  EXPECT_TRUE(log.has(kStart, 0, "Error while parsing attributes for tag : [a] "));
  EXPECT_EQ(object.getTagName(), XNMessageBase().getTagName());
}

// --- Names that are not there

TEST(XmlReader, UnknownElementIsSkippedWithAllItsContent) {
  LogCapture log(10);
  const ReadAs<Node> node("<what id='9'>text<child id='9'><name>x</name></child></what><id>2</id>");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getId(), 2);
  EXPECT_EQ(node.getChild(), nullptr);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kStart, 10, "Skipping member : [what]"},
                                       CapturedLine{kStart, 10, "Skipping element [child]"},
                                       CapturedLine{kStart, 10, "Skipping element [name]"}));
}

TEST(XmlReader, UnknownAttributeIsIgnored) {
  LogCapture log(15);
  const ReadAs<Node> node("", "what='9' id='2'");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getId(), 2);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kAttributes, 15, "No such field : [what] in message : [Node] "}));
}

TEST(XmlReader, NamesBeyondAsciiAreHashedAsUtf8) {
  LogCapture log(10);
  const ReadAs<Node> node("<n\xc3\xa4me>x</n\xc3\xa4me>", "\xe6\x97\xa5='1'");
  ASSERT_TRUE(node.ok());
  EXPECT_TRUE(log.has(kStart, 10, "Skipping member : [n\xc3\xa4me]"));
}

TEST(XmlReader, NamesAreComparedByTheirHashAlone) {
  const std::string alias = "jE";  // 'i' * 31 + 'd' == 'j' * 31 + 'E'
  ASSERT_EQ(nameHash(std::string_view(alias)), nameHash(std::string_view("id")));
  const ReadAs<Node> node("", alias + "='8'");
  EXPECT_EQ(node.getId(), 8);
}

TEST(XmlReader, ANameOfHashZeroFindsNoField) {
  // Fields without a name hash hold 0, and no name may reach them.
  const std::string name = "abajein";
  ASSERT_EQ(nameHash(std::string_view(name)), 0u);
  const ReadAs<XmlRead::Every> every("<" + name + ">5</" + name + ">", name + "='4'");
  ASSERT_TRUE(every.ok());
  EXPECT_FALSE(every.isNamelessSet());
}

// --- Text

TEST(XmlReader, TextInSeveralPiecesIsOneValue) {
  const ReadAs<Node> node("<name>a&lt;b<![CDATA[<c>&]]>d&#x65;</name>");
  EXPECT_EQ(node.getName(), "a<b<c>&de");
}

TEST(XmlReader, TextOutsideOfValuesIsPassedOver) {
  const ReadAs<Node> node("one<child>two<id>3</id>four</child>five<tags val='t'>six</tags>");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getChild()->getId(), 3);
  EXPECT_THAT(node.getTags(), ElementsAre("t"));
  EXPECT_FALSE(node.isNameSet());
}

TEST(XmlReader, EmptyElementLeavesAScalarUnset) {
  LogCapture log(15);
  const ReadAs<Node> node("<name></name><id/>");
  ASSERT_TRUE(node.ok());
  EXPECT_FALSE(node.isNameSet());
  EXPECT_FALSE(node.isIdSet());
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kEnd, 15, "Skipping member [name] as it has empty value"},
                                       CapturedLine{kEnd, 15, "Skipping member [id] as it has empty value"}));
}

TEST(XmlReader, EmptyAttributeSetsTheEmptyValue) {
  const ReadAs<Node> node("", "name='' id=''");
  ASSERT_TRUE(node.ok());
  EXPECT_TRUE(node.isNameSet());
  EXPECT_EQ(node.getName(), "");
  EXPECT_TRUE(node.isIdSet());
  EXPECT_EQ(node.getId(), 0);
}

TEST(XmlReader, KeepsLosingATextThatASkippedElementInterrupts) {
  const ReadAs<Node> node("<name>abc<what>x</what>def</name>");
  ASSERT_TRUE(node.ok());
  EXPECT_FALSE(node.isNameSet());
}

TEST(XmlReader, KeepsAddingAnOuterTextToThatOfAnElementInside) {
  const ReadAs<Node> node("<id>12<name>abc</name></id>");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getName(), "12abc");
  EXPECT_FALSE(node.isIdSet());
}

// --- Objects and lists of objects

TEST(XmlReader, SubObjectIsMarkedAndHasOnlyItsFieldsSet) {
  const ReadAs<Node> node("<child id='1'/>");
  EXPECT_TRUE(node.isChildSet());
  EXPECT_TRUE(node.getChild()->isIdSet());
  EXPECT_FALSE(node.getChild()->isNameSet());
}

TEST(XmlReader, EmptyObjectElementsAreThereAndSet) {
  const ReadAs<Node> node("<child/><items/><items/>");
  EXPECT_TRUE(node.isChildSet());
  ASSERT_NE(node.getChild(), nullptr);
  EXPECT_TRUE(node.isItemsSet());
  EXPECT_EQ(node.getItems().size(), 2u);
}

TEST(XmlReader, ListElementsKeepTheirOrderAmongOtherFields) {
  std::string text;
  for (int i = 0; i < 100; ++i)
    text += "<items id='" + std::to_string(i) +
            "'><items name='a'/><child id='7'/><items name='b'/></items><id>" + std::to_string(i) + "</id>";
  const ReadAs<Node> node(text);
  ASSERT_TRUE(node.ok());
  ASSERT_EQ(node.getItems().size(), 100u);
  for (std::size_t i = 0; i < 100; ++i) {
    EXPECT_EQ(node.getItems()[i].getId(), static_cast<int>(i));
    ASSERT_EQ(node.getItems()[i].getItems().size(), 2u);
    EXPECT_EQ(node.getItems()[i].getItems()[1].getName(), "b");
    EXPECT_EQ(node.getItems()[i].getChild()->getId(), 7);
  }
}

TEST(XmlReader, SubObjectsOfOldWayObjectsAreTakenAsTheyAre) {
  // An old-way object is built whole; reading goes on in what is there, and its bits start anew.
  const auto object =
      readNew("<ZQGui_SaveAlert loginName='me'><processinginstructioninfo/></ZQGui_SaveAlert>");
  const auto* alert = ZQGui::SaveAlert::from(object.get());
  ASSERT_NE(alert, nullptr);
  EXPECT_TRUE(alert->isLoginNameSet());
  EXPECT_FALSE(alert->isAlertLocationSet());
}

TEST(XmlReader, ClassWithoutFieldsReadsAnything) {
  const ReadAs<Empty> empty("<a>1</a>text<b c='2'/>", "d='3'");
  EXPECT_TRUE(empty.ok());
}

TEST(XmlReader, NamespacePrefixesDoNotCount) {
  const ReadAs<Node> node("<p:name xmlns:p='u'>x</p:name><q:child xmlns:q='v' q:id='3'/>",
                          "xmlns:r='w' r:id='9'");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getName(), "x");
  EXPECT_EQ(node.getId(), 9);
  EXPECT_EQ(node.getChild()->getId(), 3);
}

TEST(XmlReader, NamespaceDeclarationBesideValDoesNotCount) {
  const ReadAs<Node> node("<counts xmlns:p='u' val='4'/>");
  EXPECT_THAT(node.getCounts(), ElementsAre(4));
}

TEST(XmlReader, CommentsAndInstructionsArePassedOver) {
  const ReadAs<Node> node("<!-- c --><name>a<!-- c -->b<?pi x?>c</name><?pi y?>");
  EXPECT_EQ(node.getName(), "abc");
}

}  // namespace
}  // namespace zqxml
