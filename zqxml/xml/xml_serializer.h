// XMLSerializer: the XML codec, one object per call.
#pragma once

#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/catalogue/result.h>
#include <zqxml/platform/export.h>
#include <zqxml/xml/encoding_flags.h>

#include <atomic>
#include <string>
#include <xercesc/util/XercesDefs.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
class DOMElement;
class DOMLSSerializer;
class MemBufInputSource;
XERCES_CPP_NAMESPACE_END

namespace zqxml {

class CUlFile;
class MySAX2Handler;
class XNMessageBase;
class ZqXMLContextInfo;

/// What writes a DOM tree as text; its encoding is chosen by the output that it writes to.
using DOMWriter = xercesc::DOMLSSerializer;

/// The XML codec, one object per call.
///
/// Writing walks the fields of a message through the catalogue into a Xerces-C DOM document and lets a DOM
/// writer turn it into text. Reading drives a SAX2 reader that never validates, loads nothing from outside
/// and expands no entity. docs/xml-form.md tells the form.
///
/// Failure: results are eXNMsgRet with a log line; nothing throws. A field that cannot be written is logged
/// and left out, and the call still answers XN_MSG_OK. Threads: an object belongs to one call; the start-up
/// of Xerces-C is shared and guarded, the listener registry is shared and not locked.
class ZQXML_EXPORT XMLSerializer : public XMLSerializationSupport {
 public:
  /// Default flags, no context.
  XMLSerializer() = default;
  /// The context is borrowed; null for none.
  explicit XMLSerializer(ZqXMLContextInfo* context) : context_(context) {}
  /// With flags; the context as above.
  XMLSerializer(EncodingFlags flags, ZqXMLContextInfo* context) : context_(context), flags_(flags) {}

  // --- Writing

  /// UTF-8 with an XML declaration, form version 2. This holds for all of these operations:
  ///
  /// `out` is replaced on success. XN_MSG_FAILED: no DOM implementation, or the document could not be built
  /// (`msg` without a class, an exception of a listener). XN_MSG_XML_LIBRARY_ERROR: Xerces-C did not start.
  /// QUIRK: when the finished document cannot be dumped as text the answer is XN_MSG_OK all the same, and
  /// `out` keeps what it held. Missing lists of old-way objects are made and marked on the way.
  eXNMsgRet serialize(XNMessageBase& msg, std::string& out);
  /// UTF-8 with an XML declaration. Below version 2 passwords are plain Base64, cut at their first NUL.
  eXNMsgRet serialize(XNMessageBase& msg, std::string& out, int version);
  /// UTF-8; `rootOnly` leaves the declaration out.
  eXNMsgRet serialize(XNMessageBase& msg, std::string& out, bool rootOnly);
  /// UTF-16 in native byte order, without a byte order mark; `rootOnly` leaves the declaration out.
  eXNMsgRet serializeUTF16(XNMessageBase& msg, std::u16string& out, bool rootOnly);

  // --- Reading

  /// @{
  /// Fills `msg`; unless `keepExisting`, it is reset first, whatever the text turns out to be. On failure it
  /// holds what was read so far. XN_MSG_FAILED for an empty text, XN_MSG_PARSE_ERROR for one that is not well
  /// formed, XN_MSG_XML_LIBRARY_ERROR for any other exception; each with a line. The text may be part of
  /// `msg`: a message that may hold it (it has lists, maps or objects, or a string of its length) is read
  /// from a copy. Throws std::bad_alloc when there is no memory to begin with.
  eXNMsgRet unserialize(XNMessageBase& msg, const std::string& xml, bool keepExisting);
  eXNMsgRet unserialize(XNMessageBase& msg, std::string& xml, bool keepExisting);
  /// @}
  /// Wide text in native byte order. `ignored` has no effect.
  eXNMsgRet unserialize(XNMessageBase& msg, const char16_t* xml, bool ignored, bool keepExisting);
  /// @{
  /// New object of the root tag's class, or null; the caller owns it.
  XNMessageBase* unserialize(const std::string& xml, bool keepExisting);
  XNMessageBase* unserialize(std::string& xml, bool keepExisting);
  /// @}

  /// @{
  /// Tag name and tag id of the root tag's class, from the start of the text alone. On false both are cleared
  /// when the text was looked at.
  static bool GetTagAndTagIDFromXML(std::string& xml, std::string& tag, unsigned& tagId);
  static bool GetTagAndTagIDFromXML(std::u16string& xml, std::string& tag, unsigned& tagId);
  /// @}

  // --- Files, by default flags. The file is open and stays the caller's.

  /// Fills `msg` from the whole file: 0; 3 bad argument, 2 no size, 4 empty file, 5 read error, 8 no or bad
  /// text.
  static int readXmlFromFile(XNMessageBase* msg, CUlFile* file);
  /// Writes `msg` to the file: 0; 3 bad argument, 9 not serialized, 6 write error.
  static int dumpXmlToFile(XNMessageBase* msg, CUlFile* file);

  /// The object that a handler reads into or has made.
  static XNMessageBase* getSAXHandlerMessageObject(MySAX2Handler& handler);

  /// @{
  /// What it was made with.
  const EncodingFlags& flags() const { return flags_; }
  ZqXMLContextInfo* context() const { return context_; }
  /// @}

  /// True once Xerces-C runs in this process; it is never terminated.
  static std::atomic<bool> isXercesInitialized;

 private:
  friend class XMLSerializationSupport;  // its initialize is this one
  friend class XMLSerializerAccess;      // the library's own code, and tests

  /// Starts Xerces-C once per process and reads the setting "EventManager"/"nDisableXMLValidation" once.
  /// XN_MSG_XML_LIBRARY_ERROR (logged) when it does not start; the next call tries again.
  static eXNMsgRet initialize();
  /// The process-wide registry of listeners.
  static XMLSerializationSupport* getXMLSerializationSupportObject();

  // --- The writer's parts. Text arguments end at their first NUL. What Xerces-C throws in one of the
  // write... primitives is caught and logged there, and the node is missing; null arguments write nothing.

  /// Writes all fields of `msg` into `element`.
  void serializeXMLRecur(XNMessageBase& msg, xercesc::DOMDocument* doc, xercesc::DOMElement* element,
                         int version);
  /// A scalar: attribute `tag` of `parent`, or with useElements a child element `tag` with a text node.
  void writeNodeToXML(xercesc::DOMDocument* doc, xercesc::DOMElement* parent, const char16_t* tag,
                      const char16_t* value);
  /// Value of a list entry or map side: attribute `tag` of `entry`, or with useElements a text node in it.
  void writeListNodeToXML(xercesc::DOMDocument* doc, xercesc::DOMElement* entry, const char16_t* tag,
                          const char16_t* value);
  /// Child element `tag` of `parent` holding a CDATA section, whatever useElements says.
  void writeAsCDATA(xercesc::DOMDocument* doc, xercesc::DOMElement* parent, const char16_t* tag,
                    const char16_t* value);
  /// A CDATA section straight inside `entry`; `tag` only names the node in the log.
  void writeListNodeAsCDATA(xercesc::DOMDocument* doc, xercesc::DOMElement* entry, const char16_t* tag,
                            const char16_t* value);
  /// A UTF-8 text as scalar or CDATA: "]]>" escaped for CDATA, illegal characters encoded.
  void writeStringToXML(xercesc::DOMDocument* doc, xercesc::DOMElement* parent, std::string tag,
                        std::string value, bool asCDATA);
  /// Appends <name><__mapKey__/><__mapValue__/></name> to `parent`; false, logged, when that fails.
  bool constructMapElements(xercesc::DOMDocument* doc, xercesc::DOMElement* parent,
                            xercesc::DOMElement*& entry, xercesc::DOMElement*& keyNode,
                            xercesc::DOMElement*& valueNode, const char16_t* name);

  /// New writer with line feeds as line ends, pretty printing when `readable`; the caller releases it. Null
  /// without a DOM implementation. The two differ in the encoding that their dump asks for.
  DOMWriter* DOMCreateAWriterUTF8();
  DOMWriter* DOMCreateAWriterUTF16();
  /// The document, or with `rootOnly` its root element, as text into `out`, up to the first NUL. On an
  /// exception (logged) `out` keeps what it held.
  void DumpDOMDocumentToStringUTF8(std::string& out, xercesc::DOMDocument* doc, bool rootOnly);
  void DumpDOMDocumentToWStringUTF16(std::u16string& out, xercesc::DOMDocument* doc, bool rootOnly);

  // --- The reader's parts.

  eXNMsgRet parserHelper(MySAX2Handler* handler, const std::string& xml);
  eXNMsgRet parserHelperWideChar(MySAX2Handler* handler, const char16_t* xml, bool ignored);
  template <class View>
  static bool lookUpTag(View xml, std::string& tag, unsigned& tagId);
  static bool _GetTagAndTagIDFromXML(xercesc::MemBufInputSource* source, std::string& tag, unsigned& tagId);

  ZqXMLContextInfo* context_ = nullptr;
  EncodingFlags flags_;
};

}  // namespace zqxml
