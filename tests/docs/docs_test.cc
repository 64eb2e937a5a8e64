// Runs every command that README.md and docs/*.md print, in one scratch folder with links to the source's
// folders, with the built programs on the path, and compares what it prints with what is shown.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "tests/docs/shown_commands.h"
#include "tests/support/markdown.h"
#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = ZQXML_SOURCE_DIR;

class Document : public testing::TestWithParam<fs::path> {
 protected:
  Document() {
    for (const char* name : {"docs", "examples", "schema", "script", "tests"})
      if (fs::exists(kSource / name)) fs::create_directory_symlink(kSource / name, folder_.path(name));
  }

  ProgramRun run(const std::string& commands) const {
    ProgramSetup setup;
    setup.folder = folder_.path();
    const char* path = std::getenv("PATH");
    setup.environment = {std::string("PATH=") + ZQXML_BINARY_DIR + "/bin:" + (path == nullptr ? "" : path),
                         "TZ=UTC", "LC_ALL=C.UTF-8", "ZQXML_CONFIG=/dev/null", "ZQXML_KEY_FILE"};
    return runProgram({"/bin/bash", "-euo", "pipefail", "-c", "exec 2>&1\n" + commands}, setup);
  }

  ScratchFolder folder_;
};

TEST_P(Document, CommandsDoWhatItSays) {
  if (isTutorial(GetParam())) return;  // needs an installed library: tutorial_test
  expectShown(GetParam(), [this](const std::string& commands) { return run(commands); });
}

TEST_P(Document, LinksLeadToFiles) {
  const std::string text = contentOf(GetParam());
  const std::regex link(R"(\]\(([^)#]+)(#[^)]*)?\))");
  for (std::sregex_iterator match(text.begin(), text.end(), link), end; match != end; ++match) {
    const std::string target = (*match)[1];
    if (target.starts_with("http")) continue;
    EXPECT_TRUE(fs::exists(GetParam().parent_path() / target)) << target;
  }
}

TEST_P(Document, LinesFitAScreen) {
  for (const std::string& line : linesOf(contentOf(GetParam()))) {
    if (line.find('|') != std::string::npos || line.find('<') != std::string::npos) continue;  // tables, XML
    const auto isStart = [](unsigned char byte) { return (byte & 0xc0) != 0x80; };
    EXPECT_LE(std::count_if(line.begin(), line.end(), isStart), 130) << line;
  }
}

std::vector<fs::path> documents() {
  std::vector<fs::path> paths{kSource / "README.md"};
  for (const fs::directory_entry& entry : fs::directory_iterator(kSource / "docs"))
    if (entry.path().extension() == ".md") paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  return paths;
}

INSTANTIATE_TEST_SUITE_P(Docs, Document, testing::ValuesIn(documents()), [](const auto& document) {
  std::string name = document.param.stem().string();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
});

TEST(Readme, CodeIsThatOfTheExample) {
  const std::string example = contentOf(kSource / "examples" / "round_trip.cc");
  const std::string mark = "// [readme]\n";
  const std::size_t start = example.find(mark) + mark.size();
  const std::string code = example.substr(start, example.find(mark, start) - start);
  bool found = false;
  for (const MarkdownBlock& block : blocksOf(kSource / "README.md"))
    if (block.language == "cpp" && block.text == code) found = true;
  EXPECT_TRUE(found) << "README.md does not show\n" << code;
}

TEST(Readme, LeadsToEveryPage) {
  const std::string readme = contentOf(kSource / "README.md");
  for (const fs::path& document : documents()) {
    const std::string name = document.filename().string();
    EXPECT_TRUE(name == "README.md" || readme.find("](docs/" + name + ")") != std::string::npos)
        << "README.md has no link to docs/" << name << " in its order of reading";
  }
}

TEST(Readme, FitsAScreen) {
  EXPECT_LE(linesOf(contentOf(kSource / "README.md")).size(), 100u);
}

TEST(DocsTest, ShownLinesMayStandForAny) {
  const auto match = [](const std::string& shown, const std::string& printed) {
    return matches(linesOf(shown), 0, linesOf(printed), 0);
  };
  EXPECT_TRUE(match("a\nb\n", "a\nb\n"));
  EXPECT_FALSE(match("a\nb\n", "a\nc\n"));
  EXPECT_FALSE(match("a\n", "a\nb\n"));
  EXPECT_FALSE(match("a\nb\n", "a\n"));
  EXPECT_TRUE(match("a\n...\nd\n", "a\nb\nc\nd\n"));
  EXPECT_TRUE(match("...\n", ""));
  EXPECT_FALSE(match("a\n...\nd\n", "a\nb\nc\n"));
}

}  // namespace
}  // namespace zqxml
