#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/internal/held_text.h>

namespace zqxml {
namespace {

struct TextHolder {
  const XNMessageBase& message;
  const FieldDef& field;
  std::size_t bytes;

  bool operator()(Nothing) const { return false; }
  template <class E>
  bool operator()(Scalar<E>) const {
    return false;
  }
  template <class E>
  bool operator()(InPlace<E>) const {
    return holds(MessageAccess::inPlace<typename E::Value>(message, field));
  }
  template <class E>
  bool operator()(Owned<E>) const {
    const auto* text = MessageAccess::owned<typename E::Value>(message, field);
    return text != nullptr && holds(text->str());
  }
  template <class Storage>
  bool operator()(Storage) const {
    return MessageAccess::owned<typename Storage::Value>(message, field) != nullptr;
  }

 private:
  template <class Text>
  bool holds(const Text& text) const {
    return text.size() * sizeof(text[0]) >= bytes;
  }
};

}  // namespace

bool mayHoldText(const XNMessageBase& message, std::size_t bytes) {
  const _ClassDef* classDef = MessageAccess::classDef(message);
  if (classDef == nullptr) return false;
  for (const FieldDef& field : *classDef)
    if (visitStorage(field.getType(), TextHolder{message, field, bytes})) return true;
  return false;
}

}  // namespace zqxml
