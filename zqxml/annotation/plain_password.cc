#include <zqxml/annotation/internal/once_per_process.h>
#include <zqxml/annotation/internal/wiped_text.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/pstring.h>
#include <zqxml/platform/zq_password.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace zqxml {

OncePerProcess plainPasswordFailure;
OncePerProcess v8PasswordFailure;

namespace {

constexpr int kNoType = 0;
constexpr int kPlainType = 1;
constexpr int kVersion8Type = 11;

/// Types whose stored form may be of any length.
constexpr bool isOfAnyLength(int type) {
  return type == 5 || type == 10 || type == kVersion8Type;
}
/// Types that ZQPassword recodes to version 8.
constexpr bool isRecodable(int type) {
  return isOfAnyLength(type) || type == 3 || type == 4;
}

/// A character area with room for `kSize` characters and a terminator, zeroed at the start and wiped at the
/// end.
template <std::size_t kSize>
class PasswordArea {
 public:
  PasswordArea() = default;
  /// As much of the text as fits.
  explicit PasswordArea(std::string_view text) { text.copy(area_.data(), kSize); }
  ~PasswordArea() { cleanse(area_.data(), area_.size()); }
  PasswordArea(const PasswordArea&) = delete;
  PasswordArea& operator=(const PasswordArea&) = delete;

  static constexpr std::size_t size() { return kSize; }
  char* data() { return area_.data(); }
  const char* c_str() const { return area_.data(); }

 private:
  std::array<char, kSize + 1> area_{};
};

/// The plain password of a stored form of any length, whatever it holds.
std::optional<secure_string> decryptWhole(const std::string& stored) {
  secure_string plain;
  if (ZQPassword().decrypt(secure_string(std::string_view(stored)), plain) == 0) return std::nullopt;
  return plain;
}

/// The plain password of a stored form. QUIRK: only its first 2,048 bytes count, and the result has 511 at
/// most.
bool decryptShort(const std::string& stored, bstring& plain) {
  const PasswordArea<2048> in(stored);
  PasswordArea<511> out;
  std::size_t size = out.size();
  if (ZQPassword().decrypt(in.c_str(), out.data(), &size) == 0) return false;
  plain = bstring(out.c_str());
  return true;
}

}  // namespace

bstring pstring::getPlainPassword() const {
  if (encryptionType_ == kPlainType) return *this;
  bstring plain;
  if (isOfAnyLength(encryptionType_)) {
    if (const std::optional<secure_string> whole = decryptWhole(str())) return std::string(whole->view());
  } else if (encryptionType_ != kNoType && decryptShort(str(), plain)) {
    return plain;
  }
  if (plainPasswordFailure.first()) {
    logError("pstring::getPlainPassword",
             "XNMessageBase::getPlainPasswor(): NO PASSWORD DECRYPTION ALGORITHM FOUND");
  }
  return {};
}

secure_basic_string<char> pstring::getPlainPassword_s() const {
  if (encryptionType_ == kPlainType) return secure_string(std::string_view(str()));
  if (encryptionType_ == kNoType) {
    logError("pstring::getPlainPassword_s",
             "XNMessageBase::getPlainPassword_s(): NO PASSWORD DECRYPTION ALGORITHM FOUND");
    return {};
  }
  if (std::optional<secure_string> plain = decryptWhole(str())) return *std::move(plain);
  logError("pstring::getPlainPassword_s", "XNMessageBase::getPlainPassword_s(): Failed to decrypt password");
  return {};
}

pstring pstring::getV8Password() const {
  if (empty()) return *this;
  if (encryptionType_ == kVersion8Type && size() > 1 && str().front() == '8') return *this;
  if (isRecodable(encryptionType_)) {
    PasswordArea<2048> out;
    std::size_t size = out.size();
    if (ZQPassword().ConvertToV8(c_str(), out.data(), &size) != 0) return pstring(out.c_str(), kVersion8Type);
  }
  if (v8PasswordFailure.first()) {
    logError("pstring::getV8Password",
             "XNMessageBase::getV8Password(): NO PASSWORD DECRYPTION ALGORITHM FOUND");
  }
  return {};
}

// Kept for its name alone: neither the argument nor this object changes anything.
void pstring::setEncryptedPassword(const std::string&) {
  getPlainPassword();
}

}  // namespace zqxml
