#include "tools/zqmsg/json/json_text.h"

#include <zqxml/platform/text.h>

#include <cmath>

#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

template <class T>
void appendNumber(std::string& out, T value) {
  if (std::isnan(value)) {
    out += "\"NaN\"";
  } else if (std::isinf(value)) {
    out += value < 0 ? "\"-Infinity\"" : "\"Infinity\"";
  } else if (value == 0 && std::signbit(value)) {
    out += "-0.0";  // "-0" is an integer to many readers, and loses its sign
  } else {
    out += numberText(value);
  }
}

}  // namespace

void appendJsonString(std::string& out, std::string_view text) {
  out += '"';
  for (const char c : toUtf8(toUtf16(text))) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (byte < 0x20 || byte == 0x7f) {
      out += "\\u00";
      out += kHexDigits[byte >> 4];
      out += kHexDigits[byte & 15];
    } else {
      out += c;
    }
  }
  out += '"';
}

void appendJsonNumber(std::string& out, double value) {
  appendNumber(out, value);
}

void appendJsonNumber(std::string& out, float value) {
  appendNumber(out, value);
}

}  // namespace zqxml::tool
