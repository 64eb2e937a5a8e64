#include <gmock/gmock.h>
#include <tests/support/every_type.h>
#include <tests/support/open_message.h>
#include <tests/support/time_zone.h>
#include <zqxml/xml/xml_serializer.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "tools/zqmsg/page/field_rows.h"
#include "tools/zqmsg/page/markup.h"
#include "tools/zqmsg/page/message_page.h"

namespace zqxml::tool {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string rowsOf(const XNMessageBase& message, bool showSecrets = false) {
  FieldRows rows(showSecrets);
  rows.append(message);
  return rows.html();
}

std::string row(const std::string& name, const std::string& value) {
  return "<div class=\"f\"><span class=\"n\">" + name + "</span><span class=\"v\">" + value +
         "</span></div>\n";
}

std::size_t countOf(const std::string& text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST(PageMarkup, NoCharacterOfATextIsMarkUp) {
  EXPECT_EQ(htmlText(R"(<a href="x" title='y'>&amp;</a>)"),
            "&lt;a href=&quot;x&quot; title=&#39;y&#39;&gt;&amp;amp;&lt;/a&gt;");
}

TEST(PageMarkup, LineFeedsAndTabsStayAndOtherControlsAreTold) {
  EXPECT_EQ(htmlText("a\n\tb\r\x01\n"), "a\n\tb\\r\\x01\n");
}

TEST(PageMarkup, BytesThatAreNoUtf8AreTold) {
  EXPECT_EQ(htmlText(std::string("\xff<\0", 3)), "\\xff&lt;\\x00");
  EXPECT_EQ(htmlText("Grüße 😀"), "Grüße 😀");
  EXPECT_EQ(htmlText(""), "");
}

TEST(PageRows, EveryTypeHasItsRow) {
  const ScopedTimeZone utc("UTC");
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  const std::string rows = rowsOf(message, true);
  const char* path = ZQMSG_PAGE_DIR "/every_type.rows.html";
  if (std::getenv("ZQXML_GOLDEN_RECORD") != nullptr) std::ofstream(path, std::ios::binary) << rows;
  std::ostringstream expected;
  expected << std::ifstream(path, std::ios::binary).rdbuf();
  EXPECT_EQ(rows, expected.str());
}

TEST(PageRows, AMessageWithoutSetFieldsHasNone) {
  EXPECT_EQ(rowsOf(newMessage("Demo_EveryType")), "");
  EXPECT_EQ(rowsOf(XNMessageBase()), "");
}

TEST(PageRows, AnEmptyTextAndAnEmptyListSaySo) {
  OpenMessage message = newMessage("Demo_EveryType");
  setText(message, "stringField", "");
  collectionOf<std::vector<std::string>>(message, "listStringField");
  EXPECT_EQ(rowsOf(message), row("stringField", "<small>empty</small>") +
                                 row("listStringField", "<small>no elements</small>"));
}

TEST(PageRows, AFieldThatIsMarkedWithoutAValueSaysSo) {
  OpenMessage message = newMessage("Demo_EveryType");
  setBit(message, "listStringField");
  EXPECT_EQ(rowsOf(message), row("listStringField", "<small>none</small>"));
}

TEST(PageRows, AnEnumeratorOfNoNameIsItsNumber) {
  OpenMessage message = newMessage("Demo_EveryType");
  setInteger(message, "enumField", 99);
  setInteger(message, "boolField", 3);
  EXPECT_THAT(rowsOf(message), HasSubstr(row("enumField", "99")));
  EXPECT_THAT(rowsOf(message), HasSubstr(row("boolField", "3")));
}

TEST(PageRows, ByteStringsAndPasswordsAreMasked) {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  const std::string rows = rowsOf(message);
  EXPECT_THAT(rows, HasSubstr(row("bstringField", "<span class=\"m\">****</span> <small>13 bytes</small>")));
  EXPECT_THAT(rows, HasSubstr(row("pstringField", "<span class=\"m\">*******</span>")));
  EXPECT_THAT(rows, Not(HasSubstr("pa&amp;ss")));
}

TEST(PageRows, SensitiveFieldsOfEveryKindAreMasked) {
  OpenMessage message = newMessage("Demo_Guarded");
  setText(message, "secretText", "hush");
  setInteger(message, "secretNumber", 4711);
  collectionOf<std::vector<std::string>>(message, "secretList") = {"hush", "hush"};
  const std::string mask = "<span class=\"m\">########</span>";
  EXPECT_EQ(rowsOf(message), row("secretText", mask) + row("secretNumber", mask) + row("secretList", mask));
  EXPECT_THAT(rowsOf(message, true), HasSubstr(row("secretNumber", "4711")));
}

TEST(PageRows, FieldsHiddenFromSummariesAreLeftOut) {
  OpenMessage message = newMessage("Demo_Guarded");
  setText(message, "suppressed", "not for reports");
  setInteger(message, "annotated", 5);
  EXPECT_EQ(rowsOf(message, true), "");
}

TEST(PageRows, AMessageAsDeepAsCanBeReadHasAllItsLevels) {
  constexpr int kLevels = 999;
  std::string xml = "<XmlRead_Node>";
  for (int level = 0; level < kLevels; ++level) xml += "<items>";
  for (int level = 0; level < kLevels; ++level) xml += "</items>";
  const std::unique_ptr<XNMessageBase> message(XMLSerializer().unserialize(xml + "</XmlRead_Node>", false));
  ASSERT_NE(message, nullptr);
  const std::string rows = rowsOf(*message);
  constexpr std::size_t kSections = 100;  // browsers keep no more than some 512 elements inside one another
  EXPECT_EQ(countOf(rows, "<section"), kSections);
  EXPECT_EQ(countOf(rows, "</section>"), kSections);
  EXPECT_EQ(countOf(rows, "<p class=\"h\">"), 2 * kLevels - kSections);
  EXPECT_THAT(rows, HasSubstr("<p class=\"none\">no field is set</p>\n</div></section>\n</div></section>\n"));
}

TEST(Page, StandsAloneAndCountsItsFields) {
  OpenMessage message = newMessage("Demo_EveryType");
  setText(message, "stringField", "</style></script>");
  const std::string page = messagePage(message, PageFacts{1234567, std::nullopt}, false);
  EXPECT_THAT(page, HasSubstr("<dt>XML</dt><dd>1,234,567 bytes</dd>"));
  EXPECT_THAT(page, HasSubstr("<dt>Binary</dt><dd>cannot be written</dd>"));
  EXPECT_THAT(page, HasSubstr("<dt>Fields</dt><dd>1</dd>"));
  EXPECT_THAT(page, HasSubstr("default-src 'none'"));
  EXPECT_THAT(page, Not(HasSubstr("unsafe-inline")));
  EXPECT_THAT(page, HasSubstr("&lt;/style&gt;&lt;/script&gt;"));
  EXPECT_THAT(page, Not(HasSubstr("://")));
}

TEST(Page, AMessageWithoutSetFieldsSaysSo) {
  EXPECT_THAT(messagePage(newMessage("Demo_EveryType"), PageFacts(), false), HasSubstr("No field is set."));
}

}  // namespace
}  // namespace zqxml::tool
