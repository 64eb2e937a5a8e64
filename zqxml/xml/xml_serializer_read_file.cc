// Messages from XML in files.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/file.h>
#include <zqxml/xml/internal/xml_file_result.h>
#include <zqxml/xml/xml_serializer.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace zqxml {
namespace {

constexpr char kRead[] = "XMLSerializer::readXmlFromFile";

/// Whether a file that gave `got` bytes where more are due has come to its end. `done` and `size` are for the
/// lines.
bool reachedEnd(CUlFile& file, unsigned got, std::uint64_t done, std::uint64_t size) {
  bool atEnd = false;
  const CUlError error = file.IsEOF(atEnd);
  if (error.IsError()) {
    logError(
        kRead,
        "Assuming EOF after reading [%llu] bytes out of an estimated [%llu]. Return string from EOF check [%s].",
        done, size, error.GetText());
    return true;
  }
  if (atEnd) {
    logDebug(kRead, 10, "Encountered EOF after reading [%llu] bytes out of an estimated [%llu].", done, size);
    return true;
  }
  if (got != 0) return false;
  logError(kRead,
           "Assuming EOF due to 0 bytes read. Successfully read [%llu] bytes out of an estimated [%llu].",
           done, size);
  return true;
}

/// Reads `size` bytes, as far as they are there, to the end of `text`. QUIRK: a zero byte ends the chunk that
/// it stands in; the rest of that chunk is lost.
CUlError readText(CUlFile& file, std::uint64_t size, std::string& text) {
  for (std::uint64_t done = 0; done < size;) {
    const auto chunk = static_cast<unsigned>(std::min(size - done, kLargestFileChunk));
    const std::size_t start = text.size();
    text.resize(start + chunk);
    unsigned got = 0;
    const CUlError error = file.Read(text.data() + start, chunk, &got);
    text.resize(start + got);
    if (error.IsError()) return error;
    text.resize(std::min(text.find('\0', start), text.size()));
    done += got;
    if (got < chunk && reachedEnd(file, got, done, size)) break;
  }
  return CUlError();
}

}  // namespace

int XMLSerializer::readXmlFromFile(XNMessageBase* msg, CUlFile* file) {
  if (msg == nullptr) {
    logError(kRead, "Received null message");
    return kBadArgument;
  }
  if (!isUsableFile(file, kRead)) return kBadArgument;
  std::uint64_t size = 0;
  if (const CUlError error = file->Size(size); error.IsError()) {
    logError(kRead, "%s", error.GetText());
    return kNoSize;
  }
  if (size == 0) {
    logError(kRead, "File : [%s] is empty.", file->GetName());
    return kEmptyFile;
  }
  std::string text;
  if (const CUlError error = readText(*file, size, text); error.IsError()) {
    logError(kRead, "Failed to Read from UlFile, error:[%s]", error.GetText());
    return kReadFailed;
  }
  if (text.empty()) {
    logError(kRead, "No data. Input is empty.");
    return kBadText;
  }
  if (XMLSerializer().unserialize(*msg, text, false) == XN_MSG_OK) return 0;
  logError(kRead, "Failed to Unserialize xml string.");
  return kBadText;
}

}  // namespace zqxml
