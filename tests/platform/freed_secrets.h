#pragma once

#include <string_view>

namespace zqxml {

/// Counts the heap blocks that are freed by `operator delete` while they hold a secret, the marker unless
/// another is named, during the life of the object. The secret has to live as long.
class FreedSecrets {
 public:
  static constexpr std::string_view kMarker = "Marker-of-a-secret-7b1f";

  explicit FreedSecrets(std::string_view secret = kMarker);
  ~FreedSecrets();
  FreedSecrets(const FreedSecrets&) = delete;
  FreedSecrets& operator=(const FreedSecrets&) = delete;

  int count() const;
};

}  // namespace zqxml
