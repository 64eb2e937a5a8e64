// XmlScanner: takes plain XML apart without a parser. Not installed.
//
// It works in two steps. The first reads the whole text and notes where its parts are; it is true only when
// the text is well-formed and made of nothing but elements, attributes, text, CDATA sections, comments, the
// five entities and character references, behind a declaration or none. The second gives the parts as events,
// and cannot fail. So whoever gives up has touched nothing, and what the XML library says of a text that is
// not plain is said by itself.
//
// What is plain is less than what is well-formed: names are ASCII without colons, and none begins with "xml";
// no "]" stands before a ">" of a text; elements nest in 5,000 levels and have 1,000 attributes at most.
#pragma once

#include <zqxml/xml/internal/name_view.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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
  enum class Kind : std::uint8_t { start, attribute, value, end, text, section };
  struct Part {
    std::uint32_t start;
    std::uint32_t length;
    std::uint32_t hash;  ///< of a name
    Kind kind;
    bool coded = false;  ///< holds references, or white space that stands for other white space
  };
  using Attribute = BasicAttributeView<Char>;

  static constexpr std::size_t kMostAttributes = 1000;
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
  bool scanValue(Part& value);
  bool scanName(Part& name);
  const Char* skipCharacter(const Char* at) const;
  bool isNew(const Part& name, std::size_t tag);
  bool skipSpace();
  bool skipWord(std::string_view ascii);
  bool skipEquals();
  bool skipQuoted(std::string_view ascii);

  View viewOf(const Part& part) const { return {text_ + part.start, part.length}; }
  NameView<Char> nameOf(const Part& part) const { return {viewOf(part), part.hash}; }
  std::uint32_t offset(const Char* at) const { return static_cast<std::uint32_t>(at - text_); }
  /// What the part stands for, which is no longer than itself; at the end of decoded_.
  View decoded(const Part& part);
  void gatherAttributes(std::size_t& i);

  const Char* text_ = nullptr;
  const Char* at_ = nullptr;
  const Char* end_ = nullptr;
  std::vector<Part> parts_;
  /// The start tags of the elements that are open.
  std::vector<std::uint32_t> open_;
  /// The latest attribute name with such a hash, by its part; what is older than the tag does not count.
  std::array<std::uint32_t, 128> names_{};
  std::basic_string<Char> decoded_;
  std::vector<Attribute> attributes_;
};

template <class Char>
template <class Reader>
void XmlScanner<Char>::drive(Reader& reader) {
  for (std::size_t i = 0; i < parts_.size();) {
    const Part& part = parts_[i++];
    decoded_.clear();
    if (part.kind == Kind::start) {
      gatherAttributes(i);
      reader.start(nameOf(part), std::span<const Attribute>(attributes_));
    } else if (part.kind == Kind::end) {
      reader.end(nameOf(part));
    } else if (reader.takesCharacters()) {
      if (part.coded) decoded_.reserve(part.length);
      reader.characters(part.coded ? decoded(part) : viewOf(part));
    }
  }
}

template <class Char>
void XmlScanner<Char>::gatherAttributes(std::size_t& i) {
  attributes_.clear();
  std::size_t coded = 0;
  for (std::size_t k = i; k < parts_.size() && parts_[k].kind == Kind::attribute; k += 2)
    if (parts_[k + 1].coded) coded += parts_[k + 1].length;
  decoded_.reserve(coded);  // what the views show does not move
  for (; i < parts_.size() && parts_[i].kind == Kind::attribute; i += 2) {
    const Part& value = parts_[i + 1];
    attributes_.push_back({nameOf(parts_[i]), value.coded ? decoded(value) : viewOf(value)});
  }
}

}  // namespace zqxml
