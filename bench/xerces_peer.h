// The peers of the XML form: a DOM build written by hand for these very messages, and a reader that keeps
// nothing.
#pragma once

#include <bench/job_data.h>

#include <string>

namespace zqxml::bench {

/// The same text as XNMessageBase::serialize gives: a DOM tree built field by field, written by a
/// DOMLSSerializer. REQUIRES: Xerces-C is initialized.
std::string writtenByHand(const JobEntry& entry);
std::string writtenByHand(const JobReport& report);

/// Parses the text with a fresh SAX2XMLReader and an empty handler.
void parseBare(const std::string& xml);

}  // namespace zqxml::bench
