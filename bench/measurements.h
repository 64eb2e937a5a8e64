// What the programs of measurements share: registering work, and running it.
#pragma once

#include <bench/ratio_table.h>
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace zqxml::bench {

/// Registers a measurement of `work`.
template <class Work>
void measure(const std::string& name, Work work) {
  ::benchmark::RegisterBenchmark(name.c_str(), [work](::benchmark::State& state) mutable {
    for (auto iteration : state) work();
  });
}

/// Runs what is registered, with the options of google-benchmark that the report's command line has, and
/// gives the tables to the report; the program's exit status.
int runMeasurements(Report& report, std::vector<ComparedTable> tables);

}  // namespace zqxml::bench
