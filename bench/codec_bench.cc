// Encoding and decoding, in the binary form beside protobuf and in XML beside plain Xerces-C.
//
// Three messages: seven scalars; sixty fields with twenty sub-objects, lists and a map; the same with five
// thousand sub-objects. Every call makes its output anew, ours and the peer's alike.
#include <bench/job_data.h>
#include <bench/measurements.h>
#include <bench/protobuf_peer.h>
#include <bench/subject.h>
#include <bench/xerces_peer.h>
#include <benchmark/benchmark.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/xml/xml_serializer.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zqxml::bench {
namespace {

using google::protobuf::Message;

/// One message in every shape that a measurement starts from.
struct CodecSubject : Subject {
  using Subject::Subject;

  std::unique_ptr<Message> dynamic;
  std::function<std::string()> writeByHand;
  std::string xml;
  BinaryBuffer binary;
  std::string protobuf;
};

template <class Data>
std::unique_ptr<CodecSubject> subject(std::string name, std::shared_ptr<const Data> data) {
  auto result = std::make_unique<CodecSubject>(std::move(name), *data);
  result->dynamic.reset(dynamicPrototype(*result->generated).New());
  result->writeByHand = [data] { return writtenByHand(*data); };

  require(result->ours->serialize(result->xml) == XN_MSG_OK, "the message is not written as XML");
  require(result->writeByHand() == result->xml, "the hand-written text differs from ours");
  require(BinarySerializer::serialize(*result->ours, result->binary) != 0, "the message has no binary form");
  result->protobuf = result->generated->SerializeAsString();
  require(result->dynamic->ParseFromString(result->protobuf), "the dynamic message does not read its peer");

  const std::unique_ptr<XNMessageBase> fromBinary(
      BinarySerializer::unserialize(result->binary, nullptr, false));
  require(fromBinary != nullptr && *fromBinary == *result->ours, "the binary form does not come back");
  const std::unique_ptr<XNMessageBase> fromXml(
      XMLSerializer().unserialize(std::as_const(result->xml), false));
  require(fromXml != nullptr && *fromXml == *result->ours, "the XML form does not come back");
  return result;
}

void measureBinary(CodecSubject& s) {
  measure("encode/ours/" + s.name, [&s] {
    BinaryBuffer buffer;
    benchmark::DoNotOptimize(BinarySerializer::serialize(*s.ours, buffer));
  });
  measure("decode/ours/" + s.name, [&s] {
    const std::unique_ptr<XNMessageBase> message(BinarySerializer::unserialize(s.binary, nullptr, false));
    benchmark::DoNotOptimize(message.get());
  });
  const std::pair<const char*, const Message*> peers[] = {{"dynamic", s.dynamic.get()},
                                                          {"generated", s.generated.get()}};
  for (const auto& [kind, peer] : peers) {
    measure(std::string("encode/") + kind + "/" + s.name, [peer = peer] {
      std::string out;
      benchmark::DoNotOptimize(peer->SerializeToString(&out));
    });
    measure(std::string("decode/") + kind + "/" + s.name, [&s, peer = peer] {
      const std::unique_ptr<Message> message(peer->New());
      benchmark::DoNotOptimize(message->ParseFromString(s.protobuf));
    });
  }
}

void measureXml(CodecSubject& s) {
  measure("write/ours/" + s.name, [&s] {
    std::string out;
    benchmark::DoNotOptimize(s.ours->serialize(out));
  });
  measure("write/hand/" + s.name, [&s] {
    std::string out = s.writeByHand();
    benchmark::DoNotOptimize(out.data());
  });
  measure("read/ours/" + s.name, [&s] {
    const std::unique_ptr<XNMessageBase> message(XMLSerializer().unserialize(std::as_const(s.xml), false));
    benchmark::DoNotOptimize(message.get());
  });
  measure("read/bare/" + s.name, [&s] { parseBare(s.xml); });
}

std::vector<Comparison> comparisons(const std::vector<std::unique_ptr<CodecSubject>>& subjects) {
  std::vector<Comparison> rows;
  for (const auto& s : subjects) {
    const std::string& name = s->name;
    const bool medium = name == "medium";
    rows.push_back({name + ": binary encode, DynamicMessage", "encode/ours/" + name, "encode/dynamic/" + name,
                    false, 8});
    rows.push_back({name + ": binary decode, DynamicMessage", "decode/ours/" + name, "decode/dynamic/" + name,
                    false, 3});
    rows.push_back({name + ": binary encode, generated", "encode/ours/" + name, "encode/generated/" + name});
    rows.push_back({name + ": binary decode, generated", "decode/ours/" + name, "decode/generated/" + name});
    rows.push_back(
        {name + ": XML write, hand-written DOM", "write/ours/" + name, "write/hand/" + name, true, 1.1});
    rows.push_back(
        {name + ": XML read, bare reader", "read/ours/" + name, "read/bare/" + name, true, medium ? 1.5 : 0});
  }
  return rows;
}

int run(int argc, char** argv) {
  std::vector<std::unique_ptr<CodecSubject>> subjects;
  subjects.push_back(subject("small", std::make_shared<const JobEntry>(soleEntry())));
  subjects.push_back(subject("medium", std::make_shared<const JobReport>(jobReport(20))));
  subjects.push_back(subject("large", std::make_shared<const JobReport>(jobReport(5000))));
  for (const auto& s : subjects) {
    measureBinary(*s);
    measureXml(*s);
    std::printf("%-6s  %7zu bytes of XML, %7zu of binary form, %7zu of protobuf\n", s->name.c_str(),
                s->xml.size(), static_cast<std::size_t>(s->binary.getDataSize()), s->protobuf.size());
  }
  std::fflush(stdout);
  return runMeasurements(argc, argv, comparisons(subjects));
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
