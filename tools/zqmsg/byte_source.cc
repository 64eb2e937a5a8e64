#include "tools/zqmsg/byte_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zqxml/platform/file.h>

#include <algorithm>
#include <cerrno>

#include "tools/zqmsg/failure.h"

namespace zqxml::tool {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;

[[noreturn]] void fail(const std::string& name) {
  throw Failure(kFailed, name, "cannot be read: " + CUlError(errno).GetText());
}

}  // namespace

ByteSource::ByteSource(const std::string& file) : name_(file == "-" ? "standard input" : file) {
  descriptor_ =
      file == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0) : open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor_ < 0) fail(name_);
  struct stat status = {};
  if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return;
  // Of standard input a part may have been read already.
  const off_t start = std::max<off_t>(lseek(descriptor_, 0, SEEK_CUR), 0);
  size_ = static_cast<std::uint64_t>(std::max<off_t>(status.st_size - start, 0));
}

ByteSource::~ByteSource() {
  if (descriptor_ >= 0) close(descriptor_);
}

bool ByteSource::fill() {
  if (held().empty()) taken_ = filled_ = 0;
  if (taken_ != 0) {
    buffer_.erase(0, taken_);
    filled_ -= taken_;
    taken_ = 0;
  }
  if (buffer_.size() < filled_ + kBlock) buffer_.resize(filled_ + kBlock);
  if (onWait_) onWait_();
  ssize_t arrived = 0;
  do {
    arrived = ::read(descriptor_, buffer_.data() + filled_, kBlock);
  } while (arrived < 0 && errno == EINTR);
  if (arrived < 0) fail(name_);
  filled_ += static_cast<std::size_t>(arrived);
  return arrived != 0;
}

void ByteSource::take(std::string& out, std::size_t size) {
  out.append(buffer_, taken_, size);
  taken_ += size;
  position_ += size;
}

std::string_view ByteSource::peekAtLeast(std::size_t size) {
  while (held().size() < size && fill()) {
  }
  return held();
}

std::uint64_t ByteSource::read(std::string& out, std::uint64_t size) {
  std::uint64_t left = size;
  while (left != 0) {
    if (held().empty() && !fill()) break;
    const std::size_t part = static_cast<std::size_t>(std::min<std::uint64_t>(left, held().size()));
    take(out, part);
    left -= part;
  }
  return size - left;
}

bool ByteSource::readLine(std::string& out, std::uint64_t most) {
  bool any = false;
  while (!held().empty() || fill()) {
    any = true;
    const std::size_t end = held().find('\n');
    take(out, std::min(end, held().size()));
    if (out.size() > most) throw Failure(kFailed, name_, "has a line that is larger than a message can be");
    if (end == std::string_view::npos) continue;
    ++taken_;
    ++position_;
    break;
  }
  return any;
}

}  // namespace zqxml::tool
