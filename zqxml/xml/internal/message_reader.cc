#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/format.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/xml/internal/message_reader.h>
#include <zqxml/xml/internal/message_reader_names.h>
#include <zqxml/xml/internal/root_class.h>
#include <zqxml/xml/internal/scanned_text.h>

#include <concepts>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace zqxml {
namespace {

constexpr char kStart[] = "MySAX2Handler::startElement";
constexpr char kEnd[] = "MySAX2Handler::endElement";
constexpr char kAttributes[] = "MySAX2Handler::processAttributes";

/// New object of the class that a root element's name stands for, null when there is none or no memory for
/// it.
std::unique_ptr<XNMessageBase> makeRoot(std::string_view name, std::uint32_t hash) {
  const std::optional<RootClass> root = rootClassOf(name, hash);
  if (!root.has_value()) return nullptr;
  try {
    return std::unique_ptr<XNMessageBase>(MessageAccess::create(root->subsystem, root->classIndex));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

/// The field at the position, when it has that hash: no two of a class have one, but for the 0 of fields that
/// no name leads to.
const FieldDef* fieldAt(const _ClassDef& classDef, unsigned position, std::uint32_t hash) {
  if (hash == 0 || static_cast<int>(position) >= classDef.getNumberOfFields()) return nullptr;
  const FieldDef& field = classDef.getFields()[position];
  return field.getFieldHashId() == hash && field.getType() != FDT_NONE ? &field : nullptr;
}

template <class Tag>
void logBadAttributes(Tag tag) {
  logError(kStart, "Error while parsing attributes for tag : [%s] ", tag);
}

}  // namespace

template <class Char>
BasicMessageReader<Char>::BasicMessageReader(XNMessageBase* root, std::size_t maxLevels)
    : maxLevels_(maxLevels), path_(maxLevels) {
  if (root != nullptr) path_.openRoot(*root);
}

template <class Char>
template <class Attributes>
void BasicMessageReader<Char>::start(Name name, const Attributes& attributes, std::size_t alike) {
  checkDepth();
  const bool isRoot = !std::exchange(started_, true);
  if (!isRoot && path_.empty()) return;  // the root had no class
  if (skipping_) return logDebug(kStart, 10, "Skipping element [%s]", name.text);
  if (isRoot) {
    rootTag_ = name.text;
    if (path_.empty()) return openRoot(name, attributes);
  }

  const std::uint32_t hash = name.hash;
  const FieldDef* field = find(path_.current(), hash);
  const bool isObject = field != nullptr && openObject(*field, attributes, alike);
  if (!isRoot && field == nullptr && hash != kMapKeyHash && hash != kMapValueHash) {
    logDebug(kStart, 10, "Skipping member : [%s]", name.text);
    skipTag_ = name.text;
    skipping_ = true;
    return;
  }
  if (field != nullptr && FieldDef::isMapType(field->getType())) return openEntry(*field);

  if (field == nullptr && inMap() && entries_.back().valueSide) openMapValue();
  if (attributes.empty()) {
    if (inMap())
      capturing_ = capturing_ || (!isObject && capturesSide(hash));
    else if (field != nullptr && !kObjectFields.contains(field->getType()))
      capturing_ = true;
    return;
  }
  if (!isObject && !processAttributes(attributes)) logBadAttributes(name.text);
  if (attributes.size() == 1 && (field != nullptr || inMap()) &&
      attributes.front().name.text == kValText<Char>)
    readVal(field, attributes.front().value, alike);
}

/// An object in a map takes two elements, and a value inside the innermost object one more. What is nested
/// deeper is no message, and the parser takes the time of all open elements for each one that opens.
template <class Char>
void BasicMessageReader<Char>::checkDepth() {
  const std::size_t mostElements = 2 * maxLevels_ + 1;
  if (maxLevels_ != 0 && depth_ >= mostElements)
    throw std::length_error(formatText("Elements are nested in more than [%zu] levels", mostElements));
  ++depth_;
}

template <class Char>
template <class Attributes>
void BasicMessageReader<Char>::openRoot(Name name, const Attributes& attributes) {
  const auto narrow = asUtf8(name.text);
  std::unique_ptr<XNMessageBase> made = makeRoot(narrow, name.hash);
  if (made == nullptr) {
    std::string text = "Unable to construct object out of tag : [";
    text.append(narrow).append("]");
    logError(kStart, "%s", text);
    throw std::runtime_error(text);
  }
  MessageAccess::wipeBitset(*made);
  path_.openRoot(*made);
  static_cast<void>(made.release());    // the caller's from here on
  (void)processAttributes(attributes);  // a class was found
}

/// Makes the object of an object field, or the next one of a list, the current one. False for other fields.
template <class Char>
template <class Attributes>
bool BasicMessageReader<Char>::openObject(const FieldDef& field, const Attributes& attributes,
                                          std::size_t alike) {
  if (!kObjectFields.contains(field.getType())) return false;
  const bool opened =
      field.getType() == FDT_OBJECT ? path_.openMember(field) : path_.openElement(field, alike);
  if (opened && !processAttributes(attributes)) logBadAttributes(field.getName());
  return opened;
}

/// False when the current object has no class that could say what an attribute is.
template <class Char>
template <class Attributes>
bool BasicMessageReader<Char>::processAttributes(const Attributes& attributes) {
  XNMessageBase& object = path_.current();
  const _ClassDef* classDef = MessageAccess::classDef(object);
  if (classDef == nullptr) return false;
  for (const BasicAttributeView<Char> attribute : attributes) {
    const FieldDef* field = fieldAt(*classDef, attribute.position, attribute.name.hash);
    if (field == nullptr) field = finder_.find(classDef, attribute.name.hash);
    if (field != nullptr)
      values_.storeAttribute(object, *field, attribute.value, kAttributes);
    else
      logDebug(kAttributes, 15, "No such field : [%s] in message : [%s] ", attribute.name.text,
               classDef->getName());
  }
  return true;
}

template <class Char>
void BasicMessageReader<Char>::readVal(const FieldDef* field, View value, std::size_t alike) {
  readSpecialCharsSetting();
  if (field != nullptr) values_.appendVal(path_.current(), *field, value, alike);
  if (inMap()) readSide(value);
}

template <class Char>
void BasicMessageReader<Char>::end(Name name) {
  if (depth_ == 0) return;  // nothing is open
  --depth_;
  if (path_.empty()) return;
  const bool wasCapturing = std::exchange(capturing_, false);
  if (skipping_) {
    text_.clear();
    // QUIRK: the first end tag of that name ends the skip, be it that of an element inside; nothing is
    // counted.
    if (name.text == skipTag_) {
      skipping_ = false;
      skipTag_.clear();
    }
    return;
  }
  const std::uint32_t hash = name.hash;
  if (path_.size() > 1 && !wasCapturing && endObject(hash)) return;

  XNMessageBase& object = path_.current();
  const FieldDef* field = find(object, hash);
  if (field == nullptr)
    endUnknown(name.text, wasCapturing);
  else if (inMap() && field->getFieldHashId() == entries_.back().field->getFieldHashId())
    processMapEnd(*field);
  else if (text_.empty())
    logDebug(kEnd, 15, "Skipping member [%s] as it has empty value", name.text);
  else
    values_.storeText(object, *field, text_, kEnd);
  text_.clear();
}

/// Whether the end tag closed the current object, or claimed to close a side of a map entry.
///
/// QUIRK: an object is closed by the name of a field of the object around it, whatever it was opened as. So a
/// list element in attribute form closes its object when the object around has an object field of that name.
template <class Char>
bool BasicMessageReader<Char>::endObject(std::uint32_t hash) {
  const FieldDef* field = find(path_.parent(), hash);
  if (field != nullptr && kObjectFields.contains(field->getType())) {
    dropEntries(path_.size());
    if (field->getType() == FDT_OBJECT)
      path_.closeAsMember(*field);
    else
      path_.closeAsElement(*field);
    return true;
  }
  if (hash == kMapKeyHash)
    endKeyObject();
  else if (hash == kMapValueHash)
    endValueObject();
  else
    return false;
  return true;
}

template <class Char>
void BasicMessageReader<Char>::endUnknown(View name, bool wasCapturing) {
  if (!inMap()) {
    if (name != rootTag_) logDebug(kEnd, 15, "Unidentified message : [%s]", name);
    return;
  }
  // An empty text leaves a string side as it is; to a number it means 0.
  if (wasCapturing && (!text_.empty() || entries_.back().sideType() != FDT_STRING)) readSide(text_);
  entries_.back().valueSide = true;
}

template <class Char>
const FieldDef* BasicMessageReader<Char>::find(const XNMessageBase& object, std::uint32_t hash) {
  const _ClassDef* const classDef = MessageAccess::classDef(object);
  if (found_.classDef != classDef || found_.hash != hash)
    found_ = {classDef, finder_.find(classDef, hash), hash};
  return found_.field;
}

// --- Map entries: <field><__mapKey__ .../><__mapValue__ .../></field>.

template <class Char>
void BasicMessageReader<Char>::openEntry(const FieldDef& field) {
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

template <class Char>
void BasicMessageReader<Char>::openMapValue() {
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
template <class Char>
bool BasicMessageReader<Char>::capturesSide(std::uint32_t hash) const {
  const MapEntry& entry = entries_.back();
  return entry.sideType() != FDT_OBJECT || hash != (entry.valueSide ? kMapValueHash : kMapKeyHash);
}

/// Stores the text of the side in progress; a side that is an object, or is not there yet, takes none.
template <class Char>
void BasicMessageReader<Char>::readSide(View text) {
  Side& side = entries_.back().side();
  if (auto* string = std::get_if<std::string>(&side))
    values_.readString(text, *string);
  else if (auto* number = std::get_if<std::int64_t>(&side))
    *number = parseInt64(text);
}

template <class Char>
void BasicMessageReader<Char>::endKeyObject() {
  if (!takeSide(PathRole::kMapKey))
    logError("MySAX2Handler::endElement", "Encountered wrong map[key] tag usage. Cached map name is : [%s]",
             mapName());
}

template <class Char>
void BasicMessageReader<Char>::endValueObject() {
  if (!takeSide(PathRole::kMapValue))
    logError("MySAX2Handler::endElement", "Encountered wrong map[value] tag usage. Cached map name is : [%s]",
             mapName());
}

/// Whether the side is a number or a string: of the entry that the current object was made for, or of one in
/// the object itself. Another entry that is in progress is no concern of either.
template <class Char>
bool BasicMessageReader<Char>::isPlain(PathRole side) const {
  if (!inMap()) return false;
  const MapEntry& entry = entries_.back();
  if (entry.number != path_.entry() && entry.depth != path_.size()) return false;
  return entry.typeOf(side) != FDT_OBJECT;
}

/// Moves the current object into the entry that it was made for, as the side whose tag ends, whichever it was
/// made for. False when it is no such object. An entry that has ended in between has no use for it.
///
/// QUIRK: a number or a string never is one. So where a side in attribute form stands inside a sub-object,
/// its end tag only gives a line, the key side stays the one in progress, and the pair is lost.
template <class Char>
bool BasicMessageReader<Char>::takeSide(PathRole role) {
  const bool isSide = path_.role() == PathRole::kMapKey || path_.role() == PathRole::kMapValue;
  if (!isSide || isPlain(role)) return false;
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
template <class Char>
struct BasicMessageReader<Char>::MapInsert {
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

template <class Char>
void BasicMessageReader<Char>::processMapEnd(const FieldDef& field) {
  MapEntry entry = std::move(entries_.back());
  entries_.pop_back();
  visitStorage(field.getType(), MapInsert{path_.current(), field, entry});
}

template <class Char>
void BasicMessageReader<Char>::dropEntries(std::size_t depth) {
  while (inMap() && entries_.back().depth >= depth) entries_.pop_back();
}

template <class Char>
const char* BasicMessageReader<Char>::mapName() const {
  return inMap() ? entries_.back().field->getName() : mapField_.getName();
}

template class BasicMessageReader<char>;
template class BasicMessageReader<char16_t>;
template void BasicMessageReader<char>::start(Name, const ScannedAttributes<char>&, std::size_t);
template void BasicMessageReader<char16_t>::start(Name, const ScannedAttributes<char16_t>&, std::size_t);
template void MessageReader::start(Name, const AttributeViews&, std::size_t);

}  // namespace zqxml
