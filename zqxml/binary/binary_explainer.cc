#include <zqxml/binary/binary_explainer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/internal/body_reader.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/nesting_limit.h>
#include <zqxml/platform/format.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace zqxml {
namespace {

/// In the order of WirePart.
constexpr std::array kPartNames{"key",           "key again", "count", "byte count",   "size",
                                "length",        "text",      "value", "key encoding", "value encoding",
                                "unknown value", "skipped",   "unread"};
static_assert(kPartNames.size() == static_cast<std::size_t>(WirePart::kUnread) + 1);

constexpr const char* nameOf(WirePart part) {
  return kPartNames[static_cast<std::size_t>(part)];
}

constexpr const char* nameOf(BinaryEncodingType encoding) {
  switch (encoding) {
    case BinaryEncodingVarint:
      return "varint";
    case BinaryEncodingFixed64:
      return "8 bytes";
    case BinaryEncodingLengthDelimited:
      return "length-delimited";
    case BinaryEncodingFixed32:
      return "4 bytes";
    case BinaryEncodingSignedVarint:
      return "zigzag varint";
    default:
      return "none";
  }
}

/// In quotes, with what does not print as an escape. Bytes from 0x80 on pass when they are well-formed UTF-8.
std::string quoted(std::string_view bytes) {
  // Bytes that are no text come back changed from a conversion that replaces what is ill-formed.
  const bool isText = toUtf8(toUtf16(bytes)) == bytes;
  std::string out = "\"";
  for (char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == '"' || byte == '\\') {
      out += {'\\', byte};
    } else if (byte == '\n') {
      out += "\\n";
    } else if (byte == '\r') {
      out += "\\r";
    } else if (byte == '\t') {
      out += "\\t";
    } else if (code < 0x20 || code == 0x7f || (code >= 0x80 && !isText)) {
      out += formatText("\\x%02x", code);
    } else {
      out += byte;
    }
  }
  return out += '"';
}

std::string keyText(std::uint32_t key) {
  if (key == wire::kCollectionMarker) return "collection marker";
  return formatText("hash 0x%06x, encoding %u (%s)", wire::hashOfKey(key), wire::encodingOfKey(key),
                    nameOf(wire::encodingOfKey(key)));
}

/// Observer that turns what the decoder does into notes.
class Narrator {
 public:
  static constexpr bool kTraces = false;
  static constexpr bool kDecrypts = false;
  static constexpr bool kWatches = true;

  Narrator(std::string_view bytes, const std::function<void(const BinaryNote&)>& sink)
      : bytes_(bytes), sink_(sink) {}

  void header(std::uint64_t offset, const char* what, std::string value) {
    tell({offset, 4, 0, {}, what, std::move(value), false});
  }
  void problem(std::uint64_t offset, std::uint64_t length, std::string text) {
    tell({offset, length, depth(), path(), "problem", std::move(text), true});
  }
  /// The first failure is the cause; the others tell the objects around it, and so does its path.
  void failed(std::uint64_t offset) {
    if (reports_.empty()) reports_.emplace_back();  // NOCOVER: every failure is reported
    problem(offset, bytes_.size() - offset, std::move(reports_.front()));
  }

  template <class... Args>
  void report(const char* format, const Args&... args) {
    reports_.push_back(formatText(format, args...));
  }
  void body(const _ClassDef*) { levels_.push_back({path(), {}, {}, nullptr}); }
  void bodyEnd() { levels_.pop_back(); }
  void record(const FieldDef* field) {
    levels_.back().field = field;
    levels_.back().name = field == nullptr ? std::string() : std::string(field->getName());
    levels_.back().element.clear();
  }
  void element(std::uint32_t index, const char* side) {
    levels_.back().element = formatText(*side == 0 ? "[%u]" : "[%u].%s", index, side);
  }
  template <class Value>
  void part(WirePart part, std::uint64_t offset, std::uint64_t length, const Value& value) {
    if constexpr (std::same_as<Value, std::uint32_t>) {
      if (part == WirePart::kKey) nameKey(value);
    }
    const bool outside = part == WirePart::kUnread;
    tell({offset, length, depth(), outside ? std::string() : path(), nameOf(part), text(part, value), false});
  }

 private:
  /// An object being read.
  struct Level {
    std::string outer;  ///< path of the object
    std::string name;
    std::string element;
    const FieldDef* field = nullptr;
  };

  void tell(const BinaryNote& note) { sink_(note); }
  int depth() const { return levels_.empty() ? 0 : static_cast<int>(levels_.size()) - 1; }
  std::string path() const {
    if (levels_.empty()) return {};
    const Level& level = levels_.back();
    const char* dot = level.outer.empty() || level.name.empty() ? "" : ".";
    return level.outer + dot + level.name + level.element;
  }
  void nameKey(std::uint32_t key) {
    Level& level = levels_.back();
    if (level.field == nullptr && key != wire::kCollectionMarker) {
      level.name = formatText("?0x%06x", wire::hashOfKey(key));
    }
  }

  std::string text(WirePart, std::string_view value) const { return quoted(value); }
  std::string text(WirePart, double value) const { return formatText("%.17g", value); }
  std::string text(WirePart, float value) const { return formatText("%.9g", static_cast<double>(value)); }
  template <std::integral Value>
  std::string text(WirePart part, Value value) const {
    switch (part) {
      case WirePart::kKey:
      case WirePart::kRepeatedKey:
        return keyText(static_cast<std::uint32_t>(value));
      case WirePart::kByteCount:
      case WirePart::kSize:
      case WirePart::kLength:
        return std::to_string(value) + (value == 1 ? " byte" : " bytes");
      case WirePart::kKeyEncoding:
      case WirePart::kValueEncoding:
        return formatText("%u (%s)", value, nameOf(static_cast<BinaryEncodingType>(value)));
      case WirePart::kNumber:
        return std::to_string(value) + enumerator(static_cast<std::int32_t>(value));
      default:
        return std::to_string(value);
    }
  }
  /// Name of an enumeration's value, in parentheses.
  std::string enumerator(std::int32_t value) const {
    const FieldDef* field = levels_.back().field;
    if (field == nullptr) return {};  // NOCOVER: the value of an unknown field is another part
    if (!kEnumTypes.contains(field->getType())) return {};
    const _ClassDef* enumeration = catalogue::classOfField(*field);
    if (enumeration == nullptr) return {};  // NOCOVER: the compiler of catalogues asks for one
    const char* name = catalogue::enumeratorName(*enumeration, value);
    return name == nullptr ? std::string() : std::string(" (") + name + ")";
  }

  const std::string_view bytes_;
  const std::function<void(const BinaryNote&)>& sink_;
  std::vector<Level> levels_;
  std::vector<std::string> reports_;
};

}  // namespace

bool explainBinary(std::string_view bytes, const std::function<void(const BinaryNote&)>& sink) {
  Narrator narrator(bytes, sink);
  BinaryStream stream(const_cast<char*>(bytes.data()), bytes.size());  // only read
  int version = 0, tagId = 0, flag = 0;
  if (!BinarySerializer::getVersionAndTagIDFromBuffer(stream, version, tagId, flag)) {
    narrator.problem(0, bytes.size(), "The header of 8 bytes is not complete");
    return false;
  }
  const auto tag = static_cast<std::uint32_t>(tagId);
  const std::string name = XNMessageBase::getTagNameFromTagID(tag);
  narrator.header(0, "version", std::to_string(version) + (flag != 0 ? ", flag set" : ""));
  narrator.header(4, "tag id", formatText("0x%08x %s", tag, name));
  short subsystem = 0;
  int classIndex = 0;
  std::unique_ptr<XNMessageBase> object;
  if (catalogue::indicesFromTag(tag, subsystem, classIndex)) {
    object.reset(MessageAccess::create(subsystem, classIndex));
  } else {
    narrator.problem(8, 0, "The catalogue has no class with this tag id");
    object = std::make_unique<XNMessageBase>();
  }
  const bool known = MessageAccess::classDef(*object) != nullptr;
  const BinaryDecoding decoding{version, nullptr, NestingLimit::get()};
  BodyReader reader(bytes.size(), decoding, narrator);
  const bool complete = reader.body(*object, stream, bytes.size());
  if (!complete) narrator.failed(stream.position());
  return complete && known;
}

}  // namespace zqxml
