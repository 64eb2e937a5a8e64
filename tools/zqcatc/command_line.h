// What the commands of the program share.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "findings.h"

namespace zqxml::zqcatc {

enum ExitStatus { kDone = 0, kSchemaErrors = 1, kUsage = 2, kFileError = 3, kFound = 10 };

/// Prints to standard output; an exit status.
int print(std::string_view text);

/// Tells on standard error how the program was called wrongly; the exit status of that.
int usage(std::string_view why);

/// A failure to read or write, on standard error; the exit status of that.
int fileError(std::string_view why, ErrorFormat format);

/// The format of a name, "text" or "json"; false for any other.
bool readErrorFormat(std::string_view name, ErrorFormat& format);

/// `zqcatc diff` and `zqcatc lint`, with what stands behind these words; exit statuses.
int runDiff(std::span<char*> arguments);
int runLint(std::span<char*> arguments);

}  // namespace zqxml::zqcatc
