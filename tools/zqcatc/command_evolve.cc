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

constexpr std::string_view kDiffHelp =
    R"(zqcatc diff - what changed from one version of a catalogue to another, and what each change breaks

Usage: zqcatc diff [OPTIONS] OLD NEW

OLD and NEW are each a folder of schema files, one schema file, or a file that 'zqmsg dump-catalogue' printed;
'-' is such a file on standard input. Each change is a line "place: class: what changed: why [code]". The class is

  safe              what both versions know still gets across, and compiled programs work on
  breaks xml        values do not get across in XML, from the old version to the new or the other way round
  breaks binary     likewise in the binary form
  breaks callers    programs built with the old typed classes go wrong, or do not compile with the new ones

  --fail-on LIST         the changes that give exit status 10: any of xml, binary, callers and safe, with commas
                         between them (default: xml,binary,callers)
  --with SCHEMA          schemas that OLD and NEW, where they are schemas, refer to; may be given again
  --error-format FORMAT  text (default), or json: one object per line, with file, line, column, severity ("error"
                         for what breaks anything, else "note"), code, message and breaks
  -h, --help             print this text

Examples:
  zqcatc diff released/schema schema
  zqmsg dump-catalogue > old.json; zqcatc diff --fail-on binary old.json schema

Exit status: 0 no change that counts, 10 a change that counts, 1 errors in a schema or a dump, 2 wrong usage,
3 a file cannot be read or written.
)";

constexpr std::string_view kLintHelp =
    R"(zqcatc lint - what a catalogue may hold, and its owner will hardly want

Usage: zqcatc lint [OPTIONS] SCHEMA...

A SCHEMA is a schema file or a folder of them; or give one file that 'zqmsg dump-catalogue' printed, '-' for
standard input. Each finding is a line "file:line:column: warning: what, and what to do [code]". The codes:

  sensitive-in-clear           a sensitive mark on a list, map or object, which masked texts show in clear
  password-without-annotation  a password that no form carries rightly
  lost-in-binary               an unsigned 64-bit value, which the binary form loses
  map-in-sub-object            a map whose pairs are lost in XML with attributes
  closes-sub-object            a list or map whose name closes the sub-object that it is in, in XML
  names-one-typo-apart         two fields of a class that one typing error turns into each other

  --allow LIST           codes that are passed over, with commas between them
  --error-format FORMAT  text (default), or json: one object per line, with file, line, column, severity
                         ("warning"), code and message
  -h, --help             print this text

Examples:
  zqcatc lint schema
  zqcatc lint --allow names-one-typo-apart,map-in-sub-object --error-format json schema

Exit status: 0 nothing found, 10 something found, 1 errors in a schema or a dump, 2 wrong usage, 3 a file cannot
be read or written.
)";

struct EvolveOptions {
  ErrorFormat format = ErrorFormat::kText;
  std::vector<std::string> list;  ///< of --fail-on or --allow
  std::vector<std::string> with;
  std::vector<std::string> inputs;
};

/// What one of the two commands takes.
struct CommandForm {
  std::string_view name;
  std::string_view help;
  std::string_view listOption;
  std::vector<std::string_view> listWords;
  bool takesWith;
};

/// An exit status, or -1 to go on.
int readList(std::string_view text, const CommandForm& form, std::vector<std::string>& list) {
  std::istringstream words{std::string(text)};
  list.clear();
  for (std::string word; std::getline(words, word, ',');) {
    if (std::find(form.listWords.begin(), form.listWords.end(), word) == form.listWords.end())
      return usage(cat(form.listOption, " does not know '", word, "'"));
    list.push_back(word);
  }
  return list.empty() ? usage(cat(form.listOption, " needs a list")) : -1;
}

/// An exit status, or -1 to go on.
int parse(std::span<char*> arguments, const CommandForm& form, EvolveOptions& options) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "-h" || argument == "--help") return print(form.help);
    const bool with = form.takesWith && argument == "--with";
    if (argument == form.listOption || argument == "--error-format" || with) {
      if (++i == arguments.size()) return usage(cat(argument, " needs a value"));
      const std::string_view value = arguments[i];
      if (with) {
        options.with.emplace_back(value);
      } else if (argument == "--error-format") {
        if (!readErrorFormat(value, options.format)) return usage("--error-format is text or json");
      } else if (const int status = readList(value, form, options.list); status >= 0) {
        return status;
      }
    } else if (argument.starts_with("-") && argument != "-") {
      return usage(cat("unknown option '", argument, "' of ", form.name));
    } else {
      options.inputs.emplace_back(argument);
    }
  }
  return -1;
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

int runDiff(std::span<char*> arguments) {
  EvolveOptions options;
  options.list = {"xml", "binary", "callers"};
  const CommandForm form{"diff", kDiffHelp, "--fail-on", {"xml", "binary", "callers", "safe"}, true};
  int status = parse(arguments, form, options);
  if (status >= 0) return status;
  if (options.inputs.size() != 2) return usage("diff takes OLD and NEW");
  if (options.inputs[0] == "-" && options.inputs[1] == "-") return usage("standard input is one file only");
  Loaded before, after;
  if (status = load({options.inputs[0]}, options, before); status >= 0) return status;
  if (status = load({options.inputs[1]}, options, after); status >= 0) return status;
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

int runLint(std::span<char*> arguments) {
  EvolveOptions options;
  const auto rules = lintRules();
  const CommandForm form{"lint", kLintHelp, "--allow", {rules.begin(), rules.end()}, false};
  int status = parse(arguments, form, options);
  if (status >= 0) return status;
  if (options.inputs.empty()) return usage("lint takes a schema");
  Loaded loaded;
  if (status = load(options.inputs, options, loaded); status >= 0) return status;
  std::vector<Finding> findings = lintCatalogue(loaded.snapshot);
  std::erase_if(findings, [&](const Finding& finding) {
    return std::find(options.list.begin(), options.list.end(), finding.code) != options.list.end();
  });
  return report(findings, !findings.empty(), options.format);
}

}  // namespace zqxml::zqcatc
