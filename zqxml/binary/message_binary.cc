// The binary operations of the message object and of the reading facade.

#include <zqxml/binary/binary_serializer.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/xml_decoder.h>

namespace zqxml {

std::uint64_t XNMessageBase::SerializeBinary(BinaryBuffer& buffer) {
  return BinarySerializer::serialize(*this, buffer);
}

std::uint64_t XNMessageBase::SerializeBinary(BinaryBuffer& buffer, int version) {
  return BinarySerializer::serialize(*this, buffer, version);
}

int XNMessageBase::UnserializeBinary(BinaryBuffer& buffer) {
  return BinarySerializer::unserialize(*this, buffer, nullptr, false);
}

int XMLDecoder::UnserializeBinary(XNMessageBase& msg, BinaryBuffer& buffer) {
  return BinarySerializer::unserialize(msg, buffer, nullptr, false);
}

XNMessageBase* XMLDecoder::UnserializeBinary(BinaryBuffer& buffer) {
  return BinarySerializer::unserialize(buffer, nullptr, false);
}

int XMLDecoder::UnserializeBinary(XNMessageBase& msg, BinaryBuffer& buffer, ZqXMLContextInfo* context) {
  context_ = context;
  return BinarySerializer::unserialize(msg, buffer, context_, false);
}

XNMessageBase* XMLDecoder::UnserializeBinary(BinaryBuffer& buffer, ZqXMLContextInfo* context) {
  context_ = context;
  return BinarySerializer::unserialize(buffer, context_, false);
}

}  // namespace zqxml
