#include <zqxml/message/xn_message_base.h>
#include <zqxml/render/default_render_context.h>
#include <zqxml/render/summary_traverse.h>
#include <zqxml/render/zq_xml_summary.h>
#include <zqxml/traverse/xml_traverse.h>
#include <zqxml/xml/xml_serializer.h>

#include <locale>
#include <memory>

namespace zqxml {
namespace {

/// The message of an XML text; null when there is none.
std::unique_ptr<XNMessageBase> read(const std::string& xml) {
  if (xml.empty()) return nullptr;
  return std::unique_ptr<XNMessageBase>(XMLSerializer().unserialize(xml, false));
}

}  // namespace

eXNMsgRet ZqXMLSummary::getZqSummaryInfo(XNMessageBase* msg, std::ostringstream& out, ZqXMLFormatOptions&) {
  if (msg == nullptr) return XN_MSG_FAILED;
  DefaultRenderContext context(out);
  SummaryTraverse handler(&context);
  XmlTraverse().traverse(*msg, handler, false, false);
  return XN_MSG_OK;
}

eXNMsgRet ZqXMLSummary::getZqSummaryInfo(XNMessageBase* msg, ZqXMLRenderContext* context,
                                         ZqXMLFormatOptions&) {
  if (msg == nullptr || context == nullptr) return XN_MSG_FAILED;
  const ContextFormatOpts options = context->getFormatOptions();
  DefaultSummaryTraverse handler(context, options.localeId, options.order);
  XmlTraverse().traverse(*msg, handler, false, false);
  return XN_MSG_OK;
}

eXNMsgRet ZqXMLSummary::getSummaryInfo(std::string xml, std::string& out) {
  const std::unique_ptr<XNMessageBase> message = read(xml);
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  ZqXMLFormatOptions options;
  const eXNMsgRet result = getZqSummaryInfo(message.get(), stream, options);
  if (result == XN_MSG_OK) out = stream.str();
  return result;
}

eXNMsgRet ZqXMLSummary::getSummaryInfo(std::string xml, ZqXMLRenderContext* context) {
  const std::unique_ptr<XNMessageBase> message = read(xml);
  ZqXMLFormatOptions options;
  return getZqSummaryInfo(message.get(), context, options);
}

}  // namespace zqxml
