#include <zqxml/platform/format.h>
#include <zqxml/platform/text.h>
#include <zqxml/render/html_value_context.h>
#include <zqxml/render/internal/rendered_field.h>
#include <zqxml/render/xml_utils.h>

#include <cstdint>

namespace zqxml {
namespace {

constexpr std::uint32_t kTrueMessage = 0x3d000552;
constexpr std::uint32_t kFalseMessage = 0x3d000553;

}  // namespace

void HTMLValueContext::writeHeader(std::string) {}
void HTMLValueContext::writeSubHeader(std::string) {}

void HTMLValueContext::writeList(MsgFieldContext& context) {
  const RenderedField field(context);
  const ListText list = field.listText('(', ')');
  if (list.hasElements) addToOutPut(field.label(formatOptions.localeId), list.text);
}

void HTMLValueContext::writeAttribute(const std::string& name, const std::string& value) {
  addToOutPut(name, value);
}
void HTMLValueContext::writeAttribute(const std::string& name, const char* value) {
  addToOutPut(name, value == nullptr ? "" : value);
}
void HTMLValueContext::writeAttribute(const std::string& name, int value) {
  addToOutPut(name, std::to_string(value));
}
void HTMLValueContext::writeAttribute(const std::string& name, unsigned int value) {
  addToOutPut(name, std::to_string(value));
}
void HTMLValueContext::writeAttribute(const std::string& name, long value) {
  addToOutPut(name, std::to_string(value));
}
void HTMLValueContext::writeAttribute(const std::string& name, unsigned long value) {
  addToOutPut(name, std::to_string(value));
}
void HTMLValueContext::writeAttribute(const std::string& name, float value) {
  addToOutPut(name, formatText("%f", static_cast<double>(value)));
}
void HTMLValueContext::writeAttribute(const std::string& name, double value) {
  addToOutPut(name, formatText("%lf", value));
}
void HTMLValueContext::writeAttribute(const std::string& name, const std::u16string& value) {
  if (!value.empty()) addToOutPut(name, toUtf8(value));
}
void HTMLValueContext::writeAttribute(const std::string& name, const bstring&) {
  addToOutPut(name, "****");
}
void HTMLValueContext::writeAttribute(const std::string& name, long long value) {
  addToOutPut(name, std::to_string(value));
}
void HTMLValueContext::writeAttribute(const std::string& name, bool value) {
  std::string text;
  if (XmlUtils::getLocalizedMessage(value ? kTrueMessage : kFalseMessage, formatOptions.localeId, text) !=
      XN_MSG_OK)
    text = value ? "true" : "false";
  addToOutPut(name, text);
}

void HTMLValueContext::appendItem(std::string& out, std::string_view name, std::string_view value) {
  name = name.substr(0, name.find_last_not_of(" \t\r\n") + 1);
  out += "&nbsp;";
  out += name;
  out += "&nbsp;:&nbsp;";
  out += value;
}

}  // namespace zqxml
