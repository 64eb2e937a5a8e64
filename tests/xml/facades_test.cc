// The facades of the codecs: XMLEncoder writes by its flags, XMLDecoder keeps the context of its calls.
#include <gmock/gmock.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_encoder.h>

#include <cstdint>
#include <memory>
#include <string>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using XmlRead::Every;
using XmlRead::Node;

/// The version in the header of a binary message.
int versionOf(const BinaryBuffer& buffer) {
  return static_cast<unsigned char>(buffer.getBuffer()[0]);
}

TEST(Facades, EncoderWritesByItsFlags) {
  Node node;
  node.setId(3);
  std::string text;
  EXPECT_EQ(XMLEncoder().serialize(node, text), XN_MSG_OK);
  EXPECT_THAT(text, StartsWith("<?xml "));
  EXPECT_THAT(text, HasSubstr("<XmlRead_Node id=\"3\"/>"));
  EXPECT_EQ(XMLEncoder(static_cast<ZqXMLContextInfo*>(nullptr)).serialize(node, text, true), XN_MSG_OK);
  EXPECT_EQ(text, "<XmlRead_Node id=\"3\"/>");
  EncodingFlags flags;
  flags.useElements = true;
  const XMLEncoder elements(flags, nullptr);
  EXPECT_EQ(XMLEncoder(elements).serialize(node, text, true), XN_MSG_OK);
  EXPECT_EQ(text, "<XmlRead_Node><id>3</id></XmlRead_Node>");
  std::u16string wide;
  EXPECT_EQ(XMLEncoder(elements).serializeUTF16(node, wide, true), XN_MSG_OK);
  EXPECT_EQ(wide, u"<XmlRead_Node><id>3</id></XmlRead_Node>");
  EXPECT_EQ(XMLEncoder().serializeUTF16(node, wide), XN_MSG_OK);
  EXPECT_TRUE(wide.starts_with(u"<?xml "));
}

TEST(Facades, DecoderKeepsTheContextOfItsLastCall) {
  LogCapture log;
  ZqXMLContextInfo context;
  XMLDecoder decoder;
  std::string text = "<a id='4'/>";
  Node node;
  EXPECT_EQ(decoder.unSerialize(node, text, &context), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 4);
  EXPECT_EQ(decoder.getContextObj(), &context);
  EXPECT_EQ(decoder.unSerialize(node, u"<a id='5'/>", nullptr), XN_MSG_OK);
  EXPECT_EQ(node.getId(), 5);
  EXPECT_EQ(decoder.getContextObj(), nullptr);
  text = "<XmlRead_Node id='6'/>";
  const std::unique_ptr<XNMessageBase> made(decoder.unSerialize(text, &context));
  ASSERT_NE(Node::from(made.get()), nullptr);
  EXPECT_EQ(Node::from(made.get())->getId(), 6);
  EXPECT_EQ(decoder.getContextObj(), &context);
  text = "<XmlRead_Node";
  EXPECT_EQ(decoder.unSerialize(text), nullptr);
  EXPECT_EQ(decoder.unSerialize(node, text), XN_MSG_PARSE_ERROR);
}

TEST(Facades, DecoderStartsFromNothing) {
  XMLDecoder decoder;
  std::string text = "<a/>";
  Node node;
  node.setId(7);
  EXPECT_EQ(decoder.unSerialize(node, text), XN_MSG_OK);
  EXPECT_FALSE(node.isIdSet());
}

TEST(Facades, ContextOfTheDecoderReachesPasswords) {
  ZqXMLContextInfo context;
  context.setPasswordEncType(6);  // passes through
  XMLDecoder decoder;
  std::string text = "<a pstringField='&#9;YWJj'/>";
  Every every;
  EXPECT_EQ(decoder.unSerialize(every, text, &context), XN_MSG_OK);
  EXPECT_EQ(every.getPstringField().str(), "abc");
  EXPECT_EQ(every.getPstringField().getEncryptionType(), 9);
}

TEST(Facades, DecoderFlagsAreStoredAndGivenBack) {
  XMLDecoder decoder;
  EXPECT_FALSE(decoder.getIgnoreStartTag());
  decoder.setIgnoreStartTag(true);
  EXPECT_TRUE(decoder.getIgnoreStartTag());
  EXPECT_EQ(decoder.getEncryptionTypeUsed(), 0);
  decoder.setEncryptionTypeUsed(7);
  EXPECT_EQ(decoder.getEncryptionTypeUsed(), 7);
  // The root tag is not skipped all the same.
  std::string text = "<XmlRead_Node id='6'/>";
  EXPECT_NE(std::unique_ptr<XNMessageBase>(decoder.unSerialize(text)), nullptr);
  EXPECT_EQ(XMLDecoder::initialize(), 0);
}

TEST(Facades, ProcessHasOneDecoder) {
  EXPECT_NE(XMLDecoder::getXMLDecoderObject(), nullptr);
  EXPECT_EQ(XMLDecoder::getXMLDecoderObject(), XMLDecoder::getXMLDecoderObject());
}

TEST(Facades, ClassRecordsAreFoundByTagOrObject) {
  Node node;
  const _ClassDef* record = MessageAccess::classDef(node);
  EXPECT_EQ(XMLDecoder::GetClassDef(Node::kTagId), record);
  EXPECT_EQ(XMLDecoder::GetClassDef(Node::kTagId & 0xff000000, Node::kTagId & 0xffffff), record);
  EXPECT_EQ(XMLDecoder::GetClassDef(&node), record);
  EXPECT_EQ(XMLDecoder::GetClassDef(static_cast<const XNMessageBase*>(nullptr)), nullptr);
}

TEST(Facades, EncoderWritesTheBinaryFormOfTheVersion) {
  Node node;
  node.setId(3);
  BinaryBuffer buffer;
  const std::uint64_t size = XMLEncoder().SerializeBinary(node, buffer);
  EXPECT_EQ(size, buffer.getDataSize());
  EXPECT_EQ(versionOf(buffer), 2);
  for (const int version : {1, 2}) {
    EXPECT_EQ(XMLEncoder().SerializeBinary(node, buffer, version), size);
    EXPECT_EQ(versionOf(buffer), version);
  }
}

TEST(Facades, DecoderReadsTheBinaryForm) {
  Node node;
  node.setId(3);
  BinaryBuffer buffer;
  ASSERT_NE(XMLEncoder().SerializeBinary(node, buffer), 0u);
  XMLDecoder decoder;
  ZqXMLContextInfo context;
  Node read, readWithContext;
  EXPECT_EQ(decoder.UnserializeBinary(read, buffer), 0);
  EXPECT_EQ(read.getId(), 3);
  EXPECT_EQ(decoder.UnserializeBinary(readWithContext, buffer, &context), 0);
  EXPECT_EQ(decoder.getContextObj(), &context);
  EXPECT_EQ(readWithContext.getId(), 3);
  const std::unique_ptr<XNMessageBase> made(decoder.UnserializeBinary(buffer));
  const std::unique_ptr<XNMessageBase> madeWithContext(decoder.UnserializeBinary(buffer, &context));
  for (const XNMessageBase* message : {made.get(), madeWithContext.get()}) {
    ASSERT_NE(Node::from(message), nullptr);
    EXPECT_EQ(Node::from(message)->getId(), 3);
  }
}

}  // namespace
}  // namespace zqxml
