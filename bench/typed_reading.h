#pragma once

#include <zqxml/catalogue/generated/Bench.h>

#include <cstddef>
#include <cstdint>

namespace zqxml::bench {

/// What a reader of a message took notice of: how many values, the sum of the numbers, and how many of the
/// texts have content.
struct Reading {
  std::size_t values = 0;
  std::int64_t sum = 0;

  template <class Value>
  void add(const Value& value) {
    ++values;
    if constexpr (requires { value.empty(); })
      sum += value.empty() ? 0 : 1;
    else
      sum += static_cast<std::int64_t>(value);
  }
  void add(const bstring& value) { add(value.str()); }

  friend bool operator==(const Reading&, const Reading&) = default;
};

/// Reads every set field by the accessors of its class.
void readTyped(const Bench::JobEntry& message, Reading& reading);
void readTyped(const Bench::JobReport& message, Reading& reading);

}  // namespace zqxml::bench
