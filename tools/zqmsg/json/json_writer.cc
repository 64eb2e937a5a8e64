#include "tools/zqmsg/json/json_writer.h"

#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_decoder.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <vector>

#include "tools/zqmsg/json/json_text.h"
#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

constexpr const char* kFunction = "JsonWriter::document";

// Readers hold a number of JSON in a double: it is kept exactly up to 53 bits. The types have 32 or 64.
bool fitsJsonNumber(std::int64_t value) {
  return value >= std::numeric_limits<std::int32_t>::min() &&
         value <= std::numeric_limits<std::uint32_t>::max();
}

}  // namespace

// One set field of a message: the handler of its storage.
class JsonField {
 public:
  JsonField(JsonWriter& writer, const FieldDef& field, const AnnotationRecord& annotation,
            const XNMessageBase& message)
      : writer_(writer),
        out_(writer.out_),
        field_(field),
        annotation_(annotation),
        value_(field.getFieldAddrResolved(&message)) {}

  void operator()(Nothing) {}

  template <element::Integer E>
  void operator()(Scalar<E>) {
    one<std::int64_t>([this](std::int64_t value) { this->template integer<E>(value); });
  }
  template <element::Floating E>
  void operator()(Scalar<E>) {
    one<typename E::Value>([this](auto value) { appendJsonNumber(out_, value); });
  }
  template <class E>
  void operator()(InPlace<E>) {
    one<typename E::Value>([this](const auto& value) { this->template element<E>(value); });
  }
  void operator()(Owned<element::BStr>) {
    one<bstring>([this](const bstring& value) { element<element::BStr>(value); });
  }
  void operator()(Owned<element::PStr>) {
    std::string text;
    const auto* value = static_cast<const pstring*>(value_);
    if (value == nullptr || !passwordText(*value, text)) return;
    text.resize(std::min(text.find('\0'), text.size()));  // as in every form, and as it is read
    writer_.key(field_.getName());
    appendJsonString(out_, text);
  }
  void operator()(Object) {
    one<XNMessageBase>([this](const XNMessageBase& value) { writer_.object(value); });
  }
  template <class E>
  void operator()(List<E>) {
    one<std::vector<typename E::Value>>([this](const auto& values) {
      writer_.open('[');
      for (const auto& value : values) {
        writer_.item();
        element<E>(value);
      }
      writer_.close(']');
    });
  }
  template <class K, class V>
  void operator()(Map<K, V>) {
    one<std::map<typename K::Value, typename V::Value>>([this](const auto& entries) {
      writer_.open('[');
      for (const auto& [key, value] : entries) {
        writer_.item();
        writer_.open('[');
        writer_.item();
        element<K>(key);
        writer_.item();
        element<V>(value);
        writer_.close(']');
      }
      writer_.close(']');
    });
  }

 private:
  template <class T, class Write>
  void one(Write write) {
    if (value_ == nullptr) return;
    writer_.key(field_.getName());
    write(*static_cast<const T*>(value_));
  }

  template <class E>
  void element(const typename E::Value& value) {
    if constexpr (element::Integer<E>) {
      integer<E>(static_cast<std::int64_t>(value));
    } else if constexpr (element::Floating<E>) {
      appendJsonNumber(out_, value);
    } else if constexpr (std::same_as<E, element::Obj>) {
      writer_.object(value);
    } else if constexpr (std::same_as<E, element::BStr>) {
      out_ += '"' + UlBase64::Encode(value.str()) + '"';
    } else if constexpr (std::same_as<E, element::WStr>) {
      appendJsonString(out_, toUtf8(value));
    } else {
      appendJsonString(out_, value);
    }
  }

  template <class E>
  void integer(std::int64_t value) {
    const char* name = nameOfValue(field_, value);
    const bool isEnum = kEnumTypes.contains(field_.getType());
    if (name != nullptr && !isEnum) {
      out_ += name;  // true and false
    } else if (name != nullptr && writer_.style_.enumNames) {
      appendJsonString(out_, name);
    } else if constexpr (std::same_as<E, element::UInt64>) {
      out_ += '"' + std::to_string(static_cast<std::uint64_t>(value)) + '"';
    } else if (std::same_as<E, element::Int64> || !fitsJsonNumber(value)) {
      out_ += '"' + std::to_string(value) + '"';
    } else {
      out_ += std::to_string(value);
    }
  }

  // The text that XML has, too: in the form of the annotation's type.
  bool passwordText(const pstring& value, std::string& text) const {
    if (annotation_.passwordType() == 0) {
      logError(kFunction, "Password annotation is not specified on this field : [%s]", field_.getName());
      return false;
    }
    const eXNMsgRet result =
        XMLDecoder(EncodingFlags(), nullptr).encryptPassword(annotation_.passwordType(), value, text);
    if (result == XN_MSG_OK) return true;
    logError(kFunction, "Password Handler Not Found for field [%s]", field_.getName());
    return false;
  }

  JsonWriter& writer_;
  std::string& out_;
  const FieldDef& field_;
  const AnnotationRecord& annotation_;
  const void* const value_;
};

void JsonWriter::document(const XNMessageBase& message) {
  open('{');
  key(message.getTagName());
  object(message);
  close('}');
}

void JsonWriter::object(const XNMessageBase& message) {
  open('{');
  if (const _ClassDef* classDef = XNMessageBase::GetClassDef(&message)) {
    for (const FieldDef& field : *classDef) {
      // A trailing self record is no field, and its member number is that of the first one.
      if (field.getType() == FDT_NONE || field.getFieldHashId() == 0) continue;
      if (!message.isSet(field.getMemNum(), message.getTagID(), 0)) continue;
      const AnnotationRecord annotation(field);
      const std::string_view mask = style_.masks.of(field, annotation);
      if (mask.empty()) {
        visitStorage(field.getType(), JsonField(*this, field, annotation, message));
      } else {
        key(field.getName());
        appendJsonString(out_, mask);
      }
    }
  }
  close('}');
}

void JsonWriter::open(char bracket) {
  out_ += bracket;
  ++depth_;
}

void JsonWriter::close(char bracket) {
  --depth_;
  if (out_.back() != '[' && out_.back() != '{') newLine();
  out_ += bracket;
}

void JsonWriter::item() {
  if (out_.back() != '[' && out_.back() != '{') out_ += ',';
  newLine();
}

void JsonWriter::key(std::string_view name) {
  item();
  appendJsonString(out_, name);
  out_ += style_.indented ? ": " : ":";
}

void JsonWriter::newLine() {
  if (!style_.indented) return;
  out_ += '\n';
  out_.append(2 * depth_, ' ');
}

}  // namespace zqxml::tool
