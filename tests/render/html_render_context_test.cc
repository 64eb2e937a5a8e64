#include <gmock/gmock.h>
#include <tests/render/rendering.h>
#include <tests/support/log_capture.h>

namespace zqxml {
namespace {

using testing::IsEmpty;

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

TEST(HTMLRenderContext, SectionOfNothingButEmptySectionsIsForgottenToo) {
  // Did an empty `part` count, the label of the third element would be taken for one that stands already.
  Render::Owners message;
  for (int i = 0; i < 3; ++i) message.addToOwners().mutablePart();
  const std::string element = label("owners") + label("part", 1);
  EXPECT_EQ(outlineOf(message), "Owners:" + element + element + element + "</div>");
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
  Render::Values message;
  message.setLast(1);
  HTMLRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext unsetInEvent = eventOf(message, "last");
  unsetInEvent.setValueState(false);
  context.writeAttribute(unsetInEvent);
  setBit(message, "last", false);
  MsgFieldContext unsetInMessage = eventOf(message, "last");
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

}  // namespace
}  // namespace zqxml
