// The once-only start-up of Xerces-C, which is started on first use and never terminated.
#pragma once

#include <zqxml/platform/export.h>

namespace zqxml {

/// Starts Xerces-C unless it runs, and nothing else of the codec. False, with the line "Error initializing
/// Xerces library. Error : [%s]" under "initialize", when it does not start; the next call tries again. Any
/// thread.
ZQXML_EXPORT bool initialize();

}  // namespace zqxml
