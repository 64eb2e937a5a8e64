// Password routines made of what the platform has, for programs that bring none of their own.
#pragma once

#include <zqxml/platform/export.h>

namespace zqxml {

/// Registers encryption and decryption routines for the types 3, 4, 5 and 10 (ZQPassword in the form of that
/// type, with the key file of the configuration) and 9 (Base64 alone), in place of what was registered for
/// them. A routine that fails gives an empty text, and ZQPassword has logged why. To be called before
/// passwords are coded, as for every registration.
ZQXML_EXPORT void registerPlatformPasswordRoutines();

}  // namespace zqxml
