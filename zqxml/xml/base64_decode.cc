#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/base64_decode.h>
#include <zqxml/xml/internal/base64_plain.h>
#include <zqxml/xml/xml_start_up.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <xercesc/util/Base64.hpp>

namespace zqxml {
namespace {

/// The six bits that a character stands for; -1 for what is no character of Base64.
constexpr std::array<std::int8_t, 256> kSextets = [] {
  constexpr std::string_view kCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<std::int8_t, 256> sextets{};
  sextets.fill(-1);
  for (std::size_t i = 0; i < kCharacters.size(); ++i)
    sextets[static_cast<unsigned char>(kCharacters[i])] = static_cast<std::int8_t>(i);
  return sextets;
}();

}  // namespace

bool base64DecodePlain(std::string_view text, std::string& out) {
  if (text.empty() || text.size() % 4 != 0) return false;
  const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  std::string bytes(text.size() / 4 * 3, '\0');
  char* to = bytes.data();
  // Negative as soon as one of the characters is none.
  std::int32_t all = 0;
  for (std::size_t i = 0; i < text.size(); i += 4) {
    std::int32_t bits = 0;
    const std::size_t end = i + 4 < text.size() ? 4 : 4 - padding;
    for (std::size_t j = 0; j < 4; ++j) {
      const std::int32_t sextet = j < end ? kSextets[static_cast<unsigned char>(text[i + j])] : 0;
      all |= sextet;
      bits = bits << 6 | (sextet & 0x3f);
    }
    for (int shift = 16; shift >= 0; shift -= 8) *to++ = static_cast<char>(bits >> shift & 0xff);
  }
  // What the padding stands for has to be 0.
  const std::string_view written(bytes.data(), bytes.size() - padding);
  if (all < 0 || bytes.find_first_not_of('\0', written.size()) != bytes.npos) return false;
  out.append(written);
  return true;
}

bool base64DecodeXmlCh(const char16_t* text, std::string& out) {
  if (!initialize()) return false;
  if (text == nullptr || *text == 0) {
    out.clear();
    return true;
  }
  XMLSize_t length = 0;
  const internal::XercesBlock<XMLByte> bytes(xercesc::Base64::decodeToXMLByte(text, &length));
  if (bytes == nullptr) {
    logError("base64DecodeXmlCh", "Base64::decode failed");
    return false;
  }
  out.append(reinterpret_cast<const char*>(bytes.get()), length);
  return true;
}

}  // namespace zqxml
