// Password routines of the application within whole messages: what they throw, and messages of their own.
#include <gmock/gmock.h>
#include <tests/annotation/password_routines.h>
#include <tests/support/failed_writing.h>
#include <tests/support/log_capture.h>
#include <tests/support/reading.h>
#include <tests/support/xml_roads.h>
#include <zqxml/catalogue/generated/App.h>

namespace zqxml {
namespace {

using App::AnnotationSample;
using testing::ElementsAre;

/// Of the bytes "abc" in type 9, whose mark is a tab; other fields stand around the password.
constexpr char kText[] =
    R"(<App_AnnotationSample base64Password="&#9;YWJj" command="c" suppressed="s"><hidden>h</hidden></App_AnnotationSample>)";

/// Reads and writes a message with passwords, and then does its work.
bstring readAndWrite(bstring text, ZqXMLContextInfo*) {
  static bool inside = false;
  if (!inside) {
    inside = true;
    const auto other = readNew(R"(<App_AnnotationSample base64Password="&#9;eHl6" unknown="1" single="x"/>)");
    std::string xml;
    EXPECT_EQ(other->serialize(xml), XN_MSG_OK);
    EXPECT_THAT(xml, testing::HasSubstr("single=\"x\""));
    inside = false;
  }
  return "<" + text.str() + ">";
}

/// Both roads of XML.
class PasswordRoutineCalls : public PasswordRoutinesTest, public testing::WithParamInterface<bool> {
 protected:
  static void registerBoth(PasswordRoutine routine) {
    XMLDecoder::registerPasswordEncAlgo(typeOf(9), routine);
    XMLDecoder::registerPasswordDecAlgo(typeOf(9), routine);
  }
  const FastXmlRoads roads_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(BothRoads, PasswordRoutineCalls, testing::Bool(),
                         [](const auto& road) { return road.param ? "Fast" : "XmlLibrary"; });

TEST_P(PasswordRoutineCalls, ExceptionEndsTheReadingOfXml) {
  registerBoth(failingRoutine);
  LogCapture log;
  AnnotationSample message;
  EXPECT_EQ(message.unserialize(kText), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_EQ(readNew(kText), nullptr);
  const CapturedLine line{"XMLSerializer::parserHelper", 0, "Encountered error : [no cipher]"};
  EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST_P(PasswordRoutineCalls, ExceptionEndsTheWritingOfXml) {
  registerBoth(failingRoutine);
  AnnotationSample message;
  message.setCommand("c");
  message.setBase64Password("secret", typeOf(1));
  EXPECT_THAT(linesOfFailedWriting(message),
              ElementsAre(CapturedLine{"XMLSerializer::serialize", 0, "Error creating XML root node."}));
}

TEST_P(PasswordRoutineCalls, RoutineMayReadAndWriteMessages) {
  registerBoth(readAndWrite);
  AnnotationSample message;
  ASSERT_EQ(message.unserialize(kText), XN_MSG_OK);
  EXPECT_EQ(message.getBase64Password().str(), "<abc>");
  EXPECT_EQ(message.getCommand(), "c");
  EXPECT_EQ(message.getSuppressed(), "s");
  EXPECT_EQ(message.getHidden(), "h");
  std::string text;
  ASSERT_EQ(message.serialize(text), XN_MSG_OK);
  EXPECT_EQ(
      text,
      R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
      R"(<App_AnnotationSample base64Password="&#x9;PDxhYmM+Pg==" command="c" hidden="h" suppressed="s"/>)");
}

}  // namespace
}  // namespace zqxml
