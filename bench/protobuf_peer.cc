#include <bench/protobuf_peer.h>
#include <google/protobuf/dynamic_message.h>
#include <zqxml/platform/text.h>

#include "bench.pb.h"

namespace zqxml::bench {
namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;

/// Sets a field by name: for the fields that come in numbers.
template <class Value>
void set(Message& message, const char* name, const Value& value) {
  const FieldDescriptor* field = message.GetDescriptor()->FindFieldByName(name);
  const google::protobuf::Reflection& reflection = *message.GetReflection();
  if constexpr (std::is_same_v<Value, bool>)
    reflection.SetBool(&message, field, value);
  else if constexpr (std::is_same_v<Value, std::int32_t>)
    reflection.SetInt32(&message, field, value);
  else if constexpr (std::is_same_v<Value, std::int64_t>)
    reflection.SetInt64(&message, field, value);
  else if constexpr (std::is_same_v<Value, double>)
    reflection.SetDouble(&message, field, value);
  else
    reflection.SetString(&message, field, value);
}

void fill(::bench::JobEntry& message, const JobEntry& entry) {
  message.set_id(entry.id);
  message.set_client(entry.client);
  message.set_path(entry.path);
  message.set_policy(entry.policy);
  message.set_size(entry.size);
  message.set_start(entry.start);
  message.set_state(entry.state);
}

}  // namespace

std::unique_ptr<Message> generatedMessage(const JobEntry& entry) {
  auto message = std::make_unique<::bench::JobEntry>();
  fill(*message, entry);
  return message;
}

std::unique_ptr<Message> generatedMessage(const JobReport& report) {
  auto message = std::make_unique<::bench::JobReport>();
  for (std::size_t i = 0; i < kTextNames.size(); ++i) set(*message, kTextNames[i], report.texts[i]);
  message->set_comment(toUtf8(report.comment));
  for (std::size_t i = 0; i < kCountNames.size(); ++i) set(*message, kCountNames[i], report.counts[i]);
  for (std::size_t i = 0; i < kTotalNames.size(); ++i) set(*message, kTotalNames[i], report.totals[i]);
  for (std::size_t i = 0; i < kMarkNames.size(); ++i) set(*message, kMarkNames[i], report.marks[i]);
  for (std::size_t i = 0; i < kRateNames.size(); ++i) set(*message, kRateNames[i], report.rates[i]);
  message->set_kind(report.kind);
  message->set_order(report.order);
  message->set_flags(report.flags);
  message->set_starttime(report.startTime);
  message->set_endtime(report.endTime);
  message->set_generatedat(report.generatedAt);
  message->set_digest(report.digest);
  fill(*message->mutable_largestjob(), report.largestJob);
  fill(*message->mutable_oldestjob(), report.oldestJob);
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
