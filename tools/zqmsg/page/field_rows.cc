#include "tools/zqmsg/page/field_rows.h"

#include <zqxml/annotation/annotation_record.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/platform/text.h>
#include <zqxml/render/xml_utils.h>
#include <zqxml/xml/date_text.h>

#include <array>
#include <limits>
#include <map>
#include <type_traits>
#include <vector>

#include "tools/zqmsg/masks.h"
#include "tools/zqmsg/page/markup.h"
#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

constexpr std::string_view kMaskedBytes = "****";

std::string aside(const std::string& html) {
  return " <small>" + html + "</small>";
}

std::string masked(std::string_view mask) {
  return "<span class=\"m\">" + std::string(mask) + "</span>";
}

std::string textHtml(std::string_view text) {
  return text.empty() ? "<small>empty</small>" : htmlText(text);
}

std::string countText(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

// The localised label with the name beside it, or the name alone.
std::string labelHtml(const FieldDef& field) {
  const std::string name = htmlText(field.getName() == nullptr ? "" : field.getName());
  std::string label;
  if (field.getLoczId() != 0)
    XmlUtils::getLocalizedMessage(static_cast<std::uint32_t>(field.getLoczId()), 0, label);
  return label.empty() ? name : htmlText(label) + aside(name);
}

}  // namespace

// One set field of a message: the handler of its storage.
class FieldRow {
 public:
  FieldRow(FieldRows& page, const FieldDef& field, const XNMessageBase& message)
      : page_(page),
        field_(field),
        annotation_(field),
        name_(labelHtml(field)),
        value_(field.getFieldAddrResolved(&message)) {}

  void operator()(Nothing) {}

  template <class E>
  void operator()(Scalar<E>) {
    if constexpr (element::Integer<E>) {
      one<std::int64_t>([this](std::int64_t value) { return integerHtml<E>(value); });
    } else {
      one<typename E::Value>([](auto value) { return numberText(value); });
    }
  }
  template <class E>
  void operator()(InPlace<E>) {
    one<typename E::Value>([this](const auto& value) { return this->valueHtml(value); });
  }
  template <class E>
  void operator()(Owned<E>) {
    one<typename E::Value>([this](const auto& value) { return this->valueHtml(value); });
  }
  void operator()(Object) {
    if (const auto* object = present<XNMessageBase>()) page_.object(titleHtml(object->getTagName()), *object);
  }
  template <class E>
  void operator()(List<E>) {
    const auto* values = present<std::vector<typename E::Value>>();
    if (values == nullptr) return;
    if constexpr (std::is_same_v<E, element::Obj>) {
      objects(*values);
    } else {
      std::string html = values->empty() ? "<small>no elements</small>" : std::string();
      for (const auto& value : *values)
        html +=
            (html.empty() ? "<span class=\"i\">" : " <span class=\"i\">") + elementHtml<E>(value) + "</span>";
      page_.row(name_, html);
    }
  }
  template <class K, class V>
  void operator()(Map<K, V>) {
    const auto* entries = present<std::map<typename K::Value, typename V::Value>>();
    if (entries == nullptr) return;
    page_.openSection(titleHtml(countText(entries->size(), "entry", "entries")));
    for (const auto& [key, value] : *entries) {
      if constexpr (std::is_same_v<K, element::Obj>) {
        page_.object("key", key);
        page_.object("value", value);
      } else if constexpr (std::is_same_v<V, element::Obj>) {
        page_.object(elementHtml<K>(key), value);
      } else {
        page_.row(elementHtml<K>(key), elementHtml<V>(value));
      }
    }
    page_.closeSection();
  }

 private:
  // The value, null when none is to be shown: what is written then is written here.
  template <class T>
  const T* present() {
    if (value_ == nullptr) {
      page_.row(name_, "<small>none</small>");
    } else if (!page_.showSecrets_ && annotation_.isSensitive()) {
      page_.row(name_, masked(kMaskedValue));
    } else if (!page_.showSecrets_ && annotation_.passwordType() != 0) {
      page_.row(name_, masked(kMaskedPassword));
    } else {
      return static_cast<const T*>(value_);
    }
    return nullptr;
  }

  template <class T, class Html>
  void one(Html html) {
    if (const T* value = present<T>()) page_.row(name_, html(*value));
  }

  std::string titleHtml(const std::string& about) const { return name_ + aside(htmlText(about)); }

  void objects(const std::vector<XNMessageBase>& values) {
    page_.openSection(titleHtml(countText(values.size(), "element", "elements")));
    std::size_t number = 0;
    for (const XNMessageBase& value : values)
      page_.object(name_ + ' ' + std::to_string(++number) + aside(htmlText(value.getTagName())), value);
    page_.closeSection();
  }

  template <class E>
  std::string elementHtml(const typename E::Value& value) const {
    if constexpr (element::Integer<E>) {
      return integerHtml<E>(value);
    } else if constexpr (element::Floating<E>) {
      return numberText(value);
    } else {
      return valueHtml(value);
    }
  }

  template <class T>
  std::string valueHtml(const T& value) const {
    if constexpr (std::is_same_v<T, std::u16string>) {
      return textHtml(toUtf8(value));
    } else if constexpr (std::is_same_v<T, std::string>) {
      return textHtml(value);
    } else {
      constexpr bool isPassword = std::is_same_v<T, pstring>;
      std::string about = isPassword ? std::string() : countText(value.str().size(), "byte", "bytes");
      if (!page_.showSecrets_)
        return masked(isPassword ? kMaskedPassword : kMaskedBytes) + (isPassword ? "" : aside(about));
      if constexpr (isPassword) about = "password of type " + std::to_string(value.getEncryptionType());
      return textHtml(value.str()) + aside(about);
    }
  }

  template <class E, class T>
  std::string integerHtml(T number) const {
    const auto value = static_cast<std::int64_t>(number);
    if constexpr (std::is_same_v<E, element::UInt64>)
      return std::to_string(static_cast<std::uint64_t>(value));
    if (const char* name = nameOfValue(field_, value))
      return htmlText(name) + (kEnumTypes.contains(field_.getType()) ? aside(std::to_string(value)) : "");
    const std::string text = timeText(value);
    return text.empty() ? std::to_string(value) : htmlText(text) + aside(std::to_string(value));
  }

  // A date or a time of day in words, empty for what is neither. Zero is a number: no date was meant.
  std::string timeText(std::int64_t value) const {
    if (value == 0 || value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max())
      return {};
    std::array<char, 512> text{};
    const auto seconds = static_cast<std::int32_t>(value);
    const bool made = annotation_.dateType() != 0
                          ? formatDateAnnotation(seconds, annotation_.dateType(), text.data())
                      : annotation_.isTime() ? formatTimeOfDay(seconds, text.data())
                                             : false;
    return made && text.data() != std::to_string(value) ? text.data() : std::string();
  }

  FieldRows& page_;
  const FieldDef& field_;
  const AnnotationRecord annotation_;
  const std::string name_;  // HTML
  const void* const value_;
};

void FieldRows::append(const XNMessageBase& message) {
  const _ClassDef* classDef = catalogue::classDef(message.getTagID());
  if (classDef == nullptr) return;
  for (const FieldDef& field : *classDef) {
    const AnnotationRecord annotation(field);
    const bool isHidden = annotation.isSuppressed() || annotation.isHiddenInReports();
    if (field.getFieldHashId() == 0 || isHidden) continue;
    if (!message.isSet(field.getMemNum(), message.getTagID(), 0)) continue;
    visitStorage(field.getType(), FieldRow(*this, field, message));
  }
}

void FieldRows::row(const std::string& nameHtml, const std::string& valueHtml) {
  html_ += "<div class=\"f\"><span class=\"n\">" + nameHtml + "</span><span class=\"v\">" + valueHtml +
           "</span></div>\n";
  ++rows_;
}

void FieldRows::openSection(const std::string& titleHtml) {
  if (++open_ > kDeepest) {
    html_ += "<p class=\"h\">" + titleHtml + "</p>\n";
    return;
  }
  const std::string id = "b" + std::to_string(++sections_);
  html_ += "<section class=\"s\"><button type=\"button\" aria-expanded=\"false\" aria-controls=\"" + id +
           "\">" + "<span class=\"t\">" + titleHtml + "</span></button><div class=\"b\" id=\"" + id +
           "\" hidden=\"until-found\">\n";
}

void FieldRows::closeSection() {
  if (open_-- <= kDeepest) html_ += "</div></section>\n";
}

void FieldRows::object(const std::string& titleHtml, const XNMessageBase& message) {
  openSection(titleHtml);
  const std::uint64_t before = rows_;
  append(message);
  if (rows_ == before) html_ += "<p class=\"none\">no field is set</p>\n";
  closeSection();
}

}  // namespace zqxml::tool
