// Every set field of a message, read by its accessors.
#include <bench/typed_reading.h>

namespace zqxml::bench {

void readTyped(const Bench::JobEntry& message, Reading& reading) {
  if (message.isIdSet()) reading.add(message.getId());
  if (message.isClientSet()) reading.add(message.getClient());
  if (message.isPathSet()) reading.add(message.getPath());
  if (message.isPolicySet()) reading.add(message.getPolicy());
  if (message.isSizeSet()) reading.add(message.getSize());
  if (message.isStartSet()) reading.add(message.getStart());
  if (message.isStateSet()) reading.add(message.getState());
}

namespace {

void readTexts(const Bench::JobReport& message, Reading& reading) {
  if (message.isReportNameSet()) reading.add(message.getReportName());
  if (message.isServerNameSet()) reading.add(message.getServerName());
  if (message.isServerVersionSet()) reading.add(message.getServerVersion());
  if (message.isTimeZoneSet()) reading.add(message.getTimeZone());
  if (message.isRequestedBySet()) reading.add(message.getRequestedBy());
  if (message.isRequestIdSet()) reading.add(message.getRequestId());
  if (message.isDepartmentSet()) reading.add(message.getDepartment());
  if (message.isSiteSet()) reading.add(message.getSite());
  if (message.isStoragePolicySet()) reading.add(message.getStoragePolicy());
  if (message.isRetentionRuleSet()) reading.add(message.getRetentionRule());
  if (message.isDefaultLibrarySet()) reading.add(message.getDefaultLibrary());
  if (message.isPrimaryCopySet()) reading.add(message.getPrimaryCopy());
  if (message.isScheduleNameSet()) reading.add(message.getScheduleName());
  if (message.isTicketUrlSet()) reading.add(message.getTicketUrl());
  if (message.isContactSet()) reading.add(message.getContact());
  if (message.isOutputPathSet()) reading.add(message.getOutputPath());
  if (message.isLocaleSet()) reading.add(message.getLocale());
  if (message.isSummarySet()) reading.add(message.getSummary());
  if (message.isCommentSet()) reading.add(message.getComment());
  if (message.isDigestSet()) reading.add(message.getDigest());
}

void readNumbers(const Bench::JobReport& message, Reading& reading) {
  if (message.isJobCountSet()) reading.add(message.getJobCount());
  if (message.isCompletedCountSet()) reading.add(message.getCompletedCount());
  if (message.isFailedCountSet()) reading.add(message.getFailedCount());
  if (message.isPendingCountSet()) reading.add(message.getPendingCount());
  if (message.isKilledCountSet()) reading.add(message.getKilledCount());
  if (message.isRunningCountSet()) reading.add(message.getRunningCount());
  if (message.isPageNumberSet()) reading.add(message.getPageNumber());
  if (message.isPageSizeSet()) reading.add(message.getPageSize());
  if (message.isStreamCountSet()) reading.add(message.getStreamCount());
  if (message.isRetryCountSet()) reading.add(message.getRetryCount());
  if (message.isAlertCountSet()) reading.add(message.getAlertCount());
  if (message.isPrioritySet()) reading.add(message.getPriority());
  if (message.isTotalBytesSet()) reading.add(message.getTotalBytes());
  if (message.isTransferredBytesSet()) reading.add(message.getTransferredBytes());
  if (message.isStoredBytesSet()) reading.add(message.getStoredBytes());
  if (message.isSourceObjectsSet()) reading.add(message.getSourceObjects());
  if (message.isSkippedObjectsSet()) reading.add(message.getSkippedObjects());
  if (message.isFailedObjectsSet()) reading.add(message.getFailedObjects());
  if (message.isIsCompleteSet()) reading.add(message.getIsComplete());
  if (message.isIsTruncatedSet()) reading.add(message.getIsTruncated());
  if (message.isHasWarningsSet()) reading.add(message.getHasWarnings());
  if (message.isIncludeAgedSet()) reading.add(message.getIncludeAged());
  if (message.isIncludeDeletedSet()) reading.add(message.getIncludeDeleted());
  if (message.isSavingsPercentSet()) reading.add(message.getSavingsPercent());
  if (message.isThroughputSet()) reading.add(message.getThroughput());
  if (message.isDedupRatioSet()) reading.add(message.getDedupRatio());
  if (message.isKindSet()) reading.add(message.getKind());
  if (message.isOrderSet()) reading.add(message.getOrder());
  if (message.isFlagsSet()) reading.add(message.getFlags());
  if (message.isStartTimeSet()) reading.add(message.getStartTime());
  if (message.isEndTimeSet()) reading.add(message.getEndTime());
  if (message.isGeneratedAtSet()) reading.add(message.getGeneratedAt());
}

}  // namespace

void readTyped(const Bench::JobReport& message, Reading& reading) {
  readTexts(message, reading);
  readNumbers(message, reading);
  if (message.isLargestJobSet()) readTyped(*message.getLargestJob(), reading);
  if (message.isOldestJobSet()) readTyped(*message.getOldestJob(), reading);
  if (message.isJobsSet())
    for (const Bench::JobEntry& entry : message.getJobs()) readTyped(entry, reading);
  if (message.isPhaseCountsSet())
    for (const std::int32_t count : message.getPhaseCounts()) reading.add(count);
  if (message.isSizesSet())
    for (const std::int64_t size : message.getSizes()) reading.add(size);
  if (message.isClientsSet())
    for (const std::string& client : message.getClients()) reading.add(client);
  if (message.isTagsSet())
    for (const std::string& tag : message.getTags()) reading.add(tag);
  if (message.isBytesByClientSet())
    for (const auto& [client, bytes] : message.getBytesByClient()) {
      reading.add(client);
      reading.add(bytes);
    }
}

}  // namespace zqxml::bench
