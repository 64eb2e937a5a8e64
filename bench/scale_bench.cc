// Each road with a message and with one of twice the size: nothing may grow faster than the message does.
//
// What is measured is how the work grows, and not how many pages a processor finds at once, nor what a system
// takes for pages that an allocator gave back a moment ago: on a virtual machine that comes to a fifth of all
// time with twice 5,000 sub-objects, and to many times the rest with 20,000. So the heap is one range in huge
// pages here.
#include <bench/measurements.h>
#include <bench/roads.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace zqxml::bench {
namespace {

constexpr double kReach = 2.1;

/// More than the measurements have at any time. Untouched, it takes no memory.
constexpr std::size_t kHeap = std::size_t{2} << 30;
constexpr std::size_t kHugePage = std::size_t{2} << 20;

/// Gives the heap all it will need at once, to keep, and asks for huge pages there. False where the system
/// has none.
bool keepHeapInHugePages() {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, -1);
  char* const begin = static_cast<char*>(sbrk(0));
  void* const all = std::malloc(kHeap);
  require(all != nullptr, "the heap does not grow");
  std::free(all);
  char* const first = begin + (kHugePage - reinterpret_cast<std::uintptr_t>(begin) % kHugePage) % kHugePage;
  const auto size = static_cast<std::size_t>(static_cast<char*>(sbrk(0)) - first);
  return madvise(first, size / kHugePage * kHugePage, MADV_HUGEPAGE) == 0;
}

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
  report.fact("Heap of twice the message", keepHeapInHugePages() ? "huge pages" : "pages of the usual size");
  ComparedTable table;
  table.table.title = "Twice the message";
  table.table.ours = "twice";
  table.table.peer = "once";
  table.table.note =
      "The report with so many sub-objects, and with twice as many, in huge pages, where the system has them. 5,000 are "
      "1.3 MB: where once fits into a cache that twice does not fit into, twice takes a little more than its share.";
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
