// What a translator or a plug-in author would want to know before a user does.
#pragma once

#include <ORLResourceFile.h>

#include <string>
#include <vector>

namespace orl {

/// One line for each fault of the file's resources: blocks that do not parse; texts, menus and dialogs that one
/// language has and another lacks; texts whose parameters (%1) differ between languages. A resource that has a neutral
/// version lacks nothing.
std::vector<std::string> FaultsOf(const ORL::Resources::ResourceFile& inFile);

} // namespace orl
