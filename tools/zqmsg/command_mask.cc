#include <zqxml/logging/masked_xml.h>
#include <zqxml/platform/platform_info.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tools/zqmsg/attempts.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples =
    R"(Prints messages as XML with ######## for every sensitive value, one line each: text that may
go into a log. Passwords are printed in their usual form, encrypted if their type says so.

An object or line that cannot be masked is named on standard error, and the others are masked all
the same; the exit status is that of the first one. A file named with -o is then left as it was.

Examples:
  zqmsg mask job.bin
  zqmsg mask --token login.xml
  zqmsg mask --keywords 'phone=' ';' job.xml
  zqmsg mask --keywords 'phone=' ';' --any-text server.log -o shown.log)";

struct Options {
  std::string file = "-";
  std::string from;
  std::string output = "-";
  bool token = false;
  bool hasKeywords = false;
  std::pair<std::string, std::string> keywords;  ///< left and right
  bool anyText = false;
};

[[noreturn]] void misuse(const std::string& what) {
  throw Failure(kUsageError, "mask", what).advise("'zqmsg mask --help' tells more");
}

void checkOptions(const Options& options) {
  if (options.anyText && !options.hasKeywords) misuse("--any-text is for --keywords");
  if (options.anyText && options.token) misuse("--token is for messages, not for any text");
  if (options.hasKeywords && !options.from.empty()) misuse("--keywords is for text, and takes no --from");
  if (options.hasKeywords && (options.keywords.first.empty() || options.keywords.second.empty()))
    misuse("a keyword of --keywords is empty");
}

void warnOfTheSetting(Console& console) {
  constexpr const char* kKey = "nDoNotMaskSensitiveDataInXML";
  int notMasked = 0;
  if (ZQPlatformInfo().getNumber("EventManager", kKey, notMasked) && notMasked != 0)
    console.warn("mask", std::string("sensitive values are shown, because ") + kKey + " is set");
}

/// The line of a message; what it was read from counts where the token is to be hidden.
std::string maskedLine(const Options& options, XNMessageBase& message, const std::string& xml,
                       const std::string& where, Session& session) {
  const std::string text = options.token ? logXMLWithUsdkTokenMask(xml) : logXML("", &message);
  requirePasswords(where, session.log);
  if (!text.starts_with('<')) throw Failure(kFailed, where, text).explain(session.log.take());
  for (const std::string& line : session.log.take()) session.console.warn(where, line);
  return text + '\n';
}

void maskText(const Options& options, Output& output, Session& session) {
  ByteSource source(options.file);
  const std::string masked =
      logXmlWithKeywordMask(readWhole(source), options.keywords.first, options.keywords.second, false);
  if (options.anyText) return output.write(masked);
  const MessagePtr message = decode(Form::kXml, masked, source.name(), session.log);
  output.write(maskedLine(options, *message, masked, source.name(), session));
}

/// False when one of the messages could not be masked, or the input ends before its last one does.
bool maskMessages(const Options& options, Output& output, Session& session) {
  Attempts attempts(session);
  attempts.attempt([&] {
    MessageSource source(options.file, formByName(options.from), session);
    source.onWait([&output] { output.show(); });
    const auto maskOne = [&] {
      const MessagePtr message = source.message();
      const bool isText = source.form() == Form::kXml;
      const std::string xml = !options.token ? std::string() : isText ? source.bytes() : message->AsString();
      output.write(maskedLine(options, *message, xml, source.where(), session));
      if (isStream(source.form())) session.console.progress("messages masked", source.number());
    };
    while (source.take()) attempts.attempt(maskOne);
  });
  session.console.endProgress();
  return attempts.failures() == 0;
}

void mask(const Options& options, Session& session) {
  checkOptions(options);
  Output output(options.output);
  bool whole = true;
  if (options.hasKeywords) {
    maskText(options, output, session);
  } else {
    whole = maskMessages(options, output, session);
  }
  if (!options.anyText) warnOfTheSetting(session.console);
  // A file that was there is not given up for a part.
  if (whole || !output.canRollBack()) output.commit();
}

}  // namespace

void addMask(CLI::App& app, Session& session) {
  CLI::App& command =
      addCommand(app, session, "mask", "Print messages without their sensitive values", kExamples);
  const auto options = std::make_shared<Options>();
  command.add_option("FILE", options->file,
                     "Message or file of objects in any form; - or none is standard input");
  command.add_option("--from", options->from, "Form of the input; found out when not given")
      ->check(CLI::IsMember(formNames(kReadableForms)));
  command.add_option("-o,--output", options->output, "File; - or none is standard output");
  command.add_flag("--token", options->token, "*** for the value of the first attribute USDKtoken too");
  CLI::Option* keywords = command.add_option("--keywords", options->keywords,
                                             "****** for all text between LEFT and the next RIGHT too");
  keywords->type_name("LEFT RIGHT");
  command.add_flag("--any-text", options->anyText,
                   "With --keywords: the input is no message, and masked no further");
  command.callback([options, keywords, &session] {
    options->hasKeywords = keywords->count() != 0;
    mask(*options, session);
  });
}

}  // namespace zqxml::tool
