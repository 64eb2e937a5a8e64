// zqmsg sample.
#include <string>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using Sample = ZqmsgTest;

TEST_F(Sample, ShowsTheShapeOfTheClass) {
  const ProgramRun run = zqmsg({"sample", "JobManager_JobListResp"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_THAT(run.out, HasSubstr("<JobManager_JobListResp>"));
  std::size_t jobs = 0;
  for (std::size_t at = run.out.find("<jobs "); at != run.out.npos; at = run.out.find("<jobs ", at + 1))
    ++jobs;
  EXPECT_EQ(jobs, 5u);
  EXPECT_THAT(zqmsg({"convert", "--to", "binary"}, run.out), Exits(0));
}

TEST_F(Sample, ClassMayBeNamedByItsTag) {
  EXPECT_EQ(zqmsg({"sample", "0x01000020"}).out, zqmsg({"sample", "ZQGui_SaveAlert"}).out);
}

TEST_F(Sample, MayGoIntoAFileAndBeReadable) {
  const ProgramRun run = zqmsg({"sample", "ZQGui_SaveAlert", "--readable", "-o", "sample.xml"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(folder_.read("sample.xml"), HasSubstr("ZQGui_SaveAlert"));
}

TEST_F(Sample, EnumerationsAndUnknownClassesAreRefused) {
  EXPECT_THAT(zqmsg({"sample", "App_ScheduleType"}), Exits(1));
  EXPECT_THAT(zqmsg({"sample", "App_ScheduleType"}).err, HasSubstr("is an enumeration"));
  EXPECT_THAT(zqmsg({"sample", "App_Nothing"}), Exits(1));
  EXPECT_THAT(zqmsg({"sample"}), Exits(2));
}

}  // namespace
}  // namespace zqxml
