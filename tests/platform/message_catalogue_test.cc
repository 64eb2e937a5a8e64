#include <gmock/gmock.h>
#include <sys/stat.h>
#include <tests/support/scratch_folder.h>
#include <zqxml/platform/internal/message_catalogue.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace zqxml::internal {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void put32(std::string& out, std::uint32_t value, bool bigEndian) {
  for (int i = 0; i < 4; ++i) {
    const int shift = 8 * (bigEndian ? 3 - i : i);
    out += static_cast<char>(value >> shift & 0xff);
  }
}

/// A catalogue file with these texts.
std::string fileOf(const std::map<std::string, std::string>& texts, bool bigEndian = false) {
  const auto count = static_cast<std::uint32_t>(texts.size());
  std::string head, keys, translations, strings;
  const std::uint32_t stringsAt = 28 + 16 * count;
  for (const auto& [key, text] : texts) {
    put32(keys, static_cast<std::uint32_t>(key.size()), bigEndian);
    put32(keys, stringsAt + static_cast<std::uint32_t>(strings.size()), bigEndian);
    strings += key + '\0';
    put32(translations, static_cast<std::uint32_t>(text.size()), bigEndian);
    put32(translations, stringsAt + static_cast<std::uint32_t>(strings.size()), bigEndian);
    strings += text + '\0';
  }
  for (const std::uint32_t word : {0x950412deu, 0u, count, 28u, 28 + 8 * count, 0u, 0u})
    put32(head, word, bigEndian);
  return head + keys + translations + strings;
}

const std::map<std::string, std::string> kTexts{{"", "header"}, {"0x1", "one"}, {"0x2", "zwölf"}, {"b", ""}};

TEST(MessageCatalogue, FindsATextByItsKey) {
  for (const bool bigEndian : {false, true}) {
    const MessageCatalogue catalogue(fileOf(kTexts, bigEndian));
    EXPECT_EQ(catalogue.text("0x1"), "one");
    EXPECT_EQ(catalogue.text("0x2"), "zwölf");
    EXPECT_EQ(catalogue.text(""), "header");
    EXPECT_EQ(catalogue.text("b"), "");
    for (const char* key : {"0", "0x", "0x11", "0x3", "a", "c"}) EXPECT_EQ(catalogue.text(key), "") << key;
  }
}

TEST(MessageCatalogue, FindsEachOfManyTexts) {
  std::map<std::string, std::string> texts;
  for (int i = 0; i < 300; ++i) texts["key" + std::to_string(i)] = "text" + std::to_string(i);
  const MessageCatalogue catalogue(fileOf(texts));
  for (const auto& [key, text] : texts) EXPECT_EQ(catalogue.text(key), text);
}

TEST(MessageCatalogue, WhatIsNoCatalogueHasNoTexts) {
  EXPECT_EQ(MessageCatalogue("").text("0x1"), "");
  EXPECT_EQ(MessageCatalogue("not a catalogue, but long enough").text("0x1"), "");
  EXPECT_EQ(MessageCatalogue(fileOf({})).text("0x1"), "");
}

TEST(MessageCatalogue, StaysInsideOfADamagedFile) {
  const std::string file = fileOf(kTexts);
  for (std::size_t length = 0; length < file.size(); ++length) {
    const MessageCatalogue catalogue(file.substr(0, length));
    for (const auto& [key, text] : kTexts) {
      const std::string_view found = catalogue.text(key);
      EXPECT_TRUE(found.empty() || found == text) << length;
    }
  }
  for (std::size_t at = 0; at + 4 <= file.size(); ++at) {
    for (const std::uint32_t value : {0xffffffffu, 0x7fffffffu, 0xfffffff8u, 0u}) {
      std::string damaged = file;
      std::string word;
      put32(word, value, false);
      damaged.replace(at, 4, word);
      const MessageCatalogue catalogue(damaged);
      for (const auto& [key, text] : kTexts) EXPECT_LE(catalogue.text(key).size(), file.size());
    }
  }
}

TEST(MessageCatalogue, LoadsTheFirstLanguageThatAFolderHas) {
  const ScratchFolder scratch;
  for (const char* folder : {"a/de", "b/de", "b/en"})
    std::filesystem::create_directories(scratch.path(std::string(folder) + "/LC_MESSAGES"));
  scratch.write("a/de/LC_MESSAGES/zqxml.mo", fileOf({{"k", "first folder"}}));
  scratch.write("b/de/LC_MESSAGES/zqxml.mo", fileOf({{"k", "second folder"}}));
  scratch.write("b/en/LC_MESSAGES/zqxml.mo", fileOf({{"k", "english"}}));
  const std::vector<std::string> folders{scratch.path("a"), scratch.path("b")};
  const auto textOf = [&folders](const std::vector<std::string>& languages) {
    const auto catalogue = MessageCatalogue::load(folders, languages);
    return catalogue ? std::string(catalogue->text("k")) : "none";
  };
  EXPECT_EQ(textOf({"de", "en"}), "first folder");
  EXPECT_EQ(textOf({"fr", "en", "de"}), "english");
  EXPECT_EQ(textOf({"fr"}), "none");
  EXPECT_EQ(textOf({}), "none");
  EXPECT_EQ(textOf({"../b/en", "", "a/../../b/de"}), "none");
}

TEST(MessageCatalogue, PassesOverAFileThatIsTooLarge) {
  const ScratchFolder scratch;
  std::filesystem::create_directories(scratch.path("de/LC_MESSAGES"));
  scratch.write("de/LC_MESSAGES/zqxml.mo", fileOf({{"k", "text"}}));
  std::filesystem::resize_file(scratch.path("de/LC_MESSAGES/zqxml.mo"), MessageCatalogue::kMostBytes + 1);
  EXPECT_FALSE(MessageCatalogue::load({scratch.path("")}, {"de"}).has_value());
}

TEST(MessageCatalogue, PassesOverWhatIsNoFile) {
  const ScratchFolder scratch;
  for (const char* folder : {"de/LC_MESSAGES", "fr/LC_MESSAGES/zqxml.mo"})
    std::filesystem::create_directories(scratch.path(folder));
  ASSERT_EQ(mkfifo(scratch.path("de/LC_MESSAGES/zqxml.mo").c_str(), 0600), 0);
  EXPECT_FALSE(MessageCatalogue::load({scratch.path("")}, {"de", "fr"}).has_value());
}

TEST(LanguagesOf, ALocaleAsksForItsRegionAndItsLanguage) {
  EXPECT_THAT(languagesOf(nullptr, "de_AT.UTF-8@euro"), ElementsAre("de_AT@euro", "de_AT", "de@euro", "de"));
  EXPECT_THAT(languagesOf(nullptr, "en_US.UTF-8"), ElementsAre("en_US", "en"));
  EXPECT_THAT(languagesOf("", "fr"), ElementsAre("fr"));
}

TEST(LanguagesOf, TheListOfLanguagesComesFirst) {
  EXPECT_THAT(languagesOf("de::pt_BR", "en_US"), ElementsAre("de", "pt_BR", "pt", "en_US", "en"));
}

TEST(LanguagesOf, WithoutALocaleThereIsNone) {
  for (const char* locale : {"C", "POSIX", "C.UTF-8", "C.utf8", ""})
    EXPECT_THAT(languagesOf("de", locale), IsEmpty()) << locale;
  EXPECT_THAT(languagesOf("de", nullptr), IsEmpty());
}

TEST(CatalogueFolders, AreThoseOfTheEnvironmentOrBesideTheProgram) {
  EXPECT_THAT(catalogueFolders("/some/folder"), ElementsAre("/some/folder"));
  for (const char* given : {static_cast<const char*>(nullptr), ""}) {
    bool found = false;
    for (const std::string& folder : catalogueFolders(given))
      found = found || std::filesystem::exists(folder + "/de/LC_MESSAGES/zqxml.mo");
    EXPECT_TRUE(found);
  }
}

}  // namespace
}  // namespace zqxml::internal
