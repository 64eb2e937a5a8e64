// Map entries: <field><__mapKey__ .../><__mapValue__ .../></field>.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/xml/internal/message_reader.h>
#include <zqxml/xml/internal/message_reader_names.h>

#include <concepts>
#include <utility>

namespace zqxml {

/// Element type of the side in progress: FDT_INT64, FDT_STRING or FDT_OBJECT.
FieldDataType MessageReader::MapEntry::sideType() const {
  return valueSide ? FieldDef::getMapValueType(field->getType()) : FieldDef::getMapKeyType(field->getType());
}

void MessageReader::openEntry(const FieldDef& field) {
  mapField_ = field;
  MapEntry& entry = entries_.emplace_back();
  entry.field = &field;
  entry.number = ++entryCount_;
  entry.depth = path_.size();
  const FieldDataType type = entry.sideType();
  if (type == FDT_OBJECT)
    path_.openSide(field.namePointer(), PathRole::kMapKey, entry.number);
  else if (type == FDT_STRING)
    entry.key = std::string();
  else
    entry.key = std::int64_t{0};
}

void MessageReader::openMapValue() {
  MapEntry& entry = entries_.back();
  const FieldDataType type = entry.sideType();
  if (type == FDT_STRING)
    entry.value = std::string();
  else if (type == FDT_INT64)
    entry.value = std::int64_t{0};
  else
    path_.openSide(entry.field->namePointer() + entry.field->classRefBytes() - ClassRef::kSize,
                   PathRole::kMapValue, entry.number);
}

/// Whether an element without attributes inside an entry is a value held as text: all but one that is an
/// object.
bool MessageReader::capturesSide(std::uint32_t hash) const {
  const MapEntry& entry = entries_.back();
  return entry.sideType() != FDT_OBJECT || hash != (entry.valueSide ? kMapValueHash : kMapKeyHash);
}

/// Stores the text of the side in progress; a side that is an object, or is not there yet, takes none.
void MessageReader::readSide(std::u16string_view text) {
  Side& side = entries_.back().side();
  if (auto* string = std::get_if<std::string>(&side))
    values_.readString(text, *string);
  else if (auto* number = std::get_if<std::int64_t>(&side))
    *number = parseInt64(text);
}

void MessageReader::endKeyObject() {
  if (!takeSide(PathRole::kMapKey))
    logError("MySAX2Handler::endElement", "Encountered wrong map[key] tag usage. Cached map name is : [%s]",
             mapName());
}

void MessageReader::endValueObject() {
  if (!takeSide(PathRole::kMapValue))
    logError("MySAX2Handler::endElement", "Encountered wrong map[value] tag usage. Cached map name is : [%s]",
             mapName());
}

/// Moves the current object into the entry that it was made for, as its key or its value. False when it is no
/// such object. An entry that has ended in between has no use for it.
///
/// QUIRK: a number or a string never is one. So where a side in attribute form stands inside a sub-object,
/// its end tag only gives a line, the key side stays the one in progress, and the pair is lost.
bool MessageReader::takeSide(PathRole role) {
  if (path_.role() != role) return false;
  dropEntries(path_.size());
  const std::uint64_t number = path_.entry();
  std::unique_ptr<XNMessageBase> object = path_.closeSide();
  if (inMap() && entries_.back().number == number) {
    MapEntry& entry = entries_.back();
    (role == PathRole::kMapKey ? entry.key : entry.value) = std::move(object);
    if (role == PathRole::kMapKey) entry.valueSide = true;
  }
  return true;
}

/// Puts the pair into a map field, whose type says what the sides have to be.
struct MessageReader::MapInsert {
  XNMessageBase& object;
  const FieldDef& field;
  MapEntry& entry;

  template <class K, class V>
  void operator()(Map<K, V>) const {
    auto* key = content<K>(entry.key);
    auto* value = content<V>(entry.value);
    if (key == nullptr || value == nullptr) return;
    // The first entry of a key wins.
    MessageAccess::make<typename Map<K, V>::Value>(object, field, true)
        .try_emplace(std::move(*key), std::move(*value));
  }
  template <class Storage>
  void operator()(Storage) const {}

  template <class E>
  static typename E::Value* content(Side& side) {
    if constexpr (std::same_as<E, element::Obj>) {
      auto* object = std::get_if<std::unique_ptr<XNMessageBase>>(&side);
      return object == nullptr ? nullptr : object->get();
    } else {
      return std::get_if<typename E::Value>(&side);
    }
  }
};

void MessageReader::processMapEnd(const FieldDef& field) {
  MapEntry entry = std::move(entries_.back());
  entries_.pop_back();
  visitStorage(field.getType(), MapInsert{path_.current(), field, entry});
}

void MessageReader::dropEntries(std::size_t depth) {
  while (inMap() && entries_.back().depth >= depth) entries_.pop_back();
}

const char* MessageReader::mapName() const {
  return inMap() ? entries_.back().field->getName() : mapField_.getName();
}

}  // namespace zqxml
