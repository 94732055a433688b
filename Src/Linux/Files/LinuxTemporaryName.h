// Makes names for files that are incomplete or exist only briefly.
#pragma once

#include <cerrno>
#include <string>

namespace ORL {
namespace Linux {

/// Returns ".orl-", the purpose, the process identifier and a number that is unique in the process. The name is hidden
/// and short enough for every file system. A killed process may have left the same name behind, because process
/// identifiers are reused.
std::string TemporaryName(const char* inPurpose);

/// Calls inMake(name) with one temporary name after another until a name is free. inMake returns like a system call,
/// and so does this function; outName is the last name tried.
template <class Make>
int MakeUnderTemporaryName(const char* inPurpose, std::string& outName, const Make& inMake)
{
    constexpr int kTries = 10000;
    int answer = -1;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        outName = TemporaryName(inPurpose);
        answer = inMake(outName.c_str());
        if (answer >= 0 || errno != EEXIST) {
            break;
        }
    }
    return answer;
}

} // namespace Linux
} // namespace ORL
