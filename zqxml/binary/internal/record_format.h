// What the two formats of object files have in common. Not installed.
#pragma once

#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/file.h>

#include <cstdint>

namespace zqxml::record {

/// Bytes of a length, and of the version field of format B.
inline constexpr unsigned kFieldSize = 4;

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

}  // namespace zqxml::record
