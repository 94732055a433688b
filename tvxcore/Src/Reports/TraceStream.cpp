#include <tvxcore/Trace.h>

#include <tvxcore/Executor.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <charconv>
#include <cstring>

namespace tvxcore {
namespace debug {

using utility::SmallBlockAllocator;

namespace {

// The decimal digits of a number, independent of the locale.
class Digits
{
public:
    template <class Number>
    explicit Digits(Number inNumber) : mCount(0)
    {
        mCount = static_cast<std::size_t>(std::to_chars(mText, mText + sizeof(mText), inNumber).ptr - mText);
    }

    const char* Text() const { return mText; }
    std::size_t Count() const { return mCount; }

private:
    char mText[24];
    std::size_t mCount;
};

} // namespace

SafeTraceStream::SafeTraceStream() noexcept : mText(mInline), mCapacity(sizeof(mInline)), mCount(0), mIsCut(false)
{
}

SafeTraceStream::~SafeTraceStream()
{
    if (mCount != 0) {
        mText[mCount] = '\0';
        Trace(reinterpret_cast<const unsigned char*>(mText));
    }
    if (mText != mInline) {
        SmallBlockAllocator::Dispose(mText, mCapacity);
    }
}

void SafeTraceStream::Append(const char* inBytes, std::size_t inCount) noexcept
{
    if (mIsCut) {
        return;
    }
    if (inCount >= mCapacity - mCount) {
        const std::size_t capacity = 2 * (mCapacity + inCount);
        char* const text = static_cast<char*>(SmallBlockAllocator::Allocate(capacity));
        if (text == nullptr) {
            mIsCut = true;
            return;
        }
        std::memcpy(text, mText, mCount);
        if (mText != mInline) {
            SmallBlockAllocator::Dispose(mText, mCapacity);
        }
        mText = text;
        mCapacity = capacity;
    }
    std::memcpy(mText + mCount, inBytes, inCount);
    mCount += inCount;
}

SafeTraceStream& SafeTraceStream::operator<<(const char* inText)
{
    if (inText != nullptr) {
        Append(inText, std::strlen(inText));
    }
    return *this;
}

SafeTraceStream& SafeTraceStream::operator<<(unsigned int inNumber)
{
    const Digits digits(inNumber);
    Append(digits.Text(), digits.Count());
    return *this;
}

SafeTraceStream& SafeTraceStream::operator<<(long inNumber)
{
    const Digits digits(inNumber);
    Append(digits.Text(), digits.Count());
    return *this;
}

SafeTraceStream& SafeTraceStream::operator<<(unsigned long inNumber)
{
    const Digits digits(inNumber);
    Append(digits.Text(), digits.Count());
    return *this;
}

SafeTraceStream& SafeTraceStream::operator<<(unsigned __int64 inNumber)
{
    const Digits digits(inNumber);
    Append(digits.Text(), digits.Count());
    return *this;
}

TraceLine::TraceLine(const TraceSite& inSite)
{
    *this << "<" << threads::GetCurrentThreadID() << "> <" << inSite.Category() << "> <" << inSite.Level() << "> ";
}

} // namespace debug
} // namespace tvxcore
