// What the setters of texts take: any text that a caller may have, without a copy that it could avoid.
//
//   alert.setLoginName("operator");        copied into the message, which keeps the memory that it has
//   alert.setLoginName(view);              likewise
//   alert.setLoginName(std::move(text));   moved; `text` is left valid, with any content
//   alert.setLoginName(nullptr);           does not compile, nor does a number, or wide text for narrow
//
// A null `const char*` that is only known at run time is an empty text; a literal ends at its first NUL. Such
// an argument lives as long as the call, and is made by the call; it is not a type to keep.
#pragma once

#include <zqxml/message/bstring.h>
#include <zqxml/message/pstring.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// What the generated accessors call, and what they take. Programs call the accessors.
namespace zqxml::typed {

/// target.assign(text). Not inlined: what assignText leaves over.
template <class Char>
[[gnu::noinline]] void assignAnyText(std::basic_string<Char>& target, std::basic_string_view<Char> text) {
  target.assign(text);
}

/// target.assign(text), in line where both are short enough for the room that a string has in itself.
template <class Char>
inline void assignText(std::basic_string<Char>& target, std::basic_string_view<Char> text) {
  const std::size_t room = std::basic_string<Char>().capacity();  // known when this is compiled
  // A part of the target itself is left to the library, which copies what overlaps.
  const bool isPart =
      reinterpret_cast<std::uintptr_t>(text.data()) - reinterpret_cast<std::uintptr_t>(&target) <
      sizeof target;
  if (text.size() > room || target.capacity() > room || isPart) return assignAnyText(target, text);
  // A string without a block of its own has nothing to free or to keep: one made anew does as well.
  std::destroy_at(&target);
  std::construct_at(&target, text);
}

/// A text to copy, or to move when it came as an rvalue.
template <class Char>
class TextArg {
 public:
  /// @{
  /// The standard's types for texts of such units.
  using Text = std::basic_string<Char>;
  using View = std::basic_string_view<Char>;
  /// @}

  /// @{
  /// A text to copy; null is an empty one. It has to stay as it is until assignTo.
  TextArg(const Char* text) : view_(text == nullptr ? View() : View(text)) {}
  TextArg(View text) : view_(text) {}
  TextArg(const Text& text) : view_(text) {}
  /// @}
  /// A text to move.
  TextArg(Text&& text) : view_(text), moved_(&text) {}
  /// Whatever else turns into a view by itself.
  template <class T>
  requires(std::convertible_to<const T&, View> && !std::convertible_to<const T&, const Char*>)
      TextArg(const T& text)
      : view_(text) {}
  /// No text is meant by it, or a setter that is not there.
  TextArg(std::nullptr_t) = delete;
  TextArg(const TextArg&) = delete;
  TextArg& operator=(const TextArg&) = delete;

  /// Gives the text to `target`. Once: a text that is moved is gone.
  void assignTo(Text& target) const {
    if (moved_ != nullptr && moved_ != &target)
      target = std::move(*moved_);
    else
      assignText(target, view_);
  }

 private:
  View view_;
  Text* moved_ = nullptr;
};

/// @{
/// What setters of `string` and of `wstring` fields take.
using StringArg = TextArg<char>;
using WStringArg = TextArg<char16_t>;
/// @}

/// Bytes: a narrow text or a bstring. A password is refused, for it would lose its encryption type and what
/// hides it.
class BytesArg : public StringArg {
 public:
  using StringArg::StringArg;
  /// @{
  /// Its bytes, copied or moved.
  BytesArg(const bstring& bytes) : StringArg(bytes.str()) {}
  BytesArg(bstring&& bytes) : StringArg(std::move(bytes.str())) {}
  /// @}
  BytesArg(const pstring&) = delete;
};

/// A password: plain text, or a pstring with the encryption type that it has.
class PasswordArg : public StringArg {
 public:
  using StringArg::StringArg;
  /// @{
  /// Text, copied or moved, and encryption type.
  PasswordArg(const pstring& password)
      : StringArg(password.str()), encryptionType_(password.getEncryptionType()) {}
  PasswordArg(pstring&& password)
      : StringArg(std::move(password.str())), encryptionType_(password.getEncryptionType()) {}
  /// @}

  /// 1, plain text, but for a pstring, which has its own.
  int encryptionType() const { return encryptionType_; }

 private:
  int encryptionType_ = 1;
};

}  // namespace zqxml::typed
