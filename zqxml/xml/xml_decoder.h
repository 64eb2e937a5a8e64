/// @file
/// XMLDecoder: the reading facade of the codecs, and the home of annotation and password operations.
///
/// Members are defined in the folder that does the work: parsing and list access in xml/, binary in binary/,
/// annotations and passwords in annotation/.
#pragma once

#include <zqxml/annotation/annotation_base.h>
#include <zqxml/catalogue/generated/Annotation_enums.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/catalogue/result.h>
#include <zqxml/message/pstring.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/export.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/zq_xml_context_info.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zqxml {

class BinaryBuffer;

/// Routine of the password registry: the text in, the transformed text out; the context tells the type
/// (getPasswordEncType) and the call's parameters. It may read and write messages of its own. What it throws
/// ends the call: reading XML gives XN_MSG_XML_LIBRARY_ERROR and writing it XN_MSG_FAILED, each with a line;
/// through the binary codec, and the password operations of XMLDecoder, it passes to the caller.
using PasswordRoutine = bstring (*)(bstring text, ZqXMLContextInfo* context);

/// Reads messages: XML, the binary form, annotations, passwords. One decoder belongs to one thread at a time
/// (passwords write encryptionTypeUsed). The context is borrowed.
class ZQXML_EXPORT XMLDecoder {
 public:
  /// @{
  /// Flags for passwords, and the context of the calls; without them default flags and none.
  XMLDecoder() = default;
  explicit XMLDecoder(ZqXMLContextInfo* context) : context_(context) {}
  explicit XMLDecoder(EncodingFlags flags) : flags_(flags) {}
  XMLDecoder(EncodingFlags flags, ZqXMLContextInfo* context) : context_(context), flags_(flags) {}
  /// @}

  /// Does nothing and answers 0.
  static int initialize() { return 0; }
  /// The process-wide decoder, built on first use with default values.
  static XMLDecoder* getXMLDecoderObject();

  // --- Parsing (xml/)

  /// @{
  /// Resets `msg` and fills it from XML in UTF-8, or in UTF-16 of native byte order: an eXNMsgRet, with the
  /// log lines of XMLSerializer::unserialize. `context` is stored in this decoder. QUIRK: the decoder's own
  /// flags do not reach the parse.
  int unSerialize(XNMessageBase& msg, std::string& xml, ZqXMLContextInfo* context = nullptr);
  int unSerialize(XNMessageBase& msg, const char16_t* xml, ZqXMLContextInfo* context = nullptr);
  /// @}
  /// New object of the root tag's class, null on failure; the caller owns it. `context` as above.
  XNMessageBase* unSerialize(std::string& xml, ZqXMLContextInfo* context = nullptr);
  /// New object by root tag name into `*out`, which the caller owns: filled from `xml` when `parse` is set,
  /// else keeping it unparsed; null keeps and fills nothing. What does not work is logged, and `*out` stays
  /// as it was or is null. QUIRK: "Request to Create Object.Class Name:[%s]" is logged at level 0 though
  /// nothing failed.
  static void CreateObjByName(const std::string& tag, XNMessageBase** out, const char* xml, bool parse);

  // --- Binary (binary/)

  /// @{
  /// BinarySerializer::unserialize without keeping: 0, or -1 on failure; or a new object that the caller
  /// owns, null on failure. A context that is given is stored in this decoder; without one passwords have
  /// none.
  int UnserializeBinary(XNMessageBase& msg, BinaryBuffer& buffer);
  XNMessageBase* UnserializeBinary(BinaryBuffer& buffer);
  int UnserializeBinary(XNMessageBase& msg, BinaryBuffer& buffer, ZqXMLContextInfo* context);
  XNMessageBase* UnserializeBinary(BinaryBuffer& buffer, ZqXMLContextInfo* context);
  /// @}

  // --- Catalogue (xml/)

  /// @{
  /// XNMessageBase::GetClassDef; `high | low` is a tag id in two parts.
  static const _ClassDef* GetClassDef(std::uint32_t tagId);
  static const _ClassDef* GetClassDef(std::uint32_t high, std::uint32_t low);
  static const _ClassDef* GetClassDef(const XNMessageBase* msg);
  /// @}
  /// @{
  /// Name of the enumerator with this value: of the field's enumeration, or of the one with this tag id. ""
  /// with a log line when there is none.
  static const char* GetEnumString(const FieldDef& field, int value);
  static const char* GetEnumString(std::uint32_t tagId, int value);
  /// @}
  /// By name of the enumeration among the object's single enum fields; "" silently when there is none.
  static const char* GetEnumString(const XNMessageBase* msg, const char* enumName, int value);
  /// Name of the enumerator, null when there is none; nothing is logged.
  static const char* getEnumString(const _ClassDef& classDef, int value);
  /// @{
  /// What the codecs take for an enumeration (or a list of them), for a list, and for a value that is no
  /// object. QUIRK: ulonglong counts as a list, list<ulonglong> and list<bstring> do not.
  static constexpr bool isEnum(unsigned type) { return kEnumTypes.contains(type); }
  static constexpr bool isListType(unsigned type) { return kListTypes.contains(type); }
  static constexpr bool isPrimitive(unsigned type) { return kXmlPrimitiveTypes.contains(type); }
  /// @}

  // --- Lists by field name, untyped (xml/)

  /// Appends a copy of *value: an 8-byte cell for integers, booleans and enumerations, else the element
  /// itself.
  static void InsertIntoList(XNMessageBase* msg, const std::string& field, const void* value);
  /// Fills `out` with one pointer per element: to 8-byte cells for integers, booleans and enumerations, else
  /// to the elements; valid until the list changes or the next call on this thread.
  static void ReadFromList(const XNMessageBase* msg, const std::string& field, std::vector<const void*>& out);

  // --- Annotations (annotation/)

  /// @{
  /// True when the field has the annotation that the class of `out` asks for; `out` takes its values.
  /// `fieldName` may be the class's own name: the class-level annotation.
  static bool FillAnnotation(const XNMessageBase* msg, AnnotationBase& out, const std::string& fieldName);
  static bool FillAnnotation(const _ClassDef* classDef, AnnotationBase& out, const std::string& fieldName);
  /// @}
  /// Tag ids of all annotations that the field has, appended in record order; false without a record.
  static bool FillAnnotationIds(const FieldDef& field, std::vector<std::uint32_t>& ids);

  // --- Passwords (annotation/)

  /// @{
  /// Registers a routine for types 0 to 10; other types only log. Not locked: register before concurrent use.
  static void registerPasswordEncAlgo(Annotation::PasswordEncryptType type, PasswordRoutine routine);
  static void registerPasswordDecAlgo(Annotation::PasswordEncryptType type, PasswordRoutine routine);
  /// @}
  /// @{
  /// The routine, or null.
  static PasswordRoutine GetRegisteredPasswordEncAlgo(Annotation::PasswordEncryptType type);
  static PasswordRoutine GetRegisteredPasswordDecAlgo(Annotation::PasswordEncryptType type);
  /// @}
  /// Text form of a password in `type` (or the flags' own type): XN_MSG_OK or XN_MSG_NO_PASSWORD_HANDLER
  /// (`text` untouched).
  eXNMsgRet encryptPassword(int type, const pstring& value, std::string& text) const;
  /// Reads the text form into a new pstring that the caller owns; false on failure, `value` then stays as it
  /// was.
  bool decryptPassword(const FieldDef& field, const char16_t* text, pstring*& value);
  /// Runs the decryption routine of encryptionTypeUsed on `text` in place.
  eXNMsgRet ProcessPasswordAnnotation(bstring& text, bool reEncrypt);

  /// The context of the calls, to read or to replace; null for none.
  ZqXMLContextInfo*& getContextObj() { return context_; }
  /// @{
  /// Type of the password that was read last; ProcessPasswordAnnotation takes it from here.
  int getEncryptionTypeUsed() const { return encryptionTypeUsed_; }
  void setEncryptionTypeUsed(int type) { encryptionTypeUsed_ = type; }
  /// @}
  /// @{
  /// Stored and given back; nothing else reads it.
  void setIgnoreStartTag(bool ignore) { ignoreStartTag_ = ignore; }
  bool getIgnoreStartTag() const { return ignoreStartTag_; }
  /// @}

 private:
  ZqXMLContextInfo* context_ = nullptr;
  EncodingFlags flags_;
  int encryptionTypeUsed_ = 0;
  bool ignoreStartTag_ = false;
};

}  // namespace zqxml
