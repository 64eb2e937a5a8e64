// pstring: value type of FDT_PSTRING, a password together with the form that its text is held in.
#pragma once

#include <zqxml/message/bstring.h>
#include <zqxml/platform/export.h>

#include <cstdint>
#include <string>
#include <utility>

namespace zqxml {

template <class Char>
class secure_basic_string;

/// A bstring with an encryption type (Annotation::PasswordEncryptType as a number). Type 1 is plain text;
/// with any other type the text holds the stored bytes of that form, without Base64 and without the type mark
/// of the wire form. Belongs to one thread at a time.
class ZQXML_EXPORT pstring : public bstring {
 public:
  /// Empty, type 1.
  pstring() = default;
  /// Plain text, type 1.
  pstring(const std::string& text) : bstring(text) {}
  /// `type` of 12 or more is stored as 1.
  pstring(const std::string& text, int type) : bstring(text), encryptionType_(type >= 12 ? 1 : type) {}
  /// @{
  /// Text and type are copied and moved together.
  pstring(const pstring&) = default;
  pstring(pstring&&) noexcept = default;
  ~pstring() override = default;
  pstring& operator=(const pstring&) = default;
  pstring& operator=(pstring&&) noexcept = default;
  /// @}
  /// @{
  /// Takes the text, and type 1.
  pstring& operator=(const std::string& text) {
    assign(text);
    encryptionType_ = 1;
    return *this;
  }
  pstring& operator=(const bstring& text) { return *this = text.str(); }
  /// @}

  /// @{
  /// Compares the texts, not the types.
  bool operator==(const pstring& other) const { return str() == other.str(); }
  bool operator==(const std::string& text) const { return str() == text; }
  /// @}

  /// Annotation::PasswordEncryptType as a number, 1 (plain text) unless another was given.
  int getEncryptionType() const { return encryptionType_; }
  /// Stores the type as given, with no check.
  void setEncryptionType(int type) { encryptionType_ = type; }

  /// The plain password: the text itself for type 1; for types 5, 10 and 11 ZQPassword over the whole text;
  /// for the others ZQPassword over at most 2,048 bytes of it. Type 0 and a failed decryption give an empty
  /// bstring and, once per process, an error line: a failure cannot be told from an empty password.
  bstring getPlainPassword() const;
  /// The same in wiped memory and without size limit; each failure gives an error line and an empty value.
  secure_basic_string<char> getPlainPassword_s() const;
  /// The password recoded to type 11; a copy when it is empty or of that form already. An empty pstring of
  /// type 1, and an error line once per process, when it cannot be recoded (a plain one cannot).
  pstring getV8Password() const;

 private:
  void setEncryptedPassword(const std::string& unused);

  std::int32_t encryptionType_ = 1;
};

}  // namespace zqxml
