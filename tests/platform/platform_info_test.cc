#include <gtest/gtest.h>
#include <stdlib.h>
#include <tests/support/scratch_folder.h>
#include <tests/support/settings.h>
#include <zqxml/platform/platform_info.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

class PlatformInfoFile : public testing::Test {
 protected:
  PlatformInfoFile() { setenv("ZQXML_CONFIG", folder_.path("config.ini").c_str(), 1); }
  ~PlatformInfoFile() override { unsetenv("ZQXML_CONFIG"); }

  void configure(std::string_view text) { folder_.write("config.ini", text); }

  static std::int64_t number(std::string_view section, std::string_view key, const char* focus = "") {
    std::int64_t value = -99;
    return ZQPlatformInfo(focus).getNumber(section, key, value) ? value : -1000;
  }

  const ScratchFolder folder_;
};
constexpr std::int64_t kNone = -1000;

TEST_F(PlatformInfoFile, MissingFileIsAnEmptyOne) {
  EXPECT_EQ(number("EventManager", "a"), kNone);
}

TEST_F(PlatformInfoFile, NumbersAreFoundBySectionAndKey) {
  configure(
      "; a comment\n[EventManager]\na = 5\nb=-7 ; why\n# more\n[Other]\na = 9\nhex = 0x1F\nplus = +3\n");
  EXPECT_EQ(number("EventManager", "a"), 5);
  EXPECT_EQ(number("EventManager", "b"), -7);
  EXPECT_EQ(number("Other", "a"), 9);
  EXPECT_EQ(number("Other", "hex"), 31);
  EXPECT_EQ(number("Other", "plus"), 3);
  EXPECT_EQ(number("Other", "b"), kNone);
  EXPECT_EQ(number("None", "a"), kNone);
  EXPECT_EQ(number("other", "a"), kNone) << "names are compared as they stand";
}

TEST_F(PlatformInfoFile, WhatIsNoNumberIsNotFound) {
  configure("[S]\nword = yes\nmixed = 5x\nempty =\nsign = -\nhex = 0x\nfraction = 1.5\n");
  for (const char* key : {"word", "mixed", "empty", "sign", "hex", "fraction"})
    EXPECT_EQ(number("S", key), kNone) << key;
}

TEST_F(PlatformInfoFile, NumbersThatDoNotFitBecomeTheNearest) {
  configure(
      "[S]\nbig = 99999999999999999999\nsmall = -99999999999999999999\nfive = 5000000000\nminus = -1\n");
  const ZQPlatformInfo info;
  std::int64_t wide = 0;
  EXPECT_TRUE(info.getNumber("S", "big", wide));
  EXPECT_EQ(wide, std::numeric_limits<std::int64_t>::max());
  EXPECT_TRUE(info.getNumber("S", "small", wide));
  EXPECT_EQ(wide, std::numeric_limits<std::int64_t>::min());
  std::int32_t narrow = 0;
  EXPECT_TRUE(info.getNumber("S", "five", narrow));
  EXPECT_EQ(narrow, std::numeric_limits<std::int32_t>::max());
  std::uint32_t positive = 7;
  EXPECT_TRUE(info.getNumber("S", "minus", positive));
  EXPECT_EQ(positive, 0U);
  EXPECT_TRUE(info.getNumber("S", "five", positive));
  EXPECT_EQ(positive, std::numeric_limits<std::uint32_t>::max());
}

TEST_F(PlatformInfoFile, ValueStaysWhenNothingIsFound) {
  int value = 42;
  EXPECT_FALSE(ZQPlatformInfo().getNumber("S", "none", value));
  EXPECT_EQ(value, 42);
  std::string text = "kept";
  EXPECT_FALSE(ZQPlatformInfo().getText("S", "none", text));
  EXPECT_EQ(text, "kept");
}

TEST_F(PlatformInfoFile, TextsAreFoundToo) {
  configure("[Password]\nKeyFile = /some/where with blanks\n");
  std::string text;
  EXPECT_TRUE(ZQPlatformInfo().getText("Password", "KeyFile", text));
  EXPECT_EQ(text, "/some/where with blanks");
}

TEST_F(PlatformInfoFile, SectionOfTheFocusComesFirst) {
  configure("[EventManager]\na = 1\nb = 2\n[EventManager.Agent]\na = 11\n");
  EXPECT_EQ(number("EventManager", "a", "Agent"), 11);
  EXPECT_EQ(number("EventManager", "b", "Agent"), 2);
  EXPECT_EQ(number("EventManager", "a", "Server"), 1);
  EXPECT_EQ(number("EventManager", "a"), 1);
}

TEST_F(PlatformInfoFile, ChangedFileIsReadAgain) {
  configure("[S]\na = 1\n");
  EXPECT_EQ(number("S", "a"), 1);
  configure("[S]\na = 22\n");
  EXPECT_EQ(number("S", "a"), 22);
  const std::string other = folder_.write("other", "[S]\na = 33\n");
  std::filesystem::rename(other, folder_.path("config.ini"));
  EXPECT_EQ(number("S", "a"), 33) << "the same size, another file";
  std::filesystem::remove(folder_.path("config.ini"));
  EXPECT_EQ(number("S", "a"), kNone);
  configure("[S]\na = 44\n");
  EXPECT_EQ(number("S", "a"), 44);
  setenv("ZQXML_CONFIG", folder_.write("second.ini", "[S]\na = 55\n").c_str(), 1);
  EXPECT_EQ(number("S", "a"), 55);
}

TEST_F(PlatformInfoFile, BadLinesArePassedOver) {
  configure("[S]\nthis is no setting\n]]][[\na = 1\n[unclosed\n=\nb = 2\n" + std::string(5000, 'x') +
            "\nc = 3\n");
  EXPECT_EQ(number("S", "a"), 1);
  EXPECT_EQ(number("S", "b"), 2);
  EXPECT_EQ(number("S", "c"), 3);
}

TEST_F(PlatformInfoFile, FolderInPlaceOfTheFileIsAnEmptyOne) {
  std::filesystem::create_directory(folder_.path("config.ini"));
  EXPECT_EQ(number("S", "a"), kNone);
}

TEST(PlatformInfoSource, AnswersForTheFile) {
  const ScratchFolder folder;
  setenv("ZQXML_CONFIG", folder.write("config.ini", "[S]\na = 1\nb = 2\n").c_str(), 1);
  std::string asked;
  ZQPlatformInfo::setSource([&](std::string_view focus, std::string_view section, std::string_view key) {
    asked = std::string(focus) + "|" + std::string(section) + "|" + std::string(key);
    return key == "a" ? std::optional<std::string>("7") : std::nullopt;
  });
  int value = 0;
  EXPECT_TRUE(ZQPlatformInfo("Agent").getNumber("S", "a", value));
  EXPECT_EQ(value, 7);
  EXPECT_EQ(asked, "Agent|S|a");
  EXPECT_FALSE(ZQPlatformInfo().getNumber("S", "b", value)) << "the file is not asked beside it";
  ZQPlatformInfo::setSource({});
  EXPECT_TRUE(ZQPlatformInfo().getNumber("S", "b", value));
  EXPECT_EQ(value, 2);
  unsetenv("ZQXML_CONFIG");
}

TEST(PlatformInfoSource, WhatItThrowsIsNoAnswer) {
  ZQPlatformInfo::setSource(
      [](std::string_view, std::string_view, std::string_view) -> std::optional<std::string> {
        throw std::runtime_error("source");
      });
  int value = 0;
  std::string text;
  EXPECT_FALSE(ZQPlatformInfo().getNumber("S", "a", value));
  EXPECT_FALSE(ZQPlatformInfo().getText("S", "a", text));
  ZQPlatformInfo::setSource({});
}

TEST(PlatformInfoSource, TestSettingsCountLookUps) {
  TestSettings settings{{"EventManager/a", "3"}};
  settings.count("EventManager/a");
  int value = 0;
  EXPECT_TRUE(ZQPlatformInfo().getNumber("EventManager", "a", value));
  EXPECT_FALSE(ZQPlatformInfo().getNumber("EventManager", "b", value));
  EXPECT_EQ(settings.lookUps(), 1);
}

TEST(PlatformInfoSource, ThreadsReadWhileItChanges) {
  const ScratchFolder folder;
  setenv("ZQXML_CONFIG", folder.write("config.ini", "[S]\na = 1\n").c_str(), 1);
  std::atomic<bool> stop{false};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([&] {
      while (!stop) {
        int value = 0;
        if (!ZQPlatformInfo().getNumber("S", "a", value) || value != 1) ++wrong;
      }
    });
  }
  for (int i = 0; i < 50; ++i) {
    ZQPlatformInfo::setSource([](std::string_view, std::string_view, std::string_view) { return "1"; });
    folder.write("next", "[S]\na = 1\n" + std::string(static_cast<std::size_t>(i), ';') + "\n");
    std::filesystem::rename(folder.path("next"), folder.path("config.ini"));
    ZQPlatformInfo::setSource({});
  }
  stop = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  unsetenv("ZQXML_CONFIG");
}

TEST(Focus, IsEmptyAtFirstAndNeverNull) {
  std::thread([] { EXPECT_STREQ(ZQPI_Focus::getFocus(), ""); }).join();
}

/// Asks for the focus when most of its thread, or of the process, has ended.
struct AsksAtTheEnd {
  std::string* answer = nullptr;
  ~AsksAtTheEnd() {
    if (answer == nullptr) return;
    ZQPI_Focus::setFocus("too late");
    *answer = ZQPI_Focus::getFocus();
  }
};

TEST(Focus, EndsWithItsThread) {
  std::string answer = "none";
  std::thread([&answer] {
    // Made before the focus, and so destroyed behind it.
    thread_local AsksAtTheEnd atTheEnd;
    atTheEnd.answer = &answer;
    ZQPI_Focus::setFocus("a name that is too long to stand in the object of a string itself");
  }).join();
  EXPECT_EQ(answer, "");
}

TEST(Focus, BelongsToItsThread) {
  ZQPI_Focus::setFocus("Agent", 1, false);
  EXPECT_STREQ(ZQPI_Focus::getFocus(), "Agent");
  std::thread([] {
    EXPECT_STREQ(ZQPI_Focus::getFocus(), "");
    ZQPI_Focus::setFocus("Other");
  }).join();
  EXPECT_STREQ(ZQPI_Focus::getFocus(), "Agent");
  ZQPI_Focus::setFocus(ZQPI_Focus::getFocus(), 1, false);
  EXPECT_STREQ(ZQPI_Focus::getFocus(), "Agent") << "set to itself";
  ZQPI_Focus::setFocus(nullptr);
  EXPECT_STREQ(ZQPI_Focus::getFocus(), "");
}

}  // namespace
}  // namespace zqxml
