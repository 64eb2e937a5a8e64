// What the tests of logged messages share.
#pragma once

#include <gtest/gtest.h>
#include <tests/support/gate.h>
#include <tests/support/log_capture.h>
#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/platform/ev_debug.h>

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

inline constexpr std::string_view kDeclaration = R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)";

/// Waits for the lines that are under way in the pool of the message logger.
inline void settle() {
  ASSERT_TRUE(XmlLoggerHelper::getXmlLoggerInstance()->waitUntilIdle(std::chrono::seconds(60)));
}

/// Keeps every thread of that pool busy during its life.
class BusyPool {
 public:
  BusyPool() {
    settle();
    XmlLoggerHelper& helper = *XmlLoggerHelper::getXmlLoggerInstance();
    for (std::uint32_t i = helper.getCurrentAvailableThreadCount(); i != 0; --i)
      helper.doWork(&Gate::job, &gate_);
    EXPECT_EQ(helper.getCurrentAvailableThreadCount(), 0u);
  }
  ~BusyPool() {
    gate_.open();
    settle();
  }
  BusyPool(const BusyPool&) = delete;
  BusyPool& operator=(const BusyPool&) = delete;

 private:
  Gate gate_;
};

/// The texts of the lines that this function has written so far, in their order.
inline std::vector<std::string> textsOf(const LogCapture& capture, std::string_view function) {
  std::vector<std::string> texts;
  for (const CapturedLine& line : capture.lines())
    if (line.function == function) texts.push_back(line.text);
  return texts;
}

}  // namespace zqxml
