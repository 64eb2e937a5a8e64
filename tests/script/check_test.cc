// Each rule of script/check finds an offence that is planted in a small tree of its own.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const fs::path kSource = ZQXML_SOURCE_DIR;

// In two pieces: this file has to keep the rules.
#define NO_LINT \
  "NO"          \
  "LINT"

std::string lines(int count, const std::string& line) {
  std::string text;
  for (int i = 0; i < count; ++i) text += line + '\n';
  return text;
}

/// A function of so many lines between its braces.
std::string functionOf(int count) {
  return "int longOne(int n) {\n" + lines(count, "  ++n;") + "}\n";
}

/// A tree with the check, its settings and a source that keeps every rule.
class CheckTest : public testing::Test {
 protected:
  CheckTest() {
    for (const char* name : {"script/check", ".clang-format", ".clang-tidy"}) {
      fs::create_directories(fs::path(tree_.path(name)).parent_path());
      fs::copy(kSource / name, tree_.path(name));
    }
    plant("zqxml/catalogue/kinds.cc", "int of(int type) {\n  switch (type) {\n    case FDT_INT:\n" +
                                          lines(50, "      ++type;") + "  }\n  return type;\n}\n");
    git({"init", "--quiet"});
  }

  void git(std::vector<std::string> command) {
    command.insert(command.begin(), {"git", "-c", "user.name=Tester", "-c", "user.email=tester@localhost"});
    const ProgramRun run = in(command);
    ASSERT_EQ(run.status, 0) << run;
  }

  void commit() {
    git({"add", "--all"});
    git({"commit", "--quiet", "--no-verify", "--message", "A commit"});
  }

  void plant(const std::string& name, const std::string& content) {
    fs::create_directories(fs::path(tree_.path(name)).parent_path());
    tree_.write(name, content);
  }

  ProgramRun check(const std::vector<std::string>& options = {"--skip", "tidy"}) const {
    std::vector<std::string> command{"script/check"};
    command.insert(command.end(), options.begin(), options.end());
    return in(command);
  }

  ProgramRun in(const std::vector<std::string>& command) const {
    ProgramSetup setup;
    setup.folder = tree_.path();
    // Git's own variables are set when a hook runs this test.
    setup.environment = {"GIT_DIR", "GIT_INDEX_FILE", "GIT_WORK_TREE"};
    std::vector<std::string> words{"/usr/bin/env"};
    words.insert(words.end(), command.begin(), command.end());
    return runProgram(words, setup);
  }

  void expectClean(const ProgramRun& run) const {
    EXPECT_EQ(run.status, 0) << run;
    EXPECT_EQ(run.out, "") << run;
  }

  void expectOffence(const ProgramRun& run, const std::string& start) const {
    EXPECT_EQ(run.status, 1) << run;
    EXPECT_THAT(run.out, StartsWith(start)) << run;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << run;
  }

  ScratchFolder tree_;
};

TEST_F(CheckTest, SaysNothingOfATreeThatKeepsTheRules) {
  plant("zqxml/binary/fine.h", "#include <zqxml/message/fine.h>\n\n#include <xercesc/util/XercesDefs.hpp>\n");
  plant("zqxml/binary/internal/fine.h", "#include <spdlog/spdlog.h>\n");
  plant("zqxml/message/fine.h", "#include <zqxml/logging/xml_log_context.h>\n");
  plant("zqxml/xml/fine.cc", functionOf(59) + lines(339, "// A line."));
  expectClean(check());
}

/// An offence: its rule, the file, its content, and how the line that tells it goes on behind "FILE:".
struct Offence {
  std::string rule, file, content, told;
};

class CheckRule : public CheckTest, public testing::WithParamInterface<Offence> {};

TEST_P(CheckRule, FindsThePlantedOffence) {
  const Offence& offence = GetParam();
  plant(offence.file, offence.content);
  expectOffence(check(), offence.file + ":" + offence.told);
  expectOffence(check({"--only", offence.rule}), offence.file + ":" + offence.told);
  expectClean(check({"--skip", "tidy," + offence.rule}));
}

INSTANTIATE_TEST_SUITE_P(
    All, CheckRule,
    testing::Values(
        Offence{"format", "tests/odd.cc", "\nint  f();\n", "2: format: differs"},
        Offence{"sizes", "fuzz/long.cc", lines(401, "// A line."), "400: file-size: 401 lines"},
        Offence{"sizes", "script/long", lines(401, "# A line."), "400: file-size: 401 lines"},
        Offence{"sizes", "bench/long.cc", "\n" + functionOf(60), "2: function-size: longOne has 61 lines"},
        Offence{"sizes", "tools/long.cc",
                "namespace tool {\nstruct One {\n  One() : a_{1}, b_({2, 3}) {\n" +
                    lines(61, "    if (a_ > 0) b_ = {'{', \"}\"};  // }") + "  }\n};\n}  // namespace tool\n",
                "3: function-size: One has 62 lines"},
        Offence{"cycles", "zqxml/xml/self.h", "#include <zqxml/xml/self.h>\n", "1: cycles: includes itself"},
        Offence{"layers", "zqxml/platform/low.cc", "\n#include <zqxml/catalogue/kinds.h>\n",
                "2: layers: includes zqxml/catalogue/kinds.h"},
        Offence{"layers", "zqxml/message/low.cc", "#include <zqxml/catalogue/generated/App.h>\n",
                "1: layers: "},
        Offence{"layers", "zqxml/logging/xml_log_context.h", "#include <zqxml/logging/other.h>\n",
                "1: layers: "},
        Offence{"public", "zqxml/platform/log.h", "#pragma once\n#include <spdlog/spdlog.h>\n",
                "2: public: includes spdlog/spdlog.h"},
        Offence{"public", "zqxml/binary/bytes.h", "#include <zqxml/binary/internal/cursor.h>\n",
                "1: public: "},
        Offence{"field-types", "tools/zqmsg/kinds.cc",
                "int of(int t) {\n  switch (t) {\n    case FDT_INT:\n      return 1;\n  }\n}\n",
                "3: field-types: switches over field types"},
        Offence{"nolint", "tests/odd.cc", "int f();  // " NO_LINT ": it is late\n", "1: nolint: "},
        Offence{"nolint", "zqxml/odd.cc", "// " NO_LINT "NEXTLINE(bugprone-infinite-loop)\nint f();\n",
                "1: nolint: "},
        Offence{"nolint", "zqxml/odd.h", "int f();  // " NO_LINT "(bugprone-infinite-loop)\n",
                "1: nolint: "}),
    [](const auto& test) {
      std::string name = test.param.rule + "_" + test.param.file;
      for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) == 0 ? '_' : c;
      return name + "_" + std::to_string(test.index);
    });

TEST_F(CheckTest, NamesTheWayOfACycle) {
  plant("zqxml/xml/a.h", "#include <zqxml/xml/b.h>\n");
  plant("zqxml/xml/b.h", "#include <zqxml/xml/c.h>\n");
  plant("zqxml/xml/c.h", "#include \"zqxml/xml/a.h\"\n");
  expectOffence(
      check({"--only", "cycles"}),
      "zqxml/xml/a.h:1: cycles: includes itself: zqxml/xml/a.h > zqxml/xml/b.h > zqxml/xml/c.h > zqxml/xml/a.h");
}

TEST_F(CheckTest, ReasonedNolintPasses) {
  plant("zqxml/odd.h", "int f();  // " NO_LINT "(bugprone-infinite-loop): it ends when the host does\n");
  expectClean(check());
}

TEST_F(CheckTest, ExceptionIsHonouredWhileItIsNeeded) {
  plant("tests/long.cc", functionOf(60));
  plant("script/check.exceptions", "# Reasons.\nfunction-size tests/long.cc:longOne it is a table\n");
  expectClean(check());
  plant("tests/long.cc", functionOf(59));
  expectOffence(check(), "script/check.exceptions:2: exceptions: function-size no longer needs");
}

TEST_F(CheckTest, ExceptionNeedsAReason) {
  plant("script/check.exceptions", "file-size tests/long.cc\n");
  expectOffence(check(), "script/check.exceptions:1: exceptions: give rule, subject and reason");
}

TEST_F(CheckTest, FixFormats) {
  plant("tests/odd.cc", "int  f();\n");
  expectClean(check({"--skip", "tidy", "--fix"}));
  EXPECT_EQ(tree_.read("tests/odd.cc"), "int f();\n");
}

TEST_F(CheckTest, UnknownRuleOrBaseIsRefused) {
  EXPECT_EQ(check({"--only", "speling"}).status, 2);
  EXPECT_THAT(check({"--only", "speling"}).err, HasSubstr("no rule speling; there are format, "));
  EXPECT_EQ(check({"--base", "nowhere"}).status, 1);
  EXPECT_THAT(check({"--base", "nowhere"}).err, HasSubstr("no commit in common with nowhere"));
}

TEST_F(CheckTest, HookStopsTheCommitOfAnOffence) {
  fs::copy(kSource / "script/hooks", tree_.path("script/hooks"));
  git({"config", "core.hooksPath", "script/hooks"});
  plant("tests/odd.cc", "int  f();\n");
  git({"add", "--all"});
  const std::vector<std::string> command{
      "git",    "-c",        "user.name=Tester", "-c", "user.email=tester@localhost",
      "commit", "--message", "A commit"};
  const ProgramRun stopped = in(command);
  EXPECT_EQ(stopped.status, 1) << stopped;
  EXPECT_THAT(stopped.out + stopped.err, HasSubstr("tests/odd.cc:1: format: "));
  plant("tests/odd.cc", "int f();\n");
  EXPECT_EQ(in(command).status, 0);
}

/// A tree that can be built, for the rule that needs what the compiler is told.
class CheckTidyTest : public CheckTest {
 protected:
  CheckTidyTest() {
    plant("CMakeLists.txt",
          "cmake_minimum_required(VERSION 3.25)\nproject(Tree CXX)\nset(CMAKE_EXPORT_COMPILE_COMMANDS ON)\n"
          "add_library(tree OBJECT zqxml/xml/halves.cc zqxml/xml/user.cc)\n"
          "target_include_directories(tree PRIVATE .)\nadd_custom_target(zqxml_catalogue_tables)\n");
    plant("CMakePresets.json", R"({"version": 6, "configurePresets": [
        {"name": "dev", "generator": "Ninja", "binaryDir": "build-dev"},
        {"name": "tidy", "inherits": "dev", "binaryDir": "build-tidy", "cacheVariables": {"CMAKE_UNITY_BUILD": "ON"}}]})");
    plant(".gitignore", "build-*/\n");
    plant("zqxml/xml/halves.cc", kFine);
    plant("zqxml/xml/halved.h", "inline double third(double value) {\n  return value / 3;\n}\n");
    plant("zqxml/xml/user.cc", "#include <zqxml/xml/halved.h>\ndouble user() {\n  return third(1);\n}\n");
    commit();
  }

  const std::string kFine = "double half(double value) {\n  return value / 2;\n}\n";
  const std::string kOffence = "double half(int value) {\n  return value / 2;\n}\n";
  const std::string kTold = "zqxml/xml/halves.cc:2: tidy: result of integer division";
  const std::vector<std::string> sinceHead_{"--base", "HEAD"};
};

TEST_F(CheckTidyTest, OffenceInAChangedFileIsFound) {
  plant("zqxml/xml/halves.cc", kOffence);
  expectOffence(check(sinceHead_), kTold);
  expectOffence(check({"--base", "HEAD", "--only", "tidy"}), kTold);
  expectClean(check());
}

TEST_F(CheckTidyTest, OffenceInAHeaderIsFoundThroughAFileThatIncludesIt) {
  plant("zqxml/xml/halved.h", "inline double third(int value) {\n  return value / 3;\n}\n");
  expectOffence(check(sinceHead_), "zqxml/xml/halved.h:2: tidy: result of integer division");
}

TEST_F(CheckTidyTest, OnlyWhatChangedIsLookedAtUnlessAllIs) {
  plant("zqxml/xml/halves.cc", kOffence);
  commit();
  plant("zqxml/xml/user.cc", "#include <zqxml/xml/halved.h>\ndouble user() {\n  return third(2);\n}\n");
  expectClean(check(sinceHead_));
  expectOffence(check({"--base", "HEAD~1"}), kTold);
  expectOffence(check({"--all"}), kTold);
}

TEST_F(CheckTidyTest, SourcesAreReadInPiecesWhenAllAre) {
  expectClean(check({"--all"}));
  EXPECT_THAT(in({"grep", "file", "build-tidy/compile_commands.json"}).out,
              AllOf(HasSubstr("unity_0"), Not(HasSubstr("halves.cc"))));
  plant("zqxml/xml/halved.h", "inline double third(int value) {\n  return value / 3;\n}\n");
  expectOffence(check({"--all"}), "zqxml/xml/halved.h:2: tidy: result of integer division");
}

TEST_F(CheckTidyTest, LastCommitIsLookedAtWhenNothingChangedSince) {
  plant("zqxml/xml/halves.cc", kOffence);
  commit();
  expectOffence(check(sinceHead_), kTold);
}

TEST_F(CheckTidyTest, FileThatDoesNotCompileIsAnOffence) {
  plant("zqxml/xml/halves.cc", "int f() {\n  return nothing;\n}\n");
  expectOffence(check(sinceHead_), "zqxml/xml/halves.cc:2: tidy: use of undeclared identifier 'nothing'");
}

}  // namespace
}  // namespace zqxml
