#include "tests/xml/dom_faults.h"

#include <zqxml/xml/internal/xml_serializer_access.h>

#include <stdexcept>
#include <string_view>
#include <utility>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>

namespace zqxml {
namespace {

using namespace std::string_view_literals;
using xercesc::MemoryManager;

DomFault activeFault = DomFault::kNone;
DomException activeException = DomException::kStandard;
bool documentMade = false;
xercesc::DOMDocument* unreleased = nullptr;

[[noreturn]] void throwActive() {
  switch (activeException) {
    case DomException::kDom:
      throw xercesc::DOMException(xercesc::DOMException::INVALID_STATE_ERR, 0);
    case DomException::kXml:
      throw xercesc::RuntimeException(__FILE__, __LINE__, xercesc::XMLExcepts::Gen_UnexpectedEOF,
                                      xercesc::XMLPlatformUtils::fgMemoryManager);
    case DomException::kSaxParse:
      throw xercesc::SAXParseException(u"told", u"", u"", 1, 1);
    case DomException::kStandard:
      break;
  }
  throw std::runtime_error("told");
}

/// Throws when its document is released.
class ReleaseThrows final : public xercesc::DOMUserDataHandler {
 public:
  void handle(DOMOperationType operation, const XMLCh*, void*, const xercesc::DOMNode*,
              xercesc::DOMNode*) override {
    if (operation == NODE_DELETED && activeFault == DomFault::kRelease) throwActive();
  }
};

/// The library's writer, with faults in write.
class FaultyWriter final : public xercesc::DOMLSSerializer {
 public:
  explicit FaultyWriter(xercesc::DOMLSSerializer* real) : real_(real) {}

  xercesc::DOMConfiguration* getDomConfig() override { return real_->getDomConfig(); }
  void setNewLine(const XMLCh* text) override { real_->setNewLine(text); }
  void setFilter(xercesc::DOMLSSerializerFilter* filter) override { real_->setFilter(filter); }
  const XMLCh* getNewLine() const override { return real_->getNewLine(); }
  xercesc::DOMLSSerializerFilter* getFilter() const override { return real_->getFilter(); }
  bool write(const xercesc::DOMNode* node, xercesc::DOMLSOutput* output) override {
    switch (activeFault) {
      case DomFault::kWrite:
        put(output, "half", u"half");
        throwActive();
      case DomFault::kWriteIsFalse:
        put(output, "half", u"half");
        return false;
      case DomFault::kWriteHasNul:
        put(output, "cut\0off"sv, u"cut\0off"sv);
        return true;
      default:
        return real_->write(node, output);
    }
  }
  bool writeToURI(const xercesc::DOMNode* node, const XMLCh* uri) override {
    return real_->writeToURI(node, uri);
  }
  XMLCh* writeToString(const xercesc::DOMNode* node, MemoryManager* manager) override {
    return real_->writeToString(node, manager);
  }
  void release() override {
    real_->release();
    delete this;
  }

 private:
  static void put(xercesc::DOMLSOutput* output, std::string_view narrow, std::u16string_view wide) {
    const bool isWide = std::u16string_view(output->getEncoding()) == u"UTF-16";
    const auto* bytes = isWide ? reinterpret_cast<const XMLByte*>(wide.data())
                               : reinterpret_cast<const XMLByte*>(narrow.data());
    output->getByteStream()->writeChars(bytes, isWide ? wide.size() * 2 : narrow.size(), nullptr);
  }

  xercesc::DOMLSSerializer* real_;
};

/// The library's implementation, with faults in createDocument and in the writers it makes.
class FaultyImplementation final : public xercesc::DOMImplementation {
 public:
  bool hasFeature(const XMLCh* feature, const XMLCh* version) const override {
    return real().hasFeature(feature, version);
  }
  xercesc::DOMDocumentType* createDocumentType(const XMLCh* name, const XMLCh* publicId,
                                               const XMLCh* systemId) override {
    return real().createDocumentType(name, publicId, systemId);
  }
  xercesc::DOMDocument* createDocument(const XMLCh* uri, const XMLCh* name, xercesc::DOMDocumentType* type,
                                       MemoryManager* manager) override {
    documentMade = true;
    if (activeFault == DomFault::kCreateDocument) throwActive();
    xercesc::DOMDocument* document = real().createDocument(uri, name, type, manager);
    if (activeFault == DomFault::kRelease) {
      static ReleaseThrows handler;
      document->setUserData(u"fault", document, &handler);
      unreleased = document;
    }
    return document;
  }
  xercesc::DOMDocument* createDocument(MemoryManager* manager) override {
    return real().createDocument(manager);
  }
  void* getFeature(const XMLCh* feature, const XMLCh* version) const override {
    return real().getFeature(feature, version);
  }
  xercesc::DOMLSParser* createLSParser(const xercesc::DOMImplementationLS::DOMImplementationLSMode mode,
                                       const XMLCh* schemaType, MemoryManager* manager,
                                       xercesc::XMLGrammarPool* pool) override {
    return real().createLSParser(mode, schemaType, manager, pool);
  }
  xercesc::DOMLSSerializer* createLSSerializer(MemoryManager* manager) override {
    return new FaultyWriter(real().createLSSerializer(manager));
  }
  xercesc::DOMLSInput* createLSInput(MemoryManager* manager) override {
    return real().createLSInput(manager);
  }
  xercesc::DOMLSOutput* createLSOutput(MemoryManager* manager) override {
    return real().createLSOutput(manager);
  }

 private:
  static xercesc::DOMImplementation& real() { return *DOMImplementation::getImplementation(); }
};

xercesc::DOMImplementation* faultyImplementation() {
  static FaultyImplementation implementation;
  const bool none = activeFault == DomFault::kNoImplementation ||
                    (activeFault == DomFault::kNoWriterImplementation && documentMade);
  return none ? nullptr : &implementation;
}

XMLSerializerAccess::DomLookUp ownLookUp = nullptr;

}  // namespace

ScopedDomFault::ScopedDomFault(DomFault fault, DomException exception) {
  documentMade = false;
  activeException = exception;
  activeFault = fault;
  ownLookUp = std::exchange(XMLSerializerAccess::domImplementation, &faultyImplementation);
}

ScopedDomFault::~ScopedDomFault() {
  XMLSerializerAccess::domImplementation = ownLookUp;
  activeFault = DomFault::kNone;
  if (unreleased != nullptr) unreleased->release();
  unreleased = nullptr;
}

}  // namespace zqxml
