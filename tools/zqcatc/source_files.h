// Schema files and dumps as the command line names them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "xml_tree.h"

namespace zqxml::zqcatc {

/// Appends the path, or in place of a folder its *.xml files in the order of their names. False, with the
/// error told, for a folder that cannot be read or has none.
bool expandSchema(const std::string& schema, std::vector<std::string>& paths, std::string& error);

/// Reads at most one byte more than `limit`, however long the file is. "-" is standard input where `input` is
/// true. False, with the error told, for a file that cannot be read.
bool readSource(SchemaSource& source, std::size_t limit, bool input, std::string& error);

/// Reads all of some schemas, each a file or a folder.
bool readSchemas(const std::vector<std::string>& schemas, std::vector<SchemaSource>& sources,
                 std::string& error);

}  // namespace zqxml::zqcatc
