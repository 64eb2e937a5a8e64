#pragma once

#include <zqxml/platform/secure_string.h>

#include <array>
#include <string>

namespace zqxml::internal {

/// The 32 bytes of a key file, overwritten when the object goes.
class KeyFile {
 public:
  KeyFile() = default;
  ~KeyFile() { cleanse(bytes_.data(), bytes_.size()); }
  KeyFile(const KeyFile&) = delete;
  KeyFile& operator=(const KeyFile&) = delete;

  /// Reads the file: 32 bytes as they are, or 64 hexadecimal digits and an optional line end. Null on
  /// success, else why not. The file may give no rights to others than its owner and group.
  const char* read(const std::string& path) noexcept;

  const unsigned char* bytes() const { return bytes_.data(); }

 private:
  std::array<unsigned char, 32> bytes_{};
};

}  // namespace zqxml::internal
