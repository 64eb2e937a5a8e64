// Files of objects as a stream, in both record formats.
//
// Format A has no header; a record is the length of its data in 4 bytes, big-endian, then one message in the
// binary form of version 2. Format B begins with a version field ("1" and three NUL bytes); its lengths are
// up to four decimal digits, filled up with NUL bytes to 4 bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zqxml::tool {

class ByteSource;
class Output;

enum class RecordFormat { kA, kB };

/// Bytes of a length, and of the version field.
inline constexpr std::size_t kRecordField = 4;
inline constexpr std::string_view kObjectsVersion{"1\0\0\0", kRecordField};
/// Bytes that recordFormatOf needs.
inline constexpr std::size_t kFormatBytes = kRecordField + 1;

/// "a" and "b", as on the command line; nothing for another name.
std::optional<RecordFormat> recordFormatByName(std::string_view name);
/// The format of a file of objects that starts with `head`.
RecordFormat recordFormatOf(std::string_view head);

/// The length that a field of 4 bytes states; nothing when it is no length of that format.
std::optional<std::uint32_t> recordLength(RecordFormat format, std::string_view field);

/// Reads record by record, with no more memory than the largest one.
class ObjectReader {
 public:
  /// The format is found out when it is not given.
  explicit ObjectReader(ByteSource& source, std::optional<RecordFormat> format = std::nullopt)
      : source_(source), format_(format) {}

  /// Puts the next record's data into `data`; false at the end of the file. Throws Failure for a record that
  /// has no data or ends too early, and for a version field of another version.
  bool next(std::string& data);
  /// Number of the record that next() gave or failed at, from 1.
  std::uint64_t number() const { return number_; }
  /// Where this record starts.
  std::uint64_t offset() const { return offset_; }
  /// Length that it states, and the bytes that state it.
  std::uint32_t length() const { return length_; }
  const std::string& field() const { return field_; }

 private:
  void readHeader();

  ByteSource& source_;
  std::optional<RecordFormat> format_;
  bool started_ = false;
  std::uint64_t number_ = 0;
  std::uint64_t offset_ = 0;
  std::uint32_t length_ = 0;
  std::string field_;
};

/// Appends the record of a serialized message to `output`, in format A.
void writeObjectRecord(Output& output, const std::string& data);

}  // namespace zqxml::tool
