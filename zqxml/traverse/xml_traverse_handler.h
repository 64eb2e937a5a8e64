/// @file
/// XmlTraverseHandler: what a walk over a message calls. Derive from it to read or change a message field by
/// field; traverse/xml_traverse.h walks.
#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/traverse/msg_field_context.h>

#include <string>

namespace zqxml {

/// A visitor of messages. It belongs to one walk on one thread at a time; the walk borrows it. What it throws
/// passes through the walk, which frees the objects that it has built itself.
class ZQXML_EXPORT XmlTraverseHandler {
 public:
  /// Locale 0, plain mode.
  XmlTraverseHandler() = default;
  /// A locale (see EvGetLocText), and whether getOrder is true.
  XmlTraverseHandler(int initialLocaleId, bool inOrder) : localeId(initialLocaleId), order(inOrder) {}
  /// @{
  /// For derived classes, whose copies go on by themselves.
  XmlTraverseHandler(const XmlTraverseHandler&) = default;
  XmlTraverseHandler(XmlTraverseHandler&&) = default;  ///< likewise
  XmlTraverseHandler& operator=(const XmlTraverseHandler&) = default;
  XmlTraverseHandler& operator=(XmlTraverseHandler&&) = default;
  virtual ~XmlTraverseHandler() = default;
  /// @}

  /// Start of the walk; `rootName` is the name of the root's class behind its first '_', all of it when there
  /// is none.
  virtual void beginTraverse(std::string rootName);
  /// A sub-object in the field of `context` is about to be walked: the object of an object field, or the next
  /// element of a list.
  virtual void startSubObject(MsgFieldContext& context);
  /// One field with a name hash, set or not; `context` is valid during the call.
  virtual void visit(MsgFieldContext& context) = 0;
  /// End of the sub-object that the last open startSubObject began.
  virtual void endSubObject(MsgFieldContext& context);
  /// End of the walk, with the name that it began with.
  virtual void endTraverse(std::string rootName);

  /// Locale for text that the handler writes.
  int getLocaleId() const { return localeId; }
  /// False: the fields in catalogue order, each sub-object at once. True: in every object all value fields
  /// first, then all fields with sub-objects.
  bool getOrder() const { return order; }

 protected:
  int localeId = 0;    ///< getLocaleId
  bool order = false;  ///< getOrder
};

}  // namespace zqxml
