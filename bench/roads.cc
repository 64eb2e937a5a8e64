#include <bench/report.h>
#include <bench/roads.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/render/default_render_context.h>
#include <zqxml/render/html_gui_summary_render_context.h>
#include <zqxml/render/html_render_context.h>
#include <zqxml/render/zq_xml_summary.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/xml_serializer.h>

#include <sstream>

namespace zqxml::bench {
namespace {

template <class Context>
std::string rendered(XNMessageBase& message, Context context) {
  ZqXMLFormatOptions options;
  require(ZqXMLSummary::getZqSummaryInfo(&message, &context, options) == XN_MSG_OK,
          "a message is not rendered");
  std::string text;
  context.DumpToString(text);
  return text;
}

std::unique_ptr<XNMessageBase> readFrom(const std::string& xml) {
  return std::unique_ptr<XNMessageBase>(XMLSerializer().unserialize(xml, false));
}

/// Lets the optimizer believe that somebody looks at it.
template <class Made>
void keep(const Made& made) {
  asm volatile("" : : "r"(&made) : "memory");
}

}  // namespace

RoadMessage::RoadMessage(Build maker, ReadFields reader, std::unique_ptr<XNMessageBase> message)
    : build_(std::move(maker)), readFields_(reader), message_(std::move(message)) {
  require(message_->serialize(xml_) == XN_MSG_OK, "the message is not written as XML");
  xmlForTheParser_ = xml_ + "<?end?>";
  for (const std::string* text : {&xml_, &xmlForTheParser_}) {
    const std::unique_ptr<XNMessageBase> back = readFrom(*text);
    require(back != nullptr && *back == *message_, "the XML form does not come back");
  }
  require(BinarySerializer::serialize(*message_, binary_) != 0, "the message has no binary form");
  const std::unique_ptr<XNMessageBase> back(BinarySerializer::unserialize(binary_, nullptr, false));
  require(back != nullptr && *back == *message_, "the binary form does not come back");
}

void RoadMessage::build() const {
  keep(build_().get());
}

void RoadMessage::readFields() const {
  Reading reading;
  readFields_(*message_, reading);
  keep(reading);
}

void RoadMessage::write() const {
  std::string out;
  keep(message_->serialize(out));
}

void RoadMessage::read() const {
  keep(readFrom(xml_).get());
}

void RoadMessage::readByTheParser() const {
  keep(readFrom(xmlForTheParser_).get());
}

void RoadMessage::encode() const {
  BinaryBuffer buffer;
  keep(BinarySerializer::serialize(*message_, buffer));
}

void RoadMessage::decode() {
  const std::unique_ptr<XNMessageBase> message(BinarySerializer::unserialize(binary_, nullptr, false));
  keep(message.get());
}

std::string RoadMessage::text() {
  std::ostringstream stream;
  return rendered(*message_, DefaultRenderContext(stream));
}

std::string RoadMessage::outline() {
  return rendered(*message_, HTMLRenderContext());
}

std::string RoadMessage::paragraph() {
  return rendered(*message_, HTMLGuiSummaryRenderContext());
}

const std::vector<Road>& allRoads() {
  static const std::vector<Road> roads{
      {"build and destroy", [](RoadMessage& m) { m.build(); }, false, true},
      {"read every field", [](RoadMessage& m) { m.readFields(); }},
      {"XML out", [](RoadMessage& m) { m.write(); }},
      {"XML out, Xerces road", [](RoadMessage& m) { m.write(); }, true},
      {"XML in", [](RoadMessage& m) { m.read(); }},
      {"XML in, Xerces road", [](RoadMessage& m) { m.readByTheParser(); }},
      {"binary out", [](RoadMessage& m) { m.encode(); }},
      {"binary in", [](RoadMessage& m) { m.decode(); }},
      {"text", [](RoadMessage& m) { keep(m.text().data()); }},
      {"HTML outline", [](RoadMessage& m) { keep(m.outline().data()); }},
      {"HTML paragraph", [](RoadMessage& m) { keep(m.paragraph().data()); }},
  };
  return roads;
}

WithRoad::WithRoad(const Road& road) : before_(XmlStartUp::process().setFastXml(!road.byTheLibrary)) {}

WithRoad::~WithRoad() {
  XmlStartUp::process().setFastXml(before_);
}

}  // namespace zqxml::bench
