#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/cdata_end.h>
#include <zqxml/xml/internal/wide_text.h>
#include <zqxml/xml/value_text.h>
#include <zqxml/xml/xml_invalid_char_handler.h>

namespace zqxml {
namespace {

template <class Char>
std::basic_string_view<Char> upToNul(std::basic_string_view<Char> text) {
  return text.substr(0, text.find(Char{}));
}

/// Only bytes 0x20 to 0x7f. One pass without a branch, which the compiler makes a vector loop.
bool isPrintableAscii(std::string_view text) {
  unsigned other = 0;
  for (const char byte : text) other |= static_cast<unsigned char>(byte - 0x20) >= 0x60 ? 1u : 0u;
  return other == 0;
}

void widen(char16_t* out, std::string_view ascii) {
  for (std::size_t i = 0; i < ascii.size(); ++i) out[i] = static_cast<unsigned char>(ascii[i]);
}

}  // namespace

WideName::WideName(const char* name) : text_(short_) {
  for (std::size_t i = 0; i < kShort; ++i) {
    const auto byte = static_cast<unsigned char>(name[i]);
    if (byte >= 0x80) break;
    short_[i] = byte;
    if (byte == 0) return;
  }
  long_ = toUtf16(name);
  text_ = long_.c_str();
}

void WideText::assign(SignedValue value) {
  text_ = WideNumberText::ofSigned(value.number).view();
}

void WideText::assign(UnsignedValue value) {
  text_ = WideNumberText::ofUnsigned(value.number).view();
}

void WideText::assign(FloatingValue value) {
  text_ = WideNumberText::ofFloating(value.number).view();
}

void WideText::assign(PlainValue value) {
  assignAscii(value.text);
}

void WideText::assign(BytesValue value) {
  assignAscii(UlBase64::Encode(value.bytes));
}

void WideText::assignAscii(std::string_view text) {
  text_.resize(text.size());
  widen(text_.data(), text);
}

void WideText::assign(TextValue<char> value) {
  std::string_view utf8 = upToNul(value.text);
  std::string escaped;
  if (value.asCdata) {
    escaped = utf8;
    escapeCDATAEnd(escaped);
    utf8 = escaped;
  }
  if (isPrintableAscii(utf8)) {
    assignAscii(utf8);
  } else {
    assignEncoded(toUtf16(utf8));
  }
}

void WideText::assign(TextValue<char16_t> value) {
  const std::u16string_view utf16 = upToNul(value.text);
  if (!value.asCdata) return assignEncoded(utf16);
  std::u16string escaped(utf16);
  escapeCDATAEnd(escaped);
  assignEncoded(escaped);
}

void WideText::assignEncoded(std::u16string_view utf16) {
  text_.clear();
  if (XmlInvalidCharHandler::isPlain(utf16)) {
    text_ = utf16;
  } else {
    XmlInvalidCharHandler::appendEncoded(text_, utf16);
  }
}

}  // namespace zqxml
