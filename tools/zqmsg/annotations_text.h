#pragma once

#include <zqxml/catalogue/records.h>

#include <string>

namespace zqxml::tool {

/// One line per annotation of a class and its fields: the field's name, and the annotation in its XML form.
std::string annotationsText(const _ClassDef& record);

}  // namespace zqxml::tool
