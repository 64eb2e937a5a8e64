// What google-benchmark's measurements say in the end: how two contenders of one process compare.
#pragma once

#include <bench/report.h>
#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace zqxml::bench {

/// A claim about two measured names (see Row); without a peer's name, about one.
struct Comparison {
  std::string what;
  std::string ours;
  std::string peer;
  bool atMost = false;
  double reach = 0;
};

/// The comparisons of one table, whose heading and notes are those of `table`.
struct ComparedTable {
  Table table;
  std::vector<Comparison> comparisons;
};

/// Collects the CPU times of every repetition of every measurement, and gives the tables to the report.
/// Repetitions of all names are interleaved at random, so that they meet the same disturbances. A comparison
/// with a name that was not measured is left out.
class RatioTable : public benchmark::BenchmarkReporter {
 public:
  RatioTable(Report& report, std::vector<ComparedTable> tables)
      : report_(report), tables_(std::move(tables)) {}

  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  Report& report_;
  std::vector<ComparedTable> tables_;
  std::map<std::string, std::vector<double>> times_;
};

}  // namespace zqxml::bench
