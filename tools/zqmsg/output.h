#pragma once

#include <zqxml/platform/file.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/zqmsg/interruption.h"

namespace zqxml::tool {

/// Where a command writes: a file, or standard output for the name "-". A file is written beside its target
/// and takes its place in commit(), so that a run that fails leaves the old file as it was. Every failure
/// throws TargetFailure with status kFailed.
class Output {
 public:
  explicit Output(const std::string& file);

  void write(std::string_view bytes);
  /// Writes out what is held back where someone may be waiting for it: not into a file beside its target.
  void show();
  /// Bytes written so far, and back to such a place: for a file that has not yet taken its target's place.
  std::uint64_t position() const { return flushed_ + held_.size(); }
  bool canRollBack() const { return !standardOutput_ && !file_.temporaryName().empty(); }
  void rollBack(std::uint64_t position);
  /// Writes out what is held back. Must be the last call; without it a file is not made.
  void commit();

 private:
  void flush();

  std::string name_;
  bool standardOutput_;
  CUlFile stream_;
  AtomicFile file_;
  RemovedOnInterruption unfinished_;
  std::uint64_t flushed_ = 0;
  std::string held_;
};

}  // namespace zqxml::tool
