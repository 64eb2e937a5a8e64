#pragma once

#include <zqxml/platform/platform_info.h>

#include <atomic>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zqxml {

/// A configuration of these values alone, by "section/key", during the life of the object. One at a time.
///
///   TestSettings settings{{"EventManager/nMaxNesting", "0"}};
class TestSettings {
 public:
  using Value = std::pair<const std::string, std::string>;

  TestSettings() : TestSettings(std::initializer_list<Value>()) {}
  TestSettings(std::initializer_list<Value> values) : state_(std::make_shared<State>()) {
    state_->values.insert(values.begin(), values.end());
    ZQPlatformInfo::setSource(
        [state = state_](std::string_view, std::string_view section, std::string_view key) {
          const std::string name = std::string(section) + "/" + std::string(key);
          if (name == state->counted) ++state->lookUps;
          const auto found = state->values.find(name);
          return found == state->values.end() ? std::nullopt : std::optional<std::string>(found->second);
        });
  }
  ~TestSettings() { ZQPlatformInfo::setSource({}); }
  TestSettings(const TestSettings&) = delete;
  TestSettings& operator=(const TestSettings&) = delete;

  /// Counts from now on how often this value, given as "section/key", is asked for.
  void count(std::string name) {
    state_->counted = std::move(name);
    state_->lookUps = 0;
  }
  int lookUps() const { return state_->lookUps; }

 private:
  struct State {
    std::map<std::string, std::string> values;
    std::string counted;
    std::atomic<int> lookUps{0};
  };
  std::shared_ptr<State> state_;
};

}  // namespace zqxml
