// Each road with a message and with one of twice the size: nothing may grow faster than the message does.
#include <bench/measurements.h>
#include <bench/roads.h>

#include <memory>
#include <string>
#include <vector>

namespace zqxml::bench {
namespace {

constexpr double kReach = 2.1;

struct Pair {
  std::string name;
  RoadMessage once, twice;

  explicit Pair(std::size_t subObjects)
      : name(std::to_string(subObjects) + " sub-objects"),
        once(jobReport(subObjects)),
        twice(jobReport(2 * subObjects)) {}
};

void measureRoad(const std::string& name, const Road& road, RoadMessage& message) {
  measureWithin(
      name, [&road] { return WithRoad(road); }, [&road, &message] { road.run(message); });
}

int run(int argc, char** argv) {
  Report report(argc, argv);
  ComparedTable table;
  table.table.title = "Twice the message";
  table.table.ours = "twice";
  table.table.peer = "once";
  table.table.note =
      "The report with so many sub-objects, and with twice as many. Where once fits into a cache that twice does "
      "not fit into, twice takes more than its share: 5,000 are 1.4 MB. How an allocator treats blocks of many "
      "megabytes, which 20,000 need, differs from process to process.";
  std::vector<std::unique_ptr<Pair>> pairs;
  for (const std::size_t subObjects : {500, 5000, 20'000})
    pairs.push_back(std::make_unique<Pair>(subObjects));
  for (const Road& road : allRoads()) {
    for (const auto& pair : pairs) {
      const std::string name = road.name + ", " + pair->name;
      measureRoad(name + "/once", road, pair->once);
      measureRoad(name + "/twice", road, pair->twice);
      table.comparisons.push_back({name, name + "/twice", name + "/once", true, kReach});
    }
  }
  return runMeasurements(report, {table});
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
