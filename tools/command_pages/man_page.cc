#include "tools/command_pages/man_page.h"

#include <algorithm>
#include <string_view>

#include "tools/command_pages/command_tree.h"

namespace zqxml::command_pages {
namespace {

/// Text that roff prints as it stands: no request, no escape, hyphens that can be copied as such.
std::string plain(std::string_view text) {
  std::string out;
  bool lineStart = true;
  for (const char c : text) {
    if (lineStart && (c == '.' || c == '\'')) out += "\\&";
    lineStart = c == '\n';
    if (c == '\\') {
      out += "\\(rs";
    } else if (c == '-') {
      out += "\\-";
    } else if (c == '|') {
      out += "|\\:";  // a line may end here
    } else if (c == '\'') {
      out += "\\(aq";
    } else if (c == '`') {
      out += "\\(ga";
    } else if (c == '^') {
      out += "\\(ha";
    } else if (c == '~') {
      out += "\\(ti";
    } else {
      out += c;
    }
  }
  return out;
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return text;
}

class Page {
 public:
  explicit Page(const CLI::App& app, const std::string& version) : program_(app.get_name()) {
    out_ = ".\\\" Made by '" + program_ + " --generate man'.\n.TH " + upper(program_) + " 1 \"\" \"" +
           program_ + ' ' + version + "\" \"User Commands\"\n.nh\n.ad l\n";
    section("NAME");
    out_ += program_ + " \\- " + plain(firstLower(app.get_description())) + '\n';
    section("SYNOPSIS");
    usage(app);
    for (const CLI::App* command : commandsBelow(app))
      for (const CLI::App* one : commandsOf(*command)) usage(*one);
    section("DESCRIPTION");
    asItStands(app.get_footer());
    section("OPTIONS");
    options(app);
    section("COMMANDS");
    for (const CLI::App* command : commandsOf(app))
      if (command != &app) this->command(*command);
  }
  std::string take() { return std::move(out_); }

 private:
  void section(const std::string& title) { out_ += ".SH " + title + '\n'; }

  static std::string firstLower(std::string text) {
    if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') text[0] = static_cast<char>(text[0] - 'A' + 'a');
    if (text.ends_with('.')) text.pop_back();
    return text;
  }

  void usage(const CLI::App& command) {
    const std::string words = wordsOf(command);
    out_ += ".B " + plain(program_ + (words.empty() ? "" : " " + words)) + '\n';
    out_ += "[\\fIOPTION\\fR]...";
    if (!commandsBelow(command).empty()) out_ += " \\fICOMMAND\\fR";
    for (const CLI::Option* positional : positionalsOf(command)) {
      const std::string name = "\\fI" + plain(positional->get_name(true)) + "\\fR";
      const std::string dots = positional->get_items_expected_max() > 1 ? "..." : "";
      out_ += positional->get_required() ? ' ' + name + dots : " [" + name + ']' + dots;
    }
    out_ += "\n.br\n";
  }

  void command(const CLI::App& command) {
    out_ += ".SS \"" + plain(program_ + ' ' + wordsOf(command)) + "\"\n";
    out_ += plain(command.get_description()) + ".\n";
    options(command);
    asItStands(command.get_footer());
  }

  void options(const CLI::App& command) {
    for (const CLI::Option* option : positionalsOf(command)) {
      out_ += ".TP\n.I " + plain(option->get_name(true)) + '\n';
      out_ += plain(option->get_description()) + '\n';
    }
    for (const CLI::Option* option : optionsOf(command)) {
      out_ += ".TP\n";
      std::string names;
      for (const std::string& spelling : spellingsOf(*option))
        names += (names.empty() ? "\\fB" : ", \\fB") + plain(spelling) + "\\fR";
      out_ += names;
      if (takesValue(*option)) out_ += " \\fI" + plain(valueNameOf(*option)) + "\\fR";
      out_ += '\n' + plain(option->get_description()) + '\n';
    }
  }

  /// A footer: lines and columns are the author's.
  void asItStands(const std::string& text) {
    if (text.empty()) return;
    out_ += ".PP\n.nf\n" + plain(text) + "\n.fi\n";
  }

  const std::string program_;
  std::string out_;
};

}  // namespace

std::string manPage(const CLI::App& app, const std::string& version) {
  return Page(app, version).take();
}

}  // namespace zqxml::command_pages
