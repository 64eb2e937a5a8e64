// Sections of an outline: oddities that stay, references, indentation.
#include <gmock/gmock.h>
#include <tests/render/rendering.h>
#include <zqxml/catalogue/generated/ZqEntities.h>

namespace zqxml {
namespace {

// --- Oddities that stay

TEST(HTMLRenderContext, KeepsTheTooltipWithoutWhatIsViewed) {
  HTMLRenderContext context(optionsFor(kNoTexts, false, true));
  context.startHeader("JobOption");
  std::string text;
  context.DumpToString(text);
  EXPECT_TRUE(text.starts_with("<a title=\"Click to view  \" style="));
}

TEST(HTMLRenderContext, KeepsTheEndOfABlockThatNothingOpened) {
  HTMLRenderContext context(optionsFor(kNoTexts));
  context.endHeader("JobOption");
  std::string text;
  context.DumpToString(text);
  EXPECT_EQ(text, "</div>");
}

TEST(HTMLRenderContext, KeepsTheEmptyLineOfARepeatedSectionTwice) {
  Render::Owners message;
  message.addToOwners().mutablePart().setName("a");
  message.addToOwners().mutablePart().setName("b");
  const std::string emptyLine = "<br>" + indentation(1);
  EXPECT_THAT(outlineOf(message),
              testing::HasSubstr(emptyLine + emptyLine + label("part") + item("name", "b", 1)));
}

TEST(HTMLRenderContext, KeepsTheIndentationDriftingAlongAList) {
  Render::Drift message;
  for (int i = 0; i < 2; ++i) message.addToRows().mutableInner().addToRows().setValue(1);
  // The inner `rows` of the first element opens no level, so no end lowers the indentation.
  EXPECT_EQ(outlineOf(message), "Drift:" + label("rows") + label("inner", 1) + item("value", "1", 2) +
                                    "<br>" + indentation(3) + "<br>" + indentation(3) + label("inner", 2) +
                                    label("rows", 3) + item("value", "1", 4) + "</div>");
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

TEST(HTMLRenderContext, ReferenceWhoseLabelStandsAlreadyGoesOnInTheLine) {
  Render::References message;
  for (int i = 1; i <= 3; ++i) message.addToClients().setClientId(i);
  const auto element = [](const std::string& id) { return "&nbsp;&nbsp;&nbsp;clientId&nbsp;:&nbsp;" + id; };
  const std::string head = label("clients") + "<br>" + indentation(1);
  EXPECT_EQ(outlineOf(message),
            "References:" + head + element("1") + head + element("2") + element("3") + "</div>");
}

TEST(HTMLRenderContext, EndOfALevelWithItemsEndsTheLineOfAReference) {
  Render::JobOption message;
  Render::References references;
  references.mutableClient();
  HTMLRenderContext context(optionsFor(kNoTexts));
  MsgFieldContext section = eventOf(message, "client");
  MsgFieldContext reference = eventOf(references, "client");
  context.startSubHeader(section);
  context.addToOutPut("a", "1");
  context.endSubHeader(section);
  context.startSubHeader(reference);
  context.endSubHeader(reference);  // it got no items, and the line goes on
  context.endSubHeader(section);    // as of an element that opened no level
  context.addToOutPut("b", "2");
  std::string text;
  context.DumpToString(text);
  EXPECT_TRUE(text.ends_with(item("b", "2"))) << text;
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
