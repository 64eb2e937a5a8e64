#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace zqxml::tool {

/// An input, read once from its start to its end: a file, a pipe, or standard input for the name "-". What a
/// pipe has is taken as it comes. Every failure throws Failure with status kFailed.
class ByteSource {
 public:
  explicit ByteSource(const std::string& file);
  ~ByteSource();
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;

  /// What messages call it: the file's name, or "standard input".
  const std::string& name() const { return name_; }
  /// Bytes that it has in all; 0 when that is not known.
  std::uint64_t size() const { return size_; }
  /// Position of the next byte.
  std::uint64_t position() const { return position_; }
  /// Called before every reading that may have to wait for who writes the input.
  void onWait(std::function<void()> call) { onWait_ = std::move(call); }

  /// The next bytes without taking them: `size` of them, or fewer at the end. Valid until the next call.
  std::string_view peek(std::size_t size) { return peekAtLeast(size).substr(0, size); }
  /// Likewise at least `size` bytes, and what is there behind them without waiting.
  std::string_view peekAtLeast(std::size_t size);
  /// Appends the next `size` bytes to `out`, or fewer at the end; gives their count. Memory grows with what
  /// arrives, not with what was asked for.
  std::uint64_t read(std::string& out, std::uint64_t size);
  /// Appends the next line without its line feed to `out`; false at the end. A line of more than `most` bytes
  /// is a failure.
  bool readLine(std::string& out, std::uint64_t most);

 private:
  /// Puts more bytes into the buffer; false at the end.
  bool fill();
  void take(std::string& out, std::size_t size);
  std::string_view held() const { return std::string_view(buffer_).substr(taken_, filled_ - taken_); }

  std::string name_;
  int descriptor_ = -1;
  std::function<void()> onWait_;
  std::string buffer_;
  std::size_t taken_ = 0;   // bytes of the buffer that are gone
  std::size_t filled_ = 0;  // bytes of the buffer that came
  std::uint64_t position_ = 0;
  std::uint64_t size_ = 0;
};

}  // namespace zqxml::tool
