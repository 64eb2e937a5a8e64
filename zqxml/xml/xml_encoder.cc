#include <zqxml/binary/binary_serializer.h>
#include <zqxml/xml/xml_encoder.h>
#include <zqxml/xml/xml_serializer.h>

namespace zqxml {

int XMLEncoder::serialize(XNMessageBase& msg, std::string& out, bool rootOnly) {
  return XMLSerializer(flags_, context_).serialize(msg, out, rootOnly);
}

int XMLEncoder::serializeUTF16(XNMessageBase& msg, std::u16string& out, bool rootOnly) {
  return XMLSerializer(flags_, context_).serializeUTF16(msg, out, rootOnly);
}

std::uint64_t XMLEncoder::SerializeBinary(XNMessageBase& msg, BinaryBuffer& buffer) {
  return SerializeBinary(msg, buffer, 2);
}

std::uint64_t XMLEncoder::SerializeBinary(XNMessageBase& msg, BinaryBuffer& buffer, int version) {
  const BinarySerializer::BinarySerializerParameters parameters{&flags_, context_};
  return BinarySerializer::serialize(msg, buffer, version, &parameters);
}

}  // namespace zqxml
