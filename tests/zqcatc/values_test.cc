// Defaults: types that take one, and texts that read as what they say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_text.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> errorsOf(std::string_view type, std::string_view text) {
  return compile(cat("<class name=\"C\" index=\"0\">\n<field name=\"a\" default=\"", text, "\" type=\"", type,
                     "\"",
                     type.find("enum") != std::string_view::npos     ? " class=\"E\""
                     : type.find("object") != std::string_view::npos ? " class=\"C\""
                                                                     : "",
                     "/></class><enum name=\"E\" index=\"1\"><value name=\"A\" value=\"1\"/></enum>"))
      .errors;
}

TEST(DefaultsTest, TypesWithoutDefaultsAreRefused) {
  for (const char* type :
       {"pstring", "list_int", "list_object", "object", "map_string_string", "reserved_29"}) {
    EXPECT_THAT(errorsOf(type, "1"), ElementsAre(cat("T.xml:3:17: error: field 'a' of class 'C' is of type '",
                                                     type, "', which takes no default; remove it")));
  }
}

TEST(DefaultsTest, TextsTakeAnything) {
  for (const char* type : {"string", "wstring", "bstring"})
    EXPECT_THAT(errorsOf(type, " x &lt; \xe2\x82\xac"), IsEmpty());
}

TEST(DefaultsTest, NumbersMustLieInTheirRange) {
  const auto range = [](std::string_view type, std::string_view low, std::string_view high,
                        std::string_view below, std::string_view above) {
    EXPECT_THAT(errorsOf(type, low), IsEmpty());
    EXPECT_THAT(errorsOf(type, high), IsEmpty());
    const std::string instead =
        cat("would not be read as that; write a decimal number from ", low, " to ", high);
    EXPECT_THAT(errorsOf(type, below), ElementsAre(HasSubstr(instead)));
    EXPECT_THAT(errorsOf(type, above), ElementsAre(HasSubstr(instead)));
  };
  for (const char* type : {"int", "long", "enum", "time32"})
    range(type, "-2147483648", "2147483647", "-2147483649", "2147483648");
  for (const char* type : {"uint", "ulong"}) range(type, "0", "4294967295", "-1", "4294967296");
  // The runtime reads every number as a signed one.
  range("ulonglong", "0", "9223372036854775807", "-1", "9223372036854775808");
  for (const char* type : {"longlong", "time64"}) {
    EXPECT_THAT(errorsOf(type, "-9223372036854775808"), IsEmpty());
    EXPECT_THAT(errorsOf(type, "9223372036854775807"), IsEmpty());
    for (const char* beyond : {"-9223372036854775809", "9223372036854775808"})
      EXPECT_THAT(errorsOf(type, beyond), ElementsAre(HasSubstr("would not be read as that")));
  }
}

TEST(DefaultsTest, NumbersAreDecimal) {
  for (const char* text : {"", " 1", "1 ", "0x10", "-0x10", "1.5", "one", "A", "+1"}) {
    EXPECT_THAT(errorsOf("int", text),
                ElementsAre(cat("T.xml:3:17: error: default '", text,
                                "' of field 'a' of class 'C' would not be read as "
                                "that; write a decimal number from -2147483648 to 2147483647")))
        << text;
  }
}

TEST(DefaultsTest, BooleanIsTrueOrFalse) {
  for (const char* text : {"true", "True", "TRUE", "false", "False", "0"})
    EXPECT_THAT(errorsOf("bool", text), IsEmpty()) << text;
  for (const char* text : {"1", "yes", "", "true "}) {
    EXPECT_THAT(errorsOf("bool", text),
                ElementsAre(HasSubstr("would not be read as that; write true or false")))
        << text;
  }
}

TEST(DefaultsTest, FloatHasARangeOfItsOwn) {
  EXPECT_THAT(errorsOf("double", "1e300"), IsEmpty());
  EXPECT_THAT(errorsOf("float", "1e300"), ElementsAre(HasSubstr("write a decimal number")));
}

TEST(DefaultsTest, FloatingNumbersAreDecimalAndFinite) {
  for (const char* type : {"double", "float"}) {
    for (const char* text : {"0", "-1.5", "1e3", ".5"}) EXPECT_THAT(errorsOf(type, text), IsEmpty()) << text;
    for (const char* text : {"", "1,5", "inf", "nan", "1e999", "x", "1.5f", " 1"})
      EXPECT_THAT(errorsOf(type, text),
                  ElementsAre(HasSubstr("would not be read as that; write a decimal number")))
          << text;
  }
}

}  // namespace
}  // namespace zqxml::zqcatc
