// Object files of format B: a version field, then lengths as decimal digits.

#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/internal/record_format.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/number_text.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <string_view>

namespace zqxml {
namespace {

using record::failed;
using record::kFieldSize;

constexpr char kAppend[] = "XNMessageBaseFileHandler::appendBinaryBufferToFile";
constexpr char kRead[] = "XNMessageBaseFileHandler::readBinaryBufferFromFile";

constexpr unsigned kVersion = 1;
/// The first size that four digits cannot tell.
constexpr unsigned kTooLong = 10000;
/// Records of this length and more are passed over.
constexpr unsigned kHugeLength = 0x40000000;

/// The field at the file's position as a number, as "%u" reads it; 0 when it cannot be read.
unsigned readField(CUlFile& file) {
  std::array<char, kFieldSize> text{};
  if (file.Read(text.data(), kFieldSize, nullptr).IsError()) return 0;
  const std::string_view field(text.data(), text.size());
  return parseUInt32(field.substr(0, field.find('\0')));
}

/// `number`, which has at most four digits, as a field.
record::Field fieldOf(unsigned number) {
  record::Field text{};
  std::to_chars(text.begin(), text.end(), number);
  return text;
}

bool isKnownVersion(unsigned version, const char* function) {
  if (version == kVersion) return true;
  logError(function, "Unknown Binary Buffer Version :[%u]", version);
  return false;
}

/// Makes sure that records can follow: checks the version field, or writes that of an empty file, or the
/// rest.
XNMessageBaseFileHandlerError prepare(CUlFile& file) {
  std::uint64_t size = 0;
  if (failed(file.Size(size), kAppend)) return FileHandlerWriteFailed;
  if (size != 0) {
    if (!isKnownVersion(readField(file), kAppend)) return FileHandlerUnknownVersion;
  } else if (failed(file.Write(fieldOf(kVersion).data(), kFieldSize, nullptr), kAppend)) {
    return FileHandlerWriteFailed;
  }
  if (failed(record::seekEnd(file), kAppend)) return FileHandlerWriteFailed;
  // A full disk can have cut the field short: records behind its rest would never be found.
  constexpr std::array<char, kFieldSize> kPadding{};
  const unsigned missing = size != 0 && size < kFieldSize ? kFieldSize - static_cast<unsigned>(size) : 0;
  return failed(file.Write(kPadding.data(), missing, nullptr), kAppend) ? FileHandlerWriteFailed
                                                                        : FileHandlerSuccess;
}

XNMessageBaseFileHandlerError append(CUlFile& file, XNMessageBase* object) {
  BinaryBuffer data;
  const std::uint64_t size = object == nullptr ? 0 : object->SerializeBinary(data);
  if (size == 0) {
    logError(kAppend, "Data Serialized is 0.Nothing to write.");
    return FileHandlerNoData;
  }
  CUlError error(EMSGSIZE);  // the digits of a longer one would not fit the field
  if (size < kTooLong) {
    const record::Field length = fieldOf(static_cast<unsigned>(size));
    error = file.Append({length.data(), length.size()}, {data.getBuffer(), size}, nullptr);
  }
  return failed(error, kAppend) ? FileHandlerWriteFailed : FileHandlerSuccess;
}

/// Passes over up to `length` bytes; `passed` tells whether there was one.
XNMessageBaseFileHandlerError passOver(CUlFile& file, unsigned length, bool& passed) {
  std::array<char, 65536> chunk;
  while (length != 0) {
    const unsigned part = std::min<unsigned>(length, chunk.size());
    unsigned arrived = 0;
    if (const CUlError error = file.Read(chunk.data(), part, &arrived); error.IsError()) {
      logError(kRead, "Failed to Read from UlFile, error=%s", error.GetText());
      return FileHandlerReadFailed;
    }
    passed |= arrived != 0;
    if (arrived < part) break;
    length -= part;
  }
  return FileHandlerSuccess;
}

/// Reads one record; `object` stays null when its bytes do not decode.
XNMessageBaseFileHandlerError readRecord(CUlFile& file, XNMessageBase*& object) {
  const unsigned length = readField(file);
  std::array<char, kTooLong> bytes;
  unsigned arrived = 0;
  BinaryBuffer data;
  bool some = false;
  if (length >= kHugeLength) {
    const XNMessageBaseFileHandlerError result = passOver(file, length, some);
    if (result != FileHandlerSuccess) return result;
  } else if (length != 0) {
    (void)file.Read(bytes.data(), length, &arrived);  // four digits are less than the area
    some = arrived != 0;
    data.SetReadBuffer(bytes.data(), arrived, true);
  }
  if (!some) {
    logError(kRead, "No more data available to read");
    return FileHandlerNoData;
  }
  object = BinarySerializer::unserialize(data, nullptr, false);
  return FileHandlerSuccess;
}

}  // namespace

XNMessageBaseFileHandlerError XNMessageBaseFileHandler::appendBinaryBufferToFile(
    std::vector<XNMessageBase*>& objects) {
  if (!record::isUsable(srcFile)) {
    logError(kAppend, "Invalid File.");
    return FileHandlerInvalidFile;
  }
  XNMessageBaseFileHandlerError result = prepare(*srcFile);
  for (auto object = objects.begin(); result == FileHandlerSuccess && object != objects.end(); ++object) {
    result = append(*srcFile, *object);
  }
  return result;
}

XNMessageBaseFileHandlerError XNMessageBaseFileHandler::readBinaryBufferFromFile(
    std::vector<XNMessageBase*>& objects, int count) {
  if (!record::isUsable(srcFile)) {
    logError(kRead, "Invalid file ptr.");
    return FileHandlerInvalidFile;
  }
  std::int64_t position = 0;
  (void)srcFile->Tell(position);  // a pipe has none, and is at its start
  if (position == 0 && !isKnownVersion(readField(*srcFile), kRead)) return FileHandlerUnknownVersion;
  for (; count >= 1; --count) {
    XNMessageBase* object = nullptr;
    const XNMessageBaseFileHandlerError result = readRecord(*srcFile, object);
    if (result != FileHandlerSuccess) return result;
    if (object != nullptr) objects.push_back(object);
  }
  return FileHandlerSuccess;
}

}  // namespace zqxml
