// The texts that travel with a message: last error, kept XML, CDATA body; and the processing instruction of
// field 0.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/ZqEntities.h>

#include <memory>
#include <string>

namespace zqxml {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

// --- The last error.

TEST(LastError, IsEmptyUntilSet) {
  const XNMessageBase message;
  EXPECT_EQ(std::u16string(message.getLastErrorEnglishW()), u"");
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"");
}

TEST(LastError, IsFormattedFromNarrowAndWideText) {
  XNMessageBase message;
  message.setLastErrorEnglishA("%s: %d of %lld, %5.2f%%", "gr\u00fc\u00df", -3, 9000000000LL, 12.5);
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"gr\u00fc\u00df: -3 of 9000000000, 12.50%");
  EXPECT_EQ(std::u16string(message.getLastErrorEnglishW()), message.getLastErrorEnglishStrW());
  message.setLastErrorEnglishW(u"%ls \u2192 %d", u"wide \U0001f600", 7);
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"wide \U0001f600 \u2192 7");
}

TEST(LastError, IsReplacedByTheNextOne) {
  XNMessageBase message;
  message.setLastErrorEnglishA("first, and longer");
  message.setLastErrorEnglishA("second");
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"second");
  message.setLastErrorEnglishA("");
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"");
}

TEST(LastError, OfANullFormatStays) {
  XNMessageBase message;
  message.setLastErrorEnglishA("kept");
  message.setLastErrorEnglishA(nullptr);
  message.setLastErrorEnglishW(static_cast<const char16_t*>(nullptr), 5);
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"kept");
}

TEST(LastError, EndsAfter8191Characters) {
  XNMessageBase message;
  message.setLastErrorEnglishA("%s", std::string(9000, 'a'));
  EXPECT_EQ(message.getLastErrorEnglishStrW(), std::u16string(8191, u'a'));
  message.setLastErrorEnglishW(u"%ls", std::u16string(9000, u'\u00e4'));
  EXPECT_EQ(message.getLastErrorEnglishStrW(), std::u16string(8191, u'\u00e4'));
  message.setLastErrorEnglishA("%s", std::string(8191, 'b'));
  EXPECT_EQ(message.getLastErrorEnglishStrW().size(), 8191u);
}

TEST(LastError, KeepsTakingATextForAFormat) {
  XNMessageBase message;
  message.setLastErrorEnglishStrA("100%% of %s and %d, %n");
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"100% of %s and %d, ");
  message.setLastErrorEnglishStrW(u"\u00fc 5%%, %ls");
  EXPECT_EQ(message.getLastErrorEnglishStrW(), u"\u00fc 5%, %ls");
}

// --- The kept XML text.

TEST(KeptXml, IsEmptyUntilSet) {
  const OpenMessage message = newMessage("Demo_EveryChild");
  EXPECT_STREQ(message.getSerializedXMLString(), "");
  EXPECT_FALSE(message.isSerialized());
}

TEST(KeptXml, IsCopiedAndMarksOnlyWhenAsked) {
  OpenMessage message = newMessage("Demo_EveryChild");
  message.setSerializedXMLString("<a/>", false);
  EXPECT_STREQ(message.getSerializedXMLString(), "<a/>");
  EXPECT_FALSE(message.isSerialized());
  message.setSerializedXMLString("<b/>", true);
  EXPECT_TRUE(message.isSerialized());
  message.setSerializedXMLString("<c/>", false);  // leaves the mark as it was
  EXPECT_TRUE(message.isSerialized());
  EXPECT_STREQ(message.getSerializedXMLString(), "<c/>");
}

TEST(KeptXml, IsReachedByReference) {
  OpenMessage message = newMessage("Demo_EveryChild");
  message.getSerializedXMLStringRef() = "<a/>";
  EXPECT_STREQ(message.getSerializedXMLString(), "<a/>");
}

TEST(KeptXml, IsClearedWithItsMark) {
  OpenMessage message = newMessage("Demo_EveryChild");
  message.clearSerializedXMLString();
  message.setSerializedXMLString("<a/>", true);
  message.clearSerializedXMLString();
  EXPECT_STREQ(message.getSerializedXMLString(), "");
  EXPECT_FALSE(message.isSerialized());
}

TEST(KeptXml, IsGivenWhileTheMessageIsMarkedSerialized) {
  OpenMessage message = newMessage("Demo_EveryChild");
  setInteger(message, "number", 5);
  message.setSerializedXMLString("<stale/>", true);
  EXPECT_STREQ(message.getSerializedXMLString(false), "<stale/>");
}

TEST(KeptXml, IsMadeFromTheMessageOtherwise) {
  OpenMessage message = newMessage("Demo_EveryChild");
  setInteger(message, "number", 5);
  message.setSerializedXMLString("<stale/>", false);
  EXPECT_STREQ(message.getSerializedXMLString(true), "<Demo_EveryChild number=\"5\"/>");
  EXPECT_STREQ(message.getSerializedXMLString(), "<Demo_EveryChild number=\"5\"/>");
  EXPECT_THAT(message.getSerializedXMLString(false), StartsWith("<?xml "));
  EXPECT_FALSE(message.isSerialized());
  setInteger(message, "number", 6);
  EXPECT_STREQ(message.getSerializedXMLString(true), "<Demo_EveryChild number=\"6\"/>");
}

TEST(KeptXml, OfAMessageWithoutAClassIsEmpty) {
  OpenMessage none;
  LogCapture capture;
  EXPECT_STREQ(none.getSerializedXMLString(false), "");
  EXPECT_EQ(std::u16string(none.getSerializedXMLStringUTF16(false)), u"");
  EXPECT_EQ(none.AsString(), "");
}

TEST(KeptWideXml, IsMadeFromTheMessageUnlessItIsMarked) {
  OpenMessage message = newMessage("Demo_EveryChild");
  setInteger(message, "number", 5);
  EXPECT_EQ(std::u16string(message.getSerializedXMLStringUTF16(true)), u"<Demo_EveryChild number=\"5\"/>");
  setInteger(message, "number", 6);
  EXPECT_EQ(std::u16string(message.getSerializedXMLStringUnicode()), u"<Demo_EveryChild number=\"6\"/>");
  const std::u16string declared = message.getSerializedXMLStringUTF16();
  EXPECT_TRUE(declared.starts_with(u"<?xml "));
  EXPECT_EQ(std::u16string(message.getSerializedXMLStringUTF16(false)), declared);
}

TEST(KeptWideXml, KeepsItsTextWhileTheMessageIsMarkedSerialized) {
  OpenMessage message = newMessage("Demo_EveryChild");
  setInteger(message, "number", 5);
  const std::u16string first = message.getSerializedXMLStringUTF16(true);
  message.setSerialized(true);
  setInteger(message, "number", 6);
  EXPECT_EQ(std::u16string(message.getSerializedXMLStringUTF16(true)), first);
  OpenMessage marked = newMessage("Demo_EveryChild");
  marked.setSerialized(true);
  EXPECT_EQ(std::u16string(marked.getSerializedXMLStringUTF16(true)), u"");
}

TEST(MessageAsString, IsItsXmlWithADeclaration) {
  OpenMessage message = newMessage("Demo_EveryChild");
  setInteger(message, "number", 5);
  EXPECT_THAT(message.AsString(), StartsWith("<?xml "));
  EXPECT_THAT(message.AsString(), HasSubstr("<Demo_EveryChild number=\"5\"/>"));
}

// --- The CDATA body.

TEST(CdataBody, IsEmptyAndUnsetAtFirst) {
  const OpenMessage message = newMessage("Demo_EveryChild");
  EXPECT_EQ(message.getCDATABuffer(), "");
  EXPECT_FALSE(message.isCDATABufferSet());
}

TEST(CdataBody, IsSetWithItsFlag) {
  OpenMessage message = newMessage("Demo_EveryChild");
  message.setCDATABuffer("body");
  EXPECT_EQ(message.getCDATABuffer(), "body");
  EXPECT_TRUE(message.isCDATABufferSet());
}

TEST(CdataBody, IsResetToAnUnsetEmptyText) {
  OpenMessage message = newMessage("Demo_EveryChild");
  message.setCDATABuffer("body");
  message.resetCDATABuffer();
  EXPECT_EQ(message.getCDATABuffer(), "");
  EXPECT_FALSE(message.isCDATABufferSet());
  message.setCDATABuffer("again");
  EXPECT_TRUE(message.isCDATABufferSet());
}

// --- The processing instruction.

class ProcessingInstruction : public ::testing::Test {
 protected:
  bool isSet() const { return hasBit(message_, "processinginstructioninfo"); }
  const XNMessageBase* stored() const {
    return ownedBy<XNMessageBase>(message_, "processinginstructioninfo");
  }

  OpenMessage message_ = newMessage("Demo_EveryType");
};

TEST_F(ProcessingInstruction, IsANullSlotWhenUnset) {
  XNMessageBase*& slot = message_.getProcessinginstructioninfo(false);
  EXPECT_EQ(slot, nullptr);
  EXPECT_NE(static_cast<void*>(&slot), static_cast<void*>(&MessageAccess::slot(
                                           message_, fieldOf(message_, "processinginstructioninfo"))));
}

TEST_F(ProcessingInstruction, IsMadeAndMarkedWhenAsked) {
  XNMessageBase*& slot = message_.getProcessinginstructioninfo(true);
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(slot, stored());
  EXPECT_EQ(slot->getTagID(), 0x12454ea9u);
  EXPECT_TRUE(isSet());
  EXPECT_EQ(&message_.getProcessinginstructioninfo(true), &slot);
  EXPECT_EQ(&message_.getProcessinginstructioninfo(false), &slot);
}

TEST_F(ProcessingInstruction, IsMadeAnewInThePlaceOfAnUnsetOne) {
  const FieldDef& field = fieldOf(message_, "processinginstructioninfo");
  XNMessageBase* const unset = message_.getObjectAccessor(true, false, field.getMemNum(), field.getIndex(),
                                                          message_.getTagID(), 0, 18, 74);
  setText(*unset, "requestId", "old");
  ASSERT_FALSE(isSet());
  EXPECT_EQ(textOf(*message_.getProcessinginstructioninfo(true), "requestId"), "");
  EXPECT_TRUE(isSet());
}

TEST_F(ProcessingInstruction, SetterStoresACopyThenAssigns) {
  ZqEntities::ProcessingInstructionInfo info;
  message_.setProcessinginstructioninfo(&info);
  ASSERT_NE(stored(), nullptr);
  EXPECT_NE(stored(), &info);
  EXPECT_TRUE(isSet());
  const XNMessageBase* first = stored();
  message_.setProcessinginstructioninfo(&info);
  EXPECT_EQ(stored(), first);
}

TEST_F(ProcessingInstruction, SetterOfNullClearsIt) {
  message_.getProcessinginstructioninfo(true);
  message_.setProcessinginstructioninfo(nullptr);
  EXPECT_EQ(stored(), nullptr);
  EXPECT_FALSE(isSet());
}

TEST_F(ProcessingInstruction, IsRefusedInTwoSubsystemsEvenForAClassThatHasIt) {
  static constexpr FieldDef kField(
      "\x12\0\0\x4a"
      "processinginstructioninfo",
      nullptr, 0xcac2c9, 0, 0, 0, FDT_OBJECT);
  static constexpr _ClassDef kRecord("WithInstruction", &kField, 1, -1, 1, 1);
  const ZqEntities::ProcessingInstructionInfo info;
  for (const char* name : {"Demo_EveryChild", "ZqEntities_GenericEntity", "Annotation_Password"}) {
    const bool isTaken = name == std::string_view("Demo_EveryChild");
    OpenMessage message = newMessage(name);
    const LogCapture capture;
    const _ClassDef* own = MessageAccess::classDef(message);
    MessageAccess::setClassDef(message, &kRecord);
    EXPECT_EQ(message.getProcessinginstructioninfo(true) != nullptr, isTaken) << name;
    message.setProcessinginstructioninfo(&info);
    EXPECT_EQ(MessageAccess::slot(message, kField) != 0, isTaken) << name;
    message.setProcessinginstructioninfo(nullptr);
    MessageAccess::setClassDef(message, own);
  }
}

TEST_F(ProcessingInstruction, IsRefusedWhereItDoesNotBelong) {
  // Subsystems 18 and 27, a class without the field, one without fields, one of no class.
  ZqEntities::ProcessingInstructionInfo info;
  for (const char* name :
       {"ZqEntities_GenericEntity", "Annotation_Password", "Demo_EveryChild", "Demo_Empty"}) {
    OpenMessage message = newMessage(name);
    LogCapture capture;
    EXPECT_EQ(message.getProcessinginstructioninfo(true), nullptr) << name;
    EXPECT_TRUE(capture.empty()) << name;
    message.setProcessinginstructioninfo(&info);
    message.setProcessinginstructioninfo(nullptr);
    EXPECT_EQ(capture.count("XNMessageBase::setProcessinginstructioninfo", 0,
                            formatText("Calling this function on message [%s] is not valid", name)),
              2u)
        << name;
  }
  OpenMessage none;
  LogCapture capture;
  EXPECT_EQ(none.getProcessinginstructioninfo(true), nullptr);
  none.setProcessinginstructioninfo(&info);
  EXPECT_TRUE(capture.has("XNMessageBase::setProcessinginstructioninfo", 0,
                          "Calling this function on message [_NoMessage] is not valid"));
}

}  // namespace
}  // namespace zqxml
