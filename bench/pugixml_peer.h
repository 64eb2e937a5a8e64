// The messages in XML by another library: pugixml, a tree made for speed.
#pragma once

#include <bench/job_data.h>

#include <cstddef>
#include <string>

namespace zqxml::bench {

/// Builds a tree of the message and saves it, without indentation.
std::string savedByPugixml(const JobEntry& entry);
std::string savedByPugixml(const JobReport& report);

/// Parses such a text and reads every value of it; how many there were.
std::size_t readByPugixml(const std::string& xml);

}  // namespace zqxml::bench
