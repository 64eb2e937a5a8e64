// What the pages of a program, made by its --generate, are to the programs that read them.
#pragma once

#include <gmock/gmock.h>
#include <tests/support/run_program.h>
#include <tests/support/scratch_folder.h>

#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace zqxml {

/// The words of a text.
inline std::vector<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// The pages of the program at `path`, written into a folder.
class CommandPagesOf {
 public:
  explicit CommandPagesOf(const std::string& path) : path_(path) {
    folder_.write("page.1", runProgram({path, "--generate", "man"}).out);
    folder_.write("completion", runProgram({path, "--generate", "bash-completion"}).out);
  }

  /// Commands in bash, in the folder of the pages, with the program on the path.
  ProgramRun shell(const std::string& commands) const {
    ProgramSetup setup;
    setup.folder = folder_.path();
    const std::string bin = std::filesystem::path(path_).parent_path().string();
    return runProgram({"/bin/bash", "-uo", "pipefail", "-c", "export PATH='" + bin + "':$PATH\n" + commands},
                      setup);
  }

  /// The manual page as a terminal shows it; warnings of roff are failures.
  std::string manualPage() const {
    const ProgramRun groff = shell("groff -man -ww -z -Tutf8 page.1");
    EXPECT_EQ(groff.status, 0) << groff;
    EXPECT_EQ(groff.err, "");
    const ProgramRun man = shell("LC_ALL=C.UTF-8 MANWIDTH=200 man --warnings -l page.1 | col -b");
    EXPECT_EQ(man.status, 0) << man;
    EXPECT_EQ(man.err, "");
    return man.out;
  }

  /// What bash would offer for the last word of a line, whose first is the program's name; as bash splits
  /// lines: "--to=x" is three words.
  std::vector<std::string> completed(const std::vector<std::string>& line) const {
    std::string words;
    for (const std::string& word : line) words += " '" + word + "'";
    const ProgramRun run =
        shell("source ./completion\nCOMP_WORDS=(" + words + ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_" +
              line.front() + ' ' + line.front() + "\nprintf '%s\\n' \"${COMPREPLY[@]}\"");
    EXPECT_EQ(run.status, 0) << run;
    EXPECT_EQ(run.err, "");
    return wordsOf(run.out);
  }

  ScratchFolder& folder() { return folder_; }

 private:
  std::string path_;
  ScratchFolder folder_;
};

}  // namespace zqxml
