#include <zqxml/catalogue/lookup.h>
#include <zqxml/platform/format.h>

#include <memory>
#include <optional>
#include <string>

#include "tools/zqmsg/attempts.h"
#include "tools/zqmsg/class_name.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/conversion.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/object_scan.h"
#include "tools/zqmsg/object_stream.h"
#include "tools/zqmsg/output.h"
#include "tools/zqmsg/write_arguments.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples =
    R"(A file of objects holds messages in binary form, one behind the other. It has one of two
formats, which are told apart by themselves: a, lengths of four bytes, and b, a version field
and lengths in digits.

Examples:
  zqmsg objects ls all.objects
  zqmsg objects cat all.objects --number 7 --readable
  zqmsg objects check all.objects
  zqmsg objects repair broken.objects -o all.objects)";

struct Options {
  std::string file = "-";
  std::string format;
  std::string output;
  std::uint64_t number = 0;
  WriteArguments write;
};

// --- ls

/// The tag id in the header of a record's data, 0 when there is none.
std::uint32_t tagOf(const std::string& data) {
  std::uint32_t tag = 0;
  for (std::size_t i = 8; data.size() >= 8 && i-- > 4;) tag = tag << 8 | static_cast<unsigned char>(data[i]);
  return tag;
}

std::string classOf(std::uint32_t tag) {
  short subsystem = 0;
  int classIndex = 0;
  if (!catalogue::indicesFromTag(tag, subsystem, classIndex)) return "(not in the catalogue)";
  return std::string(gSubsystemTable[subsystem].name) + '_' +
         catalogue::classAt(subsystem, classIndex)->getName();
}

void list(const Options& options, Session& session) {
  ByteSource source(options.file);
  if (options.format.empty()) formOf(source, Form::kObjects);
  ObjectReader objects(source, recordFormatByName(options.format));
  Output output("-");
  output.write("object      offset       bytes  tag id      class\n");
  std::string data;
  writeAsFarAsItGoes(output, session, [&] {
    while (objects.next(data)) {
      const std::uint32_t tag = tagOf(data);
      output.write(formatText("%6llu  %10llu  %10u  0x%08x  %s\n", objects.number(), objects.offset(),
                              objects.length(), tag, classOf(tag)));
      session.console.progress("objects listed", objects.number(), {source.position(), source.size()});
    }
  });
}

// --- cat

void print(const CLI::App& command, Options& options, Session& session) {
  ConvertOptions convert;
  convert.files = {options.file};
  convert.from = Form::kObjects;
  convert.format = recordFormatByName(options.format);
  convert.number = options.number;
  if (!options.output.empty()) convert.output = options.output;
  convert.write = options.write.options(command, "objects cat");
  Conversion(convert, session).run();
}

// --- check and repair

std::string told(const Stretch& stretch) {
  return "object " + std::to_string(stretch.number) + ", at byte " + std::to_string(stretch.offset) + ", " +
         stretch.damage;
}

RecordFormat formatToScan(PlacedFile& file, const Options& options) {
  const std::optional<RecordFormat> claimed = recordFormatByName(options.format);
  return claimed ? *claimed : formatOf(file);
}

struct Counts {
  std::uint64_t whole = 0;
  std::uint64_t damaged = 0;
  std::uint64_t lostBytes = 0;

  std::string text() const {
    return std::to_string(damaged) + " of " + std::to_string(whole + damaged) + " objects";
  }
};

/// Calls `whole` and `damaged` with every stretch.
template <class Whole, class Damaged>
Counts scan(PlacedFile& file, RecordFormat format, Console& console, Whole whole, Damaged damaged) {
  ObjectScan objects(file, format);
  Counts counts;
  Stretch stretch;
  while (objects.next(stretch)) {
    if (stretch.isWhole()) {
      ++counts.whole;
      whole(stretch);
    } else {
      ++counts.damaged;
      counts.lostBytes += stretch.end - stretch.offset;
      damaged(stretch);
    }
    console.progress("objects checked", stretch.number, {stretch.end, file.size()});
  }
  console.endProgress();
  return counts;
}

void checkFile(const Options& options, Session& session) {
  PlacedFile file(options.file);
  const RecordFormat format = formatToScan(file, options);
  Output output("-");
  const Counts counts = scan(
      file, format, session.console, [](const Stretch&) {},
      [&](const Stretch& stretch) {
        output.write(visible(told(stretch)) + "; bytes " + std::to_string(stretch.offset) + " to " +
                     std::to_string(stretch.end) + " are lost\n");
      });
  if (counts.damaged == 0)
    output.write(std::to_string(counts.whole) + " objects in " + std::to_string(file.size()) +
                 " bytes, no damage\n");
  output.commit();
  if (counts.damaged == 0) return;
  throw Failure(kFailed, file.name(), "damaged: " + counts.text())
      .advise("'zqmsg objects repair FILE -o COPY' keeps the others");
}

void repair(const Options& options, Session& session) {
  PlacedFile file(options.file);
  const RecordFormat format = formatToScan(file, options);
  Output output(options.output);
  if (format == RecordFormat::kB) output.write(kObjectsVersion);
  const Counts counts = scan(
      file, format, session.console, [&](const Stretch& stretch) { output.write(stretch.bytes); },
      [&](const Stretch& stretch) { session.console.warn(file.name(), told(stretch)); });
  if (counts.whole == 0 && counts.damaged != 0)
    throw Failure(kFailed, file.name(), "holds no whole object; nothing was written");
  output.commit();
  if (counts.damaged != 0)
    session.console.warn(file.name(), counts.text() + " left out, " + std::to_string(counts.lostBytes) +
                                          " of " + std::to_string(file.size()) + " bytes");
}

CLI::App& addStep(CLI::App& objects, Session& session, Options& options, const std::string& name,
                  const std::string& summary) {
  CLI::App& step = addCommand(objects, session, name, summary,
                              "Example:\n  zqmsg objects " + name + " all.objects" +
                                  (name == "repair" ? " -o repaired.objects" : ""));
  step.add_option("FILE", options.file, "File of objects; - or none is standard input");
  step.add_option("--format", options.format, "a or b; found out when not given")
      ->check(CLI::IsMember({"a", "b"}));
  return step;
}

}  // namespace

void addObjects(CLI::App& app, Session& session) {
  CLI::App& objects =
      addCommand(app, session, "objects", "Look at, check and repair files of objects", kExamples);
  objects.require_subcommand(1);
  const auto options = std::make_shared<Options>();

  CLI::App& ls = addStep(objects, session, *options, "ls", "List offsets, sizes and classes");
  ls.callback([options, &session] { list(*options, session); });

  CLI::App& cat =
      addStep(objects, session, *options, "cat", "Write the objects, or one of them, in any form");
  options->write.to = formName(Form::kXml);
  options->write.addTo(cat);
  cat.add_option("-o,--output", options->output, "File, or folder for many; none is standard output");
  cat.add_option("--number", options->number, "Only the object of this number, from 1")
      ->check([](const std::string& number) {
        const bool isNumber = number.find_first_not_of("0123456789") == std::string::npos;
        const bool isFromOne = isNumber && number.find_first_not_of('0') != std::string::npos;
        return std::string(isFromOne ? "" : "objects are numbered from 1");
      });
  cat.callback([&cat, options, &session] { print(cat, *options, session); });

  CLI::App& check = addStep(objects, session, *options, "check", "Find and name damage");
  check.callback([options, &session] { checkFile(*options, session); });

  CLI::App& mend = addStep(objects, session, *options, "repair", "Copy every whole object into a new file");
  mend.add_option("-o,--output", options->output, "The repaired copy; - is standard output")->required();
  mend.callback([options, &session] { repair(*options, session); });
}

}  // namespace zqxml::tool
