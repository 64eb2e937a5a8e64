#include "source_files.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

namespace zqxml::zqcatc {

namespace fs = std::filesystem;

namespace {

void readStream(std::istream& in, std::size_t limit, std::string& text) {
  std::vector<char> chunk(std::size_t{1} << 16);
  while (in && text.size() <= limit) {
    in.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    text.append(chunk.data(), static_cast<std::size_t>(in.gcount()));
  }
}

}  // namespace

bool expandSchema(const std::string& schema, std::vector<std::string>& paths, std::string& error) {
  std::error_code code;
  if (!fs::is_directory(schema, code)) {
    paths.push_back(schema);
    return true;
  }
  std::vector<std::string> found;
  for (fs::directory_iterator entry(schema, code), end; !code && entry != end; entry.increment(code))
    if (entry->path().extension() == ".xml") found.push_back(entry->path().string());
  if (code) error = cat("cannot read folder ", schema, ": ", code.message());
  if (!code && found.empty()) error = cat("there is no *.xml file in folder ", schema);
  std::sort(found.begin(), found.end());
  paths.insert(paths.end(), found.begin(), found.end());
  return error.empty();
}

bool readSource(SchemaSource& source, std::size_t limit, bool input, std::string& error) {
  if (input && source.path == "-") {
    readStream(std::cin, limit, source.text);
    if (std::cin.bad()) error = "cannot read standard input";
    return error.empty();
  }
  std::ifstream file(source.path, std::ios::binary);
  const int reason = errno;
  readStream(file, limit, source.text);
  if (!file.is_open())
    error = cat("cannot read ", source.path, ": ", std::generic_category().message(reason));
  if (file.bad()) error = cat("cannot read ", source.path);
  return error.empty();
}

bool readSchemas(const std::vector<std::string>& schemas, std::vector<SchemaSource>& sources,
                 std::string& error) {
  std::vector<std::string> paths;
  for (const std::string& schema : schemas)
    if (!expandSchema(schema, paths, error)) return false;
  for (const std::string& path : paths)
    if (!readSource(sources.emplace_back(SchemaSource{path, {}}), SchemaParser::kMaxFileBytes, false, error))
      return false;
  return true;
}

}  // namespace zqxml::zqcatc
