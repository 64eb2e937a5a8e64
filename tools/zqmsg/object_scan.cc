#include "tools/zqmsg/object_scan.h"

#include <unistd.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_explainer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/ev_debug.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <utility>

#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/form.h"

namespace zqxml::tool {
namespace {

constexpr unsigned kBlock = 1U << 18;
constexpr std::size_t kHeader = 8;
/// Length, version and tag id: what a record begins with.
constexpr std::size_t kHead = kRecordField + kHeader;
constexpr std::string_view kVersion2{"\2\0\0\0", 4};

/// Nothing is logged during its life: what is tried may fail.
class QuietLog {
 public:
  QuietLog() : level_(EvDebug::getDebugLevel()) { EvDebug::setDebugLevel(-1); }
  ~QuietLog() { EvDebug::setDebugLevel(level_); }
  QuietLog(const QuietLog&) = delete;
  QuietLog& operator=(const QuietLog&) = delete;

 private:
  int level_;
};

bool decodes(std::string_view data) {
  const QuietLog quiet;
  BinaryBuffer buffer;
  buffer.SetReadBuffer(data.data(), data.size(), true);
  return std::unique_ptr<XNMessageBase>(BinarySerializer::unserialize(buffer, nullptr, false)) != nullptr;
}

/// What is wrong with a record's data, which stands at `offset`; empty when nothing is. Data of an unknown
/// class can be whole: then it has the version of every record, and can be passed over field by field.
std::string damageOfData(std::string_view data, std::uint64_t offset) {
  if (decodes(data)) return {};
  std::string damage;
  explainBinary(data, [&](const BinaryNote& note) {
    if (note.problem && note.length != 0 && damage.empty())
      damage = "cannot be read from byte " + std::to_string(offset + note.offset) + " on: " + note.value;
  });
  if (damage.empty() && !data.starts_with(kVersion2)) damage = "is no message of version 2";
  return damage;
}

void check(const std::string& name, const CUlError& error) {
  if (error.IsError()) throw Failure(kFailed, name, "cannot be read: " + error.GetText());
}

}  // namespace

PlacedFile::PlacedFile(const std::string& file) : name_(file == "-" ? "standard input" : file) {
  if (file == "-") {
    const int descriptor = dup(STDIN_FILENO);
    check(name_, CUlError(descriptor < 0 ? errno : 0));
    file_.Attach(descriptor, name_);
  } else {
    check(name_, file_.Open(file, CUlFile::Mode::kRead));
  }
  // The position of standard input may be another one than the start.
  if (file == "-" || file_.Seek(0, 1, nullptr).IsError()) copyAside();
  check(name_, file_.Size(size_));
}

void PlacedFile::copyAside() {
  CUlFile from = std::move(file_);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> aside(std::tmpfile(), &std::fclose);
  const int descriptor = aside == nullptr ? -1 : dup(fileno(aside.get()));
  check(name_, CUlError(descriptor < 0 ? errno : 0));
  file_.Attach(descriptor, name_);
  std::string block(kBlock, '\0');
  unsigned arrived = 0;
  do {
    check(name_, from.Read(block.data(), kBlock, &arrived));
    check(name_, file_.Write(block.data(), arrived, nullptr));
  } while (arrived == kBlock);
}

void PlacedFile::read(std::uint64_t offset, std::uint64_t size, std::string& out) {
  size = offset < size_ ? std::min(size, size_ - offset) : 0;
  out.resize(size);
  check(name_, file_.Seek(static_cast<std::int64_t>(offset), 0, nullptr));
  std::uint64_t held = 0;
  while (held < size) {
    const auto part = static_cast<unsigned>(std::min<std::uint64_t>(size - held, std::uint64_t{1} << 30));
    unsigned arrived = 0;
    check(name_, file_.Read(out.data() + held, part, &arrived));
    held += arrived;
    if (arrived < part) break;
  }
  out.resize(held);
}

RecordFormat formatOf(PlacedFile& file) {
  std::string head;
  file.read(0, kDetectionBytes, head);
  if (!mayBe(Form::kObjects, head)) {
    throw Failure(kFailed, file.name(), "does not begin with an object of a known class")
        .advise(
            "if it is a file of objects all the same, say with --format which of the formats a and b it has");
  }
  return recordFormatOf(head);
}

ObjectScan::ObjectScan(PlacedFile& file, RecordFormat format)
    : file_(file), format_(format), trials_((std::uint64_t{64} << 20) + 16 * file.size()) {
  std::string head;
  file_.read(0, kRecordField, head);
  if (format_ == RecordFormat::kB && head == kObjectsVersion) at_ = kRecordField;
}

bool ObjectScan::next(Stretch& stretch) {
  if (at_ >= file_.size()) return false;
  stretch.number = ++number_;
  stretch.offset = at_;
  std::uint32_t length = 0;
  stretch.damage = damageOfLength(at_, length);
  if (stretch.isWhole() && length > trials_) {
    stretch.damage = "is not looked at, because too much before it is damaged";
    stretch.end = file_.size();
  } else if (stretch.isWhole()) {
    stretch.end = at_ + kRecordField + length;
    file_.read(at_, kRecordField + std::uint64_t{length}, stretch.bytes);
    stretch.damage = damageOfData(std::string_view(stretch.bytes).substr(kRecordField), at_ + kRecordField);
    if (stretch.end != file_.size() && !startsRecord(stretch.end)) lookInside(stretch);
    // What a wrong length made us decode is decoded again from the next record on.
    if (stretch.end != at_ + kRecordField + length) trials_ -= std::min<std::uint64_t>(trials_, length);
  } else {
    stretch.end = findRecord(at_ + 1, file_.size());
  }
  if (!stretch.isWhole()) stretch.bytes.clear();
  at_ = stretch.end;
  return true;
}

// What follows is no record: the length may be wrong, or it is right and more than this record is damaged.
void ObjectScan::lookInside(Stretch& stretch) {
  const std::uint64_t claimed = stretch.end;
  const std::uint64_t found = findRecord(at_ + 1, stretch.isWhole() ? claimed : file_.size());
  if (stretch.isWhole() && found == claimed) return;
  if (stretch.isWhole())
    stretch.damage = "was cut off: another object begins at byte " + std::to_string(found);
  stretch.end = found;
}

std::string ObjectScan::damageOfLength(std::uint64_t offset, std::uint32_t& length) {
  if (format_ == RecordFormat::kB && offset == 0) return "is no version field 1";
  std::string field;
  file_.read(offset, kRecordField, field);
  if (field.size() < kRecordField) return "ends inside its length";
  const std::optional<std::uint32_t> stated = recordLength(format_, field);
  if (!stated) return "has a length that is no number";
  if (*stated == 0) return "has the length 0";
  length = *stated;
  const std::uint64_t left = file_.size() - offset - kRecordField;
  if (length <= left) return {};
  return "ends after " + std::to_string(left) + " of " + std::to_string(length) + " bytes";
}

bool ObjectScan::startsRecord(std::uint64_t offset) {
  std::string head;
  file_.read(offset, kHead, head);
  return startsRecord(offset, head);
}

bool ObjectScan::startsRecord(std::uint64_t offset, std::string_view head) {
  if (head.size() < kHead || head.substr(kRecordField, 4) != kVersion2) return false;
  const std::optional<std::uint32_t> length = recordLength(format_, head.substr(0, kRecordField));
  if (!length || *length < kHeader || *length > file_.size() - offset - kRecordField) return false;
  if (!mayBe(Form::kBinary, head.substr(kRecordField)) || *length > trials_) return false;
  trials_ -= *length;
  std::string data;
  file_.read(offset + kRecordField, *length, data);
  return decodes(data);
}

std::uint64_t ObjectScan::findRecord(std::uint64_t from, std::uint64_t until) {
  std::string block;
  while (from < until && from + kHead <= file_.size()) {
    file_.read(from, kBlock, block);
    if (block.size() < kHead) break;
    const std::string_view view = block;
    const std::size_t last = block.size() - kHead;  // where the last whole head starts
    for (std::size_t found = view.find(kVersion2, kRecordField); found <= last + kRecordField;
         found = view.find(kVersion2, found + 1)) {
      const std::size_t start = found - kRecordField;
      if (from + start >= until) return until;
      if (startsRecord(from + start, view.substr(start, kHead))) return from + start;
    }
    from += last + 1;
  }
  return until;
}

}  // namespace zqxml::tool
