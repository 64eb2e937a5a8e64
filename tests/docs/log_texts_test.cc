// docs/log-texts.md has every text that the library writes to its log, and no other.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/docs/log_calls.h"
#include "tests/support/markdown.h"

namespace zqxml {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const fs::path kSource = ZQXML_SOURCE_DIR;

std::string readFile(const std::string& file) {
  return contentOf(kSource / file);
}

std::vector<std::string> sources() {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(kSource / "zqxml")) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".h" || extension == ".cc")
      files.push_back(entry.path().lexically_relative(kSource).string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

const LogTexts& allTexts() {
  static const LogTexts all = [] {
    LogTexts sum;
    for (const std::string& file : sources()) {
      LogTexts found = logTextsOf(file, &readFile);
      std::move(found.texts.begin(), found.texts.end(), std::back_inserter(sum.texts));
      std::move(found.problems.begin(), found.problems.end(), std::back_inserter(sum.problems));
      for (const std::string_view expression : found.used) sum.used.push_back(expression);
    }
    return sum;
  }();
  return all;
}

/// A row of the index.
struct Row {
  std::string text;
  int level = 0;
  std::set<std::string> functions;  ///< "the accessor" stands for all of them
  std::string cure;
};

/// A text with its level.
std::string keyOf(const std::string& text, int level) {
  return std::to_string(level) + ": " + text;
}

std::multimap<std::string, Row> index() {
  static const std::regex row(R"re(^\| `(.*?)` \| (\d+) \| (.*?) \| (.*) \|$)re");
  static const std::regex name("`([^`]+)`");
  std::multimap<std::string, Row> rows;
  for (const std::string& line : linesOf(readFile("docs/log-texts.md"))) {
    if (!line.starts_with("| ") || line.starts_with("| Line ")) continue;
    std::smatch match;
    if (!std::regex_match(line, match, row)) {
      ADD_FAILURE() << "no row of the index: " << line;
      continue;
    }
    Row found{match[1], std::stoi(match[2]), {}, match[4]};
    const std::string functions = match[3];
    for (std::sregex_iterator at(functions.begin(), functions.end(), name), end; at != end; ++at)
      found.functions.insert((*at)[1]);
    if (functions == "the accessor") found.functions.insert(functions);
    EXPECT_THAT(found.functions, testing::Not(IsEmpty())) << line;
    rows.emplace(keyOf(found.text, found.level), found);
  }
  return rows;
}

TEST(LogTexts, EveryCallTellsItsText) {
  EXPECT_THAT(allTexts().problems, IsEmpty()) << "write the text as a literal where it is logged, or say in "
                                                 "tests/docs/log_calls.cc where it comes from";
  EXPECT_GT(allTexts().texts.size(), 150u);
}

TEST(LogTexts, NoCallIsMissed) {
  // A line by line look that knows nothing of literals and comments finds as many.
  static const std::regex call(R"re(^[^/]*\b(logError|logDebug)\((?!const char).*)re");
  for (const std::string& file : sources()) {
    const std::string content = readFile(file);
    const std::vector<std::string> lines = linesOf(content);
    const auto seen = std::count_if(lines.begin(), lines.end(),
                                    [](const std::string& line) { return std::regex_match(line, call); });
    const std::string code = withoutComments(content);
    EXPECT_EQ(static_cast<std::size_t>(seen),
              callsOf("logError", code).size() + callsOf("logDebug", code).size())
        << file;
  }
}

TEST(LogTexts, EveryTextIsInTheIndex) {
  const auto rows = index();
  for (const LogText& text : allTexts().texts) {
    const auto range = rows.equal_range(keyOf(text.text, text.level));
    const auto first = range.first, last = range.second;
    EXPECT_NE(first, last) << text.place << " writes a line of level " << text.level
                           << " which docs/log-texts.md lacks: " << text.text;
    if (first == last) continue;
    const auto isNamed = [&](const std::string& function) {
      return std::any_of(first, last,
                         [&](const auto& row) { return row.second.functions.contains(function); });
    };
    EXPECT_TRUE(text.functions.empty() || std::any_of(text.functions.begin(), text.functions.end(), isNamed))
        << text.place << ": docs/log-texts.md does not name " << text.functions[0] << " beside " << text.text;
  }
}

TEST(LogTexts, EveryRowOfTheIndexIsInTheSources) {
  std::set<std::string> written;
  for (const LogText& text : allTexts().texts) written.insert(keyOf(text.text, text.level));
  std::string code;
  for (const std::string& file : sources()) code += withoutComments(readFile(file));
  for (const auto& [key, row] : index()) {
    EXPECT_TRUE(written.contains(key)) << "docs/log-texts.md has a line that nothing writes: " << key;
    for (const std::string& function : row.functions)
      EXPECT_TRUE(function == "the accessor" || code.find('"' + function + '"') != code.npos)
          << "no line names " << function << ", as docs/log-texts.md says beside " << key;
  }
}

TEST(LogTexts, EveryRowHasCauseAndCure) {
  for (const auto& [key, row] : index()) {
    EXPECT_GT(row.cure.size(), 8u) << key;
    EXPECT_TRUE(row.cure.ends_with('.')) << key;
  }
}

TEST(LogTexts, NothingThatTellsWhereATextComesFromIsLeftOver) {
  for (const TextSource& source : textSources())
    EXPECT_THAT(allTexts().used, testing::Contains(source.expression)) << source.file;
}

TEST(LogTexts, TheMessageLogIsReachedInNoOtherWay) {
  for (const std::string& file : sources()) {
    const std::string code = withoutComments(readFile(file));
    const std::string mark = "XmlLogContext::instance()";
    for (std::size_t at = code.find(mark); at != code.npos; at = code.find(mark, at + 1)) {
      const std::string behind = code.substr(at + mark.size(), 7);
      const bool isKnown =
          behind.starts_with(".error(") || behind.starts_with(".debug(") || behind.starts_with(".log(");
      EXPECT_TRUE(isKnown || behind.starts_with(" noexce") || behind.starts_with(";"))
          << file << ": " << behind;
    }
  }
}

// The scanner itself, on sources of its own.

std::string sample;

LogTexts scan(const std::string& code, const std::string& file = "zqxml/xml/sample.cc") {
  sample = code;
  return logTextsOf(file, [](const std::string&) { return sample; });
}

TEST(LogScan, FindsATextThatIsNew) {
  const LogTexts found = scan("void f() {\n  logError(\"C::f\", \"Lost [%s], (twice)\", name(1, 2));\n}\n");
  EXPECT_THAT(found.problems, IsEmpty());
  ASSERT_THAT(found.texts, SizeIs(1));
  EXPECT_EQ(found.texts[0].text, "Lost [%s], (twice)");
  EXPECT_EQ(found.texts[0].level, 0);
  EXPECT_EQ(found.texts[0].place, "zqxml/xml/sample.cc:2");
  EXPECT_THAT(found.texts[0].functions, ElementsAre("C::f"));
  EXPECT_FALSE(index().contains(keyOf(found.texts[0].text, found.texts[0].level)));
}

TEST(LogScan, TakesLevelAndConstantName) {
  const LogTexts found =
      scan("constexpr char kWhere[] = \"C::g\";\nvoid g() { logDebug(kWhere, 25, \" Seen \"); }\n");
  ASSERT_THAT(found.texts, SizeIs(1));
  EXPECT_EQ(found.texts[0].level, 25);
  EXPECT_EQ(found.texts[0].text, "Seen");
  EXPECT_THAT(found.texts[0].functions, ElementsAre("C::g"));
}

TEST(LogScan, TakesTheConstantBeforeTheCallAndThoseOfClasses) {
  const LogTexts found = scan(
      "void f() { constexpr char kIt[] = \"f\"; logError(kIt, \"A\"); }\n"
      "void g() { constexpr char kIt[] = \"g\"; logError(kIt, \"B\"); logError(Mode::kIt, \"C\"); }\n");
  ASSERT_THAT(found.texts, SizeIs(3));
  EXPECT_THAT(found.texts[0].functions, ElementsAre("f"));
  EXPECT_THAT(found.texts[1].functions, ElementsAre("g"));
  EXPECT_THAT(found.texts[2].functions, ElementsAre("f", "g"));
}

TEST(LogScan, TakesBothBranchesAndNeighbours) {
  const LogTexts found = scan("void f() { logError(where, ok ? \"One \" \"two\" : \"Three\", x); }");
  ASSERT_THAT(found.texts, SizeIs(2));
  EXPECT_EQ(found.texts[0].text, "One two");
  EXPECT_EQ(found.texts[1].text, "Three");
  EXPECT_THAT(found.texts[0].functions, IsEmpty());
}

TEST(LogScan, TakesTheWordsBehindABareFormat) {
  const LogTexts found = scan("void f() { logError(\"f\", \"[%s]\", \"The words\"); }");
  ASSERT_THAT(found.texts, SizeIs(1));
  EXPECT_EQ(found.texts[0].text, "The words");
}

TEST(LogScan, SaysWhatItCannotTell) {
  EXPECT_THAT(scan("void f(const char* why) { logError(\"f\", why); }").problems, SizeIs(1));
  EXPECT_THAT(scan("void f(const char* why) { logError(\"f\", \"%s\", why); }").problems, SizeIs(1));
  EXPECT_THAT(scan("void f() { EvDebug::DebugLvl(\"f\", 0, 0, text(), 1); }").problems, SizeIs(1));
  EXPECT_THAT(scan("void f() { XmlLogContext::instance().error(\"f\", text); }").problems, SizeIs(1));
  EXPECT_THAT(scan("void f() { log->handleMsgEventDebug_NEW(nullptr, \"f\", 0, -1, 0, t, {}); }").problems,
              SizeIs(1));
  EXPECT_THAT(scan("void f() { logDebug(\"f\", level, \"Text\"); }").problems, SizeIs(1));
}

TEST(LogScan, PassesOverCommentsAndDeclarations) {
  const LogTexts found = scan(
      "// logError(\"f\", \"a\");\n/* logError(\"f\", \"b\"); */\n"
      "void logError(const char* function, const char* format, const Args&... arguments) noexcept {}\n"
      "const char* url = \"http://logError(1, 2)\";\nvoid mylogError(int);\n");
  EXPECT_THAT(found.texts, IsEmpty());
  EXPECT_THAT(found.problems, IsEmpty());
}

}  // namespace
}  // namespace zqxml
