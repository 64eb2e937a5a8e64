#include "tools/zqmsg/catalogue_json.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples = R"(Example:
  zqmsg dump-catalogue > catalogue.json)";

}  // namespace

void addDumpCatalogue(CLI::App& app, Session& session) {
  addCommand(app, session, "dump-catalogue", "Print the whole catalogue as one JSON document", kExamples)
      .callback([] {
        Output output("-");
        writeCatalogueJson([&output](std::string_view piece) { output.write(piece); });
        output.commit();
      });
}

}  // namespace zqxml::tool
