#include <zqxml/platform/text.h>
#include <zqxml/render/default_render_context.h>
#include <zqxml/render/internal/rendered_field.h>

namespace zqxml {

void DefaultRenderContext::startHeader(std::string) {
  first = true;
}
void DefaultRenderContext::writeHeader(std::string) {
  first = true;
}
void DefaultRenderContext::endHeader(std::string) {}
void DefaultRenderContext::startSubHeader(MsgFieldContext&) {}
void DefaultRenderContext::writeSubHeader(std::string) {}
void DefaultRenderContext::endSubHeader(MsgFieldContext&) {}

void DefaultRenderContext::separate() {
  if (!first) stream << ',';
  first = false;
}

template <class Value>
void DefaultRenderContext::writeItem(const std::string& name, const Value& value) {
  separate();
  stream << name << ":[" << value << ']';
}

void DefaultRenderContext::writeAttribute(MsgFieldContext& context) {
  const RenderedField field(context);
  if (!field.isSet() || field.isWithheld() || !field.isSingleValue() || !context.isValueSet()) return;
  field.visitValue([&](const auto& value) { writeAttribute(field.name(), value); });
}

void DefaultRenderContext::writeEnum(MsgFieldContext& context) {
  if (!context.isValueSet()) return;
  const RenderedField field(context);
  // QUIRK: a list of enumerations leaves a comma and nothing else.
  separate();
  if (!field.isEnum()) return;
  stream << field.label(formatOptions.localeId) << ":[" << field.enumeratorText() << ']';
}

void DefaultRenderContext::writeList(MsgFieldContext& context) {
  const RenderedField field(context);
  const ListText list = field.listText('[', ']');
  // QUIRK: an empty list leaves a comma and nothing else.
  separate();
  if (list.hasElements) stream << field.label(formatOptions.localeId) << list.text;
}

void DefaultRenderContext::writeAttribute(const std::string& name, const std::string& value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, const char* value) {
  writeItem(name, value == nullptr ? "" : value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, int value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, unsigned int value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, long value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, unsigned long value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, float value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, double value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, const std::u16string& value) {
  // QUIRK: an empty text has its comma all the same.
  if (value.empty()) return separate();
  writeItem(name, toUtf8(value));
}
void DefaultRenderContext::writeAttribute(const std::string& name, const bstring& value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, long long value) {
  writeItem(name, value);
}
void DefaultRenderContext::writeAttribute(const std::string& name, bool value) {
  writeItem(name, value ? "true" : "false");
}

}  // namespace zqxml
