// Where a DOM writer puts its bytes: straight into a string. Not installed.
#pragma once

#include <cstring>
#include <string>
#include <xercesc/framework/XMLFormatter.hpp>

namespace zqxml {

/// Collects the bytes of a text whose code units are of type Char, in native byte order.
template <class Char>
class StringFormatTarget final : public xercesc::XMLFormatTarget {
 public:
  /// Room for the usual small message.
  static constexpr std::size_t kInitialBytes = 1023;

  StringFormatTarget() { text_.reserve(kInitialBytes / sizeof(Char)); }

  void writeChars(const XMLByte* bytes, const XMLSize_t count, xercesc::XMLFormatter*) override {
    const std::size_t end = size_ + count;
    text_.resize((end + sizeof(Char) - 1) / sizeof(Char));
    std::memcpy(reinterpret_cast<char*>(text_.data()) + size_, bytes, count);
    size_ = end;
  }

  /// The text up to its first NUL; leaves the target empty.
  std::basic_string<Char> take() {
    const std::size_t nul = text_.find(Char{});
    if (nul != text_.npos) text_.resize(nul);
    size_ = 0;
    return std::move(text_);
  }

 private:
  std::basic_string<Char> text_;
  std::size_t size_ = 0;  ///< bytes
};

}  // namespace zqxml
