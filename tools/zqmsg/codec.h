#pragma once

#include <zqxml/message/xn_message_base.h>

#include <memory>
#include <optional>
#include <string>

#include "tools/zqmsg/form.h"
#include "tools/zqmsg/masks.h"

namespace zqxml::tool {

class LibraryLog;

using MessagePtr = std::unique_ptr<XNMessageBase>;

/// Makes the message that `bytes` hold in one of the forms that can be read; of Form::kObjects and
/// Form::kJsonl they are one object or line. `masked` as of readJson. Throws Failure, with the
/// result of the step that failed and what the library said, when that cannot be done; also when a password
/// could not be taken over. `where` is what messages call the input.
MessagePtr decode(Form form, const std::string& bytes, const std::string& where, LibraryLog& log,
                  bool masked = false);

/// Throws Failure when the library has told, since the last LibraryLog::take, that a password could not be
/// coded: a field that fails does not fail a call.
void requirePasswords(const std::string& where, LibraryLog& log);

/// How a message is written. The switches from `elements` to the masks are of the XML forms; those of JSON
/// share `readable` (indented, and names as enumNames), `enumNames` and the masks.
struct WriteOptions {
  Form form = Form::kXml;
  bool elements = false;
  bool readable = false;
  bool enumNames = false;
  bool rootOnly = false;
  Masks masks;
  bool showSecrets = false;    ///< of `page`
  std::optional<int> version;  ///< of `binary` and of `xml` with its declaration; 2 when not given
};

/// The message as the bytes of a file, for Form::kObjects those of the binary form; JSON ends its line.
/// Throws Failure as above; also when the result would lack a password, or could not be read again.
std::string encode(XNMessageBase& message, const WriteOptions& options, const std::string& where,
                   LibraryLog& log);

}  // namespace zqxml::tool
