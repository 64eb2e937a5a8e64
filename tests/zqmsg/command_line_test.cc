// The command line itself: help, wrong usage, where things are written.
#include <string>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using CommandLine = ZqmsgTest;

const std::vector<std::string> kCommands{"catalogue", "describe", "dump-catalogue", "convert",
                                         "inspect",   "diff",     "merge",          "sample",
                                         "summary",   "xpath",    "objects",        "mask"};

TEST_F(CommandLine, HelpNamesEveryCommand) {
  const ProgramRun run = zqmsg({"--help"});
  EXPECT_THAT(run, Exits(0));
  for (const std::string& command : kCommands) EXPECT_THAT(run.out, HasSubstr("\n  " + command + " "));
  EXPECT_THAT(run.err, IsEmpty());
}

TEST_F(CommandLine, EveryCommandHasHelpWithExamples) {
  for (const std::string& command : kCommands) {
    const ProgramRun run = zqmsg({command, "--help"});
    EXPECT_THAT(run, Exits(0));
    EXPECT_THAT(run.out, HasSubstr("Usage: zqmsg " + command));
    EXPECT_THAT(run.out, HasSubstr("\n  zqmsg " + command)) << "no example";
    EXPECT_THAT(run.out, HasSubstr("--verbose"));
  }
}

TEST_F(CommandLine, VersionIsTold) {
  const ProgramRun run = zqmsg({"--version"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, testing::MatchesRegex("zqmsg [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CommandLine, NoCommandIsWrongUsage) {
  const ProgramRun run = zqmsg({});
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, HasSubstr("zqmsg --help"));
}

TEST_F(CommandLine, UnknownCommandIsWrongUsage) {
  const ProgramRun run = zqmsg({"frobnicate"});
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, StartsWith("zqmsg: there is no command frobnicate\n"));
  for (const std::string group : {"xpath", "objects"}) {
    const ProgramRun below = zqmsg({group, "frobnicate"});
    EXPECT_THAT(below, Exits(2));
    EXPECT_EQ(below.err, "zqmsg: " + group + ": there is no command frobnicate\n  'zqmsg " + group +
                             " --help' tells more\n");
  }
}

TEST_F(CommandLine, UnknownOptionIsWrongUsage) {
  for (const std::string& command : kCommands) {
    const ProgramRun run = zqmsg({command, "--frobnicate", "x", "y"});
    EXPECT_THAT(run, Exits(2));
    EXPECT_THAT(run.err, StartsWith("zqmsg: " + command + ": "));
    EXPECT_THAT(run.out, IsEmpty());
  }
}

TEST_F(CommandLine, UnknownOptionIsToldBeforeWhatIsMissing) {
  EXPECT_THAT(zqmsg({"--frobnicate"}).err, StartsWith("zqmsg: there is no option --frobnicate\n"));
  for (const std::string command : {"convert", "describe", "diff", "xpath get", "objects repair"}) {
    const ProgramRun run = shell("zqmsg " + command + " --frobnicate");
    EXPECT_THAT(run, Exits(2));
    EXPECT_THAT(run.err, StartsWith("zqmsg: " + command + ": there is no option --frobnicate\n"));
  }
  EXPECT_THAT(zqmsg({"objects", "repair", "a", "b"}).err, HasSubstr("--output is required"));
}

TEST_F(CommandLine, MissingArgumentsAreWrongUsage) {
  EXPECT_THAT(zqmsg({"describe"}), Exits(2));
  EXPECT_THAT(zqmsg({"convert", "file"}), Exits(2));
  EXPECT_THAT(zqmsg({"diff", "file"}), Exits(2));
  EXPECT_THAT(zqmsg({"diff"}), Exits(2));
}

TEST_F(CommandLine, TooManyArgumentsAreWrongUsage) {
  EXPECT_THAT(zqmsg({"catalogue", "ZQGui", "BMR"}), Exits(2));
  EXPECT_THAT(zqmsg({"describe", "ZQGui_SaveAlert", "x"}), Exits(2));
  EXPECT_THAT(zqmsg({"dump-catalogue", "x"}), Exits(2));
  EXPECT_THAT(zqmsg({"inspect", "x", "y"}), Exits(2));
  EXPECT_THAT(zqmsg({"diff", "x", "y", "z"}), Exits(2));
}

TEST_F(CommandLine, FormThatThereIsNotIsRefusedWithThoseThatThereAre) {
  for (const char* form : {"pdf", "TEXT", "yaml", ""}) {
    const ProgramRun run = zqmsg({"convert", "--to", form}, kSaveAlertXml);
    EXPECT_THAT(run, Exits(2));
    EXPECT_THAT(run.err, HasSubstr("xml,xml16,binary,objects,json,jsonl,text,html,page"));
  }
  for (const char* form : {"text", "html", "page"})
    EXPECT_THAT(zqmsg({"convert", "--to", "xml", "--from", form}, kSaveAlertXml), Exits(2));
}

TEST_F(CommandLine, SwitchesOfXmlAreRefusedForOtherForms) {
  for (const char* name :
       {"--elements", "--readable", "--enum-names", "--root-only", "--mask-passwords", "--mask-sensitive"}) {
    for (const char* form : {"binary", "objects", "text", "html"}) {
      const ProgramRun run = zqmsg({"convert", "--to", form, name}, kSaveAlertXml);
      EXPECT_THAT(run, Exits(2));
      EXPECT_THAT(run.err, HasSubstr(name));
      EXPECT_THAT(run.out, IsEmpty()) << "a secret may have been written";
    }
    EXPECT_THAT(zqmsg({"convert", "--to", "xml16", name}, kSaveAlertXml), Exits(0));
  }
}

TEST_F(CommandLine, VersionIsRefusedWhereItHasNoEffect) {
  EXPECT_THAT(zqmsg({"convert", "--to", "xml16", "--version", "1"}, kSaveAlertXml), Exits(2));
  EXPECT_THAT(zqmsg({"convert", "--to", "objects", "--version", "1"}, kSaveAlertXml), Exits(2));
  EXPECT_THAT(zqmsg({"convert", "--to", "text", "--version", "1"}, kSaveAlertXml), Exits(2));
  EXPECT_THAT(zqmsg({"convert", "--to", "html", "--version", "1"}, kSaveAlertXml), Exits(2));
  EXPECT_THAT(zqmsg({"convert", "--to", "xml", "--root-only", "--version", "1"}, kSaveAlertXml), Exits(2));
  EXPECT_THAT(zqmsg({"convert", "--to", "binary", "--version", "one"}, kSaveAlertXml), Exits(2));
}

TEST_F(CommandLine, OutputThatCannotBeWrittenIsAFailure) {
  folder_.write("alert.xml", kSaveAlertXml);
  ProgramSetup setup;
  setup.fullOutput = true;
  const std::vector<std::vector<std::string>> runs{{"--help"},
                                                   {"convert", "--help"},
                                                   {"catalogue"},
                                                   {"describe", "ZQGui_SaveAlert"},
                                                   {"dump-catalogue"},
                                                   {"convert", "alert.xml", "--to", "xml"},
                                                   {"convert", "alert.xml", "--to", "objects"}};
  for (const std::vector<std::string>& arguments : runs) {
    const ProgramRun run = zqmsg(arguments, setup);
    EXPECT_THAT(run, Exits(1));
    EXPECT_THAT(run.err, HasSubstr("standard output: cannot be written: No space left on device"));
  }
}

// The lowest free number is the next file's: what is told there would stand in a message.
TEST_F(CommandLine, NothingIsToldIntoAFileWhereStandardErrorIsClosed) {
  folder_.write("alert.xml", kSaveAlertXml);
  folder_.write("show.ini", "[EventManager]\nnDoNotMaskSensitiveDataInXML=1\n");
  const ProgramRun run = shell(
      "export ZQXML_CONFIG=show.ini\n"
      "zqmsg mask alert.xml -o told.xml && zqmsg mask alert.xml -o untold.xml 2>&- && cmp told.xml untold.xml");
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("nDoNotMaskSensitiveDataInXML is set")) << "nothing was to be told";
}

TEST_F(CommandLine, StandardInputAndOutputThatAreClosedAreFailures) {
  folder_.write("alert.xml", kSaveAlertXml);
  const ProgramRun out = shell("zqmsg convert alert.xml --to xml >&-");
  EXPECT_THAT(out, Exits(1));
  EXPECT_EQ(out.err, "zqmsg: standard output: cannot be written: Bad file descriptor\n");
  const ProgramRun in = shell("zqmsg convert --to xml <&-");
  EXPECT_THAT(in, Exits(1));
  EXPECT_EQ(in.err, "zqmsg: standard input: cannot be read: Bad file descriptor\n");
  EXPECT_THAT(shell("zqmsg convert alert.xml --to xml <&- >&- 2>&-"), Exits(1));
}

TEST_F(CommandLine, NothingIsColouredInAPipe) {
  const ProgramRun run = zqmsg({"describe", "ZQGui_Nothing"});
  EXPECT_THAT(run.err, Not(HasSubstr("\033")));
}

TEST_F(CommandLine, ErrorsAreColouredOnATerminal) {
  ProgramSetup setup;
  setup.errorTerminal = true;
  const ProgramRun run = zqmsg({"describe", "ZQGui_Nothing"}, setup);
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("\033[1;31mis no class of subsystem ZQGui\033[0m"));
}

TEST_F(CommandLine, NoColorIsObeyed) {
  ProgramSetup setup;
  setup.errorTerminal = true;
  setup.environment = {"NO_COLOR=1"};
  EXPECT_THAT(zqmsg({"describe", "ZQGui_Nothing"}, setup).err, Not(HasSubstr("\033")));
  setup.environment = {"TERM=dumb"};
  EXPECT_THAT(zqmsg({"describe", "ZQGui_Nothing"}, setup).err, Not(HasSubstr("\033")));
}

TEST_F(CommandLine, FileNamesReachTheTerminalHarmless) {
  const ProgramRun run = zqmsg({"convert", "\033[2Jx\n.xml", "--to", "xml"});
  EXPECT_THAT(run.err, StartsWith("zqmsg: \\x1b[2Jx\\n.xml: "));
}

TEST_F(CommandLine, VerboseShowsTheLibrarysLog) {
  const ProgramRun quiet = zqmsg({"convert", "--to", "xml"}, kSaveAlertXml);
  EXPECT_THAT(quiet.err, IsEmpty());
  const ProgramRun run = zqmsg({"convert", "--to", "xml", "--verbose"}, kSaveAlertXml);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, quiet.out);
  EXPECT_THAT(run.err, HasSubstr("Writing [SaveAlert]:[loginName]"));
}

TEST_F(CommandLine, UnknownNamesInAMessageAreToldWhenAskedFor) {
  const std::string xml = "<ZQGui_SaveAlert noSuchField=\"1\"><noSuchElement/></ZQGui_SaveAlert>";
  EXPECT_THAT(zqmsg({"convert", "--to", "xml"}, xml).err, IsEmpty());
  const ProgramRun run = zqmsg({"convert", "--to", "xml", "-v"}, xml);
  EXPECT_THAT(run.err, HasSubstr("Skipping member : [noSuchElement]"));
  EXPECT_THAT(run.err, HasSubstr("No such field : [noSuchField]"));
}

}  // namespace
}  // namespace zqxml
