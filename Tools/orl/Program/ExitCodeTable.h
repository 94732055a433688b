// The exit codes of each command, for help, manual page and tests.
#pragma once

#include <string>
#include <vector>

namespace orl {

struct ExitCodeEntry
{
    int mCode = 0;
    std::string mMeaning;
};

struct ExitCodes
{
    std::string mRule; // which code is returned if several apply; may be empty
    std::vector<ExitCodeEntry> mCodes;
};

/// inCommand is the command's full name, such as "reg check", or empty for the program.
ExitCodes ExitCodesOf(const std::string& inCommand);

} // namespace orl
