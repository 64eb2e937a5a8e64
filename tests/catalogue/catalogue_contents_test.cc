// What the library's own catalogue holds: every row, and the laws that all records keep.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/old_way.h>

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue_walk.h"

namespace zqxml {
namespace {

using ::testing::ElementsAre;

struct Row {
  int slot;
  std::string_view name;
  int records;
  bool old;
};

// clang-format off
constexpr Row kRows[] = {
    {1, "ZQGui", 285, true}, {2, "BMR", 109, true}, {3, "SRMReports", 206, true},
    {4, "USDKLogin", 9, true}, {5, "OrvaneOperations", 82, true}, {6, "OrvaneUtilities", 211, true},
    {7, "ZQSimLicUtils", 15, true}, {8, "ZQInstallManager", 112, false}, {9, "XNSession", 160, true},
    {10, "MediaManager", 265, true}, {11, "CDR", 14, true}, {12, "TMMsg", 761, false},
    {13, "EVGui", 1194, true}, {14, "DM2ContentIndexing", 1045, false}, {15, "USMServer", 181, true},
    {16, "USMGui", 401, true}, {17, "DataC", 41, true}, {18, "ZqEntities", 178, false},
    {19, "VSSSWProvider", 15, true}, {20, "Common", 59, false}, {21, "JobManager", 438, false},
    {22, "Ida", 948, false}, {23, "UpdatePatches", 227, false}, {25, "LegalHold", 9, true},
    {26, "VirtualServer", 221, false}, {27, "Annotation", 65, false}, {29, "SapCS", 2, false},
    {30, "App", 4110, false}, {31, "ResourceManager", 30, true}, {32, "FDC", 102, false},
    {33, "ResponseFile", 35, true}, {34, "SQLiDA", 154, true}, {35, "LogMonitoring", 259, false},
    {36, "ZqMountd", 78, true}, {37, "GuiUsersCommunication", 5, false}, {38, "GuiServer", 36, false},
    {39, "FileScan", 32, false}, {40, "Workflow", 201, false}, {41, "CLBackup", 2, false},
    {48, "Indexing", 456, false}, {50, "ZqLNiDA", 5, true}, {51, "Security", 11, false},
    {55, "NAS", 37, false}, {61, "Rpt", 125, false}, {69, "MDM", 26, false},
    {75, "ZqScsiServer", 26, false}, {99, "Compliance", 3, false}, {100, "databrowse", 255, false},
    {101, "IdxMetadata", 254, false}, {102, "DM2", 7, false}, {103, "HubNet2", 31, true},
    {104, "FBR", 50, false}, {105, "ZQDBUpgrade", 8, false}, {106, "Layout", 0, false},
    {107, "StorageProvisioning", 61, false}, {108, "ReportPlus", 85, false},
    {109, "ExchangeVirtualAgent", 124, false}, {110, "XNBrowser", 852, true},
    {111, "XNHubCell", 106, true}, {113, "XNRegistration", 6, true}, {114, "XNScheduler", 9, true},
    {115, "WebReport", 413, false}, {116, "UNetServer", 20, true}, {117, "BlockReplication", 64, false},
    {118, "Api", 1263, false}, {119, "DistributedIDA", 98, false}, {120, "ZQModels", 1577, false},
    {121, "GoogleWorkspace", 25, false}, {122, "ActiveDirectory", 29, false}, {147, "TBL", 33, false},
    {150, "XNetSample", 3, false}, {169, "ZqCommonSnap", 6, false}, {201, "ZqDFMImport", 42, true},
    {203, "CM", 12, false}, {204, "ZqStatAnalysis", 32, false}, {205, "CloudServices", 31, false},};
// clang-format on

TEST(CatalogueRowsTest, EveryRowHasItsNameRecordsAndFlag) {
  std::set<int> filled;
  for (const Row& expected : kRows) {
    const SubsystemDef& actual = row(expected.slot);
    filled.insert(expected.slot);
    ASSERT_NE(actual.name, nullptr) << expected.name;
    EXPECT_EQ(actual.name, expected.name);
    EXPECT_EQ(actual.recordCount, expected.records) << expected.name;
    EXPECT_EQ(actual.oldWay, expected.old) << expected.name;
  }
  EXPECT_EQ(filled.size(), 76u);
  for (int slot = 0; slot <= kSubsystemCount; ++slot) {
    if (filled.contains(slot)) continue;
    const SubsystemDef& empty = row(slot);
    EXPECT_EQ(empty.name, nullptr) << slot;
    EXPECT_EQ(empty.classDefs, nullptr) << slot;
    EXPECT_EQ(empty.idIndex, nullptr) << slot;
    EXPECT_EQ(empty.defaults, nullptr) << slot;
    EXPECT_EQ(empty.recordCount, 0) << slot;
    EXPECT_FALSE(empty.oldWay) << slot;
  }
}

TEST(CatalogueRowsTest, RecordsAddUp) {
  int records = 0;
  for (int slot = 0; slot < kSubsystemCount; ++slot) records += row(slot).recordCount;
  EXPECT_EQ(records, 18'482);
}

TEST(CatalogueRowsTest, OldWayFlagsAgreeWithTheListOfSlots) {
  int old = 0;
  for (int slot = 0; slot <= kSubsystemCount; ++slot) {
    EXPECT_EQ(row(slot).oldWay, isOldWaySlot(slot)) << slot;
    EXPECT_EQ(row(slot).oldWay, catalogue::isOldWay(makeTagId(slot, 1))) << slot;
    old += row(slot).oldWay ? 1 : 0;
  }
  EXPECT_EQ(old, 28);
}

TEST(CatalogueRowsTest, LayoutIsFilledWithoutClasses) {
  EXPECT_STREQ(row(106).name, "Layout");
  EXPECT_EQ(row(106).classDefs, nullptr);
}

TEST(CatalogueRowsTest, IdIndexLeadsToEveryRecordWithAnId) {
  for (int slot = 0; slot < kSubsystemCount; ++slot) {
    const SubsystemDef& subsystem = row(slot);
    std::map<std::uint32_t, int> byId;
    for (int i = 0; i < subsystem.recordCount; ++i) {
      const std::uint32_t before = i == 0 ? 0 : subsystem.idIndex[i - 1].classId;
      EXPECT_LE(before, subsystem.idIndex[i].classId);
      if (subsystem.idIndex[i].classId == 0) {
        EXPECT_EQ(subsystem.idIndex[i].classIndex, 0);
      } else {
        EXPECT_TRUE(byId.emplace(subsystem.idIndex[i].classId, subsystem.idIndex[i].classIndex).second);
      }
    }
    for (int index = 0; index < subsystem.recordCount; ++index) {
      const std::uint32_t id = record(slot, index).getClassId();
      if (id == 0) continue;
      EXPECT_EQ(byId.at(id), index);
      byId.erase(id);
    }
    EXPECT_TRUE(byId.empty()) << slot;
  }
}

TEST(CatalogueClassesTest, NamesAreUniqueInTheirSubsystem) {
  std::set<std::string> names;
  forEachClass([&](int slot, int, const _ClassDef& classDef) {
    EXPECT_TRUE(names.insert(nameOf(slot, classDef)).second);
  });
  EXPECT_GT(names.size(), 100u);
}

TEST(CatalogueClassesTest, FieldsStandInOrderWithHashesOfTheirNames) {
  forEachClass([](int slot, int, const _ClassDef& classDef) {
    const std::string name = nameOf(slot, classDef);
    if (classDef.isEnumeration()) return;
    std::set<std::uint32_t> hashes;
    int slots = 0;
    int position = 0;
    for (const FieldDef& field : classDef) {
      if (field.getType() == FDT_NONE) {
        // The trailing record of the class itself.
        EXPECT_EQ(&field + 1, classDef.end()) << name;
        EXPECT_STREQ(field.getName(), classDef.getName());
        EXPECT_EQ(field.getFieldHashId(), nameHash(classDef.getName()));
        EXPECT_EQ(field.getMemNum(), 0);
        EXPECT_EQ(field.getIndex(), 0);
        EXPECT_TRUE(field.hasAnnotation());
        continue;
      }
      EXPECT_EQ(field.getMemNum(), position++) << name;
      EXPECT_EQ(field.getIndex(), slots) << name;
      slots += fieldTypeFacts(field.getType()).slots;
      if (field.getFieldHashId() == 0) {
        EXPECT_EQ(field.getLoczId(), 0);
        continue;
      }
      EXPECT_EQ(field.getFieldHashId(), nameHash(field.getName())) << name;
      EXPECT_TRUE(hashes.insert(field.getFieldHashId()).second) << name << ' ' << field.getName();
    }
    EXPECT_EQ(classDef.getNumberOfElements(), slots) << name;
  });
}

TEST(CatalogueClassesTest, EnumerationsHoldOnlyEnumerators) {
  int enumerations = 0;
  forEachClass([&](int slot, int, const _ClassDef& classDef) {
    for (const FieldDef& field : classDef) {
      EXPECT_EQ(field.getType() == FDT_ENUM_VALUE, classDef.isEnumeration()) << nameOf(slot, classDef);
      if (!classDef.isEnumeration()) continue;
      EXPECT_EQ(field.getMemNum(), 0);
      EXPECT_EQ(field.getIndex(), 0);
      EXPECT_EQ(field.getLoczId(), 0);
    }
    if (!classDef.isEnumeration()) return;
    EXPECT_EQ(classDef.getNumberOfElements(), 0);
    EXPECT_EQ(classDef.defaultsStart(), -1);
    ++enumerations;
  });
  EXPECT_GT(enumerations, 20);
}

TEST(CatalogueClassesTest, EveryReferenceResolves) {
  int references = 0;
  forEachClass([&](int slot, int, const _ClassDef& classDef) {
    for (const FieldDef& field : classDef) {
      for (unsigned i = 0; i < field.classRefBytes() / ClassRef::kSize; ++i) {
        const ClassRef ref = reference(field, static_cast<int>(i));
        const _ClassDef* target = catalogue::classAt(ref.subsystem, ref.classIndex);
        ASSERT_NE(target, nullptr) << nameOf(slot, classDef) << ' ' << field.getName();
        ASSERT_NE(target->getName(), nullptr) << nameOf(slot, classDef) << ' ' << field.getName();
        EXPECT_EQ(target->isEnumeration(), kEnumTypes.contains(field.getType()));
        ++references;
      }
    }
  });
  EXPECT_GT(references, 100);
}

TEST(CatalogueClassesTest, TypesThatNoFieldHas) {
  std::vector<std::string> reserved;
  forEachClass([&](int slot, int, const _ClassDef& classDef) {
    for (const FieldDef& field : classDef) {
      for (FieldDataType type :
           {FDT_LIST_ULONGLONG, FDT_RESERVED_24, FDT_LIST_BOOL, FDT_LIST_BSTRING, FDT_INT64})
        EXPECT_NE(field.getType(), type) << nameOf(slot, classDef) << ' ' << field.getName();
      if (field.getType() == FDT_RESERVED_29) {
        reserved.push_back(nameOf(slot, classDef) + "." + field.getName());
        EXPECT_EQ(field.getFieldHashId(), 0u);
      }
    }
  });
  EXPECT_THAT(reserved, ElementsAre("App.OracleSubclientProp.archiveContent"));
}

TEST(CatalogueClassesTest, EveryOtherTypeOccurs) {
  std::set<int> types;
  forEachClass([&](int, int, const _ClassDef& classDef) {
    for (const FieldDef& field : classDef) types.insert(field.getType());
  });
  for (int type = 0; type < static_cast<int>(kFieldTypeCount); ++type) {
    const bool unused =
        FieldTypeSet{FDT_LIST_ULONGLONG, FDT_RESERVED_24, FDT_LIST_BOOL, FDT_LIST_BSTRING, FDT_INT64}
            .contains(static_cast<unsigned>(type));
    EXPECT_EQ(types.contains(type), !unused) << type;
  }
}

TEST(CatalogueClassesTest, DefaultRunsAscendAndEnd) {
  forEachClass([](int slot, int, const _ClassDef& classDef) {
    if (classDef.defaultsStart() < 0) return;
    const FieldDefaultEntry* entry = row(slot).defaults + classDef.defaultsStart();
    int last = -1;
    for (; entry->memNum != -1; ++entry) {
      EXPECT_GT(entry->memNum, last);
      EXPECT_LT(entry->memNum, classDef.getNumberOfFields());
      EXPECT_NE(entry->text, nullptr);
      last = entry->memNum;
    }
    EXPECT_NE(last, -1);
    EXPECT_EQ(entry->text, nullptr);
  });
}

}  // namespace
}  // namespace zqxml
