// What a logged message costs its caller: nothing that counts at a level that is switched off, and a small
// share of encoding the message when it is written, since a thread of the pool does the rest.
//
// Times are those of the calling thread's processor, and the rounds of all figures take turns.
#include <bench/job_data.h>
#include <bench/our_messages.h>
#include <bench/report.h>
#include <time.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/logging/xml_binary_logger.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/xml/xml_encoder.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
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

/// The times of one kind of work.
class Samples {
 public:
  template <class Work>
  void measure(Work work) {
    const double start = threadNanoseconds();
    work();
    times_.push_back(threadNanoseconds() - start);
  }
  /// Of one call, when each sample is `calls`.
  Figure figure(int calls = 1) const {
    std::vector<double> times = times_;
    for (double& time : times) time /= calls;
    return figureOf(std::move(times));
  }

 private:
  std::vector<double> times_;
};

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

int run(int argc, char** argv) {
  Report report(argc, argv);
  const std::unique_ptr<XNMessageBase> message = ourMessage(jobReport(20));
  BinaryBuffer buffer;
  require(message->SerializeBinary(buffer) != 0, "the message has no binary form");
  XmlBinaryLogger logger;
  EvDebug::setSink([](const LogLine& line) { require(line.text.size() > 1000, "a line has no message"); });

  const int rounds = report.isQuick() ? kRounds / 20 : kRounds;
  Samples switchedOff, withBuffer, withObject, encoding;
  for (int round = 0; round < rounds; ++round) {
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

  report.add({"Logging, switched off",
              {{"buffer", switchedOff.figure(kCallsSwitchedOff), {}, true, kReachSwitchedOff}}});
  const Figure whole = encoding.figure();
  report.add({"Logging the medium message",
              {{"buffer", withBuffer.figure(), whole, true, kReachShare},
               {"object", withObject.figure(), whole, true, kReachShare}},
              "ns",
              "caller",
              "encoding",
              "A free pool writes the line; the caller pays a share of what encoding the message costs."});
  return report.finish();
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
