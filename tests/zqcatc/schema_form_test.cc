// Files that are no schema files, and files that mean harm.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "compile_text.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::Gt;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Le;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char* kSeeDocs = "; docs/schema.md shows the form of a schema file";

TEST(SchemaFormTest, ValidFileHasNoErrors) {
  EXPECT_THAT(compileClass("<field name=\"a\" type=\"int\"/>").errors, IsEmpty());
}

TEST(SchemaFormTest, UnknownElementIsReportedAtItsTag) {
  EXPECT_THAT(compileClass("  <feild name=\"a\"/>").errors,
              Contains(AllOf(StartsWith("T.xml:3:3: error: no declaration found for element 'feild'"),
                             EndsWith(kSeeDocs))));
}

TEST(SchemaFormTest, UnknownAttributeIsReportedAtItsTag) {
  EXPECT_THAT(
      compileClass("<field name=\"a\"\n  tpye=\"int\" type=\"int\"/>").errors,
      ElementsAre(cat("T.xml:3:1: error: attribute 'tpye' is not declared for element 'field'", kSeeDocs)));
}

TEST(SchemaFormTest, MissingAttributeIsReported) {
  EXPECT_THAT(compileClass("<field name=\"a\"/>").errors,
              ElementsAre(cat("T.xml:3:1: error: missing required attribute 'type'", kSeeDocs)));
}

TEST(SchemaFormTest, NameThatIsNoXmlNameIsReported) {
  EXPECT_THAT(compileClass("<field name=\"a b\" type=\"int\"/>").errors,
              ElementsAre(cat("T.xml:3:1: error: value 'a b' is invalid NCName", kSeeDocs)));
}

TEST(SchemaFormTest, ErrorsOfOneRunAreSortedByPlace) {
  const Compiled compiled =
      compileFiles({{"B.xml", "<subsystem/>"}, {"A.xml", "\n\n<subsystem name=\"A\" slot=\"1\"/>"}});
  EXPECT_THAT(compiled.errors,
              ElementsAre(HasSubstr("A.xml:3:1: error: missing required attribute 'records'"),
                          HasSubstr("B.xml:1:1: error: missing required attribute 'name'"),
                          HasSubstr("B.xml:1:1: error: missing required attribute 'slot'"),
                          HasSubstr("B.xml:1:1: error: missing required attribute 'records'")));
}

TEST(SchemaFormTest, ColumnsCountCharacters) {
  EXPECT_THAT(compileClass("<!-- \xe2\x82\xac \xf0\x9f\x98\x80 --><field name=\"a\" type=\"none\"/>").errors,
              ElementsAre(HasSubstr("T.xml:3:29: error: type 'none'")));
}

TEST(SchemaFormTest, AttributeIsFoundAmongOthersThatMentionIt) {
  EXPECT_THAT(compileClass("<field name=\"a\" default=\" type= \" \n label='>\"' type = \"none\"/>").errors,
              Contains(HasSubstr("T.xml:4:13: error: type 'none'")));
}

TEST(SchemaFormTest, LinesEndAtCarriageReturnsToo) {
  const Compiled compiled = compileFiles({{"T.xml",
                                           "<subsystem name=\"T\" slot=\"202\" records=\"20\">\r\n\r<class "
                                           "name=\"C\" index=\"x\"/>\r\n</subsystem>"}});
  EXPECT_THAT(compiled.errors, ElementsAre(HasSubstr("T.xml:3:17: error: index of class 'C' is 'x'")));
}

TEST(SchemaFormTest, SchemaLocationIsIgnored) {
  const Compiled compiled = compileFiles(
      {{"T.xml",
        "<subsystem xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
        "xsi:noNamespaceSchemaLocation=\"/no/such/file.xsd\" name=\"T\" slot=\"202\" records=\"0\"/>"}});
  EXPECT_THAT(compiled.errors, IsEmpty());
}

TEST(SchemaFormTest, FileThatIsNotWellFormedIsReported) {
  EXPECT_THAT(compileClass("<field name=\"a\" type=\"int\">").errors,
              ElementsAre(cat("T.xml:4:3: error: expected end of tag 'field'", kSeeDocs)));
}

TEST(SchemaFormTest, EmptyFileIsReported) {
  EXPECT_THAT(compileFiles({{"T.xml", ""}}).errors,
              ElementsAre(cat("T.xml:1:1: error: invalid document structure", kSeeDocs)));
}

TEST(SchemaFormTest, DocumentTypeIsRefused) {
  const Compiled compiled = compileFiles(
      {{"T.xml",
        "<!DOCTYPE subsystem [<!ENTITY a \"b\">]>\n<subsystem name=\"T\" slot=\"202\" records=\"0\"/>"}});
  EXPECT_THAT(compiled.errors,
              ElementsAre(HasSubstr(
                  "error: a document type is not allowed in a schema file; remove <!DOCTYPE ...>")));
}

TEST(SchemaFormTest, ExternalEntitiesAreNeverOpened) {
  const Compiled compiled = compileFiles(
      {{"T.xml",
        "<!DOCTYPE subsystem SYSTEM \"file:///dev/stdin\" [<!ENTITY % p SYSTEM \"file:///dev/stdin\"> %p;]>\n"
        "<subsystem name=\"T\" slot=\"202\" records=\"0\"/>"}});
  EXPECT_THAT(compiled.errors, ElementsAre(HasSubstr("a document type is not allowed")));
}

TEST(SchemaFormTest, DeclaredEncodingDoesNotCount) {
  EXPECT_THAT(compileFiles({{"T.xml",
                             "<?xml version=\"1.0\" encoding=\"UTF-16\"?>"
                             "<subsystem name=\"T\" slot=\"202\" records=\"0\"/>"}})
                  .errors,
              IsEmpty());
}

TEST(SchemaFormTest, TextThatIsNotUtf8IsReported) {
  EXPECT_THAT(compile("<!-- \xff -->").errors, ElementsAre(HasSubstr("error: invalid byte")));
}

TEST(SchemaFormTest, DeepNestingIsRefused) {
  std::string body;
  for (int i = 0; i < 100'000; ++i) body += "<class>";
  EXPECT_THAT(compile(body).errors, Contains(HasSubstr("error: elements are nested too deeply")));
}

TEST(SchemaFormTest, ErrorsOfOneFileAreBounded) {
  std::string body;
  for (int i = 0; i < 1000; ++i) body += "<x/>\n";
  EXPECT_THAT(compile(body).errors, SizeIs(AllOf(Gt(5), Le(SchemaParser::kMaxErrorsPerFile))));
}

TEST(SchemaFormTest, ErrorsOfOneRunAreBoundedAndCounted) {
  std::string fields;
  for (int i = 0; i < 150; ++i) fields += cat("<field name=\"f", i, "\" type=\"none\"/>\n");
  const Compiled compiled = compileClass(fields);
  EXPECT_THAT(compiled.errors, SizeIs(Diagnostics::kMaxKept + 1));
  EXPECT_EQ(compiled.errors.back(), "... and 50 more errors");
}

TEST(SchemaFormTest, FileBeyondTheSizeLimitIsRefused) {
  const std::string text(SchemaParser::kMaxFileBytes + 1, ' ');
  EXPECT_THAT(
      compileFiles({{"T.xml", text}}).errors,
      ElementsAre(
          "T.xml: error: the file is larger than 32 MiB; split its subsystem into a file and extensions"));
}

TEST(SchemaFormTest, OneLongLineWithManyErrorsIsNotSlow) {
  std::string fields;
  for (int i = 0; i < 20'000; ++i)
    fields += cat("<field name=\"f", i, "\" type=\"none\" label=\"1\" default=\"1\"/>");
  EXPECT_THAT(compileClass(fields).errors, SizeIs(Diagnostics::kMaxKept + 1));
}

}  // namespace
}  // namespace zqxml::zqcatc
