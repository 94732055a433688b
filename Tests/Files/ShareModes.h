// All ways to hold a file, and the rule that says which two go together: written down here on its own, and equal to what
// the home platform answers for each of the 2304 pairs.
#pragma once

#include <Platform/File.h>

#include <cstdio>
#include <string>
#include <vector>

namespace ORLTest {

struct Holding
{
    std::uint32_t mAccess;
    std::uint32_t mShare; // 1 readers, 2 writers, 4 deleters

    // What it uses, in the bits of a share mode. To execute counts as to read.
    std::uint32_t Uses() const
    {
        using namespace ORL::Files::Platform;
        return ((mAccess & (kGenericRead | kGenericExecute)) != 0 ? 1u : 0u)
               | ((mAccess & kGenericWrite) != 0 ? 2u : 0u) | ((mAccess & kAccessDelete) != 0 ? 4u : 0u);
    }
};

inline bool GoTogether(const Holding& inFirst, const Holding& inSecond)
{
    if (inFirst.Uses() == 0 || inSecond.Uses() == 0) {
        return true; // who only asks is never in the way
    }
    return (inFirst.Uses() & inSecond.mShare) == inFirst.Uses()
           && (inSecond.Uses() & inFirst.mShare) == inSecond.Uses();
}

/// Nothing, read, write, both, execute and delete, each with every share mode: 48 ways.
inline std::vector<Holding> AllHoldings()
{
    using namespace ORL::Files::Platform;
    std::vector<Holding> all;
    for (const std::uint32_t access :
         {0u, kGenericRead, kGenericWrite, kGenericRead | kGenericWrite, kGenericExecute, kAccessDelete}) {
        for (std::uint32_t share = 0; share < 8; ++share) {
            all.push_back({access, share});
        }
    }
    return all;
}

inline ORL::SystemError OpenHolding(const UTF16String& inPath, const Holding& inHolding,
                                    ORL::Files::Platform::Handle& outFile)
{
    using namespace ORL::Files::Platform;
    return CreateFile_Impl(inPath, inHolding.mAccess, inHolding.mShare, kOpenExisting, kAttributeNormal, outFile);
}

inline std::string NameOf(const Holding& inHolding)
{
    char text[64];
    std::snprintf(text, sizeof(text), "access %08x share %u", inHolding.mAccess, inHolding.mShare);
    return text;
}

} // namespace ORLTest
