// JsonMessageBuilder: turns the events of a JSON document into a message. It knows nothing of JSON's text.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/message/xn_message_base.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/zqmsg/json/json_reader.h"
#include "tools/zqmsg/json/json_value.h"

namespace zqxml::tool {

/// Serves one document. Every event answers whether it fits; the first that does not is told by reading(),
/// without its place, and no event may follow.
class JsonMessageBuilder {
 public:
  /// `masked` as of readJson; `maxLevels` objects may be nested, 0 for any number.
  JsonMessageBuilder(bool masked, std::size_t maxLevels);

  bool value(const JsonValue& value);
  bool startObject();
  bool key(std::string_view name);
  bool endObject();
  bool startArray();
  bool endArray();

  /// Notes a fault about what the next event would have been about; always false.
  bool fail(JsonReading::Fault fault, const std::string& what, std::string advice = {});
  /// The message, or the fault.
  JsonReading take();

 private:
  struct MemberValue;
  struct ElementValue;

  /// One side of a pair of a map.
  using Side = std::variant<std::monostate, std::int64_t, std::string, std::unique_ptr<XNMessageBase>>;

  /// What is open.
  enum class Level {
    kDocument,  ///< the outermost object, which names the class
    kObject,
    kList,
    kMap,   ///< an array of pairs
    kPair,  ///< an array of a key and a value
  };
  struct Frame {
    Level level;
    XNMessageBase* message = nullptr;  ///< of kObject it; of the others the one that has the field
    const FieldDef* field = nullptr;   ///< of kObject the member whose value comes next
    std::size_t count = 0;             ///< elements, pairs or sides so far
    std::vector<bool> seen{};          ///< of kObject the members that were named
    Side key{}, mapped{};              ///< of kPair
  };

  bool misfit(const std::string& what) { return fail(JsonReading::Fault::kUnfit, what); }
  bool needsObject();
  std::string path() const;
  bool openMessage();
  bool nameClass(std::string_view name);
  bool nameMember(std::string_view name);
  bool openObject(XNMessageBase& message);
  bool openMember(Frame& frame);
  bool openElement(Frame& frame);
  bool openSide(Frame& frame);
  bool isMask(const JsonValue& value) const;
  bool pairSide(Frame& frame, const JsonValue& value);
  bool closePair();

  const bool masked_;
  const std::size_t maxLevels_;
  std::size_t levels_ = 0;
  std::vector<Frame> frames_;
  JsonReading reading_;
};

}  // namespace zqxml::tool
