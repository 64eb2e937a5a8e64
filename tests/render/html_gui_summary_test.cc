// The paragraph for a console, and what both HTML contexts make of single values.
#include <gmock/gmock.h>
#include <tests/render/rendering.h>
#include <tests/support/log_capture.h>

#include <limits>

namespace zqxml {
namespace {

using testing::IsEmpty;

std::string line(const std::string& name, const std::string& value) {
  return "<BR>&nbsp;" + name + "&nbsp;:&nbsp;" + value;
}

template <class Context>
std::string textOf(const Context& context) {
  std::string text = "replaced";
  context.DumpToString(text);
  return text;
}

TEST(HTMLGuiSummary, WritesAParagraphWithSections) {
  Render::JobOption message;
  message.setId(5);
  message.mutableClient().setName("c1");
  EXPECT_EQ(paragraphOf(message),
            "<p> Summary<BR>&nbsp;id&nbsp;:&nbsp;5<br><B>client </B><p>&nbsp;name&nbsp;:&nbsp;c1</p></div>");
}

TEST(HTMLGuiSummary, SectionBreaksTheLineOnlyBehindItems) {
  Render::Nothings message;
  message.mutableFirst();
  message.mutableSecond().setName("x");
  EXPECT_EQ(paragraphOf(message),
            "<p> Summary<B>first </B><p><B>second </B><p>&nbsp;name&nbsp;:&nbsp;x</p></div>");
}

TEST(HTMLGuiSummary, ItemsBreakTheLineOfTheNextSectionAlone) {
  Render::Bare message;
  HTMLGuiSummaryRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext item = eventOf(message, "item");
  context.addToOutPut("a", "1");
  context.startSubHeader(item);
  context.startSubHeader(item);
  EXPECT_EQ(textOf(context), line("a", "1") + "<br><B>item </B><p><B>item </B><p>");
}

TEST(HTMLGuiSummary, ItemBehindASectionBeginsWithoutABreak) {
  Render::JobOption message;
  HTMLGuiSummaryRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext client = eventOf(message, "client");
  context.startSubHeader(client);
  context.addToOutPut("a", "1");
  context.addToOutPut("b", "2");
  context.endSubHeader(client);
  context.addToOutPut("c", "3");
  context.addToOutPut("d", "4");
  EXPECT_EQ(textOf(context), "<B>client </B><p>&nbsp;a&nbsp;:&nbsp;1" + line("b", "2") +
                                 "&nbsp;c&nbsp;:&nbsp;3" + line("d", "4"));
}

TEST(HTMLGuiSummary, HeadersAndSubHeadersToWriteLeaveNoTrace) {
  HTMLGuiSummaryRenderContext context(optionsFor(kNoTexts));
  context.writeHeader("a");
  context.writeSubHeader("b");
  EXPECT_THAT(textOf(context), IsEmpty());
}

TEST(HTMLGuiSummary, CountsTheSummariesThatBegin) {
  Render::Item message;
  const int before = HTMLGuiSummaryRenderContext::CountOptions;
  const int outlines = HTMLRenderContext::CountOptions;
  paragraphOf(message);
  paragraphOf(message, optionsFor(kNoTexts, false, true));
  EXPECT_EQ(HTMLGuiSummaryRenderContext::CountOptions, before + 2);
  EXPECT_EQ(HTMLRenderContext::CountOptions, outlines);
}

TEST(HTMLGuiSummary, DispatchesEveryTypeThatHasAForm) {
  Render::Values message = filledValues();
  message.setAUlonglong(1);
  message.setPassword("p");
  std::string lines;
  for (const auto& [name, text] : kValueTexts) lines += line(name, text);
  EXPECT_EQ(paragraphOf(message), "<p> Summary" + lines + "</p></div>");
}

TEST(HTMLGuiSummary, KeepsEmptyTextsButNoEmptyWideTexts) {
  Render::Values message;
  message.setAString("");
  message.setAWstring(u"");
  EXPECT_EQ(paragraphOf(message), "<p> Summary" + line("aString", "") + "</p></div>");
}

TEST(HTMLGuiSummary, UnsetFieldsAndEnumerationsAreNoAttributes) {
  Render::Values message;
  message.setAnEnum(Render::State::RUNNING);
  HTMLGuiSummaryRenderContext context(optionsFor(kNoTexts));
  for (const char* field : {"anInt", "anEnum", "aString"}) {
    MsgFieldContext event = eventOf(message, field);
    context.writeAttribute(event);
  }
  EXPECT_THAT(textOf(context), IsEmpty());
}

TEST(HTMLGuiSummary, KeepsAnnotatedFieldsWhenItIsGivenThem) {
  Render::Hidden message;
  message.setHidden("h");
  message.setSuppressed("s");
  message.setSecret("p");
  HTMLGuiSummaryRenderContext context(optionsFor(kNoTexts));
  for (const char* field : {"hidden", "suppressed", "secret"}) {
    MsgFieldContext event = eventOf(message, field);
    context.writeAttribute(event);
  }
  EXPECT_EQ(textOf(context), line("hidden", "h") + line("suppressed", "s") + line("secret", "p"));
}

TEST(HTMLGuiSummary, DatesArePlainNumbers) {
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, "dateInt", 172800);
  setInteger(message, "dayInt", 0);
  EXPECT_EQ(paragraphOf(message),
            "<p> Summary" + line("dateInt", "172800") + line("dayInt", "0") + "</p></div>");
}

TEST(HTMLGuiSummary, KeepsEnumerationsByNameAndNotByText) {
  Render::Plain message;
  message.setState(Render::State::DONE);
  EXPECT_EQ(paragraphOf(message), "<p> Summary" + line("state", "DONE") + "</p></div>");
}

TEST(HTMLGuiSummary, UnsetEnumerationIsPassedOverInSilence) {
  Render::Plain message;
  LogCapture capture(25);
  EXPECT_EQ(paragraphOf(message), "<p> Summary</p></div>");
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(HTMLGuiSummary, WritesEnumerationsOfSingleFieldsOnly) {
  Render::Values message;
  message.mutableEnums() = {1};
  HTMLGuiSummaryRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext event = eventOf(message, "enums");
  context.writeEnum(event);
  EXPECT_THAT(textOf(context), IsEmpty());
}

TEST(HTMLGuiSummary, ListsStandInParentheses) {
  Render::Values message;
  Render::Plain plain;
  message.mutableEnums() = {1};
  message.addToObjects();
  plain.mutableIds() = {1, 2};
  HTMLGuiSummaryRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext enums = eventOf(message, "enums");
  MsgFieldContext objects = eventOf(message, "objects");
  MsgFieldContext ids = eventOf(plain, "ids");
  for (MsgFieldContext* event : {&enums, &objects, &ids}) context.writeList(*event);
  plain.mutableIds().clear();
  context.writeList(ids);
  EXPECT_EQ(textOf(context), line("enums", "()") + line("objects", "()") + line("ids", "(1,2)"));
}

TEST(HTMLGuiSummary, LabelsAreInTheLanguageOfTheOptions) {
  Render::Labels message;
  message.setLogin("l");
  message.mutableObject().setName("o");
  EXPECT_EQ(paragraphOf(message, optionsFor(kGerman)),
            "<p> Summary" + line("Anmeldename", "l") +
                "<br><B>Netzwerkfreigabe verwenden </B><p>&nbsp;name&nbsp;:&nbsp;o</p></div>");
}

TEST(HTMLGuiSummary, CopyContinuesWhereTheOriginalStands) {
  HTMLGuiSummaryRenderContext original(optionsFor(kNoTexts));
  original.startHeader("x");
  HTMLGuiSummaryRenderContext copy(original);
  HTMLGuiSummaryRenderContext assigned;
  assigned = original;
  original.addToOutPut("other", "1");
  for (HTMLGuiSummaryRenderContext* context : {&copy, &assigned}) {
    context->addToOutPut("name", "x");
    EXPECT_EQ(textOf(*context), "<p> Summary" + line("name", "x"));
  }
}

// --- Texts of single values, the same in both contexts

template <class Context>
class HTMLValues : public testing::Test {};
using Contexts = testing::Types<HTMLRenderContext, HTMLGuiSummaryRenderContext>;
TYPED_TEST_SUITE(HTMLValues, Contexts);

/// What stands behind the name.
template <class Context, class Value>
std::string valueText(const Value& value, int localeId = kNoTexts) {
  Context context(optionsFor(localeId));
  context.writeAttribute("name", value);
  const std::string text = textOf(context);
  const std::string separator = "name&nbsp;:&nbsp;";
  const std::size_t at = text.find(separator);
  return at == std::string::npos ? "nothing" : text.substr(at + separator.size());
}

TYPED_TEST(HTMLValues, HaveTheFormOfTheirType) {
  EXPECT_EQ((valueText<TypeParam>(std::numeric_limits<int>::min())), "-2147483648");
  EXPECT_EQ((valueText<TypeParam>(std::numeric_limits<unsigned int>::max())), "4294967295");
  EXPECT_EQ((valueText<TypeParam>(std::numeric_limits<long>::min())), "-9223372036854775808");
  EXPECT_EQ((valueText<TypeParam>(std::numeric_limits<unsigned long>::max())), "18446744073709551615");
  EXPECT_EQ((valueText<TypeParam>(std::numeric_limits<long long>::max())), "9223372036854775807");
  EXPECT_EQ((valueText<TypeParam>(0.1f)), "0.100000");
  EXPECT_EQ((valueText<TypeParam>(-1234567.25)), "-1234567.250000");
  EXPECT_EQ((valueText<TypeParam>(std::string("a<b>&"))), "a<b>&");
  EXPECT_EQ((valueText<TypeParam>("literal")), "literal");
  EXPECT_EQ((valueText<TypeParam>(std::u16string(u"\u00fc"))), "ü");
  EXPECT_EQ((valueText<TypeParam>(std::u16string())), "nothing");
  EXPECT_EQ((valueText<TypeParam>(bstring(std::string("data")))), "****");
  EXPECT_EQ((valueText<TypeParam>(bstring())), "****");
}

TYPED_TEST(HTMLValues, BoolsAreWordsOfTheLocale) {
  EXPECT_EQ((valueText<TypeParam>(true)), "true");
  EXPECT_EQ((valueText<TypeParam>(false)), "false");
  EXPECT_EQ((valueText<TypeParam>(true, kEnglish)), "Yes");
  EXPECT_EQ((valueText<TypeParam>(false, kEnglish)), "No");
  EXPECT_EQ((valueText<TypeParam>(true, kGerman)), "Ja");
  EXPECT_EQ((valueText<TypeParam>(false, kGerman)), "Nein");
}

TYPED_TEST(HTMLValues, LargestDoubleHasAllItsDigits) {
  const std::string text = valueText<TypeParam>(std::numeric_limits<double>::max());
  EXPECT_EQ(text.size(), 309 + 7u);
  EXPECT_TRUE(text.starts_with("17976931348623157"));
}

}  // namespace
}  // namespace zqxml
