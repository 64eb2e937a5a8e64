#pragma once

#include <string_view>

namespace zqxml {

/// Counts the heap blocks that are freed by `operator delete` while they hold the marker, during the life of
/// the object.
class FreedSecrets {
 public:
  static constexpr std::string_view kMarker = "Marker-of-a-secret-7b1f";

  FreedSecrets();
  ~FreedSecrets();
  FreedSecrets(const FreedSecrets&) = delete;
  FreedSecrets& operator=(const FreedSecrets&) = delete;

  int count() const;
};

}  // namespace zqxml
