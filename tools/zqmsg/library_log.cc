#include "tools/zqmsg/library_log.h"

#include <zqxml/platform/ev_debug.h>

#include <utility>

#include "tools/zqmsg/console.h"

namespace zqxml::tool {
namespace {

constexpr std::size_t kMostLines = 10;
constexpr std::size_t kMostCharacters = 400;
constexpr std::size_t kMostTexts = 1 << 16;
constexpr int kTraceLevel = 15;

std::string clipped(std::string_view text) {
  if (text.size() <= kMostCharacters) return std::string(text);
  return std::string(text.substr(0, kMostCharacters)) + "...";
}

}  // namespace

LibraryLog::LibraryLog(Console& console) noexcept : console_(console) {
  EvDebug::setSink([this](const LogLine& line) {
    if (showAll_) console_.trace(line.level, line.function, clipped(line.text));
    if (line.level == 0) keep(line.function, line.text);
  });
}

LibraryLog::~LibraryLog() {
  EvDebug::setSink({});
}

void LibraryLog::showAll() {
  showAll_ = true;
  EvDebug::setDebugLevel(kTraceLevel);
}

void LibraryLog::keep(std::string_view function, std::string_view text) {
  if (texts_.size() < kMostTexts) {
    texts_ += std::string(function) + ": " + clipped(text) + '\n';
  }
  if (showAll_) return;
  if (lines_.size() < kMostLines) {
    lines_.push_back(std::string(function) + ": " + clipped(text));
  } else {
    ++dropped_;
  }
}

std::vector<std::string> LibraryLog::take() {
  std::vector<std::string> taken = std::exchange(lines_, {});
  if (dropped_ != 0) taken.push_back("and " + std::to_string(dropped_) + " more like these");
  dropped_ = 0;
  texts_.clear();
  return taken;
}

bool LibraryLog::mentions(std::string_view part) const {
  return texts_.find(part) != std::string::npos;
}

}  // namespace zqxml::tool
