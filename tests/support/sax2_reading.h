// Reading XML through SAX2 as Xerces-C has it: a reader of its factory gives its events to a handler. What
// the library's own parses give has to be the same.
#pragma once

#include <tests/support/xml_readings.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/parse_arena.h>
#include <zqxml/xml/my_sax2_handler.h>

#include <exception>
#include <memory>
#include <string>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace zqxml {

/// Gives the events of the text to the handler. Throws what Xerces-C and the handler throw.
inline void parseBySax2(MySAX2Handler& handler, const std::string& xml) {
  using xercesc::XMLUni;
  ParseArena memory(xml.size());
  xercesc::SecurityManager security;
  security.setEntityExpansionLimit(0);
  const std::unique_ptr<xercesc::SAX2XMLReader> reader(
      xercesc::XMLReaderFactory::createXMLReader(&memory, nullptr));
  reader->setContentHandler(&handler);
  reader->setErrorHandler(&handler);
  reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
  reader->setFeature(XMLUni::fgXercesLoadExternalDTD, false);
  reader->setProperty(XMLUni::fgXercesSecurityManager, &security);
  reader->setEntityResolver(nullptr);
  reader->setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
  reader->setFeature(XMLUni::fgXercesLoadSchema, false);
  xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(xml.data()), xml.size(), u"unknown");
  reader->parse(source);
}

/// Reads the text into a copy of the message; a failure has the result and the line of a narrow text's.
inline ReadingOutcome readBySax2(const XNMessageBase& message, const std::string& xml, int level = 0) {
  XNMessageBase copy(message);
  LogCapture capture(level);
  ReadingOutcome outcome;
  std::string failure;
  try {
    MySAX2Handler handler(&copy);
    parseBySax2(handler, xml);
  } catch (const xercesc::XMLException& error) {
    failure = "XMLException: " + toUtf8(error.getMessage());
  } catch (const xercesc::SAXParseException& error) {
    outcome.result = XN_MSG_PARSE_ERROR;
    failure = "SAXParseException: " + toUtf8(error.getMessage());
  } catch (const std::exception& error) {
    failure = std::string("Encountered error : [") + error.what() + "]";
  } catch (...) {
    failure = "Unknown Exception!";
  }
  outcome.lines = capture.lines();
  if (!failure.empty()) {
    outcome.lines.push_back({"XMLSerializer::parserHelper", 0, failure});
    if (outcome.result == XN_MSG_OK) outcome.result = XN_MSG_XML_LIBRARY_ERROR;
  }
  outcome.read = dump(copy);
  return outcome;
}

}  // namespace zqxml
