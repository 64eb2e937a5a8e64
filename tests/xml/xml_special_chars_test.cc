// The setting EnableNewXMLBehaviorForSpecialChars, which is read once in a process, at the first value of a
// list.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>

#include "tests/support/log_capture.h"
#include "tests/support/reading.h"
#include "tests/support/settings.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::Pair;
using XmlRead::Node;

constexpr char kContent[] =
    "<tags val=''/><tags val=' '/><tags val='\xc3\xa9\xe6\x97\xa5'/><tags val='|a|#1!'/>"
    "<words><__mapKey__ val=''/><__mapValue__ val='\xe6\x97\xa5'/></words>";

/// What kContent reads as, whatever the setting: text beyond ASCII is never an empty one.
void expectContent(const Node& node) {
  EXPECT_THAT(node.getTags(), ElementsAre("", " ", "\xc3\xa9\xe6\x97\xa5", "a\1"));
  EXPECT_THAT(node.getWords(), ElementsAre(Pair("", "\xe6\x97\xa5")));
}

// One test, since only the first value in a process asks; switched on is what all other test programs have.
TEST(XmlSpecialChars, SettingIsReadOnceAndSwitchedOffIsLoggedAndChangesNoValue) {
  TestSettings settings{{"EventManager/EnableNewXMLBehaviorForSpecialChars", "0"}};
  settings.count("EventManager/EnableNewXMLBehaviorForSpecialChars");
  LogCapture log;
  EXPECT_TRUE(ReadAs<Node>("<name>not the value of a list</name>", "id='1'").ok());
  EXPECT_EQ(settings.lookUps(), 0);
  expectContent(ReadAs<Node>(kContent));
  EXPECT_EQ(settings.lookUps(), 1);
  expectContent(ReadAs<Node>(kContent));
  EXPECT_EQ(settings.lookUps(), 1);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"MySAX2Handler::startElement", 0,
                                       "Disabling new XMLCh behavior for checking empty input strings."}));
}

}  // namespace
}  // namespace zqxml
