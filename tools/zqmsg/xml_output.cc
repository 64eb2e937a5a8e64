#include "tools/zqmsg/xml_output.h"

#include <unistd.h>

#include "tools/zqmsg/codec.h"
#include "tools/zqmsg/output.h"
#include "tools/zqmsg/session.h"

namespace zqxml::tool {

void addXmlOutput(CLI::App& command, XmlOutput& output) {
  command.add_option("-o,--output", output.file, "File to write; - or none is standard output");
  command.add_flag("--readable", output.readable, "Indented, names, dates and times as text");
}

void writeXml(XNMessageBase& message, const XmlOutput& output, const std::string& where, Session& session) {
  WriteOptions options;
  options.readable = output.readable;
  const std::string text = encode(message, options, where, session.log);
  for (const std::string& line : session.log.take()) session.console.warn(where, line);
  Output target(output.file);
  target.write(text);
  if (output.file == "-" && isatty(STDOUT_FILENO) == 1 && !text.ends_with('\n')) target.write("\n");
  target.commit();
}

}  // namespace zqxml::tool
