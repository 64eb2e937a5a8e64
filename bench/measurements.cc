#include <bench/measurements.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace zqxml::bench {

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "bench: %s\n", what);
  std::exit(1);
}

int runMeasurements(int argc, char** argv, std::vector<Comparison> comparisons) {
  // Defaults that the command line can overrule.
  std::vector<std::string> defaults{argv[0], "--benchmark_enable_random_interleaving=true",
                                    "--benchmark_repetitions=30", "--benchmark_min_time=0.02"};
  std::vector<char*> arguments;
  for (std::string& text : defaults) arguments.push_back(text.data());
  for (int i = 1; i < argc; ++i) arguments.push_back(argv[i]);
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  ::benchmark::Initialize(&count, arguments.data());
  if (::benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  RatioTable table(std::move(comparisons));
  ::benchmark::RunSpecifiedBenchmarks(&table);
  return 0;
}

}  // namespace zqxml::bench
