// What the reader makes of map entries.
#include <gmock/gmock.h>
#include <tests/binary/hand_made_class.h>
#include <zqxml/catalogue/generated/XmlRead.h>

#include "tests/support/log_capture.h"
#include "tests/support/reading.h"
#include "tests/xml/map_side_lines.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using XmlRead::Every;
using XmlRead::Node;
using XmlRead::Outer;
using XmlRead::Point;

constexpr char kEnd[] = "MySAX2Handler::endElement";

/// An entry of a map whose sides are values, in one of the two forms.
std::string entry(const std::string& map, const std::string& key, const std::string& value, bool elements) {
  const auto side = [&](const std::string& name, const std::string& text) {
    return elements ? "<" + name + ">" + text + "</" + name + ">" : "<" + name + " val=\"" + text + "\"/>";
  };
  return "<" + map + ">" + side("__mapKey__", key) + side("__mapValue__", value) + "</" + map + ">";
}

class MapForms : public testing::TestWithParam<bool> {
 protected:
  static std::string of(const std::string& map, const std::string& key, const std::string& value) {
    return entry(map, key, value, GetParam());
  }
};
INSTANTIATE_TEST_SUITE_P(XmlReaderMaps, MapForms, testing::Bool(),
                         [](const auto& form) { return form.param ? "Element" : "Attribute"; });

TEST_P(MapForms, EachTypeOfValuesReads) {
  const ReadAs<Every> every(of("mapIntInt", "-1", "9223372036854775807") + of("mapIntInt", "2", "3") +
                            of("mapIntString", "5", "f\xc3\xbcnf") + of("mapStringInt", "k", "-4") +
                            of("mapStringString", "a&lt;", "|b|#1!"));
  ASSERT_TRUE(every.ok());
  EXPECT_THAT(every.getMapIntInt(),
              ElementsAre(Pair(-1, std::numeric_limits<std::int64_t>::max()), Pair(2, 3)));
  EXPECT_THAT(every.getMapIntString(), ElementsAre(Pair(5, "f\xc3\xbcnf")));
  EXPECT_THAT(every.getMapStringInt(), ElementsAre(Pair("k", -4)));
  EXPECT_THAT(every.getMapStringString(), ElementsAre(Pair("a<", "b\1")));
  EXPECT_TRUE(every.isMapIntIntSet());
  EXPECT_TRUE(every.isMapStringStringSet());
}

TEST_P(MapForms, NumbersMayHaveWhiteSpaceAround) {
  const ReadAs<Every> every(of("mapIntInt", " 1 ", "\t2"));
  EXPECT_THAT(every.getMapIntInt(), ElementsAre(Pair(1, 2)));
}

TEST_P(MapForms, EmptySidesAreEmptyStringsAndZeros) {
  const ReadAs<Every> every(of("mapStringString", "", "") + of("mapIntInt", "", ""));
  EXPECT_THAT(every.getMapStringString(), ElementsAre(Pair("", "")));
  EXPECT_THAT(every.getMapIntInt(), ElementsAre(Pair(0, 0)));
}

TEST_P(MapForms, FirstEntryOfAKeyWins) {
  const ReadAs<Every> every(of("mapStringInt", "k", "1") + of("mapStringInt", "k", "2"));
  EXPECT_THAT(every.getMapStringInt(), ElementsAre(Pair("k", 1)));
}

TEST_P(MapForms, ScalarKeyGoesWithAnObject) {
  const std::string key = GetParam() ? "<__mapKey__>9</__mapKey__>" : "<__mapKey__ val='9'/>";
  const ReadAs<Every> every("<mapIntObject>" + key +
                            "<__mapValue__ id='3'><name>n</name></__mapValue__></mapIntObject>" +
                            "<mapStringObject>" + key + "<__mapValue__/></mapStringObject>");
  ASSERT_TRUE(every.ok());
  ASSERT_NE(every.findInMapIntObject(9), nullptr);
  EXPECT_EQ(every.findInMapIntObject(9)->getId(), 3);
  EXPECT_EQ(every.findInMapIntObject(9)->getName(), "n");
  ASSERT_NE(every.findInMapStringObject("9"), nullptr);
  EXPECT_FALSE(every.findInMapStringObject("9")->isIdSet());
}

TEST(XmlReaderMaps, BothSidesMayBeObjectsOfDifferentClasses) {
  const ReadAs<Every> every(
      "<mapObjectObject><__mapKey__ id='1'><name>key</name></__mapKey__>"
      "<__mapValue__ x='2'><y>3</y></__mapValue__></mapObjectObject>");
  ASSERT_EQ(every.getMapObjectObject().size(), 1u);
  const auto& [key, value] = *every.getMapObjectObject().begin();
  ASSERT_NE(Node::from(&key), nullptr);
  EXPECT_EQ(Node::from(&key)->getId(), 1);
  EXPECT_EQ(Node::from(&key)->getName(), "key");
  ASSERT_NE(Point::from(&value), nullptr);
  EXPECT_EQ(Point::from(&value)->getX(), 2);
  EXPECT_EQ(Point::from(&value)->getY(), 3);
}

TEST(XmlReaderMaps, KeepsOneEntryInAMapKeyedByObjects) {
  const ReadAs<Every> every(
      "<mapObjectObject><__mapKey__ id='1'/><__mapValue__ x='1'/></mapObjectObject>"
      "<mapObjectObject><__mapKey__ id='2'/><__mapValue__ x='2'/></mapObjectObject>");
  ASSERT_EQ(every.getMapObjectObject().size(), 1u);
  EXPECT_EQ(Point::from(&every.getMapObjectObject().begin()->second)->getX(), 1);
}

TEST(XmlReaderMaps, EmptyObjectSidesAreTaken) {
  const ReadAs<Every> every("<mapObjectObject><__mapKey__/><__mapValue__/></mapObjectObject>");
  EXPECT_EQ(every.getMapObjectObject().size(), 1u);
}

TEST(XmlReaderMaps, EntriesInsideTheValueOfAnEntryAreReadApart) {
  const ReadAs<Node> node(
      "<byName><__mapKey__>a</__mapKey__><__mapValue__ id='1'>"
      "<byName><__mapKey__>b</__mapKey__><__mapValue__ id='2'/></byName>" +
      entry("sizes", "s", "3", true) +
      "<byName><__mapKey__>c</__mapKey__><__mapValue__><name>deep</name></__mapValue__></byName>"
      "<pairs><__mapKey__ id='5'/><__mapValue__ id='6'/></pairs>"
      "<name>outer</name></__mapValue__></byName><id>8</id>");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getId(), 8);
  const Node* a = node.findInByName("a");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->getId(), 1);
  EXPECT_EQ(a->getName(), "outer");
  EXPECT_THAT(a->getSizes(), ElementsAre(Pair("s", 3)));
  ASSERT_NE(a->findInByName("b"), nullptr);
  EXPECT_EQ(a->findInByName("b")->getId(), 2);
  ASSERT_NE(a->findInByName("c"), nullptr);
  EXPECT_EQ(a->findInByName("c")->getName(), "deep");
  EXPECT_EQ(a->getPairs().size(), 1u);
}

TEST(XmlReaderMaps, MapsInsideAKeyObjectAreReadApart) {
  const ReadAs<Node> node("<pairs><__mapKey__>" + entry("words", "a", "b", true) +
                          "</__mapKey__><__mapValue__>" + entry("words", "c", "d", true) +
                          "</__mapValue__></pairs>");
  ASSERT_EQ(node.getPairs().size(), 1u);
  const auto& [key, value] = *node.getPairs().begin();
  EXPECT_THAT(Node::from(&key)->getWords(), ElementsAre(Pair("a", "b")));
  EXPECT_THAT(Node::from(&value)->getWords(), ElementsAre(Pair("c", "d")));
}

TEST(XmlReaderMaps, ObjectsInsideAValueObjectAreRead) {
  const ReadAs<Node> node(
      "<byName><__mapKey__>k</__mapKey__><__mapValue__><child><name>c</name><counts>1</counts></child>"
      "<items><name>i</name></items><items/><tags val='t'/><tags>u</tags></__mapValue__></byName>");
  const Node* value = node.findInByName("k");
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(value->getChild()->getName(), "c");
  EXPECT_THAT(value->getChild()->getCounts(), ElementsAre(1));
  EXPECT_EQ(value->getItems().size(), 2u);
  EXPECT_EQ(value->getItems()[0].getName(), "i");
  EXPECT_THAT(value->getTags(), ElementsAre("t", "u"));
}

TEST(XmlReaderMaps, ElementWithoutAttributesThatIsAnObjectIsNeverAText) {
  // Inside an entry everything without attributes counts as a text, but not an object or a list element.
  const ReadAs<Node> node(
      "<byName><__mapKey__>k</__mapKey__><__mapValue__><child>text</child><items>text</items><name>n</name>"
      "</__mapValue__></byName>");
  const Node* value = node.findInByName("k");
  ASSERT_NE(value, nullptr);
  EXPECT_NE(value->getChild(), nullptr);
  EXPECT_EQ(value->getItems().size(), 1u);
  EXPECT_EQ(value->getName(), "n");
}

// --- Sides that are missing, doubled, or in the wrong place

TEST(XmlReaderMaps, PairNeedsBothSides) {
  const ReadAs<Every> every(
      "<mapStringInt/><mapStringInt><__mapKey__>k</__mapKey__></mapStringInt>"
      "<mapStringInt><__mapValue__>3</__mapValue__></mapStringInt>"
      "<mapStringInt><__mapValue__ val='3'/><__mapKey__ val='k'/></mapStringInt>"
      "<mapStringObject><__mapKey__>k</__mapKey__></mapStringObject><intField>5</intField>");
  ASSERT_TRUE(every.ok());
  EXPECT_FALSE(every.isMapStringObjectSet());
  EXPECT_EQ(every.getIntField(), 5);
  // Of the last entry of mapStringInt the first side counts as the key, whatever it is called.
  EXPECT_THAT(every.getMapStringInt(), ElementsAre(Pair("3", 0)));
}

TEST(XmlReaderMaps, SecondKeyIsTakenForTheValue) {
  const ReadAs<Every> every(
      "<mapStringString><__mapKey__>a</__mapKey__><__mapKey__>b</__mapKey__></mapStringString>");
  EXPECT_THAT(every.getMapStringString(), ElementsAre(Pair("a", "b")));
}

TEST(XmlReaderMaps, SideInsideASideAddsToItsText) {
  const ReadAs<Every> every(
      "<mapStringString><__mapKey__>a<__mapKey__>b</__mapKey__></__mapKey__><__mapValue__>c</__mapValue__>"
      "</mapStringString>");
  EXPECT_THAT(every.getMapStringString(), ElementsAre(Pair("ab", "c")));
}

TEST(XmlReaderMaps, ObjectInsideATextSideStaysOpen) {
  // Its end tag is taken for that of the text, which nothing has ended.
  LogCapture log;
  const ReadAs<Node> node(
      "<words><__mapKey__>a<items></items></__mapKey__><__mapValue__>b</__mapValue__></words>");
  ASSERT_TRUE(node.ok());
  EXPECT_TRUE(log.has(kEnd, 0, "Encountered wrong map[key] tag usage. Cached map name is : [words]"));
  EXPECT_FALSE(node.isWordsSet());
  EXPECT_FALSE(node.isItemsSet());
}

TEST(XmlReaderMaps, LastOfSeveralValuesStays) {
  const ReadAs<Every> every(
      "<mapStringString><__mapKey__>a</__mapKey__><__mapValue__>b</__mapValue__><__mapValue__>c</"
      "__mapValue__>"
      "</mapStringString><mapStringObject><__mapKey__>o</__mapKey__><__mapValue__ id='1'/><__mapValue__ "
      "id='2'/>"
      "</mapStringObject>");
  EXPECT_THAT(every.getMapStringString(), ElementsAre(Pair("a", "c")));
  ASSERT_NE(every.findInMapStringObject("o"), nullptr);
  EXPECT_EQ(every.findInMapStringObject("o")->getId(), 2);
}

TEST(XmlReaderMaps, SideTagsOutsideOfAnEntryArePassedOver) {
  LogCapture log;
  const ReadAs<Node> node("<__mapKey__ val='a'/><__mapValue__>b</__mapValue__><id>4</id>");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getId(), 4);
  EXPECT_TRUE(log.empty());
}

TEST(XmlReaderMaps, SideTagsInASubObjectWithoutAnyMapAreLogged) {
  LogCapture log;
  const ReadAs<Node> node("<child><__mapKey__ val='a'/><__mapValue__ id='2'/></child>");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getChild()->getId(), 2);  // the attributes of a stray side go to the object
  EXPECT_THAT(log.lines(), ElementsAre(wrongSideTag("key", "(null)"), wrongSideTag("value", "(null)")));
}

TEST(XmlReaderMaps, SideTagsAfterAnEntryAreLoggedWithItsName) {
  LogCapture log;
  const ReadAs<Node> node("<child>" + entry("words", "a", "b", true) + "<__mapKey__ val='a'/></child>");
  EXPECT_THAT(node.getChild()->getWords(), ElementsAre(Pair("a", "b")));
  EXPECT_TRUE(log.has(kEnd, 0, "Encountered wrong map[key] tag usage. Cached map name is : [words]"));
}

TEST(XmlReaderMaps, SecondKeyObjectTakesThePlaceOfTheFirst) {
  LogCapture log;
  const ReadAs<Node> node(
      "<pairs><__mapKey__ id='1'/><__mapKey__ id='2'/><__mapValue__ id='3'/></pairs><name>n</name>");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getName(), "n");
  ASSERT_EQ(node.getPairs().size(), 1U);
  EXPECT_EQ(static_cast<const Node&>(node.getPairs().begin()->first).getId(), 2);
  EXPECT_EQ(static_cast<const Node&>(node.getPairs().begin()->second).getId(), 3);
  EXPECT_TRUE(log.empty());
}

TEST(XmlReaderMaps, ValueWithoutAKeyEndsTheKeyObjectAndGivesNoPair) {
  const ReadAs<Node> node("<pairs><__mapValue__ id='3'/></pairs><name>n</name>");
  EXPECT_EQ(node.getName(), "n");
  EXPECT_FALSE(node.isPairsSet());
}

TEST(XmlReaderMaps, KeepsLosingAnObjectValueBehindAKeyInAttributeFormInsideASubObject) {
  LogCapture log;
  const ReadAs<Node> node(
      "<child><byName><__mapKey__ val='k'/><__mapValue__ id='3'/></byName><name>n</name></child>");
  ASSERT_TRUE(node.ok());
  EXPECT_FALSE(node.getChild()->isByNameSet());
  EXPECT_EQ(node.getChild()->getName(), "n");
  EXPECT_THAT(log.lines(), ElementsAre(wrongSideTag("key", "byName"), wrongSideTag("value", "byName")));
}

TEST(XmlReaderMaps, KeepsEndingAnEntryAtAnElementNamedLikeTheMap) {
  // `table` is a map of Outer and a number of Inner: inside the value its end tag ends the entry, without a
  // pair.
  const ReadAs<Outer> outer(
      "<table><__mapKey__>k</__mapKey__><__mapValue__><table>5</table></__mapValue__></table><id>6</id>"
      "<table><__mapKey__>l</__mapKey__><__mapValue__ table='7'/></table>");
  ASSERT_TRUE(outer.ok());
  EXPECT_EQ(outer.getId(), 6);
  EXPECT_EQ(outer.findInTable("k"), nullptr);
  ASSERT_NE(outer.findInTable("l"), nullptr);
  EXPECT_EQ(outer.findInTable("l")->getTable(), 7);
}

TEST(XmlReaderMaps, AttributesOfTheEntryArePassedOver) {
  const ReadAs<Node> node("<words id='3' val='x'><__mapKey__ val='a'/><__mapValue__ val='b'/></words>");
  EXPECT_FALSE(node.isIdSet());
  EXPECT_THAT(node.getWords(), ElementsAre(Pair("a", "b")));
}

TEST(XmlReaderMaps, UnknownElementsInsideAnEntryAreSkipped) {
  const ReadAs<Node> node(
      "<words><what/><__mapKey__>a</__mapKey__><what>x</what><__mapValue__>b</__mapValue__><what/></words>");
  EXPECT_THAT(node.getWords(), ElementsAre(Pair("a", "b")));
}

TEST(XmlReaderMaps, ListElementBetweenTheSidesGoesToTheListAndTheSide) {
  // A value beside the sides is that of its list, and of the side in progress too.
  const ReadAs<Node> node("<words><tags val='t'/><__mapKey__/><__mapValue__>b</__mapValue__></words>");
  EXPECT_THAT(node.getTags(), ElementsAre("t"));
  EXPECT_THAT(node.getWords(), ElementsAre(Pair("t", "b")));
}

TEST(XmlReaderMaps, ScalarBesideASideInElementFormIsStored) {
  const ReadAs<Node> node(
      "<words><id>3</id><__mapKey__>a</__mapKey__><__mapValue__>b</__mapValue__></words>");
  EXPECT_EQ(node.getId(), 3);
  EXPECT_THAT(node.getWords(), ElementsAre(Pair("a", "b")));
}

TEST(XmlReaderMaps, EntryInsideAnEntryOfTheSameObjectIsReadApart) {
  const ReadAs<Node> node("<words><__mapKey__>a</__mapKey__>" + entry("sizes", "s", "1", true) +
                          "<__mapValue__>b</__mapValue__></words>");
  EXPECT_THAT(node.getSizes(), ElementsAre(Pair("s", 1)));
  EXPECT_THAT(node.getWords(), ElementsAre(Pair("a", "b")));
}

TEST(XmlReaderMaps, WithoutAKeyElementTheKeyObjectTakesWhatFollows) {
  // The key object is made with the entry and ends with its element: without that nothing closes it.
  const ReadAs<Node> node("<pairs></pairs><id>1</id>");
  ASSERT_TRUE(node.ok());
  EXPECT_FALSE(node.isIdSet());
  EXPECT_FALSE(node.isPairsSet());
}

TEST(XmlReaderMaps, PlainSidesInAttributeFormDoNotEndTheObjectValueThatTheyAreIn) {
  LogCapture log;
  const ReadAs<Node> node("<byName><__mapKey__ val='k'/><__mapValue__ id='3'>" +
                          entry("sizes", "s", "1", false) +
                          "<name>n</name><place x='9'/></__mapValue__></byName>");
  ASSERT_TRUE(node.ok());
  EXPECT_FALSE(node.isNameSet());
  EXPECT_FALSE(node.isPlaceSet());
  const Node* value = node.findInByName("k");
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(value->getId(), 3);
  EXPECT_FALSE(value->isSizesSet());
  EXPECT_EQ(value->getName(), "n");
  ASSERT_NE(value->getPlace(), nullptr);
  EXPECT_EQ(value->getPlace()->getX(), 9);
  EXPECT_THAT(log.lines(), ElementsAre(wrongSideTag("key", "sizes"), wrongSideTag("value", "sizes")));
}

TEST(XmlReaderMaps, PlainSidesInAttributeFormDoNotEndTheObjectKeyThatTheyAreIn) {
  LogCapture log;
  const ReadAs<Node> node("<pairs><__mapKey__ id='5'>" + entry("sizes", "s", "1", false) +
                          "<name>n</name></__mapKey__><__mapValue__ id='6'/></pairs>");
  ASSERT_TRUE(node.ok());
  EXPECT_FALSE(node.isNameSet());
  ASSERT_EQ(node.getPairs().size(), 1U);
  EXPECT_EQ(static_cast<const Node&>(node.getPairs().begin()->first).getName(), "n");
  EXPECT_EQ(static_cast<const Node&>(node.getPairs().begin()->second).getId(), 6);
  EXPECT_TRUE(log.has(kEnd, 0, "Encountered wrong map[key] tag usage. Cached map name is : [sizes]"));
}

TEST(XmlReaderMaps, EntriesAreAddedToAMapThatIsThere) {
  Every every;
  every.mutableMapStringInt()["old"] = 1;
  every.mutableMapStringInt()["k"] = 1;
  const std::string text =
      "<a>" + entry("mapStringInt", "k", "2", true) + entry("mapStringInt", "l", "3", true) + "</a>";
  ASSERT_EQ(XMLSerializer().unserialize(every, text, true), XN_MSG_OK);
  EXPECT_THAT(every.getMapStringInt(), ElementsAre(Pair("k", 1), Pair("l", 3), Pair("old", 1)));
}

TEST(XmlReaderMaps, ObjectsInListsAndMapsHaveNoDefaultSet) {
  const std::string ref = refTo("Demo_Defaults");
  HandMadeClass handMade;
  handMade.field(FDT_LIST_OBJECT, "list", ref)
      .field(FDT_MAP_INT64_OBJECT, "map", ref)
      .field(FDT_MAP_OBJECT_OBJECT, "pairs", ref + ref);
  OpenMessage message = handMade.message();
  ASSERT_EQ(XMLSerializer().unserialize(
                message,
                std::string("<a><list intField='1'/><map><__mapKey__>7</__mapKey__><__mapValue__ "
                            "intField='1'/></map><pairs><__mapKey__ intField='1'/><__mapValue__ "
                            "intField='1'/></pairs></a>"),
                false),
            XN_MSG_OK);
  const auto& list = *ownedBy<std::vector<XNMessageBase>>(message, "list");
  const auto& map = *ownedBy<std::map<std::int64_t, XNMessageBase>>(message, "map");
  const auto& pairs = *ownedBy<std::map<XNMessageBase, XNMessageBase>>(message, "pairs");
  ASSERT_EQ(list.size(), 1u);
  ASSERT_EQ(pairs.size(), 1u);
  for (const XNMessageBase* object : {&list[0], &map.at(7), &pairs.begin()->first, &pairs.begin()->second}) {
    EXPECT_TRUE(hasBit(*object, "intField"));
    EXPECT_FALSE(hasBit(*object, "stringField"));
  }
}

}  // namespace
}  // namespace zqxml
