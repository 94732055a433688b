#include "LinuxRegistryNames.h"

#include <tvxcore/Text.h>

namespace ORL {
namespace Registry {
namespace Linux {

namespace {

constexpr unsigned short kSeparator = '\\';

// Folds a non-ASCII unit. Like the Windows table, does not fold a unit whose folded form would be several
// units or ASCII.
unsigned short FoldUnit(unsigned short inUnit)
{
    const UTF16String folded = tvxcore::utility::FoldCase(UTF16String(1, inUnit));
    return folded.size() == 1 && folded[0] >= 0x80 ? folded[0] : inUnit;
}

void FoldInto(UnitsView inName, unsigned short* outFolded)
{
    for (std::size_t i = 0; i < inName.size(); ++i) {
        const unsigned short unit = inName[i];
        if (unit >= 0x80) {
            outFolded[i] = FoldUnit(unit);
        } else {
            const bool isLower = unit >= 'a' && unit <= 'z';
            outFolded[i] = static_cast<unsigned short>(isLower ? unit - ('a' - 'A') : unit);
        }
    }
}

} // namespace

void FoldName(UnitsView inName, Units& outFolded)
{
    outFolded.resize(inName.size());
    FoldInto(inName, outFolded.data());
}

std::uint64_t HashName(UnitsView inFolded) noexcept
{
    std::uint64_t hash = 0xCBF29CE484222325u; // FNV-1a over units
    for (const unsigned short unit : inFolded) {
        hash = (hash ^ unit) * 0x100000001B3u;
    }
    return hash ^ (hash >> 32);
}

FoldedName::FoldedName(UnitsView inName)
{
    unsigned short* folded = mShort;
    if (inName.size() > kShort) {
        mLong.resize(inName.size());
        folded = mLong.data();
    }
    FoldInto(inName, folded);
    mText = UnitsView(folded, inName.size());
    mHash = HashName(mText);
}

PathNames::PathNames(const unsigned short* inPath) noexcept : mRest(inPath)
{
    static constexpr unsigned short kEmpty[] = {0};
    mRest = mRest != nullptr ? mRest : kEmpty;
}

SystemError PathNames::Check() const noexcept
{
    if (*mRest == kSeparator) {
        return SystemErrors::kErrorBadPathName;
    }
    PathNames names(mRest);
    for (UnitsView name; names.Next(name);) {
        if (name.size() > kLongestKeyName) {
            return SystemErrors::kErrorInvalidParameter;
        }
    }
    return SystemErrors::kNoError;
}

bool PathNames::Next(UnitsView& outName) noexcept
{
    while (*mRest == kSeparator) {
        ++mRest;
    }
    const unsigned short* const begin = mRest;
    while (*mRest != 0 && *mRest != kSeparator) {
        ++mRest;
    }
    outName = UnitsView(begin, static_cast<std::size_t>(mRest - begin));
    return !outName.empty();
}

std::size_t LengthOf(const unsigned short* inText) noexcept
{
    std::size_t length = 0;
    while (inText != nullptr && inText[length] != 0) {
        ++length;
    }
    return length;
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
