// One message, with a value of every type, in every form that it can take.
//
// The files beside this one are the forms to the byte (support/golden_file.h).
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/render/rendering.h>
#include <tests/support/every_type.h>
#include <tests/support/golden_file.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <tests/support/time_zone.h>
#include <tests/support/xml_roads.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <string>

namespace zqxml {
namespace {

/// Does the work with the fast roads of XML open and closed.
template <class Work>
void onBothRoads(Work work) {
  for (const bool open : {true, false}) {
    SCOPED_TRACE(open ? "fast" : "slow");
    const FastXmlRoads roads(open);
    work();
  }
}

/// XML in lines, one tag each, so that a difference is one line of the report.
std::string inLines(std::string xml) {
  for (std::size_t at = 0; (at = xml.find("><", at)) != std::string::npos; at += 2) xml.insert(at + 1, "\n");
  return xml;
}

/// Bytes in lines of sixteen, as a hex dump.
std::string inHex(const std::string& bytes) {
  std::string lines;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i % 16 == 0) lines += formatText("%s%06zx ", i == 0 ? "" : "\n", i);
    lines += formatText(" %02x", static_cast<unsigned char>(bytes[i]));
  }
  return lines;
}

EncodingFlags flagsOf(bool useElements, bool readable) {
  EncodingFlags flags;
  flags.useElements = useElements;
  flags.readable = readable;
  return flags;
}

class GoldenForms : public ::testing::Test {
 protected:
  GoldenForms() { fillEveryType(message_); }

  std::string xml(EncodingFlags flags) {
    std::string text;
    EXPECT_EQ(XMLSerializer(flags, nullptr).serialize(message_, text), XN_MSG_OK);
    return text;
  }
  std::string binary(int version) {
    BinaryBuffer buffer;
    EXPECT_NE(BinarySerializer::serialize(message_, buffer, version), 0u);
    return {buffer.getBuffer(), buffer.getDataSize()};
  }
  /// The file read back has every value.
  void expectReadsBack(const std::string& name) {
    const std::string text = goldenContent(name);
    const std::unique_ptr<XNMessageBase> read(XMLSerializer().unserialize(text, false));
    ASSERT_NE(read, nullptr);
    checkEveryType(*read);
  }
  void expectBinaryReadsBack(const std::string& name) {
    const std::string bytes = goldenContent(name);
    BinaryBuffer buffer;
    buffer.deepCopyBuffer(bytes.data(), bytes.size(), false);
    const std::unique_ptr<XNMessageBase> read(BinarySerializer::unserialize(buffer, nullptr, false));
    ASSERT_NE(read, nullptr);
    checkEveryType(*read, EveryTypeLosses::kBinary);
  }

  OpenMessage message_ = newMessage("Demo_EveryType");
  LogCapture capture_;  // nothing is logged on the way
  void TearDown() override { EXPECT_THAT(capture_.lines(), ::testing::IsEmpty()); }
};

TEST_F(GoldenForms, XmlIsAsRecorded) {
  onBothRoads([this] {
    expectGolden("every_type.xml", xml(flagsOf(false, false)), inLines);
    expectReadsBack("every_type.xml");
  });
}

TEST_F(GoldenForms, ReadableXmlIsAsRecorded) {
  onBothRoads([this] {
    expectGolden("every_type.readable.xml", xml(flagsOf(false, true)), inLines);
    expectReadsBack("every_type.readable.xml");
  });
}

TEST_F(GoldenForms, XmlOfElementsIsAsRecorded) {
  onBothRoads([this] {
    expectGolden("every_type.elements.xml", xml(flagsOf(true, false)), inLines);
    expectReadsBack("every_type.elements.xml");
  });
}

std::string hexOf(std::string bytes) {
  return inHex(bytes);
}

// Two types do not come back from the binary form (an unsigned longlong, and a list of them), and what
// follows them in a message neither; tests of the binary form show how. The message here is without them.
TEST_F(GoldenForms, BinaryOfVersionOneIsAsRecorded) {
  clearBinaryLosses(message_);
  expectGolden("every_type.v1.bin", binary(1), hexOf);
  expectBinaryReadsBack("every_type.v1.bin");
}

TEST_F(GoldenForms, BinaryOfVersionTwoIsAsRecorded) {
  clearBinaryLosses(message_);
  expectGolden("every_type.v2.bin", binary(2), hexOf);
  expectBinaryReadsBack("every_type.v2.bin");
}

// --- For people. The texts of a locale without any, in the time zone of the recording.

/// Text and mark-up in lines, one item each.
std::string inItems(std::string text) {
  for (const char* start : {",", "<br>", "<BR>", "</div>"})
    for (std::size_t at = 0; (at = text.find(start, at)) != std::string::npos; at += 2) text.insert(at, "\n");
  return text;
}

void expectGoldenRenderings(const std::string& name, XNMessageBase& message) {
  const ScopedTimeZone zone("UTC0");
  expectGolden(name + ".txt", plainText(message), inItems);
  expectGolden(name + ".stream.txt", streamText(message), inItems);
  expectGolden(name + ".html", outlineOf(message), inItems);
  expectGolden(name + ".gui.html", paragraphOf(message), inItems);
}

TEST_F(GoldenForms, RenderingsAreAsRecorded) {
  expectGoldenRenderings("every_type", message_);
}

TEST(GoldenBulk, RenderingsOfNestedObjectsAreAsRecorded) {
  const std::unique_ptr<XNMessageBase> jobs(XMLSerializer().unserialize(goldenContent("jobs.xml"), false));
  ASSERT_NE(jobs, nullptr);
  expectGoldenRenderings("jobs", *jobs);
}

}  // namespace
}  // namespace zqxml
