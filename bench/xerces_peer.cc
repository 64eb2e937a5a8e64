#include <bench/xerces_peer.h>

#include <charconv>
#include <concepts>
#include <cstdio>
#include <memory>
#include <string_view>
#include <vector>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/Base64.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace zqxml::bench {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

struct Release {
  template <class T>
  void operator()(T* object) const {
    object->release();
  }
};

/// A name as the source has it, narrow and wide.
struct Name {
  const char* narrow;
  const XMLCh* wide;
};
#define ZQXML_NAME(text) (Name{text, u##text})

/// As the samples of Xerces-C do it: each name and value goes through XMLString::transcode when it is needed.
struct ByTranscoding {
  class Text {
   public:
    explicit Text(const std::string& text) : Text(text.c_str()) {}
    explicit Text(const char* text) : wide_(xercesc::XMLString::transcode(text)) {}
    ~Text() { xercesc::XMLString::release(&wide_); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    const XMLCh* c_str() const { return wide_; }

   private:
    XMLCh* wide_;
  };

  static Text name(const Name& name) { return Text(name.narrow); }
  template <const auto& kNames>
  static Text name(std::size_t i) {
    return Text(kNames[i]);
  }
};

/// As it is done where time counts: names are wide once and for all, and values, which are ASCII here, become
/// wide without a transcoder.
struct WithNamesKept {
  class Text {
   public:
    explicit Text(std::string_view text) : wide_(text.begin(), text.end()) {}

    const XMLCh* c_str() const { return wide_.c_str(); }

   private:
    std::u16string wide_;
  };
  struct KeptName {
    const XMLCh* wide;
    const XMLCh* c_str() const { return wide; }
  };

  static KeptName name(const Name& name) { return {name.wide}; }
  template <const auto& kNames>
  static KeptName name(std::size_t i) {
    static const std::vector<Text> kept(kNames.begin(), kNames.end());
    return {kept[i].c_str()};
  }
};

const std::string& textOf(const std::string& text) {
  return text;
}
const char* textOf(bool mark) {
  return mark ? "1" : "0";
}
std::string textOf(double value) {
  char digits[32];
  return std::string(digits, static_cast<std::size_t>(std::snprintf(digits, sizeof digits, "%g", value)));
}
std::string textOf(std::integral auto value) {
  char digits[24];
  return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}
std::string base64(const std::string& bytes) {
  XMLSize_t length = 0;
  XMLByte* encoded =
      xercesc::Base64::encode(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), &length);
  std::string text(reinterpret_cast<const char*>(encoded), length);
  xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(encoded);
  std::erase(text, '\n');
  return text;
}

/// Builds the tree of a message whose names and values become wide in the way of `Wide`.
template <class Wide>
class TreeBuilder {
 public:
  explicit TreeBuilder(DOMDocument* document) : document_(document) {}

  void fill(DOMElement* element, const JobEntry& entry) {
    set(element, ZQXML_NAME("id"), entry.id);
    set(element, ZQXML_NAME("client"), entry.client);
    set(element, ZQXML_NAME("path"), entry.path);
    set(element, ZQXML_NAME("policy"), entry.policy);
    set(element, ZQXML_NAME("size"), entry.size);
    set(element, ZQXML_NAME("start"), entry.start);
    set(element, ZQXML_NAME("state"), entry.state);
  }

  void fill(DOMElement* root, const JobReport& report) {
    fillScalars(root, report);
    fill(append(root, ZQXML_NAME("largestJob")), report.largestJob);
    fill(append(root, ZQXML_NAME("oldestJob")), report.oldestJob);
    for (const JobEntry& entry : report.jobs) fill(append(root, ZQXML_NAME("jobs")), entry);
    appendAll(root, ZQXML_NAME("phaseCounts"), report.phaseCounts);
    appendAll(root, ZQXML_NAME("sizes"), report.sizes);
    appendAll(root, ZQXML_NAME("clients"), report.clients);
    appendAll(root, ZQXML_NAME("tags"), report.tags);
    for (const auto& [client, bytes] : report.bytesByClient) {
      DOMElement* entry = append(root, ZQXML_NAME("bytesByClient"));
      set(append(entry, ZQXML_NAME("__mapKey__")), ZQXML_NAME("val"), client);
      set(append(entry, ZQXML_NAME("__mapValue__")), ZQXML_NAME("val"), bytes);
    }
  }

 private:
  using Text = typename Wide::Text;

  void fillScalars(DOMElement* root, const JobReport& report) {
    setAll<kTextNames>(root, report.texts);
    root->setAttribute(Wide::name(ZQXML_NAME("comment")).c_str(), report.comment.c_str());
    setAll<kCountNames>(root, report.counts);
    setAll<kTotalNames>(root, report.totals);
    setAll<kMarkNames>(root, report.marks);
    setAll<kRateNames>(root, report.rates);
    set(root, ZQXML_NAME("kind"), report.kind);
    set(root, ZQXML_NAME("order"), report.order);
    set(root, ZQXML_NAME("flags"), report.flags);
    set(root, ZQXML_NAME("startTime"), report.startTime);
    set(root, ZQXML_NAME("endTime"), report.endTime);
    set(root, ZQXML_NAME("generatedAt"), report.generatedAt);
    set(root, ZQXML_NAME("digest"), base64(report.digest));
  }

  template <class Value>
  void set(DOMElement* element, const Name& name, const Value& value) {
    element->setAttribute(Wide::name(name).c_str(), Text(textOf(value)).c_str());
  }
  template <const auto& kNames, class Values>
  void setAll(DOMElement* element, const Values& values) {
    for (std::size_t i = 0; i < kNames.size(); ++i)
      element->setAttribute(Wide::template name<kNames>(i).c_str(), Text(textOf(values[i])).c_str());
  }
  DOMElement* append(DOMElement* parent, const Name& name) {
    DOMElement* element = document_->createElement(Wide::name(name).c_str());
    parent->appendChild(element);
    return element;
  }
  template <class Values>
  void appendAll(DOMElement* parent, const Name& name, const Values& values) {
    for (const auto& value : values) set(append(parent, name), ZQXML_NAME("val"), value);
  }

  DOMDocument* document_;
};

/// Makes a document of that root, fills it, and writes it.
template <class Wide, class Data>
std::string written(const Name& rootName, const Data& data) {
  xercesc::DOMImplementation* implementation =
      xercesc::DOMImplementationRegistry::getDOMImplementation(Wide::name(ZQXML_NAME("LS")).c_str());
  const std::unique_ptr<DOMDocument, Release> document(
      implementation->createDocument(nullptr, Wide::name(rootName).c_str(), nullptr));
  TreeBuilder<Wide>(document.get()).fill(document->getDocumentElement(), data);
  const std::unique_ptr<xercesc::DOMLSSerializer, Release> serializer(implementation->createLSSerializer());
  const std::unique_ptr<xercesc::DOMLSOutput, Release> output(implementation->createLSOutput());
  xercesc::MemBufFormatTarget target;
  serializer->setNewLine(u"\n");
  output->setEncoding(u"UTF-8");
  output->setByteStream(&target);
  serializer->write(document.get(), output.get());
  return std::string(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen());
}

constexpr Name rootName(const JobEntry&) {
  return ZQXML_NAME("Bench_JobEntry");
}
constexpr Name rootName(const JobReport&) {
  return ZQXML_NAME("Bench_JobReport");
}

}  // namespace

template <class Data>
std::string writtenByHand(const Data& data) {
  return written<ByTranscoding>(rootName(data), data);
}
template <class Data>
std::string writtenWithNamesKept(const Data& data) {
  return written<WithNamesKept>(rootName(data), data);
}
template std::string writtenByHand(const JobEntry&);
template std::string writtenByHand(const JobReport&);
template std::string writtenWithNamesKept(const JobEntry&);
template std::string writtenWithNamesKept(const JobReport&);

struct BareReader::Parts {
  xercesc::DefaultHandler handler;
  std::unique_ptr<xercesc::SAX2XMLReader> reader{xercesc::XMLReaderFactory::createXMLReader()};
};

BareReader::BareReader() : parts_(std::make_unique<Parts>()) {
  parts_->reader->setContentHandler(&parts_->handler);
  parts_->reader->setErrorHandler(&parts_->handler);
  parts_->reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
  parts_->reader->setFeature(xercesc::XMLUni::fgXercesLoadExternalDTD, false);
}

BareReader::~BareReader() = default;

void BareReader::parse(const std::string& xml) {
  xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(xml.data()), xml.size(), u"memory");
  source.setCopyBufToStream(false);
  parts_->reader->parse(source);
}

}  // namespace zqxml::bench
