#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/zqmsg/byte_source.h"
#include "tools/zqmsg/codec.h"
#include "tools/zqmsg/form.h"
#include "tools/zqmsg/object_stream.h"

namespace zqxml::tool {

struct Session;

/// The messages of one input, one after another: one of a file of a single message, any number of a file of
/// objects or of lines. Only the message at hand is in memory. Failures are thrown as Failure; what the
/// library lost on the way is warned about.
class MessageSource {
 public:
  /// Opens the input; "-" is standard input. Without `form`, or without the format of a
  /// file of objects, that is detected. With `format` the input is a file of objects.
  MessageSource(const std::string& file, std::optional<Form> form, Session& session,
                std::optional<RecordFormat> format = std::nullopt);

  Form form() const { return form_; }
  const std::string& name() const { return source_.name(); }
  /// ByteSource::onWait.
  void onWait(std::function<void()> call) { source_.onWait(std::move(call)); }

  /// The next message, null at the end.
  MessagePtr next() { return take() ? message() : nullptr; }
  /// Takes the bytes of the next message; false at the end. A failure ends the input.
  bool take();
  /// The message of the bytes that were taken. Behind a failure the next one can be taken all the same.
  MessagePtr message();
  /// Whether the message that was taken is one of several: an object always is, a line unless it is alone.
  bool isOneOfMany();

  /// Bytes of the input that are read, and all that it has, 0 when that is not known.
  std::uint64_t position() const { return source_.position(); }
  std::uint64_t size() const { return source_.size(); }
  /// The bytes that take() took.
  const std::string& bytes() const { return bytes_; }
  /// Number of the message that was taken, from 1.
  std::uint64_t number() const { return number_; }
  /// What messages call it: the input's name, with the number of the object or line where there may be
  /// several.
  std::string where() const;

 private:
  bool takeLine();

  Session& session_;
  ByteSource source_;
  Form form_;
  ObjectReader objects_;
  std::string bytes_;
  std::uint64_t number_ = 0;
  std::uint64_t line_ = 0;
};

/// The message of an input that holds just one, in any form. Throws Failure.
MessagePtr onlyMessage(const std::string& file, Session& session);

/// The form of an input, from its first bytes; `claimed` when they do not speak against it. Throws Failure
/// when it cannot be told, or the input is another form than the claimed one.
Form formOf(ByteSource& source, std::optional<Form> claimed);

/// All of an input that holds one message. Throws Failure when there is more than any form can hold.
std::string readWhole(ByteSource& source);

}  // namespace zqxml::tool
