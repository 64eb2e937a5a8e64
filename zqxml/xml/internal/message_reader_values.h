// Texts of XML into the fields of a message.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/xml_invalid_char_handler.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace zqxml {

class ZqXMLContextInfo;

/// Converts and stores texts, of UTF-8 (Char is char) or UTF-16 (char16_t). Each field is one of the object's
/// own class; its bit is marked when a value was stored. What cannot be converted is logged under `where`,
/// the name of the calling operation, and leaves the field as it was. Belongs to one parse.
template <class Char>
class FieldTextReader {
 public:
  using View = std::basic_string_view<Char>;

  /// Both are used when a password is read; the context is borrowed and may be null.
  EncodingFlags flags;
  ZqXMLContextInfo* context = nullptr;

  /// The value of an attribute that is named after the field. Lists, maps and objects take none.
  void storeAttribute(XNMessageBase& object, const FieldDef& field, View text, const char* where) {
    // What most attributes are, in front of all that is asked of the others.
    if (kPlainIntegers.contains(field.getType()) && !field.hasAnnotation())
      MessageAccess::setInteger(object, field, parseInt64(text));
    else if (field.getType() == FDT_STRING)
      storeString(object, field, text);
    else
      storeScalar(object, field, text, where);
  }
  /// The text inside an element that is named after the field: the same, but numbers may have white space
  /// around them, and a list gets one more element.
  void storeText(XNMessageBase& object, const FieldDef& field, View text, const char* where);
  /// The attribute `val` of an element that is named after a list field: one more element, with room for
  /// `alike` others. Anything but a list of values takes none.
  void appendVal(XNMessageBase& object, const FieldDef& field, View text, std::size_t alike);

  /// The text as UTF-8 into `out`, with what XML cannot hold restored.
  void readString(View text, std::string& out) {
    out.clear();
    if constexpr (std::is_same_v<Char, char>) {
      if (!XmlInvalidCharHandler::isEscaped(text)) {
        out.append(text);
        return;
      }
    }
    appendUtf8(out, restored(text));
  }

 private:
  struct ScalarStore;
  struct ListAppend;

  /// Integers that are read by one rule, as long as no annotation says otherwise.
  static constexpr FieldTypeSet kPlainIntegers = FieldTypeSet::ofStorage(Overloaded{
      []<class E>(Scalar<E>) {
        return element::Integer<E> && !std::is_same_v<E, element::Bool> && !std::is_same_v<E, element::Enum>;
      },
      [](auto) { return false; }});

  void storeScalar(XNMessageBase& object, const FieldDef& field, View text, const char* where);
  void storeNumber(XNMessageBase& object, const FieldDef& field, View text, const char* where);
  void storeString(XNMessageBase& object, const FieldDef& field, View text) {
    readString(text, MessageAccess::inPlace<std::string>(object, field));
    MessageAccess::mark(object, field.getMemNum());
  }
  void storePassword(XNMessageBase& object, const FieldDef& field, View text, const char* where);
  /// As UTF-16 with what XML cannot hold restored: the text itself, or a place in scratch_.
  std::u16string_view restored(View text);
  void readWideString(View text, std::u16string& out);
  std::string readBytes(View text);

  std::u16string scratch_;
};

/// Whether the process knows the setting that is read below.
inline std::atomic<bool> specialCharsSettingKnown = false;
void readSpecialCharsSettingNow();
/// Reads, at the first call in the process, whether the special treatment of empty list strings is switched
/// off (setting EnableNewXMLBehaviorForSpecialChars = 0, which is logged).
inline void readSpecialCharsSetting() {
  // A race only reads the setting twice, with the same result.
  if (!specialCharsSettingKnown.load(std::memory_order_relaxed)) readSpecialCharsSettingNow();
}

}  // namespace zqxml
