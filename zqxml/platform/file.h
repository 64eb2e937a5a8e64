#pragma once

#include <zqxml/platform/export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zqxml {

/// The outcome of an operation on a file: success, or one of the system's error numbers.
class [[nodiscard]] CUlError {
 public:
  /// @{
  /// Success, or the error of this number (`errno`), of which 0 is success.
  CUlError() = default;
  explicit CUlError(int errorNumber) : number_(errorNumber) {}
  /// @}

  /// Whether the operation failed.
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
///
/// Reading on and on in a regular file that Open has opened fetches up to 64 KiB ahead. That shows in two
/// ways only: what another process overwrites or cuts off just behind the position may still be read as it
/// was (Seek looks afresh), and a process that was forked meanwhile finds the common position further on.
class ZQXML_EXPORT CUlFile {
 public:
  /// How a file is opened.
  enum class Mode {
    kRead,       ///< read an existing file
    kWrite,      ///< write a new file, or an existing one from its start, emptied
    kReadWrite,  ///< read and write a file, which is made when it is not there
  };

  /// No file.
  CUlFile() = default;
  /// Opens the file; whether that worked tells IsValid.
  explicit CUlFile(const std::string& name, Mode mode = Mode::kRead) { (void)Open(name, mode); }
  ~CUlFile() { (void)Close(); }
  CUlFile(const CUlFile&) = delete;
  CUlFile& operator=(const CUlFile&) = delete;
  /// @{
  /// The file goes over; `other` has none then. What was open before is closed.
  CUlFile(CUlFile&& other) noexcept;
  CUlFile& operator=(CUlFile&& other) noexcept;
  /// @}

  /// Closes what is open, and opens `name`. A new file has mode 0666 less the umask. Not inherited by other
  /// programs (O_CLOEXEC).
  CUlError Open(const std::string& name, Mode mode);
  /// Takes an open descriptor over, which Close will close. Nothing is read ahead: others may read on from
  /// its position.
  void Attach(int descriptor, std::string name);
  /// Closes the file, if one is open: success when none is. It is closed also when it gives an error, which
  /// is that of what Append held back, or the system's; what was written may be lost then.
  CUlError Close();

  /// Whether a file is open.
  bool IsValid() const { return descriptor_ >= 0; }
  /// The name given to Open, also after Close.
  const std::string& GetName() const { return name_; }

  /// Puts up to `size` bytes into `data` and their count into `*bytesRead` (null: not wanted). At the end of
  /// the file that is 0, and no error.
  CUlError Read(void* data, unsigned size, unsigned* bytesRead);
  /// Writes `size` bytes; `*bytesWritten` (null: not wanted) is what was written, also after an error.
  CUlError Write(const void* data, unsigned size, unsigned* bytesWritten);
  /// Writes `head` and `body` at the end of the file, wherever the position is, which is the end afterwards,
  /// also after an error. To a pipe it writes what comes next. `*bytesWritten` (null: not wanted) is what was
  /// written, also after an error.
  ///
  /// The two go to the system in one call, as far as it takes them: then neither a process that is killed nor
  /// one that appends to the same file comes between them.
  CUlError Append(std::string_view head, std::string_view body, std::uint64_t* bytesWritten);
  /// Lets Append hold back up to `bytes` bytes, for writing much at once; 0, as after Open, for none.
  ///
  /// Success of Append says then no more than that the bytes were taken: a process that ends abnormally loses
  /// what is held back. They are in the system's hands after the next success of any other operation but
  /// IsValid and GetName, SetAppendBuffer(0) the cheapest of them. When handing over fails, the operation
  /// that tried reports it and has done nothing else; what was not written stays held back, in order, and the
  /// next operation tries it again. Close alone gives it up, after one try; the destructor, Open and Attach
  /// do so too, but cannot report it: call Close. Each Append is held back whole, or written whole when it is
  /// larger than the area, so that nothing is ever between its two parts. ENOMEM without memory for the area.
  CUlError SetAppendBuffer(unsigned bytes);
  /// Moves to `offset` bytes from `origin`: 0 is the start of the file, 1 the present position, 2 the end.
  /// `*newPosition` (null: not wanted) is counted from the start.
  CUlError Seek(std::int64_t offset, int origin, std::int64_t* newPosition);
  /// The present position, in bytes from the start. Not for pipes (ESPIPE).
  CUlError Tell(std::int64_t& position);
  /// The size of the file in bytes; 0 for a pipe.
  CUlError Size(std::uint64_t& size);
  /// Whether the position is at or behind the end. A pipe does not tell its end beforehand (ESPIPE): it is
  /// known when the last Read has met it.
  CUlError IsEOF(bool& atEnd);
  /// Empties the file from `size` on, or fills it with zeros up to there.
  CUlError Truncate(std::uint64_t size);
  /// Returns when the data is on the disk.
  CUlError Flush();

 private:
  /// Bytes on their way between the caller and the system.
  struct Area {
    std::unique_ptr<char[]> bytes;
    unsigned room = 0;
    unsigned from = 0, to = 0;  // what is still to be passed on

    unsigned size() const { return to - from; }
    void clear() { from = to = 0; }
  };

  bool mayReadAhead();
  unsigned takeAhead(char* to, unsigned size);
  CUlError readOnce(char* to, unsigned size, unsigned& count);
  CUlError appendAll(std::string_view head, std::string_view body, std::uint64_t& done);
  CUlError handOver();
  CUlError settle();

  int descriptor_ = -1;
  std::string name_;
  Area ahead_;                    // read, but not asked for yet: the system's position is behind it
  std::uint64_t inSequence_ = 0;  // bytes read since the position was last set
  bool readsAhead_ = false;       // nobody else reads on from the descriptor's position
  bool metEnd_ = false;           // by the last Read
  Area held_;                     // appended, but not handed over; empty while ahead_ is not
};

/// A file that comes into being complete or not at all: it is written beside its target and takes its place
/// in Commit.
///
/// A target that is a link stays one; an existing target's permissions are kept. A target that is no regular
/// file (a terminal, a pipe) is written to at once. Without a successful Commit the destructor removes what
/// was written, and the target stays as it was. Nothing throws.
class ZQXML_EXPORT AtomicFile {
 public:
  /// Without a target.
  AtomicFile() = default;
  ~AtomicFile() { discard(); }
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  /// Begins to write a target; one that was not committed is given up. EACCES and the like when the target is
  /// there and may not be written.
  CUlError Open(const std::string& target);
  /// Puts the bytes at the end.
  CUlError Write(std::string_view bytes);
  /// Writes the data out to the disk, closes the file and puts it in the place of the target. After an error
  /// the target is as it was, unless it is no regular file.
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
