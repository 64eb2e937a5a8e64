// The state machine of the reader, driven without a parser: who owns what when events stop or do not fit.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/internal/message_reader.h>

#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using XmlRead::Inner;
using XmlRead::Node;
using XmlRead::Outer;

/// The vector of an object list, null when there is none.
const std::vector<XNMessageBase>* vectorOf(const XNMessageBase& message, short position) {
  const FieldDef& field = MessageAccess::classDef(message)->getFields()[position];
  return MessageAccess::owned<std::vector<XNMessageBase>>(message, field);
}

/// A reader with shorter ways to its events.
class Events : public MessageReader {
 public:
  explicit Events(XNMessageBase* root, std::size_t maxLevels = 1000) : MessageReader(root, maxLevels) {}

  Events& open(std::u16string_view name, std::initializer_list<AttributeView> attributes = {}) {
    start(name, std::span<const AttributeView>(attributes.begin(), attributes.size()));
    return *this;
  }
  Events& text(std::u16string_view part) {
    characters(part);
    return *this;
  }
  Events& close(std::u16string_view name) {
    end(name);
    return *this;
  }
  Events& value(std::u16string_view name, std::u16string_view content) {
    return open(name).text(content).close(name);
  }
};

// --- Where events stop

TEST(MessageReader, UnfinishedSubObjectDoesNotHangInItsParent) {
  Node node;
  Events(&node).open(u"root").open(u"child").value(u"id", u"1");
  EXPECT_EQ(node.getChild(), nullptr);
  EXPECT_FALSE(node.isChildSet());
}

TEST(MessageReader, UnfinishedListElementDoesNotStayInItsList) {
  Node node;
  Events(&node).open(u"root").open(u"items").value(u"id", u"1");
  EXPECT_FALSE(node.isItemsSet());
  EXPECT_EQ(vectorOf(node, Node::FieldNumber::kItems), nullptr);
}

TEST(MessageReader, FinishedListElementsStayWhenALaterOneIsNotFinished) {
  Node node;
  Events(&node).open(u"root").open(u"items").value(u"id", u"1").close(u"items").open(u"items").open(u"items");
  EXPECT_TRUE(node.isItemsSet());
  ASSERT_EQ(node.getItems().size(), 1u);
  EXPECT_EQ(node.getItems()[0].getId(), 1);
}

TEST(MessageReader, UnfinishedMapEntryLeavesNothing) {
  Node node;
  Events(&node).open(u"root").open(u"byName").value(u"__mapKey__", u"k").open(u"__mapValue__").open(u"child");
  Events(&node).open(u"root").open(u"pairs").open(u"__mapKey__").close(u"__mapKey__").open(u"__mapValue__");
  Events(&node).open(u"root").open(u"pairs").open(u"child").open(u"items");
  EXPECT_FALSE(node.isByNameSet());
  EXPECT_FALSE(node.isPairsSet());
}

TEST(MessageReader, ObjectThatASlotOwnsStaysInItWhenItIsNotFinished) {
  Node node;
  node.mutableChild().setId(1);
  Events(&node).open(u"root").open(u"child").value(u"name", u"n");
  ASSERT_NE(node.getChild(), nullptr);
  EXPECT_EQ(node.getChild()->getName(), "n");
  EXPECT_FALSE(node.getChild()->isIdSet());
}

TEST(MessageReader, MadeRootIsTheCallersWhereverEventsStop) {
  Events events(nullptr);
  EXPECT_EQ(events.root(), nullptr);
  events.open(u"XmlRead_Node", {{u"id", u"4"}}).open(u"items").open(u"child");
  events.finish();
  const std::unique_ptr<XNMessageBase> root(events.root());
  ASSERT_NE(Node::from(root.get()), nullptr);
  EXPECT_EQ(Node::from(root.get())->getId(), 4);
}

TEST(MessageReader, RootStaysTheMainObjectInsideOfOthers) {
  Node node;
  Events events(&node);
  EXPECT_EQ(events.root(), &node);
  events.open(u"root").open(u"child").open(u"items");
  EXPECT_EQ(events.root(), &node);
}

TEST(MessageReader, RootWithoutAClassThrowsAndMakesNothing) {
  LogCapture log;
  Events events(nullptr);
  try {
    events.open(u"XmlRead_Nothing");
    FAIL() << "no exception";
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "Unable to construct object out of tag : [XmlRead_Nothing]");
  }
  EXPECT_EQ(events.root(), nullptr);
}

TEST(MessageReader, EventsAfterARootWithoutAClassArePassedOver) {
  LogCapture log;
  Events events(nullptr);
  EXPECT_THROW(events.open(u"XmlRead_Nothing"), std::exception);
  events.open(u"XmlRead_Node", {{u"id", u"4"}}).text(u"x").close(u"XmlRead_Node").close(u"XmlRead_Nothing");
  events.finish();
  EXPECT_EQ(events.root(), nullptr);
}

TEST(MessageReader, EndWithoutAStartIsPassedOver) {
  Events(nullptr).close(u"XmlRead_Node").finish();
  Node node;
  Events events(&node, 1);
  events.close(u"child").close(u"");
  events.open(u"root", {{u"id", u"4"}}).close(u"root").close(u"root");
  events.open(u"name").text(u"n").close(u"name");
  EXPECT_EQ(node.getId(), 4);
  EXPECT_EQ(node.getName(), "n");
}

// --- Closing by name

TEST(MessageReader, ObjectClosedAsAnElementOfAListIsMovedThere) {
  // `rows` is a list of objects of Outer, so its name closes whatever object is open inside.
  Outer outer;
  Events(&outer).open(u"root").open(u"one").value(u"n", u"5").open(u"rows", {{u"val", u"6"}}).close(u"rows");
  EXPECT_EQ(outer.getOne(), nullptr);
  EXPECT_FALSE(outer.isOneSet());
  ASSERT_EQ(outer.getRows().size(), 1u);
  EXPECT_EQ(outer.getRows()[0].getN(), 5);
  EXPECT_THAT(outer.getRows()[0].getRows(), ElementsAre(6));
}

TEST(MessageReader, ElementClosedAsAnElementOfAnotherListIsMovedThere) {
  Outer outer;
  Events(&outer)
      .open(u"root")
      .open(u"rows")
      .value(u"n", u"5")
      .open(u"lines", {{u"val", u"6"}})
      .close(u"lines");
  EXPECT_FALSE(outer.isRowsSet());
  EXPECT_EQ(vectorOf(outer, Outer::FieldNumber::kRows), nullptr);
  ASSERT_EQ(outer.getLines().size(), 1u);
  EXPECT_EQ(outer.getLines()[0].getN(), 5);
}

TEST(MessageReader, ObjectClosedAsAnotherMemberIsMovedThere) {
  Outer outer;
  Events(&outer).open(u"root").open(u"one").value(u"n", u"5").open(u"two", {{u"val", u"6"}}).close(u"two");
  EXPECT_EQ(outer.getOne(), nullptr);
  ASSERT_NE(outer.getTwo(), nullptr);
  EXPECT_EQ(outer.getTwo()->getN(), 5);
}

TEST(MessageReader, ObjectClosedAsAMemberThatIsSetIsForgotten) {
  Outer outer;
  outer.mutableTwo().setN(1);
  Events(&outer).open(u"root").open(u"one").value(u"n", u"5").open(u"two", {{u"val", u"6"}}).close(u"two");
  EXPECT_EQ(outer.getOne(), nullptr);
  EXPECT_EQ(outer.getTwo()->getN(), 1);
  Events(&outer).open(u"root").open(u"rows").value(u"n", u"5").open(u"two", {{u"val", u"6"}}).close(u"two");
  EXPECT_FALSE(outer.isRowsSet());
  EXPECT_EQ(vectorOf(outer, Outer::FieldNumber::kRows), nullptr);
  EXPECT_EQ(outer.getTwo()->getN(), 1);
}

TEST(MessageReader, ObjectThatASlotOwnsIsCopiedWhereAnotherNameClosesIt) {
  Outer outer;
  outer.mutableOne().setN(1);
  Events(&outer).open(u"root").open(u"one").value(u"n", u"5").open(u"two", {{u"val", u"6"}}).close(u"two");
  Events(&outer).open(u"root").open(u"one").value(u"n", u"7").open(u"rows", {{u"val", u"8"}}).close(u"rows");
  EXPECT_EQ(outer.getOne()->getN(), 7);
  EXPECT_THAT(outer.getOne()->getTwo(), ElementsAre(6));
  ASSERT_NE(outer.getTwo(), nullptr);
  EXPECT_NE(outer.getTwo(), outer.getOne());
  EXPECT_EQ(outer.getTwo()->getN(), 5);
  ASSERT_EQ(outer.getRows().size(), 1u);
  EXPECT_EQ(outer.getRows()[0].getN(), 7);
}

TEST(MessageReader, ObjectInASlotThatIsNotSetMakesRoomForAnother) {
  Outer outer;
  outer.mutableTwo().setN(1);
  outer.unsetTwo();
  outer.mutableTwo().setN(2);
  MessageAccess::unmark(outer, Outer::FieldNumber::kTwo);
  Events(&outer).open(u"root").open(u"one").value(u"n", u"5").open(u"two", {{u"val", u"6"}}).close(u"two");
  EXPECT_TRUE(outer.isTwoSet());
  EXPECT_EQ(outer.getTwo()->getN(), 5);
}

TEST(MessageReader, ObjectInASlotThatIsNotSetIsReadIntoAndMarked) {
  Outer outer;
  outer.mutableTwo().setN(2);
  const Inner* two = outer.getTwo();
  MessageAccess::unmark(outer, Outer::FieldNumber::kTwo);
  Events(&outer).open(u"root").open(u"two").value(u"rows", u"6").close(u"two");
  EXPECT_TRUE(outer.isTwoSet());
  EXPECT_EQ(outer.getTwo(), two);
  EXPECT_THAT(outer.getTwo()->getRows(), ElementsAre(6));
}

TEST(MessageReader, MapValueClosedByANameAroundIsMovedThere) {
  Outer outer;
  Events events(&outer);
  events.open(u"root").open(u"table").value(u"__mapKey__", u"k").open(u"__mapValue__").value(u"n", u"5");
  events.open(u"one", {{u"val", u"6"}}).close(u"one").close(u"__mapValue__").close(u"table");
  EXPECT_FALSE(outer.isTableSet());
  ASSERT_NE(outer.getOne(), nullptr);
  EXPECT_EQ(outer.getOne()->getN(), 5);
}

TEST(MessageReader, EntryEndsWithTheObjectThatHasItsMap) {
  // The inner entry's object is closed by a name around, and so the entry is over: its sides are nobody's.
  LogCapture log;
  Node node;
  Events events(&node);
  events.open(u"root").open(u"child").open(u"words").value(u"__mapKey__", u"a");
  events.open(u"place", {{u"x", u"1"}});    // an object of the child ...
  events.open(u"child", {{u"val", u"1"}});  // ... which has no such field: skipped
  events.close(u"child").close(u"place");
  events.value(u"__mapValue__", u"b").close(u"words").close(u"child").close(u"root");
  EXPECT_EQ(node.getChild()->getWords().at("a"), "b");
  EXPECT_EQ(node.getChild()->getPlace()->getX(), 1);
}

TEST(MessageReader, ObjectOfAnEntryThatHasEndedIsForgotten) {
  // `byName` closes its entry while the object of its value is open: the entry of `words` around goes on.
  Node node;
  Events events(&node);
  events.open(u"root").open(u"words").open(u"byName").value(u"__mapKey__", u"k").open(u"__mapValue__");
  events.close(u"byName").close(u"__mapValue__");
  events.value(u"__mapKey__", u"a").value(u"__mapValue__", u"b").close(u"words").close(u"root");
  EXPECT_FALSE(node.isByNameSet());
  EXPECT_THAT(node.getWords(), ElementsAre(testing::Pair("a", "b")));
}

// --- Many objects

TEST(MessageReader, GrowingListsKeepTheObjectsThatAreOpen) {
  Node node;
  Events events(&node);
  events.open(u"root");
  for (int i = 0; i < 50; ++i) {
    events.open(u"items");
    for (int k = 0; k < 50; ++k) events.open(u"items", {{u"id", u"3"}}).value(u"name", u"n").close(u"items");
    events.value(u"name", u"outer").close(u"items");
  }
  events.close(u"root");
  ASSERT_EQ(node.getItems().size(), 50u);
  for (const Node& item : node.getItems()) {
    EXPECT_EQ(item.getName(), "outer");
    EXPECT_EQ(item.getItems().size(), 50u);
    EXPECT_EQ(item.getItems()[49].getName(), "n");
  }
}

TEST(MessageReader, ElementsOfAListAreNeverCopied) {
  Node node;
  Events events(&node);
  events.open(u"root").open(u"items").open(u"child", {{u"id", u"1"}}).close(u"child");
  events.close(u"items");
  const Node* child = node.getItems()[0].getChild();
  for (int i = 0; i < 100; ++i) events.open(u"items").close(u"items");
  EXPECT_EQ(node.getItems()[0].getChild(), child);
}

TEST(MessageReader, SelfRecordIsNotFoundAtItsPlace) {
  XmlRead::Every message;
  const auto position = static_cast<std::uint8_t>(message.getNumberOfFields() - 1);
  ASSERT_EQ(XNMessageBase::GetClassDef(&message)->getFields()[position].getType(), FDT_NONE);
  LogCapture log(15);
  Events(&message).open(u"root", {AttributeView{u"Every", u"5", position}});
  EXPECT_TRUE(
      log.has("MySAX2Handler::processAttributes", 15, "No such field : [Every] in message : [Every] "));
}

TEST(MessageReader, TooManyOpenObjectsThrow) {
  Node node;
  Events events(&node, 3);
  events.open(u"root").open(u"child").open(u"items");
  EXPECT_THROW(events.open(u"child"), std::length_error);
  EXPECT_THROW(events.open(u"items"), std::length_error);
  EXPECT_THROW(events.open(u"pairs"), std::length_error);
  EXPECT_FALSE(node.isChildSet());
}

TEST(MessageReader, LimitCountsOpenObjectsAlone) {
  Node node;
  Events events(&node, 2);
  events.open(u"root");
  for (int i = 0; i < 10; ++i) events.open(u"items").value(u"name", u"n").close(u"items");
  events.close(u"root");
  EXPECT_EQ(node.getItems().size(), 10u);
}

TEST(MessageReader, ElementsNestAsDeepAsTheObjectsInMapsThatAreAllowed) {
  Node node;
  Events events(&node, 2);
  events.open(u"root").open(u"byName").value(u"__mapKey__", u"k").open(u"__mapValue__");
  events.open(u"sizes").value(u"__mapKey__", u"s").value(u"__mapValue__", u"1").close(u"sizes");
  events.close(u"__mapValue__").close(u"byName");
  EXPECT_EQ(node.findInByName("k")->getSizes().at("s"), 1);
  events.open(u"u").open(u"u").open(u"u").open(u"u");
  EXPECT_THROW(events.open(u"u"), std::length_error);
}

TEST(MessageReader, WithoutALimitObjectsNestFreely) {
  Node node;
  Events events(&node, 0);
  events.open(u"root");
  for (int i = 0; i < 2000; ++i) events.open(u"child");
  for (int i = 0; i < 2000; ++i) events.close(u"child");
  int depth = 0;
  for (const Node* at = &node; at->getChild() != nullptr; at = at->getChild()) ++depth;
  EXPECT_EQ(depth, 2000);
}

// --- Lists whose length is known

TEST(MessageReader, ListsAreGivenRoomForTheElementsThatFollow) {
  Node node;
  Events events(&node);
  events.open(u"root");
  events.start(u"items", {}, 99);
  events.close(u"items");
  const AttributeView val{u"val", u"1"};
  events.start(u"counts", {&val, 1}, 49);
  events.close(u"counts").close(u"root");
  EXPECT_EQ(vectorOf(node, Node::FieldNumber::kItems)->capacity(), 100u);
  EXPECT_EQ(node.getCounts().capacity(), 50u);
}

TEST(MessageReader, ManyShortRunsDoNotMakeAListGrowByLittle) {
  Node node;
  Events events(&node);
  events.open(u"root");
  std::size_t growths = 0;
  std::size_t capacity = 0;
  for (int i = 0; i < 1000; ++i) {
    events.start(u"items", {}, 1);
    events.close(u"items").open(u"items").close(u"items");
    const std::size_t now = vectorOf(node, Node::FieldNumber::kItems)->capacity();
    growths += now == capacity ? 0 : 1;
    capacity = now;
  }
  EXPECT_EQ(node.getItems().size(), 2000u);
  EXPECT_LE(growths, 12u);
}

// --- Finding fields

TEST(MessageReader, FieldWithoutAHashIsNotFoundAtItsPlace) {
  XmlRead::Every every;
  constexpr std::u16string_view kName = u"acftono";
  static_assert(nameHash(kName) == 0);
  const auto position = static_cast<std::uint8_t>(XmlRead::Every::FieldNumber::kNameless);
  Events(&every).open(u"root", {AttributeView{kName, u"5", position}});
  EXPECT_EQ(every.getNameless(), 0);
  EXPECT_FALSE(every.isNamelessSet());
}

}  // namespace
}  // namespace zqxml
