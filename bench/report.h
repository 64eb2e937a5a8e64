// What measurements end in: tables for people, and the same as JSON for the page that script/bench writes.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml::bench {

/// What a contender needs, of several samples.
///
/// `low`, the 10th percentile, is what ratios are made of: on a machine that does other things too, the low
/// end is what the code needs. `spread` is how far the 90th percentile lies above it, as a part of the
/// median.
struct Figure {
  double low = 0;
  double median = 0;
  double spread = 0;
};

/// REQUIRES: there are samples.
Figure figureOf(std::vector<double> samples);

/// Two contenders, or one alone. `atMost`: ours by the peer's (or ours alone, in the table's unit) may be
/// `reach` at most; otherwise the peer's by ours has to be `reach` at least. Without a reach (0) the row is
/// for information.
struct Row {
  std::string what;
  Figure ours;
  std::optional<Figure> peer;
  bool atMost = false;
  double reach = 0;

  /// 0 when there is no peer.
  double ratio() const;
  bool isMet() const;
};

struct Table {
  std::string title;
  std::vector<Row> rows = {};
  std::string unit = "ns";
  std::string ours = "ours";
  std::string peer = "peer";
  /// A sentence on how the rows came about, for the page; may be empty.
  std::string note = {};
};

/// What a program measured. The options of its command line that every program has:
///
///   --quick      fewer and shorter samples: whether it works, not how fast
///   --json=FILE  what add() and fact() were told, for the page
class Report {
 public:
  Report(int argc, char** argv);

  bool isQuick() const { return quick_; }
  /// The command line without the options above.
  const std::vector<std::string>& arguments() const { return arguments_; }

  /// Prints a table and keeps it for the page.
  void add(Table table);
  /// Prints and keeps what a figure depends on: a version, the size of a message.
  void fact(std::string_view name, std::string_view text);
  /// Writes the JSON when it was asked for; the program's exit status.
  int finish() const;

 private:
  bool quick_ = false;
  std::string jsonPath_;
  std::vector<std::string> arguments_;
  std::vector<std::pair<std::string, std::string>> facts_;
  std::vector<Table> tables_;
};

/// Ends the program when something is not as the measurements need it.
void require(bool holds, const char* what);

}  // namespace zqxml::bench
