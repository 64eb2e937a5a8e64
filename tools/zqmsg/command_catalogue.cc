#include <zqxml/catalogue/class_ref.h>
#include <zqxml/platform/format.h>

#include <memory>
#include <string>

#include "tools/zqmsg/class_name.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples = R"(Examples:
  zqmsg catalogue                 the subsystems
  zqmsg catalogue ZQGui           the classes and enumerations of one, by name
  zqmsg catalogue 1               the same, by slot)";

void listSubsystems(Output& output) {
  output.write("slot  name                     records  old\n");
  for (int slot = 0; slot < kSubsystemCount; ++slot) {
    const SubsystemDef& row = gSubsystemTable[slot];
    if (row.name == nullptr) continue;
    output.write(
        formatText("%4d  %-24s  %6d  %s\n", slot, row.name, row.recordCount, row.oldWay ? "old" : "-"));
  }
}

void listClasses(Output& output, short slot) {
  const SubsystemDef& row = gSubsystemTable[slot];
  output.write("index  tag id      fields  elements  kind     name\n");
  for (int index = 0; index < row.recordCount; ++index) {
    const _ClassDef& record = row.classDefs[index];
    if (record.getName() == nullptr) continue;
    output.write(formatText("%5d  0x%08x  %6d  %8d  %-7s  %s_%s\n", index,
                            makeTagId(slot, record.getClassId()), record.getNumberOfFields(),
                            record.getNumberOfElements(), record.isEnumeration() ? "enum" : "class", row.name,
                            record.getName()));
  }
}

}  // namespace

void addCatalogue(CLI::App& app, Session& session) {
  CLI::App& command =
      addCommand(app, session, "catalogue", "List the subsystems, or the classes of one", kExamples);
  const auto subsystem = std::make_shared<std::string>();
  command.add_option("SUBSYSTEM", *subsystem, "Name or slot of a subsystem");
  command.callback([subsystem] {
    Output output("-");
    if (subsystem->empty()) {
      listSubsystems(output);
    } else {
      listClasses(output, findSubsystem(*subsystem));
    }
    output.commit();
  });
}

}  // namespace zqxml::tool
