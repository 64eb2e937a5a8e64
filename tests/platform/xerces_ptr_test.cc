#include <gtest/gtest.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/internal/parse_arena.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

namespace zqxml::internal {
namespace {

class XercesTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { xercesc::XMLPlatformUtils::Initialize(); }
};

using LimitedMemory = XercesTest;
using XercesOwners = XercesTest;

TEST_F(LimitedMemory, LimitGrowsWithTheInput) {
  EXPECT_EQ(LimitedMemoryManager(0).limit(), 64U << 20);
  EXPECT_EQ(LimitedMemoryManager(1000).limit(), (64U << 20) + 64'000);
  EXPECT_EQ(LimitedMemoryManager(std::numeric_limits<std::size_t>::max()).limit(),
            std::numeric_limits<std::size_t>::max());
}

TEST_F(LimitedMemory, CountsWhatIsInUse) {
  LimitedMemoryManager memory(0);
  void* const first = memory.allocate(100);
  void* const second = memory.allocate(1);
  EXPECT_EQ(memory.inUse(), 101U);
  std::memset(first, 'x', 100);
  memory.deallocate(first);
  EXPECT_EQ(memory.inUse(), 1U);
  memory.deallocate(second);
  memory.deallocate(nullptr);
  EXPECT_EQ(memory.inUse(), 0U);
}

TEST_F(LimitedMemory, BlocksAreAlignedForEveryType) {
  LimitedMemoryManager memory(0);
  for (const XMLSize_t size : {0U, 1U, 7U, 33U}) {
    void* const block = memory.allocate(size);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U);
    memory.deallocate(block);
  }
}

TEST_F(LimitedMemory, ThrowsAtTheLimitAndGoesOnBelowIt) {
  LimitedMemoryManager memory(0);
  EXPECT_THROW(memory.allocate((std::size_t{64} << 20) + 1), xercesc::OutOfMemoryException);
  EXPECT_THROW(memory.allocate(std::numeric_limits<XMLSize_t>::max()), xercesc::OutOfMemoryException);
  void* const most = memory.allocate(std::size_t{64} << 20);
  EXPECT_THROW(memory.allocate(1), xercesc::OutOfMemoryException);
  memory.deallocate(most);
  memory.deallocate(memory.allocate(1));
}

TEST_F(LimitedMemory, CountsAnewForAnotherParse) {
  constexpr std::size_t kMebi = std::size_t{1} << 20;
  LimitedMemoryManager memory(kMebi);
  void* const large = memory.allocate(100 * kMebi);
  memory.startAgain(0);
  EXPECT_EQ(memory.limit(), 64 * kMebi);
  EXPECT_EQ(memory.inUse(), 100 * kMebi) << "what is left of the parse before";
  EXPECT_THROW(memory.allocate(1), xercesc::OutOfMemoryException);
  memory.deallocate(large);
  for (int i = 0; i < 16; ++i) memory.deallocate(memory.allocate(64 * kMebi));
  EXPECT_THROW(memory.allocate(1), xercesc::OutOfMemoryException);
  memory.startAgain(0);
  memory.deallocate(memory.allocate(64 * kMebi));
}

TEST_F(LimitedMemory, WhatOthersTakeCountsAsInUse) {
  LimitedMemoryManager memory(0);
  memory.charge(memory.limit() - 100);
  EXPECT_EQ(memory.inUse(), memory.limit() - 100);
  EXPECT_THROW(memory.allocate(101), xercesc::OutOfMemoryException);
  EXPECT_THROW(memory.charge(101), xercesc::OutOfMemoryException);
  memory.charge(100);
  EXPECT_THROW(memory.charge(1), xercesc::OutOfMemoryException);
  EXPECT_EQ(memory.inUse(), memory.limit());
}

TEST_F(LimitedMemory, ExceptionsAreNotCounted) {
  LimitedMemoryManager memory(0);
  EXPECT_EQ(memory.getExceptionMemoryManager(), xercesc::XMLPlatformUtils::fgMemoryManager);
}

// Parses with the manager and gives whether memory ran out.
bool runsOut(xercesc::MemoryManager& memory, const std::string& text) {
  const std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader(&memory));
  xercesc::DefaultHandler handler;
  reader->setContentHandler(&handler);
  reader->setErrorHandler(&handler);
  const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "text",
                                          false);
  try {
    reader->parse(source);
    return false;
  } catch (const xercesc::OutOfMemoryException&) {
    return true;
  }
}

TEST_F(LimitedMemory, AParserLivesWithinIt) {
  LimitedMemoryManager memory(100);
  EXPECT_FALSE(runsOut(memory, "<a><b c='d'>text</b></a>"));
  EXPECT_EQ(memory.inUse(), 0U) << "all was given back";
}

TEST_F(LimitedMemory, AParserThatIsMadeToExpandRunsOut) {
  std::string text = "<!DOCTYPE a [<!ENTITY e0 '" + std::string(1000, 'x') + "'>";
  for (int i = 1; i < 8; ++i) {
    const std::string name = "&e" + std::to_string(i - 1) + ";";
    text += "<!ENTITY e" + std::to_string(i) + " '";
    for (int k = 0; k < 10; ++k) text += name;
    text += "'>";
  }
  text += "<!ATTLIST a b CDATA '&e7;'>]><a/>";
  // A parser that ran out does not give back everything: its memory is an arena's over the limit.
  ParseArena memory(text.size());
  EXPECT_TRUE(runsOut(memory, text));
  EXPECT_LE(memory.inUse(), LimitedMemoryManager(text.size()).limit());
}

TEST_F(XercesOwners, DocumentIsReleased) {
  xercesc::DOMImplementation* const implementation = xercesc::DOMImplementation::getImplementation();
  const XercesPtr<xercesc::DOMDocument> document(implementation->createDocument(nullptr, u"root", nullptr));
  EXPECT_EQ(utf8Of(document->getDocumentElement()->getTagName()), "root");
}

TEST_F(XercesOwners, BlockGoesBackToItsManager) {
  LimitedMemoryManager memory(0);
  {
    const XercesBlock<XMLCh> text(xercesc::XMLString::replicate(u"text", &memory), XercesDeallocate{&memory});
    EXPECT_EQ(viewOf(text.get()), u"text");
    EXPECT_GT(memory.inUse(), 0U);
  }
  EXPECT_EQ(memory.inUse(), 0U);
}

TEST_F(XercesOwners, NullTextIsEmpty) {
  EXPECT_EQ(viewOf(nullptr), u"");
  EXPECT_EQ(utf8Of(nullptr), "");
  EXPECT_EQ(utf8Of(u"\u00e9"), "\xC3\xA9");
}

TEST_F(LimitedMemory, EndsAParseThatTakesAndGivesBackWithoutEnd) {
  LimitedMemoryManager memory(0);
  constexpr XMLSize_t kBlock = 1U << 20;
  const std::size_t times = LimitedMemoryManager::kTurnover * memory.limit() / kBlock;
  for (std::size_t i = 0; i < times; ++i) memory.deallocate(memory.allocate(kBlock));
  EXPECT_THROW(memory.allocate(1), xercesc::OutOfMemoryException);
  EXPECT_EQ(memory.inUse(), 0U);
}

}  // namespace
}  // namespace zqxml::internal
