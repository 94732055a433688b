// Messages for command lines that cannot be parsed.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace orl {

/// Throws Failure with kExitUsage and a suggestion if the leading words name no command: the parser itself would only
/// report that a command is missing.
void CheckCommand(const CLI::App& inProgram, const std::vector<std::string>& inArguments);

/// Returns the message for an error that the parser has thrown: "tc show: unknown option \"--jsn\"; did you mean
/// \"--json\"? (see orl tc show --help)".
std::string UsageErrorText(const CLI::App& inProgram, const CLI::ParseError& inError);

} // namespace orl
