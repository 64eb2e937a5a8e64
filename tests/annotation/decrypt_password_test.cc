#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/annotation/password_routines.h>
#include <tests/support/log_capture.h>

#include <string>

namespace zqxml {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

// --- decryptPassword

TEST_F(PasswordCodec, FirstCharacterTellsAMarkFromAPlainText) {
  LogCapture capture;
  for (char16_t first = 1; first < 0x200; ++first) {
    const std::u16string text = first + toUtf16(UlBase64::Encode("x"));
    XMLDecoder decoder;
    const std::string read = decryptPassword(decoder, text);
    const bool plain = first == 1 || first == 6 || first >= 12;
    if (plain) {
      EXPECT_EQ(read, "1:" + toUtf8(text));
    } else {
      EXPECT_NE(read, "1:" + toUtf8(text));
    }
    EXPECT_EQ(decoder.getEncryptionTypeUsed(), plain ? 1 : first);
  }
}

TEST_F(PasswordCodec, EmptyTextIsAnEmptyPlainPassword) {
  EXPECT_EQ(decryptPassword(""), "1:");
}

TEST_F(PasswordCodec, PlainTextBecomesUtf8AndIsTraced) {
  LogCapture capture(10);
  XMLDecoder decoder;
  EXPECT_EQ(decryptPassword(decoder, u"pass\u00e9"), "1:pass\u00e9");
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{
                  "XMLDecoder::decryptPassword", 10,
                  "Encryption Type Not Found for Pstring Field secretField. Marking it As Plain "}));
}

TEST_F(PasswordCodec, NullTextIsRefused) {
  XMLDecoder decoder;
  pstring* value = nullptr;
  EXPECT_FALSE(decoder.decryptPassword(kField, nullptr, value));
  EXPECT_EQ(value, nullptr);
}

TEST_F(PasswordCodec, TextThatIsNoBase64IsRefused) {
  registerDecryption<5>();
  for (const char* text : {"\x05"
                           "abc",
                           "\x05"
                           "ab=c",
                           "\x05"
                           "ab c",
                           "\x05"
                           "\u00e9\u00e9"})
    EXPECT_EQ(decryptPassword(text, Context(0).get()), "refused") << text;
  EXPECT_TRUE(calls().empty());
}

TEST_F(PasswordCodec, TypeOfARefusedTextIsKnownAllTheSame) {
  XMLDecoder decoder;
  EXPECT_EQ(decryptPassword(decoder, u"\5abc"), "refused");
  EXPECT_EQ(decoder.getEncryptionTypeUsed(), 5);
}

TEST_F(PasswordCodec, ContextOfPassThroughTakesTheStoredForm) {
  registerDecryption<2, 5>();
  LogCapture capture(10);
  EXPECT_EQ(decryptPassword(5, "stored", Context(6)), "5:stored");
  EXPECT_EQ(decryptPassword(2, "stored", Context(6)), "2:stored");
  EXPECT_TRUE(calls().empty());
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(
          CapturedLine{"XMLDecoder::decryptPassword", 10, "Password Encryption Type Marked as PassThrough"},
          CapturedLine{"XMLDecoder::decryptPassword", 10, "Password Encryption Type Marked as PassThrough"}));
}

TEST_F(PasswordCodec, EveryFormOfThePlatformStaysStoredWithoutContext) {
  registerDecryption<3, 4, 5, 10>();
  for (const int type : {3, 4, 5, 10, 11})
    EXPECT_EQ(decryptPassword(type, "stored", Context(-1)), std::to_string(type) + ":stored");
  EXPECT_TRUE(calls().empty());
}

TEST_F(PasswordCodec, OtherFormsNeedTheirRoutineEvenWithoutContext) {
  registerDecryption<9>();
  EXPECT_EQ(decryptPassword(9, "stored", Context(-1)), "1:dec9(stored)");
}

TEST_F(PasswordCodec, RoutineMakesAFormPlain) {
  registerDecryption<3, 4, 5, 9, 10>();
  for (const int type : {3, 4, 5, 9, 10}) {
    calls().clear();
    EXPECT_EQ(decryptPassword(type, "stored", Context(0)), "1:dec" + std::to_string(type) + "(stored)");
    ASSERT_EQ(calls().size(), 1u);
    EXPECT_EQ(calls()[0].contextType, type);
    EXPECT_EQ(calls()[0].messageInfo, nullptr);
  }
}

TEST_F(PasswordCodec, FormOfVersion8NeverHasARoutine) {
  LogCapture capture;
  EXPECT_EQ(decryptPassword(11, "stored", Context(0)), "refused");
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XMLDecoder::ProcessPasswordAnnotation", 0,
                                       "Password Decryption Handler Not Found for type [11]"},
                          CapturedLine{"XMLDecoder::decryptPassword", 0,
                                       "Password Decryption Handler Not Found for Type 11"}));
}

TEST_F(PasswordCodec, ContextTypeAsksTheRoutineToReEncrypt) {
  registerDecryption<2, 5>();
  registerEncryption<2, 3, 7, 8, 9>();
  for (const int wanted : {0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11}) {
    calls().clear();
    const bool reEncrypts = wanted == 0 || wanted == 4 || wanted == 5 || wanted == 10 || wanted == 11;
    Context context(wanted, true);
    const std::string read = decryptPassword(formOf(2, "stored"), context.get());
    ASSERT_FALSE(calls().empty());
    EXPECT_EQ(calls()[0].reEncrypt, reEncrypts ? 1 : 0) << wanted;
    EXPECT_EQ(calls()[0].messageInfo, context.messageInfo());
    EXPECT_EQ(calls()[0].contextType, 2);
    EXPECT_NE(calls()[0].context, context.get());
    if (reEncrypts) {
      EXPECT_EQ(read, "5:dec2(stored)") << wanted;
    }
  }
}

TEST_F(PasswordCodec, SessionFormWithoutReEncryptionBecomesPlain) {
  registerDecryption<2>();
  Context context(1, true);
  EXPECT_EQ(decryptPassword(formOf(2, "stored"), context.get()), "1:dec2(stored)");
}

TEST_F(PasswordCodec, FormUnderASessionLayerKeepsItsInnerType) {
  registerDecryption<7, 8>();
  for (const int wanted : {0, 1, 5}) {
    calls().clear();
    Context context(wanted, true);
    EXPECT_EQ(decryptPassword(formOf(7, "stored"), context.get()), "4:dec7(stored)");
    EXPECT_EQ(decryptPassword(formOf(8, "stored"), context.get()), "5:dec8(stored)");
    for (const RoutineCall& call : calls()) EXPECT_EQ(call.reEncrypt, 0) << wanted;
  }
}

TEST_F(PasswordCodec, KeepsAFailedDecryptionCountingAsDone) {
  registerDecryption<2>();
  LogCapture capture;
  EXPECT_EQ(decryptPassword(2, "stored", Context(1)), "1:stored");  // no "MessageInfo"
  EXPECT_EQ(decryptPassword(2, "stored", Context(0)), "5:stored");
  EXPECT_EQ(decryptPassword(2, "stored", Context(-1)), "1:stored");
  EXPECT_EQ(decryptPassword(7, "stored", Context(-1)), "4:stored");
  EXPECT_EQ(decryptPassword(8, "stored", Context(-1)), "5:stored");
  EXPECT_EQ(decryptPassword(5, "", Context(0)), "1:");  // an empty password
  EXPECT_TRUE(calls().empty());
}

TEST_F(PasswordCodec, FormWithoutDecryptionRoutineIsRefused) {
  LogCapture capture;
  EXPECT_EQ(decryptPassword(5, "stored", Context(0)), "refused");
  EXPECT_EQ(decryptPassword(9, "stored", Context(-1)), "refused");
  EXPECT_TRUE(
      capture.has("XMLDecoder::decryptPassword", 0, "Password Decryption Handler Not Found for Type 5"));
  EXPECT_TRUE(
      capture.has("XMLDecoder::decryptPassword", 0, "Password Decryption Handler Not Found for Type 9"));
}

TEST_F(PasswordCodec, ContextOfAnotherTypeHasThePasswordEncryptedAgain) {
  registerDecryption<5>();
  registerEncryption<2, 3, 7, 8, 9>();
  for (const int wanted : {2, 3, 7, 8, 9}) {
    calls().clear();
    const std::string number = std::to_string(wanted);
    EXPECT_EQ(decryptPassword(5, "stored", Context(wanted)), number + ":enc" + number + "(dec5(stored))");
    ASSERT_EQ(calls().size(), 2u);
    EXPECT_EQ(calls()[0].reEncrypt, 0);
    EXPECT_EQ(calls()[1].contextType, wanted);
  }
}

TEST_F(PasswordCodec, EncryptingAgainHasAContextThatKnowsTheTypeAlone) {
  registerDecryption<5>();
  registerEncryption<9>();
  Context context(9, true);
  EXPECT_EQ(decryptPassword(formOf(5, "stored"), context.get()), "9:enc9(dec5(stored))");
  ASSERT_EQ(calls().size(), 2u);
  EXPECT_NE(calls()[1].context, context.get());
  EXPECT_EQ(calls()[1].messageInfo, nullptr);
}

TEST_F(PasswordCodec, ContextOfAStoredTypeTakesWhatWasDecrypted) {
  registerDecryption<5>();
  registerEncryption<0, 1, 4, 5, 10>();
  for (const int wanted : {0, 1, 4, 5, 10, 11}) {
    calls().clear();
    EXPECT_EQ(decryptPassword(5, "stored", Context(wanted)), "1:dec5(stored)") << wanted;
    EXPECT_THAT(routinesCalled(), ElementsAre("dec5"));
  }
}

TEST_F(PasswordCodec, TypeOfTheContextWithoutRoutineIsRefused) {
  registerDecryption<5>();
  LogCapture capture;
  EXPECT_EQ(decryptPassword(5, "stored", Context(3)), "refused");
  EXPECT_EQ(decryptPassword(5, "stored", Context(12)), "refused");
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XMLDecoder::decryptPassword", 0,
                                       " Password Encryption Handler Not Registered for Type 3"},
                          CapturedLine{"XMLDecoder::decryptPassword", 0,
                                       " Password Encryption Handler Not Registered for Type 12"}));
}

TEST_F(PasswordCodec, StoredBytesMayHoldNul) {
  EXPECT_EQ(decryptPassword(5, "ab\0cd"s, Context(-1)), "5:ab\0cd"s);
}

TEST_F(PasswordCodec, WhatEncryptionWritesDecryptionReads) {
  registerDecryption<9>();
  registerEncryption<9>();
  const Encrypted encrypted = encryptPassword(9, pstring("secret"s));
  EXPECT_EQ(decryptPassword(encrypted.text), "1:dec9(enc9(secret))");
  EXPECT_EQ(decryptPassword(encryptPassword(1, pstring("secret"s)).text), "1:secret");
}

// --- ProcessPasswordAnnotation

TEST_F(PasswordCodec, EmptyTextIsNotProcessed) {
  XMLDecoder decoder;
  decoder.setEncryptionTypeUsed(5);
  bstring text;
  LogCapture capture;
  EXPECT_EQ(decoder.ProcessPasswordAnnotation(text, false), XN_MSG_FAILED);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XMLDecoder::ProcessPasswordAnnotation", 0,
                                                        "Empty Password Input String"}));
}

TEST_F(PasswordCodec, TypesBelow2AndAbove11AreNotProcessed) {
  for (const int type : {-1, 0, 1, 12}) {
    XMLDecoder decoder;
    decoder.setEncryptionTypeUsed(type);
    bstring text("stored"s);
    LogCapture capture;
    EXPECT_EQ(decoder.ProcessPasswordAnnotation(text, false), XN_MSG_FAILED);
    EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XMLDecoder::ProcessPasswordAnnotation", 0,
                                                          "Password Encryption Type[" + std::to_string(type) +
                                                              "] is not Valid. Exiting Decoding"}));
  }
}

TEST_F(PasswordCodec, SessionTypesNeedMessageInfo) {
  registerDecryption<2, 7, 8>();
  for (const int type : {2, 7, 8}) {
    for (const int contextType : {-1, 0}) {
      Context context(contextType);
      XMLDecoder decoder(context.get());
      decoder.setEncryptionTypeUsed(type);
      bstring text("stored"s);
      LogCapture capture;
      EXPECT_EQ(decoder.ProcessPasswordAnnotation(text, true), XN_MSG_FAILED);
      EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{
                                       "XMLDecoder::ProcessPasswordAnnotation", 0,
                                       "Password Encryption Type is SESSION_ENCRYPTION. Context Object Not "
                                       "Passed.Exiting Decryption"}));
    }
  }
  EXPECT_TRUE(calls().empty());
}

TEST_F(PasswordCodec, ProcessingRunsTheRoutineWithAContextOfItsOwn) {
  registerDecryption<2, 5, 7, 8>();
  const struct {
    int type;
    bool messageInfo;
    int reEncrypt;
  } cases[] = {{2, true, 1}, {5, false, 1}, {7, true, 0}, {8, true, 0}};
  for (const auto& each : cases) {
    calls().clear();
    Context context(3, true);
    XMLDecoder decoder(context.get());
    decoder.setEncryptionTypeUsed(each.type);
    bstring text("stored"s);
    EXPECT_EQ(decoder.ProcessPasswordAnnotation(text, true), XN_MSG_OK);
    EXPECT_EQ(text.str(), "dec" + std::to_string(each.type) + "(stored)");
    ASSERT_EQ(calls().size(), 1u);
    EXPECT_NE(calls()[0].context, context.get());
    EXPECT_EQ(calls()[0].contextType, each.type);
    EXPECT_EQ(calls()[0].messageInfo, each.messageInfo ? context.messageInfo() : nullptr);
    EXPECT_EQ(calls()[0].reEncrypt, each.reEncrypt);
  }
}

TEST_F(PasswordCodec, ProcessingWithoutRoutineIsLogged) {
  XMLDecoder decoder;
  decoder.setEncryptionTypeUsed(5);
  bstring text("stored"s);
  LogCapture capture;
  EXPECT_EQ(decoder.ProcessPasswordAnnotation(text, false), XN_MSG_NO_PASSWORD_HANDLER);
  EXPECT_EQ(text.str(), "stored");
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XMLDecoder::ProcessPasswordAnnotation", 0,
                                       "Password Decryption Handler Not Found for type [5]"}));
}

}  // namespace
}  // namespace zqxml
