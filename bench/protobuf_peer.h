// The peer of the binary form: protobuf's generated classes, and DynamicMessage over their descriptor.
#pragma once

#include <bench/job_data.h>
#include <google/protobuf/message.h>

#include <memory>

namespace zqxml::bench {

/// The message of that content in a generated class.
std::unique_ptr<google::protobuf::Message> generatedMessage(const JobEntry& entry);
std::unique_ptr<google::protobuf::Message> generatedMessage(const JobReport& report);

/// An empty DynamicMessage over the descriptor of `generated`; it lives as long as the process.
const google::protobuf::Message& dynamicPrototype(const google::protobuf::Message& generated);

}  // namespace zqxml::bench
