// Writes a list of jobs as one XML message to standard output: 500 of them, or as many as the argument says.
//
// The same count gives the same bytes. Every value survives each form: doubles have six significant digits,
// dates lie after 1990, texts are not empty, and there are no maps inside the jobs (docs/limits.md tells
// why).
#include <zqxml/catalogue/generated/JobManager.h>
#include <zqxml/catalogue/generated/ZqEntities.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

using namespace zqxml::JobManager;

constexpr std::int32_t kMidnight = 1704067200;  // 2024-01-01 00:00:00 UTC
constexpr std::int32_t kHour = 3600;
constexpr std::int32_t kDay = 24 * kHour;

void addAttempts(JobPhase& phase, std::int32_t start, int count) {
  for (int i = 0; i < count; ++i) {
    JobAttempt& attempt = phase.addToAttempts();
    attempt.setAttemptNumber(i + 1);
    attempt.setStartTime(start + i * kHour);
    attempt.setEndTime(start + i * kHour + 1800);
    attempt.setStatus(i + 1 < count ? JobStatus::FAILED : JobStatus::COMPLETED);
    if (i + 1 < count)
      attempt.setReason("the drive <LTO-" + std::to_string(i) + "> did not answer & was reset");
  }
}

void addPhases(Job& job, int number, std::int32_t start) {
  JobPhase& scan = job.addToPhases();
  scan.setPhase(PhaseType::SCAN);
  scan.setPercentComplete(100);
  addAttempts(scan, start, 1);
  JobPhase& transfer = job.addToPhases();
  transfer.setPhase(PhaseType::TRANSFER);
  transfer.setPercentComplete(static_cast<float>(number % 400) / 4);
  addAttempts(transfer, start + kHour, 1 + number % 3);
}

void describe(Job& job, int number) {
  zqxml::ZqEntities::SubclientEntity& subclient = job.mutableSubclient();
  subclient.mutableClient().setClientId(100 + number % 40);
  subclient.mutableClient().setClientName("client" + std::to_string(number % 40));
  subclient.setSubclientId(number);
  subclient.setSubclientName(number % 5 == 0 ? "default" : "databases");
  job.mutableUser().setUserName(number % 7 == 0 ? "Zoë" : "operator");
  job.mutableStoragePolicy().setStoragePolicyName("policy " + std::to_string(number % 6));
  job.mutableStoragePolicy().mutableCopyNames() = {"primary", "off site"};
  job.setDescription("nightly run of client" + std::to_string(number % 40));
  if (number % 4 == 0) job.setComment(u"übertragen \u2192 fertig");
  if (number % 9 == 0) job.setDelayReason("waits for job <" + std::to_string(number - 1) + ">");
}

void fill(Job& job, int number) {
  const std::int32_t start = kMidnight + number * 600;
  job.setJobId(9000000000 + number);
  job.setJobType(number % 11 == 0 ? JobType::RESTORE : JobType::BACKUP);
  job.setStatus(number % 13 == 0 ? JobStatus::RUNNING : JobStatus::COMPLETED);
  job.setPercentComplete(number % 101);
  job.setStartTime(start);
  job.setEndTime(start + 2 * kHour);
  job.setLastUpdate(start + 2 * kHour + 5);
  job.setRetainUntil(static_cast<std::uint32_t>(kMidnight + (30 + number % 60) * kDay));
  job.setWindowStart(22 * kHour + number % 60 * 60);
  job.setApplicationSize(std::int64_t{1} << (20 + number % 24));
  job.setMediaSize((std::int64_t{1} << (20 + number % 24)) / 3);
  job.setThroughput(125.5 * (1 + number % 50));
  job.setCompressionRatio(static_cast<float>(1 + number % 8) / 4);
  job.setIsEncrypted(number % 2 == 0);
  job.setSessionKey(std::string("\0key\xff", 5) + std::to_string(number));
  job.setImpersonationPassword("secret " + std::to_string(number));
  describe(job, number);
  addPhases(job, number, start);
  job.mutablePendingPhases() = {4, 8};
  if (number % 6 == 0) job.mutableFailedItems() = {"/data/a b.db", "/data/\"quoted\".log"};
  job.mutableErrorCodes() = {number % 3, -number};
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 500;
  JobListResp list;
  list.mutablePage().setOffset(0);
  list.mutablePage().setTotal(count);
  list.setGenerated(kMidnight + kDay);
  for (int number = 1; number <= count; ++number) fill(list.addToJobs(), number);
  list.mutableCountByStatus() = {{1, count / 13}, {5, count - count / 13}};
  list.mutableWarnings() = {u"one drive is offline", u"\u00fcber 90 % voll"};

  std::string xml;
  if (list.serialize(xml) != zqxml::XN_MSG_OK) return EXIT_FAILURE;
  std::cout << xml;
  return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
