#include "tools/zqmsg/object_stream.h"

#include <limits>
#include <string_view>

#include "tools/zqmsg/byte_source.h"
#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

constexpr std::size_t kPrefix = 4;

std::uint32_t bigEndian32(std::string_view bytes) {
  std::uint32_t value = 0;
  for (char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

}  // namespace

bool ObjectReader::next(std::string& data) {
  const std::uint64_t start = source_.position();
  data.clear();
  std::string prefix;
  const std::uint64_t arrived = source_.read(prefix, kPrefix);
  if (arrived == 0) return false;
  ++number_;
  const auto fail = [&](const std::string& what) {
    return Failure(kFailed, source_.name(),
                   "object " + std::to_string(number_) + ", at byte " + std::to_string(start) + ", " + what);
  };
  if (arrived < kPrefix) throw fail("ends inside its length");
  length_ = bigEndian32(prefix);
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
