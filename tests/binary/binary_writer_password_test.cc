// Passwords into the binary form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/annotation/password_routines.h>
#include <tests/binary/binary_forms.h>
#include <tests/binary/hand_made_class.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/xml_encoder.h>
#include <zqxml/xml/zq_xml_context_info.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using Parameters = BinarySerializer::BinarySerializerParameters;

class BinaryWriterPasswordTest : public PasswordRoutinesTest {
 protected:
  App::AnnotationSample message_;

  static std::string record(const char* field, std::string_view text) {
    return Wire().key(field, 2).text(text);
  }
};

TEST_F(BinaryWriterPasswordTest, PasswordOfVersion1StandsAsItIsUpToItsFirstNul) {
  message_.setVer3Password(std::string_view("se\0cret", 7), typeOf(5));
  EXPECT_EQ(serializedBody(message_, 1), record("ver3Password", "se"));
}

TEST_F(BinaryWriterPasswordTest, PlainPasswordIsTheTextAtVersion2) {
  message_.setPlainPassword("secret", typeOf(1));
  EXPECT_EQ(serializedBody(message_), record("plainPassword", "secret"));
}

TEST_F(BinaryWriterPasswordTest, RecordWithoutAPasswordTypeWritesThePasswordAsItStands) {
  message_.setBarePassword(std::string_view("se\0cret", 7), typeOf(5));
  EXPECT_EQ(serializedBody(message_), record("barePassword", "se"));
}

TEST_F(BinaryWriterPasswordTest, AnnotatedTypeIsWrittenAsMarkAndBase64) {
  message_.setVer3Password("bytes", typeOf(5));
  EXPECT_EQ(serializedBody(message_), record("ver3Password",
                                             "\x05"
                                             "Ynl0ZXM="));
}

TEST_F(BinaryWriterPasswordTest, EncryptionRunsInBothPasses) {
  registerEncryption<5>();
  message_.setVer3Password("secret", typeOf(1));
  EXPECT_EQ(serializedBody(message_), record("ver3Password",
                                             "\x05"
                                             "ZW5jNShzZWNyZXQp"));
  EXPECT_EQ(calls().size(), 2u);
}

TEST_F(BinaryWriterPasswordTest, EncryptionRunsTwiceForAPasswordInAMapToo) {
  registerEncryption<5>();
  HandMadeClass handMade;
  handMade.field(FDT_MAP_INT64_OBJECT, "map", std::string(4, '\0'));
  OpenMessage outer = handMade.message();
  message_.setVer3Password("secret", typeOf(1));
  collectionOf<std::map<std::int64_t, XNMessageBase>>(outer, "map").emplace(1, message_);
  serialized(outer);
  EXPECT_EQ(calls().size(), 2u);
}

TEST_F(BinaryWriterPasswordTest, MissingHandlerIsReportedInBothPassesAndLeavesAnEmptyValue) {
  message_.setVer3Password("secret", typeOf(1));
  message_.setVer5Password("bytes", typeOf(10));
  LogCapture capture;
  EXPECT_EQ(serializedBody(message_), record("ver3Password", "") + record("ver5Password",
                                                                          "\x0a"
                                                                          "Ynl0ZXM="));
  EXPECT_THAT(capture.lines(),
              testing::ElementsAre(
                  CapturedLine{"BinarySerializer::calculateReqBinStreamSize", 0,
                               "Password Handler Not Found while serializing pstring field [ver3Password]"},
                  CapturedLine{"BinarySerializer::serializeBinaryRecursive", 0,
                               "Password Handler Not Found while serializing pstring field [ver3Password]"}));
}

TEST_F(BinaryWriterPasswordTest, PasswordWithoutAnnotationWritesItsKeyAloneAndIsReportedInBothPasses) {
  HandMadeClass handMade;
  handMade.field(FDT_PSTRING, "password").field(FDT_INT, "after");
  OpenMessage message = handMade.message();
  MessageAccess::make<pstring>(message, fieldOf(message, "password"), true) = std::string("secret");
  setInteger(message, "after", 1);
  for (int version : {1, 2}) {
    LogCapture capture;
    EXPECT_EQ(serializedBody(message, version),
              Wire().key("password", 2).key("after", 6).raw("\x02").bytes());
    EXPECT_THAT(capture.lines(),
                testing::ElementsAre(CapturedLine{"BinarySerializer::calculateReqBinStreamSize", 0,
                                                  "No Password annotation found on member : password"},
                                     CapturedLine{"BinarySerializer::serializeBinaryRecursive", 0,
                                                  "No Password annotation found on member : password"}));
  }
}

TEST_F(BinaryWriterPasswordTest, SetPasswordWithoutAValueIsAnEmptyOne) {
  setBit(message_, "plainPassword");
  for (int version : {1, 2})
    EXPECT_EQ(serializedBody(message_, version), record("plainPassword", "")) << version;
}

TEST_F(BinaryWriterPasswordTest, ExternalMemoryTakesAnEncryptedPassword) {
  registerEncryption<5>();
  message_.setVer3Password("secret", typeOf(1));
  std::string block(64, '\xee');
  BinaryBuffer buffer(block.data(), block.size());
  BinarySerializer::serialize(message_, buffer);
  const std::string expected = serialized(message_);
  EXPECT_EQ(block.substr(0, expected.size()), expected);
  EXPECT_EQ(block.substr(expected.size()), std::string(64 - expected.size(), '\xee'));
}

TEST_F(BinaryWriterPasswordTest, ExceptionOfARoutinePassesThrough) {
  XMLDecoder::registerPasswordEncAlgo(typeOf(5), failingRoutine);
  message_.setVer3Password("secret", typeOf(1));
  BinaryBuffer buffer;
  EXPECT_THROW(BinarySerializer::serialize(message_, buffer), std::runtime_error);
  registerEncryption<5>();
  EXPECT_NE(BinarySerializer::serialize(message_, buffer), 0u);
}

TEST_F(BinaryWriterPasswordTest, ParametersWithFlagsChooseTheType) {
  registerEncryption<9>();
  message_.setVer3Password("secret", typeOf(1));
  EncodingFlags flags;
  flags.passwordEncType = 9;
  ZqXMLContextInfo context;
  const Parameters parameters{&flags, &context};
  BinaryBuffer buffer;
  BinarySerializer::serialize(message_, buffer, 2, &parameters);
  EXPECT_EQ(contentOf(buffer).substr(8), record("ver3Password",
                                                "\x09"
                                                "ZW5jOShzZWNyZXQp"));
  ASSERT_EQ(calls().size(), 2u);
  EXPECT_EQ(calls()[0].context, &context);
}

TEST_F(BinaryWriterPasswordTest, ParametersWithoutFlagsGiveTheContextAlone) {
  registerEncryption<5>();
  message_.setVer3Password("secret", typeOf(1));
  ZqXMLContextInfo context;
  const Parameters parameters{nullptr, &context};
  BinaryBuffer buffer;
  BinarySerializer::serialize(message_, buffer, 2, &parameters);
  ASSERT_EQ(calls().size(), 2u);
  EXPECT_EQ(calls()[0].context, &context);
}

TEST_F(BinaryWriterPasswordTest, EncoderGivesItsFlagsAndContext) {
  registerEncryption<9>();
  message_.setVer3Password("secret", typeOf(1));
  EncodingFlags flags;
  flags.passwordEncType = 9;
  ZqXMLContextInfo context;
  XMLEncoder encoder(flags, &context);
  BinaryBuffer buffer;
  encoder.SerializeBinary(message_, buffer);
  ASSERT_EQ(calls().size(), 2u);
  EXPECT_EQ(calls()[0].context, &context);
  EXPECT_EQ(calls()[0].routine, "enc9");
}

/// Yields as many bytes as stand in front of the list; the number changes from call to call.
std::vector<std::size_t>& plannedSizes() {
  static std::vector<std::size_t> sizes;
  return sizes;
}
bstring plannedSize(bstring, ZqXMLContextInfo*) {
  const std::size_t size = plannedSizes().front();
  plannedSizes().erase(plannedSizes().begin());
  return std::string(size, 'x');
}

TEST_F(BinaryWriterPasswordTest, ShorterSecondResultLeavesZeros) {
  XMLDecoder::registerPasswordEncAlgo(typeOf(5), plannedSize);
  message_.setVer3Password("secret", typeOf(1));
  plannedSizes() = {30, 3};
  EXPECT_EQ(serializedBody(message_), record("ver3Password",
                                             "\x05"
                                             "eHh4") +
                                          std::string(36, '\0'));
}

TEST_F(BinaryWriterPasswordTest, LongerSecondResultDropsTheTail) {
  XMLDecoder::registerPasswordEncAlgo(typeOf(5), plannedSize);
  message_.setVer3Password("secret", typeOf(1));
  message_.setVer5Password("bytes", typeOf(10));
  plannedSizes() = {3, 30};
  // The length goes out; the text does not fit, and nothing behind it is written.
  const std::string expected = Wire().key("ver3Password", 2).varint(41);
  const std::string body = serializedBody(message_);
  EXPECT_EQ(body, expected + std::string(body.size() - expected.size(), '\0'));
  EXPECT_EQ(body.size(), 4u + 1 + 5 + 4 + 1 + 9);
}

}  // namespace
}  // namespace zqxml
