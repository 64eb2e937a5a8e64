#include <gmock/gmock.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/platform/loc_text.h>

#include <array>
#include <clocale>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

constexpr std::uint32_t kTrue = 0x3d000552;
constexpr std::uint32_t kFalse = 0x3d000553;
constexpr std::uint32_t kLoginName = 0x750000b6;
constexpr std::uint32_t kAlertLocation = 0x750000b9;
constexpr int kEnglish = 0x0409;
constexpr int kGerman = 0x0407;

/// The text, "(none)" when the look-up says that there is none.
std::string textOf(std::uint32_t id, int localeId) {
  std::array<char, 1024> buffer;
  buffer.fill('x');
  return EvGetLocText(id, localeId, buffer.data(), buffer.size()) ? buffer.data()
         : buffer[0] == '\0'                                      ? "(none)"
                                                                  : "(untouched)";
}

TEST(EvGetLocText, GivesTheTextInTheLanguageOfTheLocale) {
  EXPECT_EQ(textOf(kTrue, kEnglish), "Yes");
  EXPECT_EQ(textOf(kFalse, kEnglish), "No");
  EXPECT_EQ(textOf(kTrue, kGerman), "Ja");
  EXPECT_EQ(textOf(kFalse, kGerman), "Nein");
  EXPECT_EQ(textOf(kLoginName, kEnglish), "Login name");
  EXPECT_EQ(textOf(kLoginName, kGerman), "Anmeldename");
}

TEST(EvGetLocText, RegionWithoutACatalogueTakesThatOfItsLanguage) {
  for (const int german : {0x07, 0x0407, 0x0807, 0x0c07, 0x10407}) EXPECT_EQ(textOf(kTrue, german), "Ja");
  EXPECT_EQ(textOf(kTrue, 0x0809), "Yes");
}

TEST(EvGetLocText, LanguagesWithoutACatalogueHaveNoTexts) {
  // French, Brazilian Portuguese, the invariant locale, and what is no language.
  for (const int other : {0x040c, 0x0416, 0x7f, 0x03fe, -1})
    EXPECT_EQ(textOf(kTrue, other), "(none)") << other;
}

TEST(EvGetLocText, UnknownMessagesHaveNoText) {
  for (const std::uint32_t id : {0u, 1u, 0x3d000551u, 0xffffffffu})
    EXPECT_EQ(textOf(id, kEnglish), "(none)") << id;
}

TEST(EvGetLocText, CutsWhatDoesNotFitBetweenCharacters) {
  std::array<char, 64> buffer;
  const auto cut = [&buffer](std::size_t size) {
    buffer.fill('x');
    EXPECT_TRUE(EvGetLocText(kAlertLocation, kGerman, buffer.data(), size));
    for (std::size_t i = size; i < buffer.size(); ++i) EXPECT_EQ(buffer[i], 'x');
    return std::string(buffer.data());
  };
  EXPECT_EQ(cut(64), "Ablageort für Warnungen");
  EXPECT_EQ(cut(25), "Ablageort für Warnungen");
  EXPECT_EQ(cut(24), "Ablageort für Warnunge");
  EXPECT_EQ(cut(14), "Ablageort fü");
  EXPECT_EQ(cut(13), "Ablageort f");
  EXPECT_EQ(cut(12), "Ablageort f");
  EXPECT_EQ(cut(1), "");
}

TEST(EvGetLocText, NeedsABuffer) {
  char byte = 'x';
  EXPECT_FALSE(EvGetLocText(kTrue, kEnglish, nullptr, 10));
  EXPECT_FALSE(EvGetLocText(kTrue, kEnglish, &byte, 0));
  EXPECT_EQ(byte, 'x');
}

TEST(EvGetLocText, LeavesTheLocaleOfTheProcessAlone) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  textOf(kTrue, kGerman);
  textOf(kTrue, 0);
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

TEST(EvGetLocText, ThreadsAskAtTheSameTime) {
  std::vector<std::thread> threads;
  std::array<int, 4> wrong{};
  for (int& count : wrong) {
    threads.emplace_back([&count] {
      for (int i = 0; i < 500; ++i) {
        count += textOf(kTrue, i % 2 == 0 ? kGerman : kEnglish) != (i % 2 == 0 ? "Ja" : "Yes");
        textOf(kTrue, 0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(wrong, testing::Each(0));
}

/// Ids of all labels of the library's schema.
std::set<std::uint32_t> labels() {
  std::set<std::uint32_t> ids;
  for (const SubsystemDef& subsystem : gSubsystemTable) {
    if (subsystem.name == nullptr || std::string(subsystem.name) == "Render") continue;
    for (int i = 0; i < subsystem.recordCount; ++i)
      for (const FieldDef& field : subsystem.classDefs[i])
        if (field.getLoczId() != 0) ids.insert(static_cast<std::uint32_t>(field.getLoczId()));
  }
  return ids;
}

TEST(EvGetLocText, EveryLabelOfTheSchemaHasATextInEachLanguage) {
  EXPECT_GE(labels().size(), 8u);
  for (const std::uint32_t id : labels())
    for (const int locale : {kEnglish, kGerman}) EXPECT_NE(textOf(id, locale), "(none)") << id;
}

}  // namespace
}  // namespace zqxml
