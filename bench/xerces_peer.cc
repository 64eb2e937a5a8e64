#include <bench/xerces_peer.h>

#include <charconv>
#include <cstdio>
#include <memory>
#include <string_view>
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

/// The texts of these messages are ASCII, but for one that is wide from the start.
std::u16string wide(std::string_view text) {
  return std::u16string(text.begin(), text.end());
}
template <class Integer>
std::u16string wideNumber(Integer value) {
  char digits[24];
  return wide(std::string_view(
      digits, static_cast<std::size_t>(std::to_chars(digits, digits + 24, value).ptr - digits)));
}
std::u16string wideDouble(double value) {
  char digits[32];
  return wide(
      std::string_view(digits, static_cast<std::size_t>(std::snprintf(digits, sizeof digits, "%g", value))));
}
std::u16string wideBase64(const std::string& bytes) {
  XMLSize_t length = 0;
  XMLByte* encoded =
      xercesc::Base64::encode(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), &length);
  std::u16string text;
  for (XMLSize_t i = 0; i < length; ++i)
    if (encoded[i] != '\n') text += static_cast<char16_t>(encoded[i]);
  xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(encoded);
  return text;
}

/// Names in the form that the DOM takes, made once.
template <std::size_t N>
std::array<std::u16string, N> wideNames(const std::array<const char*, N>& names) {
  std::array<std::u16string, N> result;
  for (std::size_t i = 0; i < N; ++i) result[i] = wide(names[i]);
  return result;
}

void write(DOMElement* element, const JobEntry& entry) {
  element->setAttribute(u"id", wideNumber(entry.id).c_str());
  element->setAttribute(u"client", wide(entry.client).c_str());
  element->setAttribute(u"path", wide(entry.path).c_str());
  element->setAttribute(u"policy", wide(entry.policy).c_str());
  element->setAttribute(u"size", wideNumber(entry.size).c_str());
  element->setAttribute(u"start", wideNumber(entry.start).c_str());
  element->setAttribute(u"state", wideNumber(entry.state).c_str());
}

DOMElement* append(DOMDocument* document, DOMElement* parent, const char16_t* name) {
  DOMElement* element = document->createElement(name);
  parent->appendChild(element);
  return element;
}

void writeScalars(DOMElement* root, const JobReport& report) {
  static const auto texts = wideNames(kTextNames);
  static const auto counts = wideNames(kCountNames);
  static const auto totals = wideNames(kTotalNames);
  static const auto marks = wideNames(kMarkNames);
  static const auto rates = wideNames(kRateNames);
  for (std::size_t i = 0; i < texts.size(); ++i)
    root->setAttribute(texts[i].c_str(), wide(report.texts[i]).c_str());
  root->setAttribute(u"comment", report.comment.c_str());
  for (std::size_t i = 0; i < counts.size(); ++i)
    root->setAttribute(counts[i].c_str(), wideNumber(report.counts[i]).c_str());
  for (std::size_t i = 0; i < totals.size(); ++i)
    root->setAttribute(totals[i].c_str(), wideNumber(report.totals[i]).c_str());
  for (std::size_t i = 0; i < marks.size(); ++i)
    root->setAttribute(marks[i].c_str(), report.marks[i] ? u"1" : u"0");
  for (std::size_t i = 0; i < rates.size(); ++i)
    root->setAttribute(rates[i].c_str(), wideDouble(report.rates[i]).c_str());
  root->setAttribute(u"kind", wideNumber(report.kind).c_str());
  root->setAttribute(u"order", wideNumber(report.order).c_str());
  root->setAttribute(u"flags", wideNumber(report.flags).c_str());
  root->setAttribute(u"startTime", wideNumber(report.startTime).c_str());
  root->setAttribute(u"endTime", wideNumber(report.endTime).c_str());
  root->setAttribute(u"generatedAt", wideNumber(report.generatedAt).c_str());
  root->setAttribute(u"digest", wideBase64(report.digest).c_str());
}

void write(DOMDocument* document, DOMElement* root, const JobReport& report) {
  writeScalars(root, report);
  write(append(document, root, u"largestJob"), report.largestJob);
  write(append(document, root, u"oldestJob"), report.oldestJob);
  for (const JobEntry& entry : report.jobs) write(append(document, root, u"jobs"), entry);
  for (const std::int32_t count : report.phaseCounts)
    append(document, root, u"phaseCounts")->setAttribute(u"val", wideNumber(count).c_str());
  for (const std::int64_t size : report.sizes)
    append(document, root, u"sizes")->setAttribute(u"val", wideNumber(size).c_str());
  for (const std::string& client : report.clients)
    append(document, root, u"clients")->setAttribute(u"val", wide(client).c_str());
  for (const std::string& tag : report.tags)
    append(document, root, u"tags")->setAttribute(u"val", wide(tag).c_str());
  for (const auto& [client, bytes] : report.bytesByClient) {
    DOMElement* entry = append(document, root, u"bytesByClient");
    append(document, entry, u"__mapKey__")->setAttribute(u"val", wide(client).c_str());
    append(document, entry, u"__mapValue__")->setAttribute(u"val", wideNumber(bytes).c_str());
  }
}

/// Makes a document of that root, lets `build` fill it, and writes it.
template <class Build>
std::string written(const char16_t* rootName, Build build) {
  xercesc::DOMImplementation* implementation =
      xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
  const std::unique_ptr<DOMDocument, Release> document(
      implementation->createDocument(nullptr, rootName, nullptr));
  build(document.get(), document->getDocumentElement());
  const std::unique_ptr<xercesc::DOMLSSerializer, Release> serializer(implementation->createLSSerializer());
  const std::unique_ptr<xercesc::DOMLSOutput, Release> output(implementation->createLSOutput());
  xercesc::MemBufFormatTarget target;
  serializer->setNewLine(u"\n");
  output->setEncoding(u"UTF-8");
  output->setByteStream(&target);
  serializer->write(document.get(), output.get());
  return std::string(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen());
}

}  // namespace

std::string writtenByHand(const JobEntry& entry) {
  return written(u"Bench_JobEntry", [&](DOMDocument*, DOMElement* root) { write(root, entry); });
}

std::string writtenByHand(const JobReport& report) {
  return written(u"Bench_JobReport",
                 [&](DOMDocument* document, DOMElement* root) { write(document, root, report); });
}

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
