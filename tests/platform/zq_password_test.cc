#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <tests/platform/freed_secrets.h>
#include <tests/support/log_capture.h>
#include <tests/support/scratch_folder.h>
#include <tests/support/settings.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/zq_password.h>

#include <algorithm>
#include <set>
#include <string>

namespace zqxml {
namespace {

constexpr char kHexKey[] = "000102030405060708090a0b0c0d0e0f101112131415161718191A1B1C1D1E1F";
constexpr char kDecrypt[] = "ZQPassword::decrypt";
constexpr char kBadText[] = "Not a password of this key, or a damaged one";

class ZqPasswordTest : public testing::Test {
 protected:
  std::string keyFile(std::string_view bytes, mode_t mode = 0600, const char* name = "key") const {
    const std::string path = folder_.write(name, bytes);
    EXPECT_EQ(chmod(path.c_str(), mode), 0);
    return path;
  }

  std::string encrypted(std::string_view plain, char version = '8') const {
    std::string stored;
    EXPECT_NE(password_.encrypt(version, secure_string(plain), stored), 0);
    return stored;
  }

  const ScratchFolder folder_;
  const ZQPassword password_{keyFile(kHexKey)};
  const LogCapture capture_;
};

TEST_F(ZqPasswordTest, EveryVersionComesBack) {
  for (const char version : {'1', '2', '3', '5', '8'}) {
    const std::string stored = encrypted("secret", version);
    EXPECT_EQ(stored[0], version);
    secure_string plain;
    EXPECT_NE(password_.decrypt(secure_string(stored), plain), 0);
    EXPECT_EQ(plain.view(), "secret");
  }
  EXPECT_TRUE(capture_.empty());
}

TEST_F(ZqPasswordTest, VersionsBelongToTypes) {
  const std::pair<int, char> kVersions[] = {{3, '1'}, {4, '2'}, {5, '3'}, {10, '5'}, {11, '8'}};
  for (const auto& [type, version] : kVersions) EXPECT_EQ(ZQPassword::versionOfType(type), version);
  for (const int type : {-1, 0, 1, 2, 6, 7, 8, 9, 12}) EXPECT_EQ(ZQPassword::versionOfType(type), '\0');
}

TEST_F(ZqPasswordTest, StoredFormIsVersionAndBase64WithoutNul) {
  const std::string stored = encrypted("secret");
  std::string sealed;
  ASSERT_TRUE(UlBase64::Decode(std::string_view(stored).substr(1), sealed));
  EXPECT_EQ(sealed.size(), 12U + 6 + 16);
  EXPECT_EQ(stored.find('\0'), std::string::npos);
  EXPECT_EQ(stored.find("secret"), std::string::npos);
}

// Made by another program from the same key, so that the form cannot change unseen.
constexpr char kStoredLongAgo[] = "8MDEyMzQ1Njc4OWFiX2Q8BzNVu5f0n8q8af2R3GJJWrOV6lk=";

TEST_F(ZqPasswordTest, OpensAPasswordThatWasStoredLongAgo) {
  secure_string plain;
  EXPECT_NE(password_.decrypt(secure_string(kStoredLongAgo), plain), 0);
  EXPECT_EQ(plain.view(), "hunter2");
}

TEST_F(ZqPasswordTest, SamePasswordIsStoredDifferentlyEachTime) {
  std::set<std::string> stored;
  for (int i = 0; i < 20; ++i) stored.insert(encrypted("secret"));
  EXPECT_EQ(stored.size(), 20U);
}

TEST_F(ZqPasswordTest, EmptyAndBinaryAndLongPasswords) {
  for (const std::string& text : {std::string(), std::string("a\0b", 3), std::string(100'000, 'x')}) {
    secure_string plain("old");
    EXPECT_NE(password_.decrypt(secure_string(encrypted(text)), plain), 0);
    EXPECT_EQ(plain.view(), text);
  }
}

TEST_F(ZqPasswordTest, EveryChangedCharacterIsFound) {
  const std::string stored = encrypted("secret");
  for (std::size_t i = 0; i < stored.size(); ++i) {
    std::string changed = stored;
    changed[i] = changed[i] == 'A' ? 'B' : 'A';
    secure_string plain("kept");
    EXPECT_EQ(password_.decrypt(secure_string(changed), plain), 0) << i;
    EXPECT_EQ(plain.view(), "kept");
  }
  EXPECT_TRUE(capture_.has(kDecrypt, 0, kBadText));
}

TEST_F(ZqPasswordTest, BitsThatStandForNothingCountToo) {
  for (const std::string_view text : {"secret", "secrets"}) {
    std::string stored = encrypted(text);
    const std::size_t last = stored.find_last_not_of('=');
    ASSERT_LT(last, stored.size() - 1) << "there is padding";
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    stored[last] = kAlphabet[kAlphabet.find(stored[last]) | 1];
    secure_string plain;
    EXPECT_EQ(password_.decrypt(secure_string(stored), plain), 0);
  }
}

TEST_F(ZqPasswordTest, OneVersionDoesNotPassForAnother) {
  std::string stored = encrypted("secret", '2');
  stored[0] = '3';
  secure_string plain("kept");
  EXPECT_EQ(password_.decrypt(secure_string(stored), plain), 0);
  EXPECT_EQ(plain.view(), "kept");
}

TEST_F(ZqPasswordTest, EveryCutIsFound) {
  const std::string stored = encrypted("secret");
  for (std::size_t size = 0; size < stored.size(); ++size) {
    secure_string plain("kept");
    EXPECT_EQ(password_.decrypt(secure_string(stored.substr(0, size)), plain), 0) << size;
    EXPECT_EQ(plain.view(), "kept");
  }
  secure_string plain;
  EXPECT_EQ(password_.decrypt(secure_string(stored + "AAAA"), plain), 0);
}

TEST_F(ZqPasswordTest, AnotherKeyOpensNothing) {
  const ZQPassword other(keyFile(std::string(64, '7'), 0600, "other"));
  secure_string plain("kept");
  EXPECT_EQ(other.decrypt(secure_string(encrypted("secret")), plain), 0);
  EXPECT_EQ(plain.view(), "kept");
}

TEST_F(ZqPasswordTest, PlainBuffersGetTextAndTerminator) {
  const std::string stored = encrypted("secret");
  char out[16];
  std::fill_n(out, 16, '#');
  std::size_t size = sizeof out;
  EXPECT_NE(password_.decrypt(stored.c_str(), out, &size), 0);
  EXPECT_EQ(size, 6U);
  EXPECT_EQ(std::string(out, 8), std::string("secret\0#", 8));
}

TEST_F(ZqPasswordTest, PlainBufferWithoutRoomStaysAsItIs) {
  const std::string stored = encrypted("secret");
  char out[16];
  for (std::size_t room = 0; room < 7; ++room) {
    std::fill_n(out, 16, '#');
    std::size_t size = room;
    EXPECT_EQ(password_.decrypt(stored.c_str(), out, &size), 0);
    EXPECT_EQ(size, room);
    EXPECT_EQ(std::string(out, 16), std::string(16, '#'));
  }
  EXPECT_TRUE(capture_.has(kDecrypt, 0, "No room for the result"));
  std::size_t size = 7;
  EXPECT_NE(password_.decrypt(stored.c_str(), out, &size), 0);
}

TEST_F(ZqPasswordTest, WideBuffersGetUtf16) {
  const std::string stored = encrypted("g\xC3\xA9heim");
  char16_t out[16];
  std::size_t size = 16;
  EXPECT_NE(password_.decrypt(stored.c_str(), out, &size), 0);
  EXPECT_EQ(size, 6U);
  EXPECT_EQ(std::u16string(out), u"g\u00e9heim");
  size = 6;
  EXPECT_EQ(password_.decrypt(stored.c_str(), out, &size), 0);
}

TEST_F(ZqPasswordTest, NullArgumentsFail) {
  char out[8];
  char16_t wide[8];
  std::size_t size = 8;
  EXPECT_EQ(password_.decrypt(nullptr, out, &size), 0);
  EXPECT_EQ(password_.decrypt("x", static_cast<char*>(nullptr), &size), 0);
  EXPECT_EQ(password_.decrypt("x", out, nullptr), 0);
  EXPECT_EQ(password_.decrypt(nullptr, wide, &size), 0);
  EXPECT_EQ(password_.decrypt("x", static_cast<char16_t*>(nullptr), &size), 0);
  EXPECT_EQ(password_.decrypt("x", wide, nullptr), 0);
  EXPECT_EQ(capture_.count(kDecrypt, 0, "Null argument"), 6U);
  EXPECT_EQ(password_.ConvertToV8(nullptr, out, &size), 0);
  EXPECT_EQ(password_.ConvertToV8("x", nullptr, &size), 0);
  EXPECT_EQ(password_.ConvertToV8("x", out, nullptr), 0);
  EXPECT_EQ(capture_.count("ZQPassword::ConvertToV8", 0, "Null argument"), 3U);
}

TEST_F(ZqPasswordTest, ConvertsEveryVersionToTheEighth) {
  for (const char version : {'1', '2', '3', '5', '8'}) {
    char out[256];
    std::size_t size = sizeof out;
    EXPECT_NE(password_.ConvertToV8(encrypted("secret", version).c_str(), out, &size), 0);
    EXPECT_EQ(out[0], '8');
    EXPECT_EQ(std::string(out).size(), size);
    secure_string plain;
    EXPECT_NE(password_.decrypt(secure_string(out), plain), 0);
    EXPECT_EQ(plain.view(), "secret");
  }
}

TEST_F(ZqPasswordTest, ConversionOfDamagedTextOrWithoutRoomFails) {
  char out[256] = "kept";
  std::size_t size = sizeof out;
  EXPECT_EQ(password_.ConvertToV8("3AAAA", out, &size), 0);
  EXPECT_TRUE(capture_.has("ZQPassword::ConvertToV8", 0, kBadText));
  size = 20;
  EXPECT_EQ(password_.ConvertToV8(encrypted("secret", '3').c_str(), out, &size), 0);
  EXPECT_TRUE(capture_.has("ZQPassword::ConvertToV8", 0, "No room for the result"));
  EXPECT_STREQ(out, "kept");
}

TEST_F(ZqPasswordTest, UnknownVersionIsNotMade) {
  std::string stored = "kept";
  EXPECT_EQ(password_.encrypt('4', secure_string("secret"), stored), 0);
  EXPECT_EQ(password_.encrypt('\0', secure_string("secret"), stored), 0);
  EXPECT_EQ(stored, "kept");
  EXPECT_EQ(capture_.count("ZQPassword::encrypt", 0, "Unknown version"), 2U);
}

TEST_F(ZqPasswordTest, KeyFileIsBytesOrDigits) {
  std::string bytes;
  for (char c = 0; c < 32; ++c) bytes += c;
  const std::string stored = encrypted("secret");
  for (const std::string& text : {bytes, std::string(kHexKey) + "\n", std::string(kHexKey) + "\r\n"}) {
    secure_string plain;
    EXPECT_NE(ZQPassword(keyFile(text, 0640, "same")).decrypt(secure_string(stored), plain), 0);
  }
}

TEST_F(ZqPasswordTest, BadKeyFilesAreNamed) {
  constexpr char kNoKey[] = "The key file does not hold 32 bytes or 64 hexadecimal digits";
  const std::string hex(kHexKey);
  const std::pair<std::string, const char*> kCases[] = {
      {"", "No key file is configured"},
      {folder_.path("none"), "The key file cannot be read"},
      {folder_.path(), "The key file cannot be read"},
      {keyFile(hex, 0604, "open"), "The key file is open to others than its owner and group"},
      {keyFile("", 0600, "empty"), kNoKey},
      {keyFile(hex.substr(1), 0600, "short"), kNoKey},
      {keyFile(hex + "0", 0600, "long"), kNoKey},
      {keyFile(hex + "\n\n\n", 0600, "lines"), kNoKey},
      {keyFile("x" + hex.substr(1), 0600, "letter"), kNoKey},
      {keyFile(std::string(31, 'k'), 0600, "bytes"), kNoKey},
      {keyFile(std::string(10000, '0'), 0600, "huge"), kNoKey},
  };
  for (const auto& [path, reason] : kCases) {
    LogCapture capture;
    secure_string plain("kept");
    EXPECT_EQ(ZQPassword(path).decrypt(secure_string("8AAAA"), plain), 0);
    EXPECT_EQ(plain.view(), "kept");
    EXPECT_TRUE(capture.has(kDecrypt, 0, reason)) << path;
    std::string stored = "kept";
    EXPECT_EQ(ZQPassword(path).encrypt('8', secure_string("secret"), stored), 0);
    EXPECT_EQ(stored, "kept");
    EXPECT_TRUE(capture.has("ZQPassword::encrypt", 0, reason)) << path;
  }
}

TEST_F(ZqPasswordTest, KeyFileIsFromEnvironmentOrConfiguration) {
  unsetenv("ZQXML_KEY_FILE");
  secure_string plain;
  const secure_string stored(encrypted("secret"));
  {
    const TestSettings settings;
    EXPECT_FALSE(ZQPassword().isConfigured());
    EXPECT_EQ(ZQPassword().decrypt(stored, plain), 0);
  }
  const TestSettings settings{{"Password/KeyFile", folder_.path("key")}};
  EXPECT_TRUE(ZQPassword().isConfigured());
  EXPECT_NE(ZQPassword().decrypt(stored, plain), 0);
  setenv("ZQXML_KEY_FILE", folder_.path("none").c_str(), 1);
  EXPECT_EQ(ZQPassword().decrypt(stored, plain), 0) << "the environment comes first";
  unsetenv("ZQXML_KEY_FILE");
}

TEST_F(ZqPasswordTest, LeavesNoPasswordInFreedMemory) {
  const secure_string secret(FreedSecrets::kMarker);
  const FreedSecrets freed;
  std::string stored;
  ASSERT_NE(password_.encrypt('3', secret, stored), 0);
  {
    secure_string plain;
    EXPECT_NE(password_.decrypt(secure_string(stored), plain), 0);
    EXPECT_EQ(plain, secret);
    char out[256];
    std::size_t size = sizeof out;
    EXPECT_NE(password_.decrypt(stored.c_str(), out, &size), 0);
    size = 3;
    EXPECT_EQ(password_.decrypt(stored.c_str(), out, &size), 0);
    size = sizeof out;
    EXPECT_NE(password_.ConvertToV8(stored.c_str(), out, &size), 0);
  }
  EXPECT_EQ(freed.count(), 0);
}

TEST_F(ZqPasswordTest, NoLogLineHasAPassword) {
  const LogCapture capture(100);
  const std::string stored = encrypted("secret-text");
  char out[4];
  std::size_t size = sizeof out;
  EXPECT_EQ(password_.decrypt(stored.c_str(), out, &size), 0);
  EXPECT_EQ(password_.decrypt((stored + "=").c_str(), out, &size), 0);
  EXPECT_FALSE(capture.empty());
  for (const CapturedLine& line : capture.lines()) {
    EXPECT_EQ(line.text.find("secret-text"), std::string::npos);
    EXPECT_EQ(line.text.find(stored), std::string::npos);
  }
}

}  // namespace
}  // namespace zqxml
