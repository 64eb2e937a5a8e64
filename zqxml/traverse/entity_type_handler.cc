#include <zqxml/annotation/annotation_record.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/traverse/entity_type_handler.h>
#include <zqxml/xml/xml_decoder.h>

namespace zqxml {

void EntityTypeHandler::visit(MsgFieldContext& context) {
  const FieldDef& field = context.getField();
  if (!XMLDecoder::isEnum(field.getType()) || field.getName() == nullptr || !field.hasAnnotation()) return;
  Annotation::CommandParam command;
  if (context.getAnnotation(command) && command.isUseDefaultSet() && command.getUseDefault())
    context.EnableField();
}

}  // namespace zqxml
