// What the programs of measurements share: registering work, and running it.
#pragma once

#include <bench/ratio_table.h>
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace zqxml::bench {

/// Ends the program when something is not as the measurements need it.
void require(bool holds, const char* what);

/// Registers a measurement of `work`.
template <class Work>
void measure(const std::string& name, Work work) {
  ::benchmark::RegisterBenchmark(name.c_str(), [work](::benchmark::State& state) {
    for (auto iteration : state) work();
  });
}

/// Runs what is registered, with options from the command line, and prints the comparisons; the program's
/// exit status.
int runMeasurements(int argc, char** argv, std::vector<Comparison> comparisons);

}  // namespace zqxml::bench
