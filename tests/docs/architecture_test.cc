// What docs/architecture.md promises of the source tree.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/markdown.h"

namespace zqxml {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

const fs::path kSource = ZQXML_SOURCE_DIR;

/// The C++ files below a folder, by their paths from the root of the tree.
Names sourcesOf(const std::string& folder) {
  Names names;
  for (const auto& entry : fs::recursive_directory_iterator(kSource / folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".h" || extension == ".cc" || extension == ".def")
      names.push_back(entry.path().lexically_relative(kSource).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The files of the library that a file includes.
Names includesOf(const std::string& name) {
  static const std::regex kInclude("^#include <(zqxml/[^>]*)>.*");
  Names included;
  for (const std::string& line : linesOf(contentOf(kSource / name))) {
    std::smatch match;
    if (std::regex_match(line, match, kInclude)) included.push_back(match[1]);
  }
  return included;
}

bool startsWithAny(std::string_view name, const Names& prefixes) {
  return std::any_of(prefixes.begin(), prefixes.end(),
                     [name](const std::string& prefix) { return name.starts_with(prefix); });
}

TEST(Architecture, LowerFoldersIncludeNothingOfUpperOnes) {
  const std::string log = "zqxml/logging/xml_log_context";
  // Class numbers that the message itself knows come from its generated header.
  const std::string known = "zqxml/catalogue/generated/ZqEntities.h";
  const std::map<std::string, Names> allowed = {
      {"zqxml/platform", {"zqxml/platform/"}},
      {"zqxml/catalogue", {"zqxml/platform/", log, "zqxml/catalogue/"}},
      {"zqxml/message", {"zqxml/platform/", log, "zqxml/catalogue/", "zqxml/message/"}},
  };
  for (const auto& [folder, below] : allowed) {
    const Names sources = sourcesOf(folder);
    EXPECT_GT(sources.size(), 5u) << folder;
    for (const std::string& source : sources)
      for (const std::string& included : includesOf(source)) {
        EXPECT_TRUE(startsWithAny(included, below)) << source << " includes " << included;
        const bool isGenerated = included.find("/generated/") != std::string::npos;
        EXPECT_TRUE(!isGenerated || included == known) << source << " includes " << included;
      }
  }
  for (const char* end : {".h", ".cc"})
    for (const std::string& included : includesOf(log + end))
      EXPECT_TRUE(startsWithAny(included, {"zqxml/platform/", log}))
          << log << end << " includes " << included;
}

/// Finds a way of includes from a file back to itself.
class CycleSearch {
 public:
  explicit CycleSearch(const Names& sources) {
    for (const std::string& source : sources) includes_[source] = includesOf(source);
  }
  std::string cycle() {
    for (const auto& [source, included] : includes_)
      if (leadsBack(source)) return found_;
    return {};
  }

 private:
  enum class State { kNew, kOpen, kDone };

  bool leadsBack(const std::string& source) {
    State& state = states_[source];
    if (state == State::kDone || !includes_.contains(source)) return false;
    if (state == State::kOpen) {
      found_ = source;
      return true;
    }
    state = State::kOpen;
    for (const std::string& included : includes_[source])
      if (leadsBack(included)) {
        found_ = source + " > " + found_;
        return true;
      }
    state = State::kDone;
    return false;
  }

  std::map<std::string, Names> includes_;
  std::map<std::string, State> states_;
  std::string found_;
};

TEST(Architecture, NoTwoFilesIncludeEachOther) {
  EXPECT_EQ(CycleSearch(sourcesOf("zqxml")).cycle(), "");
}

TEST(Architecture, OnlyTheCatalogueSwitchesOverFieldTypes) {
  static const std::regex kCase("^\\s*case FDT_.*");
  for (const char* folder : {"zqxml", "tools"})
    for (const std::string& source : sourcesOf(folder)) {
      if (source.starts_with("zqxml/catalogue/")) continue;
      for (const std::string& line : linesOf(contentOf(kSource / source)))
        EXPECT_FALSE(std::regex_match(line, kCase)) << source << ": " << line;
    }
}

}  // namespace
}  // namespace zqxml
