// Common body of the text types bstring and cdata: a std::string with the standard string's interface.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>

namespace zqxml {

/// Holds one std::string and forwards to it; `Derived` is the class that users see. Holds any bytes, NUL
/// included. Like a std::string, a value belongs to one thread at a time. `at` and `substr` throw
/// std::out_of_range.
template <class Derived>
class TextWrapper {
 public:
  using iterator = std::string::iterator;                              ///< bytes, to change
  using const_iterator = std::string::const_iterator;                  ///< bytes, to read
  using reverse_iterator = std::string::reverse_iterator;              ///< from the end, to change
  using const_reverse_iterator = std::string::const_reverse_iterator;  ///< from the end, to read

  /// Texts may be ended through this class.
  virtual ~TextWrapper() = default;

  /// Takes the bytes of the other one.
  Derived& assign(const Derived& other) { return assign(other.str()); }
  /// Takes the bytes of `text`.
  Derived& assign(const std::string& text) {
    text_ = text;
    return self();
  }
  /// Takes `size` bytes at `data`, NUL bytes included.
  Derived& assign(const char* data, std::size_t size) {
    text_.assign(data, size);
    return self();
  }
  /// Puts the bytes of `text` at the end.
  Derived& append(const std::string& text) {
    text_ += text;
    return self();
  }
  /// Puts `size` bytes at the end, NUL bytes included.
  Derived& append(const char* data, std::size_t size) {
    text_.append(data, size);
    return self();
  }

  /// The byte at `position`, not checked.
  char& operator[](std::size_t position) { return text_[position]; }
  /// The byte at `position`, not checked.
  const char& operator[](std::size_t position) const { return text_[position]; }
  /// The byte at `position`; std::out_of_range when there is none.
  char& at(std::size_t position) { return text_.at(position); }
  /// The byte at `position`; std::out_of_range when there is none.
  const char& at(std::size_t position) const { return text_.at(position); }
  /// The bytes, with a NUL behind them that does not count. Valid until the text changes.
  const char* data() const { return text_.data(); }
  /// The same.
  const char* c_str() const { return text_.c_str(); }
  /// The text itself, to change.
  std::string& str() { return text_; }
  /// The text itself, to read.
  const std::string& str() const { return text_; }

  std::size_t size() const { return text_.size(); }      ///< bytes
  std::size_t length() const { return text_.length(); }  ///< bytes
  bool empty() const { return text_.empty(); }           ///< no bytes
  void clear() { text_.clear(); }                        ///< leaves no bytes

  /// Iterators over the bytes, valid until the text changes.
  iterator begin() { return text_.begin(); }
  iterator end() { return text_.end(); }                              ///< likewise
  const_iterator begin() const { return text_.begin(); }              ///< likewise
  const_iterator end() const { return text_.end(); }                  ///< likewise
  reverse_iterator rbegin() { return text_.rbegin(); }                ///< likewise
  reverse_iterator rend() { return text_.rend(); }                    ///< likewise
  const_reverse_iterator rbegin() const { return text_.rbegin(); }    ///< likewise
  const_reverse_iterator rend() const { return text_.rend(); }        ///< likewise
  const_iterator cbegin() const { return text_.cbegin(); }            ///< likewise
  const_iterator cend() const { return text_.cend(); }                ///< likewise
  const_reverse_iterator crbegin() const { return text_.crbegin(); }  ///< likewise
  const_reverse_iterator crend() const { return text_.crend(); }      ///< likewise

  /// Below 0, 0 or above 0, as std::string compares, by unsigned bytes. QUIRK: not const; callers that are
  /// compiled against it rely on the mutable form.
  int compare(const Derived& other) { return text_.compare(other.str()); }
  /// The same with a std::string.
  int compare(const std::string& text) { return text_.compare(text); }

  Derived& operator+=(const Derived& other) { return append(other.str()); }  ///< append
  Derived& operator+=(const std::string& text) { return append(text); }      ///< append
  /// Puts the byte at the end.
  Derived& operator+=(char byte) {
    text_ += byte;
    return self();
  }

  /// The bytes from `position`, at most `count` of them; std::out_of_range when `position` lies past the end.
  Derived substr(int position, int count) const {
    return Derived(text_.substr(static_cast<std::size_t>(position), static_cast<std::size_t>(count)));
  }

  friend bool operator==(const Derived& a, const Derived& b) { return a.str() == b.str(); }  ///< by bytes
  friend bool operator==(const Derived& a, const std::string& b) { return a.str() == b; }    ///< by bytes
  /// The bytes of both, as a std::string.
  friend std::string operator+(const Derived& a, const Derived& b) { return a.str() + b.str(); }
  /// The bytes of both, as a std::string.
  friend std::string operator+(const Derived& a, const std::string& b) { return a.str() + b; }
  /// The bytes of both, as a std::string.
  friend std::string operator+(const std::string& a, const Derived& b) { return a + b.str(); }
  /// Writes the bytes as they stand.
  friend std::ostream& operator<<(std::ostream& out, const Derived& value) { return out << value.str(); }

 protected:
  /// For the derived class, which is what users make: empty, of a text, copied and moved as a std::string is.
  TextWrapper() = default;
  explicit TextWrapper(std::string text) : text_(std::move(text)) {}  ///< likewise
  TextWrapper(const TextWrapper&) = default;                          ///< likewise
  TextWrapper(TextWrapper&&) noexcept = default;                      ///< likewise
  TextWrapper& operator=(const TextWrapper&) = default;               ///< likewise
  TextWrapper& operator=(TextWrapper&&) noexcept = default;           ///< likewise

 private:
  Derived& self() { return static_cast<Derived&>(*this); }

  std::string text_;
};

}  // namespace zqxml
