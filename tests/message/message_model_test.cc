// What a message is when it is new, and how it keeps its slots.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/platform/exception.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace zqxml {
namespace {

using ::testing::ElementsAre;

XNMessageBuffer& bufferOf(XNMessageBase& message) {
  return MessageAccess::buffer(message);
}
/// Whether the field's slots lie inside the object itself.
bool isInline(XNMessageBase& message, const char* name) {
  const auto* slot = reinterpret_cast<const char*>(&MessageAccess::slot(message, fieldOf(message, name)));
  const auto* object = reinterpret_cast<const char*>(&message);
  return slot >= object && slot < object + sizeof message;
}

// --- At the limits of the slot store.

TEST(MessageModel, TwentyFourElementsAreInlineAndTwentyFiveAreNot) {
  OpenMessage small = newMessage("Demo_Elements24");
  EXPECT_EQ(bufferOf(small).slotCount(), 24);
  EXPECT_EQ(bufferOf(small).inlineCount(), 24);
  EXPECT_FALSE(bufferOf(small).hasExternalBlock());
  OpenMessage large = newMessage("Demo_Elements25");
  EXPECT_EQ(bufferOf(large).slotCount(), 25);
  EXPECT_TRUE(bufferOf(large).hasExternalBlock());
}

TEST(MessageModel, StringAcrossTheEndOfTheInlineSlotsLiesWhollyOutside) {
  OpenMessage message = newMessage("Demo_StringAt22");
  EXPECT_EQ(bufferOf(message).inlineCount(), 22);
  EXPECT_EQ(bufferOf(message).slotCount(), 27);
  std::vector<const FieldDef*> outside;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    EXPECT_EQ(isInline(message, field.getName()), field.getIndex() < 22) << field.getName();
    if (field.getIndex() >= 22) outside.push_back(&field);
  }
  ASSERT_EQ(outside.size(), 2u);
  EXPECT_EQ(outside[0]->getType(), FDT_STRING);
  EXPECT_EQ(outside[1]->getIndex(), 26);
  setText(message, outside[0]->getName(), "a text longer than a string holds inside");
  setInteger(message, outside[1]->getName(), -1);
  EXPECT_EQ(textOf(message, outside[0]->getName()), "a text longer than a string holds inside");
}

TEST(MessageModel, SetBitsOfEightFieldsTakeTwoBytes) {
  EXPECT_EQ(XNMessageBuffer::bitBytes(7), 1u);
  EXPECT_EQ(XNMessageBuffer::bitBytes(8), 2u);
  OpenMessage message = newMessage("Demo_Fields8");
  ASSERT_EQ(message.getNumberOfFields(), 8);
  for (short i = 0; i < 8; ++i) message.setField(i, message.getTagID(), 0);
  EXPECT_EQ(bufferOf(message).getIsSet()[0], 0xff);
  EXPECT_EQ(bufferOf(message).getIsSet()[1], 0);
}

TEST(MessageModel, FreshBstringExistsAndIsNotSet) {
  OpenMessage message = newMessage("Demo_EveryType");
  EXPECT_NE(slotOf(message, "bstringField"), 0);
  EXPECT_FALSE(message.isSet(fieldOf(message, "bstringField").getMemNum(), message.getTagID(), 0));
}

TEST(MessageModel, TagNameOfAnUnknownTagIsEmpty) {
  EXPECT_EQ(XNMessageBase::getTagNameFromTagID(0xca000001), "");
  EXPECT_EQ(XNMessageBase::getTagNameFromTagID(0), "");
}

TEST(MessageModel, KeepsTakingALastErrorTextForAFormat) {
  XNMessageBase message;
  message.setLastErrorEnglishStrA("100%% of %s");
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"100% of %s");
}

TEST(MessageModel, BstringKeepsItsNulBytes) {
  const std::string bytes("a\0b", 3);
  bstring value;
  value.assign(bytes.data(), 3);
  EXPECT_EQ(value.size(), 3u);
  value.append(bytes);
  value.append("\0", 1);
  EXPECT_EQ(value.size(), 7u);
  EXPECT_EQ(value, std::string("a\0ba\0b\0", 7));
  EXPECT_NE(value.compare(std::string("a")), 0);
  EXPECT_STREQ(value.c_str(), "a");
}

TEST(MessageModel, SubstringFromPastTheEndThrows) {
  const bstring bytes(std::string("abc"));
  const cdata text(std::string("abc"));
  EXPECT_EQ(bytes.substr(3, 1), bstring());
  EXPECT_THROW(bytes.substr(4, 1), std::out_of_range);
  EXPECT_THROW(text.substr(4, 1), std::out_of_range);
}

TEST(MessageModel, CdataIsSetOnlyByItsMessage) {
  EXPECT_TRUE(cdata().empty());
  XNMessageBase message;
  EXPECT_FALSE(message.isCDATABufferSet());
  message.setCDATABuffer("");
  EXPECT_TRUE(message.isCDATABufferSet());
}

template <class Text>
concept ComparesWhenConst = requires(const Text& text) {
  text.compare(text);
};
TEST(MessageModel, KeepsCompareOfTextsMutable) {
  EXPECT_FALSE(ComparesWhenConst<bstring>);
  EXPECT_FALSE(ComparesWhenConst<cdata>);
  bstring a(std::string("a"));
  cdata b(std::string("b"));
  EXPECT_LT(a.compare(bstring(std::string("b"))), 0);
  EXPECT_LT(a.compare(std::string("b")), 0);
  EXPECT_GT(b.compare(cdata(std::string("a"))), 0);
  EXPECT_GT(b.compare(std::string("a")), 0);
}

// --- Inline slots of other shapes.

TEST(MessageModel, FieldAtSlotTwentyFourEndsTheInlineSlots) {
  OpenMessage message = newMessage("Demo_Boundary24");
  EXPECT_EQ(bufferOf(message).inlineCount(), 24);
}

TEST(MessageModel, LastFieldAcrossTheEndStepsBackToIt) {
  OpenMessage message = newMessage("Demo_StringAt22Last");
  EXPECT_EQ(bufferOf(message).inlineCount(), 22);
  EXPECT_EQ(bufferOf(message).slotCount(), 26);
}

TEST(MessageModel, KeepsAllSlotsOutsideWhenOnlyTheSelfRecordIsLeftToStepBackTo) {
  OpenMessage message = newMessage("Demo_SelfAfterString22");
  EXPECT_EQ(bufferOf(message).inlineCount(), 0);
  EXPECT_TRUE(bufferOf(message).hasExternalBlock());
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (field.getType() == FDT_INT) setInteger(message, field.getName(), field.getMemNum());
  }
  EXPECT_EQ(slotOf(message, "i21"), 21);
}

TEST(MessageModel, ClassWithoutFieldsHasNoSlots) {
  OpenMessage message = newMessage("Demo_Empty");
  EXPECT_EQ(bufferOf(message).slotCount(), 0);
  EXPECT_FALSE(bufferOf(message).hasExternalBlock());
  EXPECT_EQ(message.getNumberOfFields(), 0);
}

TEST(MessageModel, ObjectHasOneSize) {
  // 204 bytes of slots and bits, five owned texts, and the numbers; a growth shows up in every live object.
  EXPECT_LE(sizeof(XNMessageBase), 320u);
}

// --- What exists in a new message.

TEST(NewMessage, HoldsTheNumbersOfItsClass) {
  const ClassIndices indices = classNamed("Demo_EveryType");
  OpenMessage message(indices.subsystem, indices.index);
  EXPECT_EQ(message.getTagID(), (std::uint32_t{202} << 24) | nameHash("EveryType"));
  EXPECT_EQ(message.getSubsysID(), 202);
  EXPECT_EQ(message.getMessageIndex(), indices.index);
  EXPECT_EQ(message.getTagName(), "Demo_EveryType");
  EXPECT_STREQ(message.getSubsystemName(), "Demo");
  EXPECT_EQ(message.getNumberOfFields(), indices.record().getNumberOfFields());
  EXPECT_EQ(XNMessageBase::GetClassDef(&message), &indices.record());
  EXPECT_EQ(message.GetCachedSize(), 0u);
  EXPECT_FALSE(message.isSerialized());
}

TEST(NewMessage, HasTextsAndNothingElse) {
  OpenMessage message = newMessage("Demo_EveryType");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    EXPECT_FALSE(hasBit(message, field.getName())) << field.getName();
    const bool exists = visitStorage(
        field.getType(), Overloaded{[]<class E>(InPlace<E>) { return true; },
                                    []<class E>(Owned<E>) { return true; }, [](auto) { return false; }});
    EXPECT_EQ(slotOf(message, field.getName()) != 0, exists) << field.getName();
  }
  EXPECT_EQ(textOf(message, "stringField"), "");
  EXPECT_TRUE(ownedBy<bstring>(message, "bstringField")->empty());
  EXPECT_TRUE(ownedBy<pstring>(message, "pstringField")->empty());
  EXPECT_EQ(ownedBy<pstring>(message, "pstringField")->getEncryptionType(), 1);
}

TEST(NewMessage, BuildsTextsOfFieldsWithoutAHashToo) {
  OpenMessage message = newMessage("Demo_Hashless");
  const FieldDef& field = fieldOf(message, "hiddenText");
  message.setstring(field.getMemNum(), field.getIndex(), "hidden", message.getTagID(), 0);
  EXPECT_EQ(textOf(message, "hiddenText"), "hidden");
}

TEST(NewMessage, CachedSizeIsKept) {
  XNMessageBase message;
  message.SetCachedSize(77);
  EXPECT_EQ(message.GetCachedSize(), 77u);
}

TEST(NewMessage, XmlWriteFlagIsAlwaysFalse) {
  XNMessageBase message;
  message.setXmlWriteFlag(true);
  EXPECT_FALSE(message.getXmlWriteFlag());
}

TEST(NewMessage, IndicesWithoutARecordGiveAMessageWithoutAClass) {
  for (const auto& [subsystem, index] :
       {std::pair{0, 0}, {202, 59}, {202, 60}, {207, 0}, {-1, 0}, {202, -1}}) {
    const OpenMessage message(subsystem, index);
    if (catalogue::classAt(subsystem, index) != nullptr) continue;  // a record without name and fields
    EXPECT_EQ(XNMessageBase::GetClassDef(&message), nullptr) << subsystem << '/' << index;
  }
}

TEST(MessageWithoutAClass, HasNoNameAndNoFields) {
  const OpenMessage message;
  EXPECT_EQ(message.getTagID(), 0u);
  EXPECT_EQ(message.getTagName(), "_NoMessage");
  EXPECT_STREQ(message.getSubsystemName(), "");
  EXPECT_EQ(message.getNumberOfFields(), 0);
  EXPECT_EQ(XNMessageBase::GetClassDef(&message), nullptr);
}

// --- Old-way subsystems: everything is built and set.

TEST(NewOldWayMessage, HasEveryListSetAndNoMapAndNoProcessingInstruction) {
  OpenMessage message = newMessage("ZqDFMImport_DfmEveryType");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    const bool list = visitStorage(
        field.getType(), Overloaded{[]<class E>(List<E>) { return true; }, [](auto) { return false; }});
    const bool map = kMapTypes.contains(field.getType());
    const bool info = std::string_view(field.getName()) == "processinginstructioninfo";
    EXPECT_EQ(hasBit(message, field.getName()), !map && !info) << field.getName();
    if (!list && !map && field.getType() != FDT_OBJECT) continue;
    EXPECT_EQ(slotOf(message, field.getName()) != 0, !map && !info) << field.getName();
  }
}

TEST(NewOldWayMessage, HasTheListsThatNoRealFieldHas) {
  OpenMessage message = newMessage("ZqDFMImport_OldLists");
  for (const char* name : {"numbers", "flags", "bytes"}) {
    EXPECT_NE(slotOf(message, name), 0) << name;
    EXPECT_TRUE(hasBit(message, name)) << name;
  }
  EXPECT_EQ(slotOf(message, "map"), 0);
  EXPECT_FALSE(hasBit(message, "map"));
}

TEST(NewOldWayMessage, BuildsItsTreeButNothingOfFieldsWithoutAHash) {
  OpenMessage message = newMessage("ZqDFMImport_OldTree");
  const auto* branch = ownedBy<XNMessageBase>(message, "branch");
  ASSERT_NE(branch, nullptr);
  EXPECT_TRUE(hasBit(message, "branch"));
  const auto* leaf = ownedBy<XNMessageBase>(*branch, "leaf");
  ASSERT_NE(leaf, nullptr);
  EXPECT_TRUE(hasBit(*leaf, "number"));
  EXPECT_TRUE(hasBit(*branch, "leaves"));
  for (const char* name : {"hiddenBranch", "hiddenList", "processinginstructioninfo"}) {
    EXPECT_EQ(slotOf(message, name), 0) << name;
    EXPECT_FALSE(hasBit(message, name)) << name;
  }
}

TEST(NewOldWayMessage, StopsAtAClassThatIsNotOldWay) {
  OpenMessage message = newMessage("ZqDFMImport_OldHolder");
  const auto* nest = ownedBy<XNMessageBase>(message, "nest");
  ASSERT_NE(nest, nullptr);
  EXPECT_TRUE(hasBit(message, "nest"));
  for (const FieldDef& field : *XNMessageBase::GetClassDef(nest)) {
    EXPECT_EQ(slotOf(*nest, field.getName()), 0) << field.getName();
    EXPECT_FALSE(hasBit(*nest, field.getName())) << field.getName();
  }
}

TEST(NewOldWayMessage, KeepsLosingTheDefaultOfABstring) {
  OpenMessage message = newMessage("ZqDFMImport_OldLeaf");
  EXPECT_EQ(ownedBy<bstring>(message, "bytes")->str(), "");
  EXPECT_TRUE(hasBit(message, "bytes"));
  EXPECT_TRUE(hasBit(message, "password"));
}

// --- A block of the caller's.

TEST(CallersBlock, HoldsSlotsAndBits) {
  const ClassIndices indices = classNamed("Demo_EveryType");
  const short slots = indices.record().getNumberOfElements();
  std::vector<std::int64_t> block(static_cast<std::size_t>(slots) + 16, -1);
  const int bytes = (slots + 8) * 8;
  OpenMessage message(indices.subsystem, indices.index, block.data(), bytes);
  EXPECT_TRUE(bufferOf(message).usesCallerBlock());
  EXPECT_EQ(bufferOf(message).inlineCount(), 0);
  const FieldDef& field = fieldOf(message, "intField");
  EXPECT_EQ(&MessageAccess::slot(message, field), block.data() + field.getIndex());
  EXPECT_EQ(bufferOf(message).getIsSet(), reinterpret_cast<unsigned char*>(block.data() + slots));
  setInteger(message, "intField", 77);
  EXPECT_EQ(block[static_cast<std::size_t>(field.getIndex())], 77);
  // The given bytes are zeroed, those behind them are not.
  EXPECT_EQ(block[static_cast<std::size_t>(slots) + 7], 0);
  EXPECT_EQ(block[static_cast<std::size_t>(slots) + 8], -1);
}

TEST(CallersBlock, CopyHasStorageOfItsOwn) {
  const ClassIndices indices = classNamed("Demo_EveryChild");
  std::array<std::int64_t, 32> block{};
  auto original = std::make_unique<OpenMessage>(indices.subsystem, indices.index, block.data(),
                                                static_cast<int>(sizeof block));
  setInteger(*original, "number", 5);
  setText(*original, "text", "a text longer than a string holds inside");
  const XNMessageBase copy(*original);
  original.reset();
  block.fill(-1);
  EXPECT_EQ(slotOf(copy, "number"), 5);
  EXPECT_EQ(textOf(copy, "text"), "a text longer than a string holds inside");
}

TEST(CallersBlock, KeepsNotScalingTheSlotsWhenItChecksTheSize) {
  const ClassIndices indices = classNamed("Demo_Fields8");
  const int smallest = indices.record().getNumberOfElements() + 8 / 8 + 1;
  std::array<std::int64_t, 32> block{};
  OpenMessage message(indices.subsystem, indices.index, block.data(), smallest);
  EXPECT_FALSE(bufferOf(message).usesCallerBlock());  // passes the check, and would not hold the slots
  setInteger(message, "i07", 7);
  EXPECT_EQ(block, (std::array<std::int64_t, 32>{}));

  LogCapture capture;
  try {
    OpenMessage refused(indices.subsystem, indices.index, block.data(), smallest - 1);
    FAIL() << "no exception";
  } catch (const ZqException& error) {
    EXPECT_EQ(error.function(), "XNMessageBase::initialize");
    EXPECT_EQ(error.text(), "Size of buffer provided is not sufficient");
    EXPECT_EQ(error.file(), "");
    EXPECT_EQ(error.line(), -1);
    EXPECT_EQ(error.code(), -1);
  }
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XNMessageBase::initialize", 0,
                                                        "[Size of buffer provided is not sufficient]"}));
}

TEST(CallersBlock, OfExactlyTheNeededBytesIsUsed) {
  const ClassIndices indices = classNamed("Demo_Fields8");
  std::array<std::int64_t, 9> block{};
  OpenMessage exact(indices.subsystem, indices.index, block.data(), 8 * 8 + 2);
  EXPECT_TRUE(bufferOf(exact).usesCallerBlock());
  OpenMessage short1(indices.subsystem, indices.index, block.data(), 8 * 8 + 1);
  EXPECT_FALSE(bufferOf(short1).usesCallerBlock());
}

}  // namespace
}  // namespace zqxml
