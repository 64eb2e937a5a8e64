#include "tools/zqmsg/message_source.h"

#include <limits>

#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/session.h"

namespace zqxml::tool {
namespace {

// What the 32-bit sizes of the binary form can count; more is no message in any form.
constexpr std::uint64_t kMostBytes = std::numeric_limits<std::uint32_t>::max();

}  // namespace

namespace {

struct Detected {
  std::optional<Form> form;
  bool isEmpty = false;
};

/// From as much of the input as is needed: who writes it may wait for an answer to its first message.
Detected detect(ByteSource& source) {
  std::size_t wanted = kLeastDetectionBytes;
  for (;;) {
    const std::string_view head = source.peekAtLeast(wanted).substr(0, kDetectionBytes);
    const std::optional<Form> form = detectForm(head);
    const bool isAll = head.size() < wanted || head.size() == kDetectionBytes;
    if (isAll || (form && !mayChange(*form, head))) return {form, head.empty()};
    wanted = head.size() + 1;
  }
}

Failure contradiction(const ByteSource& source, Form claimed, Form detected) {
  const std::string option = "--from " + std::string(formName(detected));
  // That it holds objects is claimed by 'zqmsg objects' too, which has no such option.
  return Failure(kFailed, source.name(),
                 "is not in the form " + std::string(formName(claimed)) + " but in " +
                     std::string(formName(detected)))
      .advise(claimed == Form::kObjects ? "'zqmsg convert " + option + "' reads it"
                                        : "leave --from out, or say " + option);
}

}  // namespace

Form formOf(ByteSource& source, std::optional<Form> claimed) {
  // Of lines the first may be a bad one, as any other.
  if (claimed == Form::kJsonl) return *claimed;
  if (claimed) {
    const std::string_view head = source.peekAtLeast(kLeastDetectionBytes).substr(0, kDetectionBytes);
    const std::optional<Form> detected = mayBe(*claimed, head) ? claimed : detectForm(head);
    if (detected && detected != claimed) throw contradiction(source, *claimed, *detected);
    return *claimed;
  }
  const Detected detected = detect(source);
  if (detected.isEmpty) throw Failure(kFailed, source.name(), "is empty");
  if (!detected.form) {
    throw Failure(kFailed, source.name(), "is neither XML, nor JSON, nor a binary message of a known class")
        .advise("if it is one all the same, say which form it has with --from");
  }
  return *detected.form;
}

std::string readWhole(ByteSource& source) {
  std::string bytes;
  // What says its size is not read for nothing.
  if (source.size() <= kMostBytes) source.read(bytes, kMostBytes);
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
  if (form_ == Form::kObjects) return name() + ": object " + std::to_string(number_);
  if (form_ == Form::kJsonl) return name() + ": line " + std::to_string(line_);
  return name();
}

bool MessageSource::isOneOfMany() {
  return form_ == Form::kObjects || (form_ == Form::kJsonl && (number_ > 1 || !source_.peek(1).empty()));
}

bool MessageSource::takeLine() {
  while (source_.readLine(bytes_, kMostBytes)) {
    ++line_;
    if (bytes_.find_first_not_of(" \t\r") != std::string::npos) return true;
    bytes_.clear();
  }
  return false;
}

bool MessageSource::take() {
  bytes_.clear();
  if (form_ == Form::kObjects) {
    if (!objects_.next(bytes_)) return false;
  } else if (form_ == Form::kJsonl) {
    if (!takeLine()) return false;
  } else {
    if (number_ != 0) return false;
    bytes_ = readWhole(source_);
  }
  ++number_;
  return true;
}

MessagePtr MessageSource::message() {
  MessagePtr message = decode(form_, bytes_, where(), session_.log);
  for (const std::string& line : session_.log.take()) session_.console.warn(where(), line);
  return message;
}

}  // namespace zqxml::tool
