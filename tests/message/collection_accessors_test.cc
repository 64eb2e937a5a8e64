// The accessors of lists and maps: one body of tests for all families.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/message/accessor_texts.h>
#include <tests/message/collection_families.h>
#include <tests/support/log_capture.h>

namespace zqxml {
namespace {

using ::testing::ElementsAre;
using ::testing::Key;

constexpr std::uint32_t kForeignTag = 0xc8abcdef;
constexpr std::uint32_t kUnknownHash = 0x123456;

template <class Family>
class CollectionAccessors : public ::testing::Test {
 protected:
  using Value = typename Family::Value;

  const FieldDef& field() const { return fieldOf(message_, Family::kField); }
  short memNum() const { return field().getMemNum(); }
  short index() const { return field().getIndex(); }
  std::uint32_t hash() const { return field().getFieldHashId(); }
  std::uint32_t tag() const { return message_.getTagID(); }
  bool isSet() const { return hasBit(message_, Family::kField); }
  std::int64_t slot() const { return slotOf(message_, Family::kField); }
  static std::string name(const char* before, const char* behind = "") {
    return std::string("XNMessageBase::") + before + Family::kName + behind;
  }
  /// Calls the three accessors, expects nothing but the line of each and their empty results.
  void expectAllRefused(OpenMessage& message, short memNum, short index, std::uint32_t tag,
                        std::uint32_t hash, const std::string& text) {
    const Family family{message};
    const Value value = Family::sample();
    LogCapture capture;
    EXPECT_EQ(family.get(memNum, index, tag, hash, true), nullptr);
    EXPECT_EQ(family.getConst(memNum, index, tag, hash), nullptr);
    family.set(memNum, index, &value, tag, hash);
    EXPECT_THAT(capture.lines(),
                ElementsAre(CapturedLine{name("get"), 0, text}, CapturedLine{name("get", "_const"), 0, text},
                            CapturedLine{name("set"), 0, text}));
  }

  OpenMessage message_ = newMessage("Demo_EveryType");
  Family family_{message_};
};

TYPED_TEST_SUITE(CollectionAccessors, CollectionFamilies, FamilyNames);

TYPED_TEST(CollectionAccessors, ConstReadOfAnUntouchedFieldIsNull) {
  LogCapture capture;
  EXPECT_EQ(this->family_.getConst(this->memNum(), this->index(), this->tag(), 0), nullptr);
  EXPECT_EQ(this->slot(), 0);
  EXPECT_TRUE(capture.empty());
}

TYPED_TEST(CollectionAccessors, ReadMakesItAndLeavesTheFieldUnset) {
  auto* made = this->family_.get(this->memNum(), this->index(), this->tag(), 0, false);
  ASSERT_NE(made, nullptr);
  EXPECT_TRUE(made->empty());
  EXPECT_FALSE(this->isSet());
  EXPECT_EQ(this->family_.getConst(this->memNum(), this->index(), this->tag(), 0), made);
  EXPECT_EQ(this->family_.get(this->memNum(), this->index(), this->tag(), 0, false), made);
}

TYPED_TEST(CollectionAccessors, ReadMarksTheFieldWhenAsked) {
  auto* made = this->family_.get(this->memNum(), this->index(), this->tag(), 0, true);
  ASSERT_NE(made, nullptr);
  EXPECT_TRUE(this->isSet());
}

TYPED_TEST(CollectionAccessors, ReadGivesTheSlotItself) {
  auto*& slot = this->family_.get(this->memNum(), this->index(), this->tag(), 0, true);
  delete slot;
  slot = nullptr;
  EXPECT_EQ(this->slot(), 0);
}

TYPED_TEST(CollectionAccessors, WriteClonesTheValueAndMarksTheField) {
  const auto value = TypeParam::sample();
  this->family_.set(this->memNum(), this->index(), &value, this->tag(), 0);
  const auto* stored = this->family_.getConst(this->memNum(), this->index(), this->tag(), 0);
  ASSERT_NE(stored, nullptr);
  EXPECT_NE(stored, &value);
  EXPECT_EQ(*stored, value);
  EXPECT_TRUE(this->isSet());
}

TYPED_TEST(CollectionAccessors, WriteCopiesOverTheExistingOne) {
  const auto* made = this->family_.get(this->memNum(), this->index(), this->tag(), 0, false);
  const auto value = TypeParam::sample();
  this->family_.set(this->memNum(), this->index(), &value, this->tag(), 0);
  const auto* stored = this->family_.getConst(this->memNum(), this->index(), this->tag(), 0);
  EXPECT_EQ(stored, made);
  EXPECT_EQ(*stored, value);
  EXPECT_TRUE(this->isSet());
}

TYPED_TEST(CollectionAccessors, WriteOfItsOwnValueKeepsIt) {
  const auto value = TypeParam::sample();
  this->family_.set(this->memNum(), this->index(), &value, this->tag(), 0);
  const auto* stored = this->family_.getConst(this->memNum(), this->index(), this->tag(), 0);
  this->family_.set(this->memNum(), this->index(), stored, this->tag(), 0);
  EXPECT_EQ(*this->family_.getConst(this->memNum(), this->index(), this->tag(), 0), value);
}

TYPED_TEST(CollectionAccessors, WriteOfNullRemovesItAndClearsTheBit) {
  const auto value = TypeParam::sample();
  this->family_.set(this->memNum(), this->index(), &value, this->tag(), 0);
  this->family_.set(this->memNum(), this->index(), nullptr, this->tag(), 0);
  EXPECT_EQ(this->slot(), 0);
  EXPECT_FALSE(this->isSet());
}

TYPED_TEST(CollectionAccessors, ForeignTagFindsTheFieldByItsHash) {
  OpenMessage drifted = newMessage("Drift_Reversed");
  const TypeParam family{drifted};
  const auto value = TypeParam::sample();
  LogCapture capture;
  EXPECT_EQ(family.getConst(this->memNum(), this->index(), this->tag(), this->hash()), nullptr);
  auto* made = family.get(this->memNum(), this->index(), this->tag(), this->hash(), false);
  EXPECT_EQ(slotOf(drifted, TypeParam::kField), reinterpret_cast<std::int64_t>(made));
  EXPECT_FALSE(hasBit(drifted, TypeParam::kField));
  family.set(this->memNum(), this->index(), &value, this->tag(), this->hash());
  EXPECT_TRUE(hasBit(drifted, TypeParam::kField));
  EXPECT_EQ(*family.getConst(this->memNum(), this->index(), this->tag(), this->hash()), value);
  family.set(this->memNum(), this->index(), nullptr, this->tag(), this->hash());
  EXPECT_FALSE(hasBit(drifted, TypeParam::kField));
  EXPECT_TRUE(capture.empty());
}

TYPED_TEST(CollectionAccessors, UnknownHashIsLoggedAndChangesNothing) {
  this->expectAllRefused(this->message_, this->memNum(), this->index(), kForeignTag, kUnknownHash,
                         noSuchField(this->message_, kUnknownHash, kForeignTag));
  EXPECT_EQ(this->slot(), 0);
  EXPECT_FALSE(this->isSet());
}

TYPED_TEST(CollectionAccessors, MemNumBeyondTheClassIsRefused) {
  const short beyond = static_cast<short>(this->message_.getNumberOfFields());
  this->expectAllRefused(this->message_, beyond, this->index(), this->tag(), 0,
                         invalidMember(this->message_, beyond));
}

TYPED_TEST(CollectionAccessors, MemNumBeyondTheClassIsRefusedWithAForeignTagToo) {
  const short beyond = static_cast<short>(this->message_.getNumberOfFields());
  this->expectAllRefused(this->message_, beyond, this->index(), kForeignTag, this->hash(),
                         invalidMember(this->message_, beyond));
}

TYPED_TEST(CollectionAccessors, NegativeMemNumIsRefused) {
  this->expectAllRefused(this->message_, -1, this->index(), this->tag(), 0,
                         invalidMember(this->message_, -1));
}

TYPED_TEST(CollectionAccessors, IndexOutsideTheSlotsIsRefused) {
  for (const short index : {short{-1}, XNMessageBase::GetClassDef(&this->message_)->getNumberOfElements()})
    this->expectAllRefused(this->message_, this->memNum(), index, this->tag(), 0,
                           invalidMember(this->message_, this->memNum()));
}

TYPED_TEST(CollectionAccessors, FieldOfAnotherStorageIsRefused) {
  // The own tag with the numbers of an integer, and a drifted class whose field of the name is stored
  // otherwise.
  const FieldDef& other = fieldOf(this->message_, "intField");
  this->expectAllRefused(this->message_, other.getMemNum(), other.getIndex(), this->tag(), 7,
                         noSuchField(this->message_, 7, this->tag()));
  EXPECT_EQ(slotOf(this->message_, "intField"), 0);

  OpenMessage retyped = newMessage("Drift_Retyped");
  this->expectAllRefused(retyped, this->memNum(), this->index(), this->tag(), this->hash(),
                         noSuchField(retyped, this->hash(), this->tag()));
  EXPECT_FALSE(hasBit(retyped, TypeParam::kField));
}

TYPED_TEST(CollectionAccessors, MessageWithoutAClassIsRefused) {
  OpenMessage none;
  const TypeParam family{none};
  const auto value = TypeParam::sample();
  LogCapture capture;
  EXPECT_EQ(family.get(0, 0, 0, 0, true), nullptr);
  EXPECT_EQ(family.getConst(0, 0, 0, 0), nullptr);
  family.set(0, 0, &value, 0, 0);
  family.set(0, 0, nullptr, 0, 0);
  EXPECT_TRUE(capture.has(this->name("get"), 0, invalidMember(none, 0)));
  EXPECT_TRUE(capture.has(this->name("get", "_const"), 0, invalidMember(none, 0)));
  EXPECT_TRUE(capture.has(this->name("set"), 0, invalidMember(none, 0)));
  EXPECT_TRUE(capture.has("XNMessageBase::deleteMember", 0, invalidMember(none, 0)));
}

TYPED_TEST(CollectionAccessors, WhatIsWrittenToTheFallbackIsForgotten) {
  LogCapture capture;
  typename TestFixture::Value own;
  this->family_.get(this->memNum(), this->index(), kForeignTag, kUnknownHash, true) = &own;
  EXPECT_EQ(this->family_.get(this->memNum(), this->index(), kForeignTag, kUnknownHash, true), nullptr);
  EXPECT_EQ(this->slot(), 0);
}

// One list of unsigned numbers stands behind unsigned numbers, booleans and enumerations.
TEST(CollectionAccessorsOfOneStorage, UnsignedListsServeEachOther) {
  OpenMessage message = newMessage("Demo_EveryType");
  const std::vector<std::uint32_t> value{1, 2, 3};
  LogCapture capture;
  for (const char* name : {"listUintField", "listUlongField", "listEnumField", "listBoolField"}) {
    const FieldDef& field = fieldOf(message, name);
    message.setlistulong(field.getMemNum(), field.getIndex(), &value, message.getTagID(), 0);
    EXPECT_THAT(*message.getlistuint_const(field.getMemNum(), field.getIndex(), message.getTagID(), 0),
                ElementsAre(1u, 2u, 3u));
  }
  EXPECT_TRUE(capture.empty());
}

TEST(CollectionAccessorsOfOneStorage, SignedListsServeEachOther) {
  OpenMessage message = newMessage("Demo_EveryType");
  const std::vector<std::int32_t> value{-1, 2};
  LogCapture capture;
  for (const char* name : {"listIntField", "listLongField"}) {
    const FieldDef& field = fieldOf(message, name);
    message.setlistlong(field.getMemNum(), field.getIndex(), &value, message.getTagID(), 0);
    EXPECT_THAT(*message.getlistint_const(field.getMemNum(), field.getIndex(), message.getTagID(), 0),
                ElementsAre(-1, 2));
  }
  EXPECT_TRUE(capture.empty());
}

TEST(ListObjectAccessor, WriteOverObjectsOfAnotherClassReplacesThem) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "listObjectField");
  const std::vector<XNMessageBase> leaves{leaf(1, "one"), leaf(2, "two")};
  message.setlistobject(field.getMemNum(), field.getIndex(), &leaves, message.getTagID(), 0);
  const std::vector<XNMessageBase> others{newMessage("Demo_Nest")};
  message.setlistobject(field.getMemNum(), field.getIndex(), &others, message.getTagID(), 0);
  EXPECT_EQ(*message.getlistobject_const(field.getMemNum(), field.getIndex(), message.getTagID(), 0), others);
}

// The maps of a Nest hold Nests: its own first entry may hold what it is to become.
TEST(MapObjectAccessor, WriteOfAPartOfTheMapTakesThatPart) {
  using Nests = std::map<std::string, XNMessageBase>;
  OpenMessage message = newMessage("Demo_Nest");
  OpenMessage inner = newMessage("Demo_Nest");
  for (const char* key : {"x", "y", "z"})
    collectionOf<Nests>(inner, "byName").emplace(key, newMessage("Demo_Nest"));
  const FieldDef& field = fieldOf(message, "byName");
  Nests& entries = collectionOf<Nests>(message, "byName");
  for (const char* key : {"a", "b"}) entries.emplace(key, inner);

  const Nests* part = &collectionOf<Nests>(entries.begin()->second, "byName");
  message.setMapStringAndObject(field.getMemNum(), field.getIndex(), part, message.getTagID(), 0);
  EXPECT_THAT(
      *message.getMapStringAndObject_const(field.getMemNum(), field.getIndex(), message.getTagID(), 0),
      ElementsAre(Key("x"), Key("y"), Key("z")));
}

TEST(MapObjectAccessor, KeepsOnlyTheFirstEntry) {
  OpenMessage message = newMessage("Demo_EveryType");
  auto& map = collectionOf<ObjectObjectMap>(message, "mapObjectObjectField");
  map.emplace(leaf(1, "first"), leaf(1, "value"));
  map.emplace(leaf(2, "second"), leaf(2, "value"));
  ASSERT_EQ(map.size(), 1u);
  EXPECT_EQ(textOf(map.begin()->first, "text"), "first");
}

}  // namespace
}  // namespace zqxml
