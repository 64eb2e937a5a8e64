// The entry points that read and write XML: results, what they leave behind, and what they log.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/my_sax2_handler.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <thread>

#include "tests/support/log_capture.h"
#include "tests/support/reading.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using XmlRead::Defaults;
using XmlRead::Node;

constexpr char kParse[] = "XMLSerializer::parserHelper";
constexpr char kParseWide[] = "XMLSerializer::parserHelperWideChar";
constexpr char kTag[] = "XMLSerializer::GetTagAndTagIDFromXML";
constexpr char kTagStart[] = "XMLSerializer::_GetTagAndTagIDFromXML";

Node filledNode() {
  Node node;
  node.setId(7);
  node.setName("old");
  node.mutableTags() = {"a"};
  node.mutableWords()["k"] = "v";
  return node;
}

eXNMsgRet readInto(XNMessageBase& message, const std::string& text, bool keepExisting = false) {
  return XMLSerializer().unserialize(message, text, keepExisting);
}

TEST(EntryPoints, DeclarationAloneIsAParseErrorAndTheObjectIsResetAllTheSame) {
  LogCapture log;
  Node node = filledNode();
  EXPECT_EQ(readInto(node, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"), XN_MSG_PARSE_ERROR);
  EXPECT_FALSE(node.isIdSet());
  EXPECT_EQ(node.getId(), 0);
  EXPECT_EQ(node.getName(), "");
  EXPECT_THAT(node.getTags(), IsEmpty());
}

TEST(EntryPoints, FailedParseLeavesTheObjectEmptiedAndPartlyFilled) {
  LogCapture log;
  Node node = filledNode();
  EXPECT_EQ(readInto(node, "<a id='3'><counts val='1'/><name>new</name><tags>cut"), XN_MSG_PARSE_ERROR);
  EXPECT_EQ(node.getId(), 3);
  EXPECT_EQ(node.getName(), "new");
  EXPECT_THAT(node.getCounts(), ElementsAre(1));
  EXPECT_THAT(node.getTags(), IsEmpty());
  EXPECT_FALSE(node.isWordsSet());
}

TEST(EntryPoints, WideTextThatSaysUtf8FailsInTheParser) {
  Node node;
  LogCapture log;
  const eXNMsgRet result = XMLSerializer().unserialize(
      node, u"<?xml version=\"1.0\" encoding=\"UTF-8\"?><a id=\"3\"/>", false, false);
  EXPECT_THAT(result, testing::AnyOf(XN_MSG_PARSE_ERROR, XN_MSG_XML_LIBRARY_ERROR));
  EXPECT_FALSE(node.isIdSet());
  EXPECT_TRUE(log.hasPart(kParseWide, 0, "xception"));
}

TEST(EntryPoints, DeclarationWithoutABlankDoesNotCountInAWideText) {
  Node node;
  EXPECT_EQ(
      XMLSerializer().unserialize(node, u"<?xml\tversion='1.0' encoding='UTF-8'?><a id='3'/>", false, false),
      XN_MSG_OK);
  EXPECT_EQ(node.getId(), 3);
}

TEST(EntryPoints, FirstUseOfAnEntityFails) {
  LogCapture log;
  const std::string type = "<!DOCTYPE a [<!ENTITY e 'x'>]>";
  Node node;
  EXPECT_EQ(readInto(node, type + "<a id='3'/>"), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 3);
  EXPECT_EQ(readInto(node, type + "<a><name>&e;</name></a>"), XN_MSG_PARSE_ERROR);
  EXPECT_FALSE(node.isNameSet());
  EXPECT_EQ(readInto(node, type + "<a name='&e;'/>"), XN_MSG_PARSE_ERROR);
  EXPECT_FALSE(node.isNameSet());
}

TEST(EntryPoints, TagOfAnUnknownClassIsNotFoundAndCleared) {
  LogCapture log;
  std::string xml = "<XmlRead_Unknown/>";
  std::string tag = "before";
  unsigned tagId = 5;
  EXPECT_FALSE(XMLSerializer::GetTagAndTagIDFromXML(xml, tag, tagId));
  EXPECT_EQ(tag, "");
  EXPECT_EQ(tagId, 0u);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"MySAX2Handler::startElement", 0,
                                       "Unable to construct object out of tag : [XmlRead_Unknown]"},
                          CapturedLine{kTagStart, 0, "Unknown Exception!"},
                          CapturedLine{kTag, 0, "Error retrieving tag for given xml."}));
}

TEST(EntryPoints, KeepsTheCachedTextOfAnObjectThatIsMarkedAsSerialized) {
  Node node;
  node.setSerializedXMLString("<kept/>", true);
  EXPECT_STREQ(node.getSerializedXMLString(true), "<kept/>");
  EXPECT_STREQ(node.getSerializedXMLString(false), "<kept/>");
  node.setSerialized(false);
  EXPECT_STREQ(node.getSerializedXMLString(true), "<XmlRead_Node/>");
  EXPECT_THAT(node.getSerializedXMLString(false), StartsWith("<?xml "));
}

TEST(EntryPoints, UnicodeFormHasNoDeclarationAndTheUtf16FormHasOne) {
  Node node;
  node.setId(3);
  std::u16string text;
  EXPECT_EQ(node.serializeUnicode(text), XN_MSG_OK);
  EXPECT_EQ(text, u"<XmlRead_Node id=\"3\"/>");
  EXPECT_TRUE(std::u16string_view(node.getSerializedXMLStringUTF16()).starts_with(u"<?xml "));
  EXPECT_EQ(std::u16string_view(node.getSerializedXMLStringUnicode()), text);
}

// --- Reading into an object

TEST(EntryPoints, EmptyTextFailsAndLeavesTheObjectAlone) {
  Node node = filledNode();
  LogCapture log(10);
  EXPECT_EQ(readInto(node, ""), XN_MSG_FAILED);
  EXPECT_EQ(XMLSerializer().unserialize(node, u"", false, false), XN_MSG_FAILED);
  EXPECT_EQ(XMLSerializer().unserialize(node, nullptr, false, false), XN_MSG_FAILED);
  EXPECT_EQ(readNew(""), nullptr);
  EXPECT_EQ(node.getId(), 7);
  const CapturedLine line{"XMLSerializer::unserialize", 10, "Received empty string to unserialize"};
  EXPECT_THAT(log.lines(), ElementsAre(line, line, line, line));
}

TEST(EntryPoints, ParseStartsFromNothingUnlessTheValuesAreKept) {
  Node node = filledNode();
  ASSERT_EQ(readInto(node, "<a><tags val='b'/></a>"), XN_MSG_OK);
  EXPECT_FALSE(node.isIdSet());
  EXPECT_EQ(node.getId(), 0);
  EXPECT_EQ(node.getName(), "");
  EXPECT_THAT(node.getTags(), ElementsAre("b"));
}

TEST(EntryPoints, KeptValuesAreOverwrittenAndListsAppendedTo) {
  Node node = filledNode();
  ASSERT_EQ(
      readInto(node,
               "<a name='new'><tags val='b'/><words><__mapKey__ val='l'/><__mapValue__ val='w'/></words></a>",
               true),
      XN_MSG_OK);
  EXPECT_TRUE(node.isIdSet());
  EXPECT_EQ(node.getId(), 7);
  EXPECT_EQ(node.getName(), "new");
  EXPECT_THAT(node.getTags(), ElementsAre("a", "b"));
  EXPECT_EQ(node.getWords().size(), 2u);
}

TEST(EntryPoints, KeptValuesStayAfterAFailedParse) {
  LogCapture log;
  Node node = filledNode();
  EXPECT_EQ(readInto(node, "<a name='new'><tags val='b'/>", true), XN_MSG_PARSE_ERROR);
  EXPECT_EQ(node.getId(), 7);
  EXPECT_EQ(node.getName(), "new");
  EXPECT_THAT(node.getTags(), ElementsAre("a", "b"));
}

TEST(EntryPoints, DefaultsArePresentAndNotSetAfterAParse) {
  Defaults defaults;
  EXPECT_TRUE(defaults.isNumberSet());
  ASSERT_EQ(readInto(defaults, "<a/>"), XN_MSG_OK);
  EXPECT_EQ(defaults.getNumber(), 5);
  EXPECT_FALSE(defaults.isNumberSet());
}

TEST(EntryPoints, StringAndConstStringFormsAreTheSame) {
  std::string text = "<a id='4'/>";
  Node node;
  EXPECT_EQ(XMLSerializer().unserialize(node, text, false), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 4);
  text = "<XmlRead_Node id='5'/>";
  const std::unique_ptr<XNMessageBase> made(XMLSerializer().unserialize(text, true));
  ASSERT_NE(Node::from(made.get()), nullptr);
  EXPECT_EQ(Node::from(made.get())->getId(), 5);
}

TEST(EntryPoints, WideTextsReadWithAndWithoutADeclaration) {
  for (const bool ignored : {false, true}) {
    for (const std::u16string text : {u"<a id='4' name='\u00e9\u65e5\U0001F600'/>",
                                      u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><a id='4' "
                                      u"name='\u00e9\u65e5\U0001F600'/>",
                                      u"<?xml version=\"1.0\"?><a id='4' name='\u00e9\u65e5\U0001F600'/>"}) {
      Node node;
      ASSERT_EQ(XMLSerializer().unserialize(node, text.c_str(), ignored, false), XN_MSG_OK) << toUtf8(text);
      EXPECT_EQ(node.getId(), 4);
      EXPECT_EQ(node.getName(), "\xc3\xa9\xe6\x97\xa5\xf0\x9f\x98\x80");
    }
  }
}

TEST(EntryPoints, NarrowTextsReadInTheEncodingThatTheySay) {
  Node node;
  EXPECT_EQ(readInto(node, "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a name='\xe9'/>"), XN_MSG_OK);
  EXPECT_EQ(node.getName(), "\xc3\xa9");
  EXPECT_EQ(readInto(node, "\xef\xbb\xbf<a name='\xc3\xa9'/>"), XN_MSG_OK);
  EXPECT_EQ(node.getName(), "\xc3\xa9");
  const std::u16string wide = u"\ufeff<a name='\u00e9'/>";
  EXPECT_EQ(readInto(node, std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * 2)),
            XN_MSG_OK);
  EXPECT_EQ(node.getName(), "\xc3\xa9");
}

TEST(EntryPoints, TextsWithBytesThatAreNoUtf8Fail) {
  Node node;
  LogCapture log;
  EXPECT_NE(readInto(node, "<a name='\xff'/>"), XN_MSG_OK);
  EXPECT_NE(readInto(node, "<a><name>\xc3</name></a>"), XN_MSG_OK);
  EXPECT_FALSE(node.isNameSet());
}

// --- Failures

TEST(EntryPoints, TextThatIsNotWellFormedIsAParseError) {
  for (const std::string text :
       {"<a>", "<a></b>", "text", "<a b=c/>", "<a b='1' b='2'/>", "<a/><a/>", "<a>&x;</a>", "<a>\x01</a>",
        "<?xml version='9.9'?><a/>", "&", "<!--", " ", "\n"}) {
    Node node;
    LogCapture log;
    EXPECT_EQ(readInto(node, text), XN_MSG_PARSE_ERROR) << text;
    EXPECT_TRUE(log.hasPart(kParse, 0, "SAXParseException: ")) << text;
    EXPECT_EQ(log.lines().size(), 1u);
  }
}

TEST(EntryPoints, WideTextThatIsNotWellFormedIsAParseError) {
  Node node;
  LogCapture log;
  EXPECT_EQ(XMLSerializer().unserialize(node, u"<a>", false, false), XN_MSG_PARSE_ERROR);
  EXPECT_TRUE(log.hasPart(kParseWide, 0, "SAXParseException: ["));
}

TEST(EntryPoints, UnknownEncodingIsAnError) {
  Node node;
  LogCapture log;
  EXPECT_NE(readInto(node, "<?xml version='1.0' encoding='nothing-like-it'?><a id='1'/>"), XN_MSG_OK);
  EXPECT_FALSE(log.empty());
}

TEST(EntryPoints, FailedParseMakesNoObject) {
  LogCapture log;
  for (const std::string text :
       {"<XmlRead_Node id='1'><child><items><child>", "<XmlRead_Node", "<XmlRead_Node>",
        "<XmlRead_Node><pairs><__mapKey__/><__mapValue__>", "nothing"})
    EXPECT_EQ(readNew(text), nullptr) << text;
}

TEST(EntryPoints, EveryTruncatedTextFailsAndReadsWhatWasWhole) {
  LogCapture log;
  const std::string whole =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?><XmlRead_Node id=\"1\"><tags val=\"\xc3\xa9\"/><child "
      "name=\"c\">"
      "<items><name>n<![CDATA[d]]></name></items></child><pairs><__mapKey__ "
      "id=\"2\"/><__mapValue__><words><__mapKey__>"
      "a</__mapKey__><__mapValue__>b</__mapValue__></words></__mapValue__></pairs><!-- c --></XmlRead_Node>";
  ASSERT_NE(readNew(whole), nullptr);
  for (std::size_t length = 1; length < whole.size(); ++length) {
    const std::string text = whole.substr(0, length);
    Node node;
    EXPECT_EQ(readInto(node, text), XN_MSG_PARSE_ERROR) << text;
    EXPECT_EQ(readNew(text), nullptr) << text;
  }
}

TEST(EntryPoints, EveryTruncatedWideTextFails) {
  LogCapture log;
  const std::u16string whole =
      u"<XmlRead_Node id=\"1\"><tags val=\"\u00e9\"/><child "
      u"name=\"c\"><items><name>n<![CDATA[d]]></name></items>"
      u"</child><byName><__mapKey__>a</__mapKey__><__mapValue__ id=\"3\"/></byName></XmlRead_Node>";
  for (const std::u16string start : {u"", u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>"}) {
    const std::u16string text = start + whole;
    Node node;
    ASSERT_EQ(XMLSerializer().unserialize(node, text.c_str(), false, false), XN_MSG_OK);
    for (std::size_t length = 1; length < text.size(); ++length)
      EXPECT_NE(XMLSerializer().unserialize(node, text.substr(0, length).c_str(), false, false), XN_MSG_OK)
          << length;
  }
}

// --- The handler

TEST(EntryPoints, HandlerHashesNamesLikeTheCatalogue) {
  EXPECT_EQ(MySAX2Handler::getHash("errorCode", 9), 0x9cb015u);
  EXPECT_EQ(MySAX2Handler::getHash("processinginstructioninfo", 25), 0xcac2c9u);
  EXPECT_EQ(MySAX2Handler::getHash("__mapKey__", 10), 0x321e63u);
  EXPECT_EQ(MySAX2Handler::getHash("__mapValue__", 12), 0x882bf5u);
  EXPECT_EQ(MySAX2Handler::getHash("", 0), 0u);
  EXPECT_EQ(MySAX2Handler::getHash(nullptr, 5), 0u);
  EXPECT_EQ(MySAX2Handler::getHash("\xff", 1), 0xffffffu);
}

TEST(EntryPoints, HandlerGivesItsMainObject) {
  Node node;
  MySAX2Handler handler(&node);
  EXPECT_EQ(handler.getMainObject(), &node);
  EXPECT_EQ(XMLSerializer::getSAXHandlerMessageObject(handler), &node);
  MySAX2Handler making;
  EXPECT_EQ(making.getMainObject(), nullptr);
}

TEST(EntryPoints, HandlerTakesEventsWithoutNamesOrAnObject) {
  MySAX2Handler making;
  making.characters(nullptr, 0);
  making.endElement(nullptr, nullptr, nullptr);
  EXPECT_EQ(making.finish(), nullptr);
  Node node;
  MySAX2Handler handler(&node);
  handler.endElement(nullptr, nullptr, nullptr);
  EXPECT_EQ(handler.finish(), &node);
}

// --- Members of the object

TEST(EntryPoints, ObjectReadsEachKindOfText) {
  LogCapture log;
  Node node;
  std::string text = "<a id='1'/>";
  EXPECT_EQ(node.unserialize(text), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 1);
  EXPECT_EQ(node.unserialize(std::string("<a id='2'/>")), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 2);
  EXPECT_EQ(node.unserialize("<a id='3'/>"), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 3);
  EXPECT_EQ(node.unserialize(u"<a id='4'/>"), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 4);
  EXPECT_EQ(node.unserialize(u"<a id='5'/>", true), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 5);
  EXPECT_EQ(node.unserialize(""), XN_MSG_FAILED);
  EXPECT_EQ(node.unserialize(static_cast<const char*>(nullptr)), XN_MSG_FAILED);
  EXPECT_EQ(node.unserialize("<a"), XN_MSG_PARSE_ERROR);
}

TEST(EntryPoints, SeveralThreadsReadAtOnce) {
  std::vector<std::thread> threads;
  std::atomic<int> good = 0;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&good, t] {
      for (int i = 0; i < 50; ++i) {
        const std::string id = std::to_string(t * 1000 + i);
        const auto object =
            readNew("<XmlRead_Node id='" + id + "'><tags val='" + id + "'/><sizes><__mapKey__ val='" + id +
                    "'/><__mapValue__ val='" + id + "'/></sizes></XmlRead_Node>");
        const Node* node = Node::from(object.get());
        if (node != nullptr && node->getId() == t * 1000 + i && node->getSizes().at(id) == t * 1000 + i)
          ++good;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 200);
}

}  // namespace
}  // namespace zqxml
