// The files of tests/golden. With ZQXML_GOLDEN_RECORD set in the environment, tests write them anew instead
// of comparing; what changed then shows itself in the next commit.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace zqxml {

inline std::string goldenPath(const std::string& name) {
  return std::string(ZQXML_SOURCE_DIR "/tests/golden/") + name;
}

inline std::string goldenContent(const std::string& name) {
  std::ifstream file(goldenPath(name), std::ios::binary);
  EXPECT_TRUE(file.is_open()) << name;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Expects the file to hold `content`; `shown` makes of both what a report shows well.
inline void expectGolden(const std::string& name, const std::string& content,
                         std::string (*shown)(std::string)) {
  if (std::getenv("ZQXML_GOLDEN_RECORD") != nullptr) {
    std::ofstream(goldenPath(name), std::ios::binary) << content;
    return;
  }
  const std::string golden = goldenContent(name);
  EXPECT_EQ(shown(golden), shown(content));
  EXPECT_TRUE(golden == content) << "the bytes of " << name << " differ";
}

}  // namespace zqxml
