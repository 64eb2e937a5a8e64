// What the programs of measurements share: registering work, and running it.
#pragma once

#include <bench/ratio_table.h>
#include <bench/stack_place.h>
#include <benchmark/benchmark.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zqxml::bench {

/// The names that are registered, with measure() and measureWithin().
std::set<std::string>& measuredNames();

/// Registers a measurement of `work`; what `prepare` gives lives meanwhile. Each sample is taken at another
/// place of the stack. Ends the program when the name is taken.
template <class Prepare, class Work>
void measureWithin(const std::string& name, Prepare prepare, Work work) {
  require(measuredNames().insert(name).second, "two measurements have the same name");
  ::benchmark::RegisterBenchmark(name.c_str(), [prepare, work, sample = std::size_t{0}](auto& state) mutable {
    [[maybe_unused]] const auto prepared = prepare();
    callAtPlace(sample++ % kStackPlaces, [&] {
      for (auto iteration : state) work();
    });
  });
}

/// Registers a measurement of `work`. Ends the program when the name is taken.
template <class Work>
void measure(const std::string& name, Work work) {
  measureWithin(
      name, [] { return 0; }, std::move(work));
}

/// Runs what is registered, with the options of google-benchmark that the report's command line has, and
/// gives the tables to the report; the program's exit status. Ends the program when a table compares what
/// is not registered.
int runMeasurements(Report& report, std::vector<ComparedTable> tables);

}  // namespace zqxml::bench
