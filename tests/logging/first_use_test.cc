// What the first use of the message logger does: one program, because there is one first use in a process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/logging/message_logging.h>
#include <tests/support/settings.h>
#include <zqxml/logging/xml_binary_logger.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/platform_info.h>

#include <mutex>
#include <string>
#include <vector>

namespace zqxml {
namespace {

// The threads of the pool have no focus, and the first line of the message log may be theirs.
TEST(FirstUse, KeepsTheFocusOfTheCallerAndGivesItToTheMessageLog) {
  const TestSettings settings{{"EventManager/XMLMessage_DEBUGLEVEL", "1"}};
  std::mutex mutex;
  std::vector<std::string> logs;
  EvDebug::setSink([&](const LogLine& line) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (line.function == "BinarySerializer::unserialize") logs.emplace_back(line.log);
  });
  ZQPI_Focus::setFocus("Agent");
  XmlBinaryLogger logger;
  EXPECT_STREQ(ZQPI_Focus::getFocus(), "Agent");
  logger.Debug("f", "%bxml_zq", static_cast<BinaryBuffer*>(nullptr));
  settle();
  EvDebug::setSink({});
  EXPECT_THAT(logs, testing::ElementsAre("", "XMLMessage"));
}

}  // namespace
}  // namespace zqxml
