/// @file
/// EntityTypeHandler: gives the enumerations of a message the defaults that command parameters declare.
#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/traverse/xml_traverse_handler.h>

namespace zqxml {

/// Walk a message with it: every enumeration, or list of them, that is not set and whose CommandParam
/// annotation has a useDefault of true is given its default. Other fields are left alone.
class ZQXML_EXPORT EntityTypeHandler : public XmlTraverseHandler {
 public:
  using XmlTraverseHandler::XmlTraverseHandler;
  void visit(MsgFieldContext& context) override;
};

}  // namespace zqxml
