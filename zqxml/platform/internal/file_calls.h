#pragma once

#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>

#include <cstddef>

namespace zqxml::internal {

/// The system calls behind CUlFile and AtomicFile, each as the system's own, `errno` included. Tests put an
/// object between that fails or transfers less; the base class passes all calls on.
class FileCalls {
 public:
  virtual ~FileCalls() = default;
  virtual int open(const char* path, int flags, mode_t mode);
  virtual int close(int descriptor);
  virtual ssize_t read(int descriptor, void* data, std::size_t size);
  virtual ssize_t write(int descriptor, const void* data, std::size_t size);
  /// Writes what `count` pieces hold at the end of the file, where the position is then (pwritev2 with
  /// RWF_APPEND). Some file systems cannot (EOPNOTSUPP).
  virtual ssize_t append(int descriptor, const struct iovec* pieces, int count);
  virtual off_t lseek(int descriptor, off_t offset, int origin);
  virtual int fstat(int descriptor, struct stat* result);
  virtual int ftruncate(int descriptor, off_t size);
  virtual int fsync(int descriptor);
  virtual int rename(const char* from, const char* to);

  /// The calls in use.
  static FileCalls& current();
  /// Uses `calls` from now on in the whole process, null for the system's, and gives what was in use. It must
  /// live until it is replaced.
  static FileCalls* replace(FileCalls* calls);
};

}  // namespace zqxml::internal
