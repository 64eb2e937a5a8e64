// A message as the contenders of a measurement have it.
#pragma once

#include <bench/our_messages.h>
#include <bench/protobuf_peer.h>
#include <google/protobuf/message.h>
#include <zqxml/message/xn_message_base.h>

#include <memory>
#include <string>
#include <utility>

namespace zqxml::bench {

struct Subject {
  template <class Data>
  Subject(std::string called, const Data& data)
      : name(std::move(called)), ours(ourMessage(data)), generated(generatedMessage(data)) {}

  std::string name;
  std::unique_ptr<XNMessageBase> ours;
  std::unique_ptr<google::protobuf::Message> generated;
};

}  // namespace zqxml::bench
