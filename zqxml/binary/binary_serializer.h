// BinarySerializer: messages to and from the binary form. Byte order: little-endian; docs/wire-format.md
// tells the form.
#pragma once

#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_stream.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/platform/export.h>

#include <cstddef>
#include <cstdint>

namespace zqxml {

class XNMessageBase;
class ZqXMLContextInfo;
struct EncodingFlags;

/// Messages to and from the binary form. Byte order: little-endian; docs/wire-format.md tells the form.
///
/// Writing makes two passes over the object, size and write, so that the buffer is allocated once and
/// exactly. Reading is tolerant of schema drift: a field travels under the 24-bit hash of its name, fields
/// may come in any order, and an unknown one is skipped by the encoding in its key.
///
/// Version: 2 when none is given. From 2 on binary strings travel as Base64, and passwords in the encrypted
/// form that their field's annotation asks for; at 1 and below both travel as they stand.
///
/// Failure: serialize gives 0, unserialize -1 or null, each with a level 0 line under the operation's name.
/// Nothing throws by itself; what a password routine throws passes through, and a buffer that was being
/// written then holds nothing of use. Threads: no state; different objects may be handled at once. Writing
/// stores cached sizes in the object and its sub-objects, so one object is written by one thread at a time.
class ZQXML_EXPORT BinarySerializer {
 public:
  /// What password fields need from the caller of serialize. Both are borrowed and may be null.
  struct BinarySerializerParameters {
    const EncodingFlags* encodingFlags = nullptr;  ///< tells the password type
    ZqXMLContextInfo* contextInfo = nullptr;       ///< for the password routines
  };

  /// @{
  /// Writes header and body into `buffer` and returns the buffer's data size, 0 on failure.
  ///
  /// An owned buffer gets a new block of exactly the size of the form. External memory is written to when it
  /// is large enough. QUIRK: the data size of an external buffer stays what it was, 0 after SetWriteBuffer,
  /// and that is what is returned: its caller sets the size. A field that cannot be written (a password
  /// without annotation) leaves its key alone behind, which a reader cannot pass over, and the call goes on.
  /// Without `parameters` passwords are encrypted by the process-wide XMLDecoder. A body of 4 GiB or more
  /// fails.
  static std::uint64_t serialize(XNMessageBase& object, BinaryBuffer& buffer);
  static std::uint64_t serialize(XNMessageBase& object, BinaryBuffer& buffer, int version);
  static std::uint64_t serialize(XNMessageBase& object, BinaryBuffer& buffer, int version,
                                 const BinarySerializerParameters* parameters);
  /// @}

  /// Fills `object` from the content of `buffer`: 0, or -1 on failure. The tag id in the buffer must be the
  /// object's. Earlier values are gone, fields that the buffer does not hold included, unless `keepExisting`.
  /// What was stored before a failure stays. `context` (may be null) serves the decryption of passwords. The
  /// content may be part of `object`: it is read as it was before the call.
  ///
  /// Bounds: every read is checked against the content's end; a count that the bytes left cannot hold is
  /// refused; objects nest at most 1,000 deep (number "nMaxNesting" of section "EventManager", 0 for no
  /// limit, read once per process). QUIRK: one to three bytes left at the end of a body are no error.
  static int unserialize(XNMessageBase& object, BinaryBuffer& buffer, ZqXMLContextInfo* context,
                         bool keepExisting);
  /// The same into a new object of the class that the header names; the caller owns it. Null on failure.
  static XNMessageBase* unserialize(BinaryBuffer& buffer, ZqXMLContextInfo* context, bool keepExisting);

  /// Reads the 8-byte header where `stream` stands; false, with nothing read and nothing logged, when fewer
  /// bytes than that are left. `version` is the low 16 bits of the version word when bit 16, the `flag`, is
  /// set, else the whole word.
  static bool getVersionAndTagIDFromBuffer(BinaryStream& stream, int& version, int& tagId, int& flag);

 private:
  friend struct BinarySerializerTestAccess;

  static BinaryEncodingType getEncodingType(char fieldType);
  static bool isCollectionType(FieldDataType type);
  static unsigned calculateReqBinStreamSize(XNMessageBase& object, int version,
                                            const BinarySerializerParameters* parameters);
  static void serializeBinaryRecursive(XNMessageBase& object, BinaryStream& stream, int version,
                                       const BinarySerializerParameters* parameters);
  static bool unserializeBinaryRecur(XNMessageBase& object, BinaryStream& stream, std::size_t end,
                                     int version, ZqXMLContextInfo* context, bool keepExisting);
};

}  // namespace zqxml
