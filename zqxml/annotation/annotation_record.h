/// @file
/// The annotation record: what the schema says about a field beyond its type, packed beside the field.
///
/// Byte order: big-endian. A record stands in constant memory and tells its own length:
///
///     0  2  length of the record, these two bytes included; below 3 the record says nothing
///     2  1  flag byte 0: bits 7-4 password type, 3 ZQTime, 2 Suppress, 1-0 XDate's type
///     3  1  flag byte 1: 7 GenPath, 6 HideInReports, 5 SingleInstanced, 4 CommandParam, 3 Text,
///                        2 SearchCriteriaDef, 1 StoredProcedure, 0 IndexAttr
///     4  1  flag byte 2: 7 MarkAsCDATA, 6 Sensitive, 0 IndexAttr's value
///     5  .  sections of Text, CommandParam, SearchCriteriaDef, StoredProcedure, those that flag byte 1 names
///
/// Flag bytes that the length does not cover are 0. A string is a 2-byte length and its bytes, no terminator.
/// The forms of the sections stand beside their functions in internal/annotation_sections.h.
/// XMLDecoder::FillAnnotation gives the same as messages of subsystem Annotation; the codecs read the flags
/// here. Nothing fails or logs; safe from any thread.
#pragma once

#include <zqxml/catalogue/records.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace zqxml {

/// Types of fields on which MarkAsCDATA has no effect.
inline constexpr FieldTypeSet kNeverCdataTypes =
    FieldTypeSet{FDT_NONE,         FDT_ENUM_VALUE, FDT_BSTRING,    FDT_PSTRING,
                 FDT_LIST_BSTRING, FDT_OBJECT,     FDT_LIST_OBJECT} |
    kMapTypes;

/// Where the flag of an annotation stands: in flag byte 0, 1 or 2, under these bits.
struct AnnotationFlag {
  unsigned byte;  ///< 0, 1 or 2
  unsigned mask;  ///< of its bits
};
/// The flags by the names of their annotations.
namespace annotation_flag {
/// @{
/// An annotation each, as the schema and the table above name them.
inline constexpr AnnotationFlag kPassword{0, 0xf0};
inline constexpr AnnotationFlag kZQTime{0, 0x08};
inline constexpr AnnotationFlag kSuppress{0, 0x04};
inline constexpr AnnotationFlag kXDate{0, 0x03};
inline constexpr AnnotationFlag kGenPath{1, 0x80};
inline constexpr AnnotationFlag kHideInReports{1, 0x40};
inline constexpr AnnotationFlag kSingleInstanced{1, 0x20};
inline constexpr AnnotationFlag kCommandParam{1, 0x10};
inline constexpr AnnotationFlag kText{1, 0x08};
inline constexpr AnnotationFlag kSearchCriteriaDef{1, 0x04};
inline constexpr AnnotationFlag kStoredProcedure{1, 0x02};
inline constexpr AnnotationFlag kIndexAttr{1, 0x01};
inline constexpr AnnotationFlag kMarkAsCDATA{2, 0x80};
inline constexpr AnnotationFlag kSensitive{2, 0x40};
/// @}
/// The value of IndexAttr, no annotation of its own.
inline constexpr AnnotationFlag kIndexedMetadata{2, 0x01};
}  // namespace annotation_flag

/// View of one record; costs a pointer and a length, owns nothing.
class AnnotationRecord {
 public:
  /// No record.
  constexpr AnnotationRecord() = default;
  /// The record at `record`, which is null or has as many bytes as its length says, and two at least.
  constexpr explicit AnnotationRecord(const char* record)
      : AnnotationRecord(record, record == nullptr ? 0 : std::numeric_limits<std::size_t>::max()) {}
  /// The record of a field.
  constexpr explicit AnnotationRecord(const FieldDef& field) : AnnotationRecord(field.getAnnotationFlags()) {}
  /// The record at the start of `bytes`, cut where these end.
  constexpr explicit AnnotationRecord(std::string_view bytes)
      : AnnotationRecord(bytes.data(), bytes.size()) {}

  /// Bytes of the record, length word included; 0 when it says nothing.
  constexpr std::size_t size() const { return size_; }
  /// Whether the record says anything.
  constexpr bool exists() const { return size_ != 0; }
  /// All bytes, length word included.
  constexpr std::string_view bytes() const { return {record_, size_}; }

  /// Flag byte 0, 1 or 2; 0 when the record does not reach so far.
  constexpr unsigned flags(unsigned number) const {
    return hasFlags(number) ? static_cast<unsigned char>(record_[2 + number]) : 0;
  }
  /// Whether the record reaches to that flag byte.
  constexpr bool hasFlags(unsigned number) const { return size_ > 2 + number; }
  /// Whether any bit of the flag is set.
  constexpr bool has(AnnotationFlag flag) const { return (flags(flag.byte) & flag.mask) != 0; }

  // Flag byte 0.

  /// Annotation::PasswordEncryptType, 0 when the field is not annotated as a password.
  constexpr int passwordType() const { return static_cast<int>(flags(0) >> 4); }
  /// The value is seconds within a day.
  constexpr bool isTime() const { return has(annotation_flag::kZQTime); }
  /// Summaries leave the field out.
  constexpr bool isSuppressed() const { return has(annotation_flag::kSuppress); }
  /// Annotation::DateType: 1 date and time, 2 date, 3 unused; 0 when the field is not a date.
  constexpr unsigned dateType() const { return flags(0) & annotation_flag::kXDate.mask; }

  // Flag byte 1.

  /// The paths below the field are told without being asked for.
  constexpr bool generatesPaths() const { return has(annotation_flag::kGenPath); }
  /// Reports leave the field out.
  constexpr bool isHiddenInReports() const { return has(annotation_flag::kHideInReports); }
  /// XPathMetaData::singleInstanced of the field's value.
  constexpr bool isSingleInstanced() const { return has(annotation_flag::kSingleInstanced); }

  // Flag byte 2.

  /// The value goes into a CDATA section.
  constexpr bool isCdata() const { return has(annotation_flag::kMarkAsCDATA); }
  /// Masked texts hide the value, if it is a single one.
  constexpr bool isSensitive() const { return has(annotation_flag::kSensitive); }
  /// Value of IndexAttr, where flag byte 1 has that annotation.
  constexpr bool indexedMetadata() const { return has(annotation_flag::kIndexedMetadata); }

 private:
  constexpr AnnotationRecord(const char* record, std::size_t available) : record_(record) {
    if (available < 2) return;
    const auto high = static_cast<unsigned char>(record[0]);
    const auto low = static_cast<unsigned char>(record[1]);
    const std::size_t length = std::min<std::size_t>((std::size_t{high} << 8) | low, available);
    size_ = length < 3 ? 0 : length;
  }

  const char* record_ = nullptr;
  std::size_t size_ = 0;
};

/// Reads the sections of a record, front to back. It never leaves the record: once a read would, the cursor
/// has failed, stays failed, and gives zeros and empty texts.
class AnnotationCursor {
 public:
  /// Position of the first section.
  static constexpr std::size_t kSections = 5;

  /// At the first section.
  constexpr explicit AnnotationCursor(const AnnotationRecord& record)
      : bytes_(record.bytes()), position_(kSections) {}

  /// Offset in the record, in bytes, of what is read next.
  constexpr std::size_t position() const { return position_; }
  /// Whether a read went beyond the record.
  constexpr bool failed() const { return failed_; }

  /// @{
  /// A number of one byte, and of four, big-endian.
  constexpr unsigned byte() { return number(1); }
  constexpr std::uint32_t word32() { return number(4); }
  /// @}
  /// Two bytes of length and the text, which lies in the record.
  constexpr std::string_view text() { return take(number(2)); }
  /// Moves on without a look at what is there; a position past the end fails only with the next read.
  constexpr void skip(std::size_t count) { position_ += count; }

 private:
  constexpr std::string_view take(std::size_t count) {
    if (failed_ || position_ > bytes_.size() || count > bytes_.size() - position_) {
      failed_ = true;
      return {};
    }
    const std::string_view taken = bytes_.substr(position_, count);
    position_ += count;
    return taken;
  }
  constexpr std::uint32_t number(std::size_t width) {
    std::uint32_t value = 0;
    for (const char byte : take(width)) value = (value << 8) | static_cast<unsigned char>(byte);
    return value;
  }

  std::string_view bytes_;
  std::size_t position_;
  bool failed_ = false;
};

}  // namespace zqxml
