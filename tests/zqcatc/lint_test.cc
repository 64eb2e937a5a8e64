// What zqcatc lint finds, and what it leaves alone.
#include "lint.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_text.h"
#include "name_typos.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;

class LintTest : public ::testing::Test {
 protected:
  /// "line:column code" of each finding, which are kept.
  std::vector<std::string> lint(const std::string& body) {
    compiled_ = compile(body);
    EXPECT_THAT(compiled_.errors, IsEmpty());
    findings = lintCatalogue(Snapshot(compiled_.catalogue));
    std::vector<std::string> lines;
    for (const Finding& finding : findings) {
      EXPECT_EQ(finding.severity, "warning");
      EXPECT_EQ(finding.position.file, "T.xml");
      lines.push_back(cat(finding.position.line, ":", finding.position.column, " ", finding.code));
    }
    return lines;
  }
  std::vector<std::string> lintClass(const std::string& fields) {
    return lint("<class name=\"C\" index=\"0\">\n" + fields + "\n</class>");
  }

  std::vector<Finding> findings;

 private:
  Compiled compiled_;
};

TEST_F(LintTest, SensitiveListsMapsAndObjectsAreShownInClear) {
  for (const char* field :
       {"type=\"list_string\"", "type=\"object\" class=\"D\"", "type=\"map_string_string\""}) {
    EXPECT_THAT(lint("<class name=\"D\" index=\"1\"/>\n<class name=\"C\" index=\"0\">\n<field name=\"f\" " +
                     std::string(field) + "><Sensitive/></field></class>"),
                ElementsAre("4:8 sensitive-in-clear"))
        << field;
  }
  EXPECT_THAT(findings[0].text,
              HasSubstr("field 'f' of T_C is marked as sensitive, and of type 'map_string_string'"));
  EXPECT_THAT(lintClass("<field name=\"f\" type=\"string\"><Sensitive/></field>"), IsEmpty());
}

TEST_F(LintTest, PasswordNeedsItsAnnotation) {
  EXPECT_THAT(lintClass("<field name=\"f\" type=\"pstring\"/>"),
              ElementsAre("3:8 password-without-annotation"));
  EXPECT_THAT(findings[0].text, HasSubstr("in the binary form it breaks the message"));
  EXPECT_THAT(lintClass("<field name=\"f\" type=\"pstring\"><Sensitive/></field>"),
              ElementsAre("3:8 password-without-annotation"));
  EXPECT_THAT(findings[0].text, HasSubstr("the binary form holds it as plain text"));
  EXPECT_THAT(lintClass("<field name=\"f\" type=\"pstring\"><Password encType=\"5\"/></field>"), IsEmpty());
}

TEST_F(LintTest, UnsignedSixtyFourBitValuesAreLostInBinary) {
  EXPECT_THAT(
      lintClass("<field name=\"one\" type=\"ulonglong\"/>\n<field name=\"few\" type=\"list_ulonglong\"/>\n"
                "<field name=\"good\" type=\"longlong\"/>"),
      ElementsAre("3:8 lost-in-binary", "4:8 lost-in-binary"));
  EXPECT_THAT(findings[0].text, HasSubstr("write 'longlong'"));
  EXPECT_THAT(findings[1].text, HasSubstr("write 'list_longlong'"));
}

TEST_F(LintTest, MapInASubObjectLosesItsPairs) {
  const std::string classes =
      "<class name=\"P\" index=\"1\">\n<field name=\"sizes\" type=\"map_string_int64\"/></class>\n";
  EXPECT_THAT(lint(classes), IsEmpty());
  for (const char* holder : {"object", "list_object", "map_string_object"}) {
    EXPECT_THAT(lint(classes + "<class name=\"C\" index=\"0\"><field name=\"part\" type=\"" + holder +
                     "\" class=\"P\"/></class>"),
                ElementsAre("3:8 map-in-sub-object"))
        << holder;
  }
  EXPECT_THAT(findings[0].text, HasSubstr("field 'part' of T_C holds the class"));
}

TEST_F(LintTest, MapOfObjectsToObjectsKeepsItsPair) {
  EXPECT_THAT(
      lint("<class name=\"P\" index=\"1\"><field name=\"m\" type=\"map_object_object\" key=\"Q\" "
           "value=\"Q\"/></class><class name=\"Q\" index=\"2\"/>"
           "<class name=\"C\" index=\"0\"><field name=\"part\" type=\"object\" class=\"P\"/></class>"),
      IsEmpty());
}

TEST_F(LintTest, ListWithTheNameOfAnObjectAroundClosesItsSubObject) {
  EXPECT_THAT(
      lint("<class name=\"P\" index=\"1\">\n<field name=\"tags\" type=\"list_string\"/></class>\n"
           "<class name=\"C\" index=\"0\"><field name=\"part\" type=\"object\" class=\"P\"/>"
           "<field name=\"tags\" type=\"object\" class=\"Q\"/></class><class name=\"Q\" index=\"2\"/>"),
      ElementsAre("3:8 closes-sub-object"));
}

TEST_F(LintTest, NamesOneTypoApartAreFoundInTheirClassOnly) {
  EXPECT_THAT(
      lintClass(
          "<field name=\"userName\" type=\"string\"/>\n<field name=\"userNames\" type=\"list_string\"/>"),
      ElementsAre("4:8 names-one-typo-apart"));
  EXPECT_THAT(findings[0].text,
              HasSubstr("field 'userNames' of T_C is one typing error away from 'userName' at line 3"));
  EXPECT_THAT(lint("<class name=\"A\" index=\"0\"><field name=\"userName\" type=\"string\"/></class>"
                   "<class name=\"B\" index=\"1\"><field name=\"userNames\" type=\"string\"/></class>"),
              IsEmpty());
}

TEST_F(LintTest, EnumeratorsOneTypoApartAreFound) {
  EXPECT_THAT(lint("<enum name=\"E\" index=\"0\">\n<value name=\"STARTED\" value=\"1\"/>\n"
                   "<value name=\"STATED\" value=\"2\"/>\n<value name=\"DONE\" value=\"3\"/>\n</enum>"),
              ElementsAre("4:8 names-one-typo-apart"));
  EXPECT_THAT(findings[0].text,
              HasSubstr("enumerator 'STATED' of T_E is one typing error away from 'STARTED' at line 3"));
}

TEST(NameTyposTest, OneCharacterPutInLeftOutOrReplaced) {
  EXPECT_THAT(findNameTypos({"color", "colour"}), ElementsAre(Pair(1, 0)));
  EXPECT_THAT(findNameTypos({"colour", "color"}), ElementsAre(Pair(1, 0)));
  EXPECT_THAT(findNameTypos({"color", "cohor"}), ElementsAre(Pair(1, 0)));
  EXPECT_THAT(findNameTypos({"xcolor", "color"}), ElementsAre(Pair(1, 0)));
  EXPECT_THAT(findNameTypos({"color", "colorx"}), ElementsAre(Pair(1, 0)));
  EXPECT_THAT(findNameTypos({"color", "Color"}), ElementsAre(Pair(1, 0)));
}

TEST(NameTyposTest, TwoErrorsAreNoTypo) {
  EXPECT_THAT(findNameTypos({"color", "colours", "cloor", "olorc"}), IsEmpty());
}

TEST(NameTyposTest, CharactersCountNotBytes) {
  EXPECT_THAT(findNameTypos({"gr\xc3\xb6\xc3\x9f"
                             "e",
                             "gr\xe2\x82\xac\xc3\x9f"
                             "e"}),
              ElementsAre(Pair(1, 0)));
}

TEST(NameTyposTest, NumbersAndShortNamesAreMeant) {
  EXPECT_THAT(findNameTypos({"line1", "line2", "line", "x", "y", "xy"}), IsEmpty());
  EXPECT_THAT(findNameTypos({"line1", "lines"}), ElementsAre(Pair(1, 0)));
}

TEST(NameTyposTest, AgreesWithThePlainDistanceOverAllShortNames) {
  std::vector<std::string> names;
  for (char a : {'a', 'b'})
    for (char b : {'a', 'b', 'c'})
      for (char c : {'a', 'b'})
        for (const char* rest : {"", "a", "b", "ab", "bca"}) names.push_back(std::string{a, b, c} + rest);
  const auto distance = [](const std::string& x, const std::string& y) {
    std::vector<std::size_t> row(y.size() + 1);
    for (std::size_t j = 0; j <= y.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= x.size(); ++i) {
      std::size_t diagonal = std::exchange(row[0], i);
      for (std::size_t j = 1; j <= y.size(); ++j) {
        const std::size_t above = row[j];
        row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (x[i - 1] == y[j - 1] ? 0 : 1)});
        diagonal = above;
      }
    }
    return row[y.size()];
  };
  const auto found = findNameTypos(names);
  for (const auto& [later, earlier] : found) EXPECT_EQ(distance(names[later], names[earlier]), 1u);
  std::size_t expected = 0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    bool near = false;
    for (std::size_t j = 0; j < i; ++j) near = near || distance(names[i], names[j]) == 1;
    expected += near ? 1 : 0;
  }
  EXPECT_EQ(found.size(), expected);
}

TEST(NameTyposTest, LongAndManyNamesAreNoMatter) {
  std::vector<std::string> names;
  for (int i = 0; i < 3000; ++i) names.push_back(std::string(300, 'a') + std::to_string(i * 1000003LL));
  names.emplace_back(200'000, 'x');
  names.push_back(names.back() + "y");
  EXPECT_THAT(findNameTypos(names), ElementsAre(Pair(3001, 3000)));
}

}  // namespace
}  // namespace zqxml::zqcatc
