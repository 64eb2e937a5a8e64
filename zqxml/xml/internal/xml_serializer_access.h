// XMLSerializerAccess: the one way to the writer's and reader's parts of an XMLSerializer, for the library's
// own code and its tests. Not installed.
#pragma once

#include <zqxml/xml/xml_serializer.h>

#include <string>
#include <utility>

XERCES_CPP_NAMESPACE_BEGIN
class DOMImplementation;
XERCES_CPP_NAMESPACE_END

namespace zqxml {

/// Forwards; XMLSerializer documents each operation.
class XMLSerializerAccess {
 public:
  using DomLookUp = xercesc::DOMImplementation* (*)();
  /// Finds the library's implementation of "LS", or null. Tests put a failing one in its place while no other
  /// thread writes.
  static DomLookUp domImplementation;

  static eXNMsgRet initialize() { return XMLSerializer::initialize(); }
  static XMLSerializationSupport* registry() { return XMLSerializer::getXMLSerializationSupportObject(); }

  static void serializeXMLRecur(XMLSerializer& serializer, XNMessageBase& msg, xercesc::DOMDocument* doc,
                                xercesc::DOMElement* element, int version) {
    serializer.serializeXMLRecur(msg, doc, element, version);
  }
  static void writeNodeToXML(XMLSerializer& serializer, xercesc::DOMDocument* doc,
                             xercesc::DOMElement* parent, const char16_t* tag, const char16_t* value) {
    serializer.writeNodeToXML(doc, parent, tag, value);
  }
  static void writeListNodeToXML(XMLSerializer& serializer, xercesc::DOMDocument* doc,
                                 xercesc::DOMElement* entry, const char16_t* tag, const char16_t* value) {
    serializer.writeListNodeToXML(doc, entry, tag, value);
  }
  static void writeAsCDATA(XMLSerializer& serializer, xercesc::DOMDocument* doc, xercesc::DOMElement* parent,
                           const char16_t* tag, const char16_t* value) {
    serializer.writeAsCDATA(doc, parent, tag, value);
  }
  static void writeListNodeAsCDATA(XMLSerializer& serializer, xercesc::DOMDocument* doc,
                                   xercesc::DOMElement* entry, const char16_t* tag, const char16_t* value) {
    serializer.writeListNodeAsCDATA(doc, entry, tag, value);
  }
  static void writeStringToXML(XMLSerializer& serializer, xercesc::DOMDocument* doc,
                               xercesc::DOMElement* parent, std::string tag, std::string value,
                               bool asCDATA) {
    serializer.writeStringToXML(doc, parent, std::move(tag), std::move(value), asCDATA);
  }
  static bool constructMapElements(XMLSerializer& serializer, xercesc::DOMDocument* doc,
                                   xercesc::DOMElement* parent, xercesc::DOMElement*& entry,
                                   xercesc::DOMElement*& keyNode, xercesc::DOMElement*& valueNode,
                                   const char16_t* name) {
    return serializer.constructMapElements(doc, parent, entry, keyNode, valueNode, name);
  }
  static DOMWriter* createWriterUTF8(XMLSerializer& serializer) { return serializer.DOMCreateAWriterUTF8(); }
  static DOMWriter* createWriterUTF16(XMLSerializer& serializer) {
    return serializer.DOMCreateAWriterUTF16();
  }
  static void dump(XMLSerializer& serializer, std::string& out, xercesc::DOMDocument* doc, bool rootOnly) {
    serializer.DumpDOMDocumentToStringUTF8(out, doc, rootOnly);
  }
  static void dump(XMLSerializer& serializer, std::u16string& out, xercesc::DOMDocument* doc, bool rootOnly) {
    serializer.DumpDOMDocumentToWStringUTF16(out, doc, rootOnly);
  }
};

}  // namespace zqxml
