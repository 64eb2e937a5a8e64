// The writer's primitives on a document of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/xml/internal/xml_serializer_access.h>
#include <zqxml/xml/xml_serializer.h>

#include <string>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "tests/support/log_capture.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Access = XMLSerializerAccess;

/// A document with an empty root element.
class WritePrimitives : public testing::Test {
 protected:
  WritePrimitives() {
    EXPECT_EQ(Access::initialize(), XN_MSG_OK);
    doc = xercesc::DOMImplementation::getImplementation()->createDocument(nullptr, u"root", nullptr);
    root = doc->getDocumentElement();
  }
  ~WritePrimitives() override { doc->release(); }

  /// What the document has become.
  std::string text() {
    std::string out;
    Access::dump(attributes, out, doc, true);
    return out;
  }
  /// The lines of `log` are one of `function` about the tag.
  static void expectExceptionLine(const LogCapture& log, const char* function, const std::string& tag) {
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                                 function, 0, "Exception occurred while constructing tag : [" + tag + "]"}));
  }

  XMLSerializer attributes;
  XMLSerializer elements{withElements(), nullptr};
  xercesc::DOMDocument* doc = nullptr;
  xercesc::DOMElement* root = nullptr;
};

TEST_F(WritePrimitives, WriteNodeIsAnAttributeOrAnElement) {
  Access::writeNodeToXML(attributes, doc, root, u"a", u"1");
  EXPECT_EQ(text(), R"(<root a="1"/>)");
  Access::writeNodeToXML(elements, doc, root, u"b", u"2");
  EXPECT_EQ(text(), R"(<root a="1"><b>2</b></root>)");
}

TEST_F(WritePrimitives, WriteNodeDoesNothingWithANullArgument) {
  LogCapture log;
  for (XMLSerializer* serializer : {&attributes, &elements}) {
    Access::writeNodeToXML(*serializer, nullptr, root, u"a", u"1");
    Access::writeNodeToXML(*serializer, doc, nullptr, u"a", u"1");
    Access::writeNodeToXML(*serializer, doc, root, nullptr, u"1");
    Access::writeNodeToXML(*serializer, doc, root, u"a", nullptr);
  }
  EXPECT_EQ(text(), "<root/>");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(WritePrimitives, WriteListNodeIsAnAttributeOrTheText) {
  Access::writeListNodeToXML(attributes, doc, root, u"val", u"1");
  Access::writeListNodeToXML(elements, doc, root, u"val", u"2");
  EXPECT_EQ(text(), R"(<root val="1">2</root>)");
}

TEST_F(WritePrimitives, WriteListNodeDoesNothingWithANullArgument) {
  for (XMLSerializer* serializer : {&attributes, &elements}) {
    Access::writeListNodeToXML(*serializer, nullptr, root, u"val", u"1");
    Access::writeListNodeToXML(*serializer, doc, nullptr, u"val", u"1");
    Access::writeListNodeToXML(*serializer, doc, root, nullptr, u"1");
    Access::writeListNodeToXML(*serializer, doc, root, u"val", nullptr);
  }
  EXPECT_EQ(text(), "<root/>");
}

TEST_F(WritePrimitives, CdataIsAnElementOrStandsInTheEntry) {
  Access::writeAsCDATA(attributes, doc, root, u"a", u"<1>");
  Access::writeAsCDATA(elements, doc, root, u"b", u"");
  Access::writeListNodeAsCDATA(attributes, doc, root, u"val", u"2");
  Access::writeListNodeAsCDATA(elements, doc, root, nullptr, u"3");
  EXPECT_EQ(text(), "<root><a><![CDATA[<1>]]></a><b><![CDATA[]]></b><![CDATA[2]]><![CDATA[3]]></root>");
}

TEST_F(WritePrimitives, IllegalTagIsLoggedUnderThePrimitive) {
  LogCapture log;
  Access::writeNodeToXML(attributes, doc, root, u"no tag", u"1");
  expectExceptionLine(log, "XMLSerializer::writeNodeToXML", "no tag");
  log.clear();
  Access::writeNodeToXML(elements, doc, root, u"no tag", u"1");
  expectExceptionLine(log, "XMLSerializer::writeNodeToXML", "no tag");
  log.clear();
  Access::writeListNodeToXML(attributes, doc, root, u"no tag", u"1");
  expectExceptionLine(log, "XMLSerializer::writeListNodeToXML", "no tag");
  log.clear();
  Access::writeAsCDATA(attributes, doc, root, u"nö tag", u"1");
  expectExceptionLine(log, "XMLSerializer::writeAsCDATA", "nö tag");
  EXPECT_EQ(text(), "<root/>");
}

TEST_F(WritePrimitives, EntryOfAnotherDocumentIsLoggedUnderThePrimitive) {
  xercesc::DOMDocument* other = xercesc::DOMImplementation::getImplementation()->createDocument();
  LogCapture log;
  Access::writeListNodeAsCDATA(attributes, other, root, u"val", u"1");
  expectExceptionLine(log, "XMLSerializer::writeListNodeAsCDATA", "val");
  EXPECT_EQ(text(), "<root/>");
  other->release();
}

TEST_F(WritePrimitives, WriteStringWidensEscapesAndEncodes) {
  Access::writeStringToXML(attributes, doc, root, "a", "ü\x01]]>", false);
  EXPECT_EQ(text(), R"(<root a="|ü|#1!]]>"/>)");
  Access::writeStringToXML(attributes, doc, root, "b", "", false);
  EXPECT_EQ(text(), R"(<root a="|ü|#1!]]>" b=""/>)");
}

TEST_F(WritePrimitives, WriteStringAsCdata) {
  Access::writeStringToXML(attributes, doc, root, "a", "x]]>", true);
  const auto* section = root->getFirstChild()->getFirstChild();
  EXPECT_EQ(section->getNodeType(), xercesc::DOMNode::CDATA_SECTION_NODE);
  EXPECT_EQ(section->getNodeValue(), std::u16string(u"x]]]]>>"));
}

TEST_F(WritePrimitives, WriteStringAsElement) {
  Access::writeStringToXML(elements, doc, root, "a", "x", false);
  EXPECT_EQ(text(), "<root><a>x</a></root>");
}

TEST_F(WritePrimitives, MapElementsAreAnEntryWithKeyAndValue) {
  xercesc::DOMElement* entry = nullptr;
  xercesc::DOMElement* key = nullptr;
  xercesc::DOMElement* value = nullptr;
  EXPECT_TRUE(Access::constructMapElements(attributes, doc, root, entry, key, value, u"m"));
  EXPECT_EQ(entry->getTagName(), std::u16string(u"m"));
  EXPECT_EQ(key->getTagName(), std::u16string(u"__mapKey__"));
  EXPECT_EQ(value->getTagName(), std::u16string(u"__mapValue__"));
  EXPECT_EQ(text(), "<root><m><__mapKey__/><__mapValue__/></m></root>");
}

TEST_F(WritePrimitives, MapElementsThatFailLeaveNothing) {
  xercesc::DOMElement* entry = root;
  xercesc::DOMElement* key = root;
  xercesc::DOMElement* value = root;
  LogCapture log;
  EXPECT_FALSE(Access::constructMapElements(attributes, doc, root, entry, key, value, u"no tag"));
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"XMLSerializer::constructMapElements", 0,
                                                    "Error constructing map object [no tag]."}));
  EXPECT_EQ(text(), "<root/>");
  EXPECT_EQ(key, nullptr);
}

TEST_F(WritePrimitives, WriterHasLineFeedsAndIsPrettyOnlyWhenReadable) {
  EncodingFlags flags;
  flags.readable = true;
  XMLSerializer readable(flags, nullptr);
  struct Row {
    DOMWriter* writer;
    bool pretty;
  };
  for (const Row& row :
       {Row{Access::createWriterUTF8(attributes), false}, Row{Access::createWriterUTF16(attributes), false},
        Row{Access::createWriterUTF8(readable), true}, Row{Access::createWriterUTF16(readable), true}}) {
    EXPECT_EQ(row.writer->getNewLine(), std::u16string(u"\n"));
    EXPECT_EQ(row.writer->getDomConfig()->getParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint) != nullptr,
              row.pretty);
    row.writer->release();
  }
}

TEST_F(WritePrimitives, DumpReplacesWhatWasThere) {
  std::string narrow = "before";
  std::u16string wide = u"before";
  Access::dump(attributes, narrow, doc, false);
  Access::dump(attributes, wide, doc, false);
  EXPECT_EQ(narrow, R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?><root/>)");
  EXPECT_EQ(wide, uR"(<?xml version="1.0" encoding="UTF-16" standalone="no" ?><root/>)");
  Access::dump(attributes, wide, doc, true);
  EXPECT_EQ(wide, u"<root/>");
}

}  // namespace
}  // namespace zqxml
