// All ways to hold a file, and the rule for which two are compatible. The rule is written independently of the library,
// and agrees with Windows for each of the 2304 pairs.
#pragma once

#include <Platform/File.h>

#include <cstdio>
#include <string>
#include <vector>

namespace ORLTest {

struct OpenMode
{
    std::uint32_t mAccess;
    std::uint32_t mShare; // sum of 1 (shares reading), 2 (writing) and 4 (deleting)

    // Returns the share mode bits that the access needs. Execute access counts as read access.
    std::uint32_t Uses() const
    {
        using namespace ORL::Files::Platform;
        return ((mAccess & (kGenericRead | kGenericExecute)) != 0 ? 1u : 0u)
               | ((mAccess & kGenericWrite) != 0 ? 2u : 0u) | ((mAccess & kAccessDelete) != 0 ? 4u : 0u);
    }
};

inline bool AreCompatible(const OpenMode& inFirst, const OpenMode& inSecond)
{
    if (inFirst.Uses() == 0 || inSecond.Uses() == 0) {
        return true; // a handle that only queries never conflicts
    }
    return (inFirst.Uses() & inSecond.mShare) == inFirst.Uses()
           && (inSecond.Uses() & inFirst.mShare) == inSecond.Uses();
}

/// Returns no access, read, write, both, execute and delete, each with every share mode: 48 ways.
inline std::vector<OpenMode> AllOpenModes()
{
    using namespace ORL::Files::Platform;
    std::vector<OpenMode> all;
    for (const std::uint32_t access :
         {0u, kGenericRead, kGenericWrite, kGenericRead | kGenericWrite, kGenericExecute, kAccessDelete}) {
        for (std::uint32_t share = 0; share < 8; ++share) {
            all.push_back({access, share});
        }
    }
    return all;
}

inline ORL::SystemError OpenWithMode(const UTF16String& inPath, const OpenMode& inMode,
                                     ORL::Files::Platform::Handle& outFile)
{
    using namespace ORL::Files::Platform;
    return CreateFile_Impl(inPath, inMode.mAccess, inMode.mShare, kOpenExisting, kAttributeNormal, outFile);
}

inline std::string NameOf(const OpenMode& inMode)
{
    char text[64];
    std::snprintf(text, sizeof(text), "access %08x share %u", inMode.mAccess, inMode.mShare);
    return text;
}

} // namespace ORLTest
