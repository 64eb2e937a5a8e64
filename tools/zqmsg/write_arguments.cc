#include "tools/zqmsg/write_arguments.h"

#include "tools/zqmsg/failure.h"

namespace zqxml::tool {
namespace {

class Refusal {
 public:
  Refusal(const CLI::App& command, const std::string& name, const WriteOptions& options)
      : command_(command), name_(name), options_(options), form_(formName(options.form)) {}

  void ofWhatHasNoEffect() const {
    const bool isXml = options_.form == Form::kXml || options_.form == Form::kXml16;
    for (const char* option : {"--elements", "--readable", "--enum-names", "--root-only", "--mask-passwords",
                               "--mask-sensitive"}) {
      if (!isXml && command_.count(option) != 0)
        misuse(std::string(option) + " is for the forms xml and xml16, not for " + form_);
    }
    if (options_.showSecrets && options_.form != Form::kPage) misuse("--show-secrets is for the form page");
    if (options_.version) ofVersion();
  }

 private:
  void ofVersion() const {
    if (static_cast<std::size_t>(options_.form) >= kReadableForms)
      misuse("--version is for the forms xml and binary, not for " + form_);
    if (options_.form == Form::kXml16 || options_.form == Form::kObjects)
      misuse("--version is for the forms xml and binary; " + form_ + " is always version 2");
    if (options_.rootOnly) misuse("--version cannot be had together with --root-only");
  }
  [[noreturn]] void misuse(const std::string& what) const {
    throw Failure(kUsageError, name_, what).advise("'zqmsg " + name_ + " --help' tells more");
  }

  const CLI::App& command_;
  const std::string& name_;
  const WriteOptions& options_;
  std::string form_;
};

}  // namespace

CLI::Option& WriteArguments::addTo(CLI::App& command) {
  CLI::Option& form = *command.add_option("--to", to, "Form to write");
  form.check(CLI::IsMember(formNames(kFormNames.size())));
  command.add_flag("--elements", options_.elements, "XML: values as elements, not as attributes");
  command.add_flag("--readable", options_.readable, "XML: indented, names, dates and times as text");
  command.add_flag("--enum-names", options_.enumNames, "XML: enumerations by name");
  command.add_flag("--root-only", options_.rootOnly, "XML: without the declaration");
  command.add_flag("--mask-passwords", options_.maskPasswords, "XML: ******* for every password");
  command.add_flag("--mask-sensitive", options_.maskSensitive, "XML: ######## for every sensitive value");
  command.add_flag("--show-secrets", options_.showSecrets,
                   "page: passwords, sensitive values and byte strings as they are");
  command.add_option("--version", version_, "Version of the form; 2 when not given");
  return form;
}

WriteOptions WriteArguments::options(const CLI::App& command, const std::string& name) const {
  WriteOptions options = options_;
  options.form = *formByName(to);
  if (command.count("--version") != 0) options.version = version_;
  Refusal(command, name, options).ofWhatHasNoEffect();
  return options;
}

}  // namespace zqxml::tool
