#include <gtest/gtest.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/base64_decode.h>
#include <zqxml/xml/internal/base64_plain.h>

#include <random>
#include <string>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

TEST(Base64Plain, GivesTheBytesBehindWhatIsThere) {
  std::string bytes;
  std::string out = ">";
  for (int size = 1; size < 100; ++size) {
    bytes += static_cast<char>(size * 37);
    ASSERT_TRUE(base64DecodePlain(UlBase64::Encode(bytes), out));
    ASSERT_EQ(out, ">" + bytes);
    out = ">";
  }
}

TEST(Base64Plain, RefusesWhatTheLibraryHasToLookAt) {
  std::string out = ">";
  for (const char* text : {"", "A", "AA", "AAA", "AAAAA", "=", "====", "A===", "AA=A", "AAA=AAAA", "AA==AAAA",
                           "AA AA==", "AAA\n", "AAA-", "AB==", "AAB=", "|AAA", "AAA\xc3"})
    EXPECT_FALSE(base64DecodePlain(text, out)) << text;
  EXPECT_EQ(out, ">");
}

TEST(Base64Plain, WhatItTakesTheLibraryReadsAlike) {
  const LogCapture log;
  const std::string characters = "AQZaz019+/==-\n";
  std::mt19937 random(1);
  int taken = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (std::size_t size = random() % 13; size > 0; --size) text += characters[random() % characters.size()];
    std::string plain;
    if (!base64DecodePlain(text, plain)) continue;
    ++taken;
    std::string byTheLibrary;
    ASSERT_TRUE(base64DecodeXmlCh(toUtf16(text).c_str(), byTheLibrary)) << text;
    ASSERT_EQ(plain, byTheLibrary) << text;
  }
  EXPECT_GT(taken, 100);
}

}  // namespace
}  // namespace zqxml
