#include <memory>
#include <string>
#include <vector>

#include "tools/zqmsg/command.h"
#include "tools/zqmsg/conversion.h"
#include "tools/zqmsg/write_arguments.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples = R"(Forms:
  xml      XML text in UTF-8          binary   the compact binary form
  xml16    XML text in UTF-16         objects  a file of any number of messages
For people, and only to write:
  text     one line ('zqmsg summary' can do more)
  html     an outline, as a fragment with the values as they are
  page     a page to look at in a browser

Examples:
  zqmsg convert alert.xml --to binary -o alert.bin
  zqmsg convert alert.bin --to xml --readable
  zqmsg convert *.xml --to objects -o all.objects   many messages into one file
  zqmsg convert all.objects --to xml -o folder/     and each into a file of its own
  zqmsg convert alert.xml --to page -o alert.html
  zqmsg convert - --from binary --to xml < alert.bin)";

struct Arguments {
  ConvertOptions options;
  std::string from;
  WriteArguments write;
};

void convert(const CLI::App& command, Arguments& arguments, Session& session) {
  ConvertOptions& options = arguments.options;
  options.from = formByName(arguments.from);
  options.write = arguments.write.options(command, "convert");
  if (options.files.empty()) options.files.emplace_back("-");
  Conversion(options, session).run();
}

}  // namespace

void addConvert(CLI::App& app, Session& session) {
  CLI::App& command =
      addCommand(app, session, "convert", "Read messages in one form and write them in another", kExamples);
  const auto arguments = std::make_shared<Arguments>();
  ConvertOptions& options = arguments->options;
  command.add_option("FILE", options.files, "Inputs; - or none is standard input");
  arguments->write.addTo(command).required();
  command.add_option("--from", arguments->from, "Form of the inputs; found out when not given")
      ->check(CLI::IsMember(formNames(kReadableForms)));
  command.add_option("-o,--output", options.output, "File, or folder for many; - or none is standard output");
  command.callback([&command, arguments, &session] { convert(command, *arguments, session); });
}

}  // namespace zqxml::tool
