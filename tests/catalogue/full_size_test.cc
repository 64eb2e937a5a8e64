// Look-ups in a catalogue of a thousand classes and more give what the searches give that define them.
#include <gmock/gmock.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/xn_message_base.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "tests/catalogue/path_tables.h"

namespace zqxml {
namespace {

constexpr int kNone = -1;

/// The records of a subsystem in order; the first of the name.
int walked(const SubsystemDef& row, std::string_view name) {
  for (int index = 0; index < row.recordCount; ++index) {
    const char* candidate = row.classDefs[index].getName();
    if (candidate != nullptr && name == candidate) return index;
  }
  return kNone;
}

/// The entries of a subsystem's ids, cut in half until one is left.
int bisected(const SubsystemDef& row, std::uint32_t classId) {
  for (int low = 0, high = row.recordCount - 1; low <= high;) {
    const int middle = (low + high) / 2;
    const ClassIdIndexEntry& entry = row.idIndex[middle];
    if (entry.classId == classId) return entry.classIndex;
    (classId < entry.classId ? high : low) = classId < entry.classId ? middle - 1 : middle + 1;
  }
  return kNone;
}

int found(short slot, const std::string& name) {
  int index = kNone;
  return catalogue::classIndexFromName(name.c_str(), slot, index) ? index : kNone;
}

int found(short slot, std::uint32_t classId) {
  short subsystem = 0;
  int index = kNone;
  return catalogue::indicesFromTag(makeTagId(slot, classId), subsystem, index) ? index : kNone;
}

std::vector<short> filledSlots() {
  std::vector<short> slots;
  for (short slot = 1; slot < kSubsystemCount; ++slot)
    if (gSubsystemTable[slot].recordCount != 0) slots.push_back(slot);
  return slots;
}

TEST(FullSizeCatalogue, IsLarge) {
  int described = 0, fields = 0;
  for (const short slot : filledSlots()) {
    const SubsystemDef& row = gSubsystemTable[slot];
    for (int index = 0; index < row.recordCount; ++index) {
      described += row.classDefs[index].getName() != nullptr ? 1 : 0;
      fields += row.classDefs[index].getNumberOfFields();
    }
  }
  EXPECT_GT(described, 900);
  EXPECT_GT(fields, 6'000);
}

TEST(FullSizeCatalogue, NamesLeadToWhatTheWalkFinds) {
  int hits = 0;
  for (const short slot : filledSlots()) {
    const SubsystemDef& row = gSubsystemTable[slot];
    for (int index = 0; index < row.recordCount; ++index) {
      if (row.classDefs[index].getName() == nullptr) continue;
      const std::string name = row.classDefs[index].getName();
      ASSERT_EQ(found(slot, name), walked(row, name)) << name;
      ++hits;
    }
  }
  EXPECT_GT(hits, 900);
}

TEST(FullSizeCatalogue, NamesThatAreAlmostThereLeadToWhatTheWalkFinds) {
  int misses = 0;
  for (const short slot : filledSlots()) {
    const SubsystemDef& row = gSubsystemTable[slot];
    std::vector<std::string> names{""};
    for (int index = 0; index < row.recordCount; ++index) {
      if (row.classDefs[index].getName() == nullptr) continue;
      const std::string name = row.classDefs[index].getName();
      std::string otherCase = name;
      otherCase.back() = static_cast<char>(otherCase.back() ^ 0x20);
      // The last has the hash of the name.
      std::string sameHash = name;
      sameHash.back() = static_cast<char>(sameHash.back() - 31);
      ++sameHash[sameHash.size() - 2];
      for (const std::string& other : {name + "x", name.substr(0, name.size() - 1), otherCase, sameHash})
        names.push_back(other);
    }
    for (const std::string& name : names) {
      ASSERT_EQ(found(slot, name), walked(row, name)) << name;
      misses += found(slot, name) == kNone ? 1 : 0;
    }
  }
  EXPECT_GT(misses, 3'000);
}

TEST(FullSizeCatalogue, NamesOfOtherSubsystemsLeadToWhatTheWalkFinds) {
  const std::vector<short> slots = filledSlots();
  for (std::size_t i = 0; i < slots.size(); ++i) {
    const SubsystemDef& row = gSubsystemTable[slots[i]];
    const SubsystemDef& other = gSubsystemTable[slots[(i + 1) % slots.size()]];
    for (int index = 0; index < other.recordCount; ++index) {
      if (other.classDefs[index].getName() == nullptr) continue;
      const std::string name = other.classDefs[index].getName();
      ASSERT_EQ(found(slots[i], name), walked(row, name)) << name;
    }
  }
}

TEST(FullSizeCatalogue, TagsLeadToWhatTheBisectionFinds) {
  int hits = 0, misses = 0;
  for (const short slot : filledSlots()) {
    const SubsystemDef& row = gSubsystemTable[slot];
    std::vector<std::uint32_t> ids{0, 1, 2, 0xffffff};
    for (int index = 0; index < row.recordCount; ++index) {
      const std::uint32_t id = row.idIndex[index].classId;
      for (const std::uint32_t near : {id, (id + 1) & 0xffffff, (id - 1) & 0xffffff, id ^ 0x800000})
        ids.push_back(near);
    }
    for (const std::uint32_t id : ids) {
      const int index = found(slot, id);
      ASSERT_EQ(index, bisected(row, id)) << row.name << ' ' << id;
      (index == kNone ? misses : hits) += 1;
    }
  }
  EXPECT_GT(hits, 900);
  EXPECT_GT(misses, 900);
}

TEST(FullSizeCatalogue, EnumeratorsAreFoundByTheNameOfTheirEnumeration) {
  int seen = 0;
  for (const short slot : filledSlots()) {
    const SubsystemDef& row = gSubsystemTable[slot];
    for (int index = 0; index < row.recordCount; ++index) {
      const _ClassDef& record = row.classDefs[index];
      if (!record.isEnumeration()) continue;
      for (const FieldDef& enumerator : record) {
        const auto value = static_cast<int>(enumerator.getFieldHashId());
        ASSERT_STREQ(XNMessageBase::getEnumString(slot, record.getName(), value),
                     catalogue::enumeratorName(record, value));
        ++seen;
      }
    }
  }
  EXPECT_GT(seen, 700);
}

TEST(FullSizeCatalogue, TablesOfPathsAreWellFormed) {
  int count = 0;
  for (const XPathData* row = gXPathTable; row->paths != nullptr; ++row) {
    expectWellFormed(*row);
    count += row->count;
  }
  EXPECT_GT(count, 1'500);
}

}  // namespace
}  // namespace zqxml
