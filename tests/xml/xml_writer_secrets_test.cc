// Secrets in XML: password fields, and the masks of passwords and sensitive fields.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/zq_xml_context_info.h>

#include <string>

#include "tests/support/log_capture.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using Annotation::PasswordEncryptType;
using App::AnnotationSample;
using Demo::EveryMode;
using Demo::EveryType;
using Number = EveryType::FieldNumber;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kWalk = "XMLSerializer::serializeXMLRecur";

// --- passwords

TEST(PasswordForm, WithoutAnnotationRecordIsLeftOutAndLogged) {
  AnnotationSample msg;
  msg.setNoAnnotationPassword("secret");
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), "<App_AnnotationSample/>");
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_PASSWORDS)), "<App_AnnotationSample/>");
  EXPECT_EQ(log.count(kWalk, 0, "There are no annotations specified on this field : [noAnnotationPassword]"),
            2u);

  AnnotationSample shortRecord;
  shortRecord.setPlainPassword("secret");
  PatchedRecord record(shortRecord);
  record.annotate(AnnotationSample::FieldNumber::kPlainPassword, "\x00\x02\x10");
  EXPECT_EQ(xmlOf(shortRecord), "<App_AnnotationSample/>");
  EXPECT_TRUE(log.has(kWalk, 0, "There are no annotations specified on this field : [plainPassword]"));
}

TEST(PasswordForm, WithoutPasswordAnnotationIsLeftOutAndLogged) {
  AnnotationSample msg;
  msg.setBarePassword("secret");
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), "<App_AnnotationSample/>");
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_PASSWORDS)), "<App_AnnotationSample/>");
  EXPECT_EQ(log.count(kWalk, 0, "Password annotation is not specified on this field : [barePassword]"), 2u);
}

TEST(PasswordForm, MaskIsSevenAsterisksWhateverTheValue) {
  AnnotationSample msg;
  msg.setPlainPassword("");
  msg.setSessionPassword("secret");
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_PASSWORDS)),
            R"(<App_AnnotationSample plainPassword="*******" sessionPassword="*******"/>)");
}

TEST(PasswordForm, MaskHoldsForVersionOneToo) {
  AnnotationSample msg;
  msg.setSessionPassword("secret");
  std::string xml;
  EXPECT_EQ(XMLSerializer(withOptions(MASK_PASSWORDS), nullptr).serialize(msg, xml, 1), XN_MSG_OK);
  EXPECT_THAT(xml, testing::HasSubstr(R"(<App_AnnotationSample sessionPassword="*******"/>)"));
}

TEST(PasswordForm, StoredTypeIsMarkedAndItsMarkEncoded) {
  AnnotationSample msg;
  msg.setVer3Password("stored", PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER3);
  EXPECT_EQ(xmlOf(msg), R"(<App_AnnotationSample ver3Password="||#5!c3RvcmVk"/>)");
}

TEST(PasswordForm, FlagsReachTheEncryption) {
  AnnotationSample msg;
  msg.setVer3Password("plain");
  EncodingFlags flags;
  flags.passwordEncType = 1;
  EXPECT_EQ(xmlOf(msg, flags), R"(<App_AnnotationSample ver3Password="plain"/>)");
}

ZqXMLContextInfo* contextSeen = nullptr;
bstring reverse(bstring text, ZqXMLContextInfo* context) {
  contextSeen = context;
  return bstring(std::string(text.str().rbegin(), text.str().rend()));
}

TEST(PasswordForm, ContextReachesTheRoutine) {
  AnnotationSample msg;
  msg.setBase64Password("abc");
  XMLDecoder::registerPasswordEncAlgo(PasswordEncryptType::BASE64, &reverse);
  ZqXMLContextInfo context;
  EXPECT_EQ(xmlOf(msg, {}, &context), "<App_AnnotationSample base64Password=\"&#x9;Y2Jh\"/>");
  EXPECT_EQ(contextSeen, &context);
  XMLDecoder::registerPasswordEncAlgo(PasswordEncryptType::BASE64, nullptr);
}

TEST(PasswordForm, MissingRoutineLeavesTheFieldOutAndIsLogged) {
  AnnotationSample msg;
  msg.setSessionPassword("secret");
  msg.setDateTime(5);
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), R"(<App_AnnotationSample dateTime="5"/>)");
  EXPECT_TRUE(
      log.has(kWalk, 0, "Password Handler Not Found while serializing bstring field [sessionPassword]"));
}

TEST(PasswordForm, VersionOneIsPlainBase64WithoutAnyRoutine) {
  AnnotationSample msg;
  msg.setSessionPassword("secret");
  LogCapture log;
  EXPECT_EQ(xmlOfVersion(msg, 1), R"(<App_AnnotationSample sessionPassword="c2VjcmV0"/>)");
  EXPECT_EQ(xmlOfVersion(msg, 0), R"(<App_AnnotationSample sessionPassword="c2VjcmV0"/>)");
  EXPECT_TRUE(log.empty());
}

TEST(PasswordForm, IllegalCharactersAreEncodedAndAnEmptyOneIsEmpty) {
  AnnotationSample msg;
  msg.setPlainPassword("\x01");
  EXPECT_EQ(xmlOf(msg), R"(<App_AnnotationSample plainPassword="||#1!"/>)");
  msg.setPlainPassword("");
  EXPECT_EQ(xmlOf(msg), R"(<App_AnnotationSample plainPassword=""/>)");
  EXPECT_EQ(xmlOf(msg, withElements()),
            "<App_AnnotationSample><plainPassword></plainPassword></App_AnnotationSample>");
}

// --- masks

TEST(SensitiveMask, EveryPrimitiveTypeBecomesEightHashSigns) {
  Demo::Guarded msg;
  msg.setOpen("open");
  msg.setSecretText("x");
  msg.setSecretWide(u"x");
  msg.setSecretNumber(1);
  msg.setSecretBool(true);
  msg.setSecretEnum(EveryMode::ON);
  msg.setSecretDouble(1);
  msg.setSecretBytes("x");
  msg.setSecretPassword("x");
  EXPECT_EQ(
      xmlOf(msg, withOptions(MASK_SENSITIVE)),
      R"(<Demo_Guarded open="open" secretBool="########" secretBytes="########" secretDouble="########" )"
      R"(secretEnum="########" secretNumber="########" secretPassword="########" secretText="########" )"
      R"(secretWide="########"/>)");
  EXPECT_THAT(xmlOf(msg), Not(HasSubstr("#")));
}

TEST(SensitiveMask, ReachesIntoSubObjectsAndIsNeverCdata) {
  Demo::Guarded msg;
  msg.mutableChild().setSecret("x");
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_SENSITIVE)),
            R"(<Demo_Guarded><child secret="########"/></Demo_Guarded>)");

  AnnotationSample cdata;
  cdata.setSensitiveCdata("x");
  EXPECT_EQ(xmlOf(cdata, withOptions(MASK_SENSITIVE)),
            R"(<App_AnnotationSample sensitiveCdata="########"/>)");
  EXPECT_EQ(xmlOf(cdata),
            "<App_AnnotationSample><sensitiveCdata><![CDATA[x]]></sensitiveCdata></App_AnnotationSample>");
}

TEST(SensitiveMask, IsTracedAtLevel15) {
  Demo::Guarded msg;
  msg.setSecretText("x");
  LogCapture log(15);
  xmlOf(msg, withOptions(MASK_SENSITIVE));
  EXPECT_TRUE(log.has(kWalk, 15,
                      "Masking field [Guarded]:[secretText] as sensitive annotation is present and "
                      "encoding_options to mask the field is specified"));
}

TEST(SensitiveMask, RecordThatEndsBeforeItsByteIsNotSensitive) {
  EveryType msg;
  msg.setStringField("clear");
  PatchedRecord record(msg);
  record.annotate(Number::kStringField, "\x00\x04\x00\x00\x40");
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_SENSITIVE)), R"(<Demo_EveryType stringField="clear"/>)");
}

TEST(SensitiveMask, BothMasksTogether) {
  Demo::Guarded msg;
  msg.setSecretPassword("x");
  msg.setHiddenPassword("x");
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_PASSWORDS | MASK_SENSITIVE)),
            R"(<Demo_Guarded hiddenPassword="*******" secretPassword="########"/>)");
}

}  // namespace
}  // namespace zqxml
