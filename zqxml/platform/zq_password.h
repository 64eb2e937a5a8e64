#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/platform/secure_string.h>

#include <cstddef>
#include <string>

namespace zqxml {

/// The suite's own encryption of passwords: AES-256-GCM (NIST SP 800-38D) under a key from a file.
///
/// A stored password is a text without NUL: one character for the version of the form, then the Base64 of 12
/// bytes nonce, the encrypted bytes and 16 bytes tag. The version is authenticated too, so that no form
/// passes for another. The versions are named by the digits '1', '2', '3', '5' and '8'; the text of a version
/// 8 password thus begins with "8".
///
/// The key file holds 32 bytes, or 64 hexadecimal digits and an optional line end, and may not be open to
/// others than its owner and group. Its path is `$ZQXML_KEY_FILE`, else the text "KeyFile" in section
/// "Password" of the configuration. It is read at each use and kept nowhere.
///
/// All operations give non-zero on success. On failure (no key file, wrong key, a text that was changed or
/// cut, no room) they give 0, write nothing to `out`, and log one line without any secret. Nothing throws but
/// std::bad_alloc. An object may be used by several threads at once.
class ZQXML_EXPORT ZQPassword {
 public:
  /// The key file of the configuration.
  ZQPassword();
  /// A key file of the caller's.
  explicit ZQPassword(std::string keyFile);
  ~ZQPassword();

  /// Turns a stored password, of whatever version, into the plain one.
  int decrypt(const secure_basic_string<char>& in, secure_basic_string<char>& out) const;
  /// The same over plain buffers. `*size` is the room in `out`, in characters and with the terminator that is
  /// written; it becomes the number of characters before that.
  int decrypt(const char* in, char* out, std::size_t* size) const;
  /// The same with a wide result.
  int decrypt(const char* in, char16_t* out, std::size_t* size) const;

  /// Recodes a stored password of any version into one of version 8.
  int ConvertToV8(const char* in, char* out, std::size_t* size) const;

  /// Makes a stored password of the version that the digit names ('1', '2', '3', '5' or '8').
  int encrypt(char version, const secure_basic_string<char>& plain, std::string& out) const;

  /// The digit of the version that belongs to a password encryption type (3, 4, 5, 10 or 11); NUL for the
  /// others.
  static char versionOfType(int passwordEncryptType) noexcept;

  /// Whether a key file is named at all.
  bool isConfigured() const { return !keyFile_.empty(); }

 private:
  std::string keyFile_;
};

}  // namespace zqxml
