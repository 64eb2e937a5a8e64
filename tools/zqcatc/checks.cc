#include "checks.h"

#include <zqxml/catalogue/name_hash.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>

#include "values.h"

namespace zqxml::zqcatc {

namespace {

std::string at(const Position& position) {
  return cat(position.file, ":", position.line);
}

std::string kindOf(const Class& record) {
  return record.isEnumeration ? "enumeration" : "class";
}

/// Remembers the first holder of each key; reports nothing itself.
template <class Key, class Holder>
class Firsts {
 public:
  /// The earlier holder of the key, null when this is the first.
  const Holder* add(const Key& key, const Holder& holder) {
    const auto [entry, isNew] = first_.try_emplace(key, &holder);
    return isNew ? nullptr : entry->second;
  }

 private:
  std::map<Key, const Holder*> first_;
};

void checkClasses(const Subsystem& subsystem, Diagnostics& diagnostics) {
  Firsts<std::string_view, Class> names;
  Firsts<int, Class> indices;
  Firsts<std::uint32_t, Class> ids;
  for (const auto& record : subsystem.classes) {
    const std::string where =
        cat(kindOf(*record), " '", record->name, "' of subsystem '", subsystem.name, "'");
    if (record->index >= subsystem.records) {
      diagnostics.error(record->position,
                        cat("index ", record->index, " of ", where, " is beyond its ", subsystem.records,
                            " records; choose a smaller one or raise records"));
    }
    if (const Class* other = names.add(record->name, *record)) {
      diagnostics.error(record->position,
                        cat(where, " has the name of one at ", at(other->position), "; rename one"));
    }
    if (const Class* other = indices.add(record->index, *record)) {
      diagnostics.error(record->position,
                        cat("index ", record->index, " of ", where, " is already that of '", other->name,
                            "' at ", at(other->position), "; choose a free one"));
    }
    if (record->id == 0) continue;
    if (const Class* other = ids.add(record->id, *record)) {
      diagnostics.error(record->position,
                        cat("id ", record->id, " of ", where, " is already that of '", other->name, "' at ",
                            at(other->position), "; give one of them another id"));
    }
  }
}

void checkFields(const Class& record, Diagnostics& diagnostics) {
  constexpr std::array<std::string_view, 2> kMapSides{"__mapKey__", "__mapValue__"};
  Firsts<std::string_view, Field> names;
  Firsts<std::uint32_t, Field> hashes;
  for (const Field& field : record.fields) {
    const std::string where =
        cat(record.isEnumeration ? "enumerator '" : "field '", field.name, "' of '", record.name, "'");
    if (const Field* other = names.add(field.name, field)) {
      diagnostics.error(field.position,
                        cat(where, " has the name of one at ", at(other->position), "; rename one"));
      continue;
    }
    if (record.isEnumeration || field.hashless) continue;
    if (field.hash == 0) {
      diagnostics.error(field.position, cat("the name of ", where,
                                            " has the hash 0; rename it, or write hash=\"0\" for "
                                            "a field that is never found by name"));
    }
    for (std::string_view side : kMapSides) {
      if (field.hash == nameHash(side)) {
        diagnostics.error(field.position, cat("the name of ", where, " has the hash of ", side,
                                              ", the side of a map; rename it"));
      }
    }
    if (const Field* other = hashes.add(field.hash, field)) {
      diagnostics.error(field.position,
                        cat(where, " has the hash of '", other->name, "' at ", at(other->position),
                            "; rename one, since fields are found by hash"));
    }
  }
}

/// An enumeration holds 32-bit values, all signed or all unsigned.
void checkEnumerators(const Class& record, Diagnostics& diagnostics) {
  const Field* negative = nullptr;
  const Field* large = nullptr;
  for (const Field& field : record.fields) {
    if (field.negative) negative = &field;
    if (!field.negative && field.hash > 0x7fffffff) large = &field;
  }
  if (negative == nullptr || large == nullptr) return;
  diagnostics.error(large->position,
                    cat("enumerator '", large->name, "' of '", record.name, "' is above 0x7fffffff and '",
                        negative->name, "' is negative; keep to one of the two"));
}

/// Answers for each storage whether a default text of it reads as what it says; the answer is what to write
/// instead, or "" when the text is good.
struct DefaultReader {
  const std::string& text;

  template <element::Integer E>
  std::string operator()(Scalar<E>) const {
    using Value = typename E::Value;
    // The runtime reads a signed 64-bit number, whatever the field's type.
    const std::optional<std::int64_t> number =
        text.find_first_of("xX") == std::string::npos ? parseNumber(text) : std::nullopt;
    const auto high =
        std::min<std::uint64_t>(std::numeric_limits<Value>::max(), std::numeric_limits<std::int64_t>::max());
    const auto low = static_cast<std::int64_t>(std::numeric_limits<Value>::min());
    if (number.has_value() && *number >= low && (*number < 0 || static_cast<std::uint64_t>(*number) <= high))
      return {};
    return cat("a decimal number from ", low, " to ", high);
  }
  std::string operator()(Scalar<element::Bool>) const {
    // Every text but "true" reads as false, "1" too.
    const std::string small = lower(text);
    return small == "true" || small == "false" || small == "0" ? "" : "true or false";
  }
  template <element::Floating E>
  std::string operator()(Scalar<E>) const {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    // False for infinities and for what is no number.
    const bool fits = std::abs(value) <= static_cast<double>(std::numeric_limits<typename E::Value>::max());
    return error == std::errc() && stop == end && fits ? "" : "a decimal number";
  }
  template <class E>
  std::string operator()(InPlace<E>) const {
    return {};
  }
  std::string operator()(Owned<element::BStr>) const { return {}; }
  template <class Storage>
  std::string operator()(Storage) const {
    return std::string(kTakesNone);
  }

  static constexpr std::string_view kTakesNone = "no default";
};

void checkDefault(const Class& owner, const Field& field, Diagnostics& diagnostics) {
  const std::string instead = visitStorage(field.type, DefaultReader{field.defaultText->value});
  if (instead.empty()) return;
  const std::string where = cat("field '", field.name, "' of class '", owner.name, "'");
  if (instead == DefaultReader::kTakesNone) {
    diagnostics.error(field.defaultText->position, cat(where, " is of type '", typeName(field.type),
                                                       "', which takes no default; remove it"));
  } else {
    diagnostics.error(field.defaultText->position, cat("default '", field.defaultText->value, "' of ", where,
                                                       " would not be read as that; write ", instead));
  }
}

}  // namespace

void checkNames(const Catalogue& catalogue, Diagnostics& diagnostics) {
  for (const auto& subsystem : catalogue.subsystems) {
    checkClasses(*subsystem, diagnostics);
    for (const auto& record : subsystem->classes) {
      checkFields(*record, diagnostics);
      if (record->isEnumeration) checkEnumerators(*record, diagnostics);
    }
  }
}

void checkDefaults(const Catalogue& catalogue, Diagnostics& diagnostics) {
  for (const auto& subsystem : catalogue.subsystems) {
    for (const auto& record : subsystem->classes) {
      for (const Field& field : record->fields)
        if (field.defaultText.has_value() && field.type != FDT_NONE)
          checkDefault(*record, field, diagnostics);
    }
  }
}

}  // namespace zqxml::zqcatc
