// The reading side of XMLSerializer: the parser drivers and what starts a parse.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/internal/sax_parse.h>
#include <zqxml/xml/my_sax2_handler.h>
#include <zqxml/xml/xml_serializer.h>

#include <exception>
#include <memory>
#include <string_view>
#include <xercesc/framework/XMLPScanToken.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace zqxml {
namespace {

using internal::viewOf;

constexpr char kUnserialize[] = "XMLSerializer::unserialize";
constexpr char kParse[] = "XMLSerializer::parserHelper";
constexpr char kParseWide[] = "XMLSerializer::parserHelperWideChar";
constexpr char kTag[] = "XMLSerializer::GetTagAndTagIDFromXML";
constexpr char kTagStart[] = "XMLSerializer::_GetTagAndTagIDFromXML";

/// Reads into `msg` by `parse`, which runs a handler over a text that is not empty.
template <class Parse>
eXNMsgRet readInto(XNMessageBase& msg, bool keepExisting, Parse parse) {
  MySAX2Handler handler(&msg);
  if (keepExisting) {
    handler.setDefaultsWhileUnserialization();
  } else {
    MessageAccess::resetAndWipe(msg);
  }
  return parse(handler);
}

/// Ends the object that a handler has made, whatever became of the parse.
struct MainObjectOwner {
  MySAX2Handler& handler;
  ~MainObjectOwner() { delete handler.finish(); }
};

bool refuseEmpty(bool empty) {
  if (empty) logDebug(kUnserialize, 10, "Received empty string to unserialize");
  return empty;
}

}  // namespace

eXNMsgRet XMLSerializer::unserialize(XNMessageBase& msg, const std::string& xml, bool keepExisting) {
  if (refuseEmpty(xml.empty())) return XN_MSG_FAILED;
  return readInto(msg, keepExisting, [&](MySAX2Handler& handler) { return parserHelper(&handler, xml); });
}

eXNMsgRet XMLSerializer::unserialize(XNMessageBase& msg, std::string& xml, bool keepExisting) {
  return unserialize(msg, std::as_const(xml), keepExisting);
}

eXNMsgRet XMLSerializer::unserialize(XNMessageBase& msg, const char16_t* xml, bool ignored,
                                     bool keepExisting) {
  if (refuseEmpty(xml == nullptr || *xml == 0)) return XN_MSG_FAILED;
  return readInto(msg, keepExisting,
                  [&](MySAX2Handler& handler) { return parserHelperWideChar(&handler, xml, ignored); });
}

XNMessageBase* XMLSerializer::unserialize(const std::string& xml, bool keepExisting) {
  if (refuseEmpty(xml.empty())) return nullptr;
  MySAX2Handler handler;
  if (keepExisting) handler.setDefaultsWhileUnserialization();
  const eXNMsgRet result = parserHelper(&handler, xml);
  XNMessageBase* made = handler.finish();
  if (result == XN_MSG_OK) return made;
  delete made;
  return nullptr;
}

XNMessageBase* XMLSerializer::unserialize(std::string& xml, bool keepExisting) {
  return unserialize(std::as_const(xml), keepExisting);
}

eXNMsgRet XMLSerializer::parserHelper(MySAX2Handler* handler, const std::string& xml) {
  if (initialize() != XN_MSG_OK) {
    logError(kParse, "Error initializing xerces library");
    return XN_MSG_XML_LIBRARY_ERROR;
  }
  handler->setContextInfo(context_);
  handler->setEncodingFlags(flags_);
  try {
    const TextSource source{std::string_view(xml)};
    SaxParse(*handler, xml.size()).reader().parse(source);
    return XN_MSG_OK;
  } catch (const xercesc::XMLException& error) {
    logError(kParse, "XMLException: %s", viewOf(error.getMessage()));
  } catch (const xercesc::SAXParseException& error) {
    logError(kParse, "SAXParseException: %s", viewOf(error.getMessage()));
    return XN_MSG_PARSE_ERROR;
  } catch (const std::exception& error) {
    logError(kParse, "Encountered error : [%s]", error.what());
  } catch (...) {
    logError(kParse, "Unknown Exception!");
  }
  return XN_MSG_XML_LIBRARY_ERROR;
}

eXNMsgRet XMLSerializer::parserHelperWideChar(MySAX2Handler* handler, const char16_t* xml, bool) {
  if (initialize() != XN_MSG_OK) {
    logError(kParseWide, "Error initializing xerces library");
    return XN_MSG_XML_LIBRARY_ERROR;
  }
  handler->setContextInfo(context_);
  handler->setEncodingFlags(flags_);
  try {
    const std::u16string_view text(xml);
    TextSource source(text);
    // A text with a declaration says its encoding itself.
    if (!text.starts_with(u"<?xml ")) source.setEncoding(xercesc::XMLUni::fgUTF16LEncodingString);
    SaxParse(*handler, text.size() * sizeof(char16_t)).reader().parse(source);
    return XN_MSG_OK;
  } catch (const xercesc::XMLException& error) {
    logError(kParseWide, "XMLException : [%s]", viewOf(error.getMessage()));
  } catch (const xercesc::SAXParseException& error) {
    logError(kParseWide, "SAXParseException: [%s]", viewOf(error.getMessage()));
    return XN_MSG_PARSE_ERROR;
  } catch (...) {
    // QUIRK: standard exceptions end here too, without their text.
    logError(kParseWide, "Unknown Exception!");
  }
  return XN_MSG_XML_LIBRARY_ERROR;
}

XNMessageBase* XMLSerializer::getSAXHandlerMessageObject(MySAX2Handler& handler) {
  return handler.getMainObject();
}

bool XMLSerializer::GetTagAndTagIDFromXML(std::string& xml, std::string& tag, unsigned& tagId) {
  return lookUpTag(std::string_view(xml), tag, tagId);
}

bool XMLSerializer::GetTagAndTagIDFromXML(std::u16string& xml, std::string& tag, unsigned& tagId) {
  return lookUpTag(std::u16string_view(xml), tag, tagId);
}

template <class View>
bool XMLSerializer::lookUpTag(View xml, std::string& tag, unsigned& tagId) {
  if (xml.empty()) {
    logDebug(kTag, 10, "Received empty xml");
    return false;
  }
  if (initialize() != XN_MSG_OK) {
    logError(kTag, "Error initializing xerces library");
    return false;
  }
  TextSource source(xml);
  const bool found = _GetTagAndTagIDFromXML(&source, tag, tagId);
  if (!found) logError(kTag, "Error retrieving tag for given xml.");
  return found;
}

bool XMLSerializer::_GetTagAndTagIDFromXML(xercesc::MemBufInputSource* source, std::string& tag,
                                           unsigned& tagId) {
  tag.clear();
  tagId = 0;
  MySAX2Handler handler;
  const MainObjectOwner owner{handler};
  try {
    const auto* text = dynamic_cast<const TextSource*>(source);
    SaxParse parse(handler, text == nullptr ? 0 : text->size());
    xercesc::XMLPScanToken token;
    if (!parse.reader().parseFirst(*source, token)) {
      logError(kTagStart, "Unable to retrieve token for given xml");
      return false;
    }
    const bool parsed = parse.reader().parseNext(token);
    const XNMessageBase* root = handler.getMainObject();
    if (!parsed || root == nullptr) {
      logError(kTagStart, "Unable to retrieve tag for given xml");
      return false;
    }
    tag = root->getTagName();
    tagId = root->getTagID();
    return true;
  } catch (const xercesc::XMLException& error) {
    logError(kTagStart, "XMLException : [%s]", viewOf(error.getMessage()));
  } catch (const xercesc::SAXParseException& error) {
    logError(kTagStart, "SAXParseException: %s", viewOf(error.getMessage()));
  } catch (...) {
    logError(kTagStart, "Unknown Exception!");
  }
  return false;
}

}  // namespace zqxml
