#include "WavHeader.h"

#include <ORLFile.h>

#include <algorithm>
#include <cstring>

namespace orl {

namespace {

constexpr std::uint32_t kSizeIsElsewhere = 0xFFFFFFFF;
constexpr int kMaxChunks = 1000; // a file with more chunks is invalid

// Reads a little-endian number.
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

// Format tags whose blocks contain one sample per channel. All other formats pack several samples into a block, and
// only the "fact" chunk contains the number of samples.
constexpr std::uint64_t kPcm = 1;
constexpr std::uint64_t kFloat = 3;
constexpr std::uint64_t kALaw = 6;
constexpr std::uint64_t kMuLaw = 7;
constexpr std::uint64_t kExtensible = 0xFFFE; // the actual tag is at the start of the extension's GUID

// The bytes of the GUID after the tag.
constexpr unsigned char kTagIdentifier[] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                            0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

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
        unsigned char tag[8];
        for (int chunk = 0; chunk < kMaxChunks && Read(position, tag, sizeof(tag)); ++chunk) {
            position += sizeof(tag);
            std::uint64_t size = NumberAt(tag + 4, 4);
            if (Is(tag, "data")) {
                size = size == kSizeIsElsewhere && mLongSize != 0 ? mLongSize : size;
                mData = Data{size, std::min(size, mSize - position)};
            } else if (!ReadChunk(tag, position, size)) {
                return std::nullopt;
            }
            if (const std::optional<WavLength> length = FoundLength()) {
                return length;
            }
            if (size > mSize - position) {
                break;
            }
            position += size + size % 2;
        }
        return std::nullopt;
    }

private:
    struct Data
    {
        std::uint64_t mStatedSize; // bytes, according to the header
        std::uint64_t mActualSize;
    };

    bool Read(std::uint64_t inPosition, unsigned char* outBytes, unsigned int inCount)
    {
        unsigned int count = 0;
        if (!mIsOpen || inPosition + inCount > mSize) {
            return false;
        }
        mFile.SetFilePointer(static_cast<__int64>(inPosition), ORL::FilePointerMoveMethod::kFilePointer_Begin);
        return ORL::ResultSucceeded(mFile.Read(outBytes, inCount, count)) && count == inCount;
    }

    bool ReadChunk(const unsigned char* inTag, std::uint64_t inPosition, std::uint64_t inSize)
    {
        if (Is(inTag, "fmt ")) {
            return ReadFormatChunk(inPosition, inSize);
        }
        unsigned char body[24];
        if (Is(inTag, "ds64")) {
            if (inSize < sizeof(body) || !Read(inPosition, body, sizeof(body))) {
                return false;
            }
            mLongSize = NumberAt(body + 8, 8);
            mLongSamples = NumberAt(body + 16, 8);
        } else if (Is(inTag, "fact") && inSize >= 4 && Read(inPosition, body, 4)) {
            mStatedSamples = NumberAt(body, 4);
        }
        return true;
    }

    bool ReadFormatChunk(std::uint64_t inPosition, std::uint64_t inSize)
    {
        unsigned char body[40];
        if (inSize < 16 || !Read(inPosition, body, 16)) {
            return false;
        }
        mFormat = NumberAt(body, 2);
        mSamplesPerSecond = static_cast<std::uint32_t>(NumberAt(body + 4, 4));
        mBytesPerBlock = static_cast<std::uint32_t>(NumberAt(body + 12, 2));
        if (mFormat == kExtensible && inSize >= sizeof(body) && Read(inPosition, body, sizeof(body))
            && std::memcmp(body + 26, kTagIdentifier, sizeof(kTagIdentifier)) == 0) {
            mFormat = NumberAt(body + 24, 2);
        }
        return true;
    }

    bool HasOneSampleABlock() const
    {
        return mFormat == kPcm || mFormat == kFloat || mFormat == kALaw || mFormat == kMuLaw;
    }

    // Returns the length once the chunks read so far determine it.
    std::optional<WavLength> FoundLength() const
    {
        if (!mData || mSamplesPerSecond == 0) {
            return std::nullopt;
        }
        if (HasOneSampleABlock()) {
            return mBytesPerBlock != 0
                       ? std::optional<WavLength>({mSamplesPerSecond, mData->mActualSize / mBytesPerBlock})
                       : std::nullopt;
        }
        const std::uint64_t samples = mStatedSamples == kSizeIsElsewhere ? mLongSamples : mStatedSamples;
        // A truncated file has fewer samples than stated; in a packed format their number is unknown.
        return samples != 0 && mData->mActualSize == mData->mStatedSize
                   ? std::optional<WavLength>({mSamplesPerSecond, samples})
                   : std::nullopt;
    }

    ORL::File mFile;
    bool mIsOpen = false;
    std::uint64_t mSize = 0;
    std::uint64_t mFormat = 0;
    std::uint32_t mSamplesPerSecond = 0;
    std::uint32_t mBytesPerBlock = 0; // bytes of all channels together
    std::uint64_t mLongSize = 0;
    std::uint64_t mLongSamples = 0;
    std::uint64_t mStatedSamples = 0; // samples per channel, from the "fact" chunk; 0 without one
    std::optional<Data> mData;
};

} // namespace

std::optional<WavLength> ReadWavLength(const UTF16String& inPath)
{
    return WavFile(inPath).Length();
}

} // namespace orl
