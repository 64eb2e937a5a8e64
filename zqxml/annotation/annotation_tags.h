// Tag ids of the annotation classes that records can hold: what listeners register for, and what
// XMLDecoder::FillAnnotationIds lists.
#pragma once

#include <zqxml/catalogue/class_ref.h>
#include <zqxml/catalogue/name_hash.h>

#include <cstdint>

namespace zqxml::annotation_tag {

/// Slot of subsystem Annotation.
inline constexpr int kSubsystem = 27;

inline constexpr std::uint32_t kXDate = 0x1bf87826;
inline constexpr std::uint32_t kSuppress = 0x1bb90ad5;
inline constexpr std::uint32_t kPassword = 0x1b641ebb;
/// Not the hash of its name: an assigned class id.
inline constexpr std::uint32_t kZQTime = 0x1b385de0;
inline constexpr std::uint32_t kGenPath = 0x1b67d775;
inline constexpr std::uint32_t kIndexAttr = 0x1b47ddc3;
inline constexpr std::uint32_t kCommandParam = 0x1b897422;
inline constexpr std::uint32_t kHideInReports = 0x1bc1f598;
inline constexpr std::uint32_t kSearchCriteriaDef = 0x1b58e53e;
inline constexpr std::uint32_t kText = 0x1b27b94d;
inline constexpr std::uint32_t kStoredProcedure = 0x1ba39e50;
inline constexpr std::uint32_t kSingleInstanced = 0x1b84a2e7;
inline constexpr std::uint32_t kMarkAsCDATA = 0x1bb739ce;
inline constexpr std::uint32_t kSensitive = 0x1b2f6e76;

static_assert(kXDate == makeTagId(kSubsystem, nameHash("XDate")));
static_assert(kSuppress == makeTagId(kSubsystem, nameHash("Suppress")));
static_assert(kPassword == makeTagId(kSubsystem, nameHash("Password")));
static_assert(kGenPath == makeTagId(kSubsystem, nameHash("GenPath")));
static_assert(kIndexAttr == makeTagId(kSubsystem, nameHash("IndexAttr")));
static_assert(kCommandParam == makeTagId(kSubsystem, nameHash("CommandParam")));
static_assert(kHideInReports == makeTagId(kSubsystem, nameHash("HideInReports")));
static_assert(kSearchCriteriaDef == makeTagId(kSubsystem, nameHash("SearchCriteriaDef")));
static_assert(kText == makeTagId(kSubsystem, nameHash("Text")));
static_assert(kStoredProcedure == makeTagId(kSubsystem, nameHash("StoredProcedure")));
static_assert(kSingleInstanced == makeTagId(kSubsystem, nameHash("SingleInstanced")));
static_assert(kMarkAsCDATA == makeTagId(kSubsystem, nameHash("MarkAsCDATA")));
static_assert(kSensitive == makeTagId(kSubsystem, nameHash("Sensitive")));

}  // namespace zqxml::annotation_tag
