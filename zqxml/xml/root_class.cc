#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/xml/internal/plain_text.h>
#include <zqxml/xml/internal/root_class.h>

#include <array>
#include <cstddef>
#include <string>

namespace zqxml {
namespace {

std::optional<RootClass> find(const std::string& name) {
  const std::size_t separator = name.find('_');
  if (separator == name.npos) return std::nullopt;
  std::string subsystemName = name.substr(0, separator);
  // QUIRK: twelve classes of DistributedIDA are written under this name, and every class is read under it.
  if (subsystemName == "SystemMonitoring") subsystemName = "DistributedIDA";
  RootClass found{};
  if (!catalogue::subsystemFromName(subsystemName.c_str(), found.subsystem) ||
      !catalogue::classIndexFromName(name.c_str() + separator + 1, found.subsystem, found.classIndex))
    return std::nullopt;
  return found;
}

/// An answer, with the name that it was given to; none where that is empty, which no class is called.
class RootAnswer {
 public:
  bool isOf(std::string_view name) const {
    return length_ != 0 && name.size() == length_ && equalBytes(name.data(), name_, length_);
  }
  RootClass root() const { return root_; }
  void keep(std::string_view name, RootClass root) {
    if (name.size() > sizeof name_) return;
    length_ = static_cast<std::uint8_t>(name.copy(name_, sizeof name_));
    root_ = root;
  }

 private:
  RootClass root_;
  std::uint8_t length_;
  char name_[55];
};
static_assert(sizeof(RootAnswer) == 64);

}  // namespace

std::optional<RootClass> rootClassOf(std::string_view name, std::uint32_t hash) {
  // The latest answers of a thread. The catalogue is constant, so they stay true.
  constexpr std::size_t kAnswers = 64;
  static constinit thread_local std::array<RootAnswer, kAnswers> answers{};
  RootAnswer& answer = answers[hash % kAnswers];
  if (answer.isOf(name)) return answer.root();
  const std::optional<RootClass> found = find(std::string(name));
  if (found.has_value()) answer.keep(name, *found);
  return found;
}

}  // namespace zqxml
