#include "tools/zqmsg/message_diff.h"

#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/platform/text.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <type_traits>
#include <vector>

#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

constexpr const char* kNotSet = "(not set)";
constexpr const char* kNone = "(none)";

template <class E>
inline constexpr bool kIsObject = std::is_same_v<E, element::Obj>;

std::size_t firstDifference(std::string_view a, std::string_view b) {
  const std::size_t shorter = std::min(a.size(), b.size());
  const auto [end, other] = std::mismatch(a.data(), a.data() + shorter, b.data());
  return static_cast<std::size_t>(end - a.data());
}

// Equality of numbers is that of their bits, so that 0.0 is not -0.0 and a NaN is itself.
template <class T>
bool sameValue(const T& a, const T& b) {
  if constexpr (std::is_floating_point_v<T>) {
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): the bits are meant
    return std::memcmp(&a, &b, sizeof a) == 0;
  } else if constexpr (std::is_same_v<T, pstring>) {
    return a == b && a.getEncryptionType() == b.getEncryptionType();
  } else {
    return a == b;
  }
}

// A long text is shown from a little before `position`.
template <class T>
std::string valueText(const T& value, std::size_t position = 0) {
  if constexpr (std::is_integral_v<T>) {
    return std::to_string(value);
  } else if constexpr (std::is_floating_point_v<T>) {
    return numberText(value);
  } else if constexpr (std::is_same_v<T, XNMessageBase>) {
    return value.getTagName();
  } else if constexpr (std::is_same_v<T, pstring>) {
    return "a password of type " + std::to_string(value.getEncryptionType());
  } else if constexpr (std::is_same_v<T, bstring>) {
    return quotedText(value.str(), position);
  } else if constexpr (std::is_same_v<T, std::u16string>) {
    return quotedText(toUtf8(value), position);
  } else {
    return quotedText(value, position);
  }
}

template <class T>
std::size_t placeOfDifference(const T& a, const T& b) {
  if constexpr (std::is_same_v<T, std::string>) {
    return firstDifference(a, b);
  } else if constexpr (std::is_same_v<T, bstring>) {
    return firstDifference(a.str(), b.str());
  } else if constexpr (std::is_same_v<T, std::u16string>) {
    return firstDifference(toUtf8(a), toUtf8(b));
  } else {
    return 0;
  }
}

}  // namespace

// One field of two messages of the same class: the handler of its storage.
class FieldComparison {
 public:
  FieldComparison(MessageDiff& diff, std::string path, const FieldDef& field, const XNMessageBase& a,
                  const XNMessageBase& b)
      : diff_(diff),
        path_(std::move(path)),
        field_(field),
        a_(field.getFieldAddrResolved(&a)),
        b_(field.getFieldAddrResolved(&b)),
        aSet_(a.isSet(field.getMemNum(), a.getTagID(), 0)),
        bSet_(b.isSet(field.getMemNum(), b.getTagID(), 0)) {}

  void operator()(Nothing) {}

  template <class E>
  void operator()(Scalar<E>) {
    if constexpr (element::Integer<E>) {
      both<std::int64_t>([this](std::int64_t a, std::int64_t b) {
        if (a != b) diff_.report(path_, integerText(a), integerText(b));
      });
    } else {
      values<typename E::Value>();
    }
  }
  template <class E>
  void operator()(InPlace<E>) {
    values<typename E::Value>();
  }
  template <class E>
  void operator()(Owned<E>) {
    values<typename E::Value>();
  }
  void operator()(Object) {
    both<XNMessageBase>(
        [this](const XNMessageBase& a, const XNMessageBase& b) { diff_.compare(path_, a, b); });
  }
  template <class E>
  void operator()(List<E>) {
    using Values = std::vector<typename E::Value>;
    both<Values>([this](const Values& a, const Values& b) {
      for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i)
        entry(path_ + '[' + std::to_string(i) + ']', i < a.size() ? &a[i] : nullptr,
              i < b.size() ? &b[i] : nullptr);
    });
  }
  template <class K, class V>
  void operator()(Map<K, V>) {
    using Values = std::map<typename K::Value, typename V::Value>;
    both<Values>([this](const Values& a, const Values& b) { maps<K>(a, b); });
  }

 private:
  // Hands both values over when both are there, and reports it when only one is.
  template <class T, class Compare>
  void both(Compare compare) {
    const auto* a = static_cast<const T*>(aSet_ ? a_ : nullptr);
    const auto* b = static_cast<const T*>(bSet_ ? b_ : nullptr);
    if (a != nullptr && b != nullptr) return compare(*a, *b);
    const std::string absentA = aSet_ ? kNone : kNotSet;
    const std::string absentB = bSet_ ? kNone : kNotSet;
    if (aSet_ == bSet_ && a == b) return;
    diff_.report(path_, a == nullptr ? absentA : wholeText(*a), b == nullptr ? absentB : wholeText(*b));
  }

  template <class T>
  void values() {
    both<T>([this](const T& a, const T& b) { value(path_, a, b); });
  }

  template <class T>
  void value(const std::string& path, const T& a, const T& b) {
    if constexpr (std::is_same_v<T, XNMessageBase>) {
      diff_.compare(path, a, b);
    } else if (!sameValue(a, b)) {
      const std::size_t position = placeOfDifference(a, b);
      const std::string aText = valueText(a, position);
      const std::string bText = valueText(b, position);
      diff_.report(path, aText, aText == bText ? "another one" : bText);
    }
  }

  // An element of a list or map that at least one side has.
  template <class T>
  void entry(const std::string& path, const T* a, const T* b) {
    if (a != nullptr && b != nullptr) return value(path, *a, *b);
    diff_.report(path, a == nullptr ? kNone : valueText(*a), b == nullptr ? kNone : valueText(*b));
  }

  template <class K, class Values>
  void maps(const Values& a, const Values& b) {
    if constexpr (kIsObject<K>) {
      // All keys are equivalent: such a map has one entry at most.
      using Key = typename Values::key_type;
      using Mapped = typename Values::mapped_type;
      if (a.empty() && b.empty()) return;
      entry<Key>(path_ + "[key]", a.empty() ? nullptr : &a.begin()->first,
                 b.empty() ? nullptr : &b.begin()->first);
      entry<Mapped>(path_ + "[value]", a.empty() ? nullptr : &a.begin()->second,
                    b.empty() ? nullptr : &b.begin()->second);
    } else {
      for (const auto& [key, mapped] : a) {
        const auto other = b.find(key);
        entry(keyPath(key), &mapped, other == b.end() ? nullptr : &other->second);
      }
      for (const auto& [key, mapped] : b)
        if (!a.contains(key)) entry<typename Values::mapped_type>(keyPath(key), nullptr, &mapped);
    }
  }

  template <class Key>
  std::string keyPath(const Key& key) const {
    return path_ + '[' + valueText(key) + ']';
  }

  std::string integerText(std::int64_t value) const {
    const char* name = nameOfValue(field_, value);
    if (name == nullptr) return std::to_string(value);
    return kEnumTypes.contains(field_.getType()) ? std::to_string(value) + " (" + name + ")" : name;
  }

  template <class T>
  std::string wholeText(const T& value) const {
    return valueText(value);
  }
  template <class T>
  std::string wholeText(const std::vector<T>& values) const {
    return std::to_string(values.size()) + (values.size() == 1 ? " element" : " elements");
  }
  template <class K, class V>
  std::string wholeText(const std::map<K, V>& values) const {
    return std::to_string(values.size()) + (values.size() == 1 ? " entry" : " entries");
  }

  MessageDiff& diff_;
  const std::string path_;
  const FieldDef& field_;
  const void* a_;
  const void* b_;
  const bool aSet_;
  const bool bSet_;
};

void MessageDiff::compare(const std::string& path, const XNMessageBase& a, const XNMessageBase& b) {
  const _ClassDef* classDef = XNMessageBase::GetClassDef(&a);
  if (classDef != XNMessageBase::GetClassDef(&b) || classDef == nullptr) {
    if (a.getTagName() != b.getTagName() || classDef != XNMessageBase::GetClassDef(&b))
      report(path.empty() ? "(class)" : path, a.getTagName(), b.getTagName());
    return;
  }
  for (const FieldDef& field : *classDef) {
    if (field.getFieldHashId() == 0) continue;
    const std::string name = path.empty() ? field.getName() : path + '.' + field.getName();
    const std::string_view mask = masks_.of(field, AnnotationRecord(field));
    if (!mask.empty()) {
      compareHidden(name, mask, field, a, b);
    } else {
      visitStorage(field.getType(), FieldComparison(*this, name, field, a, b));
    }
  }
}

void MessageDiff::compareHidden(const std::string& path, std::string_view mask, const FieldDef& field,
                                const XNMessageBase& a, const XNMessageBase& b) {
  MessageDiff inside([](const std::string&, const std::string&, const std::string&) {});
  visitStorage(field.getType(), FieldComparison(inside, path, field, a, b));
  if (inside.count() != 0) report(path, std::string(mask), std::string(mask));
}

void MessageDiff::report(const std::string& path, const std::string& a, const std::string& b) {
  ++count_;
  report_(path, a, b);
}

}  // namespace zqxml::tool
