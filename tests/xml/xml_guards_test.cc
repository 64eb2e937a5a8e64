// Texts that mean harm: entities, things from outside, nesting, and sizes out of proportion.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/message/internal/nesting_limit.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "tests/support/log_capture.h"
#include "tests/support/reading.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/settings.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using XmlRead::Every;
using XmlRead::Node;

constexpr char kParse[] = "XMLSerializer::parserHelper";
constexpr char kParseWide[] = "XMLSerializer::parserHelperWideChar";

eXNMsgRet readInto(XNMessageBase& message, const std::string& text) {
  return XMLSerializer().unserialize(message, text, false);
}

std::string repeated(std::string_view text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// --- Entities

/// Declarations of entities of which each holds ten of the one before it.
std::string bomb(const std::string& mark, int levels) {
  std::string text = "<!ENTITY " + mark + "e0 'xxxxxxxxxx'>";
  for (int i = 1; i <= levels; ++i)
    text += "<!ENTITY " + mark + "e" + std::to_string(i) + " '" +
            repeated((mark.empty() ? "&e" : "&#37;e") + std::to_string(i - 1) + ";", 10) + "'>";
  return text;
}

TEST(XmlGuards, EntityBombInAText) {
  LogCapture log;
  Node node;
  EXPECT_EQ(readInto(node, "<!DOCTYPE a [" + bomb("", 9) + "]><a><name>&e9;</name></a>"), XN_MSG_PARSE_ERROR);
  EXPECT_EQ(readInto(node, "<!DOCTYPE a [" + bomb("", 9) + "]><a name='&e9;'/>"), XN_MSG_PARSE_ERROR);
  EXPECT_FALSE(node.isNameSet());
}

TEST(XmlGuards, EntityBombInADefaultAttributeStopsAtTheLimitOfMemory) {
  LogCapture log;
  Node node;
  EXPECT_EQ(readInto(node, "<!DOCTYPE a [" + bomb("", 9) + "<!ATTLIST a name CDATA '&e9;'>]><a/>"),
            XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_TRUE(log.has(kParse, 0, "Unknown Exception!"));
  EXPECT_FALSE(node.isNameSet());
}

TEST(XmlGuards, DefaultsOfManyElementsStopAtTheLimitOfMemory) {
  LogCapture log;
  Node node;
  EXPECT_EQ(readInto(node, "<!DOCTYPE a [<!ATTLIST tags val CDATA '" + std::string(20000, 'x') + "'>]><a>" +
                               repeated("<tags/>", 5000) + "</a>"),
            XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_TRUE(log.has(kParse, 0, "Unknown Exception!"));
  EXPECT_LT(node.getTags().size(), 5000u);
  std::string attributes;
  for (int i = 0; i < 1000; ++i) attributes += " a" + std::to_string(i) + " CDATA ''";
  EXPECT_EQ(
      readInto(node, "<!DOCTYPE a [<!ATTLIST u" + attributes + ">]><a>" + repeated("<u/>", 5000) + "</a>"),
      XN_MSG_XML_LIBRARY_ERROR);
}

TEST(XmlGuards, DefaultsBelowTheLimitAreRead) {
  Node node;
  EXPECT_EQ(readInto(node, "<!DOCTYPE a [<!ATTLIST tags val CDATA 'given'>]><a>" + repeated("<tags/>", 5000) +
                               "<tags val='said'/></a>"),
            XN_MSG_OK);
  ASSERT_EQ(node.getTags().size(), 5001u);
  EXPECT_EQ(node.getTags().front(), "given");
  EXPECT_EQ(node.getTags().back(), "said");
}

TEST(XmlGuards, ParameterEntitiesAreNotExpanded) {
  LogCapture log;
  Node node;
  EXPECT_EQ(readInto(node, "<!DOCTYPE a [" + bomb("% ", 9) + "%e9;]><a/>"), XN_MSG_PARSE_ERROR);
}

TEST(XmlGuards, EntityThatHoldsItselfFails) {
  LogCapture log;
  Node node;
  EXPECT_EQ(readInto(node, "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a><name>&e;</name></a>"),
            XN_MSG_PARSE_ERROR);
  EXPECT_NE(
      readInto(node, "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'><!ATTLIST a name CDATA '&e;'>]><a/>"),
      XN_MSG_OK);
}

TEST(XmlGuards, TheFiveKnownEntitiesAndCharacterReferencesStay) {
  const ReadAs<Node> node("", "name='&lt;&gt;&amp;&quot;&apos;&#65;&#x42;'");
  EXPECT_EQ(node.getName(), "<>&\"'AB");
}

// --- Things from outside

/// A server that nobody shall call.
class Listener {
 public:
  Listener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(socket_, reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(socket_, 8) != 0 ||
        ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size) != 0)
      throw std::runtime_error("no server");
    port_ = ntohs(address.sin_port);
  }
  ~Listener() { ::close(socket_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  /// Calls it, as a parser would.
  void call() const {
    const int caller = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    const int result = ::connect(caller, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::close(caller);
    if (result != 0) throw std::runtime_error("no call");
  }
  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/x"; }
  bool wasCalled() const {
    const int caller = ::accept(socket_, nullptr, nullptr);
    if (caller >= 0) ::close(caller);
    return caller >= 0;
  }

 private:
  int socket_;
  int port_ = 0;
};

/// Texts that ask for something at `place` in each way there is.
std::vector<std::string> requests(const std::string& place) {
  return {"<!DOCTYPE a SYSTEM '" + place + "'><a id='1'/>",
          "<!DOCTYPE a PUBLIC '-//x//y' '" + place + "'><a id='1'/>",
          "<!DOCTYPE a [<!ENTITY x SYSTEM '" + place + "'>]><a><name>&x;</name></a>",
          "<!DOCTYPE a [<!ENTITY x SYSTEM '" + place + "'>]><a name='&x;'/>",
          "<!DOCTYPE a [<!ENTITY % x SYSTEM '" + place + "'>%x;]><a id='1'/>",
          "<!DOCTYPE a [<!ENTITY x SYSTEM '" + place + "'><!ATTLIST a name CDATA '&x;'>]><a/>",
          "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='u " + place +
              "' id='1'/>",
          "<a xmlns='u' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='u " +
              place + "' id='1'/>",
          "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:noNamespaceSchemaLocation='" + place +
              "' id='1'/>",
          "<a xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='" + place + "'/></a>"};
}

TEST(XmlGuards, NothingIsFetchedFromTheNet) {
  const Listener listener;
  listener.call();
  ASSERT_TRUE(listener.wasCalled());  // a call would be noticed
  for (const std::string& text : requests(listener.url())) {
    LogCapture log;
    Node node;
    (void)readInto(node, text);
    EXPECT_FALSE(listener.wasCalled()) << text;
    std::string tag;
    unsigned tagId = 0;
    std::string copy = text;
    (void)XMLSerializer::GetTagAndTagIDFromXML(copy, tag, tagId);
    EXPECT_FALSE(listener.wasCalled()) << text;
  }
}

TEST(XmlGuards, NothingIsReadFromFiles) {
  ScratchFolder folder;
  // As an entity, a set of declarations or a schema, each would show.
  const std::string place = folder.write("x", "<!ATTLIST a name CDATA 'secret'>");
  const std::string plain = folder.write("y", "secret");
  for (const std::string& file : {place, plain, "file://" + place, "file://" + plain}) {
    for (const std::string& text : requests(file)) {
      LogCapture log;
      Node node;
      (void)readInto(node, text);
      EXPECT_EQ(node.getName(), "") << text;
    }
  }
}

TEST(XmlGuards, DocumentTypeAloneDoesNoHarm) {
  Node node;
  EXPECT_EQ(readInto(node, "<!DOCTYPE a SYSTEM 'nowhere.dtd'><a id='1'/>"), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 1);
}

TEST(XmlGuards, DeclarationsOfTheTextItselfDoNotValidate) {
  Node node;
  LogCapture log;
  EXPECT_EQ(
      readInto(node, "<!DOCTYPE b [<!ELEMENT a EMPTY><!ATTLIST a name CDATA 'given'>]><a><id>1</id></a>"),
      XN_MSG_OK);
  EXPECT_EQ(node.getId(), 1);
  EXPECT_EQ(node.getName(), "given");
  EXPECT_TRUE(log.empty());
}

// --- Nesting

/// Objects nested in as many levels, the root included.
std::string nested(int levels) {
  return "<XmlRead_Node>" + repeated("<child>", levels - 1) + repeated("</child>", levels - 1) +
         "</XmlRead_Node>";
}

class Nesting : public testing::Test {
 protected:
  void SetUp() override { NestingLimit::forget(); }
  void TearDown() override { NestingLimit::forget(); }
};

TEST_F(Nesting, AThousandLevelsAreRead) {
  const auto object = readNew(nested(1000));
  ASSERT_NE(object, nullptr);
  int levels = 0;
  for (const Node* at = Node::from(object.get()); at != nullptr; at = at->getChild()) ++levels;
  EXPECT_EQ(levels, 1000);
}

TEST_F(Nesting, OneMoreIsALibraryError) {
  LogCapture log;
  Node node;
  EXPECT_EQ(readInto(node, nested(1001)), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{
                  kParse, 0, "Encountered error : [Objects are nested in more than [1000] levels]"}));
  EXPECT_EQ(readNew(nested(1001)), nullptr);
  log.clear();
  EXPECT_EQ(XMLSerializer().unserialize(node, toUtf16(nested(1001)).c_str(), false, false),
            XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kParseWide, 0, "Unknown Exception!"}));
}

TEST_F(Nesting, EveryKindOfObjectCounts) {
  Node node;
  LogCapture log;
  const std::string list = repeated("<items>", 1000) + repeated("</items>", 1000);
  EXPECT_EQ(readInto(node, "<a>" + list + "</a>"), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_FALSE(node.isItemsSet());
  const std::string map = repeated("<byName><__mapKey__>k</__mapKey__><__mapValue__>", 1000) +
                          repeated("</__mapValue__></byName>", 1000);
  EXPECT_EQ(readInto(node, "<a>" + map + "</a>"), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_FALSE(node.isByNameSet());
  const std::string keys = repeated("<pairs><__mapKey__>", 1000) + repeated("</__mapKey__></pairs>", 1000);
  EXPECT_EQ(readInto(node, "<a>" + keys + "</a>"), XN_MSG_XML_LIBRARY_ERROR);
}

TEST_F(Nesting, AThousandLevelsThroughMapsAreRead) {
  Node node;
  const std::string text = "<a>" + repeated("<byName><__mapKey__>k</__mapKey__><__mapValue__>", 999) +
                           "<words><__mapKey__>a</__mapKey__><__mapValue__>b</__mapValue__></words>" +
                           repeated("</__mapValue__></byName>", 999) + "</a>";
  ASSERT_EQ(readInto(node, text), XN_MSG_OK);
  int levels = 1;
  const Node* at = &node;
  for (; at->findInByName("k") != nullptr; at = at->findInByName("k")) ++levels;
  EXPECT_EQ(levels, 1000);
  EXPECT_EQ(at->getWords().at("a"), "b");
}

TEST_F(Nesting, SiblingsDoNotCount) {
  Node node;
  EXPECT_EQ(readInto(node, "<a>" + repeated("<items><child/></items>", 5000) + "</a>"), XN_MSG_OK);
  EXPECT_EQ(node.getItems().size(), 5000u);
}

TEST_F(Nesting, UnknownElementsNestTwiceAsDeepAsObjects) {
  Node node;
  LogCapture log;
  EXPECT_EQ(readInto(node, "<a>" + repeated("<u>", 2000) + repeated("</u>", 2000) + "</a>"), XN_MSG_OK);
  EXPECT_EQ(readInto(node, "<a>" + repeated("<u>", 2001) + repeated("</u>", 2001) + "</a>"),
            XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_TRUE(log.has(kParse, 0, "Encountered error : [Elements are nested in more than [2001] levels]"));
}

TEST_F(Nesting, EndlessDepthEndsAtTheLimit) {
  Node node;
  LogCapture log;
  EXPECT_EQ(readInto(node, "<a>" + repeated("<u>", 3000000)), XN_MSG_XML_LIBRARY_ERROR);
}

TEST_F(Nesting, LimitIsASetting) {
  const TestSettings settings{{"EventManager/nMaxNesting", "3"}};
  LogCapture log;
  EXPECT_NE(readNew(nested(3)), nullptr);
  EXPECT_EQ(readNew(nested(4)), nullptr);
  EXPECT_TRUE(log.has(kParse, 0, "Encountered error : [Objects are nested in more than [3] levels]"));
}

TEST_F(Nesting, LimitOfZeroIsNone) {
  const TestSettings settings{{"EventManager/nMaxNesting", "0"}};
  EXPECT_NE(readNew(nested(1500)), nullptr);
}

// --- Sizes

TEST(XmlGuards, ManyAttributesAreRead) {
  std::string text = "<a";
  for (int i = 0; i < 20000; ++i) text += " a" + std::to_string(i) + "='1'";
  Node node;
  EXPECT_EQ(readInto(node, text + " id='5'/>"), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 5);
}

TEST(XmlGuards, LongTextsAndNamesAreRead) {
  const std::string value(3000000, 'x');
  const ReadAs<Node> node("<name>" + value + "</name><" + value + "/>", value + "='1'");
  ASSERT_TRUE(node.ok());
  EXPECT_EQ(node.getName(), value);
}

TEST(XmlGuards, ManyNamesAreRead) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "<u" + std::to_string(i) + "/>";
  const ReadAs<Node> node(text + "<id>5</id>");
  EXPECT_EQ(node.getId(), 5);
}

TEST(XmlGuards, EntriesThatNeverGetAKeyDoNotPileUp) {
  // Each makes a key object that nothing closes, and the next one is read into it.
  LogCapture log;
  Node node;
  EXPECT_EQ(readInto(node, "<a>" + repeated("<pairs></pairs>", 100000) + "</a>"), XN_MSG_XML_LIBRARY_ERROR);
}

TEST(XmlGuards, ZeroBytesAreNoText) {
  LogCapture log;
  Node node;
  EXPECT_EQ(readInto(node, std::string("<a id='1'\0/>", 12)), XN_MSG_PARSE_ERROR);
  EXPECT_EQ(readInto(node, std::string("<a>\0</a>", 8)), XN_MSG_PARSE_ERROR);
  EXPECT_EQ(readInto(node, std::string("\0", 1)), XN_MSG_PARSE_ERROR);
}

TEST(XmlGuards, ZeroByteBehindTheRootEndsTheText) {
  Node node;
  EXPECT_EQ(readInto(node, std::string("<a id='1'/>\0<b/>", 16)), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 1);
}

TEST(XmlGuards, EveryByteInEveryPlaceEndsWell) {
  const std::string text = "<XmlRead_Node id='1'><words><__mapKey__>a</__mapKey__></words></XmlRead_Node>";
  LogCapture log;
  int good = 0;
  for (std::size_t place = 0; place < text.size(); ++place) {
    for (const char byte : {'\0', '<', '>', '&', '\'', '/', '\x80', '\xff', ']', '!'}) {
      std::string changed = text;
      changed[place] = byte;
      if (readNew(changed) != nullptr) ++good;
    }
  }
  EXPECT_GT(good, 0);
}

}  // namespace
}  // namespace zqxml
