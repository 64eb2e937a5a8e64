// Short ways to render a message, and to the events of single fields.
#pragma once

#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Render.h>
#include <zqxml/render/default_render_context.h>
#include <zqxml/render/html_gui_summary_render_context.h>
#include <zqxml/render/html_render_context.h>
#include <zqxml/render/zq_xml_summary.h>

#include <array>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqxml {

/// A locale without texts: labels are names, and the words for true and false are English, in any
/// environment.
inline constexpr int kNoTexts = 0x7f;
inline constexpr int kEnglish = 0x0409;
inline constexpr int kGerman = 0x0407;

inline ContextFormatOpts optionsFor(int localeId, bool order = false, bool collapsible = false) {
  return {localeId, order, collapsible};
}

inline void render(XNMessageBase& message, ZqXMLRenderContext& context) {
  ZqXMLFormatOptions options;
  EXPECT_EQ(ZqXMLSummary::getZqSummaryInfo(&message, &context, options), XN_MSG_OK);
}

/// What an HTML context makes of the message.
template <class Context>
std::string rendered(XNMessageBase& message, ContextFormatOpts options = optionsFor(kNoTexts)) {
  Context context(options);
  render(message, context);
  std::string text;
  context.DumpToString(text);
  return text;
}
inline std::string outlineOf(XNMessageBase& message, ContextFormatOpts options = optionsFor(kNoTexts)) {
  return rendered<HTMLRenderContext>(message, options);
}
inline std::string paragraphOf(XNMessageBase& message, ContextFormatOpts options = optionsFor(kNoTexts)) {
  return rendered<HTMLGuiSummaryRenderContext>(message, options);
}

/// The text that a DefaultRenderContext makes of the message, enumerations included.
inline std::string plainText(XNMessageBase& message, ContextFormatOpts options = optionsFor(kNoTexts)) {
  std::ostringstream stream;
  DefaultRenderContext context(stream, options);
  render(message, context);
  std::string text;
  context.DumpToString(text);
  return text;
}
/// The summary into a stream.
inline std::string streamText(XNMessageBase& message) {
  std::ostringstream stream;
  ZqXMLFormatOptions options;
  EXPECT_EQ(ZqXMLSummary::getZqSummaryInfo(&message, stream, options), XN_MSG_OK);
  return stream.str();
}

/// A value in each field of the types that have a form as a single value.
inline Render::Values filledValues() {
  Render::Values message;
  message.setAnInt(-1);
  message.setAUint(4000000000u);
  message.setALong(-2);
  message.setAUlong(4000000001u);
  message.setALonglong(-9000000000);
  message.setFlag(true);
  message.setAString("<text>");
  message.setAWstring(u"wide \u00fc");
  message.setADouble(0.1234567);
  message.setAFloat(0.1f);
  message.setBytes("b<");
  message.setTime32(-3);
  message.setTime64(9000000001);
  return message;
}
/// Their names and texts in mark-up.
inline const std::vector<std::pair<std::string, std::string>> kValueTexts{{"anInt", "-1"},
                                                                          {"aUint", "4000000000"},
                                                                          {"aLong", "-2"},
                                                                          {"aUlong", "4000000001"},
                                                                          {"aLonglong", "-9000000000"},
                                                                          {"flag", "true"},
                                                                          {"aString", "<text>"},
                                                                          {"aWstring", "wide \u00fc"},
                                                                          {"aDouble", "0.123457"},
                                                                          {"aFloat", "0.100000"},
                                                                          {"bytes", "****"},
                                                                          {"time32", "-3"},
                                                                          {"time64", "9000000001"}};

/// The event of one field, as a walk makes it.
inline MsgFieldContext eventOf(XNMessageBase& message, std::string_view field) {
  MsgFieldContext context(fieldOf(message, field), &message);
  context.setValueState(hasBit(message, field));
  return context;
}

/// An outline of so many levels, whose labels do not repeat, with an item "name" in the innermost.
inline std::string outlineOfDepth(int levels) {
  Render::Values message;
  HTMLRenderContext context(optionsFor(kNoTexts));
  for (int i = 0; i < levels; ++i) {
    MsgFieldContext event =
        eventOf(message, std::array{"anInt", "aUint", "aLong"}[static_cast<unsigned>(i % 3)]);
    context.startSubHeader(event);
  }
  context.addToOutPut("name", "x");
  std::string text;
  context.DumpToString(text);
  return text;
}

/// The indentation of `levels` levels.
inline std::string indentation(int levels) {
  std::string text;
  for (int i = 0; i < 8 * levels; ++i) text += "&nbsp;";
  return text;
}

/// The pieces of an outline: a line with a value, and the label of a section.
inline std::string item(const std::string& name, const std::string& value, int indent = 0) {
  return "<br>" + indentation(indent) + "&nbsp;" + name + "&nbsp;:&nbsp;" + value;
}
inline std::string label(const std::string& name, int indent = 0) {
  return "<br>" + indentation(indent) + "<B>" + name + "</B>";
}

}  // namespace zqxml
