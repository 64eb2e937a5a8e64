#include <zqxml/xml/internal/name_filter.h>
#include <zqxml/xml/internal/xml_characters.h>
#include <zqxml/xml/internal/xml_names.h>
#include <zqxml/xml/internal/xml_scanner.h>

#include <limits>
#include <utility>

namespace zqxml {
namespace {

/// Most texts have no more than one part in so many units.
constexpr std::size_t kUnitsOfPart = 12;

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
bool XmlScanner<Char>::scan(View text) {
  // The text itself and a part's number have to fit into 32 bits.
  if (text.size() >= std::numeric_limits<std::uint32_t>::max() / 2) return false;
  text_ = at_ = text.data();
  end_ = text_ + text.size();
  const std::size_t expected = text.size() / kUnitsOfPart;
  if (expected > kInlineParts) parts_.take(ThreadMemory::take());
  parts_.reserve(expected);
  if (at_[0] == '<' && at_[1] == '?' && !scanDeclaration()) return false;
  if (!scanMisc() || !scanStartTag()) return false;
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

template <class Char>
bool XmlScanner<Char>::scanStartTag() {
  if (at_[0] != '<' || open_.size() >= kMostLevels) return false;
  ++at_;
  const std::size_t number = parts_.size();
  const std::size_t like = open_.empty() ? 0 : open_.back().run;
  const Name name = scanName(at_, like);
  if (name.length == 0) return false;
  parts_.push_back(
      {.start = offset(at_), .marks = Part::marksOf(name.hash, Kind::start), .nameLength = name.length});
  countAlike(number);
  at_ += name.length;
  if (!scanAttributes(number, like)) return false;
  if (*at_ == '>') {
    ++at_;
    open_.push_back({static_cast<std::uint32_t>(number), 0});
    return true;
  }
  if (!skipWord("/>")) return false;
  ++parts_.back().ends;
  return true;
}

/// Of elements that follow each other with one name, the first counts the others.
template <class Char>
void XmlScanner<Char>::countAlike(std::size_t tag) {
  if (open_.empty()) return;
  std::uint32_t& run = open_.back().run;
  if (run != 0 && parts_[run].hash() == parts_[tag].hash())
    ++parts_[run].length;
  else
    run = static_cast<std::uint32_t>(tag);
}

/// `like` is an earlier tag, whose attributes these may have again, in its order.
template <class Char>
bool XmlScanner<Char>::scanAttributes(std::size_t tag, std::size_t like) {
  NameFilter names;
  for (const Char* at = at_;;) {
    const Char* const before = std::exchange(at, behindSpace(at));
    if (*at == '>' || *at == '/') {
      at_ = at;
      return true;
    }
    if (at == before || parts_.size() - tag > kMostAttributes) return false;
    const Name name = scanName(at, ++like);
    if (name.length == 0 || (names.mayHave(name.hash) && !isNew({at, name.length}, tag))) return false;
    const Value value = scanValue(at + name.length);
    if (value.end == nullptr) return false;
    const auto gap = static_cast<std::uint32_t>(value.start - at - name.length);
    parts_.push_back({.start = offset(at),
                      .length = static_cast<std::uint32_t>(value.end - value.start),
                      .marks = Part::marksOf(name.hash, Kind::attribute, value.coded, gap),
                      .nameLength = name.length});
    at = value.end + 1;
  }
}

/// Whether the tag has no attribute of that name yet.
template <class Char>
bool XmlScanner<Char>::isNew(View name, std::size_t tag) const {
  for (std::size_t i = tag + 1; i < parts_.size(); ++i)
    if (nameOf(parts_[i]).text == name) return false;
  return true;
}

/// The name that begins here; one of no length when none does. `like` is an earlier part that may have the
/// same: to compare takes less time than to look at each character.
template <class Char>
inline typename XmlScanner<Char>::Name XmlScanner<Char>::scanName(const Char* at, std::size_t like) const {
  if (like >= parts_.size() || !isNameOf(parts_[like], at)) return scanNewName(at);
  return {parts_[like].hash(), parts_[like].nameLength};
}

/// Whether the part has a name, and that name stands here.
template <class Char>
inline bool XmlScanner<Char>::isNameOf(const Part& part, const Char* at) const {
  const std::size_t length = part.nameLength;
  return length != 0 && static_cast<std::size_t>(end_ - at) >= length &&
         equalBytes(at, text_ + part.start, length * sizeof(Char)) && !is(at[length], kInName);
}

template <class Char>
typename XmlScanner<Char>::Name XmlScanner<Char>::scanNewName(const Char* at) {
  constexpr std::ptrdiff_t kLongest = std::numeric_limits<std::uint16_t>::max();
  if (!is(*at, kFirstOfName)) return {};
  const Char* const first = at;
  std::uint32_t hash = 0;
  do {
    hash = hash * 31 + unitOf(*at++);
  } while (is(*at, kInName));
  if (at - first > kLongest || (first[0] == 'x' && first[1] == 'm' && first[2] == 'l')) return {};
  return {hash & 0xffffff, static_cast<std::uint16_t>(at - first)};
}

/// The value of an attribute, from behind its name; one without an end when it is not plain.
template <class Char>
inline typename XmlScanner<Char>::Value XmlScanner<Char>::scanValue(const Char* at) const {
  if (at[0] == '=' && at[1] == '"') {
    const Char* const end = behindBlocks(at + 2, end_, Char{'"'});
    if (*end == '"') return {at + 2, end};
  }
  return scanUnusualValue(at);
}

/// The same for one that is spaced or quoted in another way, near the end of the text, or has references or
/// characters beyond ASCII.
template <class Char>
typename XmlScanner<Char>::Value XmlScanner<Char>::scanUnusualValue(const Char* at) const {
  const Char* const name = at;
  at = behindSpace(at);
  if (*at != '=') return {};
  at = behindSpace(at + 1);
  const Char quote = *at++;
  if ((quote != '"' && quote != '\'') || at - name > kWidestGap) return {};
  Value value{at};
  for (;;) {
    at = behindBlocks(at, end_, quote);
    while (is(*at, kInValue)) ++at;
    if (*at == quote) break;
    if (*at == '&') {
      const Reference reference = referenceAt(at);
      if (reference.size == 0) return {};
      at += reference.size;
      value.coded = true;
    } else if (*at == '"' || *at == '\'') {
      ++at;
    } else if (is(*at, kSpace)) {
      ++at;
      value.coded = true;
    } else if (at = skipCharacter(at); at == nullptr) {
      return {};
    }
  }
  value.end = at;
  return value;
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
  if (at_[1] != '!') return scanStartTag();
  return at_[2] == '[' ? scanSection() : scanComment();
}

template <class Char>
bool XmlScanner<Char>::scanEndTag() {
  const View opened = nameOf(parts_[open_.back().tag]).text;
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

template <class Char>
typename XmlScanner<Char>::View XmlScanner<Char>::decoded(const Part& part) {
  const std::size_t first = decoded_.size();
  const View content = contentOf(part);
  const Char* const end = content.data() + content.size();
  for (const Char* at = content.data(); at != end;) {
    if (*at == '&' && part.kind() != Kind::section) {
      const Reference reference = referenceAt(at);
      append(decoded_, reference.character);
      at += reference.size;
    } else if (is(*at, kSpace)) {
      // The end of a line, however written, is one character.
      const bool two = at[0] == '\r' && at + 1 != end && at[1] == '\n';
      const Char unit = *at == '\r' ? Char{'\n'} : *at;
      decoded_ += part.kind() == Kind::attribute ? Char{' '} : unit;
      at += two ? 2 : 1;
    } else {
      decoded_ += *at++;
    }
  }
  return View(decoded_).substr(first);
}

template class XmlScanner<char>;
template class XmlScanner<char16_t>;

}  // namespace zqxml
