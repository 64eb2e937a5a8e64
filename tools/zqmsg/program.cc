#include "tools/zqmsg/program.h"

#include <zqxml/annotation/platform_password_routines.h>
#include <zqxml/platform/zq_password.h>

#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "tools/command_pages/command_tree.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/generation.h"
#include "tools/zqmsg/output.h"
#include "tools/zqmsg/standard_descriptors.h"

namespace zqxml::tool {
namespace {

constexpr const char* kFooter =
    R"(Classes are named SUBSYSTEM_CLASS or by tag id, 0x...; '-' is standard input or output.
Exit status: 0 done; 1 failed, 4 not well-formed XML or JSON, 5 XML or JSON of an unknown class,
6 no key for a password; 2 wrong usage; 10 difference found. Passwords are encrypted with the key
file that $ZQXML_KEY_FILE names.

'zqmsg COMMAND --help' has examples.)";

void addCommands(CLI::App& app, Session& session) {
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("zqmsg ") + ZQMSG_VERSION);
  app.footer(kFooter);
  app.get_formatter()->column_width(26);
  addCatalogue(app, session);
  addDescribe(app, session);
  addDumpCatalogue(app, session);
  addConvert(app, session);
  addInspect(app, session);
  addObjects(app, session);
  addDiff(app, session);
  addMask(app, session);
  addMerge(app, session);
  addSample(app, session);
  addSummary(app, session);
  addXpath(app, session);
}

// The program, or the command that was called, with the one below it where there is one: "xpath get".
const CLI::App& calledOf(const CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  return chosen.empty() ? app : calledOf(*chosen.front());
}

// A word that nothing takes is what is wrong, also where something else is missing for want of it.
std::string whyOf(const CLI::App& app, const CLI::App& called, const CLI::ParseError& error) {
  const std::vector<std::string> rest = app.remaining(true);
  if (!rest.empty() && dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    if (rest.front().starts_with('-')) return "there is no option " + rest.front();
    if (!command_pages::commandsBelow(called).empty()) return "there is no command " + rest.front();
  }
  return error.what();
}

Failure misuse(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App& called = calledOf(app);
  const std::string command = command_pages::wordsOf(called);
  Failure failure(kUsageError, command, whyOf(app, called, error));
  return failure.advise("'zqmsg" + (command.empty() ? "" : " " + command) + " --help' tells more");
}

void print(const std::string& text) {
  Output output("-");
  output.write(text);
  output.commit();
}

// Help and version are answers and go to standard output.
void answer(const CLI::App& app, const CLI::ParseError& error) {
  const bool version = dynamic_cast<const CLI::CallForVersion*>(&error) != nullptr;
  print(version ? std::string(error.what()) + "\n" : app.help());
}

ExitStatus parseAndRun(int argc, const char* const* argv, Session& session) {
  CLI::App app("Looks at the message catalogue, converts and compares messages.", "zqmsg");
  addCommands(app, session);
  // For those who build packages, and for completion; no command of its own.
  if (argc == 3 && std::string_view(argv[1]) == "--generate") {
    print(generated(app, argv[2]));
    return kDone;
  }
  if (ZQPassword().isConfigured()) registerPlatformPasswordRoutines();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) throw misuse(app, error);
    answer(app, error);
  }
  return session.status;
}

}  // namespace

CLI::App& addCommand(CLI::App& app, Session& session, const std::string& name, const std::string& summary,
                     const std::string& examples) {
  CLI::App& command = *app.add_subcommand(name, summary);
  command.footer(examples);
  command.get_formatter()->column_width(26);
  command.add_flag_callback(
      "-v,--verbose", [&session] { session.log.showAll(); }, "Show what the library logs, on standard error");
  return command;
}

int runProgram(int argc, const char* const* argv) {
  occupyStandardDescriptors();
  Session session;
  const auto fail = [&session](const Failure& failure) {
    session.console.report(failure);
    return failure.status();
  };
  try {
    return parseAndRun(argc, argv, session);
  } catch (const Failure& failure) {
    return fail(failure);
  } catch (const std::bad_alloc&) {
    return fail(Failure(kFailed, "", "there is not enough memory"));
  } catch (const std::exception& error) {
    return fail(Failure(kFailed, "", error.what()).explain(session.log.take()));
  }
}

}  // namespace zqxml::tool
