#include <Strings/Tokenizer.h>

#include <ORLParamString.h>

#include <algorithm>
#include <emmintrin.h>

namespace ORL {

namespace {

constexpr UTF16String::size_type kLanes = 8;

// Returns a mask with two bits set for each of the eight units that matches the wanted one.
unsigned EqualLanes(const unsigned short* inUnits, __m128i inWanted)
{
    const __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inUnits));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(lanes, inWanted)));
}

UTF16String::size_type FirstLane(unsigned inEqual)
{
    return static_cast<unsigned>(__builtin_ctz(inEqual)) / 2;
}

// Returns the position of a unit at or after inStart, or npos. Compares eight units at a time; the last step overlaps
// units already compared.
UTF16String::size_type FindUnit(const UTF16String& inText, unsigned short inUnit, UTF16String::size_type inStart)
{
    const unsigned short* const units = inText.data();
    const UTF16String::size_type size = inText.size();
    if (size - inStart < kLanes) {
        const unsigned short* const found = std::find(units + inStart, units + size, inUnit);
        return found != units + size ? static_cast<UTF16String::size_type>(found - units) : UTF16String::npos;
    }
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(inUnit));
    for (UTF16String::size_type at = inStart; at + kLanes <= size; at += kLanes) {
        const unsigned equal = EqualLanes(units + at, wanted);
        if (equal != 0) {
            return at + FirstLane(equal);
        }
    }
    const unsigned equal = EqualLanes(units + size - kLanes, wanted);
    return equal != 0 ? size - kLanes + FirstLane(equal) : UTF16String::npos;
}

} // namespace

UTF16String Tokenizer::Next()
{
    const Token token = NextToken();
    return UTF16String(token.mBegin, token.mSize);
}

Tokenizer::Token Tokenizer::NextToken()
{
    if (mPosition == UTF16String::npos) {
        return {mText->data(), 0};
    }
    const UTF16String::size_type start = mPosition;
    UTF16String::size_type found =
        mSeparator.size() == 1 ? FindUnit(*mText, mSeparator[0], start) : mText->find(mSeparator, start);
    if (found == UTF16String::npos) {
        found = mText->size();
    }
    mPosition = found + 1; // one unit, even after a longer separator
    if (mRuns == Runs::kSkip) {
        SkipRun();
    }
    if (mPosition >= mText->size()) {
        mPosition = UTF16String::npos;
    }
    return {mText->data() + start, found - start};
}

void Tokenizer::SkipRun()
{
    // The comparison below uses one unit, so only a separator of one unit can match.
    if (mSeparator.size() != 1) {
        return;
    }
    while (mPosition < mText->size() && (*mText)[mPosition] == mSeparator[0]) {
        ++mPosition;
    }
}

void SplitString(const UTF16String& inString, const UTF16String& inSeparator, UTF16String& outFirst,
                 UTF16String& outSecond)
{
    Tokenizer tokens(inString, inSeparator, Tokenizer::Runs::kSkip);
    const Tokenizer::Token first = tokens.NextToken();
    const Tokenizer::Token second = tokens.NextToken();
    if (&outFirst == &inString || &outSecond == &inString) {
        UTF16String firstText(first.mBegin, first.mSize);
        UTF16String secondText(second.mBegin, second.mSize);
        outFirst = std::move(firstText);
        outSecond = std::move(secondText);
        return;
    }
    // Does everything that may throw before the first visible change.
    outFirst.reserve(first.mSize);
    outSecond.reserve(second.mSize);
    outFirst.assign(first.mBegin, first.mSize);
    outSecond.assign(second.mBegin, second.mSize);
}

} // namespace ORL
