#include "tools/zqmsg/rendering.h"

#include <zqxml/render/default_render_context.h>
#include <zqxml/render/html_gui_summary_render_context.h>
#include <zqxml/render/html_render_context.h>
#include <zqxml/render/zq_xml_summary.h>

#include <locale>
#include <sstream>

namespace zqxml::tool {
namespace {

template <class Context>
std::string rendered(XNMessageBase& message, Context context) {
  ZqXMLFormatOptions unused;
  ZqXMLSummary::getZqSummaryInfo(&message, &context, unused);
  std::string text;
  context.DumpToString(text);
  return text;
}

}  // namespace

std::string render(XNMessageBase& message, Rendering form, const ContextFormatOpts& options) {
  if (form == Rendering::kOutline) return rendered(message, HTMLRenderContext(options));
  if (form == Rendering::kSummary) return rendered(message, HTMLGuiSummaryRenderContext(options));
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  return rendered(message, DefaultRenderContext(stream, options));
}

}  // namespace zqxml::tool
