#include <zqxml/traverse/xml_traverse.h>

#include <memory>
#include <string>

#include "tools/zqmsg/command.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/xml_output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples =
    R"(What is set in SOURCE goes on top of DESTINATION, a message of the same class: its values
win, the elements of its lists go behind, sub-objects are merged. Maps, ulonglong, and lists
of uint, ulonglong, bool, bstring and enumerations stay as they are in DESTINATION. The result
is printed as XML; neither input is changed.

Examples:
  zqmsg merge changes.xml alert.xml
  zqmsg merge changes.xml alert.bin --readable -o merged.xml)";

struct Options {
  std::string source;
  std::string destination;
  XmlOutput output;
};

void merge(const Options& options, Session& session) {
  if (options.source == "-" && options.destination == "-")
    throw Failure(kUsageError, "merge", "only one of the two can be standard input");
  const MessagePtr source = onlyMessage(options.source, session);
  const MessagePtr destination = onlyMessage(options.destination, session);
  if (!XmlTraverse::merge(*source, *destination)) {
    throw Failure(kFailed, options.source,
                  "is of class " + source->getTagName() + " and cannot be merged into one of class " +
                      destination->getTagName())
        .explain(session.log.take());
  }
  writeXml(*destination, options.output, options.destination, session);
}

}  // namespace

void addMerge(CLI::App& app, Session& session) {
  CLI::App& command =
      addCommand(app, session, "merge", "Fold one message into another of its class", kExamples);
  const auto options = std::make_shared<Options>();
  command.add_option("SOURCE", options->source, "Message in any form; - is standard input")->required();
  command.add_option("DESTINATION", options->destination, "What it is merged into")->required();
  addXmlOutput(command, options->output);
  command.callback([options, &session] { merge(*options, session); });
}

}  // namespace zqxml::tool
