// MySAX2Handler: turns the SAX2 events of Xerces-C into a message object.
#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/xml/encoding_flags.h>

#include <cstdint>
#include <memory>
#include <xercesc/sax2/DefaultHandler.hpp>

namespace zqxml {

template <class Char>
class BasicMessageReader;
class XNMessageBase;
class ZqXMLContextInfo;

/// Makes a message of the events of an XML parser: content and error handler of one parse; not reset for
/// another, used by one thread. All other operations are those of DefaultHandler, so a text that is not well
/// formed ends in a SAXParseException.
///
/// Names are looked up in the catalogue; what is not there is skipped and logged (level 10 and 15). With
/// namespaces on, local names count, otherwise qualified ones. A root element without a class, and objects
/// that are nested deeper than the setting "EventManager"/"nMaxNesting" allows, throw (std::exception).
class ZQXML_EXPORT MySAX2Handler : public xercesc::DefaultHandler {
 public:
  /// Makes an object of the class that the root element names.
  MySAX2Handler();
  /// Reads into `object`, which stays the caller's and outlives the handler. Its class is not compared with
  /// the root element: the root's attributes go to the object, whatever its name.
  explicit MySAX2Handler(XNMessageBase* object);
  /// Ends what hangs nowhere, but never the main object, which has to be there unless finish() was called.
  ~MySAX2Handler() override;
  MySAX2Handler(const MySAX2Handler&) = delete;
  MySAX2Handler& operator=(const MySAX2Handler&) = delete;

  /// The 24-bit name hash of `length` bytes; 0 for a null or empty text.
  static std::uint32_t getHash(const char* text, unsigned long long length);

  /// The object read into, or the one made: that belongs to the caller. Null while there is none.
  XNMessageBase* getMainObject();
  /// Ends what the parse has left unfinished and gives the main object. No event may follow.
  XNMessageBase* finish();
  /// @{
  /// For passwords. The context is borrowed, the flags are copied.
  void setContextInfo(ZqXMLContextInfo* context);
  void setEncodingFlags(EncodingFlags& flags);
  /// @}
  /// Notes that the object keeps its values, which is the doing of whoever starts the parse. Nothing reads
  /// it.
  void setDefaultsWhileUnserialization() { defaultsWhileUnserialization_ = true; }

  /// @{
  /// The events of the parser, which nobody else sends. What they throw is what the class tells.
  void startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                    const xercesc::Attributes& attributes) override;
  void endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname) override;
  void characters(const XMLCh* chars, XMLSize_t length) override;
  /// @}
  /// Throws the exception as DefaultHandler does, but in memory that does not end with the parser.
  void fatalError(const xercesc::SAXParseException& error) override;

 private:
  friend BasicMessageReader<char16_t>& messageReaderOf(MySAX2Handler& handler);  // the library's own parses

  struct State;
  std::unique_ptr<State> state_;
  bool defaultsWhileUnserialization_ = false;
};

}  // namespace zqxml
