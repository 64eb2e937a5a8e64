// The roads of a message, each as one call that makes its output anew.
#pragma once

#include <bench/job_data.h>
#include <bench/our_messages.h>
#include <bench/typed_reading.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/message/xn_message_base.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zqxml::bench {

/// One message in every form that a road starts from. Belongs to one thread, and its roads with it.
class RoadMessage {
 public:
  /// Ends the program when a form does not come back as the message that it was made of.
  template <class Data>
  explicit RoadMessage(const Data& data) : RoadMessage(data, ourMessage(data)) {}
  /// The same with a message of that class which is not just as the data: those are only for building.
  template <class Data>
  RoadMessage(const Data& data, std::unique_ptr<XNMessageBase> message)
      : RoadMessage([data] { return ourMessage(data); },
                    [](const XNMessageBase& of, Reading& reading) {
                      readTyped(static_cast<const OurClass<Data>&>(of), reading);
                    },
                    std::move(message)) {}

  XNMessageBase& message() { return *message_; }
  const std::string& xml() const { return xml_; }
  BinaryBuffer& binary() { return binary_; }

  // Objects: built and destroyed again; every set field read by its accessor.
  void build() const;
  void readFields() const;
  // XML.
  void write() const;
  void read() const;
  /// The same text in front of a processing instruction, which only the parser takes.
  void readByTheParser() const;
  // The binary form.
  void encode() const;
  void decode();
  // For people: as text, as HTML with an outline and as one HTML paragraph.
  std::string text();
  std::string outline();
  std::string paragraph();

 private:
  using Build = std::function<std::unique_ptr<XNMessageBase>()>;
  using ReadFields = void (*)(const XNMessageBase&, Reading&);
  RoadMessage(Build maker, ReadFields reader, std::unique_ptr<XNMessageBase> message);

  Build build_;
  ReadFields readFields_;
  std::unique_ptr<XNMessageBase> message_;
  std::string xml_;
  std::string xmlForTheParser_;
  BinaryBuffer binary_;
};

struct Road {
  std::string name;
  std::function<void(RoadMessage&)> run;
  /// Whether it needs the roads beside the XML library closed (WithRoad).
  bool byTheLibrary = false;
  /// Whether it begins with the data and not with the message.
  bool fromData = false;
};

/// All of them, in the order of the tables.
const std::vector<Road>& allRoads();

/// Opens or closes the roads beside the XML library as a road needs it, for the whole process and the life of
/// the object.
class WithRoad {
 public:
  explicit WithRoad(const Road& road);
  ~WithRoad();
  WithRoad(const WithRoad&) = delete;
  WithRoad& operator=(const WithRoad&) = delete;

 private:
  bool before_;
};

}  // namespace zqxml::bench
