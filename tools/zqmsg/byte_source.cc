#include "tools/zqmsg/byte_source.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "tools/zqmsg/failure.h"

namespace zqxml::tool {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;

[[noreturn]] void fail(const std::string& name, const CUlError& error) {
  throw Failure(kFailed, name, "cannot be read: " + error.GetText());
}

}  // namespace

ByteSource::ByteSource(const std::string& file) : name_(file == "-" ? "standard input" : file) {
  if (file == "-") {
    const int descriptor = dup(STDIN_FILENO);
    if (descriptor < 0) fail(name_, CUlError(errno));
    file_.Attach(descriptor, name_);
  } else if (const CUlError error = file_.Open(file, CUlFile::Mode::kRead); error.IsError()) {
    fail(name_, error);
  }
  (void)file_.Size(size_);  // of a pipe it is 0
}

bool ByteSource::fill(std::size_t size) {
  buffer_.erase(0, taken_);
  taken_ = 0;
  const std::size_t held = buffer_.size();
  buffer_.resize(held + size);
  unsigned arrived = 0;
  const CUlError error = file_.Read(buffer_.data() + held, static_cast<unsigned>(size), &arrived);
  buffer_.resize(held + arrived);
  if (error.IsError()) fail(name_, error);
  return arrived != 0;
}

std::string_view ByteSource::peek(std::size_t size) {
  while (buffer_.size() - taken_ < size && fill(kBlock)) {
  }
  return std::string_view(buffer_).substr(taken_, size);
}

std::uint64_t ByteSource::read(std::string& out, std::uint64_t size) {
  std::uint64_t left = size;
  while (left != 0) {
    if (taken_ == buffer_.size() && !fill(kBlock)) break;
    const std::size_t part = static_cast<std::size_t>(std::min<std::uint64_t>(left, buffer_.size() - taken_));
    out.append(buffer_, taken_, part);
    taken_ += part;
    position_ += part;
    left -= part;
  }
  return size - left;
}

}  // namespace zqxml::tool
