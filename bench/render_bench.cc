// Rendering a message for people, as text and as HTML, beside protobuf's text format.
//
// The messages are those of codec_bench.
#include <bench/job_data.h>
#include <bench/measurements.h>
#include <bench/subject.h>
#include <google/protobuf/text_format.h>
#include <zqxml/render/default_render_context.h>
#include <zqxml/render/html_gui_summary_render_context.h>
#include <zqxml/render/html_render_context.h>
#include <zqxml/render/zq_xml_summary.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace zqxml::bench {
namespace {

using google::protobuf::Message;

template <class Context>
std::string rendered(XNMessageBase& message, Context context) {
  ZqXMLFormatOptions options;
  require(ZqXMLSummary::getZqSummaryInfo(&message, &context, options) == XN_MSG_OK,
          "a message is not rendered");
  std::string text;
  context.DumpToString(text);
  return text;
}
std::string text(XNMessageBase& message) {
  std::ostringstream stream;
  return rendered(message, DefaultRenderContext(stream));
}
std::string outline(XNMessageBase& message) {
  return rendered(message, HTMLRenderContext());
}
std::string paragraph(XNMessageBase& message) {
  return rendered(message, HTMLGuiSummaryRenderContext());
}
std::string peerText(const Message& message) {
  std::string text;
  require(google::protobuf::TextFormat::PrintToString(message, &text), "the peer prints no text");
  return text;
}

template <class Data>
std::unique_ptr<Subject> subject(std::string name, const Data& data) {
  auto result = std::make_unique<Subject>(std::move(name), data);
  std::printf("%-6s  %8zu bytes of text, %8zu of outline, %8zu of paragraph, %8zu of the peer's text\n",
              result->name.c_str(), text(*result->ours).size(), outline(*result->ours).size(),
              paragraph(*result->ours).size(), peerText(*result->generated).size());
  return result;
}

void measureAll(Subject& s) {
  const std::pair<const char*, std::string (*)(XNMessageBase&)> forms[] = {
      {"text", text}, {"outline", outline}, {"paragraph", paragraph}};
  for (const auto& [form, render] : forms) {
    measure(std::string(form) + "/ours/" + s.name, [&s, render = render] {
      const std::string made = render(*s.ours);
      ::benchmark::DoNotOptimize(made.data());
    });
  }
  measure("text/peer/" + s.name, [&s] {
    const std::string made = peerText(*s.generated);
    ::benchmark::DoNotOptimize(made.data());
  });
}

std::vector<Comparison> comparisons(const std::vector<std::unique_ptr<Subject>>& subjects) {
  std::vector<Comparison> rows;
  for (const auto& s : subjects)
    for (const char* form : {"text", "outline", "paragraph"})
      rows.push_back({s->name + ": " + form + ", TextFormat", form + ("/ours/" + s->name),
                      "text/peer/" + s->name, true});
  return rows;
}

int run(int argc, char** argv) {
  std::vector<std::unique_ptr<Subject>> subjects;
  subjects.push_back(subject("small", soleEntry()));
  subjects.push_back(subject("medium", jobReport(20)));
  subjects.push_back(subject("large", jobReport(5000)));
  std::fflush(stdout);
  for (const auto& s : subjects) measureAll(*s);
  return runMeasurements(argc, argv, comparisons(subjects));
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
