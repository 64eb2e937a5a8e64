#pragma once

#include <gtest/gtest.h>
#include <zqxml/message/xn_message_base.h>

#include <string>
#include <vector>

#include "tests/support/log_capture.h"

namespace zqxml {

/// The lines of writing a message as XML, which has to fail and to leave the caller's text as it was.
inline std::vector<CapturedLine> linesOfFailedWriting(XNMessageBase& message) {
  LogCapture log;
  std::string text = "before";
  EXPECT_EQ(message.serialize(text), XN_MSG_FAILED);
  EXPECT_EQ(text, "before");
  return log.lines();
}

}  // namespace zqxml
