// Ties a request to the one stored procedure that the schema names for its class.
#pragma once

#include <zqxml/platform/export.h>

#include <string>

namespace zqxml {

/// True only when `xml` parses into a message whose class has a StoredProcedure annotation and `name` equals
/// the procedure named there, byte for byte: no caller runs another procedure under cover of the message.
/// What fails to parse is logged by the parser. Neither text is changed.
ZQXML_EXPORT bool verifyStoredProcedureName(std::string& name, std::string& xml);

}  // namespace zqxml
