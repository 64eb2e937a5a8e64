#pragma once

#include <zqxml/platform/internal/file_calls.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace zqxml {

/// Makes the system calls of all files fail, or transfer less, during the life of the object. One at a time.
///
///   FailingFileCalls calls;
///   calls.writeError = ENOSPC;
///   calls.writesBeforeError = 1;
class FailingFileCalls : public internal::FileCalls {
 public:
  FailingFileCalls() : previous_(replace(this)) {}
  ~FailingFileCalls() override { replace(previous_); }
  FailingFileCalls(const FailingFileCalls&) = delete;
  FailingFileCalls& operator=(const FailingFileCalls&) = delete;

  // Error numbers; 0 for none.
  int openError = 0;
  int closeError = 0;
  int readError = 0;
  int writeError = 0;   ///< of appending, too
  int appendError = 0;  ///< of a file system that cannot append
  int seekError = 0;
  int statError = 0;
  int truncateError = 0;
  int syncError = 0;
  int renameError = 0;
  /// How many calls still succeed before the error.
  int readsBeforeError = 0;
  int writesBeforeError = 0;
  int seeksBeforeError = 0;
  int statsBeforeError = 0;
  /// How many bytes can still be written before the error: a disk that fills up. Calls count no more then.
  std::optional<std::size_t> bytesBeforeError;
  /// The most bytes that one call transfers.
  std::size_t largestTransfer = std::numeric_limits<std::size_t>::max();
  /// How many calls a signal interrupts (EINTR) before each one that works.
  int interruptions = 0;

  /// How often each was called, failures included.
  int reads = 0;
  int writes = 0;  ///< of both kinds
  int appends = 0;

  int open(const char* path, int flags, mode_t mode) override {
    return fails(openError) || interrupted() ? -1 : FileCalls::open(path, flags, mode);
  }
  int close(int descriptor) override {
    const int result = FileCalls::close(descriptor);
    return fails(closeError) ? -1 : result;
  }
  ssize_t read(int descriptor, void* data, std::size_t size) override {
    ++reads;
    if (fails(readError, readsBeforeError) || interrupted()) return -1;
    return FileCalls::read(descriptor, data, std::min(size, largestTransfer));
  }
  ssize_t write(int descriptor, const void* data, std::size_t size) override {
    return limited(size, [&](std::size_t room) { return FileCalls::write(descriptor, data, room); });
  }
  ssize_t append(int descriptor, const struct iovec* pieces, int count) override {
    ++appends;
    if (fails(appendError)) return -1;
    std::vector<iovec> some(pieces, pieces + count);
    std::size_t size = 0;
    for (const iovec& piece : some) size += piece.iov_len;
    return limited(size, [&](std::size_t room) {
      for (iovec& piece : some) {
        piece.iov_len = std::min(piece.iov_len, room);
        room -= piece.iov_len;
      }
      return FileCalls::append(descriptor, some.data(), count);
    });
  }
  off_t lseek(int descriptor, off_t offset, int origin) override {
    return fails(seekError, seeksBeforeError) ? -1 : FileCalls::lseek(descriptor, offset, origin);
  }
  int fstat(int descriptor, struct stat* result) override {
    return fails(statError, statsBeforeError) ? -1 : FileCalls::fstat(descriptor, result);
  }
  int ftruncate(int descriptor, off_t size) override {
    return fails(truncateError) ? -1 : FileCalls::ftruncate(descriptor, size);
  }
  int fsync(int descriptor) override { return fails(syncError) ? -1 : FileCalls::fsync(descriptor); }
  int rename(const char* from, const char* to) override {
    return fails(renameError) ? -1 : FileCalls::rename(from, to);
  }

 private:
  static bool fails(int error) {
    errno = error;
    return error != 0;
  }
  static bool fails(int error, int& before) {
    if (error == 0 || before-- > 0) return false;
    return fails(error);
  }
  template <class Write>
  ssize_t limited(std::size_t size, Write write) {
    ++writes;
    size = std::min(size, largestTransfer);
    if (bytesBeforeError) size = std::min(size, *bytesBeforeError);
    const bool full = bytesBeforeError && size == 0;
    if (full ? fails(writeError) : !bytesBeforeError && fails(writeError, writesBeforeError)) return -1;
    if (interrupted()) return -1;
    const ssize_t written = write(size);
    if (bytesBeforeError && written > 0) *bytesBeforeError -= static_cast<std::size_t>(written);
    return written;
  }
  bool interrupted() {
    if (interruptedNow_++ < interruptions) return fails(EINTR);
    interruptedNow_ = 0;
    return false;
  }

  internal::FileCalls* previous_;
  int interruptedNow_ = 0;
};

}  // namespace zqxml
