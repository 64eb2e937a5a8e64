#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/render/html_value_context.h>

#include <atomic>
#include <string>
#include <vector>

namespace zqxml {

/// Writes a message as an indented outline in HTML: one line per value, a bold label over each sub-object.
///
///     Job Options:<br>&nbsp;id&nbsp;:&nbsp;5<br><B>client</B><br>&nbsp; ... &nbsp;name&nbsp;:&nbsp;c1</div>
///
/// It is a fragment. When the options say so the outline is in a block that opens with a click: then the page
/// around it must define the script function showdiv(id), which shows the element of that id. The fragment
/// ends with a `</div>` in any case. Nothing is escaped: a page that shows what it does not trust must render
/// an escaped copy of the message.
///
/// Left out are fields that the catalogue annotates as Suppress, HideInReports or Password, ulonglong,
/// passwords, maps, and empty values. An integer that is annotated as a date is written as date, or as an
/// interval ("2 day(s)") when it lies before 1991; 0 is no date. Objects of subsystem ZqEntities are small
/// references; they stand on the line of their label. Indentation ends at 24 levels.
///
/// Copies continue where the original stands. Two contexts in two threads do not disturb each other.
class ZQXML_EXPORT HTMLRenderContext : public HTMLValueContext {
 public:
  using HTMLValueContext::HTMLValueContext;
  using HTMLValueContext::writeAttribute;

  /// Numbers the collapsible blocks of all contexts of the process, so that their ids differ.
  static std::atomic<int> CountOptions;

  void DumpToString(std::string& text) const override;
  /// One line, or what follows on the line of a reference. An empty value writes nothing.
  void addToOutPut(const std::string& name, const std::string& value) override;

  /// @{
  /// The frame of the outline, closed until a click when the options say so.
  void startHeader(std::string name) override;
  void endHeader(std::string name) override;
  /// @}
  /// Opens a level under the field's label. Elements of one list whose sub-objects have labels of their own
  /// share one label.
  void startSubHeader(MsgFieldContext& context) override;
  /// Closes the level. One that got no items leaves its label behind, but does not count in the level around.
  void endSubHeader(MsgFieldContext& context) override;
  /// @{
  /// One field of the walk, if it may be shown, under its label.
  void writeAttribute(MsgFieldContext& context) override;
  void writeEnum(MsgFieldContext& context) override;
  /// @}

 private:
  /// Appends the blanks of so many levels, or of as many as are shown.
  void appendIndent(int units);

  std::vector<std::string> headers;  // labels of the open levels
  std::string lines;                 // the output, in one piece: it grows as one block
  bool firstAttribute = true;        // set by each level; nothing depends on it
  bool subHeaderOpen = false;        // the last startSubHeader opened a level
  int indent = 0;                    // levels around what comes next
  bool inlineEntity = false;         // the sub-object at hand is a reference
  std::vector<int> fieldCounts;      // items of each open level, from -1 on
};

}  // namespace zqxml
