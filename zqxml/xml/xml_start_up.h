// The once-only start-up of Xerces-C and the setting that is fixed with it.
//
// Xerces-C is started on first use and never terminated. Everything here is safe from any thread.
#pragma once

#include <zqxml/catalogue/result.h>
#include <zqxml/platform/export.h>

namespace zqxml {

/// Starts Xerces-C unless it runs; does not look at the setting. False, with the line "Error initializing
/// Xerces library. Error : [%s]" under "initialize", when it does not start; the next call tries again.
ZQXML_EXPORT bool initialize();

/// True when "EventManager"/"nDisableXMLValidation" was set to a value other than 0 when the XML codec
/// started (XMLSerializer::initialize). Read once per process.
bool xmlValidationDisabled();

}  // namespace zqxml
