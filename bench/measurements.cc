#include <bench/measurements.h>

#include <utility>

namespace zqxml::bench {
namespace {

void requireMeasured(const std::string& name) {
  require(name.empty() || measuredNames().contains(name), ("no measurement is named " + name).c_str());
}

}  // namespace

std::set<std::string>& measuredNames() {
  static std::set<std::string> names;
  return names;
}

int runMeasurements(Report& report, std::vector<ComparedTable> tables) {
  for (const ComparedTable& table : tables) {
    for (const Comparison& row : table.comparisons) {
      requireMeasured(row.ours);
      requireMeasured(row.peer);
    }
  }
  std::vector<std::string> options = report.arguments();
  // Defaults that the command line can overrule.
  options.insert(options.begin() + 1,
                 {"--benchmark_enable_random_interleaving=true",
                  report.isQuick() ? "--benchmark_repetitions=5" : "--benchmark_repetitions=30",
                  report.isQuick() ? "--benchmark_min_time=0.002" : "--benchmark_min_time=0.02"});
  std::vector<char*> arguments;
  for (std::string& text : options) arguments.push_back(text.data());
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  ::benchmark::Initialize(&count, arguments.data());
  if (::benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  RatioTable table(report, std::move(tables));
  ::benchmark::RunSpecifiedBenchmarks(&table);
  return report.finish();
}

}  // namespace zqxml::bench
