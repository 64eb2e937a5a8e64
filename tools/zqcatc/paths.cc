#include "paths.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zqxml::zqcatc {

namespace {

struct FieldPath {
  std::string text;
  std::int32_t id = 0;
  std::vector<std::int16_t> members;  ///< field numbers from the root to the value
};

constexpr std::size_t kMaxPaths = 200'000;
constexpr std::size_t kMaxVisits = 1'000'000;
constexpr std::size_t kMaxDepth = 64;

class PathWalker {
 public:
  void walk(const Class& record, const std::string& prefix) {
    if (open_.size() >= kMaxDepth || std::find(open_.begin(), open_.end(), &record) != open_.end()) return;
    if (++visits_ > kMaxVisits) return;
    open_.push_back(&record);
    for (const Field& field : record.fields) {
      if (isFull()) break;
      if (field.hash == 0 || field.isSelf) continue;
      members_.push_back(field.memNum);
      if (field.type == FDT_OBJECT && field.references[0].target != nullptr) {
        walk(*field.references[0].target, prefix + field.name + "[1]/");
      } else if (kPrimitiveTypes.contains(field.type)) {
        add(prefix + "@" + field.name);
      } else if (kXmlPrimitiveTypes.contains(field.type) && !kMapTypes.contains(field.type)) {
        add(prefix + field.name);
      }
      members_.pop_back();
    }
    open_.pop_back();
  }

  /// True when there are more paths than a subsystem may have; the rest is left out.
  bool isFull() const { return paths_.size() >= kMaxPaths || visits_ > kMaxVisits; }
  const std::vector<FieldPath>& paths() const { return paths_; }

 private:
  void add(std::string text) {
    const std::int32_t id = pathId(text);
    paths_.push_back({std::move(text), id, members_});
  }

  std::size_t visits_ = 0;
  std::vector<FieldPath> paths_;
  std::vector<const Class*> open_;
  std::vector<std::int16_t> members_;
};

}  // namespace

std::int32_t pathId(std::string_view text) {
  std::uint32_t hash = 0;
  for (char byte : text)
    hash = hash * 31 + static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(byte)));
  // The one value without a positive counterpart stays as it is.
  return static_cast<std::int32_t>(hash > 0x80000000u ? 0u - hash : hash);
}

void checkPaths(const Catalogue& catalogue, Diagnostics& diagnostics) {
  for (const auto& subsystem : catalogue.subsystems) {
    PathWalker walker;
    for (const auto& record : subsystem->classes)
      if (record->isPathRoot) walker.walk(*record, "");
    if (walker.isFull()) {
      diagnostics.error(subsystem->position,
                        cat("subsystem '", subsystem->name, "' has more than ", kMaxPaths,
                            " paths; remove paths=\"true\" from some of its classes"));
      continue;
    }
    std::unordered_map<std::int32_t, const FieldPath*> byId;
    for (const FieldPath& path : walker.paths()) {
      const auto [entry, isNew] = byId.try_emplace(path.id, &path);
      const FieldPath& other = *entry->second;
      if (isNew || (other.text == path.text && other.members == path.members)) continue;
      if (other.text != path.text) {
        diagnostics.error(subsystem->position, cat("paths '", other.text, "' and '", path.text,
                                                   "' of subsystem '", subsystem->name, "' have the same id ",
                                                   path.id, "; rename a field of one of them"));
      } else {
        diagnostics.error(subsystem->position,
                          cat("path '", path.text, "' of subsystem '", subsystem->name,
                              "' leads to different fields from different roots; rename a field, "
                              "or remove paths=\"true\" from one root"));
      }
    }
  }
}

}  // namespace zqxml::zqcatc
