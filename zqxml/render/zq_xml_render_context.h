// ZqXMLRenderContext: what turns the events of a summary (render/summary_traverse.h) into output.
#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/traverse/msg_field_context.h>

#include <string>

namespace zqxml {

/// How a context writes.
struct ContextFormatOpts {
  /// Locale 0, plain order, nothing collapsible.
  ContextFormatOpts() = default;
  /// These.
  ContextFormatOpts(int locale, bool inOrder, bool isCollapsible)
      : localeId(locale), order(inOrder), collapsible(isCollapsible) {}

  /// Language of labels and of the words for true and false; see EvGetLocText.
  int localeId = 0;
  /// In every object all value fields before all sub-objects.
  bool order = false;
  /// HTMLRenderContext: sections are closed until somebody clicks on them.
  bool collapsible = false;
};

/// What turns the events of a summary (render/summary_traverse.h) into output. Derive from it to write
/// another form.
///
/// A context is filled by one walk over a message and belongs to one thread. It reports nothing: a field that
/// it cannot print is passed over, and so is one that the message of the event does not have. It never
/// changes the message.
class ZQXML_EXPORT ZqXMLRenderContext {
 public:
  /// Keeps a copy of the options.
  explicit ZqXMLRenderContext(const ContextFormatOpts& options = {}) : formatOptions(options) {}
  /// @{
  /// For derived classes, whose copies go on by themselves.
  ZqXMLRenderContext(const ZqXMLRenderContext&) = default;
  ZqXMLRenderContext(ZqXMLRenderContext&&) = default;  ///< likewise
  ZqXMLRenderContext& operator=(const ZqXMLRenderContext&) = default;
  ZqXMLRenderContext& operator=(ZqXMLRenderContext&&) = default;
  virtual ~ZqXMLRenderContext();
  /// @}

  /// A copy of the options.
  ContextFormatOpts getFormatOptions() const { return formatOptions; }

  /// @{
  /// The message begins and ends; `name` is its class's name behind the first '_'.
  virtual void startHeader(std::string name) = 0;
  virtual void writeHeader(std::string name) = 0;
  virtual void endHeader(std::string name) = 0;
  /// @}
  /// @{
  /// A sub-object, or an element of a list of them, begins and ends; the context is that of its field.
  virtual void startSubHeader(MsgFieldContext& context) = 0;
  virtual void writeSubHeader(std::string name) = 0;
  virtual void endSubHeader(MsgFieldContext& context) = 0;
  /// @}
  /// @{
  /// One field: a single value, a list, an enumeration.
  virtual void writeAttribute(MsgFieldContext& context) = 0;
  virtual void writeList(MsgFieldContext& context) = 0;
  virtual void writeEnum(MsgFieldContext& context) = 0;
  /// @}

 protected:
  /// How it writes.
  ContextFormatOpts formatOptions;
};

}  // namespace zqxml
