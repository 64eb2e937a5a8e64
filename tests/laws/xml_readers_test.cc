// Both readers of XML beside each other: the scanner has to give what the parser gives, the same object, the
// same result, the same lines, of texts that a writer has made and of texts that were damaged since. And the
// parser, which is kept from text to text, what a new one gives through SAX2.
#include <gtest/gtest.h>
#include <tests/support/every_type.h>
#include <tests/support/random_message.h>
#include <tests/support/sax2_reading.h>
#include <tests/support/xml_readings.h>
#include <tests/support/xml_ways.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/xml_scanner.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {
namespace {

using namespace std::string_view_literals;

/// Texts that change what a parser makes of the text around them.
constexpr std::string_view kPieces[] = {"<",
                                        ">",
                                        "/",
                                        "\"",
                                        "'",
                                        "&",
                                        ";",
                                        "=",
                                        " ",
                                        "\t",
                                        "\n",
                                        "\r",
                                        "\r\n",
                                        "]]>",
                                        "]",
                                        "<!--",
                                        "-->",
                                        "--",
                                        "<!-- -->",
                                        "<![CDATA[",
                                        "&amp;",
                                        "&lt;",
                                        "&gt;",
                                        "&quot;",
                                        "&apos;",
                                        "&#10;",
                                        "&#xD;",
                                        "&#x9;",
                                        "&#32;",
                                        "&#x1F600;",
                                        "&#0;",
                                        "&#xFFFE;",
                                        "&#xD800;",
                                        "&#1114112;",
                                        "&nbsp;",
                                        "&#x;",
                                        "<?pi?>",
                                        "<!DOCTYPE a>",
                                        "xmlns='u'",
                                        "xmlns:p='u'",
                                        "p:id='1'",
                                        "id='1'",
                                        "val='2'",
                                        "\xc2\x85",
                                        "\xe2\x80\xa8",
                                        "\x7f",
                                        "\x01",
                                        "\xc3\xa9",
                                        "\xf0\x9f\x98\x80",
                                        "\xef\xbf\xbe",
                                        "\xef\xbf\xbf",
                                        "\xed\xa0\x80",
                                        "\xc0\x80",
                                        "\xf4\x90\x80\x80",
                                        "\xf0\x80\x80\x80",
                                        "\xff",
                                        "\xef\xbb\xbf",
                                        "|#41!",
                                        "<a/>",
                                        "</a>",
                                        "<a>",
                                        "tags",
                                        "&#00065;",
                                        "&#x000000041;",
                                        "<__mapKey__ val='k'/>",
                                        "<__mapValue__>v</__mapValue__>",
                                        "true",
                                        "-1",
                                        "12:30:00",
                                        "\0"sv};

/// One or two changes of a text. What is put in goes where a value or a text begins, half of the time, so
/// that much of it stays well-formed.
template <class Random>
std::string damaged(std::string text, Random& random) {
  const auto below = [&](std::size_t end) {
    return static_cast<std::size_t>(random() % (end == 0 ? 1 : end));
  };
  for (std::size_t times = 1 + below(2); times > 0; --times) {
    std::size_t at = below(text.size() + 1);
    const std::size_t other = below(text.size() + 1);
    const std::string_view piece = kPieces[below(std::size(kPieces))];
    switch (below(10)) {
      case 0:
        text.erase(at, below(4));
        break;
      case 1:
        if (at < text.size()) text[at] = static_cast<char>(below(256));
        break;
      case 2:
        text.insert(at, text.substr(other, below(40)));
        break;
      case 3:
        text.resize(at);
        break;
      case 4:
        text.insert(at, piece);
        break;
      default:
        at = text.find_first_of("\">", at);
        text.insert(at == text.npos ? 0 : at + 1, piece);
    }
  }
  return text;
}

void expectSameReading(const OpenMessage& message, const std::string& xml) {
  const OpenMessage empty(message.getSubsysID(), message.getMessageIndex());
  ASSERT_EQ(readNew(xml, true), readNew(xml, false)) << xml;
  ASSERT_EQ(readInto(empty, xml, false, true), readInto(empty, xml, false, false)) << xml;
  const ReadingOutcome byParser = readInto(message, xml, true, false);
  ASSERT_EQ(readInto(message, xml, true, true), byParser) << xml;
  if (xml.empty()) return;  // which no parser sees
  ASSERT_EQ(byParser, readBySax2(message, xml)) << xml;
}

void expectSameReading(const OpenMessage& message, const std::u16string& xml) {
  ASSERT_EQ(readInto(message, xml, false, true), readInto(message, xml, false, false)) << toUtf8(xml);
  ASSERT_EQ(readInto(message, xml, true, true), readInto(message, xml, true, false)) << toUtf8(xml);
}

/// What is not captured is not shown.
class XmlReaders : public ::testing::Test {
 protected:
  XmlReaders() { EvDebug::setDebugLevel(-1); }
  ~XmlReaders() override { EvDebug::setDebugLevel(0); }
};

template <class Char>
bool isPlain(const std::basic_string<Char>& xml) {
  return XmlScanner<Char>().scan(xml);
}

/// Whether a section of a written text has what only the parser takes: "<!", or the end mark that the writer
/// doubles, which ends the section early.
bool hasOddSection(std::string_view xml) {
  constexpr std::string_view kStart = "<![CDATA[";
  for (std::size_t at = xml.find(kStart); at != xml.npos; at = xml.find(kStart)) {
    xml.remove_prefix(at + kStart.size());
    const std::size_t end = xml.find("]]>");
    if (xml.substr(0, end).find("<!") != xml.npos || xml.substr(end + 3).starts_with('>')) return true;
    xml.remove_prefix(end);
  }
  return false;
}

TEST_F(XmlReaders, BothReadWhatIsWrittenOfRandomMessagesAlike) {
  const auto messages = randomMessages(kNulInTexts);
  const int count = comparisons(2000);
  int plain = 0;
  for (int number = 0; number < count && !::testing::Test::HasFatalFailure(); ++number) {
    OpenMessage message = messages(rc::Random(static_cast<std::uint64_t>(number)), number % 100).value();
    const WayOfWriting way(static_cast<unsigned>(number) * 37 % WayOfWriting::kCount);
    SCOPED_TRACE(number);
    std::string xml;
    std::u16string wide;
    ASSERT_EQ(XMLSerializer(way.flags, nullptr).serialize(message, xml, way.rootOnly), XN_MSG_OK);
    ASSERT_EQ(XMLSerializer(way.flags, nullptr).serializeUTF16(message, wide, way.rootOnly), XN_MSG_OK);
    expectSameReading(message, xml);
    expectSameReading(message, wide);
    ASSERT_EQ(isPlain(xml), !hasOddSection(xml)) << xml;
    ASSERT_EQ(isPlain(wide), !hasOddSection(xml)) << xml;
    plain += isPlain(xml) ? 1 : 0;
  }
  EXPECT_GE(plain, count - count / 100) << "what the writer gives is plain, but for odd sections";
}

TEST_F(XmlReaders, BothReadDamagedTextsAlike) {
  const auto messages = randomMessages(kNulInTexts);
  const int count = comparisons(250, 20000);
  int plain = 0;
  std::mt19937 random(1);
  for (int number = 0; number < count && !::testing::Test::HasFatalFailure(); ++number) {
    OpenMessage message = messages(rc::Random(static_cast<std::uint64_t>(number)), number % 100).value();
    const WayOfWriting way(static_cast<unsigned>(number) * 37 % WayOfWriting::kCount);
    SCOPED_TRACE(number);
    std::string xml;
    ASSERT_EQ(XMLSerializer(way.flags, nullptr).serialize(message, xml, way.rootOnly), XN_MSG_OK);
    for (int time = 0; time < 10 && !::testing::Test::HasFatalFailure(); ++time) {
      const std::string text = damaged(xml, random);
      expectSameReading(message, text);
      plain += isPlain(text) ? 1 : 0;
      const std::u16string wide = toUtf16(text);
      if (wide.find(u'\0') == wide.npos) expectSameReading(message, wide);
    }
  }
  EXPECT_GT(plain, count) << "the scanner takes hardly any of them, and nothing is compared";
}

/// Expects both readers to agree on a text, as UTF-8 and, without a declaration, as UTF-16; and the scanner
/// to take it or not.
void expectAgreement(const std::string& xml, bool plain) {
  OpenMessage message = newMessage("XmlRead_Node");
  EXPECT_EQ(isPlain(xml), plain) << xml;
  expectSameReading(message, xml);
  if (xml.find("<?xml") != xml.npos || xml.find('\0') != xml.npos) return;
  const std::u16string wide = toUtf16(xml);
  expectSameReading(message, wide);
}

TEST_F(XmlReaders, BothTakeEachPieceAtEachPlaceAlike) {
  for (const std::string_view piece : kPieces) {
    const std::string p(piece);
    for (const std::string& xml :
         {"<XmlRead_Node name='a" + p + "b' id='3'/>",
          "<XmlRead_Node><name>a" + p + "b</name></XmlRead_Node>",
          "<XmlRead_Node><name><![CDATA[a" + p + "b]]></name></XmlRead_Node>",
          "<XmlRead_Node " + p + " id='3'/>", "<XmlRead_Node><!--" + p + "--><id>3</id></XmlRead_Node>",
          p + "<XmlRead_Node id='3'/>", "<XmlRead_Node id='3'/>" + p,
          "<XmlRead_Node>" + p + "<id>3</id></XmlRead_Node>", "<XmlRead_" + p + "Node id='3'/>"}) {
      expectSameReading(newMessage("XmlRead_Node"), xml);
      if (piece != "\0"sv) expectSameReading(newMessage("XmlRead_Node"), toUtf16(xml));
    }
  }
}

TEST_F(XmlReaders, PlainTextsAreTakenByTheScanner) {
  for (const char* declaration :
       {"", "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>", "<?xml version='1.0'?>",
        "<?xml version='1.0' standalone='yes'?>", "<?xml  version = '1.0' encoding='utf-8'?>\n",
        "<?xml version='1.0' encoding='UTF-8'?>\r\n<!-- a - b -->"})
    expectAgreement(
        declaration + std::string("<XmlRead_Node id = '1' name=\"&lt;'&#x41;&#233;&#x20AC;\r\n\t\">\r\n"
                                  "<tags  val='a'\n/><tags>b&amp;c</tags ><!----><child id='2'/>"
                                  "<counts><![CDATA[4]]></counts>\t</XmlRead_Node>\n<!-- end -->\n"),
        true);
}

TEST_F(XmlReaders, WhatIsNotPlainIsLeftToTheParser) {
  for (const char* xml : {"<!DOCTYPE a><XmlRead_Node id='1'/>",
                          "<?pi?><XmlRead_Node id='1'/>",
                          "<XmlRead_Node id='1'><?pi?></XmlRead_Node>",
                          "<XmlRead_Node xmlns='u' id='1'/>",
                          "<XmlRead_Node xmlns:p='u' p:id='1'/>",
                          "<p:XmlRead_Node id='1'/>",
                          "<?xml version='1.1'?><XmlRead_Node id='1'/>",
                          "<?xml version='1.0' encoding='UTF-16'?><XmlRead_Node id='1'/>",
                          "<?xml version='1.0' encoding='ISO-8859-1'?><XmlRead_Node name='\xe9'/>",
                          "\xef\xbb\xbf<XmlRead_Node id='1'/>",
                          " <?xml version='1.0'?><XmlRead_Node id='1'/>",
                          "<XmlRead_Node id='1' id='2'/>",
                          "<XmlRead_Node id='1'name='2'/>",
                          "<XmlRead_Node id='1'>",
                          "<XmlRead_Node id='1'></XmlRead_Nod>",
                          "<XmlRead_Node id='1'/>x",
                          "<XmlRead_Node id=1/>",
                          "<XmlRead_Node gr\xc3\xb6\xc3\x9f"
                          "e='1'/>",
                          "<XmlRead_Node id='<'/>",
                          "",
                          " ",
                          "x"})
    expectAgreement(xml, false);
}

TEST_F(XmlReaders, BothStopAtTheSameNesting) {
  for (const int levels : {990, 999, 1000, 1001, 2001, 6000}) {
    std::string xml = "<XmlRead_Node>";
    for (int i = 1; i < levels; ++i) xml += "<child>";
    for (int i = 1; i < levels; ++i) xml += "</child>";
    expectSameReading(newMessage("XmlRead_Node"), xml + "</XmlRead_Node>");
  }
}

TEST_F(XmlReaders, BothReadLongDeclarationsAlike) {
  for (const std::size_t blanks : {900u, 1000u, 16300u, 16384u, 33000u}) {
    const std::string gap(blanks, ' ');
    expectSameReading(newMessage("XmlRead_Node"), "<?xml version='1.0'" + gap + "?><XmlRead_Node id='1'/>");
    expectSameReading(newMessage("XmlRead_Node"),
                      toUtf16("<?xml version='1.0' encoding" + gap + "='UTF-16'?><XmlRead_Node id='1'/>"));
  }
}

TEST_F(XmlReaders, BothReadManyAttributesAlike) {
  for (const int count : {999, 1000, 1001, 3000}) {
    std::string xml = "<XmlRead_Node";
    for (int i = 0; i < count; ++i) xml += " a" + std::to_string(i) + "='x'";
    expectSameReading(newMessage("XmlRead_Node"), xml + " id='1'/>");
    expectSameReading(newMessage("XmlRead_Node"), xml + " a7='1'/>");
  }
}

}  // namespace
}  // namespace zqxml
