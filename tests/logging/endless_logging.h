// Threads that log messages, for tests of what happens around them.
#pragma once

#include <zqxml/binary/binary_buffer.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/logging/xml_binary_logger.h>

#include <string>

namespace zqxml {

inline constexpr char kLoggingFunction[] = "EndlessLogging::log";
inline constexpr char kLoggedSecret[] = "hush-hush";

/// One thread's logger, message and buffer. Every line is "<thread> <round>:" and the message, whose password
/// and sensitive values are kLoggedSecret.
class EndlessLogging {
 public:
  explicit EndlessLogging(int thread) : thread_(thread) {
    message_.setSecretText(kLoggedSecret);
    message_.setHiddenPassword(kLoggedSecret);
  }

  /// Logs one message, as an object or as a buffer, and changes both at once behind the call.
  void log() {
    const int round = round_++;
    message_.setOpen(mark(round));
    if (round % 2 == 0) {
      logger_.Debug(kLoggingFunction, "%d %d:%bxml_zq", &message_, thread_, round);
    } else {
      message_.SerializeBinary(buffer_);
      logger_.Debug(kLoggingFunction, "%d %d:%bxml_zq", &buffer_, thread_, round);
      buffer_.getBuffer()[buffer_.getDataSize() - 1] ^= 1;
    }
    message_.setOpen("changed behind the call");
  }
  int rounds() const { return round_; }

  /// Whether the text is that of a line, with nothing in it that must not show.
  static bool isWhole(const std::string& text) {
    const std::size_t colon = text.find(':');
    const std::size_t blank = text.find(' ');
    if (colon == std::string::npos || blank == std::string::npos ||
        text.find(kLoggedSecret) != std::string::npos)
      return false;
    const std::string expected = R"(<Demo_Guarded hiddenPassword="*******" open=")" +
                                 mark(std::stoi(text.substr(blank))) + R"(" secretText="########"/>   )";
    return text.ends_with(expected);
  }

 private:
  static std::string mark(int round) { return "round " + std::to_string(round) + std::string(50, '.'); }

  const int thread_;
  int round_ = 0;
  Demo::Guarded message_;
  BinaryBuffer buffer_;
  XmlBinaryLogger logger_;
};

}  // namespace zqxml
