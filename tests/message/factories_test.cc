// Making messages from tag ids, references and indices; and what a tag tells without a message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/ZqEntities.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <string>

namespace zqxml {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t kUnknownTag = 0xca000001;

std::unique_ptr<XNMessageBase> owned(XNMessageBase* message) {
  return std::unique_ptr<XNMessageBase>(message);
}

TEST(CreateObject, MakesAMessageOfTheTag) {
  for (const bool unused : {false, true}) {
    const auto message = owned(XNMessageBase::createObject(classNamed("Demo_EveryType").tag(), unused));
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->getTagName(), "Demo_EveryType");
  }
}

TEST(CreateObject, OfAnUnknownTagIsNullAndLogged) {
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::createObject(kUnknownTag), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::createObject", 0,
                                       "TagId : [3388997633] could not be resolved to a message."}));
}

TEST(CreateObjectFromClassId, MakesAMessageOfTheReference) {
  for (const bool unused : {false, true}) {
    const auto message = owned(XNMessageBase::createObjectFromClassID("\x12\x00\x00\x4a", unused));
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->getTagID(), 0x12454ea9u);
  }
}

TEST(CreateObjectFromClassId, OfNullIsNullWithoutAWord) {
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::createObjectFromClassID(nullptr), nullptr);
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(CreateObjectFromClassId, OfASlotBeyondTheTableIsNullAndLogged) {
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::createObjectFromClassID("\xcf\x00\x01\x02"), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{
                  "XNMessageBase::createObjectFromClassID", 0,
                  "Error instantiating XNMessageBase with msgSysIndex : [207], msgIndex : [258]"}));
}

TEST(CreateObjectFromClassId, OfAMissingRecordIsAMessageWithoutAClass) {
  const auto message = owned(XNMessageBase::createObjectFromClassID("\x12\xff\xff\xff"));
  ASSERT_NE(message, nullptr);
  EXPECT_EQ(XNMessageBase::GetClassDef(message.get()), nullptr);
}

TEST(CreateObjectFromIndices, MakesAMessage) {
  ClassIndices indices = classNamed("Demo_EveryChild");
  const auto message = owned(XNMessageBase::createObjectFromIndices(indices.subsystem, indices.index));
  EXPECT_EQ(message->getTagName(), "Demo_EveryChild");
  short nowhere = 24;
  int index = 0;
  EXPECT_EQ(XNMessageBase::GetClassDef(owned(XNMessageBase::createObjectFromIndices(nowhere, index)).get()),
            nullptr);
}

TEST(CreateUnlessProcessingInstruction, MakesEverythingElse) {
  const auto message =
      owned(XNMessageBase::createFromClassIDIfNotProcessingInstructionInfo("\x12\x00\x00\x42"));
  ASSERT_NE(message, nullptr);
  EXPECT_EQ(message->getTagName(), "ZqEntities_GenericEntity");
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::createFromClassIDIfNotProcessingInstructionInfo("\x12\x00\x00\x4a"), nullptr);
  EXPECT_EQ(XNMessageBase::createFromClassIDIfNotProcessingInstructionInfo(nullptr), nullptr);
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(CreateUnlessProcessingInstruction, LogsAReferenceWithoutATag) {
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::createFromClassIDIfNotProcessingInstructionInfo("\xd0\x00\x00\x03"), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::createFromClassIDIfNotProcessingInstructionInfo", 0,
                                       "Error retrieving tagID with msgSysIndex : [208], msgIndex : [3]"}));
  capture.clear();
  // Slot 207 has a tag and no records.
  EXPECT_EQ(XNMessageBase::createFromClassIDIfNotProcessingInstructionInfo("\xcf\x00\x00\x03"), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{
                  "XNMessageBase::createObjectFromClassID", 0,
                  "Error instantiating XNMessageBase with msgSysIndex : [207], msgIndex : [3]"}));
}

class ConstructObject : public ::testing::Test {
 protected:
  ~ConstructObject() override { delete out_; }

  const std::uint32_t tag_ = classNamed("Demo_EveryChild").tag();
  XNMessageBase* out_ = nullptr;
  std::string error_ = "untouched";
};

TEST_F(ConstructObject, OfAnUnknownTagFails) {
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::ConstructObject(kUnknownTag, nullptr, out_, false, error_), XN_MSG_FAILED);
  EXPECT_EQ(out_, nullptr);
  EXPECT_EQ(error_, "Unable to construct object with tagID : [3388997633]");
}

TEST_F(ConstructObject, ParsesItsXml) {
  EXPECT_EQ(XNMessageBase::ConstructObject(tag_, "<Demo_EveryChild number=\"5\"/>", out_, true, error_),
            XN_MSG_OK);
  ASSERT_NE(out_, nullptr);
  EXPECT_EQ(slotOf(*out_, "number"), 5);
  EXPECT_EQ(error_, "untouched");
}

TEST_F(ConstructObject, OfXmlThatDoesNotParseFails) {
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::ConstructObject(tag_, "<Demo_EveryChild", out_, true, error_), XN_MSG_FAILED);
  EXPECT_EQ(out_, nullptr);
  EXPECT_EQ(error_, "Unserialization failed for given xml : [<Demo_EveryChild]");
}

TEST_F(ConstructObject, OfNullToParseFails) {
  EXPECT_EQ(XNMessageBase::ConstructObject(tag_, nullptr, out_, true, error_), XN_MSG_FAILED);
  EXPECT_EQ(out_, nullptr);
  EXPECT_EQ(error_, "Received NULL string for unserialization");
}

TEST_F(ConstructObject, KeepsXmlThatIsNotToBeParsed) {
  EXPECT_EQ(XNMessageBase::ConstructObject(tag_, "not <parsed", out_, false, error_), XN_MSG_OK);
  ASSERT_NE(out_, nullptr);
  EXPECT_STREQ(out_->getSerializedXMLString(), "not <parsed");
  EXPECT_FALSE(out_->isSerialized());
}

TEST_F(ConstructObject, WithoutXmlIsAnEmptyMessage) {
  EXPECT_EQ(XNMessageBase::ConstructObject(tag_, nullptr, out_, false, error_), XN_MSG_OK);
  ASSERT_NE(out_, nullptr);
  EXPECT_STREQ(out_->getSerializedXMLString(), "");
}

TEST_F(ConstructObject, FromSlotAndClassIdFormsTheTag) {
  EXPECT_EQ(XNMessageBase::constructObject(tag_ >> 24, tag_ & 0xffffff, nullptr, out_, false, error_),
            XN_MSG_OK);
  ASSERT_NE(out_, nullptr);
  EXPECT_EQ(out_->getTagID(), tag_);
}

TEST(MessageStartUp, AnswersTheStartOfTheXmlLibrary) {
  EXPECT_EQ(XNMessageBase::Initialize(), XN_MSG_OK);
  EXPECT_TRUE(XMLSerializer::isXercesInitialized.load());
  XNMessageBase message;
  message.initialize();
  EXPECT_EQ(XNMessageBase::GetClassDef(&message), nullptr);
}

TEST(SubsystemRegistration, ChangesNothing) {
  LogCapture capture(25);
  Demo::RegisterSubsystem();
  ZqEntities::RegisterSubsystem();
  EXPECT_THAT(capture.lines(), IsEmpty());
  EXPECT_EQ(XNMessageBase::getTagNameFromTagID(0x12454ea9), "ZqEntities_ProcessingInstructionInfo");
}

TEST(TagInformation, NamesTheClass) {
  EXPECT_EQ(XNMessageBase::getTagNameFromTagID(0x01000020), "ZQGui_SaveAlert");
  EXPECT_EQ(XNMessageBase::getTagNameFromTagID(0x12454ea9), "ZqEntities_ProcessingInstructionInfo");
}

TEST(TagInformation, CountsTheFields) {
  int count = -1;
  EXPECT_TRUE(XNMessageBase::getNumberOfFields(0x01000020, count));
  EXPECT_EQ(count, 7);
  EXPECT_FALSE(XNMessageBase::getNumberOfFields(kUnknownTag, count));
  EXPECT_EQ(count, 7);
}

}  // namespace
}  // namespace zqxml
