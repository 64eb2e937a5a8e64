// DomSink: builds a Xerces-C DOM tree from a walk (xml_walk.h). Not installed.
#pragma once

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

  DomSink(XMLSerializer& serializer, xercesc::DOMDocument& document)
      : serializer_(serializer), document_(&document) {}

  WideText& text() { return text_; }

  void scalar(Node parent, const Name& name) {
    XMLSerializerAccess::writeNodeToXML(serializer_, document_, parent, name.c_str(), text_.c_str());
  }
  void cdata(Node parent, const Name& name) {
    XMLSerializerAccess::writeAsCDATA(serializer_, document_, parent, name.c_str(), text_.c_str());
  }
  Node element(Node parent, const Name& name) {
    try {
      const Node child = document_->createElement(name.c_str());
      parent->appendChild(child);
      return child;
    } catch (...) {
      return nullptr;
    }
  }
  void entryValue(Node entry) {
    XMLSerializerAccess::writeListNodeToXML(serializer_, document_, entry, kValName, text_.c_str());
  }
  void entryCdata(Node entry) {
    XMLSerializerAccess::writeListNodeAsCDATA(serializer_, document_, entry, kValName, text_.c_str());
  }
  bool mapEntry(Node parent, const Name& name, Node& key, Node& value) {
    Node entry = nullptr;
    return XMLSerializerAccess::constructMapElements(serializer_, document_, parent, entry, key, value,
                                                     name.c_str());
  }

 private:
  XMLSerializer& serializer_;
  xercesc::DOMDocument* document_;
  WideText text_;
};

}  // namespace zqxml
