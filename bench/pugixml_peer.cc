#include <bench/measurements.h>
#include <bench/pugixml_peer.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>

#include <pugixml.hpp>

namespace zqxml::bench {
namespace {

using pugi::xml_attribute;
using pugi::xml_document;
using pugi::xml_node;

template <class Value>
void put(xml_node node, const char* name, const Value& value) {
  node.append_attribute(name).set_value(value);
}
void put(xml_node node, const char* name, const std::string& value) {
  put(node, name, value.c_str());
}
void putNumber(xml_node node, const char* name, std::int64_t value) {
  put(node, name, static_cast<long long>(value));
}

void write(xml_node node, const JobEntry& entry) {
  putNumber(node, "id", entry.id);
  put(node, "client", entry.client);
  put(node, "path", entry.path);
  put(node, "policy", entry.policy);
  putNumber(node, "size", entry.size);
  putNumber(node, "start", entry.start);
  putNumber(node, "state", entry.state);
}

void write(xml_node root, const JobReport& report) {
  for (std::size_t i = 0; i < kTextNames.size(); ++i) put(root, kTextNames[i], report.texts[i]);
  put(root, "comment", toUtf8(report.comment));
  for (std::size_t i = 0; i < kCountNames.size(); ++i) putNumber(root, kCountNames[i], report.counts[i]);
  for (std::size_t i = 0; i < kTotalNames.size(); ++i) putNumber(root, kTotalNames[i], report.totals[i]);
  for (std::size_t i = 0; i < kMarkNames.size(); ++i) putNumber(root, kMarkNames[i], report.marks[i] ? 1 : 0);
  for (std::size_t i = 0; i < kRateNames.size(); ++i)
    root.append_attribute(kRateNames[i]).set_value(report.rates[i], 6);
  putNumber(root, "kind", report.kind);
  putNumber(root, "order", report.order);
  putNumber(root, "flags", report.flags);
  putNumber(root, "startTime", report.startTime);
  putNumber(root, "endTime", report.endTime);
  putNumber(root, "generatedAt", report.generatedAt);
  put(root, "digest", UlBase64::Encode(report.digest));
  write(root.append_child("largestJob"), report.largestJob);
  write(root.append_child("oldestJob"), report.oldestJob);
  for (const JobEntry& entry : report.jobs) write(root.append_child("jobs"), entry);
  for (const std::int32_t count : report.phaseCounts)
    putNumber(root.append_child("phaseCounts"), "val", count);
  for (const std::int64_t size : report.sizes) putNumber(root.append_child("sizes"), "val", size);
  for (const std::string& client : report.clients) put(root.append_child("clients"), "val", client);
  for (const std::string& tag : report.tags) put(root.append_child("tags"), "val", tag);
  for (const auto& [client, bytes] : report.bytesByClient) {
    const xml_node entry = root.append_child("bytesByClient");
    put(xml_node(entry).append_child("__mapKey__"), "val", client);
    putNumber(xml_node(entry).append_child("__mapValue__"), "val", bytes);
  }
}

struct StringWriter : pugi::xml_writer {
  void write(const void* data, std::size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }
  std::string text;
};

template <class Data>
std::string saved(const char* rootName, const Data& data) {
  xml_document document;
  write(document.append_child(rootName), data);
  StringWriter writer;
  document.save(writer, "", pugi::format_raw | pugi::format_no_declaration);
  return std::move(writer.text);
}

/// Reads every value as what it looks like: a number when its first character is a digit.
std::size_t readAll(xml_node node, std::int64_t& sum) {
  std::size_t count = 0;
  for (const xml_attribute attribute : node.attributes()) {
    const char* const text = attribute.value();
    sum += *text >= '0' && *text <= '9' ? attribute.as_llong()
                                        : static_cast<std::int64_t>(std::string(text).size());
    ++count;
  }
  for (const xml_node child : node.children()) count += readAll(child, sum);
  return count;
}

}  // namespace

std::string savedByPugixml(const JobEntry& entry) {
  return saved("Bench_JobEntry", entry);
}

std::string savedByPugixml(const JobReport& report) {
  return saved("Bench_JobReport", report);
}

std::size_t readByPugixml(const std::string& xml) {
  xml_document document;
  require(document.load_buffer(xml.data(), xml.size()), "the peer does not read the text");
  std::int64_t sum = 0;
  const std::size_t count = readAll(document, sum);
  return sum == 0 ? 0 : count;
}

}  // namespace zqxml::bench
