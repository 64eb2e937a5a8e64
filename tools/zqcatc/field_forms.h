// What two versions of a field have to share for their values to be read as each other's.
#pragma once

#include <string>

namespace zqxml::zqcatc {

/// Fields of equal texts have the same bytes for the same value in the binary form. A text is nobody's key.
std::string binaryForm(unsigned type);
/// Likewise for every XML form: the text that the one writes is read as the same value by the other.
std::string xmlForm(unsigned type);
/// Fields of equal texts lie in a message alike, and have the same C++ type.
std::string storageForm(unsigned type);

/// True for the two types whose record in the binary form leads every reader astray.
bool isLostInBinary(unsigned type);

/// True for types whose values are passwords.
bool isPassword(unsigned type);

/// Name in schema files, or "type 77" for an unknown one.
std::string typeText(unsigned type);

}  // namespace zqxml::zqcatc
