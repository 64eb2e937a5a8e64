#include <zqxml/logging/xml_log_context.h>
#include <zqxml/xml/xml_invalid_char_handler.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace zqxml {
namespace {

constexpr std::u16string_view kSequenceStart = u"|#";
/// Units from "|#" to "!": two and at most four digits.
constexpr std::size_t kLongestSequence = 6;

/// "|#" HEX "!" of one unit.
void appendSequence(std::u16string& out, char16_t unit) {
  out += kSequenceStart;
  bool leading = true;
  for (int shift = 12; shift >= 0; shift -= 4) {
    const unsigned digit = (static_cast<unsigned>(unit) >> shift) & 0xf;
    leading = leading && digit == 0 && shift != 0;
    if (!leading) out += u"0123456789ABCDEF"[digit];
  }
  out += u'!';
}

constexpr int hexValue(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  return -1;
}

/// The unit that at most four digits stand for. QUIRK: no digits at all are the unit 0.
std::optional<char16_t> parseUnit(std::u16string_view digits) {
  unsigned value = 0;
  for (std::size_t position = 0; position < digits.size(); ++position) {
    const int digit = hexValue(digits[position]);
    if (digit < 0) {
      logError(
          "parseForInteger",
          "Decoding of input string [%ls] failed at position[%zu] for ch[%lc]. Treating the sequence as pattern instead of invalid char.",
          digits, position, digits[position]);
      return std::nullopt;
    }
    value = value * 16 + static_cast<unsigned>(digit);
  }
  return static_cast<char16_t>(value);
}

/// Appends `text` to `out` with its sequences replaced; true when there was one.
bool appendReplaced(std::u16string& out, std::u16string_view text) {
  bool replaced = false;
  while (!text.empty()) {
    const std::size_t start = std::min(text.find(kSequenceStart), text.size());
    out += text.substr(0, start);
    text.remove_prefix(start);
    const std::size_t end = text.find(u'!', std::min(kSequenceStart.size(), text.size()));
    if (end == text.npos) {
      out += text;
      break;
    }
    const std::optional<char16_t> unit =
        end > kLongestSequence ? std::nullopt
                               : parseUnit(text.substr(kSequenceStart.size(), end - kSequenceStart.size()));
    if (unit.has_value()) {
      out += *unit;
      replaced = true;
    } else {
      out += text.substr(0, end + 1);
    }
    text.remove_prefix(end + 1);
  }
  return replaced;
}

/// Appends the text behind an escape form, whose "|" is the first unit of `text`.
void appendUnescaped(std::u16string& out, std::u16string_view text) {
  const std::size_t start = out.size();
  if (!appendReplaced(out, text.substr(std::min<std::size_t>(1, text.size())))) out.insert(start, 1, u'|');
}

}  // namespace

bool XmlInvalidCharHandler::isPlain(std::u16string_view text) {
  // Whole blocks without a branch in them, which the compiler turns into vector code.
  constexpr std::size_t kBlock = 32;
  while (text.size() >= kBlock) {
    unsigned illegal = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
      const char16_t unit = text[i];
      const bool control = (unit < 0x20) & (unit != 9) & (unit != 10) & (unit != 13);
      illegal |= static_cast<unsigned>(control | ((unit & 0xf800) == 0xd800) | (unit >= 0xfffe));
    }
    if (illegal != 0) return false;
    text.remove_prefix(kBlock);
  }
  return std::all_of(text.begin(), text.end(), isLegal);
}

void XmlInvalidCharHandler::appendEncoded(std::u16string& out, std::u16string_view text) {
  if (isPlain(text)) {
    out += text;
    return;
  }
  out += u'|';
  for (const char16_t unit : text) {
    if (isLegal(unit)) {
      out += unit;
    } else {
      appendSequence(out, unit);
    }
  }
}

void XmlInvalidCharHandler::appendDecoded(std::u16string& out, std::u16string_view text) {
  const std::size_t start = out.size();
  if (isEscaped(text)) {
    appendUnescaped(out, text);
  } else {
    out += text;
  }
  out.resize(std::min(out.find(u'\0', start), out.size()));
}

char16_t* XmlInvalidCharHandler::encodeInvalidChars(const char16_t* text) {
  if (text == nullptr) {
    logError("XmlInvalidCharHandler::encodeInvalidChars", "Input is NULL");
    return nullptr;
  }
  std::u16string encoded;
  appendEncoded(encoded, text);
  buffer_ = std::move(encoded);
  if (buffer_.empty()) {
    logDebug("XmlInvalidCharHandler::encodeInvalidChars", 25, "Encoded Data:[NULL]");
    return nullptr;
  }
  return buffer_.data();
}

char16_t* XmlInvalidCharHandler::decodeInvalidChars(const char16_t* text) {
  if (text == nullptr) {
    logError("XmlInvalidCharHandler::decodeInvalidChars", "Input data is NULL. Invalid input argument.");
    return nullptr;
  }
  std::u16string decoded(text);
  if (isEscaped(decoded)) decoded = ParseAndReplaceUtil(std::move(decoded));
  buffer_ = std::move(decoded);
  if (buffer_.empty()) {
    // QUIRK: the text speaks of encoding, although this is the decoder.
    logError("XmlInvalidCharHandler::decodeInvalidChars", "Failed To Encode Invalid XMLChar");
    return nullptr;
  }
  return buffer_.data();
}

bool XmlInvalidCharHandler::hasXmlInvalidChar(std::u16string_view text) {
  return !isPlain(text);
}

bool XmlInvalidCharHandler::hasXmlInvalidChar(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char byte) {
    return static_cast<signed char>(byte) < 32 && byte != 9 && byte != 10 && byte != 13;
  });
}

bool XmlInvalidCharHandler::hasControlChar(std::u16string_view text) {
  return std::any_of(text.begin(), text.end(), [](char16_t unit) { return unit < 32 || unit == 127; });
}

bool XmlInvalidCharHandler::hasControlChar(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value < 32 || value == 127;
  });
}

std::u16string ParseAndReplaceUtil(std::u16string text) {
  std::u16string out;
  appendUnescaped(out, text);
  return out;
}

}  // namespace zqxml
