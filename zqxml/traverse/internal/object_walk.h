// ObjectWalk: the walk over a message and all that is below it, once for both modes.
//
// The handler may change the message at any call, so nothing that was found before a call is used behind it:
// a place knows the way to its object from the object around it, and looks whether that is still there. It
// looks only when some message has ended since: a walk over a deep message would otherwise take the square of
// its depth.
#pragma once

#include <zqxml/catalogue/generated/ZqEntities.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/ended_messages.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/internal/nesting_limit.h>
#include <zqxml/traverse/xml_traverse.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace zqxml {

/// Fields in catalogue order, sub-objects at once.
struct PlainMode {
  static constexpr const char* kFunction = "XmlTraverse::traverseHelpers";
  static constexpr bool kInOrder = false;
  static constexpr int kPasses = 1;
  static constexpr bool takes(int, unsigned) { return true; }
};

/// Value fields first, then the fields with sub-objects.
struct OrderMode {
  static constexpr const char* kFunction = "XmlTraverse::traverseByOrderHelper";
  static constexpr bool kInOrder = true;
  static constexpr int kPasses = 2;
  static constexpr bool takes(int pass, unsigned type) {
    return kXmlPrimitiveTypes.contains(type) == (pass == 0);
  }
};

template <class Mode>
class ObjectWalk {
 public:
  ObjectWalk(XmlTraverse& walker, bool create, bool keep)
      : walker_(walker), handler_(*walker.handler), create_(create), keep_(keep) {}

  /// Walks the object; true when a value in it or below it was replaced.
  bool run(XNMessageBase& msg, const _ClassDef& record, const FieldDefTraverseInfo* parent) {
    Place root{&msg, &record, parent};
    return walkStacked(root);
  }

 private:
  using Objects = std::vector<XNMessageBase>;
  static constexpr std::size_t kNoElement = static_cast<std::size_t>(-1);
  /// What a walk may build inside one another before it stops building.
  static constexpr int kMostBuilt = NestingLimit::kDefault;

  /// Where an object is: in a field of the object around it, perhaps in a list; or by itself, as the root is
  /// and every object that the walk has built.
  struct Place {
    XNMessageBase* msg;
    const _ClassDef* record;
    const FieldDefTraverseInfo* parent = nullptr;
    Place* around = nullptr;
    std::size_t element = kNoElement;
    std::uint64_t ended = endedMessages;  // as it stood when the object was here
  };

  /// The class on the processing stack, for the time of the walk over one object.
  class StackEntry {
   public:
    StackEntry(const ProcessedClass*& stack, const _ClassDef& record)
        : stack_(stack), entry_{record.getName(), stack} {
      stack_ = &entry_;
    }
    ~StackEntry() { stack_ = entry_.outer; }
    StackEntry(const StackEntry&) = delete;
    StackEntry& operator=(const StackEntry&) = delete;

   private:
    const ProcessedClass*& stack_;
    const ProcessedClass entry_;
  };

  static XNMessageBase* elementOf(XNMessageBase& msg, const FieldDef& field, std::size_t element) {
    auto* list = MessageAccess::owned<Objects>(msg, field);
    return list != nullptr && element < list->size() ? list->data() + element : nullptr;
  }

  /// Whether the object is where it was, perhaps moved: handlers replace objects and let lists grow.
  static bool find(Place& place) {
    const std::uint64_t ended = endedMessages;
    if (place.ended == ended) return true;
    if (place.around != nullptr && !findIn(*place.around, place)) return false;
    if (MessageAccess::classDef(*place.msg) != place.record) return false;
    place.ended = ended;
    return true;
  }
  static bool findIn(Place& around, Place& place) {
    if (!find(around)) return false;
    place.msg = place.element == kNoElement ? MessageAccess::owned<XNMessageBase>(*around.msg, *place.parent)
                                            : elementOf(*around.msg, *place.parent, place.element);
    return place.msg != nullptr;
  }
  static bool find(Place& place, MsgFieldContext& context) {
    const bool found = find(place);
    context.moveTo(found ? place.msg : nullptr);
    return found;
  }

  /// A trailing self record is no field, though it may have a hash.
  static bool isField(const FieldDef& field) {
    return field.getFieldHashId() != 0 && field.getType() != FDT_NONE;
  }

  bool walkFields(Place& place) {
    bool replaced = false;
    for (int pass = 0; pass < Mode::kPasses; ++pass) {
      for (const FieldDef& field : *place.record) {
        if (!isField(field) || !Mode::takes(pass, field.getType())) continue;
        MsgFieldContext context(field, place.parent, *place.msg);
        context.setValueState(MessageAccess::isSet(*place.msg, field.getMemNum()));
        handler_.visit(context);
        replaced |= context.isReplaced();
        if (!find(place, context)) return replaced;
        if (!mayDescend(field.getType())) continue;
        replaced |= descend(place, context);
        if (!find(place)) return replaced;
      }
    }
    return replaced;
  }

  // QUIRK: in order mode a list of enumerations goes the way of a list of objects.
  static constexpr bool mayDescend(unsigned type) {
    return !kXmlPrimitiveTypes.contains(type) || (Mode::kInOrder && type == FDT_LIST_ENUM);
  }

  bool descend(Place& place, MsgFieldContext& context) {
    const FieldDefTraverseInfo& field = context.getField();
    const auto handle = Overloaded{[&](List<element::Obj>) {
                                     walkList(place, context);
                                     return buildElement(place, context);
                                   },
                                   [&](Object) { return walkObject(place, context); },
                                   // There are no objects in a list of enumerations, and none can be built.
                                   [&](List<element::UInt32>) {
                                     if (create_) logNotBuilt(field);
                                     return false;
                                   },
                                   [](auto) { return false; }};
    return visitStorage(field.getType(), handle);
  }

  /// Whether a value in an element was replaced is nobody's business.
  void walkList(Place& around, MsgFieldContext& context) {
    for (std::size_t i = 0;; ++i) {
      if (!find(around, context)) return;
      XNMessageBase* element = elementOf(*around.msg, context.getField(), i);
      if (element == nullptr) return;
      Place place{element, MessageAccess::classDef(*element), &context.getField(), &around, i};
      walkSubObject(place, around, context);
    }
  }

  bool buildElement(Place& around, MsgFieldContext& context) {
    if (!create_ || !find(around, context)) return false;
    const FieldDefTraverseInfo& field = context.getField();
    if constexpr (!Mode::kInOrder) {
      const _ClassDef* record = catalogue::classOfField(field);
      if (record == nullptr) {
        logNoRecord();
        return false;
      }
      if (walker_.existsInProcessingStack(record->getName())) return false;
    }
    const std::unique_ptr<XNMessageBase> built = build(field);
    if (built == nullptr) return false;
    Place place{built.get(), MessageAccess::classDef(*built), &field};
    if (!walkBuilt(place, around, context)) return false;
    MessageAccess::make<Objects>(*around.msg, field, true).push_back(std::move(*built));
    return true;
  }

  bool walkObject(Place& around, MsgFieldContext& context) {
    const FieldDefTraverseInfo& field = context.getField();
    XNMessageBase* object = MessageAccess::owned<XNMessageBase>(*around.msg, field);
    if (object == nullptr) return create_ && buildObject(around, context);
    Place place{object, MessageAccess::classDef(*object), &field, &around};
    if (place.record == nullptr) {
      logNoRecord();
      return false;
    }
    return !passesOver(*object) && walkSubObject(place, around, context);
  }

  bool buildObject(Place& around, MsgFieldContext& context) {
    const FieldDefTraverseInfo& field = context.getField();
    if (isNotWorthBuilding(field)) return false;
    std::unique_ptr<XNMessageBase> built = build(field);
    if (built == nullptr) return false;
    Place place{built.get(), MessageAccess::classDef(*built), &field};
    if (place.record == nullptr) {
      logNoRecord();
      return false;
    }
    if (passesOver(*built) || !walkBuilt(place, around, context)) return false;
    // The handler may have put an object of its own here.
    const std::unique_ptr<XNMessageBase> old(
        std::exchange(MessageAccess::owned<XNMessageBase>(*around.msg, field), built.release()));
    MessageAccess::mark(*around.msg, field.getMemNum());
    return true;
  }

  /// Walks a built object; true when it is to be kept and there is still an object to keep it.
  bool walkBuilt(Place& place, Place& around, MsgFieldContext& context) {
    ++built_;
    const bool replaced = walkSubObject(place, around, context);
    --built_;
    return replaced && keep_ && find(around, context) && find(place);
  }

  bool walkSubObject(Place& place, Place& around, MsgFieldContext& context) {
    bool replaced = false;
    handler_.startSubObject(context);
    if (find(place)) {
      if (place.record == nullptr) {
        logNoElementRecord();
      } else {
        replaced = walkStacked(place);
      }
    }
    find(around, context);
    handler_.endSubObject(context);
    return replaced;
  }

  bool walkStacked(Place& place) {
    if constexpr (Mode::kInOrder) {
      return walkFields(place);
    } else {
      const StackEntry entry(walker_.processingStack, *place.record);
      return walkFields(place);
    }
  }

  /// New object for the field, null with a line.
  std::unique_ptr<XNMessageBase> build(const FieldDef& field) {
    if (Mode::kInOrder && built_ >= kMostBuilt) {
      logError(Mode::kFunction, "Objects nest [%d] levels deep: no more are built", built_);
      create_ = false;
      return nullptr;
    }
    std::unique_ptr<XNMessageBase> object(XNMessageBase::createObjectFromClassID(field.namePointer()));
    if (object == nullptr) logNotBuilt(field);
    return object;
  }

  /// Objects that plain mode would build only to drop them unseen.
  bool isNotWorthBuilding(const FieldDef& field) const {
    if (Mode::kInOrder || field.namePointer() == nullptr) return false;
    const ClassRef ref = ClassRef::read(field.namePointer());
    const _ClassDef* record = catalogue::classAt(ref.subsystem, ref.classIndex);
    return record != nullptr && walker_.existsInProcessingStack(record->getName());
  }

  /// Plain mode leaves the processing instructions of a message out.
  static bool passesOver(const XNMessageBase& object) {
    return !Mode::kInOrder && object.getTagID() == ZqEntities::ProcessingInstructionInfo::kTagId;
  }

  static void logNoRecord() {
    logError(Mode::kFunction, Mode::kInOrder ? "Error retrieving metadata for given object"
                                             : "Could not retrieve metadata for specified object");
  }
  static void logNoElementRecord() {
    if constexpr (Mode::kInOrder) {
      logNoRecord();
    } else {
      logError(Mode::kFunction, "[%s]", "Error retreiving metadata for the specified class.");
    }
  }
  static void logNotBuilt(const FieldDef& field) {
    logError(Mode::kFunction, "Error creating subobject [%s]", field.getName());
  }

  XmlTraverse& walker_;
  XmlTraverseHandler& handler_;
  bool create_;
  const bool keep_;
  int built_ = 0;
};

}  // namespace zqxml
