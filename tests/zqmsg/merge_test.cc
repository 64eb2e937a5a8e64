// zqmsg merge.
#include <string>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class Merge : public ZqmsgTest {
 protected:
  ProgramRun merge(const std::string& source, const std::string& destination,
                   std::vector<std::string> options = {}) const {
    folder_.write("source", source);
    folder_.write("destination", destination);
    std::vector<std::string> arguments{"merge", "source", "destination"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return zqmsg(arguments);
  }
};

TEST_F(Merge, SourceGoesOnTopOfTheDestination) {
  const ProgramRun run =
      merge(R"(<App_TestMessage2 intField="5"><ListInt val="1"/><ListInt val="2"/></App_TestMessage2>)",
            R"(<App_TestMessage2 intField="7" strField="own"><ListInt val="3"/></App_TestMessage2>)");
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_THAT(run.out,
              HasSubstr(R"(<App_TestMessage2 intField="5" strField="own">)"
                        R"(<ListInt val="3"/><ListInt val="1"/><ListInt val="2"/></App_TestMessage2>)"));
}

TEST_F(Merge, InputsMayBeOfAnyFormAndOneOfThemStandardInput) {
  const std::string binary = zqmsg({"convert", "--to", "binary"}, kSaveAlertXml).out;
  folder_.write("alert.bin", binary);
  const ProgramRun run = zqmsg({"merge", "-", "alert.bin"}, R"(<ZQGui_SaveAlert loginName="other"/>)");
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr(R"(loginName="other")"));
  EXPECT_THAT(run.out, HasSubstr(R"(alertLocation="/srv/alerts")"));
  EXPECT_THAT(zqmsg({"merge", "-", "-"}, kSaveAlertXml), Exits(2));
}

TEST_F(Merge, ResultMayGoIntoAFileAndBeReadable) {
  const ProgramRun run =
      merge("<ZQGui_SaveAlert/>", R"(<ZQGui_SaveAlert loginName="a"/>)", {"--readable", "-o", "merged.xml"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(folder_.read("merged.xml"), HasSubstr(R"(loginName="a")"));
  EXPECT_THAT(zqmsg({"merge", "merged.xml", "merged.xml", "-o", "merged.xml"}), Exits(0));
}

TEST_F(Merge, MessagesOfTwoClassesAreRefused) {
  const ProgramRun run = merge("<ZQGui_SaveAlert/>", "<App_TestMessage2/>", {"-o", "merged.xml"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err,
            "zqmsg: source: is of class ZQGui_SaveAlert and cannot be merged into one of class "
            "App_TestMessage2\n");
  EXPECT_THAT(zqmsg({"convert", "merged.xml", "--to", "xml"}), Exits(1)) << "there is a file";
}

TEST_F(Merge, FileOfSeveralObjectsIsRefused) {
  const std::string object = zqmsg({"convert", "--to", "objects"}, kSaveAlertXml).out;
  EXPECT_THAT(merge(object, object), Exits(0));
  const ProgramRun run = merge(object + object, object);
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("source: holds more than one message"));
}

TEST_F(Merge, InputThatCannotBeReadIsAFailure) {
  EXPECT_THAT(merge("<ZQGui_SaveAlert", kSaveAlertXml), Exits(4));
  EXPECT_THAT(merge(kSaveAlertXml, "<No_Class/>"), Exits(5));
  EXPECT_THAT(merge("", kSaveAlertXml), Exits(1));
  EXPECT_THAT(zqmsg({"merge", "source"}), Exits(2));
}

}  // namespace
}  // namespace zqxml
