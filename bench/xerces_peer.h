// The peers of the XML form: DOM trees built by code written for these very messages, and a reader that keeps
// nothing.
#pragma once

#include <bench/job_data.h>

#include <memory>
#include <string>

namespace zqxml::bench {

/// The same text as XNMessageBase::serialize gives: a DOM tree built field by field, written by a
/// DOMLSSerializer. Names and values become wide as in the samples of Xerces-C, by XMLString::transcode, or
/// names are kept and no transcoder is asked. `Data` is one of job_data.h. REQUIRES: Xerces-C is initialized.
template <class Data>
std::string writtenByHand(const Data& data);
template <class Data>
std::string writtenWithNamesKept(const Data& data);

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
