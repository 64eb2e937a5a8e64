// The commands of a program as its pages tell them: what CLI11 knows, taken apart.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml::command_pages {

/// The commands of `app`, itself first, each before those below it, without hidden ones.
std::vector<const CLI::App*> commandsOf(const CLI::App& app);

/// The words that a command is called by behind the program's: "xpath list", "" for the program itself.
std::string wordsOf(const CLI::App& command);

/// The commands right below one, without hidden ones.
std::vector<const CLI::App*> commandsBelow(const CLI::App& command);

/// The options of a command that begin with a hyphen, or the others, without hidden ones.
std::vector<const CLI::Option*> optionsOf(const CLI::App& command);
std::vector<const CLI::Option*> positionalsOf(const CLI::App& command);

/// The spellings of an option: "-o", "--output".
std::vector<std::string> spellingsOf(const CLI::Option& option);
/// Whether a value follows it.
bool takesValue(const CLI::Option& option);
/// The values that it may have, where only certain ones are allowed (CLI::IsMember).
std::vector<std::string> choicesOf(const CLI::Option& option);
/// What a help text calls its value: "xml|binary", "FILE", "TEXT".
std::string valueNameOf(const CLI::Option& option);

}  // namespace zqxml::command_pages
