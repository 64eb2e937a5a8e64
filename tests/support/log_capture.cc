#include <tests/support/log_capture.h>

#include <algorithm>
#include <mutex>

namespace zqxml {

// Shared with the sink, which may still be called while the capture goes.
struct LogCapture::Lines {
  std::mutex mutex;
  std::vector<CapturedLine> lines;
};

LogCapture::LogCapture(int level)
    : lines_(std::make_shared<Lines>()), previousLevel_(EvDebug::getDebugLevel()) {
  EvDebug::setSink([lines = lines_](const LogLine& line) {
    const std::lock_guard<std::mutex> lock(lines->mutex);
    lines->lines.push_back({std::string(line.function), line.level, std::string(line.text)});
  });
  EvDebug::setDebugLevel(level);
}

LogCapture::~LogCapture() {
  EvDebug::setDebugLevel(previousLevel_);
  EvDebug::setSink({});
}

std::vector<CapturedLine> LogCapture::lines() const {
  const std::lock_guard<std::mutex> lock(lines_->mutex);
  return lines_->lines;
}

std::size_t LogCapture::count(std::string_view function, int level, std::string_view text) const {
  const std::lock_guard<std::mutex> lock(lines_->mutex);
  return static_cast<std::size_t>(std::count(lines_->lines.begin(), lines_->lines.end(),
                                             CapturedLine{std::string(function), level, std::string(text)}));
}

bool LogCapture::hasPart(std::string_view function, int level, std::string_view part) const {
  const std::lock_guard<std::mutex> lock(lines_->mutex);
  return std::any_of(lines_->lines.begin(), lines_->lines.end(), [&](const CapturedLine& line) {
    return line.function == function && line.level == level && line.text.find(part) != std::string::npos;
  });
}

void LogCapture::clear() {
  const std::lock_guard<std::mutex> lock(lines_->mutex);
  lines_->lines.clear();
}

}  // namespace zqxml
