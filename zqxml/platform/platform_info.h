#pragma once

#include <zqxml/platform/export.h>

#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zqxml {

/// The configuration: numbers and texts by section and key.
///
/// They come from an INI file, `$ZQXML_CONFIG` or else `/etc/zqxml.ini`, which is read again when it has
/// changed; a file that is not there is an empty one. An object made for a focus looks into section
/// "<section>.<focus>" first. Section and key are compared as they stand. A program that has a configuration
/// of its own sets a source instead.
///
/// No operation throws. Any thread may call any operation at any time.
class ZQXML_EXPORT ZQPlatformInfo {
 public:
  /// Answers for a value, or not at all. `focus` is empty for an object without one. It may be called by
  /// several threads at once, and must not call this library.
  using Source = std::function<std::optional<std::string>(std::string_view focus, std::string_view section,
                                                          std::string_view key)>;

  /// @{
  /// The configuration without a focus, or as seen by one.
  ZQPlatformInfo() = default;
  explicit ZQPlatformInfo(std::string focus) : focus_(std::move(focus)) {}
  /// @}

  /// Asks `source`, and nothing else, from now on. An empty one restores the file.
  static void setSource(Source source) noexcept;

  /// Puts the number into `value`: decimal, or hexadecimal after "0x", with a sign or not. What does not fit
  /// becomes the nearest number that does. False, with `value` unchanged, when there is none or it is not a
  /// number.
  template <std::integral T>
  bool getNumber(std::string_view section, std::string_view key, T& value) const noexcept {
    const std::optional<std::int64_t> number = findNumber(section, key);
    if (!number) return false;
    if (std::cmp_less(*number, std::numeric_limits<T>::min())) {
      value = std::numeric_limits<T>::min();
    } else if (std::cmp_greater(*number, std::numeric_limits<T>::max())) {
      value = std::numeric_limits<T>::max();
    } else {
      value = static_cast<T>(*number);
    }
    return true;
  }

  /// Puts the text into `value`. False, with `value` unchanged, when there is none.
  bool getText(std::string_view section, std::string_view key, std::string& value) const noexcept;

 private:
  std::optional<std::int64_t> findNumber(std::string_view section, std::string_view key) const noexcept;

  std::string focus_;
};

/// The name that the running thread works under: a program's or a service's. It chooses the part of the
/// configuration that ZQPlatformInfo reads.
class ZQXML_EXPORT ZQPI_Focus {
 public:
  /// The name of this thread, never null; empty when none was set, and when the thread's own objects are
  /// destroyed. Valid until then, or until the thread sets another.
  static const char* getFocus() noexcept;
  /// Sets the name of this thread; null is the empty name. The two other parameters are not used.
  static void setFocus(const char* name, int reserved = 1, bool reservedFlag = false) noexcept;
};

}  // namespace zqxml
