// The commands of zqmsg: each function adds one to the command line, in a file of its own.
#pragma once

#include <CLI/CLI.hpp>

#include "tools/zqmsg/session.h"

namespace zqxml::tool {

// Each keeps `session` for the run; the command itself runs inside CLI::App::parse, and throws Failure.
void addCatalogue(CLI::App& app, Session& session);
void addDescribe(CLI::App& app, Session& session);
void addDumpCatalogue(CLI::App& app, Session& session);
void addConvert(CLI::App& app, Session& session);
void addObjects(CLI::App& app, Session& session);
void addInspect(CLI::App& app, Session& session);
void addDiff(CLI::App& app, Session& session);
void addMask(CLI::App& app, Session& session);
void addMerge(CLI::App& app, Session& session);
void addSample(CLI::App& app, Session& session);
void addSummary(CLI::App& app, Session& session);
void addXpath(CLI::App& app, Session& session);

/// A command with what all of them have: --verbose, and examples below its help.
CLI::App& addCommand(CLI::App& app, Session& session, const std::string& name, const std::string& summary,
                     const std::string& examples);

}  // namespace zqxml::tool
