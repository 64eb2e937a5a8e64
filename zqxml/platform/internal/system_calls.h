// What the parts of CUlFile share. Not installed.
#pragma once

#include <zqxml/platform/file.h>
#include <zqxml/platform/internal/file_calls.h>

#include <cerrno>

namespace zqxml::internal {

inline FileCalls& calls() {
  return FileCalls::current();
}

inline CUlError lastError() {
  return CUlError(errno);
}

/// Calls again what a signal has interrupted.
template <typename Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

}  // namespace zqxml::internal
