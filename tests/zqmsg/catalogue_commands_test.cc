// catalogue, describe and dump-catalogue.
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/platform/format.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using CatalogueCommands = ZqmsgTest;

std::size_t lineCount(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_F(CatalogueCommands, CatalogueListsEverySubsystem) {
  const ProgramRun run = zqmsg({"catalogue"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(lineCount(run.out), 76u + 1);
  for (int slot = 0; slot < kSubsystemCount; ++slot) {
    const SubsystemDef& row = gSubsystemTable[slot];
    // The tests' catalogue has subsystems of its own.
    if (row.name == nullptr ||
        std::filesystem::exists(ZQXML_TEST_SCHEMA_DIR "/" + std::string(row.name) + ".xml"))
      continue;
    EXPECT_THAT(run.out, HasSubstr(formatText("\n%4d  %-24s ", slot, row.name)));
  }
  EXPECT_THAT(run.out, HasSubstr("\n   1  ZQGui                        285  old\n"));
  EXPECT_THAT(run.out, HasSubstr("\n  30  App                         4110  -\n"));
  EXPECT_THAT(run.out, HasSubstr("\n 106  Layout                         0  -\n"));
}

TEST_F(CatalogueCommands, CatalogueListsTheClassesOfASubsystem) {
  const ProgramRun run = zqmsg({"catalogue", "ZQGui"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("\n  203  0x01000020       7        16  class    ZQGui_SaveAlert\n"));
  EXPECT_THAT(run.out, HasSubstr("\n  210  0x01bdecb0       7         0  enum     ZQGui_ReportingOptions\n"));
}

TEST_F(CatalogueCommands, ASubsystemIsFoundByItsSlotToo) {
  EXPECT_EQ(zqmsg({"catalogue", "1"}).out, zqmsg({"catalogue", "ZQGui"}).out);
}

TEST_F(CatalogueCommands, ASubsystemWithoutClassesListsNone) {
  const ProgramRun run = zqmsg({"catalogue", "Layout"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(lineCount(run.out), 1u);
}

TEST_F(CatalogueCommands, UnknownSubsystemIsRefusedWithTheNearest) {
  const ProgramRun run = zqmsg({"catalogue", "ZQGiu"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "zqmsg: ZQGiu: is no subsystem\n  did you mean 'ZQGui'? 'zqmsg catalogue' lists them\n");
  EXPECT_THAT(run.out, IsEmpty());
  for (const char* name : {"0", "207", "-1", "99999999999", "Nothing_like_it", "1x"})
    EXPECT_THAT(zqmsg({"catalogue", "--", name}), Exits(1)) << name;
}

TEST_F(CatalogueCommands, DescribePrintsTheSchemaText) {
  std::string expected;
  ASSERT_TRUE(catalogue::schemaText(expected, 1, 203, true, true));
  const ProgramRun run = zqmsg({"describe", "ZQGui_SaveAlert"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, expected);
  EXPECT_THAT(run.out, HasSubstr("alertLocation"));
}

TEST_F(CatalogueCommands, DescribeTakesATagId) {
  const std::string expected = zqmsg({"describe", "ZQGui_SaveAlert"}).out;
  EXPECT_EQ(zqmsg({"describe", "0x01000020"}).out, expected);
  EXPECT_EQ(zqmsg({"describe", "0X1000020"}).out, expected);
}

TEST_F(CatalogueCommands, DescribeTakesAnEnumeration) {
  const ProgramRun run = zqmsg({"describe", "ZQGui_ReportingOptions"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("CONTAINS_FAILED_JOBS"));
}

TEST_F(CatalogueCommands, DescribeListsFieldsWithoutAHashToo) {
  EXPECT_THAT(zqmsg({"describe", "App_OracleSubclientProp"}).out, HasSubstr("archiveContent"));
}

TEST_F(CatalogueCommands, DescribeTellsAnnotationsWhenAskedFor) {
  EXPECT_THAT(zqmsg({"describe", "App_ScheduleReq"}).out, Not(HasSubstr("Annotation_")));
  const ProgramRun run = zqmsg({"describe", "--annotations", "App_ScheduleReq"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out,
              HasSubstr("scheduleType                  \t<Annotation_CommandParam name=\"st\"/>\n"
                        "scheduleType                  \t<Annotation_Text text=\"Schedule Type\"/>\n"));
  EXPECT_THAT(run.out, HasSubstr("\t<Annotation_XDate type=\"DATE\"/>\n"));
  EXPECT_THAT(run.out, HasSubstr("startTime                     \t<Annotation_ZQTime/>\n"));
}

TEST_F(CatalogueCommands, DescribeTellsTheAnnotationOfTheClassItself) {
  EXPECT_THAT(zqmsg({"describe", "--annotations", "ZQGui_GetAlertCriteriaForServiceOfflineReq"}).out,
              HasSubstr("\t<Annotation_StoredProcedure name=\"ZqGetAlertCriteriaForServiceOffline\"/>\n"));
}

TEST_F(CatalogueCommands, UnknownClassIsRefusedWithTheNearest) {
  const ProgramRun run = zqmsg({"describe", "ZQGui_savealert"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err,
            "zqmsg: ZQGui_savealert: is no class of subsystem ZQGui\n"
            "  did you mean 'ZQGui_SaveAlert'? 'zqmsg catalogue ZQGui' lists them\n");
  EXPECT_THAT(run.out, IsEmpty());
}

TEST_F(CatalogueCommands, NamesThatAreNoClassAreRefused) {
  for (const char* name : {"SaveAlert", "", "_", "ZQGui_", "_SaveAlert", "0x", "0x01000021", "0xzz",
                           "0x101000020", "0x00000000", "0xcf000000", "Nowhere_SaveAlert"}) {
    const ProgramRun run = zqmsg({"describe", name});
    EXPECT_THAT(run, Exits(1)) << name;
    EXPECT_THAT(run.err, testing::StartsWith("zqmsg: ")) << name;
  }
}

TEST_F(CatalogueCommands, DumpIsOneJsonDocument) {
  const ProgramRun run = zqmsg({"dump-catalogue"});
  EXPECT_THAT(run, Exits(0));
  const nlohmann::json document = nlohmann::json::parse(run.out);
  EXPECT_EQ(document["subsystems"].size(), 76u);
  EXPECT_EQ(document["subsystems"].at(0)["name"], "ZQGui");
}

}  // namespace
}  // namespace zqxml
