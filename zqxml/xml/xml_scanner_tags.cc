// Start tags, in the first step of the scanner.
#include <zqxml/xml/internal/name_filter.h>
#include <zqxml/xml/internal/xml_characters.h>
#include <zqxml/xml/internal/xml_scanner.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace zqxml {

/// A tag, and when its element is empty, those of the elements that follow directly.
template <class Char>
bool XmlScanner<Char>::scanStartTags() {
  do {
    if (!scanStartTag()) return false;
  } while (!open_.empty() && *at_ == '<' && is(at_[1], kFirstOfName));
  return true;
}

template <class Char>
inline bool XmlScanner<Char>::scanStartTag() {
  if (at_[0] != '<' || open_.size() >= kMostLevels) return false;
  ++at_;
  const auto number = static_cast<std::uint32_t>(parts_.size());
  const std::size_t like = open_.empty() ? 0 : open_.back().run;
  const AttributeGuide* guide = nullptr;
  Name name;
  if (like != 0 && isNameOf(parts_[like], at_)) {
    // Of elements that follow each other with one name, the first counts the others.
    ++parts_[like].length;
    name = {parts_[like].hash(), parts_[like].nameLength};
    guide = open_.back().runGuide;
  } else {
    name = scanNewName(at_);
    if (name.length == 0) return false;
    guide = guideOf({at_, name.length}, name.hash);
    if (!open_.empty()) {
      open_.back().run = number;
      open_.back().runGuide = guide;
    }
  }
  parts_.push_back(
      {.start = offset(at_), .marks = Part::marksOf(name.hash, Kind::start), .nameLength = name.length});
  at_ += name.length;
  if (!scanAttributes(number, guide, like)) return false;
  parts_[number].position = static_cast<std::uint8_t>(parts_.size() - number - 1);
  if (*at_ == '>') {
    ++at_;
    open_.push_back({number, 0, guide, nullptr});
    return true;
  }
  if (at_[0] != '/' || at_[1] != '>') return false;
  at_ += 2;
  ++parts_.back().ends;
  return true;
}

/// What an element of that name may be expected to have at this place; null for nothing.
template <class Char>
const AttributeGuide* XmlScanner<Char>::guideOf(View name, std::uint32_t hash) const {
  if constexpr (sizeof(Char) == 1) {
    if (open_.empty()) return AttributeGuide::ofRoot(name, hash);
    if (open_.back().guide != nullptr) return open_.back().guide->ofField(hash);
  }
  return nullptr;
}

/// Whether the part's name stands here.
template <class Char>
inline bool XmlScanner<Char>::isNameOf(const Part& part, const Char* at) const {
  const std::size_t length = part.nameLength;
  return static_cast<std::size_t>(end_ - at) >= length &&
         equalBytes(at, text_ + part.start, length * sizeof(Char)) && !is(at[length], kInName);
}

/// `like` is an earlier tag, 0 for none.
template <class Char>
inline bool XmlScanner<Char>::scanAttributes(std::size_t tag, const AttributeGuide* guide, std::size_t like) {
  if constexpr (sizeof(Char) == 1)
    if (guide != nullptr) scanExpectedAttributes(*guide);
  if (guide == nullptr && like != 0) scanSameAttributes(like);
  return *at_ == '>' || *at_ == '/' || scanOtherAttributes(tag);
}

/// Takes attributes as long as they are those of the guide, in its order, some of which may be missing: to
/// compare takes less time than to look at each character, and no name comes twice.
template <class Char>
void XmlScanner<Char>::scanExpectedAttributes(const AttributeGuide& guide) requires(sizeof(Char) == 1) {
  constexpr std::size_t kMostMissing = 4;
  const Char* at = at_;
  std::size_t missing = 0;
  for (const AttributeGuide::Name& name : guide.names()) {
    const std::size_t length = name.attributeLength();
    if (static_cast<std::size_t>(end_ - at) >= length && equalBytes(at, name.attribute, length)) {
      Value value = scanQuoted(at + length);
      if (value.end != nullptr) {
        parts_.push_back({.start = offset(at + 1),
                          .length = static_cast<std::uint32_t>(value.end - value.start),
                          .marks = name.marks,
                          .nameLength = name.length,
                          .position = name.position});
      } else {
        value = scanUnusualValue(at + 1 + name.length);
        if (value.end == nullptr) break;
        addAttribute(at + 1, {name.hash(), name.length, name.position}, value);
      }
      at = value.end + 1;
      missing = 0;
    } else if (*at != ' ' || ++missing > kMostMissing) {
      break;
    }
  }
  at_ = at;
}

/// The same for the attributes of an earlier tag.
template <class Char>
void XmlScanner<Char>::scanSameAttributes(std::size_t like) {
  const Char* at = at_;
  while (parts_[++like].kind() == Kind::attribute) {
    // The name with a blank before it and the sign behind it.
    const Part& part = parts_[like];
    const std::size_t length = part.nameLength + std::size_t{2};
    const Char* const first = at;
    if (static_cast<std::size_t>(end_ - first) >= length && first[length - 1] == '=' &&
        equalBytes(first, text_ + part.start - 1, length * sizeof(Char))) {
      const Value value = scanValue(first + length - 1);
      if (value.end == nullptr) break;
      addAttribute(first + 1, {part.hash(), part.nameLength}, value);
      at = value.end + 1;
    } else if (*at == '>' || *at == '/') {
      break;
    }
  }
  at_ = at;
}

template <class Char>
bool XmlScanner<Char>::scanOtherAttributes(std::size_t tag) {
  NameFilter names;
  for (std::size_t i = tag + 1; i < parts_.size(); ++i) names.mayHave(parts_[i].hash());
  for (const Char* at = at_;;) {
    const Char* const before = std::exchange(at, behindSpace(at));
    if (*at == '>' || *at == '/') {
      at_ = at;
      return true;
    }
    if (at == before || parts_.size() - tag > Part::kMostAttributes) return false;
    const Name name = scanNewName(at);
    if (name.length == 0 || (names.mayHave(name.hash) && !isNew({at, name.length}, name.hash, tag)))
      return false;
    const Value value = scanValue(at + name.length);
    if (value.end == nullptr) return false;
    addAttribute(at, name, value);
    at = value.end + 1;
  }
}

template <class Char>
inline void XmlScanner<Char>::addAttribute(const Char* at, Name name, const Value& value) {
  const auto gap = static_cast<std::uint32_t>(value.start - at - name.length);
  parts_.push_back({.start = offset(at),
                    .length = static_cast<std::uint32_t>(value.end - value.start),
                    .marks = Part::marksOf(name.hash, Kind::attribute, value.coded, gap),
                    .nameLength = name.length,
                    .position = name.position});
}

/// Whether the tag has no attribute of that name yet.
template <class Char>
bool XmlScanner<Char>::isNew(View name, std::uint32_t hash, std::size_t tag) const {
  const auto attributes = parts_.view().subspan(tag + 1);
  return std::ranges::none_of(attributes,
                              [&](const Part& part) { return part.hash() == hash && nameOf(part) == name; });
}

template <class Char>
typename XmlScanner<Char>::Name XmlScanner<Char>::scanNewName(const Char* at) {
  constexpr std::ptrdiff_t kLongest = std::numeric_limits<std::uint8_t>::max();
  if (!is(*at, kFirstOfName) || (at[0] == 'x' && at[1] == 'm' && at[2] == 'l')) return {};
  const Char* const first = at;
  std::uint32_t hash = 0;
  do {
    hash = hash * 31 + unitOf(*at++);
  } while (is(*at, kInName));
  if (at - first > kLongest) return {};
  return {hash & 0xffffff, static_cast<std::uint8_t>(at - first)};
}

/// The value of an attribute, from behind its name; one without an end when it is not plain.
template <class Char>
inline typename XmlScanner<Char>::Value XmlScanner<Char>::scanValue(const Char* at) const {
  if (at[0] == '=' && at[1] == '"') {
    const Value value = scanQuoted(at + 2);
    if (value.end != nullptr) return value;
  }
  return scanUnusualValue(at);
}

/// The same from behind a quotation mark, when it ends with another and stands for itself.
template <class Char>
inline typename XmlScanner<Char>::Value XmlScanner<Char>::scanQuoted(const Char* at) const {
  const Char* end = behindBlocks(at, end_, Char{'"'});
  if (*end != '"') {
    while (is(*end, kInValue)) ++end;
    if (*end != '"') return {};
  }
  return {at, end};
}

/// A value that is spaced or quoted in another way, or has references or characters beyond ASCII.
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

template bool XmlScanner<char>::scanStartTags();
template bool XmlScanner<char16_t>::scanStartTags();

}  // namespace zqxml
