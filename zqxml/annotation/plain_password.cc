#include <zqxml/annotation/internal/once_per_process.h>
#include <zqxml/annotation/internal/password_type.h>
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

/// Types whose stored form may be of any length.
constexpr PasswordTypeSet kOfAnyLength{kVersion3, kVersion5, kVersion8};

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
  // NOLINTNEXTLINE(cppcoreguidelines-slicing): the bytes alone
  if (encryptionType_ == kPlainText) return *this;
  bstring plain;
  if (kOfAnyLength.contains(encryptionType_)) {
    if (const std::optional<secure_string> whole = decryptWhole(str())) return std::string(whole->view());
  } else if (encryptionType_ != kUnknown && decryptShort(str(), plain)) {
    return plain;
  }
  if (plainPasswordFailure.first()) {
    logError("pstring::getPlainPassword",
             "XNMessageBase::getPlainPasswor(): NO PASSWORD DECRYPTION ALGORITHM FOUND");
  }
  return {};
}

secure_basic_string<char> pstring::getPlainPassword_s() const {
  if (encryptionType_ == kPlainText) return secure_string(std::string_view(str()));
  if (encryptionType_ == kUnknown) {
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
  if (encryptionType_ == kVersion8 && size() > 1 && str().front() == '8') return *this;
  if (kStoredForms.contains(encryptionType_)) {
    PasswordArea<2048> out;
    std::size_t size = out.size();
    if (ZQPassword().ConvertToV8(c_str(), out.data(), &size) != 0) return pstring(out.c_str(), kVersion8);
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
