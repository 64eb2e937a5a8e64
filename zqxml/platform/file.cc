#include <fcntl.h>
#include <string.h>
#include <unistd.h>
#include <zqxml/platform/file.h>
#include <zqxml/platform/internal/file_calls.h>

#include <cerrno>
#include <limits>
#include <utility>

namespace zqxml {
namespace {

using internal::FileCalls;

FileCalls& calls() {
  return FileCalls::current();
}

CUlError lastError() {
  return CUlError(errno);
}

// Calls again what a signal has interrupted.
template <typename Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

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

CUlFile::CUlFile(CUlFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), name_(std::move(other.name_)) {}

CUlFile& CUlFile::operator=(CUlFile&& other) noexcept {
  if (this != &other) {
    (void)Close();
    descriptor_ = std::exchange(other.descriptor_, -1);
    name_ = std::move(other.name_);
  }
  return *this;
}

CUlError CUlFile::Open(const std::string& name, Mode mode) {
  (void)Close();
  name_ = name;
  // A NUL would silently open another file.
  if (name.find('\0') != std::string::npos) return CUlError(EINVAL);
  descriptor_ = uninterrupted([&] { return calls().open(name.c_str(), openFlags(mode) | O_CLOEXEC, 0666); });
  return IsValid() ? CUlError() : lastError();
}

void CUlFile::Attach(int descriptor, std::string name) {
  (void)Close();
  descriptor_ = descriptor;
  name_ = std::move(name);
}

CUlError CUlFile::Close() {
  if (!IsValid()) return {};
  // The descriptor is gone even when a signal came in between.
  const bool failed = calls().close(std::exchange(descriptor_, -1)) != 0 && errno != EINTR;
  return failed ? lastError() : CUlError();
}

CUlError CUlFile::Read(void* data, unsigned size, unsigned* bytesRead) {
  auto* to = static_cast<char*>(data);
  unsigned done = 0;
  CUlError error;
  while (done < size) {
    const ssize_t count = uninterrupted([&] { return calls().read(descriptor_, to + done, size - done); });
    if (count < 0) error = lastError();
    if (count <= 0) break;
    done += static_cast<unsigned>(count);
  }
  if (!IsValid()) error = CUlError(EBADF);
  if (bytesRead != nullptr) *bytesRead = done;
  return error;
}

CUlError CUlFile::Write(const void* data, unsigned size, unsigned* bytesWritten) {
  const auto* from = static_cast<const char*>(data);
  unsigned done = 0;
  CUlError error = IsValid() ? CUlError() : CUlError(EBADF);
  while (done < size && !error.IsError()) {
    const ssize_t count = uninterrupted([&] { return calls().write(descriptor_, from + done, size - done); });
    if (count > 0) {
      done += static_cast<unsigned>(count);
    } else {
      // A device that takes nothing and reports nothing would be asked for ever.
      error = count < 0 ? lastError() : CUlError(EIO);
    }
  }
  if (bytesWritten != nullptr) *bytesWritten = done;
  return error;
}

CUlError CUlFile::Seek(std::int64_t offset, int origin, std::int64_t* newPosition) {
  constexpr int kOrigins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
  if (origin < 0 || origin > 2) return CUlError(EINVAL);
  const off_t position = calls().lseek(descriptor_, offset, kOrigins[origin]);
  if (position < 0) return lastError();
  if (newPosition != nullptr) *newPosition = position;
  return {};
}

CUlError CUlFile::Tell(std::int64_t& position) {
  return Seek(0, 1, &position);
}

CUlError CUlFile::Size(std::uint64_t& size) {
  struct stat state = {};
  if (calls().fstat(descriptor_, &state) != 0) return lastError();
  size = static_cast<std::uint64_t>(state.st_size);
  return {};
}

CUlError CUlFile::IsEOF(bool& atEnd) {
  std::int64_t position = 0;
  std::uint64_t size = 0;
  if (const CUlError error = Tell(position); error.IsError()) return error;
  if (const CUlError error = Size(size); error.IsError()) return error;
  atEnd = static_cast<std::uint64_t>(position) >= size;
  return {};
}

CUlError CUlFile::Truncate(std::uint64_t size) {
  if (size > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) return CUlError(EFBIG);
  const int result = uninterrupted([&] { return calls().ftruncate(descriptor_, static_cast<off_t>(size)); });
  return result == 0 ? CUlError() : lastError();
}

CUlError CUlFile::Flush() {
  const int result = uninterrupted([&] { return calls().fsync(descriptor_); });
  return result == 0 ? CUlError() : lastError();
}

}  // namespace zqxml
