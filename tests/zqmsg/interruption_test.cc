#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

class Interruption : public testing::TestWithParam<int> {
 protected:
  // A conversion that waits for its input for ever.
  pid_t start() const {
    mkfifo(folder_.path("input").c_str(), 0600);
    const pid_t child = fork();
    if (child != 0) return child;
    if (chdir(folder_.path().c_str()) != 0) _exit(127);
    execl(ZQMSG_PROGRAM, "zqmsg", "convert", "input", "--to", "objects", "-o", "out",
          static_cast<char*>(nullptr));
    _exit(127);
  }
  // Waits for the unfinished file beside the target.
  bool seesUnfinishedFile() const {
    for (int i = 0; i < 6000; ++i) {
      for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
        if (entry.path().filename().string().ends_with(".tmp")) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }

  ScratchFolder folder_;
};

TEST_P(Interruption, LeavesNoUnfinishedFile) {
  folder_.write("out", "old");
  const pid_t child = start();
  ASSERT_GT(child, 0);
  const bool seen = seesUnfinishedFile();
  kill(child, GetParam());
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(seen);
  EXPECT_TRUE(WIFSIGNALED(status)) << status;
  EXPECT_EQ(WTERMSIG(status), GetParam());
  EXPECT_EQ(folder_.read("out"), "old");
  EXPECT_EQ(folder_.size(), 2u) << "more than the input and the old output";
}

INSTANTIATE_TEST_SUITE_P(Zqmsg, Interruption, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& number) { return "Signal" + std::to_string(number.param); });

}  // namespace
}  // namespace zqxml
