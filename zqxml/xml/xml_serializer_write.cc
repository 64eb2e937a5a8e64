// The writer's entry points: from a message to a DOM document, and from a document to text.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/internal/root_element_name.h>
#include <zqxml/xml/internal/string_format_target.h>
#include <zqxml/xml/internal/wide_text.h>
#include <zqxml/xml/internal/xml_serializer_access.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/internal/xml_text.h>
#include <zqxml/xml/xml_serializer.h>

#include <atomic>
#include <string>
#include <utility>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace zqxml {
namespace {

constexpr int kFormVersion = 2;

/// The library's registry takes a lock of the process and parses the feature's name, so it is known when it
/// gives the library's own implementation; of others, and of one that ended with a start of the library,
/// nothing is known.
xercesc::DOMImplementation* findDomImplementation() {
  static std::atomic<xercesc::DOMImplementation*> known = nullptr;
  xercesc::DOMImplementation* const own = xercesc::DOMImplementation::getImplementation();
  if (own != nullptr && known.load(std::memory_order_acquire) == own) return own;
  xercesc::DOMImplementation* const found = xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
  if (found == own) known.store(found, std::memory_order_release);
  return found;
}

/// Owns the document of one call.
class DocumentHolder {
 public:
  explicit DocumentHolder(const char* function) : function_(function) {}
  ~DocumentHolder() { release(); }
  DocumentHolder(const DocumentHolder&) = delete;
  DocumentHolder& operator=(const DocumentHolder&) = delete;

  xercesc::DOMDocument* get() const { return document_; }
  void reset(xercesc::DOMDocument* document) { document_ = document; }
  void release() noexcept {
    if (document_ == nullptr) return;
    try {
      std::exchange(document_, nullptr)->release();
    } catch (...) {
      logDebug(function_, 15, "Exception releasing DOMDocument.");
    }
  }

 private:
  const char* function_;  ///< whose line it is when the release throws
  xercesc::DOMDocument* document_ = nullptr;
};

/// What two of the bodies say where they differ.
struct BodyTexts {
  const char* function;
  const char* noImplementation;
};
constexpr BodyTexts kUtf8{"XMLSerializer::serialize", "Error initializing xerces library"};
constexpr BodyTexts kUtf16{"XMLSerializer::serializeUTF16", "Error initializing Xerces library"};

/// Builds the document of `msg`. An exception of a listener ends here too.
eXNMsgRet buildDocument(XMLSerializer& serializer, XNMessageBase& msg, int version, const BodyTexts& texts,
                        DocumentHolder& document) {
  xercesc::DOMImplementation* implementation = XMLSerializerAccess::domImplementation();
  if (implementation == nullptr) {
    logError(texts.function, "%s", texts.noImplementation);
    return XN_MSG_FAILED;
  }
  try {
    if (MessageAccess::classDef(msg) != nullptr) {
      const WideName root(rootElementName(msg).c_str());
      document.reset(implementation->createDocument(nullptr, root.c_str(), nullptr));
      XMLSerializerAccess::serializeXMLRecur(serializer, msg, document.get(),
                                             document.get()->getDocumentElement(), version);
      return XN_MSG_OK;
    }
    logError(texts.function, "Error creating XML root node.");
  } catch (const xercesc::DOMException&) {
    logError(texts.function, "Error creating XML root node. ");
  } catch (const xercesc::XMLException&) {
    logError(texts.function, "Error creating XML root node. ");
  } catch (...) {
    logError(texts.function, "Error creating XML root node.");
  }
  return XN_MSG_FAILED;
}

DOMWriter* createWriter(bool pretty) {
  xercesc::DOMImplementation* implementation = XMLSerializerAccess::domImplementation();
  if (implementation == nullptr) return nullptr;
  internal::XercesPtr<DOMWriter> writer(implementation->createLSSerializer());
  writer->setNewLine(u"\n");
  if (pretty) writer->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
  return writer.release();
}

/// The document or its root element as text into `out`. What cannot be written is logged, and what there is
/// is given; on an exception `out` keeps what it held.
template <class Char>
void dumpDocument(std::basic_string<Char>& out, const char* function, DOMWriter* newWriter,
                  const char16_t* encoding, xercesc::DOMDocument* doc, bool rootOnly) {
  const internal::XercesPtr<DOMWriter> writer(newWriter);
  StringFormatTarget<Char> target;
  bool written = false;
  if (xercesc::DOMImplementation* implementation = XMLSerializerAccess::domImplementation();
      writer != nullptr && doc != nullptr && implementation != nullptr) {
    const internal::XercesPtr<xercesc::DOMLSOutput> output(implementation->createLSOutput());
    output->setByteStream(&target);
    output->setEncoding(encoding);
    const xercesc::DOMNode* node = doc;
    if (rootOnly) node = doc->getDocumentElement();
    written = writer->write(node, output.get());
  }
  if (!written) logError(function, "Error Writing Xml to String");
  out = target.text();
}

/// Runs `dump`, and logs what it throws.
template <class Dump>
void guardDump(const char* function, const char* failure, Dump dump) {
  try {
    dump();
  } catch (const xercesc::DOMException&) {
    logError(function, "%s", failure);
  } catch (const xercesc::XMLException&) {
    logError(function, "%s", failure);
  } catch (const xercesc::SAXParseException& error) {
    logError(function, "SAXParseException: %s", error.getMessage());
  } catch (...) {
    logError(function, "Unknown Exception!");
  }
}

/// The three bodies of `serialize`: without a document where that gives the same.
template <class Char>
eXNMsgRet serializeTo(XMLSerializer& serializer, XNMessageBase& msg, int version,
                      std::basic_string<Char>& out, bool rootOnly, const BodyTexts& texts) {
  if (const eXNMsgRet started = XMLSerializerAccess::initialize(); started != XN_MSG_OK) return started;
  if (XmlStartUp::process().fastXml() && XMLSerializerAccess::domImplementation == &findDomImplementation &&
      writeXmlText(msg, XmlWalkCall{serializer.flags(), serializer.context(), version}, rootOnly, out))
    return XN_MSG_OK;
  DocumentHolder document(texts.function);
  const eXNMsgRet built = buildDocument(serializer, msg, version, texts, document);
  if (built == XN_MSG_OK) XMLSerializerAccess::dump(serializer, out, document.get(), rootOnly);
  return built;
}

}  // namespace

XMLSerializerAccess::DomLookUp XMLSerializerAccess::domImplementation = &findDomImplementation;

XMLSerializationSupport* XMLSerializer::getXMLSerializationSupportObject() {
  static XMLSerializationSupport instance;
  return &instance;
}

eXNMsgRet XMLSerializer::serialize(XNMessageBase& msg, std::string& out) {
  return serialize(msg, out, kFormVersion);
}

eXNMsgRet XMLSerializer::serialize(XNMessageBase& msg, std::string& out, int version) {
  return serializeTo(*this, msg, version, out, false, kUtf8);
}

eXNMsgRet XMLSerializer::serialize(XNMessageBase& msg, std::string& out, bool rootOnly) {
  return serializeTo(*this, msg, kFormVersion, out, rootOnly, kUtf8);
}

eXNMsgRet XMLSerializer::serializeUTF16(XNMessageBase& msg, std::u16string& out, bool rootOnly) {
  return serializeTo(*this, msg, kFormVersion, out, rootOnly, kUtf16);
}

DOMWriter* XMLSerializer::DOMCreateAWriterUTF8() {
  return createWriter(flags_.readable);
}

DOMWriter* XMLSerializer::DOMCreateAWriterUTF16() {
  return createWriter(flags_.readable);
}

void XMLSerializer::DumpDOMDocumentToStringUTF8(std::string& out, xercesc::DOMDocument* doc, bool rootOnly) {
  guardDump("XMLEncoder::DOMDumpTostringUTF8", "Error Dumping Xml String from DomTree to String", [&] {
    dumpDocument(out, "XMLSerializer::DumpDOMDocumentToStringUTF8", DOMCreateAWriterUTF8(), u"UTF-8", doc,
                 rootOnly);
  });
}

void XMLSerializer::DumpDOMDocumentToWStringUTF16(std::u16string& out, xercesc::DOMDocument* doc,
                                                  bool rootOnly) {
  guardDump("XMLEncoder::DOMDumpTostringUTF16", "Error Dumping Xml String From DomTree to String", [&] {
    dumpDocument(out, "XMLSerializer::DumpDOMDocumentToWStringUTF16", DOMCreateAWriterUTF16(), u"UTF-16", doc,
                 rootOnly);
  });
}

}  // namespace zqxml
