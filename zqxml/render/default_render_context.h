#pragma once

#include <zqxml/message/bstring.h>
#include <zqxml/platform/export.h>
#include <zqxml/render/zq_xml_render_context.h>

#include <sstream>
#include <string>

namespace zqxml {

/// Writes a message as one line of text: items joined by commas, without blanks or line ends.
///
///     id:[5],name:[x],state:[RUNNING],ids[1,2]
///
/// A single value has the field's name, an enumeration and a list (which has no colon) the field's label. The
/// fields of sub-objects follow in the order of the walk, without a mark of their own. Fields that the
/// catalogue annotates as Suppress, HideInReports or Password are left out of single values; ulonglong,
/// passwords and maps have no form here. Dates are plain numbers. Texts stand as they are.
///
/// QUIRK: a comma is written for what then writes nothing: an empty list, an empty wide text, a list of
/// enumerations that comes as an enumeration, and in a summary every ulonglong, which counts as an empty
/// list.
class ZQXML_EXPORT DefaultRenderContext : public ZqXMLRenderContext {
 public:
  /// `output` is borrowed. Values go through its insertion operator, so its locale and its settings for
  /// numbers count: with those that a stream has in the classic locale a float has six significant digits.
  explicit DefaultRenderContext(std::ostringstream& output, const ContextFormatOpts& options = {})
      : ZqXMLRenderContext(options), stream(output) {}

  /// Replaces `text` by all that the stream holds.
  void DumpToString(std::string& text) const { text = stream.str(); }

  /// @{
  /// Structure leaves no trace, but a header begins a new line of items.
  void startHeader(std::string name) override;
  void writeHeader(std::string name) override;
  void endHeader(std::string name) override;
  void startSubHeader(MsgFieldContext& context) override;
  void writeSubHeader(std::string name) override;
  void endSubHeader(MsgFieldContext& context) override;
  /// @}

  /// @{
  /// One field of the walk, if it is set and may be shown.
  void writeAttribute(MsgFieldContext& context) override;
  void writeList(MsgFieldContext& context) override;
  void writeEnum(MsgFieldContext& context) override;
  /// @}

  /// @{
  /// One item: "name:[value]". Null is an empty text.
  void writeAttribute(const std::string& name, const std::string& value);
  void writeAttribute(const std::string& name, const char* value);
  void writeAttribute(const std::string& name, int value);
  void writeAttribute(const std::string& name, unsigned int value);
  void writeAttribute(const std::string& name, long value);
  void writeAttribute(const std::string& name, unsigned long value);
  void writeAttribute(const std::string& name, float value);
  void writeAttribute(const std::string& name, double value);
  /// @}
  /// As UTF-8. An empty text writes no item, but the comma before it.
  void writeAttribute(const std::string& name, const std::u16string& value);
  /// The bytes as they stand.
  void writeAttribute(const std::string& name, const bstring& value);
  /// In decimal.
  void writeAttribute(const std::string& name, long long value);
  /// "true" or "false".
  void writeAttribute(const std::string& name, bool value);

 private:
  /// The comma, unless this is the first item.
  void separate();
  template <class Value>
  void writeItem(const std::string& name, const Value& value);

  std::ostringstream& stream;
  bool first = true;
};

}  // namespace zqxml
