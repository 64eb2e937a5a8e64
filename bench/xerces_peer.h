// The peers of the XML form: a DOM build written by hand for these very messages, and a reader that keeps
// nothing.
#pragma once

#include <bench/job_data.h>

#include <memory>
#include <string>

namespace zqxml::bench {

/// The same text as XNMessageBase::serialize gives: a DOM tree built field by field, written by a
/// DOMLSSerializer. REQUIRES: Xerces-C is initialized.
std::string writtenByHand(const JobEntry& entry);
std::string writtenByHand(const JobReport& report);

/// A SAX2XMLReader with an empty handler. REQUIRES: Xerces-C is initialized, as long as it lives.
class BareReader {
 public:
  BareReader();
  ~BareReader();

  void parse(const std::string& xml);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace zqxml::bench
