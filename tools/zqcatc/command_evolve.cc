// zqcatc diff and zqcatc lint: both read catalogues, print findings, and say by their exit status whether
// there are any that count.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "catalogue_diff.h"
#include "command_line.h"
#include "compiler.h"
#include "dump_reader.h"
#include "lint.h"
#include "source_files.h"

namespace zqxml::zqcatc {

namespace {

constexpr const char* kDiffFooter =
    R"(OLD and NEW are each a folder of schema files, one schema file, or a file that 'zqmsg dump-catalogue'
printed; '-' is such a file on standard input. Each change is a line "place: class: what changed: why
[code]". The class is

  safe              what both versions know still gets across, and compiled programs work on
  breaks xml        values do not get across in XML, from the old version to the new or the other way
                    round
  breaks binary     likewise in the binary form
  breaks callers    programs built with the old typed classes go wrong, or do not compile with the new
                    ones

Examples:
  zqcatc diff released/schema schema
  zqmsg dump-catalogue > old.json; zqcatc diff --fail-on binary old.json schema

Exit status: 0 no change that counts, 10 a change that counts, 1 errors in a schema or a dump, 2 wrong
usage, 3 a file cannot be read or written.)";

constexpr const char* kLintFooter =
    R"(A SCHEMA is a schema file or a folder of them; or give one file that 'zqmsg dump-catalogue' printed, '-'
for standard input. Each finding is a line "file:line:column: warning: what, and what to do [code]". The
codes:

  sensitive-in-clear           a sensitive mark on a list, map or object, which masked texts show in clear
  password-without-annotation  a password that no form carries rightly
  lost-in-binary               an unsigned 64-bit value, which the binary form loses
  map-in-sub-object            a map whose pairs are lost in XML with attributes
  closes-sub-object            a list or map whose name closes the sub-object that it is in, in XML
  names-one-typo-apart         two fields of a class that one typing error turns into each other

Examples:
  zqcatc lint schema
  zqcatc lint --allow names-one-typo-apart,map-in-sub-object --error-format json schema

Exit status: 0 nothing found, 10 something found, 1 errors in a schema or a dump, 2 wrong usage, 3 a
file cannot be read or written.)";

std::vector<std::string> wordsIn(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; std::getline(stream, word, ',');) words.push_back(word);
  return words;
}

/// Adds an option whose value is some of these words, with commas between them.
template <class Words>
void addList(CLI::App& command, const std::string& option, const Words& known, std::vector<std::string>& list,
             const std::string& description) {
  const std::vector<std::string> words(known.begin(), known.end());
  std::string shown;
  for (const std::string& word : words) shown += (shown.empty() ? "{" : ",") + word;
  const CLI::Validator isList(
      [words, option](const std::string& text) {
        for (const std::string& word : wordsIn(text))
          if (std::find(words.begin(), words.end(), word) == words.end())
            return option + " does not know '" + word + "'";
        return std::string(wordsIn(text).empty() ? option + " needs a list" : "");
      },
      shown + '}');
  command
      .add_option_function<std::string>(
          option, [&list](const std::string& text) { list = wordsIn(text); }, description)
      ->check(isList)
      ->take_last();
}

/// A catalogue and the files that its positions refer to.
struct Loaded {
  std::vector<SchemaSource> sources;
  Snapshot snapshot;
};

bool looksLikeXml(std::string_view text) {
  if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  return begin != std::string_view::npos && text[begin] == '<';
}

/// An exit status, or -1 with the catalogue in `loaded`.
int load(const std::vector<std::string>& inputs, const EvolveOptions& options, Loaded& loaded) {
  std::string error;
  Diagnostics diagnostics;
  std::error_code ignored;
  if (inputs.size() == 1 && !std::filesystem::is_directory(inputs.front(), ignored)) {
    SchemaSource& source = loaded.sources.emplace_back(SchemaSource{inputs.front(), {}});
    if (!readSource(source, kMaxDumpBytes, true, error)) return fileError(error, options.format);
    if (!looksLikeXml(source.text)) {
      diagnostics.setCode("dump");
      std::optional<Snapshot> snapshot = readDump(source, diagnostics);
      if (snapshot.has_value()) loaded.snapshot = std::move(*snapshot);
    } else if (source.path == "-") {
      return fileError("standard input holds a schema, which is known by the name of its file; give the file",
                       options.format);
    } else {
      loaded.sources.clear();
    }
  }
  if (loaded.sources.empty()) {
    std::vector<std::string> schemas = options.with;
    schemas.insert(schemas.end(), inputs.begin(), inputs.end());
    if (!readSchemas(schemas, loaded.sources, error)) return fileError(error, options.format);
    SchemaParser parser;
    const Catalogue catalogue = compileCatalogue(loaded.sources, parser, diagnostics);
    if (!diagnostics.hasErrors()) loaded.snapshot = Snapshot(catalogue);
  }
  if (!diagnostics.hasErrors()) return -1;
  printErrors(std::cerr, diagnostics, options.format);
  return kSchemaErrors;
}

/// Prints all of it; an exit status that tells whether any of it counts.
int report(const std::vector<Finding>& findings, bool found, ErrorFormat format) {
  std::ostringstream lines;
  printFindings(lines, findings, format);
  const int status = print(lines.str());
  return status != kDone ? status : found ? kFound : kDone;
}

}  // namespace

CLI::App& defineDiff(CLI::App& app, EvolveOptions& options) {
  CLI::App& command = *app.add_subcommand(
      "diff", "what changed from one version of a catalogue to another, and what each change breaks");
  command.footer(kDiffFooter);
  options.list = {"xml", "binary", "callers"};
  const auto take = [&options](const std::string& input) { options.inputs.push_back(input); };
  command.add_option_function<std::string>("OLD", take, "the one version");
  command.add_option_function<std::string>("NEW", take, "the other");
  addList(command, "--fail-on", std::vector<std::string>{"xml", "binary", "callers", "safe"}, options.list,
          "the changes that give exit status 10, with commas between them (default: xml,binary,callers)");
  command
      .add_option("--with", options.with,
                  "schemas that OLD and NEW, where they are schemas, refer to; may be given again")
      ->type_name("SCHEMA")
      ->allow_extra_args(false);
  addErrorFormat(command, options.format,
                 "text (default), or json: one object per line, with file, line, column, severity (\"error\" "
                 "for what breaks anything, else \"note\"), code, message and breaks");
  return command;
}

CLI::App& defineLint(CLI::App& app, EvolveOptions& options) {
  CLI::App& command =
      *app.add_subcommand("lint", "what a catalogue may hold, and its owner will hardly want");
  command.footer(kLintFooter);
  command.add_option("SCHEMA", options.inputs, "the catalogue");
  addList(command, "--allow", lintRules(), options.list,
          "codes that are passed over, with commas between them");
  addErrorFormat(command, options.format,
                 "text (default), or json: one object per line, with file, line, column, severity "
                 "(\"warning\"), code and message");
  return command;
}

int runDiff(const EvolveOptions& options) {
  if (options.inputs.size() != 2) return usage("diff takes OLD and NEW", "diff");
  if (options.inputs[0] == "-" && options.inputs[1] == "-")
    return usage("standard input is one file only", "diff");
  Loaded before, after;
  if (const int status = load({options.inputs[0]}, options, before); status >= 0) return status;
  if (const int status = load({options.inputs[1]}, options, after); status >= 0) return status;
  const std::vector<Finding> changes = compareCatalogues(before.snapshot, after.snapshot);
  const auto isListed = [&](const std::string& what) {
    return std::find(options.list.begin(), options.list.end(), what) != options.list.end();
  };
  const bool found = std::any_of(changes.begin(), changes.end(), [&](const Finding& change) {
    return change.breaks.empty() ? isListed("safe")
                                 : std::any_of(change.breaks.begin(), change.breaks.end(), isListed);
  });
  return report(changes, found, options.format);
}

int runLint(const EvolveOptions& options) {
  if (options.inputs.empty()) return usage("lint takes a schema", "lint");
  Loaded loaded;
  if (const int status = load(options.inputs, options, loaded); status >= 0) return status;
  std::vector<Finding> findings = lintCatalogue(loaded.snapshot);
  std::erase_if(findings, [&](const Finding& finding) {
    return std::find(options.list.begin(), options.list.end(), finding.code) != options.list.end();
  });
  return report(findings, !findings.empty(), options.format);
}

}  // namespace zqxml::zqcatc
