#include "tools/zqmsg/library_log.h"

#include <zqxml/platform/ev_debug.h>

#include <utility>

#include "tools/zqmsg/console.h"

namespace zqxml::tool {
namespace {

constexpr std::size_t kMostLines = 10;
constexpr std::size_t kMostCharacters = 400;
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
  // By how a line begins: what follows can be content of a message.
  told_.parseError |= text.starts_with("SAXParseException: ");
  told_.unknownClass |= text.starts_with("Unable to construct object out of tag");
  told_.noPasswordRoutine |= text.starts_with("Password Handler Not Found");
  told_.passwordFailed |= function.starts_with("ZQPassword::");
  told_.keyWithoutValue |= text.starts_with("No Password annotation found on member");
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
  told_ = {};
  return taken;
}

}  // namespace zqxml::tool
