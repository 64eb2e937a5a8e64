#pragma once

#include <zqxml/platform/export.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace zqxml {

/// Overwrites `size` bytes with zeros in a way that the compiler does not leave out.
ZQXML_EXPORT void cleanse(void* data, std::size_t size) noexcept;

/// A text that leaves no trace in memory: its block, the whole capacity, is overwritten before it is freed,
/// and so is what knew its length, also when the text grows, is replaced or is moved from. Throws nothing but
/// std::bad_alloc; the text is then as it was. Threads: as a std::string.
template <typename CharT>
class secure_basic_string {
 public:
  /// @{
  /// What holds it, and what shows it.
  using String = std::basic_string<CharT>;
  using View = std::basic_string_view<CharT>;
  /// @}

  /// @{
  /// Empty, or a copy of a text; null is an empty one. Moving leaves `other` empty, and copies nothing.
  secure_basic_string() = default;
  explicit secure_basic_string(View text) { assign(text); }
  explicit secure_basic_string(const CharT* text)
      : secure_basic_string(text == nullptr ? View() : View(text)) {}
  secure_basic_string(const secure_basic_string& other) { assign(other.view()); }
  secure_basic_string(secure_basic_string&& other) noexcept = default;
  secure_basic_string& operator=(const secure_basic_string& other) {
    if (this != &other) assign(other.view());
    return *this;
  }
  secure_basic_string& operator=(secure_basic_string&& other) noexcept = default;
  /// @}
  /// Overwrites the text.
  ~secure_basic_string() = default;

  /// @{
  /// The text, valid until it changes; a pointer to it ends in a NUL, and is never null.
  View view() const { return text_ ? View(*text_) : View(); }
  operator View() const { return view(); }
  const CharT* c_str() const {
    static constexpr CharT kEmpty[1] = {};
    return text_ ? text_->c_str() : kEmpty;
  }
  const CharT* data() const { return c_str(); }
  /// @}
  /// The block of `size()` units, to write to. Null for an empty text.
  CharT* mutableData() { return text_ ? text_->data() : nullptr; }
  /// @{
  /// Units in the text.
  std::size_t size() const { return text_ ? text_->size() : 0; }
  std::size_t length() const { return size(); }
  bool empty() const { return size() == 0; }
  /// @}

  /// Replaces the text. `text` may be a part of it.
  void assign(View text) {
    Owner fresh(new String(text));
    text_ = std::move(fresh);
  }
  /// Puts the units at the end. `text` may be a part of it.
  void append(View text) {
    Owner fresh(new String);
    fresh->reserve(size() + text.size());
    fresh->append(view()).append(text);
    text_ = std::move(fresh);
  }
  /// Cuts the text, or fills it up with NUL units.
  void resize(std::size_t size) {
    Owner fresh(new String(size, CharT()));
    const View old = view().substr(0, size);
    String::traits_type::copy(fresh->data(), old.data(), old.size());
    text_ = std::move(fresh);
  }
  /// Overwrites and releases the text.
  void reset() noexcept { text_.reset(); }

  /// Unit by unit; takes longer the more of them agree.
  friend bool operator==(const secure_basic_string& a, const secure_basic_string& b) {
    return a.view() == b.view();
  }

 private:
  /// Ends a text: first its block, then the text itself, which tells where that was and how long.
  struct Wiper {
    void operator()(String* text) const noexcept {
      cleanse(text->data(), (text->capacity() + 1) * sizeof(CharT));
      std::destroy_at(text);
      cleanse(text, sizeof *text);
      ::operator delete(text);
    }
  };
  using Owner = std::unique_ptr<String, Wiper>;

  Owner text_;
};

/// A secure text in UTF-8.
using secure_string = secure_basic_string<char>;

}  // namespace zqxml
