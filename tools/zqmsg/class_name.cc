#include "tools/zqmsg/class_name.h"

#include <zqxml/catalogue/lookup.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/zqmsg/failure.h"

namespace zqxml::tool {
namespace {

// Steps from one name to the other: letters put in, left out or changed, upper and lower case being one.
std::size_t distance(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = diagonal + (lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

// Keeps the nearest of the names that it is shown, unless none is near.
class NearestName {
 public:
  explicit NearestName(std::string_view wanted) : wanted_(wanted), best_(wanted.size() / 3 + 1) {}
  void consider(const char* name) {
    if (name == nullptr) return;
    const std::size_t steps = distance(wanted_, name);
    if (steps > best_ || (steps == best_ && !name_.empty())) return;
    best_ = steps;
    name_ = name;
  }
  const std::string& name() const { return name_; }

 private:
  std::string_view wanted_;
  std::size_t best_;
  std::string name_;
};

std::string question(const std::string& name) {
  return name.empty() ? "" : "did you mean '" + name + "'? ";
}

template <class Number>
std::optional<Number> parsed(std::string_view text, int base) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

ClassPlace findByTag(const std::string& name) {
  const std::optional<std::uint32_t> tag = parsed<std::uint32_t>(std::string_view(name).substr(2), 16);
  ClassPlace place;
  if (!tag || !catalogue::indicesFromTag(*tag, place.subsystem, place.classIndex))
    throw Failure(kFailed, name, "no class has this tag id").advise("'zqmsg catalogue SUBSYSTEM' lists them");
  place.record = catalogue::classAt(place.subsystem, place.classIndex);
  return place;
}

}  // namespace

short findSubsystem(const std::string& name) {
  short slot = 0;
  if (catalogue::subsystemFromName(name.c_str(), slot)) return slot;
  const std::optional<short> number = parsed<short>(name, 10);
  if (number && *number >= 0 && *number < kSubsystemCount && gSubsystemTable[*number].name != nullptr)
    return *number;
  NearestName nearest(name);
  for (const SubsystemDef& row : gSubsystemTable) nearest.consider(row.name);
  throw Failure(kFailed, name, "is no subsystem")
      .advise(question(nearest.name()) + "'zqmsg catalogue' lists them");
}

ClassPlace findClass(const std::string& name) {
  if (name.starts_with("0x") || name.starts_with("0X")) return findByTag(name);
  const std::size_t split = name.find('_');
  if (split == std::string::npos)
    throw Failure(kFailed, name, "names no class").advise("a class is SUBSYSTEM_CLASS or a tag id 0x...");
  ClassPlace place;
  place.subsystem = findSubsystem(name.substr(0, split));
  const SubsystemDef& row = gSubsystemTable[place.subsystem];
  const std::string className = name.substr(split + 1);
  if (catalogue::classIndexFromName(className.c_str(), place.subsystem, place.classIndex)) {
    place.record = catalogue::classAt(place.subsystem, place.classIndex);
    return place;
  }
  NearestName nearest(className);
  for (int i = 0; i < row.recordCount; ++i) nearest.consider(row.classDefs[i].getName());
  const std::string suggestion = nearest.name().empty() ? "" : std::string(row.name) + "_" + nearest.name();
  throw Failure(kFailed, name, "is no class of subsystem " + std::string(row.name))
      .advise(question(suggestion) + "'zqmsg catalogue " + row.name + "' lists them");
}

}  // namespace zqxml::tool
