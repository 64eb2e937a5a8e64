// The content of the measured messages as plain data: what each contender is filled from.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zqxml::bench {

struct JobEntry {
  std::uint32_t id = 0;
  std::string client;
  std::string path;
  std::string policy;
  std::int64_t size = 0;
  std::int32_t start = 0;
  int state = 0;
};

// Names of the fields that come in numbers, in the order of the members below.
inline constexpr std::array kTextNames{
    "reportName",   "serverName", "serverVersion", "timeZone",      "requestedBy",    "requestId",
    "department",   "site",       "storagePolicy", "retentionRule", "defaultLibrary", "primaryCopy",
    "scheduleName", "ticketUrl",  "contact",       "outputPath",    "locale",         "summary"};
inline constexpr std::array kCountNames{"jobCount",    "completedCount", "failedCount", "pendingCount",
                                        "killedCount", "runningCount",   "pageNumber",  "pageSize",
                                        "streamCount", "retryCount",     "alertCount",  "priority"};
inline constexpr std::array kTotalNames{"totalBytes",    "transferredBytes", "storedBytes",
                                        "sourceObjects", "skippedObjects",   "failedObjects"};
inline constexpr std::array kMarkNames{"isComplete", "isTruncated", "hasWarnings", "includeAged",
                                       "includeDeleted"};
inline constexpr std::array kRateNames{"savingsPercent", "throughput", "dedupRatio"};

struct JobReport {
  std::array<std::string, kTextNames.size()> texts;
  std::u16string comment;
  std::string utf8Comment;  ///< the same, as protobuf takes it
  std::array<std::int32_t, kCountNames.size()> counts{};
  std::array<std::int64_t, kTotalNames.size()> totals{};
  std::array<bool, kMarkNames.size()> marks{};
  std::array<double, kRateNames.size()> rates{};
  int kind = 0;
  int order = 0;
  std::uint32_t flags = 0;
  std::int32_t startTime = 0;
  std::int32_t endTime = 0;
  std::int64_t generatedAt = 0;
  std::string digest;
  JobEntry largestJob;
  JobEntry oldestJob;
  std::vector<JobEntry> jobs;
  std::vector<std::int32_t> phaseCounts;
  std::vector<std::int64_t> sizes;
  std::vector<std::string> clients;
  std::vector<std::string> tags;
  std::map<std::string, std::int64_t> bytesByClient;
};

/// The n-th entry: always the same.
JobEntry jobEntry(std::uint32_t n);
/// An entry that is a message by itself, with the longer texts of one.
JobEntry soleEntry();
/// A report of `subObjects` entries, two of them outside of the list.
JobReport jobReport(std::size_t subObjects);

}  // namespace zqxml::bench
