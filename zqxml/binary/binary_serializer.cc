#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/internal/body_reader.h>
#include <zqxml/binary/internal/body_writer.h>
#include <zqxml/message/internal/nesting_limit.h>
#include <zqxml/xml/internal/held_text.h>

#include <cstring>
#include <limits>
#include <memory>
#include <string>

namespace zqxml {

// --- Writing

namespace {

/// A buffer that holds `required` bytes, or false after a reported failure.
bool prepareBuffer(BinaryBuffer& buffer, std::uint64_t required) {
  // Sizes in the form have 32 bits: a larger body cannot be told.
  const bool tellable = required - wire::kHeaderSize <= std::numeric_limits<std::uint32_t>::max();
  if (tellable && buffer.HasExternalBuffer()) {
    if (buffer.isSet() && buffer.getBufferSize() >= required) return true;
    // QUIRK: the function's name stands where the format belongs, so the line shows the name and never the
    // text.
    logError("BinarySerializer::serialize", "BinarySerializer::serialize",
             "Size of buffer provided : [%d] is not sufficient. Size required : [%d]", buffer.getBufferSize(),
             required);
    return false;
  }
  if (!buffer.HasExternalBuffer()) buffer.SetWriteBuffer(nullptr, 0, false);
  if (tellable && buffer.resizeBuffer(required)) return true;
  logError("BinarySerializer::serialize", "Unable to create a buffer of required size : [%d]", required);
  return false;
}

/// A range of the counted size needs no look at its end, unless a routine of the application has a say in
/// what is written, or a log line is; and no look into the strings, unless one is cut.
bool isCounted(const BinaryEncoding& encoding) {
  return !encoding.usesPasswordRoutines && !encoding.cutsTexts && !debugEnabled(15);
}

void writeBody(XNMessageBase& object, BinaryStream& stream, BinaryEncoding& encoding) {
  const ByteWriter sink(stream.buffer(), stream.limit());
  const std::uint64_t end = BodyWriter(sink, encoding).body(object, stream.position());
  stream.claim(end - stream.position());
}

}  // namespace

std::uint64_t BinarySerializer::serialize(XNMessageBase& object, BinaryBuffer& buffer) {
  return serialize(object, buffer, wire::kDefaultVersion, nullptr);
}

std::uint64_t BinarySerializer::serialize(XNMessageBase& object, BinaryBuffer& buffer, int version) {
  return serialize(object, buffer, version, nullptr);
}

std::uint64_t BinarySerializer::serialize(XNMessageBase& object, BinaryBuffer& buffer, int version,
                                          const BinarySerializerParameters* parameters) {
  BinaryEncoding encoding{version, parameters};
  const std::uint64_t required = wire::kHeaderSize + BodyWriter(ByteCounter(), encoding).bodySize(object);
  logDebug("BinarySerializer::serialize", 15, "Required buffer size is %d", required);
  if (!prepareBuffer(buffer, required)) return 0;
  // The second pass may yield fewer bytes than the first: the rest shall not tell what the heap held before.
  if (encoding.usesPasswordRoutines && !buffer.HasExternalBuffer()) {
    std::memset(buffer.getBuffer(), 0, buffer.getBufferSize());
  }
  BinaryStream stream(buffer.getBuffer(), buffer.getBufferSize());
  stream.writeFixed32(static_cast<std::uint32_t>(version));  // bit 16, the flag, is the version's own
  stream.writeFixed32(object.getTagID());
  if (isCounted(encoding)) [[likely]]
    BodyWriter(ExactWriter(buffer.getBuffer() + required), encoding)
        .body(object, buffer.getBuffer() + stream.position());
  else
    writeBody(object, stream, encoding);
  return buffer.getDataSize();
}

unsigned BinarySerializer::calculateReqBinStreamSize(XNMessageBase& object, int version,
                                                     const BinarySerializerParameters* parameters) {
  BinaryEncoding encoding{version, parameters};
  return static_cast<unsigned>(BodyWriter(ByteCounter(), encoding).bodySize(object));
}

void BinarySerializer::serializeBinaryRecursive(XNMessageBase& object, BinaryStream& stream, int version,
                                                const BinarySerializerParameters* parameters) {
  BinaryEncoding encoding{version, parameters};
  writeBody(object, stream, encoding);
}

BinaryEncodingType BinarySerializer::getEncodingType(char fieldType) {
  return fieldTypeFacts(static_cast<unsigned char>(fieldType)).encoding;
}

bool BinarySerializer::isCollectionType(FieldDataType type) {
  return kCollectionTypes.contains(type);
}

// --- Reading

namespace {

/// A buffer whose content cannot be looked at counts as one that is not set.
bool hasContent(const BinaryBuffer& buffer) {
  return buffer.isSet() && buffer.Status();
}

/// A copy of the buffer's content where that may lie in the object which it is read into; else empty.
std::string copyOfHeld(const XNMessageBase& object, const BinaryBuffer& buffer) {
  if (!buffer.HasExternalBuffer() || !mayHoldText(object, buffer.getDataSize())) return {};
  return {buffer.getBuffer(), buffer.getDataSize()};
}

}  // namespace

bool BinarySerializer::getVersionAndTagIDFromBuffer(BinaryStream& stream, int& version, int& tagId,
                                                    int& flag) {
  if (!stream.fits(wire::kHeaderSize)) return false;
  std::uint32_t word = 0;
  std::uint32_t tag = 0;
  stream.readFixed32(word);
  stream.readFixed32(tag);
  flag = static_cast<int>(word >> 16 & 1);
  // QUIRK: without the flag the word stays whole, higher bits included.
  version = static_cast<int>(flag != 0 ? word % 65536 : word);
  tagId = static_cast<int>(tag);
  return true;
}

bool BinarySerializer::unserializeBinaryRecur(XNMessageBase& object, BinaryStream& stream, std::size_t end,
                                              int version, ZqXMLContextInfo* context, bool) {
  // Keeping what an object holds is decided where the reading starts: fields are only ever added.
  const BinaryDecoding decoding{version, context, NestingLimit::get()};
  SilentObserver observer;
  return BodyReader(stream.limit(), decoding, observer).body(object, stream, end);
}

int BinarySerializer::unserialize(XNMessageBase& object, BinaryBuffer& buffer, ZqXMLContextInfo* context,
                                  bool keepExisting) {
  if (!hasContent(buffer)) {
    logError("BinarySerializer::unserialize", "[%s]", "Buffer received for unserialization is not set");
    return -1;
  }
  BinaryStream stream(buffer.getBuffer(), buffer.getDataSize());
  int version = 0, tagId = 0, flag = 0;
  if (!getVersionAndTagIDFromBuffer(stream, version, tagId, flag)) {
    logError("BinarySerializer::unserialize", "[%s]", "Buffer does not contain necessary metadata");
    return -1;
  }
  if (static_cast<std::uint32_t>(tagId) != object.getTagID()) {
    logError("BinarySerializer::unserialize",
             "Received object with tagID [%u] does not match with the received buffer with tagID [%u]",
             object.getTagID(), tagId);
    return -1;
  }
  std::string copy = copyOfHeld(object, buffer);
  if (!copy.empty()) stream = BinaryStream(copy.data(), copy.size(), stream.position());
  if (!keepExisting) MessageAccess::resetAndWipe(object);
  if (!unserializeBinaryRecur(object, stream, buffer.getDataSize(), version, context, keepExisting)) {
    logError("BinarySerializer::unserialize", "Error unserializing from buffer on object [%s]",
             object.getTagName());
    return -1;
  }
  return 0;
}

XNMessageBase* BinarySerializer::unserialize(BinaryBuffer& buffer, ZqXMLContextInfo* context,
                                             bool keepExisting) {
  int version = 0, tagId = 0, flag = 0;
  BinaryStream stream(buffer.getBuffer(), buffer.getDataSize());
  // QUIRK: a buffer that is too short for its header gets the text of one that is not set.
  if (!hasContent(buffer) || !getVersionAndTagIDFromBuffer(stream, version, tagId, flag)) {
    logError("BinarySerializer::unserialize", "[%s]", "Buffer received for unserialization is not set");
    return nullptr;
  }
  std::unique_ptr<XNMessageBase> object(XNMessageBase::createObject(static_cast<std::uint32_t>(tagId)));
  if (object == nullptr) {
    logError("BinarySerializer::unserialize", "Error identifying the object received. TagID = [%u]", tagId);
    return nullptr;
  }
  MessageAccess::wipeBitset(*object);
  if (!unserializeBinaryRecur(*object, stream, buffer.getDataSize(), version, context, keepExisting)) {
    logError("BinarySerializer::unserialize", "Error unserializing from buffer on object [%s]",
             object->getTagName());
    return nullptr;
  }
  return object.release();
}

}  // namespace zqxml
