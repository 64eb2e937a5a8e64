// A schema file as a tree of elements, each with its place in the file.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics.h"

namespace zqxml::zqcatc {

/// A schema file in memory: the path as given, and its bytes.
struct SchemaSource {
  std::string path;
  std::string text;
};

struct Attribute {
  std::string name;
  std::string value;
  Position position;  ///< of the name
};

struct Element {
  std::string name;
  Position position;  ///< of the opening '<'
  std::vector<Attribute> attributes;
  std::vector<Element> children;
  std::string text;  ///< character data directly inside, joined

  /// Null when the attribute is not there.
  const Attribute* find(std::string_view attribute) const;
  /// Value of the attribute, "" when it is not there.
  const std::string& value(std::string_view attribute) const;
  /// Place of the attribute, of the element when it is not there.
  Position at(std::string_view attribute) const;
  /// First child of the name, null when there is none.
  const Element* child(std::string_view wanted) const;
};

/// Reads schema files and checks them against catalogue.xsd, which is part of the program.
///
/// Files are untrusted: they are read as UTF-8 whatever they declare; a document type, and with it every
/// entity, is refused; nothing outside the text is opened; size and nesting are bounded. One parser serves
/// any number of files; it belongs to one thread.
class SchemaParser {
 public:
  static constexpr std::size_t kMaxFileBytes = std::size_t{32} << 20;
  static constexpr int kMaxDepth = 32;
  static constexpr int kMaxErrorsPerFile = 20;

  SchemaParser();
  ~SchemaParser();
  SchemaParser(const SchemaParser&) = delete;
  SchemaParser& operator=(const SchemaParser&) = delete;

  /// The root element; nothing, with errors reported, when the file is not a valid schema file. Positions
  /// refer to `source.path`.
  std::optional<Element> parse(const SchemaSource& source, Diagnostics& diagnostics);

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace zqxml::zqcatc
