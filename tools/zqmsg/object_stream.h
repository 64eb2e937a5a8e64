// Files of objects as a stream. Byte order: the length is big-endian, what it counts little-endian.
//
// A file is a sequence of records without a header: the length of the data in 4 bytes, then one message in
// the binary form of version 2, its 8-byte header included.
#pragma once

#include <cstdint>
#include <string>

namespace zqxml::tool {

class ByteSource;
class Output;

/// Reads record by record, with no more memory than the largest one.
class ObjectReader {
 public:
  explicit ObjectReader(ByteSource& source) : source_(source) {}

  /// Puts the next record's data into `data`; false at the end of the file. Throws Failure for a record that
  /// has no data or ends too early.
  bool next(std::string& data);
  /// Number of the record that next() gave or failed at, from 1.
  std::uint64_t number() const { return number_; }
  /// Length that this record states.
  std::uint32_t length() const { return length_; }

 private:
  ByteSource& source_;
  std::uint64_t number_ = 0;
  std::uint32_t length_ = 0;
};

/// Appends the record of a serialized message to `output`.
void writeObjectRecord(Output& output, const std::string& data);

}  // namespace zqxml::tool
