// What a logged message costs its caller: nothing that counts at a level that is switched off, and a small
// share of encoding the message when it is written, since a thread of the pool does the rest.
//
// Times are those of the calling thread's processor; a figure is the 10th percentile of its rounds, and the
// rounds of all figures take turns.
#include <bench/job_data.h>
#include <bench/our_messages.h>
#include <time.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/logging/xml_binary_logger.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/xml/xml_encoder.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace zqxml::bench {
namespace {

constexpr int kRounds = 2000;
constexpr int kCallsSwitchedOff = 10'000;  // in one round
constexpr double kReachSwitchedOff = 20;   // ns
constexpr double kReachShare = 0.1;

double threadNanoseconds() {
  timespec now = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

class Figure {
 public:
  template <class Work>
  void measure(Work work) {
    const double start = threadNanoseconds();
    work();
    times_.push_back(threadNanoseconds() - start);
  }
  double value() {
    std::sort(times_.begin(), times_.end());
    return times_[times_.size() / 10];
  }

 private:
  std::vector<double> times_;
};

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "log_bench: %s\n", what);
  std::exit(1);
}

void settle() {
  XmlLoggerHelper& pool = *XmlLoggerHelper::getXmlLoggerInstance();
  require(pool.waitUntilIdle(std::chrono::seconds(60)), "a line is never written");
  require(pool.getCurrentAvailableThreadCount() == 20, "the pool is not free");
}

std::string maskedXml(XNMessageBase& message) {
  EncodingFlags flags;
  flags.encoding_options = MASK_PASSWORDS | MASK_SENSITIVE;
  std::string xml;
  require(XMLEncoder(flags, nullptr).serialize(message, xml) == XN_MSG_OK,
          "the message is not written as XML");
  return xml;
}

void printShare(const char* what, double caller, double encoding) {
  std::printf("| %-31s | %9.0f ns | %9.0f ns | %5.3f | <= %4.2f  | %-3s |\n", what, caller, encoding,
              caller / encoding, kReachShare, caller / encoding <= kReachShare ? "yes" : "NO");
}

void run() {
  const std::unique_ptr<XNMessageBase> message = ourMessage(jobReport(20));
  BinaryBuffer buffer;
  require(message->SerializeBinary(buffer) != 0, "the message has no binary form");
  XmlBinaryLogger logger;
  EvDebug::setSink([](const LogLine& line) { require(line.text.size() > 1000, "a line has no message"); });

  Figure switchedOff;
  Figure withBuffer;
  Figure withObject;
  Figure encoding;
  for (int round = 0; round < kRounds; ++round) {
    switchedOff.measure([&] {
      for (int i = 0; i < kCallsSwitchedOff; ++i)
        logger.DebugLvl("bench", 5, "%d %s %bxml_zq", &buffer, i, "text");
    });
    withBuffer.measure([&] { logger.Debug("bench", "%d %s %bxml_zq", &buffer, round, "text"); });
    settle();
    withObject.measure([&] { logger.Debug("bench", "%d %s %bxml_zq", message.get(), round, "text"); });
    settle();
    encoding.measure([&] { maskedXml(*message); });
  }
  EvDebug::setSink({});

  const double off = switchedOff.value() / kCallsSwitchedOff;
  std::printf("| logging the medium message      |       caller |     encoding | ratio |    reach | met |\n");
  std::printf("|---------------------------------|-------------:|-------------:|------:|---------:|-----|\n");
  std::printf("| %-31s | %9.2f ns |              |       | <= %2.0f ns | %-3s |\n",
              "level switched off, buffer", off, kReachSwitchedOff, off <= kReachSwitchedOff ? "yes" : "NO");
  const double whole = encoding.value();
  printShare("written by a free pool, buffer", withBuffer.value(), whole);
  printShare("written by a free pool, object", withObject.value(), whole);
}

}  // namespace
}  // namespace zqxml::bench

int main() {
  zqxml::bench::run();
}
