#include <fcntl.h>
#include <string.h>
#include <unistd.h>
#include <zqxml/platform/file.h>
#include <zqxml/platform/internal/system_calls.h>

#include <cerrno>
#include <limits>
#include <utility>

namespace zqxml {
namespace {

using internal::calls;
using internal::lastError;
using internal::uninterrupted;

int openFlags(CUlFile::Mode mode) {
  switch (mode) {
    case CUlFile::Mode::kRead:
      return O_RDONLY;
    case CUlFile::Mode::kWrite:
      return O_WRONLY | O_CREAT | O_TRUNC;
    case CUlFile::Mode::kReadWrite:
      break;
  }
  return O_RDWR | O_CREAT;
}

}  // namespace

std::string CUlError::GetText() const {
  if (!IsError()) return {};
  char area[128];
  return strerror_r(number_, area, sizeof area);
}

CUlFile::CUlFile(CUlFile&& other) noexcept {
  *this = std::move(other);
}

CUlFile& CUlFile::operator=(CUlFile&& other) noexcept {
  if (this != &other) {
    (void)Close();
    descriptor_ = std::exchange(other.descriptor_, -1);
    name_ = std::move(other.name_);
    ahead_ = std::exchange(other.ahead_, {});
    inSequence_ = other.inSequence_;
    readsAhead_ = other.readsAhead_;
    metEnd_ = std::exchange(other.metEnd_, false);
    held_ = std::exchange(other.held_, {});
  }
  return *this;
}

CUlError CUlFile::Open(const std::string& name, Mode mode) {
  (void)Close();
  name_ = name;
  // A NUL would silently open another file.
  if (name.find('\0') != std::string::npos) return CUlError(EINVAL);
  descriptor_ = uninterrupted([&] { return calls().open(name.c_str(), openFlags(mode) | O_CLOEXEC, 0666); });
  readsAhead_ = true;
  return IsValid() ? CUlError() : lastError();
}

void CUlFile::Attach(int descriptor, std::string name) {
  (void)Close();
  descriptor_ = descriptor;
  readsAhead_ = false;
  name_ = std::move(name);
}

CUlError CUlFile::Close() {
  if (!IsValid()) return {};
  const CUlError lost = handOver();
  ahead_ = {};
  held_ = {};
  inSequence_ = 0;
  metEnd_ = false;
  // The descriptor is gone even when a signal came in between.
  const bool failed = calls().close(std::exchange(descriptor_, -1)) != 0 && errno != EINTR;
  if (lost.IsError()) return lost;
  return failed ? lastError() : CUlError();
}

CUlError CUlFile::Seek(std::int64_t offset, int origin, std::int64_t* newPosition) {
  constexpr int kOrigins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
  if (origin < 0 || origin > 2) return CUlError(EINVAL);
  if (const CUlError error = handOver(); error.IsError()) return error;
  // The system stands behind what was read ahead.
  if (origin == 1 && __builtin_sub_overflow(offset, ahead_.size(), &offset)) return CUlError(EINVAL);
  const off_t position = calls().lseek(descriptor_, offset, kOrigins[origin]);
  if (position < 0) return lastError();
  ahead_.clear();
  inSequence_ = 0;
  if (newPosition != nullptr) *newPosition = position;
  return {};
}

CUlError CUlFile::Tell(std::int64_t& position) {
  if (const CUlError error = handOver(); error.IsError()) return error;
  const off_t systems = calls().lseek(descriptor_, 0, SEEK_CUR);
  if (systems < 0) return lastError();
  position = systems - ahead_.size();
  return {};
}

CUlError CUlFile::Size(std::uint64_t& size) {
  if (const CUlError error = handOver(); error.IsError()) return error;
  struct stat state = {};
  if (calls().fstat(descriptor_, &state) != 0) return lastError();
  size = static_cast<std::uint64_t>(state.st_size);
  return {};
}

CUlError CUlFile::IsEOF(bool& atEnd) {
  std::int64_t position = 0;
  std::uint64_t size = 0;
  if (ahead_.size() != 0) {
    atEnd = false;
    return {};
  }
  if (const CUlError error = Tell(position); error.IsError()) {
    if (!metEnd_ || error.GetCode() != ESPIPE) return error;
    atEnd = true;
    return {};
  }
  if (const CUlError error = Size(size); error.IsError()) return error;
  atEnd = static_cast<std::uint64_t>(position) >= size;
  return {};
}

CUlError CUlFile::Truncate(std::uint64_t size) {
  if (size > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) return CUlError(EFBIG);
  if (const CUlError error = settle(); error.IsError()) return error;
  const int result = uninterrupted([&] { return calls().ftruncate(descriptor_, static_cast<off_t>(size)); });
  return result == 0 ? CUlError() : lastError();
}

CUlError CUlFile::Flush() {
  if (const CUlError error = handOver(); error.IsError()) return error;
  const int result = uninterrupted([&] { return calls().fsync(descriptor_); });
  return result == 0 ? CUlError() : lastError();
}

}  // namespace zqxml
