#include "tools/zqmsg/conversion.h"

#include <unistd.h>

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/object_stream.h"
#include "tools/zqmsg/output.h"
#include "tools/zqmsg/session.h"
#include "tools/zqmsg/verification.h"

namespace zqxml::tool {
namespace {

constexpr std::array<const char*, kFormNames.size()> kExtensions{
    ".xml", ".utf16.xml", ".bin", ".objects", ".json", ".jsonl", ".txt", ".html", ".html"};

bool isFolder(const std::string& path) {
  std::error_code ignored;
  return path.ends_with('/') || std::filesystem::is_directory(path, ignored);
}

TargetFailure tooManyMessages(const std::string& where, Form form) {
  return TargetFailure(
      Failure(kFailed, where,
              "brings a second message, and a file of the form " + std::string(formName(form)) + " holds one")
          .advise("write into a folder (-o FOLDER/), or use --to objects or --to jsonl"));
}

}  // namespace

Conversion::Conversion(const ConvertOptions& options, Session& session)
    : options_(options), session_(session), attempts_(session) {}

void Conversion::run() {
  if (isFolder(options_.output)) {
    intoFolder();
  } else {
    intoOne();
  }
  session_.console.endProgress();
}

bool Conversion::take(MessageSource& source) const {
  if (options_.number == 0) return source.take();
  if (source.number() >= options_.number) return false;
  while (source.number() < options_.number)
    if (!source.take())
      throw Failure(kFailed, source.name(),
                    "has " + std::to_string(source.number()) + " objects, and none of number " +
                        std::to_string(options_.number));
  return true;
}

std::string Conversion::converted(MessageSource& source) {
  const MessagePtr message = source.message();
  const MessagePtr original = options_.verify ? std::make_unique<XNMessageBase>(*message) : nullptr;
  std::string bytes = encode(*message, options_.write, source.where(), session_.log);
  for (const std::string& line : session_.log.take()) session_.console.warn(source.where(), line);
  if (original != nullptr) verify(*original, bytes, options_.write, source.where(), session_);
  session_.console.progress("messages converted", ++written_, {source.position(), source.size()});
  return bytes;
}

bool Conversion::severalFit() const {
  const Form form = options_.write.form;
  return isStream(form) ||
         (options_.output == "-" && (form == Form::kXml || form == Form::kText || form == Form::kJson));
}

// --- Into one target

void Conversion::intoOne() {
  if (options_.files.size() > 1 && !severalFit())
    throw tooManyMessages(options_.files[1], options_.write.form);
  Output output(options_.output);
  bool anyWhole = false;
  for (const std::string& file : options_.files) {
    const bool whole = copyWhole(output, [&] {
      MessageSource source(file, options_.from, session_, options_.format);
      source.onWait([&output] { output.show(); });
      copy(source, output);
    });
    anyWhole = anyWhole || whole;
  }
  if (only_) put(std::move(*only_), output);
  if (lineOpen_ && (written_ > 1 || isatty(STDOUT_FILENO) == 1)) output.write("\n");
  // A file that was there is not given up for nothing.
  if (anyWhole || !output.canRollBack()) output.commit();
}

template <class Copy>
bool Conversion::copyWhole(Output& output, Copy copy) {
  const std::uint64_t before = attempts_.failures();
  const std::uint64_t start = output.position();
  attempts_.attempt(copy);
  if (attempts_.failures() == before) return true;
  if (output.canRollBack()) {
    output.rollBack(start);
    only_.reset();
  }
  return false;
}

void Conversion::copy(MessageSource& source, Output& output) {
  const std::uint64_t before = source.number();
  while (take(source)) {
    if (only_) throw tooManyMessages(source.name(), options_.write.form);
    std::string bytes;
    if (!attempts_.attempt([&] { bytes = converted(source); })) continue;
    if (severalFit()) {
      put(std::move(bytes), output);
    } else {
      only_ = std::move(bytes);
    }
  }
  if (source.number() == before && !isStream(options_.write.form))
    throw Failure(kFailed, source.name(), "holds no message");
}

void Conversion::put(std::string bytes, Output& output) {
  if (options_.write.form == Form::kObjects) return writeObjectRecord(output, bytes);
  if (lineOpen_) output.write("\n");
  output.write(bytes);
  lineOpen_ = severalFit() && !bytes.ends_with('\n');
}

// --- Into a folder

void Conversion::intoFolder() {
  std::error_code error;
  std::filesystem::create_directories(options_.output, error);
  if (error) throw Failure(kFailed, options_.output, "cannot be made: " + error.message());
  for (const std::string& file : options_.files) {
    attempts_.attempt([&] {
      MessageSource source(file, options_.from, session_, options_.format);
      intoFolder(source);
    });
  }
}

void Conversion::intoFolder(MessageSource& source) {
  if (isStream(options_.write.form)) {
    Output output(pathInFolder(source));
    if (copyWhole(output, [&] { copy(source, output); }) || !output.canRollBack()) output.commit();
    return;
  }
  while (take(source)) {
    attempts_.attempt([&] {
      const std::string bytes = converted(source);
      Output output(pathInFolder(source));
      output.write(bytes);
      output.commit();
    });
  }
}

std::string Conversion::pathInFolder(MessageSource& source) {
  std::string name = std::filesystem::path(source.name()).stem().string();
  if (!isStream(options_.write.form) && source.isOneOfMany()) {
    const std::string number = std::to_string(source.number());
    name += "-" + std::string(number.size() < 6 ? 6 - number.size() : 0, '0') + number;
  }
  name += kExtensions[static_cast<std::size_t>(options_.write.form)];
  std::string path = (std::filesystem::path(options_.output) / name).string();
  if (!produced_.insert(path).second)
    throw Failure(kFailed, source.name(), "would be written over " + path + ", which another input became")
        .advise("convert files of the same name into different folders");
  return path;
}

}  // namespace zqxml::tool
