// Clearing: one member, a whole message; and the defaults of the catalogue.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/hand_made_class.h>
#include <tests/message/accessor_texts.h>
#include <tests/message/collection_families.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>

#include <bit>
#include <new>

namespace zqxml {
namespace {

using ::testing::ElementsAre;

void deleteMember(OpenMessage& message, const char* name, bool destroy = false) {
  message.deleteMember(fieldOf(message, name).getMemNum(), message.getTagID(), 0, destroy);
}

template <class... Handlers>
bool storageIs(const FieldDef& field, Handlers... handlers) {
  return visitStorage(field.getType(), Overloaded{handlers..., [](auto) { return false; }});
}
bool isScalar(const FieldDef& field) {
  return storageIs(field, []<class E>(Scalar<E>) { return true; });
}
bool isText(const FieldDef& field) {
  return storageIs(
      field, []<class E>(InPlace<E>) { return true; }, []<class E>(Owned<E>) { return true; });
}

// --- Bullets on clearing and defaults.

TEST(ClearedMember, SetNumberLosesValueAndBitAndKeepsTheBitOfZero) {
  OpenMessage message = newMessage("Demo_EveryType");
  setInteger(message, "intField", 5);
  deleteMember(message, "intField");
  EXPECT_EQ(slotOf(message, "intField"), 0);
  EXPECT_FALSE(hasBit(message, "intField"));
  setInteger(message, "intField", 0);
  deleteMember(message, "intField");
  EXPECT_TRUE(hasBit(message, "intField"));
}

TEST(ResetMessage, KeepsADefaultPresentAndNotSet) {
  OpenMessage message = newMessage("Demo_Defaults");
  EXPECT_TRUE(hasBit(message, "intField"));  // where a fresh one has it set
  setInteger(message, "intField", 77);
  message.reset();
  EXPECT_EQ(slotOf(message, "intField"), -1);
  EXPECT_FALSE(message.isSet(fieldOf(message, "intField").getMemNum(), message.getTagID(), 0));
}

TEST(Defaults, BoolIsTrueInWhateverCase) {
  const OpenMessage message = newMessage("Demo_Defaults");
  EXPECT_EQ(slotOf(message, "boolTrue"), 1);  // "True"
  EXPECT_EQ(slotOf(message, "boolFalse"), 0);
}

TEST(Defaults, KeepsLosingThatOfABstringInAnOldWayClass) {
  const OpenMessage message = newMessage("ZqDFMImport_OldLeaf");
  EXPECT_TRUE(ownedBy<bstring>(message, "bytes")->empty());
  EXPECT_TRUE(hasBit(message, "bytes"));
}

// --- One member, type by type.

TEST(ClearedMember, OfEveryTypeIsGoneWithItsBit) {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    const bool wasSet = hasBit(message, field.getName());
    EXPECT_EQ(wasSet, std::string_view(field.getName()) != "processinginstructioninfo");
    message.deleteMember(field.getMemNum(), message.getTagID(), 0, false);
    EXPECT_FALSE(hasBit(message, field.getName())) << field.getName();
    if (!isText(field)) {
      EXPECT_EQ(slotOf(message, field.getName()), 0) << field.getName();
    }
  }
  EXPECT_EQ(textOf(message, "stringField"), "");
  EXPECT_TRUE((MessageAccess::inPlace<std::u16string>(message, fieldOf(message, "wstringField")).empty()));
  EXPECT_TRUE(ownedBy<bstring>(message, "bstringField")->empty());
  EXPECT_TRUE(ownedBy<pstring>(message, "pstringField")->empty());
}

TEST(ClearedMember, PasswordIsKeptAsAnEmptyPlainOne) {
  OpenMessage message = newMessage("Demo_EveryType");
  pstring* password = MessageAccess::owned<pstring>(message, fieldOf(message, "pstringField"));
  *password = pstring(std::string("stored"), 5);
  deleteMember(message, "pstringField");
  EXPECT_EQ(MessageAccess::owned<pstring>(message, fieldOf(message, "pstringField")), password);
  EXPECT_TRUE(password->empty());
  EXPECT_EQ(password->getEncryptionType(), 1);
}

TEST(ClearedMember, TextsLoseTheirBitInAnyCase) {
  for (const char* name : {"stringField", "wstringField", "bstringField", "pstringField"}) {
    OpenMessage message = newMessage("Demo_EveryType");
    setBit(message, name);
    deleteMember(message, name);
    EXPECT_FALSE(hasBit(message, name)) << name;
  }
}

TEST(ClearedMember, KeepsTheBitWhereNothingIsOwned) {
  OpenMessage message = newMessage("Demo_EveryType");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (isText(field)) continue;
    setBit(message, field.getName());
    message.deleteMember(field.getMemNum(), message.getTagID(), 0, false);
    EXPECT_TRUE(hasBit(message, field.getName())) << field.getName();
  }
}

TEST(ClearedMember, DestroyEndsBstringAndPassword) {
  OpenMessage message = newMessage("Demo_EveryType");
  for (const char* name : {"bstringField", "pstringField"}) {
    setBit(message, name);
    deleteMember(message, name, true);
    EXPECT_EQ(slotOf(message, name), 0) << name;
    EXPECT_FALSE(hasBit(message, name)) << name;
  }
}

TEST(ClearedMember, DestroyEndsTextsInPlace) {
  OpenMessage message = newMessage("Demo_EveryType");
  setText(message, "stringField", "a text longer than a string holds inside");
  deleteMember(message, "stringField", true);  // a sanitizer build sees a text that is not freed
  EXPECT_FALSE(hasBit(message, "stringField"));
  ::new (&MessageAccess::slot(message, fieldOf(message, "stringField"))) std::string();
}

TEST(ClearedMember, WithoutContentKeepsItsBit) {
  OpenMessage message = newMessage("Demo_Reserved29");
  setBit(message, "reserved");
  deleteMember(message, "reserved");
  EXPECT_TRUE(hasBit(message, "reserved"));
}

TEST(ClearedMember, ForeignTagFindsTheFieldByItsHash) {
  OpenMessage drifted = newMessage("Drift_Reversed");
  const ClassIndices base = classNamed("Demo_EveryType");
  const FieldDef& field = fieldOf(base.record(), "intField");
  setInteger(drifted, "intField", 5);
  drifted.deleteMember(field.getMemNum(), base.tag(), field.getFieldHashId(), false);
  EXPECT_FALSE(hasBit(drifted, "intField"));
  EXPECT_EQ(slotOf(drifted, "intField"), 0);
}

TEST(ClearedMember, FailuresAreLogged) {
  OpenMessage message = newMessage("Demo_EveryType");
  LogCapture capture;
  message.deleteMember(-1, message.getTagID(), 0, false);
  message.deleteMember(1, 0xc8abcdef, 0x123456, false);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::deleteMember", 0, invalidMember(message, -1)},
                          CapturedLine{"XNMessageBase::deleteMember", 0,
                                       noSuchField(message, 0x123456, 0xc8abcdef)}));
}

// --- Defaults, type by type.

TEST(Defaults, AreReadByTypeAndSet) {
  const OpenMessage message = newMessage("Demo_Defaults");
  struct Number {
    const char* name;
    std::int64_t value;
  };
  constexpr Number kNumbers[] = {{"intField", -1},
                                 {"uintField", 4294967295},
                                 {"longField", -2147483648LL},
                                 {"ulongField", 2},
                                 {"longlongField", -9223372036854775807LL},
                                 {"ulonglongField", 9223372036854775807LL},
                                 {"boolTrue", 1},
                                 {"boolFalse", 0},
                                 {"enumField", 2},
                                 {"time32Field", 86400},
                                 {"time64Field", 1577836800}};
  for (const auto& [name, value] : kNumbers) EXPECT_EQ(slotOf(message, name), value) << name;
  EXPECT_EQ(std::bit_cast<double>(slotOf(message, "doubleField")), 1500.0);
  EXPECT_EQ(std::bit_cast<float>(static_cast<std::uint32_t>(slotOf(message, "floatField"))), 0.25f);
  EXPECT_EQ(textOf(message, "stringField"), "a<b");
  OpenMessage copy(message);
  EXPECT_EQ(MessageAccess::inPlace<std::u16string>(copy, fieldOf(copy, "wstringField")),
            u"Z\u00fcrich \u20ac");
  EXPECT_EQ(ownedBy<bstring>(message, "bstringField")->str(), "bytes");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    EXPECT_EQ(hasBit(message, field.getName()), std::string_view(field.getName()) != "without")
        << field.getName();
  }
}

TEST(Defaults, OfAFieldWithoutAHashIsConsumedAndNotWritten) {
  const OpenMessage message = newMessage("Demo_Hashless");
  EXPECT_EQ(slotOf(message, "hiddenDefault"), 0);
  EXPECT_FALSE(hasBit(message, "hiddenDefault"));
  EXPECT_EQ(slotOf(message, "last"), 8);  // the next entry is that of the next field
  EXPECT_TRUE(hasBit(message, "last"));
}

TEST(Defaults, OfTheClassesThatOthersRelyOn) {
  const OpenMessage request = newMessage("ZQGui_EZGetTapeLibrariesReq");
  const FieldDef& field = XNMessageBase::GetClassDef(&request)->getFields()[4];
  EXPECT_EQ(slotOf(request, field.getName()), 0);
  EXPECT_TRUE(hasBit(request, field.getName()));
}

// --- A whole message.

TEST(ResetMessage, HasNothingSetAndNothingOwnedButTexts) {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  message.reset();
  const OpenMessage fresh = newMessage("Demo_EveryType");
  EXPECT_TRUE(message == fresh);
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    EXPECT_FALSE(hasBit(message, field.getName())) << field.getName();
    if (isScalar(field)) {
      EXPECT_EQ(slotOf(message, field.getName()), 0) << field.getName();
    }
  }
}

TEST(ResetMessage, HasItsDefaultsButForThatOfABstring) {
  OpenMessage message = newMessage("Demo_Defaults");
  setText(message, "stringField", "other");
  setInteger(message, "without", 5);
  message.reset();
  EXPECT_EQ(textOf(message, "stringField"), "a<b");
  EXPECT_EQ(slotOf(message, "boolTrue"), 1);
  EXPECT_EQ(slotOf(message, "without"), 0);
  EXPECT_EQ(ownedBy<bstring>(message, "bstringField")->str(), "");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message))
    EXPECT_FALSE(hasBit(message, field.getName())) << field.getName();
}

TEST(ResetMessage, KeepsTheBitOfAFieldWithoutAHashAndOfAnAbsentList) {
  OpenMessage message = newMessage("Demo_Hashless");
  setInteger(message, "hiddenNumber", 0);
  setBit(message, "hiddenList");
  message.reset();
  EXPECT_TRUE(hasBit(message, "hiddenNumber"));
  EXPECT_TRUE(hasBit(message, "hiddenList"));
}

TEST(ResetMessage, OfAnOldWayClassIsBuiltAndSetAgain) {
  OpenMessage message = newMessage("ZqDFMImport_OldTree");
  setText(message, "text", "changed");
  deleteMember(message, "branch");
  message.reset();
  const OpenMessage fresh = newMessage("ZqDFMImport_OldTree");
  EXPECT_TRUE(message == fresh);
  EXPECT_EQ(textOf(message, "text"), "default");
  EXPECT_TRUE(hasBit(message, "text"));
  EXPECT_NE(slotOf(message, "branch"), 0);
}

TEST(ResetMessage, OfAnOldWayClassHasEmptyListsAndTexts) {
  OpenMessage message = newMessage("ZqDFMImport_DfmEveryType");
  const OpenMessage fresh = newMessage("ZqDFMImport_DfmEveryType");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message))
    if (field.getType() == FDT_LIST_INT)
      collectionOf<std::vector<std::int32_t>>(message, field.getName()) = {1, 2};
  message.reset();
  EXPECT_TRUE(message == fresh);
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message))
    EXPECT_EQ(hasBit(message, field.getName()), hasBit(fresh, field.getName())) << field.getName();
}

TEST(ResetMessage, WithoutAClassDoesNothing) {
  OpenMessage none;
  LogCapture capture;
  none.reset();
  EXPECT_TRUE(capture.empty());
}

TEST(ResetMessage, InACallersBlockGoesOnInIt) {
  const ClassIndices indices = classNamed("Demo_EveryChild");
  std::array<std::int64_t, 32> block{};
  OpenMessage message(indices.subsystem, indices.index, block.data(), static_cast<int>(sizeof block));
  setText(message, "text", "a text longer than a string holds inside");
  message.reset();
  EXPECT_TRUE(MessageAccess::buffer(message).usesCallerBlock());
  setText(message, "text", "again");
  EXPECT_EQ(textOf(message, "text"), "again");
}

TEST(WipedBits, LeaveTheValues) {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  MessageAccess::wipeBitset(message);
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message))
    EXPECT_FALSE(hasBit(message, field.getName())) << field.getName();
  EXPECT_EQ(slotOf(message, "longField"), -7);
  EXPECT_EQ(ownedBy<std::vector<std::int32_t>>(message, "listIntField")->size(), 3u);
}

// --- Types that store nothing: no schema has a field of them.

TEST(TypesWithoutContent, AreCopiedNowhereAndEqualNothing) {
  for (const FieldDataType type :
       {FDT_RESERVED_24, FDT_RESERVED_29, FDT_ENUM_VALUE, FDT_INT64, static_cast<FieldDataType>(43)}) {
    HandMadeClass record;
    record.field(FDT_INT, "number").field(type, "nothing");
    OpenMessage a = record.message();
    OpenMessage b = record.message();
    setInteger(a, "number", 5);
    setInteger(b, "number", 5);
    EXPECT_TRUE(a == b) << type;
    setBit(a, "nothing");
    EXPECT_FALSE(a == b) << type;
    setBit(b, "nothing");
    EXPECT_FALSE(a == b) << type;
    EXPECT_FALSE(a == a) << type;
    b = static_cast<const OpenMessage&>(a);
    EXPECT_FALSE(hasBit(b, "nothing")) << type;
    EXPECT_EQ(slotOf(b, "number"), 5) << type;
    a.deleteMember(1, a.getTagID(), 0, false);
    EXPECT_TRUE(hasBit(a, "nothing")) << type;
  }
}

}  // namespace
}  // namespace zqxml
