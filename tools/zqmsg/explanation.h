#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zqxml {
struct BinaryNote;
}

namespace zqxml::tool {

class ObjectReader;
class Output;

/// The table that `inspect` prints: a line per run of bytes with its offset, the bytes, the field, what they
/// are and their value.
class Explanation {
 public:
  /// Writes to `output`, which must outlive the object.
  explicit Explanation(Output& output);

  /// Explains a message that starts at `offset` of its file; false when it cannot be read to its end.
  bool message(std::string_view bytes, std::uint64_t offset);
  /// The version field that a file of objects may start with.
  void versionField(std::string_view field);
  /// The same as message() for the record that `objects` stands at. `data` may be cut off.
  bool record(const ObjectReader& objects, std::string_view data);

 private:
  void note(const BinaryNote& told, std::string_view bytes, std::uint64_t offset);
  void line(std::uint64_t offset, std::string_view bytes, std::string_view field, std::string_view what,
            std::string_view value);

  Output& output_;
};

}  // namespace zqxml::tool
