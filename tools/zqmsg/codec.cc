#include "tools/zqmsg/codec.h"

#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/internal/parse_error_place.h>
#include <zqxml/xml/xml_serializer.h>

#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/json/json_reader.h"
#include "tools/zqmsg/json/json_writer.h"
#include "tools/zqmsg/library_log.h"
#include "tools/zqmsg/page/message_page.h"
#include "tools/zqmsg/rendering.h"

namespace zqxml::tool {

// A routine of the platform that fails gives an empty text.
void requirePasswords(const std::string& where, LibraryLog& log) {
  if (log.told().noPasswordRoutine) {
    throw Failure(kNoPasswordHandler, where, "a password needs an encryption for which no key is configured")
        .advise("name a key file in $ZQXML_KEY_FILE, or write XML with --mask-passwords")
        .explain(log.take());
  }
  if (log.told().passwordFailed) {
    throw Failure(kNoPasswordHandler, where, "a password cannot be encrypted or decrypted")
        .advise("look at the key file that $ZQXML_KEY_FILE names")
        .explain(log.take());
  }
}

namespace {

// Without a byte order mark or a declaration nobody can know that a text is UTF-16.
std::string withByteOrderMark(const std::string& bytes) {
  if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff")) return bytes;
  return (bytes.starts_with('<') ? "\xff\xfe" : "\xfe\xff") + bytes;
}

std::string notWellFormed(const std::string& bytes) {
  // The text is read once more, and need not be logged once more.
  const int level = EvDebug::getDebugLevel();
  EvDebug::setDebugLevel(-1);
  const std::optional<TextPlace> place = placeOfParseError(bytes);
  EvDebug::setDebugLevel(level);
  if (!place) return "is not well-formed XML";
  return "is not well-formed XML at line " + std::to_string(place->line) + ", column " +
         std::to_string(place->column);
}

Failure xmlFailure(const std::string& bytes, const std::string& where, LibraryLog& log) {
  const ToldByLog told = log.told();
  const std::vector<std::string> explanation = log.take();
  Failure failure(told.parseError ? kNotWellFormed : kXmlLibraryError, where,
                  told.parseError     ? notWellFormed(bytes)
                  : told.unknownClass ? "its root element names no class of the catalogue"
                                      : "cannot be read as XML");
  if (told.unknownClass) failure.advise("a root element is SUBSYSTEM_CLASS; 'zqmsg catalogue' lists them");
  return failure.explain(explanation);
}

MessagePtr decodeXml(const std::string& bytes, const std::string& where, LibraryLog& log) {
  MessagePtr message(XMLSerializer().unserialize(bytes, false));
  if (message == nullptr) throw xmlFailure(bytes, where, log);
  return message;
}

MessagePtr decodeBinary(const std::string& bytes, const std::string& where, LibraryLog& log) {
  BinaryBuffer buffer;
  buffer.SetReadBuffer(bytes.data(), bytes.size(), true);
  MessagePtr message(BinarySerializer::unserialize(buffer, nullptr, false));
  if (message == nullptr) {
    throw Failure(kFailed, where, "cannot be read as a binary message")
        .advise("'zqmsg inspect' shows how far it can be read")
        .explain(log.take());
  }
  return message;
}

MessagePtr decodeJson(Form form, const std::string& bytes, const std::string& where, LibraryLog& log,
                      bool masked) {
  JsonReading reading = readJson(bytes, masked);
  using Fault = JsonReading::Fault;
  if (reading.fault == Fault::kNone) return std::move(reading.message);
  const std::string line = form == Form::kJson ? "line " + std::to_string(reading.line) + ", " : "";
  Failure failure(reading.fault == Fault::kNotWellFormed  ? kNotWellFormed
                  : reading.fault == Fault::kUnknownClass ? kXmlLibraryError
                                                          : kFailed,
                  where, reading.what + ", at " + line + "column " + std::to_string(reading.column));
  throw failure.advise(reading.advice).explain(log.take());
}

EncodingFlags flagsOf(const WriteOptions& options) {
  EncodingFlags flags;
  flags.useElements = options.elements;
  flags.readable = options.readable;
  flags.enumAsText = options.enumNames;
  flags.encoding_options = (options.masks.passwords ? std::uint64_t{MASK_PASSWORDS} : 0) |
                           (options.masks.sensitive ? std::uint64_t{MASK_SENSITIVE} : 0);
  return flags;
}

std::string encodeXml(XNMessageBase& message, const WriteOptions& options, eXNMsgRet& result) {
  XMLSerializer serializer(flagsOf(options), nullptr);
  std::string text;
  if (options.form == Form::kXml16) {
    std::u16string wide;
    result = serializer.serializeUTF16(message, wide, options.rootOnly);
    return wide.empty() ? text : fileBytes(wide);
  }
  result = options.version ? serializer.serialize(message, text, *options.version)
                           : serializer.serialize(message, text, options.rootOnly);
  return text;
}

std::string encodeBinary(XNMessageBase& message, const WriteOptions& options) {
  BinaryBuffer buffer;
  const std::uint64_t size = BinarySerializer::serialize(message, buffer, options.version.value_or(2));
  return size == 0 ? std::string() : std::string(buffer.getBuffer(), size);
}

std::string encodePage(XNMessageBase& message, const WriteOptions& options) {
  const auto sizeOf = [](const std::string& bytes) {
    return bytes.empty() ? std::nullopt : std::optional<std::uint64_t>(bytes.size());
  };
  eXNMsgRet ignored = XN_MSG_OK;
  PageFacts facts;
  facts.xmlBytes = sizeOf(encodeXml(message, WriteOptions(), ignored));
  facts.binaryBytes = sizeOf(encodeBinary(message, WriteOptions()));
  return messagePage(message, facts, options.showSecrets);
}

std::string encodeJson(const XNMessageBase& message, const WriteOptions& options) {
  std::string text;
  const bool indented = options.readable && options.form == Form::kJson;
  JsonWriter(text, {indented, options.enumNames || options.readable, options.masks}).document(message);
  return text += '\n';
}

/// What people read, and no reader takes back: nothing about it can fail.
std::optional<std::string> encodeForPeople(XNMessageBase& message, const WriteOptions& options) {
  if (options.form == Form::kText) return render(message, Rendering::kText);
  if (options.form == Form::kHtml) return render(message, Rendering::kOutline);
  if (options.form == Form::kPage) return encodePage(message, options);
  return std::nullopt;
}

}  // namespace

MessagePtr decode(Form form, const std::string& bytes, const std::string& where, LibraryLog& log,
                  bool masked) {
  if (bytes.empty()) throw Failure(kFailed, where, "is empty");
  MessagePtr message = isJson(form)           ? decodeJson(form, bytes, where, log, masked)
                       : form == Form::kXml   ? decodeXml(bytes, where, log)
                       : form == Form::kXml16 ? decodeXml(withByteOrderMark(bytes), where, log)
                                              : decodeBinary(bytes, where, log);
  requirePasswords(where, log);
  return message;
}

std::string encode(XNMessageBase& message, const WriteOptions& options, const std::string& where,
                   LibraryLog& log) {
  std::optional<std::string> shown = encodeForPeople(message, options);
  if (shown) {
    requirePasswords(where, log);
    return std::move(*shown);
  }
  eXNMsgRet result = XN_MSG_OK;
  std::string bytes = isXml(options.form)    ? encodeXml(message, options, result)
                      : isJson(options.form) ? encodeJson(message, options)
                                             : encodeBinary(message, options);
  requirePasswords(where, log);
  // A field that would make the rest of a binary message unreadable.
  const bool unreadable = log.told().keyWithoutValue;
  if (result != XN_MSG_OK || bytes.empty() || unreadable) {
    throw Failure(result == XN_MSG_OK ? kFailed : static_cast<ExitStatus>(result), where,
                  "cannot be written in the form " + std::string(formName(options.form)))
        .explain(log.take());
  }
  return bytes;
}

}  // namespace zqxml::tool
