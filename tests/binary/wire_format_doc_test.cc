// The examples of docs/wire-format.md are what the writer writes and the reader reads; its commands print
// what it shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/binary/binary_type_rows.h>
#include <tests/support/markdown.h>
#include <tests/support/open_message.h>
#include <tests/support/scratch_folder.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <map>
#include <string>
#include <vector>

namespace zqxml {
namespace {

constexpr const char* kPage = ZQXML_SOURCE_DIR "/docs/wire-format.md";

/// The bytes of each example: two hexadecimal digits each, until something else stands in the line.
std::map<std::string, std::string> examples() {
  std::map<std::string, std::string> found;
  for (const MarkdownBlock& block : blocksOf(kPage)) {
    if (block.example.empty()) continue;
    for (const std::string& line : linesOf(block.text))
      found[block.example] += fromHex(line.substr(0, line.find("  ")));
  }
  return found;
}

App::TestMessage2 workedMessage() {
  App::TestMessage2 message;
  setInteger(message, "intField", -3);
  setText(message, "strField", "hi");
  collectionOf<std::vector<std::int32_t>>(message, "ListInt") = {1, -1};
  setInteger(message.mutableM1(), "intFieldM1", 5);
  collectionOf<std::map<std::string, std::int64_t>>(message, "mapStr_LL")["a"] = 7;
  return message;
}

void expectBothWays(XNMessageBase& message, const std::string& bytes, int version) {
  EXPECT_EQ(toHex(serialized(message, version)), toHex(bytes));
  const auto back = readNew(bytes);
  ASSERT_NE(back, nullptr);
  EXPECT_TRUE(*back == message);
  EXPECT_EQ(toHex(serialized(*back, version)), toHex(bytes));
}

TEST(WireFormatPageTest, WorkedExampleHoldsInBothDirections) {
  const auto shown = examples();
  ASSERT_TRUE(shown.contains("worked"));
  EXPECT_EQ(shown.at("worked").size(), 64u);
  App::TestMessage2 message = workedMessage();
  expectBothWays(message, shown.at("worked"), 2);
}

TEST(WireFormatPageTest, ExampleOfVersion1IsWhatIsWritten) {
  const auto shown = examples();
  ASSERT_TRUE(shown.contains("version-1"));
  Demo::EveryType message;
  message.setBstringField(std::string_view("a\0b", 3));
  EXPECT_EQ(toHex(serialized(message, 1)), toHex(shown.at("version-1")));
  EXPECT_EQ(shown.size(), 2u) << "an example without a test";
}

TEST(WireFormatPageTest, RecordOfEachTypeIsTheTestedOne) {
  std::map<std::string, std::string> shown;
  for (const std::string& line : linesOf(contentOf(kPage))) {
    if (!line.starts_with("| `FDT_") || !line.ends_with("` |")) continue;
    const std::size_t record = line.rfind('`', line.size() - 4) + 1;
    shown[line.substr(3, line.find('`', 3) - 3)] = line.substr(record, line.size() - 3 - record);
  }
  std::map<std::string, std::string> tested;
  for (const BinaryTypeRow& row : binaryTypeRows()) tested[kFieldTypes[row.type].name] = row.record;
  EXPECT_EQ(shown, tested);
}

TEST(WireFormatPageTest, CommandsPrintWhatIsShown) {
  const ScratchFolder folder;
  folder.write("example.bin", examples()["worked"]);
  int commands = 0;
  for (const MarkdownBlock& block : blocksOf(kPage))
    if (block.language == "console") commands += expectCommandsPrint(block, folder.path());
  EXPECT_EQ(commands, 1);
}

}  // namespace
}  // namespace zqxml
