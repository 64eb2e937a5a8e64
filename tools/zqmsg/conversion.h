#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/zqmsg/attempts.h"
#include "tools/zqmsg/codec.h"
#include "tools/zqmsg/object_stream.h"

namespace zqxml::tool {

class MessageSource;
class Output;

struct ConvertOptions {
  std::vector<std::string> files;      ///< "-" is standard input
  std::optional<Form> from;            ///< detected when not given
  std::optional<RecordFormat> format;  ///< of files of objects; detected when not given
  std::uint64_t number = 0;            ///< the one object of a file that is wanted; 0 for all
  WriteOptions write;
  bool verify = false;       ///< what was written is read back and compared
  std::string output = "-";  ///< a file, a folder, or "-" for standard output
};

/// Reads the messages of all inputs and writes them in another form.
///
/// Into one file go any number of messages as objects or lines, and exactly one in every other form; standard
/// output takes any number as XML, text and JSON too, each on lines of its own. In a folder every message
/// becomes a file, named after its input, and every input a file of objects or lines.
///
/// An input, object or line that fails is reported, and the others are still converted; the session has the
/// status of the first. In a stream just what failed is missing. In a file no input is in part, and a file
/// that was there stays when none is whole. What cannot be written ends the run: throws Failure.
class Conversion {
 public:
  Conversion(const ConvertOptions& options, Session& session);
  void run();

 private:
  /// Whether the one target takes more than one message.
  bool severalFit() const;
  void intoOne();
  void intoFolder();
  void copy(MessageSource& source, Output& output);
  /// Runs `copy` for an input; when it fails, in whole or in part, a file has nothing of it.
  template <class Copy>
  bool copyWhole(Output& output, Copy copy);
  void put(std::string bytes, Output& output);
  void intoFolder(MessageSource& source);
  /// Takes the next message that is wanted; false when there is none.
  bool take(MessageSource& source) const;
  /// The message that was taken, in the form to write.
  std::string converted(MessageSource& source);
  std::string pathInFolder(MessageSource& source);

  const ConvertOptions& options_;
  Session& session_;
  std::uint64_t written_ = 0;
  Attempts attempts_;
  std::optional<std::string> only_;  // the message of a target that takes one
  bool lineOpen_ = false;            // standard output stands behind a text without a line end
  std::set<std::string> produced_;
};

}  // namespace zqxml::tool
