// Writing files so that a failed run leaves the old ones and a repeated one touches nothing.
#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "compiler.h"

namespace zqxml::zqcatc {

/// Writes the files below `folder`, making folders where they are missing. A file that already has this
/// content is left alone with its time stamp, so that nothing is built again. A new content is written beside
/// its file first; all are renamed once all are written, so when one cannot be written none has changed.
/// False with `error` saying which file and why.
bool writeFiles(const std::filesystem::path& folder, std::span<const OutputFile> files, std::string& error);

}  // namespace zqxml::zqcatc
