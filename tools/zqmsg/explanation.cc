#include "tools/zqmsg/explanation.h"

#include <zqxml/binary/binary_explainer.h>
#include <zqxml/platform/format.h>

#include <algorithm>

#include "tools/zqmsg/console.h"
#include "tools/zqmsg/object_stream.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

constexpr std::size_t kBytesPerLine = 8;
constexpr std::size_t kMostLines = 8;

std::string hex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (!text.empty()) text += ' ';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace

Explanation::Explanation(Output& output) : output_(output) {
  output_.write("offset    bytes                    what        field = value\n");
}

bool Explanation::message(std::string_view bytes, std::uint64_t offset) {
  return explainBinary(bytes, [&](const BinaryNote& told) { note(told, bytes, offset); });
}

void Explanation::versionField(std::string_view field) {
  line(0, field, "", "version", "1");
}

bool Explanation::record(const ObjectReader& objects, std::string_view data) {
  output_.write("object " + std::to_string(objects.number()) + '\n');
  line(objects.offset(), objects.field(), "", "length", std::to_string(objects.length()));
  return message(data, objects.offset() + objects.field().size());
}

void Explanation::note(const BinaryNote& told, std::string_view bytes, std::uint64_t offset) {
  const std::string_view run = bytes.substr(std::min<std::size_t>(told.offset, bytes.size()), told.length);
  line(offset + told.offset, run, told.field, told.what, told.problem ? "!! " + told.value : told.value);
}

void Explanation::line(std::uint64_t offset, std::string_view bytes, std::string_view field,
                       std::string_view what, std::string_view value) {
  std::string told = visible(field);
  if (!value.empty()) told += (told.empty() ? "" : " = ") + visible(value);
  std::string first =
      formatText("%08llx  %-23s  %-10s  ", offset, hex(bytes.substr(0, kBytesPerLine)), what) + told;
  first.erase(first.find_last_not_of(' ') + 1);
  output_.write(first + '\n');
  for (std::size_t at = kBytesPerLine; at < bytes.size(); at += kBytesPerLine) {
    if (at == kBytesPerLine * kMostLines) {
      output_.write("          ... " + std::to_string(bytes.size() - at) + " more bytes\n");
      return;
    }
    output_.write(formatText("%08llx  %s\n", offset + at, hex(bytes.substr(at, kBytesPerLine))));
  }
}

}  // namespace zqxml::tool
