// What messages cost on the heap: a live one beside protobuf's generated class, each decoded from its own
// form; and how many blocks each road takes for a scalar field.
#include <bench/heap_counter.h>
#include <bench/report.h>
#include <bench/subject.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/message_access.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zqxml::bench {
namespace {

constexpr double kByteReach = 1.35;
constexpr double kBlockReach = 0.5;
/// Outputs double their size now and then as they grow: a few blocks for thousands of fields.
constexpr double kPerFieldReach = 0.01;

Figure figure(std::size_t count) {
  return figureOf({static_cast<double>(count)});
}

/// What is on the heap after `make` that was not there before, while its result lives.
template <class Make>
Heap heapOf(Make make) {
  make();  // what is made once per process is not the message's
  const HeapCounter counter;
  const auto made = make();
  const Heap counted = counter.counted();
  require(made != nullptr, "a message is not decoded");
  return counted;
}

void addLive(Report& report) {
  Table bytes{"Live messages, bytes", {}, "bytes"}, blocks{"Live messages, blocks", {}, "blocks"};
  for (const auto& s : ofEverySize(
           [](const std::string&name, const auto&data) { return std::make_unique<Subject>(name, data); })) {
    const std::string protobuf = s->generated->SerializeAsString();
    const Heap ours = heapOf([&] {
      return std::unique_ptr<XNMessageBase>(BinarySerializer::unserialize(s->ours.binary(), nullptr, false));
    });
    const Heap peer = heapOf([&] {
      std::unique_ptr<google::protobuf::Message> message(s->generated->New());
      if (!message->ParseFromString(protobuf)) message.reset();
      return message;
    });
    const bool claimed = s->name == "medium";
    bytes.rows.push_back({s->name, figure(ours.bytes), figure(peer.bytes), true, claimed ? kByteReach : 0});
    blocks.rows.push_back(
        {s->name, figure(ours.blocks), figure(peer.blocks), true, claimed ? kBlockReach : 0});
  }
  bytes.note = "Of a decoded message, what the allocator adds included; the peer is a generated class.";
  report.add(std::move(bytes));
  report.add(std::move(blocks));
}

/// Clears the numbers of every sub-object in the list; how many that were.
std::size_t withoutNumbers(XNMessageBase& report) {
  const _ClassDef& record = *MessageAccess::classDef(report);
  const FieldDef& jobs = record.getFields()[catalogue::fieldPosition(&record, "jobs")];
  std::size_t cleared = 0;
  for (XNMessageBase& job : MessageAccess::make<std::vector<XNMessageBase>>(report, jobs, true)) {
    for (const FieldDef& field : *MessageAccess::classDef(job)) {
      if (!kNumberTypes.contains(field.getType()) || !MessageAccess::isSet(job, field.getMemNum())) continue;
      MessageAccess::deleteMember(job, field.getMemNum());
      ++cleared;
    }
  }
  return cleared;
}

std::size_t allocationsOf(const Road& road, RoadMessage& message) {
  road.run(message);
  const HeapCounter counter;
  road.run(message);
  return counter.counted().allocations;
}

void addPerField(Report& report) {
  Table table{"Allocations for a scalar field", {}, "blocks"};
  const JobReport data = jobReport(5000);
  RoadMessage with(data);
  std::unique_ptr<XNMessageBase> stripped = ourMessage(data);
  const std::size_t count = withoutNumbers(*stripped);
  require(count > 10000, "the messages differ in too few fields");
  RoadMessage without(data, std::move(stripped));
  for (const Road& road : allRoads()) {
    if (road.fromData) continue;
    const WithRoad way(road);
    const double more =
        static_cast<double>(allocationsOf(road, with)) - static_cast<double>(allocationsOf(road, without));
    table.rows.push_back(
        {road.name, figureOf({more / static_cast<double>(count)}), {}, true, kPerFieldReach});
  }
  table.note = "The large message with and without the " + std::to_string(count) +
               " numbers of its sub-objects: the blocks that it takes more, by their number.";
  report.add(std::move(table));
}

int run(int argc, char** argv) {
  Report report(argc, argv);
  report.fact("Message object", std::to_string(sizeof(XNMessageBase)) + " bytes in place");
  addLive(report);
  addPerField(report);
  return report.finish();
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
