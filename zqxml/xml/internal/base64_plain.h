// Base64 text of XML into bytes, without the XML library. Not installed.
#pragma once

#include <string>
#include <string_view>

namespace zqxml {

/// Appends to `out` the bytes that a Base64 text stands for which has nothing between its characters, as most
/// have. False, `out` untouched and nothing logged, for any other, which base64DecodeXmlCh may still read.
bool base64DecodePlain(std::string_view text, std::string& out);

}  // namespace zqxml
