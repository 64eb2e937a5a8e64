// A message as the contenders of a measurement have it.
#pragma once

#include <bench/protobuf_peer.h>
#include <bench/roads.h>
#include <google/protobuf/message.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zqxml::bench {

struct Subject {
  template <class Data>
  Subject(std::string called, const Data& data)
      : name(std::move(called)), ours(data), generated(generatedMessage(data)) {}

  std::string name;
  RoadMessage ours;
  std::unique_ptr<google::protobuf::Message> generated;
};

/// The three messages, small, medium and large: seven scalars; sixty fields with twenty sub-objects, lists
/// and a map; the same with five thousand sub-objects. `make` is called with a name and the data.
template <class Make>
auto ofEverySize(Make make) {
  std::vector<decltype(make(std::string(), JobEntry()))> made;
  made.push_back(make("small", soleEntry()));
  made.push_back(make("medium", jobReport(20)));
  made.push_back(make("large", jobReport(5000)));
  return made;
}

}  // namespace zqxml::bench
