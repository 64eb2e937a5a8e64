#include <string>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string kDeclaration = R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)";
const std::string kJob = R"(<JobManager_Job comment="phone=1234;" description="hush" jobId="7"/>)";
const std::string kMaskedJob =
    kDeclaration + R"(<JobManager_Job comment="phone=1234;" description="########" jobId="7"/>)" + "\n";
const std::string kLogin =
    R"(<USDKLogin_LoginResp userName="operator"><attributes name="USDKtoken" value="hush"/>)"
    R"(<attributes name="USDKtoken" value="seen"/></USDKLogin_LoginResp>)";

class Mask : public ZqmsgTest {};

TEST_F(Mask, SensitiveValuesAreHidden) {
  const ProgramRun run = zqmsg({"mask"}, kJob);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, kMaskedJob);
  EXPECT_THAT(run.err, IsEmpty());
}

TEST_F(Mask, MessagesComeInAnyForm) {
  for (const char* form : {"xml", "xml16", "binary"}) {
    folder_.write("job", zqmsg({"convert", "--to", form}, kJob).out);
    EXPECT_EQ(zqmsg({"mask", "job"}).out, kMaskedJob) << form;
    EXPECT_EQ(zqmsg({"mask", "job", "--from", form}).out, kMaskedJob) << form;
  }
  const std::string object = zqmsg({"convert", "--to", "objects"}, kJob).out;
  EXPECT_EQ(zqmsg({"mask"}, object + object).out, kMaskedJob + kMaskedJob);
}

TEST_F(Mask, PasswordsAreWrittenInTheirUsualForm) {
  EXPECT_THAT(zqmsg({"mask"}, kSaveAlertXml).out, HasSubstr("password=\"hush\""));
}

TEST_F(Mask, TokenIsHiddenWhereAskedFor) {
  for (const char* form : {"xml", "binary"}) {
    folder_.write("login", zqmsg({"convert", "--to", form}, kLogin).out);
    const std::string masked = zqmsg({"mask", "--token", "login"}).out;
    EXPECT_THAT(masked, HasSubstr(R"(<attributes name="USDKtoken" value="***"/>)")) << form;
    EXPECT_THAT(masked, HasSubstr(R"(<attributes name="USDKtoken" value="seen"/>)")) << form;
    EXPECT_THAT(zqmsg({"mask", "login"}).out, HasSubstr("value=\"hush\"")) << form;
  }
}

TEST_F(Mask, KeywordsHideWhatIsBetweenThemInAMessage) {
  const ProgramRun run = zqmsg({"mask", "--keywords", "phone=", ";", "-"}, kJob);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(
      run.out,
      kDeclaration + R"(<JobManager_Job comment="phone=******;" description="########" jobId="7"/>)" + "\n");
}

TEST_F(Mask, KeywordsAndTokenGoTogether) {
  const ProgramRun run = zqmsg({"mask", "--keywords", "userName=\"", "\"", "--token"}, kLogin);
  EXPECT_THAT(run.out, HasSubstr("userName=\"******\""));
  EXPECT_THAT(run.out, HasSubstr("value=\"***\""));
}

TEST_F(Mask, AnyTextIsMaskedByKeywordsAlone) {
  const ProgramRun run =
      zqmsg({"mask", "--any-text", "--keywords", "phone=", ";"}, "no message, phone=1;phone=2;x");
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "no message, phone=******;phone=******;x");
  EXPECT_THAT(zqmsg({"mask", "--any-text", "--keywords", "<", ">"}, ""), Exits(0));
}

TEST_F(Mask, SettingThatShowsEverythingIsWarnedOf) {
  folder_.write("config.ini", "[EventManager]\nnDoNotMaskSensitiveDataInXML=1\n");
  ProgramSetup setup;
  setup.input = kJob;
  setup.environment = {"ZQXML_CONFIG=config.ini"};
  ProgramRun run = zqmsg({"mask"}, setup);
  EXPECT_THAT(run.out, HasSubstr("description=\"hush\""));
  EXPECT_THAT(run.err, HasSubstr("sensitive values are shown, because nDoNotMaskSensitiveDataInXML is set"));
}

TEST_F(Mask, OutputGoesToAFile) {
  const ProgramRun run = zqmsg({"mask", "-o", "masked.xml"}, kJob);
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_EQ(folder_.read("masked.xml"), kMaskedJob);
}

TEST_F(Mask, WhatIsNoMessageIsAFailureAndLeavesTheOutputAsItWas) {
  folder_.write("masked.xml", "old");
  EXPECT_THAT(zqmsg({"mask", "-o", "masked.xml"}, "<JobManager_Job"), Exits(4));
  EXPECT_THAT(zqmsg({"mask", "-o", "masked.xml"}, "<No_Class/>"), Exits(5));
  EXPECT_THAT(zqmsg({"mask", "-o", "masked.xml"}, ""), Exits(1));
  EXPECT_THAT(zqmsg({"mask", "-o", "masked.xml", "missing"}), Exits(1));
  EXPECT_THAT(zqmsg({"mask", "--keywords", "<", "J", "-o", "masked.xml"}, kJob), Exits(4));
  EXPECT_EQ(folder_.read("masked.xml"), "old");
}

TEST_F(Mask, BadObjectIsNamedAndTheOthersGoOn) {
  const std::string object = zqmsg({"convert", "--to", "objects"}, kJob).out;
  const std::string bad("\0\0\0\x04none", 8);
  folder_.write("masked.xml", "old");
  const ProgramRun shown = zqmsg({"mask", "--from", "objects"}, object + bad + object);
  EXPECT_THAT(shown, Exits(1));
  EXPECT_EQ(shown.out, kMaskedJob + kMaskedJob);
  EXPECT_THAT(shown.err, HasSubstr("object 2: cannot be read as a binary message"));
  EXPECT_THAT(zqmsg({"mask", "--from", "objects", "-o", "masked.xml"}, object + bad), Exits(1));
  EXPECT_EQ(folder_.read("masked.xml"), "old") << "a part is no file";
}

TEST_F(Mask, DamageEndsTheInputAndNotWhatStandsBeforeIt) {
  const std::string object = zqmsg({"convert", "--to", "objects"}, kJob).out;
  const std::string noLength("\0\0\0\0", 4);
  folder_.write("masked.xml", "old");
  folder_.write("damaged.objects", object + noLength + object);
  const ProgramRun shown = zqmsg({"mask", "damaged.objects"});
  EXPECT_THAT(shown, Exits(1));
  EXPECT_EQ(shown.out, kMaskedJob);
  EXPECT_THAT(shown.err,
              HasSubstr("object 2, at byte " + std::to_string(object.size()) + ", has the length 0"));
  EXPECT_THAT(zqmsg({"mask", "damaged.objects", "-o", "masked.xml"}), Exits(1));
  EXPECT_EQ(folder_.read("masked.xml"), "old");
}

TEST_F(Mask, BadLineIsNamedAndTheOthersGoOn) {
  const std::string line = zqmsg({"convert", "--to", "jsonl"}, kJob).out;
  const ProgramRun run = zqmsg({"mask", "--from", "jsonl"}, line + "{\n" + line);
  EXPECT_THAT(run, Exits(4));
  EXPECT_EQ(run.out, kMaskedJob + kMaskedJob);
  EXPECT_THAT(run.err, HasSubstr("line 2: "));
}

TEST_F(Mask, PasswordThatCannotBeReadIsAFailure) {
  const ProgramRun run = zqmsg({"mask"}, R"(<App_AnnotationSample ver8Password="||#9!c3RvcmVk"/>)");
  EXPECT_THAT(run, Exits(6));
  EXPECT_THAT(run.out, IsEmpty());
}

TEST_F(Mask, WrongUsageIsTold) {
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"mask", "--any-text"},
                                             {"mask", "--keywords", "a"},
                                             {"mask", "--keywords", "a", ""},
                                             {"mask", "--keywords", "", "b"},
                                             {"mask", "--keywords", "a", "b", "--from", "xml"},
                                             {"mask", "--keywords", "a", "b", "--any-text", "--token"},
                                             {"mask", "--from", "nothing"}}) {
    const ProgramRun run = zqmsg(arguments, kJob);
    EXPECT_THAT(run, Exits(2)) << testing::PrintToString(arguments);
    EXPECT_THAT(run.err, HasSubstr("'zqmsg mask --help' tells more"));
    EXPECT_THAT(run.out, IsEmpty());
  }
}

}  // namespace
}  // namespace zqxml
