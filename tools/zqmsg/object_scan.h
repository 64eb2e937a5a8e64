// Object files that may be damaged: what of them is whole, and where it goes on behind damage.
#pragma once

#include <zqxml/platform/file.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/zqmsg/object_stream.h"

namespace zqxml::tool {

/// A file that is read at any place. Standard input and other files without places are copied into a nameless
/// file first. Every failure throws Failure with status kFailed.
class PlacedFile {
 public:
  explicit PlacedFile(const std::string& file);

  const std::string& name() const { return name_; }
  std::uint64_t size() const { return size_; }
  /// Replaces `out` by up to `size` bytes from `offset` on, fewer at the file's end.
  void read(std::uint64_t offset, std::uint64_t size, std::string& out);

 private:
  void copyAside();

  std::string name_;
  CUlFile file_;
  std::uint64_t size_ = 0;
};

/// A part of an object file: one whole record, or what is none.
struct Stretch {
  std::uint64_t number = 0;  ///< from 1, damaged ones included
  std::uint64_t offset = 0;
  std::uint64_t end = 0;
  std::string damage;  ///< what is wrong with it; empty for a whole record
  std::string bytes;   ///< of a whole record, its length included

  bool isWhole() const { return damage.empty(); }
};

/// Goes through an object file from its start to its end, damaged or not, with no more memory than its
/// largest record.
///
/// A record is whole when its length leads to its end and its data decodes, or is of a class that this
/// catalogue does not have and shows no damage; and when another follows it, or none begins inside it. Behind
/// damage the next record begins at the first place where a length, the header of a known class and data that
/// decodes stand together. So that a hostile file takes no endless time, such trials look at 64 MiB and 16
/// times the file at most, what wrong lengths make them look at included; then the rest counts as damaged.
class ObjectScan {
 public:
  ObjectScan(PlacedFile& file, RecordFormat format);

  /// The next stretch; false at the end.
  bool next(Stretch& stretch);

 private:
  bool startsRecord(std::uint64_t offset, std::string_view head);
  bool startsRecord(std::uint64_t offset);
  /// The first record that starts in this range; `until` when none does.
  std::uint64_t findRecord(std::uint64_t from, std::uint64_t until);
  void lookInside(Stretch& stretch);
  std::string damageOfLength(std::uint64_t offset, std::uint32_t& length);

  PlacedFile& file_;
  RecordFormat format_;
  std::uint64_t at_ = 0;
  std::uint64_t number_ = 0;
  std::uint64_t trials_;  // bytes that the search may still decode
};

/// The format of an object file, from its first bytes. Throws Failure when it does not look like one.
RecordFormat formatOf(PlacedFile& file);

}  // namespace zqxml::tool
