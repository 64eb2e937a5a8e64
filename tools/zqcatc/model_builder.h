// From the trees of the schema files to the catalogue.
#pragma once

#include <span>

#include "diagnostics.h"
#include "model.h"
#include "xml_tree.h"

namespace zqxml::zqcatc {

/// Builds the catalogue out of root elements that are valid by catalogue.xsd: subsystems first, then the
/// extensions, whatever the order of the files. Reports what each element shows wrong on its own: numbers and
/// their ranges, types, attributes that the type asks for or does not take, subsystems and slots that occur
/// twice. References are not followed yet.
Catalogue buildCatalogue(std::span<const Element> roots, Diagnostics& diagnostics);

}  // namespace zqxml::zqcatc
