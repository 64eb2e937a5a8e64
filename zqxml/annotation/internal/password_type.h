// The password encryption types as the plain integers that texts, contexts and pstrings carry.
#pragma once

#include <zqxml/catalogue/generated/Annotation_enums.h>
#include <zqxml/xml/encoding_flags.h>

#include <cstdint>
#include <initializer_list>

namespace zqxml {

/// Numbers of Annotation::PasswordEncryptType.
enum PasswordType : int {
  kUnknown = static_cast<int>(Annotation::PasswordEncryptType::UNKNOWN),
  kPlainText = static_cast<int>(Annotation::PasswordEncryptType::PLAIN_TEXT),
  kSession = static_cast<int>(Annotation::PasswordEncryptType::SESSION_ENCRYPTION),
  kVersion1 = static_cast<int>(Annotation::PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER1),
  kVersion2 = static_cast<int>(Annotation::PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER2),
  kVersion3 = static_cast<int>(Annotation::PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER3),
  kPassThrough = static_cast<int>(Annotation::PasswordEncryptType::PASS_THROUGH),
  kSessionPlusVersion2 = static_cast<int>(Annotation::PasswordEncryptType::SESSION_PLUS_ZQPASSWORD_VER2),
  kSessionPlusVersion3 = static_cast<int>(Annotation::PasswordEncryptType::SESSION_PLUS_ZQPASSWORD_VER3),
  kBase64 = static_cast<int>(Annotation::PasswordEncryptType::BASE64),
  kVersion5 = static_cast<int>(Annotation::PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER5),
  kVersion8 = static_cast<int>(Annotation::PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER8),
};

/// The type that a password is written as, `annotated` being that of its field.
constexpr int writtenType(const EncodingFlags& flags, int annotated) {
  return flags.passwordEncType != 0 && !flags.keepPasswordEncType ? flags.passwordEncType : annotated;
}

/// A few types as bits; unknown numbers are in no set.
class PasswordTypeSet {
 public:
  constexpr PasswordTypeSet(std::initializer_list<PasswordType> types) {
    for (const PasswordType type : types) bits_ |= 1u << type;
  }
  constexpr bool contains(int type) const { return type >= 0 && type < 32 && ((bits_ >> type) & 1) != 0; }

 private:
  std::uint32_t bits_ = 0;
};

/// Types that ZQPassword opens by itself, and recodes to version 8.
inline constexpr PasswordTypeSet kStoredForms{kVersion1, kVersion2, kVersion3, kVersion5, kVersion8};

}  // namespace zqxml
