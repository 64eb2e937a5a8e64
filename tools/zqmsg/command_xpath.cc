#include <zqxml/catalogue/lookup.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/format.h>
#include <zqxml/traverse/xml_meta_data.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqmsg/class_name.h"
#include "tools/zqmsg/command.h"
#include "tools/zqmsg/message_source.h"
#include "tools/zqmsg/output.h"
#include "tools/zqmsg/path_line.h"
#include "tools/zqmsg/value_text.h"
#include "tools/zqmsg/xml_output.h"

namespace zqxml::tool {
namespace {

constexpr const char* kExamples =
    R"(Values deep in a message by name, one line each: PATH=VALUE. TMMsg, ZqEntities, Ida and
databrowse have paths; a schema of your own can name more.

Examples:
  zqmsg xpath list TMMsg
  zqmsg xpath get task.xml --all > task.paths
  zqmsg xpath set TMMsg_TaskOptions < task.paths)";

constexpr const char* kListExamples =
    R"(Prints the id and the path of each, in the order of the paths' bytes.

Examples:
  zqmsg xpath list TMMsg
  zqmsg xpath list 22 | grep -i password)";

constexpr const char* kGetExamples =
    R"(Prints a line PATH=VALUE for each value that has a path; lists have a line for each element.
Values in the message itself have none, nor have those in lists of objects. In a value, \\, \n,
\t, \r and \xNN stand for a backslash and control characters; byte strings and passwords are in
Base64.

Examples:
  zqmsg xpath get task.xml
  zqmsg xpath get task.bin --all)";

constexpr const char* kSetExamples =
    R"(Reads lines PATH=VALUE, as 'zqmsg xpath get' prints them, and prints a message of the class as
XML. Empty lines, and those that start with #, are passed over.

Examples:
  zqmsg xpath set TMMsg_TaskOptions < task.paths
  echo 'options[1]/@priority=7' | zqmsg xpath set TMMsg_TaskOptions --readable)";

/// Values in Base64, which XMLMetaData tells and does not read.
constexpr FieldTypeSet kBase64Types{FDT_BSTRING, FDT_PSTRING};
/// Types that XMLMetaData does not set.
constexpr FieldTypeSet kNotSetTypes{FDT_ULONGLONG, FDT_LIST_BOOL};

const XPathData& pathsOf(short subsystem) {
  if (const XPathData* data = XNMessageBase::getXPathData(subsystem)) return *data;
  std::string others;
  for (const XPathData* row = gXPathTable; row->paths != nullptr; ++row)
    others += std::string(others.empty() ? "" : ", ") + gSubsystemTable[row->subsystem].name;
  throw Failure(kFailed, gSubsystemTable[subsystem].name, "has no paths")
      .advise(others.empty() ? "no subsystem of this catalogue has any" : "those that have: " + others);
}

void list(const std::string& subsystem) {
  const XPathData& data = pathsOf(findSubsystem(subsystem));
  Output output("-");
  for (int i = 0; i < data.count; ++i)
    output.write(formatText("0x%08x  %s\n", data.paths[i].id, data.paths[i].xpath));
  output.commit();
}

struct GetOptions {
  std::string file;
  bool all = false;
};

void get(const GetOptions& options, Session& session) {
  const MessagePtr message = onlyMessage(options.file, session);
  pathsOf(static_cast<short>(message->getSubsysID()));
  std::vector<XPathMetaData> items;
  if (XMLMetaData().getXpathMetaData(message.get(), items, options.all) != XML_SUBSYSTEM_OK)
    throw Failure(kFailed, options.file, "cannot be told as paths").explain(session.log.take());
  Output output("-");
  for (const XPathMetaData& item : items) output.write(pathLine(item.xpath, item.value));
  output.commit();
}

struct SetOptions {
  std::string className;
  bool skipUnknown = false;
  XmlOutput output;
};

/// The field that the path leads to from the class; null when it does not begin there.
const FieldDef* fieldOfPath(const _ClassDef* record, const XPathFieldsInfo& way, std::string_view path) {
  std::string text;
  for (int level = 0; record != nullptr && way.fieldPath[level] < record->getNumberOfFields(); ++level) {
    const FieldDef& field = record->getFields()[way.fieldPath[level]];
    const bool isScalar = kXPathScalarTypes.contains(field.getType());
    if (level + 1 == way.depth)
      return text + (isScalar ? "@" : "") + field.getName() == path ? &field : nullptr;
    if (!kOneClassRefTypes.contains(field.getType())) return nullptr;
    text += std::string(field.getName()) + "[1]/";
    const ClassRef ref = ClassRef::read(field.namePointer());
    record = catalogue::classAt(ref.subsystem, ref.classIndex);
  }
  return nullptr;
}

/// Makes a message from lines, one at a time, so that a failure can name its line.
class MessageFromLines {
 public:
  MessageFromLines(const SetOptions& options, Session& session)
      : options_(options),
        session_(session),
        place_(findClass(options.className)),
        data_(pathsOf(place_.subsystem)) {
    if (place_.record->isEnumeration())
      throw Failure(kFailed, options.className, "is an enumeration, and has no messages");
    message_.reset(XNMessageBase::createObjectFromIndices(place_.subsystem, place_.classIndex));
  }

  void add(std::string_view line) {
    ++number_;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.starts_with('#')) return;
    const std::optional<PathLine> read = readPathLine(line);
    if (!read)
      throw failure("is not of the form PATH=VALUE").advise("a backslash in a value is written as \\\\");
    set(*read);
  }
  XNMessageBase& message() { return *message_; }

 private:
  std::string where() const { return "line " + std::to_string(number_); }
  Failure failure(const std::string& what) const { return {kFailed, where(), what}; }

  void set(const PathLine& line) {
    const std::string path(line.path);
    const int index = catalogue::xpathIndexOfPath(data_, path);
    const FieldDef* field =
        index < 0 ? nullptr : fieldOfPath(place_.record, data_.fieldsInfo[index], line.path);
    if (field == nullptr) {
      const std::string what = options_.className + " has no path " + path;
      if (options_.skipUnknown) return session_.console.warn(where(), what);
      throw failure(what).advise(std::string("'zqmsg xpath list ") + gSubsystemTable[place_.subsystem].name +
                                 "' lists the paths; --skip-unknown passes such lines over");
    }
    if (kNotSetTypes.contains(field->getType()))
      return session_.console.warn(where(),
                                   path + " is not set: a path sets no " + field->getFieldTypeName());
    XPathMetaData item;
    item.id = data_.paths[index].id;
    item.value = line.value;
    if (kBase64Types.contains(field->getType()) && !UlBase64::Decode(line.value, item.value))
      throw failure(quotedText(line.value) + " is no Base64, as " + path + " needs it");
    XNMessageBase* message = message_.get();
    if (paths_.setXpathMetaData(message, {item}, place_.subsystem) == XML_SUBSYSTEM_OK) return;
    throw failure(quotedText(line.value) + " is no value of " + path + " (" + field->getFieldTypeName() + ")")
        .explain(session_.log.take());
  }

  const SetOptions& options_;
  Session& session_;
  ClassPlace place_;
  const XPathData& data_;
  XMLMetaData paths_;
  MessagePtr message_;
  std::uint64_t number_ = 0;
};

void set(const SetOptions& options, Session& session) {
  MessageFromLines made(options, session);
  ByteSource input("-");
  const std::string lines = readWhole(input);
  for (std::string_view rest = lines; !rest.empty();) {
    const std::size_t end = rest.find('\n');
    made.add(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  writeXml(made.message(), options.output, options.className, session);
}

void addList(CLI::App& app, Session& session) {
  CLI::App& command = addCommand(app, session, "list", "Print the paths of a subsystem", kListExamples);
  const auto subsystem = std::make_shared<std::string>();
  command.add_option("SUBSYSTEM", *subsystem, "Name or slot")->required();
  command.callback([subsystem] { list(*subsystem); });
}

void addGet(CLI::App& app, Session& session) {
  CLI::App& command =
      addCommand(app, session, "get", "Print the values of a message by their paths", kGetExamples);
  const auto options = std::make_shared<GetOptions>();
  command.add_option("FILE", options->file, "Message in any form; - is standard input")->required();
  command.add_flag("--all", options->all, "Also what is below fields without the annotation GenPath");
  command.callback([options, &session] { get(*options, session); });
}

void addSet(CLI::App& app, Session& session) {
  CLI::App& command = addCommand(app, session, "set", "Make a message from paths and values", kSetExamples);
  const auto options = std::make_shared<SetOptions>();
  command.add_option("CLASS", options->className, "SUBSYSTEM_CLASS, or a tag id 0x...")->required();
  command.add_flag("--skip-unknown", options->skipUnknown, "Pass over paths that the class does not have");
  addXmlOutput(command, options->output);
  command.callback([options, &session] { set(*options, session); });
}

}  // namespace

void addXpath(CLI::App& app, Session& session) {
  CLI::App& command = addCommand(app, session, "xpath", "Values of a message as lines of paths", kExamples);
  command.require_subcommand(1);
  addList(command, session);
  addGet(command, session);
  addSet(command, session);
}

}  // namespace zqxml::tool
