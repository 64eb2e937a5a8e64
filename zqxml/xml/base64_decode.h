// Base64 text of XML into bytes.
#pragma once

#include <zqxml/platform/export.h>

#include <string>

namespace zqxml {

/// Appends to `out` the bytes that a NUL-terminated Base64 text stands for (RFC 2045: white space between the
/// characters is passed over). A null or empty text empties `out` instead. False, `out` untouched, when the
/// XML library does not start or the text is not Base64 ("Base64::decode failed", level 0). QUIRK: of each
/// UTF-16 unit only the low byte counts. Any thread.
ZQXML_EXPORT bool base64DecodeXmlCh(const char16_t* text, std::string& out);

}  // namespace zqxml
