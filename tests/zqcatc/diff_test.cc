// What the comparison of two catalogues says about each sort of change.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "catalogue_diff.h"
#include "compile_text.h"
#include "field_forms.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Compares subsystems; gives "code: severity" for each change, and keeps the findings.
class DiffTest : public ::testing::Test {
 protected:
  std::vector<std::string> compareFiles(std::vector<SchemaSource> before, std::vector<SchemaSource> after) {
    before_ = compileFiles(std::move(before));
    after_ = compileFiles(std::move(after));
    EXPECT_THAT(before_.errors, IsEmpty());
    EXPECT_THAT(after_.errors, IsEmpty());
    findings = compareCatalogues(Snapshot(before_.catalogue), Snapshot(after_.catalogue));
    std::vector<std::string> lines;
    for (const Finding& finding : findings) lines.push_back(finding.code + ": " + finding.severity);
    return lines;
  }
  std::vector<std::string> compareBodies(const std::string& before, const std::string& after) {
    return compareFiles({{"T.xml", wrap(before)}}, {{"T.xml", wrap(after)}});
  }
  std::vector<std::string> compareFieldTexts(const std::string& before, const std::string& after) {
    return compareBodies("<class name=\"C\" index=\"0\">\n" + before + "\n</class>",
                         "<class name=\"C\" index=\"0\">\n" + after + "\n</class>");
  }
  static std::string wrap(const std::string& body, const std::string& head = "name=\"T\" slot=\"202\"") {
    return "<subsystem " + head + " records=\"20\">\n" + body + "\n</subsystem>\n";
  }

  std::vector<Finding> findings;

 private:
  Compiled before_;
  Compiled after_;
};

constexpr const char* kA = "<field name=\"alpha\" type=\"int\"/>";
constexpr const char* kB = "<field name=\"beta\" type=\"string\"/>";

TEST_F(DiffTest, NothingChangedSaysNothing) {
  EXPECT_THAT(compareFieldTexts(kA, kA), IsEmpty());
}

TEST_F(DiffTest, FieldAtTheEndIsSafe) {
  EXPECT_THAT(compareFieldTexts(kA, std::string(kA) + "\n" + kB), ElementsAre("field-added: safe"));
  EXPECT_EQ(findings[0].text, "field 'beta' of T_C is new: a reader that does not know it passes over it");
  EXPECT_EQ(findings[0].position.file, "T.xml");
  EXPECT_EQ(findings[0].position.line, 4);
}

TEST_F(DiffTest, FieldInTheMiddleMovesThoseBehindUnderCompiledCallers) {
  EXPECT_THAT(compareFieldTexts(kA, std::string(kB) + "\n" + kA),
              ElementsAre("field-added: safe", "field-moved: breaks callers"));
  EXPECT_THAT(findings[1].text,
              HasSubstr("field 'alpha' of T_C moved; 'alpha' is now member 1 in slot 4, was "
                        "member 0 in slot 0: callers: "));
  EXPECT_EQ(findings[1].position.line, 4);
}

TEST_F(DiffTest, FieldThatIsGoneBreaksCallersAndStandsAtItsOldPlace) {
  EXPECT_THAT(compareFieldTexts(std::string(kA) + kB, kA), ElementsAre("field-removed: breaks callers"));
  EXPECT_THAT(findings[0].text, HasSubstr("field 'beta' of T_C is gone"));
  EXPECT_THAT(findings[0].text, HasSubstr("it was at T.xml:3"));
}

TEST_F(DiffTest, RenamedFieldChangesItsHash) {
  EXPECT_THAT(compareFieldTexts(kA, "<field name=\"gamma\" type=\"int\"/>"),
              ElementsAre("field-renamed: breaks xml, binary, callers"));
  EXPECT_THAT(findings[0].text, HasSubstr("readers find it by the hash of its name, now 0x"));
}

TEST_F(DiffTest, RenamedFieldOfTheSameHashIsFoundByReaders) {
  // "Aa" and "BB" have one hash.
  EXPECT_THAT(compareFieldTexts("<field name=\"Aa\" type=\"int\"/>", "<field name=\"BB\" type=\"int\"/>"),
              ElementsAre("field-renamed: breaks callers"));
}

TEST_F(DiffTest, FieldRenamedBehindANewOneIsStillRenamed) {
  EXPECT_THAT(compareFieldTexts(std::string(kA) + "<field name=\"one\" type=\"bool\"/>",
                                "<field name=\"new\" type=\"string\"/>" + std::string(kA) +
                                    "<field name=\"two\" type=\"bool\"/>"),
              ElementsAre("field-added: safe", "field-renamed: breaks xml, binary, callers",
                          "field-moved: breaks callers"));
}

TEST_F(DiffTest, TypesAreComparedByTheirForms) {
  const auto change = [this](const std::string& before, const std::string& after) {
    const auto field = [](const std::string& type) {
      const bool refers = type == "enum" || type == "list_enum";
      return "<field name=\"f\" type=\"" + type + (refers ? "\" class=\"E\"/>" : "\"/>");
    };
    const std::string other =
        "<enum name=\"E\" index=\"1\"><value name=\"V\" value=\"1\"/></enum><class name=\"C\" index=\"0\">";
    const auto lines = compareBodies(other + field(before) + "</class>", other + field(after) + "</class>");
    return lines.size() == 1 && lines[0].starts_with("field-type: ") ? lines[0].substr(12)
                                                                     : testing::PrintToString(lines);
  };
  EXPECT_EQ(change("int", "long"), "safe");
  EXPECT_EQ(change("int", "time32"), "safe");
  EXPECT_EQ(change("list_uint", "list_bool"), "safe");
  EXPECT_EQ(change("list_uint", "list_enum"), "safe");
  EXPECT_EQ(change("string", "wstring"), "breaks callers");
  EXPECT_EQ(change("list_wstring", "list_string"), "breaks callers");
  EXPECT_EQ(change("int", "uint"), "breaks binary, callers");
  EXPECT_EQ(change("int", "longlong"), "breaks binary, callers");
  EXPECT_EQ(change("enum", "int"), "breaks xml, callers");
  EXPECT_EQ(change("bool", "uint"), "breaks xml, callers");
  EXPECT_EQ(change("longlong", "double"), "breaks xml, binary, callers");
  EXPECT_EQ(change("string", "bstring"), "breaks xml, binary, callers");
  EXPECT_EQ(change("bstring", "pstring"), "breaks xml, binary, callers");
  EXPECT_EQ(change("int", "list_int"), "breaks xml, binary, callers");
  EXPECT_EQ(change("list_int", "list_longlong"), "breaks xml, binary, callers");
  EXPECT_EQ(change("longlong", "ulonglong"), "breaks binary, callers");
  EXPECT_EQ(change("map_int64_string", "map_string_string"), "breaks xml, binary, callers");
  EXPECT_THAT(findings[0].text, HasSubstr("is now of type 'map_string_string', was 'map_int64_string'"));
}

TEST_F(DiffTest, NewFieldThatReadersCannotPassOverBreaksBinary) {
  for (const char* type : {"ulonglong", "list_ulonglong", "pstring"}) {
    EXPECT_THAT(compareFieldTexts(kA, std::string(kA) + "<field name=\"f\" type=\"" + type + "\"/>"),
                ElementsAre("field-added: breaks binary"))
        << type;
    EXPECT_THAT(compareFieldTexts(std::string(kA) + "<field name=\"f\" type=\"" + type + "\"/>", kA),
                ElementsAre("field-removed: breaks binary, callers"))
        << type;
  }
  EXPECT_THAT(compareFieldTexts(kA, std::string(kA) + "<field name=\"f\" type=\"pstring\"><Password "
                                                      "encType=\"5\"/></field>"),
              ElementsAre("field-added: safe"));
}

TEST_F(DiffTest, NewFieldWhoseObjectsHoldItsNameBreaksXml) {
  const std::string node =
      "<class name=\"N\" index=\"1\"><field name=\"child\" type=\"list_object\" class=\"N\"/></class>";
  EXPECT_THAT(
      compareBodies(
          node + "<class name=\"C\" index=\"0\"/>",
          node + "<class name=\"C\" index=\"0\"><field name=\"child\" type=\"object\" class=\"N\"/></class>"),
      ElementsAre("field-added: breaks xml"));
  EXPECT_THAT(findings[0].text, HasSubstr("passes over the first end tag of that name only"));
}

TEST_F(DiffTest, NewFieldThatClosesASubObjectBreaksXml) {
  const std::string part =
      "<class name=\"P\" index=\"1\"><field name=\"tags\" type=\"list_string\"/></class>";
  const std::string item = "<field name=\"part\" type=\"object\" class=\"P\"/>";
  EXPECT_THAT(compareBodies(part + "<class name=\"C\" index=\"0\">" + item + "</class>",
                            part + "<class name=\"C\" index=\"0\">" + item +
                                "<field name=\"tags\" type=\"list_object\" class=\"N\"/></class>"
                                "<class name=\"N\" index=\"2\"/>"),
              UnorderedElementsAre("field-added: breaks xml", "class-added: safe"));
}

TEST_F(DiffTest, ReferenceToAnotherClassBreaksBothForms) {
  const std::string classes =
      "<class name=\"A\" index=\"1\"/><class name=\"B\" index=\"2\"/><class name=\"C\" index=\"0\">";
  EXPECT_THAT(compareBodies(classes + "<field name=\"o\" type=\"object\" class=\"A\"/></class>",
                            classes + "<field name=\"o\" type=\"object\" class=\"B\"/></class>"),
              ElementsAre("field-class: breaks xml, binary, callers"));
}

TEST_F(DiffTest, ReferenceToARenamedClassIsNoChangeOfTheField) {
  const std::string field = "<class name=\"C\" index=\"0\"><field name=\"o\" type=\"object\" class=\"";
  EXPECT_THAT(compareBodies("<class name=\"A\" index=\"1\" id=\"7\"/>" + field + "A\"/></class>",
                            "<class name=\"B\" index=\"1\" id=\"7\"/>" + field + "B\"/></class>"),
              ElementsAre("class-renamed: breaks xml, callers"));
}

TEST_F(DiffTest, OtherEnumerationBreaksItsNames) {
  const std::string enums =
      "<enum name=\"E\" index=\"1\"><value name=\"V\" value=\"1\"/></enum>"
      "<enum name=\"F\" index=\"2\"><value name=\"W\" value=\"1\"/></enum><class name=\"C\" index=\"0\">";
  const auto field = [](const std::string& type, const std::string& name) {
    return "<field name=\"f\" type=\"" + type + "\" class=\"" + name + "\"/></class>";
  };
  EXPECT_THAT(compareBodies(enums + field("enum", "E"), enums + field("enum", "F")),
              ElementsAre("field-class: breaks xml, callers"));
  EXPECT_THAT(compareBodies(enums + field("list_enum", "E"), enums + field("list_enum", "F")),
              ElementsAre("field-class: safe"));
}

TEST_F(DiffTest, FieldThatLosesItsHashIsNotReadAgain) {
  const std::string without = "<field name=\"alpha\" type=\"int\" hash=\"0\"/>";
  EXPECT_THAT(compareFieldTexts(kA, without), ElementsAre("field-hash: breaks xml, binary, callers"));
  EXPECT_THAT(compareFieldTexts(without, kA), ElementsAre("field-hash: safe"));
}

TEST_F(DiffTest, DefaultCountsWhereReadersMakeElements) {
  const std::string before =
      "<class name=\"C\" index=\"0\"><field name=\"n\" type=\"int\" default=\"1\"/></class>";
  const std::string after =
      "<class name=\"C\" index=\"0\"><field name=\"n\" type=\"int\" default=\"2\"/></class>";
  const std::string list =
      "<class name=\"L\" index=\"1\"><field name=\"cs\" type=\"list_object\" class=\"C\"/></class>";
  EXPECT_THAT(compareBodies(before, after), ElementsAre("field-default: safe"));
  EXPECT_THAT(findings[0].text, HasSubstr("is now '2', was '1'"));
  EXPECT_THAT(compareBodies(before + list, after + list), ElementsAre("field-default: breaks binary"));
  EXPECT_THAT(compareBodies(before, "<class name=\"C\" index=\"0\"><field name=\"n\" type=\"int\"/></class>"),
              ElementsAre("field-default: safe"));
  EXPECT_THAT(findings[0].text, HasSubstr("is now none, was '1'"));
}

TEST_F(DiffTest, LabelIsSafe) {
  EXPECT_THAT(compareFieldTexts(kA, "<field name=\"alpha\" type=\"int\" label=\"7\"/>"),
              ElementsAre("field-label: safe"));
}

TEST_F(DiffTest, CppNameBreaksSources) {
  EXPECT_THAT(compareFieldTexts(kA, "<field name=\"alpha\" type=\"int\" cpp=\"First\"/>"),
              ElementsAre("field-cpp-name: breaks callers"));
  EXPECT_THAT(findings[0].text, HasSubstr("now called getFirst and so on, were getAlpha"));
}

TEST_F(DiffTest, AnnotationsCountWhereAFormReadsThem) {
  const auto change = [this](const std::string& type, const std::string& before, const std::string& after) {
    const std::string field = "<field name=\"f\" type=\"" + type + "\">";
    const auto lines = compareFieldTexts(field + before + "</field>", field + after + "</field>");
    return lines.size() == 1 ? lines[0] : testing::PrintToString(lines);
  };
  EXPECT_EQ(change("int", "", "<XDate type=\"1\"/>"), "annotation: breaks xml");
  EXPECT_EQ(change("int", "<ZQTime/>", "<Suppress/>"), "annotation: breaks xml");
  EXPECT_THAT(findings[0].text, HasSubstr("(ZQTime removed, Suppress added)"));
  EXPECT_EQ(change("string", "", "<Sensitive/>"), "annotation: safe");
  EXPECT_THAT(findings[0].text, HasSubstr("masked texts show it no more"));
  EXPECT_EQ(change("string", "<Sensitive/>", ""), "annotation: safe");
  EXPECT_THAT(findings[0].text, HasSubstr("masked texts show it from now on"));
  EXPECT_EQ(change("string", "", "<MarkAsCDATA/>"), "annotation: safe");
  EXPECT_EQ(change("string", "<Text text=\"a\"/>", "<Text text=\"b\"/>"), "annotation: safe");
  EXPECT_THAT(findings[0].text, HasSubstr("(what they say)"));
  EXPECT_EQ(change("pstring", "", "<Password encType=\"5\"/>"), "annotation: breaks xml, binary");
  EXPECT_EQ(change("pstring", "<Sensitive/>", "<Sensitive/><Password encType=\"5\"/>"),
            "annotation: breaks xml, binary");
  EXPECT_EQ(change("pstring", "<Password encType=\"3\"/>", "<Password encType=\"5\"/>"), "annotation: safe");
}

TEST_F(DiffTest, AnnotationsOfTheClassAreSafe) {
  EXPECT_THAT(compareFieldTexts(kA, std::string(kA) + "<self><StoredProcedure name=\"p\"/></self>"),
              ElementsAre("annotation: safe"));
}

TEST_F(DiffTest, EnumeratorsAreComparedByNameThenByValue) {
  const auto change = [this](const std::string& before, const std::string& after) {
    const auto lines = compareBodies("<enum name=\"E\" index=\"0\">" + before + "</enum>",
                                     "<enum name=\"E\" index=\"0\">" + after + "</enum>");
    return lines.size() == 1 ? lines[0] : testing::PrintToString(lines);
  };
  const std::string one = "<value name=\"ONE\" value=\"1\"/>";
  EXPECT_EQ(change(one, one + "<value name=\"TWO\" value=\"2\"/>"), "enumerator-added: safe");
  EXPECT_EQ(change(one + "<value name=\"TWO\" value=\"2\"/>", one), "enumerator-removed: breaks callers");
  EXPECT_EQ(change(one, "<value name=\"UN\" value=\"1\"/>"), "enumerator-renamed: breaks xml, callers");
  EXPECT_EQ(change(one, "<value name=\"One\" value=\"1\"/>"), "enumerator-renamed: breaks callers");
  EXPECT_EQ(change(one, "<value name=\"ONE\" value=\"-1\"/>"),
            "enumerator-value: breaks xml, binary, callers");
  EXPECT_THAT(findings[0].text, HasSubstr("is now -1, was 1"));
}

TEST_F(DiffTest, ClassesComeAndGo) {
  const std::string a = "<class name=\"A\" index=\"0\"/>";
  EXPECT_THAT(compareBodies(a, a + "<class name=\"B\" index=\"1\"/>"), ElementsAre("class-added: safe"));
  EXPECT_THAT(compareBodies(a + "<class name=\"B\" index=\"1\"/>", a),
              ElementsAre("class-removed: breaks xml, binary, callers"));
  EXPECT_THAT(compareBodies(a + "<enum name=\"E\" index=\"1\"><value name=\"V\" value=\"1\"/></enum>", a),
              ElementsAre("class-removed: breaks callers"));
}

TEST_F(DiffTest, ClassNumbersAreCompared) {
  const auto change = [this](const std::string& after) {
    return compareBodies("<class name=\"A\" index=\"0\">" + std::string(kA) + "</class>",
                         "<class " + after + ">" + kA + "</class>");
  };
  EXPECT_THAT(change("name=\"A\" index=\"3\""), ElementsAre("class-index: breaks callers"));
  EXPECT_THAT(change("name=\"A\" index=\"0\" id=\"9\""), ElementsAre("class-id: breaks binary, callers"));
  EXPECT_THAT(change("name=\"B\" index=\"0\""),
              ElementsAre("class-renamed: breaks xml, callers", "class-id: breaks binary, callers"));
}

TEST_F(DiffTest, ClassThatBecomesAnEnumerationBreaksAll) {
  EXPECT_THAT(compareBodies("<class name=\"A\" index=\"0\"/>",
                            "<enum name=\"A\" index=\"0\"><value name=\"V\" value=\"1\"/></enum>"),
              ElementsAre("class-kind: breaks xml, binary, callers"));
}

TEST_F(DiffTest, SubsystemsAreCompared) {
  const SchemaSource t{"T.xml", wrap("")};
  const SchemaSource u{"U.xml", wrap("", "name=\"U\" slot=\"203\"")};
  EXPECT_THAT(compareFiles({t}, {t, u}), ElementsAre("subsystem-added: safe"));
  EXPECT_THAT(compareFiles({t, u}, {t}), ElementsAre("subsystem-removed: breaks xml, binary, callers"));
  EXPECT_THAT(compareFiles({t}, {{"T.xml", wrap("", "name=\"T\" slot=\"203\"")}}),
              ElementsAre("subsystem-slot: breaks binary, callers"));
  EXPECT_THAT(compareFiles({t}, {{"V.xml", wrap("", "name=\"V\" slot=\"202\"")}}),
              ElementsAre("subsystem-renamed: breaks xml, callers"));
  EXPECT_THAT(compareFiles({t}, {{"T.xml", "<subsystem name=\"T\" slot=\"202\" records=\"30\"/>"}}),
              ElementsAre("subsystem-records: safe"));
  EXPECT_THAT(compareFiles({t}, {{"T.xml", wrap("", "name=\"T\" slot=\"201\" old=\"true\"")}}),
              ElementsAre("subsystem-slot: breaks binary, callers",
                          "subsystem-old-way: breaks xml, binary, callers"));
}

TEST_F(DiffTest, FormsTellApartWhatTheCodecsTellApart) {
  for (unsigned type = 0; type < kFieldTypeCount; ++type) {
    for (unsigned other = 0; other < type; ++other) {
      if (binaryForm(type) != binaryForm(other)) continue;
      EXPECT_EQ(kCollectionTypes.contains(type), kCollectionTypes.contains(other)) << type << ' ' << other;
      // All but the promise of an enumeration's key, which no reader compares.
      EXPECT_TRUE(type == FDT_ENUM || other == FDT_ENUM ||
                  fieldTypeFacts(type).encoding == fieldTypeFacts(other).encoding)
          << type << ' ' << other;
    }
  }
}

}  // namespace
}  // namespace zqxml::zqcatc
