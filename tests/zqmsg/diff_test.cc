#include <string>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Diff : public ZqmsgTest {
 protected:
  ProgramRun diff(const std::string& a, const std::string& b) const {
    folder_.write("a", a);
    folder_.write("b", b);
    return zqmsg({"diff", "a", "b"});
  }
  std::string converted(const std::string& form, const std::string& input) const {
    return zqmsg({"convert", "--to", form}, input).out;
  }
};

TEST_F(Diff, EqualMessagesGiveNothing) {
  const ProgramRun run = diff(kSaveAlertXml, kSaveAlertXml);
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, IsEmpty());
}

TEST_F(Diff, DifferencesArePathAndBothValues) {
  const ProgramRun run =
      diff("<App_TestMessage2 intField=\"1\" strField=\"x\"><M1 intFieldM1=\"5\"/></App_TestMessage2>",
           "<App_TestMessage2 intField=\"2\"><M1 intFieldM1=\"6\"/></App_TestMessage2>");
  EXPECT_THAT(run, Exits(10));
  EXPECT_EQ(run.out, "intField: 1 != 2\nstrField: \"x\" != (not set)\nM1.intFieldM1: 5 != 6\n");
}

TEST_F(Diff, PasswordsAreNotShown) {
  const ProgramRun run =
      diff("<ZQGui_SaveAlert password=\"first secret\"/>", "<ZQGui_SaveAlert password=\"other secret\"/>");
  EXPECT_THAT(run, Exits(10));
  EXPECT_EQ(run.out, "password: a password of type 1 != another one\n");
  EXPECT_THAT(run.out + run.err, Not(HasSubstr("secret")));
}

TEST_F(Diff, FormsOfTheTwoMayDiffer) {
  for (const char* form : {"xml", "xml16", "binary", "objects"}) {
    const ProgramRun run = diff(kSaveAlertXml, converted(form, kSaveAlertXml));
    EXPECT_THAT(run, Exits(0)) << form;
    EXPECT_THAT(run.out, IsEmpty()) << form;
  }
}

TEST_F(Diff, MessagesOfDifferentClassesDiffer) {
  const ProgramRun run = diff("<ZQGui_SaveAlert/>", "<ZQGui_AlertCriteria/>");
  EXPECT_THAT(run, Exits(10));
  EXPECT_EQ(run.out, "(class): ZQGui_SaveAlert != ZQGui_AlertCriteria\n");
}

TEST_F(Diff, OneOfTheTwoCanBeStandardInput) {
  folder_.write("a", kSaveAlertXml);
  EXPECT_THAT(zqmsg({"diff", "a", "-"}, kSaveAlertXml), Exits(0));
  EXPECT_THAT(zqmsg({"diff", "-", "a"}, "<ZQGui_SaveAlert/>"), Exits(10));
  EXPECT_THAT(zqmsg({"diff", "-", "-"}, kSaveAlertXml), Exits(2));
}

TEST_F(Diff, FilesOfObjectsAreComparedObjectByObject) {
  const std::string first = converted("objects", "<ZQGui_SaveAlert loginName=\"a\"/>");
  const std::string second = converted("objects", "<ZQGui_SaveAlert loginName=\"b\"/>");
  const std::string changed = converted("objects", "<ZQGui_SaveAlert loginName=\"c\"/>");
  EXPECT_THAT(diff(first + second, first + second), Exits(0));
  const ProgramRun run = diff(first + second, first + changed);
  EXPECT_THAT(run, Exits(10));
  EXPECT_EQ(run.out, "object 2.loginName: \"b\" != \"c\"\n");
}

TEST_F(Diff, FilesOfDifferentManyObjectsDiffer) {
  const std::string object = converted("objects", kSaveAlertXml);
  const ProgramRun run = diff(object, object + object);
  EXPECT_THAT(run, Exits(10));
  EXPECT_EQ(run.out, "a ends before object 2 of b\n");
  EXPECT_EQ(diff(object + object, object).out, "b ends before object 2 of a\n");
}

TEST_F(Diff, WhatWasFoundBeforeDamageIsPrinted) {
  const std::string first = converted("objects", "<ZQGui_SaveAlert loginName=\"a\"/>");
  const std::string second = converted("objects", "<ZQGui_SaveAlert loginName=\"b\"/>");
  const ProgramRun run = diff(first + first, second + second.substr(0, second.size() - 1));
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.out, "object 1.loginName: \"a\" != \"b\"\n");
  EXPECT_THAT(run.err, StartsWith("zqmsg: b: object 2, at byte "));
}

TEST_F(Diff, AnInputThatCannotBeReadIsAFailureAndNoDifference) {
  EXPECT_THAT(diff(kSaveAlertXml, "<ZQGui_SaveAlert"), Exits(4));
  EXPECT_THAT(diff("<No_Class/>", kSaveAlertXml), Exits(5));
  EXPECT_THAT(diff(kSaveAlertXml, ""), Exits(1));
  EXPECT_THAT(zqmsg({"diff", "a", "missing"}), Exits(1));
}

}  // namespace
}  // namespace zqxml
