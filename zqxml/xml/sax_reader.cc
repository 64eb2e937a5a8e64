#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/internal/my_sax2_handler_target.h>
#include <zqxml/xml/internal/parse_arena.h>
#include <zqxml/xml/internal/sax_reader.h>
#include <zqxml/xml/my_sax2_handler.h>

#include <string>
#include <utility>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/schema/SchemaSymbols.hpp>

namespace zqxml {

using internal::viewOf;
using xercesc::XMLUni;

namespace {

/// A name with its hash, in one pass over one that is ASCII.
NameView<char16_t> nameAt(const XMLCh* text) {
  std::uint32_t hash = 0;
  const XMLCh* at = text;
  for (; *at != 0; ++at) {
    if (*at > 0x7f) return {text};
    hash = hash * 31 + *at;
  }
  return {{text, static_cast<std::size_t>(at - text)}, hash & 0xffffff};
}

}  // namespace

SaxReader::SaxReader(ParseArena& memory, bool namespaces)
    : SAX2XMLReaderImpl(&memory), memory_(memory), namespaces_(namespaces) {
  setFeature(XMLUni::fgSAX2CoreValidation, false);
  setFeature(XMLUni::fgXercesLoadExternalDTD, false);
  if (!namespaces) {
    for (const XMLCh* feature :
         {XMLUni::fgSAX2CoreNameSpaces, XMLUni::fgXercesSchema, XMLUni::fgXercesDynamic,
          XMLUni::fgSAX2CoreNameSpacePrefixes, XMLUni::fgXercesSchemaFullChecking})
      setFeature(feature, false);
  }
  // No entity is expanded; that closes the entity bomb.
  security_.setEntityExpansionLimit(0);
  setProperty(XMLUni::fgXercesSecurityManager, &security_);
  setEntityResolver(nullptr);
  // Without these two, external parameter entities and the schemas that xsi:schemaLocation names are fetched.
  setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
  setFeature(XMLUni::fgXercesLoadSchema, false);
}

void SaxReader::attach(MySAX2Handler& handler) {
  target_ = &messageReaderOf(handler);
  setContentHandler(&place_);
  setErrorHandler(&handler);
  setDTDHandler(&handler);  // for resetDocType, which the scanner then calls
  declaration_ = nullptr;
  depth_ = 0;
  text_ = {};
  line_ = 1;
  lineStart_ = 0;
  looked_ = 0;
  likeNew_ = true;
}

void SaxReader::detach() {
  place_.locator = nullptr;
  setContentHandler(nullptr);
  setErrorHandler(nullptr);
  setDTDHandler(nullptr);
  target_ = nullptr;
}

void SaxReader::startElement(const xercesc::XMLElementDecl& declaration, unsigned, const XMLCh*,
                             const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count,
                             bool isEmpty, bool) {
  attributes_.clear();
  for (XMLSize_t i = 0; i < count; ++i) {
    const xercesc::XMLAttr& attribute = *attributes.elementAt(i);
    const std::u16string_view value = viewOf(attribute.getValue());
    if (!attribute.getSpecified()) chargeDefault(value);
    if (namespaces_ && isDeclaration(attribute)) {
      if (value == xercesc::SchemaSymbols::fgURI_XSI) likeNew_ = false;
    } else {
      const XMLCh* const local = attribute.getName();
      attributes_.push_back({nameAt(*local != 0 ? local : attribute.getQName()), value});
    }
  }
  run_ = declaration_ == &declaration && runDepth_ == depth_ ? run_ + 1 : 1;
  runDepth_ = depth_;
  target_->start(nameOf(declaration), MessageReader::AttributeViews(attributes_),
                 run_ == kRun ? alikeBehind(declaration) : 0);
  if (isEmpty)
    target_->end(name_);
  else
    ++depth_;
}

void SaxReader::endElement(const xercesc::XMLElementDecl& declaration, unsigned, bool, const XMLCh*) {
  target_->end(nameOf(declaration));
  --depth_;
}

void SaxReader::docCharacters(const XMLCh* text, XMLSize_t length, bool) {
  target_->characters({text, length});
}

void SaxReader::XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                        const XMLCh* actualEncoding) {
  // The scanner remembers the version, also for a text that says none.
  if (viewOf(version) != XMLUni::fgVersion1_0) likeNew_ = false;
  SAX2XMLReaderImpl::XMLDecl(version, encoding, standalone, actualEncoding);
}

void SaxReader::resetDocType() {
  likeNew_ = false;
  SAX2XMLReaderImpl::resetDocType();
}

void SaxReader::error(unsigned code, const XMLCh* domain, ErrTypes type, const XMLCh* text,
                      const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line, XMLFileLoc column) {
  likeNew_ = false;
  SAX2XMLReaderImpl::error(code, domain, type, text, systemId, publicId, line, column);
}

/// A document type gives an attribute to every element of a name, each of which stands in the text with a few
/// bytes: what all of them bring is limited like the memory of the parse, and throws like it.
void SaxReader::chargeDefault(std::u16string_view value) {
  memory_.charge(sizeof(AttributeView) + value.size() * sizeof(XMLCh));
}

/// The local name, or all of it where prefixes are part of plain names.
const NameView<char16_t>& SaxReader::nameOf(const xercesc::XMLElementDecl& declaration) {
  // There is one declaration for all elements of a name, and it lives as long as the parse.
  if (std::exchange(declaration_, &declaration) != &declaration) {
    const xercesc::QName& name = *declaration.getElementName();
    name_ = nameAt(namespaces_ ? name.getLocalPart() : name.getRawName());
  }
  return name_;
}

/// How many elements of that name follow, without any other between them, as far as the text shows without
/// being parsed: where it does not, a list only grows as it would have.
std::size_t SaxReader::alikeBehind(const xercesc::XMLElementDecl& declaration) {
  for (; line_ < place_.locator->getLineNumber(); ++line_) {
    const std::size_t end = text_.find('\n', lineStart_);
    if (end == text_.npos) {
      text_ = {};  // its lines end in another way, and nothing in it is where it seems
      return 0;
    }
    lineStart_ = end + 1;
  }
  const std::string name = internal::utf8Of(declaration.getFullName());
  const auto begins = [&name](std::string_view tag) {
    return tag.starts_with(name) && tag.find_first_of(" />\t\r\n", name.size()) == name.size();
  };
  std::size_t count = 0;
  // Columns are units of UTF-16: behind other characters than ASCII this lies too early in the text.
  std::size_t at = lineStart_ + static_cast<std::size_t>(place_.locator->getColumnNumber()) - 1;
  if (at < looked_) return 0;
  for (at = text_.find('<', at); at != text_.npos; at = text_.find('<', at + 1)) {
    const std::string_view tag = text_.substr(at + 1, name.size() + 2);
    if (begins(tag))
      ++count;
    else if (!tag.starts_with('/') || !begins(tag.substr(1)))
      break;
  }
  looked_ = at;
  return count;
}

/// Whether it is "xmlns" or has that prefix.
bool SaxReader::isDeclaration(const xercesc::XMLAttr& attribute) const {
  const XMLCh* const prefix = attribute.getPrefix();
  const XMLCh* const name = *prefix != 0 ? prefix : attribute.getName();
  return *name == u'x' && viewOf(name) == XMLUni::fgXMLNSString;
}

}  // namespace zqxml
