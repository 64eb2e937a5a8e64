// What the measurements say in the end: how two contenders of one process compare.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace zqxml::bench {

/// A claim about two measured names. `atMost`: our time by the peer's may be `reach` at most; otherwise the
/// peer's time by ours has to be `reach` at least. Without a reach (0) the row is for information.
struct Comparison {
  std::string what;
  std::string ours;
  std::string peer;
  bool atMost = false;
  double reach = 0;
};

/// Collects every repetition of every measurement, and prints the comparisons.
///
/// The figure of a name is the 10th percentile of its repetitions' CPU times: on a machine that does other
/// things too, the low end is what the code needs, and repetitions of all names are interleaved at random, so
/// that they meet the same disturbances.
class RatioTable : public benchmark::BenchmarkReporter {
 public:
  explicit RatioTable(std::vector<Comparison> comparisons) : comparisons_(std::move(comparisons)) {}

  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  /// Nanoseconds; 0 for a name that was not measured.
  double figure(const std::string& name) const;

  std::vector<Comparison> comparisons_;
  std::map<std::string, std::vector<double>> times_;
};

}  // namespace zqxml::bench
