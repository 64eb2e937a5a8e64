#include "tools/zqmsg/object_stream.h"

#include <algorithm>
#include <limits>

#include "tools/zqmsg/byte_source.h"
#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

std::uint32_t bigEndian32(std::string_view bytes) {
  std::uint32_t value = 0;
  for (char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

std::optional<std::uint32_t> digits(std::string_view field) {
  const std::size_t end = std::min(field.find('\0'), field.size());
  if (end == 0 || field.find_first_not_of('\0', end) != std::string_view::npos) return std::nullopt;
  std::uint32_t value = 0;
  for (char c : field.substr(0, end)) {
    if (!isDigit(c)) return std::nullopt;
    value = value * 10 + static_cast<std::uint32_t>(c - '0');
  }
  return value;
}

}  // namespace

std::optional<RecordFormat> recordFormatByName(std::string_view name) {
  if (name == "a") return RecordFormat::kA;
  if (name == "b") return RecordFormat::kB;
  return std::nullopt;
}

RecordFormat recordFormatOf(std::string_view head) {
  const bool isB =
      head.starts_with(kObjectsVersion) && (head.size() == kRecordField || isDigit(head[kRecordField]));
  return isB ? RecordFormat::kB : RecordFormat::kA;
}

std::optional<std::uint32_t> recordLength(RecordFormat format, std::string_view field) {
  return format == RecordFormat::kA ? bigEndian32(field) : digits(field);
}

void ObjectReader::readHeader() {
  started_ = true;
  if (!format_) format_ = recordFormatOf(source_.peek(kFormatBytes));
  if (*format_ == RecordFormat::kA) return;
  std::string field;
  source_.read(field, kRecordField);
  if (field != kObjectsVersion)
    throw Failure(kFailed, source_.name(), "does not begin with the version field 1 of format b");
}

bool ObjectReader::next(std::string& data) {
  if (!started_) readHeader();
  offset_ = source_.position();
  data.clear();
  field_.clear();
  const std::uint64_t arrived = source_.read(field_, kRecordField);
  if (arrived == 0) return false;
  ++number_;
  const auto fail = [&](const std::string& what) {
    return Failure(kFailed, source_.name(),
                   "object " + std::to_string(number_) + ", at byte " + std::to_string(offset_) + ", " + what)
        .advise("'zqmsg objects check' finds all damage, and 'objects repair' what is whole");
  };
  if (arrived < kRecordField) throw fail("ends inside its length");
  const std::optional<std::uint32_t> length = recordLength(*format_, field_);
  if (!length) throw fail("has a length that is no number");
  length_ = *length;
  if (length_ == 0) throw fail("has the length 0");
  const std::uint64_t held = source_.read(data, length_);
  if (held < length_)
    throw fail("ends after " + std::to_string(held) + " of " + std::to_string(length_) + " bytes");
  return true;
}

void writeObjectRecord(Output& output, const std::string& data) {
  if (data.size() > std::numeric_limits<std::uint32_t>::max())
    throw Failure(
        kFailed, "",
        "a message of " + std::to_string(data.size()) + " bytes does not fit a record of an object file");
  std::string prefix;
  for (int shift = 24; shift >= 0; shift -= 8) prefix += static_cast<char>(data.size() >> shift & 0xff);
  output.write(prefix);
  output.write(data);
}

}  // namespace zqxml::tool
