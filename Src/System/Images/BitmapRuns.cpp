#include "BitmapRuns.h"

#include <algorithm>

namespace ORL {
namespace Images {

namespace {

// Escape codes, after a count of 0. Any other code is a count of pixels that are not run-length encoded.
constexpr unsigned int kEndOfRow = 0;
constexpr unsigned int kEndOfBitmap = 1;
constexpr unsigned int kDelta = 2;

class RunReader
{
public:
    RunReader(const BitmapHeader& inHeader, std::uint32_t* outPixels)
        : mHeader(inHeader), mPixels(outPixels), mNext(inHeader.mPixels.mData), mEnd(mNext + inHeader.mPixels.mSize)
    {
    }

    bool Read()
    {
        while (Left() >= 2) {
            const unsigned int count = *mNext++;
            const unsigned int what = *mNext++;
            if (count != 0) {
                WriteRun(count, static_cast<unsigned char>(what));
            } else if (what == kEndOfBitmap) {
                return true;
            } else if (!Escape(what)) {
                return false;
            }
        }
        return mY >= mHeader.mHeight;
    }

private:
    std::size_t Left() const noexcept { return static_cast<std::size_t>(mEnd - mNext); }

    bool Escape(unsigned int inWhat)
    {
        switch (inWhat) {
        case kEndOfRow:
            mX = 0;
            ++mY;
            return true;
        case kDelta:
            if (Left() < 2) {
                return false;
            }
            mX += *mNext++;
            mY += *mNext++;
            return true;
        default: return WritePixels(inWhat);
        }
    }

    // A byte contains two colour indices of 4 bits, the first one in the upper bits.
    unsigned int NumberIn(unsigned char inByte, unsigned int inPlace) const noexcept
    {
        if (mHeader.mBits == 8) {
            return inByte;
        }
        return inPlace % 2 == 0 ? inByte >> 4 : inByte & 15u;
    }

    void WriteRun(unsigned int inCount, unsigned char inByte) noexcept
    {
        for (unsigned int i = 0; i < inCount; ++i) {
            Write(NumberIn(inByte, i));
        }
    }

    bool WritePixels(unsigned int inCount) noexcept
    {
        const std::size_t size = mHeader.mBits == 8 ? inCount : (inCount + 1) / 2;
        if (Left() < size) {
            return false;
        }
        for (unsigned int i = 0; i < inCount; ++i) {
            Write(NumberIn(mNext[mHeader.mBits == 8 ? i : i / 2], i));
        }
        mNext += std::min(size + size % 2, Left()); // the pixels are padded to 16 bits
        return true;
    }

    void Write(unsigned int inNumber) noexcept
    {
        if (mX < mHeader.mWidth && mY < mHeader.mHeight) {
            mPixels[(mHeader.mHeight - 1 - mY) * mHeader.mWidth + mX] = mHeader.mColours[inNumber];
        }
        ++mX;
    }

    const BitmapHeader& mHeader;
    std::uint32_t* const mPixels;
    const unsigned char* mNext;
    const unsigned char* const mEnd;
    std::size_t mX = 0;
    std::size_t mY = 0; // the row, counted from the bottom
};

} // namespace

bool ReadRuns(const BitmapHeader& inHeader, std::uint32_t* outPixels)
{
    return RunReader(inHeader, outPixels).Read();
}

} // namespace Images
} // namespace ORL
