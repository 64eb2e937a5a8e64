// How many instructions each road takes for the medium message. Runs under Callgrind (script/bench
// --instructions), which dumps the counts of each road behind its name; the figures do not depend on what
// else the machine does.
#include <bench/roads.h>
#include <valgrind/callgrind.h>

#include <cstdio>

namespace zqxml::bench {
namespace {

constexpr int kWarmUp = 3;
constexpr int kRuns = 20;

int run() {
  if (RUNNING_ON_VALGRIND == 0) {
    std::fputs("instruction_count: runs under valgrind --tool=callgrind --instr-atstart=no\n", stderr);
    return 2;
  }
  RoadMessage message(jobReport(20));
  // What a dump is of stands in its place in the line: the name of the road, and how often it was run.
  std::printf("runs %d\n", kRuns);
  for (const Road& road : allRoads()) {
    const WithRoad way(road);
    for (int i = 0; i < kWarmUp; ++i) road.run(message);
    CALLGRIND_START_INSTRUMENTATION;
    road.run(message);  // what instrumenting itself brings along
    CALLGRIND_ZERO_STATS;
    for (int i = 0; i < kRuns; ++i) road.run(message);
    CALLGRIND_DUMP_STATS_AT(road.name.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
  }
  return 0;
}

}  // namespace
}  // namespace zqxml::bench

int main() {
  return zqxml::bench::run();
}
