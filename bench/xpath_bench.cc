// Look-ups among 25,000 paths, in random order: by path, by id, and from an id to its path.
#include <bench/measurements.h>
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

int run(int argc, char** argv) {
  Report report(argc, argv);
  ComparedTable table;
  table.table.title = "Paths, among 25,000";
  table.table.note = "In random order, so that no look-up profits from the one before it.";
  const auto add = [&](const std::string& name, auto lookUp) {
    measure(name, [places = Places(), lookUp]() mutable { lookUp(places.next()); });
    table.comparisons.push_back({name, name, ""});
  };
  add("place of a path", [](const XPathEntry& entry) {
    ::benchmark::DoNotOptimize(catalogue::xpathIndexOfPath(Places::data(), entry.xpath));
  });
  add("whether an id exists", [](const XPathEntry& entry) {
    ::benchmark::DoNotOptimize(XMLMetaData::doesXPathIDExist(kSubsystem, entry.id));
  });
  add("path of an id", [path = std::string()](const XPathEntry& entry) mutable {
    ::benchmark::DoNotOptimize(XMLMetaData::getXPathFromID(kSubsystem, entry.id, path));
  });
  return runMeasurements(report, {table});
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
