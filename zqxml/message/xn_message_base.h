// XNMessageBase: the one run-time class of every message.
//
// The file is long because each accessor is spelled out: they are what compiled classes call, and a list of
// macros would tell nobody what a call does.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/catalogue/result.h>
#include <zqxml/message/bstring.h>
#include <zqxml/message/cdata.h>
#include <zqxml/message/pstring.h>
#include <zqxml/message/text_arg.h>
#include <zqxml/message/xn_message_buffer.h>
#include <zqxml/platform/export.h>
#include <zqxml/platform/format.h>

#include <array>
#include <bit>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

class BinaryBuffer;
class CUlFile;
class XNMessageBase;
struct XPathData;
namespace ZqEntities {
class ProcessingInstructionInfo;
}

static_assert(sizeof(std::string) == 32 && sizeof(std::u16string) == 32,
              "in-place strings take four 8-byte slots");

/// A message of any class: the one run-time class of every message.
///
/// What an object holds is decided by its catalogue record (_ClassDef); there are no virtual operations and
/// no code per message. Values lie in an XNMessageBuffer; a message owns everything reachable from its slots.
/// Generated classes derive from this class, add no members and reach their fields through the protected
/// accessors.
///
/// Threads: an object has no lock and belongs to one thread at a time. Static members only read the
/// catalogue. Failure: nothing throws on bad input, except getObject, assignment between classes and
/// construction with too small a block (ZqException). A field that cannot be reached is logged and left
/// alone.
///
/// ### Typed accessors
///
/// Every accessor is told what the caller believes: memNum (set bit), index (slot), msgTag (tag id of the
/// object) and fieldHash (24-bit name hash). When the object has that tag, memNum and index are used as they
/// are. When it has another one (the schema has drifted), the field is found again by its hash and its own
/// numbers are used; that is no error.
///
/// Failure, always a level 0 line under the accessor's name ("XNMessageBase::setint64"), never an exception
/// but in getObject: memNum outside the class, index outside the slots (scalar reads look at the index alone)
/// give "Invalid member access. ..." with the schema of the object; an unknown hash, or a field that is
/// stored otherwise than the accessor needs, gives "Message [%s] with TagID : [%u] does not contain field :
/// [%u]. Message Received : [%u]". A failing read yields 0, null or an empty text; a failing by-reference or
/// make form yields an object of the thread's own, emptied at each failure; a failing setter does nothing.
class ZQXML_EXPORT XNMessageBase {
 public:
  // --- Construction

  /// An object without a class: every field access fails, its tag name is "NoMessage", it equals nothing.
  XNMessageBase();
  /// Deep copy, in storage of its own even when `other` lives in a caller's block. Only set fields with a
  /// name hash are copied; a message's texts and CDATA come along.
  XNMessageBase(const XNMessageBase& other);
  /// Takes everything over; `other` becomes an object without a class, to which any message can be assigned.
  XNMessageBase(XNMessageBase&& other) noexcept;
  /// Ends everything that the slots reach. A caller's block stays the caller's.
  ~XNMessageBase();

  /// Deep assignment between objects of one class. QUIRK: the texts of the target stay where the source has
  /// none. Throws ZqException ("XNMessageBase::operator=") between different classes, the target unchanged.
  void operator=(const XNMessageBase& other);
  /// As above, but takes the fields over where the copy would clone them, and
  /// leaves `other` moved from; throws in the same case.
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): throws between classes
  void operator=(XNMessageBase&& other);

  /// Field by field over fields with a name hash; false when either object has no class or the classes
  /// differ. QUIRK: any two maps are equal; a set field of type 24, 29, 32 or 40 makes the result false;
  /// passwords compare by text.
  bool operator==(const XNMessageBase& other) const;
  /// QUIRK: always false, so that a map keyed by messages holds one entry at most.
  bool operator<(const XNMessageBase& other) const;

  // --- Factories; the caller owns the result

  /// Process start-up: forwards to XMLSerializer::initialize. Any thread, any number of times.
  static eXNMsgRet Initialize();
  /// Does nothing.
  void initialize() {}

  /// New object of the tag's class; null after a log line when the tag does not resolve. The flag is not
  /// looked at.
  static XNMessageBase* createObject(std::uint32_t tagId, bool unused = false);
  /// New object of the class that the ClassRef (four big-endian bytes) names; null for null and for a slot
  /// beyond the table (logged). The flag is not looked at.
  static XNMessageBase* createObjectFromClassID(const void* classRef, bool unused = false);
  /// New object of slot and class index; an object without a class where there is no such record.
  static XNMessageBase* createObjectFromIndices(short& msgSysIndex, int& msgIndex);
  /// As createObjectFromClassID, but null for a reference to ProcessingInstructionInfo.
  static XNMessageBase* createFromClassIDIfNotProcessingInstructionInfo(const void* classRef);
  /// New object, filled from `xml` when `parse` is set, else keeping the text unparsed. On XN_MSG_FAILED
  /// `out` is null and `error` tells why.
  static eXNMsgRet ConstructObject(std::uint32_t tagId, const char* xml, XNMessageBase*& out, bool parse,
                                   std::string& error);
  /// The same by slot and class id.
  static eXNMsgRet constructObject(std::uint32_t msgSysIndex, std::uint32_t classId, const char* xml,
                                   XNMessageBase*& out, bool parse, std::string& error);

  // --- Catalogue (see catalogue/lookup.h for what each look-up answers and logs)

  /// catalogue::indicesFromTag.
  static bool getIndicesFromTagID(short& msgSysIndex, int& msgIndex, std::uint32_t tagId);
  /// catalogue::tagFromIndices.
  static bool getTagIDFromIndices(short msgSysIndex, short msgIndex, std::uint32_t& tagId);
  /// @{
  /// catalogue::classDef.
  static const _ClassDef* GetClassDef(short msgSysIndex, int msgIndex);
  static const _ClassDef* GetClassDef(std::uint32_t tagId);
  /// @}
  /// The object's own record, null for a null object.
  static const _ClassDef* GetClassDef(const XNMessageBase* message);
  /// catalogue::classOfField.
  static const _ClassDef* GetClassDefFromClassID(const FieldDef& field);
  /// catalogue::classOfRef.
  static const _ClassDef* GetClassDefFromClassID(const void* classRef);
  /// catalogue::subsystemFromName.
  static bool getMessageSystemIndexFromName(const char* name, short& msgSysIndex);
  /// catalogue::classIndexFromName in the subsystem `msgSysIndex`.
  static bool getMessageIndexFromName(const char* name, short& msgSysIndex, int& msgIndex);
  /// catalogue::fieldPosition.
  static int getFieldNumberFromName(const _ClassDef* classDef, const std::string& name);
  /// catalogue::enumString.
  static const char* getEnumString(short msgSysIndex, const char* enumName, int value);
  /// catalogue::isOldWay.
  static bool isOldWay(std::uint32_t tagId);
  /// catalogue::schemaText of the tag's class; false, `text` untouched, when the tag does not resolve.
  static bool getMessageSchemaString(std::uint32_t tagId, std::string& text, bool allFields, bool details);
  /// Subsystem and class name joined by "_"; an empty text when the tag does not resolve.
  static std::string getTagNameFromTagID(std::uint32_t tagId);
  /// catalogue::xpathData.
  static const XPathData* getXPathData(short subsystem);
  /// Field count of the tag's class into `count`; false when it does not resolve.
  static bool getNumberOfFields(std::uint32_t tagId, int& count);

  // --- What the object is

  /// Tag id of the class, 0 without one.
  std::uint32_t getTagID() const { return tagId_; }
  /// Slot of the subsystem.
  int getSubsysID() const { return msgSysIndex_; }
  /// Class index in the subsystem.
  int getMessageIndex() const { return msgIndex_; }
  /// Subsystem and class name joined by "_"; "NoMessage" is the class part of an object without a class.
  std::string getTagName() const;
  /// Name of the subsystem, constant; "" for an object without a class.
  const char* getSubsystemName() const;
  /// Fields of the class, set or not; 0 for an object without a class.
  int getNumberOfFields() const;
  /// Body size that the last size pass of the binary encoder stored here, in bytes.
  std::uint32_t GetCachedSize() const { return cachedSize_; }
  /// For the size pass.
  void SetCachedSize(std::uint32_t size) { cachedSize_ = size; }
  /// @{
  /// Always false; setting has no effect.
  bool getXmlWriteFlag() const { return false; }
  void setXmlWriteFlag(bool) {}
  /// @}

  // --- Set bits

  /// The bit of a member; false on every (logged) failure. Arguments as for the accessors below.
  bool isSet(short memNum, std::uint32_t msgTag, std::uint32_t fieldHash) const;
  /// For walkers: the bit at a position; tells whether the field has a name hash and appends its name. A
  /// position outside the class is logged ("Invalid field Id [%d]. ...") and false.
  bool isSet(short position, bool& hasHash, std::string& name) const;
  /// By name, for tools: `on` false clears the member, true is refused with a log line; an unknown name is
  /// ignored.
  void setMemberTestBit(const std::string& name, bool on);
  /// Sets or clears the bit of the primitive, non-list field at `position`; anything else is logged and
  /// refused.
  void setPrimitiveBitValue(int position, bool on);

  // --- Texts of the object

  /// The last error, or an empty text. Valid until the next change.
  const char16_t* getLastErrorEnglishW() const;
  /// A copy of that text.
  std::u16string getLastErrorEnglishStrW() const;
  /// @{
  /// Formats (see platform/format.h) and keeps at most 8,191 units; a null format does nothing.
  template <class... Args>
  void setLastErrorEnglishA(const char* format, const Args&... args) {
    const std::array<FormatArg, sizeof...(Args)> list{FormatArg(args)...};
    formatLastErrorA(format, list);
  }
  template <class... Args>
  void setLastErrorEnglishW(const char16_t* format, const Args&... args) {
    const std::array<FormatArg, sizeof...(Args)> list{FormatArg(args)...};
    formatLastErrorW(format, list);
  }
  /// @}
  /// @{
  /// QUIRK: the text is a format without arguments: "%%" becomes "%", a conversion stands as it is.
  void setLastErrorEnglishStrA(const std::string& text);
  void setLastErrorEnglishStrW(const std::u16string& text);
  /// @}

  /// Whether the kept text stands for the object. Nothing lowers the mark when a field changes.
  bool isSerialized() const { return serialized_; }
  /// Sets the mark and leaves the text as it is.
  void setSerialized(bool serialized) { serialized_ = serialized; }
  /// The XML text kept with the object, or "". Does not serialize.
  const char* getSerializedXMLString() const;
  /// The kept text while isSerialized(); else serializes into it first. "" on failure.
  const char* getSerializedXMLString(bool rootOnly);
  /// The kept text, made on first use.
  std::string& getSerializedXMLStringRef();
  /// @{
  /// Serializes into the kept wide text and gives it, "" on failure; the first with the XML declaration, the
  /// last without. Valid until the next change. QUIRK: not refreshed while isSerialized() is true.
  const char16_t* getSerializedXMLStringUTF16();
  const char16_t* getSerializedXMLStringUTF16(bool rootOnly);
  const char16_t* getSerializedXMLStringUnicode();
  /// @}
  /// Keeps a copy; `markSerialized` true also marks the object as serialized, false leaves that as it was.
  void setSerializedXMLString(const std::string& text, bool markSerialized);
  /// Keeps a second text, which copies take along; nothing reads it.
  void setLastSerializedXMLString(const std::string& text);
  /// Empties the kept text and clears serialized.
  void clearSerializedXMLString();

  /// @{
  /// The CDATA body, which is part of no form: setting marks it as set, resetting empties and unmarks it, and
  /// it is "" when there is none.
  void setCDATABuffer(const std::string& text);
  std::string getCDATABuffer() const;
  bool isCDATABufferSet() const;
  void resetCDATABuffer();
  /// @}

  /// Field 0, where the class has it: the slot when set; with `create` it is made and set; else a null slot
  /// that is the thread's own. Refused (null slot) for subsystems 18 and 27 and for classes without the
  /// field.
  XNMessageBase*& getProcessinginstructioninfo(bool create);
  /// Null clears the member; an object is copied into it. Refused with a log line as above.
  void setProcessinginstructioninfo(const ZqEntities::ProcessingInstructionInfo* info);

  // --- Forms: XML (defined in xml/), binary (defined in binary/)

  /// @{
  /// XML text, UTF-8 or UTF-16, as XMLSerializer with default flags makes it, and with its results.
  /// `rootOnly` true leaves the XML declaration out. A field that cannot be written is logged and left out.
  eXNMsgRet serialize(std::string& out, bool rootOnly = false);
  eXNMsgRet serializeUTF8(std::string& out, bool rootOnly = false);
  eXNMsgRet serializeUTF16(std::u16string& out, bool rootOnly = false);
  /// @}
  /// serializeUTF16 without declaration.
  eXNMsgRet serializeUnicode(std::u16string& out);
  /// XML text with its declaration, empty on failure.
  std::string AsString();
  /// @{
  /// Resets the object and fills it from XML, with the results of XMLSerializer::unserialize. On failure the
  /// object holds what was read so far. Null is an empty text.
  eXNMsgRet unserialize(std::string& xml);
  eXNMsgRet unserialize(const std::string& xml);
  eXNMsgRet unserialize(const char* xml);
  /// @}
  /// Wide text, native byte order; the flag has no effect.
  eXNMsgRet unserialize(const char16_t* xml, bool flag = false);
  /// @{
  /// The same into and from an open file, which stays the caller's: 0, or a number that XMLSerializer's
  /// operation of this name tells.
  int dumpXmlToFile(CUlFile* file);
  int readXmlFromFile(CUlFile* file);
  /// @}

  /// @{
  /// Binary form into `buffer`, of version 2 unless another is given; the buffer's data size, 0 on failure
  /// (see binary/binary_serializer.h).
  std::uint64_t SerializeBinary(BinaryBuffer& buffer);
  std::uint64_t SerializeBinary(BinaryBuffer& buffer, int version);
  /// @}
  /// Fills the object; 0, or -1 on failure.
  int UnserializeBinary(BinaryBuffer& buffer);

 protected:
  /// Object of a class of the catalogue. Indices without a record give an object without a class.
  XNMessageBase(int msgSysIndex, int msgIndex);
  /// The same in the caller's zeroed block of `blockSize` bytes, which must outlive the object. Throws
  /// ZqException ("XNMessageBase::initialize") when blockSize is below elements + fields/8 + 1. QUIRK: the
  /// element count is not scaled by 8 in that test; a block that passes it and is too small all the same is
  /// left alone, and the object owns its storage.
  XNMessageBase(int msgSysIndex, int msgIndex, std::int64_t* block, int blockSize);

  // --- Typed accessors: the comment of the class tells what they have in common

  /// @{
  /// Scalars. Integers, booleans and enumerations are one 64-bit slot; a float lies in the low four bytes of
  /// its slot.
  std::int64_t getint64(short index, std::uint32_t msgTag, std::uint32_t fieldHash) const;
  double getdouble(short index, std::uint32_t msgTag, std::uint32_t fieldHash) const;
  float getfloat(short index, std::uint32_t msgTag, std::uint32_t fieldHash) const;
  void setint64(short memNum, short index, std::int64_t value, std::uint32_t msgTag, std::uint32_t fieldHash);
  void setdouble(short memNum, short index, double value, std::uint32_t msgTag, std::uint32_t fieldHash);
  void setfloat(short memNum, short index, float value, std::uint32_t msgTag, std::uint32_t fieldHash);
  /// @}
  /// Marks the bit and gives the slot.
  std::int64_t& getint64ByRef(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);

  /// @{
  /// In-place strings: copies out, assigns in, and by reference; ByRef marks the bit.
  std::string getstring(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  std::string getstring_const(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash) const;
  std::string& getstringByRef(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  void setstring(short memNum, short index, const std::string& value, std::uint32_t msgTag,
                 std::uint32_t fieldHash);
  std::u16string getwstring(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  std::u16string getwstring_const(short memNum, short index, std::uint32_t msgTag,
                                  std::uint32_t fieldHash) const;
  std::u16string& getwstringByRef(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  void setwstring(short memNum, short index, const std::u16string& value, std::uint32_t msgTag,
                  std::uint32_t fieldHash);
  /// @}

  /// @{
  /// The in-place string itself, without marking; an empty one, of the process, on failure. Valid until the
  /// field is written or the object ends or moves.
  const std::string& getstringByRef_const(short memNum, short index, std::uint32_t msgTag,
                                          std::uint32_t fieldHash) const;
  const std::u16string& getwstringByRef_const(short memNum, short index, std::uint32_t msgTag,
                                              std::uint32_t fieldHash) const;
  /// @}

  /// @{
  /// As the setters, from any text, which is moved in where it may be.
  void assignstring(short memNum, short index, const typed::StringArg& value, std::uint32_t msgTag,
                    std::uint32_t fieldHash);
  void assignwstring(short memNum, short index, const typed::WStringArg& value, std::uint32_t msgTag,
                     std::uint32_t fieldHash);
  /// @}

  /// @{
  /// Binary strings and passwords: reads give the slot's own object without marking, ByRef marks, setters
  /// copy into the existing object and mark.
  bstring* getbstringobject(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  const bstring* getbstringobject_const(short memNum, short index, std::uint32_t msgTag,
                                        std::uint32_t fieldHash) const;
  bstring& getbstringobjectByRef(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  void setbstringobject(short memNum, short index, const bstring& value, std::uint32_t msgTag,
                        std::uint32_t fieldHash);
  pstring* getpstringobject(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  const pstring* getpstringobject_const(short memNum, short index, std::uint32_t msgTag,
                                        std::uint32_t fieldHash) const;
  pstring& getpstringobjectByRef(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  void setpstringobject(short memNum, short index, const bstring& value, int encryptionType,
                        std::uint32_t msgTag, std::uint32_t fieldHash);
  /// @}

  /// @{
  /// As the setters, from any text, which is moved in where it may be.
  void assignbstringobject(short memNum, short index, const typed::StringArg& value, std::uint32_t msgTag,
                           std::uint32_t fieldHash);
  void assignpstringobject(short memNum, short index, const typed::StringArg& value, int encryptionType,
                           std::uint32_t msgTag, std::uint32_t fieldHash);
  /// @}

  /// @{
  /// Deprecated: no effect but a log line; the getters give null.
  cdata* getcdataobject(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  const cdata* getcdataobject_const(short memNum, short index, std::uint32_t msgTag,
                                    std::uint32_t fieldHash) const;
  void setcdataobject(short memNum, short index, const cdata& value, std::uint32_t msgTag,
                      std::uint32_t fieldHash);
  /// @}

  /// @{
  /// Lists. The getter gives the slot by reference: the vector, which the message owns, is made when there is
  /// none, and the bit marked when `markSet`. The `_const` getter gives the vector, null when there is none,
  /// and changes nothing. The setter marks the bit and replaces the vector by a copy; null clears the member.
  /// One vector type serves all field types with its elements (list<uint>, list<bool> and enumerations
  /// alike).
  std::vector<std::int32_t>*& getlistint(short memNum, short index, std::uint32_t msgTag,
                                         std::uint32_t fieldHash, bool markSet);
  const std::vector<std::int32_t>* getlistint_const(short memNum, short index, std::uint32_t msgTag,
                                                    std::uint32_t fieldHash) const;
  void setlistint(short memNum, short index, const std::vector<std::int32_t>* value, std::uint32_t msgTag,
                  std::uint32_t fieldHash);
  std::vector<std::uint32_t>*& getlistuint(short memNum, short index, std::uint32_t msgTag,
                                           std::uint32_t fieldHash, bool markSet);
  const std::vector<std::uint32_t>* getlistuint_const(short memNum, short index, std::uint32_t msgTag,
                                                      std::uint32_t fieldHash) const;
  void setlistuint(short memNum, short index, const std::vector<std::uint32_t>* value, std::uint32_t msgTag,
                   std::uint32_t fieldHash);
  std::vector<std::int32_t>*& getlistlong(short memNum, short index, std::uint32_t msgTag,
                                          std::uint32_t fieldHash, bool markSet);
  const std::vector<std::int32_t>* getlistlong_const(short memNum, short index, std::uint32_t msgTag,
                                                     std::uint32_t fieldHash) const;
  void setlistlong(short memNum, short index, const std::vector<std::int32_t>* value, std::uint32_t msgTag,
                   std::uint32_t fieldHash);
  std::vector<std::uint32_t>*& getlistulong(short memNum, short index, std::uint32_t msgTag,
                                            std::uint32_t fieldHash, bool markSet);
  const std::vector<std::uint32_t>* getlistulong_const(short memNum, short index, std::uint32_t msgTag,
                                                       std::uint32_t fieldHash) const;
  void setlistulong(short memNum, short index, const std::vector<std::uint32_t>* value, std::uint32_t msgTag,
                    std::uint32_t fieldHash);
  std::vector<std::int64_t>*& getlistlonglong(short memNum, short index, std::uint32_t msgTag,
                                              std::uint32_t fieldHash, bool markSet);
  const std::vector<std::int64_t>* getlistlonglong_const(short memNum, short index, std::uint32_t msgTag,
                                                         std::uint32_t fieldHash) const;
  void setlistlonglong(short memNum, short index, const std::vector<std::int64_t>* value,
                       std::uint32_t msgTag, std::uint32_t fieldHash);
  std::vector<std::uint64_t>*& getlistulonglong(short memNum, short index, std::uint32_t msgTag,
                                                std::uint32_t fieldHash, bool markSet);
  const std::vector<std::uint64_t>* getlistulonglong_const(short memNum, short index, std::uint32_t msgTag,
                                                           std::uint32_t fieldHash) const;
  void setlistulonglong(short memNum, short index, const std::vector<std::uint64_t>* value,
                        std::uint32_t msgTag, std::uint32_t fieldHash);
  std::vector<float>*& getlistfloat(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash,
                                    bool markSet);
  const std::vector<float>* getlistfloat_const(short memNum, short index, std::uint32_t msgTag,
                                               std::uint32_t fieldHash) const;
  void setlistfloat(short memNum, short index, const std::vector<float>* value, std::uint32_t msgTag,
                    std::uint32_t fieldHash);
  std::vector<double>*& getlistdouble(short memNum, short index, std::uint32_t msgTag,
                                      std::uint32_t fieldHash, bool markSet);
  const std::vector<double>* getlistdouble_const(short memNum, short index, std::uint32_t msgTag,
                                                 std::uint32_t fieldHash) const;
  void setlistdouble(short memNum, short index, const std::vector<double>* value, std::uint32_t msgTag,
                     std::uint32_t fieldHash);
  std::vector<std::string>*& getliststring(short memNum, short index, std::uint32_t msgTag,
                                           std::uint32_t fieldHash, bool markSet);
  const std::vector<std::string>* getliststring_const(short memNum, short index, std::uint32_t msgTag,
                                                      std::uint32_t fieldHash) const;
  void setliststring(short memNum, short index, const std::vector<std::string>* value, std::uint32_t msgTag,
                     std::uint32_t fieldHash);
  std::vector<std::u16string>*& getlistwstring(short memNum, short index, std::uint32_t msgTag,
                                               std::uint32_t fieldHash, bool markSet);
  const std::vector<std::u16string>* getlistwstring_const(short memNum, short index, std::uint32_t msgTag,
                                                          std::uint32_t fieldHash) const;
  void setlistwstring(short memNum, short index, const std::vector<std::u16string>* value,
                      std::uint32_t msgTag, std::uint32_t fieldHash);
  std::vector<bstring>*& getlistbstring(short memNum, short index, std::uint32_t msgTag,
                                        std::uint32_t fieldHash, bool markSet);
  const std::vector<bstring>* getlistbstring_const(short memNum, short index, std::uint32_t msgTag,
                                                   std::uint32_t fieldHash) const;
  void setlistbstring(short memNum, short index, const std::vector<bstring>* value, std::uint32_t msgTag,
                      std::uint32_t fieldHash);
  std::vector<XNMessageBase>*& getlistobject(short memNum, short index, std::uint32_t msgTag,
                                             std::uint32_t fieldHash, bool markSet);
  const std::vector<XNMessageBase>* getlistobject_const(short memNum, short index, std::uint32_t msgTag,
                                                        std::uint32_t fieldHash) const;
  void setlistobject(short memNum, short index, const std::vector<XNMessageBase>* value, std::uint32_t msgTag,
                     std::uint32_t fieldHash);
  /// @}

  /// @{
  /// Maps, as lists: the getter makes, the `_const` getter may give null, the setter copies, null clears.
  std::map<std::int64_t, std::int64_t>*& getMapInt64AndInt64(short memNum, short index, std::uint32_t msgTag,
                                                             std::uint32_t fieldHash, bool markSet);
  const std::map<std::int64_t, std::int64_t>* getMapInt64AndInt64_const(short memNum, short index,
                                                                        std::uint32_t msgTag,
                                                                        std::uint32_t fieldHash) const;
  void setMapInt64AndInt64(short memNum, short index, const std::map<std::int64_t, std::int64_t>* value,
                           std::uint32_t msgTag, std::uint32_t fieldHash);
  std::map<std::int64_t, std::string>*& getMapInt64AndString(short memNum, short index, std::uint32_t msgTag,
                                                             std::uint32_t fieldHash, bool markSet);
  const std::map<std::int64_t, std::string>* getMapInt64AndString_const(short memNum, short index,
                                                                        std::uint32_t msgTag,
                                                                        std::uint32_t fieldHash) const;
  void setMapInt64AndString(short memNum, short index, const std::map<std::int64_t, std::string>* value,
                            std::uint32_t msgTag, std::uint32_t fieldHash);
  std::map<std::int64_t, XNMessageBase>*& getMapInt64AndObject(short memNum, short index,
                                                               std::uint32_t msgTag, std::uint32_t fieldHash,
                                                               bool markSet);
  const std::map<std::int64_t, XNMessageBase>* getMapInt64AndObject_const(short memNum, short index,
                                                                          std::uint32_t msgTag,
                                                                          std::uint32_t fieldHash) const;
  void setMapInt64AndObject(short memNum, short index, const std::map<std::int64_t, XNMessageBase>* value,
                            std::uint32_t msgTag, std::uint32_t fieldHash);
  std::map<std::string, std::int64_t>*& getMapStringAndInt64(short memNum, short index, std::uint32_t msgTag,
                                                             std::uint32_t fieldHash, bool markSet);
  const std::map<std::string, std::int64_t>* getMapStringAndInt64_const(short memNum, short index,
                                                                        std::uint32_t msgTag,
                                                                        std::uint32_t fieldHash) const;
  void setMapStringAndInt64(short memNum, short index, const std::map<std::string, std::int64_t>* value,
                            std::uint32_t msgTag, std::uint32_t fieldHash);
  std::map<std::string, std::string>*& getMapStringAndString(short memNum, short index, std::uint32_t msgTag,
                                                             std::uint32_t fieldHash, bool markSet);
  const std::map<std::string, std::string>* getMapStringAndString_const(short memNum, short index,
                                                                        std::uint32_t msgTag,
                                                                        std::uint32_t fieldHash) const;
  void setMapStringAndString(short memNum, short index, const std::map<std::string, std::string>* value,
                             std::uint32_t msgTag, std::uint32_t fieldHash);
  std::map<std::string, XNMessageBase>*& getMapStringAndObject(short memNum, short index,
                                                               std::uint32_t msgTag, std::uint32_t fieldHash,
                                                               bool markSet);
  const std::map<std::string, XNMessageBase>* getMapStringAndObject_const(short memNum, short index,
                                                                          std::uint32_t msgTag,
                                                                          std::uint32_t fieldHash) const;
  void setMapStringAndObject(short memNum, short index, const std::map<std::string, XNMessageBase>* value,
                             std::uint32_t msgTag, std::uint32_t fieldHash);
  std::map<XNMessageBase, XNMessageBase>*& getMapObjectAndObject(short memNum, short index,
                                                                 std::uint32_t msgTag,
                                                                 std::uint32_t fieldHash, bool markSet);
  const std::map<XNMessageBase, XNMessageBase>* getMapObjectAndObject_const(short memNum, short index,
                                                                            std::uint32_t msgTag,
                                                                            std::uint32_t fieldHash) const;
  void setMapObjectAndObject(short memNum, short index, const std::map<XNMessageBase, XNMessageBase>* value,
                             std::uint32_t msgTag, std::uint32_t fieldHash);
  /// @}

  /// The slot of a sub-object by reference. QUIRK: an unknown field throws ZqException
  /// ("XNMessageBase::getObject") after the log line; a bad memNum gives the null slot of the thread.
  XNMessageBase*& getObject(short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash);
  /// The sub-object, null where there is none and on failure, which is logged and throws nothing. The message
  /// owns it.
  const XNMessageBase* getObject_const(short memNum, short index, std::uint32_t msgTag,
                                       std::uint32_t fieldHash) const;
  /// What generated getters use: the slot, with an object of (msgSysIndex, msgIndex) made in it when it is
  /// empty and `create` or `markSet` asks for one; `markSet` marks the bit.
  XNMessageBase*& getObjectAccessor(bool create, bool markSet, short memNum, short index,
                                    std::uint32_t msgTag, std::uint32_t fieldHash, int msgSysIndex,
                                    int msgIndex);
  /// Takes ownership of `value` (an XNMessageBase); null clears the member. QUIRK: an object that was there
  /// is dropped, not freed; the plain flag is not looked at.
  void setObject(short memNum, short index, const void* value, bool unused, std::uint32_t msgTag,
                 std::uint32_t fieldHash, bool markSet);
  /// Copies `value` (an XNMessageBase) into the member and marks it; null clears the member.
  void setObjectAccessor(const void* value, short memNum, short index, std::uint32_t msgTag,
                         std::uint32_t fieldHash);

  /// @{
  /// Marks or clears a bit and touches nothing else.
  void setField(short memNum, std::uint32_t msgTag, std::uint32_t fieldHash);
  void unsetField(short memNum, std::uint32_t msgTag, std::uint32_t fieldHash);
  /// @}

  // --- Setters in line, for generated classes

  /// @{
  /// As setint64, setdouble, setfloat, assignstring and assignwstring, but told the type of the field too,
  /// and without a call where the object has the field as it is told.
  template <FieldDataType kType>
  void putint64(short memNum, short index, std::int64_t value, std::uint32_t msgTag,
                std::uint32_t fieldHash) {
    if (!put<kType>(memNum, index, msgTag, [value](std::int64_t& slot) { slot = value; })) [[unlikely]]
      setint64(memNum, index, value, msgTag, fieldHash);
  }
  template <FieldDataType kType>
  void putdouble(short memNum, short index, double value, std::uint32_t msgTag, std::uint32_t fieldHash) {
    const auto store = [value](std::int64_t& slot) { slot = std::bit_cast<std::int64_t>(value); };
    if (!put<kType>(memNum, index, msgTag, store)) [[unlikely]]
      setdouble(memNum, index, value, msgTag, fieldHash);
  }
  template <FieldDataType kType>
  void putfloat(short memNum, short index, float value, std::uint32_t msgTag, std::uint32_t fieldHash) {
    const auto store = [value](std::int64_t& slot) { slot = std::bit_cast<std::uint32_t>(value); };
    if (!put<kType>(memNum, index, msgTag, store)) [[unlikely]]
      setfloat(memNum, index, value, msgTag, fieldHash);
  }
  template <FieldDataType kType>
  void putstring(short memNum, short index, const typed::StringArg& value, std::uint32_t msgTag,
                 std::uint32_t fieldHash) {
    const auto store = [&](std::int64_t& slot) { value.assignTo(reinterpret_cast<std::string&>(slot)); };
    if (!put<kType>(memNum, index, msgTag, store)) [[unlikely]]
      assignstring(memNum, index, value, msgTag, fieldHash);
  }
  template <FieldDataType kType>
  void putwstring(short memNum, short index, const typed::WStringArg& value, std::uint32_t msgTag,
                  std::uint32_t fieldHash) {
    const auto store = [&](std::int64_t& slot) { value.assignTo(reinterpret_cast<std::u16string&>(slot)); };
    if (!put<kType>(memNum, index, msgTag, store)) [[unlikely]]
      assignwstring(memNum, index, value, msgTag, fieldHash);
  }
  /// @}

  // --- Whole object

  /// Back to the freshly built state. QUIRK: in a subsystem that is not old-way the defaults are present but
  /// not set.
  void reset();
  /// Clears one member: frees or empties its content and clears the bit. QUIRK: a slot that is 0 is left
  /// alone with its bit. `destroy` is the destructor's case and ends in-place and always-present content too.
  void deleteMember(short memNum, std::uint32_t msgTag, std::uint32_t fieldHash, bool destroy);

 private:
  friend class MessageAccess;
  struct KeptTexts;

  /// Lets `store` fill the member's slot and marks the bit, if the object has the tag, and in its class the
  /// slot and the type are those of the member: what the library was built with may differ from what its
  /// caller was. False, and nothing is done, if not.
  template <FieldDataType kType, class Store>
  bool put(short memNum, short index, std::uint32_t msgTag, Store store) {
    if (tagId_ != msgTag || classDef_ == nullptr || memNum < 0 || memNum >= classDef_->getNumberOfFields())
      return false;
    const FieldDef& field = classDef_->getFields()[memNum];
    if (field.getIndex() != index || field.getType() != kType) return false;
    store(buffer_[index]);
    buffer_.mark(memNum);
    return true;
  }

  void initToNULL();
  void initialize(int msgSysIndex, int msgIndex);
  void initializeInBlock(int msgSysIndex, int msgIndex, std::int64_t* block, int blockSize);
  void initializeBuffer(const _ClassDef& record);
  void initializeContent(const _ClassDef& record, int msgSysIndex, int msgIndex);
  void constructSubObjects();
  /// reset and wipeBitset, in half the time.
  void resetAndWipe();
  void setDefaults(short position);
  void wipeBitset();
  void setEveryPrimitiveBitset(bool on);
  void requireSameClass(const XNMessageBase& other) const;
  KeptTexts& madeTexts();
  void copyTexts(const XNMessageBase& other);
  void copyFields(const XNMessageBase& other);
  void takeFields(XNMessageBase& other);
  void takeInlineStrings(XNMessageBase& other) noexcept;
  void destroyFields() noexcept;
  void initializeRest();
  void destroyOtherFields() noexcept;
  /// The strings of BuiltContent::strings(), each given to `handle` as a reference to where it stands.
  template <class Handler>
  void forEachFirstString(BuiltContent content, Handler handle);
  void formatLastErrorA(const char* format, std::span<const FormatArg> args);
  void formatLastErrorW(const char16_t* format, std::span<const FormatArg> args);
  static bool getMessageSchemaString(std::string& text, short msgSysIndex, int msgIndex, bool allFields,
                                     bool details);
  bool hasProcessingInstructionInfo() const;
  bool isMovedFrom() const { return movedFrom_ && classDef_ == nullptr; }
  /// Ends this object and takes over the other one whole.
  void becomeOf(XNMessageBase&& other) noexcept;

  std::uint32_t tagId_ = 0;
  std::uint32_t cachedSize_ = 0;
  const _ClassDef* classDef_ = nullptr;
  std::unique_ptr<KeptTexts> texts_;  ///< null while there is none
  std::int32_t msgIndex_ = 0;
  std::int16_t msgSysIndex_ = 0;
  bool serialized_ = false;
  bool movedFrom_ = false;  ///< without a class because it was moved from, not because it never had one
  XNMessageBuffer buffer_;  // last, for what it says of its own last member
};

}  // namespace zqxml
