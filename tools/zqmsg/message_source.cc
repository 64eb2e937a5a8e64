#include "tools/zqmsg/message_source.h"

#include <limits>

#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/session.h"

namespace zqxml::tool {
namespace {

// What the 32-bit sizes of the binary form can count; more is no message in any form.
constexpr std::uint64_t kMostBytes = std::numeric_limits<std::uint32_t>::max();

}  // namespace

Form formOf(ByteSource& source, std::optional<Form> claimed) {
  const std::string_view head = source.peek(kDetectionBytes);
  if (claimed && mayBe(*claimed, head)) return *claimed;
  const std::optional<Form> detected = detectForm(head);
  if (claimed && detected) {
    throw Failure(kFailed, source.name(),
                  "is not in the form " + std::string(formName(*claimed)) + " but in " +
                      std::string(formName(*detected)))
        .advise("leave --from out, or say --from " + std::string(formName(*detected)));
  }
  if (claimed) return *claimed;
  if (head.empty()) throw Failure(kFailed, source.name(), "is empty");
  if (!detected) {
    throw Failure(kFailed, source.name(), "is neither XML nor a binary message of a known class")
        .advise("if it is one all the same, say which form it has with --from");
  }
  return *detected;
}

std::string readWhole(ByteSource& source) {
  std::string bytes;
  source.read(bytes, kMostBytes);
  if (!source.peek(1).empty()) throw Failure(kFailed, source.name(), "is larger than a message can be");
  return bytes;
}

MessagePtr onlyMessage(const std::string& file, Session& session) {
  MessageSource source(file, std::nullopt, session);
  MessagePtr message = source.next();
  if (message == nullptr) throw Failure(kFailed, source.name(), "holds no message");
  if (source.next() != nullptr)
    throw Failure(kFailed, source.name(), "holds more than one message")
        .advise("'zqmsg convert --to xml -o FOLDER/' makes a file of each");
  return message;
}

MessageSource::MessageSource(const std::string& file, std::optional<Form> form, Session& session,
                             std::optional<RecordFormat> format)
    : session_(session),
      source_(file),
      form_(format ? Form::kObjects : formOf(source_, form)),
      objects_(source_, format) {}

std::string MessageSource::where() const {
  return form_ == Form::kObjects ? name() + ": object " + std::to_string(number_) : name();
}

bool MessageSource::skip() {
  if (form_ != Form::kObjects || !objects_.next(bytes_)) return false;
  ++number_;
  return true;
}

MessagePtr MessageSource::next() {
  bytes_.clear();
  if (form_ == Form::kObjects) {
    if (!objects_.next(bytes_)) return nullptr;
  } else {
    if (number_ != 0) return nullptr;
    bytes_ = readWhole(source_);
  }
  ++number_;
  const Form messageForm = form_ == Form::kObjects ? Form::kBinary : form_;
  MessagePtr message = decode(messageForm, bytes_, where(), session_.log);
  for (const std::string& line : session_.log.take()) session_.console.warn(where(), line);
  return message;
}

}  // namespace zqxml::tool
