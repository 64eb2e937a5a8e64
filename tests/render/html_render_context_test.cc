#include <gmock/gmock.h>
#include <tests/render/rendering.h>
#include <tests/support/log_capture.h>
#include <tests/support/time_zone.h>
#include <zqxml/catalogue/generated/ZqEntities.h>

#include <limits>

namespace zqxml {
namespace {

using testing::IsEmpty;

/// The pieces of the example.
std::string item(const std::string& name, const std::string& value, int indent = 0) {
  return "<br>" + indentation(indent) + "&nbsp;" + name + "&nbsp;:&nbsp;" + value;
}
std::string label(const std::string& name, int indent = 0) {
  return "<br>" + indentation(indent) + "<B>" + name + "</B>";
}

Render::Item namedItem(const std::string& name) {
  Render::Item made;
  made.setName(name);
  return made;
}

TEST(HTMLRenderContext, WritesTheExampleToTheByte) {
  Render::JobOption message;
  message.setId(5);
  message.mutableClient().setName("c1");
  EXPECT_EQ(outlineOf(message),
            "Job Options:<br>&nbsp;id&nbsp;:&nbsp;5<br><B>client</B>"
            "<br>&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;name&nbsp;:&nbsp;c1</div>");
}

// --- What is easily done wrong

TEST(HTMLRenderContext, SectionWithoutItemsLeavesItsLabelButDoesNotCount) {
  Render::Bare message;
  message.mutableNothing().mutableFirst();
  message.mutableItem().setName("x");
  // `nothing` holds only the empty `first`, whose count it does not keep; so it is empty as well, and `item`
  // stands where it would stand without them.
  EXPECT_EQ(outlineOf(message),
            "Bare:" + label("nothing") + label("first", 1) + label("item") + item("name", "x", 1) + "</div>");
}

TEST(HTMLRenderContext, EmptySectionIsForgottenAsTheLabelBefore) {
  // Were `first` still the last label, the list's second element would look like a repeated section.
  Render::Nothings message;
  message.mutableFirst();
  message.mutableSecond().setName("x");
  EXPECT_EQ(outlineOf(message),
            "Nothings:" + label("first") + label("second") + item("name", "x", 1) + "</div>");
}

TEST(HTMLRenderContext, ObjectsOfOneListWithSubObjectsOfTheirOwnPrintTheirHeaderOnce) {
  Render::Owners message;
  message.addToOwners().mutablePart().setName("a");
  message.addToOwners().mutablePart().setName("b");
  // The second `owners` is passed over; its `part` is a repeated section, one line below.
  EXPECT_EQ(outlineOf(message), "Owners:" + label("owners") + label("part", 1) + item("name", "a", 2) +
                                    "<br>" + indentation(1) + "<br>" + indentation(1) + label("part") +
                                    item("name", "b", 1) + "</div>");
}

TEST(HTMLRenderContext, KeepsRepeatingTheHeaderOfElementsWithoutSubObjects) {
  Render::Owners message;
  message.addToItems().setName("a");
  message.addToItems().setName("b");
  message.addToItems().setName("c");
  // With one label before them there is none in front of the last, so the second is like the first; the third
  // has its own label twice before it.
  EXPECT_EQ(outlineOf(message), "Owners:" + label("items") + item("name", "a", 1) + label("items") +
                                    item("name", "b", 1) + item("name", "c", 0) + "</div>");
}

TEST(HTMLRenderContext, BytesPrintAsStars) {
  Render::Values message;
  message.setBytes("secret");
  EXPECT_EQ(outlineOf(message), "Values:" + item("bytes", "****") + "</div>");
}

TEST(HTMLRenderContext, WhiteSpaceAtTheEndOfANameIsCut) {
  HTMLRenderContext context(optionsFor(kNoTexts));
  context.writeAttribute("name ", 1);
  context.writeAttribute(" na me\t \r\n", 2);
  context.writeAttribute(" \n", 3);
  std::string text;
  context.DumpToString(text);
  EXPECT_EQ(text, item("name", "1") + item(" na me", "2") + item("", "3"));
}

TEST(HTMLRenderContext, DateOfTwoDaysIsAnInterval) {
  const ScopedTimeZone zone("UTC0");
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, "dateInt", 172800);
  EXPECT_EQ(outlineOf(message), "Dated:" + item("dateInt", "2 day(s)") + "</div>");
}

TEST(HTMLRenderContext, CollapsibleBlocksHaveIdsOfTheirOwn) {
  Render::JobOption message;
  message.setId(5);
  const int first = HTMLRenderContext::CountOptions;
  const auto block = [](int number) {
    const std::string id = "JobOption" + std::to_string(number);
    return R"(<a title="Click to view  " style="color: blue; cursor:hand;" onclick="showdiv(')" + id +
           R"(');">Job Options::</a><div id=")" + id + R"(" style="display:none">)" + item("id", "5") +
           "</div>";
  };
  EXPECT_EQ(outlineOf(message, optionsFor(kNoTexts, false, true)), block(first));
  EXPECT_EQ(outlineOf(message, optionsFor(kNoTexts, false, true)), block(first + 1));
}

TEST(HTMLRenderContext, MarkupInAValueStaysAsItIs) {
  Render::Item message = namedItem("<b>&\"quoted\"</b>");
  EXPECT_EQ(outlineOf(message), "Item:" + item("name", "<b>&\"quoted\"</b>") + "</div>");
}

// --- Headers

TEST(HTMLRenderContext, TitlesOfSomeClassesAreNotTheirNames) {
  const auto title = [](const std::string& name, bool collapsible) {
    HTMLRenderContext context(optionsFor(kNoTexts, false, collapsible));
    context.startHeader(name);
    std::string text;
    context.DumpToString(text);
    const std::size_t begin = collapsible ? text.find("\">") + 2 : 0;
    return text.substr(begin, text.find(':') == begin ? 0 : text.find(':', begin) - begin);
  };
  EXPECT_EQ(title("JobOption", false), "Job Options");
  EXPECT_EQ(title("JobOption", true), "Job Options");
  EXPECT_EQ(title("ClientsList", false), "Additional Properties");
  EXPECT_EQ(title("ClientsList", true), "Additional Properties");
  EXPECT_EQ(title("GetClientPropertiesResponse", false), "GetClientPropertiesResponse");
  EXPECT_EQ(title("GetClientPropertiesResponse", true), "Additional Properties");
  EXPECT_EQ(title("ZQSearchReq", false), "ZQSearchReq");
  EXPECT_EQ(title("ZQSearchReq", true), "Search Options");
  EXPECT_EQ(title("SaveAlert", false), "SaveAlert");
  EXPECT_EQ(title("SaveAlert", true), "SaveAlert");
}

TEST(HTMLRenderContext, NumbersAreTakenByCollapsibleBlocksAlone) {
  Render::Item message;
  const int before = HTMLRenderContext::CountOptions;
  outlineOf(message);
  EXPECT_EQ(HTMLRenderContext::CountOptions, before);
  outlineOf(message, optionsFor(kNoTexts, false, true));
  EXPECT_EQ(HTMLRenderContext::CountOptions, before + 1);
}

TEST(HTMLRenderContext, HeadersAndSubHeadersToWriteLeaveNoTrace) {
  HTMLRenderContext context(optionsFor(kNoTexts));
  context.writeHeader("a");
  context.writeSubHeader("b");
  std::string text = "before";
  context.DumpToString(text);
  EXPECT_THAT(text, IsEmpty());
}

TEST(HTMLRenderContext, CopyContinuesWhereTheOriginalStands) {
  Render::JobOption message;
  message.setId(5);
  HTMLRenderContext original(optionsFor(kNoTexts));
  original.startHeader("Item");
  MsgFieldContext client = eventOf(message, "client");
  original.startSubHeader(client);
  HTMLRenderContext copy(original);
  HTMLRenderContext assigned;
  assigned = original;
  for (HTMLRenderContext* context : {&copy, &assigned}) {
    context->addToOutPut("name", "x");
    std::string text;
    context->DumpToString(text);
    EXPECT_EQ(text, "Item:" + label("client") + item("name", "x", 1));
  }
}

// --- References to entities

TEST(HTMLRenderContext, ReferenceStandsOnTheLineOfItsLabel) {
  Render::References message;
  message.mutableClient().setClientId(7);
  message.mutableClient().setClientName("c");
  message.setCount(1);
  EXPECT_EQ(outlineOf(message), "References:" + label("client") +
                                    "&nbsp;&nbsp;&nbsp;clientId&nbsp;:&nbsp;7"
                                    "&nbsp;&nbsp;&nbsp;clientName&nbsp;:&nbsp;c" +
                                    item("count", "1") + "</div>");
}

TEST(HTMLRenderContext, ReferencesOfAListStandOnALineBelowTheirLabel) {
  Render::References message;
  message.addToClients().setClientId(7);
  message.setCount(1);
  EXPECT_EQ(outlineOf(message), "References:" + label("clients") + "<br>" + indentation(1) +
                                    "&nbsp;&nbsp;&nbsp;clientId&nbsp;:&nbsp;7" + item("count", "1") +
                                    "</div>");
}

// --- Single values

TEST(HTMLRenderContext, DispatchesEveryTypeThatHasAForm) {
  Render::Values message = filledValues();
  std::string items;
  for (const auto& [name, text] : kValueTexts) items += item(name, text);
  EXPECT_EQ(outlineOf(message), "Values:" + items + "</div>");
}

TEST(HTMLRenderContext, KeepsUlonglongsAndPasswordsUnwritten) {
  Render::Values message;
  message.setAUlonglong(1);
  message.setPassword("p");
  EXPECT_EQ(outlineOf(message), "Values:</div>");
  HTMLRenderContext context(optionsFor(kNoTexts));
  for (const char* name : {"aUlonglong", "password"}) {
    MsgFieldContext event = eventOf(message, name);
    context.writeAttribute(event);
  }
  std::string text;
  context.DumpToString(text);
  EXPECT_THAT(text, IsEmpty());
}

TEST(HTMLRenderContext, EnumerationsListsAndObjectsAreNoAttributes) {
  Render::Values message;
  message.setAnEnum(Render::State::RUNNING);
  message.mutableEnums() = {1};
  message.addToObjects();
  HTMLRenderContext context(optionsFor(kNoTexts));
  for (const char* name : {"anEnum", "enums", "objects"}) {
    MsgFieldContext event = eventOf(message, name);
    context.writeAttribute(event);
  }
  std::string text;
  context.DumpToString(text);
  EXPECT_THAT(text, IsEmpty());
}

TEST(HTMLRenderContext, EmptyValueWritesNothing) {
  Render::Values message;
  message.setAString("");
  message.setAWstring(u"");
  message.setLast(1);
  EXPECT_EQ(outlineOf(message), "Values:" + item("last", "1") + "</div>");
}

TEST(HTMLRenderContext, FieldIsWrittenWhenItIsSetInTheMessageAndInTheEvent) {
  Render::Item message = namedItem("x");
  HTMLRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext unsetInEvent = eventOf(message, "name");
  unsetInEvent.setValueState(false);
  context.writeAttribute(unsetInEvent);
  message.unsetName();
  MsgFieldContext unsetInMessage = eventOf(message, "name");
  unsetInMessage.setValueState(true);
  context.writeAttribute(unsetInMessage);
  std::string text;
  context.DumpToString(text);
  EXPECT_THAT(text, IsEmpty());
}

TEST(HTMLRenderContext, AnnotatedFieldsAreLeftOutByTheContextItself) {
  Render::Hidden message;
  message.setBefore(1);
  message.setHidden("h");
  message.setSuppressed("s");
  message.setSecret("p");
  message.setSensitive("shown");
  HTMLRenderContext context(optionsFor(kNoTexts));
  for (const char* name : {"before", "hidden", "suppressed", "secret", "sensitive"}) {
    MsgFieldContext event = eventOf(message, name);
    context.writeAttribute(event);
  }
  std::string text;
  context.DumpToString(text);
  EXPECT_EQ(text, item("before", "1") + item("sensitive", "shown"));
}

// --- Dates

struct DateForm {
  const char* field;
  std::int64_t value;
  const char* text;
};

class HTMLDates : public testing::TestWithParam<DateForm> {};

TEST_P(HTMLDates, AreWrittenAsPeopleWriteThem) {
  const ScopedTimeZone zone("UTC0");
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, GetParam().field, GetParam().value);
  EXPECT_EQ(outlineOf(message), "Dated:" + item(GetParam().field, GetParam().text) + "</div>");
}

INSTANTIATE_TEST_SUITE_P(
    Forms, HTMLDates,
    testing::Values(DateForm{"dateInt", 86400, "1 day(s)"}, DateForm{"dateInt", 7200, "2 hour(s)"},
                    DateForm{"dateInt", 3600, "1 hour(s)"}, DateForm{"dateInt", 90, "90"},
                    DateForm{"dateInt", 1, "1"}, DateForm{"dateInt", -5, "4294967291"},
                    DateForm{"dateInt", -86400, "4294880896"}, DateForm{"dateInt", 0, "0"},
                    DateForm{"dateTime64", 0, "0"}, DateForm{"dateInt", 662687999, "662687999"},
                    DateForm{"dateInt", 662688000, "1991-01-01 00:00:00"},
                    DateForm{"dateInt", 1577934245, "2020-01-02 03:04:05"},
                    DateForm{"dayInt", 1577934245, "2020-01-02"},
                    DateForm{"dateUint", 4102444800, "2100-01-01 00:00:00"},
                    DateForm{"dayUlong", 4102444800, "2100-01-01"},
                    DateForm{"dateLong", 1577934245, "2020-01-02 03:04:05"},
                    DateForm{"dateLonglong", 253402300799, "9999-12-31 23:59:59"},
                    DateForm{"dateTime32", 1577934245, "2020-01-02 03:04:05"},
                    DateForm{"dayTime64", 253402300799, "9999-12-31"}, DateForm{"timeInt", 3600, "3600"}));

TEST(HTMLRenderContext, DateOfAnyOtherTypeNumberHasTheTime) {
  const ScopedTimeZone zone("UTC0");
  OpenMessage message = newMessage("Demo_Forced");
  setInteger(message, "oddDate", 1577934245);
  EXPECT_EQ(outlineOf(message), "Forced:" + item("oddDate", "2020-01-02 03:04:05") + "</div>");
}

TEST(HTMLRenderContext, DateWithoutLocalTimeIsPassedOver) {
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, "dateLonglong", std::numeric_limits<std::int64_t>::max());
  setInteger(message, "dateTime64", std::numeric_limits<std::int64_t>::min());
  setInteger(message, "timeInt", 1);
  EXPECT_EQ(outlineOf(message), "Dated:" + item("timeInt", "1") + "</div>");
}

TEST(HTMLRenderContext, DateOnATextIsNoDate) {
  OpenMessage message = newMessage("Demo_Forced");
  setText(message, "dateText", "next week");
  EXPECT_EQ(outlineOf(message), "Forced:" + item("dateText", "next week") + "</div>");
}

// --- Lists and enumerations

TEST(HTMLRenderContext, ListStandsInParentheses) {
  Render::Plain message;
  message.mutableIds() = {1, 2, 3};
  EXPECT_EQ(outlineOf(message), "Plain:" + item("ids", "(1,2,3)") + "</div>");
}

TEST(HTMLRenderContext, EmptyListWritesNothing) {
  Render::Plain message;
  message.mutableIds();
  EXPECT_EQ(outlineOf(message), "Plain:</div>");
}

TEST(HTMLRenderContext, KeepsListsOfEnumerationsAndObjectsWithoutTheirElements) {
  Render::Values message;
  message.mutableEnums() = {1, 2};
  message.addToObjects().setName("a");
  HTMLRenderContext context(optionsFor(kNoTexts));
  for (const char* name : {"enums", "objects"}) {
    MsgFieldContext event = eventOf(message, name);
    context.writeList(event);
  }
  std::string text;
  context.DumpToString(text);
  EXPECT_EQ(text, item("enums", "()") + item("objects", "()"));
}

TEST(HTMLRenderContext, EnumerationIsItsTextOrElseItsName) {
  Render::Plain message;
  message.setState(Render::State::RUNNING);
  EXPECT_EQ(outlineOf(message), "Plain:" + item("state", "RUNNING") + "</div>");
  message.setState(Render::State::DONE);
  EXPECT_EQ(outlineOf(message), "Plain:" + item("state", "All done") + "</div>");
  message.setState(Render::State::FAILED);
  EXPECT_EQ(outlineOf(message), "Plain:" + item("state", "FAILED") + "</div>");
}

TEST(HTMLRenderContext, EnumerationWithoutANameIsLoggedAndPassedOver) {
  Render::Plain message;
  message.setState(static_cast<Render::State>(99));
  LogCapture capture;
  EXPECT_EQ(outlineOf(message), "Plain:</div>");
  EXPECT_TRUE(capture.hasPart("XMLDecoder::GetEnumString", 0, "does not contain enum with value : [99]"));
}

TEST(HTMLRenderContext, UnsetEnumerationIsPassedOverInSilence) {
  Render::Plain message;
  LogCapture capture(25);
  EXPECT_EQ(outlineOf(message), "Plain:</div>");
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(HTMLRenderContext, ListOfEnumerationsAsAnEnumerationWritesNothing) {
  Render::Values message;
  message.mutableEnums() = {1};
  HTMLRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext event = eventOf(message, "enums");
  LogCapture capture;
  context.writeEnum(event);
  std::string text;
  context.DumpToString(text);
  EXPECT_THAT(text, IsEmpty());
  EXPECT_THAT(capture.lines(), IsEmpty());
}

// --- Labels

TEST(HTMLRenderContext, LabelsAndWordsAreInTheLanguageOfTheOptions) {
  Render::Labels message;
  message.setLogin("l");
  message.setState(Render::State::RUNNING);
  message.mutablePlaces() = {"p"};
  message.setFlag(true);
  message.mutableObject().setName("o");
  message.setUnknown(1);
  const auto expected = [](const char* login, const char* state, const char* places, const char* yes,
                           const char* object) {
    return "Labels:" + item(login, "l") + item(state, "RUNNING") + item(places, "(p)") + item("flag", yes) +
           label(object) + item("name", "o", 1) + item("unknown", "1") + "</div>";
  };
  EXPECT_EQ(outlineOf(message), expected("login", "state", "places", "true", "object"));
  EXPECT_EQ(outlineOf(message, optionsFor(kEnglish)),
            expected("Login name", "Impersonate user", "Alert location", "Yes", "Use network share"));
  EXPECT_EQ(outlineOf(message, optionsFor(kGerman)),
            expected("Anmeldename", "Benutzer annehmen", "Ablageort für Warnungen", "Ja",
                     "Netzwerkfreigabe verwenden"));
}

// --- The arithmetic of indentation

TEST(HTMLRenderContext, EndsWithoutAStartAreHarmless) {
  Render::JobOption message;
  HTMLRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext client = eventOf(message, "client");
  context.endSubHeader(client);
  context.startSubHeader(client);
  for (int i = 0; i < 5; ++i) context.endSubHeader(client);
  context.addToOutPut("name", "x");
  std::string text;
  context.DumpToString(text);
  EXPECT_EQ(text, label("client") + item("name", "x"));
}

TEST(HTMLRenderContext, IndentationEndsAtTwentyFourLevels) {
  EXPECT_TRUE(outlineOfDepth(23).ends_with(item("name", "x", 23)));
  const std::string text = outlineOfDepth(150);
  EXPECT_TRUE(text.ends_with(item("name", "x", 24)));
  EXPECT_EQ(text.find(indentation(25)), std::string::npos);
}

}  // namespace
}  // namespace zqxml
