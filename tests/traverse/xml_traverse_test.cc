// The walk over a message: what the handler sees, in both modes, and what becomes of objects that the walk
// builds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/traverse/recording_handler.h>
#include <zqxml/catalogue/generated/Walk.h>
#include <zqxml/catalogue/generated/ZqDFMImport.h>
#include <zqxml/catalogue/generated/ZqEntities.h>

namespace zqxml {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// Replaces the field of this name by a number or text, whatever fits.
RecordingHandler replacing(std::string name, bool inOrder = false) {
  return RecordingHandler(inOrder, at(std::move(name), [](MsgFieldContext& context) {
                            if (context.getField().getType() == FDT_STRING)
                              context.replaceValue(std::string("new"));
                            else
                              context.replaceValue(5);
                          }));
}

TEST(XmlTraverse, ClassWithoutFieldsCallsNoVisit) {
  OpenMessage empty = newMessage("Demo_Empty");
  EXPECT_THAT(eventsOf(empty), ElementsAre("begin Empty", "finish Empty"));
  EXPECT_THAT(eventsOf(empty, RecordingHandler(true)), ElementsAre("begin Empty", "finish Empty"));
}

TEST(XmlTraverse, ObjectOfAClassWithoutFieldsIsNotWorthKeeping) {
  Walk::Holder holder;
  EXPECT_THAT(eventsOf(holder, RecordingHandler(), true, true), Contains("start empty"));
  EXPECT_FALSE(holder.isEmptySet());
}

TEST(XmlTraverse, UnsetObjectIsVisitedAndEnteredOnlyWhenItMayBeBuilt) {
  Walk::Middle middle;
  EXPECT_THAT(eventsOf(middle),
              ElementsAre("begin Middle", "unset inner", "unset inners", "unset number", "finish Middle"));
  EXPECT_THAT(eventsOf(middle, RecordingHandler(), true),
              ElementsAre("begin Middle", "unset inner", "start inner", "unset value", "unset text",
                          "end inner", "unset inners", "start inners", "unset value", "unset text",
                          "end inners", "unset number", "finish Middle"));
  EXPECT_FALSE(middle.isInnerSet());
  middle.mutableInner().setValue(1);
  EXPECT_THAT(eventsOf(middle),
              ElementsAre("begin Middle", "set inner", "start inner", "set value", "unset text", "end inner",
                          "unset inners", "unset number", "finish Middle"));
}

TEST(XmlTraverse, BuiltObjectIsKeptWhenAValueInItWasReplaced) {
  for (const bool inOrder : {false, true}) {
    Walk::Middle middle;
    (void)eventsOf(middle, replacing("text", inOrder), true, false);
    EXPECT_EQ(dump(middle), "Walk_Middle {\n}\n");
    (void)eventsOf(middle, RecordingHandler(inOrder), true, true);
    EXPECT_EQ(dump(middle), "Walk_Middle {\n}\n");
    (void)eventsOf(middle, replacing("text", inOrder), true, true);
    EXPECT_EQ(dump(middle),
              "Walk_Middle {\n  inner = Walk_Inner {\n    text = \"new\"\n  }\n"
              "  inners = [Walk_Inner {\n    text = \"new\"\n  }]\n}\n");
  }
}

TEST(XmlTraverse, ValueReplacedTwoLevelsDownKeepsBothLevels) {
  for (const bool inOrder : {false, true}) {
    Walk::Outer outer;
    (void)eventsOf(outer, replacing("value", inOrder), true, true);
    ASSERT_TRUE(outer.isMiddleSet() && outer.getMiddle()->isInnerSet());
    EXPECT_EQ(outer.getMiddle()->getInner()->getValue(), 5);
    EXPECT_EQ(outer.getMiddle()->getInners().size(), 1u);
    ASSERT_EQ(outer.getMiddles().size(), 1u);
    EXPECT_EQ(outer.getMiddles()[0].getInner()->getValue(), 5);
  }
}

TEST(XmlTraverse, ClassInItselfIsNotBuiltInPlainMode) {
  OpenMessage nest = newMessage("Demo_Nest");
  EXPECT_THAT(eventsOf(nest, RecordingHandler(), true), Not(Contains("start child")));
  EXPECT_THAT(eventsOf(nest, RecordingHandler(), true), Not(Contains("start children")));
}

TEST(XmlTraverse, ClassesInEachOtherAreBuiltOnce) {
  Walk::Ping ping;
  EXPECT_THAT(
      eventsOf(ping, RecordingHandler(), true),
      ElementsAre("begin Ping", "unset pong", "start pong", "unset ping", "unset value", "end pong",
                  "unset pongs", "start pongs", "unset ping", "unset value", "end pongs", "finish Ping"));
}

TEST(XmlTraverse, KeepsBuildingNothingInsideAnotherClassOfTheSameName) {
  Walk::EveryChild child;
  EXPECT_THAT(eventsOf(child, RecordingHandler(), true),
              ElementsAre("begin EveryChild", "unset other", "unset others", "finish EveryChild"));
}

TEST(XmlTraverse, ObjectThatExistsIsWalkedThoughItsClassIsBeingWalked) {
  OpenMessage nest = newMessage("Demo_Nest");
  collectionOf<std::vector<XNMessageBase>>(nest, "children").push_back(newMessage("Demo_Nest"));
  MessageAccess::owned<XNMessageBase>(nest, fieldOf(nest, "child")) =
      new OpenMessage(newMessage("Demo_Nest"));
  // The object field is not marked: it is walked all the same.
  EXPECT_THAT(eventsOf(nest),
              ElementsAre("begin Nest", "unset depth", "unset child", "start child", "unset depth",
                          "unset child", "unset children", "unset byNumber", "unset byName", "unset pair",
                          "end child", "set children", "start children", "unset depth", "unset child",
                          "unset children", "unset byNumber", "unset byName", "unset pair", "end children",
                          "unset byNumber", "unset byName", "unset pair", "finish Nest"));
}

TEST(XmlTraverse, OrderModeTakesValuesBeforeObjects) {
  Walk::Outer outer;
  outer.setId(1);
  outer.mutableMiddle().mutableInner().setValue(2);
  outer.addToMiddles();
  EXPECT_THAT(eventsOf(outer, RecordingHandler(true)),
              ElementsAre("begin Outer", "set id", "unset modes", "set middle", "start middle",
                          "unset number", "set inner", "start inner", "set value", "unset text", "end inner",
                          "unset inners", "end middle", "set middles", "start middles", "unset number",
                          "unset inner", "unset inners", "end middles", "unset byName", "finish Outer"));
}

TEST(XmlTraverse, RootIsNamedByItsClassBehindTheFirstUnderscore) {
  OpenMessage named = newMessage("Walk_Name_Of_Parts");
  EXPECT_THAT(eventsOf(named), ElementsAre("begin Of_Parts", "unset value", "finish Of_Parts"));
  OpenMessage plain = newMessage("Walk_Inner");
  EXPECT_THAT(eventsOf(plain), ElementsAre("begin Inner", "unset value", "unset text", "finish Inner"));
}

TEST(XmlTraverse, FieldsWithoutAHashAreNotVisited) {
  OpenMessage hashless = newMessage("Demo_Hashless");
  EXPECT_THAT(eventsOf(hashless, RecordingHandler(), true),
              ElementsAre("begin Hashless", "unset first", "set last", "finish Hashless"));
  OpenMessage self = newMessage("Demo_SelfPair");
  EXPECT_THAT(eventsOf(self), ElementsAre("begin SelfPair", "unset number", "unset text", "finish SelfPair"));
}

TEST(XmlTraverse, EveryTypeIsVisitedAndMapsAreNotEntered) {
  OpenMessage every = newMessage("Demo_EveryType");
  fillEveryType(every);
  for (const bool inOrder : {false, true}) {
    std::size_t visits = 0, starts = 0;
    RecordingHandler handler(inOrder, [&](MsgFieldContext& context) {
      visits += context.getMsgObj() == &every ? 1 : 0;
      const FieldDef& record = context.getField();
      EXPECT_EQ(record.getFieldHashId(), fieldOf(*context.getMsgObj(), record.getName()).getFieldHashId());
    });
    handler.startAction = [&](MsgFieldContext&) { ++starts; };
    XmlTraverse().traverse(every, handler);
    EXPECT_EQ(visits, static_cast<std::size_t>(every.getNumberOfFields()));
    EXPECT_EQ(starts, 3u);
  }
  checkEveryType(every);
}

TEST(XmlTraverse, ContextTellsTheWayToTheField) {
  Walk::Outer outer;
  outer.addToMiddles().mutableInner().setValue(1);
  int looks = 0;
  RecordingHandler handler(false, at("value", [&](MsgFieldContext& context) {
                             ++looks;
                             const FieldDefTraverseInfo* inner = context.getTRParent();
                             ASSERT_NE(inner, nullptr);
                             EXPECT_STREQ(inner->getName(), "inner");
                             ASSERT_NE(inner->parent, nullptr);
                             EXPECT_STREQ(inner->parent->getName(), "middles");
                             EXPECT_EQ(inner->parent->parent, nullptr);
                             EXPECT_EQ(context.getField().parent, inner);
                           }));
  XmlTraverse().traverse(outer, handler);
  EXPECT_EQ(looks, 1);
}

TEST(XmlTraverse, ProcessingInstructionsAreEnteredInOrderModeOnly) {
  Walk::Holder holder;
  holder.mutableInfo();
  EXPECT_THAT(eventsOf(holder), Not(Contains("start info")));
  EXPECT_THAT(eventsOf(holder, RecordingHandler(true)), Contains("start info"));
  Walk::Holder bare;
  EXPECT_THAT(eventsOf(bare, RecordingHandler(), true), Not(Contains("start info")));
  EXPECT_THAT(eventsOf(bare, RecordingHandler(true), true), Contains("start info"));
}

TEST(XmlTraverse, ProcessingInstructionsInAListAreEnteredInBothModes) {
  Walk::Outer outer;
  outer.addToMiddles();
  collectionOf<std::vector<XNMessageBase>>(outer, "middles")
      .push_back(ZqEntities::ProcessingInstructionInfo());
  for (const bool inOrder : {false, true}) {
    RecordingHandler handler(inOrder);
    std::vector<std::string> walked;
    handler.visitAction = [&walked](MsgFieldContext& context) {
      const std::string name = context.getMsgObj()->getTagName();
      if (walked.empty() || walked.back() != name) walked.push_back(name);
    };
    XmlTraverse().traverse(outer, handler);
    EXPECT_THAT(walked, Contains("ZqEntities_ProcessingInstructionInfo")) << inOrder;
  }
}

TEST(XmlTraverse, KeepsValuesReplacedInElementsFromCountingForTheObjectAround) {
  // The handler adds an element behind the walker's back and replaces a value in it alone.
  Walk::Outer outer;
  RecordingHandler handler(false, [](MsgFieldContext& context) {
    if (RecordingHandler::nameOf(context) == "inners")
      static_cast<Walk::Middle*>(context.getMsgObj())->addToInners().setValue(1);
    else if (RecordingHandler::nameOf(context) == "value" && context.isValueSet())
      context.replaceValue(5);
  });
  XmlTraverse().traverse(outer, handler, true, true);
  EXPECT_FALSE(outer.isMiddleSet());
  EXPECT_TRUE(outer.getMiddles().empty());
}

TEST(XmlTraverse, ValueReplacedInAnExistingObjectCountsForABuiltOneAround) {
  Walk::Holder holder;  // objects of the old-way class come with an object in them
  (void)eventsOf(holder, replacing("number"), true, true);
  ASSERT_TRUE(holder.isOldSet());
  EXPECT_EQ(holder.getOld()->getBranch()->getNumber(), 5);
}

TEST(XmlTraverse, WalkingBuildsNoListOfItsOwn) {
  Walk::Outer outer;
  (void)eventsOf(outer, RecordingHandler(), true, true);
  EXPECT_EQ(slotOf(outer, "middles"), 0);
  EXPECT_EQ(slotOf(outer, "middle"), 0);
}

/// Counts the fields.
struct FieldCounter : XmlTraverseHandler {
  using XmlTraverseHandler::XmlTraverseHandler;
  void visit(MsgFieldContext&) override { ++fields; }
  std::size_t fields = 0;
};

// Looking for every object from the root would be 10^8 steps here.
TEST(XmlTraverse, ManyObjectsDeepInsideAreWalkedInStepsOfTheirCount) {
  constexpr std::size_t kLevels = 900;
  constexpr std::size_t kElements = 50'000;
  OpenMessage root = newMessage("Demo_Nest");
  const OpenMessage empty = newMessage("Demo_Nest");
  XNMessageBase* deepest = &root;
  for (std::size_t level = 1; level < kLevels; ++level) {
    MsgFieldContext(fieldOf(*deepest, "child"), deepest).replaceValue(&empty);
    deepest = MessageAccess::owned<XNMessageBase>(*deepest, fieldOf(*deepest, "child"));
  }
  collectionOf<std::vector<XNMessageBase>>(*deepest, "children").resize(kElements, empty);
  const auto fieldsOfOne = [] {
    OpenMessage one = newMessage("Demo_Nest");
    FieldCounter counter;
    XmlTraverse().traverse(one, counter);
    return counter.fields;
  }();
  for (const bool inOrder : {false, true}) {
    FieldCounter counter(0, inOrder);
    XmlTraverse().traverse(root, counter);
    EXPECT_EQ(counter.fields, (kLevels + kElements) * fieldsOfOne);
  }
}

TEST(XmlTraverse, MessageWithoutAClassIsNotWalked) {
  XNMessageBase bare;
  EXPECT_THAT(eventsOf(bare, RecordingHandler(), true, true), IsEmpty());
  Walk::Outer moved;
  const XNMessageBase taken(std::move(moved));
  EXPECT_THAT(eventsOf(moved), IsEmpty());
}

TEST(XmlTraverse, WalkerIsAHandlerThatDoesNothing) {
  OpenMessage every = newMessage("Demo_EveryType");
  fillEveryType(every);
  XmlTraverse walker;
  const XmlTraverse copy(walker);
  walker = copy;
  XmlTraverse moved(std::move(walker));
  moved.traverse(every, moved, true, true);
  checkEveryType(every);
  EXPECT_EQ(moved.getLocaleId(), 0);
  EXPECT_FALSE(moved.getOrder());
}

TEST(XmlTraverse, HandlerHasALocaleAndAnOrder) {
  struct Handler : XmlTraverseHandler {
    using XmlTraverseHandler::XmlTraverseHandler;
    void visit(MsgFieldContext&) override {}
  };
  EXPECT_EQ(Handler(7, true).getLocaleId(), 7);
  EXPECT_TRUE(Handler(7, true).getOrder());
  EXPECT_EQ(Handler().getLocaleId(), 0);
  EXPECT_FALSE(Handler().getOrder());
}

}  // namespace
}  // namespace zqxml
