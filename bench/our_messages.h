#pragma once

#include <bench/job_data.h>
#include <zqxml/catalogue/generated/Bench.h>
#include <zqxml/message/xn_message_base.h>

#include <memory>
#include <type_traits>

namespace zqxml::bench {

/// The class of our message that is filled from such data.
template <class Data>
using OurClass = std::conditional_t<std::is_same_v<Data, JobEntry>, Bench::JobEntry, Bench::JobReport>;

/// The message of that content, every field set.
std::unique_ptr<XNMessageBase> ourMessage(const JobEntry& entry);
std::unique_ptr<XNMessageBase> ourMessage(const JobReport& report);

}  // namespace zqxml::bench
