#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/platform/striped_counter.h>
#include <zqxml/render/html_value_context.h>

#include <string>

namespace zqxml {

/// Writes a message as a compact paragraph in HTML, for the summary pane of a console.
///
///     <p> Summary<BR>&nbsp;id&nbsp;:&nbsp;5<br><B>client </B><p>&nbsp;name&nbsp;:&nbsp;c1</p></div>
///
/// It is a fragment, whose closing `</div>` is opened by the page around it. Nothing is escaped, and nothing
/// is left out but what has no form: who fills the context decides what is shown (DefaultSummaryTraverse
/// does). Dates are plain numbers; enumerations are written by their names.
class ZQXML_EXPORT HTMLGuiSummaryRenderContext : public HTMLValueContext {
 public:
  using HTMLValueContext::HTMLValueContext;
  using HTMLValueContext::writeAttribute;

  /// How many summaries the contexts of the process have begun.
  static StripedCounter CountOptions;

  void DumpToString(std::string& text) const override;
  /// One line. QUIRK: an empty value is written too.
  void addToOutPut(const std::string& name, const std::string& value) override;

  /// @{
  /// The frame of the paragraph.
  void startHeader(std::string name) override;
  void endHeader(std::string name) override;
  /// @}
  /// @{
  /// A sub-object: its label in bold, and a paragraph that nothing ends.
  void startSubHeader(MsgFieldContext& context) override;
  void endSubHeader(MsgFieldContext& context) override;
  /// @}
  /// @{
  /// One field of the walk that is set, under its label.
  void writeAttribute(MsgFieldContext& context) override;
  void writeEnum(MsgFieldContext& context) override;
  /// @}

 private:
  std::string output;
  bool startOfLine = false;   // no "<BR>" is due before the next item
  bool pendingBreak = false;  // there are items since the last sub-header
};

}  // namespace zqxml
