#include "tests/docs/log_calls.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>

namespace zqxml {
namespace {

bool isNameChar(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// Whether a literal begins at `i`, and no quote that parts the digits of a number.
bool beginsLiteral(std::string_view source, std::size_t i) {
  if (source[i] != '\'') return source[i] == '"';
  std::size_t start = i;
  while (start > 0 && (isNameChar(source[start - 1]) || source[start - 1] == '\'')) --start;
  return std::isdigit(static_cast<unsigned char>(source[start])) == 0;
}

/// Index behind the literal that begins at `i`.
std::size_t endOfLiteral(std::string_view source, std::size_t i) {
  const char quote = source[i];
  for (++i; i < source.size() && source[i] != quote; ++i)
    if (source[i] == '\\') ++i;
  return std::min(i + 1, source.size());
}

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\n");
  if (first == text.npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t\n") - first + 1));
}

/// The arguments of the call whose bracket opens at `open`.
std::vector<std::string> argumentsAt(std::string_view source, std::size_t open) {
  std::vector<std::string> arguments(1);
  int depth = 0;
  for (std::size_t i = open; i < source.size();) {
    const char c = source[i];
    if (beginsLiteral(source, i)) {
      const std::size_t end = endOfLiteral(source, i);
      arguments.back() += source.substr(i, end - i);
      i = end;
      continue;
    }
    if (c == '(' || c == '[' || c == '{') ++depth;
    if (c == ')' || c == ']' || c == '}') --depth;
    if (depth == 0) break;
    if (c == ',' && depth == 1)
      arguments.emplace_back();
    else if (i != open)
      arguments.back() += c;
    ++i;
  }
  for (std::string& argument : arguments) argument = trimmed(argument);
  return arguments;
}

/// Whether the words of a format are all in its arguments.
bool isBare(const std::string& format) {
  return format == "%s" || format == "[%s]";
}

/// What an expression stands for: a literal, the constant of its name that was defined last before the call,
/// or, for a constant of a class, all of that name.
std::vector<std::string> namesOf(const std::string& expression, const std::string& source, std::size_t call) {
  std::vector<std::string> names = literalsOf(expression);
  const std::size_t colon = expression.rfind(':');
  const std::string constant = colon == expression.npos ? expression : expression.substr(colon + 1);
  if (!names.empty() || constant.size() < 2 || constant[0] != 'k' || std::isupper(constant[1]) == 0)
    return names;
  const std::regex definition("\\b" + constant + R"re((?:\[\])?\s*=\s*("(?:[^"\\]|\\.)*"))re");
  for (std::sregex_iterator match(source.begin(), source.end(), definition), end; match != end; ++match) {
    if (colon == expression.npos) {
      if (static_cast<std::size_t>(match->position()) > call) break;
      names.clear();
    }
    for (const std::string& text : literalsOf((*match)[1])) names.push_back(text);
  }
  return names;
}

/// Without blanks at the ends, and with single ones in between, as a page shows it.
std::string shown(std::string_view text) {
  std::string result;
  for (const char c : trimmed(text))
    if (c != ' ' || result.back() != ' ') result += c;
  return result;
}

/// The texts of a source that a pattern finds.
std::vector<std::string> textsBy(std::string_view pattern, const std::string& source) {
  const std::regex expression{std::string(pattern)};
  std::vector<std::string> texts;
  for (std::sregex_iterator match(source.begin(), source.end(), expression), end; match != end; ++match) {
    std::string text = (*match)[1];
    for (std::size_t group = 2; group < match->size(); ++group) text += "%s" + (*match)[group].str();
    texts.push_back(text);
  }
  return texts;
}

class Collector {
 public:
  Collector(const std::string& file, std::string (*read)(const std::string&))
      : file_(file), read_(read), source_(withoutComments(read(file))) {}

  LogTexts collect() {
    for (const LogFunction& function : logFunctions())
      if (file_.starts_with(function.file))
        for (const Call& call : callsOf(function.name, source_)) add(function, call);
    return std::move(found_);
  }

 private:
  void add(const LogFunction& function, const Call& call) {
    const std::string place = file_ + ':' + std::to_string(call.line);
    const auto size = static_cast<int>(call.arguments.size());
    if (function.text >= size || function.level >= size)
      return found_.problems.push_back(place + ": " + call.name + " is called in an unknown way");
    LogText text;
    text.place = place;
    text.level = function.fixedLevel;
    if (function.level >= 0) {
      const std::string& level = call.arguments[static_cast<std::size_t>(function.level)];
      text.level = level.find_first_not_of("0123456789") == level.npos ? std::stoi(level) : -1;
    }
    if (function.function >= 0)
      text.functions =
          namesOf(call.arguments[static_cast<std::size_t>(function.function)], source_, call.position);
    else
      text.functions = {std::string(function.of)};
    const auto at = static_cast<std::size_t>(function.text);
    std::vector<std::string> words = namesOf(call.arguments[at], source_, call.position);
    std::string expression = call.arguments[at];
    if (words.size() == 1 && isBare(words[0])) {
      expression = at + 1 < call.arguments.size() ? call.arguments[at + 1] : std::string();
      words = namesOf(expression, source_, call.position);
    }
    if (words.empty() && !lookElsewhere(expression, words))
      return found_.problems.push_back(place + ": the text of " + call.name + " is no literal but " +
                                       expression);
    if (!words.empty() && text.level < 0)
      return found_.problems.push_back(place + ": the level of " + call.name + " is no number");
    for (const std::string& word : words) {
      text.text = shown(word);
      found_.texts.push_back(text);
    }
  }

  /// False when no text source knows the expression.
  bool lookElsewhere(const std::string& expression, std::vector<std::string>& words) {
    for (const TextSource& known : textSources()) {
      if (known.file != file_ || known.expression != expression) continue;
      found_.used.push_back(known.expression);
      if (known.source.empty()) return true;
      words = textsBy(known.pattern, withoutComments(read_(std::string(known.source))));
      return !words.empty();
    }
    return false;
  }

  std::string file_;
  std::string (*read_)(const std::string&);
  std::string source_;
  LogTexts found_;
};

}  // namespace

const std::vector<LogFunction>& logFunctions() {
  static constexpr char kBinary[] = "BinarySerializer::unserializeBinaryRecur";
  static constexpr char kXml[] = "XMLSerializer::serializeXMLRecur";
  static const std::vector<LogFunction> functions = {
      {"logError", "", 0, "", -1, 0, 1},
      {"logDebug", "", 0, "", 1, 0, 2},
      {"XmlLogContext::instance().error", "", 0, "", -1, 0, 1},
      {"XmlLogContext::instance().debug", "", 0, "", 1, 0, 2},
      {"XmlLogContext::instance().log", "", 0, "", -1, 1, 1},
      {"EvDebug::DebugLvl", "", 0, "", 1, 0, 3},
      {"handleMsgEventDebug_NEW", "", 1, "", 2, 0, 5},
      // What passes a text on.
      {"report", "zqxml/binary/internal/", -1, kBinary, -1, 0, 0},
      {"fail", "zqxml/binary/internal/", -1, kBinary, -1, 0, 0},
      {"report", "zqxml/xml/internal/xml_walk.h", -1, kXml, -1, 0, 0},
      {"trace", "zqxml/xml/internal/xml_walk.h", -1, kXml, -1, 15, 0},
      {"object", "zqxml/binary/internal/map_reader.h", -1, kBinary, -1, 0, 1},
      {"follow", "zqxml/catalogue/lookup.cc", -1, "XNMessageBase::GetClassDefFromPtrToClassID", -1, 0, 1},
      {"refuse", "zqxml/platform/zq_password.cc", 0, "", -1, 0, 1},
      {"guardDump", "zqxml/xml/xml_serializer_write.cc", 0, "", -1, 0, 1},
  };
  return functions;
}

const std::vector<TextSource>& textSources() {
  static const std::vector<TextSource> sources = {
      // Their callers stand among the functions above.
      {"zqxml/binary/internal/wire_reader.h", "format", "", ""},
      {"zqxml/binary/internal/map_reader.h", "failure", "", ""},
      {"zqxml/catalogue/lookup.cc", "text", "", ""},
      {"zqxml/xml/internal/xml_walk.h", "format", "", ""},
      {"zqxml/xml/xml_serializer_write.cc", "failure", "", ""},
      // The log itself, and lines of the program's own.
      {"zqxml/logging/xml_log_context.h", "format", "", ""},
      {"zqxml/logging/xml_log_context.cc", "format", "", ""},
      {"zqxml/platform/ev_debug.h", "format", "", ""},
      {"zqxml/logging/xml_logger_helper.cc", "text", "", ""},
      // Tables and composed texts.
      {"zqxml/platform/zq_password.cc", "reason", "zqxml/platform/key_file.cc",
       R"re((?:return|kNoKey =) "([^"]+)")re"},
      {"zqxml/xml/date_text.cc", "found->format", "zqxml/xml/date_text.cc", R"re(\{kDate\w+, "([^"]+)")re"},
      {"zqxml/xml/xml_serializer_write.cc", "texts.noImplementation", "zqxml/xml/xml_serializer_write.cc",
       R"re(constexpr BodyTexts \w+\{"[^"]+", "([^"]+)"\})re"},
      {"zqxml/xml/xml_serializer_read.cc", "texts.xmlException", "zqxml/xml/xml_serializer_read.cc",
       R"re(constexpr ParseTexts \w+\{\w+,\s*"([^"]+)")re"},
      {"zqxml/xml/xml_serializer_read.cc", "texts.parseException", "zqxml/xml/xml_serializer_read.cc",
       R"re(constexpr ParseTexts \w+\{\w+,\s*"[^"]+",\s*"([^"]+)")re"},
      {"zqxml/xml/xml_serializer_read.cc", "texts.standardException", "zqxml/xml/xml_serializer_read.cc",
       R"re(constexpr ParseTexts \w+\{\w+,\s*"[^"]+",\s*"[^"]+",\s*"([^"]+)")re"},
      {"zqxml/xml/xml_serializer_read_file.cc", "error.GetText()", "zqxml/xml/xml_serializer_read_file.cc",
       R"re(logError\(kRead, "(%s)", error\.GetText\(\)\))re"},
      {"zqxml/xml/internal/message_reader.cc", "text", "zqxml/xml/internal/message_reader.cc",
       R"re(text = "([^"]+)";\s*text\.append\(narrow\)\.append\("([^"]+)"\))re"},
      {"zqxml/message/copy_compare.cc", "text", "zqxml/message/copy_compare.cc",
       R"re(text = "([^"]+)" \+ other\.getTagName\(\) \+\s*"([^"]+)" \+ getTagName\(\) \+ "([^"]+)")re"},
  };
  return sources;
}

std::string withoutComments(std::string_view source) {
  std::string code;
  code.reserve(source.size());
  for (std::size_t i = 0; i < source.size();) {
    if (beginsLiteral(source, i)) {
      const std::size_t end = endOfLiteral(source, i);
      code += source.substr(i, end - i);
      i = end;
    } else if (source.substr(i, 2) == "//") {
      i = std::min(source.find('\n', i), source.size());
    } else if (source.substr(i, 2) == "/*") {
      const std::size_t end = std::min(source.find("*/", i + 2), source.size() - 2) + 2;
      for (; i < end; ++i) code += source[i] == '\n' ? '\n' : ' ';
    } else {
      code += source[i++];
    }
  }
  return code;
}

std::vector<Call> callsOf(std::string_view name, const std::string& source) {
  std::vector<Call> calls;
  for (std::size_t at = 0; at < source.size(); ++at) {
    if (beginsLiteral(source, at)) {
      at = endOfLiteral(source, at) - 1;
      continue;
    }
    if (source.compare(at, name.size(), name) != 0) continue;
    const std::size_t end = at + name.size();
    if ((at > 0 && isNameChar(source[at - 1])) || (end < source.size() && isNameChar(source[end]))) continue;
    const std::size_t open = source.find_first_not_of(" \n", end);
    if (open == source.npos || source[open] != '(') continue;
    Call call{std::string(name), argumentsAt(source, open), 1, at};
    call.line += static_cast<std::size_t>(
        std::count(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    static const std::regex parameter(R"((?:const )?(?:char|ClassRef|CUlError|int)\b.*[ *&]\w+)");
    const bool isDeclaration =
        std::any_of(call.arguments.begin(), call.arguments.end(),
                    [](const std::string& argument) { return std::regex_match(argument, parameter); });
    if (!isDeclaration) calls.push_back(std::move(call));
  }
  return calls;
}

std::vector<std::string> literalsOf(const std::string& expression) {
  std::vector<std::string> literals;
  std::size_t behind = expression.npos;  // the last literal
  for (std::size_t i = 0; i < expression.size();) {
    if (expression[i] != '"') {
      i = expression[i] == '\'' ? endOfLiteral(expression, i) : i + 1;
      continue;
    }
    const std::size_t end = endOfLiteral(expression, i);
    const std::string text = expression.substr(i + 1, end - i - 2);
    const bool isNeighbour = behind != expression.npos && expression.find_first_not_of(" \n", behind) == i;
    if (isNeighbour)
      literals.back() += text;
    else
      literals.push_back(text);
    behind = i = end;
  }
  return literals;
}

LogTexts logTextsOf(const std::string& file, std::string (*read)(const std::string& file)) {
  return Collector(file, read).collect();
}

}  // namespace zqxml
