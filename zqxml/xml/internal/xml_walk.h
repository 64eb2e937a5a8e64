// XmlWalk: the XML form of a message, written once, over a sink. Not installed.
//
// The walk knows the catalogue, the flags, annotations, listeners and passwords; a sink knows elements and
// text. It needs no XML library, so any sink that keeps the order of calls gives the same text. A sink is a
// class with
//
//   Node    handle of an element; false when it could not be made
//   Name    a field's name in the sink's form: `Name(const char*)`
//   Text&   text()                                   the value to write, set by WideText's operations
//   void    scalar(Node parent, const Name&)         text() as attribute or child element
//   void    cdata(Node parent, const Name&)          text() as child element with a CDATA section
//   Node    element(Node parent, const Name&)        a new last child element
//   void    entryValue(Node entry)                   text() as the value of a list entry or a map side
//   void    entryCdata(Node entry)                   text() as a CDATA section straight in a list entry
//   bool    mapEntry(Node parent, const Name&, Node& key, Node& value)
//
// A sink reports its own failures; the walk then leaves out what hangs on them and goes on. Listeners may
// throw: that passes through.
#pragma once

#include <zqxml/annotation/annotation_record.h>
#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/base64.h>
#include <zqxml/xml/date_text.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/xml_decoder.h>

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
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

  /// Writes all fields of `msg` into `element`, in declared order. QUIRK: an object of an old-way class
  /// writes every field, set or not.
  void writeFields(XNMessageBase& msg, Node element) {
    const _ClassDef* classDef = MessageAccess::classDef(msg);
    if (classDef == nullptr) return;
    const bool all = XNMessageBase::isOldWay(msg.getTagID());
    for (const FieldDef& field : *classDef) {
      // A trailing self record is no field, and its member number is that of the first one.
      if (field.getType() == FDT_NONE || field.getFieldHashId() == 0) continue;
      if (!all && !MessageAccess::isSet(msg, field.getMemNum())) continue;
      logDebug(kFunction, 15, "Writing [%s]:[%s]", classDef->getName(), field.getName());
      if (isVetoed(msg, field)) continue;
      const AnnotationRecord record(field);
      const Name name(field.getName());
      if (isMasked(msg, field, record)) {
        logDebug(
            kFunction, 15,
            "Masking field [%s]:[%s] as sensitive annotation is present and encoding_options to mask the field is specified",
            classDef->getName(), field.getName());
        sink_.text().assignAscii("########");
        sink_.scalar(element, name);
        continue;
      }
      visitStorage(field.getType(),
                   FieldWriter{*this, msg, field, record, name, element,
                               record.isCdata() && !kNeverCdataTypes.contains(field.getType())});
    }
  }

 private:
  static constexpr const char* kFunction = "XMLSerializer::serializeXMLRecur";

  /// One field on its way to the sink: a handler of visitStorage.
  struct FieldWriter {
    XmlWalk& walk;
    XNMessageBase& msg;
    const FieldDef& field;
    const AnnotationRecord& record;
    const Name& name;
    Node parent;
    bool asCdata;

    auto& text() const { return walk.sink_.text(); }
    const EncodingFlags& flags() const { return walk.call_.flags; }

    void scalar() const {
      if (asCdata) {
        walk.sink_.cdata(parent, name);
      } else {
        walk.sink_.scalar(parent, name);
      }
    }

    void operator()(Nothing) const {}

    template <element::Integer E>
    void operator()(Scalar<E>) const {
      const std::int64_t value = MessageAccess::slot(msg, field);
      if (!flags().readable || !(record.isTime() || record.dateType() != 0)) {
        text().assignSigned(value);
      } else if (!putDateOrTime(static_cast<std::int32_t>(value))) {
        return;
      }
      scalar();
    }

    void operator()(Scalar<element::Bool>) const {
      const std::int64_t value = MessageAccess::slot(msg, field);
      if (flags().readable) {
        text().assignAscii(value != 0 ? "true" : "false");
      } else {
        text().assignSigned(value);
      }
      scalar();
    }

    void operator()(Scalar<element::Enum>) const {
      const std::int64_t value = MessageAccess::slot(msg, field);
      if (flags().readable || flags().enumAsText) {
        const char* enumerator = XMLDecoder::GetEnumString(field, static_cast<int>(value));
        if (enumerator == nullptr || *enumerator == '\0')
          return logError(kFunction, "Field [%s] does not accept value [%lld]", field.getName(), value);
        text().assignMessageText(std::string_view(enumerator), false);
      } else {
        text().assignSigned(value);
      }
      scalar();
    }

    template <element::Floating E>
    void operator()(Scalar<E>) const {
      text().assignFloating(MessageAccess::scalar<typename E::Value>(msg, field));
      scalar();
    }

    template <class E>
    void operator()(InPlace<E>) const {
      put(E{}, MessageAccess::inPlace<typename E::Value>(msg, field));
      scalar();
    }

    void operator()(Owned<element::BStr>) const {
      const bstring* value = MessageAccess::owned<bstring>(msg, field);
      if (value == nullptr) return;
      put(element::BStr{}, *value);
      scalar();
    }

    void operator()(Owned<element::PStr>) const {
      const pstring* value = MessageAccess::owned<pstring>(msg, field);
      if (value != nullptr && putPassword(*value)) scalar();
    }

    // The list is made, and the field marked, when there is none: what callers of an old-way object rely on.
    template <class E>
    void operator()(List<E>) const {
      for (auto& value : MessageAccess::make<typename List<E>::Value>(msg, field, true)) {
        const Node entry = walk.sink_.element(parent, name);
        if (!entry) {
          logError(kFunction, "Error constructing list object [%s].", field.getName());
        } else if constexpr (std::same_as<E, element::Obj>) {
          walk.writeFields(value, entry);
        } else {
          put(E{}, value);
          if (asCdata) {
            walk.sink_.entryCdata(entry);
          } else {
            walk.sink_.entryValue(entry);
          }
        }
      }
    }

    template <class K, class V>
    void operator()(Map<K, V>) const {
      auto* entries = MessageAccess::owned<typename Map<K, V>::Value>(msg, field);
      if (entries == nullptr) return;
      for (auto& [key, value] : *entries) {
        Node keyNode{};
        Node valueNode{};
        if (!walk.sink_.mapEntry(parent, name, keyNode, valueNode)) {
          logLostEntry(key);
          continue;
        }
        side(K{}, key, keyNode);
        side(V{}, value, valueNode);
      }
    }

    void operator()(Object) const {
      XNMessageBase* value = MessageAccess::owned<XNMessageBase>(msg, field);
      if (value == nullptr) {
        if (std::strcmp(field.getName(), "processinginstructioninfo") != 0)
          logError(kFunction, "Please check");
        return;
      }
      const Node child = walk.sink_.element(parent, name);
      if (!child) return logError(kFunction, "Error constructing subobject : [%s]", field.getName());
      walk.writeFields(*value, child);
    }

    /// One value, list entry or side of a map as text; a text side of a map is never CDATA (asCdata is
    /// false).
    template <class E>
    void put(E, const typename E::Value& value) const {
      if constexpr (element::Floating<E>) {
        text().assignFloating(value);
      } else if constexpr (std::same_as<E, element::UInt32> || std::same_as<E, element::UInt64>) {
        text().assignUnsigned(value);
      } else if constexpr (element::Integer<E>) {
        text().assignSigned(value);
      } else if constexpr (std::same_as<E, element::BStr>) {
        text().assignAscii(UlBase64::Encode(value.str()));
      } else {
        text().assignMessageText(value, asCdata);
      }
    }

    template <class E, class Value>
    void side(E, Value& value, Node node) const {
      if constexpr (std::same_as<E, element::Obj>) {
        // Keys are const in a map. Writing may make missing lists in them, which no comparison looks at.
        walk.writeFields(const_cast<XNMessageBase&>(value), node);
      } else if constexpr (std::same_as<E, element::Str>) {
        text().assignMessageText(value, false);
        walk.sink_.entryValue(node);
      } else {
        put(E{}, value);
        walk.sink_.entryValue(node);
      }
    }

    void logLostEntry(std::int64_t key) const {
      logError(kFunction, "Error for map field [%s], key : [%lld]", field.getName(), key);
    }
    void logLostEntry(const std::string& key) const {
      logError(kFunction, "Error for map field [%s], key : [%s]", field.getName(), key);
    }
    void logLostEntry(const XNMessageBase& key) const { logLostEntry(key.getTagName()); }

    /// The readable form of a number that the schema says is a time of day, a date, or both; false when there
    /// is none. QUIRK: with both marks both are done: a bad time ends the field, else the date is what is
    /// written; a date of 0 is not written at all.
    bool putDateOrTime(std::int32_t value) const {
      if (record.isTime()) {
        std::array<char, 16> time{};
        if (!formatTimeOfDay(value, time.data())) {
          logError(kFunction, "Invalid time in seconds [%d]", value);
          return false;
        }
        text().assignAscii(time.data());
      }
      if (record.dateType() != 0) {
        if (value == 0) return false;
        std::array<char, 512> date{};
        if (!formatDateAnnotation(value, record.dateType(), date.data())) {
          logError(kFunction, "[%s]", "Unable to convert timestamp to date");
          return false;
        }
        text().assignAscii(date.data());
      }
      return true;
    }

    bool putPassword(const pstring& value) const {
      if (!record.exists()) {
        logError(kFunction, "There are no annotations specified on this field : [%s]", field.getName());
        return false;
      }
      if (record.passwordType() == 0) {
        logError(kFunction, "Password annotation is not specified on this field : [%s]", field.getName());
        return false;
      }
      if ((flags().encoding_options & MASK_PASSWORDS) != 0) {
        text().assignAscii("*******");
        return true;
      }
      std::string form;
      if (walk.call_.version < 2) {
        form = UlBase64::Encode(value.c_str());
      } else if (XMLDecoder(flags(), walk.call_.context)
                     .encryptPassword(record.passwordType(), value, form) == XN_MSG_NO_PASSWORD_HANDLER) {
        logError(kFunction, "Password Handler Not Found while serializing bstring field [%s]",
                 field.getName());
        return false;
      }
      text().assignMessageText(std::string_view(form), false);
      return true;
    }
  };

  /// Asks the listeners of the object's class, then those of the field's annotations. The verdict is one word
  /// for all of them: a later listener can overwrite what an earlier one stored.
  bool isVetoed(XNMessageBase& msg, const FieldDef& field) {
    if (!XMLSerializationSupport::hasListeners()) return false;
    XMLSerializationSupport registry;
    ListenerCbData data{field, &msg, 0};
    registry.ProcessCallBack(msg.getTagID(), data);
    if (data.flags == XMLCB_SKIP_PROCESSING) {
      logDebug(kFunction, 15, "Skipping field [%s] as XMLCB_SKIP_PROCESSING is set(On Tag ID)",
               field.getName());
      return true;
    }
    if (!field.hasAnnotation()) return false;
    std::vector<std::uint32_t> annotations;
    if (XMLDecoder::FillAnnotationIds(field, annotations))
      for (const std::uint32_t annotation : annotations) registry.ProcessCallBack(annotation, data);
    if (data.flags != XMLCB_SKIP_PROCESSING) return false;
    logDebug(kFunction, 15, "Skipping field [%s] as XMLCB_SKIP_PROCESSING is set(On Annotation ID)",
             field.getName());
    return true;
  }

  /// QUIRK: only primitive types are masked; a list or an object with the annotation is written in clear.
  bool isMasked(XNMessageBase& msg, const FieldDef& field, const AnnotationRecord& record) const {
    if ((call_.flags.encoding_options & MASK_SENSITIVE) == 0 || !record.isSensitive() ||
        !FieldDef::isPrimitiveType(field.getType()))
      return false;
    Annotation::Sensitive sensitive;
    return XMLDecoder::FillAnnotation(&msg, sensitive, field.getName());
  }

  Sink& sink_;
  const XmlWalkCall call_;
};

}  // namespace zqxml
