#include "tools/zqmsg/generation.h"

#include <zqxml/catalogue/records.h>

#include "tools/command_pages/bash_completion.h"
#include "tools/command_pages/man_page.h"
#include "tools/zqmsg/failure.h"

namespace zqxml::tool {
namespace {

template <class Write>
std::string forEachSubsystem(Write write) {
  std::string lines;
  for (const SubsystemDef& row : gSubsystemTable)
    if (row.name != nullptr) write(lines, row);
  return lines;
}

void appendClasses(std::string& lines, const SubsystemDef& row) {
  for (int i = 0; i < row.recordCount; ++i)
    if (row.classDefs[i].getName() != nullptr)
      lines += std::string(row.name) + '_' + row.classDefs[i].getName() + '\n';
}

}  // namespace

std::string generated(const CLI::App& app, const std::string& what) {
  if (what == "man") return command_pages::manPage(app, ZQMSG_VERSION);
  if (what == "bash-completion") return command_pages::bashCompletion(app);
  if (what == "classes") return forEachSubsystem(appendClasses);
  if (what == "subsystems")
    return forEachSubsystem(
        [](std::string& lines, const SubsystemDef& row) { lines += std::string(row.name) + '\n'; });
  throw Failure(kUsageError, "--generate", "makes man, bash-completion, classes or subsystems, not " + what);
}

}  // namespace zqxml::tool
