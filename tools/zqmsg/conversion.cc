#include "tools/zqmsg/conversion.h"

#include <unistd.h>

#include <array>
#include <filesystem>
#include <system_error>

#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/object_stream.h"
#include "tools/zqmsg/output.h"
#include "tools/zqmsg/session.h"

namespace zqxml::tool {
namespace {

constexpr std::array<const char*, kFormNames.size()> kExtensions{".xml", ".utf16.xml", ".bin", ".objects",
                                                                 ".txt", ".html",      ".html"};

bool isFolder(const std::string& path) {
  std::error_code ignored;
  return path.ends_with('/') || std::filesystem::is_directory(path, ignored);
}

Failure tooManyMessages(const std::string& where, Form form) {
  return Failure(
             kFailed, where,
             "brings a second message, and a file of the form " + std::string(formName(form)) + " holds one")
      .advise("write into a folder (-o FOLDER/), or use --to objects");
}

}  // namespace

Conversion::Conversion(const ConvertOptions& options, Session& session)
    : options_(options), session_(session) {}

void Conversion::run() {
  if (isFolder(options_.output)) {
    intoFolder();
  } else {
    intoOne();
  }
}

std::string Conversion::encoded(XNMessageBase& message, const MessageSource& source) {
  std::string bytes = encode(message, options_.write, source.where(), session_.log);
  for (const std::string& line : session_.log.take()) session_.console.warn(source.where(), line);
  session_.console.progress("messages converted", ++written_, {source.position(), source.size()});
  return bytes;
}

MessagePtr Conversion::next(MessageSource& source) const {
  if (options_.number == 0) return source.next();
  if (source.number() >= options_.number) return nullptr;
  while (source.number() + 1 < options_.number && source.skip()) {
  }
  if (MessagePtr message = source.next()) return message;
  throw Failure(kFailed, source.name(),
                "has " + std::to_string(source.number()) + " objects, and none of number " +
                    std::to_string(options_.number));
}

bool Conversion::severalFit() const {
  return options_.write.form == Form::kObjects ||
         ((options_.write.form == Form::kXml || options_.write.form == Form::kText) &&
          options_.output == "-");
}

void Conversion::intoOne() {
  if (options_.files.size() > 1 && !severalFit())
    throw tooManyMessages(options_.files[1], options_.write.form);
  Output output(options_.output);
  for (const std::string& file : options_.files) {
    MessageSource source(file, options_.from, session_, options_.format);
    if (options_.write.form == Form::kObjects) {
      copyObjects(source, output);
    } else {
      copyDocument(source, output);
    }
  }
  if (lineOpen_ && (written_ > 1 || isatty(STDOUT_FILENO) == 1)) output.write("\n");
  session_.console.endProgress();
  output.commit();
}

void Conversion::copyObjects(MessageSource& source, Output& output) {
  while (const MessagePtr message = next(source)) writeObjectRecord(output, encoded(*message, source));
}

void Conversion::copyDocument(MessageSource& source, Output& output) {
  MessagePtr message = next(source);
  if (message == nullptr) throw Failure(kFailed, source.name(), "holds no message");
  while (message != nullptr) {
    const std::string bytes = encoded(*message, source);
    message = next(source);
    if (message != nullptr && !severalFit()) throw tooManyMessages(source.name(), options_.write.form);
    if (lineOpen_) output.write("\n");
    output.write(bytes);
    lineOpen_ = severalFit() && !bytes.ends_with('\n');
  }
}

void Conversion::intoFolder() {
  std::error_code error;
  std::filesystem::create_directories(options_.output, error);
  if (error) throw Failure(kFailed, options_.output, "cannot be made: " + error.message());
  for (const std::string& file : options_.files) {
    try {
      convertInFolder(file);
    } catch (const Failure& failure) {
      session_.console.report(failure);
      if (session_.status == kDone) session_.status = failure.status();
    }
  }
  session_.console.endProgress();
}

void Conversion::convertInFolder(const std::string& file) {
  MessageSource source(file, options_.from, session_, options_.format);
  if (options_.write.form == Form::kObjects) {
    Output output(pathInFolder(source));
    copyObjects(source, output);
    output.commit();
    return;
  }
  while (const MessagePtr message = next(source)) {
    const std::string bytes = encoded(*message, source);
    Output output(pathInFolder(source));
    output.write(bytes);
    output.commit();
  }
}

std::string Conversion::pathInFolder(const MessageSource& source) {
  const bool many = source.form() == Form::kObjects && options_.write.form != Form::kObjects;
  std::string name = std::filesystem::path(source.name()).stem().string();
  if (many) {
    const std::string number = std::to_string(source.number());
    name += "-" + std::string(number.size() < 6 ? 6 - number.size() : 0, '0') + number;
  }
  name += kExtensions[static_cast<std::size_t>(options_.write.form)];
  const std::string path = (std::filesystem::path(options_.output) / name).string();
  if (!produced_.insert(path).second)
    throw Failure(kFailed, source.name(), "would be written over " + path + ", which another input became")
        .advise("convert files of the same name into different folders");
  return path;
}

}  // namespace zqxml::tool
