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
  xml16    XML text in UTF-16         objects  any number of binary messages
  json     a JSON document            jsonl    JSON documents, one on each line
For people, and only to write:
  text     one line ('zqmsg summary' can do more)
  html     an outline, as a fragment with the values as they are
  page     a page to look at in a browser

An input, object or line that cannot be converted is named on standard error, and the others are
converted all the same; the exit status is that of the first one.

As a filter, from objects or lines on standard input to standard output, it takes no more memory
than the largest message, and answers what has come before it waits for more.

Examples:
  zqmsg convert alert.xml --to binary -o alert.bin
  zqmsg convert alert.bin --to xml --readable
  zqmsg convert alert.bin --to json | jq .ZQGui_SaveAlert.loginName
  zqmsg convert alert.xml --to binary -o alert.bin --verify    name what did not survive
  zqmsg convert *.xml --to objects -o all.objects   many messages into one file
  zqmsg convert all.objects --to xml -o folder/     and each into a file of its own
  zqmsg convert alert.xml --to page -o alert.html
  zqmsg convert --from objects --to jsonl < all.objects | grep operator)";

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
  command.add_flag("--verify", options.verify,
                   "Read back what was written; name the fields that did not survive, exit status 10");
  command.add_option("-o,--output", options.output, "File, or folder for many; - or none is standard output");
  command.callback([&command, arguments, &session] { convert(command, *arguments, session); });
}

}  // namespace zqxml::tool
