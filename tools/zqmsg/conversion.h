#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/zqmsg/codec.h"
#include "tools/zqmsg/object_stream.h"

namespace zqxml::tool {

class MessageSource;
class Output;
struct Session;

struct ConvertOptions {
  std::vector<std::string> files;      ///< "-" is standard input
  std::optional<Form> from;            ///< detected when not given
  std::optional<RecordFormat> format;  ///< of files of objects; detected when not given
  std::uint64_t number = 0;            ///< the one object of a file that is wanted; 0 for all
  WriteOptions write;
  std::string output = "-";  ///< a file, a folder, or "-" for standard output
};

/// Reads the messages of all inputs and writes them in another form.
///
/// Into one file go any number of messages as objects, and exactly one in every other form; standard output
/// takes any number as XML and as text too, each on lines of its own. In a folder every message becomes a
/// file, named after its input, and every input a file of objects; there the others are still converted when
/// one fails. Throws Failure.
class Conversion {
 public:
  Conversion(const ConvertOptions& options, Session& session);
  void run();

 private:
  /// Whether the one target takes more than one message.
  bool severalFit() const;
  void intoOne();
  void intoFolder();
  void copyObjects(MessageSource& source, Output& output);
  void copyDocument(MessageSource& source, Output& output);
  void convertInFolder(const std::string& file);
  MessagePtr next(MessageSource& source) const;
  std::string encoded(XNMessageBase& message, const MessageSource& source);
  std::string pathInFolder(const MessageSource& source);

  const ConvertOptions& options_;
  Session& session_;
  std::uint64_t written_ = 0;
  bool lineOpen_ = false;  // standard output stands behind a text without a line end
  std::set<std::string> produced_;
};

}  // namespace zqxml::tool
