#include "tools/zqmsg/write_arguments.h"

#include "tools/zqmsg/failure.h"

namespace zqxml::tool {
namespace {

class Refusal {
 public:
  Refusal(const CLI::App& command, const std::string& name, const WriteOptions& options)
      : command_(command), name_(name), options_(options), form_(formName(options.form)) {}

  void ofWhatHasNoEffect() const {
    const Form form = options_.form;
    refuse({"--elements", "--root-only"}, isXml(form), "xml and xml16");
    refuse({"--readable"}, isXml(form) || form == Form::kJson, "xml, xml16 and json");
    refuse({"--enum-names", "--mask-passwords", "--mask-sensitive"}, isXml(form) || isJson(form),
           "xml, xml16, json and jsonl");
    refuse({"--verify"}, isReadable(form), "that can be read, " + readableForms());
    if (options_.showSecrets && options_.form != Form::kPage) misuse("--show-secrets is for the form page");
    if (options_.version) ofVersion();
  }

 private:
  void refuse(std::initializer_list<const char*> options, bool fits, const std::string& forms) const {
    for (const char* option : options)
      if (!fits && command_.get_option_no_throw(option) != nullptr && command_.count(option) != 0)
        misuse(std::string(option) + " is for the forms " + forms + ", not for " + form_);
  }
  static std::string readableForms() {
    std::string names;
    for (const std::string& name : formNames(kReadableForms)) names += (names.empty() ? "" : ", ") + name;
    return names;
  }
  void ofVersion() const {
    if (!isReadable(options_.form) || isJson(options_.form))
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
  command.add_flag("--readable", options_.readable,
                   "XML: indented, names, dates and times as text; json: indented, with names");
  command.add_flag("--enum-names", options_.enumNames, "XML, JSON: enumerations by name");
  command.add_flag("--root-only", options_.rootOnly, "XML: without the declaration");
  command.add_flag("--mask-passwords", options_.masks.passwords, "XML, JSON: ******* for every password");
  command.add_flag("--mask-sensitive", options_.masks.sensitive,
                   "XML, JSON: ######## for every sensitive value");
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
