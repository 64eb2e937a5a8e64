// Object files of format A: lengths of four bytes, big-endian.

#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/internal/record_format.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/crc64.h>

namespace zqxml {
namespace {

using record::failed;
using record::kFieldSize;

constexpr char kAdd[] = "XNMessageBaseFileHandler::AddObjectToFile";

void update(CUlCRC64& crc, const char* data, unsigned size) {
  crc.UpdateCRC64(reinterpret_cast<const unsigned char*>(data), size);
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
  const std::uint64_t size = object.SerializeBinary(buffer);
  if (size == 0) {
    if (failed(record::seekEnd(*srcFile), kAdd)) return FileHandlerWriteFailed;
    logError(kAdd, "Data Serialized is 0.Nothing to write.");
    return FileHandlerNoData;
  }
  std::uint64_t written = 0;
  const CUlError error = record::appendA(*srcFile, {buffer.getBuffer(), size}, written);
  const bool whole = written == kFieldSize + size;
  // A length counts when it is whole, and data when it is.
  if (written >= kFieldSize) bytesWritten = whole ? static_cast<unsigned>(written) : kFieldSize;
  if (crc != nullptr && bytesWritten != 0) {
    update(*crc, record::lengthA(static_cast<std::uint32_t>(size)).data(), kFieldSize);
    update(*crc, buffer.getBuffer(), bytesWritten - kFieldSize);
  }
  return failed(error, kAdd) ? FileHandlerWriteFailed : FileHandlerSuccess;
}

XNMessageBaseFileHandlerError XNMessageBaseFileHandler::GetObjectFromFile(XNMessageBase*& object) {
  if (!record::isUsable(srcFile)) return FileHandlerInvalidFile;
  const XNMessageBaseFileHandlerError result = record::readA(*srcFile, buffer);
  if (result == FileHandlerSuccess) object = BinarySerializer::unserialize(buffer, nullptr, false);
  return result;
}

}  // namespace zqxml
