// What GDB shows of messages, with the printer that is installed.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

/// What the commands print where the program has its messages.
std::string gdb(const std::vector<std::string>& commands, const char* program = MESSAGES) {
  std::vector<std::string> line{GDB, "-nx", "-q", "-batch"};
  const auto add = [&line](const std::string& command) { line.insert(line.end(), {"-ex", command}); };
  for (const char* command : {"set debuginfod enabled off", "set disable-randomization off", "set width 0",
                              "source " PRINTER, "break look", "run"})
    add(command);
  for (const std::string& command : commands) add(command);
  line.push_back(program);
  const ProgramRun run = runProgram(line);
  EXPECT_EQ(run.status, 0) << run;
  EXPECT_THAT(run.err, Not(HasSubstr("Python"))) << "no exception of the printer";
  return run.out + run.err;
}

class GdbPrinter : public ::testing::TestWithParam<const char*> {};

TEST_P(GdbPrinter, ShowsClassAndSetFieldsOfAMessage) {
  const std::string longText(200, 'x');
  const std::string shown = gdb({"print message", "print small", "print several"}, GetParam());
  EXPECT_THAT(
      shown,
      HasSubstr(
          "$1 = App_TestMessage2 = {intField = -5, strField = \"te\\\"xt\\n\xc3\xbc\", ListInt = [1, -2], "
          "M1 = App_TestMessage1 = {strFieldM1 = \"" +
          longText +
          "\"...}, mapStr_LL = {\"a\": 1, \"b\": 2, \"c\": 3}, ulonglongField = 18446744073709551615, "
          "boolField = true, wstrField = u\"wide \xc3\xbc\", enumField = TEST_TWO (2), "
          "doubleField = 2.5, floatField = -1.5, ListEnum = [TEST_ONE (1), 9], ListString = [\"a\", \"\"], "
          "ListM1[0] = App_TestMessage1 = {intFieldM1 = 1}, ListM1[1] = App_TestMessage1, "
          "bstrField = \"a\\x00\\xff\", mapLL_M1[-4] = App_TestMessage1 = {intFieldM1 = 4}, "
          "mapStr_M1[\"k\"] = App_TestMessage1 = {intFieldM1 = 5}, mapM1_M1.key = App_TestMessage1, "
          "mapM1_M1.value = App_TestMessage1 = {intFieldM1 = 6}, time64 = 4000000000}\n"));
  EXPECT_THAT(shown, HasSubstr("$2 = App_TestMessage1 = {strFieldM1 = \"small\", ListIntM1 = []}\n"));
  EXPECT_THAT(shown, HasSubstr("{App_TestMessage1, <a message without a class>}\n"));
}
INSTANTIATE_TEST_SUITE_P(BuiltByGcc, GdbPrinter, ::testing::Values(MESSAGES));
INSTANTIATE_TEST_SUITE_P(BuiltByClang, GdbPrinter, ::testing::Values(MESSAGES_BY_CLANG));

TEST(GdbPrinterTest, HidesPasswordsAndSensitiveValues) {
  const std::string shown =
      gdb({"print secrets", "print password", "print small.buffer_", "up", "info locals"});
  const char* const masked =
      "App_AnnotationSample = {day = 5, sensitiveText = ########, sensitiveNumber = ########, "
      "plainPassword = *******, ver5Password = *******}\n";
  EXPECT_THAT(
      shown, AllOf(HasSubstr(std::string("$1 = ") + masked), HasSubstr(std::string("secrets = ") + masked),
                   HasSubstr("= ******* (encryption type 10)\n"), HasSubstr("$3 = <6 slots of 3 fields>\n")));
  EXPECT_THAT(shown, AllOf(Not(HasSubstr("hidden")), Not(HasSubstr("4711"))));
}

TEST(GdbPrinterTest, ShowsNoMoreThanIsAskedFor) {
  const std::string shown = gdb({"set print elements 2", "print small", "set print elements 200",
                                 "set print max-depth 1", "print message"});
  EXPECT_THAT(shown, HasSubstr("$1 = App_TestMessage1 = {strFieldM1 = \"sm\"..., ListIntM1 = []...}\n"));
  EXPECT_THAT(shown, HasSubstr(" M1 = App_TestMessage1 = {...}, mapStr_LL = "));
}

/// Sets a slot of a small message: 1 and 2 are address and length of its text, 5 its list; of a large one, 6
/// is its object and 7 its map.
std::string setSlot(const std::string& message, int slot, const std::string& value) {
  return "set var ((unsigned long*)" + message + ".buffer_.inlineArea_)[" + std::to_string(slot) +
         "] = " + value;
}

TEST(GdbPrinterTest, SaysWhatIsNoMessage) {
  const std::string shown = gdb({"print *none", "print *ended", "print (zqxml::XNMessageBase)small",
                                 "print *(zqxml::bstring*)none", "print *(zqxml::pstring*)none",
                                 "set var small.tagId_ = 5", "print small", "set var small.classDef_ = 0",
                                 "print small", "set var small.msgIndex_ = 0x7fffffff", "print small"});
  EXPECT_THAT(shown, HasSubstr("$1 = <no message: its subsystem is -23131>\n"));
  EXPECT_THAT(shown, HasSubstr("$2 = <no message: "));
  EXPECT_THAT(shown, HasSubstr("$3 = <not in memory>\n"));
  EXPECT_THAT(shown, HasSubstr("$4 = <no text: its length is 11936128518282651045>\n"));
  EXPECT_THAT(shown, HasSubstr("$5 = ******* (encryption type -1515870811)\n"));
  EXPECT_THAT(shown, HasSubstr("$6 = <no message: what it says of itself does not fit together>\n"));
  EXPECT_THAT(shown, HasSubstr("$7 = <no message: what it says of itself does not fit together>\n"));
  EXPECT_THAT(shown, HasSubstr("$8 = <no message: its class is 2147483647 of subsystem 30>\n"));
}

TEST(GdbPrinterTest, ShowsTheRestOfADamagedMessage) {
  const std::string shown =
      gdb({setSlot("small", 2, "0xffffffffffffff"), "print small", setSlot("small", 2, "5"),
           setSlot("small", 1, "0x10"), setSlot("small", 5, "0x30"), "print small",
           setSlot("small", 5, "(unsigned long)&small"), "print small",
           setSlot("message", 6, "(unsigned long)&message"),
           "set var *(unsigned long*)(((unsigned long*)message.buffer_.inlineArea_)[7] + 40) = 100000",
           "print message"});
  EXPECT_THAT(shown, HasSubstr("$1 = App_TestMessage1 = {strFieldM1 = <no text: its length is "
                               "72057594037927935>, ListIntM1 = []}\n"));
  EXPECT_THAT(shown, HasSubstr("$2 = App_TestMessage1 = {strFieldM1 = <memory at 0x10 cannot be read>, "
                               "ListIntM1 = <memory at 0x30 cannot be read>}\n"));
  EXPECT_THAT(shown, HasSubstr("ListIntM1 = <no list>}\n"));
  EXPECT_THAT(shown, HasSubstr("M1 = <it holds itself>, mapStr_LL = <no map: its tree is damaged>, "));
  EXPECT_THAT(shown, HasSubstr("time64 = 4000000000}\n"));
}

TEST(GdbPrinterTest, ShowsTheMessagesOfACoreFile) {
  ScratchFolder folder;
  const std::string core = folder.path("core");
  gdb({"generate-core-file " + core});
  const ProgramRun run = runProgram({GDB, "-nx", "-q", "-batch", "-ex", "source " PRINTER, "-ex",
                                     "set width 0", "-ex", "print small", MESSAGES, core});
  EXPECT_THAT(run.out, HasSubstr("$1 = App_TestMessage1 = {strFieldM1 = \"small\", ListIntM1 = []}\n"))
      << run;
}

}  // namespace
}  // namespace zqxml
