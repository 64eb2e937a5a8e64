// What the tests of the road of one logged message share.
#pragma once

#include <gtest/gtest.h>
#include <tests/logging/message_logging.h>
#include <tests/support/log_capture.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/logging/xml_logger_helper.h>

#include <array>
#include <string>
#include <vector>

namespace zqxml {

inline constexpr char kFunction[] = "Server::receive";

/// The XML of a Demo_Guarded with these attributes, as a line shows it.
inline std::string guardedXml(const std::string& attributes) {
  return std::string(kDeclaration) + "<Demo_Guarded" + (attributes.empty() ? "" : " ") + attributes + "/>";
}

/// The binary form of a message with this text.
inline void fill(BinaryBuffer& buffer, const std::string& open) {
  Demo::Guarded message;
  message.setOpen(open);
  ASSERT_NE(message.SerializeBinary(buffer), 0u);
}

class LoggedMessage : public testing::Test {
 protected:
  LoggedMessage() { fill(buffer_, "hello"); }

  /// Logs the buffer, and gives the text of the line.
  template <typename... Args>
  std::string lineOf(const char* format, const Args&... arguments) {
    return lineOf(buffer_, format, arguments...);
  }
  template <typename... Args>
  std::string lineOf(BinaryBuffer& buffer, const char* format, const Args&... arguments) {
    const std::array<FormatArg, sizeof...(Args)> list{FormatArg(arguments)...};
    LogCapture capture;
    helper_.writeToLog(kFunction, 0, 0, format, &buffer, list);
    settle();
    const std::vector<std::string> texts = textsOf(capture, kFunction);
    EXPECT_EQ(texts.size(), 1u);
    return texts.empty() ? std::string() : texts.front();
  }

  XmlLoggerHelper& helper_ = *XmlLoggerHelper::getXmlLoggerInstance();
  BinaryBuffer buffer_;
};

}  // namespace zqxml
