#include <zqxml/xml/internal/sax_parse.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/my_sax2_handler.h>

#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace zqxml {

using xercesc::XMLUni;

TextSource::TextSource(const void* bytes, std::size_t size)
    : MemBufInputSource(static_cast<const XMLByte*>(bytes), size, u"unknown"), size_(size) {
  setCopyBufToStream(false);
}
TextSource::TextSource(std::string_view text) : TextSource(text.data(), text.size()) {}
TextSource::TextSource(std::u16string_view text) : TextSource(text.data(), text.size() * sizeof(char16_t)) {}

SaxParse::SaxParse(MySAX2Handler& handler, std::size_t inputBytes)
    : memory_(inputBytes), reader_(xercesc::XMLReaderFactory::createXMLReader(&memory_, nullptr)) {
  reader_->setContentHandler(&handler);
  reader_->setErrorHandler(&handler);
  reader_->setFeature(XMLUni::fgSAX2CoreValidation, false);
  reader_->setFeature(XMLUni::fgXercesLoadExternalDTD, false);
  if (XmlStartUp::process().validationDisabled()) {
    for (const XMLCh* feature :
         {XMLUni::fgSAX2CoreNameSpaces, XMLUni::fgXercesSchema, XMLUni::fgXercesDynamic,
          XMLUni::fgSAX2CoreNameSpacePrefixes, XMLUni::fgXercesSchemaFullChecking})
      reader_->setFeature(feature, false);
  }
  // No entity is expanded; that closes the entity bomb.
  security_.setEntityExpansionLimit(0);
  reader_->setProperty(XMLUni::fgXercesSecurityManager, &security_);
  reader_->setEntityResolver(nullptr);
  // Without these two, external parameter entities and the schemas that xsi:schemaLocation names are fetched.
  reader_->setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
  reader_->setFeature(XMLUni::fgXercesLoadSchema, false);
}

}  // namespace zqxml
