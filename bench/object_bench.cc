// Building messages and reading them, beside protobuf: built and destroyed like its generated classes, read
// like its DynamicMessage.
//
// The messages are those of codec_bench. Built means that every field is set by the accessor of its class,
// and the whole destroyed. Read means that every field is asked whether it is set, and what is, read: by the
// accessors, and by a program that knows the classes from the catalogue alone, as reflection knows its own.
#include <bench/job_data.h>
#include <bench/measurements.h>
#include <bench/subject.h>
#include <bench/typed_reading.h>
#include <zqxml/message/xn_message_base.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace zqxml::bench {
namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;
using google::protobuf::Reflection;

void readGeneric(const XNMessageBase& message, Reading& reading);

/// What stands at the place of a field: a handler of visitStorage.
struct PlaceReader {
  const void* place;
  Reading& reading;

  void operator()(Nothing) const {}
  template <element::Integer E>
  void operator()(Scalar<E>) const {
    reading.add(*static_cast<const std::int64_t*>(place));
  }
  template <class Storage>
  void operator()(Storage) const {
    readValue(*static_cast<const typename Storage::Value*>(place));
  }

 private:
  void readValue(const XNMessageBase& value) const { readGeneric(value, reading); }
  template <class Key, class Value>
  void readValue(const std::map<Key, Value>& entries) const {
    for (const auto& [key, value] : entries) {
      readValue(key);
      readValue(value);
    }
  }
  template <class Value>
  void readValue(const std::vector<Value>& entries) const {
    for (const Value& entry : entries) readValue(entry);
  }
  template <class Value>
  void readValue(const Value& value) const {
    if constexpr (std::is_same_v<Value, pstring>)
      reading.add(value.str());
    else
      reading.add(value);
  }
};

void readGeneric(const XNMessageBase& message, Reading& reading) {
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message))
    if (message.isSet(field.getMemNum(), message.getTagID(), field.getFieldHashId()))
      visitStorage(field.getType(), PlaceReader{field.getFieldAddrResolved(&message), reading});
}

/// One value, or one of a repeated field (`at` from 0).
void readReflected(const Message& message, const FieldDescriptor* field, int at, Reading& reading);

void readReflected(const Message& message, Reading& reading) {
  const google::protobuf::Descriptor& descriptor = *message.GetDescriptor();
  const Reflection& reflection = *message.GetReflection();
  for (int i = 0; i < descriptor.field_count(); ++i) {
    const FieldDescriptor* const field = descriptor.field(i);
    if (!field->is_repeated()) {
      if (reflection.HasField(message, field)) readReflected(message, field, -1, reading);
      continue;
    }
    const int count = reflection.FieldSize(message, field);
    for (int at = 0; at < count; ++at) readReflected(message, field, at, reading);
  }
}

void readReflected(const Message& message, const FieldDescriptor* field, int at, Reading& reading) {
  const Reflection& reflection = *message.GetReflection();
  std::string scratch;
  switch (field->cpp_type()) {
    case FieldDescriptor::CPPTYPE_INT32:
      return reading.add(at < 0 ? reflection.GetInt32(message, field)
                                : reflection.GetRepeatedInt32(message, field, at));
    case FieldDescriptor::CPPTYPE_INT64:
      return reading.add(at < 0 ? reflection.GetInt64(message, field)
                                : reflection.GetRepeatedInt64(message, field, at));
    case FieldDescriptor::CPPTYPE_UINT32:
      return reading.add(at < 0 ? reflection.GetUInt32(message, field)
                                : reflection.GetRepeatedUInt32(message, field, at));
    case FieldDescriptor::CPPTYPE_BOOL:
      return reading.add(at < 0 ? reflection.GetBool(message, field)
                                : reflection.GetRepeatedBool(message, field, at));
    case FieldDescriptor::CPPTYPE_DOUBLE:
      return reading.add(at < 0 ? reflection.GetDouble(message, field)
                                : reflection.GetRepeatedDouble(message, field, at));
    case FieldDescriptor::CPPTYPE_STRING:
      return reading.add(at < 0 ? reflection.GetStringReference(message, field, &scratch)
                                : reflection.GetRepeatedStringReference(message, field, at, &scratch));
    case FieldDescriptor::CPPTYPE_MESSAGE:
      return readReflected(
          at < 0 ? reflection.GetMessage(message, field) : reflection.GetRepeatedMessage(message, field, at),
          reading);
    default:
      return require(false, "the peer has a field of another type");
  }
}

template <class Read>
Reading readingOf(Read read) {
  Reading reading;
  read(reading);
  return reading;
}

/// Registers the measurements of one size, and gives its name.
template <class Data>
std::string measureAll(const std::string& name, const Data& data) {
  measure("build/ours/" + name, [data] { ::benchmark::DoNotOptimize(ourMessage(data).get()); });
  measure("build/peer/" + name, [data] { ::benchmark::DoNotOptimize(generatedMessage(data).get()); });

  const std::shared_ptr<const XNMessageBase> ours = ourMessage(data);
  const std::unique_ptr<Message> generated = generatedMessage(data);
  const std::shared_ptr<Message> dynamic(dynamicPrototype(*generated).New());
  require(dynamic->ParseFromString(generated->SerializeAsString()),
          "the dynamic message does not read its peer");
  const auto typed = [ours](Reading& reading) {
    readTyped(static_cast<const OurClass<Data>&>(*ours), reading);
  };
  const auto generic = [ours](Reading& reading) { readGeneric(*ours, reading); };
  const auto reflected = [dynamic](Reading& reading) { readReflected(*dynamic, reading); };
  require(readingOf(typed) == readingOf(reflected) && readingOf(generic) == readingOf(reflected),
          "the readers do not agree");
  measure("read/typed/" + name, [typed] { ::benchmark::DoNotOptimize(readingOf(typed)); });
  measure("read/generic/" + name, [generic] { ::benchmark::DoNotOptimize(readingOf(generic)); });
  measure("read/peer/" + name, [reflected] { ::benchmark::DoNotOptimize(readingOf(reflected)); });
  return name;
}

std::vector<ComparedTable> tables(const std::vector<std::string>& names) {
  constexpr double kBuildReaches[] = {1, 1.4, 1.4};
  constexpr double kReadReaches[] = {4, 5, 4.5};
  std::vector<ComparedTable> made(2);
  made[0].table.title = "Building and destroying";
  made[0].table.note = "Every field is set by its accessor, ours and the peer's alike.";
  made[1].table.title = "Reading every set field";
  made[1].table.note =
      "By the accessors of the class, and by a program that knows it from the catalogue alone.";
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string& name = names[i];
    const auto add = [&name](ComparedTable& table, const char* what, const std::string& road, double reach) {
      const std::string peer = road.substr(0, road.find('/')) + "/peer/";
      table.comparisons.push_back({what + name, road + name, peer + name, false, reach});
    };
    add(made[0], "generated protobuf, ", "build/ours/", kBuildReaches[i]);
    add(made[1], "accessors, DynamicMessage, ", "read/typed/", kReadReaches[i]);
    add(made[1], "catalogue, DynamicMessage, ", "read/generic/", kReadReaches[i]);
  }
  return made;
}

int run(int argc, char** argv) {
  Report report(argc, argv);
  const std::vector<std::string> names =
      ofEverySize([](const std::string& name, const auto& data) { return measureAll(name, data); });
  return runMeasurements(report, tables(names));
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
