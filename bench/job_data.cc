#include <bench/job_data.h>
#include <zqxml/platform/text.h>

namespace zqxml::bench {
namespace {

/// The number with at least `width` digits.
std::string digits(std::uint64_t number, std::size_t width) {
  std::string text = std::to_string(number);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

}  // namespace

JobEntry jobEntry(std::uint32_t n) {
  static constexpr const char* kPolicies[] = {"nightly", "hourly", "weekly", "archive"};
  return {.id = 100000 + n,
          .client = "db-server-" + digits(n % 1000, 3),
          .path = "/vol/" + digits(n % 64, 2),
          .policy = kPolicies[n % 4],
          .size = std::int64_t{1000003} * (n % 97 + 1),
          .start = static_cast<std::int32_t>(1700000000 + 61 * n),
          .state = static_cast<int>(n % 4)};
}

JobEntry soleEntry() {
  JobEntry entry = jobEntry(17);
  entry.client = "db-server-017.example.lan";
  entry.path = "/vol/17/finance/2023/11";
  entry.policy = "nightly-full";
  return entry;
}

JobReport jobReport(std::size_t subObjects) {
  JobReport report;
  report.texts = {"Nightly protection summary",
                  "hubserver-01.example.lan",
                  "11.32.45",
                  "Europe/Zurich",
                  "operator-07",
                  "REQ-2023-11-000417",
                  "Finance & Accounting",
                  "ZRH",
                  "SP-primary-dedup",
                  "30 days, 2 cycles",
                  "lib-tape-03",
                  "copy-1",
                  "weekday-2200",
                  "https://tickets.example.lan/417?view=full&tab=1",
                  "backup-team@example.lan",
                  "/var/spool/reports/nightly/2023-11-14.html",
                  "de_CH",
                  "All systems were protected; two clients need a look at their open files before the next "
                  "run. The archive "
                  "has grown by a tenth since last month, most of it mail; the tape library has two free "
                  "slots left and will "
                  "ask for cleaning by the end of the week. Retention was checked against the rules of the "
                  "department, and "
                  "nothing was removed that should have stayed."};
  report.comment = u"Kapazit\u00e4t pr\u00fcfen: \u201eArchiv\u201c w\u00e4chst";
  report.utf8Comment = toUtf8(report.comment);
  for (std::size_t i = 0; i < report.counts.size(); ++i)
    report.counts[i] = static_cast<std::int32_t>(i * i * 37 + 1);
  for (std::size_t i = 0; i < report.totals.size(); ++i)
    report.totals[i] = std::int64_t{987654321} * static_cast<int>(i + 1);
  report.marks = {true, false, true, false, true};
  report.rates = {63.25, 417.5, 4.75};
  report.kind = 2;
  report.order = 1;
  report.flags = 0x8041;
  report.startTime = 1699999200;
  report.endTime = 1700013600;
  report.generatedAt = 1700014000;
  report.digest = std::string("\x01\xfe digest of the report \x80\x00\x7f", 28);
  report.largestJob = jobEntry(7);
  report.oldestJob = jobEntry(3);
  for (std::uint32_t n = 2; n < subObjects; ++n) report.jobs.push_back(jobEntry(n));
  for (int i = 0; i < 12; ++i) report.phaseCounts.push_back(i * 11);
  for (int i = 0; i < 6; ++i) report.sizes.push_back(std::int64_t{123456789} * i);
  report.clients = {"fileserver-002.lan", "fileserver-003.lan", "mail-01.lan", "db-oracle-04.lan"};
  report.tags = {"gold", "legal-hold", "offsite"};
  for (int i = 0; i < 6; ++i)
    report.bytesByClient["fileserver-00" + std::to_string(i) + ".lan"] = 1234567 * i;
  return report;
}

}  // namespace zqxml::bench
