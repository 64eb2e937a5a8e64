#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>
#include <zqxml/platform/internal/file_calls.h>

#include <atomic>

namespace zqxml::internal {
namespace {

std::atomic<FileCalls*> installed{nullptr};

}  // namespace

int FileCalls::open(const char* path, int flags, mode_t mode) {
  return ::open(path, flags, mode);
}
int FileCalls::close(int descriptor) {
  return ::close(descriptor);
}
ssize_t FileCalls::read(int descriptor, void* data, std::size_t size) {
  return ::read(descriptor, data, size);
}
ssize_t FileCalls::write(int descriptor, const void* data, std::size_t size) {
  return ::write(descriptor, data, size);
}
ssize_t FileCalls::append(int descriptor, const struct iovec* pieces, int count) {
  return ::pwritev2(descriptor, pieces, count, -1, RWF_APPEND);
}
off_t FileCalls::lseek(int descriptor, off_t offset, int origin) {
  return ::lseek(descriptor, offset, origin);
}
int FileCalls::fstat(int descriptor, struct stat* result) {
  return ::fstat(descriptor, result);
}
int FileCalls::ftruncate(int descriptor, off_t size) {
  return ::ftruncate(descriptor, size);
}
int FileCalls::fsync(int descriptor) {
  return ::fsync(descriptor);
}
int FileCalls::rename(const char* from, const char* to) {
  return ::rename(from, to);
}

FileCalls& FileCalls::current() {
  static FileCalls system;
  FileCalls* calls = installed.load(std::memory_order_acquire);
  return calls != nullptr ? *calls : system;
}

FileCalls* FileCalls::replace(FileCalls* calls) {
  return installed.exchange(calls, std::memory_order_acq_rel);
}

}  // namespace zqxml::internal
