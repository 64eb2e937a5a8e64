#pragma once

#include <zqxml/platform/export.h>

#include <cstddef>
#include <cstdint>

namespace zqxml {

/// Puts the text of a message into `buffer` (`size` bytes, UTF-8, always ended by a NUL; what does not fit is
/// left out, whole characters only) and tells whether there is one. Without one the buffer is an empty text.
/// A null buffer, or no room, is false.
///
/// Texts stand in the catalogues of GNU gettext, one per language: FOLDER/LANGUAGE/LC_MESSAGES/zqxml.mo,
/// UTF-8, the key being the id as "0x%08x". FOLDER is `$ZQXML_LOCALE_DIR`, or else where the library is
/// installed. A catalogue is read at the first look-up of its language and kept until the process ends; one
/// that cannot be read has no texts. Neither the process's locale nor anything else of it is changed.
///
/// `localeId` is a language identifier as [MS-LCID] lists them; the low ten bits are the language, the six
/// above them its region: 1033 (0x409) is English, 1031 (0x407) is German. A region without a catalogue takes
/// that of its language. A language of 0 is the process's own, as the environment tells it: each name in
/// `$LANGUAGE`, then the first of `$LC_ALL`, `$LC_MESSAGES` and `$LANG` that is not empty; with the locales
/// "C" and "POSIX", and without any, there are no texts. The environment is looked at once. 0x7f, the
/// invariant locale, and every identifier that is not known have no texts either.
///
/// Any thread may call this at any time. Nothing throws, nothing is logged.
ZQXML_EXPORT bool EvGetLocText(std::uint32_t messageId, int localeId, char* buffer,
                               std::size_t size) noexcept;

}  // namespace zqxml
