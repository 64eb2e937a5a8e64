#include <zqxml/render/zq_xml_render_context.h>

namespace zqxml {

// Defined here, so that the class's tables are here too and not wherever it is used.
ZqXMLRenderContext::~ZqXMLRenderContext() = default;

}  // namespace zqxml
