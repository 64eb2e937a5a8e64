#include "command_line.h"

#include <iostream>

#include "tools/command_pages/command_tree.h"

namespace zqxml::zqcatc {

int print(std::string_view text) {
  std::cout << text << std::flush;
  if (std::cout) return kDone;
  std::cerr << "zqcatc: cannot write to standard output\n";
  return kFileError;
}

int usage(std::string_view why, std::string_view command) {
  std::cerr << "zqcatc: " << shown(why) << "; 'zqcatc " << command << (command.empty() ? "" : " ")
            << "--help' shows the usage\n";
  return kUsage;
}

int fileError(std::string_view why, ErrorFormat format) {
  printFailure(std::cerr, "file", why, format);
  return kFileError;
}

void addErrorFormat(CLI::App& command, ErrorFormat& format, const std::string& description) {
  const CLI::Validator isFormat(
      [](const std::string& name) {
        return std::string(name == "text" || name == "json" ? "" : "--error-format is text or json");
      },
      "{text,json}");
  command
      .add_option_function<std::string>(
          "--error-format",
          [&format](const std::string& name) {
            format = name == "json" ? ErrorFormat::kJson : ErrorFormat::kText;
          },
          description)
      ->check(isFormat)
      ->take_last();
}

namespace {

/// The program, or the command that was called.
const CLI::App& called(const CLI::App& app) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  return commands.empty() ? app : *commands.front();
}

/// Its name; "" of the program itself.
std::string nameOf(const CLI::App& command) {
  return command.get_parent() == nullptr ? "" : command.get_name();
}

/// A ValidationError and an ArgumentMismatch begin with the option's name.
std::string whyOf(const CLI::App& app, const CLI::ParseError& error) {
  std::string what = error.what();
  const std::size_t colon = what.find(": ");
  if (colon == std::string::npos) return what;
  const std::string name = what.substr(0, colon);
  if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr) return what.substr(colon + 2);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) == nullptr) return what;
  const CLI::Option* option = called(app).get_option_no_throw(name);
  const bool isFolder = option != nullptr && option->get_type_name() == "FOLDER";
  return name + (isFolder ? " needs a folder" : " needs a value");
}

int refuseRest(const CLI::App& command) {
  const std::vector<std::string> rest = command.remaining();
  if (rest.empty()) return -1;
  const std::string name = nameOf(command);
  if (rest.front().starts_with('-'))
    return usage("unknown option '" + rest.front() + "'" + (name.empty() ? "" : " of " + name), name);
  std::string taken;
  for (const CLI::Option* positional : command_pages::positionalsOf(command))
    taken += (taken.empty() ? "" : " and ") + positional->get_name(true);
  return usage(command.get_name() + " takes " + taken, name);
}

}  // namespace

int parse(CLI::App& app, int argc, const char* const* argv) {
  app.set_help_flag("-h,--help", "print this text");
  app.allow_extras();
  for (CLI::App* command : app.get_subcommands({})) {
    command->set_help_flag("-h,--help", "print this text");
    command->allow_extras();
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    const CLI::App& command = called(app);
    if (&command == &app) return print(app.get_name() + " - " + app.help());
    return print(app.get_name() + ' ' + command.get_name() + " - " + command.help(app.get_name()));
  } catch (const CLI::CallForVersion& version) {
    return print(std::string(version.what()) + '\n');
  } catch (const CLI::ParseError& error) {
    return usage(whyOf(app, error), nameOf(called(app)));
  }
  const int status = refuseRest(app);
  return status >= 0 ? status : refuseRest(called(app));
}

}  // namespace zqxml::zqcatc
