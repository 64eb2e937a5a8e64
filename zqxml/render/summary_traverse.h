/// @file
/// The handlers that join a walk to a render context: they decide which fields reach the context.
#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/render/zq_xml_render_context.h>
#include <zqxml/traverse/xml_traverse_handler.h>

#include <string>

namespace zqxml {

/// Hands every event of a walk to a context. Unset fields are passed over but for lists.
/// QUIRK: single enumerations reach no context through this handler.
class ZQXML_EXPORT SummaryTraverse : public XmlTraverseHandler {
 public:
  /// `renderContext` is borrowed; with null nothing is written.
  explicit SummaryTraverse(ZqXMLRenderContext* renderContext, int locale = 0, bool inOrder = false)
      : XmlTraverseHandler(locale, inOrder), context(renderContext) {}

  void beginTraverse(std::string rootName) override;
  void startSubObject(MsgFieldContext& field) override;
  void visit(MsgFieldContext& field) override;
  void endSubObject(MsgFieldContext& field) override;
  void endTraverse(std::string rootName) override;

 protected:
  /// Borrowed; may be null.
  ZqXMLRenderContext* context;
};

/// The same, and what summaries are made with: also hands over single enumerations; leaves out unset
/// sub-objects with what is in them, values that do not exist, and fields that the catalogue annotates as
/// Suppress or HideInReports.
class ZQXML_EXPORT DefaultSummaryTraverse : public SummaryTraverse {
 public:
  using SummaryTraverse::SummaryTraverse;

  void startSubObject(MsgFieldContext& field) override;
  void visit(MsgFieldContext& field) override;
  /// QUIRK: an unset sub-object ends with the first end of a sub-object of the field's name; ends of others
  /// reach the context, as starts of set ones do.
  void endSubObject(MsgFieldContext& field) override;

 private:
  bool skipping = false;  // inside of an unset sub-object
  std::string skipName;   // the field of that object
};

}  // namespace zqxml
