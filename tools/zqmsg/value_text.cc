#include "tools/zqmsg/value_text.h"

#include <zqxml/catalogue/lookup.h>

#include <array>
#include <charconv>
#include <cstdint>

namespace zqxml::tool {
namespace {

constexpr std::size_t kShown = 60;
constexpr std::size_t kShownBefore = 16;

// Length of the well-formed UTF-8 sequence at the start of `text`, 0 when there is none (RFC 3629).
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(0);
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xc2 ? 0
                             : first < 0xe0 ? 2
                             : first < 0xf0 ? 3
                             : first < 0xf5 ? 4
                                            : 0;
  if (length == 0 || length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xc0) != 0x80) return 0;
  if (first == 0xe0 && byte(1) < 0xa0) return 0;
  if (first == 0xed && byte(1) > 0x9f) return 0;  // surrogates
  if (first == 0xf0 && byte(1) < 0x90) return 0;
  if (first == 0xf4 && byte(1) > 0x8f) return 0;
  return length;
}

// C1 control characters, U+0080 to U+009F, steer terminals as C0 ones do.
bool isControl(std::string_view sequence) {
  const unsigned first = static_cast<unsigned char>(sequence[0]);
  return first < 0x20 || first == 0x7f || (first == 0xc2 && static_cast<unsigned char>(sequence[1]) < 0xa0);
}

void appendHex(std::string& out, char byte) {
  constexpr char kDigits[] = "0123456789abcdef";
  const unsigned value = static_cast<unsigned char>(byte);
  out += "\\x";
  out += kDigits[value >> 4];
  out += kDigits[value & 15];
}

void appendControl(std::string& out, std::string_view sequence) {
  if (sequence[0] == '\n') {
    out += "\\n";
  } else if (sequence[0] == '\t') {
    out += "\\t";
  } else if (sequence[0] == '\r') {
    out += "\\r";
  } else {
    for (char byte : sequence) appendHex(out, byte);
  }
}

template <class T>
std::string shortest(T value) {
  std::array<char, 64> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return std::string(text.data(), end);
}

}  // namespace

std::string escapedText(std::string_view text, char quote) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    const std::string_view sequence = text.substr(0, length);
    if (length == 0) {
      appendHex(out, text[0]);
    } else if (isControl(sequence)) {
      appendControl(out, sequence);
    } else {
      if (quote != '\0' && (text[0] == quote || text[0] == '\\')) out += '\\';
      out += sequence;
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

std::string quotedText(std::string_view text, std::size_t position) {
  if (text.size() <= kShown) return '"' + escapedText(text, '"') + '"';
  std::size_t start = position > kShownBefore ? position - kShownBefore : 0;
  if (start + kShown > text.size()) start = text.size() - kShown;
  const auto insideSequence = [text](std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xc0) == 0x80;
  };
  std::size_t end = start + kShown;
  for (int i = 0; i < 3 && start > 0 && insideSequence(start); ++i) --start;
  for (int i = 0; i < 3 && insideSequence(end); ++i) ++end;
  std::string out = start == 0 ? "\"" : "...\"";
  out += escapedText(text.substr(start, end - start), '"');
  out += end == text.size() ? "\"" : "\"...";
  out += " (" + std::to_string(text.size()) + " bytes)";
  return out;
}

std::string numberText(double value) {
  return shortest(value);
}

std::string numberText(float value) {
  return shortest(value);
}

const char* nameOfValue(const FieldDef& field, std::int64_t value) {
  if (kBoolTypes.contains(field.getType())) return value == 0 ? "false" : value == 1 ? "true" : nullptr;
  if (!kEnumTypes.contains(field.getType())) return nullptr;
  const _ClassDef* enumeration = catalogue::classOfField(field);
  if (enumeration == nullptr) return nullptr;
  return catalogue::enumeratorName(*enumeration, static_cast<std::int32_t>(value));
}

}  // namespace zqxml::tool
