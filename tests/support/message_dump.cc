#include <tests/support/message_dump.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/format.h>
#include <zqxml/platform/text.h>

#include <string_view>

namespace zqxml {
namespace {

/// Writes values; `indent` stands before each line of a message.
class Dumper {
 public:
  explicit Dumper(std::string& out) : out_(out) {}

  void write(const XNMessageBase& message) {
    out_ += message.getTagName();
    out_ += " {\n";
    indent_ += "  ";
    if (const _ClassDef* record = MessageAccess::classDef(message)) {
      for (const FieldDef& field : *record) {
        if (field.getType() != FDT_NONE && MessageAccess::isSet(message, field.getMemNum()))
          writeField(message, field);
      }
    }
    indent_.resize(indent_.size() - 2);
    out_ += indent_ + "}";
  }

 private:
  void writeField(const XNMessageBase& message, const FieldDef& field) {
    out_ += indent_;
    out_ += field.getName();
    out_ += " = ";
    visitStorage(
        field.getType(),
        Overloaded{
            [&](Nothing) { out_ += "nothing"; }, [&]<class E>(Scalar<E>) { writeScalar<E>(message, field); },
            [&]<class E>(InPlace<E>) { write(MessageAccess::inPlace<typename E::Value>(message, field)); },
            [&]<class Storage>(Storage) {
              using Value = typename Storage::Value;
              const Value* value = MessageAccess::owned<Value>(message, field);
              if (value == nullptr)
                out_ += "null";
              else
                write(*value);
            }});
    out_ += '\n';
  }

  template <class E>
  void writeScalar(const XNMessageBase& message, const FieldDef& field) {
    if constexpr (element::Floating<E>)
      write(MessageAccess::scalar<typename E::Value>(message, field));
    else
      write(MessageAccess::slot(message, field));
  }

  template <std::integral T>
  void write(T value) {
    out_ += std::to_string(value);
  }
  template <std::floating_point T>
  void write(T value) {
    out_ += formatText("%.17g", static_cast<double>(value));
  }
  void write(const std::string& text) { writeQuoted("", text); }
  void write(const std::u16string& text) { writeQuoted("u", toUtf8(text)); }
  void write(const bstring& text) { writeQuoted("b", text.str()); }
  void write(const pstring& text) { writeQuoted(formatText("p%d", text.getEncryptionType()), text.str()); }

  template <class T>
  void write(const std::vector<T>& list) {
    out_ += '[';
    for (const T& entry : list) {
      if (&entry != list.data()) out_ += ", ";
      write(entry);
    }
    out_ += ']';
  }
  template <class K, class V>
  void write(const std::map<K, V>& map) {
    out_ += "{";
    for (const auto& [key, value] : map) {
      out_ += '<';
      write(key);
      out_ += ": ";
      write(value);
      out_ += '>';
    }
    out_ += '}';
  }

  void writeQuoted(std::string_view before, std::string_view text) {
    out_ += before;
    out_ += '"';
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte < 0x20 || c == '"' || c == '\\' || byte == 0x7f || (byte >= 0x80 && before.starts_with('b')))
        out_ += formatText("\\x%02x", byte);
      else
        out_ += c;
    }
    out_ += '"';
  }

  std::string& out_;
  std::string indent_;
};

}  // namespace

std::string dump(const XNMessageBase& message) {
  std::string text;
  Dumper(text).write(message);
  return text + "\n";
}

}  // namespace zqxml
