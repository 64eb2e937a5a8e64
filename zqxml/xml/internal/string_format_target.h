// Where a DOM writer puts its bytes: straight into a string. Not installed.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <xercesc/framework/XMLFormatter.hpp>

namespace zqxml {

/// Collects the bytes of a text whose code units are of type Char, in native byte order.
template <class Char>
class StringFormatTarget final : public xercesc::XMLFormatTarget {
 public:
  /// Room for the usual small message.
  static constexpr std::size_t kInitialBytes = 1024;

  StringFormatTarget() : text_(kInitialBytes / sizeof(Char), Char{}) {}

  void writeChars(const XMLByte* bytes, const XMLSize_t count, xercesc::XMLFormatter*) override {
    if (count > text_.size() * sizeof(Char) - size_) grow(count);
    std::memcpy(reinterpret_cast<char*>(text_.data()) + size_, bytes, count);
    size_ += count;
  }

  /// The text up to its first NUL.
  std::basic_string_view<Char> text() const {
    const std::basic_string_view<Char> written(text_.data(), size_ / sizeof(Char));
    return written.substr(0, written.find(Char{}));
  }

 private:
  // Bytes come a few at a time, so the string is kept larger than what is written.
  void grow(std::size_t count) { text_.resize(2 * text_.size() + count / sizeof(Char) + 1); }

  std::basic_string<Char> text_;
  std::size_t size_ = 0;  ///< bytes written
};

}  // namespace zqxml
