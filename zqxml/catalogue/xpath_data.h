/// @file
/// Paths: names for the values deep in a message, in constant tables that zqcatc writes.
///
/// A path is the field names from below the root of a message to a value: an object, or a list of objects, is
/// its name and "[1]/", a single value "@" and its name, a list of values the bare name. For example
/// "options[1]/adComparisonOption[1]/@adCompareType". A path has an id, xpathId of its text.
///
/// Only subsystems whose schema names roots (paths="true") have tables. They are constant and valid for the
/// life of the process; reading them needs no lock. Pure look-ups, safe from any thread; nothing throws, logs
/// or allocates.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/platform/export.h>

#include <bit>
#include <concepts>
#include <cstdint>
#include <string_view>

namespace zqxml {

/// The way to the value of a path: the member numbers of the fields, from the root's field to the value's.
struct XPathFieldsInfo {
  const short* fieldPath;  ///< `depth` numbers
  int depth;               ///< 2 at least: paths begin with an object of the root
};

/// From the id of a path to its place in `fieldsInfo` and in `paths`.
struct XPathIDHelper {
  int id;     ///< xpathId of the path
  int index;  ///< its place
};

/// A path and its id.
struct XPathEntry {
  int id;             ///< xpathId of it
  const char* xpath;  ///< the path, constant
};

/// The paths of one subsystem. Each array has one entry more than `count`, which is no path, so that the
/// entry behind the last can be read.
struct XPathData {
  std::uint32_t subsystem;            ///< slot
  const XPathFieldsInfo* fieldsInfo;  ///< in the order of `paths`
  const XPathIDHelper* idHelper;      ///< ascending by id
  const XPathEntry* paths;            ///< ascending by the bytes of `xpath`
  int count;                          ///< paths
};

/// One row for each subsystem with paths, ascending by slot; a row without `paths` ends it.
extern ZQXML_EXPORT const XPathData gXPathTable[];

/// Types whose single value has a path.
inline constexpr FieldTypeSet kXPathScalarTypes = kPrimitiveTypes;
/// Types whose list of values has a path. QUIRK: the lists that the untyped list access passes over (of
/// ulonglong and of byte strings) have none, and a ulonglong, which it takes for a list, is a single value.
inline constexpr FieldTypeSet kXPathListTypes =
    FieldTypeSet::ofStorage(Overloaded{[]<class E>(List<E>) {
                                         return !std::same_as<E, element::UInt64> &&
                                                !std::same_as<E, element::BStr> &&
                                                !std::same_as<E, element::Obj>;
                                       },
                                       [](auto) { return false; }});

/// Id of a path: h = h * 31 + signed byte over the text in 32 bits, read as a signed number, its absolute
/// value. (The one number without a positive counterpart stays as it is.)
constexpr int xpathId(std::string_view text) {
  std::uint32_t hash = 0;
  for (const char byte : text)
    hash = hash * 31 + static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(byte)));
  return std::bit_cast<std::int32_t>(hash > 0x80000000u ? 0u - hash : hash);
}
static_assert(xpathId("options[1]/@originalJobId") == 0x6557686d);
static_assert(xpathId("options[1]/@externalDataProcessor") == 0x38d09dfd);

namespace catalogue {

/// The row of a subsystem; null when it has no paths.
ZQXML_EXPORT const XPathData* xpathData(short subsystem);
/// Place in `paths` and `fieldsInfo` of the path with this id, by the `count` entries of `helper`; -1 when
/// there is none. `helper` must not be null unless `count` is 0.
ZQXML_EXPORT int xpathIndexOfId(const XPathIDHelper* helper, int count, int id);
/// Place of the path in `paths` and `fieldsInfo`, -1 when there is none.
ZQXML_EXPORT int xpathIndexOfPath(const XPathData& data, std::string_view xpath);

/// Binary search over the first `count` entries of a sorted table: the place of the one for which
/// `order(entry)` is 0, -1 when there is none. `order` is negative for entries before the one looked for and
/// positive for those behind it; it is called once a step, at most bit_width(count) times.
template <class Entry, class Order>
constexpr int findSorted(const Entry* entries, int count, Order order) {
  int low = 0;
  for (int high = count - 1; low <= high;) {
    const int middle = low + (high - low) / 2;
    const auto direction = order(entries[middle]);
    if (direction == 0) return middle;
    if (direction < 0) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  return -1;
}

}  // namespace catalogue
}  // namespace zqxml
