// The reading side of XMLSerializer: the parser drivers and what starts a parse.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/internal/nesting_limit.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/internal/held_text.h>
#include <zqxml/xml/internal/message_reader.h>
#include <zqxml/xml/internal/sax_parse.h>
#include <zqxml/xml/internal/xml_characters.h>
#include <zqxml/xml/internal/xml_scanner.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/my_sax2_handler.h>
#include <zqxml/xml/xml_serializer.h>

#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
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

/// How the parse of one kind of text says what it failed of.
struct ParseTexts {
  const char* function;
  const char* xmlException;
  const char* parseException;
  /// Null: QUIRK: standard exceptions end as unknown ones, without their text.
  const char* standardException;
};
constexpr ParseTexts kNarrow{kParse, "XMLException: %s", "SAXParseException: %s", "Encountered error : [%s]"};
constexpr ParseTexts kWide{kParseWide, "XMLException : [%s]", "SAXParseException: [%s]", nullptr};

template <class Char>
constexpr const ParseTexts& kTextsOf = sizeof(Char) == 1 ? kNarrow : kWide;

/// Runs a parse, logs what it throws, and gives the result.
template <class Parse>
eXNMsgRet guardParse(const ParseTexts& texts, Parse parse) {
  try {
    parse();
    return XN_MSG_OK;
  } catch (const xercesc::XMLException& error) {
    logError(texts.function, texts.xmlException, viewOf(error.getMessage()));
  } catch (const xercesc::SAXParseException& error) {
    logError(texts.function, texts.parseException, viewOf(error.getMessage()));
    return XN_MSG_PARSE_ERROR;
  } catch (const std::exception& error) {
    if (texts.standardException != nullptr)
      logError(texts.function, texts.standardException, error.what());
    else
      logError(texts.function, "Unknown Exception!");
  } catch (...) {
    logError(texts.function, "Unknown Exception!");
  }
  return XN_MSG_XML_LIBRARY_ERROR;
}

/// A plain text ends with a tag or a comment. One that was cut, or ends otherwise, need not be scanned.
template <class Char>
bool endsPlainly(std::basic_string_view<Char> xml) {
  while (!xml.empty() && is(xml.back(), kSpace)) xml.remove_suffix(1);
  return xml.size() > 1 && xml.back() == '>' && xml[xml.size() - 2] != '?';
}

/// Whether the text is plain, so that a scanner can take the place of the parser.
template <class Char>
bool scans(XmlScanner<Char>& scanner, std::basic_string_view<Char> xml) {
  const XmlStartUp& startUp = XmlStartUp::process();
  if (!startUp.isStarted() || !startUp.fastXml() || !endsPlainly(xml)) return false;
  try {
    return scanner.scan(xml);
  } catch (const std::bad_alloc&) {
    return false;  // the parser may do with less
  }
}

/// Reads plain text into `root`, or into a new object that is put there. Nothing when the text is for the
/// parser.
template <class Char>
std::optional<eXNMsgRet> readPlain(XNMessageBase*& root, std::basic_string_view<Char> xml,
                                   const EncodingFlags& flags, ZqXMLContextInfo* context) {
  XmlScanner<Char> scanner;
  if (!scans(scanner, xml)) return std::nullopt;
  BasicMessageReader<Char> reader(root, static_cast<std::size_t>(NestingLimit::get()));
  reader.setContextInfo(context);
  reader.setEncodingFlags(flags);
  const eXNMsgRet result = guardParse(kTextsOf<Char>, [&] { scanner.drive(reader); });
  reader.finish();
  root = reader.root();
  return result;
}

/// Passes on to a reader what the parser gives of a first tag: its start, and its end when that is part of
/// it.
struct FirstTag {
  BasicMessageReader<char>& reader;
  bool isEmptyElement;
  bool started = false;

  void start(NameView<char> name, const ScannedAttributes<char>& attributes, std::size_t) {
    if (!std::exchange(started, true)) reader.start(name, attributes);
  }
  void end(NameView<char> name) {
    if (isEmptyElement) reader.end(name);
  }
  void characters(std::string_view) {}
  bool takesCharacters() const { return false; }
};

void tellTag(const XNMessageBase& root, std::string& tag, unsigned& tagId) {
  tag = root.getTagName();
  tagId = root.getTagID();
}

/// Looks up the tag of a small plain text, as the parser would. Nothing when the text is for the parser,
/// which looks at less of a long one than a scanner.
std::optional<bool> lookUpPlainTag(std::string_view xml, std::string& tag, unsigned& tagId) {
  constexpr std::size_t kMostScanned = 4096;
  XmlScanner<char> scanner;
  // In a comment, "</" is no end of an element.
  if (xml.size() > kMostScanned || xml.find("<!") != xml.npos || !scans(scanner, xml)) return std::nullopt;
  BasicMessageReader<char> reader(nullptr, static_cast<std::size_t>(NestingLimit::get()));
  FirstTag firstTag{reader, xml.find("</") == xml.npos};
  try {
    scanner.drive(firstTag);
    tellTag(*reader.root(), tag, tagId);
  } catch (...) {
    logError(kTagStart, "Unknown Exception!");
  }
  reader.finish();
  const std::unique_ptr<XNMessageBase> made(reader.root());
  return !tag.empty();
}
/// Wide text is read as the parser guesses its encoding.
std::optional<bool> lookUpPlainTag(std::u16string_view, std::string&, unsigned&) {
  return std::nullopt;
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
  std::string copy;
  const std::string& text = mayHoldText(msg, xml.size()) ? (copy = xml) : xml;
  if (!keepExisting) MessageAccess::resetAndWipe(msg);
  XNMessageBase* root = &msg;
  if (const auto result = readPlain<char>(root, text, flags_, context_)) return *result;
  MySAX2Handler handler(&msg);
  if (keepExisting) handler.setDefaultsWhileUnserialization();
  return parserHelper(&handler, text);
}

eXNMsgRet XMLSerializer::unserialize(XNMessageBase& msg, std::string& xml, bool keepExisting) {
  return unserialize(msg, std::as_const(xml), keepExisting);
}

eXNMsgRet XMLSerializer::unserialize(XNMessageBase& msg, const char16_t* xml, bool ignored,
                                     bool keepExisting) {
  if (refuseEmpty(xml == nullptr || *xml == 0)) return XN_MSG_FAILED;
  std::u16string_view text(xml);
  std::u16string copy;
  if (mayHoldText(msg, text.size() * sizeof(char16_t))) text = copy = text;
  if (!keepExisting) MessageAccess::resetAndWipe(msg);
  XNMessageBase* root = &msg;
  if (const auto result = readPlain<char16_t>(root, text, flags_, context_)) return *result;
  MySAX2Handler handler(&msg);
  if (keepExisting) handler.setDefaultsWhileUnserialization();
  return parserHelperWideChar(&handler, text.data(), ignored);
}

XNMessageBase* XMLSerializer::unserialize(const std::string& xml, bool keepExisting) {
  if (refuseEmpty(xml.empty())) return nullptr;
  XNMessageBase* made = nullptr;
  std::optional<eXNMsgRet> result = readPlain<char>(made, xml, flags_, context_);
  if (!result.has_value()) {
    MySAX2Handler handler;
    if (keepExisting) handler.setDefaultsWhileUnserialization();
    result = parserHelper(&handler, xml);
    made = handler.finish();
  }
  if (*result == XN_MSG_OK) return made;
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
  return guardParse(kNarrow, [&] {
    const TextSource source{std::string_view(xml)};
    SaxParse(*handler, xml.size()).parse(source);
  });
}

eXNMsgRet XMLSerializer::parserHelperWideChar(MySAX2Handler* handler, const char16_t* xml, bool) {
  if (initialize() != XN_MSG_OK) {
    logError(kParseWide, "Error initializing xerces library");
    return XN_MSG_XML_LIBRARY_ERROR;
  }
  handler->setContextInfo(context_);
  handler->setEncodingFlags(flags_);
  return guardParse(kWide, [&] {
    const std::u16string_view text(xml);
    TextSource source(text);
    // A text with a declaration says its encoding itself.
    if (!text.starts_with(u"<?xml ")) source.setEncoding(xercesc::XMLUni::fgUTF16LEncodingString);
    SaxParse(*handler, text.size() * sizeof(char16_t)).parse(source);
  });
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
  tag.clear();
  tagId = 0;
  std::optional<bool> found = lookUpPlainTag(xml, tag, tagId);
  if (!found.has_value()) {
    TextSource source(xml);
    found = _GetTagAndTagIDFromXML(&source, tag, tagId);
  }
  if (!*found) logError(kTag, "Error retrieving tag for given xml.");
  return *found;
}

bool XMLSerializer::_GetTagAndTagIDFromXML(xercesc::MemBufInputSource* source, std::string& tag,
                                           unsigned& tagId) {
  tag.clear();
  tagId = 0;
  MySAX2Handler handler;
  const MainObjectOwner owner{handler};
  try {
    const auto* text = dynamic_cast<const TextSource*>(source);
    const SaxParse::RootTag end =
        SaxParse(handler, text == nullptr ? 0 : text->bytes().size()).parseRootTag(*source);
    if (end == SaxParse::RootTag::noStart) {
      logError(kTagStart, "Unable to retrieve token for given xml");
      return false;
    }
    const XNMessageBase* root = handler.getMainObject();
    if (end == SaxParse::RootTag::noTag || root == nullptr) {
      logError(kTagStart, "Unable to retrieve tag for given xml");
      return false;
    }
    tellTag(*root, tag, tagId);
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
