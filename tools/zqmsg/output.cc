#include "tools/zqmsg/output.h"

#include <unistd.h>

#include <cerrno>

#include "tools/zqmsg/failure.h"

namespace zqxml::tool {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;

void check(const std::string& name, const CUlError& error) {
  if (error.IsError()) throw TargetFailure(kFailed, name, "cannot be written: " + error.GetText());
}

}  // namespace

Output::Output(const std::string& file)
    : name_(file == "-" ? "standard output" : file), standardOutput_(file == "-") {
  if (standardOutput_) {
    const int descriptor = dup(STDOUT_FILENO);
    check(name_, CUlError(descriptor < 0 ? errno : 0));
    stream_.Attach(descriptor, name_);
  } else {
    const InterruptionsHeld held;
    check(name_, file_.Open(file));
    unfinished_.remember(file_.temporaryName());
  }
}

void Output::write(std::string_view bytes) {
  held_ += bytes;
  if (held_.size() >= kBlock) flush();
}

void Output::show() {
  if (!canRollBack() && !held_.empty()) flush();
}

void Output::flush() {
  if (standardOutput_) {
    std::string_view rest = held_;
    while (!rest.empty()) {
      const std::string_view part = rest.substr(0, std::size_t{1} << 30);
      check(name_, stream_.Write(part.data(), static_cast<unsigned>(part.size()), nullptr));
      rest.remove_prefix(part.size());
    }
  } else {
    check(name_, file_.Write(held_));
  }
  flushed_ += held_.size();
  held_.clear();
}

void Output::rollBack(std::uint64_t position) {
  if (position >= flushed_) return held_.resize(position - flushed_);
  held_.clear();
  check(name_, file_.file().Truncate(position));
  check(name_, file_.file().Seek(static_cast<std::int64_t>(position), 0, nullptr));
  flushed_ = position;
}

void Output::commit() {
  flush();
  check(name_, standardOutput_ ? stream_.Close() : file_.Commit());
  unfinished_.forget();
}

}  // namespace zqxml::tool
