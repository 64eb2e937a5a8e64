/// @file
/// XmlTraverse: walks a message with a handler, and merges messages.
///
/// A walk takes the fields that have a name hash, one by one, through the handler (xml_traverse_handler.h),
/// and descends into sub-objects and lists of them. Maps are fields like any other: what is in them is not
/// walked. A walk by itself changes nothing; the handler may.
///
/// The handler may change the message while it is walked. Elements that it appends to a list being walked are
/// walked too; where it takes away what is being walked, the walk goes on behind it, and the context of
/// endSubObject may have no message.
///
/// Failure: what cannot be walked is logged (level 0, under "XmlTraverse::traverseHelpers" in plain mode and
/// "XmlTraverse::traverseByOrderHelper" in order mode) and passed over. Threads: a walker, its handler and
/// the message belong to one thread; two threads walk two messages with two walkers.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/platform/export.h>
#include <zqxml/traverse/xml_traverse_handler.h>

#include <string>

namespace zqxml {

class XNMessageBase;
class ZqXMLContextInfo;

/// A class that is being walked in plain mode; the walk keeps these on its own stack.
struct ProcessedClass {
  const char* name;             ///< of the class
  const ProcessedClass* outer;  ///< the one around it; null at the root
};

/// Walks messages with a handler, and merges them. Copies walk by themselves. As a handler it does nothing.
class ZQXML_EXPORT XmlTraverse : public XmlTraverseHandler {
 public:
  /// Walks `msg`, in the mode that the handler's getOrder asks for. Nothing happens, and the handler is not
  /// called, when `msg` has no class.
  ///
  /// `create`: sub-objects that are missing are built for the time of their walk, so that the handler sees
  /// the whole shape of the message: one for each unset object field, and one behind the elements of each
  /// list. `keep`: such an object becomes part of the message when the handler replaced a value in it or
  /// below it. In plain mode no object is built inside one whose class has the same name. In order mode
  /// nothing but the depth ends a class that contains itself: at 1,000 objects built inside one another a
  /// line is logged, and the rest of the walk builds none.
  void traverse(XNMessageBase& msg, XmlTraverseHandler& traverseHandler, bool create = false,
                bool keep = false);
  /// Reads `xml`, walks the message in plain mode, and writes it into `xml` again. Passwords are carried as
  /// they stand: the context's password type becomes PASS_THROUGH. When the context has an error after
  /// reading, `xml` stays as it is; when there is no message, it becomes empty, as it does after the error
  /// line when the message cannot be written. `context` is borrowed; null for none.
  ///
  /// QUIRK: the handler's order flag has no effect here.
  void traverse(std::string& xml, XmlTraverseHandler& traverseHandler, bool create = false, bool keep = false,
                ZqXMLContextInfo* context = nullptr);

  /// Folds the set fields of `source` into `destination`, which is of the same class: true; false, and
  /// nothing is changed, when it is not or there is no class.
  ///
  /// Numbers, texts, byte strings and passwords of the source win. List elements go behind those of the
  /// destination, equal ones too. A sub-object set in both is merged, one set in the source alone is copied.
  /// What is not set in the source stays as it is in the destination. QUIRK: maps, ulonglong, and lists of
  /// uint, ulonglong, bool, enumerations and byte strings are not merged.
  ///
  /// The source is not changed. It may be the destination itself, but no part of it.
  static bool merge(XNMessageBase& source, XNMessageBase& destination);

  void visit(MsgFieldContext& context) override;

 private:
  template <class Mode>
  friend class ObjectWalk;

  /// Walk one object of the class; true when a value in it or below it was replaced.
  bool traverseHelper(XNMessageBase& msg, const _ClassDef*& classDef, bool create, bool keep,
                      const FieldDefTraverseInfo* parent);
  bool traverseByOrderHelper(XNMessageBase& msg, const _ClassDef*& classDef, bool create, bool keep,
                             const FieldDefTraverseInfo* parent);
  bool existsInProcessingStack(const char* className) const;

  XmlTraverseHandler* handler = nullptr;
  /// The innermost class being walked in plain mode; null between walks.
  const ProcessedClass* processingStack = nullptr;
};

}  // namespace zqxml
