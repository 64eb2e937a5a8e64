#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/platform/freed_secrets.h>
#include <tests/support/log_capture.h>
#include <tests/support/scratch_folder.h>
#include <tests/support/settings.h>
#include <zqxml/annotation/internal/once_per_process.h>
#include <zqxml/annotation/platform_password_routines.h>
#include <zqxml/message/pstring.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/zq_password.h>
#include <zqxml/xml/xml_decoder.h>

#include <string>

namespace zqxml {
namespace {

using namespace std::string_literals;

constexpr char kPlainLine[] = "XNMessageBase::getPlainPasswor(): NO PASSWORD DECRYPTION ALGORITHM FOUND";
constexpr char kV8Line[] = "XNMessageBase::getV8Password(): NO PASSWORD DECRYPTION ALGORITHM FOUND";
constexpr char kSecureLine[] = "XNMessageBase::getPlainPassword_s(): NO PASSWORD DECRYPTION ALGORITHM FOUND";
constexpr char kSecureFailure[] = "XNMessageBase::getPlainPassword_s(): Failed to decrypt password";

/// Tests with a key file, and with the once-per-process lines not written yet.
class PlainPassword : public testing::Test {
 protected:
  PlainPassword() {
    chmod(keyFile_.c_str(), 0600);
    unsetenv("ZQXML_KEY_FILE");
    plainPasswordFailure.reset();
    v8PasswordFailure.reset();
  }

  static std::string stored(const std::string& plain, char version) {
    std::string text;
    EXPECT_NE(ZQPassword().encrypt(version, secure_string(std::string_view(plain)), text), 0);
    return text;
  }
  static pstring password(const std::string& plain, int type) {
    const char version = ZQPassword::versionOfType(type);
    return pstring(stored(plain, version == '\0' ? '2' : version), type);
  }

  const ScratchFolder folder_;
  const std::string keyFile_ = folder_.write("key", std::string(64, '5'));
  const TestSettings settings_{{"Password/KeyFile", keyFile_}};
  LogCapture capture_;
};

// --- pstring

TEST_F(PlainPassword, PasswordIsATextWithAType) {
  EXPECT_EQ(pstring().getEncryptionType(), 1);
  EXPECT_EQ(pstring("x"s).getEncryptionType(), 1);
  EXPECT_EQ(pstring("x", -3).getEncryptionType(), -3);
  pstring value("stored", 5);
  EXPECT_EQ(pstring(value).getEncryptionType(), 5);
  EXPECT_EQ(pstring(value).str(), "stored");
  pstring copy;
  copy = value;
  EXPECT_EQ(copy.getEncryptionType(), 5);
  copy = "text"s;
  EXPECT_EQ(copy.getEncryptionType(), 1);
  EXPECT_EQ(copy.str(), "text");
  value = bstring("bytes"s);
  EXPECT_EQ(value.getEncryptionType(), 1);
  EXPECT_EQ(value.str(), "bytes");
  value.setEncryptionType(400);
  EXPECT_EQ(value.getEncryptionType(), 400);
}

TEST_F(PlainPassword, PasswordsCompareByTheirTexts) {
  EXPECT_TRUE(pstring("a", 5) == pstring("a", 4));
  EXPECT_FALSE(pstring("a", 5) == pstring("b", 5));
  EXPECT_TRUE(pstring("a", 5) == "a"s && "a"s == pstring("a", 5) && pstring("a", 5) == bstring("a"));
  EXPECT_TRUE(pstring("a", 5) != "b"s && "b"s != pstring("a", 5) && pstring("a", 5) != bstring("b"));
}

// --- getPlainPassword

TEST_F(PlainPassword, PlainTextIsThePassword) {
  EXPECT_EQ(pstring("se\0cret"s).getPlainPassword().str(), "se\0cret"s);
  EXPECT_TRUE(capture_.empty());
}

TEST_F(PlainPassword, EveryStoredTypeIsOpened) {
  for (const int type : {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}) {
    pstring value = password("secret", type);
    value.setEncryptionType(type);
    EXPECT_EQ(value.getPlainPassword().str(), "secret") << type;
  }
  EXPECT_TRUE(capture_.empty());
}

TEST_F(PlainPassword, NewerTypesAreOpenedWhole) {
  const std::string plain = "nul\0"s + std::string(5000, 'p');
  for (const int type : {5, 10, 11}) EXPECT_EQ(password(plain, type).getPlainPassword().str(), plain) << type;
  EXPECT_TRUE(capture_.empty());
}

TEST_F(PlainPassword, KeepsOlderTypesToShortPasswords) {
  for (const int type : {2, 3, 4, 6, 7, 8, 9}) {
    EXPECT_EQ(password(std::string(510, 'p'), type).getPlainPassword().size(), 510u) << type;
    EXPECT_EQ(password(std::string(511, 'p'), type).getPlainPassword().str(), "") << type;
    EXPECT_EQ(password(std::string(5000, 'p'), type).getPlainPassword().str(), "") << type;
    EXPECT_EQ(password("nul\0after"s, type).getPlainPassword().str(), "nul") << type;
  }
}

TEST_F(PlainPassword, NoTypeAndAFailureGiveOneLinePerProcess) {
  EXPECT_EQ(pstring("secret", 0).getPlainPassword().str(), "");
  EXPECT_EQ(pstring("secret", 0).getPlainPassword().str(), "");
  EXPECT_EQ(pstring("no password", 5).getPlainPassword().str(), "");
  EXPECT_EQ(pstring("no password", 3).getPlainPassword().str(), "");
  EXPECT_EQ(capture_.count("pstring::getPlainPassword", 0, kPlainLine), 1u);
}

TEST_F(PlainPassword, FailedDecryptionHasTheSameLine) {
  EXPECT_EQ(pstring("no password", 5).getPlainPassword().str(), "");
  EXPECT_EQ(capture_.count("pstring::getPlainPassword", 0, kPlainLine), 1u);
  plainPasswordFailure.reset();
  EXPECT_EQ(pstring(std::string(3000, 'x'), 4).getPlainPassword().str(), "");
  EXPECT_EQ(capture_.count("pstring::getPlainPassword", 0, kPlainLine), 2u);
}

// --- getPlainPassword_s

TEST_F(PlainPassword, SecureFormIsOpenedWholeForEveryType) {
  const std::string plain = "nul\0"s + std::string(5000, 'p');
  for (const int type : {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}) {
    pstring value = password(plain, type);
    value.setEncryptionType(type);
    EXPECT_EQ(value.getPlainPassword_s().view(), plain) << type;
  }
  EXPECT_EQ(pstring("plain"s).getPlainPassword_s().view(), "plain");
  EXPECT_TRUE(capture_.empty());
}

TEST_F(PlainPassword, SecureFormTellsEachFailure) {
  EXPECT_TRUE(pstring("secret", 0).getPlainPassword_s().empty());
  EXPECT_TRUE(pstring("secret", 0).getPlainPassword_s().empty());
  EXPECT_EQ(capture_.count("pstring::getPlainPassword_s", 0, kSecureLine), 2u);
  EXPECT_TRUE(pstring("no password", 5).getPlainPassword_s().empty());
  EXPECT_TRUE(pstring("no password", 3).getPlainPassword_s().empty());
  EXPECT_EQ(capture_.count("pstring::getPlainPassword_s", 0, kSecureFailure), 2u);
}

// --- getV8Password

TEST_F(PlainPassword, EmptyPasswordIsItsOwnVersion8Form) {
  const pstring recoded = pstring("", 4).getV8Password();
  EXPECT_TRUE(recoded.empty());
  EXPECT_EQ(recoded.getEncryptionType(), 4);
  EXPECT_TRUE(capture_.empty());
}

TEST_F(PlainPassword, Version8FormIsNotRecoded) {
  const pstring recoded = pstring("8 whatever follows", 11).getV8Password();
  EXPECT_EQ(recoded.str(), "8 whatever follows");
  EXPECT_EQ(recoded.getEncryptionType(), 11);
  EXPECT_TRUE(capture_.empty());
}

TEST_F(PlainPassword, StoredTypesAreRecodedToVersion8) {
  for (const int type : {3, 4, 5, 10}) {
    const pstring recoded = password("secret", type).getV8Password();
    EXPECT_EQ(recoded.getEncryptionType(), 11) << type;
    EXPECT_EQ(recoded.str().substr(0, 1), "8") << type;
    EXPECT_EQ(recoded.getPlainPassword().str(), "secret") << type;
  }
  // Type 11 in the form of another version is recoded too.
  EXPECT_EQ(pstring(stored("secret", '5'), 11).getV8Password().getPlainPassword().str(), "secret");
  EXPECT_TRUE(capture_.empty());
}

TEST_F(PlainPassword, OtherTypesAndFailuresGiveOneLinePerProcess) {
  for (const int type : {0, 1, 2, 6, 7, 8, 9}) {
    const pstring recoded = password("secret", type).getV8Password();
    EXPECT_TRUE(recoded.empty()) << type;
    EXPECT_EQ(recoded.getEncryptionType(), 1) << type;
  }
  EXPECT_TRUE(pstring("8", 11).getV8Password().empty());
  EXPECT_EQ(capture_.count("pstring::getV8Password", 0, kV8Line), 1u);
}

TEST_F(PlainPassword, FailedRecodingHasTheSameLine) {
  EXPECT_TRUE(pstring("no password", 5).getV8Password().empty());
  EXPECT_EQ(capture_.count("pstring::getV8Password", 0, kV8Line), 1u);
}

TEST_F(PlainPassword, PasswordTooLongForTheAreaIsNotRecoded) {
  EXPECT_TRUE(password(std::string(2000, 'p'), 5).getV8Password().empty());
  EXPECT_EQ(capture_.count("pstring::getV8Password", 0, kV8Line), 1u);
}

// --- The platform's routines

class PlatformRoutines : public PlainPassword {
 protected:
  PlatformRoutines() { registerPlatformPasswordRoutines(); }
  ~PlatformRoutines() override {
    for (int type = 0; type < 11; ++type) {
      XMLDecoder::registerPasswordEncAlgo(static_cast<Annotation::PasswordEncryptType>(type), nullptr);
      XMLDecoder::registerPasswordDecAlgo(static_cast<Annotation::PasswordEncryptType>(type), nullptr);
    }
  }
};

TEST_F(PlatformRoutines, AreThereForTheTypesThatThePlatformKnows) {
  for (int type = 0; type < 11; ++type) {
    const bool known = type == 3 || type == 4 || type == 5 || type == 9 || type == 10;
    const auto asType = static_cast<Annotation::PasswordEncryptType>(type);
    EXPECT_EQ(XMLDecoder::GetRegisteredPasswordEncAlgo(asType) != nullptr, known) << type;
    EXPECT_EQ(XMLDecoder::GetRegisteredPasswordDecAlgo(asType) != nullptr, known) << type;
  }
}

TEST_F(PlatformRoutines, BringPasswordsThereAndBack) {
  const FieldDef field("secret", nullptr, 1, 0, 0, 0, FDT_PSTRING);
  for (const int type : {3, 4, 5, 9, 10}) {
    std::string text;
    ASSERT_EQ(XMLDecoder().encryptPassword(type, pstring("secret"s), text), XN_MSG_OK);
    EXPECT_EQ(text[0], static_cast<char>(type));
    EXPECT_EQ(text.find("secret"), std::string::npos);

    ZqXMLContextInfo context;
    XMLDecoder decoder(&context);
    pstring* value = nullptr;
    ASSERT_TRUE(decoder.decryptPassword(field, std::u16string(text.begin(), text.end()).c_str(), value))
        << type;
    EXPECT_EQ(value->str(), "secret") << type;
    EXPECT_EQ(value->getEncryptionType(), 1) << type;
    delete value;
  }
  EXPECT_TRUE(capture_.empty());
}

TEST_F(PlatformRoutines, StoreInTheVersionOfTheTypeWhateverTheContextSays) {
  ZqXMLContextInfo context;
  context.setPasswordEncType(10);
  const XMLDecoder decoder(&context);
  for (const int type : {3, 4, 5, 10}) {
    std::string text;
    ASSERT_EQ(decoder.encryptPassword(type, pstring("secret"s), text), XN_MSG_OK);
    std::string storedText;
    ASSERT_TRUE(UlBase64::Decode(std::string_view(text).substr(1), storedText));
    EXPECT_EQ(storedText[0], ZQPassword::versionOfType(type)) << type;
  }
}

TEST_F(PlatformRoutines, GiveAnEmptyTextWhenTheyFail) {
  const auto type3 = static_cast<Annotation::PasswordEncryptType>(3);
  const auto type9 = static_cast<Annotation::PasswordEncryptType>(9);
  ZqXMLContextInfo context;
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordDecAlgo(type3)(bstring("no password"s), &context).str(), "");
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordDecAlgo(type9)(bstring("no Base64"s), &context).str(), "");
  const TestSettings noKey;
  EXPECT_EQ(XMLDecoder::GetRegisteredPasswordEncAlgo(type3)(bstring("secret"s), &context).str(), "");
}

TEST_F(PlatformRoutines, LeaveNoPlainPasswordInFreedMemory) {
  const pstring plain{std::string(FreedSecrets::kMarker)};
  std::string text;
  for (const int type : {3, 4, 5, 9, 10, 1}) {
    const FreedSecrets freed;
    ASSERT_EQ(XMLDecoder().encryptPassword(type, plain, text), XN_MSG_OK);
    EXPECT_EQ(freed.count(), 0) << type;
  }
  for (const int type : {3, 5, 10, 11}) {
    const pstring value = password(std::string(FreedSecrets::kMarker), type);
    const FreedSecrets freed;
    const secure_string opened = value.getPlainPassword_s();
    EXPECT_EQ(opened.view(), FreedSecrets::kMarker);
    EXPECT_EQ(freed.count(), 0) << type;
  }
}

TEST_F(PlatformRoutines, ReadingLeavesThePlainPasswordOnlyWithItsOwner) {
  const FieldDef field("secret", nullptr, 1, 0, 0, 0, FDT_PSTRING);
  for (const int type : {1, 3, 4, 5, 9, 10}) {
    std::string text;
    ASSERT_EQ(XMLDecoder().encryptPassword(type, pstring(std::string(FreedSecrets::kMarker)), text),
              XN_MSG_OK);
    const std::u16string wide(text.begin(), text.end());
    ZqXMLContextInfo context;
    XMLDecoder decoder(&context);
    pstring* value = nullptr;
    const FreedSecrets freed;
    ASSERT_TRUE(decoder.decryptPassword(field, wide.c_str(), value)) << type;
    EXPECT_EQ(value->str(), FreedSecrets::kMarker);
    EXPECT_EQ(freed.count(), 0) << type;
    delete value;
  }
}

}  // namespace
}  // namespace zqxml
