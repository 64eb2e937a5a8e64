// The events that the scanner gives of plain texts. What is plain, and that they are the parser's, is the
// matter of tests/laws/xml_readers_test.cc.
#include <gmock/gmock.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/xml_scanner.h>

#include <span>
#include <string>
#include <thread>
#include <utility>

namespace zqxml {
namespace {

/// Writes each event as a word: +NAME(NAME=VALUE,...)*ALIKE at a start, -NAME at an end, and texts in
/// brackets.
template <class Char>
class EventWriter {
 public:
  void start(NameView<Char> name, std::span<const BasicAttributeView<Char>> attributes, std::size_t alike) {
    events_ += " +" + utf8Text(name.text);
    EXPECT_EQ(name.hash, nameHash(name.text));
    for (const BasicAttributeView<Char>& attribute : attributes) {
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
