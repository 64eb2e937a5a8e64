#include <memory>
#include <string>
#include <vector>

#include "tools/zqmsg/command.h"
#include "tools/zqmsg/conversion.h"

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
  std::string to;
  int version = 2;
};

[[noreturn]] void misuse(const std::string& what) {
  throw Failure(kUsageError, "convert", what).advise("'zqmsg convert --help' tells more");
}

void refuseWhatHasNoEffect(const CLI::App& command, const ConvertOptions& options) {
  const Form form = options.write.form;
  const bool isXml = form == Form::kXml || form == Form::kXml16;
  for (const char* name :
       {"--elements", "--readable", "--enum-names", "--root-only", "--mask-passwords", "--mask-sensitive"}) {
    if (!isXml && command.count(name) != 0)
      misuse(std::string(name) + " is for the forms xml and xml16, not for " + std::string(formName(form)));
  }
  if (options.write.showSecrets && form != Form::kPage) misuse("--show-secrets is for the form page");
  if (!options.write.version) return;
  if (static_cast<std::size_t>(form) >= kReadableForms)
    misuse("--version is for the forms xml and binary, not for " + std::string(formName(form)));
  if (form == Form::kXml16 || form == Form::kObjects)
    misuse("--version is for the forms xml and binary; " + std::string(formName(form)) +
           " is always version 2");
  if (options.write.rootOnly) misuse("--version cannot be had together with --root-only");
}

void convert(const CLI::App& command, Arguments& arguments, Session& session) {
  ConvertOptions& options = arguments.options;
  options.from = formByName(arguments.from);
  options.write.form = *formByName(arguments.to);
  if (command.count("--version") != 0) options.write.version = arguments.version;
  refuseWhatHasNoEffect(command, options);
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
  command.add_option("--to", arguments->to, "Form to write")
      ->required()
      ->check(CLI::IsMember(formNames(kFormNames.size())));
  command.add_option("--from", arguments->from, "Form of the inputs; found out when not given")
      ->check(CLI::IsMember(formNames(kReadableForms)));
  command.add_option("-o,--output", options.output, "File, or folder for many; - or none is standard output");
  command.add_flag("--elements", options.write.elements, "XML: values as elements, not as attributes");
  command.add_flag("--readable", options.write.readable, "XML: indented, names, dates and times as text");
  command.add_flag("--enum-names", options.write.enumNames, "XML: enumerations by name");
  command.add_flag("--root-only", options.write.rootOnly, "XML: without the declaration");
  command.add_flag("--mask-passwords", options.write.maskPasswords, "XML: ******* for every password");
  command.add_flag("--mask-sensitive", options.write.maskSensitive,
                   "XML: ######## for every sensitive value");
  command.add_flag("--show-secrets", options.write.showSecrets,
                   "page: passwords, sensitive values and byte strings as they are");
  command.add_option("--version", arguments->version, "Version of the form; 2 when not given");
  command.callback([&command, arguments, &session] { convert(command, *arguments, session); });
}

}  // namespace zqxml::tool
