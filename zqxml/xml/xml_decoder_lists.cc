// XMLDecoder: list fields by name, for callers that know the element type and not the class.
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_decoder.h>

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace zqxml {
namespace {

/// The list field of this name; null, and a line, when there is none.
const FieldDef* findList(const char* function, const XNMessageBase* msg, const std::string& name) {
  if (msg == nullptr) {
    logError(function, "Received NULL message object");
    return nullptr;
  }
  if (name.empty()) {
    logError(function, "Received NULL field");
    return nullptr;
  }
  const _ClassDef* classDef = XMLDecoder::GetClassDef(msg);
  if (classDef == nullptr) {
    logError(function, "Error retrieving metadata for given message");
    return nullptr;
  }
  const int position = catalogue::fieldPosition(classDef, name);
  if (position < 0) {
    logError(function, "Message [%s] does not have field [%s]", msg->getTagName(), name);
    return nullptr;
  }
  const FieldDef& field = classDef->getFields()[position];
  // QUIRK: type 6 passes for a list and holds none; types 18 and 30 are lists and do not pass.
  if (XMLDecoder::isListType(field.getType())) return &field;
  logError(function, "Received field [%s] is not a list type", name);
  return nullptr;
}

/// Appends a copy of the caller's value.
struct Insert {
  XNMessageBase& msg;
  const FieldDef& field;
  const void* value;

  template <class E>
  void operator()(List<E>) const {
    using Value = typename E::Value;
    auto& list = MessageAccess::make<std::vector<Value>>(msg, field, true);
    if constexpr (element::Integer<E>) {
      std::int64_t cell = 0;
      std::memcpy(&cell, value, sizeof cell);
      list.push_back(static_cast<Value>(cell));
    } else {
      list.push_back(*static_cast<const Value*>(value));
    }
  }
  template <class Storage>
  void operator()(Storage) const {}
};

/// Points to each element; integers are widened into cells that the thread keeps.
struct Read {
  const XNMessageBase& msg;
  const FieldDef& field;
  std::vector<const void*>& out;

  template <class E>
  void operator()(List<E>) const {
    static thread_local std::vector<std::int64_t> cells;
    const auto* list = MessageAccess::owned<std::vector<typename E::Value>>(msg, field);
    if (list == nullptr) return;
    if constexpr (element::Integer<E>) {
      cells.assign(list->begin(), list->end());
      for (const std::int64_t& cell : cells) out.push_back(&cell);
    } else {
      for (const auto& element : *list) out.push_back(&element);
    }
  }
  template <class Storage>
  void operator()(Storage) const {}
};

}  // namespace

void XMLDecoder::InsertIntoList(XNMessageBase* msg, const std::string& field, const void* value) {
  constexpr char kInsert[] = "XMLDecoder::InsertIntoList";
  const FieldDef* list = findList(kInsert, msg, field);
  if (list == nullptr) return;
  if (value == nullptr) return logError(kInsert, "Received NULL field");
  visitStorage(list->getType(), Insert{*msg, *list, value});
}

void XMLDecoder::ReadFromList(const XNMessageBase* msg, const std::string& field,
                              std::vector<const void*>& out) {
  out.clear();
  const FieldDef* list = findList("XMLDecoder::ReadFromList", msg, field);
  if (list != nullptr) visitStorage(list->getType(), Read{*msg, *list, out});
}

}  // namespace zqxml
