#include <zqxml/xml/internal/xml_characters.h>
#include <zqxml/xml/internal/xml_names.h>
#include <zqxml/xml/internal/xml_scanner.h>

#include <limits>
#include <utility>

namespace zqxml {
namespace {

/// Most texts have no more than one part in so many units.
constexpr std::size_t kUnitsOfPart = 12;

}  // namespace

template <class Char>
bool XmlScanner<Char>::scan(View text) {
  // The text itself and a part's number have to fit into 32 bits.
  if (text.size() >= std::numeric_limits<std::uint32_t>::max() / 2) return false;
  text_ = at_ = text.data();
  end_ = text_ + text.size();
  const std::size_t expected = text.size() / kUnitsOfPart;
  if (expected > kInlineParts) parts_.take(ThreadMemory::take());
  parts_.reserve(expected);
  if (at_[0] == '<' && at_[1] == '?' && !scanDeclaration()) return false;
  if (!scanMisc() || !scanStartTags()) return false;
  while (!open_.empty())
    if (!scanContent()) return false;
  return scanMisc() && at_ == end_;
}

/// An encoding is named or not in UTF-8; the library finds out about UTF-16 by its name. It refuses a
/// declaration that does not fit into its buffer of 16,384 characters; one near that long is not plain.
template <class Char>
bool XmlScanner<Char>::scanDeclaration() {
  constexpr bool kWide = sizeof(Char) != 1;
  constexpr std::ptrdiff_t kLongest = 1000;
  const Char* const first = at_;
  if constexpr (!kWide) {
    if (View(at_, static_cast<std::size_t>(end_ - at_)).starts_with(kUtf8Declaration)) {
      at_ += sizeof kUtf8Declaration - 1;
      return true;
    }
  }
  if (!skipWord("<?xml ")) return false;
  skipSpace();
  if (!skipWord("version") || !skipEquals() || !skipQuoted("1.0")) return false;
  bool space = skipSpace();
  if (space && skipWord("encoding")) {
    if (!skipEquals()) return false;
    if (!(kWide ? skipQuoted("UTF-16") : skipQuoted("UTF-8") || skipQuoted("utf-8"))) return false;
    space = skipSpace();
  } else if (kWide) {
    return false;
  }
  if (space && skipWord("standalone")) {
    if (!skipEquals() || !(skipQuoted("no") || skipQuoted("yes"))) return false;
    skipSpace();
  }
  return skipWord("?>") && at_ - first <= kLongest;
}

/// White space and comments, up to a tag or the end.
template <class Char>
bool XmlScanner<Char>::scanMisc() {
  for (;;) {
    skipSpace();
    if (at_[0] != '<' || at_[1] != '!') return true;
    if (!scanComment()) return false;
  }
}

/// Behind the character beyond ASCII; null when there is none, or one that XML does not allow.
template <class Char>
const Char* XmlScanner<Char>::skipCharacter(const Char* at) const {
  if (unitOf(*at) < 0x80) return nullptr;
  const std::size_t size = sizeOfCharacter(at);
  return size == 0 ? nullptr : at + size;
}

template <class Char>
bool XmlScanner<Char>::scanContent() {
  return *at_ == '<' ? scanMarkup() : scanText();
}

template <class Char>
bool XmlScanner<Char>::scanMarkup() {
  if (at_[1] == '/') return scanEndTag();
  if (at_[1] != '!') return scanStartTags();
  return at_[2] == '[' ? scanSection() : scanComment();
}

template <class Char>
bool XmlScanner<Char>::scanEndTag() {
  const View opened = nameOf(parts_[open_.back().tag]);
  at_ += 2;
  if (static_cast<std::size_t>(end_ - at_) < opened.size() || View(at_, opened.size()) != opened)
    return false;
  at_ += opened.size();
  skipSpace();
  if (*at_ != '>') return false;
  ++at_;
  open_.pop_back();
  ++parts_.back().ends;
  return true;
}

template <class Char>
bool XmlScanner<Char>::scanText() {
  bool coded = false;
  const Char* at = at_;
  for (;;) {
    at = behindBlocks(at, end_, Char{'>'});
    while (is(*at, kInText)) ++at;
    if (*at == '<') break;
    if (*at == '&') {
      const Reference reference = referenceAt(at);
      if (reference.size == 0) return false;
      at += reference.size;
      coded = true;
    } else if (*at == '\r') {
      ++at;
      coded = true;
    } else if (*at == '>') {
      if (at[-1] == ']') return false;
      ++at;
    } else if (at = skipCharacter(at); at == nullptr) {
      return false;
    }
  }
  addText(Kind::text, at_, at, coded);
  at_ = at;
  return true;
}

template <class Char>
void XmlScanner<Char>::addText(Kind kind, const Char* first, const Char* end, bool coded) {
  parts_.push_back({.start = offset(first),
                    .length = static_cast<std::uint32_t>(end - first),
                    .marks = Part::marksOf(0, kind, coded)});
}

template <class Char>
bool XmlScanner<Char>::scanComment() {
  if (!skipWord("<!--")) return false;
  for (;;) {
    if (at_[0] == '-' && at_[1] == '-') return skipWord("-->");
    if (is(*at_, kLegal))
      ++at_;
    else if (at_ = skipCharacter(at_); at_ == nullptr)
      return false;
  }
}

template <class Char>
bool XmlScanner<Char>::scanSection() {
  if (!skipWord("<![CDATA[")) return false;
  const Char* const first = at_;
  bool coded = false;
  for (;;) {
    if (at_[0] == ']' && at_[1] == ']' && at_[2] == '>') break;
    if (at_[0] == '<' && at_[1] == '!') return false;
    if (*at_ == '\r') coded = true;
    if (is(*at_, kLegal))
      ++at_;
    else if (at_ = skipCharacter(at_); at_ == nullptr)
      return false;
  }
  addText(Kind::section, first, at_, coded);
  at_ += 3;
  return true;
}

template <class Char>
bool XmlScanner<Char>::skipSpace() {
  const Char* const before = std::exchange(at_, behindSpace(at_));
  return at_ != before;
}

template <class Char>
bool XmlScanner<Char>::skipWord(std::string_view ascii) {
  const Char* at = at_;
  for (const char c : ascii)
    if (unitOf(*at++) != unitOf(c)) return false;
  at_ = at;
  return true;
}

template <class Char>
bool XmlScanner<Char>::skipEquals() {
  skipSpace();
  if (*at_ != '=') return false;
  ++at_;
  skipSpace();
  return true;
}

template <class Char>
bool XmlScanner<Char>::skipQuoted(std::string_view ascii) {
  const Char* const before = at_;
  const Char quote = *at_++;
  if ((quote == '"' || quote == '\'') && skipWord(ascii) && *at_ == quote) {
    ++at_;
    return true;
  }
  at_ = before;
  return false;
}

template class XmlScanner<char>;
template class XmlScanner<char16_t>;

}  // namespace zqxml
