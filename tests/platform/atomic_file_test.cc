#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/failing_file_calls.h>
#include <tests/support/scratch_folder.h>
#include <unistd.h>
#include <zqxml/platform/file.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zqxml {
namespace {

mode_t modeOf(const std::string& path) {
  struct stat state = {};
  EXPECT_EQ(stat(path.c_str(), &state), 0);
  return state.st_mode & 0777;
}

/// Remembers the permissions that files are made with.
class OpenModes : public internal::FileCalls {
 public:
  OpenModes() : previous_(replace(this)) {}
  ~OpenModes() override { replace(previous_); }
  OpenModes(const OpenModes&) = delete;
  OpenModes& operator=(const OpenModes&) = delete;

  int open(const char* path, int flags, mode_t mode) override {
    modes.push_back(mode);
    return FileCalls::open(path, flags, mode);
  }

  std::vector<mode_t> modes;

 private:
  internal::FileCalls* previous_;
};

TEST(AtomicFile, AppearsWithCommitAndNotBefore) {
  const ScratchFolder folder;
  AtomicFile file;
  ASSERT_FALSE(file.Open(folder.path("f")).IsError());
  EXPECT_FALSE(file.Write("text").IsError());
  EXPECT_FALSE(std::filesystem::exists(folder.path("f")));
  EXPECT_FALSE(file.Commit().IsError());
  EXPECT_EQ(folder.read("f"), "text");
  EXPECT_EQ(folder.size(), 1U);
}

TEST(AtomicFile, LeavesTheOldFileWithoutCommit) {
  const ScratchFolder folder;
  folder.write("f", "old");
  {
    AtomicFile file;
    ASSERT_FALSE(file.Open(folder.path("f")).IsError());
    EXPECT_FALSE(file.Write("new").IsError());
  }
  EXPECT_EQ(folder.read("f"), "old");
  EXPECT_EQ(folder.size(), 1U) << "nothing is left beside it";
}

TEST(AtomicFile, LeavesTheOldFileWhenTheDiskIsFull) {
  const ScratchFolder folder;
  folder.write("f", "old");
  FailingFileCalls calls;
  calls.writeError = ENOSPC;
  {
    AtomicFile file;
    ASSERT_FALSE(file.Open(folder.path("f")).IsError());
    EXPECT_EQ(file.Write("new").GetCode(), ENOSPC);
  }
  EXPECT_EQ(folder.read("f"), "old");
  EXPECT_EQ(folder.size(), 1U);
}

TEST(AtomicFile, LeavesTheOldFileWhenAStepOfCommitFails) {
  const ScratchFolder folder;
  folder.write("f", "old");
  for (int FailingFileCalls::*error :
       {&FailingFileCalls::syncError, &FailingFileCalls::closeError, &FailingFileCalls::renameError}) {
    FailingFileCalls calls;
    AtomicFile file;
    ASSERT_FALSE(file.Open(folder.path("f")).IsError());
    EXPECT_FALSE(file.Write("new").IsError());
    calls.*error = EIO;
    EXPECT_EQ(file.Commit().GetCode(), EIO);
    EXPECT_EQ(folder.read("f"), "old");
    EXPECT_EQ(folder.size(), 1U);
  }
}

TEST(AtomicFile, KeepsPermissionsOfTheOldFile) {
  const ScratchFolder folder;
  folder.write("f", "old");
  ASSERT_EQ(chmod(folder.path("f").c_str(), 0640), 0);
  AtomicFile file;
  ASSERT_FALSE(file.Open(folder.path("f")).IsError());
  EXPECT_FALSE(file.Commit().IsError());
  EXPECT_EQ(modeOf(folder.path("f")), 0640U);
}

TEST(AtomicFile, IsNeverOpenToOthersInThePlaceOfAPrivateFile) {
  const ScratchFolder folder;
  folder.write("f", "old");
  ASSERT_EQ(chmod(folder.path("f").c_str(), 0600), 0);
  OpenModes calls;
  AtomicFile file;
  ASSERT_FALSE(file.Open(folder.path("f")).IsError());
  EXPECT_EQ(calls.modes, std::vector<mode_t>{0600});
}

TEST(AtomicFile, NewFileHasThePermissionsOfTheUmask) {
  const ScratchFolder folder;
  const mode_t before = umask(027);
  AtomicFile file;
  EXPECT_FALSE(file.Open(folder.path("f")).IsError());
  EXPECT_FALSE(file.Commit().IsError());
  umask(before);
  EXPECT_EQ(modeOf(folder.path("f")), 0640U);
}

TEST(AtomicFile, LinkStaysALink) {
  const ScratchFolder folder;
  folder.write("real", "old");
  ASSERT_EQ(symlink("real", folder.path("link").c_str()), 0);
  AtomicFile file;
  ASSERT_FALSE(file.Open(folder.path("link")).IsError());
  EXPECT_FALSE(file.Write("new").IsError());
  EXPECT_FALSE(file.Commit().IsError());
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
  EXPECT_EQ(folder.read("real"), "new");
}

TEST(AtomicFile, LinkToNothingStaysALinkAndItsFileIsMade) {
  const ScratchFolder folder;
  ASSERT_TRUE(std::filesystem::create_directory(folder.path("below")));
  ASSERT_EQ(symlink("below/second", folder.path("first").c_str()), 0);
  ASSERT_EQ(symlink("real", folder.path("below/second").c_str()), 0);
  AtomicFile file;
  ASSERT_FALSE(file.Open(folder.path("first")).IsError());
  EXPECT_FALSE(file.Write("new").IsError());
  EXPECT_FALSE(file.Commit().IsError());
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("first")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("below/second")));
  EXPECT_EQ(folder.read("below/real"), "new");
}

TEST(AtomicFile, LinksInACircleAreAnError) {
  const ScratchFolder folder;
  ASSERT_EQ(symlink("b", folder.path("a").c_str()), 0);
  ASSERT_EQ(symlink("a", folder.path("b").c_str()), 0);
  AtomicFile file;
  EXPECT_EQ(file.Open(folder.path("a")).GetCode(), ELOOP);
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("a")));
  EXPECT_EQ(folder.size(), 2U);
}

TEST(AtomicFile, WritesAtOnceToWhatIsNoRegularFile) {
  AtomicFile file;
  ASSERT_FALSE(file.Open("/dev/null").IsError());
  EXPECT_FALSE(file.Write("text").IsError());
  EXPECT_FALSE(file.Commit().IsError());
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(AtomicFile, WritesAtOnceToAPipeThatALinkOfTheSystemNames) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  AtomicFile file;
  EXPECT_FALSE(file.Open("/proc/self/fd/" + std::to_string(ends[1])).IsError());
  EXPECT_FALSE(file.Write("text").IsError());
  EXPECT_FALSE(file.Commit().IsError());
  char text[5] = "";
  EXPECT_EQ(read(ends[0], text, 4), 4);
  EXPECT_STREQ(text, "text");
  close(ends[0]);
  close(ends[1]);
}

TEST(AtomicFile, MissingFolderIsAnError) {
  const ScratchFolder folder;
  AtomicFile file;
  EXPECT_EQ(file.Open(folder.path("none/f")).GetCode(), ENOENT);
  EXPECT_EQ(file.Write("x").GetCode(), EBADF);
  EXPECT_EQ(file.Commit().GetCode(), EBADF);
}

TEST(AtomicFile, FolderAsTargetIsAnError) {
  const ScratchFolder folder;
  AtomicFile file;
  EXPECT_EQ(file.Open(folder.path()).GetCode(), EISDIR);
}

TEST(AtomicFile, NameWithNulIsRefused) {
  AtomicFile file;
  EXPECT_EQ(file.Open(std::string("a\0b", 3)).GetCode(), EINVAL);
}

TEST(AtomicFile, OpeningAgainDiscardsTheFirst) {
  const ScratchFolder folder;
  AtomicFile file;
  ASSERT_FALSE(file.Open(folder.path("f")).IsError());
  ASSERT_FALSE(file.Open(folder.path("g")).IsError());
  EXPECT_FALSE(file.Commit().IsError());
  EXPECT_EQ(folder.size(), 1U);
  EXPECT_TRUE(std::filesystem::exists(folder.path("g")));
}

}  // namespace
}  // namespace zqxml
