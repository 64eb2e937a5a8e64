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
  using iterator = std::string::iterator;
  using const_iterator = std::string::const_iterator;
  using reverse_iterator = std::string::reverse_iterator;
  using const_reverse_iterator = std::string::const_reverse_iterator;

  virtual ~TextWrapper() = default;

  Derived& assign(const Derived& other) { return assign(other.str()); }
  Derived& assign(const std::string& text) {
    text_ = text;
    return self();
  }
  /// Takes `size` bytes at `data`, NUL bytes included.
  Derived& assign(const char* data, std::size_t size) {
    text_.assign(data, size);
    return self();
  }
  Derived& append(const std::string& text) {
    text_ += text;
    return self();
  }
  Derived& append(const char* data, std::size_t size) {
    text_.append(data, size);
    return self();
  }

  char& operator[](std::size_t position) { return text_[position]; }
  const char& operator[](std::size_t position) const { return text_[position]; }
  char& at(std::size_t position) { return text_.at(position); }
  const char& at(std::size_t position) const { return text_.at(position); }
  const char* data() const { return text_.data(); }
  const char* c_str() const { return text_.c_str(); }
  std::string& str() { return text_; }
  const std::string& str() const { return text_; }

  std::size_t size() const { return text_.size(); }
  std::size_t length() const { return text_.length(); }
  bool empty() const { return text_.empty(); }
  void clear() { text_.clear(); }

  iterator begin() { return text_.begin(); }
  iterator end() { return text_.end(); }
  const_iterator begin() const { return text_.begin(); }
  const_iterator end() const { return text_.end(); }
  reverse_iterator rbegin() { return text_.rbegin(); }
  reverse_iterator rend() { return text_.rend(); }
  const_reverse_iterator rbegin() const { return text_.rbegin(); }
  const_reverse_iterator rend() const { return text_.rend(); }
  const_iterator cbegin() const { return text_.cbegin(); }
  const_iterator cend() const { return text_.cend(); }
  const_reverse_iterator crbegin() const { return text_.crbegin(); }
  const_reverse_iterator crend() const { return text_.crend(); }

  // QUIRK: compare is not const; callers that are compiled against it rely on the mutable form.
  int compare(const Derived& other) { return text_.compare(other.str()); }
  int compare(const std::string& text) { return text_.compare(text); }

  Derived& operator+=(const Derived& other) { return append(other.str()); }
  Derived& operator+=(const std::string& text) { return append(text); }
  Derived& operator+=(char byte) {
    text_ += byte;
    return self();
  }

  /// The bytes from `position`, at most `count` of them; std::out_of_range when `position` lies past the end.
  Derived substr(int position, int count) const {
    return Derived(text_.substr(static_cast<std::size_t>(position), static_cast<std::size_t>(count)));
  }

  friend bool operator==(const Derived& a, const Derived& b) { return a.str() == b.str(); }
  friend bool operator==(const Derived& a, const std::string& b) { return a.str() == b; }
  friend std::string operator+(const Derived& a, const Derived& b) { return a.str() + b.str(); }
  friend std::string operator+(const Derived& a, const std::string& b) { return a.str() + b; }
  friend std::string operator+(const std::string& a, const Derived& b) { return a + b.str(); }
  friend std::ostream& operator<<(std::ostream& out, const Derived& value) { return out << value.str(); }

 protected:
  TextWrapper() = default;
  explicit TextWrapper(std::string text) : text_(std::move(text)) {}
  TextWrapper(const TextWrapper&) = default;
  TextWrapper(TextWrapper&&) noexcept = default;
  TextWrapper& operator=(const TextWrapper&) = default;
  TextWrapper& operator=(TextWrapper&&) noexcept = default;

 private:
  Derived& self() { return static_cast<Derived&>(*this); }

  std::string text_;
};

}  // namespace zqxml
