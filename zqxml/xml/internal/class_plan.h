// ClassPlan: what the text writer knows of a class before it meets an object of it. Not installed.
#pragma once

#include <zqxml/catalogue/records.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zqxml {

class XNMessageBase;

/// A name as the text writer copies it: a block at a time, so that bytes up to the next block stand behind
/// it.
struct PlannedName {
  static constexpr std::size_t kBlock = 32;

  /// What stands before the value of an attribute of that name: ` name="`.
  const char* attribute = nullptr;
  std::uint32_t length = 0;

  const char* text() const { return attribute + 1; }
  std::size_t attributeLength() const { return length + std::size_t{3}; }
};

/// What the value of an attribute is made of.
enum class PlannedValue : std::uint8_t {
  /// A number in the field's slot. The text has it in decimal, but that of a readable or masked form.
  number,
  /// A double in the field's slot.
  floating,
  /// A text in the message, likewise.
  text,
  /// Anything else, and what is no attribute.
  other,
};

struct PlannedField {
  const FieldDef* field = nullptr;
  PlannedName name;
  PlannedValue value = PlannedValue::other;
};

/// The fields of one class of the catalogue that XML has, in the two orders of writing them.
struct ClassPlan {
  /// In declared order: for scalars as elements.
  std::vector<PlannedField> declared;
  /// Attributes first, as the DOM sorts them, by code unit; then what is an element, in declared order.
  std::vector<PlannedField> attributesFirst;
  PlannedName rootName;
  /// Whether the text of an object's names and attributes is known: the names are plain, and no two
  /// attributes have the same.
  bool certain = false;
  /// Whether that holds for masked fields too.
  bool masksCertain = false;

  /// The length that the text of an object may turn out to have, in units: a little more than that of a
  /// recent one, 0 before there was any.
  std::size_t expectedLength() const { return expectedLength_.load(std::memory_order_relaxed); }
  /// Takes note of a text's length. Any thread; few of them come to write.
  void noteLength(std::size_t length) const;

  /// The plan of the message's class, made at first use and kept for the process. Null when the class is not
  /// a record of the catalogue. Any thread may call it; throws std::bad_alloc.
  static const ClassPlan* of(const XNMessageBase& message);

 private:
  ClassPlan(const XNMessageBase& message, const _ClassDef& classDef);

  std::string names_;
  mutable std::atomic<std::size_t> expectedLength_ = 0;
};

}  // namespace zqxml
