// Walking the XML of a message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/traverse/recording_handler.h>
#include <tests/xml/dom_faults.h>
#include <zqxml/xml/zq_xml_context_info.h>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char kTraverse[] = "XmlTraverse::traverse";

TEST(TraverseXml, ChangesOfTheHandlerStandInTheText) {
  std::string xml = R"(<Walk_Outer id="1"><middle number="2"/></Walk_Outer>)";
  RecordingHandler handler(false, at("number", [](MsgFieldContext& context) { context.replaceValue(9); }));
  XmlTraverse().traverse(xml, handler);
  EXPECT_THAT(xml, StartsWith("<?xml"));
  EXPECT_THAT(xml, HasSubstr(R"(<Walk_Outer id="1"><middle number="9"/></Walk_Outer>)"));
  EXPECT_THAT(handler.events, testing::Contains("begin Outer"));
  EXPECT_THAT(handler.events, testing::Contains("finish Outer"));
}

TEST(TraverseXml, KeepsWalkingInPlainModeWhateverTheOrderFlag) {
  std::string xml = R"(<Walk_Middle number="2"><inner value="1"/></Walk_Middle>)";
  RecordingHandler handler(true);
  XmlTraverse().traverse(xml, handler, false, false);
  EXPECT_THAT(handler.events,
              ElementsAre("begin Middle", "set inner", "start inner", "set value", "unset text", "end inner",
                          "unset inners", "set number", "finish Middle"));
}

TEST(TraverseXml, BuiltObjectsAreWrittenWhenTheyAreKept) {
  std::string xml = "<Walk_Middle/>";
  RecordingHandler handler(false, at("value", [](MsgFieldContext& context) { context.replaceValue(3); }));
  XmlTraverse().traverse(xml, handler, true, false);
  EXPECT_THAT(xml, HasSubstr("<Walk_Middle/>"));
  XmlTraverse().traverse(xml, handler, true, true);
  EXPECT_THAT(xml, HasSubstr(R"(<inner value="3"/><inners value="3"/>)"));
}

TEST(TraverseXml, PasswordsAreCarriedAsTheyStand) {
  // Type 9, for which there is no routine: reading it any other way would fail.
  std::string xml = "<App_AnnotationSample base64Password=\"&#9;c2VjcmV0\"/>";
  ZqXMLContextInfo context;
  RecordingHandler handler;
  LogCapture capture;
  XmlTraverse().traverse(xml, handler, false, false, &context);
  EXPECT_EQ(context.getPasswordEncType(), 6);
  EXPECT_FALSE(context.isErrorSet());
  EXPECT_THAT(xml, HasSubstr("base64Password=\"&#x9;c2VjcmV0\""));
  EXPECT_TRUE(capture.empty());
}

TEST(TraverseXml, TextStaysWhenTheContextHasAnError) {
  const std::string before = R"(<Walk_Inner value="1"/>)";
  std::string xml = before;
  ZqXMLContextInfo context;
  context.setError(1, "an error of the caller's");
  RecordingHandler handler;
  XmlTraverse().traverse(xml, handler, false, false, &context);
  EXPECT_EQ(xml, before);
  EXPECT_THAT(handler.events, IsEmpty());
}

TEST(TraverseXml, TextWithoutAMessageBecomesEmpty) {
  for (const char* text : {"", "<No_Class/>", "<Walk_Inner", "no XML at all"}) {
    std::string xml = text;
    RecordingHandler handler;
    LogCapture capture;
    XmlTraverse().traverse(xml, handler, true, true);
    EXPECT_EQ(xml, "");
    EXPECT_THAT(handler.events, IsEmpty());
    EXPECT_FALSE(capture.hasPart(kTraverse, 0, ""));
  }
}

TEST(TraverseXml, MessageThatCannotBeWrittenLeavesAnEmptyTextAndALine) {
  std::string xml = R"(<Walk_Inner value="1"/>)";
  RecordingHandler handler;
  LogCapture capture;
  {
    const ScopedDomFault fault(DomFault::kCreateDocument);
    XmlTraverse().traverse(xml, handler);
  }
  EXPECT_EQ(xml, "");
  const std::string tag = std::to_string(newMessage("Walk_Inner").getTagID());
  EXPECT_TRUE(capture.has(kTraverse, 0, "Error serializing object with tagID : [" + tag + "]"));
}

}  // namespace
}  // namespace zqxml
