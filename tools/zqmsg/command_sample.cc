#include <zqxml/logging/dummy_objects.h>

#include <memory>
#include <string>

#include "tools/zqmsg/class_name.h"
#include "tools/zqmsg/codec.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/xml_output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples =
    R"(Prints a message of the class with its sub-objects, its texts, empty, and five elements in
lists of objects and of numbers. Numbers by themselves, maps and other lists are left out.

Examples:
  zqmsg sample ZQGui_SaveAlert
  zqmsg sample JobManager_JobListResp --readable -o sample.xml)";

struct Options {
  std::string className;
  XmlOutput output;
};

void sample(const Options& options, Session& session) {
  const ClassPlace place = findClass(options.className);
  if (place.record->isEnumeration())
    throw Failure(kFailed, options.className, "is an enumeration, and has no messages");
  short subsystem = place.subsystem;
  int classIndex = place.classIndex;
  const MessagePtr message(XNMessageBase::createObjectFromIndices(subsystem, classIndex));
  XNMessageBase* filled = message.get();
  if (createXMLObjectWithDummyValues(filled) != 0) {
    throw Failure(kFailed, options.className, "has no sample, since its objects contain one another")
        .advise("'zqmsg describe' tells its fields")
        .explain(session.log.take());
  }
  writeXml(*message, options.output, options.className, session);
}

}  // namespace

void addSample(CLI::App& app, Session& session) {
  CLI::App& command =
      addCommand(app, session, "sample", "Print a message of a class, filled with placeholders", kExamples);
  const auto options = std::make_shared<Options>();
  command.add_option("CLASS", options->className, "SUBSYSTEM_CLASS, or a tag id 0x...")->required();
  addXmlOutput(command, options->output);
  command.callback([options, &session] { sample(*options, session); });
}

}  // namespace zqxml::tool
