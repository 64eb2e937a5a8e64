// What the compiler does with a catalogue takes as much longer as the catalogue is larger.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include "catalogue_diff.h"
#include "compile_text.h"
#include "lint.h"
#include "snapshot.h"
#include "source_files.h"

namespace zqxml::zqcatc {
namespace {

/// The library's schema, and what `folder` adds to it.
std::vector<SchemaSource> sourcesOf(const char* folder) {
  std::vector<SchemaSource> sources;
  std::string error;
  if (!readSchemas({ZQXML_SOURCE_DIR "/schema", folder}, sources, error)) throw std::runtime_error(error);
  return sources;
}

std::size_t bytesOf(const std::vector<SchemaSource>& sources) {
  std::size_t bytes = 0;
  for (const SchemaSource& source : sources) bytes += source.text.size();
  return bytes;
}

/// The least of some runs, in processor time: what the work needs by itself.
template <class Work>
double leastTime(const Work& work) {
  std::clock_t least = std::numeric_limits<std::clock_t>::max();
  for (int run = 0; run < 7; ++run) {
    const std::clock_t start = std::clock();
    work();
    least = std::min(least, std::clock() - start);
  }
  return static_cast<double>(least);
}

/// A catalogue, and one of about four times its size.
class LargeCatalogueTest : public ::testing::Test {
 protected:
  /// Steps in proportion to the size come near to four, steps in proportion to its square to sixteen.
  template <class Work>
  void expectProportion(const Work& work) const {
    const double larger = static_cast<double>(bytesOf(large_)) / static_cast<double>(bytesOf(small_));
    ASSERT_GT(larger, 2.5);
    const Compiled small = compileFiles(small_);
    const Compiled large = compileFiles(large_);
    ASSERT_TRUE(small.errors.empty() && large.errors.empty());
    const Snapshot few(small.catalogue), many(large.catalogue);
    EXPECT_LT(leastTime([&] { work(large, many); }), 1.8 * larger * leastTime([&] { work(small, few); }));
  }

  const std::vector<SchemaSource> small_ = sourcesOf(ZQXML_SMALL_SCHEMA);
  const std::vector<SchemaSource> large_ = sourcesOf(ZQXML_LARGE_SCHEMA);
};

TEST_F(LargeCatalogueTest, ReadingIsLinear) {
  expectProportion([](const Compiled& compiled, const Snapshot&) { compileFiles(compiled.sources); });
}

TEST_F(LargeCatalogueTest, WritingIsLinear) {
  expectProportion([](const Compiled& compiled, const Snapshot&) { writeCatalogue(compiled.catalogue, ""); });
}

TEST_F(LargeCatalogueTest, LintIsLinear) {
  expectProportion([](const Compiled&, const Snapshot& snapshot) { lintCatalogue(snapshot); });
}

TEST_F(LargeCatalogueTest, DiffIsLinear) {
  expectProportion([](const Compiled& compiled, const Snapshot& snapshot) {
    const Snapshot other(compiled.catalogue);
    EXPECT_TRUE(compareCatalogues(snapshot, other).empty());
  });
}

}  // namespace
}  // namespace zqxml::zqcatc
