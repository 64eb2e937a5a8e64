#include <bench/our_messages.h>
#include <zqxml/catalogue/generated/Bench.h>

namespace zqxml::bench {
namespace {

void fill(Bench::JobEntry& message, const JobEntry& entry) {
  message.setId(entry.id);
  message.setClient(entry.client);
  message.setPath(entry.path);
  message.setPolicy(entry.policy);
  message.setSize(entry.size);
  message.setStart(entry.start);
  message.setState(Bench::State{entry.state});
}

void fillNumbers(Bench::JobReport& message, const JobReport& report) {
  message.setJobCount(report.counts[0]);
  message.setCompletedCount(report.counts[1]);
  message.setFailedCount(report.counts[2]);
  message.setPendingCount(report.counts[3]);
  message.setKilledCount(report.counts[4]);
  message.setRunningCount(report.counts[5]);
  message.setPageNumber(report.counts[6]);
  message.setPageSize(report.counts[7]);
  message.setStreamCount(report.counts[8]);
  message.setRetryCount(report.counts[9]);
  message.setAlertCount(report.counts[10]);
  message.setPriority(report.counts[11]);
  message.setTotalBytes(report.totals[0]);
  message.setTransferredBytes(report.totals[1]);
  message.setStoredBytes(report.totals[2]);
  message.setSourceObjects(report.totals[3]);
  message.setSkippedObjects(report.totals[4]);
  message.setFailedObjects(report.totals[5]);
  message.setIsComplete(report.marks[0]);
  message.setIsTruncated(report.marks[1]);
  message.setHasWarnings(report.marks[2]);
  message.setIncludeAged(report.marks[3]);
  message.setIncludeDeleted(report.marks[4]);
  message.setSavingsPercent(report.rates[0]);
  message.setThroughput(report.rates[1]);
  message.setDedupRatio(report.rates[2]);
  message.setKind(Bench::State{report.kind});
  message.setOrder(Bench::State{report.order});
  message.setFlags(report.flags);
  message.setStartTime(report.startTime);
  message.setEndTime(report.endTime);
  message.setGeneratedAt(report.generatedAt);
}

void fillTexts(Bench::JobReport& message, const JobReport& report) {
  message.setReportName(report.texts[0]);
  message.setServerName(report.texts[1]);
  message.setServerVersion(report.texts[2]);
  message.setTimeZone(report.texts[3]);
  message.setRequestedBy(report.texts[4]);
  message.setRequestId(report.texts[5]);
  message.setDepartment(report.texts[6]);
  message.setSite(report.texts[7]);
  message.setStoragePolicy(report.texts[8]);
  message.setRetentionRule(report.texts[9]);
  message.setDefaultLibrary(report.texts[10]);
  message.setPrimaryCopy(report.texts[11]);
  message.setScheduleName(report.texts[12]);
  message.setTicketUrl(report.texts[13]);
  message.setContact(report.texts[14]);
  message.setOutputPath(report.texts[15]);
  message.setLocale(report.texts[16]);
  message.setSummary(report.texts[17]);
  message.setComment(report.comment);
  message.setDigest(report.digest);
}

}  // namespace

std::unique_ptr<XNMessageBase> ourMessage(const JobEntry& entry) {
  auto message = std::make_unique<Bench::JobEntry>();
  fill(*message, entry);
  return message;
}

std::unique_ptr<XNMessageBase> ourMessage(const JobReport& report) {
  auto message = std::make_unique<Bench::JobReport>();
  fillTexts(*message, report);
  fillNumbers(*message, report);
  fill(message->mutableLargestJob(), report.largestJob);
  fill(message->mutableOldestJob(), report.oldestJob);
  const ObjectView<Bench::JobEntry> jobs = message->mutableJobs();
  jobs.reserve(report.jobs.size());
  for (const JobEntry& entry : report.jobs) fill(jobs.add(), entry);
  message->setPhaseCounts(report.phaseCounts);
  message->setSizes(report.sizes);
  message->setClients(report.clients);
  message->setTags(report.tags);
  message->setBytesByClient(report.bytesByClient);
  return message;
}

}  // namespace zqxml::bench
