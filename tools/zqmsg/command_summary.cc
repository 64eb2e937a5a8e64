#include <memory>
#include <string>
#include <vector>

#include "tools/zqmsg/attempts.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/output.h"
#include "tools/zqmsg/rendering.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples =
    R"(One line per message. Passwords are left out; in HTML byte strings are masked. The HTML is a
fragment that does not escape values; of a message that cannot be trusted,
'zqmsg convert --to page' makes a page that is safe. Control characters are shown as \n or
\xNN; 'zqmsg convert --to text' and '--to html' write them as they are.

N is a language identifier, 1033 or 0x409 for English, 1031 for German; 0 is the language of
the environment. Labels without a text are the names of the fields.

Examples:
  zqmsg summary alert.bin
  zqmsg summary --html --collapsible --locale 1031 alert.xml
  zqmsg summary --order jobs.objects | head)";

struct Options {
  std::vector<std::string> files;
  bool html = false;
  bool gui = false;
  ContextFormatOpts format;
};

void summarize(const Options& options, Session& session) {
  const Rendering form = options.html  ? Rendering::kOutline
                         : options.gui ? Rendering::kSummary
                                       : Rendering::kText;
  Output output("-");
  Attempts attempts(session);
  const auto summarizeOne = [&](MessageSource& source) {
    output.write(visible(render(*source.message(), form, options.format)) + '\n');
    for (const std::string& line : session.log.take()) session.console.warn(source.where(), line);
  };
  for (const std::string& file : options.files) {
    attempts.attempt([&] {
      MessageSource source(file, std::nullopt, session);
      source.onWait([&output] { output.show(); });
      while (source.take()) attempts.attempt([&] { summarizeOne(source); });
    });
  }
  output.commit();
}

}  // namespace

void addSummary(CLI::App& app, Session& session) {
  CLI::App& command = addCommand(app, session, "summary", "Show messages to people", kExamples);
  const auto options = std::make_shared<Options>();
  command.add_option("FILE", options->files, "Messages in any form; - or none is standard input");
  CLI::Option* html = command.add_flag("--html", options->html, "An outline in HTML");
  command.add_flag("--gui", options->gui, "A paragraph in HTML")->excludes(html);
  command.add_flag("--collapsible", options->format.collapsible, "HTML: the outline opens with a click")
      ->needs(html);
  command.add_flag("--order", options->format.order, "Values of an object before its sub-objects");
  command.add_option("--locale", options->format.localeId, "Language of labels, of true and of false")
      ->type_name("N");
  command.callback([options, &session] {
    if (options->files.empty()) options->files.emplace_back("-");
    summarize(*options, session);
  });
}

}  // namespace zqxml::tool
