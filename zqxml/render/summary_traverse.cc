#include <zqxml/render/internal/rendered_field.h>
#include <zqxml/render/summary_traverse.h>

#include <utility>

namespace zqxml {

void SummaryTraverse::beginTraverse(std::string rootName) {
  if (context != nullptr) context->startHeader(std::move(rootName));
}
void SummaryTraverse::startSubObject(MsgFieldContext& field) {
  if (context != nullptr) context->startSubHeader(field);
}
void SummaryTraverse::endSubObject(MsgFieldContext& field) {
  if (context != nullptr) context->endSubHeader(field);
}
void SummaryTraverse::endTraverse(std::string rootName) {
  if (context != nullptr) context->endHeader(std::move(rootName));
}

void SummaryTraverse::visit(MsgFieldContext& field) {
  const unsigned type = field.getField().getType();
  const bool isList = kListTypes.contains(type);
  if (context == nullptr || !kXmlPrimitiveTypes.contains(type) || (!isList && !field.isValueSet())) return;
  if (!isList) {
    if (!kEnumTypes.contains(type)) context->writeAttribute(field);
  } else if (kEnumTypes.contains(type)) {
    context->writeEnum(field);
  } else {
    context->writeList(field);
  }
}

void DefaultSummaryTraverse::startSubObject(MsgFieldContext& field) {
  if (field.isValueSet()) return SummaryTraverse::startSubObject(field);
  skipping = true;
  skipName = RenderedField(field).name();
}

void DefaultSummaryTraverse::visit(MsgFieldContext& field) {
  const unsigned type = field.getField().getType();
  if (context == nullptr || skipping || !kXmlPrimitiveTypes.contains(type)) return;
  const RenderedField rendered(field);
  if (!rendered.hasValue() || rendered.isHidden()) return;
  if (kListTypes.contains(type)) {
    context->writeList(field);
  } else if (kEnumTypes.contains(type)) {
    context->writeEnum(field);
  } else {
    context->writeAttribute(field);
  }
}

void DefaultSummaryTraverse::endSubObject(MsgFieldContext& field) {
  if (skipping && skipName == RenderedField(field).name()) {
    skipping = false;
    return;
  }
  SummaryTraverse::endSubObject(field);
}

}  // namespace zqxml
