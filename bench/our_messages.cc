#include <bench/our_messages.h>
#include <zqxml/catalogue/generated/Bench.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/message_access.h>

namespace zqxml::bench {
namespace {

const FieldDef& fieldOf(const XNMessageBase& message, const char* name) {
  const _ClassDef& record = *MessageAccess::classDef(message);
  return record.getFields()[catalogue::fieldPosition(&record, name)];
}
void setInteger(XNMessageBase& message, const char* name, std::int64_t value) {
  MessageAccess::setInteger(message, fieldOf(message, name), value);
}
void setText(XNMessageBase& message, const char* name, const std::string& value) {
  MessageAccess::inPlace<std::string>(message, fieldOf(message, name)) = value;
  MessageAccess::mark(message, fieldOf(message, name).getMemNum());
}

void fill(XNMessageBase& message, const JobEntry& entry) {
  setInteger(message, "id", entry.id);
  setText(message, "client", entry.client);
  setText(message, "path", entry.path);
  setText(message, "policy", entry.policy);
  setInteger(message, "size", entry.size);
  setInteger(message, "start", entry.start);
  setInteger(message, "state", entry.state);
}

}  // namespace

std::unique_ptr<XNMessageBase> ourMessage(const JobEntry& entry) {
  auto message = std::make_unique<Bench::JobEntry>();
  fill(*message, entry);
  return message;
}

std::unique_ptr<XNMessageBase> ourMessage(const JobReport& report) {
  auto message = std::make_unique<Bench::JobReport>();
  for (std::size_t i = 0; i < kTextNames.size(); ++i) setText(*message, kTextNames[i], report.texts[i]);
  message->setComment(report.comment);
  for (std::size_t i = 0; i < kCountNames.size(); ++i) setInteger(*message, kCountNames[i], report.counts[i]);
  for (std::size_t i = 0; i < kTotalNames.size(); ++i) setInteger(*message, kTotalNames[i], report.totals[i]);
  for (std::size_t i = 0; i < kMarkNames.size(); ++i) setInteger(*message, kMarkNames[i], report.marks[i]);
  for (std::size_t i = 0; i < kRateNames.size(); ++i)
    MessageAccess::setDouble(*message, fieldOf(*message, kRateNames[i]), report.rates[i]);
  setInteger(*message, "kind", report.kind);
  setInteger(*message, "order", report.order);
  setInteger(*message, "flags", report.flags);
  setInteger(*message, "startTime", report.startTime);
  setInteger(*message, "endTime", report.endTime);
  setInteger(*message, "generatedAt", report.generatedAt);
  message->setDigest(report.digest);
  fill(message->mutableLargestJob(), report.largestJob);
  fill(message->mutableOldestJob(), report.oldestJob);
  auto& jobs = MessageAccess::make<std::vector<XNMessageBase>>(*message, fieldOf(*message, "jobs"), true);
  jobs.reserve(report.jobs.size());
  for (const JobEntry& entry : report.jobs) fill(jobs.emplace_back(Bench::JobEntry()), entry);
  message->setPhaseCounts(report.phaseCounts);
  message->setSizes(report.sizes);
  message->setClients(report.clients);
  message->setTags(report.tags);
  message->setBytesByClient(report.bytesByClient);
  return message;
}

}  // namespace zqxml::bench
