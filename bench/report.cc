#include <bench/report.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>

namespace zqxml::bench {
namespace {

using Json = nlohmann::ordered_json;

std::string number(double value, const std::string& unit) {
  char text[64];
  const char* const format = value < 10 ? "%.2f %s" : value < 100 ? "%.1f %s" : "%.0f %s";
  std::snprintf(text, sizeof text, format, value, unit.c_str());
  return text;
}

/// Empty without a reach. That of one alone has the unit.
std::string reachOf(const Row& row, const std::string& unit) {
  if (row.reach == 0) return "";
  char text[64];
  std::snprintf(text, sizeof text, "%s %.4g", row.atMost ? "<=" : ">=", row.reach);
  return row.peer ? text : text + (" " + unit);
}

void print(const Row& row, const std::string& unit) {
  char ratio[16] = "";
  if (row.peer) std::snprintf(ratio, sizeof ratio, "%.2f", row.ratio());
  std::printf("| %-42s | %14s | %14s | %7s | %14s | %-3s |\n", row.what.c_str(),
              number(row.ours.low, unit).c_str(), row.peer ? number(row.peer->low, unit).c_str() : "", ratio,
              reachOf(row, unit).c_str(),
              row.reach == 0 ? ""
              : row.isMet()  ? "yes"
                             : "NO");
}

Json jsonOf(const Figure& figure) {
  return {{"low", figure.low}, {"median", figure.median}, {"spread", figure.spread}};
}

Json jsonOf(const Table& table) {
  Json rows = Json::array();
  for (const Row& row : table.rows) {
    Json made = {{"what", row.what}, {"ours", jsonOf(row.ours)}};
    if (row.peer) {
      made["peer"] = jsonOf(*row.peer);
      made["ratio"] = row.ratio();
    }
    if (row.reach != 0) {
      made["reach"] = reachOf(row, table.unit);
      made["met"] = row.isMet();
    }
    rows.push_back(std::move(made));
  }
  return {{"title", table.title}, {"unit", table.unit}, {"ours", table.ours},
          {"peer", table.peer},   {"note", table.note}, {"rows", std::move(rows)}};
}

}  // namespace

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "bench: %s\n", what);
  std::exit(1);
}

Figure figureOf(std::vector<double> samples) {
  std::sort(samples.begin(), samples.end());
  const auto at = [&](std::size_t tenths) { return samples[(samples.size() - 1) * tenths / 10]; };
  Figure figure{at(1), at(5), 0};
  if (figure.median != 0) figure.spread = (at(9) - at(1)) / figure.median;
  return figure;
}

double Row::ratio() const {
  if (!peer) return 0;
  return atMost ? ours.low / peer->low : peer->low / ours.low;
}

bool Row::isMet() const {
  const double reached = peer ? ratio() : ours.low;
  return atMost ? reached <= reach : reached >= reach;
}

Report::Report(int argc, char** argv) {
  for (int i = 0; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--quick")
      quick_ = true;
    else if (argument.starts_with("--json="))
      jsonPath_ = argument.substr(7);
    else
      arguments_.push_back(argument);
  }
}

void Report::add(Table table) {
  std::printf("\n| %-42s | %14s | %14s | %7s | %14s | %-3s |\n", table.title.c_str(), table.ours.c_str(),
              table.peer.c_str(), "ratio", "reach", "met");
  std::printf(
      "|--------------------------------------------|---------------:|---------------:|--------:|---------------:|"
      "-----|\n");
  for (const Row& row : table.rows) print(row, table.unit);
  std::fflush(stdout);
  tables_.push_back(std::move(table));
}

void Report::fact(std::string_view name, std::string_view text) {
  facts_.emplace_back(name, text);
  std::printf("%s: %s\n", facts_.back().first.c_str(), facts_.back().second.c_str());
  std::fflush(stdout);
}

int Report::finish() const {
  if (jsonPath_.empty()) return 0;
  Json all = {{"facts", Json::object()}, {"tables", Json::array()}};
  for (const auto& [name, text] : facts_) all["facts"][name] = text;
  for (const Table& table : tables_) all["tables"].push_back(jsonOf(table));
  std::ofstream file(jsonPath_);
  file << all.dump(1) << '\n';
  require(file.flush().good(), "the results are not written");
  return 0;
}

}  // namespace zqxml::bench
