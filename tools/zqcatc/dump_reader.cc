#include "dump_reader.h"

#include <zqxml/catalogue/records.h>

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "text_positions.h"

namespace zqxml::zqcatc {

namespace {

using Json = nlohmann::json;

/// Levels of lists and objects; a dump has 9.
constexpr int kMaxDumpDepth = 16;

/// Thrown inside this file: what is wrong, without the file's name.
struct BadDump {
  std::string text;
};

/// A value and where it stands: "subsystems[0].classes[3].index".
struct Node {
  const Json& value;
  std::string path;

  [[noreturn]] void fail(std::string_view wanted) const {
    throw BadDump{cat(path.empty() ? "the document" : path, " is no ", wanted,
                      "; give a file that 'zqmsg dump-catalogue' printed")};
  }
  Node at(const char* key) const {
    if (!value.is_object()) fail("object");
    const auto found = value.find(key);
    const std::string inner = path.empty() ? key : cat(path, ".", key);
    if (found == value.end())
      throw BadDump{cat(inner, " is missing; give a file that 'zqmsg dump-catalogue' printed")};
    return {*found, inner};
  }
  template <class Visit>
  void each(Visit visit) const {
    if (!value.is_array()) fail("list");
    for (std::size_t i = 0; i < value.size(); ++i) visit(Node{value[i], cat(path, "[", i, "]")});
  }
  template <class Number>
  Number number(std::int64_t low, std::int64_t high) const {
    const bool inside =
        value.is_number_unsigned() ? value.get<std::uint64_t>() <= static_cast<std::uint64_t>(high) &&
                                         static_cast<std::int64_t>(value.get<std::uint64_t>()) >= low
        : value.is_number_integer() ? value.get<std::int64_t>() >= low && value.get<std::int64_t>() <= high
                                    : false;
    if (!inside) fail(cat("number from ", low, " to ", high));
    return static_cast<Number>(value.get<std::int64_t>());
  }
  std::string text() const {
    if (!value.is_string()) fail("text");
    return value.get<std::string>();
  }
  bool flag() const {
    if (!value.is_boolean()) fail("true or false");
    return value.get<bool>();
  }
};

constexpr std::int64_t kMostUint32 = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t kLeastInt32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMostInt32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kMostInt16 = std::numeric_limits<std::int16_t>::max();

/// -1 for what is no lower-case hexadecimal digit.
int hexDigit(char c) {
  return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::optional<std::string> annotationOf(const Node& node) {
  if (node.value.is_null()) return std::nullopt;
  const std::string hex = node.text();
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    const int high = hexDigit(hex[i]);
    const int low = hexDigit(hex[i + 1]);
    if (high < 0 || low < 0) node.fail("record in hexadecimal digits");
    bytes += static_cast<char>(high << 4 | low);
  }
  if (hex.size() % 2 != 0 || bytes.size() < 2) node.fail("record in hexadecimal digits");
  return bytes;
}

class DumpReader {
 public:
  explicit DumpReader(Position file) : file_(file) {}

  Snapshot read(const Json& document) {
    Snapshot snapshot;
    std::set<std::string> names;
    std::set<int> slots;
    Node{document, ""}.at("subsystems").each([&](const Node& node) {
      snapshot.subsystems.push_back(subsystem(node));
      unique(names, snapshot.subsystems.back().name, node);
      unique(slots, snapshot.subsystems.back().slot, node);
    });
    snapshot.index();
    return snapshot;
  }

 private:
  template <class Key>
  static void unique(std::set<Key>& seen, const Key& key, const Node& node) {
    if (!seen.insert(key).second)
      throw BadDump{cat(node.path, " has the name or the number of an earlier one (", key, ")")};
  }

  SubsystemShot subsystem(const Node& node) {
    SubsystemShot shot;
    shot.position = file_;
    shot.name = node.at("name").text();
    shot.slot = node.at("slot").number<int>(0, kSubsystemCount - 1);
    shot.records = node.at("records").number<int>(0, kMaxRecords);
    shot.old = node.at("old").flag();
    std::set<std::string> names;
    std::set<int> indices;
    node.at("classes").each([&](const Node& inner) {
      shot.classes.push_back(record(inner));
      unique(names, shot.classes.back().name, inner);
      unique(indices, shot.classes.back().index, inner);
    });
    return shot;
  }

  ClassShot record(const Node& node) {
    ClassShot shot;
    shot.position = file_;
    shot.name = node.at("name").text();
    shot.index = node.at("index").number<int>(0, kMaxRecords - 1);
    shot.id = node.at("id").number<std::uint32_t>(0, kMostUint32);
    shot.isEnumeration = node.at("enum").flag();
    std::set<std::string> names;
    node.at("fields").each([&](const Node& inner) {
      FieldShot made = field(inner);
      if (made.type == FDT_NONE) {
        shot.selfAnnotation = std::move(made.annotation);
        return;
      }
      unique(names, made.name, inner);
      shot.fields.push_back(std::move(made));
    });
    node.at("defaults").each([&](const Node& inner) { addDefault(inner, shot); });
    return shot;
  }

  FieldShot field(const Node& node) {
    FieldShot shot;
    shot.position = file_;
    shot.name = node.at("name").text();
    shot.type = node.at("type").number<unsigned>(0, 255);
    shot.hash = node.at("hash").number<std::uint32_t>(0, kMostUint32);
    shot.memNum = node.at("memNum").number<int>(0, kMostInt16);
    shot.index = node.at("index").number<int>(0, kMostInt16);
    shot.label = node.at("locz").number<std::int32_t>(kLeastInt32, kMostInt32);
    shot.annotation = annotationOf(node.at("annotation"));
    node.at("refs").each([&](const Node& inner) {
      if (shot.references.size() == 2) inner.fail("reference: a field has two at most");
      const std::vector<Node> numbers = pair(inner);
      shot.references.push_back({numbers[0].number<int>(0, 255), numbers[1].number<int>(0, kMostInt32)});
    });
    return shot;
  }

  /// Members are numbered by their position, so the field is where its number says.
  static void addDefault(const Node& node, ClassShot& owner) {
    const std::vector<Node> parts = pair(node);
    const auto member = parts[0].number<std::size_t>(0, kMostInt16);
    if (member >= owner.fields.size()) parts[0].fail("member number of the class");
    owner.fields[member].defaultText = parts[1].text();
  }

  static std::vector<Node> pair(const Node& node) {
    std::vector<Node> parts;
    if (node.value.is_array() && node.value.size() == 2)
      node.each([&](const Node& part) { parts.push_back(part); });
    if (parts.empty()) node.fail("list of two");
    return parts;
  }

  Position file_;
};

}  // namespace

std::optional<Snapshot> readDump(const SchemaSource& source, Diagnostics& diagnostics) {
  const Position file{source.path};
  if (source.text.size() > kMaxDumpBytes) {
    diagnostics.error(file,
                      cat("the file is larger than ", kMaxDumpBytes >> 20, " MiB; no dump is so large"));
    return std::nullopt;
  }
  try {
    return DumpReader(file).read(Json::parse(source.text, [](int depth, Json::parse_event_t, Json&) {
      if (depth > kMaxDumpDepth) throw BadDump{"the document nests deeper than a dump does"};
      return true;
    }));
  } catch (const Json::parse_error& error) {
    const TextPositions places(source.path, source.text);
    const std::size_t offset = error.byte == 0 ? 0 : error.byte - 1;
    diagnostics.error(places.position(std::min(offset, source.text.size())),
                      "this is no JSON from here on; give a schema folder, or a file that "
                      "'zqmsg dump-catalogue' printed");
  } catch (const Json::exception&) {
    diagnostics.error(file,
                      "the file holds a number that no catalogue has; give a file that "
                      "'zqmsg dump-catalogue' printed");
  } catch (const BadDump& bad) {
    diagnostics.error(file, bad.text);
  }
  return std::nullopt;
}

}  // namespace zqxml::zqcatc
