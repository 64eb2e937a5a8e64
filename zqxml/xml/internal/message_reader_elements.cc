#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/format.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/message_reader.h>
#include <zqxml/xml/internal/message_reader_names.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace zqxml {
namespace {

constexpr char kStart[] = "MySAX2Handler::startElement";
constexpr char kEnd[] = "MySAX2Handler::endElement";
constexpr char kAttributes[] = "MySAX2Handler::processAttributes";

/// New object of the class that a root element's name stands for, null when there is none or no memory for
/// it.
std::unique_ptr<XNMessageBase> makeRoot(const std::string& name) {
  const std::size_t separator = name.find('_');
  if (separator == name.npos) return nullptr;
  std::string subsystemName = name.substr(0, separator);
  // QUIRK: twelve classes of DistributedIDA are written under this name, and every class is read under it.
  if (subsystemName == "SystemMonitoring") subsystemName = "DistributedIDA";
  short subsystem = 0;
  int classIndex = 0;
  if (!catalogue::subsystemFromName(subsystemName.c_str(), subsystem) ||
      !catalogue::classIndexFromName(name.c_str() + separator + 1, subsystem, classIndex))
    return nullptr;
  try {
    return std::unique_ptr<XNMessageBase>(MessageAccess::create(subsystem, classIndex));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void logBadAttributes(std::u16string_view tag) {
  logError(kStart, "Error while parsing attributes for tag : [%s] ", tag);
}

}  // namespace

MessageReader::MessageReader(XNMessageBase* root, std::size_t maxLevels)
    : maxLevels_(maxLevels), path_(maxLevels) {
  if (root != nullptr) path_.openRoot(*root);
}

void MessageReader::start(std::u16string_view name, std::span<const AttributeView> attributes) {
  checkDepth();
  const bool isRoot = !std::exchange(started_, true);
  if (!isRoot && path_.empty()) return;  // the root had no class
  if (skipping_) return logDebug(kStart, 10, "Skipping element [%s]", name);
  if (isRoot) {
    rootTag_ = name;
    if (path_.empty()) return openRoot(name, attributes);
  }

  const std::uint32_t hash = nameHash(name);
  const FieldDef* field = find(path_.current(), hash);
  const bool isObject = field != nullptr && openObject(*field, attributes);
  if (!isRoot && field == nullptr && hash != kMapKeyHash && hash != kMapValueHash) {
    logDebug(kStart, 10, "Skipping member : [%s]", name);
    skipTag_ = name;
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
  if (!isObject && !processAttributes(attributes)) logBadAttributes(name);
  if (attributes.size() == 1 && (field != nullptr || inMap()) && attributes.front().name == kValName)
    readVal(field, attributes.front().value);
}

/// An object in a map takes two elements, and a value inside the innermost object one more. What is nested
/// deeper is no message, and the parser takes the time of all open elements for each one that opens.
void MessageReader::checkDepth() {
  const std::size_t mostElements = 2 * maxLevels_ + 1;
  if (maxLevels_ != 0 && depth_ >= mostElements)
    throw std::length_error(formatText("Elements are nested in more than [%zu] levels", mostElements));
  ++depth_;
}

void MessageReader::openRoot(std::u16string_view name, std::span<const AttributeView> attributes) {
  const std::string narrow = toUtf8(name);
  std::unique_ptr<XNMessageBase> made = makeRoot(narrow);
  if (made == nullptr) {
    const std::string text = "Unable to construct object out of tag : [" + narrow + "]";
    logError(kStart, "%s", text);
    throw std::runtime_error(text);
  }
  MessageAccess::wipeBitset(*made);
  path_.openRoot(*made);
  made.release();  // the caller's from here on
  if (!processAttributes(attributes)) logBadAttributes(name);
}

/// Makes the object of an object field, or the next one of a list, the current one. False for other fields.
bool MessageReader::openObject(const FieldDef& field, std::span<const AttributeView> attributes) {
  if (!kObjectFields.contains(field.getType())) return false;
  const bool opened = field.getType() == FDT_OBJECT ? path_.openMember(field) : path_.openElement(field);
  if (opened && !processAttributes(attributes)) logBadAttributes(toUtf16(field.getName()));
  return opened;
}

/// False when the current object has no class that could say what an attribute is.
bool MessageReader::processAttributes(std::span<const AttributeView> attributes) {
  XNMessageBase& object = path_.current();
  const _ClassDef* classDef = MessageAccess::classDef(object);
  if (classDef == nullptr) return false;
  for (const AttributeView& attribute : attributes) {
    const FieldDef* field = finder_.find(classDef, nameHash(attribute.name));
    if (field != nullptr)
      values_.storeAttribute(object, *field, attribute.value, kAttributes);
    else
      logDebug(kAttributes, 15, "No such field : [%s] in message : [%s] ", attribute.name,
               classDef->getName());
  }
  return true;
}

void MessageReader::readVal(const FieldDef* field, std::u16string_view value) {
  readSpecialCharsSetting();
  if (field != nullptr) values_.appendVal(path_.current(), *field, value);
  if (inMap()) readSide(value);
}

void MessageReader::end(std::u16string_view name) {
  if (depth_ == 0) return;  // nothing is open
  --depth_;
  if (path_.empty()) return;
  const bool wasCapturing = std::exchange(capturing_, false);
  if (skipping_) {
    text_.clear();
    // QUIRK: the first end tag of that name ends the skip, be it that of an element inside; nothing is
    // counted.
    if (name == skipTag_) {
      skipping_ = false;
      skipTag_.clear();
    }
    return;
  }
  const std::uint32_t hash = nameHash(name);
  if (path_.size() > 1 && !wasCapturing && endObject(hash)) return;

  XNMessageBase& object = path_.current();
  const FieldDef* field = find(object, hash);
  if (field == nullptr)
    endUnknown(name, wasCapturing);
  else if (inMap() && field->getFieldHashId() == entries_.back().field->getFieldHashId())
    processMapEnd(*field);
  else if (text_.empty())
    logDebug(kEnd, 15, "Skipping member [%s] as it has empty value", name);
  else
    values_.storeText(object, *field, text_, kEnd);
  text_.clear();
}

/// Whether the end tag closed the current object, or claimed to close a side of a map entry.
///
/// QUIRK: an object is closed by the name of a field of the object around it, whatever it was opened as. So a
/// list element in attribute form closes its object when the object around has an object field of that name.
bool MessageReader::endObject(std::uint32_t hash) {
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

void MessageReader::endUnknown(std::u16string_view name, bool wasCapturing) {
  if (!inMap()) {
    if (name != rootTag_) logDebug(kEnd, 15, "Unidentified message : [%s]", name);
    return;
  }
  // An empty text leaves a string side as it is; to a number it means 0.
  if (wasCapturing && (!text_.empty() || entries_.back().sideType() != FDT_STRING)) readSide(text_);
  entries_.back().valueSide = true;
}

const FieldDef* MessageReader::find(const XNMessageBase& object, std::uint32_t hash) {
  return finder_.find(MessageAccess::classDef(object), hash);
}

}  // namespace zqxml
