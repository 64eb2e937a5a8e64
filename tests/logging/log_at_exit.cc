// A program that ends while its threads log messages, and logs one more when nearly everything else has
// ended.
//
// Its last words are on standard output: the line that the destructor of a static object has logged.
#include <tests/logging/endless_logging.h>
#include <unistd.h>
#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/platform/ev_debug.h>

#include <chrono>
#include <string>
#include <thread>

namespace {

struct LogsAtTheEnd {
  ~LogsAtTheEnd() {
    zqxml::EvDebug::setSink([](const zqxml::LogLine& line) {
      if (line.text.starts_with("99 ")) {
        const std::string last = std::string(line.text) + "\n";
        (void)!write(STDOUT_FILENO, last.data(), last.size());
      }
    });
    zqxml::EndlessLogging(99).log();
    // The other threads log on, so that the pool may never be idle.
    zqxml::XmlLoggerHelper::getXmlLoggerInstance()->waitUntilIdle(std::chrono::milliseconds(500));
  }
};
LogsAtTheEnd logsAtTheEnd;

}  // namespace

int main() {
  for (int i = 0; i < 16; ++i) {
    std::thread([i] {
      auto& logging = *new zqxml::EndlessLogging(i);
      for (;;) logging.log();
    }).detach();
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  return 0;
}
