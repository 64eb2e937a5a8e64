// Does what docs/tutorial.md says, as its reader would: in an empty folder, with the installed library.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/docs/shown_commands.h"
#include "tests/support/run_program.h"

namespace zqxml {
namespace {

namespace fs = std::filesystem;

TEST(Tutorial, WorksAsItIsPrinted) {
  // At one place each time, so that a compiler cache knows what it has seen.
  const fs::path root = fs::path(ZQXML_BINARY_DIR) / "tutorial";
  fs::remove_all(root);
  fs::create_directories(root / "fleet");
  const std::string prefix = root / "prefix";
  const ProgramRun install = runProgram({CMAKE, "--install", ZQXML_BINARY_DIR, "--prefix", prefix});
  ASSERT_EQ(install.status, 0) << install;
  const char* path = std::getenv("PATH");
  ProgramSetup setup;
  setup.folder = root / "fleet";
  setup.environment = {"PATH=" + prefix + "/bin:" + (path == nullptr ? "" : path),
                       "CMAKE_PREFIX_PATH=" + prefix,
                       std::string("CXX=") + COMPILER,
                       "CMAKE_GENERATOR=Ninja",
                       "CMAKE_CXX_COMPILER_LAUNCHER=" LAUNCHER,
                       "LC_ALL=C.UTF-8",
                       "ZQXML_CONFIG=/dev/null"};
  expectShown(fs::path(ZQXML_SOURCE_DIR) / "docs" / "tutorial.md", [&setup](const std::string& commands) {
    return runProgram({"/bin/bash", "-euo", "pipefail", "-c", "exec 2>&1\n" + commands}, setup);
  });
}

}  // namespace
}  // namespace zqxml
