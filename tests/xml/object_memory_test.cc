// What becomes of a text, or of a message, when there is no memory for an object. In a program of its own: it
// replaces `operator new`.
#include <gmock/gmock.h>
#include <tests/xml/failing_allocation.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/catalogue/generated/ZQGui.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <new>
#include <string>

#include "tests/support/log_capture.h"
#include "tests/support/open_message.h"
#include "tests/support/reading.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using XmlRead::Node;

class ObjectMemory : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(XNMessageBase::Initialize(), XN_MSG_OK); }
};

TEST_F(ObjectMemory, RootThatFindsNoneIsSaidLikeOneWithoutAClass) {
  LogCapture log;
  failNextAllocation(sizeof(XNMessageBase));
  EXPECT_EQ(readNew("<XmlRead_Node id='1'/>"), nullptr);
  EXPECT_FALSE(allocationWillFail());
  const std::string text = "Unable to construct object out of tag : [XmlRead_Node]";
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"MySAX2Handler::startElement", 0, text},
                                       CapturedLine{"XMLSerializer::parserHelper", 0,
                                                    "Encountered error : [" + text + "]"}));
  EXPECT_NE(readNew("<XmlRead_Node id='1'/>"), nullptr);
}

TEST_F(ObjectMemory, SubObjectThatFindsNoneIsALibraryErrorAndLeavesWhatWasRead) {
  LogCapture log;
  Node node;
  failNextAllocation(sizeof(XNMessageBase));
  EXPECT_EQ(XMLSerializer().unserialize(node, std::string("<a id='1'><child id='2'/></a>"), false),
            XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_EQ(node.getId(), 1);
  EXPECT_FALSE(node.isChildSet());
}

TEST_F(ObjectMemory, ObjectByNameThatFindsNoneIsLogged) {
  LogCapture log;
  Node node;
  XNMessageBase* out = &node;
  failNextAllocation(sizeof(XNMessageBase));
  XMLDecoder::CreateObjByName("XmlRead_Node", &out, "<a/>", true);
  EXPECT_EQ(out, nullptr);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"XMLDecoder::CreateObjByName", 0,
                                                    "Request to Create Object.Class Name:[Node]"},
                                       CapturedLine{"XMLDecoder::CreateObjByName", 0,
                                                    "Error instantiating object with subsystem id : [198]"}));
}

TEST_F(ObjectMemory, ProcessingInstructionThatFindsNoneLeavesTheUnsetOneInItsPlace) {
  ZQGui::SaveAlert alert;
  const XNMessageBase* const before = alert.getProcessinginstructioninfo(true);
  setBit(alert, "processinginstructioninfo", false);
  failNextAllocation(sizeof(XNMessageBase));
  EXPECT_THROW(alert.getProcessinginstructioninfo(true), std::bad_alloc);
  EXPECT_EQ(ownedBy<XNMessageBase>(alert, "processinginstructioninfo"), before);
  EXPECT_FALSE(hasBit(alert, "processinginstructioninfo"));
}

}  // namespace
}  // namespace zqxml
