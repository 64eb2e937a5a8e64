#include <openssl/evp.h>
#include <openssl/rand.h>
#include <stdlib.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/internal/key_file.h>
#include <zqxml/platform/platform_info.h>
#include <zqxml/platform/text.h>
#include <zqxml/platform/zq_password.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace zqxml {
namespace {

constexpr std::string_view kVersions = "12358";
constexpr std::size_t kNonceSize = 12;
constexpr std::size_t kTagSize = 16;
// Far above any password; keeps all sizes in the range of the cipher's `int`.
constexpr std::size_t kLargestText = std::size_t{1} << 24;

using Context = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;
using internal::KeyFile;

bool refuse(const char* operation, const char* reason) {
  EvDebug::DebugLvl(operation, 0, 0, "%s", reason);
  return false;
}

unsigned char* bytesOf(char* text) {
  return reinterpret_cast<unsigned char*>(text);
}
const unsigned char* bytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

// A cipher with key and nonce set and the version fed in as data that is authenticated and not encrypted.
Context startCipher(const KeyFile& key, const unsigned char* nonce, char version, bool encrypting) {
  Context context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
  const auto versionByte = static_cast<unsigned char>(version);
  int size = 0;
  if (!context ||
      EVP_CipherInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.bytes(), nonce, encrypting ? 1 : 0) !=
          1 ||
      EVP_CipherUpdate(context.get(), nullptr, &size, &versionByte, 1) != 1) {
    context.reset();
  }
  return context;
}

bool open(const KeyFile& key, std::string_view stored, secure_string& plain) {
  std::string sealed;
  if (stored.empty() || stored.size() > kLargestText || kVersions.find(stored[0]) == std::string_view::npos ||
      !UlBase64::Decode(stored.substr(1), sealed) || sealed.size() < kNonceSize + kTagSize) {
    return false;
  }
  // Base64 has bits that stand for nothing; changing them is changing the text all the same.
  if (UlBase64::Encode(sealed) != stored.substr(1)) return false;
  const std::size_t size = sealed.size() - kNonceSize - kTagSize;
  const Context context = startCipher(key, bytesOf(sealed.data()), stored[0], false);
  secure_string text;
  // One unit more, so that the cipher has a place to point to when there is nothing to decrypt.
  text.resize(size + 1);
  int written = 0;
  int rest = 0;
  const bool good = context &&
                    EVP_DecryptUpdate(context.get(), bytesOf(text.mutableData()), &written,
                                      bytesOf(sealed.data()) + kNonceSize, static_cast<int>(size)) == 1 &&
                    EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, kTagSize,
                                        sealed.data() + kNonceSize + size) == 1 &&
                    EVP_DecryptFinal_ex(context.get(), bytesOf(text.mutableData()) + written, &rest) == 1;
  if (!good) return false;
  text.resize(size);
  plain = std::move(text);
  return true;
}

bool seal(const KeyFile& key, char version, std::string_view plain, std::string& out) {
  if (plain.size() > kLargestText) return false;
  std::string sealed(kNonceSize + plain.size() + kTagSize, '\0');
  unsigned char* const nonce = bytesOf(sealed.data());
  if (RAND_bytes(nonce, kNonceSize) != 1) return false;
  const Context context = startCipher(key, nonce, version, true);
  unsigned char* const body = nonce + kNonceSize;
  int written = 0;
  int rest = 0;
  const bool good =
      context &&
      EVP_EncryptUpdate(context.get(), body, &written, bytesOf(plain), static_cast<int>(plain.size())) == 1 &&
      EVP_EncryptFinal_ex(context.get(), body + written, &rest) == 1 &&
      EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, kTagSize, body + plain.size()) == 1;
  if (!good) return false;
  out = version + UlBase64::Encode(sealed);
  return true;
}

// Writes text and terminator if there is room for both.
template <typename CharT>
bool putOut(std::basic_string_view<CharT> text, CharT* out, std::size_t* size) {
  if (text.size() >= *size) return false;
  text.copy(out, text.size());
  out[text.size()] = CharT();
  *size = text.size();
  return true;
}

std::string keyFileOfConfiguration() {
  if (const char* named = secure_getenv("ZQXML_KEY_FILE"); named != nullptr && *named != '\0') return named;
  std::string path;
  ZQPlatformInfo().getText("Password", "KeyFile", path);
  return path;
}

// Decrypts for an operation that then passes the text on, or says why it cannot.
bool openFor(const char* operation, const std::string& keyFile, std::string_view stored,
             secure_string& plain) {
  KeyFile key;
  if (const char* reason = key.read(keyFile); reason != nullptr) return refuse(operation, reason);
  if (!open(key, stored, plain)) return refuse(operation, "Not a password of this key, or a damaged one");
  return true;
}

}  // namespace

ZQPassword::ZQPassword() : ZQPassword(keyFileOfConfiguration()) {}

ZQPassword::ZQPassword(std::string keyFile) : keyFile_(std::move(keyFile)) {}

ZQPassword::~ZQPassword() = default;

char ZQPassword::versionOfType(int passwordEncryptType) noexcept {
  switch (passwordEncryptType) {
    case 3:
      return '1';
    case 4:
      return '2';
    case 5:
      return '3';
    case 10:
      return '5';
    case 11:
      return '8';
    default:
      return '\0';
  }
}

int ZQPassword::decrypt(const secure_basic_string<char>& in, secure_basic_string<char>& out) const {
  return openFor("ZQPassword::decrypt", keyFile_, in.view(), out);
}

int ZQPassword::decrypt(const char* in, char* out, std::size_t* size) const {
  constexpr const char* kOperation = "ZQPassword::decrypt";
  if (in == nullptr || out == nullptr || size == nullptr) return refuse(kOperation, "Null argument");
  secure_string plain;
  if (!openFor(kOperation, keyFile_, in, plain)) return 0;
  return putOut(plain.view(), out, size) || refuse(kOperation, "No room for the result");
}

int ZQPassword::decrypt(const char* in, char16_t* out, std::size_t* size) const {
  constexpr const char* kOperation = "ZQPassword::decrypt";
  if (in == nullptr || out == nullptr || size == nullptr) return refuse(kOperation, "Null argument");
  secure_string plain;
  if (!openFor(kOperation, keyFile_, in, plain)) return 0;
  std::u16string wide;
  wide.reserve(plain.size());  // never more units than bytes, so no block is left behind
  appendUtf16(wide, plain.view());
  const bool done = putOut(std::u16string_view(wide), out, size);
  cleanse(wide.data(), wide.capacity() * sizeof(char16_t));
  return done || refuse(kOperation, "No room for the result");
}

int ZQPassword::ConvertToV8(const char* in, char* out, std::size_t* size) const {
  constexpr const char* kOperation = "ZQPassword::ConvertToV8";
  if (in == nullptr || out == nullptr || size == nullptr) return refuse(kOperation, "Null argument");
  secure_string plain;
  if (!openFor(kOperation, keyFile_, in, plain)) return 0;
  std::string stored;
  if (encrypt('8', plain, stored) == 0) return 0;
  return putOut(std::string_view(stored), out, size) || refuse(kOperation, "No room for the result");
}

int ZQPassword::encrypt(char version, const secure_basic_string<char>& plain, std::string& out) const {
  constexpr const char* kOperation = "ZQPassword::encrypt";
  if (kVersions.find(version) == std::string_view::npos) return refuse(kOperation, "Unknown version");
  KeyFile key;
  if (const char* reason = key.read(keyFile_); reason != nullptr) return refuse(kOperation, reason);
  return seal(key, version, plain.view(), out) || refuse(kOperation, "The cipher failed");
}

}  // namespace zqxml
