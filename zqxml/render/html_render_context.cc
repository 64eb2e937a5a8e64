#include <zqxml/render/html_render_context.h>
#include <zqxml/render/internal/rendered_field.h>

#include <algorithm>
#include <utility>

namespace zqxml {
namespace {

/// Objects of this subsystem are references: ZqEntities.
constexpr int kEntitySubsystem = 18;

/// Deeper levels are not indented further: in a long list the indentation drifts from element to element (see
/// endSubHeader), and the output would otherwise grow with the square of the message.
constexpr int kMostIndent = 24;

/// What stands in place of a class's name in a title.
std::string titleOf(const std::string& name, bool collapsible) {
  if (name == "JobOption") return "Job Options";
  if (name == "ClientsList" || (collapsible && name == "GetClientPropertiesResponse"))
    return "Additional Properties";
  if (collapsible && name == "ZQSearchReq") return "Search Options";
  return name;
}

}  // namespace

std::atomic<int> HTMLRenderContext::CountOptions{0};

void HTMLRenderContext::DumpToString(std::string& text) const {
  text = lines;
}

void HTMLRenderContext::appendIndent(int units) {
  for (int i = std::min(units, kMostIndent); i > 0; --i) lines += indentUnit;
}

void HTMLRenderContext::addToOutPut(const std::string& name, const std::string& value) {
  if (value.empty()) return;
  if (inlineEntity) {
    lines += "&nbsp;&nbsp;";
  } else {
    lines += "<br>";
    appendIndent(indent);
  }
  appendItem(lines, name, value);
  if (!fieldCounts.empty()) ++fieldCounts.back();
}

void HTMLRenderContext::startHeader(std::string name) {
  const std::string title = titleOf(name, formatOptions.collapsible);
  if (!formatOptions.collapsible) {
    lines += title + ":";
    return;
  }
  const std::string id = name + std::to_string(CountOptions.fetch_add(1, std::memory_order_relaxed));
  // QUIRK: the tooltip says "Click to view" and not what.
  lines += "<a title=\"Click to view  \" style=\"color: blue; cursor:hand;\" onclick=\"showdiv('" + id +
           "');\">" + title + "::</a><div id=\"" + id + "\" style=\"display:none\">";
}
void HTMLRenderContext::endHeader(std::string) {
  // QUIRK: also when nothing has opened a block.
  lines += "</div>";
}

void HTMLRenderContext::startSubHeader(MsgFieldContext& context) {
  subHeaderOpen = false;
  const RenderedField field(context);
  std::string label = field.label(formatOptions.localeId);
  const XNMessageBase* object = field.firstObject();
  inlineEntity = object != nullptr && object->getSubsysID() == kEntitySubsystem;

  if (headers.size() > 1) {
    const std::string& top = headers.back();
    const std::string& previous = headers[headers.size() - 2];
    if (!top.empty() && !previous.empty() && !label.empty()) {
      if (previous == label) return;  // the next element of a list whose label stands already
      if (top == label) {
        // QUIRK: the line is written, and begins the next one as well.
        for (int i = 0; i < 2; ++i) {
          lines += "<br>";
          appendIndent(indent + 1);
        }
      }
    }
  }
  lines += "<br>";
  appendIndent(indent);
  lines += "<B>";
  lines += label;
  lines += "</B>";
  if (!label.empty()) headers.push_back(std::move(label));
  firstAttribute = true;

  if (!fieldCounts.empty()) ++fieldCounts.back();
  fieldCounts.push_back(-1);
  ++indent;
  subHeaderOpen = true;
  if (inlineEntity && field.isList()) {
    lines += "<br>";
    appendIndent(indent);
  }
}

void HTMLRenderContext::endSubHeader(MsgFieldContext&) {
  // QUIRK: this tells whether the last sub-object that began opened a level, which need not be the one that
  // ends: below elements that share a label the indentation drifts.
  if (subHeaderOpen) --indent;
  if (fieldCounts.empty()) return;
  if (fieldCounts.back() != -1) {
    // QUIRK: the label stays, so that the next element of the list knows it.
    if (fieldCounts.size() > 1) fieldCounts.pop_back();
    inlineEntity = false;
    return;
  }
  fieldCounts.pop_back();
  if (!fieldCounts.empty()) --fieldCounts.back();
  if (!headers.empty()) headers.pop_back();
}

void HTMLRenderContext::writeAttribute(MsgFieldContext& context) {
  const RenderedField field(context);
  if (!field.isSet() || field.isWithheld()) return;
  std::string date;
  if (field.readDate(date)) return addToOutPut(field.label(formatOptions.localeId), date);
  if (!field.isSingleValue() || !context.isValueSet()) return;
  field.visitValue([&](const auto& value) { writeAttribute(field.label(formatOptions.localeId), value); });
}

void HTMLRenderContext::writeEnum(MsgFieldContext& context) {
  const RenderedField field(context);
  if (!context.isValueSet() || !field.isSet()) return;
  addToOutPut(field.label(formatOptions.localeId), field.enumeratorText());
}

}  // namespace zqxml
