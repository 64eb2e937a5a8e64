#include <arpa/inet.h>
#include <zqxml/binary/internal/record_format.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace zqxml::record {
namespace {

constexpr char kGet[] = "XNMessageBaseFileHandler::GetObjectFromFile";

/// So much is made room for because a length claims it; more when that much has arrived.
constexpr std::uint64_t kTrustedLength = std::uint64_t{1} << 20;
/// With its length before it, a record's size still fits 32 bits.
constexpr std::uint64_t kMostData = std::numeric_limits<std::uint32_t>::max() - kFieldSize;

/// Whether the position is known to be the end.
bool isAtEnd(CUlFile& file) {
  bool atEnd = false;
  return !file.IsEOF(atEnd).IsError() && atEnd;
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

CUlError seekEnd(CUlFile& file) {
  const CUlError error = file.Seek(0, 2, nullptr);
  return error.GetCode() == ESPIPE ? CUlError() : error;
}

Field lengthA(std::uint32_t length) {
  return {static_cast<char>(length >> 24), static_cast<char>(length >> 16), static_cast<char>(length >> 8),
          static_cast<char>(length)};
}

CUlError appendA(CUlFile& file, std::string_view data, std::uint64_t& written) {
  written = 0;
  if (data.size() > kMostData) return CUlError(EMSGSIZE);
  const Field length = lengthA(static_cast<std::uint32_t>(data.size()));
  return file.Append({length.data(), length.size()}, data, &written);
}

XNMessageBaseFileHandlerError readA(CUlFile& file, BinaryBuffer& buffer) {
  std::uint32_t field = 0;
  unsigned arrived = 0;
  const CUlError error = file.Read(&field, kFieldSize, &arrived);
  // The end is no error even where reading is one, and asking for it only then saves two calls a record.
  if (arrived == 0 && isAtEnd(file)) return FileHandlerNoData;
  if (error.IsError()) return FileHandlerReadFailed;
  if (arrived < kFieldSize || field == 0) {
    logError(kGet, "Could not read data size from file. Bytes read [%u], normalized size [0x%08x], eof[%s]",
             arrived, field, isAtEnd(file) ? "true" : "false");
    return FileHandlerNoData;
  }
  const std::uint32_t length = ntohl(field);
  const XNMessageBaseFileHandlerError result = readData(file, buffer, length, arrived);
  if (result != FileHandlerSuccess) return result;
  if (arrived < length) {
    logError(kGet, "Could not read data from file. Data read [%u] expected [%u]", arrived, length);
    return FileHandlerInvalidFile;
  }
  return FileHandlerSuccess;
}

}  // namespace zqxml::record
