// convert --verify: what did not survive is named.
#include <string>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Verify : public ZqmsgTest {};

const std::string kProgress = R"({"JobManager_JobProgress":{"jobId":7,"throughput":0.1234567}})";

TEST_F(Verify, SilenceMeansThatNothingWasLost) {
  for (const char* form : {"xml", "xml16", "binary", "objects", "json", "jsonl"}) {
    const ProgramRun run = zqmsg({"convert", "--to", form, "--verify"}, kExampleXml);
    EXPECT_THAT(run, Exits(0)) << form;
    EXPECT_THAT(run.err, IsEmpty()) << form;
    EXPECT_EQ(run.out, zqmsg({"convert", "--to", form}, kExampleXml).out) << form;
  }
}

TEST_F(Verify, FieldThatDoesNotSurviveIsNamedWithBothValues) {
  const ProgramRun run = zqmsg({"convert", "--to", "xml", "--verify"}, kProgress);
  EXPECT_THAT(run, Exits(10));
  EXPECT_EQ(run.err, "zqmsg: standard input: line 1: throughput did not survive: 0.1234567 != 0.123457\n");
  EXPECT_THAT(run.out, HasSubstr("throughput=\"0.123457\"")) << "it is written all the same";
  EXPECT_THAT(zqmsg({"convert", "--to", "binary", "--verify"}, kProgress), Exits(0));
}

TEST_F(Verify, StreamsAreVerifiedMessageByMessage) {
  const std::string lines = kProgress + "\n{\"JobManager_JobProgress\":{\"jobId\":7}}\n" + kProgress + "\n";
  const ProgramRun run = zqmsg({"convert", "--to", "xml", "--verify"}, lines);
  EXPECT_THAT(run, Exits(10));
  EXPECT_EQ(run.err,
            "zqmsg: standard input: line 1: throughput did not survive: 0.1234567 != 0.123457\n"
            "zqmsg: standard input: line 3: throughput did not survive: 0.1234567 != 0.123457\n");
  EXPECT_THAT(zqmsg({"convert", "--to", "objects", "--verify"}, lines), Exits(0));
}

TEST_F(Verify, WhatIsMaskedIsNamedByItsMask) {
  for (const char* form : {"xml", "json"}) {
    const ProgramRun run = zqmsg({"convert", "--to", form, "--verify", "--mask-passwords"}, kSaveAlertXml);
    EXPECT_THAT(run, Exits(10));
    EXPECT_EQ(run.err, "zqmsg: standard input: password did not survive: ******* != *******\n");
    const ProgramRun sensitive =
        zqmsg({"convert", "--to", form, "--verify", "--mask-sensitive"},
              R"(<App_AnnotationSample sensitiveNumber="4711" sensitiveText="hidden"/>)");
    EXPECT_THAT(sensitive, Exits(10));
    EXPECT_THAT(sensitive.err, HasSubstr("sensitiveNumber did not survive: ######## != ########"));
    EXPECT_THAT(sensitive.err, HasSubstr("sensitiveText did not survive: ######## != ########"));
    EXPECT_THAT(sensitive.err, Not(HasSubstr("4711")));
    EXPECT_THAT(sensitive.err, Not(HasSubstr("hidden")));
  }
}

TEST_F(Verify, FormsThatCannotBeReadAreRefused) {
  for (const char* form : {"text", "html", "page"}) {
    const ProgramRun run = zqmsg({"convert", "--to", form, "--verify"}, kSaveAlertXml);
    EXPECT_THAT(run, Exits(2)) << form;
    EXPECT_THAT(run.err, HasSubstr("--verify is for the forms that can be read, xml, xml16, binary, objects, "
                                   "json, jsonl, not for "));
    EXPECT_THAT(run.out, IsEmpty());
  }
}

TEST_F(Verify, FailureGoesBeforeADifference) {
  const ProgramRun run =
      zqmsg({"convert", "--from", "jsonl", "--to", "xml", "--verify"}, kProgress + "\nnonsense\n");
  EXPECT_THAT(run, Exits(4));
  EXPECT_THAT(run.err, HasSubstr("line 1: throughput did not survive"));
  EXPECT_THAT(run.err, HasSubstr("line 2: is no JSON"));
}

}  // namespace
}  // namespace zqxml
