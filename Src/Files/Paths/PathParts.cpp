#include "PathParts.h"

#include <cstdint>
#include <cstring>

namespace ORL {
namespace PathUtils {

namespace {

// Returns the length up to the terminator. A path rarely contains an embedded terminator, so this tests four units at a
// time: a unit is 0 if subtracting 1 from it borrows.
std::size_t LengthToTerminator(const unsigned short* inText, std::size_t inSize) noexcept
{
    std::size_t i = 0;
    for (; i + 4 <= inSize; i += 4) {
        std::uint64_t four;
        std::memcpy(&four, inText + i, sizeof(four));
        if (((four - 0x0001000100010001u) & ~four & 0x8000800080008000u) != 0) {
            break;
        }
    }
    while (i < inSize && inText[i] != 0) {
        ++i;
    }
    return i;
}

bool IsSeparator(unsigned short inUnit) noexcept
{
    return inUnit == '\\' || inUnit == '/';
}

} // namespace

PathParts::PathParts(const UTF16String& inPath) noexcept
{
    const unsigned short* text = inPath.data();
    mEnd = LengthToTerminator(text, inPath.size());
    mDrive = mEnd >= 2 && text[1] == ':' ? 2 : 0;
    // Scans from the end, because the file name is usually short.
    mExtension = mEnd;
    mFile = mEnd;
    while (mFile > mDrive && !IsSeparator(text[mFile - 1])) {
        --mFile;
        if (text[mFile] == '.' && mExtension == mEnd) {
            mExtension = mFile;
        }
    }
}

} // namespace PathUtils
} // namespace ORL
