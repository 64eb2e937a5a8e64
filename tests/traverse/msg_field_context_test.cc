// One field beside its value: lists, defaults, annotations, messages that do not have it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/generated/Walk.h>
#include <zqxml/traverse/msg_field_context.h>
#include <zqxml/xml/xml_decoder.h>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Calls everything that a context offers.
void useAll(MsgFieldContext context) {
  const OpenMessage object = newMessage("Demo_EveryChild");
  context.replaceValue(1);
  context.replaceValue(1u);
  context.replaceValue(1L);
  context.replaceValue(1uL);
  context.replaceValue(1LL);
  context.replaceValue(true);
  context.replaceValue(1.0F);
  context.replaceValue(1.0);
  context.replaceValue(std::string("a"));
  context.replaceValue(std::u16string(u"a"));
  context.replaceValue(bstring(), false);
  context.replaceValue(pstring());
  context.replaceValue(&object);
  EXPECT_TRUE(context.isReplaced());
  context.EnableField();
  context.clearList();
  Annotation::Text text;
  EXPECT_FALSE(context.getAnnotation(text));
  std::vector<void*> elements;
  context.readListValue(&elements);
  EXPECT_THAT(elements, IsEmpty());
}

TEST(MsgFieldContext, MessageThatIsNotThereOrHasNoClassIsLeftAlone) {
  const FieldDef& field = fieldOf(newMessage("Demo_EveryType"), "listIntField");
  LogCapture capture;  // annotations and lists by name say so
  useAll(MsgFieldContext(field, nullptr));
  XNMessageBase bare;
  useAll(MsgFieldContext(field, &bare));
  useAll(MsgFieldContext(FieldDef(), &bare));
  useAll(MsgFieldContext(FieldDef(), nullptr));
}

TEST(MsgFieldContext, FieldThatTheMessageDoesNotHaveIsLoggedAndLeftAlone) {
  Walk::Inner inner;
  const std::string before = dump(inner);
  const FieldDef& foreign = fieldOf(newMessage("Demo_EveryType"), "stringField");
  LogCapture capture;
  useAll(MsgFieldContext(foreign, &inner));
  EXPECT_EQ(dump(inner), before);
  EXPECT_TRUE(capture.hasPart("MsgFieldContext::replaceValue", 0, "Invalid member access."));
  EXPECT_TRUE(capture.hasPart("MsgFieldContext::EnableField", 0, "Invalid member access."));
  EXPECT_TRUE(capture.hasPart("MsgFieldContext::clearList", 0, "Invalid member access."));
  const FieldDef unknown("odd", nullptr, 5, 0, 0, 0, static_cast<FieldDataType>(99));
  useAll(MsgFieldContext(unknown, &inner));
  EXPECT_EQ(dump(inner), before);
}

TEST(MsgFieldContext, BothConstructorsLeaveTheValueUnsetAndDifferInTheWay) {
  Walk::Inner inner;
  const FieldDef& field = fieldOf(inner, "value");
  const FieldDefTraverseInfo outer(field);
  const FieldDefTraverseInfo info(field, &outer);
  MsgFieldContext bare(field, &inner);
  MsgFieldContext withWay(info, &inner);
  EXPECT_EQ(bare.getTRParent(), nullptr);
  EXPECT_EQ(withWay.getTRParent(), &outer);
  for (MsgFieldContext* context : {&bare, &withWay}) {
    EXPECT_FALSE(context->isValueSet());
    EXPECT_FALSE(context->isReplaced());
    EXPECT_EQ(context->getMsgObj(), &inner);
    EXPECT_EQ(context->getField().getFieldHashId(), field.getFieldHashId());
    context->setValueState(true);
    EXPECT_TRUE(context->isValueSet());
  }
}

TEST(MsgFieldContext, ClearListEmptiesListsThatAreSet) {
  OpenMessage message = newMessage("Demo_EveryType");
  auto& list = collectionOf<std::vector<std::int32_t>>(message, "listIntField");
  list = {1, 2};
  setBit(message, "listIntField", false);
  MsgFieldContext context(fieldOf(message, "listIntField"), &message);
  context.clearList();  // not set: left alone
  EXPECT_EQ(ownedBy<std::vector<std::int32_t>>(message, "listIntField")->size(), 2u);
  setBit(message, "listIntField");
  context.clearList();
  EXPECT_FALSE(hasBit(message, "listIntField"));
  EXPECT_EQ(slotOf(message, "listIntField"), 0);
  setBit(message, "listIntField");  // a list that is set and was never made
  context.clearList();
  EXPECT_FALSE(hasBit(message, "listIntField"));
  EXPECT_FALSE(context.isReplaced());
}

TEST(MsgFieldContext, ClearListLeavesOtherTypesAlone) {
  OpenMessage message = newMessage("XmlRead_Every");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (field.getType() == FDT_NONE) continue;
    MessageAccess::mark(message, field.getMemNum());
    MsgFieldContext(field, &message).clearList();
    EXPECT_EQ(MessageAccess::isSet(message, field.getMemNum()), !XMLDecoder::isListType(field.getType()))
        << field.getName();
  }
}

TEST(MsgFieldContext, KeepsClearingUlonglongAsAList) {
  OpenMessage message = newMessage("Demo_EveryType");
  setInteger(message, "ulonglongField", 5);
  MsgFieldContext(fieldOf(message, "ulonglongField"), &message).clearList();
  EXPECT_FALSE(hasBit(message, "ulonglongField"));
  EXPECT_EQ(slotOf(message, "ulonglongField"), 0);
}

TEST(MsgFieldContext, KeepsListsOfUlonglongAndBstringWhenClearing) {
  OpenMessage message = newMessage("Demo_EveryType");
  collectionOf<std::vector<std::uint64_t>>(message, "listUlonglongField") = {1};
  collectionOf<std::vector<bstring>>(message, "listBstringField").resize(1);
  for (const char* name : {"listUlonglongField", "listBstringField"}) {
    MsgFieldContext(fieldOf(message, name), &message).clearList();
    EXPECT_TRUE(hasBit(message, name));
  }
}

/// Commands whose defaults were taken away.
Walk::Commands clearedCommands() {
  Walk::Commands commands;
  open(commands).reset();
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&commands)) {
    MessageAccess::deleteMember(commands, field.getMemNum());
    MessageAccess::unmark(commands, field.getMemNum());
  }
  return commands;
}

void enableAll(Walk::Commands& commands) {
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&commands))
    MsgFieldContext(field, &commands).EnableField();
}

TEST(MsgFieldContext, KeepsEnablingFieldsWhoseUseDefaultIsFalse) {
  Walk::Commands commands = clearedCommands();
  enableAll(commands);
  EXPECT_EQ(dump(commands), "Walk_Commands {\n  wanted = 1\n  unwanted = 1\n  number = 7\n}\n");
}

TEST(MsgFieldContext, FieldThatIsSetIsNotEnabled) {
  Walk::Commands commands = clearedCommands();
  setInteger(commands, "number", 3);
  MsgFieldContext(fieldOf(commands, "number"), &commands).EnableField();
  EXPECT_EQ(commands.getNumber(), 3);
}

TEST(MsgFieldContext, AnnotationIsThatOfTheField) {
  Walk::Commands commands;
  Annotation::Text text;
  EXPECT_TRUE(MsgFieldContext(fieldOf(commands, "other"), &commands).getAnnotation(text));
  EXPECT_EQ(text.getText(), "Other");
  EXPECT_FALSE(MsgFieldContext(fieldOf(commands, "wanted"), &commands).getAnnotation(text));
}

TEST(MsgFieldContext, ListIsReadAsPointersToItsElements) {
  OpenMessage message = newMessage("Demo_EveryType");
  collectionOf<std::vector<std::int32_t>>(message, "listIntField") = {1, -2};
  auto& texts = collectionOf<std::vector<std::string>>(message, "listStringField");
  texts = {"a", "b"};
  std::vector<void*> elements(5);
  MsgFieldContext numbers(fieldOf(message, "listIntField"), &message);
  numbers.readListValue(&elements);
  ASSERT_EQ(elements.size(), 2u);
  EXPECT_EQ(*static_cast<std::int64_t*>(elements[1]), -2);
  MsgFieldContext(fieldOf(message, "listStringField"), &message).readListValue(&elements);
  EXPECT_THAT(elements, ElementsAre(&texts[0], &texts[1]));
  numbers.readListValue(nullptr);
}

TEST(MsgFieldContext, KeepsEnumTextAndFieldValueAsTheyAre) {
  Walk::Commands commands;
  const std::string before = dump(commands);
  MsgFieldContext context(fieldOf(commands, "wanted"), &commands);
  std::string text = "as it was";
  context.readEnumValue(text, 1);
  context.replaceFieldValue();
  EXPECT_EQ(text, "as it was");
  EXPECT_EQ(dump(commands), before);
  EXPECT_FALSE(context.isReplaced());
}

template <class Value>
concept Replaceable = requires(MsgFieldContext& context, Value value) {
  context.replaceValue(value);
};
static_assert(Replaceable<XNMessageBase*> && Replaceable<Walk::Inner*> && Replaceable<std::string>);
static_assert(!Replaceable<const char*> && !Replaceable<char*> && !Replaceable<const char16_t*>);

}  // namespace
}  // namespace zqxml
