// The accessors of sub-objects.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/message/accessor_texts.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/platform/exception.h>

#include <memory>

namespace zqxml {
namespace {

using ::testing::ElementsAre;

constexpr std::uint32_t kForeignTag = 0xc8abcdef;
constexpr std::uint32_t kUnknownHash = 0x123456;

class ObjectAccessors : public ::testing::Test {
 protected:
  const FieldDef& field() const { return fieldOf(message_, "objectField"); }
  short memNum() const { return field().getMemNum(); }
  short index() const { return field().getIndex(); }
  std::uint32_t hash() const { return field().getFieldHashId(); }
  std::uint32_t tag() const { return message_.getTagID(); }
  bool isSet() const { return hasBit(message_, "objectField"); }
  const XNMessageBase* stored() const { return ownedBy<XNMessageBase>(message_, "objectField"); }
  XNMessageBase* newLeaf(std::int64_t number) const {
    auto owner = std::make_unique<OpenMessage>(leaf_.subsystem, leaf_.index);
    setInteger(*owner, "number", number);
    return owner.release();
  }
  XNMessageBase*& accessor(bool create, bool markSet) {
    return message_.getObjectAccessor(create, markSet, memNum(), index(), tag(), 0, leaf_.subsystem,
                                      leaf_.index);
  }

  const ClassIndices leaf_ = classNamed("Demo_EveryChild");
  OpenMessage message_ = newMessage("Demo_EveryType");
  OpenMessage drifted_ = newMessage("Drift_Reversed");
};

TEST_F(ObjectAccessors, GetObjectGivesTheSlot) {
  XNMessageBase*& slot = message_.getObject(memNum(), index(), tag(), 0);
  EXPECT_EQ(slot, nullptr);
  slot = newLeaf(1);
  EXPECT_EQ(stored(), slot);
  EXPECT_FALSE(isSet());
}

TEST_F(ObjectAccessors, GetObjectFindsTheFieldByItsHash) {
  drifted_.getObject(memNum(), index(), tag(), hash()) = newLeaf(1);
  EXPECT_NE(ownedBy<XNMessageBase>(drifted_, "objectField"), nullptr);
}

TEST_F(ObjectAccessors, GetObjectThrowsForAnUnknownHash) {
  LogCapture capture;
  try {
    message_.getObject(memNum(), index(), kForeignTag, kUnknownHash);
    FAIL() << "no exception";
  } catch (const ZqException& error) {
    EXPECT_EQ(error.function(), "XNMessageBase::getObject");
    EXPECT_EQ(error.text(), formatText("ZqXML does not recognize given field :[%u] in Message "
                                       "[Demo_EveryType] :[%u]. Message received : [%u]",
                                       kUnknownHash, tag(), kForeignTag));
  }
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XNMessageBase::getObject", 0,
                                                        noSuchField(message_, kUnknownHash, kForeignTag)}));
}

TEST_F(ObjectAccessors, GetObjectThrowsForAFieldOfAnotherStorage) {
  LogCapture capture;
  OpenMessage retyped = newMessage("Drift_Retyped");
  EXPECT_THROW(retyped.getObject(memNum(), index(), tag(), hash()), ZqException);
  const FieldDef& other = fieldOf(message_, "intField");
  EXPECT_THROW(message_.getObject(other.getMemNum(), other.getIndex(), tag(), 0), ZqException);
}

TEST_F(ObjectAccessors, GetObjectOfABadMemNumGivesANullSlot) {
  for (const int memNum : {-1, message_.getNumberOfFields()}) {
    LogCapture capture;
    EXPECT_EQ(message_.getObject(static_cast<short>(memNum), index(), tag(), 0), nullptr);
    EXPECT_EQ(message_.getObject(static_cast<short>(memNum), index(), kForeignTag, kUnknownHash), nullptr);
    EXPECT_EQ(capture.count("XNMessageBase::getObject", 0, invalidMember(message_, memNum)), 2u);
  }
}

TEST_F(ObjectAccessors, GetObjectOfAnIndexOutsideTheSlotsGivesANullSlot) {
  LogCapture capture;
  EXPECT_EQ(message_.getObject(memNum(), -1, tag(), 0), nullptr);
  EXPECT_TRUE(capture.has("XNMessageBase::getObject", 0, invalidMember(message_, memNum())));
}

TEST_F(ObjectAccessors, GetObjectOfAMessageWithoutAClassGivesANullSlot) {
  OpenMessage none;
  LogCapture capture;
  EXPECT_EQ(none.getObject(0, 0, 0, 0), nullptr);
}

TEST_F(ObjectAccessors, ConstReadNeverThrows) {
  const OpenMessage& constant = message_;
  EXPECT_EQ(constant.getObject_const(memNum(), index(), tag(), 0), nullptr);
  LogCapture capture;
  EXPECT_EQ(constant.getObject_const(memNum(), index(), kForeignTag, kUnknownHash), nullptr);
  EXPECT_EQ(constant.getObject_const(-1, index(), tag(), 0), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::getObject_const", 0,
                                       noSuchField(message_, kUnknownHash, kForeignTag)},
                          CapturedLine{"XNMessageBase::getObject_const", 0, invalidMember(message_, -1)}));
}

TEST_F(ObjectAccessors, ConstReadFindsTheFieldByItsHash) {
  XNMessageBase* leaf = newLeaf(1);
  MessageAccess::owned<XNMessageBase>(drifted_, fieldOf(drifted_, "objectField")) = leaf;
  const OpenMessage& constant = drifted_;
  EXPECT_EQ(constant.getObject_const(memNum(), index(), tag(), hash()), leaf);
}

TEST_F(ObjectAccessors, AccessorLeavesAnEmptySlotUnlessAsked) {
  EXPECT_EQ(accessor(false, false), nullptr);
  EXPECT_FALSE(isSet());
}

TEST_F(ObjectAccessors, AccessorMakesAnObjectUnmarked) {
  XNMessageBase* made = accessor(true, false);
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->getTagName(), "Demo_EveryChild");
  EXPECT_EQ(stored(), made);
  EXPECT_FALSE(isSet());
}

TEST_F(ObjectAccessors, AccessorMakesAnObjectAndMarksIt) {
  for (const bool create : {true, false}) {
    open(message_).deleteMember(memNum(), tag(), 0, false);
    EXPECT_NE(accessor(create, true), nullptr);
    EXPECT_TRUE(isSet());
  }
}

TEST_F(ObjectAccessors, AccessorMarksTheObjectThatIsThere) {
  XNMessageBase* made = accessor(true, false);
  EXPECT_EQ(accessor(false, true), made);
  EXPECT_TRUE(isSet());
}

TEST_F(ObjectAccessors, AccessorFindsTheFieldByItsHash) {
  XNMessageBase* made =
      drifted_.getObjectAccessor(true, true, memNum(), index(), tag(), hash(), leaf_.subsystem, leaf_.index);
  EXPECT_EQ(ownedBy<XNMessageBase>(drifted_, "objectField"), made);
  EXPECT_TRUE(hasBit(drifted_, "objectField"));
}

TEST_F(ObjectAccessors, AccessorMakesNothingInTheFallback) {
  LogCapture capture;
  EXPECT_EQ(message_.getObjectAccessor(true, true, -1, index(), tag(), 0, leaf_.subsystem, leaf_.index),
            nullptr);
  EXPECT_THROW(message_.getObjectAccessor(true, true, memNum(), index(), kForeignTag, kUnknownHash,
                                          leaf_.subsystem, leaf_.index),
               ZqException);
}

TEST_F(ObjectAccessors, SetObjectTakesThePointer) {
  XNMessageBase* leaf = newLeaf(1);
  message_.setObject(memNum(), index(), leaf, false, tag(), 0, true);
  EXPECT_EQ(stored(), leaf);
  EXPECT_TRUE(isSet());
}

TEST_F(ObjectAccessors, SetObjectLeavesTheBitUnlessAsked) {
  message_.setObject(memNum(), index(), newLeaf(1), true, tag(), 0, false);
  EXPECT_NE(stored(), nullptr);
  EXPECT_FALSE(isSet());
}

TEST_F(ObjectAccessors, KeepsDroppingTheObjectThatSetObjectReplaces) {
  const std::unique_ptr<XNMessageBase> dropped(newLeaf(1));
  message_.setObject(memNum(), index(), dropped.get(), true, tag(), 0, true);
  message_.setObject(memNum(), index(), newLeaf(2), true, tag(), 0, true);
  EXPECT_EQ(slotOf(*dropped, "number"), 1);  // not freed: a sanitizer build sees the difference
  EXPECT_EQ(slotOf(*stored(), "number"), 2);
}

TEST_F(ObjectAccessors, SetObjectOfNullClearsTheMemberThatItIsTold) {
  message_.setObject(memNum(), index(), newLeaf(1), true, tag(), 0, true);
  // The object's own tag is used, so that neither the tag nor the hash given here matters.
  message_.setObject(memNum(), index(), nullptr, true, kForeignTag, kUnknownHash, true);
  EXPECT_EQ(stored(), nullptr);
  EXPECT_FALSE(isSet());
}

TEST_F(ObjectAccessors, SetObjectFindsTheFieldByItsHash) {
  XNMessageBase* leaf = newLeaf(1);
  drifted_.setObject(memNum(), index(), leaf, true, tag(), hash(), true);
  EXPECT_EQ(ownedBy<XNMessageBase>(drifted_, "objectField"), leaf);
  EXPECT_TRUE(hasBit(drifted_, "objectField"));
}

TEST_F(ObjectAccessors, SetObjectTakesNothingWhenItFails) {
  const std::unique_ptr<XNMessageBase> mine(newLeaf(1));
  LogCapture capture;
  message_.setObject(memNum(), index(), mine.get(), true, kForeignTag, kUnknownHash, true);
  message_.setObject(-1, index(), mine.get(), true, tag(), 0, true);
  EXPECT_EQ(stored(), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::setObject", 0,
                                       noSuchField(message_, kUnknownHash, kForeignTag)},
                          CapturedLine{"XNMessageBase::setObject", 0, invalidMember(message_, -1)}));
}

TEST_F(ObjectAccessors, SetObjectAccessorCopies) {
  const std::unique_ptr<XNMessageBase> mine(newLeaf(1));
  message_.setObjectAccessor(mine.get(), memNum(), index(), tag(), 0);
  ASSERT_NE(stored(), nullptr);
  EXPECT_NE(stored(), mine.get());
  EXPECT_EQ(*stored(), *mine);
  EXPECT_TRUE(isSet());
}

TEST_F(ObjectAccessors, SetObjectAccessorAssignsIntoTheObjectThatIsThere) {
  XNMessageBase* made = accessor(true, false);
  const std::unique_ptr<XNMessageBase> mine(newLeaf(1));
  message_.setObjectAccessor(mine.get(), memNum(), index(), tag(), 0);
  EXPECT_EQ(stored(), made);
  EXPECT_EQ(*stored(), *mine);
  EXPECT_TRUE(isSet());
}

TEST_F(ObjectAccessors, SetObjectAccessorThrowsForAnObjectOfAnotherClass) {
  accessor(true, true);
  const OpenMessage tree = newMessage("Demo_Nest");
  LogCapture capture;
  EXPECT_THROW(message_.setObjectAccessor(&tree, memNum(), index(), tag(), 0), ZqException);
  EXPECT_TRUE(capture.has(
      "XNMessageBase assignment operator", 0,
      "[You cannot assign object of type : [Demo_Nest] to object with type : [Demo_EveryChild]]"));
}

TEST_F(ObjectAccessors, SetObjectAccessorOfNullClearsTheMember) {
  accessor(true, true);
  message_.setObjectAccessor(nullptr, memNum(), index(), tag(), 0);
  EXPECT_EQ(stored(), nullptr);
  EXPECT_FALSE(isSet());
}

TEST_F(ObjectAccessors, SetObjectAccessorOfNullFindsTheFieldByItsHash) {
  drifted_.setObject(memNum(), index(), newLeaf(1), true, tag(), hash(), true);
  drifted_.setObjectAccessor(nullptr, memNum(), index(), tag(), hash());
  EXPECT_EQ(ownedBy<XNMessageBase>(drifted_, "objectField"), nullptr);
}

TEST_F(ObjectAccessors, SetObjectAccessorFindsTheFieldByItsHash) {
  const std::unique_ptr<XNMessageBase> mine(newLeaf(1));
  drifted_.setObjectAccessor(mine.get(), memNum(), index(), tag(), hash());
  EXPECT_EQ(*ownedBy<XNMessageBase>(drifted_, "objectField"), *mine);
  EXPECT_TRUE(hasBit(drifted_, "objectField"));
}

TEST_F(ObjectAccessors, SetObjectAccessorOfABadMemNumOnlyLogs) {
  const std::unique_ptr<XNMessageBase> mine(newLeaf(1));
  LogCapture capture;
  message_.setObjectAccessor(mine.get(), -1, index(), tag(), 0);
  EXPECT_TRUE(capture.has("XNMessageBase::getObject", 0, invalidMember(message_, -1)));
  EXPECT_THROW(message_.setObjectAccessor(mine.get(), memNum(), index(), kForeignTag, kUnknownHash),
               ZqException);
  EXPECT_EQ(stored(), nullptr);
}

}  // namespace
}  // namespace zqxml
