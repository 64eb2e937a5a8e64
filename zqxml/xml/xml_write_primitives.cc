// The writer's primitives: how one value, list entry, map entry becomes nodes of a DOM document.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/xml/internal/dom_sink.h>
#include <zqxml/xml/internal/wide_text.h>
#include <zqxml/xml/internal/xml_names.h>
#include <zqxml/xml/internal/xml_walk.h>
#include <zqxml/xml/xml_serializer.h>

#include <string_view>
#include <utility>
#include <xercesc/dom/DOMCDATASection.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMText.hpp>

namespace zqxml {
namespace {

/// Runs `write` unless an argument is null. Whatever the XML library throws costs the node, and a line.
template <class Write>
void writeTag(const char* function, const char16_t* tag, bool argumentsGiven, Write write) {
  if (!argumentsGiven) return;
  try {
    write();
  } catch (...) {
    logError(function, "Exception occurred while constructing tag : [%s]", tag);
  }
}

xercesc::DOMElement* appendElement(xercesc::DOMDocument* doc, xercesc::DOMElement* parent,
                                   const char16_t* tag) {
  xercesc::DOMElement* element = doc->createElement(tag);
  parent->appendChild(element);
  return element;
}

}  // namespace

void XMLSerializer::serializeXMLRecur(XNMessageBase& msg, xercesc::DOMDocument* doc,
                                      xercesc::DOMElement* element, int version) {
  if (doc == nullptr || element == nullptr)
    return logError("XMLSerializer::serializeXMLRecur", "Received NULL document");
  DomSink sink(*this, *doc);
  XmlWalk<DomSink>(sink, XmlWalkCall{flags_, context_, version}).writeFields(msg, element);
}

void XMLSerializer::writeNodeToXML(xercesc::DOMDocument* doc, xercesc::DOMElement* parent,
                                   const char16_t* tag, const char16_t* value) {
  writeTag("XMLSerializer::writeNodeToXML", tag, doc && parent && tag && value, [&] {
    if (flags_.useElements) {
      xercesc::DOMElement* element = appendElement(doc, parent, tag);
      element->appendChild(doc->createTextNode(value));
    } else {
      parent->setAttribute(tag, value);
    }
  });
}

void XMLSerializer::writeListNodeToXML(xercesc::DOMDocument* doc, xercesc::DOMElement* entry,
                                       const char16_t* tag, const char16_t* value) {
  writeTag("XMLSerializer::writeListNodeToXML", tag, doc && entry && tag && value, [&] {
    if (flags_.useElements) {
      entry->appendChild(doc->createTextNode(value));
    } else {
      entry->setAttribute(tag, value);
    }
  });
}

void XMLSerializer::writeAsCDATA(xercesc::DOMDocument* doc, xercesc::DOMElement* parent, const char16_t* tag,
                                 const char16_t* value) {
  writeTag("XMLSerializer::writeAsCDATA", tag, doc && parent && tag && value, [&] {
    xercesc::DOMElement* element = appendElement(doc, parent, tag);
    element->appendChild(doc->createCDATASection(value));
  });
}

void XMLSerializer::writeListNodeAsCDATA(xercesc::DOMDocument* doc, xercesc::DOMElement* entry,
                                         const char16_t* tag, const char16_t* value) {
  writeTag("XMLSerializer::writeListNodeAsCDATA", tag, doc && entry && value,
           [&] { entry->appendChild(doc->createCDATASection(value)); });
}

void XMLSerializer::writeStringToXML(xercesc::DOMDocument* doc, xercesc::DOMElement* parent, std::string tag,
                                     std::string value, bool asCDATA) {
  const WideName wideTag(tag.c_str());
  WideText text;
  text.assign(TextValue<char>{value, asCDATA});
  if (asCDATA) {
    writeAsCDATA(doc, parent, wideTag.c_str(), text.c_str());
  } else {
    writeNodeToXML(doc, parent, wideTag.c_str(), text.c_str());
  }
}

bool XMLSerializer::constructMapElements(xercesc::DOMDocument* doc, xercesc::DOMElement* parent,
                                         xercesc::DOMElement*& entry, xercesc::DOMElement*& keyNode,
                                         xercesc::DOMElement*& valueNode, const char16_t* name) {
  entry = keyNode = valueNode = nullptr;
  try {
    entry = doc->createElement(name);
    keyNode = appendElement(doc, entry, kMapKeyName);
    valueNode = appendElement(doc, entry, kMapValueName);
    parent->appendChild(entry);
    return true;
  } catch (...) {
    logError("XMLSerializer::constructMapElements", "Error constructing map object [%s].", name);
    return false;
  }
}

}  // namespace zqxml
