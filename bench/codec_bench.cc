// Encoding and decoding, in the binary form beside protobuf and in XML beside plain Xerces-C and pugixml.
//
// Every call makes its output anew, ours and the peer's alike.
#include <bench/measurements.h>
#include <bench/pugixml_peer.h>
#include <bench/subject.h>
#include <bench/versions.h>
#include <bench/xerces_peer.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zqxml::bench {
namespace {

using google::protobuf::Message;

/// One message in every shape that a measurement starts from.
struct CodecSubject : Subject {
  template <class Data>
  CodecSubject(const std::string& called, const Data& data)
      : Subject(called, data),
        dynamic(dynamicPrototype(*generated).New()),
        writeByHand([data] { return writtenByHand(data); }),
        writeWithNamesKept([data] { return writtenWithNamesKept(data); }),
        writeByPugixml([data] { return savedByPugixml(data); }),
        protobuf(generated->SerializeAsString()) {
    require(dynamic->ParseFromString(protobuf), "the dynamic message does not read its peer");
    require(writeByHand() == ours.xml(), "the hand-written text differs from ours");
    require(writeWithNamesKept() == ours.xml(), "the text with kept names differs from ours");
    require(readByPugixml(writeByPugixml()) == readByPugixml(ours.xml()),
            "the peer's text differs from ours");
  }

  std::unique_ptr<Message> dynamic;
  std::function<std::string()> writeByHand;
  std::function<std::string()> writeWithNamesKept;
  std::function<std::string()> writeByPugixml;
  std::string protobuf;
  BareReader keptReader;
};

void measureBinary(CodecSubject& s) {
  measure("encode/ours/" + s.name, [&s] { s.ours.encode(); });
  measure("decode/ours/" + s.name, [&s] { s.ours.decode(); });
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
  measure("write/ours/" + s.name, [&s] { s.ours.write(); });
  measure("write/hand/" + s.name, [&s] {
    std::string out = s.writeByHand();
    benchmark::DoNotOptimize(out.data());
  });
  measure("write/kept/" + s.name, [&s] {
    std::string out = s.writeWithNamesKept();
    benchmark::DoNotOptimize(out.data());
  });
  measure("write/pugixml/" + s.name, [&s] {
    std::string out = s.writeByPugixml();
    benchmark::DoNotOptimize(out.data());
  });
  measure("read/ours/" + s.name, [&s] { s.ours.read(); });
  measure("read/parser/" + s.name, [&s] { s.ours.readByTheParser(); });
  measure("read/pugixml/" + s.name, [&s] { benchmark::DoNotOptimize(readByPugixml(s.ours.xml())); });
  measure("read/bare/" + s.name, [&s] { BareReader().parse(s.ours.xml()); });
  measure("read/kept/" + s.name, [&s] { s.keptReader.parse(s.ours.xml()); });
}

/// A road beside a peer, and how many times as fast it has to be for the small, medium and large message.
struct Claim {
  const char* peer;
  const char* ours;
  const char* theirs;
  double reaches[3];
};
struct Claims {
  const char* title;
  const char* note;
  std::vector<Claim> claims;
};
const Claims kClaims[] = {
    {"XML out",
     "The peers hold the same values, build a tree of them and write it: the DOM of Xerces-C with its serializer, "
     "as its samples do or with names kept, and pugixml with its own.",
     {{"hand-written DOM", "write/ours", "write/hand", {50, 80, 50}},
      {"DOM with names kept", "write/ours", "write/kept", {0, 0, 0}},
      {"pugixml", "write/ours", "write/pugixml", {2.8, 3.7, 2.3}}}},
    {"XML in",
     "The reader of Xerces-C, made anew or kept, has a handler that does nothing; pugixml parses and reads every "
     "value.",
     {{"fresh bare reader", "read/ours", "read/bare", {40, 7, 4}},
      {"kept bare reader", "read/ours", "read/kept", {0, 0, 0}},
      {"pugixml", "read/ours", "read/pugixml", {1.2, 1, 1}}}},
    {"XML in, Xerces road",
     "A processing instruction behind the text leaves it to the SAX reader of Xerces-C.",
     {{"fresh bare reader", "read/parser", "read/bare", {3, 1.1, 0.8}},
      {"kept bare reader", "read/parser", "read/kept", {0, 0, 0}}}},
    {"Binary out",
     "",
     {{"DynamicMessage", "encode/ours", "encode/dynamic", {10, 12, 10}},
      {"generated protobuf", "encode/ours", "encode/generated", {0.7, 0.6, 0.5}}}},
    {"Binary in",
     "",
     {{"DynamicMessage", "decode/ours", "decode/dynamic", {3.6, 4, 4}},
      {"generated protobuf", "decode/ours", "decode/generated", {1.2, 1.45, 1.55}}}},
};

using Subjects = std::vector<std::unique_ptr<CodecSubject>>;

std::vector<ComparedTable> tables(const Subjects& subjects) {
  std::vector<ComparedTable> made;
  for (const auto& [title, note, claims] : kClaims) {
    ComparedTable& table = made.emplace_back();
    table.table.title = title;
    table.table.note = note;
    for (const Claim& claim : claims) {
      for (std::size_t i = 0; i < subjects.size(); ++i) {
        const std::string& name = subjects[i]->name;
        table.comparisons.push_back({std::string(claim.peer) + ", " + name, claim.ours + ("/" + name),
                                     claim.theirs + ("/" + name), false, claim.reaches[i]});
      }
    }
  }
  return made;
}

void tellSize(Report& report, CodecSubject& s) {
  char sizes[128];
  std::snprintf(sizes, sizeof sizes, "%zu bytes of XML, %zu of the binary form, %zu of protobuf",
                s.ours.xml().size(), static_cast<std::size_t>(s.ours.binary().getDataSize()),
                s.protobuf.size());
  report.fact(s.name + " message", sizes);
}

int run(int argc, char** argv) {
  Report report(argc, argv);
  tellVersions(report);
  const Subjects subjects = ofEverySize(
      [](const std::string& name, const auto& data) { return std::make_unique<CodecSubject>(name, data); });
  for (const auto& s : subjects) {
    measureBinary(*s);
    measureXml(*s);
    tellSize(report, *s);
  }
  return runMeasurements(report, tables(subjects));
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
