#include <tvxcore/Text.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace tvxcore {
namespace utility {

namespace {

// One table for both platforms, so that they never disagree on what is the same text: the home platform has no full
// case folding, and a system library's would change with its version.
struct FoldingRun
{
    std::uint32_t mFirst;
    std::uint32_t mLast;
    std::int32_t mDelta;
    std::uint32_t mStride; // each, or every second, code point of the run
};

struct FoldingExpansion
{
    std::uint32_t mCodePoint;
    unsigned short mUnits[3]; // ends at the first zero
};

#include "CaseFoldingTable.inc"

void Append(UTF16String& ioText, std::uint32_t inPoint)
{
    if (inPoint >= 0x10000) {
        ioText.push_back(static_cast<unsigned short>(0xD7C0 + (inPoint >> 10)));
        inPoint = 0xDC00 + (inPoint & 0x3FF);
    }
    ioText.push_back(static_cast<unsigned short>(inPoint));
}

bool AppendExpansion(UTF16String& ioText, std::uint32_t inPoint)
{
    const FoldingExpansion* const found =
        std::lower_bound(std::begin(kFoldingExpansions), std::end(kFoldingExpansions), inPoint,
                         [](const FoldingExpansion& inEntry, std::uint32_t inWanted) {
                             return inEntry.mCodePoint < inWanted;
                         });
    if (found == std::end(kFoldingExpansions) || found->mCodePoint != inPoint) {
        return false;
    }
    for (const unsigned short unit : found->mUnits) {
        if (unit != 0) {
            ioText.push_back(unit);
        }
    }
    return true;
}

std::uint32_t FoldSimple(std::uint32_t inPoint)
{
    const FoldingRun* const run =
        std::lower_bound(std::begin(kFoldingRuns), std::end(kFoldingRuns), inPoint,
                         [](const FoldingRun& inRun, std::uint32_t inWanted) { return inRun.mLast < inWanted; });
    if (run == std::end(kFoldingRuns) || inPoint < run->mFirst || (inPoint - run->mFirst) % run->mStride != 0) {
        return inPoint;
    }
    return inPoint + static_cast<std::uint32_t>(run->mDelta);
}

bool IsPair(const UTF16String& inText, std::size_t inIndex)
{
    return (inText[inIndex] & 0xFC00) == 0xD800 && inIndex + 1 < inText.size()
           && (inText[inIndex + 1] & 0xFC00) == 0xDC00;
}

void FoldRest(UTF16String& ioFolded, const UTF16String& inText)
{
    for (std::size_t i = ioFolded.size(); i < inText.size(); ++i) {
        std::uint32_t point = inText[i];
        if (IsPair(inText, i)) {
            point = 0x10000u + ((point & 0x3FFu) << 10) + (inText[++i] & 0x3FFu);
        }
        if (point < 0x80) {
            ioFolded.push_back(static_cast<unsigned short>(point - 'A' < 26 ? point + 32 : point));
        } else if (!AppendExpansion(ioFolded, point)) {
            Append(ioFolded, FoldSimple(point));
        }
    }
}

} // namespace

UTF16String FoldCase(const UTF16String& inText)
{
    UTF16String folded;
    folded.reserve(inText.size());
    FoldRest(folded, inText);
    return folded;
}

} // namespace utility
} // namespace tvxcore
