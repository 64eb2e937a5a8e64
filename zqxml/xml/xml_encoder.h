// XMLEncoder: the writing facade of the codecs.
#pragma once

#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/platform/export.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/xml_decoder.h>

#include <cstdint>
#include <string>

namespace zqxml {

class BinaryBuffer;
class XNMessageBase;
class ZqXMLContextInfo;

/// Writes messages: XML, the binary form. Carries the options of the calls that are made on it, and nothing
/// from one call to the next. The context is borrowed and may be null. One encoder may serve several threads
/// as long as the context does not mind.
class ZQXML_EXPORT XMLEncoder : public XMLSerializationSupport {
 public:
  /// @{
  /// Flags and context of the calls; without them default flags and none.
  XMLEncoder() = default;
  explicit XMLEncoder(ZqXMLContextInfo* context) : context_(context) {}
  XMLEncoder(EncodingFlags flags, ZqXMLContextInfo* context) : flags_(flags), context_(context) {}
  /// @}

  /// @{
  /// XML in UTF-8 or UTF-16; the results are those of XMLSerializer (an eXNMsgRet). `rootOnly` leaves the XML
  /// declaration out.
  int serialize(XNMessageBase& msg, std::string& out, bool rootOnly = false);
  int serializeUTF16(XNMessageBase& msg, std::u16string& out, bool rootOnly = false);
  /// @}

  /// @{
  /// The binary form, of version 2 unless another is given; the result is that of
  /// BinarySerializer::serialize.
  std::uint64_t SerializeBinary(XNMessageBase& msg, BinaryBuffer& buffer);
  std::uint64_t SerializeBinary(XNMessageBase& msg, BinaryBuffer& buffer, int version);
  /// @}

  /// XMLDecoder::registerPasswordEncAlgo.
  static void registerPasswordEncAlgo(Annotation::PasswordEncryptType type, PasswordRoutine routine) {
    XMLDecoder::registerPasswordEncAlgo(type, routine);
  }

 private:
  EncodingFlags flags_;
  ZqXMLContextInfo* context_ = nullptr;
};

}  // namespace zqxml
