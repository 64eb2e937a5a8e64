// XmlScanner: takes plain XML apart without a parser. Not installed.
//
// It works in two steps. The first reads the whole text and notes where its parts are; it is true only when
// the text is well-formed and made of nothing but elements, attributes, text, CDATA sections, comments, the
// five entities and character references, behind a declaration or none. The second gives the parts as events,
// and cannot fail. So whoever gives up has touched nothing, and what the XML library says of a text that is
// not plain is said by itself.
//
// What is plain is less than what is well-formed: names are ASCII without colons, and none begins with "xml";
// no "]" stands before a ">" of a text, and no "<!" in a CDATA section; a declaration has 1,000 characters;
// elements nest in 5,000 levels and have 200 attributes at most: names of one bucket are compared one by one.
#pragma once

#include <zqxml/xml/internal/inline_list.h>
#include <zqxml/xml/internal/name_view.h>

#include <array>
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

  /// Whether the text is plain. A NUL has to stand behind its end, and it has to outlive the scanner. Throws
  /// std::bad_alloc.
  bool scan(View text);

  /// Gives the parts of a plain text to a reader: start(NameView, attributes), end(NameView),
  /// characters(View). What that throws passes through.
  template <class Reader>
  void drive(Reader& reader);

 private:
  enum class Kind : std::uint8_t { start, attribute, end, text, section };
  /// A tag's name, an attribute, or a text. Small, since a text has many.
  struct Part {
    std::uint32_t start = 0;
    std::uint32_t length = 0;  ///< of an attribute, that of its value
    std::uint32_t hash = 0;    ///< of a name
    std::uint16_t nameLength = 0;
    /// From the end of an attribute's name to its value.
    std::uint8_t gap = 0;
    Kind kind : 4 = Kind::start;
    /// It holds references, or white space that stands for other white space.
    bool coded : 1 = false;
  };
  static_assert(sizeof(Part) == 16);
  using Attribute = BasicAttributeView<Char>;

  static constexpr std::size_t kMostAttributes = 200;
  static constexpr std::size_t kMostLevels = 5000;

  bool scanDeclaration();
  bool scanMisc();
  bool scanStartTag();
  bool scanAttributes(std::size_t tag);
  bool scanAttribute(std::size_t tag);
  bool scanEndTag();
  bool scanContent();
  bool scanMarkup();
  bool scanText();
  bool scanComment();
  bool scanSection();
  bool scanValue(Part& attribute);
  bool scanName(Part& part);
  const Char* skipCharacter(const Char* at) const;
  bool isNew(const Part& attribute, std::size_t tag);
  bool skipSpace();
  bool skipWord(std::string_view ascii);
  bool skipEquals();
  bool skipQuoted(std::string_view ascii);

  NameView<Char> nameOf(const Part& part) const {
    return {View(text_ + part.start, part.nameLength), part.hash};
  }
  /// A text, or the value of an attribute, as it stands.
  View contentOf(const Part& part) const {
    return {text_ + part.start + part.nameLength + part.gap, part.length};
  }
  std::uint32_t offset(const Char* at) const { return static_cast<std::uint32_t>(at - text_); }
  /// What the part stands for, which is no longer than itself; at the end of decoded_.
  View decoded(const Part& part);
  void gatherAttributes(std::size_t& i);

  const Char* text_ = nullptr;
  const Char* at_ = nullptr;
  const Char* end_ = nullptr;
  InlineList<Part, 128> parts_;
  /// The start tags of the elements that are open.
  InlineList<std::uint32_t, 32> open_;
  /// The latest attribute name with such a hash, by its part; what is older than the tag does not count.
  std::array<std::uint32_t, 128> names_{};
  std::basic_string<Char> decoded_;
  InlineList<Attribute, 32> attributes_;
};

template <class Char>
template <class Reader>
void XmlScanner<Char>::drive(Reader& reader) {
  for (std::size_t i = 0; i < parts_.size();) {
    const Part& part = parts_[i++];
    decoded_.clear();
    if (part.kind == Kind::start) {
      gatherAttributes(i);
      reader.start(nameOf(part), attributes_.view());
    } else if (part.kind == Kind::end) {
      reader.end(nameOf(part));
    } else if (reader.takesCharacters()) {
      if (part.coded) decoded_.reserve(part.length);
      reader.characters(part.coded ? decoded(part) : contentOf(part));
    }
  }
}

template <class Char>
void XmlScanner<Char>::gatherAttributes(std::size_t& i) {
  attributes_.clear();
  std::size_t coded = 0;
  for (std::size_t k = i; k < parts_.size() && parts_[k].kind == Kind::attribute; ++k)
    if (parts_[k].coded) coded += parts_[k].length;
  decoded_.reserve(coded);  // what the views show does not move
  for (; i < parts_.size() && parts_[i].kind == Kind::attribute; ++i) {
    const Part& part = parts_[i];
    attributes_.push_back({nameOf(part), part.coded ? decoded(part) : contentOf(part)});
  }
}

}  // namespace zqxml
