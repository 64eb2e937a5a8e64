// The parser that a thread keeps: every text is read as by a new one, whatever was read before it.
#include <gmock/gmock.h>
#include <tests/support/child_process.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/sax2_reading.h>
#include <tests/support/settings.h>
#include <tests/support/xml_roads.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/sax_parse.h>
#include <zqxml/xml/my_sax2_handler.h>
#include <zqxml/xml/xml_serializer.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>
#include <xercesc/sax/SAXParseException.hpp>

namespace zqxml {
namespace {

using XmlRead::Node;

std::string repeated(std::string_view text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

/// After these the parser is as a new one.
const std::vector<std::string> kHarmless{
    "<XmlRead_Node id='1' name='n' unknown='u'><tags val='t'/><unknown><x/></unknown></XmlRead_Node>",
    "<XmlRead_Node><name>a&amp;b&#65;<![CDATA[<c>]]></name><id> 7 </id></XmlRead_Node>",
    "<XmlRead_Node/>",
    "<?xml version='1.0' encoding='ISO-8859-1' standalone='yes'?><XmlRead_Node name='\xe9'/>",
    "<?pi some?><XmlRead_Node id='1'><?pi?><!-- c --><child id='2'/></XmlRead_Node><?end?>",
    "\xef\xbb\xbf<XmlRead_Node name='\xc3\xa9'/>",
    "<XmlRead_Node xmlns='u' xmlns:p='v' p:id='1'><p:name>x</p:name><child xmlns:q='w'/></XmlRead_Node>",
    "\n<XmlRead_Node>\n<name>x</name>\n</XmlRead_Node>\n\n",
    "<p:XmlRead_Node xmlns:p='u'><p:child p:id='3'/></p:XmlRead_Node>",
    "<XmlRead_Node a='1' b='2' c='3' d='4' e='5' f='6' g='7' h='8' i='9' id='10'/>",
};

/// These leave something behind, or might: they fail, or hold what Xerces-C remembers.
const std::vector<std::string> kHarmful{
    "<XmlRead_Node xmlns:x='http://www.w3.org/2001/XMLSchema-instance' x:schemaLocation='u v' x:nil='1' id='1'/>",
    "<?xml version='1.1'?><XmlRead_Node name='&#1;'/>",
    "<!DOCTYPE XmlRead_Node><XmlRead_Node id='1'/>",
    "<!DOCTYPE XmlRead_Node [<!ATTLIST XmlRead_Node name CDATA 'given' p:id CDATA '5'>]><XmlRead_Node/>",
    "<!DOCTYPE XmlRead_Node [<!ELEMENT XmlRead_Node EMPTY><!ATTLIST XmlRead_Node id NMTOKEN ' 4 ' "
    "xmlns CDATA 'u'><!NOTATION n SYSTEM 's'><!ENTITY e 'x'>]><XmlRead_Node/>",
    "<!DOCTYPE XmlRead_Node [<!ATTLIST XmlRead_Node xml: CDATA '5'>]><XmlRead_Node/>",
    "<!DOCTYPE XmlRead_Node SYSTEM 'nowhere.dtd'><XmlRead_Node id='1'/>",
    "<!DOCTYPE XmlRead_Node [<!ENTITY e 'x'>]><XmlRead_Node><name>&e;</name></XmlRead_Node>",
    "<!DOCTYPE XmlRead_Node [<!ATTLIST XmlRead_Node name CDATA '&e;'>]><XmlRead_Node/>",
    "<XmlRead_Node name='&e;'/>",
    "<XmlRead_Node name='&#1;'/>",
    "<XmlRead_Node><child><name>x</child></XmlRead_Node>",
    "<XmlRead_Node><child><items><items>",
    "<XmlRead_Node p:id='1'/>",
    "<XmlRead_Node xmlns:p=''/>",
    "<XmlRead_Node id='1' id='2'/>",
    "<XmlRead_Node><name>\xff</name></XmlRead_Node>",
    "<?xml version='1.0' encoding='none'?><XmlRead_Node/>",
    "<NoSuch_Class/>",
    "<XmlRead_Node>" + repeated("<child>", 1001),
    "x",
    "<!-- c -->",
    "<XmlRead_Node/><XmlRead_Node/>",
    "<XmlRead_Node><![CDATA[x</XmlRead_Node>",
};

std::vector<std::string> allTexts() {
  std::vector<std::string> all = kHarmless;
  all.insert(all.end(), kHarmful.begin(), kHarmful.end());
  return all;
}

/// All that can be seen of reading one text in every way.
struct Seen {
  std::vector<std::string> read;
  std::vector<CapturedLine> lines;

  friend bool operator==(const Seen&, const Seen&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Seen& seen) {
    return out << testing::PrintToString(seen.read) << testing::PrintToString(seen.lines);
  }
};

std::string readNew(const std::string& xml) {
  const std::unique_ptr<XNMessageBase> made(XMLSerializer().unserialize(xml, false));
  return made == nullptr ? "none" : dump(*made);
}
std::string readInto(const std::string& xml) {
  Node node;
  const eXNMsgRet result = XMLSerializer().unserialize(node, xml, false);
  return std::to_string(result) + dump(node);
}
std::string readWide(const std::string& xml) {
  Node node;
  const eXNMsgRet result = XMLSerializer().unserialize(node, toUtf16(xml).c_str(), false, false);
  return std::to_string(result) + dump(node);
}
std::string readTag(const std::string& xml) {
  std::string copy = xml;
  std::string tag;
  unsigned tagId = 0;
  const bool found = XMLSerializer::GetTagAndTagIDFromXML(copy, tag, tagId);
  return std::to_string(found) + tag + std::to_string(tagId);
}
constexpr std::string (*kWays[])(const std::string&) = {readNew, readInto, readWide, readTag};

/// Reads in every way, each time by a new parser or by what is kept.
Seen readInAllWays(const std::string& xml, bool byNewParsers) {
  Seen seen;
  LogCapture log(25);
  for (const auto read : kWays) {
    if (byNewParsers) SaxParse::dropKept();
    seen.read.push_back(read(xml));
  }
  seen.lines = log.lines();
  return seen;
}

/// Reads by the parser alone, and begins with Xerces-C running and no parser that is kept.
class SaxParses : public testing::Test {
 protected:
  SaxParses() {
    (void)readNew(usual_);
    SaxParse::dropKept();
  }

  const FastXmlRoads roads_{false};
  const std::string usual_ = kHarmless.front();
};

TEST_F(SaxParses, EveryTextIsReadAsByANewParserWhateverWasReadBefore) {
  const std::vector<std::string> texts = allTexts();
  std::vector<Seen> expected;
  for (const std::string& text : texts) expected.push_back(readInAllWays(text, true));
  for (const std::string& first : texts) {
    for (const auto read : kWays) {
      for (std::size_t i = 0; i < texts.size(); ++i) {
        const LogCapture quiet;
        (void)readNew(usual_);
        (void)read(first);
        ASSERT_EQ(readInAllWays(texts[i], false), expected[i]) << texts[i] << "\nafter\n" << first;
      }
    }
  }
}

TEST_F(SaxParses, EveryTextIsReadAsThroughSax2) {
  for (const std::string& text : allTexts())
    EXPECT_EQ(zqxml::readInto(Node(), text, true, false, 25), readBySax2(Node(), text, 25)) << text;
}

TEST_F(SaxParses, TagsAreFoundAlikeWithoutTheParser) {
  std::vector<std::string> all = allTexts();
  for (const char* more :
       {"<XmlRead_Node></XmlRead_Node>", "<XmlRead_Node id='1'/><!-- </ -->",
        "<XmlRead_Node><id>1</id></XmlRead_Node>", "<XmlRead_Node level='none' unknown='u' id='1'/>",
        "<XmlRead_Node id='1'/>\n", "<NoSuch_Class>x</NoSuch_Class>"})
    all.emplace_back(more);
  all.push_back("<XmlRead_Node name='" + std::string(5000, 'x') + "'/>");
  for (const std::string& text : all) {
    LogCapture log(25);
    const std::string byParser = readTag(text);
    const std::vector<CapturedLine> lines = log.lines();
    log.clear();
    const FastXmlRoads open(true);
    EXPECT_EQ(readTag(text), byParser) << text;
    EXPECT_EQ(log.lines(), lines) << text;
  }
}

TEST_F(SaxParses, ParserIsKeptUnlessTheTextLeavesSomethingBehind) {
  const LogCapture quiet;
  for (const std::string& text : allTexts()) {
    SaxParse::dropKept();
    (void)readNew(text);
    EXPECT_EQ(SaxParse::keptBytes() != 0, std::ranges::count(kHarmless, text) != 0) << text;
  }
}

TEST_F(SaxParses, ParserOfAnotherSettingIsNotUsed) {
  const std::string xml = "<XmlRead_Node id='1'><p:id>3</p:id></XmlRead_Node>";
  const LogCapture quiet;
  EXPECT_EQ(readNew(xml), "none") << "the prefix is not declared";
  (void)readNew(usual_);
  ASSERT_NE(SaxParse::keptBytes(), 0u);
  const TestSettings settings{{"EventManager/nDisableXMLValidation", "1"},
                              {"EventManager/XMLMessage_DISABLEFASTXML", "1"}};
  std::atomic<bool> started = false;
  XmlStartUp withoutNamespaces(started, [] {});
  XmlStartUp::replacement = &withoutNamespaces;
  const std::string read = readNew(xml);
  XmlStartUp::replacement = nullptr;
  EXPECT_NE(read, "none");
  EXPECT_EQ(readNew(xml), "none");
}

/// The room of the list that a text has, which has a hundred elements.
std::size_t roomIn(const std::string& xml) {
  Node node;
  EXPECT_EQ(XMLSerializer().unserialize(node, xml, false), XN_MSG_OK) << xml;
  EXPECT_EQ(node.getCounts().size(), 100u) << xml;
  return node.getCounts().capacity();
}
/// The same of one whose elements are each that text, behind another text.
std::size_t roomOfAHundred(const std::string& before, const std::string& element) {
  return roomIn("<XmlRead_Node>" + before + repeated(element, 100) + "<id>1</id></XmlRead_Node>");
}

TEST_F(SaxParses, LongListTakesItsRoomAtOnce) {
  for (const char* before :
       {"", "\n<child/>\r\n\n", "<!-- <counts val='1'/> -->", "<name>\xc3\xa9\xc3\xa9</name>"})
    for (const char* element : {"<counts val='1'/>", "<counts val='1' />\n", "<counts val='1'></counts>",
                                "<counts\nval='1'\n></counts >"})
      EXPECT_EQ(roomOfAHundred(before, element), 100u) << before << element;
}

TEST_F(SaxParses, ListWhoseLengthTheTextDoesNotShowGrowsAsItArrives) {
  EXPECT_EQ(roomOfAHundred("\r<child/>\r", "<counts val='1'/>"), 128u) << "no line ends as it looks";
  EXPECT_EQ(roomOfAHundred("", "<counts val='1'/><!-- c -->"), 128u);
  EXPECT_EQ(roomOfAHundred("", "<counts val='1'/><name/>"), 128u);
  const std::string wide = "<name>" + repeated("\xc3\xa9", 5000) + "</name>";
  EXPECT_EQ(roomOfAHundred(wide, "<counts val='1'/>"), 128u) << "its column is not its place";
}

TEST_F(SaxParses, LongListTakesItsRoomWhateverFollowsIt) {
  const std::string list = repeated("<counts val='1'/>", 100);
  EXPECT_EQ(roomIn("<XmlRead_Node>" + list + "</XmlRead_Node>"), 100u);
  EXPECT_EQ(roomIn("<counts>" + list + "</counts>"), 100u) << "the root ends as an element of the list does";
}

TEST_F(SaxParses, ElementWhoseNameBeginsAlikeIsNotCountedForAList) {
  const std::string list = repeated("<counts val='1'/>", 100);
  EXPECT_EQ(roomIn("<XmlRead_Node>" + list + repeated("<countsMore/>", 100) + "</XmlRead_Node>"), 100u);
}

TEST_F(SaxParses, ListsAreReadWhereverTheirElementsWereCounted) {
  const std::string counts = "<counts val='1'/>";
  const std::string more = "<id>1</id>" + repeated(counts, 20);
  Node node;
  ASSERT_EQ(XMLSerializer().unserialize(node,
                                        "<a><name>" + repeated("\xc3\xa9", 5000) + "</name>" +
                                            repeated(counts, 1000) + more + more + "</a>",
                                        false),
            XN_MSG_OK);
  EXPECT_EQ(node.getCounts().size(), 1040u);
  EXPECT_LE(node.getCounts().capacity(), 2048u);
}

TEST_F(SaxParses, LookingUpATagKeepsTheParserToo) {
  EXPECT_EQ(readTag(usual_).front(), '1');
  EXPECT_NE(SaxParse::keptBytes(), 0u);
  EXPECT_EQ(readTag("<XmlRead_Node><unfinished>"), readTag(usual_));
  EXPECT_NE(SaxParse::keptBytes(), 0u);
  EXPECT_EQ(readTag("<XmlRead_Node/>"), readTag(usual_));
}

/// A handler that throws nothing for a text that is not well formed.
class PatientHandler final : public MySAX2Handler {
 public:
  using MySAX2Handler::MySAX2Handler;
  void fatalError(const xercesc::SAXParseException&) override { ++errors; }

  int errors = 0;
};

TEST_F(SaxParses, WithoutAnExceptionTheLookForATagTellsHowFarItCame) {
  using enum SaxParse::RootTag;
  struct Row {
    const char* xml;
    SaxParse::RootTag end;
    int errors;
  };
  for (const Row& row :
       {Row{"x", noStart, 1}, Row{"<!-- c -->", noStart, 1}, Row{"<XmlRead_Node id='1", noTag, 1},
        Row{"<1/>", noTag, 1}, Row{"<XmlRead_Node id='1'><unfinished", read, 0}}) {
    SaxParse::dropKept();
    Node node;
    PatientHandler handler(&node);
    EXPECT_EQ(SaxParse(handler, 0).parseRootTag(TextSource(std::string_view(row.xml))), row.end) << row.xml;
    EXPECT_EQ(handler.errors, row.errors) << row.xml;
    EXPECT_EQ(SaxParse::keptBytes() != 0, row.end == read) << row.xml;
  }
}

TEST_F(SaxParses, ParserThatHasGrownIsNotKept) {
  const std::string large(3000000, 'x');
  EXPECT_NE(readNew("<XmlRead_Node name='" + large + "'/>"), "none");
  EXPECT_EQ(SaxParse::keptBytes(), 0u);
  std::string names;
  for (int i = 0; i < 20000; ++i) names += "<u" + std::to_string(i) + "/>";
  EXPECT_NE(readNew("<XmlRead_Node>" + names + "</XmlRead_Node>"), "none");
  EXPECT_EQ(SaxParse::keptBytes(), 0u);
}

TEST_F(SaxParses, WhatIsKeptStaysSmallWhateverNamesArrive) {
  std::size_t most = 0;
  for (int i = 0; i < 3000; ++i) {
    const std::string number = std::to_string(i);
    ASSERT_NE(readNew("<XmlRead_Node xmlns:p" + number + "='u" + number + "' a" + number + "='1'><u" +
                      number + "/></XmlRead_Node>"),
              "none");
    most = std::max(most, SaxParse::keptBytes());
  }
  EXPECT_GT(most, 0u);
  EXPECT_LE(most, SaxParse::kMostKept);
}

TEST_F(SaxParses, EachParseMayTakeTheWholeOfItsMemory) {
  // Each takes more than 100 KB; all of them together more than one may.
  for (int i = 0; i < 12000; ++i) ASSERT_NE(readNew(usual_), "none");
  EXPECT_NE(SaxParse::keptBytes(), 0u);
}

TEST_F(SaxParses, KeptParserStopsAtTheLimitOfTheTextThatItReads) {
  const LogCapture quiet;
  std::string bomb = "<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxx'>";
  for (int i = 1; i < 10; ++i)
    bomb += "<!ENTITY e" + std::to_string(i) + " '" + repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
  bomb += "<!ATTLIST XmlRead_Node name CDATA '&e9;'>]><XmlRead_Node/>";
  const std::string usual = readNew("<XmlRead_Node name='" + std::string(200000, 'x') + "'/>");
  EXPECT_NE(usual, "none");
  EXPECT_EQ(readInto(bomb).front(), '0' + XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_EQ(SaxParse::keptBytes(), 0u);
  EXPECT_EQ(readNew("<XmlRead_Node name='" + std::string(200000, 'x') + "'/>"), usual);
}

TEST_F(SaxParses, ParseInsideAParseHasAParserOfItsOwn) {
  const std::string expected = readNew(usual_);
  std::vector<std::string> inside;
  EvDebug::setSink([&](const LogLine&) { inside.push_back(readNew("<XmlRead_Node id='5'/>")); });
  EvDebug::setDebugLevel(10);
  const std::string outside = readNew(usual_);
  EvDebug::setSink({});
  EvDebug::setDebugLevel(0);
  EXPECT_EQ(outside, expected);
  ASSERT_FALSE(inside.empty());
  for (const std::string& read : inside) EXPECT_EQ(read, readNew("<XmlRead_Node id='5'/>"));
  EXPECT_NE(SaxParse::keptBytes(), 0u);
}

TEST_F(SaxParses, ThreadsKeepParsersOfTheirOwn) {
  const std::string expected = readNew(usual_);
  ASSERT_NE(SaxParse::keptBytes(), 0u);
  std::thread([&] {
    EXPECT_EQ(SaxParse::keptBytes(), 0u);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(readNew(usual_), expected);
    EXPECT_NE(SaxParse::keptBytes(), 0u);
  }).join();
  EXPECT_EQ(readNew(usual_), expected);
}

/// Reads when its thread ends, after what the thread keeps has ended.
struct ReadsAtTheEnd {
  std::string* read;
  std::string xml;
  ~ReadsAtTheEnd() { *read = readNew(xml) + (SaxParse::keptBytes() == 0 ? "" : "kept"); }
};

TEST_F(SaxParses, EndingThreadsStillReadAndKeepNothing) {
  std::string atTheEnd;
  std::thread([&] {
    static thread_local ReadsAtTheEnd reads{&atTheEnd, usual_};
    EXPECT_NE(readNew(usual_), "none");
  }).join();
  EXPECT_EQ(atTheEnd, readNew(usual_));
}

TEST_F(SaxParses, ChildProcessReadsWithTheParserOfTheThreadThatForked) {
  const std::string expected = readNew(usual_);
  EXPECT_TRUE(holdsInChild([&] {
    return SaxParse::keptBytes() != 0 && readNew(usual_) == expected && SaxParse::keptBytes() != 0;
  }));
  EXPECT_EQ(readNew(usual_), expected);
}

}  // namespace
}  // namespace zqxml
