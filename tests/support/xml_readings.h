// The ways of reading XML into a message, and what can be seen of one: for tests that compare the two roads.
#pragma once

#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/xml_roads.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace zqxml {

/// All that can be seen of one call of the reader.
struct ReadingOutcome {
  eXNMsgRet result = XN_MSG_OK;
  std::string read;
  std::vector<CapturedLine> lines;

  friend bool operator==(const ReadingOutcome&, const ReadingOutcome&) = default;
  friend std::ostream& operator<<(std::ostream& out, const ReadingOutcome& outcome) {
    return out << outcome.result << '\n' << ::testing::PrintToString(outcome.lines) << '\n' << outcome.read;
  }
};

/// Reads the text into a copy of the message, on top of its values or not; with the lines up to that level.
template <class Text>
ReadingOutcome readInto(const XNMessageBase& message, const Text& xml, bool keepExisting, bool fast,
                        int level = 0) {
  const FastXmlRoads roads(fast);
  XNMessageBase copy(message);
  LogCapture capture(level);
  ReadingOutcome outcome;
  if constexpr (sizeof(xml[0]) == 1)
    outcome.result = XMLSerializer().unserialize(copy, xml, keepExisting);
  else
    outcome.result = XMLSerializer().unserialize(copy, xml.c_str(), false, keepExisting);
  outcome.lines = capture.lines();
  outcome.read = dump(copy);
  return outcome;
}

/// Reads the text into a new message of the class that it names.
inline ReadingOutcome readNew(const std::string& xml, bool fast) {
  const FastXmlRoads roads(fast);
  LogCapture capture;
  ReadingOutcome outcome;
  const std::unique_ptr<XNMessageBase> made(XMLSerializer().unserialize(xml, false));
  outcome.result = made == nullptr ? XN_MSG_FAILED : XN_MSG_OK;
  outcome.lines = capture.lines();
  if (made != nullptr) outcome.read = dump(*made);
  return outcome;
}

}  // namespace zqxml
