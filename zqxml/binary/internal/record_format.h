// Records of object files, as bytes: what their two formats, and those who move records without their
// objects, have in common. Not installed.
#pragma once

#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/file.h>

#include <array>
#include <cstdint>
#include <string_view>

namespace zqxml::record {

/// Bytes of a length, and of the version field of format B.
inline constexpr unsigned kFieldSize = 4;
using Field = std::array<char, kFieldSize>;

inline bool isUsable(const CUlFile* file) {
  return file != nullptr && file->IsValid();
}

/// Logs an error of writing; false when there is none.
inline bool failed(const CUlError& error, const char* function) {
  if (error.IsError()) logError(function, "Failed to Dump Binary Into File, error=%s", error.GetText());
  return error.IsError();
}

/// Moves to the end. A file without a position, a pipe, is always there.
CUlError seekEnd(CUlFile& file);

/// Appends a record of format A with this data; `written` is what of it stands in the file, also after an
/// error. EMSGSIZE, and nothing written, for data whose record has 4 GiB or more.
CUlError appendA(CUlFile& file, std::string_view data, std::uint64_t& written);

/// Reads the data of the record of format A at the file's position into `buffer`: result and lines as of
/// XNMessageBaseFileHandler::GetObjectFromFile, which decodes it.
XNMessageBaseFileHandlerError readA(CUlFile& file, BinaryBuffer& buffer);

/// The length field of format A.
Field lengthA(std::uint32_t length);

}  // namespace zqxml::record
