// Look-ups among 25,000 paths, in random order: by path, by id, and from an id to its path.
#include <benchmark/benchmark.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/traverse/xml_meta_data.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace zqxml::bench {
namespace {

constexpr short kSubsystem = 199;

/// The places of all paths, shuffled, so that no look-up profits from the one before it.
class Places {
 public:
  Places() {
    for (int i = 0; i < data().count; ++i) order_.push_back(i);
    std::shuffle(order_.begin(), order_.end(), std::mt19937(1));
  }
  static const XPathData& data() { return *XNMessageBase::getXPathData(kSubsystem); }
  const XPathEntry& next() {
    next_ = next_ + 1 == order_.size() ? 0 : next_ + 1;
    return data().paths[order_[next_]];
  }

 private:
  std::vector<int> order_;
  std::size_t next_ = 0;
};

void byPath(benchmark::State& state) {
  Places places;
  for (auto _ : state)
    benchmark::DoNotOptimize(catalogue::xpathIndexOfPath(Places::data(), places.next().xpath));
}
BENCHMARK(byPath)->Name("place of a path, of 25,000");

void byId(benchmark::State& state) {
  Places places;
  for (auto _ : state) benchmark::DoNotOptimize(XMLMetaData::doesXPathIDExist(kSubsystem, places.next().id));
}
BENCHMARK(byId)->Name("whether an id exists, of 25,000");

void pathOfId(benchmark::State& state) {
  Places places;
  std::string path;
  for (auto _ : state)
    benchmark::DoNotOptimize(XMLMetaData::getXPathFromID(kSubsystem, places.next().id, path));
}
BENCHMARK(pathOfId)->Name("path of an id, of 25,000");

}  // namespace
}  // namespace zqxml::bench

BENCHMARK_MAIN();
