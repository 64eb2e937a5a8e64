// Walking a message, and merging it into an empty one, beside protobuf's reflection and MergeFrom.
//
// The messages are those of codec_bench. Our walk calls an empty handler for every field, set or not; the
// peer's asks every message for its set fields (ListFields), down to the last.
#include <bench/job_data.h>
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

template <class Data>
std::unique_ptr<Subject> subject(std::string name, const Data& data) {
  auto result = std::make_unique<Subject>(std::move(name), data);
  CountingHandler counter;
  walk(*result->ours, counter);
  require(counter.count == walkReflected(*result->generated), "the two messages have not the same fields");
  return result;
}

void measureAll(Subject& s) {
  measure("walk/ours/" + s.name, [&s] {
    EmptyHandler handler;
    walk(*s.ours, handler);
  });
  measure("walk/ordered/" + s.name, [&s] {
    EmptyHandler handler(0, true);
    walk(*s.ours, handler);
  });
  measure("walk/peer/" + s.name, [&s] { ::benchmark::DoNotOptimize(walkReflected(*s.generated)); });
  measure("merge/ours/" + s.name, [&s] {
    short subsystem = static_cast<short>(s.ours->getSubsysID());
    int classIndex = s.ours->getMessageIndex();
    const std::unique_ptr<XNMessageBase> merged(
        XNMessageBase::createObjectFromIndices(subsystem, classIndex));
    ::benchmark::DoNotOptimize(XmlTraverse::merge(*s.ours, *merged));
  });
  measure("merge/peer/" + s.name, [&s] {
    const std::unique_ptr<Message> merged(s.generated->New());
    merged->MergeFrom(*s.generated);
    ::benchmark::DoNotOptimize(merged.get());
  });
}

std::vector<Comparison> comparisons(const std::vector<std::unique_ptr<Subject>>& subjects) {
  std::vector<Comparison> rows;
  for (const auto& s : subjects) {
    const std::string& name = s->name;
    const double reach = name == "medium" ? 1 : 0;
    rows.push_back({name + ": walk, reflection", "walk/ours/" + name, "walk/peer/" + name, true, reach});
    rows.push_back({name + ": walk in order, reflection", "walk/ordered/" + name, "walk/peer/" + name, true});
    rows.push_back({name + ": merge, MergeFrom", "merge/ours/" + name, "merge/peer/" + name, true});
  }
  return rows;
}

int run(int argc, char** argv) {
  std::vector<std::unique_ptr<Subject>> subjects;
  subjects.push_back(subject("small", soleEntry()));
  subjects.push_back(subject("medium", jobReport(20)));
  subjects.push_back(subject("large", jobReport(5000)));
  for (const auto& s : subjects) measureAll(*s);
  return runMeasurements(argc, argv, comparisons(subjects));
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
