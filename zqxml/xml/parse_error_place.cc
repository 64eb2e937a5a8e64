#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/internal/parse_error_place.h>
#include <zqxml/xml/internal/sax_parse.h>
#include <zqxml/xml/my_sax2_handler.h>

#include <memory>
#include <xercesc/sax/SAXParseException.hpp>

namespace zqxml {

std::optional<TextPlace> placeOfParseError(std::string_view xml) {
  std::optional<TextPlace> place;
  std::unique_ptr<XNMessageBase> dropped;  // after the handler, which still takes out what it left inside
  MySAX2Handler handler;
  try {
    const TextSource source{xml};
    SaxParse(handler, xml.size()).parse(source);
  } catch (const xercesc::SAXParseException& error) {
    place = TextPlace{error.getLineNumber(), error.getColumnNumber()};
  } catch (...) {
    // Not a parse error.
  }
  dropped.reset(handler.getMainObject());
  return place;
}

}  // namespace zqxml
