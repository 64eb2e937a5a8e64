#pragma once

#include <zqxml/platform/file.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zqxml::tool {

/// An input, read once from its start to its end: a file, or standard input for the name "-". Every failure
/// throws Failure with status kFailed.
class ByteSource {
 public:
  explicit ByteSource(const std::string& file);

  /// What messages call it: the file's name, or "standard input".
  const std::string& name() const { return name_; }
  /// Bytes that it has in all; 0 when that is not known.
  std::uint64_t size() const { return size_; }
  /// Position of the next byte.
  std::uint64_t position() const { return position_; }

  /// The next bytes without taking them: `size` of them, or fewer at the end. Valid until the next call.
  std::string_view peek(std::size_t size);
  /// Appends the next `size` bytes to `out`, or fewer at the end; gives their count. Memory grows with what
  /// arrives, not with what was asked for.
  std::uint64_t read(std::string& out, std::uint64_t size);

 private:
  /// Puts more bytes into the buffer; false at the end.
  bool fill(std::size_t size);

  std::string name_;
  CUlFile file_;
  std::string buffer_;
  std::size_t taken_ = 0;  // bytes of the buffer that are gone
  std::uint64_t position_ = 0;
  std::uint64_t size_ = 0;
};

}  // namespace zqxml::tool
