#include <zqxml/catalogue/lookup.h>

#include <memory>
#include <string>

#include "tools/zqmsg/annotations_text.h"
#include "tools/zqmsg/class_name.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples = R"(Examples:
  zqmsg describe ZQGui_SaveAlert
  zqmsg describe 0x01000020                     the same class by its tag id
  zqmsg describe --annotations ZQGui_SaveAlert  and what is noted about its fields)";

struct Options {
  std::string className;
  bool annotations = false;
};

void describe(const Options& options) {
  const ClassPlace place = findClass(options.className);
  std::string text;
  if (!catalogue::schemaText(text, place.subsystem, place.classIndex, true, true))
    throw Failure(kFailed, options.className, "cannot be described");
  Output output("-");
  output.write(text);
  if (options.annotations) output.write("\nANNOTATIONS\n" + annotationsText(*place.record));
  output.commit();
}

}  // namespace

void addDescribe(CLI::App& app, Session& session) {
  CLI::App& command = addCommand(app, session, "describe",
                                 "Print the schema of a class: its fields with type, "
                                 "name, hash, member number and slot",
                                 kExamples);
  const auto options = std::make_shared<Options>();
  command.add_option("CLASS", options->className, "SUBSYSTEM_CLASS, or a tag id 0x...")->required();
  command.add_flag("--annotations", options->annotations, "Print the annotations of its fields too");
  command.callback([options] { describe(*options); });
}

}  // namespace zqxml::tool
