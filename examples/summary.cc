// Shows a message to people: as a line of text, and as an outline in a page.
#include <zqxml/catalogue/generated/ZQGui.h>
#include <zqxml/render/default_render_context.h>
#include <zqxml/render/html_render_context.h>
#include <zqxml/render/zq_xml_summary.h>

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

constexpr int kGerman = 1031;

/// The text that the context has after the message.
template <class Context>
std::string shown(zqxml::XNMessageBase& message, Context context) {
  zqxml::ZqXMLFormatOptions options;
  if (zqxml::ZqXMLSummary::getZqSummaryInfo(&message, &context, options) != zqxml::XN_MSG_OK) return "";
  std::string text;
  context.DumpToString(text);
  return text;
}

/// A text as it looks in HTML: the contexts write texts as they stand, so a message that others have written
/// is escaped before.
std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '<') {
      out += "&lt;";
    } else if (c == '&') {
      out += "&amp;";
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

int main() {
  zqxml::ZQGui::SaveAlert alert;
  alert.setLoginName("operator <night shift>");
  alert.setAlertLocation("/srv/alerts");
  alert.setPassword("not for people");

  // One line. Passwords are in no summary.
  std::ostringstream stream;
  const std::string text = shown(alert, zqxml::DefaultRenderContext(stream));
  std::cout << text << "\n\n";

  // An outline with German labels that opens with a click, in a page that knows showdiv.
  alert.setLoginName(escaped(alert.getLoginName()));
  const std::string outline = shown(alert, zqxml::HTMLRenderContext({kGerman, false, true}));
  std::cout
      << "<!DOCTYPE html><meta charset=\"utf-8\">\n"
         "<script>function showdiv(id) { document.getElementById(id).style.display = 'block'; }</script>\n"
      << outline << '\n';

  const bool asExpected =
      text.find("loginName:[operator <night shift>]") != text.npos && text.find("people") == text.npos &&
      outline.find("&nbsp;Anmeldename&nbsp;:&nbsp;operator &lt;night shift>") != outline.npos &&
      outline.find("showdiv('SaveAlert0')") != outline.npos;
  return asExpected ? EXIT_SUCCESS : EXIT_FAILURE;
}
