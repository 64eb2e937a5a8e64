#include "findings.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace zqxml::zqcatc {

namespace {

using Json = nlohmann::ordered_json;

void printText(std::ostream& out, const Finding& finding) {
  out << shown(finding.position.file);
  if (finding.position.line != 0) out << ':' << finding.position.line << ':' << finding.position.column;
  out << ": " << finding.severity << ": " << shown(finding.text) << " [" << finding.code << "]\n";
}

void printJson(std::ostream& out, const Finding& finding) {
  Json line;
  line["file"] = std::string(finding.position.file);
  line["line"] = finding.position.line;
  line["column"] = finding.position.column;
  line["severity"] = !finding.isChange ? finding.severity : finding.breaks.empty() ? "note" : "error";
  line["code"] = finding.code;
  line["message"] = finding.text;
  if (finding.isChange) line["breaks"] = finding.breaks;
  out << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace

void printFindings(std::ostream& out, const std::vector<Finding>& findings, ErrorFormat format) {
  for (const Finding& finding : findings)
    format == ErrorFormat::kJson ? printJson(out, finding) : printText(out, finding);
}

void printErrors(std::ostream& out, const Diagnostics& diagnostics, ErrorFormat format) {
  if (format == ErrorFormat::kText) return diagnostics.print(out);
  std::size_t printed = 0;
  diagnostics.forEach([&](const Position& position, std::string_view code, const std::string& text) {
    printJson(out, {position, "error", std::string(code), text, {}, false});
    ++printed;
  });
  if (diagnostics.count() > printed)
    printFailure(out, "more", cat("and ", diagnostics.count() - printed, " more errors"), format);
}

void printFailure(std::ostream& out, std::string_view code, std::string_view text, ErrorFormat format) {
  if (format == ErrorFormat::kText)
    out << "zqcatc: " << shown(text) << '\n';
  else
    printJson(out, {{}, "error", std::string(code), std::string(text), {}, false});
}

}  // namespace zqxml::zqcatc
