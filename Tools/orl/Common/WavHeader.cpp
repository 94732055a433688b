#include "WavHeader.h"

#include <ORLFile.h>

#include <algorithm>
#include <cstring>

namespace orl {

namespace {

constexpr std::uint32_t kSizeIsElsewhere = 0xFFFFFFFF;
constexpr int kMostChunks = 1000; // of a file that makes sense

// Numbers are little-endian.
std::uint64_t NumberAt(const unsigned char* inBytes, int inSize)
{
    std::uint64_t number = 0;
    for (int i = inSize - 1; i >= 0; --i) {
        number = number << 8 | inBytes[i];
    }
    return number;
}

bool Is(const unsigned char* inBytes, const char* inTag)
{
    return std::memcmp(inBytes, inTag, 4) == 0;
}

class WavFile
{
public:
    explicit WavFile(const UTF16String& inPath)
    {
        mIsOpen = ORL::ResultSucceeded(ORL::File::Open(inPath, ORL::FileAccessFlags::kFileAccess_Read, mFile));
        mSize = mIsOpen ? mFile.SizeOnDisk() : 0;
    }

    std::optional<WavLength> Length()
    {
        unsigned char head[12];
        if (!Read(0, head, sizeof(head)) || !(Is(head, "RIFF") || Is(head, "RF64") || Is(head, "BW64"))
            || !Is(head + 8, "WAVE")) {
            return std::nullopt;
        }
        std::uint64_t position = sizeof(head);
        for (int chunk = 0; chunk < kMostChunks; ++chunk) {
            unsigned char tag[8];
            if (!Read(position, tag, sizeof(tag))) {
                return std::nullopt;
            }
            position += sizeof(tag);
            const std::uint64_t size = NumberAt(tag + 4, 4);
            if (Is(tag, "data")) {
                return LengthOf(size == kSizeIsElsewhere && mLongSize != 0 ? mLongSize : size, position);
            }
            if (!TakeUp(tag, position, size)) {
                return std::nullopt;
            }
            position += size + size % 2;
        }
        return std::nullopt;
    }

private:
    bool Read(std::uint64_t inPosition, unsigned char* outBytes, unsigned int inCount)
    {
        unsigned int count = 0;
        if (!mIsOpen || inPosition + inCount > mSize) {
            return false;
        }
        mFile.SetFilePointer(static_cast<__int64>(inPosition), ORL::FilePointerMoveMethod::kFilePointer_Begin);
        return ORL::ResultSucceeded(mFile.Read(outBytes, inCount, count)) && count == inCount;
    }

    bool TakeUp(const unsigned char* inTag, std::uint64_t inPosition, std::uint64_t inSize)
    {
        unsigned char body[16];
        if (Is(inTag, "fmt ")) {
            if (inSize < sizeof(body) || !Read(inPosition, body, sizeof(body))) {
                return false;
            }
            mSamplesPerSecond = static_cast<std::uint32_t>(NumberAt(body + 4, 4));
            mBytesPerSample = static_cast<std::uint32_t>(NumberAt(body + 12, 2));
        } else if (Is(inTag, "ds64")) {
            if (inSize < sizeof(body) || !Read(inPosition, body, sizeof(body))) {
                return false;
            }
            mLongSize = NumberAt(body + 8, 8);
        }
        return true;
    }

    std::optional<WavLength> LengthOf(std::uint64_t inBytes, std::uint64_t inPosition) const
    {
        if (mSamplesPerSecond == 0 || mBytesPerSample == 0) {
            return std::nullopt;
        }
        const std::uint64_t there = std::min(inBytes, mSize - inPosition);
        return WavLength{mSamplesPerSecond, there / mBytesPerSample};
    }

    ORL::File mFile;
    bool mIsOpen = false;
    std::uint64_t mSize = 0;
    std::uint32_t mSamplesPerSecond = 0;
    std::uint32_t mBytesPerSample = 0; // of all channels
    std::uint64_t mLongSize = 0;
};

} // namespace

std::optional<WavLength> ReadWavLength(const UTF16String& inPath)
{
    return WavFile(inPath).Length();
}

} // namespace orl
