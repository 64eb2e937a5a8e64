// XmlScanner: takes plain XML apart without a parser. Not installed.
//
// It works in two steps. The first reads the whole text and notes where its parts are; it is true only when
// the text is well-formed and made of nothing but elements, attributes, text, CDATA sections, comments, the
// five entities and character references, behind a declaration or none. The second gives the parts as events,
// and cannot fail. So whoever gives up has touched nothing, and what the XML library says of a text that is
// not plain is said by itself.
//
// What is plain is less than what is well-formed: names are ASCII without colons, and none begins with "xml";
// no "]" stands before a ">" of a text, and no "<!" in a CDATA section; a declaration has 1,000 characters,
// and 13 stand around the "=" of an attribute; elements nest in 5,000 levels and have 200 attributes at most:
// names with similar hashes are compared one by one.
#pragma once

#include <zqxml/xml/internal/inline_list.h>
#include <zqxml/xml/internal/name_view.h>
#include <zqxml/xml/internal/thread_memory.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zqxml {

/// Of UTF-8 (char) or UTF-16 in native byte order (char16_t); for one text.
template <class Char>
class XmlScanner {
 public:
  using View = std::basic_string_view<Char>;

  XmlScanner() = default;
  ~XmlScanner() { ThreadMemory::keep(parts_.release()); }
  XmlScanner(const XmlScanner&) = delete;
  XmlScanner& operator=(const XmlScanner&) = delete;

  /// Whether the text is plain. A NUL has to stand behind its end, and it has to outlive the scanner. Throws
  /// std::bad_alloc.
  bool scan(View text);

  /// Gives the parts of a plain text to a reader: start(NameView, attributes, alike), end(NameView),
  /// characters(View). `alike` elements of that name follow on the same level, one behind the other; only the
  /// first of them tells. What the reader throws passes through.
  template <class Reader>
  void drive(Reader& reader);

 private:
  enum class Kind : std::uint32_t { start, attribute, text, section };
  /// A start tag, an attribute, or a text. Small, since a text has many.
  struct Part {
    std::uint32_t start = 0;
    /// Of a text, or of an attribute's value. Of a start tag: how many elements of its name follow it
    /// directly.
    std::uint32_t length = 0;
    /// Bits 0-23 the hash of a name, 24 and 25 the kind, 27 coded, 28-31 the gap.
    std::uint32_t marks = 0;
    std::uint16_t nameLength = 0;
    /// How many elements end behind this part.
    std::uint16_t ends = 0;

    static std::uint32_t marksOf(std::uint32_t hash, Kind kind, bool coded = false, std::uint32_t gap = 0) {
      return hash | static_cast<std::uint32_t>(kind) << 24 | static_cast<std::uint32_t>(coded) << 27 |
             gap << 28;
    }

    std::uint32_t hash() const { return marks & 0xffffff; }
    Kind kind() const { return static_cast<Kind>(marks >> 24 & 3); }
    /// It holds references, or white space that stands for other white space.
    bool coded() const { return (marks >> 27 & 1) != 0; }
    /// From the end of an attribute's name to its value.
    std::uint32_t gap() const { return marks >> 28; }
  };
  static_assert(sizeof(Part) == 16);
  /// An element that is not closed yet: its start tag, and the first of the latest elements in it that have
  /// one name; 0 for none, since the root is in no other.
  struct OpenElement {
    std::uint32_t tag;
    std::uint32_t run;
  };
  struct Name {
    std::uint32_t hash = 0;
    std::uint16_t length = 0;
  };
  /// The value of an attribute, without its quotes.
  struct Value {
    const Char* start = nullptr;
    const Char* end = nullptr;
    bool coded = false;
  };
  using Attribute = BasicAttributeView<Char>;

  static constexpr std::size_t kMostAttributes = 200;
  static constexpr std::size_t kMostLevels = 5000;
  static constexpr std::size_t kInlineParts = 512;
  static constexpr std::uint32_t kWidestGap = 15;

  bool scanDeclaration();
  bool scanMisc();
  bool scanStartTag();
  bool scanAttributes(std::size_t tag, std::size_t like);
  bool scanEndTag();
  bool scanContent();
  bool scanMarkup();
  bool scanText();
  bool scanComment();
  bool scanSection();
  Name scanName(const Char* at, std::size_t like) const;
  static Name scanNewName(const Char* at);
  bool isNameOf(const Part& part, const Char* at) const;
  Value scanValue(const Char* at) const;
  Value scanUnusualValue(const Char* at) const;
  const Char* skipCharacter(const Char* at) const;
  void addText(Kind kind, const Char* first, const Char* end, bool coded);
  void countAlike(std::size_t tag);
  bool isNew(View name, std::size_t tag) const;
  bool skipSpace();
  bool skipWord(std::string_view ascii);
  bool skipEquals();
  bool skipQuoted(std::string_view ascii);

  NameView<Char> nameOf(const Part& part) const {
    return {View(text_ + part.start, part.nameLength), part.hash()};
  }
  /// A text, or the value of an attribute, as it stands.
  View contentOf(const Part& part) const {
    return {text_ + part.start + part.nameLength + part.gap(), part.length};
  }
  std::uint32_t offset(const Char* at) const { return static_cast<std::uint32_t>(at - text_); }
  /// What the part stands for, which is no longer than itself; at the end of decoded_.
  View decoded(const Part& part);
  /// Views of the attributes of a tag; gives the part behind them.
  std::size_t gatherAttributes(std::size_t tag);

  const Char* text_ = nullptr;
  const Char* at_ = nullptr;
  const Char* end_ = nullptr;
  InlineList<Part, kInlineParts> parts_;
  InlineList<OpenElement, 32> open_;
  std::basic_string<Char> decoded_;
  InlineList<Attribute, 32> attributes_;
};

template <class Char>
template <class Reader>
void XmlScanner<Char>::drive(Reader& reader) {
  for (std::size_t i = 0; i < parts_.size();) {
    const Part& part = parts_[i++];
    decoded_.clear();
    if (part.kind() == Kind::start) {
      open_.push_back({static_cast<std::uint32_t>(i - 1), 0});
      i = gatherAttributes(i - 1);
      reader.start(nameOf(part), attributes_.view(), part.length);
    } else if (reader.takesCharacters()) {
      if (part.coded()) decoded_.reserve(part.length);
      reader.characters(part.coded() ? decoded(part) : contentOf(part));
    }
    for (unsigned ends = parts_[i - 1].ends; ends > 0; --ends) {
      reader.end(nameOf(parts_[open_.back().tag]));
      open_.pop_back();
    }
  }
}

template <class Char>
std::size_t XmlScanner<Char>::gatherAttributes(std::size_t tag) {
  const std::size_t first = tag + 1;
  std::size_t end = first;
  std::size_t coded = 0;
  for (; end < parts_.size() && parts_[end].kind() == Kind::attribute; ++end)
    if (parts_[end].coded()) coded += parts_[end].length;
  if (coded != 0) decoded_.reserve(coded);  // what the views show does not move
  attributes_.clear();
  Attribute* view = attributes_.extend(end - first);
  for (const Part& part : parts_.view().subspan(first, end - first))
    *view++ = {nameOf(part), part.coded() ? decoded(part) : contentOf(part)};
  return end;
}

}  // namespace zqxml
