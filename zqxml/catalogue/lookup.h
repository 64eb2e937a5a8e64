/// @file
/// Catalogue look-ups: from a tag id, a number or a name to a record and back.
///
/// The public operations of these names are static members of XNMessageBase, FieldDef and XMLDecoder; they
/// forward here. Nothing throws: false, null, -1 or an empty text, with the quoted log line. Pure reads, safe
/// from any thread.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/platform/export.h>

#include <cstdint>
#include <string>
#include <string_view>

/// The look-ups of the catalogue: pure reads, which nothing throws from, safe from any thread.
namespace zqxml::catalogue {

/// Slot and class index of a tag id. `subsystem` always takes the tag's top byte; `classIndex` only on
/// success.
ZQXML_EXPORT bool indicesFromTag(std::uint32_t tagId, short& subsystem, int& classIndex);
/// Tag id of (slot, class index); false for slots outside 0 to 207 and a negative index. A record that does
/// not exist counts as one of class id 0.
ZQXML_EXPORT bool tagFromIndices(short subsystem, int classIndex, std::uint32_t& tagId);
/// The record, without a word in the log: null for an index outside the subsystem's records and for an empty
/// slot.
inline const _ClassDef* classAt(int subsystem, int classIndex) {
  if (subsystem < 0 || subsystem >= kSubsystemCount) return nullptr;
  const SubsystemDef& row = gSubsystemTable[subsystem];
  return classIndex >= 0 && classIndex < row.recordCount ? &row.classDefs[classIndex] : nullptr;
}
/// The record; null with a log line ("XNMessageBase::GetClassDef") outside slots 1 to 206 or for a negative
/// index.
ZQXML_EXPORT const _ClassDef* classDef(short subsystem, int classIndex);
/// The record of a tag id, null when it does not resolve.
ZQXML_EXPORT const _ClassDef* classDef(std::uint32_t tagId);
/// The record of the field's first ClassRef.
ZQXML_EXPORT const _ClassDef* classOfField(const FieldDef& field);
/// The record of the ClassRef at `classRef` (four bytes, big-endian, unaligned); null for null.
ZQXML_EXPORT const _ClassDef* classOfRef(const void* classRef);
/// The record of a map's value side: the second ClassRef of an object-to-object map, the first one of the
/// others.
ZQXML_EXPORT const _ClassDef* mapValueClass(const FieldDef& field);

/// Slot of the subsystem with this name: exactly it, the first one. False, the output untouched and nothing
/// logged, for null and when there is none.
ZQXML_EXPORT bool subsystemFromName(const char* name, short& subsystem);
/// Index of the class with this name in a subsystem, likewise.
ZQXML_EXPORT bool classIndexFromName(const char* name, short subsystem, int& classIndex);

/// Position of the field: by name in an enumeration, by hash of the name in a message class (so a field of
/// hash 0 is never found, and a colliding name finds the first of its hash). -1 when there is none.
ZQXML_EXPORT int fieldPosition(const _ClassDef* classDef, std::string_view name);
/// First field in declared order with this hash, -1 if none; the search of the accessors' slow path and the
/// decoders.
ZQXML_EXPORT int fieldPositionByHash(const _ClassDef& classDef, std::uint32_t hash);

/// Name of the first enumerator with this value; null when there is none. No log.
ZQXML_EXPORT const char* enumeratorName(const _ClassDef& enumeration, std::int32_t value);
/// Name of the enumerator in enumeration `enumName` of the subsystem, or "" with a log line
/// ("XNMessageBase::getEnumString").
ZQXML_EXPORT const char* enumString(short subsystem, const char* enumName, int value);

/// True for a tag of one of the 28 old-way subsystems: a list of its own, equal to the rows' flags.
ZQXML_EXPORT bool isOldWay(std::uint32_t tagId);

/// Replaces `text` by a printable description of a class. False (text untouched) for a
/// class that does not exist. `allFields`: fields of hash 0 too; `details`: hash, memNum and index columns.
ZQXML_EXPORT bool schemaText(std::string& text, short subsystem, int classIndex, bool allFields,
                             bool details);

}  // namespace zqxml::catalogue

namespace zqxml {
/// Byte size of a scalar field's value: 4 for types 1, 2, 3, 4, 12, 41; 8 for 5, 11, 42; 1 for 7. Any other
/// type logs "Unknown Type for Computing size. Type:[%d] Field:[%s]." under "createElementOfType" and gives
/// 0.
ZQXML_EXPORT int getSizeOfField(const FieldDef& field);
}  // namespace zqxml
