// What the written classes say about themselves: doc comments, from the schema.
#pragma once

#include <string>

#include "model.h"

namespace zqxml::zqcatc {

/// Comment of a class or enumeration: its text, else its name on the wire.
std::string classComment(const Class& record);

/// Comment of an enumerator: its text, else what people are shown for it; "" when there is neither.
std::string enumeratorComment(const Field& enumerator);

/// Comment of the accessors of a field: its name and type, its text, and what else a caller wants to know:
/// default, label, what people are shown, and whether logs hide it.
std::string fieldComment(const Field& field);

}  // namespace zqxml::zqcatc
