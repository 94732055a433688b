// Names for what is not whole yet, or stands for a moment only.
#pragma once

#include <cerrno>
#include <string>

namespace ORL {
namespace Linux {

/// ".orl-", the purpose, the process and a number that no other thread of it gets. Hidden, and short enough for every
/// file system. A process that was killed may have left the name: its number comes again.
std::string TemporaryName(const char* inPurpose);

/// Calls inMake(name) with one temporary name after another until it finds one that nobody has. inMake answers as the
/// system does, and so does this; outName is the last name.
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
