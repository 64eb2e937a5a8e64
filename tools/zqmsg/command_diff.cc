#include <memory>
#include <optional>
#include <string>

#include "tools/zqmsg/attempts.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/message_diff.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples =
    R"(Prints one line per difference: the field's path and both values. The exit status is 0
when there is none, and 10 when there is. Files of objects and of lines are compared
message by message.

Examples:
  zqmsg diff alert.xml alert.bin
  zqmsg convert alert.xml --to binary | zqmsg diff alert.xml -)";

struct Options {
  std::string a;
  std::string b;
};

// Paths of objects in a file of many begin with the object's number.
std::string rootPath(MessageSource& source) {
  if (!source.isOneOfMany()) return {};
  return (source.form() == Form::kObjects ? "object " : "message ") + std::to_string(source.number());
}

void diff(const Options& options, Session& session) {
  if (options.a == "-" && options.b == "-")
    throw Failure(kUsageError, "diff", "only one of the two can be standard input");
  MessageSource a(options.a, std::nullopt, session);
  MessageSource b(options.b, std::nullopt, session);
  Output output("-");
  MessageDiff difference(
      [&output](const std::string& path, const std::string& aText, const std::string& bText) {
        output.write(visible(path) + ": " + aText + " != " + bText + '\n');
      });
  bool sameCount = true;
  writeAsFarAsItGoes(output, session, [&] {
    while (sameCount) {
      const MessagePtr aMessage = a.next();
      const MessagePtr bMessage = b.next();
      sameCount = (aMessage == nullptr) == (bMessage == nullptr);
      if (!sameCount) {
        const MessageSource& longer = aMessage != nullptr ? a : b;
        output.write(visible((aMessage != nullptr ? b : a).name()) + " ends before object " +
                     std::to_string(longer.number()) + " of " + visible(longer.name()) + '\n');
      }
      if (aMessage == nullptr || bMessage == nullptr) break;
      difference.compare(rootPath(a).empty() ? rootPath(b) : rootPath(a), *aMessage, *bMessage);
      if (isStream(a.form())) session.console.progress("objects compared", a.number());
    }
  });
  if (!sameCount || difference.count() != 0) session.status = kDifferent;
}

}  // namespace

void addDiff(CLI::App& app, Session& session) {
  CLI::App& command = addCommand(app, session, "diff", "Compare two messages field by field", kExamples);
  const auto options = std::make_shared<Options>();
  command.add_option("A", options->a, "Message or file of objects in any form; - is standard input")
      ->required();
  command.add_option("B", options->b, "What it is compared with")->required();
  command.callback([options, &session] { diff(*options, session); });
}

}  // namespace zqxml::tool
