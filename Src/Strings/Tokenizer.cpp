#include <Tokenizer.h>

#include <ORLParamString.h>

#include <emmintrin.h>

namespace ORL {

namespace {

// The place of a unit at or behind inStart, or npos. Eight units a step.
UTF16String::size_type FindUnit(const UTF16String& inText, unsigned short inUnit, UTF16String::size_type inStart)
{
    const unsigned short* const units = inText.data();
    const UTF16String::size_type size = inText.size();
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(inUnit));
    UTF16String::size_type at = inStart;
    for (; at + 8 <= size; at += 8) {
        const __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + at));
        const int equal = _mm_movemask_epi8(_mm_cmpeq_epi16(lanes, wanted)); // two bits for each unit
        if (equal != 0) {
            return at + static_cast<unsigned>(__builtin_ctz(static_cast<unsigned>(equal))) / 2;
        }
    }
    for (; at < size; ++at) {
        if (units[at] == inUnit) {
            return at;
        }
    }
    return UTF16String::npos;
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
    mPosition = found + 1; // one unit, also behind a longer separator
    if (mSkipRuns) {
        SkipRun();
    }
    if (mPosition >= mText->size()) {
        mPosition = UTF16String::npos;
    }
    return {mText->data() + start, found - start};
}

void Tokenizer::SkipRun()
{
    // Only a separator of one unit can equal the single unit at the position.
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
    Tokenizer tokens(inString, inSeparator, true);
    const Tokenizer::Token first = tokens.NextToken();
    const Tokenizer::Token second = tokens.NextToken();
    if (&outFirst == &inString || &outSecond == &inString) {
        UTF16String firstText(first.mBegin, first.mSize);
        UTF16String secondText(second.mBegin, second.mSize);
        outFirst = std::move(firstText);
        outSecond = std::move(secondText);
        return;
    }
    // What may throw comes before the first change that shows.
    outFirst.reserve(first.mSize);
    outSecond.reserve(second.mSize);
    outFirst.assign(first.mBegin, first.mSize);
    outSecond.assign(second.mBegin, second.mSize);
}

} // namespace ORL
