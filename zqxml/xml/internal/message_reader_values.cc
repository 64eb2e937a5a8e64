#include <zqxml/annotation/annotation_record.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/platform_info.h>
#include <zqxml/xml/base64_decode.h>
#include <zqxml/xml/date_text.h>
#include <zqxml/xml/internal/base64_plain.h>
#include <zqxml/xml/internal/list_growth.h>
#include <zqxml/xml/internal/message_reader_values.h>
#include <zqxml/xml/internal/name_view.h>
#include <zqxml/xml/xml_decoder.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <type_traits>

namespace zqxml {
namespace {

/// Equal but for the case of ASCII letters.
template <class View>
bool equalsIgnoringCase(View text, std::string_view name) {
  const auto lower = [](char32_t c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
  return std::equal(text.begin(), text.end(), name.begin(), name.end(), [lower](auto unit, char byte) {
    return lower(static_cast<std::make_unsigned_t<decltype(unit)>>(unit)) ==
           lower(static_cast<unsigned char>(byte));
  });
}

bool isName(std::string_view text, std::string_view name) {
  return equalsIgnoringCase(text, name);
}

/// Likewise for wide text, which is compared as UTF-8 where it is not ASCII.
bool isName(std::u16string_view text, std::string_view name) {
  const bool ascii = std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
  return ascii ? equalsIgnoringCase(text, name) : equalsIgnoringCase<std::string_view>(toUtf8(text), name);
}

template <class View>
std::int64_t parseBool(View text) {
  if (isName(text, "false")) return 0;
  if (isName(text, "true")) return 1;
  return parseInt64(text);
}

/// The number or the name of an enumerator; nothing, and a line, for a name that the enumeration does not
/// have. QUIRK: a minus sign is no digit, so a negative number is taken for a name and does not come back.
template <class View>
std::optional<std::int64_t> parseEnum(const FieldDef& field, View text, const char* where) {
  if (!text.empty() && text.front() >= '0' && text.front() <= '9') return parseInt64(text);
  const _ClassDef* enumeration = catalogue::classOfField(field);
  if (enumeration == nullptr) {
    logError(where, "Error identifying %s as an enum value", text);
    return std::nullopt;
  }
  for (const FieldDef& enumerator : *enumeration)
    if (enumerator.getName() != nullptr && isName(text, enumerator.getName()))
      return static_cast<std::int32_t>(enumerator.getFieldHashId());
  logError(where, "Enum [%s] does not have enum value [%s]", enumeration->getName(), text);
  return std::nullopt;
}

}  // namespace

/// Stores one text in a field that holds one value.
template <class Char>
struct FieldTextReader<Char>::ScalarStore {
  FieldTextReader& reader;
  XNMessageBase& object;
  const FieldDef& field;
  /// The text, and the same as numbers are read from it.
  View text;
  View number;
  const char* where;

  template <element::Integer E>
  void operator()(Scalar<E>) const {
    reader.storeNumber(object, field, number, where);
  }
  void operator()(Scalar<element::Bool>) const {
    MessageAccess::setInteger(object, field, parseBool(number));
  }
  void operator()(Scalar<element::Enum>) const {
    if (const auto value = parseEnum(field, number, where)) MessageAccess::setInteger(object, field, *value);
  }
  void operator()(Scalar<element::Double>) const {
    MessageAccess::setDouble(object, field, parseDouble(number));
  }
  void operator()(Scalar<element::Float>) const {
    MessageAccess::setFloat(object, field, static_cast<float>(parseDouble(number)));
  }
  void operator()(InPlace<element::Str>) const { reader.storeString(object, field, text); }
  void operator()(InPlace<element::WStr>) const {
    reader.readWideString(text, MessageAccess::inPlace<std::u16string>(object, field));
    MessageAccess::mark(object, field.getMemNum());
  }
  void operator()(Owned<element::BStr>) const {
    MessageAccess::owned<bstring>(object, field)->str() = reader.readBytes(text);
    MessageAccess::mark(object, field.getMemNum());
  }
  void operator()(Owned<element::PStr>) const { reader.storePassword(object, field, text, where); }
  // Lists, maps, objects and what stores nothing.
  template <class Storage>
  void operator()(Storage) const {}
};

/// Appends one text to a list field.
template <class Char>
struct FieldTextReader<Char>::ListAppend {
  FieldTextReader& reader;
  XNMessageBase& object;
  const FieldDef& field;
  View text;
  std::size_t alike = 0;

  void operator()(List<element::Int32>) const {
    // The two lists share their storage, not their reading: the one keeps the low half, the other saturates.
    add<std::int32_t>(field.getType() == FDT_LIST_LONG ? parseInt32(text)
                                                       : static_cast<std::int32_t>(parseInt64(text)));
  }
  void operator()(List<element::UInt32>) const { add<std::uint32_t>(parseUInt32(text)); }
  void operator()(List<element::Int64>) const { add<std::int64_t>(parseInt64(text)); }
  void operator()(List<element::UInt64>) const { add<std::uint64_t>(parseUInt64(text)); }
  void operator()(List<element::Float>) const { add<float>(static_cast<float>(parseDouble(text))); }
  void operator()(List<element::Double>) const { add<double>(parseDouble(text)); }
  void operator()(List<element::Str>) const { reader.readString(text, list<std::string>().emplace_back()); }
  void operator()(List<element::WStr>) const { list<std::u16string>().emplace_back(reader.restored(text)); }
  void operator()(List<element::BStr>) const { list<bstring>().emplace_back(reader.readBytes(text)); }
  // Lists of objects, and what is no list.
  template <class Storage>
  void operator()(Storage) const {}

  template <class T>
  std::vector<T>& list() const {
    std::vector<T>& elements = MessageAccess::make<std::vector<T>>(object, field, true);
    growFor(elements, alike);
    return elements;
  }
  template <class T>
  void add(T value) const {
    list<T>().push_back(value);
  }
};

template <class Char>
void FieldTextReader<Char>::storeScalar(XNMessageBase& object, const FieldDef& field, View text,
                                        const char* where) {
  visitStorage(field.getType(), ScalarStore{*this, object, field, text, text, where});
}

template <class Char>
void FieldTextReader<Char>::storeText(XNMessageBase& object, const FieldDef& field, View text,
                                      const char* where) {
  const View number = trimSpace(text);
  visitStorage(field.getType(), ScalarStore{*this, object, field, text, number, where});
  if (field.getType() == FDT_RESERVED_29) {
    MessageAccess::setCdata(object, field, cdata(utf8Text(text)));
  } else if (field.getType() == FDT_LIST_ENUM) {
    if (const auto value = parseEnum(field, number, where))
      MessageAccess::make<std::vector<std::uint32_t>>(object, field, true)
          .push_back(static_cast<std::uint32_t>(*value));
  } else {
    visitStorage(field.getType(), ListAppend{*this, object, field, text});
  }
}

template <class Char>
void FieldTextReader<Char>::appendVal(XNMessageBase& object, const FieldDef& field, View text,
                                      std::size_t alike) {
  visitStorage(field.getType(), ListAppend{*this, object, field, text, alike});
}

template <class Char>
void FieldTextReader<Char>::storeNumber(XNMessageBase& object, const FieldDef& field, View text,
                                        const char* where) {
  const AnnotationRecord annotation(field);
  if (annotation.isTime()) {
    std::uint32_t seconds = 0;
    if (text.find(':') == text.npos) {
      MessageAccess::setInteger(object, field, parseInt64(text));
    } else if (processZQTime(utf8Text(text).c_str(), &seconds)) {
      MessageAccess::setInteger(object, field, seconds);
    } else {
      return logError(where, "Error in ZQTime representation");
    }
  }
  if (annotation.dateType() != 0) {
    std::uint32_t date = 0;
    if (processXDate(utf8Text(text).c_str(), &date, static_cast<int>(annotation.dateType())))
      return MessageAccess::setInteger(object, field, date);
    MessageAccess::setInteger(object, field, parseInt64(text));
    return logDebug(where, 25, "Error in XDate representation");
  }
  if (!annotation.isTime()) MessageAccess::setInteger(object, field, parseInt64(text));
}

template <class Char>
void FieldTextReader<Char>::storePassword(XNMessageBase& object, const FieldDef& field, View text,
                                          const char* where) {
  pstring& target = *MessageAccess::owned<pstring>(object, field);
  if (text.empty()) {
    target = std::string();
  } else {
    pstring* result = nullptr;
    XMLDecoder decoder(flags, context);
    if (!decoder.decryptPassword(field, std::u16string(restored(text)).c_str(), result))
      return logError(where, "Password Handler Not Found while serializing bstring field [%s]",
                      field.getName());
    const std::unique_ptr<pstring> owner(result);
    target.str() = owner->c_str();  // QUIRK: a zero byte ends the password.
    target.setEncryptionType(owner->getEncryptionType());
  }
  MessageAccess::mark(object, field.getMemNum());
}

template <class Char>
std::u16string_view FieldTextReader<Char>::restored(View text) {
  if constexpr (std::is_same_v<Char, char>) {
    scratch_.clear();
    if (XmlInvalidCharHandler::isEscaped(text))
      XmlInvalidCharHandler::appendDecoded(scratch_, toUtf16(text));
    else
      appendUtf16(scratch_, text);
  } else {
    if (!XmlInvalidCharHandler::isEscaped(text)) return text;
    scratch_.clear();
    XmlInvalidCharHandler::appendDecoded(scratch_, text);
  }
  return scratch_;
}

template <class Char>
void FieldTextReader<Char>::readWideString(View text, std::u16string& out) {
  if constexpr (std::is_same_v<Char, char>) {
    if (!XmlInvalidCharHandler::isEscaped(text)) {
      out.clear();
      return appendUtf16(out, text);
    }
  }
  out = restored(text);
}

/// QUIRK: text that is not Base64 gives no bytes, which are stored.
template <class Char>
std::string FieldTextReader<Char>::readBytes(View text) {
  std::string bytes;
  if constexpr (std::is_same_v<Char, char>)
    if (base64DecodePlain(text, bytes)) return bytes;
  base64DecodeXmlCh(std::u16string(restored(text)).c_str(), bytes);
  return bytes;
}

template class FieldTextReader<char>;
template class FieldTextReader<char16_t>;

void readSpecialCharsSettingNow() {
  // QUIRK: switched off, a list string counts as empty when its narrow form is. Conversion to UTF-8 is total,
  // so that is the same as the wide text being empty, and the value makes no difference here.
  int newSpecialCharsBehaviour = 1;  // what holds without the setting
  (void)ZQPlatformInfo().getNumber("EventManager", "EnableNewXMLBehaviorForSpecialChars",
                                   newSpecialCharsBehaviour);
  if (newSpecialCharsBehaviour == 0) {
    logDebug("MySAX2Handler::startElement", 0,
             "Disabling new XMLCh behavior for checking empty input strings.");
  }
  specialCharsSettingKnown.store(true, std::memory_order_relaxed);
}

}  // namespace zqxml
