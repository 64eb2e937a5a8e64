#include <bench/ratio_table.h>

namespace zqxml::bench {

void RatioTable::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
    times_[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
  }
}

void RatioTable::Finalize() {
  for (auto& [table, comparisons] : tables_) {
    for (const Comparison& row : comparisons) {
      const auto ours = times_.find(row.ours);
      const auto peer = times_.find(row.peer);
      if (ours == times_.end() || (!row.peer.empty() && peer == times_.end())) continue;
      Row made{row.what, figureOf(ours->second), {}, row.atMost, row.reach};
      if (peer != times_.end()) made.peer = figureOf(peer->second);
      table.rows.push_back(std::move(made));
    }
    if (!table.rows.empty()) report_.add(std::move(table));
  }
}

}  // namespace zqxml::bench
