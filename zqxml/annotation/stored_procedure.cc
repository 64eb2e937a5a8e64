#include <zqxml/annotation/annotation_base.h>
#include <zqxml/annotation/stored_procedure.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>

namespace zqxml {

bool verifyStoredProcedureName(std::string& name, std::string& xml) {
  if (xml.empty()) return false;
  std::unique_ptr<XNMessageBase> message(XMLSerializer().unserialize(xml, false));
  const _ClassDef* classDef = message == nullptr ? nullptr : MessageAccess::classDef(*message);
  if (classDef == nullptr) return false;
  Annotation::StoredProcedure procedure;
  XMLDecoder::FillAnnotation(message.get(), procedure, classDef->getName());
  message.reset();
  return procedure.isNameSet() && procedure.getName() == name;
}

}  // namespace zqxml
