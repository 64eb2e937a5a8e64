#include "xml_tree.h"

#include <algorithm>
#include <utility>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLGrammarPoolImpl.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "catalogue_xsd.h"
#include "text_positions.h"

namespace zqxml::zqcatc {

namespace xc = xercesc;

namespace {

std::string utf8(const XMLCh* text) {
  const xc::TranscodeToStr converted(text, "UTF-8");
  return {reinterpret_cast<const char*>(converted.str()), static_cast<std::size_t>(converted.length())};
}

/// Thrown out of the handler to end a parse after an error that was reported.
struct StopParse {};

class Session {
 public:
  Session() { xc::XMLPlatformUtils::Initialize(); }
  ~Session() { xc::XMLPlatformUtils::Terminate(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
};

class TreeHandler : public xc::DefaultHandler {
 public:
  TreeHandler(const SchemaSource& source, Diagnostics& diagnostics)
      : positions_(source.path, source.text), diagnostics_(diagnostics) {}

  bool failed() const { return errors_ != 0; }
  Element takeRoot() { return root_.has_value() ? std::move(*root_) : Element{}; }

  void setDocumentLocator(const xc::Locator* locator) override { locator_ = locator; }

  void startElement(const XMLCh*, const XMLCh* localName, const XMLCh*,
                    const xc::Attributes& attributes) override {
    const std::size_t tag = positions_.tagStart(current());
    if (open_.size() >= static_cast<std::size_t>(SchemaParser::kMaxDepth)) {
      report(positions_.position(tag),
             "elements are nested too deeply; see docs/schema.md for the form of a file");
      throw StopParse();
    }
    Element element;
    element.name = utf8(localName);
    element.position = positions_.position(tag);
    // The parser gives the attributes in the order of the text, without those that declare a namespace.
    const std::vector<TextPositions::AttributeName> names = positions_.attributes(tag);
    auto next = names.begin();
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
      std::string name = utf8(attributes.getQName(i));
      while (next != names.end() && next->name != name) ++next;
      const std::size_t at = next == names.end() ? tag : next->offset;
      element.attributes.push_back({std::move(name), utf8(attributes.getValue(i)), positions_.position(at)});
    }
    open_.push_back(std::move(element));
  }

  void endElement(const XMLCh*, const XMLCh*, const XMLCh*) override {
    Element done = std::move(open_.back());
    open_.pop_back();
    if (open_.empty()) {
      root_ = std::move(done);
    } else {
      open_.back().children.push_back(std::move(done));
    }
  }

  void characters(const XMLCh* chars, XMLSize_t) override {
    if (!open_.empty()) open_.back().text += utf8(chars);
  }

  void startDTD(const XMLCh*, const XMLCh*, const XMLCh*) override {
    report(positions_.position(current()),
           "a document type is not allowed in a schema file; remove <!DOCTYPE ...>");
    throw StopParse();
  }

  void warning(const xc::SAXParseException& exception) override { take(exception); }
  void error(const xc::SAXParseException& exception) override { take(exception); }
  void fatalError(const xc::SAXParseException& exception) override {
    take(exception);
    throw StopParse();
  }

  void report(const Position& position, std::string text) {
    diagnostics_.error(position, std::move(text));
    if (++errors_ >= SchemaParser::kMaxErrorsPerFile) throw StopParse();
  }

  Position start() const { return positions_.position(0); }

 private:
  std::size_t current() const {
    return locator_ == nullptr ? 0
                               : positions_.offset(locator_->getLineNumber(), locator_->getColumnNumber());
  }

  void take(const xc::SAXParseException& exception) {
    const std::size_t at = positions_.offset(exception.getLineNumber(), exception.getColumnNumber());
    report(positions_.position(positions_.tagStart(at)),
           cat(utf8(exception.getMessage()), "; docs/schema.md shows the form of a schema file"));
  }

  TextPositions positions_;
  Diagnostics& diagnostics_;
  const xc::Locator* locator_ = nullptr;
  std::vector<Element> open_;
  std::optional<Element> root_;
  int errors_ = 0;
};

}  // namespace

const Attribute* Element::find(std::string_view attribute) const {
  const auto found = std::find_if(attributes.begin(), attributes.end(),
                                  [&](const Attribute& a) { return a.name == attribute; });
  return found == attributes.end() ? nullptr : &*found;
}

const std::string& Element::value(std::string_view attribute) const {
  static const std::string kNothing;
  const Attribute* found = find(attribute);
  return found == nullptr ? kNothing : found->value;
}

Position Element::at(std::string_view attribute) const {
  const Attribute* found = find(attribute);
  return found == nullptr ? position : found->position;
}

const Element* Element::child(std::string_view wanted) const {
  const auto found =
      std::find_if(children.begin(), children.end(), [&](const Element& e) { return e.name == wanted; });
  return found == children.end() ? nullptr : &*found;
}

class SchemaParser::Implementation {
 public:
  Implementation() : pool_(std::make_unique<xc::XMLGrammarPoolImpl>()) {
    reader_.reset(xc::XMLReaderFactory::createXMLReader(xc::XMLPlatformUtils::fgMemoryManager, pool_.get()));
    const auto feature = [this](const XMLCh* name, bool on) { reader_->setFeature(name, on); };
    feature(xc::XMLUni::fgSAX2CoreNameSpaces, true);
    feature(xc::XMLUni::fgSAX2CoreValidation, true);
    feature(xc::XMLUni::fgXercesDynamic, false);
    feature(xc::XMLUni::fgXercesSchema, true);
    feature(xc::XMLUni::fgXercesLoadExternalDTD, false);
    feature(xc::XMLUni::fgXercesDisableDefaultEntityResolution, true);
    reader_->setProperty(xc::XMLUni::fgXercesSecurityManager, &security_);
    security_.setEntityExpansionLimit(0);

    const xc::MemBufInputSource xsd(reinterpret_cast<const XMLByte*>(kCatalogueXsd.data()),
                                    kCatalogueXsd.size(), "catalogue.xsd");
    reader_->loadGrammar(xsd, xc::Grammar::SchemaGrammarType, true);
    pool_->lockPool();
    feature(xc::XMLUni::fgXercesUseCachedGrammarInParse, true);
    feature(xc::XMLUni::fgXercesLoadSchema, false);
  }

  void parse(const SchemaSource& source, TreeHandler& handler) {
    xc::MemBufInputSource input(reinterpret_cast<const XMLByte*>(source.text.data()), source.text.size(),
                                source.path.c_str());
    input.setCopyBufToStream(false);
    input.setEncoding(xc::XMLUni::fgUTF8EncodingString);
    reader_->setContentHandler(&handler);
    reader_->setLexicalHandler(&handler);
    reader_->setErrorHandler(&handler);
    reader_->parse(input);
  }

 private:
  Session session_;
  std::unique_ptr<xc::XMLGrammarPoolImpl> pool_;
  xc::SecurityManager security_;
  std::unique_ptr<xc::SAX2XMLReader> reader_;
};

SchemaParser::SchemaParser() : implementation_(std::make_unique<Implementation>()) {}
SchemaParser::~SchemaParser() = default;

std::optional<Element> SchemaParser::parse(const SchemaSource& source, Diagnostics& diagnostics) {
  TreeHandler handler(source, diagnostics);
  if (source.text.size() > kMaxFileBytes) {
    diagnostics.error({source.path}, cat("the file is larger than ", kMaxFileBytes >> 20,
                                         " MiB; split its subsystem into a file and extensions"));
    return std::nullopt;
  }
  try {
    implementation_->parse(source, handler);
  } catch (const StopParse&) {
    return std::nullopt;
  } catch (const xc::XMLException& exception) {
    diagnostics.error(handler.start(), cat("the XML parser gave up: ", utf8(exception.getMessage())));
    return std::nullopt;
  } catch (const xc::SAXException& exception) {
    diagnostics.error(handler.start(), cat("the XML parser gave up: ", utf8(exception.getMessage())));
    return std::nullopt;
  }
  if (handler.failed()) return std::nullopt;
  return handler.takeRoot();
}

}  // namespace zqxml::zqcatc
