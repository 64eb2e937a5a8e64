// Encoding and decoding, in the binary form beside protobuf and in XML beside plain Xerces-C and pugixml.
//
// Three messages: seven scalars; sixty fields with twenty sub-objects, lists and a map; the same with five
// thousand sub-objects. Every call makes its output anew, ours and the peer's alike.
#include <bench/job_data.h>
#include <bench/measurements.h>
#include <bench/protobuf_peer.h>
#include <bench/pugixml_peer.h>
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
  std::function<std::string()> writeByPugixml;
  std::string xml;
  /// The same in front of a processing instruction, which only the parser takes.
  std::string xmlForTheParser;
  BinaryBuffer binary;
  std::string protobuf;
};

template <class Data>
std::unique_ptr<CodecSubject> subject(std::string name, std::shared_ptr<const Data> data) {
  auto result = std::make_unique<CodecSubject>(std::move(name), *data);
  result->dynamic.reset(dynamicPrototype(*result->generated).New());
  result->writeByHand = [data] { return writtenByHand(*data); };
  result->writeByPugixml = [data] { return savedByPugixml(*data); };

  require(result->ours->serialize(result->xml) == XN_MSG_OK, "the message is not written as XML");
  require(result->writeByHand() == result->xml, "the hand-written text differs from ours");
  result->xmlForTheParser = result->xml + "<?end?>";
  require(readByPugixml(result->writeByPugixml()) == readByPugixml(result->xml),
          "the peer's text differs from ours");
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
  measure("write/pugixml/" + s.name, [&s] {
    std::string out = s.writeByPugixml();
    benchmark::DoNotOptimize(out.data());
  });
  const std::pair<const char*, const std::string*> texts[] = {{"ours", &s.xml},
                                                              {"parser", &s.xmlForTheParser}};
  for (const auto& [kind, text] : texts) {
    measure(std::string("read/") + kind + "/" + s.name, [text = text] {
      const std::unique_ptr<XNMessageBase> message(XMLSerializer().unserialize(*text, false));
      benchmark::DoNotOptimize(message.get());
    });
  }
  measure("read/pugixml/" + s.name, [&s] { benchmark::DoNotOptimize(readByPugixml(s.xml)); });
  measure("read/bare/" + s.name, [&s] { parseBare(s.xml); });
}

/// How many times as fast as its peer each road of XML has to be, for the three messages.
struct XmlReaches {
  double writeByHand;
  double writePugixml;
  double readBare;
  double readPugixml;
  double parseBare;
};
constexpr XmlReaches kXmlReaches[] = {{50, 2.8, 40, 1.2, 3}, {80, 3.7, 7, 1, 1.1}, {50, 2.3, 4, 1, 0.8}};

std::vector<Comparison> comparisons(const std::vector<std::unique_ptr<CodecSubject>>& subjects) {
  std::vector<Comparison> rows;
  for (std::size_t i = 0; i < subjects.size(); ++i) {
    const std::string& name = subjects[i]->name;
    rows.push_back({name + ": binary encode, DynamicMessage", "encode/ours/" + name, "encode/dynamic/" + name,
                    false, 8});
    rows.push_back({name + ": binary decode, DynamicMessage", "decode/ours/" + name, "decode/dynamic/" + name,
                    false, 3});
    rows.push_back({name + ": binary encode, generated", "encode/ours/" + name, "encode/generated/" + name});
    rows.push_back({name + ": binary decode, generated", "decode/ours/" + name, "decode/generated/" + name});
    const XmlReaches reaches = kXmlReaches[i];
    rows.push_back({name + ": XML write, hand-written DOM", "write/ours/" + name, "write/hand/" + name, false,
                    reaches.writeByHand});
    rows.push_back({name + ": XML write, pugixml", "write/ours/" + name, "write/pugixml/" + name, false,
                    reaches.writePugixml});
    rows.push_back({name + ": XML read, bare reader", "read/ours/" + name, "read/bare/" + name, false,
                    reaches.readBare});
    rows.push_back({name + ": XML read, pugixml", "read/ours/" + name, "read/pugixml/" + name, false,
                    reaches.readPugixml});
    rows.push_back({name + ": XML read by the parser, bare reader", "read/parser/" + name,
                    "read/bare/" + name, false, reaches.parseBare});
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
