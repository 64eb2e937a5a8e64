// XNMessageBaseFileHandler: files of message objects.
#pragma once

#include <zqxml/binary/binary_buffer.h>
#include <zqxml/platform/export.h>

#include <vector>

namespace zqxml {

class CUlCRC64;
class CUlFile;
class XNMessageBase;

/// The result of the handler's operations.
enum XNMessageBaseFileHandlerError {
  FileHandlerSuccess = 0,         ///< done
  FileHandlerUnknownVersion = 1,  ///< the version field at the start of a file of format B is not 1
  FileHandlerNoData = 2,          ///< nothing to write, or nothing left to read
  FileHandlerInvalidFile = 3,     ///< no file, one that is not open, or a record of format A cut short
  FileHandlerNoMemory = 4,        ///< there is no memory for the record
  FileHandlerReadFailed = 5,      ///< the file reported an error
  FileHandlerWriteFailed = 6,     ///< the file reported an error, or the format cannot hold the record
};

/// Files of message objects. Lengths of format A are big-endian, the binary form behind them little-endian;
/// docs/object-files.md tells both formats.
///
/// A file holds records of one of two formats, one record per object, each with the object's binary form at
/// version 2. Format A (AddObjectToFile, GetObjectFromFile) has no file header and a length of 4 bytes.
/// Format B (appendBinaryBufferToFile, readBinaryBufferFromFile) starts with a version field, and its lengths
/// are decimal digits. Neither pair of operations reads the other's files.
///
/// The caller opens the file, gives it to the handler and keeps it; the handler never closes, truncates or
/// rewinds it. A record whose operation answered FileHandlerSuccess is whole and in the system's hands:
/// CUlFile::Flush puts it on the disk. A file that holds back what is appended (CUlFile::SetAppendBuffer) has
/// it in the system's hands when the next of its own operations succeeds. A write that failed leaves what it
/// wrote: later records stand behind that and are only found by a search ('zqmsg objects repair').
///
/// Failure: the result, and where it says so a line of level 0 under the operation's name. Nothing throws.
/// Threads: none is guarded; a handler, its buffer and its file belong to one thread at a time.
class ZQXML_EXPORT XNMessageBaseFileHandler {
 public:
  /// No file, no checksum.
  XNMessageBaseFileHandler() = default;
  /// `file` is borrowed and may be null.
  explicit XNMessageBaseFileHandler(CUlFile* file) : srcFile(file) {}

  /// Replaces the file; borrowed, null for none.
  void setSrcFile(CUlFile* file) { srcFile = file; }
  /// Sets the checksum that AddObjectToFile feeds with all that it has written; borrowed, null for none.
  void setCrC64(CUlCRC64* checksum) { crc = checksum; }

  /// @{
  /// Appends one record of format A, wherever the file's position is, which is the end afterwards.
  ///
  /// `bytesWritten` becomes 4 when the length stands in the file and the size of the record when all of it
  /// does; 0 on every earlier failure. Results, with their lines:
  /// - 3 "Invalid File."
  /// - 2 "Data Serialized is 0.Nothing to write.": there is no memory for the binary form, or it is too large
  /// - 6 "Failed to Dump Binary Into File, error=%s": the system's text; also for 4 GiB and more
  XNMessageBaseFileHandlerError AddObjectToFile(XNMessageBase& object, unsigned& bytesWritten);
  XNMessageBaseFileHandlerError AddObjectToFile(XNMessageBase& object);
  /// @}

  /// Reads the record of format A at the file's position and makes its object, which the caller owns.
  ///
  /// `object` changes only with result 0; it is null when the bytes do not decode, which the decoder logs and
  /// which is no failure of the file: the next call reads the next record. Memory grows with the bytes that
  /// arrive, not with the length that the record claims. Results, with their lines:
  /// - 3 no line: no file; 2 no line: the position is the end of the file, or of the pipe
  /// - 2 "Could not read data size from file. Bytes read [%u], normalized size [0x%08x], eof[%s]": the file
  ///     ends inside a length, or the length is 0
  /// - 3 "Could not read data from file. Data read [%u] expected [%u]": the file ends inside the record
  /// - 4, 5 no line
  XNMessageBaseFileHandlerError GetObjectFromFile(XNMessageBase*& object);

  /// Appends a record of format B for every object, in order; an empty file gets the version field first,
  /// also when there is no object, and a file that holds less than four bytes of it the rest. A null object
  /// counts as one without data. QUIRK: a pipe is always empty, and gets the version field at every call.
  ///
  /// QUIRK: the version field of a file that is not empty is read where the file stands, so the caller has it
  /// at its start. What was written before a failure stays. A record holds less than 10,000 bytes: of a
  /// longer one nothing is written. Results, with their lines:
  /// - 3 "Invalid File."
  /// - 1 "Unknown Binary Buffer Version :[%u]": also a field that cannot be read, which counts as 0
  /// - 2 "Data Serialized is 0.Nothing to write."
  /// - 6 "Failed to Dump Binary Into File, error=%s"
  XNMessageBaseFileHandlerError appendBinaryBufferToFile(std::vector<XNMessageBase*>& objects);

  /// Reads up to `count` records of format B from the file's position and appends their objects, which the
  /// caller owns, to `objects`. The version field is read and checked at the start of the file only, where a
  /// pipe is at every call.
  ///
  /// An object that does not decode is left out and counts all the same. A record that the file cuts short is
  /// decoded as far as it is there. QUIRK: an error while reading counts as the end of the file. Results,
  /// with their lines:
  /// - 3 "Invalid file ptr."
  /// - 1 "Unknown Binary Buffer Version :[%u]"
  /// - 2 "No more data available to read": fewer than `count` records are there; also a length of 0
  /// - 5 "Failed to Read from UlFile, error=%s": only behind a length of 1 GiB or more, which "-1" is; such
  ///     bytes are passed over
  XNMessageBaseFileHandlerError readBinaryBufferFromFile(std::vector<XNMessageBase*>& objects, int count);

 private:
  CUlFile* srcFile = nullptr;
  BinaryBuffer buffer;  // kept between calls, so that its memory is used again
  CUlCRC64* crc = nullptr;
};

}  // namespace zqxml
