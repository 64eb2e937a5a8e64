#include <bench/ratio_table.h>

#include <algorithm>
#include <cstdio>

namespace zqxml::bench {

void RatioTable::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
    times_[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
  }
}

double RatioTable::figure(const std::string& name) const {
  const auto found = times_.find(name);
  if (found == times_.end()) return 0;
  std::vector<double> times = found->second;
  std::sort(times.begin(), times.end());
  return times[times.size() / 10];
}

void RatioTable::Finalize() {
  std::printf("| %-38s | %12s | %12s | %7s | %9s | %-3s |\n", "measurement", "ours", "peer", "ratio", "reach",
              "met");
  std::printf(
      "|----------------------------------------|-------------:|-------------:|--------:|----------:|-----|"
      "\n");
  for (const Comparison& row : comparisons_) {
    const double ours = figure(row.ours);
    const double peer = figure(row.peer);
    if (ours == 0 || peer == 0) continue;
    const double ratio = row.atMost ? ours / peer : peer / ours;
    const bool met = row.atMost ? ratio <= row.reach : ratio >= row.reach;
    char reach[16] = "";
    if (row.reach != 0) std::snprintf(reach, sizeof reach, "%s %.1f", row.atMost ? "<=" : ">=", row.reach);
    std::printf("| %-38s | %9.0f ns | %9.0f ns | %7.2f | %9s | %-3s |\n", row.what.c_str(), ours, peer, ratio,
                reach,
                row.reach == 0 ? ""
                : met          ? "yes"
                               : "NO");
  }
}

}  // namespace zqxml::bench
