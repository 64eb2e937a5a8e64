#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/message/bstring.h>
#include <zqxml/message/pstring.h>
#include <zqxml/platform/base64.h>
#include <zqxml/xml/value_text.h>

#include <bit>
#include <limits>
#include <locale>
#include <random>
#include <set>
#include <sstream>
#include <string>

namespace zqxml {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

template <class T>
std::string textOf(int type, T value) {
  return getStringFromFld(type, &value);
}

TEST(ValueText, SizeOfUlonglongFieldIsLoggedAndZero) {
  const FieldDef field("big", nullptr, 1, 0, 0, 0, FDT_ULONGLONG);
  LogCapture capture;
  EXPECT_EQ(getSizeOfField(field), 0);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"createElementOfType", 0,
                                       "Unknown Type for Computing size. Type:[6] Field:[big]."}));
}

TEST(ValueText, KeepsOnlyTheBytesOfABstringUpToItsFirstNul) {
  EXPECT_EQ(textOf(FDT_BSTRING, bstring("ab\0cd"s)), UlBase64::Encode("ab"));
  EXPECT_EQ(textOf(FDT_PSTRING, pstring("ab\0cd"s)), UlBase64::Encode("ab"));
  EXPECT_EQ(textOf(FDT_LIST_BSTRING, bstring("ab\0cd"s)), UlBase64::Encode("ab"));
}

TEST(ValueText, NullValueGivesEmptyText) {
  for (int type = 0; type <= 43; ++type) EXPECT_EQ(getStringFromFld(type, nullptr), "") << type;
}

TEST(ValueText, SignedTypesReadTheWholeCellAsSignedDecimal) {
  for (const int type : {FDT_INT, FDT_LONG, FDT_LONGLONG, FDT_ENUM, FDT_LIST_INT, FDT_LIST_LONG,
                         FDT_LIST_LONGLONG, FDT_LIST_ENUM, FDT_TIME32, FDT_TIME64}) {
    EXPECT_EQ(textOf(type, std::int64_t{-5}), "-5") << type;
    EXPECT_EQ(textOf(type, std::int64_t{4294967296}), "4294967296") << type;
    EXPECT_EQ(textOf(type, std::numeric_limits<std::int64_t>::min()), "-9223372036854775808") << type;
  }
}

TEST(ValueText, UnsignedTypesReadTheWholeCellAsUnsignedDecimal) {
  for (const int type : {FDT_UINT, FDT_ULONG, FDT_ULONGLONG, FDT_LIST_UINT, FDT_LIST_ULONG}) {
    EXPECT_EQ(textOf(type, std::int64_t{-1}), "18446744073709551615") << type;
    EXPECT_EQ(textOf(type, std::int64_t{7}), "7") << type;
  }
}

TEST(ValueText, BooleansTestTheWholeCell) {
  for (const int type : {FDT_BOOL, FDT_LIST_BOOL}) {
    EXPECT_EQ(textOf(type, std::int64_t{0}), "0") << type;
    EXPECT_EQ(textOf(type, std::int64_t{1}), "1") << type;
    EXPECT_EQ(textOf(type, std::int64_t{1} << 40), "1") << type;
  }
}

TEST(ValueText, StringsStandAsTheyAre) {
  for (const int type : {FDT_STRING, FDT_LIST_STRING}) EXPECT_EQ(textOf(type, "a\0<&"s), "a\0<&"s) << type;
}

TEST(ValueText, WideStringsBecomeUtf8) {
  for (const int type : {FDT_WSTRING, FDT_LIST_WSTRING})
    EXPECT_EQ(textOf(type, u"\u00e9\u20ac\U0001f600"s), "\u00e9\u20ac\U0001f600") << type;
}

TEST(ValueText, FloatingPointHasSixSignificantDigits) {
  for (const int type : {FDT_DOUBLE, FDT_LIST_DOUBLE}) {
    EXPECT_EQ(textOf(type, 3.14159265), "3.14159") << type;
    EXPECT_EQ(textOf(type, 1234567.0), "1.23457e+06") << type;
  }
  for (const int type : {FDT_FLOAT, FDT_LIST_FLOAT}) {
    EXPECT_EQ(textOf(type, 0.1f), "0.1") << type;
    EXPECT_EQ(textOf(type, 1e-5f), "1e-05") << type;
  }
}

TEST(ValueText, ByteStringsBecomeBase64) {
  EXPECT_EQ(textOf(FDT_BSTRING, bstring("a\xff"s)), UlBase64::Encode("a\xff"));
  EXPECT_EQ(textOf(FDT_PSTRING, pstring("secret"s)), "c2VjcmV0");
  EXPECT_EQ(textOf(FDT_LIST_BSTRING, bstring("x"s)), "eA==");
}

TEST(ValueText, TypesWithoutTextFormGiveEmptyTextWithoutAWord) {
  const std::int64_t cell[4] = {1, 1, 1, 1};
  LogCapture capture(25);
  for (const int type : {static_cast<int>(FDT_NONE),
                         static_cast<int>(FDT_LIST_OBJECT),
                         static_cast<int>(FDT_OBJECT),
                         static_cast<int>(FDT_RESERVED_24),
                         static_cast<int>(FDT_RESERVED_29),
                         static_cast<int>(FDT_ENUM_VALUE),
                         33,
                         34,
                         35,
                         36,
                         37,
                         38,
                         39,
                         static_cast<int>(FDT_INT64),
                         43,
                         64,
                         255,
                         -1,
                         std::numeric_limits<int>::min(),
                         std::numeric_limits<int>::max()}) {
    EXPECT_EQ(getStringFromFld(type, cell), "") << type;
  }
  EXPECT_TRUE(capture.empty());
}

TEST(ValueText, KeepsTheListOfUnsigned64BitNumbersWithoutText) {
  EXPECT_EQ(textOf(FDT_LIST_ULONGLONG, std::uint64_t{7}), "");
  EXPECT_EQ(textOf(FDT_ULONGLONG, std::uint64_t{7}), "7");
}

TEST(ValueText, SizesOfScalars) {
  LogCapture capture;
  const auto size = [](FieldDataType type) {
    return getSizeOfField(FieldDef("f", nullptr, 1, 0, 0, 0, type));
  };
  for (const FieldDataType type : {FDT_INT, FDT_UINT, FDT_LONG, FDT_ULONG, FDT_FLOAT, FDT_TIME32})
    EXPECT_EQ(size(type), 4) << type;
  for (const FieldDataType type : {FDT_LONGLONG, FDT_DOUBLE, FDT_TIME64}) EXPECT_EQ(size(type), 8) << type;
  EXPECT_EQ(size(FDT_BOOL), 1);
  EXPECT_TRUE(capture.empty());
  EXPECT_EQ(size(FDT_STRING), 0);
  // The name of an enumeration field has a class reference in front.
  EXPECT_EQ(getSizeOfField(FieldDef("\x1b\0\0\x03mode", nullptr, 1, 0, 0, 0, FDT_ENUM)), 0);
  EXPECT_TRUE(capture.has("createElementOfType", 0, "Unknown Type for Computing size. Type:[8] Field:[f]."));
  EXPECT_TRUE(
      capture.has("createElementOfType", 0, "Unknown Type for Computing size. Type:[10] Field:[mode]."));
}

TEST(NumberTextForms, NumbersHaveNarrowAndWideText) {
  EXPECT_EQ(NumberText::ofSigned(-42).view(), "-42");
  EXPECT_EQ(WideNumberText::ofSigned(std::numeric_limits<std::int64_t>::min()).view(),
            u"-9223372036854775808");
  EXPECT_EQ(NumberText::ofUnsigned(std::numeric_limits<std::uint64_t>::max()).view(), "18446744073709551615");
  EXPECT_EQ(std::u16string(WideNumberText::ofFloating(-1.25e-300).c_str()), u"-1.25e-300");
  EXPECT_STREQ(NumberText::ofFloating(0).c_str(), "0");
}

std::string streamed(double value) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << value;
  return stream.str();
}

TEST(NumberTextForms, FloatingPointTextIsThatOfAClassicStreamForEveryKindOfValue) {
  using Limits = std::numeric_limits<double>;
  for (const double value : {0.0,
                             -0.0,
                             1.0,
                             0.5,
                             100000.0,
                             999999.0,
                             999999.5,
                             1000000.0,
                             0.0001,
                             0.00001,
                             0.000099999949,
                             123456.5,
                             1e100,
                             -1e-100,
                             Limits::max(),
                             Limits::lowest(),
                             Limits::min(),
                             Limits::denorm_min(),
                             Limits::infinity(),
                             -Limits::infinity(),
                             Limits::quiet_NaN(),
                             -Limits::quiet_NaN()}) {
    EXPECT_EQ(NumberText::ofFloating(value).view(), streamed(value));
  }
}

TEST(NumberTextForms, FloatingPointTextIsThatOfAClassicStreamForRandomValues) {
  std::mt19937_64 random(20261);
  std::uniform_real_distribution<double> nearby(-2e6, 2e6);
  for (int round = 0; round < 100000; ++round) {
    const auto anyBits = std::bit_cast<double>(random());
    ASSERT_EQ(NumberText::ofFloating(anyBits).view(), streamed(anyBits));
    const double near = nearby(random);
    ASSERT_EQ(NumberText::ofFloating(near).view(), streamed(near));
    const auto single = static_cast<double>(static_cast<float>(near));
    ASSERT_EQ(NumberText::ofFloating(single).view(), streamed(single));
  }
}

/// A locale with a comma for the point and groups of three.
struct CommaNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(NumberTextForms, TheLocaleOfTheProcessHasNoSay) {
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
  EXPECT_EQ(textOf(FDT_DOUBLE, 1234.5), "1234.5");
  EXPECT_EQ(textOf(FDT_INT, std::int64_t{1234567}), "1234567");
  std::locale::global(before);
}

}  // namespace
}  // namespace zqxml
