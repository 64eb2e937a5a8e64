#include "tools/zqmsg/json/json_message_builder.h"

#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/message_access.h>

#include <algorithm>
#include <map>
#include <utility>

#include "tools/zqmsg/class_name.h"
#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/json/json_element.h"
#include "tools/zqmsg/masks.h"
#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

using Fault = JsonReading::Fault;

/// A name longer than any in the catalogue: nothing is looked for that is like it.
constexpr std::size_t kLongestName = 200;

}  // namespace

/// Stores a value in a member.
struct JsonMessageBuilder::MemberValue {
  XNMessageBase& message;
  const FieldDef& field;
  const JsonValue& value;
  JsonMisfit& misfit;

  template <element::Integer E>
  bool operator()(Scalar<E>) const {
    const auto number = integerOf<E>(value, field, misfit);
    if (number) MessageAccess::setInteger(message, field, *number);
    return number.has_value();
  }
  bool operator()(Scalar<element::Double>) const {
    const auto number = floatingOf<double>(value, misfit);
    if (number) MessageAccess::setDouble(message, field, *number);
    return number.has_value();
  }
  bool operator()(Scalar<element::Float>) const {
    const auto number = floatingOf<float>(value, misfit);
    if (number) MessageAccess::setFloat(message, field, *number);
    return number.has_value();
  }
  template <class E>
  bool operator()(InPlace<E>) const {
    MessageAccess::mark(message, field.getMemNum());
    return elementOf<E>(value, field, MessageAccess::inPlace<typename E::Value>(message, field), misfit);
  }
  template <class E>
  bool operator()(Owned<E>) const {
    return elementOf<E>(value, field, MessageAccess::make<typename E::Value>(message, field, true), misfit);
  }
  // Objects, lists, maps, and what stores nothing.
  bool operator()(auto) const {
    misfit = needOf(field) + " and has " + shown(value);
    return false;
  }
};

/// Appends a value to a list.
struct JsonMessageBuilder::ElementValue {
  XNMessageBase& message;
  const FieldDef& field;
  const JsonValue& value;
  JsonMisfit& misfit;

  template <class E>
  bool operator()(List<E>) const {
    if constexpr (std::same_as<E, element::Obj>) {
      misfit = "needs an object and has " + shown(value);
      return false;
    } else {
      typename E::Value made{};
      if (!elementOf<E>(value, field, made, misfit)) return false;
      MessageAccess::make<typename List<E>::Value>(message, field, true).push_back(std::move(made));
      return true;
    }
  }
  bool operator()(auto) const { return false; }
};

JsonMessageBuilder::JsonMessageBuilder(bool masked, std::size_t maxLevels)
    : masked_(masked), maxLevels_(maxLevels) {}

bool JsonMessageBuilder::fail(Fault fault, const std::string& what, std::string advice) {
  const std::string at = fault == Fault::kUnfit ? path() : "";
  reading_.fault = fault;
  reading_.what = at.empty() ? what : at + ' ' + what;
  reading_.advice = std::move(advice);
  return false;
}

JsonReading JsonMessageBuilder::take() {
  frames_.clear();
  if (reading_.fault != Fault::kNone) reading_.message.reset();
  return std::move(reading_);
}

// As `zqmsg diff` has it: jobs[3].owner.
std::string JsonMessageBuilder::path() const {
  std::string path;
  for (const Frame& frame : frames_) {
    if (frame.level == Level::kObject && frame.field != nullptr) {
      path += (path.empty() ? "" : ".") + std::string(frame.field->getName());
    } else if (frame.level == Level::kPair) {
      path += frame.count == 0 ? "[key]" : "[value]";
    } else if (frame.level == Level::kList || (frame.level == Level::kMap && &frame == &frames_.back())) {
      path += '[' + std::to_string(frame.count) + ']';
    }
  }
  return path;
}

// --- Values

bool JsonMessageBuilder::isMask(const JsonValue& value) const {
  return value.kind == JsonValue::Kind::kText &&
         (value.text == kMaskedValue || value.text == kMaskedPassword);
}

bool JsonMessageBuilder::value(const JsonValue& value) {
  if (frames_.empty() || frames_.back().level == Level::kDocument) return needsObject();
  Frame& frame = frames_.back();
  if (frame.level == Level::kPair) return pairSide(frame, value);
  if (frame.level == Level::kMap) return misfit("needs a pair [key, value] and has " + shown(value));
  // null is a member that is not set, as where the member is not there at all.
  if (frame.level == Level::kObject && value.kind == JsonValue::Kind::kNull) return true;
  JsonMisfit what;
  const FieldDef& field = *frame.field;
  const bool fits = frame.level == Level::kList
                        ? visitStorage(field.getType(), ElementValue{*frame.message, field, value, what})
                        : visitStorage(field.getType(), MemberValue{*frame.message, field, value, what});
  if (!fits && isMask(value))
    return masked_ || fail(Fault::kUnfit, "is masked: its value is not in the document");
  if (!fits) return misfit(what);
  if (frame.level == Level::kList) ++frame.count;
  return true;
}

bool JsonMessageBuilder::needsObject() {
  return fail(Fault::kUnfit, "a document is an object that names a class: {\"SUBSYSTEM_CLASS\": {...}}");
}

// --- Objects

bool JsonMessageBuilder::startObject() {
  if (frames_.empty()) {
    frames_.push_back({Level::kDocument});
    return true;
  }
  Frame& frame = frames_.back();
  switch (frame.level) {
    case Level::kDocument:
      return openObject(*reading_.message);
    case Level::kObject:
      return openMember(frame);
    case Level::kList:
      return openElement(frame);
    case Level::kMap:
      return misfit("needs a pair [key, value] and has an object");
    case Level::kPair:
      return openSide(frame);
  }
  return false;
}

bool JsonMessageBuilder::openObject(XNMessageBase& message) {
  if (maxLevels_ != 0 && levels_ >= maxLevels_)
    return misfit("is nested in more than " + std::to_string(maxLevels_) + " levels of objects");
  ++levels_;
  MessageAccess::wipeBitset(message);
  const _ClassDef* record = MessageAccess::classDef(message);
  frames_.push_back({Level::kObject, &message});
  frames_.back().seen.resize(static_cast<std::size_t>(record->getNumberOfFields()));
  return true;
}

bool JsonMessageBuilder::openMember(Frame& frame) {
  const FieldDef& field = *frame.field;
  const bool isObject =
      visitStorage(field.getType(), Overloaded{[](Object) { return true; }, [](auto) { return false; }});
  if (!isObject) return misfit(needOf(field) + " and has an object");
  XNMessageBase*& object = MessageAccess::owned<XNMessageBase>(*frame.message, field);
  if (object == nullptr) object = XNMessageBase::createObjectFromClassID(field.namePointer());
  if (object == nullptr) return misfit("is of a class that the catalogue does not have");
  MessageAccess::mark(*frame.message, field.getMemNum());
  return openObject(*object);
}

bool JsonMessageBuilder::openElement(Frame& frame) {
  const FieldDef& field = *frame.field;
  const bool ofObjects = visitStorage(
      field.getType(), Overloaded{[](List<element::Obj>) { return true; }, [](auto) { return false; }});
  if (!ofObjects) return misfit(needOf(field) + " and has an object in it");
  if (catalogue::classOfRef(field.namePointer()) == nullptr)
    return misfit("is of a class that the catalogue does not have");
  auto& elements = MessageAccess::make<std::vector<XNMessageBase>>(*frame.message, field, true);
  XNMessageBase& element = elements.emplace_back();
  MessageAccess::initialize(element, ClassRef::read(field.namePointer()));
  return openObject(element);
}

bool JsonMessageBuilder::openSide(Frame& frame) {
  const FieldDef& field = *frame.field;
  if (frame.count > 1) return misfit("has more than a key and a value");
  const bool isKey = frame.count == 0;
  const auto isOfObjects = [isKey]<class K, class V>(Map<K, V>) {
    const bool keys = std::same_as<K, element::Obj>;
    const bool values = std::same_as<V, element::Obj>;
    return isKey ? keys : values;
  };
  const bool isObject = visitStorage(field.getType(), Overloaded{isOfObjects, [](auto) { return false; }});
  if (!isObject) return misfit("needs no object");
  // The class of the value stands last, behind that of the key where there is one.
  const char* ref = field.namePointer() + (isKey ? 0 : field.classRefBytes() - ClassRef::kSize);
  std::unique_ptr<XNMessageBase> object(XNMessageBase::createObjectFromClassID(ref));
  if (object == nullptr) return misfit("is of a class that the catalogue does not have");
  XNMessageBase& made = *object;
  (isKey ? frame.key : frame.mapped) = std::move(object);
  return openObject(made);
}

bool JsonMessageBuilder::key(std::string_view name) {
  return frames_.back().level == Level::kDocument ? nameClass(name) : nameMember(name);
}

bool JsonMessageBuilder::nameClass(std::string_view name) {
  if (reading_.message != nullptr) return misfit("a document holds one message, and here begins a second");
  if (name.size() > kLongestName) return fail(Fault::kUnknownClass, quotedText(name) + " names no class");
  try {
    ClassPlace place = findClass(std::string(name));
    if (place.record->isEnumeration())
      return fail(Fault::kUnknownClass, quotedText(name) + " is an enumeration, and has no messages");
    reading_.message.reset(XNMessageBase::createObjectFromIndices(place.subsystem, place.classIndex));
  } catch (const Failure& failure) {
    return fail(Fault::kUnknownClass, quotedText(name) + ' ' + failure.what(), failure.advice());
  }
  return reading_.message != nullptr || fail(Fault::kUnknownClass, quotedText(name) + " has no messages");
}

bool JsonMessageBuilder::nameMember(std::string_view name) {
  Frame& frame = frames_.back();
  const _ClassDef* record = MessageAccess::classDef(*frame.message);
  frame.field = nullptr;
  const int position = name.size() > kLongestName ? -1 : catalogue::fieldPosition(record, name);
  // A name of the same hash is another name all the same.
  if (position < 0 || name != record->getFields()[position].getName())
    return fail(Fault::kUnfit, quotedText(name) + " is no field of " + frame.message->getTagName(),
                "'zqmsg describe " + frame.message->getTagName() + "' lists the fields");
  frame.field = &record->getFields()[position];
  if (frame.seen[static_cast<std::size_t>(position)]) return misfit("is there twice");
  frame.seen[static_cast<std::size_t>(position)] = true;
  return true;
}

bool JsonMessageBuilder::endObject() {
  if (frames_.back().level == Level::kDocument) {
    if (reading_.message == nullptr) return needsObject();
    frames_.pop_back();
    return true;
  }
  frames_.pop_back();
  --levels_;
  Frame& around = frames_.back();
  if (around.level == Level::kList || around.level == Level::kPair) ++around.count;
  return true;
}

// --- Arrays

bool JsonMessageBuilder::startArray() {
  if (frames_.empty() || frames_.back().level == Level::kDocument) return needsObject();
  Frame& frame = frames_.back();
  const FieldDef& field = *frame.field;
  XNMessageBase* message = frame.message;
  if (frame.level == Level::kMap) {
    frames_.push_back({Level::kPair, message, &field});
    return true;
  }
  if (frame.level != Level::kObject) return misfit("needs no array");
  return visitStorage(
      field.getType(),
      Overloaded{[&]<class E>(List<E>) {
                   MessageAccess::make<typename List<E>::Value>(*message, field, true).clear();
                   frames_.push_back({Level::kList, message, &field});
                   return true;
                 },
                 [&]<class K, class V>(Map<K, V>) {
                   MessageAccess::make<typename Map<K, V>::Value>(*message, field, true).clear();
                   frames_.push_back({Level::kMap, message, &field});
                   return true;
                 },
                 [&](auto) { return misfit(needOf(field) + " and has an array"); }});
}

bool JsonMessageBuilder::endArray() {
  if (frames_.back().level == Level::kPair && !closePair()) return false;
  frames_.pop_back();
  return true;
}

// --- Pairs

bool JsonMessageBuilder::pairSide(Frame& frame, const JsonValue& value) {
  if (frame.count > 1) return misfit("has more than a key and a value");
  const FieldDef& field = *frame.field;
  JsonMisfit what;
  const auto read = [&]<class E>(E, Side& side) {
    if constexpr (std::same_as<E, element::Obj>) {
      what = "needs an object and has " + shown(value);
      return false;
    } else {
      typename E::Value made{};
      if (!elementOf<E>(value, field, made, what)) return false;
      side = std::move(made);
      return true;
    }
  };
  const bool fits = visitStorage(
      field.getType(), Overloaded{[&]<class K, class V>(Map<K, V>) {
                                    return frame.count == 0 ? read(K{}, frame.key) : read(V{}, frame.mapped);
                                  },
                                  [](auto) { return false; }});
  if (!fits) return misfit(what);
  ++frame.count;
  return true;
}

bool JsonMessageBuilder::closePair() {
  Frame& pair = frames_.back();
  Frame& map = frames_[frames_.size() - 2];
  if (pair.count < 2) return misfit("is not there");
  const auto taken = []<class E>(E, Side& side) -> typename E::Value {
    if constexpr (std::same_as<E, element::Obj>) {
      return std::move(*std::get<std::unique_ptr<XNMessageBase>>(side));
    } else {
      return std::get<typename E::Value>(std::move(side));
    }
  };
  const bool isNew = visitStorage(pair.field->getType(),
                                  Overloaded{[&]<class K, class V>(Map<K, V>) {
                                               return MessageAccess::make<typename Map<K, V>::Value>(
                                                          *pair.message, *pair.field, true)
                                                   .emplace(taken(K{}, pair.key), taken(V{}, pair.mapped))
                                                   .second;
                                             },
                                             [](auto) { return false; }});
  pair.count = 0;  // a fault is about the key
  if (!isNew) return misfit("is there already");
  ++map.count;
  return true;
}

}  // namespace zqxml::tool
