#pragma once

#include <zqxml/message/xn_message_base.h>

#include <CLI/CLI.hpp>
#include <string>

namespace zqxml::tool {

struct Session;

/// Where and how a command writes the one message that it answers with.
struct XmlOutput {
  std::string file = "-";  ///< "-" is standard output
  bool readable = false;
};

/// The options of `output`, for the command line of a command.
void addXmlOutput(CLI::App& command, XmlOutput& output);

/// Writes the message as XML, with a line end on a terminal, and warns of what the library lost on the way.
/// `where` is what messages call it. Throws Failure.
void writeXml(XNMessageBase& message, const XmlOutput& output, const std::string& where, Session& session);

}  // namespace zqxml::tool
