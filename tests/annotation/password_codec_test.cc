#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/annotation/password_routines.h>
#include <tests/support/log_capture.h>
#include <zqxml/message/pstring.h>
#include <zqxml/platform/base64.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_encoder.h>

#include <string>

namespace zqxml {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

TEST_F(PasswordCodec, TypeBeyondTheEnumerationIsPlain) {
  EXPECT_EQ(pstring("x", 12).getEncryptionType(), 1);
  EXPECT_EQ(pstring("x", 11).getEncryptionType(), 11);
}

TEST_F(PasswordCodec, KeepsType11WithoutAnEntryInTheRegistry) {
  LogCapture capture(10);
  XMLDecoder::registerPasswordDecAlgo(typeOf(11), decrypt<11>);
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordDecAlgo(typeOf(11)), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XMLDecoder::registerPasswordDecAlgo", 10,
                                       "Password Encryption Algorithm type [11] out of range"}));
}

TEST_F(PasswordCodec, PlainPasswordIsWrittenPlainWithoutRoutine) {
  const Encrypted encrypted = encryptPassword(1, pstring("secret"s));
  EXPECT_EQ(encrypted.result, XN_MSG_OK);
  EXPECT_EQ(encrypted.text, "secret");
}

TEST_F(PasswordCodec, PasswordOfTheWantedTypeIsWrittenAsItIsStored) {
  registerEncryption<5>();
  registerDecryption<5>();
  const Encrypted encrypted = encryptPassword(5, pstring("stored", 5));
  EXPECT_EQ(encrypted.result, XN_MSG_OK);
  EXPECT_EQ(encrypted.text, "\x05" + UlBase64::Encode("stored"));
  EXPECT_TRUE(calls().empty());
}

TEST_F(PasswordCodec, TypeWithoutRoutineGivesNoText) {
  const Encrypted encrypted = encryptPassword(2, pstring("secret"s));
  EXPECT_EQ(encrypted.result, XN_MSG_NO_PASSWORD_HANDLER);
  EXPECT_EQ(encrypted.text, "untouched");
}

TEST_F(PasswordCodec, TextWithoutMarkIsPlain) {
  EXPECT_EQ(decryptPassword("secret"), "1:secret");
}

TEST_F(PasswordCodec, MarkOfPassThroughBelongsToAPlainText) {
  EXPECT_EQ(decryptPassword("\x06" + UlBase64::Encode("x")), "1:\x06" + UlBase64::Encode("x"));
}

TEST_F(PasswordCodec, StoredFormWithoutContextStaysStored) {
  registerDecryption<5>();
  EXPECT_EQ(decryptPassword(5, "stored", Context(-1)), "5:stored");
  EXPECT_TRUE(calls().empty());
}

TEST_F(PasswordCodec, SessionTypeWithoutContextFails) {
  XMLDecoder decoder;
  decoder.setEncryptionTypeUsed(2);
  bstring text("stored"s);
  EXPECT_EQ(decoder.ProcessPasswordAnnotation(text, false), 1);
  EXPECT_EQ(text.str(), "stored");
}

TEST_F(PasswordCodec, PasswordOfNoTypeHasNoPlainText) {
  LogCapture capture;
  EXPECT_EQ(pstring("secret", 0).getPlainPassword().str(), "");
}

TEST_F(PasswordCodec, PlainPasswordHasNoVersion8Form) {
  LogCapture capture;
  const pstring recoded = pstring("secret"s).getV8Password();
  EXPECT_TRUE(recoded.empty());
  EXPECT_EQ(recoded.getEncryptionType(), 1);
}

// --- Registry

TEST_F(PasswordCodec, RegistryHoldsOneRoutineOfEachDirectionPerType) {
  registerEncryption<0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10>();
  registerDecryption<0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10>();
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordEncAlgo(typeOf(0)), &encrypt<0>);
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordEncAlgo(typeOf(10)), &encrypt<10>);
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordDecAlgo(typeOf(0)), &decrypt<0>);
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordDecAlgo(typeOf(10)), &decrypt<10>);
  registerEncryption<10>();
  XMLDecoder::registerPasswordEncAlgo(typeOf(10), encrypt<3>);
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordEncAlgo(typeOf(10)), &encrypt<3>);
}

TEST_F(PasswordCodec, EncoderRegistersWithTheSameRegistry) {
  XMLEncoder::registerPasswordEncAlgo(typeOf(5), encrypt<5>);
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordEncAlgo(typeOf(5)), &encrypt<5>);
}

TEST_F(PasswordCodec, RegistryRefusesOtherTypes) {
  for (const int type : {-1, 11, 12, 255}) {
    XMLDecoder::registerPasswordEncAlgo(typeOf(type), encrypt<0>);
    XMLDecoder::registerPasswordDecAlgo(typeOf(type), decrypt<0>);
    EXPECT_EQ(XMLDecoder::GetRegisteredPasswordEncAlgo(typeOf(type)), nullptr) << type;
    EXPECT_EQ(XMLDecoder::GetRegisteredPasswordDecAlgo(typeOf(type)), nullptr) << type;
  }
  for (int type = 0; type < 11; ++type) {
    EXPECT_EQ(XMLDecoder::GetRegisteredPasswordEncAlgo(typeOf(type)), nullptr) << type;
    EXPECT_EQ(XMLDecoder::GetRegisteredPasswordDecAlgo(typeOf(type)), nullptr) << type;
  }
}

TEST_F(PasswordCodec, KeepsTheRegistrationOfDecryptionSpeakingOfEncryption) {
  LogCapture capture(10);
  registerEncryption<5>();
  registerDecryption<5>();
  XMLDecoder::registerPasswordEncAlgo(typeOf(11), encrypt<11>);
  XMLDecoder::registerPasswordEncAlgo(typeOf(-1), encrypt<11>);
  XMLDecoder::registerPasswordDecAlgo(typeOf(-1), decrypt<11>);
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(CapturedLine{"XMLDecoder::registerPasswordEncAlgo", 10,
                               "Successfully Registered Password Encryption Algorithm for type = [5] "
                               "[ZQPASSWORD_ENCRYPTION_VER3]"},
                  CapturedLine{"XMLDecoder::registerPasswordDecAlgo", 10,
                               "Successfully Registered Password Encryption Algorithm for type = [5]"},
                  CapturedLine{"XMLDecoder::registerPasswordEncAlgo", 10,
                               "Password Encryption Algorithm for type [11] out of range "},
                  CapturedLine{"XMLDecoder::registerPasswordEncAlgo", 10,
                               "Password Encryption Algorithm for type [-1] out of range "},
                  CapturedLine{"XMLDecoder::registerPasswordDecAlgo", 10,
                               "Password Encryption Algorithm type [-1] out of range"}));
}

TEST_F(PasswordCodec, RegistrationIsTracedOnly) {
  LogCapture capture(9);
  registerEncryption<5>();
  registerDecryption<5>();
  XMLDecoder::registerPasswordEncAlgo(typeOf(11), encrypt<11>);
  EXPECT_TRUE(capture.empty());
}

// --- encryptPassword

TEST_F(PasswordCodec, RoutineOfTheWantedTypeEncryptsThePlainText) {
  registerEncryption<5>();
  const Encrypted encrypted = encryptPassword(5, pstring("secret"s));
  EXPECT_EQ(encrypted.result, XN_MSG_OK);
  EXPECT_EQ(encrypted.text, formOf(5, "enc5(secret)"));
  ASSERT_EQ(calls().size(), 1u);
  EXPECT_EQ(calls()[0].contextType, 5);
}

TEST_F(PasswordCodec, RoutineGetsTheContextOfTheDecoderWhereThereIsOne) {
  registerEncryption<5>();
  Context context(4, true);
  const Encrypted encrypted = encryptPassword(5, pstring("secret"s), XMLDecoder(context.get()));
  EXPECT_EQ(encrypted.text, formOf(5, "enc5(secret)"));
  ASSERT_EQ(calls().size(), 1u);
  EXPECT_EQ(calls()[0].context, context.get());
  EXPECT_EQ(calls()[0].contextType, 4);
}

TEST_F(PasswordCodec, PasswordOfAnotherTypeIsDecryptedFirst) {
  registerEncryption<5>();
  registerDecryption<4>();
  const pstring value("stored", 4);
  const Encrypted encrypted = encryptPassword(5, value);
  EXPECT_EQ(encrypted.text, formOf(5, "enc5(dec4(stored))"));
  ASSERT_EQ(calls().size(), 2u);
  EXPECT_EQ(calls()[0].contextType, 4);
  EXPECT_EQ(calls()[1].contextType, 5);
  EXPECT_EQ(value, pstring("stored"s));
  EXPECT_EQ(value.getEncryptionType(), 4);
}

TEST_F(PasswordCodec, PasswordThatNobodyDecryptsIsLoggedAndStays) {
  registerEncryption<5>();
  LogCapture capture;
  const Encrypted encrypted = encryptPassword(5, pstring("stored", 4));
  EXPECT_EQ(encrypted.text, formOf(5, "enc5(stored)"));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{
                  "DecryptPasswordString", 0,
                  "Handler is not Registered for the encryption type:[4][ZQPASSWORD_ENCRYPTION_VER2]"}));
}

TEST_F(PasswordCodec, TypeWithoutNameIsLoggedWithoutOne) {
  pstring value("stored"s);
  value.setEncryptionType(77);
  LogCapture capture;
  EXPECT_EQ(encryptPassword(1, value).text, "stored");
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"DecryptPasswordString", 0,
                                       "Handler is not Registered for the encryption type:[77][]"}));
}

TEST_F(PasswordCodec, PasswordOfNoTypeIsDecryptedLikeAnyOther) {
  registerDecryption<0>();
  EXPECT_EQ(encryptPassword(1, pstring("stored", 0)).text, "dec0(stored)");
}

TEST_F(PasswordCodec, StoredPasswordIsWrittenPlainByDecryption) {
  registerDecryption<5>();
  const Encrypted encrypted = encryptPassword(1, pstring("stored", 5));
  EXPECT_EQ(encrypted.result, XN_MSG_OK);
  EXPECT_EQ(encrypted.text, "dec5(stored)");
}

TEST_F(PasswordCodec, RoutineRegisteredForPlainTextRunsToo) {
  registerDecryption<5>();
  registerEncryption<1>();
  EXPECT_EQ(encryptPassword(1, pstring("stored", 5)).text, "enc1(dec5(stored))");
}

TEST_F(PasswordCodec, PassThroughNeedsARoutineLikeAnyOtherType) {
  EXPECT_EQ(encryptPassword(6, pstring("secret"s)).result, XN_MSG_NO_PASSWORD_HANDLER);
  registerEncryption<6>();
  EXPECT_EQ(encryptPassword(6, pstring("secret"s)).text, formOf(6, "enc6(secret)"));
}

TEST_F(PasswordCodec, KeepsAnEncryptedTextCutAtItsFirstNul) {
  EXPECT_EQ(encryptPassword(5, pstring("ab\0cd"s, 5)).text, formOf(5, "ab"));
  EXPECT_EQ(encryptPassword(1, pstring("ab\0cd"s)).text, "ab\0cd"s);
}

TEST_F(PasswordCodec, TypeOfTheFlagsTakesThePlaceOfTheGivenOne) {
  registerEncryption<3, 5>();
  EncodingFlags flags;
  flags.passwordEncType = 3;
  EXPECT_EQ(encryptPassword(5, pstring("secret"s), XMLDecoder(flags)).text, formOf(3, "enc3(secret)"));
  flags.keepPasswordEncType = true;
  EXPECT_EQ(encryptPassword(5, pstring("secret"s), XMLDecoder(flags)).text, formOf(5, "enc5(secret)"));
  flags.passwordEncType = 0;
  flags.keepPasswordEncType = false;
  EXPECT_EQ(encryptPassword(5, pstring("secret"s), XMLDecoder(flags)).text, formOf(5, "enc5(secret)"));
}

}  // namespace
}  // namespace zqxml
