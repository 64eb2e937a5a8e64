#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

/// A call with its arguments, as they stand in the source, one line each.
struct Call {
  std::string name;
  std::vector<std::string> arguments;
  std::size_t line = 0;
  std::size_t position = 0;  ///< in the source
};

/// What writes a line of the log, or passes a text on to what does.
struct LogFunction {
  std::string_view name;  ///< as its calls spell it
  std::string_view file;  ///< beginning of the path of the files in which it is called; empty for all
  int function;           ///< argument with the name that the line shows; below 0 `of` is it
  std::string_view of;
  int level;  ///< argument with the level; below 0 `fixedLevel` is it
  int fixedLevel;
  int text;  ///< argument with the text
};

/// A text that no call has as a literal: where a variable comes from.
struct TextSource {
  std::string_view file;        ///< of the call
  std::string_view expression;  ///< its text argument, or the one behind a format that is nothing but "%s"
  std::string_view source;   ///< file with the texts; empty when the calls of another LogFunction have them
  std::string_view pattern;  ///< finds them: its groups are the pieces of one text, with "%s" between
};

/// A text that is written to the log.
struct LogText {
  std::string text;  ///< as the format stands in the source, with single blanks
  int level = 0;
  std::vector<std::string> functions;  ///< what the line names, if that can be told: one of these
  std::string place;                   ///< file and line
};

/// The texts of a source, and what cannot be told.
struct LogTexts {
  std::vector<LogText> texts;
  std::vector<std::string> problems;   ///< a line each: a call whose text nobody knows
  std::vector<std::string_view> used;  ///< expressions of the text sources that were needed
};

/// The functions of the library that write lines, and the variables that hold their texts.
const std::vector<LogFunction>& logFunctions();
const std::vector<TextSource>& textSources();

/// C++ without comments; what stood in them is blank, so that lines stay.
std::string withoutComments(std::string_view source);

/// All calls of a function in a source without comments. `name` is an identifier, or one with what has to
/// stand before it ("EvDebug::DebugLvl"). A declaration is no call.
std::vector<Call> callsOf(std::string_view name, const std::string& source);

/// The string literals of an expression; neighbours are one, the branches of a condition are two.
std::vector<std::string> literalsOf(const std::string& expression);

/// The texts that a file of the library writes. `read` gives the content of a file by its path.
LogTexts logTextsOf(const std::string& file, std::string (*read)(const std::string& file));

}  // namespace zqxml
