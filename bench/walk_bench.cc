// Walking a message, and merging it into an empty one, beside protobuf's reflection and MergeFrom.
//
// Our walk calls an empty handler for every field, set or not; the
// peer's asks every message for its set fields (ListFields), down to the last.
#include <bench/measurements.h>
#include <bench/subject.h>
#include <zqxml/traverse/xml_traverse.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace zqxml::bench {
namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;
using google::protobuf::Reflection;

class EmptyHandler : public XmlTraverseHandler {
 public:
  using XmlTraverseHandler::XmlTraverseHandler;
  void visit(MsgFieldContext&) override {}
};

class CountingHandler : public XmlTraverseHandler {
 public:
  void visit(MsgFieldContext& context) override { count += context.isValueSet() ? 1 : 0; }
  std::size_t count = 0;
};

void walk(XNMessageBase& message, XmlTraverseHandler& handler) {
  XmlTraverse().traverse(message, handler, false, false);
}

/// Number of set fields in the message and all messages below it.
std::size_t walkReflected(const Message& message) {
  const Reflection& reflection = *message.GetReflection();
  std::vector<const FieldDescriptor*> fields;
  reflection.ListFields(message, &fields);
  std::size_t count = fields.size();
  for (const FieldDescriptor* field : fields) {
    if (field->cpp_type() != FieldDescriptor::CPPTYPE_MESSAGE || field->is_map()) continue;
    if (!field->is_repeated()) {
      count += walkReflected(reflection.GetMessage(message, field));
      continue;
    }
    const int size = reflection.FieldSize(message, field);
    for (int i = 0; i < size; ++i) count += walkReflected(reflection.GetRepeatedMessage(message, field, i));
  }
  return count;
}

std::unique_ptr<Subject> checked(std::unique_ptr<Subject> subject) {
  CountingHandler counter;
  walk(subject->ours.message(), counter);
  require(counter.count == walkReflected(*subject->generated), "the two messages have not the same fields");
  return subject;
}

void measureAll(Subject& s) {
  measure("walk/ours/" + s.name, [&s] {
    EmptyHandler handler;
    walk(s.ours.message(), handler);
  });
  measure("walk/ordered/" + s.name, [&s] {
    EmptyHandler handler(0, true);
    walk(s.ours.message(), handler);
  });
  measure("walk/peer/" + s.name, [&s] { ::benchmark::DoNotOptimize(walkReflected(*s.generated)); });
  measure("merge/ours/" + s.name, [&s] {
    XNMessageBase& source = s.ours.message();
    short subsystem = static_cast<short>(source.getSubsysID());
    int classIndex = source.getMessageIndex();
    const std::unique_ptr<XNMessageBase> merged(
        XNMessageBase::createObjectFromIndices(subsystem, classIndex));
    ::benchmark::DoNotOptimize(XmlTraverse::merge(source, *merged));
  });
  measure("merge/peer/" + s.name, [&s] {
    const std::unique_ptr<Message> merged(s.generated->New());
    merged->MergeFrom(*s.generated);
    ::benchmark::DoNotOptimize(merged.get());
  });
}

ComparedTable table(const std::vector<std::unique_ptr<Subject>>& subjects) {
  ComparedTable made;
  made.table.title = "Walking and merging";
  made.table.note =
      "Our walk visits every field; the peer's asks each message for its set fields by reflection.";
  for (const auto& s : subjects) {
    const std::string& name = s->name;
    const double reach = name == "medium" ? 1 : 0;
    made.comparisons.push_back(
        {"walk, reflection, " + name, "walk/ours/" + name, "walk/peer/" + name, true, reach});
    made.comparisons.push_back(
        {"walk in order, reflection, " + name, "walk/ordered/" + name, "walk/peer/" + name, true});
    made.comparisons.push_back(
        {"merge, MergeFrom, " + name, "merge/ours/" + name, "merge/peer/" + name, true});
  }
  return made;
}

int run(int argc, char** argv) {
  Report report(argc, argv);
  const auto subjects = ofEverySize([](const std::string& name, const auto& data) {
    return checked(std::make_unique<Subject>(name, data));
  });
  for (const auto& s : subjects) measureAll(*s);
  return runMeasurements(report, {table(subjects)});
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
