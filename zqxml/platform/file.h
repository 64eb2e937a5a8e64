#pragma once

#include <zqxml/platform/export.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zqxml {

/// The outcome of an operation on a file: success, or one of the system's error numbers.
class [[nodiscard]] CUlError {
 public:
  CUlError() = default;
  explicit CUlError(int errorNumber) : number_(errorNumber) {}

  bool IsError() const { return number_ != 0; }
  /// The error number (`errno`), 0 for success.
  int GetCode() const { return number_; }
  /// The system's text of the error; empty for success.
  ZQXML_EXPORT std::string GetText() const;

 private:
  int number_ = 0;
};

/// A file of the system, opened and closed by whoever owns the object. It belongs to one thread at a time.
///
/// Reading and writing go on after a signal or a partial transfer, so that a count below the one asked for
/// means the end of the file, or an error. An operation on a file that is not open gives EBADF. Nothing
/// throws.
class ZQXML_EXPORT CUlFile {
 public:
  enum class Mode {
    kRead,       ///< read an existing file
    kWrite,      ///< write a new file, or an existing one from its start, emptied
    kReadWrite,  ///< read and write a file, which is made when it is not there
  };

  CUlFile() = default;
  /// Opens the file; whether that worked tells IsValid.
  explicit CUlFile(const std::string& name, Mode mode = Mode::kRead) { (void)Open(name, mode); }
  ~CUlFile() { (void)Close(); }
  CUlFile(const CUlFile&) = delete;
  CUlFile& operator=(const CUlFile&) = delete;
  CUlFile(CUlFile&& other) noexcept;
  CUlFile& operator=(CUlFile&& other) noexcept;

  /// Closes what is open, and opens `name`. A new file has mode 0666 less the umask. Not inherited by other
  /// programs (O_CLOEXEC).
  CUlError Open(const std::string& name, Mode mode);
  /// Takes an open descriptor over, which Close will close.
  void Attach(int descriptor, std::string name);
  CUlError Close();

  bool IsValid() const { return descriptor_ >= 0; }
  /// The name given to Open, also after Close.
  const std::string& GetName() const { return name_; }

  /// Puts up to `size` bytes into `data` and their count into `*bytesRead` (null: not wanted). At the end of
  /// the file that is 0, and no error.
  CUlError Read(void* data, unsigned size, unsigned* bytesRead);
  /// Writes `size` bytes; `*bytesWritten` (null: not wanted) is what was written, also after an error.
  CUlError Write(const void* data, unsigned size, unsigned* bytesWritten);
  /// `origin` is 0 for the start of the file, 1 for the present position, 2 for the end.
  CUlError Seek(std::int64_t offset, int origin, std::int64_t* newPosition);
  CUlError Tell(std::int64_t& position);
  CUlError Size(std::uint64_t& size);
  /// Whether the position is at or behind the end. Not for pipes (ESPIPE).
  CUlError IsEOF(bool& atEnd);
  /// Empties the file from `size` on, or fills it with zeros up to there.
  CUlError Truncate(std::uint64_t size);
  /// Returns when the data is on the disk.
  CUlError Flush();

 private:
  int descriptor_ = -1;
  std::string name_;
};

/// A file that comes into being complete or not at all: it is written beside its target and takes its place
/// in Commit.
///
/// A target that is a link stays one; an existing target's permissions are kept. A target that is no regular
/// file (a terminal, a pipe) is written to at once. Without a successful Commit the destructor removes what
/// was written, and the target stays as it was. Nothing throws.
class ZQXML_EXPORT AtomicFile {
 public:
  AtomicFile() = default;
  ~AtomicFile() { discard(); }
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  CUlError Open(const std::string& target);
  CUlError Write(std::string_view bytes);
  /// Writes the data out to the disk, closes the file and renames it.
  CUlError Commit();

  /// The file that is written, for those who need more than Write. Valid between Open and Commit.
  CUlFile& file() { return file_; }
  /// Path of the file beside the target while it is written, for those who remove it when the process is
  /// killed; empty when the target itself is written, and after Commit.
  const std::string& temporaryName() const { return temporary_; }

 private:
  void discard() noexcept;

  CUlFile file_;
  std::string target_;
  std::string temporary_;  // empty when the target itself is written
};

}  // namespace zqxml
