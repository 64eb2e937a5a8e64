#include <zqxml/xml/internal/scanned_text.h>
#include <zqxml/xml/internal/xml_characters.h>

namespace zqxml {
namespace {

/// White space that may stand for other white space.
template <class Char>
bool isOddSpace(Char c) {
  return c == '\t' || c == '\n' || c == '\r';
}

void append(std::u16string& out, char32_t c) {
  if (c < 0x10000) {
    out += static_cast<char16_t>(c);
  } else {
    out += static_cast<char16_t>(0xd7c0 + (c >> 10));
    out += static_cast<char16_t>(0xdc00 + (c & 0x3ff));
  }
}
void append(std::string& out, char32_t c) {
  const auto put = [&out](char32_t byte) { out += static_cast<char>(byte); };
  if (c < 0x80) return put(c);
  if (c < 0x800) {
    put(0xc0 | c >> 6);
  } else {
    if (c < 0x10000) {
      put(0xe0 | c >> 12);
    } else {
      put(0xf0 | c >> 18);
      put(0x80 | (c >> 12 & 0x3f));
    }
    put(0x80 | (c >> 6 & 0x3f));
  }
  put(0x80 | (c & 0x3f));
}

}  // namespace

template <class Char>
typename ScannedText<Char>::View ScannedText<Char>::decode(const TextPart& part,
                                                           std::basic_string<Char>& decoded) const {
  const View content = contentOf(part);
  decoded.clear();
  decoded.reserve(content.size());  // what it stands for is no longer
  const Char* const end = content.data() + content.size();
  for (const Char* at = content.data(); at != end;) {
    const Char* const first = at;
    while (at != end && *at != '&' && !isOddSpace(*at)) ++at;
    decoded.append(first, at);
    if (at == end) break;
    if (*at != '&') {
      // The end of a line, however written, is one character.
      const bool two = at[0] == '\r' && at + 1 != end && at[1] == '\n';
      decoded += part.kind() == TextPart::Kind::attribute ? Char{' '} : *at == '\r' ? Char{'\n'} : *at;
      at += two ? 2 : 1;
    } else if (part.kind() == TextPart::Kind::section) {
      decoded += *at++;
    } else {
      const Reference reference = referenceAt(at);
      append(decoded, reference.character);
      at += reference.size;
    }
  }
  return decoded;
}

template class ScannedText<char>;
template class ScannedText<char16_t>;

}  // namespace zqxml
