#include <bench/protobuf_peer.h>
#include <google/protobuf/dynamic_message.h>

#include "bench.pb.h"

namespace zqxml::bench {
namespace {

using google::protobuf::Message;

void fill(::bench::JobEntry& message, const JobEntry& entry) {
  message.set_id(entry.id);
  message.set_client(entry.client);
  message.set_path(entry.path);
  message.set_policy(entry.policy);
  message.set_size(entry.size);
  message.set_start(entry.start);
  message.set_state(entry.state);
}

void fillNumbers(::bench::JobReport& message, const JobReport& report) {
  message.set_jobcount(report.counts[0]);
  message.set_completedcount(report.counts[1]);
  message.set_failedcount(report.counts[2]);
  message.set_pendingcount(report.counts[3]);
  message.set_killedcount(report.counts[4]);
  message.set_runningcount(report.counts[5]);
  message.set_pagenumber(report.counts[6]);
  message.set_pagesize(report.counts[7]);
  message.set_streamcount(report.counts[8]);
  message.set_retrycount(report.counts[9]);
  message.set_alertcount(report.counts[10]);
  message.set_priority(report.counts[11]);
  message.set_totalbytes(report.totals[0]);
  message.set_transferredbytes(report.totals[1]);
  message.set_storedbytes(report.totals[2]);
  message.set_sourceobjects(report.totals[3]);
  message.set_skippedobjects(report.totals[4]);
  message.set_failedobjects(report.totals[5]);
  message.set_iscomplete(report.marks[0]);
  message.set_istruncated(report.marks[1]);
  message.set_haswarnings(report.marks[2]);
  message.set_includeaged(report.marks[3]);
  message.set_includedeleted(report.marks[4]);
  message.set_savingspercent(report.rates[0]);
  message.set_throughput(report.rates[1]);
  message.set_dedupratio(report.rates[2]);
  message.set_kind(report.kind);
  message.set_order(report.order);
  message.set_flags(report.flags);
  message.set_starttime(report.startTime);
  message.set_endtime(report.endTime);
  message.set_generatedat(report.generatedAt);
}

void fillTexts(::bench::JobReport& message, const JobReport& report) {
  message.set_reportname(report.texts[0]);
  message.set_servername(report.texts[1]);
  message.set_serverversion(report.texts[2]);
  message.set_timezone(report.texts[3]);
  message.set_requestedby(report.texts[4]);
  message.set_requestid(report.texts[5]);
  message.set_department(report.texts[6]);
  message.set_site(report.texts[7]);
  message.set_storagepolicy(report.texts[8]);
  message.set_retentionrule(report.texts[9]);
  message.set_defaultlibrary(report.texts[10]);
  message.set_primarycopy(report.texts[11]);
  message.set_schedulename(report.texts[12]);
  message.set_ticketurl(report.texts[13]);
  message.set_contact(report.texts[14]);
  message.set_outputpath(report.texts[15]);
  message.set_locale(report.texts[16]);
  message.set_summary(report.texts[17]);
  message.set_comment(report.utf8Comment);
  message.set_digest(report.digest);
}

}  // namespace

std::unique_ptr<Message> generatedMessage(const JobEntry& entry) {
  auto message = std::make_unique<::bench::JobEntry>();
  fill(*message, entry);
  return message;
}

std::unique_ptr<Message> generatedMessage(const JobReport& report) {
  auto message = std::make_unique<::bench::JobReport>();
  fillTexts(*message, report);
  fillNumbers(*message, report);
  fill(*message->mutable_largestjob(), report.largestJob);
  fill(*message->mutable_oldestjob(), report.oldestJob);
  message->mutable_jobs()->Reserve(static_cast<int>(report.jobs.size()));
  for (const JobEntry& entry : report.jobs) fill(*message->add_jobs(), entry);
  for (const std::int32_t count : report.phaseCounts) message->add_phasecounts(count);
  for (const std::int64_t size : report.sizes) message->add_sizes(size);
  for (const std::string& client : report.clients) message->add_clients(client);
  for (const std::string& tag : report.tags) message->add_tags(tag);
  for (const auto& [client, bytes] : report.bytesByClient)
    (*message->mutable_bytesbyclient())[client] = bytes;
  return message;
}

const Message& dynamicPrototype(const Message& generated) {
  static google::protobuf::DynamicMessageFactory& factory = *new google::protobuf::DynamicMessageFactory;
  return *factory.GetPrototype(generated.GetDescriptor());
}

}  // namespace zqxml::bench
