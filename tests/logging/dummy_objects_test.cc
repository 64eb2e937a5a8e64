// Messages filled with placeholder values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Walk.h>
#include <zqxml/logging/dummy_objects.h>

namespace zqxml {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kCreate[] = "createXMLObjectWithDummyValues";
constexpr char kFill[] = "recurseAndFillDummyValues";

int fill(XNMessageBase& message) {
  XNMessageBase* pointer = &message;
  return createXMLObjectWithDummyValues(pointer);
}

TEST(DummyObjects, NullGivesOneAndALine) {
  XNMessageBase* none = nullptr;
  LogCapture capture;
  EXPECT_EQ(createXMLObjectWithDummyValues(none), 1);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{
                                   kCreate, 0, "recurseAndFillDummyValues() failed with Return Code[1]"}));
  EXPECT_EQ(none, nullptr);
}

TEST(DummyObjects, ClassOfNumbersIsLeftUnset) {
  Walk::Numbers numbers;
  EXPECT_EQ(fill(numbers), 0);
  EXPECT_EQ(dump(numbers), "Walk_Numbers {\n}\n");
}

TEST(DummyObjects, ListOfIntHasFiveZeros) {
  OpenMessage every = newMessage("Demo_EveryType");
  EXPECT_EQ(fill(every), 0);
  EXPECT_THAT(*ownedBy<std::vector<std::int32_t>>(every, "listIntField"), ElementsAre(0, 0, 0, 0, 0));
}

TEST(DummyObjects, ListOfObjectsHasFiveFilledElements) {
  Walk::Middle middle;
  EXPECT_EQ(fill(middle), 0);
  ASSERT_EQ(middle.getInners().size(), 5u);
  for (const Walk::Inner& inner : middle.getInners()) EXPECT_TRUE(inner.isTextSet() && !inner.isValueSet());
}

TEST(DummyObjects, KeepsObjectsSetAndUnfilled) {
  Walk::Middle middle;
  EXPECT_EQ(fill(middle), 0);
  ASSERT_TRUE(middle.isInnerSet());
  EXPECT_EQ(dump(*middle.getInner()), "Walk_Inner {\n}\n");
}

TEST(DummyObjects, EveryTypeIsFilledAsItsKindAllows) {
  OpenMessage every = newMessage("Demo_EveryType");
  LogCapture capture;
  EXPECT_EQ(fill(every), 0);
  EXPECT_TRUE(capture.empty());
  const std::string child = "Demo_EveryChild {\n    text = \"\"\n    numbers = [0, 0, 0, 0, 0]\n  }";
  std::string children = child;
  for (int i = 1; i < 5; ++i) children += ", " + child;
  const OpenMessage info = newMessage("ZqEntities_ProcessingInstructionInfo");
  std::string infoText = dump(info);
  EXPECT_THAT(infoText, HasSubstr("{\n}"));
  EXPECT_EQ(dump(every),
            "Demo_EveryType {\n"
            "  processinginstructioninfo = ZqEntities_ProcessingInstructionInfo {\n  }\n"
            "  stringField = \"\"\n"
            "  wstringField = u\"\"\n"
            "  listIntField = [0, 0, 0, 0, 0]\n"
            "  listObjectField = [" +
                children +
                "]\n"
                "  objectField = Demo_EveryChild {\n  }\n"
                "  bstringField = b\"\"\n"
                "  listFloatField = [0, 0, 0, 0, 0]\n"
                "}\n");
}

TEST(DummyObjects, KeepsListsOfOtherNumbersUnset) {
  OpenMessage every = newMessage("Demo_EveryType");
  EXPECT_EQ(fill(every), 0);
  for (const char* name : {"listUintField", "listLongField", "listUlongField", "listLonglongField",
                           "listUlonglongField", "listEnumField", "listBoolField", "listDoubleField"}) {
    EXPECT_FALSE(hasBit(every, name)) << name;
    EXPECT_EQ(slotOf(every, name), 0) << name;
  }
}

TEST(DummyObjects, ValuesThatAreThereStayAndListsGrow) {
  OpenMessage every = newMessage("Demo_EveryType");
  setText(every, "stringField", "own");
  collectionOf<std::vector<std::int32_t>>(every, "listIntField") = {7};
  EXPECT_EQ(fill(every), 0);
  EXPECT_EQ(textOf(every, "stringField"), "own");
  EXPECT_THAT(*ownedBy<std::vector<std::int32_t>>(every, "listIntField"), ElementsAre(7, 0, 0, 0, 0, 0));
}

TEST(DummyObjects, FieldsWithoutAHashAreFilledToo) {
  OpenMessage hashless = newMessage("Demo_Hashless");
  EXPECT_EQ(fill(hashless), 0);
  EXPECT_TRUE(hasBit(hashless, "hiddenText"));
  EXPECT_TRUE(hasBit(hashless, "hiddenList"));
  EXPECT_TRUE(hasBit(hashless, "hiddenObject"));
}

TEST(DummyObjects, SelfRecordIsPassedOver) {
  OpenMessage self = newMessage("Demo_SelfPair");
  LogCapture capture;
  EXPECT_EQ(fill(self), 0);
  EXPECT_EQ(dump(self), "Demo_SelfPair {\n  text = \"\"\n}\n");
  EXPECT_TRUE(capture.empty());
}

TEST(DummyObjects, MessageWithoutAClassGivesOne) {
  XNMessageBase bare;
  LogCapture capture;
  EXPECT_EQ(recurseAndFillDummyValues(&bare), 1);
  EXPECT_EQ(recurseAndFillDummyValues(nullptr), 1);
  EXPECT_TRUE(capture.empty());
  EXPECT_EQ(fill(bare), 1);
  EXPECT_TRUE(capture.has(kCreate, 0, "recurseAndFillDummyValues() failed with Return Code[1]"));
}

TEST(DummyObjects, ClassInItselfGivesOneAndALine) {
  OpenMessage nest = newMessage("Demo_Nest");
  LogCapture capture;
  EXPECT_EQ(fill(nest), 1);
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(CapturedLine{kFill, 0, "Message [Demo_Nest] nests more than [100] levels deep"},
                  CapturedLine{kCreate, 0, "recurseAndFillDummyValues() failed with Return Code[1]"}));
  // What was filled stays: the object field comes before its filling.
  EXPECT_EQ(dump(nest), "Demo_Nest {\n  child = Demo_Nest {\n  }\n}\n");
}

TEST(DummyObjects, ListOfItsOwnClassGivesOneInShortTime) {
  Walk::Ping ping;
  LogCapture capture;
  EXPECT_EQ(recurseAndFillDummyValues(&ping), 1);
  EXPECT_TRUE(capture.hasPart(kFill, 0, "nests more than [100] levels deep"));
}

/// An object of one field whose record refers to a class that is not there.
int fillReferringTo(FieldDataType type, const char* namePointer) {
  OpenMessage message = newMessage("Demo_CdataLists");
  const _ClassDef* own = XNMessageBase::GetClassDef(&message);
  const FieldDef field(namePointer, nullptr, 77, 0, 0, 0, type);
  const _ClassDef record("Disguised", &field, own->getClassId(), -1, 1, 1);
  MessageAccess::setClassDef(message, &record);
  const int result = recurseAndFillDummyValues(&message);
  MessageAccess::deleteMember(message, 0, false);
  MessageAccess::setClassDef(message, own);
  return result;
}

TEST(DummyObjects, FieldWhoseObjectCannotBeBuiltIsPassedOver) {
  LogCapture capture;
  EXPECT_EQ(fillReferringTo(FDT_OBJECT, "\xfa\0\0\1object"), 0);
  EXPECT_EQ(fillReferringTo(FDT_LIST_OBJECT, "\xfa\0\0\1list"), 0);
}

TEST(DummyObjects, ObjectWithoutAClassDeepInsideGivesOne) {
  EXPECT_EQ(fillReferringTo(FDT_OBJECT, "\xbe\0\0\x63object"), 1);
  EXPECT_EQ(fillReferringTo(FDT_LIST_OBJECT, "\xbe\0\0\x63list"), 1);
}

}  // namespace
}  // namespace zqxml
