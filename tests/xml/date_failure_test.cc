// What the writer does with a date that the system cannot break down. In a program of its own: it replaces
// `localtime_r`.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/App.h>

#include <ctime>

#include "tests/support/log_capture.h"
#include "tests/xml/xml_writing.h"

extern "C" std::tm* localtime_r(const std::time_t*, std::tm*) noexcept {
  return nullptr;
}

namespace zqxml {
namespace {

using testing::ElementsAre;

TEST(DateFailure, LeavesTheFieldOutAndIsLogged) {
  App::AnnotationSample msg;
  msg.setDateTime(1577836800);
  msg.setSecondsOfDay(60);
  LogCapture log;
  EXPECT_EQ(readableXmlOf(msg), R"(<App_AnnotationSample secondsOfDay="00:01:00"/>)");
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"XMLSerializer::serializeXMLRecur", 0,
                                                    "[Unable to convert timestamp to date]"}));
  EXPECT_EQ(xmlOf(msg), R"(<App_AnnotationSample dateTime="1577836800" secondsOfDay="60"/>)");
}

}  // namespace
}  // namespace zqxml
