// Results of the operations on files of XML. Not installed.
#pragma once

#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/file.h>

#include <cstdint>

namespace zqxml {

/// 0 is success.
enum XmlFileResult : int {
  kNoSize = 2,
  kBadArgument = 3,
  kEmptyFile = 4,
  kReadFailed = 5,
  kWriteFailed = 6,
  kBadText = 8,
  kNotSerialized = 9,
};

/// What is read and written at once.
inline constexpr std::uint64_t kLargestFileChunk = 0x40000000;

inline bool isUsableFile(const CUlFile* file, const char* function) {
  const bool usable = file != nullptr && file->IsValid();
  if (!usable) logError(function, "Invalid input file");
  return usable;
}

}  // namespace zqxml
