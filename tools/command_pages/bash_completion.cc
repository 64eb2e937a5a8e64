#include "tools/command_pages/bash_completion.h"

#include <string_view>
#include <vector>

#include "tools/command_pages/command_tree.h"

namespace zqxml::command_pages {
namespace {

// @P@ is the program. Bash takes "--to=xml" for three words; the hyphens of a word before it are in front of
// "=".
constexpr std::string_view kHead = R"sh(# bash completion of @P@; made by '@P@ --generate bash-completion'
_@P@() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} command= kind= words= i
  COMPREPLY=()
  if [[ $cur == = ]]; then
    cur=
  elif [[ $prev == = && COMP_CWORD -gt 2 ]]; then
    prev=${COMP_WORDS[COMP_CWORD-2]}
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    case "$command ${COMP_WORDS[i]}" in
)sh";

constexpr std::string_view kTail = R"sh(  esac
  case "$kind" in
    classes | subsystems) words=$("$1" --generate "$kind" 2>/dev/null) ;;
    files)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      return
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
}
complete -F _@P@ @P@
)sh";

std::string replaced(std::string_view text, const std::string& program) {
  std::string out(text);
  for (std::size_t at = 0; (at = out.find("@P@", at)) != std::string::npos; at += program.size())
    out.replace(at, 3, program);
  return out;
}

std::string joined(const std::vector<std::string>& words, std::string_view between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : std::string(between)) + word;
  return text;
}

/// The patterns of a case: the command, then one of the words.
std::string patterns(const std::string& command, const std::vector<std::string>& words) {
  std::vector<std::string> all;
  all.reserve(words.size());
  for (const std::string& word : words) all.push_back('"' + command + ' ' + word + '"');
  return joined(all, " | ");
}

std::string kindOf(const CLI::Option& positional) {
  const std::string name = positional.get_name(true);
  return name == "CLASS" ? "classes" : name == "SUBSYSTEM" ? "subsystems" : "files";
}

/// The values of options: what was typed before is the command and the option.
void appendValues(const CLI::App& command, std::string& out) {
  for (const CLI::Option* option : optionsOf(command)) {
    if (!takesValue(*option)) continue;
    const std::vector<std::string> choices = choicesOf(*option);
    out += "    " + patterns(wordsOf(command), spellingsOf(*option)) + ") ";
    out += choices.empty() ? "kind=files" : "words=\"" + joined(choices, " ") + '"';
    out += " ;;\n";
  }
}

/// Everything else: options behind a hyphen, else commands or positionals.
void appendWords(const CLI::App& command, std::string& out) {
  std::vector<std::string> options;
  for (const CLI::Option* option : optionsOf(command))
    for (const std::string& spelling : spellingsOf(*option)) options.push_back(spelling);
  std::vector<std::string> below;
  for (const CLI::App* app : commandsBelow(command)) below.push_back(app->get_name());
  const std::vector<const CLI::Option*> positionals = positionalsOf(command);
  const std::string words = wordsOf(command);
  out += "    \"" + words + " -\"*) words=\"" + joined(options, " ") + "\" ;;\n";
  out += "    \"" + words + " \"*) ";
  if (!below.empty()) {
    out += "words=\"" + joined(below, " ") + '"';
  } else {
    out += "kind=" + (positionals.empty() ? std::string("files") : kindOf(*positionals.front()));
  }
  out += " ;;\n";
}

}  // namespace

std::string bashCompletion(const CLI::App& app) {
  const std::string program = app.get_name();
  std::string out = replaced(kHead, program);
  // Longer commands first: "xpath list" before "xpath".
  std::vector<const CLI::App*> commands = commandsOf(app);
  for (const CLI::App* command : commands)
    if (command != &app)
      out += "      " + patterns(wordsOf(*command->get_parent()), {command->get_name()}) + ") command=\"" +
             wordsOf(*command) + "\" ;;\n";
  out += "    esac\n  done\n  case \"$command $prev\" in\n";
  for (const CLI::App* command : commands) appendValues(*command, out);
  out += "  esac\n  [[ -n $kind$words ]] || case \"$command $cur\" in\n";
  for (auto command = commands.rbegin(); command != commands.rend(); ++command) appendWords(**command, out);
  return out + replaced(kTail, program);
}

}  // namespace zqxml::command_pages
