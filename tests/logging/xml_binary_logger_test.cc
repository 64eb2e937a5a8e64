// The six operations of XmlBinaryLogger.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/logging/message_logging.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/logging/xml_binary_logger.h>

#include <mutex>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using Demo::Guarded;
using testing::ElementsAre;

/// A line as these tests look at it.
struct SeenLine {
  std::string function;
  int level = 0;
  std::int64_t contextValue = 0;
  std::string text;

  friend bool operator==(const SeenLine&, const SeenLine&) = default;
  friend std::ostream& operator<<(std::ostream& out, const SeenLine& line) {
    return out << '{' << line.function << ", " << line.level << ", " << line.contextValue << ", \""
               << line.text << "\"}";
  }
};

class BinaryLogger : public testing::Test {
 protected:
  BinaryLogger() {
    message_.setOpen("hello");
    message_.setSecretText("hush");
    EXPECT_NE(message_.SerializeBinary(buffer_), 0u);
    EvDebug::setDebugLevel(10);
    EvDebug::setSink([this](const LogLine& line) {
      // The codecs trace their work at this level too.
      if (line.function != "f") return;
      const std::lock_guard<std::mutex> lock(mutex_);  // lines come from the pool's threads
      lines_.push_back({std::string(line.function), line.level, line.contextValue, std::string(line.text)});
    });
  }
  ~BinaryLogger() override {
    EvDebug::setSink({});
    EvDebug::setDebugLevel(0);
  }

  /// The lines of calls that were made one after another.
  const std::vector<SeenLine>& lines() {
    settle();
    return lines_;
  }

  const std::string shown_ =
      "   " + std::string(kDeclaration) + R"(<Demo_Guarded open="hello" secretText="########"/>   )";
  Guarded message_;
  BinaryBuffer buffer_;
  XmlBinaryLogger logger_;

 private:
  std::mutex mutex_;
  std::vector<SeenLine> lines_;
};

TEST_F(BinaryLogger, InitializeAnswersZeroAgainAndAgain) {
  EXPECT_EQ(logger_.initialize(), 0);
  EXPECT_EQ(logger_.initialize(), 0);
}

TEST_F(BinaryLogger, DebugWritesABufferAtLevelZeroWithoutContext) {
  logger_.Debug("f", "%s %d:%bxml_zq", &buffer_, "number", 5);
  EXPECT_THAT(lines(), ElementsAre(SeenLine{"f", 0, 0, "number 5:" + shown_}));
}

TEST_F(BinaryLogger, DebugWritesAnObjectAtLevelZeroWithoutContext) {
  logger_.Debug("f", "%s %d:%bxml_zq", &message_, std::string("number"), 5);
  EXPECT_THAT(lines(), ElementsAre(SeenLine{"f", 0, 0, "number 5:" + shown_}));
}

TEST_F(BinaryLogger, DebugLvlWritesABufferAtItsLevelWithoutContext) {
  logger_.DebugLvl("f", 7, "%bxml_zq", &buffer_);
  EXPECT_THAT(lines(), ElementsAre(SeenLine{"f", 7, 0, shown_}));
}

TEST_F(BinaryLogger, DebugLvlWritesAnObjectAtItsLevelWithoutContext) {
  logger_.DebugLvl("f", 7, "%bxml_zq", &message_);
  EXPECT_THAT(lines(), ElementsAre(SeenLine{"f", 7, 0, shown_}));
}

TEST_F(BinaryLogger, DebugLvlWritesABufferWithItsContext) {
  logger_.DebugLvl("f", 7, -3, "%bxml_zq %s", &buffer_, u"wide");
  EXPECT_THAT(lines(), ElementsAre(SeenLine{"f", 7, -3, shown_ + " wide"}));
}

TEST_F(BinaryLogger, DebugLvlWritesAnObjectWithItsContext) {
  logger_.DebugLvl("f", 7, -3, "%bxml_zq %s", &message_, u"wide");
  EXPECT_THAT(lines(), ElementsAre(SeenLine{"f", 7, -3, shown_ + " wide"}));
}

TEST_F(BinaryLogger, DebugPassesTheFilterAtAnyLevelFromZeroOn) {
  for (const int level : {0, 1, 25}) {
    EvDebug::setDebugLevel(level);
    logger_.Debug("f", "text", &buffer_);
    logger_.Debug("f", "text", &message_);
    settle();
  }
  EXPECT_EQ(lines().size(), 6u);
  EvDebug::setDebugLevel(-1);
  logger_.Debug("f", "text", &buffer_);
  logger_.Debug("f", "text", &message_);
  EXPECT_EQ(lines().size(), 6u);
}

TEST_F(BinaryLogger, LinesAboveTheLevelAreNotWritten) {
  logger_.DebugLvl("f", 11, "text", &buffer_);
  logger_.DebugLvl("f", 11, "text", &message_);
  logger_.DebugLvl("f", 11, 5, "text", &buffer_);
  logger_.DebugLvl("f", 11, 5, "text", &message_);
  EXPECT_THAT(lines(), ElementsAre());
}

}  // namespace
}  // namespace zqxml
