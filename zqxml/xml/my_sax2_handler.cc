#include <zqxml/catalogue/name_hash.h>
#include <zqxml/message/internal/nesting_limit.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/internal/message_reader.h>
#include <zqxml/xml/internal/my_sax2_handler_target.h>
#include <zqxml/xml/my_sax2_handler.h>

#include <cstddef>
#include <string_view>
#include <vector>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>

namespace zqxml {
namespace {

/// The local name, or the qualified one where the parser does not look at namespaces.
std::u16string_view nameOf(const XMLCh* localname, const XMLCh* qname) {
  return internal::viewOf(localname != nullptr && *localname != 0 ? localname : qname);
}

}  // namespace

struct MySAX2Handler::State {
  explicit State(XNMessageBase* root) : reader(root, static_cast<std::size_t>(NestingLimit::get())) {}

  MessageReader reader;
  std::vector<AttributeView> attributes;  // reused from element to element
};

MessageReader& messageReaderOf(MySAX2Handler& handler) {
  return handler.state_->reader;
}

MySAX2Handler::MySAX2Handler() : MySAX2Handler(nullptr) {}
MySAX2Handler::MySAX2Handler(XNMessageBase* object) : state_(std::make_unique<State>(object)) {}
MySAX2Handler::~MySAX2Handler() = default;

std::uint32_t MySAX2Handler::getHash(const char* text, unsigned long long length) {
  return text == nullptr ? 0 : nameHash(std::string_view(text, length));
}

XNMessageBase* MySAX2Handler::getMainObject() {
  return state_->reader.root();
}

XNMessageBase* MySAX2Handler::finish() {
  state_->reader.finish();
  return getMainObject();
}

void MySAX2Handler::setContextInfo(ZqXMLContextInfo* context) {
  state_->reader.setContextInfo(context);
}

void MySAX2Handler::setEncodingFlags(EncodingFlags& flags) {
  state_->reader.setEncodingFlags(flags);
}

void MySAX2Handler::startElement(const XMLCh*, const XMLCh* localname, const XMLCh* qname,
                                 const xercesc::Attributes& attributes) {
  const XMLSize_t count = attributes.getLength();
  state_->attributes.clear();
  for (XMLSize_t i = 0; i < count; ++i) {
    // The qualified name is put together when it is asked for.
    std::u16string_view name = attributes.getLocalName(i);
    if (name.empty()) name = attributes.getQName(i);
    state_->attributes.push_back({name, attributes.getValue(i)});
  }
  state_->reader.start(nameOf(localname, qname), MessageReader::AttributeViews(state_->attributes));
}

void MySAX2Handler::endElement(const XMLCh*, const XMLCh* localname, const XMLCh* qname) {
  state_->reader.end(nameOf(localname, qname));
}

void MySAX2Handler::fatalError(const xercesc::SAXParseException& error) {
  throw xercesc::SAXParseException(error.getMessage(), error.getPublicId(), error.getSystemId(),
                                   error.getLineNumber(), error.getColumnNumber());
}

void MySAX2Handler::characters(const XMLCh* chars, XMLSize_t length) {
  state_->reader.characters({chars, length});
}

}  // namespace zqxml
