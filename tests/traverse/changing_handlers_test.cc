// Handlers that change the message while it is walked, or leave the walk by an exception.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/message_dump.h>
#include <tests/traverse/recording_handler.h>
#include <zqxml/catalogue/generated/Walk.h>

#include <algorithm>
#include <stdexcept>

namespace zqxml {
namespace {

using testing::Contains;
using testing::ElementsAre;

class ChangingHandlers : public testing::TestWithParam<bool> {
 protected:
  ChangingHandlers() {
    outer.setId(1);
    outer.mutableMiddle().setNumber(10);
    outer.mutableMiddle().mutableInner().setValue(11);
    for (int i = 0; i < 3; ++i) {
      Walk::Middle& middle = outer.addToMiddles();
      middle.setNumber(20 + i);
      middle.addToInners().setValue(30 + i);
    }
  }
  void walk() { XmlTraverse().traverse(outer, handler); }
  std::size_t count(const std::string& event) const {
    return static_cast<std::size_t>(std::count(handler.events.begin(), handler.events.end(), event));
  }

  Walk::Outer outer;
  RecordingHandler handler{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(BothModes, ChangingHandlers, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "Order" : "Plain"; });

TEST_P(ChangingHandlers, ElementsAppendedAtTheVisitAreWalked) {
  handler.visitAction = at("middles", [this](MsgFieldContext& context) {
    const Walk::Middle middle;
    for (int i = 0; i < 100; ++i) context.replaceValue(&middle);
    EXPECT_EQ(outer.getMiddles().size(), 103u);
  });
  walk();
  EXPECT_EQ(count("start middles"), 103u);
  EXPECT_EQ(count("end middles"), 103u);
}

TEST_P(ChangingHandlers, ElementsAppendedWhileTheListIsWalkedAreWalkedToo) {
  handler.startAction = at("middles", [this](MsgFieldContext& context) {
    const Walk::Middle middle;
    if (outer.getMiddles().size() < 50) context.replaceValue(&middle);
  });
  walk();
  EXPECT_EQ(count("start middles"), 50u);
}

TEST_P(ChangingHandlers, ListAroundMayGrowFromDeepInside) {
  handler.visitAction = at("value", [this](MsgFieldContext&) {
    if (outer.getMiddles().size() < 20) outer.addToMiddles().addToInners().setValue(99);
  });
  walk();
  EXPECT_EQ(count("start middles"), 20u);
  EXPECT_EQ(count("end inners"), 20u);
}

TEST_P(ChangingHandlers, ListMayBeClearedWhereItsElementBegins) {
  handler.startAction = at("middles", [](MsgFieldContext& context) { context.clearList(); });
  walk();
  EXPECT_EQ(count("start middles"), 1u);
  EXPECT_EQ(count("end middles"), 1u);
  EXPECT_EQ(count("set number"), 1u);
  EXPECT_FALSE(outer.isMiddlesSet());
}

TEST_P(ChangingHandlers, ListMayBeClearedFromInsideItsElement) {
  handler.visitAction = at("value", [this](MsgFieldContext& context) {
    if (context.getTRParent()->parent->getType() == FDT_LIST_OBJECT) outer.unsetMiddles();
  });
  handler.endAction = at("inners", [](MsgFieldContext& context) { EXPECT_EQ(context.getMsgObj(), nullptr); });
  walk();
  EXPECT_EQ(count("start middles"), 1u);
  EXPECT_EQ(count("end middles"), 1u);
  EXPECT_EQ(count("end inners"), 1u);
  EXPECT_EQ(count("finish Outer"), 1u);
}

TEST_P(ChangingHandlers, ObjectMayBeTakenAwayWhileItIsWalked) {
  handler.visitAction = at("value", [this](MsgFieldContext&) { outer.unsetMiddle(); });
  handler.endAction = at("inner", [](MsgFieldContext& context) {
    EXPECT_EQ(context.getMsgObj(), nullptr);
    context.replaceValue(5);  // does nothing
    context.clearList();
    context.EnableField();
  });
  walk();
  EXPECT_FALSE(outer.isMiddleSet());
  EXPECT_EQ(count("end inner"), 1u);
  EXPECT_EQ(count("end middle"), 1u);
  EXPECT_EQ(count("start middles"), 3u);
}

TEST_P(ChangingHandlers, ObjectMayBeReplacedWhileItIsWalked) {
  Walk::Middle other;
  other.setNumber(77);
  handler.startAction = at("middle", [&](MsgFieldContext& context) { context.replaceValue(&other); });
  std::vector<std::int64_t> numbers;
  handler.visitAction = at(
      "number", [&](MsgFieldContext& context) { numbers.push_back(slotOf(*context.getMsgObj(), "number")); });
  walk();
  EXPECT_THAT(numbers, ElementsAre(77, 20, 21, 22));
}

TEST_P(ChangingHandlers, ObjectThatTheHandlerPutInAFieldYieldsToTheBuiltOne) {
  Walk::Outer root;
  RecordingHandler putting(GetParam(), at("number", [&root](MsgFieldContext& context) {
                             if (context.getTRParent()->getType() == FDT_OBJECT) root.mutableMiddle();
                             context.replaceValue(5);
                           }));
  XmlTraverse().traverse(root, putting, true, true);
  EXPECT_EQ(root.getMiddle()->getNumber(), 5);
}

TEST_P(ChangingHandlers, BuiltObjectThatTheHandlerTookIsNotKept) {
  Walk::Outer root;
  std::vector<OpenMessage> store;
  RecordingHandler taking(GetParam(), at("number", [&store](MsgFieldContext& context) {
                            context.replaceValue(5);
                            store.push_back(std::move(open(*context.getMsgObj())));
                          }));
  XmlTraverse().traverse(root, taking, true, true);
  EXPECT_EQ(store.size(), 2u) << "one of the object field, one of the list";
  EXPECT_EQ(dump(root), "Walk_Outer {\n}\n");
}

TEST_P(ChangingHandlers, RootMayBeEmptied) {
  handler.visitAction = at("value", [this](MsgFieldContext&) { open(outer).reset(); });
  walk();
  EXPECT_EQ(count("finish Outer"), 1u);
  EXPECT_FALSE(outer.isMiddleSet());
}

TEST_P(ChangingHandlers, RootMayBeMovedAway) {
  std::vector<OpenMessage> store;
  handler.visitAction = at("value", [&](MsgFieldContext&) {
    if (store.empty()) store.push_back(std::move(open(outer)));
  });
  walk();
  EXPECT_EQ(count("finish Outer"), 1u);
  EXPECT_EQ(count("set value"), 1u);
}

TEST_P(ChangingHandlers, NothingIsBuiltForAListOfAMessageThatWasMovedAway) {
  Walk::Outer root;
  root.addToMiddles();
  std::vector<OpenMessage> store;
  handler.endAction = at("middles", [&](MsgFieldContext&) { store.push_back(std::move(open(root))); });
  XmlTraverse().traverse(root, handler, true, true);
  EXPECT_EQ(count("start middles"), 1u);
  EXPECT_EQ(store.size(), 1u);
}

TEST_P(ChangingHandlers, HandlerMayStartAWalkOfTheSameWalker) {
  XmlTraverse walker;
  RecordingHandler inner(GetParam());
  RecordingHandler outside(GetParam(), at("number", [&](MsgFieldContext&) {
                             Walk::Ping ping;
                             walker.traverse(ping, inner, !GetParam(), false);
                           }));
  Walk::Ping ping;
  walker.traverse(outer, outside, true, true);
  EXPECT_THAT(outside.events, Contains("finish Outer"));
  EXPECT_THAT(inner.events, Contains("finish Ping").Times(5));
}

TEST_P(ChangingHandlers, ExceptionOfTheHandlerPassesThroughAndLeavesTheWalkerUsable) {
  XmlTraverse walker;
  Walk::Outer empty;
  RecordingHandler throwing(GetParam(),
                            at("text", [](MsgFieldContext&) { throw std::runtime_error("enough"); }));
  EXPECT_THROW(walker.traverse(empty, throwing, true, true), std::runtime_error);
  EXPECT_EQ(dump(empty), "Walk_Outer {\n}\n");
  RecordingHandler quiet(GetParam());
  walker.traverse(empty, quiet, true, true);
  EXPECT_THAT(quiet.events, Contains("start inner").Times(2));
}

}  // namespace
}  // namespace zqxml
