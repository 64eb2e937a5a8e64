#pragma once

#include <zqxml/message/bstring.h>
#include <zqxml/platform/export.h>
#include <zqxml/render/zq_xml_render_context.h>

#include <string>
#include <string_view>

namespace zqxml {

/// What the contexts that write mark-up have in common: the text of a single value. Names and values go into
/// the mark-up as they stand: nothing is escaped.
class ZQXML_EXPORT HTMLValueContext : public ZqXMLRenderContext {
 public:
  using ZqXMLRenderContext::writeAttribute;
  using ZqXMLRenderContext::ZqXMLRenderContext;

  /// Writes one item of name and value.
  virtual void addToOutPut(const std::string& name, const std::string& value) = 0;
  /// Replaces `text` by the mark-up so far.
  virtual void DumpToString(std::string& text) const = 0;

  /// @{
  /// These leave no trace.
  void writeHeader(std::string name) override;
  void writeSubHeader(std::string name) override;
  /// @}
  /// "(v1,v2)"; an empty list writes nothing. QUIRK: elements that are enumerations or objects have no text.
  void writeList(MsgFieldContext& context) override;

  /// @{
  /// Makes the value's text and calls addToOutPut with it. Null is an empty text.
  void writeAttribute(const std::string& name, const std::string& value);
  void writeAttribute(const std::string& name, const char* value);    ///< likewise
  void writeAttribute(const std::string& name, int value);            ///< likewise
  void writeAttribute(const std::string& name, unsigned int value);   ///< likewise
  void writeAttribute(const std::string& name, long value);           ///< likewise
  void writeAttribute(const std::string& name, unsigned long value);  ///< likewise
  /// @}
  /// @{
  /// Six decimals, whatever the locale.
  void writeAttribute(const std::string& name, float value);
  void writeAttribute(const std::string& name, double value);  ///< likewise
  /// @}
  /// As UTF-8; an empty text writes nothing.
  void writeAttribute(const std::string& name, const std::u16string& value);
  /// "****", never the bytes.
  void writeAttribute(const std::string& name, const bstring& value);
  /// In decimal.
  void writeAttribute(const std::string& name, long long value);
  /// Text of message 0x3D000552 for true and 0x3D000553 for false in the context's locale; without one "true"
  /// or "false".
  void writeAttribute(const std::string& name, bool value);

 protected:
  /// Eight blanks that do not break.
  static constexpr std::string_view indentUnit = "&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;";

  /// Appends one item: the name without white space at its end, and the value.
  static void appendItem(std::string& out, std::string_view name, std::string_view value);
};

}  // namespace zqxml
