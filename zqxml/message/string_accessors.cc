// Accessors of texts: strings in place, bstring and pstring behind an owning slot.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/field_resolution.h>
#include <zqxml/message/xn_message_base.h>

namespace zqxml {
namespace {

template <class Text>
constexpr FieldTypeSet kTypesOf = FieldTypeSet::ofStorage(Overloaded{
    []<class E>(InPlace<E>) { return std::is_same_v<typename E::Value, Text>; },
    []<class E>(Owned<E>) { return std::is_same_v<typename E::Value, Text>; }, [](auto) { return false; }});

template <class Text>
constexpr bool kIsInPlace = std::is_same_v<Text, std::string> || std::is_same_v<Text, std::u16string>;

/// The text of the field, null after the log line. Message is const or not, and so is the text.
template <class Text, class Message>
auto find(Message& message, const char* function, FieldAddress address, const FieldDef** found = nullptr)
    -> decltype(&MessageAccess::inPlace<Text>(message, *resolveField(message, function, {}, address))) {
  const FieldDef* field = resolveField(message, function, kTypesOf<Text>, address);
  if (found != nullptr) *found = field;
  if (field == nullptr) return nullptr;
  if constexpr (kIsInPlace<Text>)
    return &MessageAccess::inPlace<Text>(message, *field);
  else
    return MessageAccess::owned<Text>(message, *field);
}

template <class Text, class Message>
Text copy(Message& message, const char* function, FieldAddress address) {
  const auto* text = find<Text>(message, function, address);
  return text == nullptr ? Text() : *text;
}

/// The text itself, not marked; an empty one when it cannot be had.
template <class Text>
const Text& constRef(const XNMessageBase& message, const char* function, FieldAddress address) {
  static const Text kEmpty;
  const Text* text = find<Text>(message, function, address);
  return text == nullptr ? kEmpty : *text;
}

/// The text with its bit marked; the thread's fallback when it cannot be had.
template <class Text>
Text& byRef(XNMessageBase& message, const char* function, FieldAddress address) {
  const FieldDef* field = nullptr;
  Text* text = find<Text>(message, function, address, &field);
  if (text == nullptr) return emptiedFallback<Text>();
  MessageAccess::mark(message, field->getMemNum());
  return *text;
}

/// Runs `assign` on the text and marks the bit.
template <class Text, class Assign>
void set(XNMessageBase& message, const char* function, FieldAddress address, Assign assign) {
  const FieldDef* field = nullptr;
  Text* text = find<Text>(message, function, address, &field);
  if (text == nullptr) return;
  assign(*text);
  MessageAccess::mark(message, field->getMemNum());
}

}  // namespace

std::string XNMessageBase::getstring(short memNum, short index, std::uint32_t msgTag,
                                     std::uint32_t fieldHash) {
  return copy<std::string>(*this, "XNMessageBase::getstring", {memNum, index, msgTag, fieldHash});
}
std::string XNMessageBase::getstring_const(short memNum, short index, std::uint32_t msgTag,
                                           std::uint32_t fieldHash) const {
  return copy<std::string>(*this, "XNMessageBase::getstring_const", {memNum, index, msgTag, fieldHash});
}
std::string& XNMessageBase::getstringByRef(short memNum, short index, std::uint32_t msgTag,
                                           std::uint32_t fieldHash) {
  return byRef<std::string>(*this, "XNMessageBase::getstringByRef", {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setstring(short memNum, short index, const std::string& value, std::uint32_t msgTag,
                              std::uint32_t fieldHash) {
  set<std::string>(*this, "XNMessageBase::setstring", {memNum, index, msgTag, fieldHash},
                   [&value](std::string& text) { text = value; });
}
const std::string& XNMessageBase::getstringByRef_const(short memNum, short index, std::uint32_t msgTag,
                                                       std::uint32_t fieldHash) const {
  return constRef<std::string>(*this, "XNMessageBase::getstringByRef_const",
                               {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::assignstring(short memNum, short index, const typed::StringArg& value,
                                 std::uint32_t msgTag, std::uint32_t fieldHash) {
  set<std::string>(*this, "XNMessageBase::assignstring", {memNum, index, msgTag, fieldHash},
                   [&value](std::string& text) { value.assignTo(text); });
}

std::u16string XNMessageBase::getwstring(short memNum, short index, std::uint32_t msgTag,
                                         std::uint32_t fieldHash) {
  return copy<std::u16string>(*this, "XNMessageBase::getwstring", {memNum, index, msgTag, fieldHash});
}
std::u16string XNMessageBase::getwstring_const(short memNum, short index, std::uint32_t msgTag,
                                               std::uint32_t fieldHash) const {
  return copy<std::u16string>(*this, "XNMessageBase::getwstring_const", {memNum, index, msgTag, fieldHash});
}
std::u16string& XNMessageBase::getwstringByRef(short memNum, short index, std::uint32_t msgTag,
                                               std::uint32_t fieldHash) {
  return byRef<std::u16string>(*this, "XNMessageBase::getwstringByRef", {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setwstring(short memNum, short index, const std::u16string& value, std::uint32_t msgTag,
                               std::uint32_t fieldHash) {
  set<std::u16string>(*this, "XNMessageBase::setwstring", {memNum, index, msgTag, fieldHash},
                      [&value](std::u16string& text) { text = value; });
}
const std::u16string& XNMessageBase::getwstringByRef_const(short memNum, short index, std::uint32_t msgTag,
                                                           std::uint32_t fieldHash) const {
  return constRef<std::u16string>(*this, "XNMessageBase::getwstringByRef_const",
                                  {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::assignwstring(short memNum, short index, const typed::WStringArg& value,
                                  std::uint32_t msgTag, std::uint32_t fieldHash) {
  set<std::u16string>(*this, "XNMessageBase::assignwstring", {memNum, index, msgTag, fieldHash},
                      [&value](std::u16string& text) { value.assignTo(text); });
}

bstring* XNMessageBase::getbstringobject(short memNum, short index, std::uint32_t msgTag,
                                         std::uint32_t fieldHash) {
  return find<bstring>(*this, "XNMessageBase::getbstringobject", {memNum, index, msgTag, fieldHash});
}
const bstring* XNMessageBase::getbstringobject_const(short memNum, short index, std::uint32_t msgTag,
                                                     std::uint32_t fieldHash) const {
  return find<bstring>(*this, "XNMessageBase::getbstringobject_const", {memNum, index, msgTag, fieldHash});
}
bstring& XNMessageBase::getbstringobjectByRef(short memNum, short index, std::uint32_t msgTag,
                                              std::uint32_t fieldHash) {
  return byRef<bstring>(*this, "XNMessageBase::getbstringobjectByRef", {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setbstringobject(short memNum, short index, const bstring& value, std::uint32_t msgTag,
                                     std::uint32_t fieldHash) {
  set<bstring>(*this, "XNMessageBase::setbstringobject", {memNum, index, msgTag, fieldHash},
               [&value](bstring& text) { text.assign(value); });
}
void XNMessageBase::assignbstringobject(short memNum, short index, const typed::StringArg& value,
                                        std::uint32_t msgTag, std::uint32_t fieldHash) {
  set<bstring>(*this, "XNMessageBase::assignbstringobject", {memNum, index, msgTag, fieldHash},
               [&value](bstring& text) { value.assignTo(text.str()); });
}

pstring* XNMessageBase::getpstringobject(short memNum, short index, std::uint32_t msgTag,
                                         std::uint32_t fieldHash) {
  return find<pstring>(*this, "XNMessageBase::getpstringobject", {memNum, index, msgTag, fieldHash});
}
const pstring* XNMessageBase::getpstringobject_const(short memNum, short index, std::uint32_t msgTag,
                                                     std::uint32_t fieldHash) const {
  return find<pstring>(*this, "XNMessageBase::getpstringobject_const", {memNum, index, msgTag, fieldHash});
}
pstring& XNMessageBase::getpstringobjectByRef(short memNum, short index, std::uint32_t msgTag,
                                              std::uint32_t fieldHash) {
  return byRef<pstring>(*this, "XNMessageBase::getpstringobjectByRef", {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setpstringobject(short memNum, short index, const bstring& value, int encryptionType,
                                     std::uint32_t msgTag, std::uint32_t fieldHash) {
  set<pstring>(*this, "XNMessageBase::setpstringobject", {memNum, index, msgTag, fieldHash},
               [&value, encryptionType](pstring& text) {
                 text.assign(value);
                 text.setEncryptionType(encryptionType);
               });
}
void XNMessageBase::assignpstringobject(short memNum, short index, const typed::StringArg& value,
                                        int encryptionType, std::uint32_t msgTag, std::uint32_t fieldHash) {
  set<pstring>(*this, "XNMessageBase::assignpstringobject", {memNum, index, msgTag, fieldHash},
               [&value, encryptionType](pstring& text) {
                 value.assignTo(text.str());
                 text.setEncryptionType(encryptionType);
               });
}

cdata* XNMessageBase::getcdataobject(short, short, std::uint32_t, std::uint32_t) {
  logError("XNMessageBase::getcdataobject", "[%s]", "This is a deprecated function");
  return nullptr;
}
const cdata* XNMessageBase::getcdataobject_const(short, short, std::uint32_t, std::uint32_t) const {
  logError("XNMessageBase::getcdataobject_const", "[%s]", "This is a deprecated function");
  return nullptr;
}
void XNMessageBase::setcdataobject(short, short, const cdata&, std::uint32_t, std::uint32_t) {
  logError("XNMessageBase::setcdataobject", "[%s]", "This function is deprecated");
}

}  // namespace zqxml
