#include <zqxml/traverse/xml_traverse_handler.h>

namespace zqxml {

void XmlTraverseHandler::beginTraverse(std::string) {}
void XmlTraverseHandler::startSubObject(MsgFieldContext&) {}
void XmlTraverseHandler::endSubObject(MsgFieldContext&) {}
void XmlTraverseHandler::endTraverse(std::string) {}

}  // namespace zqxml
