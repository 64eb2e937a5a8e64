// Object files of format A: lengths of four bytes, big-endian.

#include <arpa/inet.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/internal/record_format.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/crc64.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace zqxml {

CUlError record::seekEnd(CUlFile& file) {
  const CUlError error = file.Seek(0, 2, nullptr);
  return error.GetCode() == ESPIPE ? CUlError() : error;
}

namespace {

using record::failed;
using record::kFieldSize;

constexpr char kAdd[] = "XNMessageBaseFileHandler::AddObjectToFile";
constexpr char kGet[] = "XNMessageBaseFileHandler::GetObjectFromFile";

/// So much is made room for because a length claims it; more when that much has arrived.
constexpr std::uint64_t kTrustedLength = std::uint64_t{1} << 20;
/// With its length before it, a record's size still fits 32 bits.
constexpr std::uint64_t kMostData = std::numeric_limits<std::uint32_t>::max() - kFieldSize;

void update(CUlCRC64* crc, const void* data, unsigned size) {
  if (crc != nullptr) crc->UpdateCRC64(static_cast<const unsigned char*>(data), size);
}

/// Reads `length` bytes into the buffer, as far as they are there; `held` is their count.
XNMessageBaseFileHandlerError readData(CUlFile& file, BinaryBuffer& buffer, unsigned length, unsigned& held) {
  for (held = 0; held < length;) {
    const std::uint64_t room = std::max({kTrustedLength, buffer.getBufferSize(), std::uint64_t{held} * 2});
    const auto end = static_cast<unsigned>(std::min<std::uint64_t>(length, room));
    buffer.resizeBuffer(end);
    if (buffer.getBuffer() == nullptr) {
      buffer.SetReadBuffer(nullptr, 0, false);  // or its old size would keep smaller records out, too
      return FileHandlerNoMemory;
    }
    unsigned arrived = 0;
    const CUlError error = file.Read(buffer.getBuffer() + held, end - held, &arrived);
    if (error.IsError()) return FileHandlerReadFailed;
    held += arrived;
    if (held < end) break;
  }
  return FileHandlerSuccess;
}

}  // namespace

XNMessageBaseFileHandlerError XNMessageBaseFileHandler::AddObjectToFile(XNMessageBase& object) {
  unsigned bytesWritten = 0;
  return AddObjectToFile(object, bytesWritten);
}

XNMessageBaseFileHandlerError XNMessageBaseFileHandler::AddObjectToFile(XNMessageBase& object,
                                                                        unsigned& bytesWritten) {
  bytesWritten = 0;
  if (!record::isUsable(srcFile)) {
    logError(kAdd, "Invalid File.");
    return FileHandlerInvalidFile;
  }
  if (failed(record::seekEnd(*srcFile), kAdd)) return FileHandlerWriteFailed;
  const std::uint64_t size = object.SerializeBinary(buffer);
  if (size == 0) {
    logError(kAdd, "Data Serialized is 0.Nothing to write.");
    return FileHandlerNoData;
  }
  if (size > kMostData && failed(CUlError(EMSGSIZE), kAdd)) return FileHandlerWriteFailed;
  const auto data = static_cast<unsigned>(size);
  const std::uint32_t length = htonl(data);
  if (failed(srcFile->Write(&length, kFieldSize, nullptr), kAdd)) return FileHandlerWriteFailed;
  bytesWritten = kFieldSize;
  update(crc, &length, kFieldSize);
  if (failed(srcFile->Write(buffer.getBuffer(), data, nullptr), kAdd)) return FileHandlerWriteFailed;
  bytesWritten += data;
  update(crc, buffer.getBuffer(), data);
  return FileHandlerSuccess;
}

XNMessageBaseFileHandlerError XNMessageBaseFileHandler::GetObjectFromFile(XNMessageBase*& object) {
  if (!record::isUsable(srcFile)) return FileHandlerInvalidFile;
  bool atEnd = false;
  if (const CUlError error = srcFile->IsEOF(atEnd); !error.IsError() && atEnd) return FileHandlerNoData;
  std::uint32_t length = 0;
  unsigned arrived = 0;
  if (srcFile->Read(&length, kFieldSize, &arrived).IsError()) return FileHandlerReadFailed;
  if (arrived < kFieldSize || length == 0) {
    atEnd = false;
    (void)srcFile->IsEOF(atEnd);  // for the line alone
    logError(kGet, "Could not read data size from file. Bytes read [%u], normalized size [0x%08x], eof[%s]",
             arrived, length, atEnd ? "true" : "false");
    return FileHandlerNoData;
  }
  length = ntohl(length);
  const XNMessageBaseFileHandlerError result = readData(*srcFile, buffer, length, arrived);
  if (result != FileHandlerSuccess) return result;
  if (arrived < length) {
    logError(kGet, "Could not read data from file. Data read [%u] expected [%u]", arrived, length);
    return FileHandlerInvalidFile;
  }
  object = BinarySerializer::unserialize(buffer, nullptr, false);
  return FileHandlerSuccess;
}

}  // namespace zqxml
