/// @file
/// Messages filled with placeholder values, so that their shape shows when they are written: a sample
/// document of a class.
///
/// What is filled follows from what MsgFieldContext::replaceValue stores where: texts and byte strings are
/// set and empty; list<int> and list<float> get five zeros; lists of objects get five elements, filled
/// likewise; objects are set. Other fields are left alone. QUIRK: the object of an object field is copied
/// before it would be filled, so that it stays empty; and lists of other numbers stay unset, since zeros of
/// one type alone are offered to them.
///
/// Failure: 1, with what was filled so far, for a null message and one without a class, here or further down,
/// and for classes that nest more than 100 levels deep, as every class does that contains itself; that is
/// logged under "recurseAndFillDummyValues", level 0. Nothing throws. Threads: as the message.
#pragma once

#include <zqxml/platform/export.h>

namespace zqxml {

class XNMessageBase;

/// Fills `msg`, which stays the caller's; 0, or 1 on failure with the line "recurseAndFillDummyValues()
/// failed with Return Code[%d]" under "createXMLObjectWithDummyValues", level 0.
ZQXML_EXPORT int createXMLObjectWithDummyValues(XNMessageBase*& msg);
/// The same without that line.
ZQXML_EXPORT int recurseAndFillDummyValues(XNMessageBase* msg);

}  // namespace zqxml
