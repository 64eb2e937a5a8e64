// From a name of the text to a field of a class, by the 24-bit name hash. Not installed.
#pragma once

#include <zqxml/catalogue/records.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace zqxml {

/// Finds the first field in declared order with a hash.
///
/// Remembers answers, for all readers of a thread: the catalogue is constant and lives as long as the
/// process, so they stay true. A message of many equal elements thus searches each class once, whatever its
/// width, and in whatever order a writer has put the names.
class FieldFinder {
 public:
  FieldFinder() : answers_(threadAnswers()) {}

  /// Null when the class is null or has no such field. A field without a name hash is never found, nor is the
  /// self record of a class, which is no field although it has the hash of the class's name.
  const FieldDef* find(const _ClassDef* classDef, std::uint32_t hash) {
    if (classDef == nullptr || hash == 0) return nullptr;
    if (classDef->getNumberOfFields() <= kSearched) return search(*classDef, hash);
    Answer& answer = answers_[place(classDef, hash)];
    if (answer.classDef != classDef || answer.hash != hash)
      answer = {classDef, search(*classDef, hash), hash};
    return answer.field;
  }

 private:
  struct Answer {
    const _ClassDef* classDef;
    const FieldDef* field;
    std::uint32_t hash;
  };
  static constexpr unsigned kPlaceBits = 9;
  using Answers = std::array<Answer, std::size_t{1} << kPlaceBits>;
  /// Classes of so few fields are searched faster than looked up.
  static constexpr int kSearched = 2;

  static const FieldDef* search(const _ClassDef& classDef, std::uint32_t hash) {
    for (const FieldDef& field : classDef)
      if (field.getFieldHashId() == hash && field.getType() != FDT_NONE) return &field;
    return nullptr;
  }
  static std::size_t place(const _ClassDef* classDef, std::uint32_t hash) {
    const std::uint64_t key = (reinterpret_cast<std::uintptr_t>(classDef) << 24) ^ hash;
    return static_cast<std::size_t>((key * 0x9e3779b97f4a7c15u) >> (64 - kPlaceBits));
  }
  static Answers& threadAnswers() {
    static constinit thread_local Answers answers{};
    return answers;
  }

  Answers& answers_;
};

}  // namespace zqxml
