// Classes of old-way subsystems that contain themselves.
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "checks.h"

namespace zqxml::zqcatc {

namespace {

struct Edge {
  const Class* target;
  const Field* field;
};

/// The object fields that building an object of an old-way class follows.
std::vector<Edge> builtObjects(const Class& record) {
  std::vector<Edge> edges;
  for (const Field& field : record.fields) {
    if (field.type != FDT_OBJECT || field.hashless || field.references.empty()) continue;
    const Class* target = field.references[0].target;
    if (target != nullptr && target->subsystem->old) edges.push_back({target, &field});
  }
  return edges;
}

class CycleFinder {
 public:
  explicit CycleFinder(const Catalogue& catalogue) {
    // Classes that build nothing, or only classes already passed, are passed. What stays open is on a cycle
    // or leads to one.
    std::unordered_map<const Class*, std::vector<const Class*>> builders;
    std::vector<const Class*> passed;
    for (const auto& subsystem : catalogue.subsystems) {
      if (!subsystem->old) continue;
      for (const auto& record : subsystem->classes) {
        const std::vector<Edge> edges = builtObjects(*record);
        order_.push_back(record.get());
        open_[record.get()] = edges.size();
        if (edges.empty()) passed.push_back(record.get());
        for (const Edge& edge : edges) builders[edge.target].push_back(record.get());
      }
    }
    while (!passed.empty()) {
      const Class* done = passed.back();
      passed.pop_back();
      for (const Class* builder : builders[done])
        if (--open_[builder] == 0) passed.push_back(builder);
    }
  }

  void report(Diagnostics& diagnostics) {
    for (const Class* start : order_)
      if (open_[start] != 0 && !walked_.contains(start)) reportFrom(*start, diagnostics);
  }

 private:
  /// Follows open classes until one comes again; says nothing when the walk meets an earlier one.
  void reportFrom(const Class& start, Diagnostics& diagnostics) {
    std::vector<Edge> walk;
    std::unordered_map<const Class*, std::size_t> steps{{&start, 0}};
    const Class* current = &start;
    for (;;) {
      walked_.insert(current);
      walk.push_back(firstOpen(*current));
      current = walk.back().target;
      const auto [entry, isNew] = steps.try_emplace(current, walk.size());
      if (!isNew) {
        reportCycle(*current, {walk.begin() + static_cast<std::ptrdiff_t>(entry->second), walk.end()},
                    diagnostics);
        return;
      }
      if (walked_.contains(current)) return;
    }
  }

  Edge firstOpen(const Class& record) {
    for (const Edge& edge : builtObjects(record))
      if (open_[edge.target] != 0) return edge;
    return {&record, nullptr};  // not reached: an open class has an open target
  }

  static void reportCycle(const Class& first, const std::vector<Edge>& cycle, Diagnostics& diagnostics) {
    constexpr std::size_t kShown = 8;
    std::string chain = first.name;
    for (std::size_t i = 0; i < cycle.size(); ++i) {
      if (i < kShown) chain += cat(".", cycle[i].field->name, " -> ", cycle[i].target->name);
      if (i == kShown) chain += " ...";
    }
    diagnostics.error(
        cycle.front().field->position,
        cat("object fields of old-way classes form a cycle, ", chain,
            ": an object of such a class would be built without end; make one of them a list_object"));
  }

  std::unordered_map<const Class*, std::size_t> open_;  ///< class to its objects that are not passed
  std::vector<const Class*> order_;
  std::unordered_set<const Class*> walked_;
};

}  // namespace

void checkCycles(const Catalogue& catalogue, Diagnostics& diagnostics) {
  CycleFinder(catalogue).report(diagnostics);
}

}  // namespace zqxml::zqcatc
