#include <gmock/gmock.h>
#include <tests/render/rendering.h>
#include <tests/support/log_capture.h>
#include <zqxml/render/summary_traverse.h>
#include <zqxml/traverse/xml_traverse.h>

#include <string>
#include <vector>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes down what it is called with.
class RecordingContext : public ZqXMLRenderContext {
 public:
  using ZqXMLRenderContext::ZqXMLRenderContext;
  void startHeader(std::string name) override { events.push_back("header " + name); }
  void writeHeader(std::string name) override { events.push_back("write header " + name); }
  void endHeader(std::string name) override { events.push_back("end header " + name); }
  void startSubHeader(MsgFieldContext& context) override { add("start", context); }
  void writeSubHeader(std::string name) override { events.push_back("write sub-header " + name); }
  void endSubHeader(MsgFieldContext& context) override { add("end", context); }
  void writeAttribute(MsgFieldContext& context) override { add("attribute", context); }
  void writeList(MsgFieldContext& context) override { add("list", context); }
  void writeEnum(MsgFieldContext& context) override { add("enum", context); }

  std::vector<std::string> events;

 private:
  void add(const char* event, MsgFieldContext& context) {
    events.push_back(std::string(event) + ' ' + context.getField().getName());
  }
};

template <class Handler>
std::vector<std::string> eventsOf(XNMessageBase& message) {
  RecordingContext context;
  Handler handler(&context, 0, false);
  XmlTraverse().traverse(message, handler, false, false);
  return context.events;
}

// --- What is easily done wrong

TEST(ZqXMLSummary, EmptyXmlFailsAndLeavesTheOutputAlone) {
  std::string out = "before";
  EXPECT_EQ(ZqXMLSummary::getSummaryInfo("", out), XN_MSG_FAILED);
  EXPECT_EQ(out, "before");
}

TEST(ZqXMLSummary, NullContextFails) {
  Render::Item message;
  ZqXMLFormatOptions options;
  EXPECT_EQ(ZqXMLSummary::getZqSummaryInfo(&message, nullptr, options), XN_MSG_FAILED);
  EXPECT_EQ(ZqXMLSummary::getSummaryInfo("<Render_Item/>", nullptr), XN_MSG_FAILED);
}

TEST(ZqXMLSummary, UnsetSubObjectHasNeitherHeaderNorFields) {
  Render::JobOption message;
  message.setId(5);
  message.mutableClient().setName("c1");
  setBit(message, "client", false);  // it is there all the same
  EXPECT_THAT(eventsOf<DefaultSummaryTraverse>(message),
              ElementsAre("header JobOption", "attribute id", "end header JobOption"));
  EXPECT_EQ(plainText(message), "id:[5]");
  EXPECT_EQ(outlineOf(message), "Job Options:<br>&nbsp;id&nbsp;:&nbsp;5</div>");
  EXPECT_EQ(paragraphOf(message), "<p> Summary<BR>&nbsp;id&nbsp;:&nbsp;5</p></div>");
}

TEST(ZqXMLSummary, SuppressedFieldIsMissingAlsoInAContextThatDoesNotFilter) {
  Render::Hidden message;
  message.setBefore(1);
  message.setHidden("h");
  message.setSuppressed("s");
  message.setSuppressedEnum(Render::State::RUNNING);
  message.mutableHiddenList() = {1};
  message.setSecret("p");
  // Of passwords it is the contexts that know.
  EXPECT_THAT(eventsOf<DefaultSummaryTraverse>(message),
              ElementsAre("header Hidden", "attribute before", "attribute between", "attribute secret",
                          "attribute sensitive", "attribute after", "end header Hidden"));
  EXPECT_EQ(paragraphOf(message),
            "<p> Summary<BR>&nbsp;before&nbsp;:&nbsp;1"
            "<BR>&nbsp;secret&nbsp;:&nbsp;p</p></div>");
}

TEST(ZqXMLSummary, KeepsEnumerationsOutOfTheStream) {
  Render::Plain message;
  message.setId(5);
  message.setState(Render::State::RUNNING);
  message.mutableIds() = {1};
  EXPECT_EQ(plainText(message), "id:[5],state:[RUNNING],ids[1]");
  EXPECT_EQ(streamText(message), "id:[5],ids[1]");
}

TEST(ZqXMLSummary, OrderPrintsTheValuesOfAClassBeforeItsSubObjects) {
  OpenMessage message = newMessage("Demo_Twins");
  XNMessageBase& twin = *open(message).getObjectAccessor(
      true, true, fieldOf(message, "twin").getMemNum(), fieldOf(message, "twin").getIndex(),
      message.getTagID(), 0, classNamed("Demo_EveryChild").subsystem, classNamed("Demo_EveryChild").index);
  setInteger(twin, "number", 1);
  setInteger(message, "number", 2);
  EXPECT_EQ(plainText(message), "number:[1],number:[2]");
  EXPECT_EQ(plainText(message, optionsFor(kNoTexts, true)), "number:[2],number:[1]");
  EXPECT_EQ(outlineOf(message, optionsFor(kNoTexts, true)),
            "Twins:<br>&nbsp;number&nbsp;:&nbsp;2<br><B>twin</B><br>" + indentation(1) +
                "&nbsp;number&nbsp;:&nbsp;1</div>");
}

// --- The handlers

TEST(SummaryTraverse, HandsEveryEventOver) {
  Render::JobOption message;
  message.setId(5);
  message.mutableClient().setName("c1");
  const std::vector<std::string> expected{"header JobOption", "attribute id", "start client",
                                          "attribute name",   "end client",   "end header JobOption"};
  EXPECT_EQ(eventsOf<SummaryTraverse>(message), expected);
  EXPECT_EQ(eventsOf<DefaultSummaryTraverse>(message), expected);
}

TEST(SummaryTraverse, UnsetFieldsArePassedOverButForLists) {
  Render::Plain message;
  EXPECT_THAT(eventsOf<SummaryTraverse>(message),
              ElementsAre("header Plain", "list ids", "end header Plain"));
}

TEST(SummaryTraverse, KeepsSingleEnumerationsAndHandsListsOfThemAsEnumerations) {
  Render::Values message;
  message.setAnEnum(Render::State::RUNNING);
  message.setAnInt(1);
  message.mutableEnums() = {1};
  EXPECT_THAT(
      eventsOf<SummaryTraverse>(message),
      ElementsAre("header Values", "attribute anInt", "list aUlonglong", "enum enums", "end header Values"));
}

TEST(SummaryTraverse, KeepsTheUnsetSubObjectsThatExist) {
  Render::JobOption message;
  message.mutableClient().setName("c1");
  setBit(message, "client", false);
  EXPECT_THAT(eventsOf<SummaryTraverse>(message),
              ElementsAre("header JobOption", "start client", "attribute name", "end client",
                          "end header JobOption"));
}

TEST(DefaultSummaryTraverse, HandsEachKindOfFieldToItsOperation) {
  OpenMessage message = newMessage("Demo_EveryType");
  for (const char* field : {"listIntField", "listEnumField"}) {
    if (std::string(field) == "listIntField")
      collectionOf<std::vector<std::int32_t>>(message, field);
    else
      collectionOf<std::vector<std::uint32_t>>(message, field);
  }
  // Lists and maps that do not exist are passed over; numbers and texts always exist, and the contexts look
  // at whether they are set.
  EXPECT_THAT(
      eventsOf<DefaultSummaryTraverse>(message),
      ElementsAre("header EveryType", "attribute intField", "attribute uintField", "attribute longField",
                  "attribute ulongField", "attribute longlongField", "list ulonglongField",
                  "attribute boolField", "attribute stringField", "attribute wstringField", "enum enumField",
                  "attribute doubleField", "attribute floatField", "list listIntField", "list listEnumField",
                  "attribute bstringField", "attribute pstringField", "attribute time32Field",
                  "attribute time64Field", "end header EveryType"));
}

TEST(DefaultSummaryTraverse, KeepsTheEndOfTheSubObjectThatBeganTheSkipping) {
  Render::Loop message;
  Render::Labels other;
  RecordingContext context;
  DefaultSummaryTraverse handler(&context);
  MsgFieldContext unset = eventOf(message, "loop");
  MsgFieldContext value = eventOf(message, "value");
  MsgFieldContext object = eventOf(other, "object");
  object.setValueState(true);
  handler.startSubObject(unset);
  handler.visit(value);
  EXPECT_THAT(context.events, IsEmpty());
  // The start and the end of a set sub-object inside of the unset one reach the context; its fields do not.
  handler.startSubObject(object);
  handler.visit(value);
  handler.endSubObject(object);
  handler.endSubObject(unset);
  handler.visit(value);
  EXPECT_THAT(context.events, ElementsAre("start object", "end object", "attribute value"));
}

TEST(DefaultSummaryTraverse, KeepsSkippingNoLongerThanTheFirstEndOfTheName) {
  Render::Loop message;
  message.mutableLoop().mutableLoop().setValue(1);
  Render::Loop& outer = message.mutableLoop();
  setBit(message, "loop", false);
  setBit(outer, "loop", false);
  outer.setState(Render::State::RUNNING);
  // The end of the inner unset object ends the skipping of the outer one.
  EXPECT_EQ(plainText(message), "state:[RUNNING]");
}

TEST(SummaryTraverse, TakesLocaleAndOrder) {
  RecordingContext context;
  EXPECT_EQ(SummaryTraverse(&context).getLocaleId(), 0);
  EXPECT_FALSE(SummaryTraverse(&context).getOrder());
  EXPECT_EQ(DefaultSummaryTraverse(&context, 7, true).getLocaleId(), 7);
  EXPECT_TRUE(DefaultSummaryTraverse(&context, 7, true).getOrder());
}

TEST(SummaryTraverse, WithoutAContextNothingIsWritten) {
  Render::JobOption message;
  message.setId(5);
  message.mutableClient().setName("c1");
  SummaryTraverse plain(nullptr);
  DefaultSummaryTraverse filtering(nullptr, 0, true);
  XmlTraverse().traverse(message, plain);
  XmlTraverse().traverse(message, filtering);
}

// --- The entry points

TEST(ZqXMLSummary, NullMessageFails) {
  std::ostringstream stream;
  RecordingContext context;
  ZqXMLFormatOptions options;
  EXPECT_EQ(ZqXMLSummary::getZqSummaryInfo(nullptr, stream, options), XN_MSG_FAILED);
  EXPECT_EQ(ZqXMLSummary::getZqSummaryInfo(nullptr, &context, options), XN_MSG_FAILED);
  EXPECT_THAT(stream.str(), IsEmpty());
  EXPECT_THAT(context.events, IsEmpty());
}

TEST(ZqXMLSummary, MessageWithoutAClassGivesAnEmptySummary) {
  XNMessageBase message;
  LogCapture capture;
  EXPECT_EQ(streamText(message), "");
  EXPECT_EQ(plainText(message), "");
  EXPECT_EQ(outlineOf(message), "");
  EXPECT_EQ(paragraphOf(message), "");
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(ZqXMLSummary, StreamIsNotEmptied) {
  Render::Item message;
  message.setName("x");
  std::ostringstream stream;
  ZqXMLFormatOptions options;
  stream << "before ";
  EXPECT_EQ(ZqXMLSummary::getZqSummaryInfo(&message, stream, options), XN_MSG_OK);
  EXPECT_EQ(stream.str(), "before name:[x]");
}

TEST(ZqXMLSummary, KeepsTheStrayCommasOfTheStream) {
  Render::Hidden message;
  message.setBefore(1);
  message.setHidden("h");
  message.setBetween(2);
  message.setSensitive("s");
  // The comma in the middle is that of the unset list; lists are not looked at for annotations.
  EXPECT_EQ(streamText(message), "before:[1],between:[2],,sensitive:[s]");
  message.mutableHiddenList() = {1, 2};
  EXPECT_EQ(streamText(message), "before:[1],between:[2],hiddenList[1,2],sensitive:[s]");
}

TEST(ZqXMLSummary, SummarizesXml) {
  const std::string xml =
      R"(<Render_Plain id="5" name="x" state="1"><ids val="1"/><ids val="2"/></Render_Plain>)";
  std::string out = "before";
  EXPECT_EQ(ZqXMLSummary::getSummaryInfo(xml, out), XN_MSG_OK);
  EXPECT_EQ(out, "id:[5],name:[x],ids[1,2]");
  HTMLRenderContext context(optionsFor(kNoTexts));
  EXPECT_EQ(ZqXMLSummary::getSummaryInfo(xml, &context), XN_MSG_OK);
  context.DumpToString(out);
  EXPECT_EQ(out,
            "Plain:<br>&nbsp;id&nbsp;:&nbsp;5<br>&nbsp;name&nbsp;:&nbsp;x<br>&nbsp;state&nbsp;:&nbsp;RUNNING"
            "<br>&nbsp;ids&nbsp;:&nbsp;(1,2)</div>");
}

TEST(ZqXMLSummary, XmlThatDoesNotParseFails) {
  LogCapture capture;
  for (const char* xml : {"<Render_Plain", "<No_Class/>", "text"}) {
    std::string out = "before";
    RecordingContext context;
    EXPECT_EQ(ZqXMLSummary::getSummaryInfo(xml, out), XN_MSG_FAILED) << xml;
    EXPECT_EQ(ZqXMLSummary::getSummaryInfo(xml, &context), XN_MSG_FAILED) << xml;
    EXPECT_EQ(out, "before");
    EXPECT_THAT(context.events, IsEmpty());
  }
}

TEST(ZqXMLSummary, TakesLocaleAndOrderFromTheContext) {
  Render::Labels message;
  message.setFlag(true);
  EXPECT_EQ(outlineOf(message, optionsFor(kGerman)), "Labels:<br>&nbsp;flag&nbsp;:&nbsp;Ja</div>");
}

}  // namespace
}  // namespace zqxml
