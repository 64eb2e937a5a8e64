#include "paths.h"

#include <zqxml/catalogue/xpath_data.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zqxml::zqcatc {

namespace {

constexpr std::size_t kMaxPaths = 200'000;
constexpr std::size_t kMaxVisits = 1'000'000;
constexpr std::size_t kMaxDepth = 64;
constexpr FieldTypeSet kSteps{FDT_OBJECT, FDT_LIST_OBJECT};

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
      addField(field, prefix);
      members_.pop_back();
    }
    open_.pop_back();
  }

  /// True when there are more paths than a subsystem may have; the rest is left out.
  bool isFull() const { return paths_.size() >= kMaxPaths || visits_ > kMaxVisits; }
  std::vector<FieldPath>& paths() { return paths_; }

 private:
  void addField(const Field& field, const std::string& prefix) {
    if (kSteps.contains(field.type)) {
      if (const Class* target = field.references[0].target) walk(*target, prefix + field.name + "[1]/");
    } else if (members_.size() > 1 && kXPathScalarTypes.contains(field.type)) {
      add(prefix + "@" + field.name);
    } else if (members_.size() > 1 && kXPathListTypes.contains(field.type)) {
      add(prefix + field.name);
    }
  }
  void add(std::string text) {
    const std::int32_t id = xpathId(text);
    paths_.push_back({std::move(text), id, members_});
  }

  std::size_t visits_ = 0;
  std::vector<FieldPath> paths_;
  std::vector<const Class*> open_;
  std::vector<std::int16_t> members_;
};

void checkPaths(const Subsystem& subsystem, Diagnostics& diagnostics) {
  std::unordered_map<std::int32_t, const FieldPath*> byId;
  for (const FieldPath& path : subsystem.paths) {
    const auto [entry, isNew] = byId.try_emplace(path.id, &path);
    if (isNew) continue;
    const FieldPath& other = *entry->second;
    if (other.text != path.text) {
      diagnostics.error(subsystem.position,
                        cat("paths '", other.text, "' and '", path.text, "' of subsystem '", subsystem.name,
                            "' have the same id ", path.id, "; rename a field of one of them"));
    } else {
      diagnostics.error(subsystem.position,
                        cat("path '", path.text, "' of subsystem '", subsystem.name,
                            "' leads to different fields from different roots; rename a field, "
                            "or remove paths=\"true\" from one root"));
    }
  }
}

}  // namespace

void findPaths(Catalogue& catalogue, Diagnostics& diagnostics) {
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
    std::vector<FieldPath>& paths = subsystem->paths;
    paths = std::move(walker.paths());
    const auto whole = [](const FieldPath& path) { return std::tie(path.text, path.members); };
    std::sort(paths.begin(), paths.end(),
              [whole](const FieldPath& a, const FieldPath& b) { return whole(a) < whole(b); });
    // A path that leads to the same field from two roots is one path.
    const auto same = [whole](const FieldPath& a, const FieldPath& b) { return whole(a) == whole(b); };
    paths.erase(std::unique(paths.begin(), paths.end(), same), paths.end());
    checkPaths(*subsystem, diagnostics);
  }
}

}  // namespace zqxml::zqcatc
