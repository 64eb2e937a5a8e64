// The typed message classes: every kind of field through its own accessors.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/catalogue.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/typed_fields.h>

#include <array>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using Demo::EveryChild;
using Demo::EveryMode;
using Demo::EveryType;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

/// Get, set, isSet and unset of one scalar or text field.
template <class Value, class Get, class Set, class IsSet, class Unset>
void expectRoundTrip(const Value& value, const Value& empty, Get get, Set set, IsSet isSet, Unset unset) {
  EveryType message;
  EXPECT_EQ((message.*get)(), empty);
  EXPECT_FALSE((message.*isSet)());
  set(message, value);
  EXPECT_EQ((message.*get)(), value);
  EXPECT_TRUE((message.*isSet)());
  (message.*unset)();
  EXPECT_EQ((message.*get)(), empty);
  EXPECT_FALSE((message.*isSet)());
  set(message, empty);
  EXPECT_TRUE((message.*isSet)()) << "a field that is set to nothing is set";
  (message.*unset)();
  EXPECT_FALSE((message.*isSet)()) << "unset clears the bit of an empty value too";
}

#define EXPECT_ROUND_TRIP(Stem, value, empty)                                                   \
  expectRoundTrip(                                                                              \
      value, empty, &EveryType::get##Stem, [](EveryType& m, const auto& v) { m.set##Stem(v); }, \
      &EveryType::is##Stem##Set, &EveryType::unset##Stem)

TEST(GeneratedClassTest, ClassesWithoutAnIdAreNotTakenForEachOther) {
  Demo::EmptyWithoutId message;
  EXPECT_EQ(Demo::EmptyWithoutId::from(&message), &message);
  short subsystem = Demo::EmptyWithoutId::kSubsystem;
  int undescribed = 0;
  while (XNMessageBase::GetClassDef(subsystem, undescribed)->getName() != nullptr) ++undescribed;
  const std::unique_ptr<XNMessageBase> other(XNMessageBase::createObjectFromIndices(subsystem, undescribed));
  ASSERT_EQ(other->getTagID(), Demo::EmptyWithoutId::kTagId);
  EXPECT_EQ(Demo::EmptyWithoutId::from(other.get()), nullptr);
  EXPECT_EQ(Demo::EmptyWithoutId::from(static_cast<const XNMessageBase*>(other.get())), nullptr);
}

TEST(GeneratedClassTest, ScalarsKeepTheirRange) {
  EXPECT_ROUND_TRIP(IntField, std::int32_t{-2147483647}, std::int32_t{0});
  EXPECT_ROUND_TRIP(UintField, std::uint32_t{4294967295}, std::uint32_t{0});
  EXPECT_ROUND_TRIP(LongField, std::int32_t{-5}, std::int32_t{0});
  EXPECT_ROUND_TRIP(UlongField, std::uint32_t{4000000000}, std::uint32_t{0});
  EXPECT_ROUND_TRIP(LonglongField, std::int64_t{-9000000000}, std::int64_t{0});
  EXPECT_ROUND_TRIP(UlonglongField, std::uint64_t{18446744073709551615u}, std::uint64_t{0});
  EXPECT_ROUND_TRIP(BoolField, true, false);
  EXPECT_ROUND_TRIP(DoubleField, 2.5, 0.0);
  EXPECT_ROUND_TRIP(FloatField, -1.5f, 0.0f);
  EXPECT_ROUND_TRIP(Time32Field, std::int32_t{1577836800}, std::int32_t{0});
  EXPECT_ROUND_TRIP(Time64Field, std::int64_t{4000000000}, std::int64_t{0});
}

TEST(GeneratedClassTest, EnumFieldsHaveTheirEnumeration) {
  EXPECT_ROUND_TRIP(EnumField, EveryMode::AUTO, EveryMode::OFF);
  static_assert(std::same_as<decltype(std::declval<EveryType>().getEnumField()), EveryMode>);
}

TEST(GeneratedClassTest, EnumeratorsOfEveryWidthComeBack) {
  Demo::Keywords message;
  message.setSignedMode(Demo::SignedMode::LOWEST);
  message.setWideMode(Demo::WideMode::ALL_BITS);
  message.setAliasMode(Demo::AliasMode::SECOND_NAME);
  EXPECT_EQ(message.getSignedMode(), Demo::SignedMode::LOWEST);
  EXPECT_EQ(message.getWideMode(), Demo::WideMode::ALL_BITS);
  EXPECT_EQ(message.getAliasMode(), Demo::AliasMode::FIRST_NAME);
}

TEST(GeneratedClassTest, TextsGoInAndOut) {
  EXPECT_ROUND_TRIP(StringField, std::string("text"), std::string());
  EXPECT_ROUND_TRIP(WstringField, std::u16string(u"wide"), std::u16string());
  EveryType message;
  message.mutableStringField() += "appended";
  message.mutableWstringField() += u"too";
  EXPECT_EQ(message.getStringField(), "appended");
  EXPECT_EQ(message.getWstringField(), u"too");
  EXPECT_TRUE(message.isStringFieldSet() && message.isWstringFieldSet());
}

TEST(GeneratedClassTest, ByteStringsKeepEveryByte) {
  EveryType message;
  EXPECT_TRUE(message.getBstringField().empty());
  message.setBstringField(std::string_view("a\0b", 3));
  EXPECT_EQ(message.getBstringField().str(), std::string("a\0b", 3));
  message.mutableBstringField() += 'c';
  EXPECT_EQ(message.getBstringField().size(), 4u);
  message.unsetBstringField();
  EXPECT_TRUE(message.getBstringField().empty());
  EXPECT_FALSE(message.isBstringFieldSet());
}

TEST(GeneratedClassTest, PasswordsHaveTheirType) {
  EveryType message;
  message.setPstringField("secret");
  EXPECT_EQ(message.getPstringField().getEncryptionType(), 1);
  message.setPstringField("stored", Annotation::PasswordEncryptType::BASE64);
  EXPECT_EQ(message.getPstringField().str(), "stored");
  EXPECT_EQ(message.getPstringField().getEncryptionType(), 9);
  message.unsetPstringField();
  EXPECT_TRUE(message.getPstringField().empty());
  EXPECT_EQ(message.getPstringField().getEncryptionType(), 1);
}

/// Reads, makes, replaces and clears one container field.
template <class Container, class Get, class Mutable, class Set, class IsSet, class Unset>
void expectContainer(const Container& content, Get get, Mutable mutableOf, Set set, IsSet isSet,
                     Unset unset) {
  EveryType message;
  EXPECT_TRUE((message.*get)().empty());
  EXPECT_FALSE((message.*isSet)()) << "reading makes nothing";
  EXPECT_TRUE((message.*mutableOf)().empty());
  EXPECT_TRUE((message.*isSet)());
  (message.*set)(content);
  EXPECT_EQ((message.*get)(), content);
  (message.*unset)();
  EXPECT_TRUE((message.*get)().empty());
  EXPECT_FALSE((message.*isSet)());
}

#define EXPECT_CONTAINER(Stem, ...)                                                                     \
  expectContainer(__VA_ARGS__, &EveryType::get##Stem, &EveryType::mutable##Stem, &EveryType::set##Stem, \
                  &EveryType::is##Stem##Set, &EveryType::unset##Stem)

TEST(GeneratedClassTest, ListsAreVectors) {
  EXPECT_CONTAINER(ListIntField, std::vector<std::int32_t>{1, -1});
  EXPECT_CONTAINER(ListUintField, std::vector<std::uint32_t>{1, 4294967295});
  EXPECT_CONTAINER(ListLongField, std::vector<std::int32_t>{2});
  EXPECT_CONTAINER(ListUlongField, std::vector<std::uint32_t>{3});
  EXPECT_CONTAINER(ListLonglongField, std::vector<std::int64_t>{-4});
  EXPECT_CONTAINER(ListUlonglongField, std::vector<std::uint64_t>{5});
  EXPECT_CONTAINER(ListEnumField, std::vector<std::uint32_t>{0, 2});
  EXPECT_CONTAINER(ListBoolField, std::vector<std::uint32_t>{1, 0});
  EXPECT_CONTAINER(ListFloatField, std::vector<float>{1.5f});
  EXPECT_CONTAINER(ListDoubleField, std::vector<double>{-2.5});
  EXPECT_CONTAINER(ListStringField, std::vector<std::string>{"a", ""});
  EXPECT_CONTAINER(ListWstringField, std::vector<std::u16string>{u"b"});
  EXPECT_CONTAINER(ListBstringField, std::vector<bstring>{bstring("c")});
}

TEST(GeneratedClassTest, MapsAreMaps) {
  EXPECT_CONTAINER(MapInt64Int64Field, std::map<std::int64_t, std::int64_t>{{1, 2}});
  EXPECT_CONTAINER(MapInt64StringField, std::map<std::int64_t, std::string>{{1, "a"}});
  EXPECT_CONTAINER(MapStringInt64Field, std::map<std::string, std::int64_t>{{"a", 1}});
  EXPECT_CONTAINER(MapStringStringField, std::map<std::string, std::string>{{"a", "b"}});
}

TEST(GeneratedClassTest, SubObjectIsMadeWhenItIsWritten) {
  EveryType message;
  EXPECT_EQ(message.getObjectField(), nullptr);
  message.mutableObjectField().setNumber(5);
  ASSERT_NE(message.getObjectField(), nullptr);
  EXPECT_EQ(message.getObjectField()->getNumber(), 5);
  EXPECT_EQ(message.getObjectField()->getTagID(), EveryChild::kTagId);
  EXPECT_TRUE(message.isObjectFieldSet());
  message.unsetObjectField();
  EXPECT_EQ(message.getObjectField(), nullptr);
}

TEST(GeneratedClassTest, SubObjectIsCopiedIn) {
  EveryChild child;
  child.setText("one");
  EveryType message;
  message.setObjectField(child);
  child.setText("two");
  EXPECT_EQ(message.getObjectField()->getText(), "one");
  message.setObjectField(child);
  EXPECT_EQ(message.getObjectField()->getText(), "two");
}

TEST(GeneratedClassTest, ObjectListIsAViewOfTypedElements) {
  EveryType message;
  EXPECT_TRUE(message.getListObjectField().empty());
  EXPECT_EQ(message.getListObjectField().begin(), message.getListObjectField().end());
  message.addToListObjectField().setNumber(1);
  message.addToListObjectField().setNumber(2);
  for (EveryChild& child : message.mutableListObjectField()) child.setNumber(child.getNumber() * 10);
  std::vector<int> numbers;
  for (const EveryChild& child : std::as_const(message).getListObjectField())
    numbers.push_back(child.getNumber());
  EXPECT_THAT(numbers, ElementsAre(10, 20));
  EXPECT_EQ(message.getListObjectField().size(), 2u);
  EXPECT_EQ(message.getListObjectField()[1].getNumber(), 20);
  EXPECT_EQ(message.mutableListObjectFieldVector().size(), 2u);
  EXPECT_EQ(message.getListObjectField()[0].getTagID(), EveryChild::kTagId);
}

TEST(GeneratedClassTest, ObjectMapsFindAndAdd) {
  EveryType message;
  EXPECT_EQ(message.findInMapStringObjectField("a"), nullptr);
  message.addToMapStringObjectField("a").setNumber(1);
  message.addToMapStringObjectField("a").setText("same");
  ASSERT_NE(message.findInMapStringObjectField("a"), nullptr);
  EXPECT_EQ(message.findInMapStringObjectField("a")->getNumber(), 1);
  EXPECT_EQ(message.findInMapStringObjectField("a")->getText(), "same");
  message.addToMapInt64ObjectField(-7).setNumber(2);
  EXPECT_EQ(message.findInMapInt64ObjectField(-7)->getNumber(), 2);
  EXPECT_EQ(message.getMapInt64ObjectField().size(), 1u);
  message.mutableMapObjectObjectField().emplace(EveryChild(), EveryChild());
  EXPECT_EQ(message.getMapObjectObjectField().size(), 1u);
}

TEST(GeneratedClassTest, NumbersAreThoseOfTheCatalogue) {
  const _ClassDef* record = XNMessageBase::GetClassDef(EveryType::kTagId);
  ASSERT_NE(record, nullptr);
  EXPECT_STREQ(record->getName(), "EveryType");
  EXPECT_EQ(XNMessageBase::GetClassDef(EveryType::kSubsystem, EveryType::kClassIndex), record);
  EXPECT_STREQ(record->getFields()[EveryType::FieldNumber::kPstringField].getName(), "pstringField");
  EXPECT_EQ(EveryType().getTagID(), EveryType::kTagId);
}

TEST(GeneratedClassTest, FromTakesItsOwnClassOnly) {
  EveryType message;
  EveryChild child;
  XNMessageBase* base = &message;
  EXPECT_EQ(EveryType::from(base), &message);
  EXPECT_EQ(EveryType::from(static_cast<XNMessageBase*>(&child)), nullptr);
  EXPECT_EQ(EveryType::from(static_cast<const XNMessageBase*>(base)), &message);
  EXPECT_EQ(EveryType::from(static_cast<XNMessageBase*>(nullptr)), nullptr);
}

TEST(GeneratedClassTest, MessageLivesInACallersBlock) {
  std::array<std::int64_t, 64> block{};
  EveryChild child(block.data(), static_cast<int>(sizeof(block)));
  child.setNumber(77);
  EXPECT_EQ(block[0], 77);
}

TEST(GeneratedClassTest, MessageOfAnotherClassIsReadByHash) {
  Demo::DriftMoved moved;
  moved.setNumber(5);
  moved.setText("found");
  moved.mutableList().push_back(3);
  const auto& base = reinterpret_cast<const Demo::DriftBase&>(static_cast<const XNMessageBase&>(moved));
  EXPECT_EQ(base.getNumber(), 5);
  EXPECT_EQ(base.getText(), "found");
  EXPECT_THAT(base.getList(), ElementsAre(3));
}

TEST(GeneratedClassTest, MessageOfAnotherClassIsWrittenByHash) {
  Demo::DriftMoved moved;
  auto& base = reinterpret_cast<Demo::DriftBase&>(static_cast<XNMessageBase&>(moved));
  base.setNumber(5);
  base.setText("found");
  EXPECT_EQ(moved.getNumber(), 5);
  EXPECT_EQ(moved.getText(), "found");
  EXPECT_TRUE(moved.isNumberSet());
  EXPECT_TRUE(moved.isTextSet());
}

TEST(GeneratedClassTest, WritingToAFieldThatIsNotThereDoesNoHarm) {
  LogCapture capture(0);
  Demo::DriftRetyped retyped;
  auto& base = reinterpret_cast<Demo::DriftBase&>(static_cast<XNMessageBase&>(retyped));
  base.mutableList().push_back(3);
  EXPECT_THAT(base.mutableList(), IsEmpty());
  EXPECT_THAT(base.getList(), IsEmpty());
  EXPECT_THAT(retyped.getList(), IsEmpty());
  EXPECT_FALSE(retyped.isListSet());
  EXPECT_FALSE(capture.lines().empty());
}

TEST(GeneratedClassTest, NamesThatCppNeedsAreUsableAllTheSame) {
  Demo::Keywords message;
  message.setClass(1);
  message.setDefault("d");
  message.setObject(2);
  message.setField(3);
  message.setLargeText(4);
  message.setText(5);
  message.setWith_dash(6);
  message.setWord(Demo::operator_::NULL_);
  message.mutableStd().setThis(7);
  EXPECT_EQ(message.getLargeText(), 4);
  EXPECT_EQ(message.getText(), 5);
  EXPECT_EQ(message.getField(), 3);
  EXPECT_EQ(message.getWord(), Demo::operator_::NULL_);
  EXPECT_EQ(message.getStd()->getThis(), 7);
  message.unsetField();
  EXPECT_FALSE(message.isFieldSet());
  EXPECT_TRUE(message.isObjectSet());
}

TEST(GeneratedClassTest, AnnotationClassesDeriveFromTheirBase) {
  static_assert(std::derived_from<Annotation::Text, AnnotationBase>);
  static_assert(std::derived_from<App::TestMessage2, XNMessageBase>);
  static_assert(!std::derived_from<App::TestMessage2, AnnotationBase>);
  Annotation::Password password;
  password.setEncType(Annotation::PasswordEncryptType::PASS_THROUGH);
  EXPECT_EQ(password.getEncType(), Annotation::PasswordEncryptType::PASS_THROUGH);
}

TEST(GeneratedClassTest, EverySubsystemCanBeRegistered) {
  Demo::RegisterSubsystem();
  Layout::RegisterSubsystem();
  ZqEntities::RegisterSubsystem();
  static_assert(std::same_as<decltype(&Annotation::RegisterSubsystem), void (*)()>);
}

}  // namespace
}  // namespace zqxml
