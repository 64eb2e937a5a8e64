// Pieces of JSON text (RFC 8259).
#pragma once

#include <string>
#include <string_view>

namespace zqxml::tool {

/// `text` as a JSON string, in quotes. What is no UTF-8 becomes U+FFFD.
void appendJsonString(std::string& out, std::string_view text);

/// The shortest JSON number that reads back as `value`. What JSON has no number for is one of the texts
/// "NaN", "Infinity" and "-Infinity".
void appendJsonNumber(std::string& out, double value);
void appendJsonNumber(std::string& out, float value);

}  // namespace zqxml::tool
