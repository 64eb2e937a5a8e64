// What a walk logs and passes over: references that lead nowhere, objects without a class, classes in
// themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/traverse/recording_handler.h>
#include <zqxml/catalogue/generated/Walk.h>

namespace zqxml {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr char kPlain[] = "XmlTraverse::traverseHelpers";
constexpr char kOrder[] = "XmlTraverse::traverseByOrderHelper";

// References: slot 250 is beyond the table, class 99 beyond the records of slot 190.
constexpr char kNoSlotObject[] = "\xfa\0\0\1object";
constexpr char kNoClassObject[] = "\xbe\0\0\x63object";
constexpr char kNoSlotList[] = "\xfa\0\0\1list";
constexpr char kNoClassList[] = "\xbe\0\0\x63list";

/// An object whose one field has another record than its class says, for as long as it lives.
class Disguised {
 public:
  Disguised(std::string_view tagName, FieldDataType type, const char* namePointer)
      : message_(newMessage(tagName)),
        own_(XNMessageBase::GetClassDef(&message_)),
        field_(namePointer, nullptr, 77, 0, 0, 0, type),
        record_("Disguised", &field_, own_->getClassId(), -1, 1, 1) {
    MessageAccess::setClassDef(message_, &record_);
  }
  ~Disguised() { MessageAccess::setClassDef(message_, own_); }
  Disguised(const Disguised&) = delete;
  Disguised& operator=(const Disguised&) = delete;
  OpenMessage& message() { return message_; }

 private:
  OpenMessage message_;
  const _ClassDef* own_;
  FieldDef field_;
  _ClassDef record_;
};

std::vector<CapturedLine> linesOf(Disguised& object, bool inOrder,
                                  std::vector<std::string>* events = nullptr) {
  LogCapture capture;
  const std::vector<std::string> seen = eventsOf(object.message(), RecordingHandler(inOrder), true, true);
  if (events != nullptr) *events = seen;
  return capture.lines();
}

// The first field of each is an object, or a list of objects, in one slot.
Disguised asObject(const char* namePointer) {
  return Disguised("Walk_Outer", FDT_OBJECT, namePointer);
}

TEST(WalkFailures, ElementClassThatCannotBeFoundIsLoggedInPlainMode) {
  for (const char* reference : {kNoSlotList, kNoClassList}) {
    Disguised list("Demo_CdataLists", FDT_LIST_OBJECT, reference);
    EXPECT_THAT(linesOf(list, false),
                Contains(CapturedLine{kPlain, 0, "Could not retrieve metadata for specified object"}));
  }
}

TEST(WalkFailures, ElementThatCannotBeBuiltIsLoggedInOrderMode) {
  Disguised list("Demo_CdataLists", FDT_LIST_OBJECT, kNoSlotList);
  EXPECT_THAT(linesOf(list, true), Contains(CapturedLine{kOrder, 0, "Error creating subobject [list]"}));
}

TEST(WalkFailures, BuiltElementWithoutAClassIsLoggedInOrderMode) {
  Disguised list("Demo_CdataLists", FDT_LIST_OBJECT, kNoClassList);
  std::vector<std::string> events;
  EXPECT_THAT(linesOf(list, true, &events),
              ElementsAre(CapturedLine{kOrder, 0, "Error retrieving metadata for given object"}));
  EXPECT_THAT(events,
              ElementsAre("begin Disguised", "unset list", "start list", "end list", "finish Disguised"));
}

TEST(WalkFailures, ObjectThatCannotBeBuiltIsLogged) {
  Disguised object = asObject(kNoSlotObject);
  EXPECT_THAT(linesOf(object, false), Contains(CapturedLine{kPlain, 0, "Error creating subobject [object]"}));
  EXPECT_THAT(linesOf(object, true), Contains(CapturedLine{kOrder, 0, "Error creating subobject [object]"}));
}

TEST(WalkFailures, BuiltObjectWithoutAClassIsLogged) {
  Disguised object = asObject(kNoClassObject);
  std::vector<std::string> events;
  EXPECT_THAT(linesOf(object, false, &events),
              ElementsAre(CapturedLine{kPlain, 0, "Could not retrieve metadata for specified object"}));
  EXPECT_THAT(events, ElementsAre("begin Disguised", "unset object", "finish Disguised"));
  EXPECT_THAT(linesOf(object, true),
              ElementsAre(CapturedLine{kOrder, 0, "Error retrieving metadata for given object"}));
}

TEST(WalkFailures, ObjectWithoutAClassIsLogged) {
  Walk::Middle middle;
  const FieldDef& field = fieldOf(middle, "inner");
  MessageAccess::owned<XNMessageBase>(middle, field) = new XNMessageBase;
  LogCapture capture;
  EXPECT_THAT(eventsOf(middle),
              ElementsAre("begin Middle", "unset inner", "unset inners", "unset number", "finish Middle"));
  (void)eventsOf(middle, RecordingHandler(true));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kPlain, 0, "Could not retrieve metadata for specified object"},
                          CapturedLine{kOrder, 0, "Error retrieving metadata for given object"}));
}

TEST(WalkFailures, ElementWithoutAClassIsLoggedBetweenItsStartAndEnd) {
  Walk::Middle middle;
  collectionOf<std::vector<XNMessageBase>>(middle, "inners").emplace_back();
  LogCapture capture;
  EXPECT_THAT(eventsOf(middle), ElementsAre("begin Middle", "unset inner", "set inners", "start inners",
                                            "end inners", "unset number", "finish Middle"));
  (void)eventsOf(middle, RecordingHandler(true));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kPlain, 0, "[Error retreiving metadata for the specified class.]"},
                          CapturedLine{kOrder, 0, "Error retrieving metadata for given object"}));
}

TEST(WalkFailures, KeepsBuildingObjectsForListsOfEnumerationsInVainInOrderMode) {
  Walk::Outer outer;
  collectionOf<std::vector<std::uint32_t>>(outer, "modes").assign(1000, 1);
  RecordingHandler handler(true);
  LogCapture capture;
  XmlTraverse().traverse(outer, handler, true, true);
  EXPECT_EQ(capture.lines(), (std::vector<CapturedLine>{{kOrder, 0, "Error creating subobject [modes]"}}));
  EXPECT_THAT(handler.events, testing::Not(Contains("start modes")));
  EXPECT_THAT(handler.events, Contains("start byName").Times(0));
  EXPECT_THAT(handler.events, Contains("start middles"));
  capture.clear();
  (void)eventsOf(outer, RecordingHandler(true), false, true);
  (void)eventsOf(outer, RecordingHandler(false), true, true);
  EXPECT_TRUE(capture.empty());
}

TEST(WalkFailures, ClassInItselfEndsTheBuildingInOrderMode) {
  struct Counter : XmlTraverseHandler {
    Counter() : XmlTraverseHandler(0, true) {}
    void startSubObject(MsgFieldContext&) override { ++starts; }
    void visit(MsgFieldContext&) override {}
    int starts = 0;
  } counter;
  OpenMessage nest = newMessage("Demo_Nest");
  LogCapture capture;
  XmlTraverse().traverse(nest, counter, true, false);
  EXPECT_EQ(counter.starts, 1000);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kOrder, 0, "Objects nest [1000] levels deep: no more are built"}));
  counter.starts = 0;  // the next walk builds again
  XmlTraverse().traverse(nest, counter, true, false);
  EXPECT_EQ(counter.starts, 1000);
}

}  // namespace
}  // namespace zqxml
