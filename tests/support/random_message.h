// RapidCheck generator of random messages of random classes.
#pragma once

#include <rapidcheck.h>
#include <tests/support/open_message.h>

#include <cstdint>
#include <ostream>

namespace zqxml {

/// What a form does not bring back: a law over that form names these, and the generator leaves such values
/// out. Nothing else is left out but passwords that need a routine of the application.
enum Loss : std::uint32_t {
  kNulInTexts = 1u << 0,         ///< a text ends at its first NUL
  kNulInBytes = 1u << 1,         ///< so does a bstring
  kHashlessFields = 1u << 2,     ///< fields without a hash are not found again, or not written
  kUnsignedLonglongs = 1u << 3,  ///< ulonglong and lists of them are written as no reader expects
  kHighHalves = 1u << 4,         ///< of a 32-bit type only the low half of the slot travels
  kLoneSurrogates = 1u << 5,     ///< become U+FFFD
  kEmptyTextLists = 1u << 6,     ///< lists of texts or objects without elements leave no trace
  kEmptyCollections = 1u << 7,   ///< no list or map without elements leaves a trace
  kDigits = 1u << 8,             ///< of a float six digits travel
  kNegativeEnums = 1u << 9,      ///< a number with a minus is taken for an enumerator's name
  kUnnamedEnums = 1u << 10,      ///< a value without an enumerator is not written
  kPasswordMarks = 1u << 11,  ///< a password's first character may be taken for the mark of its form, and it
                              ///< ends at a NUL
  kDates = 1u << 12,          ///< annotated dates and times travel in a text that says less than the number
  kCdata = 1u << 13,          ///< marked texts: a "]]>" is doubled
  kEmptyTexts = 1u << 14,     ///< empty texts of fields and lists leave no trace
  kNestedMaps = 1u << 15,  ///< a map with a number or text on a side, inside of a sub-object, loses its pairs
  kTwinNames = 1u << 16,   ///< an element named as an object or map around ends more than itself
  kOldWayClasses = 1u << 17,     ///< are written whole, set or not
  kBuiltElements = 1u << 18,     ///< elements of lists and maps come with what their construction has set
  kEscapeLookalikes = 1u << 19,  ///< "|#41!" in a text may be taken for an escaped character
  kUnstored = 1u << 20,          ///< fields of types that store nothing
  kClassIdZero = 1u << 21,       ///< a tag with class id 0 is that of the first record of its subsystem
};
using Losses = std::uint32_t;

/// Losses of a copy: what has no hash is no part of a message's value.
inline constexpr Losses kCopyLosses = kHashlessFields | kUnstored;
/// Losses of the binary form, from version 2 on and before it.
inline constexpr Losses kBinaryLosses = kNulInTexts | kHashlessFields | kUnsignedLonglongs | kHighHalves |
                                        kLoneSurrogates | kEmptyTextLists | kPasswordMarks | kBuiltElements |
                                        kUnstored | kClassIdZero;
inline constexpr Losses kBinaryV1Losses = (kBinaryLosses & ~kPasswordMarks) | kNulInBytes;
/// Losses of XML: scalars as attributes; as elements; as attributes in readable form.
inline constexpr Losses kXmlCommonLosses = kNulInTexts | kHashlessFields | kEmptyCollections | kDigits |
                                           kPasswordMarks | kCdata | kOldWayClasses | kEscapeLookalikes |
                                           kTwinNames | kUnstored;
inline constexpr Losses kXmlLosses = kXmlCommonLosses | kNestedMaps | kNegativeEnums;
inline constexpr Losses kXmlElementLosses = kXmlCommonLosses | kEmptyTexts | kNegativeEnums;
inline constexpr Losses kXmlReadableLosses = kXmlCommonLosses | kNestedMaps | kUnnamedEnums | kDates;

/// Losses of JSON. An integer beyond the width of its type is written, and refused when it is read.
inline constexpr Losses kJsonLosses =
    kHashlessFields | kHighHalves | kLoneSurrogates | kPasswordMarks | kUnstored;

/// Random messages of random classes of the tests' catalogue, at most three levels deep, with all of Unicode
/// in their texts, and without what the losses name.
rc::Gen<OpenMessage> randomMessages(Losses losses);

/// Likewise of one class.
rc::Gen<OpenMessage> randomMessagesOf(ClassIndices indices, Losses losses);

/// What RapidCheck prints of a counterexample.
void showValue(const OpenMessage& message, std::ostream& out);

}  // namespace zqxml
