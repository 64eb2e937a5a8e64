#include <memory>
#include <optional>
#include <string>

#include "tools/zqmsg/attempts.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/explanation.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/object_stream.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples =
    R"(Every byte is accounted for: its offset, the bytes in hexadecimal, the field they belong to, what
they are and the value they hold. Unknown fields and damaged input are shown as far as they go; the
exit status is then 1.

Examples:
  zqmsg inspect alert.bin
  zqmsg convert alert.xml --to binary | zqmsg inspect -
  zqmsg inspect all.objects)";

struct Options {
  std::string file = "-";
  std::string from;
};

Failure undecodable(const std::string& where, const std::string& what) {
  return Failure(kFailed, where, what).advise("the lines with !! tell why");
}

// Binary messages of unknown classes are looked at too: that is what one inspects.
Form formToInspect(ByteSource& source, const std::string& from) {
  if (!from.empty()) return formOf(source, formByName(from));
  const std::string_view head = source.peek(kDetectionBytes);
  if (head.empty()) throw Failure(kFailed, source.name(), "is empty");
  const Form form = detectForm(head).value_or(Form::kBinary);
  if (form == Form::kXml || form == Form::kXml16) {
    throw Failure(kFailed, source.name(), "is XML, and only binary messages are inspected")
        .advise("'zqmsg convert FILE --to binary | zqmsg inspect -' shows its binary form");
  }
  return form;
}

void inspectObjects(ByteSource& source, Explanation& explanation) {
  if (recordFormatOf(source.peek(kFormatBytes)) == RecordFormat::kB)
    explanation.versionField(kObjectsVersion);
  ObjectReader objects(source);
  std::string record;
  std::uint64_t failed = 0;
  for (;;) {
    bool more = true;
    try {
      more = objects.next(record);
    } catch (const Failure&) {
      // What there is of a record that was cut off.
      if (!record.empty()) explanation.record(objects, record);
      throw;
    }
    if (!more) break;
    if (!explanation.record(objects, record)) ++failed;
  }
  if (failed != 0) {
    throw undecodable(source.name(), std::to_string(failed) + " of " + std::to_string(objects.number()) +
                                         " objects cannot be read");
  }
}

void inspect(const Options& options, Session& session) {
  ByteSource source(options.file);
  const Form form = formToInspect(source, options.from);
  Output output("-");
  Explanation explanation(output);
  writeAsFarAsItGoes(output, session, [&] {
    if (form == Form::kObjects) {
      inspectObjects(source, explanation);
    } else if (!explanation.message(readWhole(source), 0)) {
      throw undecodable(source.name(), "cannot be read as a binary message");
    }
  });
}

}  // namespace

void addInspect(CLI::App& app, Session& session) {
  CLI::App& command =
      addCommand(app, session, "inspect", "Explain every byte of a binary message", kExamples);
  const auto options = std::make_shared<Options>();
  command.add_option("FILE", options->file, "Binary message or file of objects; - or none is standard input");
  command.add_option("--from", options->from, "Form of the input; found out when not given")
      ->check(CLI::IsMember(std::vector<std::string>{"binary", "objects"}));
  command.callback([options, &session] { inspect(*options, session); });
}

}  // namespace zqxml::tool
