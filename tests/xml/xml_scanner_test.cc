// The events that the scanner gives of plain texts. What is plain, and that they are the parser's, is the
// matter of tests/laws/xml_readers_test.cc.
#include <gmock/gmock.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/xml_scanner.h>

#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

/// Writes each event as a word: +NAME(NAME=VALUE,...)*ALIKE at a start, -NAME at an end, and texts in
/// brackets.
template <class Char>
class EventWriter {
 public:
  void start(NameView<Char> name, const ScannedAttributes<Char>& attributes, std::size_t alike) {
    events_ += " +" + utf8Text(name.text);
    EXPECT_EQ(name.hash, nameHash(name.text));
    for (const BasicAttributeView<Char> attribute : attributes) {
      events_ += "(" + utf8Text(attribute.name.text) + "=" + utf8Text(attribute.value) + ")";
      EXPECT_EQ(attribute.name.hash, nameHash(attribute.name.text));
    }
    if (alike != 0) events_ += "*" + std::to_string(alike);
  }
  void end(NameView<Char> name) { events_ += " -" + utf8Text(name.text); }
  void characters(std::basic_string_view<Char> text) { events_ += " [" + utf8Text(text) + "]"; }
  bool takesCharacters() const { return true; }

  const std::string& events() const { return events_; }

 private:
  std::string events_;
};

template <class Char>
std::string eventsOf(const std::basic_string<Char>& xml) {
  XmlScanner<Char> scanner;
  if (!scanner.scan(xml)) return "not plain";
  EventWriter<Char> writer;
  scanner.drive(writer);
  return writer.events();
}

/// The events of the text, which are the same in either width.
std::string events(const std::string& xml) {
  std::string narrow = eventsOf(xml);
  EXPECT_EQ(eventsOf(toUtf16(xml)), narrow);
  return narrow;
}

std::string repeated(std::string_view text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(XmlScanner, GivesElementsAttributesAndTextsInTheirOrder) {
  EXPECT_EQ(events("<r a='1' b=\"2\">x<c/>y<d e=''>z</d></r>"),
            " +r(a=1)(b=2) [x] +c -c [y] +d(e=) [z] -d -r");
}

TEST(XmlScanner, ClosesSeveralElementsBehindOnePart) {
  EXPECT_EQ(events("<a><b><c/></b></a>"), " +a +b +c -c -b -a");
  EXPECT_EQ(events("<a><b></b><c>x</c></a>"), " +a +b -b +c [x] -c -a");
}

TEST(XmlScanner, FirstOfElementsWithOneNameTellsHowManyFollow) {
  EXPECT_EQ(events("<r><a/><a/> <a/><b/><a/></r>"), " +r +a*2 -a +a -a [ ] +a -a +b -b +a -a -r");
}

TEST(XmlScanner, ElementsInsideOfOthersAreCountedApart) {
  EXPECT_EQ(events("<r><a><a/><a/></a><a><a/></a></r>"), " +r +a*1 +a*1 -a +a -a -a +a +a -a -a -r");
  EXPECT_EQ(events("<a><a/><a/></a>"), " +a +a*1 -a +a -a -a");
}

TEST(XmlScanner, AttributesOfElementsWithOneNameMayDiffer) {
  EXPECT_EQ(events("<r><e id='1' name='n' x='2'/><e id='3' x='4'/><e name='m' id='5' identity='6' i='7'/>"
                   "<e id='8' name='n' x='9' y='10'/></r>"),
            " +r +e(id=1)(name=n)(x=2)*3 -e +e(id=3)(x=4) -e +e(name=m)(id=5)(identity=6)(i=7) -e"
            " +e(id=8)(name=n)(x=9)(y=10) -e -r");
}

TEST(XmlScanner, NamesThatBeginAlikeAreApart) {
  EXPECT_EQ(events("<r><name/><names/><nam/><name a='1'/></r>"),
            " +r +name -name +names -names +nam -nam +name(a=1) -name -r");
  EXPECT_EQ(events("<r><aLongNameOfMany/><aLongNameOfMore/><aLongNameOfMoreThanSixteen/></r>"),
            " +r +aLongNameOfMany -aLongNameOfMany +aLongNameOfMore -aLongNameOfMore"
            " +aLongNameOfMoreThanSixteen -aLongNameOfMoreThanSixteen -r");
}

TEST(XmlScanner, TakesSpecialCharactersAtEveryPlaceOfAValue) {
  for (std::size_t before = 0; before < 20; ++before) {
    for (std::size_t behind = 0; behind < 20; ++behind) {
      const std::string left(before, 'l');
      const std::string right(behind, 'r');
      for (const std::string quote : {"\"", "'"}) {
        const auto valueOf = [&](const std::string& text) {
          return events("<r a=" + quote + left + text + right + quote + "/>");
        };
        EXPECT_EQ(valueOf("&amp;"), " +r(a=" + left + "&" + right + ") -r");
        EXPECT_EQ(valueOf("\t>"), " +r(a=" + left + " >" + right + ") -r");
        EXPECT_EQ(valueOf("\xc3\xa9"), " +r(a=" + left + "\xc3\xa9" + right + ") -r");
        EXPECT_EQ(valueOf("<"), "not plain");
        EXPECT_EQ(valueOf("\x01"), "not plain");
        const std::string other = quote == "'" ? "\"" : "'";
        EXPECT_EQ(valueOf(other), " +r(a=" + left + other + right + ") -r");
      }
      EXPECT_EQ(events("<r>" + left + "&lt;\"'" + right + "</r>"), " +r [" + left + "<\"'" + right + "] -r");
    }
  }
}

// --- Elements of classes, whose attributes are expected

/// What the attributes of an element of class XmlRead_Defaults (number, on, text) are taken for: the same as
/// those of an element of no class, and of one that another precedes.
std::string attributesOfDefaults(const std::string& attributes) {
  const std::string unknown = events("<a" + attributes + "/>");
  const std::string known = events("<XmlRead_Defaults" + attributes + "/>");
  const std::string twice = events("<r><a" + attributes + "/><a" + attributes + "/></r>");
  if (unknown == "not plain") {
    EXPECT_EQ(known, unknown);
    EXPECT_EQ(twice, unknown);
    return unknown;
  }
  constexpr std::size_t kAround = std::string_view(" +a").size();
  std::string inside = unknown.substr(kAround, unknown.size() - 2 * kAround);
  EXPECT_EQ(known, " +XmlRead_Defaults" + inside + " -XmlRead_Defaults");
  EXPECT_EQ(twice, " +r +a" + inside + "*1 -a +a" + inside + " -a -r");
  return inside;
}

TEST(XmlScanner, ExpectedAttributesMayBeMissingAndOthersStandBetween) {
  EXPECT_EQ(attributesOfDefaults(" number=\"1\" on=\"0\" text=\"t\""), "(number=1)(on=0)(text=t)");
  EXPECT_EQ(attributesOfDefaults(" on=\"0\""), "(on=0)");
  EXPECT_EQ(attributesOfDefaults(" number=\"1\" text=\"t\""), "(number=1)(text=t)");
  EXPECT_EQ(attributesOfDefaults(" text=\"t\" on=\"0\" number=\"1\""), "(text=t)(on=0)(number=1)");
  EXPECT_EQ(attributesOfDefaults(" a=\"0\" number=\"1\" numbers=\"2\" o=\"3\" on=\"4\""),
            "(a=0)(number=1)(numbers=2)(o=3)(on=4)");
}

TEST(XmlScanner, ExpectedAttributesComeOnce) {
  EXPECT_EQ(attributesOfDefaults(" on=\"0\" on=\"1\""), "not plain");
  EXPECT_EQ(attributesOfDefaults(" number=\"0\" on=\"1\" number=\"2\""), "not plain");
  EXPECT_EQ(attributesOfDefaults(" number=\"0\" x=\"1\" x=\"2\""), "not plain");
}

TEST(XmlScanner, ExpectedAttributesMayBeWrittenInAnyWay) {
  EXPECT_EQ(attributesOfDefaults("\n number = '1'\ton=\"&lt;\"  text=\"\xc3\xa9&amp;\" "),
            "(number=1)(on=<)(text=\xc3\xa9&)");
  EXPECT_EQ(attributesOfDefaults(" number=\"\" on=\"a long value of more than a block\" text='\"'"),
            "(number=)(on=a long value of more than a block)(text=\")");
  for (const char* wrong : {" number=\"1\"on=\"2\"", " number=\"1", " number=\"<\"", " number=1", " number"})
    EXPECT_EQ(attributesOfDefaults(wrong), "not plain") << wrong;
}

TEST(XmlScanner, NameHas255CharactersAtMost) {
  const std::string most(255, 'n');
  EXPECT_EQ(events("<r " + most + "=''/>"), " +r(" + most + "=) -r");
  EXPECT_EQ(events("<r " + most + "n=''/>"), "not plain");
  EXPECT_EQ(events("<" + most + "/>"), " +" + most + " -" + most);
  EXPECT_EQ(events("<" + most + "n/>"), "not plain");
}

/// Takes note of where the class of a root is expected to have the fields of the attributes.
struct PositionReader {
  void start(NameView<char>, const ScannedAttributes<char>& attributes, std::size_t) {
    for (const BasicAttributeView<char> attribute : attributes) positions.push_back(attribute.position);
  }
  void end(NameView<char>) {}
  void characters(std::string_view) {}
  bool takesCharacters() const { return false; }

  std::vector<int> positions;
};

TEST(XmlScanner, ExpectedAttributesTellTheirFields) {
  const std::string xml = "<XmlRead_Defaults number=\"1\" on=\"&lt;\" text=\"3\" up=\"4\"/>";
  XmlScanner<char> scanner;
  ASSERT_TRUE(scanner.scan(xml));
  PositionReader reader;
  scanner.drive(reader);
  EXPECT_EQ(reader.positions, (std::vector<int>{0, 2, 1, kNoPosition}));
}

// --- The memory that a thread keeps

/// What the thread keeps while a text of so many elements is scanned, and what it keeps behind that.
std::pair<std::size_t, std::size_t> memoryKept(int elements) {
  const std::string xml = "<r>" + repeated("<a b='c'/>", elements) + "</r>";
  std::size_t meanwhile = 0;
  {
    XmlScanner<char> scanner;
    EXPECT_TRUE(scanner.scan(xml));
    meanwhile = ThreadMemory::size();
  }
  return {meanwhile, ThreadMemory::size()};
}

TEST(XmlScanner, MemoryOfALargeTextServesForTheNext) {
  (void)ThreadMemory::take();
  EXPECT_EQ(memoryKept(100), std::pair(std::size_t{0}, std::size_t{0})) << "a small text needs none";
  const std::size_t kept = memoryKept(10000).second;
  EXPECT_GT(kept, 0u);
  EXPECT_EQ(memoryKept(10000), std::pair(std::size_t{0}, kept));
  EXPECT_EQ(memoryKept(100), std::pair(kept, kept));
}

TEST(XmlScanner, MemoryOfAVeryLargeTextIsNotKept) {
  (void)ThreadMemory::take();
  EXPECT_EQ(memoryKept(200000).second, 0u);
}

/// Scans when its thread ends, after what the thread keeps has ended.
struct ScansAtTheEnd {
  std::pair<std::size_t, std::size_t>& kept;
  ~ScansAtTheEnd() {
    (void)memoryKept(10000);
    kept = memoryKept(10000);
  }
};

TEST(XmlScanner, EndingThreadsStillScanAndKeepNothing) {
  std::size_t before = 0;
  std::pair<std::size_t, std::size_t> atTheEnd{1, 1};
  std::thread([&] {
    static thread_local const ScansAtTheEnd scans{atTheEnd};
    before = memoryKept(10000).second;
  }).join();
  EXPECT_GT(before, 0u);
  EXPECT_EQ(atTheEnd, std::pair(std::size_t{0}, std::size_t{0}));
}

TEST(XmlScanner, ManyPartsAreGivenAsWell) {
  EXPECT_EQ(events("<r>" + repeated("<a b='c'/>", 1000) + "</r>"),
            " +r +a(b=c)*999 -a" + repeated(" +a(b=c) -a", 999) + " -r");
  EXPECT_EQ(events(repeated("<a>", 5000) + repeated("</a>", 5000)),
            repeated(" +a", 5000) + repeated(" -a", 5000));
}

}  // namespace
}  // namespace zqxml
