#include <zqxml/zqxml.h>  // first, so that it has to stand alone
//
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using testing::HasSubstr;

std::string textOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Headers that callers may include: all but those in folders named internal.
std::vector<std::string> publicHeaders() {
  const std::filesystem::path root = ZQXML_SOURCE_DIR;
  std::vector<std::string> headers{"zqxml/catalogue/generated/catalogue.h"};
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root / "zqxml")) {
    const std::filesystem::path path = entry.path().lexically_relative(root);
    const bool isInternal = path.string().find("/internal/") != std::string::npos;
    if (path.extension() == ".h" && !isInternal && path != "zqxml/zqxml.h") headers.push_back(path.string());
  }
  return headers;
}

TEST(UmbrellaHeader, IncludesEveryPublicHeader) {
  const std::string text = textOf(std::filesystem::path(ZQXML_SOURCE_DIR) / "zqxml" / "zqxml.h");
  const std::vector<std::string> headers = publicHeaders();
  EXPECT_GT(headers.size(), 30u);
  for (const std::string& header : headers) EXPECT_THAT(text, HasSubstr("#include <" + header + ">\n"));
}

TEST(UmbrellaHeader, IncludesNothingInternal) {
  for (const std::string& header : publicHeaders()) {
    if (header.find("/generated/") != std::string::npos) continue;
    EXPECT_EQ(textOf(std::filesystem::path(ZQXML_SOURCE_DIR) / header).find("/internal/"), std::string::npos)
        << header;
  }
}

TEST(UmbrellaHeader, BringsWhatAProgramNeeds) {
  const LogCapture log;
  XNMessageBase message;
  std::string text;
  EXPECT_EQ(XMLEncoder().serialize(message, text), XN_MSG_FAILED);
  EXPECT_EQ(MySAX2Handler::getHash("a", 1), 97u);
  EXPECT_NE(XMLDecoder::getXMLDecoderObject(), nullptr);
}

}  // namespace
}  // namespace zqxml
