#include <tvxcore/Text.h>

#include <Text/UtfCharacter.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <emmintrin.h>
#include <iterator>

namespace tvxcore {
namespace utility {

namespace {

// Both platforms use one table, so that they agree on which strings are equal: Windows has no full case folding, and
// the folding of a system library may change with its version.
struct FoldingRun
{
    std::uint32_t mFirst;
    std::uint32_t mLast;
    std::int32_t mDelta;
    std::uint32_t mStride; // 1 if each code point of the run folds, 2 if every second one does
};

struct FoldingExpansion
{
    std::uint32_t mCodePoint;
    unsigned short mUnits[3]; // zero-terminated if shorter than 3
};

#include "CaseFoldingTable.inc"

// The end of the directly indexed table, which covers most Latin, Greek, Cyrillic and Armenian letters.
constexpr std::uint32_t kDirectEnd = 0x0600;

// Builds the foldings of all code points below kDirectEnd; 0 marks an expansion.
constexpr std::array<unsigned short, kDirectEnd> MakeDirectTable()
{
    std::array<unsigned short, kDirectEnd> table{};
    for (std::uint32_t point = 0; point < kDirectEnd; ++point) {
        table[point] = static_cast<unsigned short>(point - 'A' < 26 ? point + 32 : point);
    }
    for (const FoldingRun& run : kFoldingRuns) {
        for (std::uint32_t point = run.mFirst; point <= run.mLast && point < kDirectEnd; point += run.mStride) {
            table[point] = static_cast<unsigned short>(point + static_cast<std::uint32_t>(run.mDelta));
        }
    }
    for (const FoldingExpansion& expansion : kFoldingExpansions) {
        if (expansion.mCodePoint < kDirectEnd) {
            table[expansion.mCodePoint] = 0;
        }
    }
    return table;
}

constexpr std::array<unsigned short, kDirectEnd> kDirect = MakeDirectTable();

// Returns the expansion of a code point, or null if it folds to one code point.
const FoldingExpansion* FindExpansion(std::uint32_t inPoint)
{
    const FoldingExpansion* const found = std::lower_bound(
        std::begin(kFoldingExpansions), std::end(kFoldingExpansions), inPoint,
        [](const FoldingExpansion& inEntry, std::uint32_t inWanted) { return inEntry.mCodePoint < inWanted; });
    return found != std::end(kFoldingExpansions) && found->mCodePoint == inPoint ? found : nullptr;
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

unsigned short* FoldByTables(std::uint32_t inPoint, unsigned short* outText)
{
    if (const FoldingExpansion* const expansion = FindExpansion(inPoint)) {
        return std::copy_if(std::begin(expansion->mUnits), std::end(expansion->mUnits), outText,
                            [](unsigned short inUnit) { return inUnit != 0; });
    }
    return utf::WriteUTF16(FoldSimple(inPoint), outText);
}

// Folds one character. Keeps an unpaired surrogate.
unsigned short* FoldStep(const unsigned short*& ioText, const unsigned short* inEnd, unsigned short* outText)
{
    std::uint32_t point = *ioText++;
    if (point < kDirectEnd && (point == 0 || kDirect[point] != 0)) {
        *outText++ = kDirect[point];
        return outText;
    }
    if (utf::IsHighSurrogate(point) && ioText != inEnd && utf::IsLowSurrogate(*ioText)) {
        point = 0x10000u + ((point & 0x3FFu) << 10) + (*ioText++ & 0x3FFu);
    }
    return FoldByTables(point, outText);
}

// Folds eight units if all are ASCII. Returns whether they are.
bool FoldAsciiStep(const unsigned short* inText, unsigned short* outText)
{
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inText));
    const __m128i above = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(above, _mm_setzero_si128())) != 0xFFFF) {
        return false;
    }
    const __m128i isUpper =
        _mm_and_si128(_mm_cmpgt_epi16(units, _mm_set1_epi16('A' - 1)), _mm_cmplt_epi16(units, _mm_set1_epi16('Z' + 1)));
    const __m128i folded = _mm_or_si128(units, _mm_and_si128(isUpper, _mm_set1_epi16(0x20)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outText), folded);
    return true;
}

// A unit folds to at most three units.
constexpr std::size_t kGrowth = 3;

std::size_t FoldPiece(const unsigned short* inText, std::size_t inLength, unsigned short* outText)
{
    const unsigned short* const end = inText + inLength;
    unsigned short* out = outText;
    while (inText != end) {
        if (end - inText >= 8 && FoldAsciiStep(inText, out)) {
            inText += 8;
            out += 8;
        } else {
            out = FoldStep(inText, end, out);
        }
    }
    return static_cast<std::size_t>(out - outText);
}

constexpr std::size_t kPiece = 512;

} // namespace

UTF16String FoldCase(const UTF16String& inText)
{
    unsigned short piece[kGrowth * kPiece];
    if (inText.size() <= kPiece) {
        return UTF16String(piece, FoldPiece(inText.data(), inText.size(), piece));
    }
    UTF16String folded;
    folded.reserve(inText.size());
    for (std::size_t done = 0; done < inText.size();) {
        const std::size_t count = utf::PieceOfUTF16(inText.data() + done, inText.size() - done, kPiece);
        folded.append(piece, FoldPiece(inText.data() + done, count, piece));
        done += count;
    }
    return folded;
}

} // namespace utility
} // namespace tvxcore
