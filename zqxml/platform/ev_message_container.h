// EvMessageContainer: an event as a process holds it, an id and typed arguments.
#pragma once

#include <zqxml/platform/export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zqxml {

/// The arguments of an event: a linked list of values that know their kind. The list owns its nodes. Threads:
/// as any container of the standard library.
class ZQXML_EXPORT ArgumentInfo {
 public:
  /// What an argument is, by its type in C; the numbers are those of the suite's events.
  enum class Kind : std::uint8_t {
    kInt = 5,             ///< 32 bits
    kUnsignedInt = 6,     ///< 32 bits
    kLong = 7,            ///< 64 bits
    kUnsignedLong = 8,    ///< 64 bits
    kInt64 = 9,           ///< 64 bits
    kUnsignedInt64 = 10,  ///< 64 bits
    kString = 11,         ///< any bytes
  };

  /// One argument. Which of the values counts is told by the kind.
  struct Node {
    Kind kind = Kind::kInt;      ///< which of the values counts
    std::uint64_t number = 0;    ///< of integers; the signed ones sign-extended to 64 bits
    std::string text;            ///< of strings, with the length that was stored
    std::unique_ptr<Node> next;  ///< null at the end
  };

  /// @{
  /// An empty list; a list that is moved from is another valid one.
  ArgumentInfo() = default;
  ~ArgumentInfo() { Clear(); }
  ArgumentInfo(ArgumentInfo&& other) noexcept { swap(other); }
  ArgumentInfo& operator=(ArgumentInfo&& other) noexcept {
    swap(other);
    return *this;
  }
  /// @}

  /// How many arguments there are.
  int NoOfArgs() const { return count_; }
  /// Removes all arguments.
  void Clear() noexcept;
  /// The first argument, null when there is none; the others follow by Node::next. Valid until Clear.
  const Node* first() const { return first_.get(); }

  /// @{
  /// Puts a number at the end. Each of these operators throws nothing but std::bad_alloc; the list is then as
  /// it was.
  ArgumentInfo& operator<<(int value) { return append(Kind::kInt, widened(value)); }
  ArgumentInfo& operator<<(unsigned value) { return append(Kind::kUnsignedInt, value); }
  ArgumentInfo& operator<<(long value) { return append(Kind::kLong, widened(value)); }
  ArgumentInfo& operator<<(unsigned long value) { return append(Kind::kUnsignedLong, value); }
  ArgumentInfo& operator<<(long long value) { return append(Kind::kInt64, widened(value)); }
  ArgumentInfo& operator<<(unsigned long long value) { return append(Kind::kUnsignedInt64, value); }
  /// @}
  /// Puts a text at the end: up to the first NUL; null is an empty one.
  ArgumentInfo& operator<<(const char* text) {
    return *this << std::string_view(text == nullptr ? "" : text);
  }
  /// @{
  /// Puts a text at the end, with its length, so that NULs are kept.
  ArgumentInfo& operator<<(std::string_view text) { return append(Kind::kString, 0, text); }
  ArgumentInfo& operator<<(const std::string& text) { return *this << std::string_view(text); }
  /// @}

 private:
  static std::uint64_t widened(std::int64_t value) { return static_cast<std::uint64_t>(value); }
  ArgumentInfo& append(Kind kind, std::uint64_t number, std::string_view text = {});
  void swap(ArgumentInfo& other) noexcept {
    std::swap(first_, other.first_);
    std::swap(last_, other.last_);
    std::swap(count_, other.count_);
  }

  std::unique_ptr<Node> first_;
  Node* last_ = nullptr;
  int count_ = 0;
};

/// An event: the id of its text, and the arguments of that text. Threads: as any container of the standard
/// library.
class EvMessageContainer {
 public:
  /// @{
  /// An event without arguments; without an id it has 0.
  EvMessageContainer() = default;
  explicit EvMessageContainer(int messageId) : messageId_(messageId) {}
  /// @}

  /// @{
  /// The id of the event's text.
  int getMessageId() const { return messageId_; }
  void setMessageId(int messageId) { messageId_ = messageId; }
  /// @}
  /// @{
  /// The arguments, which stay the event's.
  ArgumentInfo& getArguments() { return arguments_; }
  const ArgumentInfo& getArguments() const { return arguments_; }
  /// @}

  /// Puts an argument at the end, as ArgumentInfo does.
  template <typename Value>
  EvMessageContainer& operator<<(const Value& value) {
    arguments_ << value;
    return *this;
  }

 private:
  int messageId_ = 0;
  ArgumentInfo arguments_;
};

}  // namespace zqxml
