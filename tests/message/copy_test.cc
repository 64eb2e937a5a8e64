// Copy, assignment and equality: what the value of a message is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/message/collection_families.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/platform/exception.h>

#include <type_traits>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

using ::testing::ElementsAre;

static_assert(
    std::is_void_v<decltype(std::declval<XNMessageBase&>() = std::declval<const XNMessageBase&>())>);

OpenMessage everyType() {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  return message;
}

// --- Bullets on the value of a message.

TEST(MessageValue, CopyOfAMessageWithoutAClassIsAnotherAndTheyAreNotEqual) {
  const XNMessageBase original;
  const XNMessageBase copy(original);
  EXPECT_EQ(XNMessageBase::GetClassDef(&copy), nullptr);
  EXPECT_FALSE(copy == original);
  EXPECT_FALSE(original == original);
}

TEST(MessageValue, MessageEqualsItself) {
  const OpenMessage message = everyType();
  EXPECT_TRUE(message == message);
}

TEST(MessageValue, KeepsDifferingFromItselfWhenAFieldWithoutContentIsSet) {
  OpenMessage message = newMessage("Demo_Reserved29");
  EXPECT_TRUE(message == message);
  setBit(message, "reserved");
  EXPECT_FALSE(message == message);
}

TEST(MessageValue, KeepsTakingMessagesWithDifferentMapsForEqual) {
  OpenMessage a = newMessage("Demo_EveryType");
  OpenMessage b = newMessage("Demo_EveryType");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&a)) {
    if (!kMapTypes.contains(field.getType())) continue;
    setBit(a, field.getName());
    setBit(b, field.getName());
  }
  collectionOf<Int64Int64Map>(a, "mapInt64Int64Field")[1] = 1;
  collectionOf<StringStringMap>(b, "mapStringStringField")["k"] = "v";
  EXPECT_TRUE(a == b);
}

TEST(MessageValue, FieldSetToZeroDiffersFromAnUnsetOne) {
  OpenMessage a = newMessage("Demo_EveryType");
  const OpenMessage b = newMessage("Demo_EveryType");
  EXPECT_TRUE(a == b);
  setInteger(a, "intField", 0);
  EXPECT_FALSE(a == b);
  EXPECT_FALSE(b == a);
}

// --- Copy.

TEST(MessageCopy, HasEveryFieldOfItsOriginal) {
  const OpenMessage original = everyType();
  const OpenMessage copy(original);
  checkEveryType(copy);
  EXPECT_TRUE(copy == original);
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&original)) {
    EXPECT_EQ(hasBit(copy, field.getName()), hasBit(original, field.getName())) << field.getName();
    const bool owned = !kValueInSlotTypes.contains(field.getType());
    if (!owned || slotOf(original, field.getName()) == 0) continue;
    EXPECT_NE(slotOf(copy, field.getName()), slotOf(original, field.getName())) << field.getName();
  }
}

TEST(MessageCopy, HasNoFieldThatIsNotSet) {
  OpenMessage original = everyType();
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&original))
    setBit(original, field.getName(), false);
  const OpenMessage copy(original);
  const OpenMessage fresh = newMessage("Demo_EveryType");
  EXPECT_TRUE(copy == fresh);
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&original)) {
    const bool owned =
        !kValueInSlotTypes.contains(field.getType()) && !kPrimitiveTypes.contains(field.getType());
    EXPECT_TRUE(!owned || slotOf(copy, field.getName()) == 0) << field.getName();
  }
  EXPECT_EQ(textOf(copy, "stringField"), "");
}

TEST(MessageCopy, HasNoFieldWithoutAHash) {
  OpenMessage original = newMessage("Demo_Hashless");
  setInteger(original, "first", 1);
  setInteger(original, "hiddenNumber", 2);
  const OpenMessage copy(original);
  EXPECT_EQ(slotOf(copy, "first"), 1);
  EXPECT_EQ(slotOf(copy, "hiddenNumber"), 0);
  EXPECT_FALSE(hasBit(copy, "hiddenNumber"));
}

TEST(MessageCopy, HasDefaultsPresentAndUnsetWhenTheOriginalHasThemUnset) {
  OpenMessage original = newMessage("Demo_Defaults");
  setInteger(original, "intField", 9);
  setBit(original, "intField", false);
  const OpenMessage copy(original);
  EXPECT_EQ(slotOf(copy, "intField"), -1);
  EXPECT_FALSE(hasBit(copy, "intField"));
}

TEST(MessageCopy, KeepsThePasswordsType) {
  OpenMessage original = newMessage("Demo_EveryType");
  *MessageAccess::owned<pstring>(original, fieldOf(original, "pstringField")) =
      pstring(std::string("stored"), 5);
  setBit(original, "pstringField");
  const OpenMessage copy(original);
  EXPECT_EQ(ownedBy<pstring>(copy, "pstringField")->str(), "stored");
  EXPECT_EQ(ownedBy<pstring>(copy, "pstringField")->getEncryptionType(), 5);
}

TEST(MessageCopy, OfASetFieldWithoutContentHasNoneAndIsNotSet) {
  OpenMessage original = newMessage("Demo_EveryType");
  for (const char* name : {"listIntField", "listObjectField", "objectField", "mapStringStringField"})
    setBit(original, name);
  EXPECT_TRUE(original == original);
  const OpenMessage copy(original);
  for (const char* name : {"listIntField", "listObjectField", "objectField", "mapStringStringField"}) {
    EXPECT_EQ(slotOf(copy, name), 0) << name;
    EXPECT_FALSE(hasBit(copy, name)) << name;
  }
}

TEST(MessageCopy, OfAnOldWayMessageHasItsTreeAndItsUnsetFieldsUnset) {
  OpenMessage original = newMessage("ZqDFMImport_OldTree");
  setText(original, "text", "changed");
  const OpenMessage copy(original);
  EXPECT_TRUE(copy == original);
  EXPECT_NE(slotOf(copy, "branch"), slotOf(original, "branch"));
  setBit(original, "branch", false);
  const OpenMessage second(original);
  EXPECT_NE(slotOf(second, "branch"), 0);  // built with the object, as in any new one
  EXPECT_FALSE(hasBit(second, "branch"));
}

TEST(MessageCopy, ThrowsWhenAnOldWaySubObjectIsOfAnotherClass) {
  OpenMessage original = newMessage("ZqDFMImport_OldTree");
  const FieldDef& field = fieldOf(original, "branch");
  delete MessageAccess::owned<XNMessageBase>(original, field);
  MessageAccess::owned<XNMessageBase>(original, field) = new OpenMessage(newMessage("Demo_Nest"));
  LogCapture capture;
  EXPECT_THROW(XNMessageBase copy(original), ZqException);
}

TEST(MessageCopy, HasItsTexts) {
  OpenMessage original = newMessage("Demo_EveryChild");
  original.setSerializedXMLString("<xml/>", true);
  original.setLastErrorEnglishA("%s %d", "error", 5);
  original.setCDATABuffer("body");
  original.setSerialized(false);
  const std::u16string wide = original.getSerializedXMLStringUTF16();
  original.setSerialized(true);
  OpenMessage copy(original);
  EXPECT_EQ(std::u16string(copy.getSerializedXMLStringUTF16()), wide);
  EXPECT_FALSE(wide.empty());
  EXPECT_STREQ(copy.getSerializedXMLString(), "<xml/>");
  EXPECT_TRUE(copy.isSerialized());
  EXPECT_EQ(copy.getLastErrorEnglishStrW(), u"error 5");
  EXPECT_EQ(copy.getCDATABuffer(), "body");
  EXPECT_TRUE(copy.isCDATABufferSet());
}

TEST(MessageCopy, IsMarkedSerializedOnlyWithTheTextThatTheMarkIsAbout) {
  OpenMessage original = newMessage("Demo_EveryChild");
  original.setCDATABuffer("body");
  original.setSerialized(true);
  const OpenMessage copy(original);
  EXPECT_FALSE(copy.isSerialized());
  OpenMessage target = newMessage("Demo_EveryChild");
  target = original;
  EXPECT_FALSE(target.isSerialized());
}

TEST(MessageCopy, HasTheCdataWithItsFlagDown) {
  OpenMessage original = newMessage("Demo_EveryChild");
  original.setCDATABuffer("body");
  original.resetCDATABuffer();
  const OpenMessage copy(original);
  EXPECT_FALSE(copy.isCDATABufferSet());
}

// --- Assignment.

TEST(MessageAssignment, TakesEveryField) {
  const OpenMessage source = everyType();
  OpenMessage target = newMessage("Demo_EveryType");
  target = source;
  checkEveryType(target);
  EXPECT_TRUE(target == source);
}

TEST(MessageAssignment, ForgetsWhatTheTargetHad) {
  OpenMessage target = everyType();
  const OpenMessage source = newMessage("Demo_EveryType");
  target = source;
  EXPECT_TRUE(target == source);
  EXPECT_EQ(slotOf(target, "listIntField"), 0);
  EXPECT_EQ(slotOf(target, "intField"), 0);
}

TEST(MessageAssignment, ToItselfChangesNothing) {
  OpenMessage message = everyType();
  const OpenMessage& self = message;
  message = self;
  checkEveryType(message);
}

// What no copy takes stays where it is.
TEST(MessageAssignment, ToItselfKeepsFieldsWithoutAHash) {
  OpenMessage message = newMessage("Demo_Hashless");
  setInteger(message, "hiddenNumber", 5);
  const OpenMessage& self = message;
  message = self;
  EXPECT_EQ(slotOf(message, "hiddenNumber"), 5);
  EXPECT_TRUE(hasBit(message, "hiddenNumber"));
}

TEST(MessageAssignment, BetweenClassesThrowsAndChangesNothing) {
  OpenMessage target = newMessage("Demo_EveryChild");
  setInteger(target, "number", 5);
  const OpenMessage source = newMessage("Demo_Nest");
  LogCapture capture;
  static constexpr const char* kText =
      "You cannot assign object of type : [Demo_Nest] to object with type : [Demo_EveryChild]";
  try {
    static_cast<XNMessageBase&>(target) = static_cast<const XNMessageBase&>(source);
    FAIL() << "no exception";
  } catch (const ZqException& error) {
    EXPECT_EQ(error.function(), "XNMessageBase::operator=");
    EXPECT_EQ(error.text(), kText);
  }
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XNMessageBase assignment operator", 0,
                                                        std::string("[") + kText + "]"}));
  EXPECT_EQ(slotOf(target, "number"), 5);
}

TEST(MessageAssignment, BetweenAMessageAndOneWithoutAClassThrows) {
  OpenMessage target = newMessage("Demo_EveryChild");
  const OpenMessage none;
  LogCapture capture;
  EXPECT_THROW(target = none, ZqException);
  OpenMessage empty;
  EXPECT_THROW(empty = static_cast<const OpenMessage&>(target), ZqException);
  empty = none;
  EXPECT_EQ(XNMessageBase::GetClassDef(&empty), nullptr);
}

TEST(MessageAssignment, OfAPartOfTheTargetTakesThatPart) {
  OpenMessage root = newMessage("Demo_Nest");
  setInteger(root, "depth", 0);
  const FieldDef& field = fieldOf(root, "child");
  auto* child = new OpenMessage(newMessage("Demo_Nest"));
  setInteger(*child, "depth", 1);
  collectionOf<std::vector<XNMessageBase>>(*child, "children").push_back(newMessage("Demo_Nest"));
  root.setObject(field.getMemNum(), field.getIndex(), child, true, root.getTagID(), 0, true);
  static_cast<XNMessageBase&>(root) = static_cast<const XNMessageBase&>(*child);
  EXPECT_EQ(slotOf(root, "depth"), 1);
  EXPECT_EQ(slotOf(root, "child"), 0);
  EXPECT_EQ(ownedBy<std::vector<XNMessageBase>>(root, "children")->size(), 1u);
}

TEST(MessageAssignment, ToAPartOfTheSourceTakesTheWhole) {
  OpenMessage root = newMessage("Demo_Nest");
  setInteger(root, "depth", 7);
  collectionOf<std::vector<XNMessageBase>>(root, "children").push_back(newMessage("Demo_Nest"));
  XNMessageBase& part = collectionOf<std::vector<XNMessageBase>>(root, "children").front();
  part = static_cast<const XNMessageBase&>(root);
  EXPECT_EQ(slotOf(part, "depth"), 7);
  EXPECT_EQ(ownedBy<std::vector<XNMessageBase>>(part, "children")->size(), 1u);
}

TEST(MessageAssignment, OfAnOldWayMessageTakesItsTree) {
  OpenMessage source = newMessage("ZqDFMImport_OldTree");
  setText(source, "text", "changed");
  setInteger(*MessageAccess::owned<XNMessageBase>(source, fieldOf(source, "branch")), "number", 77);
  OpenMessage target = newMessage("ZqDFMImport_OldTree");
  static_cast<XNMessageBase&>(target) = static_cast<const XNMessageBase&>(source);
  EXPECT_TRUE(target == source);
  EXPECT_EQ(slotOf(*ownedBy<XNMessageBase>(target, "branch"), "number"), 77);
}

TEST(MessageAssignment, KeepsTheTextsThatTheSourceHasNot) {
  OpenMessage target = newMessage("Demo_EveryChild");
  target.setSerializedXMLString("<stale/>", true);
  target.setLastErrorEnglishA("stale");
  target.setCDATABuffer("body");
  const OpenMessage source = newMessage("Demo_EveryChild");
  target = source;
  EXPECT_STREQ(target.getSerializedXMLString(), "<stale/>");
  EXPECT_TRUE(target.isSerialized());
  EXPECT_EQ(target.getLastErrorEnglishStrW(), u"stale");
  EXPECT_EQ(target.getCDATABuffer(), "");  // the body follows the source, even to none
  EXPECT_FALSE(target.isCDATABufferSet());
}

TEST(MessageAssignment, TakesTheTextsThatTheSourceHas) {
  OpenMessage source = newMessage("Demo_EveryChild");
  source.setSerializedXMLString("<new/>", false);
  source.setLastErrorEnglishA("new");
  source.setCDATABuffer("new body");
  OpenMessage target = newMessage("Demo_EveryChild");
  target.setSerializedXMLString("<old/>", false);
  target = static_cast<const OpenMessage&>(source);
  EXPECT_STREQ(target.getSerializedXMLString(), "<new/>");
  EXPECT_FALSE(target.isSerialized());
  EXPECT_EQ(target.getLastErrorEnglishStrW(), u"new");
  EXPECT_EQ(target.getCDATABuffer(), "new body");
  EXPECT_TRUE(target.isCDATABufferSet());
}

}  // namespace
}  // namespace zqxml
