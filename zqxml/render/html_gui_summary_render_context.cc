#include <zqxml/render/html_gui_summary_render_context.h>
#include <zqxml/render/internal/rendered_field.h>

namespace zqxml {

constinit StripedCounter HTMLGuiSummaryRenderContext::CountOptions;

void HTMLGuiSummaryRenderContext::DumpToString(std::string& text) const {
  text = output;
}

void HTMLGuiSummaryRenderContext::addToOutPut(const std::string& name, const std::string& value) {
  if (!startOfLine) output += "<BR>";
  startOfLine = false;
  appendItem(output, name, value);
  pendingBreak = true;
}

void HTMLGuiSummaryRenderContext::startHeader(std::string) {
  output += "<p> Summary";
  ++CountOptions;
}
void HTMLGuiSummaryRenderContext::endHeader(std::string) {
  output += "</p></div>";
}

void HTMLGuiSummaryRenderContext::startSubHeader(MsgFieldContext& context) {
  if (pendingBreak) output += "<br>";
  pendingBreak = false;
  output += "<B>";
  output += RenderedField(context).label(formatOptions.localeId);
  output += " </B><p>";
  startOfLine = true;
}
void HTMLGuiSummaryRenderContext::endSubHeader(MsgFieldContext&) {
  startOfLine = true;
}

void HTMLGuiSummaryRenderContext::writeAttribute(MsgFieldContext& context) {
  const RenderedField field(context);
  if (!field.isSingleValue() || !context.isValueSet()) return;
  field.visitValue([&](const auto& value) { writeAttribute(field.label(formatOptions.localeId), value); });
}

void HTMLGuiSummaryRenderContext::writeEnum(MsgFieldContext& context) {
  const RenderedField field(context);
  if (!field.isEnum() || !context.isValueSet()) return;
  addToOutPut(field.label(formatOptions.localeId), field.enumeratorName());
}

}  // namespace zqxml
