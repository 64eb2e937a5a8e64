// TextSink: writes the text of a walk (xml_walk.h) without a DOM. Not installed.
//
// Its text is that of the DOM writer, to the byte. Where it does not know what that would be, it gives up:
// classes outside of the catalogue, names that are not plain, "]]>" in a CDATA section, white space that
// pretty printing takes for its own.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/internal/class_plan.h>
#include <zqxml/xml/internal/text_writer.h>
#include <zqxml/xml/internal/xml_characters.h>
#include <zqxml/xml/internal/xml_names.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zqxml {

template <class Char>
class TextSink {
 public:
  static constexpr bool kMayGiveUp = true;
  using Name = PlannedName;
  /// An element by its name: elements end in the order of their nesting, so nothing else is to be kept.
  struct Node {
    PlannedName name;
    explicit operator bool() const { return name.attribute != nullptr; }
  };
  using Entry = Node;

  explicit TextSink(const EncodingFlags& flags)
      : elements_(flags.useElements),
        pretty_(flags.readable),
        masks_((flags.encoding_options & MASK_SENSITIVE) != 0),
        plain_(!elements_ && !pretty_ && !masks_ && !flags.enumAsText) {}

  void giveUp() { gaveUp_ = true; }
  bool gaveUp() const { return gaveUp_; }

  std::span<const PlannedField> fields(const XNMessageBase& message, const _ClassDef&) {
    const ClassPlan* plan = ClassPlan::of(message);
    if (plan == nullptr || !(masks_ ? plan->masksCertain : plan->certain)) {
      giveUp();
      return {};
    }
    return elements_ ? plan->declared : plan->attributesFirst;
  }
  static const FieldDef& field(const PlannedField& item) { return *item.field; }
  static const Name& name(const PlannedField& item) { return item.name; }

  /// Attributes that are numbers and texts, where nothing but their plan decides how they are written.
  [[gnu::always_inline]] const PlannedField* plainFields(XNMessageBase& message, const PlannedField* item,
                                                         const PlannedField* end, bool all) {
    if (!plain_ || !tagOpen_) return item;
    Char* at = text().end();
    for (; item != end && item->value != PlannedValue::other; ++item) {
      const FieldDef& field = *item->field;
      if (!all && !MessageAccess::isSet(message, field.getMemNum())) continue;
      if (item->value == PlannedValue::number) {
        at = writer_.putAttribute(at, item->name, SignedValue{MessageAccess::slot(message, field)});
      } else if (item->value == PlannedValue::text) {
        const auto& value = MessageAccess::inPlace<std::string>(message, field);
        at = writer_.putAttribute(at, item->name, TextValue<char>{.text = value, .inString = true});
      } else {
        at = writer_.putAttribute(at, item->name,
                                  FloatingValue{MessageAccess::scalar<double>(message, field)});
      }
    }
    text().endAt(at);
    return item;
  }
  bool hasPlainEntries() const { return plain_; }
  template <class Value>
  [[gnu::always_inline]] void listEntry(const Name& name, Value value) {
    writer_.putListEntry(name, std::exchange(tagOpen_, false), value);
    lastWasElement_ = true;
  }
  template <class Key, class Value>
  [[gnu::always_inline]] void wholeMapEntry(const Name& name, Key key, Value value) {
    writer_.putMapEntry(name, std::exchange(tagOpen_, false), key, value);
    lastWasElement_ = true;
  }

  template <class Value>
  [[gnu::always_inline]] void scalar(const Node& parent, const Name& name, Value value) {
    if (elements_) [[unlikely]]
      scalarElement(parent, name, value);
    else
      attribute(name, value);
  }
  template <class Value>
  [[gnu::noinline]] void cdata(const Node& parent, const Name& name, Value value) {
    const Node child = element(parent, name);
    section(value);
    end(child);
  }
  Node element(const Node&, const Name& name) {
    if (pretty_) [[unlikely]]
      breakLine();
    writer_.putStartTag(name, std::exchange(tagOpen_, true));
    ++level_;
    return {name};
  }
  template <class Value>
  [[gnu::always_inline]] void entryValue(const Node&, Value value) {
    if (elements_) [[unlikely]]
      content(value);
    else
      attribute(kVal, value);
  }
  template <class Value>
  void entryCdata(Node, Value value) {
    section(value);
  }
  Entry mapEntry(const Node& parent, const Name& name) { return element(parent, name); }
  Node mapKey(Entry entry) { return element(entry, kMapKey); }
  Node mapValue(Entry entry) { return element(entry, kMapValue); }
  void endEntry(const Entry& entry) { end(entry); }

  [[gnu::always_inline]] void end(const Node& node) {
    --level_;
    if (tagOpen_)
      writer_.putLiteral("/>");
    else
      writeEndTag(node);
    tagOpen_ = false;
    lastWasElement_ = true;
  }

  // --- The document.

  void declare() {
    if constexpr (sizeof(Char) == 1)
      writer_.putLiteral(kUtf8Declaration);
    else
      writer_.putLiteral(R"(<?xml version="1.0" encoding="UTF-16" standalone="no" ?>)");
  }
  void endDocument() {
    if (pretty_) writer_.putLiteral("\n");
  }
  TextBuffer<Char>& text() { return writer_.text(); }

 private:
  // Behind each name is a block of bytes that may be copied with it.
  static constexpr char kNames[] = " val=\" __mapKey__=\" __mapValue__=\"                                ";
  static constexpr PlannedName kVal{kNames, 3};
  static constexpr PlannedName kMapKey{kNames + 6, 10};
  static constexpr PlannedName kMapValue{kNames + 19, 12};

  template <class Value>
  [[gnu::noinline]] void scalarElement(const Node& parent, const Name& name, Value value) {
    const Node child = element(parent, name);
    content(value);
    end(child);
  }
  /// The order of the fields has all attributes first; one that comes later is not what the plan says.
  template <class Value>
  [[gnu::always_inline]] void attribute(const Name& name, Value value) {
    if (!tagOpen_) [[unlikely]]
      return giveUp();
    text().endAt(writer_.putAttribute(text().end(), name, value));
  }
  template <class Value>
  void content(Value value) {
    if (pretty_ && breaksLines(value)) giveUp();
    endTag();
    writer_.put(value, TextPlace::content);
    lastWasElement_ = false;
  }
  template <class Value>
  void section(Value value) {
    if (endsSection(value)) giveUp();
    endTag();
    writer_.putLiteral("<![CDATA[");
    writer_.put(value, TextPlace::section);
    writer_.putLiteral("]]>");
    lastWasElement_ = false;
  }

  template <class T>
  static bool endsSection(TextValue<T> value) {
    static constexpr T kEnd[] = {']', ']', '>'};
    return value.text.find(kEnd, 0, 3) != value.text.npos;
  }
  template <class Value>
  static bool endsSection(Value) {
    return false;
  }
  /// A text of nothing but white space, with the end of a line in it.
  template <class T>
  static bool breaksLines(TextValue<T> value) {
    const auto isBreak = [](T unit) { return unit == '\n' || unit == '\r'; };
    const auto isBlank = [](T unit) { return is(unit, kSpace); };
    const auto text = value.text.substr(0, value.text.find(T{}));
    return std::ranges::all_of(text, isBlank) && std::ranges::any_of(text, isBreak);
  }
  template <class Value>
  static bool breaksLines(Value) {
    return false;
  }

  void endTag() {
    if (tagOpen_) writer_.putLiteral(">");
    tagOpen_ = false;
  }
  [[gnu::noinline]] void writeEndTag(const Node& node) {
    if (pretty_ && lastWasElement_) {
      writer_.putLiteral("\n");
      if (level_ == 0) writer_.putLiteral("\n");
      writer_.putRepeated(' ', 2 * level_);
    }
    writer_.putName("</", node.name, ">");
  }
  [[gnu::noinline]] void breakLine() {
    endTag();
    writer_.putLiteral("\n");
    if (level_ == 1) writer_.putLiteral("\n");
    writer_.putRepeated(' ', 2 * level_);
  }

  const bool elements_;
  const bool pretty_;
  const bool masks_;
  /// Attributes are what their plan says, and single values are attributes.
  const bool plain_;
  bool gaveUp_ = false;
  /// The start tag of the innermost element is not ended.
  bool tagOpen_ = false;
  /// What came last inside of the innermost element was an element.
  bool lastWasElement_ = false;
  std::size_t level_ = 0;
  TextWriter<Char> writer_;
};

}  // namespace zqxml
