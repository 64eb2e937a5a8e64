// A host program that ends Xerces-C and starts it again, while threads keep what they have of it. What leaves
// it in another state is tried in a process of its own.
#include <gtest/gtest.h>
#include <tests/support/child_process.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/xml_roads.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/xml/internal/sax_parse.h>
#include <zqxml/xml/xml_serializer.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace zqxml {
namespace {

using xercesc::XMLPlatformUtils;
using XmlRead::Node;

std::string readNew(const std::string& xml) {
  const std::unique_ptr<XNMessageBase> made(XMLSerializer().unserialize(xml, false));
  return made == nullptr ? "none" : dump(*made);
}
std::string written() {
  Node node;
  node.setName("n");
  std::string xml;
  return XMLSerializer().serialize(node, xml) == XN_MSG_OK ? xml : "none";
}

/// Reads and writes by the library alone, and has it running.
class LibraryRestart : public testing::Test {
 protected:
  LibraryRestart() : expected_(readNew(usual_)) {}

  const FastXmlRoads roads_{false};
  const std::string usual_ = "<XmlRead_Node id='1' name='n'><tags val='t'/><unknown/></XmlRead_Node>";
  const std::string expected_;
};

TEST_F(LibraryRestart, KeptParserReadsOn) {
  EXPECT_TRUE(holdsInChild([&] {
    const bool keeps = SaxParse::keptBytes() != 0;
    XMLPlatformUtils::Terminate();
    XMLPlatformUtils::Initialize();
    const LogCapture quiet;
    const bool same = readNew(usual_) == expected_ && readNew("<XmlRead_Node") == "none";
    return keeps && same && readNew(usual_) == expected_;
  }));
}

TEST_F(LibraryRestart, KeptParserEndsWhileTheLibraryIsDown) {
  EXPECT_TRUE(holdsInChild([&] {
    bool kept = false;
    std::thread([&] {
      (void)readNew(usual_);
      kept = SaxParse::keptBytes() != 0;
      XMLPlatformUtils::Terminate();
    }).join();
    return kept;
  }));
}

TEST_F(LibraryRestart, WriterWritesOn) {
  const std::string xml = written();
  EXPECT_NE(xml, "none");
  EXPECT_TRUE(holdsInChild([&] {
    XMLPlatformUtils::Terminate();
    const auto taken = std::make_unique<char[]>(sizeof(void*));  // where the implementation was, it may be
    XMLPlatformUtils::Initialize();
    return written() == xml && written() == xml;
  }));
}

/// A host program's memory.
class HostMemory final : public xercesc::MemoryManager {
 public:
  void* allocate(XMLSize_t size) override {
    ++blocks;
    return ::operator new(size);
  }
  void deallocate(void* block) override {
    if (block != nullptr) --blocks;
    ::operator delete(block);
  }
  MemoryManager* getExceptionMemoryManager() override { return this; }

  std::ptrdiff_t blocks = 0;
};

TEST_F(LibraryRestart, NothingIsKeptOfAHostsMemory) {
  SaxParse::dropKept();
  XMLPlatformUtils::Terminate();
  HostMemory memory;
  XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr, &memory);
  const std::ptrdiff_t before = memory.blocks;
  EXPECT_GT(before, 0);
  EXPECT_EQ(readNew(usual_), expected_);
  EXPECT_EQ(SaxParse::keptBytes(), 0u);
  EXPECT_EQ(memory.blocks, before);
  XMLPlatformUtils::Terminate();
  EXPECT_EQ(memory.blocks, 0);
  XMLPlatformUtils::Initialize();
  EXPECT_EQ(readNew(usual_), expected_);
  EXPECT_NE(SaxParse::keptBytes(), 0u);
}

}  // namespace
}  // namespace zqxml
