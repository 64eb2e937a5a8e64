// XmlWalk: the XML form of a message, written once, over a sink. Not installed.
//
// The walk knows the catalogue, the flags, annotations, listeners and passwords; a sink knows elements and
// text. It needs no XML library, so any sink that keeps the order of calls gives the same text. A sink is a
// class with
//
//   Node    handle of an element; false when it could not be made
//   Name    a field's name in the sink's form
//   Entry   handle of a map entry; false when it could not be made
//   auto    fields(const XNMessageBase&, const _ClassDef&)
//                                                    range of the class's fields, in the order of writing
//   const FieldDef& field(item), Name name(item)     of what the range gives
//   void    scalar(Node parent, const Name&, value)  attribute or child element; the values are those of
//                                                    xml_values.h
//   void    cdata(Node parent, const Name&, value)   child element with a CDATA section
//   Node    element(Node parent, const Name&)        a new last child element
//   void    entryValue(Node entry, value)            the value of a list entry or a map side
//   void    entryCdata(Node entry, value)            a CDATA section straight in a list entry
//   Entry   mapEntry(Node parent, const Name&)       a new last child element with two children
//   Node    mapKey(Entry), mapValue(Entry)           these, in this order
//   void    end(Node), endEntry(Entry)               nothing more will be put into it
//   kMayGiveUp, giveUp(), gaveUp()                   see below
//
// and one that may give up:
//   auto plainFields(XNMessageBase&, first, end, bool all)
//                                                    writes fields that are set, or all, as far as it can by
//                                                    itself; the first that it leaves
//   bool hasPlainEntries()                           whether it takes list and map entries whole:
//   void listEntry(const Name&, value), wholeMapEntry(const Name&, key value, value)
//
// A sink reports its own failures; the walk then leaves out what hangs on them and goes on. Listeners may
// throw: that passes through.
//
// A sink that may give up writes on trial: when anything is other than it knows for certain, it gives up, and
// the caller writes the message by another sink. On trial nothing is logged and nothing of the application is
// called, neither listeners nor password routines; whatever would do that gives up as well. What a trial
// leaves in a message, the lists that were missing, the other sink makes too.
#pragma once

#include <zqxml/annotation/annotation_record.h>
#include <zqxml/annotation/internal/password_type.h>
#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/old_way.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/base64.h>
#include <zqxml/xml/date_text.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/internal/xml_values.h>
#include <zqxml/xml/xml_decoder.h>

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

/// What one call of the writer carries down the tree.
struct XmlWalkCall {
  EncodingFlags flags;
  ZqXMLContextInfo* context = nullptr;
  /// Form version; below 2 passwords are plain Base64.
  int version = 2;
};

template <class Sink>
class XmlWalk {
 public:
  using Node = typename Sink::Node;
  using Name = typename Sink::Name;

  XmlWalk(Sink& sink, const XmlWalkCall& call) : sink_(sink), call_(call) {}

  /// Writes all fields of `msg` into `element`. QUIRK: an object of an old-way class writes every field, set
  /// or not.
  void writeFields(XNMessageBase& msg, Node element) {
    const _ClassDef* classDef = MessageAccess::classDef(msg);
    if (classDef == nullptr) return;
    const bool all = kOldWaySlots[msg.getTagID() >> 24];
    const auto& fields = sink_.fields(msg, *classDef);
    const auto* const end = std::to_address(fields.end());
    for (const auto* item = std::to_address(fields.begin()); item != end; ++item) {
      if constexpr (Sink::kMayGiveUp) {
        item = sink_.plainFields(msg, item, end, all);
        if (item == end) return;
      }
      const FieldDef& field = sink_.field(*item);
      // A trailing self record is no field, and its member number is that of the first one.
      if (field.getType() == FDT_NONE || field.getFieldHashId() == 0) continue;
      if (!all && !MessageAccess::isSet(msg, field.getMemNum())) continue;
      writeField(msg, *classDef, field, sink_.name(*item), element);
      if (gaveUp()) return;
    }
  }

 private:
  static constexpr const char* kFunction = "XMLSerializer::serializeXMLRecur";

  /// Stays out of the loop over the fields, where most are written by the sink alone.
  [[gnu::noinline]] void writeField(XNMessageBase& msg, const _ClassDef& classDef, const FieldDef& field,
                                    const Name& name, const Node& element) {
    trace("Writing [%s]:[%s]", classDef.getName(), field.getName());
    if (isVetoed(msg, field)) return;
    FieldWriter write{*this, msg, field, name, element};
    if (field.hasAnnotation()) {
      const AnnotationRecord record(field);
      if (isMasked(msg, field, record)) {
        trace(
            "Masking field [%s]:[%s] as sensitive annotation is present and encoding_options to mask the field is specified",
            classDef.getName(), field.getName());
        return sink_.scalar(element, name, PlainValue{"########"});
      }
      write.asCdata = record.isCdata() && !kNeverCdataTypes.contains(field.getType());
    }
    visitStorage(field.getType(), write);
  }

  /// One field on its way to the sink: a handler of visitStorage. Its parts stay functions, lest one sets up
  /// the frame of another.
  struct FieldWriter {
    XmlWalk& walk;
    XNMessageBase& msg;
    const FieldDef& field;
    const Name& name;
    const Node& parent;
    bool asCdata = false;

    auto& sink() const { return walk.sink_; }
    AnnotationRecord record() const { return AnnotationRecord(field); }
    const EncodingFlags& flags() const { return walk.call_.flags; }

    template <class Value>
    [[gnu::always_inline]] void scalar(Value value) const {
      if (asCdata) [[unlikely]]
        sink().cdata(parent, name, value);
      else
        sink().scalar(parent, name, value);
    }

    void operator()(Nothing) const {}

    template <element::Integer E>
    [[gnu::always_inline]] void operator()(Scalar<E>) const {
      const std::int64_t value = MessageAccess::slot(msg, field);
      if (!flags().readable || !(record().isTime() || record().dateType() != 0))
        return scalar(SignedValue{value});
      std::array<char, 512> text{};
      if (printDateOrTime(static_cast<std::int32_t>(value), text.data()))
        scalar(PlainValue{std::string_view(text.data())});
    }

    [[gnu::noinline]] void operator()(Scalar<element::Bool>) const {
      const std::int64_t value = MessageAccess::slot(msg, field);
      if (!flags().readable) return scalar(SignedValue{value});
      scalar(PlainValue{value != 0 ? "true" : "false"});
    }

    [[gnu::noinline]] void operator()(Scalar<element::Enum>) const {
      const std::int64_t value = MessageAccess::slot(msg, field);
      if (!flags().readable && !flags().enumAsText) return scalar(SignedValue{value});
      const char* enumerator = enumeratorName(static_cast<int>(value));
      if (enumerator == nullptr || *enumerator == '\0')
        return walk.report("Field [%s] does not accept value [%lld]", field.getName(), value);
      scalar(TextValue<char>{enumerator});
    }

    template <element::Floating E>
    [[gnu::noinline]] void operator()(Scalar<E>) const {
      scalar(FloatingValue{MessageAccess::scalar<typename E::Value>(msg, field)});
    }

    template <class E>
    [[gnu::always_inline]] void operator()(InPlace<E>) const {
      scalar(valueOf(E{}, MessageAccess::inPlace<typename E::Value>(msg, field)));
    }

    [[gnu::noinline]] void operator()(Owned<element::BStr>) const {
      const bstring* value = MessageAccess::owned<bstring>(msg, field);
      if (value != nullptr) scalar(valueOf(element::BStr{}, *value));
    }

    [[gnu::noinline]] void operator()(Owned<element::PStr>) const {
      const pstring* value = MessageAccess::owned<pstring>(msg, field);
      if (value != nullptr) password(*value);
    }

    // The list is made, and the field marked, when there is none: what callers of an old-way object rely on.
    // Nothing else is stored: another thread may be at work on what lies beside the message.
    template <class E>
    [[gnu::noinline]] void operator()(List<E>) const {
      auto* values = MessageAccess::owned<typename List<E>::Value>(msg, field);
      if (values == nullptr || !MessageAccess::isSet(msg, field.getMemNum()))
        values = &MessageAccess::make<typename List<E>::Value>(msg, field, true);
      for (auto& value : *values) {
        if constexpr (Sink::kMayGiveUp && !std::same_as<E, element::Obj>)
          if (sink().hasPlainEntries() && !asCdata) {
            sink().listEntry(name, valueOf(E{}, value));
            continue;
          }
        const Node entry = sink().element(parent, name);
        if (!entry) {
          walk.report("Error constructing list object [%s].", field.getName());
          continue;
        }
        if constexpr (std::same_as<E, element::Obj>) {
          walk.writeFields(value, entry);
        } else if (asCdata) {
          sink().entryCdata(entry, valueOf(E{}, value));
        } else {
          sink().entryValue(entry, valueOf(E{}, value));
        }
        sink().end(entry);
        if (walk.gaveUp()) return;
      }
    }

    template <class K, class V>
    [[gnu::noinline]] void operator()(Map<K, V>) const {
      auto* entries = MessageAccess::owned<typename Map<K, V>::Value>(msg, field);
      if (entries == nullptr) return;
      for (auto& [key, value] : *entries) {
        if constexpr (Sink::kMayGiveUp && !std::same_as<K, element::Obj> && !std::same_as<V, element::Obj>)
          if (sink().hasPlainEntries()) {
            sink().wholeMapEntry(name, valueOf(K{}, key), valueOf(V{}, value));
            continue;
          }
        const auto entry = sink().mapEntry(parent, name);
        if (!entry) {
          logLostEntry(key);
          continue;
        }
        side(K{}, key, sink().mapKey(entry));
        side(V{}, value, sink().mapValue(entry));
        sink().endEntry(entry);
        if (walk.gaveUp()) return;
      }
    }

    [[gnu::noinline]] void operator()(Object) const {
      XNMessageBase* value = MessageAccess::owned<XNMessageBase>(msg, field);
      if (value == nullptr) {
        if (std::strcmp(field.getName(), "processinginstructioninfo") != 0) walk.report("Please check");
        return;
      }
      const Node child = sink().element(parent, name);
      if (!child) return walk.report("Error constructing subobject : [%s]", field.getName());
      walk.writeFields(*value, child);
      sink().end(child);
    }

    /// One value, list entry or side of a map; a text side of a map is never CDATA (asCdata is false).
    template <class E>
    auto valueOf(E, const typename E::Value& value) const {
      if constexpr (element::Floating<E>) {
        return FloatingValue{value};
      } else if constexpr (std::same_as<E, element::UInt32> || std::same_as<E, element::UInt64>) {
        return UnsignedValue{value};
      } else if constexpr (element::Integer<E>) {
        return SignedValue{value};
      } else if constexpr (std::same_as<E, element::BStr>) {
        return BytesValue{value.str()};
      } else {
        return TextValue<typename E::Value::value_type>{.text = value, .asCdata = asCdata, .inString = true};
      }
    }

    template <class E, class Value>
    void side(E, Value& value, Node node) const {
      if constexpr (std::same_as<E, element::Obj>) {
        // Keys are const in a map. Writing may make missing lists in them, which no comparison looks at.
        walk.writeFields(const_cast<XNMessageBase&>(value), node);
      } else {
        sink().entryValue(node, valueOf(E{}, value));
      }
      sink().end(node);
    }

    void logLostEntry(std::int64_t key) const {
      walk.report("Error for map field [%s], key : [%lld]", field.getName(), key);
    }
    void logLostEntry(const std::string& key) const {
      walk.report("Error for map field [%s], key : [%s]", field.getName(), key);
    }
    void logLostEntry(const XNMessageBase& key) const { logLostEntry(key.getTagName()); }

    /// The look-up logs when there is none.
    const char* enumeratorName(int value) const {
      if constexpr (Sink::kMayGiveUp) {
        const _ClassDef* enumeration = catalogue::classOfField(field);
        return enumeration == nullptr ? nullptr : catalogue::enumeratorName(*enumeration, value);
      } else {
        return XMLDecoder::GetEnumString(field, value);
      }
    }

    /// The readable form of a number that the schema says is a time of day, a date, or both; false when there
    /// is none. QUIRK: with both marks both are done: a bad time ends the field, else the date is what is
    /// written; a date of 0 is not written at all.
    bool printDateOrTime(std::int32_t value, char* text) const {
      if (record().isTime() && !formatTimeOfDay(value, text)) {
        walk.report("Invalid time in seconds [%d]", value);
        return false;
      }
      if (record().dateType() == 0) return true;
      if (value == 0) return false;
      if (formatDateAnnotation(value, record().dateType(), text)) return true;
      walk.report("[%s]", "Unable to convert timestamp to date");
      return false;
    }

    void password(const pstring& value) const {
      if (!record().exists())
        return walk.report("There are no annotations specified on this field : [%s]", field.getName());
      if (record().passwordType() == 0)
        return walk.report("Password annotation is not specified on this field : [%s]", field.getName());
      if ((flags().encoding_options & MASK_PASSWORDS) != 0) return scalar(PlainValue{"*******"});
      if (walk.call_.version < 2) return scalar(BytesValue{value.c_str()});
      if constexpr (Sink::kMayGiveUp) {
        const bool isPlain = value.getEncryptionType() == kPlainText &&
                             writtenType(flags(), record().passwordType()) == kPlainText;
        if (!isPlain) return sink().giveUp();
        scalar(TextValue<char>{value.str()});
      } else {
        std::string form;
        if (XMLDecoder(flags(), walk.call_.context).encryptPassword(record().passwordType(), value, form) ==
            XN_MSG_NO_PASSWORD_HANDLER)
          return walk.report("Password Handler Not Found while serializing bstring field [%s]",
                             field.getName());
        scalar(TextValue<char>{form});
      }
    }
  };

  bool gaveUp() const {
    if constexpr (Sink::kMayGiveUp)
      return sink_.gaveUp();
    else
      return false;
  }

  /// Logs what a field is missing for.
  template <class... Args>
  void report(const char* format, const Args&... arguments) {
    if constexpr (Sink::kMayGiveUp)
      sink_.giveUp();
    else
      logError(kFunction, format, arguments...);
  }

  template <class... Args>
  static void trace(const char* format, const Args&... arguments) {
    if constexpr (!Sink::kMayGiveUp) logDebug(kFunction, 15, format, arguments...);
  }

  /// Asks the listeners of the object's class, then those of the field's annotations. The verdict is one word
  /// for all of them: a later listener can overwrite what an earlier one stored.
  bool isVetoed(XNMessageBase& msg, const FieldDef& field) {
    if constexpr (Sink::kMayGiveUp) return false;
    if (!XMLSerializationSupport::hasListeners()) return false;
    XMLSerializationSupport registry;
    ListenerCbData data{field, &msg, 0};
    registry.ProcessCallBack(msg.getTagID(), data);
    if (data.flags == XMLCB_SKIP_PROCESSING) {
      trace("Skipping field [%s] as XMLCB_SKIP_PROCESSING is set(On Tag ID)", field.getName());
      return true;
    }
    if (!field.hasAnnotation()) return false;
    std::vector<std::uint32_t> annotations;
    if (XMLDecoder::FillAnnotationIds(field, annotations))
      for (const std::uint32_t annotation : annotations) registry.ProcessCallBack(annotation, data);
    if (data.flags != XMLCB_SKIP_PROCESSING) return false;
    trace("Skipping field [%s] as XMLCB_SKIP_PROCESSING is set(On Annotation ID)", field.getName());
    return true;
  }

  /// QUIRK: only primitive types are masked; a list or an object with the annotation is written in clear.
  bool isMasked(XNMessageBase& msg, const FieldDef& field, const AnnotationRecord& record) const {
    if ((call_.flags.encoding_options & MASK_SENSITIVE) == 0 || !record.isSensitive() ||
        !FieldDef::isPrimitiveType(field.getType()))
      return false;
    if constexpr (Sink::kMayGiveUp) return true;
    Annotation::Sensitive sensitive;
    return XMLDecoder::FillAnnotation(&msg, sensitive, field.getName());
  }

  Sink& sink_;
  const XmlWalkCall call_;
};

}  // namespace zqxml
