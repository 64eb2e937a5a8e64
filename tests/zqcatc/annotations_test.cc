// Packed annotation records, byte by byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_text.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// The annotation classes whose fields are enumerations, so that names can be used.
const SchemaSource kAnnotations{"Annotation.xml",
                                R"(<subsystem name="Annotation" slot="27" records="65" annotations="true">
<enum name="DateType" index="3"><value name="DATE_TIME" value="1"/><value name="DATE" value="2"/><value name="NEVER" value="9"/></enum>
<class name="XDate" index="4"><field name="type" type="enum" class="DateType"/></class>
</subsystem>)"};

Compiled compileAnnotated(const std::string& annotations, const std::string& type = "int") {
  return compileFiles(
      {kAnnotations,
       {"T.xml", cat("<subsystem name=\"T\" slot=\"202\" records=\"1\"><class name=\"C\" index=\"0\">\n"
                     "<field name=\"a\" type=\"",
                     type, "\">", annotations, "</field></class></subsystem>")}});
}

std::string hex(const std::string& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    if (!text.empty()) text += ' ';
    text += kDigits[value >> 4];
    text += kDigits[value & 15];
  }
  return text;
}

/// The record of an annotated field, in hexadecimal; the errors when there are any.
std::string record(const std::string& annotations, const std::string& type = "int") {
  const Compiled compiled = compileAnnotated(annotations, type);
  if (!compiled.errors.empty()) return compiled.errors.front();
  const Field& field = compiled.field("T", "C", "a");
  return field.annotation.has_value() ? hex(*field.annotation) : "none";
}

TEST(AnnotationRecordTest, FieldWithoutAnnotationsHasNone) {
  EXPECT_EQ(record("<doc>x</doc>"), "none");
}

TEST(AnnotationRecordTest, SampleRecordIsExact) {
  EXPECT_EQ(record("<Text text=\"Schedule Type\"/><CommandParam name=\"st\"/>"),
            "00 1a 00 18 00 80 00 0d 53 63 68 65 64 75 6c 65 20 54 79 70 65 80 00 02 73 74");
}

TEST(AnnotationRecordTest, OrderOfElementsDoesNotCount) {
  EXPECT_EQ(record("<CommandParam name=\"st\"/><Text text=\"Schedule Type\"/>"),
            record("<Text text=\"Schedule Type\"/><CommandParam name=\"st\"/>"));
}

TEST(AnnotationRecordTest, FlagsHaveTheirBits) {
  EXPECT_EQ(record("<Password encType=\"5\"/>", "pstring"), "00 03 50");
  EXPECT_EQ(record("<ZQTime/>"), "00 03 08");
  EXPECT_EQ(record("<Suppress/>"), "00 03 04");
  EXPECT_EQ(record("<XDate type=\"1\"/>"), "00 03 01");
  EXPECT_EQ(record("<XDate type=\"2\"/>"), "00 03 02");
  EXPECT_EQ(record("<GenPath/>"), "00 04 00 80");
  EXPECT_EQ(record("<HideInReports/>"), "00 04 00 40");
  EXPECT_EQ(record("<SingleInstanced/>"), "00 04 00 20");
  EXPECT_EQ(record("<MarkAsCDATA/>"), "00 05 00 00 80");
  EXPECT_EQ(record("<Sensitive/>"), "00 05 00 00 40");
  EXPECT_EQ(record("<Password encType=\"1\"/><Suppress/>", "pstring"), "00 03 14");
}

TEST(AnnotationRecordTest, IndexAttrAlwaysHasItsValueByte) {
  EXPECT_EQ(record("<IndexAttr indexedMetadata=\"true\"/>"), "00 05 00 01 01");
  EXPECT_EQ(record("<IndexAttr indexedMetadata=\"false\"/>"), "00 05 00 01 00");
}

TEST(AnnotationRecordTest, ValuesMayBeNamesOfEnumerators) {
  EXPECT_EQ(record("<XDate type=\"DATE\"/>"), "00 03 02");
}

TEST(AnnotationRecordTest, TextSectionHoldsWhatIsThere) {
  EXPECT_EQ(
      record("<Text text=\"a\" comment=\"bc\" falseText=\"\" commentID=\"0x01020304\" localise=\"true\"/>"),
      "00 13 00 08 00 fc 00 01 61 00 02 62 63 00 00 01 02 03 04");
  EXPECT_EQ(record("<Text localise=\"false\"/>"), "00 06 00 08 00 08");
  EXPECT_EQ(record("<Text/>"), "00 06 00 08 00 00");
  EXPECT_EQ(record("<Text comment=\"\xc3\xa9\"/>"), "00 0a 00 08 00 40 00 02 c3 a9");
}

TEST(AnnotationRecordTest, CommandParamFlagsTellPresenceAndValueApart) {
  EXPECT_EQ(record("<CommandParam/>"), "00 06 00 10 00 00");
  EXPECT_EQ(record("<CommandParam useDefault=\"false\"/>"), "00 06 00 10 00 40");
  EXPECT_EQ(record("<CommandParam useDefault=\"true\"/>"), "00 06 00 10 00 50");
  EXPECT_EQ(record("<CommandParam ignoreReplace=\"false\"/>"), "00 06 00 10 00 04");
  EXPECT_EQ(record("<CommandParam ignoreReplace=\"true\"/>"), "00 06 00 10 00 0c");
  EXPECT_EQ(record("<CommandParam name=\"x\" useDefault=\"true\" ignoreReplace=\"true\"/>"),
            "00 09 00 10 00 dc 00 01 78");
}

TEST(AnnotationRecordTest, SearchCriteriaHaveTheirBits) {
  EXPECT_EQ(record("<SearchCriteriaDef/>"), "00 0c 00 04 00 00 00 00 00 00 00 00");
  const auto flag = [](const std::string& name) {
    return record(cat("<SearchCriteriaDef ", name, "=\"true\"/>"));
  };
  EXPECT_EQ(flag("Or"), "00 0c 00 04 00 10 00 00 00 04 00 00");
  EXPECT_EQ(flag("And"), "00 0c 00 04 00 08 00 00 00 02 00 00");
  EXPECT_EQ(flag("Nor"), "00 0c 00 04 00 04 00 00 00 01 00 00");
  EXPECT_EQ(flag("Between"), "00 0c 00 04 00 02 00 00 00 00 04 00");
  EXPECT_EQ(flag("In"), "00 0c 00 04 00 01 00 00 00 00 02 00");
  EXPECT_EQ(flag("Nin"), "00 0c 00 04 00 00 80 00 00 00 01 00");
  EXPECT_EQ(flag("Lt"), "00 0c 00 04 00 00 40 00 00 00 00 80");
  EXPECT_EQ(flag("Gt"), "00 0c 00 04 00 00 20 00 00 00 00 40");
  EXPECT_EQ(flag("Equals1"), "00 0c 00 04 00 00 10 00 00 00 00 20");
  EXPECT_EQ(flag("Lte"), "00 0c 00 04 00 00 08 00 00 00 00 10");
  EXPECT_EQ(flag("Gte"), "00 0c 00 04 00 00 04 00 00 00 00 08");
  EXPECT_EQ(flag("metadata"), "00 0c 00 04 00 00 02 00 00 00 00 04");
  EXPECT_EQ(flag("DefaultVisibility"), "00 0c 00 04 00 00 01 00 00 00 00 02");
  EXPECT_EQ(record("<SearchCriteriaDef Or=\"false\"/>"), "00 0c 00 04 00 10 00 00 00 00 00 00");
}

TEST(AnnotationRecordTest, SearchCriteriaValuesShareTheirBytes) {
  EXPECT_EQ(record("<SearchCriteriaDef type=\"15\" searchGroupType=\"9\"/>"),
            "00 0c 00 04 00 20 00 80 f9 00 00 00");
  EXPECT_EQ(record("<SearchCriteriaDef searchType=\"7\"/>"), "00 0c 00 04 00 00 00 27 00 00 00 00");
  EXPECT_EQ(record("<SearchCriteriaDef filteredSearchGroup=\"31\" Or=\"true\"/>"),
            "00 0c 00 04 00 10 00 40 00 fc 00 00");
  EXPECT_EQ(record("<SearchCriteriaDef filterSupportedVersion=\"31\" Nin=\"true\"/>"),
            "00 0c 00 04 00 00 80 10 00 00 f9 00");
  EXPECT_EQ(record("<SearchCriteriaDef text=\"ab\" Lt=\"true\"/>"),
            "00 10 00 04 00 00 40 08 00 00 02 61 62 00 00 80");
}

TEST(AnnotationRecordTest, SectionsStandInTheirOrder) {
  EXPECT_EQ(record("<StoredProcedure name=\"p\"/><SearchCriteriaDef/><Text/>"),
            "00 10 00 0e 00 00 00 00 00 00 00 00 00 00 01 70");
}

TEST(AnnotationRecordTest, SelfRecordIsNeverWithoutARecord) {
  const Compiled compiled = compileClass("<self/>");
  EXPECT_EQ(hex(*compiled.field("T", "C", "C").annotation), "00 00");
  const Compiled named = compileClass("<self><StoredProcedure name=\"Proc\"/></self>");
  EXPECT_EQ(hex(*named.field("T", "C", "C").annotation), "00 0b 00 02 00 00 04 50 72 6f 63");
}

TEST(AnnotationRecordTest, EnumeratorsHaveTexts) {
  const Compiled compiled =
      compile("<enum name=\"E\" index=\"0\"><value name=\"A\" value=\"1\"><Text text=\"x\"/></value></enum>");
  EXPECT_EQ(hex(*compiled.field("T", "E", "A").annotation), "00 09 00 08 00 80 00 01 78");
}

TEST(AnnotationRefusalTest, ValueBeyondItsBitsIsRefused) {
  EXPECT_EQ(record("<XDate type=\"4\"/>"),
            "T.xml:2:35: error: '4' is no value of type of annotation 'XDate' (field 'a' of "
            "'C'); write a number from 1 to 3, or an enumerator of that field's enumeration "
            "with such a value");
  EXPECT_THAT(record("<XDate type=\"0\"/>"), HasSubstr("'0' is no value of type"));
  EXPECT_THAT(record("<Password encType=\"16\"/>", "pstring"), HasSubstr("'16' is no value of encType"));
  EXPECT_THAT(record("<Password encType=\"0\"/>", "pstring"), HasSubstr("write a number from 1 to 15"));
  EXPECT_THAT(record("<SearchCriteriaDef searchType=\"8\"/>"), HasSubstr("write a number from 0 to 7"));
  EXPECT_THAT(record("<SearchCriteriaDef type=\"16\"/>"), HasSubstr("write a number from 0 to 15"));
  EXPECT_THAT(record("<SearchCriteriaDef filteredSearchGroup=\"32\"/>"),
              HasSubstr("write a number from 0 to 31"));
  EXPECT_THAT(record("<Text commentID=\"0x100000000\"/>"), HasSubstr("write a number from 0 to 4294967295"));
}

TEST(AnnotationRefusalTest, UnknownEnumeratorIsRefused) {
  EXPECT_THAT(record("<XDate type=\"DAY\"/>"), HasSubstr("'DAY' is no value of type of annotation 'XDate'"));
  EXPECT_THAT(record("<XDate type=\"NEVER\"/>"), HasSubstr("'NEVER' is no value of type"));
  EXPECT_THAT(record("<Password encType=\"BASE64\"/>", "pstring"),
              HasSubstr("'BASE64' is no value of encType"));
}

TEST(AnnotationRefusalTest, AnnotationWithoutEffectIsRefused) {
  EXPECT_EQ(record("<XDate type=\"1\"/>", "string"),
            "T.xml:2:31: error: annotation 'XDate' has no effect on field 'a' of 'C', of type 'string'; "
            "remove it, or "
            "write force=\"true\" to keep it");
  EXPECT_THAT(record("<ZQTime/>", "bool"), HasSubstr("annotation 'ZQTime' has no effect"));
  EXPECT_THAT(record("<Password encType=\"1\"/>", "bstring"),
              HasSubstr("annotation 'Password' has no effect"));
  for (const char* type : {"bstring", "pstring", "list_bstring", "map_string_string"})
    EXPECT_THAT(record("<MarkAsCDATA/>", type), HasSubstr("annotation 'MarkAsCDATA' has no effect")) << type;
  EXPECT_THAT(
      compileClass("<self><MarkAsCDATA/></self>").errors,
      ElementsAre(HasSubstr("T.xml:3:7: error: annotation 'MarkAsCDATA' has no effect on class 'C' itself")));
}

TEST(AnnotationRefusalTest, ForceKeepsAnAnnotationWithoutEffect) {
  EXPECT_EQ(record("<XDate type=\"1\" force=\"true\"/>", "string"), "00 03 01");
  EXPECT_EQ(record("<MarkAsCDATA force=\"true\"/>", "bstring"), "00 05 00 00 80");
}

TEST(AnnotationRefusalTest, CommandParamCannotStandBeforeAnotherSection) {
  EXPECT_EQ(record("<CommandParam/><StoredProcedure name=\"p\"/>"),
            "T.xml:2:8: error: annotation 'CommandParam' of field 'a' of 'C' cannot stand with "
            "'SearchCriteriaDef' or "
            "'StoredProcedure': a record reader could not find the latter; remove one");
  EXPECT_THAT(record("<CommandParam/><SearchCriteriaDef/>"), HasSubstr("cannot stand with"));
}

TEST(AnnotationRefusalTest, TextsMustFitTheirLengthAndTheRecord) {
  const std::string limit(65535, 'x');
  EXPECT_THAT(record(cat("<Text text=\"", limit, "x\"/>")),
              HasSubstr("text of text on field 'a' of 'C' has 65536 bytes; shorten it to at most 65535"));
  EXPECT_THAT(record(cat("<Text text=\"", limit, "\"/>")),
              HasSubstr("the annotations of field 'a' of 'C' take 65543 bytes; shorten their texts to at "
                        "most 65535 in all"));
  EXPECT_THAT(record(cat("<Text text=\"", limit.substr(8), "\"/>")),
              testing::StartsWith("ff ff 00 08 00 80 ff f7"));
}

TEST(AnnotationRefusalTest, AnnotationStandsOnce) {
  EXPECT_THAT(compileAnnotated("<Suppress/><Suppress/>").errors, testing::Not(IsEmpty()));
}

}  // namespace
}  // namespace zqxml::zqcatc
