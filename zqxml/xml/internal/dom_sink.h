// DomSink: builds a Xerces-C DOM tree from a walk (xml_walk.h). Not installed.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/xml/internal/wide_text.h>
#include <zqxml/xml/internal/xml_names.h>
#include <zqxml/xml/internal/xml_serializer_access.h>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace zqxml {

/// Owns nothing: the document belongs to the caller, and every element to the document.
class DomSink {
 public:
  using Node = xercesc::DOMElement*;
  using Name = WideName;
  struct Entry {
    Node key = nullptr;
    Node value = nullptr;
    bool complete = false;
    explicit operator bool() const { return complete; }
  };

  DomSink(XMLSerializer& serializer, xercesc::DOMDocument& document)
      : serializer_(serializer), document_(&document) {}

  static constexpr bool kMayGiveUp = false;

  /// In declared order; the document sorts the attributes itself.
  static const _ClassDef& fields(const XNMessageBase&, const _ClassDef& classDef) { return classDef; }
  static const FieldDef& field(const FieldDef& field) { return field; }
  static WideName name(const FieldDef& field) { return WideName(field.getName()); }

  template <class Value>
  void scalar(Node parent, const Name& name, Value value) {
    text_.assign(value);
    XMLSerializerAccess::writeNodeToXML(serializer_, document_, parent, name.c_str(), text_.c_str());
  }
  template <class Value>
  void cdata(Node parent, const Name& name, Value value) {
    text_.assign(value);
    XMLSerializerAccess::writeAsCDATA(serializer_, document_, parent, name.c_str(), text_.c_str());
  }
  Node element(Node parent, const Name& name) {
    try {
      Node child = document_->createElement(name.c_str());
      parent->appendChild(child);
      return child;
    } catch (...) {
      return nullptr;
    }
  }
  template <class Value>
  void entryValue(Node entry, Value value) {
    text_.assign(value);
    XMLSerializerAccess::writeListNodeToXML(serializer_, document_, entry, kValName, text_.c_str());
  }
  template <class Value>
  void entryCdata(Node entry, Value value) {
    text_.assign(value);
    XMLSerializerAccess::writeListNodeAsCDATA(serializer_, document_, entry, kValName, text_.c_str());
  }
  Entry mapEntry(Node parent, const Name& name) {
    Entry made;
    Node entry = nullptr;
    made.complete = XMLSerializerAccess::constructMapElements(serializer_, document_, parent, entry, made.key,
                                                              made.value, name.c_str());
    return made;
  }
  static Node mapKey(const Entry& entry) { return entry.key; }
  static Node mapValue(const Entry& entry) { return entry.value; }
  static void end(Node) {}
  static void endEntry(const Entry&) {}

 private:
  XMLSerializer& serializer_;
  xercesc::DOMDocument* document_;
  WideText text_;
};

}  // namespace zqxml
