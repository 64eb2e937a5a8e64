// What each replaceValue stores in a field of each type.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Walk.h>
#include <zqxml/traverse/msg_field_context.h>

#include <functional>
#include <map>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Texts = std::map<unsigned, std::string>;

/// The value of each set field as text, by the field's type.
Texts setValues(const XNMessageBase& message) {
  Texts values;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (!MessageAccess::isSet(message, field.getMemNum()) || field.getType() == FDT_NONE) continue;
    const std::string begin = std::string("\n  ") + field.getName() + " = ";
    const std::string text = dump(message);
    const std::size_t at = text.find(begin);
    if (at == text.npos) continue;
    const std::size_t value = at + begin.size();
    values[field.getType()] = text.substr(value, text.find('\n', value) - value);
  }
  return values;
}

/// Does `replace` once to a field of every type of an empty message.
Texts replacedEverywhere(const std::function<void(MsgFieldContext&)>& replace) {
  OpenMessage message = newMessage("XmlRead_Every");
  FieldTypeSet done;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (done.contains(field.getType())) continue;
    done = done | FieldTypeSet{field.getType()};
    MsgFieldContext context(field, &message);
    EXPECT_FALSE(context.isReplaced());
    replace(context);
    EXPECT_TRUE(context.isReplaced()) << field.getName();
    EXPECT_FALSE(context.isValueSet());
  }
  return setValues(message);
}

/// What a field looks like that is marked and has got no value: those whose content always exists.
const Texts kMarked{{FDT_INT, "0"},         {FDT_UINT, "0"},         {FDT_LONG, "0"},   {FDT_ULONG, "0"},
                    {FDT_LONGLONG, "0"},    {FDT_ULONGLONG, "0"},    {FDT_BOOL, "0"},   {FDT_STRING, "\"\""},
                    {FDT_WSTRING, "u\"\""}, {FDT_ENUM, "0"},         {FDT_DOUBLE, "0"}, {FDT_FLOAT, "0"},
                    {FDT_BSTRING, "b\"\""}, {FDT_PSTRING, "p1\"\""}, {FDT_TIME32, "0"}, {FDT_TIME64, "0"}};

Texts markedBut(Texts others) {
  others.insert(kMarked.begin(), kMarked.end());
  return others;
}

/// Whole numbers go into all of these.
Texts integersAre(const std::string& value, Texts others = {}) {
  for (const unsigned type : {FDT_INT, FDT_UINT, FDT_LONG, FDT_ULONG, FDT_LONGLONG, FDT_ULONGLONG, FDT_BOOL,
                              FDT_ENUM, FDT_TIME32, FDT_TIME64})
    others[type] = value;
  return markedBut(std::move(others));
}

template <class Value>
Texts replacedBy(const Value& value) {
  return replacedEverywhere([&value](MsgFieldContext& context) { context.replaceValue(value); });
}

TEST(ReplaceValue, IntGoesIntoIntegersAndListsOfIntAndEnum) {
  EXPECT_EQ(replacedBy(7), integersAre("7", {{FDT_LIST_INT, "[7]"}, {FDT_LIST_ENUM, "[7]"}}));
}
TEST(ReplaceValue, UnsignedIntGoesIntoIntegersAndListsOfUintAndEnum) {
  EXPECT_EQ(replacedBy(7u), integersAre("7", {{FDT_LIST_UINT, "[7]"}, {FDT_LIST_ENUM, "[7]"}}));
}
TEST(ReplaceValue, LongGoesIntoIntegersAndListsOfLong) {
  EXPECT_EQ(replacedBy(7L), integersAre("7", {{FDT_LIST_LONG, "[7]"}}));
}
TEST(ReplaceValue, UnsignedLongGoesIntoIntegersAndListsOfUlong) {
  EXPECT_EQ(replacedBy(7uL), integersAre("7", {{FDT_LIST_ULONG, "[7]"}}));
}
TEST(ReplaceValue, LongLongGoesIntoIntegersAndListsOfLonglong) {
  EXPECT_EQ(replacedBy(7LL), integersAre("7", {{FDT_LIST_LONGLONG, "[7]"}}));
}
TEST(ReplaceValue, KeepsBoolOutOfEveryList) {
  EXPECT_EQ(replacedBy(true), integersAre("1"));
}
TEST(ReplaceValue, FloatGoesIntoFloatAndListsOfFloat) {
  EXPECT_EQ(replacedBy(0.5F), markedBut({{FDT_FLOAT, "0.5"}, {FDT_LIST_FLOAT, "[0.5]"}}));
}
TEST(ReplaceValue, DoubleGoesIntoDoubleAndListsOfDouble) {
  EXPECT_EQ(replacedBy(0.25), markedBut({{FDT_DOUBLE, "0.25"}, {FDT_LIST_DOUBLE, "[0.25]"}}));
}
TEST(ReplaceValue, StringGoesIntoStringAndListsOfString) {
  EXPECT_EQ(replacedBy(std::string("a")), markedBut({{FDT_STRING, "\"a\""}, {FDT_LIST_STRING, "[\"a\"]"}}));
}
TEST(ReplaceValue, WideStringGoesIntoWstringAndListsOfWstring) {
  EXPECT_EQ(replacedBy(std::u16string(u"a")),
            markedBut({{FDT_WSTRING, "u\"a\""}, {FDT_LIST_WSTRING, "[u\"a\"]"}}));
}
TEST(ReplaceValue, ByteStringGoesIntoBstringAndListsOfBstringWhateverTheFlag) {
  for (const bool flag : {false, true}) {
    EXPECT_EQ(replacedEverywhere([flag](MsgFieldContext& context) {
                context.replaceValue(bstring(std::string("a")), flag);
              }),
              markedBut({{FDT_BSTRING, "b\"a\""}, {FDT_LIST_BSTRING, "[b\"a\"]"}}));
  }
}
TEST(ReplaceValue, PasswordGoesIntoPstringWithItsType) {
  EXPECT_EQ(replacedBy(pstring("a", 4)), markedBut({{FDT_PSTRING, "p4\"a\""}}));
}
TEST(ReplaceValue, ObjectGoesIntoObjectAndListsOfObjects) {
  const OpenMessage point = newMessage("XmlRead_Point");
  EXPECT_EQ(replacedBy(&point),
            (Texts{{FDT_OBJECT, "XmlRead_Point {"}, {FDT_LIST_OBJECT, "[XmlRead_Point {"}}));
}

TEST(ReplaceValue, NullObjectDoesNothingAndDoesNotCount) {
  OpenMessage message = newMessage("XmlRead_Every");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    MsgFieldContext context(field, &message);
    context.replaceValue(static_cast<XNMessageBase*>(nullptr));
    context.replaceValue(nullptr);
    EXPECT_FALSE(context.isReplaced());
  }
  EXPECT_THAT(setValues(message), IsEmpty());
}

TEST(ReplaceValue, DoubleOnAListOfIntAppendsNothingAndCounts) {
  OpenMessage message = newMessage("Demo_EveryType");
  MsgFieldContext context(fieldOf(message, "listIntField"), &message);
  context.replaceValue(1.5);
  EXPECT_TRUE(context.isReplaced());
  EXPECT_FALSE(hasBit(message, "listIntField"));
  EXPECT_EQ(slotOf(message, "listIntField"), 0);
}

TEST(ReplaceValue, ListsGrowByOneElementEachTime) {
  OpenMessage message = newMessage("Demo_EveryType");
  MsgFieldContext context(fieldOf(message, "listIntField"), &message);
  for (int i = 0; i < 3; ++i) context.replaceValue(-i);
  EXPECT_THAT(*ownedBy<std::vector<std::int32_t>>(message, "listIntField"), ElementsAre(0, -1, -2));
}

TEST(ReplaceValue, WideNumbersKeepTheirLowHalfInListsOfNarrowOnes) {
  OpenMessage message = newMessage("Demo_EveryType");
  MsgFieldContext(fieldOf(message, "listLongField"), &message).replaceValue(0x1ffffffffL);
  MsgFieldContext(fieldOf(message, "listUlongField"), &message).replaceValue(0x1fffffffeuL);
  MsgFieldContext(fieldOf(message, "listEnumField"), &message).replaceValue(-1);
  EXPECT_THAT(*ownedBy<std::vector<std::int32_t>>(message, "listLongField"), ElementsAre(-1));
  EXPECT_THAT(*ownedBy<std::vector<std::uint32_t>>(message, "listUlongField"), ElementsAre(0xfffffffeu));
  EXPECT_THAT(*ownedBy<std::vector<std::uint32_t>>(message, "listEnumField"), ElementsAre(0xffffffffu));
}

TEST(ReplaceValue, WholeNumbersKeepAllBitsInTheirSlot) {
  OpenMessage message = newMessage("Demo_EveryType");
  MsgFieldContext(fieldOf(message, "longlongField"), &message).replaceValue(-(1LL << 62));
  MsgFieldContext(fieldOf(message, "ulonglongField"), &message).replaceValue(~0uL);
  MsgFieldContext(fieldOf(message, "intField"), &message).replaceValue(-3);
  MsgFieldContext(fieldOf(message, "uintField"), &message).replaceValue(0xffffffffu);
  EXPECT_EQ(slotOf(message, "longlongField"), -(1LL << 62));
  EXPECT_EQ(slotOf(message, "ulonglongField"), -1);
  EXPECT_EQ(slotOf(message, "intField"), -3);
  EXPECT_EQ(slotOf(message, "uintField"), 0xffffffff);
}

TEST(ReplaceValue, KeepsTheValueOfAFieldOfAnotherKindAndMarksIt) {
  OpenMessage message = newMessage("Demo_EveryType");
  setText(message, "stringField", "stays");
  setBit(message, "stringField", false);
  MsgFieldContext(fieldOf(message, "stringField"), &message).replaceValue(5);
  MsgFieldContext(fieldOf(message, "doubleField"), &message).replaceValue(5);
  EXPECT_TRUE(hasBit(message, "stringField"));
  EXPECT_EQ(textOf(message, "stringField"), "stays");
  EXPECT_TRUE(hasBit(message, "doubleField"));
  EXPECT_EQ(slotOf(message, "doubleField"), 0);
}

TEST(ReplaceValue, ObjectIsCopiedOverTheOneThatIsSet) {
  Walk::Middle middle;
  middle.mutableInner().setText("old");
  const XNMessageBase* before = middle.getInner();
  Walk::Inner other;
  other.setValue(3);
  MsgFieldContext(fieldOf(middle, "inner"), &middle).replaceValue(&other);
  EXPECT_EQ(middle.getInner(), before);
  EXPECT_EQ(dump(*middle.getInner()), dump(other));
}

TEST(ReplaceValue, ObjectTakesThePlaceOfOneThatIsNotSet) {
  Walk::Middle middle;
  middle.mutableInner().setText("old");
  setBit(middle, "inner", false);
  Walk::Inner other;
  other.setValue(3);
  MsgFieldContext(fieldOf(middle, "inner"), &middle).replaceValue(&other);
  EXPECT_TRUE(middle.isInnerSet());
  EXPECT_EQ(dump(*middle.getInner()), dump(other));
}

TEST(ReplaceValue, ObjectOfAnotherClassTakesThePlaceOfTheOld) {
  Walk::Middle middle;
  middle.mutableInner().setText("old");
  const OpenMessage other = newMessage("Demo_EveryChild");
  MsgFieldContext(fieldOf(middle, "inner"), &middle).replaceValue(&other);
  EXPECT_EQ(MessageAccess::owned<XNMessageBase>(middle, fieldOf(middle, "inner"))->getTagName(),
            "Demo_EveryChild");
}

TEST(ReplaceValue, ObjectMayBeAPartOfTheMessage) {
  OpenMessage nest = newMessage("Demo_Nest");
  setInteger(nest, "depth", 1);
  MsgFieldContext child(fieldOf(nest, "child"), &nest);
  MsgFieldContext children(fieldOf(nest, "children"), &nest);
  child.replaceValue(&nest);
  child.replaceValue(&nest);
  child.replaceValue(ownedBy<XNMessageBase>(nest, "child"));
  child.replaceValue(ownedBy<XNMessageBase>(*ownedBy<XNMessageBase>(nest, "child"), "child"));
  EXPECT_EQ(dump(nest), "Demo_Nest {\n  depth = 1\n  child = Demo_Nest {\n    depth = 1\n  }\n}\n");
  children.replaceValue(&nest);
  for (int i = 0; i < 4; ++i)
    children.replaceValue(&ownedBy<std::vector<XNMessageBase>>(nest, "children")->front());
  EXPECT_EQ(ownedBy<std::vector<XNMessageBase>>(nest, "children")->size(), 5u);
}

TEST(ReplaceValue, ListElementMayBeAppendedToItsOwnList) {
  OpenMessage message = newMessage("Demo_EveryType");
  auto& texts = collectionOf<std::vector<std::string>>(message, "listStringField");
  texts = {std::string(40, 'x')};
  texts.shrink_to_fit();
  MsgFieldContext(fieldOf(message, "listStringField"), &message).replaceValue(texts[0]);
  EXPECT_THAT(texts, ElementsAre(std::string(40, 'x'), std::string(40, 'x')));
}

}  // namespace
}  // namespace zqxml
