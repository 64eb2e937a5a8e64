#include "tools/command_pages/command_tree.h"

namespace zqxml::command_pages {
namespace {

bool isHidden(const std::string& group) {
  return group.empty();
}

}  // namespace

std::vector<const CLI::App*> commandsBelow(const CLI::App& command) {
  std::vector<const CLI::App*> below;
  for (const CLI::App* app : command.get_subcommands([](const CLI::App*) { return true; }))
    if (!app->get_name().empty() && !isHidden(app->get_group())) below.push_back(app);
  return below;
}

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
  std::vector<const CLI::App*> commands{&app};
  for (const CLI::App* command : commandsBelow(app))
    for (const CLI::App* one : commandsOf(*command)) commands.push_back(one);
  return commands;
}

std::string wordsOf(const CLI::App& command) {
  const CLI::App* parent = command.get_parent();
  if (parent == nullptr) return {};
  const std::string above = wordsOf(*parent);
  return above.empty() ? command.get_name() : above + ' ' + command.get_name();
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command) {
  return command.get_options(
      [](const CLI::Option* option) { return option->nonpositional() && !isHidden(option->get_group()); });
}

std::vector<const CLI::Option*> positionalsOf(const CLI::App& command) {
  return command.get_options(
      [](const CLI::Option* option) { return option->get_positional() && !isHidden(option->get_group()); });
}

std::vector<std::string> spellingsOf(const CLI::Option& option) {
  std::vector<std::string> spellings;
  for (const std::string& name : option.get_snames()) spellings.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) spellings.push_back("--" + name);
  return spellings;
}

bool takesValue(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

// CLI::IsMember describes itself in braces at the end of the type: TEXT:{a,b}.
std::vector<std::string> choicesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t open = type.find('{');
  const std::size_t close = type.rfind('}');
  std::vector<std::string> choices;
  if (open == std::string::npos || close == std::string::npos) return choices;
  std::string_view rest = std::string_view(type).substr(open + 1, close - open - 1);
  while (!rest.empty()) {
    const std::size_t comma = rest.find(',');
    choices.emplace_back(rest.substr(0, comma));
    rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 1);
  }
  return choices;
}

std::string valueNameOf(const CLI::Option& option) {
  std::string name;
  for (const std::string& choice : choicesOf(option)) name += (name.empty() ? "" : "|") + choice;
  if (!name.empty()) return name;
  const std::string type = option.get_type_name();
  return type.substr(0, type.find(':'));
}

}  // namespace zqxml::command_pages
