#include "tools/zqmsg/form.h"

#include <gtest/gtest.h>

#include <string>

namespace zqxml::tool {
namespace {

using namespace std::string_literals;

// Version 2 and the tag id of ZQGui_SaveAlert, both little-endian.
const std::string kBinaryHead = "\x02\0\0\0\x20\0\0\x01"s;
const std::string kRecordHead = "\0\0\0\x08"s + kBinaryHead;

TEST(Form, IsFoundByItsName) {
  for (std::string_view name : kFormNames) EXPECT_EQ(formName(formByName(name).value()), name);
  EXPECT_EQ(formByName("prose"), std::nullopt);
  EXPECT_EQ(formByName(""), std::nullopt);
}

TEST(Form, XmlIsDetectedByItsFirstCharacter) {
  EXPECT_EQ(detectForm("<ZQGui_SaveAlert/>"), Form::kXml);
  EXPECT_EQ(detectForm(" \t\r\n<ZQGui_SaveAlert/>"), Form::kXml);
  EXPECT_EQ(detectForm("\xef\xbb\xbf<ZQGui_SaveAlert/>"), Form::kXml);
}

TEST(Form, Xml16IsDetectedInBothByteOrdersWithAndWithoutAMark) {
  EXPECT_EQ(detectForm("\xff\xfe<\0?\0"s), Form::kXml16);
  EXPECT_EQ(detectForm("\xfe\xff\0<\0?"s), Form::kXml16);
  EXPECT_EQ(detectForm("<\0?\0"s), Form::kXml16);
  EXPECT_EQ(detectForm("\0<\0?"s), Form::kXml16);
}

TEST(Form, BinaryIsDetectedByATagIdOfTheCatalogue) {
  EXPECT_EQ(detectForm(kBinaryHead), Form::kBinary);
  EXPECT_EQ(detectForm("\x02\0\0\0\x21\0\0\x01"s), std::nullopt);
  EXPECT_EQ(detectForm(kBinaryHead.substr(0, 7)), std::nullopt);
}

TEST(Form, ObjectsAreDetectedByTheTagIdOfTheFirst) {
  EXPECT_EQ(detectForm(kRecordHead), Form::kObjects);
  EXPECT_EQ(detectForm(kRecordHead.substr(0, 11)), std::nullopt);
}

TEST(Form, JsonIsDetectedByItsBraceAndTheEndOfItsFirstLine) {
  EXPECT_EQ(detectForm(R"({"Demo_Empty":{}})"), Form::kJsonl);
  EXPECT_EQ(detectForm("\xef\xbb\xbf \r\n{ }\n{ }\n"), Form::kJsonl);
  EXPECT_EQ(detectForm("{\n\"Demo_Empty\":{}}\n"), Form::kJson);
  EXPECT_EQ(detectForm("{\"a\":\"}\\\"}\",\n\"b\":{}}\n"), Form::kJson);
  EXPECT_EQ(detectForm("{\"a\":\"{\\\"{\"}\n\"b\":{}}\n"), Form::kJsonl);
}

TEST(Form, OneLineOfJsonMayBecomeADocumentOfMany) {
  EXPECT_TRUE(mayChange(Form::kJsonl, "{\"Demo_Empty\":{"));
  EXPECT_FALSE(mayChange(Form::kJsonl, "{\"Demo_Empty\":{}}\n"));
  EXPECT_FALSE(mayChange(Form::kJson, "{\n"));
  EXPECT_FALSE(mayChange(Form::kXml, "<a"));
}

TEST(Form, NothingElseIsDetected) {
  EXPECT_EQ(detectForm(""), std::nullopt);
  EXPECT_EQ(detectForm(std::string(4096, '\0')), std::nullopt);
  EXPECT_EQ(detectForm("[1, 2]"), std::nullopt);
  EXPECT_EQ(detectForm("{7}"), std::nullopt);
}

TEST(Form, AnEmptyFileMayHoldNoObjectsButNoMessage) {
  EXPECT_TRUE(mayBe(Form::kObjects, ""));
  EXPECT_FALSE(mayBe(Form::kBinary, ""));
  EXPECT_FALSE(mayBe(Form::kXml, ""));
  EXPECT_FALSE(mayBe(Form::kXml16, ""));
}

TEST(Form, ABinaryMessageMayBeginLikeXml) {
  const std::string head = "<\0\0\0\x20\0\0\x01"s;
  EXPECT_TRUE(mayBe(Form::kBinary, head));
}

TEST(Form, WideTextBecomesAFileWithAByteOrderMark) {
  EXPECT_EQ(fileBytes(u"<\u00fc\U0001F600"), "\xff\xfe<\0\xfc\0\x3d\xd8\x00\xde"s);
  EXPECT_EQ(fileBytes(u""), "\xff\xfe");
}

}  // namespace
}  // namespace zqxml::tool
