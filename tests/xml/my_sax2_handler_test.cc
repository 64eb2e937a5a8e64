// The handler by itself: what it makes of the names that a parser gives it.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/xml/my_sax2_handler.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <xercesc/sax2/Attributes.hpp>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using XmlRead::Node;

/// One attribute, by its two names and its value; nothing else is asked for.
class OneAttribute : public xercesc::Attributes {
 public:
  OneAttribute(std::u16string local, std::u16string qualified, std::u16string value)
      : local_(std::move(local)), qualified_(std::move(qualified)), value_(std::move(value)) {}

  XMLSize_t getLength() const override { return 1; }
  const XMLCh* getURI(XMLSize_t) const override { return nullptr; }
  const XMLCh* getLocalName(XMLSize_t) const override { return local_.c_str(); }
  const XMLCh* getQName(XMLSize_t) const override { return qualified_.c_str(); }
  const XMLCh* getType(XMLSize_t) const override { return nullptr; }
  const XMLCh* getValue(XMLSize_t) const override { return value_.c_str(); }
  bool getIndex(const XMLCh*, const XMLCh*, XMLSize_t&) const override { return false; }
  int getIndex(const XMLCh*, const XMLCh*) const override { return -1; }
  bool getIndex(const XMLCh*, XMLSize_t&) const override { return false; }
  int getIndex(const XMLCh*) const override { return -1; }
  const XMLCh* getType(const XMLCh*, const XMLCh*) const override { return nullptr; }
  const XMLCh* getType(const XMLCh*) const override { return nullptr; }
  const XMLCh* getValue(const XMLCh*, const XMLCh*) const override { return nullptr; }
  const XMLCh* getValue(const XMLCh*) const override { return nullptr; }

 private:
  std::u16string local_, qualified_, value_;
};

TEST(SaxHandler, ElementWithoutALocalNameGoesByItsQualifiedOne) {
  for (const XMLCh* none : {static_cast<const XMLCh*>(nullptr), u""}) {
    Node node;
    MySAX2Handler handler(&node);
    handler.startElement(u"", u"root", u"p:root", OneAttribute(u"id", u"p:id", u"3"));
    handler.startElement(u"", none, u"child", OneAttribute(u"id", u"p:id", u"4"));
    handler.endElement(u"", none, u"child");
    handler.endElement(u"", u"root", u"p:root");
    EXPECT_EQ(node.getId(), 3);
    ASSERT_NE(node.getChild(), nullptr);
    EXPECT_EQ(node.getChild()->getId(), 4);
  }
}

TEST(SaxHandler, AttributeWithoutALocalNameGoesByItsQualifiedOne) {
  Node node;
  MySAX2Handler handler(&node);
  handler.startElement(u"", u"root", u"root", OneAttribute(u"", u"id", u"3"));
  handler.endElement(u"", u"root", u"root");
  EXPECT_EQ(node.getId(), 3);
}

TEST(SaxHandler, LocalNameGoesBeforeTheQualifiedOne) {
  LogCapture log(15);
  Node node;
  MySAX2Handler handler(&node);
  handler.startElement(u"", u"root", u"root", OneAttribute(u"id", u"name", u"3"));
  EXPECT_EQ(node.getId(), 3);
  EXPECT_FALSE(node.isNameSet());
  EXPECT_TRUE(log.empty());
}

TEST(SaxHandler, RootWithoutANameIsRefused) {
  // On a thread of its own, which has met no name yet.
  std::thread([] {
    LogCapture log;
    MySAX2Handler handler;
    EXPECT_THROW(handler.startElement(u"", u"", u"", OneAttribute(u"id", u"id", u"3")), std::runtime_error);
    EXPECT_EQ(handler.getMainObject(), nullptr);
    EXPECT_TRUE(log.has("MySAX2Handler::startElement", 0, "Unable to construct object out of tag : []"));
  }).join();
}

TEST(SaxHandler, MessageWithoutAClassTakesNoAttributes) {
  LogCapture log;
  XNMessageBase none;
  MySAX2Handler handler(&none);
  handler.startElement(u"", u"root", u"root", OneAttribute(u"id", u"id", u"3"));
  handler.endElement(u"", u"root", u"root");
  EXPECT_TRUE(log.has("MySAX2Handler::startElement", 0, "Error while parsing attributes for tag : [root] "));
}

}  // namespace
}  // namespace zqxml
