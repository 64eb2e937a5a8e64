// What the scanner (xml_scanner.h) notes of a text, and how a reader sees it. Not installed.
#pragma once

#include <zqxml/xml/internal/name_view.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zqxml {

/// A start tag, an attribute, or a text. Small, since a text has many.
struct TextPart {
  enum class Kind : std::uint32_t { start, attribute, text, section };
  /// Of one tag.
  static constexpr std::size_t kMostAttributes = 200;

  /// Of its name, or of a text.
  std::uint32_t start = 0;
  /// Of a text, or of an attribute's value. Of a start tag: how many elements of its name follow it directly.
  std::uint32_t length = 0;
  /// Bits 0-23 the hash of a name, 24 and 25 the kind, 27 coded, 28-31 the gap.
  std::uint32_t marks = 0;
  std::uint8_t nameLength = 0;
  /// Of an attribute: as BasicAttributeView has it. Of a start tag: how many attributes it has.
  std::uint8_t position = kNoPosition;
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
static_assert(sizeof(TextPart) == 16);

/// A text of which parts are known. Borrows it.
template <class Char>
class ScannedText {
 public:
  using View = std::basic_string_view<Char>;

  explicit ScannedText(const Char* text) : text_(text) {}

  NameView<Char> nameOf(const TextPart& part) const {
    return {View(text_ + part.start, part.nameLength), part.hash()};
  }
  /// A text, or the value of an attribute, as it stands.
  View contentOf(const TextPart& part) const {
    return {text_ + part.start + part.nameLength + part.gap(), part.length};
  }
  /// What that stands for, by way of `decoded` where the two differ. Throws std::bad_alloc.
  View valueOf(const TextPart& part, std::basic_string<Char>& decoded) const {
    return part.coded() ? decode(part, decoded) : contentOf(part);
  }

 private:
  View decode(const TextPart& part, std::basic_string<Char>& decoded) const;

  const Char* text_;
};

/// The attributes of a tag, made one by one as they are asked for: each holds until the next. Borrows what it
/// is made of.
template <class Char>
class ScannedAttributes {
 public:
  class Iterator {
   public:
    Iterator(const ScannedAttributes& attributes, const TextPart* part)
        : attributes_(attributes), part_(part) {}
    BasicAttributeView<Char> operator*() const {
      return {attributes_.text_.nameOf(*part_), attributes_.text_.valueOf(*part_, attributes_.decoded_),
              part_->position};
    }
    Iterator& operator++() {
      ++part_;
      return *this;
    }
    bool operator==(const Iterator& other) const { return part_ == other.part_; }

   private:
    const ScannedAttributes& attributes_;
    const TextPart* part_;
  };

  ScannedAttributes(ScannedText<Char> text, std::span<const TextPart> parts, std::basic_string<Char>& decoded)
      : text_(text), parts_(parts), decoded_(decoded) {}

  bool empty() const { return parts_.empty(); }
  std::size_t size() const { return parts_.size(); }
  BasicAttributeView<Char> front() const { return *begin(); }
  Iterator begin() const { return {*this, parts_.data()}; }
  Iterator end() const { return {*this, parts_.data() + parts_.size()}; }

 private:
  ScannedText<Char> text_;
  std::span<const TextPart> parts_;
  std::basic_string<Char>& decoded_;
};

}  // namespace zqxml
