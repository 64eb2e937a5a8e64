// XmlScanner: takes plain XML apart without a parser. Not installed.
//
// It works in two steps. The first reads the whole text and notes where its parts are; it is true only when
// the text is well-formed and made of nothing but elements, attributes, text, CDATA sections, comments, the
// five entities and character references, behind a declaration or none. The second gives the parts as events,
// and fails for lack of memory alone. So whoever gives up has touched nothing, and what the XML library says
// of a text that is not plain is said by itself.
//
// What is plain is less than what is well-formed: names are up to 255 characters of ASCII without colons, and
// none begins with "xml";
// no "]" stands before a ">" of a text, and no "<!" in a CDATA section; a declaration has 1,000 characters,
// and 13 stand around the "=" of an attribute; elements nest in 5,000 levels and have 200 attributes at most:
// names with similar hashes are compared one by one.
#pragma once

#include <zqxml/xml/internal/attribute_guide.h>
#include <zqxml/xml/internal/inline_list.h>
#include <zqxml/xml/internal/scanned_text.h>
#include <zqxml/xml/internal/thread_memory.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

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

  /// Gives the parts of a plain text to a reader: start(NameView, ScannedAttributes, alike), end(NameView),
  /// characters(View). `alike` elements of that name follow on the same level, one behind the other; only the
  /// first of them tells. What the reader throws passes through.
  template <class Reader>
  void drive(Reader& reader);

 private:
  using Part = TextPart;
  using Kind = Part::Kind;
  /// An element that is not closed yet: its start tag, and the first of the latest elements in it that have
  /// one name; 0 for none, since the root is in no other.
  struct OpenElement {
    std::uint32_t tag;
    std::uint32_t run;
    /// What the element and those of the run may be expected to have; null for nothing.
    const AttributeGuide* guide;
    const AttributeGuide* runGuide;
  };
  struct Name {
    std::uint32_t hash = 0;
    std::uint8_t length = 0;
    std::uint8_t position = kNoPosition;
  };
  /// The value of an attribute, without its quotes.
  struct Value {
    const Char* start = nullptr;
    const Char* end = nullptr;
    bool coded = false;
  };

  static constexpr std::size_t kMostLevels = 5000;
  static constexpr std::size_t kInlineParts = 512;
  static constexpr std::uint32_t kWidestGap = 15;

  bool scanDeclaration();
  bool scanMisc();
  bool scanStartTags();
  bool scanStartTag();
  bool scanAttributes(std::size_t tag, const AttributeGuide* guide, std::size_t like);
  void scanExpectedAttributes(const AttributeGuide& guide) requires(sizeof(Char) == 1);
  void scanSameAttributes(std::size_t like);
  bool scanOtherAttributes(std::size_t tag);
  void addAttribute(const Char* at, Name name, const Value& value);
  bool scanEndTag();
  bool scanContent();
  bool scanMarkup();
  bool scanText();
  bool scanComment();
  bool scanSection();
  static Name scanNewName(const Char* at);
  bool isNameOf(const Part& part, const Char* at) const;
  Value scanValue(const Char* at) const;
  Value scanQuoted(const Char* at) const;
  Value scanUnusualValue(const Char* at) const;
  const Char* skipCharacter(const Char* at) const;
  void addText(Kind kind, const Char* first, const Char* end, bool coded);
  const AttributeGuide* guideOf(View name, std::uint32_t hash) const;
  bool isNew(View name, std::uint32_t hash, std::size_t tag) const;
  bool skipSpace();
  bool skipWord(std::string_view ascii);
  bool skipEquals();
  bool skipQuoted(std::string_view ascii);

  View nameOf(const Part& part) const { return ScannedText<Char>(text_).nameOf(part).text; }
  std::uint32_t offset(const Char* at) const { return static_cast<std::uint32_t>(at - text_); }
  const Char* text_ = nullptr;
  const Char* at_ = nullptr;
  const Char* end_ = nullptr;
  InlineList<Part, kInlineParts> parts_;
  InlineList<OpenElement, 32> open_;
  std::basic_string<Char> decoded_;
};

template <class Char>
template <class Reader>
void XmlScanner<Char>::drive(Reader& reader) {
  const ScannedText<Char> text(text_);
  const Part* const end = parts_.view().data() + parts_.size();
  for (const Part* at = parts_.view().data(); at != end;) {
    const Part& part = *at++;
    if (part.kind() == Kind::start) {
      const Part* const first = std::exchange(at, at + part.position);
      open_.push_back({static_cast<std::uint32_t>(first - 1 - parts_.view().data()), 0, nullptr, nullptr});
      reader.start(text.nameOf(part), ScannedAttributes<Char>(text, {first, at}, decoded_), part.length);
    } else if (reader.takesCharacters()) {
      reader.characters(text.valueOf(part, decoded_));
    }
    for (unsigned ends = at[-1].ends; ends > 0; --ends) {
      reader.end(text.nameOf(parts_[open_.back().tag]));
      open_.pop_back();
    }
  }
}

}  // namespace zqxml
