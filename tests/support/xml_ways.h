// The ways of writing a message as XML, and what can be seen of one: for tests that compare the two roads.
#pragma once

#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/xml_roads.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_serializer.h>

#include <ostream>
#include <string>
#include <vector>

namespace zqxml {

/// One way of writing a message as XML, out of all that there are.
struct WayOfWriting {
  static constexpr unsigned kCount = 256;

  explicit WayOfWriting(unsigned number) : wide((number & 1) != 0), rootOnly((number & 2) != 0) {
    flags.useElements = (number & 4) != 0;
    flags.readable = (number & 8) != 0;
    flags.enumAsText = (number & 16) != 0;
    flags.encoding_options = number >> 5 & 3;
    if ((number & 128) != 0) version = 1;
  }

  bool wide;
  bool rootOnly;
  int version = 2;
  EncodingFlags flags;
};

/// All that can be seen of one call of the writer.
struct WritingOutcome {
  eXNMsgRet result = XN_MSG_OK;
  std::string text = "before";
  std::u16string wideText = u"before";
  std::vector<CapturedLine> lines;
  std::string left;

  friend bool operator==(const WritingOutcome&, const WritingOutcome&) = default;
  friend std::ostream& operator<<(std::ostream& out, const WritingOutcome& outcome) {
    return out << outcome.result << '\n'
               << outcome.text << '\n'
               << toUtf8(outcome.wideText) << '\n'
               << ::testing::PrintToString(outcome.lines) << '\n'
               << outcome.left;
  }
};

/// Writes a copy of the message.
inline WritingOutcome written(const XNMessageBase& message, const WayOfWriting& way, bool fast) {
  const FastXmlRoads roads(fast);
  XNMessageBase copy(message);
  LogCapture capture;
  XMLSerializer serializer(way.flags, nullptr);
  WritingOutcome outcome;
  if (way.wide)
    outcome.result = serializer.serializeUTF16(copy, outcome.wideText, way.rootOnly);
  else if (way.rootOnly)
    outcome.result = serializer.serialize(copy, outcome.text, true);
  else
    outcome.result = serializer.serialize(copy, outcome.text, way.version);
  outcome.lines = capture.lines();
  outcome.left = dump(copy);
  return outcome;
}

}  // namespace zqxml
