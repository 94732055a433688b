// Finds faults in the resources of a module.
#pragma once

#include <ORLResourceFile.h>

#include <string>
#include <vector>

namespace orl {

/// Returns one line for each fault: a block that cannot be parsed; a string, menu or dialog that exists in one language
/// and is missing in another; a string whose parameters (%1) differ between languages. A resource with a neutral
/// version is not missing in any language.
std::vector<std::string> FaultsOf(const ORL::Resources::ResourceFile& inFile);

} // namespace orl
