#pragma once

#include <bench/job_data.h>
#include <zqxml/message/xn_message_base.h>

#include <memory>

namespace zqxml::bench {

/// The message of that content, every field set.
std::unique_ptr<XNMessageBase> ourMessage(const JobEntry& entry);
std::unique_ptr<XNMessageBase> ourMessage(const JobReport& report);

}  // namespace zqxml::bench
