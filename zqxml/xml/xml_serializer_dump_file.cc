// Messages as XML into files.
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

constexpr char kDump[] = "XMLSerializer::dumpXmlToFile";

CUlError writeText(CUlFile& file, const std::string& text) {
  for (std::uint64_t done = 0; done < text.size();) {
    const auto chunk = static_cast<unsigned>(std::min(text.size() - done, kLargestFileChunk));
    const CUlError error = file.Write(text.data() + done, chunk, nullptr);
    if (error.IsError()) return error;
    done += chunk;
  }
  return CUlError();
}

}  // namespace

int XMLSerializer::dumpXmlToFile(XNMessageBase* msg, CUlFile* file) {
  if (msg == nullptr) {
    logError(kDump, "Received null object");
    return kBadArgument;
  }
  if (!isUsableFile(file, kDump)) return kBadArgument;
  std::string text;
  if (const eXNMsgRet result = XMLSerializer().serialize(*msg, text); result != XN_MSG_OK) {
    logError(kDump, "serialize xml failed with ret code :[%d]", result);
    return kNotSerialized;
  }
  if (const CUlError error = writeText(*file, text); error.IsError()) {
    logError(kDump, "Failed to Dump Xml String Into File, error=%s", error.GetText());
    return kWriteFailed;
  }
  return 0;
}

}  // namespace zqxml
