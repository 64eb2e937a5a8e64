// Rendering a message for people, as text and as HTML, beside protobuf's text format.
#include <bench/measurements.h>
#include <bench/subject.h>
#include <google/protobuf/text_format.h>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zqxml::bench {
namespace {

std::string peerText(const google::protobuf::Message& message) {
  std::string text;
  require(google::protobuf::TextFormat::PrintToString(message, &text), "the peer prints no text");
  return text;
}

void tellSize(Report& report, Subject& s) {
  char sizes[160];
  std::snprintf(sizes, sizeof sizes,
                "%zu bytes of text, %zu of outline, %zu of paragraph, %zu of the peer's text",
                s.ours.text().size(), s.ours.outline().size(), s.ours.paragraph().size(),
                peerText(*s.generated).size());
  report.fact(s.name + " message, rendered", sizes);
}

void measureAll(Subject& s) {
  const std::pair<const char*, std::string (RoadMessage::*)()> forms[] = {
      {"text", &RoadMessage::text},
      {"outline", &RoadMessage::outline},
      {"paragraph", &RoadMessage::paragraph}};
  for (const auto& [form, render] : forms) {
    measure(std::string(form) + "/ours/" + s.name, [&s, render = render] {
      const std::string made = (s.ours.*render)();
      ::benchmark::DoNotOptimize(made.data());
    });
  }
  measure("text/peer/" + s.name, [&s] {
    const std::string made = peerText(*s.generated);
    ::benchmark::DoNotOptimize(made.data());
  });
}

ComparedTable table(const std::vector<std::unique_ptr<Subject>>& subjects) {
  ComparedTable made;
  made.table.title = "Rendering, beside TextFormat";
  made.table.note = "The peer prints its text format, whatever ours renders.";
  for (const char* form : {"text", "outline", "paragraph"})
    for (const auto& s : subjects)
      made.comparisons.push_back(
          {std::string(form) + ", " + s->name, form + ("/ours/" + s->name), "text/peer/" + s->name, true});
  return made;
}

int run(int argc, char** argv) {
  Report report(argc, argv);
  const auto subjects = ofEverySize(
      [](const std::string& name, const auto& data) { return std::make_unique<Subject>(name, data); });
  for (const auto& s : subjects) {
    tellSize(report, *s);
    measureAll(*s);
  }
  return runMeasurements(report, {table(subjects)});
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
