// The set bits.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/message/accessor_texts.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>

namespace zqxml {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t kForeignTag = 0xc8abcdef;
constexpr std::uint32_t kUnknownHash = 0x123456;

class Bits : public ::testing::Test {
 protected:
  const FieldDef& field(const char* name) const { return fieldOf(message_, name); }
  std::uint32_t tag() const { return message_.getTagID(); }
  int positionOf(const char* name) const { return field(name).getMemNum(); }

  OpenMessage message_ = newMessage("Demo_EveryType");
};

TEST_F(Bits, SetFieldMarksAndTouchesNothingElse) {
  message_.setField(field("intField").getMemNum(), tag(), 0);
  EXPECT_TRUE(message_.isSet(field("intField").getMemNum(), tag(), 0));
  EXPECT_EQ(slotOf(message_, "intField"), 0);
}

TEST_F(Bits, UnsetFieldClearsAndTouchesNothingElse) {
  setInteger(message_, "intField", 5);
  message_.unsetField(field("intField").getMemNum(), tag(), 0);
  EXPECT_FALSE(message_.isSet(field("intField").getMemNum(), tag(), 0));
  EXPECT_EQ(slotOf(message_, "intField"), 5);
}

TEST_F(Bits, EachFieldHasItsOwn) {
  const int count = message_.getNumberOfFields();
  for (int marked = 0; marked < count; ++marked) {
    message_.setField(static_cast<short>(marked), tag(), 0);
    for (int other = 0; other < count; ++other)
      EXPECT_EQ(message_.isSet(static_cast<short>(other), tag(), 0), other == marked);
    message_.unsetField(static_cast<short>(marked), tag(), 0);
  }
}

TEST_F(Bits, ForeignTagFindsTheFieldByItsHash) {
  OpenMessage drifted = newMessage("Drift_Reversed");
  const FieldDef& meant = field("mapStringStringField");
  LogCapture capture;
  drifted.setField(meant.getMemNum(), tag(), meant.getFieldHashId());
  EXPECT_TRUE(hasBit(drifted, "mapStringStringField"));
  EXPECT_TRUE(drifted.isSet(meant.getMemNum(), tag(), meant.getFieldHashId()));
  drifted.unsetField(meant.getMemNum(), tag(), meant.getFieldHashId());
  EXPECT_FALSE(hasBit(drifted, "mapStringStringField"));
  EXPECT_FALSE(drifted.isSet(meant.getMemNum(), tag(), meant.getFieldHashId()));
  EXPECT_TRUE(capture.empty());
}

TEST_F(Bits, UnknownHashIsLoggedAndChangesNothing) {
  message_.setField(1, tag(), 0);
  LogCapture capture;
  EXPECT_FALSE(message_.isSet(1, kForeignTag, kUnknownHash));
  message_.setField(2, kForeignTag, kUnknownHash);
  message_.unsetField(1, kForeignTag, kUnknownHash);
  const std::string text = noSuchField(message_, kUnknownHash, kForeignTag);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XNMessageBase::isSet", 0, text},
                                           CapturedLine{"XNMessageBase::setField", 0, text},
                                           CapturedLine{"XNMessageBase::unsetField", 0, text}));
  EXPECT_TRUE(message_.isSet(1, tag(), 0));
  EXPECT_FALSE(message_.isSet(2, tag(), 0));
}

TEST_F(Bits, MemNumOutsideTheClassIsRefused) {
  for (const int memNum : {-1, message_.getNumberOfFields()}) {
    LogCapture capture;
    EXPECT_FALSE(message_.isSet(static_cast<short>(memNum), tag(), 0));
    message_.setField(static_cast<short>(memNum), tag(), 0);
    message_.unsetField(static_cast<short>(memNum), tag(), 0);
    const std::string text = invalidMember(message_, memNum);
    EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XNMessageBase::isSet", 0, text},
                                             CapturedLine{"XNMessageBase::setField", 0, text},
                                             CapturedLine{"XNMessageBase::unsetField", 0, text}));
  }
}

TEST_F(Bits, MessageWithoutAClassIsRefused) {
  OpenMessage none;
  LogCapture capture;
  EXPECT_FALSE(none.isSet(0, 0, 0));
  none.setField(0, 0, 0);
  none.unsetField(0, 0, 0);
  EXPECT_TRUE(capture.has("XNMessageBase::isSet", 0, invalidMember(none, 0)));
}

TEST_F(Bits, WalkersFormTellsHashNameAndBit) {
  message_.setField(field("intField").getMemNum(), tag(), 0);
  bool hasHash = false;
  std::string name = "before.";
  EXPECT_TRUE(message_.isSet(field("intField").getMemNum(), hasHash, name));
  EXPECT_TRUE(hasHash);
  EXPECT_EQ(name, "before.intField");
  EXPECT_FALSE(message_.isSet(field("uintField").getMemNum(), hasHash, name));
  EXPECT_EQ(name, "before.intFielduintField");
}

TEST_F(Bits, WalkersFormTellsOfAFieldWithoutAHash) {
  OpenMessage hidden = newMessage("Demo_Hashless");
  bool hasHash = true;
  std::string name;
  EXPECT_FALSE(hidden.isSet(fieldOf(hidden, "hiddenNumber").getMemNum(), hasHash, name));
  EXPECT_FALSE(hasHash);
  EXPECT_EQ(name, "hiddenNumber");
}

TEST_F(Bits, WalkersFormRefusesAPositionOutsideTheClass) {
  const int count = message_.getNumberOfFields();
  for (const int position : {-1, count}) {
    LogCapture capture;
    bool hasHash = true;
    std::string name = "kept";
    EXPECT_FALSE(message_.isSet(static_cast<short>(position), hasHash, name));
    EXPECT_EQ(name, "kept");
    EXPECT_THAT(
        capture.lines(),
        ElementsAre(CapturedLine{"XNMessageBase::isSet", 0,
                                 formatText("Invalid field Id [%d]. Total number of fields = [%d]. Message "
                                            "= [Demo_EveryType]",
                                            position, count)}));
  }
}

TEST_F(Bits, MemberTestBitOffClearsTheMember) {
  setInteger(message_, "intField", 5);
  message_.setMemberTestBit("intField", false);
  EXPECT_FALSE(hasBit(message_, "intField"));
  EXPECT_EQ(slotOf(message_, "intField"), 0);
}

TEST_F(Bits, MemberTestBitOfTheClassItselfIsSilent) {
  OpenMessage pair = newMessage("Demo_SelfPair");
  const FieldDef& first = XNMessageBase::GetClassDef(&pair)->getFields()[0];
  setInteger(pair, first.getName(), 5);
  LogCapture capture;
  for (const bool on : {true, false}) pair.setMemberTestBit("SelfPair", on);
  EXPECT_EQ(slotOf(pair, first.getName()), 5);
  EXPECT_TRUE(hasBit(pair, first.getName()));
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST_F(Bits, ForeignTagWithTheHashOfTheClassItselfFindsNothing) {
  OpenMessage pair = newMessage("Demo_SelfPair");
  const std::uint32_t hash = XNMessageBase::GetClassDef(&pair)->getFields()[2].getFieldHashId();
  LogCapture capture;
  pair.setField(0, kForeignTag, hash);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::setField", 0, noSuchField(pair, hash, kForeignTag)}));
  for (short position = 0; position < 3; ++position) EXPECT_FALSE(pair.isSet(position, pair.getTagID(), 0));
}

TEST_F(Bits, MemberTestBitOnIsRefused) {
  LogCapture capture;
  message_.setMemberTestBit("intField", true);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::setMemberTestBit", 0,
                                       "[You cannot enable a field without passing the value]"}));
  EXPECT_FALSE(hasBit(message_, "intField"));
}

TEST_F(Bits, MemberTestBitOfAnUnknownNameIsSilent) {
  OpenMessage none;
  LogCapture capture;
  for (const bool on : {true, false}) {
    message_.setMemberTestBit("noSuchField", on);
    message_.setMemberTestBit("", on);
    none.setMemberTestBit("intField", on);
  }
  EXPECT_THAT(capture.lines(), IsEmpty());
}

// All types that are primitive to the XML reader, and no list.
TEST_F(Bits, PrimitiveBitValueServesEveryPrimitiveThatIsNoList) {
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message_)) {
    const bool serves = kXmlPrimitiveTypes.contains(field.getType()) && !kListTypes.contains(field.getType());
    LogCapture capture;
    message_.setPrimitiveBitValue(field.getMemNum(), true);
    EXPECT_EQ(hasBit(message_, field.getName()), serves) << field.getName();
    message_.setField(field.getMemNum(), tag(), 0);
    message_.setPrimitiveBitValue(field.getMemNum(), false);
    EXPECT_EQ(hasBit(message_, field.getName()), !serves) << field.getName();
    EXPECT_EQ(
        capture.count("XNMessageBase::setPrimitiveBitValue", 0,
                      formatText("Received member [%s] is not a primitive type. Given member type is [%d]",
                                 field.getName(), field.getType())),
        serves ? 0u : 2u)
        << field.getName();
  }
}

TEST_F(Bits, KeepsRefusingTheBitOfAnUnsignedLonglong) {
  LogCapture capture;
  message_.setPrimitiveBitValue(positionOf("ulonglongField"), true);
  EXPECT_FALSE(hasBit(message_, "ulonglongField"));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{
                  "XNMessageBase::setPrimitiveBitValue", 0,
                  "Received member [ulonglongField] is not a primitive type. Given member type is [6]"}));
}

TEST_F(Bits, PrimitiveBitValueRefusesAPositionOutsideTheClass) {
  for (const int position : {-1, message_.getNumberOfFields()}) {
    LogCapture capture;
    message_.setPrimitiveBitValue(position, true);
    EXPECT_THAT(capture.lines(),
                ElementsAre(CapturedLine{
                    "XNMessageBase::setPrimitiveBitValue", 0,
                    formatText("Message [Demo_EveryType] does not have member [%d]", position)}));
  }
}

}  // namespace
}  // namespace zqxml
