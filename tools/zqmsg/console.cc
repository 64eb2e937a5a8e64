#include "tools/zqmsg/console.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

constexpr const char* kRed = "\033[1;31m";
constexpr const char* kYellow = "\033[33m";
constexpr const char* kGreen = "\033[32m";
constexpr const char* kDim = "\033[2m";
constexpr const char* kNormal = "\033[0m";

bool coloursWanted() {
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return (noColour == nullptr || *noColour == '\0') &&
         (terminal == nullptr || std::string_view(terminal) != "dumb");
}

std::string prefixed(std::string_view where) {
  return where.empty() ? "zqmsg: " : "zqmsg: " + visible(where) + ": ";
}

}  // namespace

std::string visible(std::string_view text) {
  return escapedText(text, '\0');
}

Console::Console() : terminal_(isatty(STDERR_FILENO) == 1), colours_(terminal_ && coloursWanted()) {}

void Console::report(const Failure& failure) {
  line(prefixed(failure.where()) + painted(kRed, visible(failure.what())));
  for (const std::string& text : failure.explanation()) line("  " + painted(kDim, visible(text)));
  if (!failure.advice().empty()) line("  " + visible(failure.advice()));
}

void Console::tell(std::string_view where, std::string_view what) {
  line(prefixed(where) + visible(what));
}

void Console::warn(std::string_view where, std::string_view what) {
  line(prefixed(where) + painted(kYellow, "warning: ") + visible(what));
}

void Console::trace(int level, std::string_view function, std::string_view text) {
  line(painted(kDim, "[" + std::to_string(level) + "] " + visible(function) + ": " + visible(text)));
}

std::string Console::bar(Share share) const {
  constexpr std::size_t kWidth = 30;
  const double part =
      static_cast<double>(std::min(share.done, share.whole)) / static_cast<double>(share.whole);
  const auto filled = static_cast<std::size_t>(part * kWidth);
  return '[' + painted(kGreen, std::string(filled, '#')) + std::string(kWidth - filled, '-') + "] " +
         std::to_string(static_cast<int>(part * 100)) + '%';
}

void Console::progress(std::string_view what, std::uint64_t count, Share share) {
  if (!terminal_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - lastProgress_ < std::chrono::milliseconds(200)) return;
  lastProgress_ = now;
  progressShown_ = true;
  const std::string shown =
      (share.whole == 0 ? "" : bar(share) + ' ') + visible(what) + ": " + std::to_string(count);
  std::fprintf(stderr, "\r\033[K%s", shown.c_str());
  std::fflush(stderr);
}

void Console::endProgress() {
  if (!progressShown_) return;
  progressShown_ = false;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
}

void Console::line(std::string_view text) {
  endProgress();
  std::string bytes(text);
  bytes += '\n';
  std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

std::string Console::painted(const char* colour, std::string_view text) const {
  return colours_ ? colour + std::string(text) + kNormal : std::string(text);
}

}  // namespace zqxml::tool
