// The routines that the application registers per password encryption type, by number.
#pragma once

#include <zqxml/xml/xml_decoder.h>

namespace zqxml {

/// The routine of a type, null when none is registered or the type has no entry (below 0, above 10). Any
/// thread.
PasswordRoutine encryptionRoutine(int type);
PasswordRoutine decryptionRoutine(int type);

/// Name of an Annotation::PasswordEncryptType, "" for an unknown number. No log.
const char* passwordTypeName(int type);

}  // namespace zqxml
